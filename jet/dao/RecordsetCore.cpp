#include "jet/dao/RecordsetCore.h"

#include <utility>

#include "jet/Error.h"
#include "jet/format/NameOrder.h"
#include "jet/sql/Evaluator.h"
#include "jet/sql/Executor.h"
#include "jet/sql/Parser.h"
#include "jet/sql/Plan.h"
#include "jet/sql/Query.h"

namespace jet {
namespace {

bool IsCalled(const FieldInfo& field, std::string_view table, std::string_view name) {
  if (!format::SameName(field.name, name)) return false;
  return table.empty() || format::SameName(field.label, table);
}

/// The fields of a recordset as the columns of a criterion.
class FieldScope final : public sql::NameScope {
 public:
  explicit FieldScope(const std::vector<FieldInfo>& fields) : m_fields(&fields) {}

  sql::BoundColumn Resolve(const sql::ColumnName& name) const override {
    const std::string full = name.table + "." + name.name;
    for (std::size_t i = 0; i < m_fields->size(); ++i) {
      const FieldInfo& field = (*m_fields)[i];
      if (IsCalled(field, name.table, name.name) ||
          (!name.table.empty() && format::SameName(field.name, full)))
        return {{0, i}, field.type};
    }
    throw Error(
        ErrorNumber::UnknownColumnInStatement,
        "The criterion names the column " + sql::Describe(name) + ", which the recordset does not have.");
  }

 private:
  const std::vector<FieldInfo>* m_fields;
};

/// One row of a recordset after the other, for the search.
class SearchedRow final : public sql::RowSource {
 public:
  explicit SearchedRow(RecordsetRows& rows) : m_rows(&rows) {}

  std::size_t row = 0;

  Value Read(sql::ColumnPlace place) const override { return m_rows->Read(row, place.column); }
  bool ReadText(sql::ColumnPlace place, std::string& into) const override {
    const std::string* const text = m_rows->ReadText(row, place.column);
    if (text == nullptr) return false;
    into = *text;
    return true;
  }

 private:
  RecordsetRows* m_rows;
};

}  // namespace

std::unique_ptr<RecordsetCore> RecordsetCore::Open(std::shared_ptr<DatabaseCore> database,
                                                   const std::string& sql) {
  Store& store = database->OpenStore();
  const auto statement = database->Statements().Get(sql);
  const sql::Query query = sql::BindSelect(*statement, store);
  const sql::Plan plan = sql::MakePlan(query);
  std::vector<FieldInfo> infos;
  for (const sql::OutputColumn& column : query.columns)
    infos.push_back({column.name, column.label, column.type});
  sql::Executor executor(query, plan);
  std::unique_ptr<RecordsetRows> rows;
  DynasetRows* dynaset = nullptr;
  if (query.IsPlain()) {
    std::vector<std::size_t> columns;
    for (const sql::OutputColumn& column : query.columns)
      columns.push_back(column.place.column);
    auto found = std::make_unique<DynasetRows>(store, *query.sources.front().table, executor.FindRows(),
                                               std::move(columns));
    dynaset = found.get();
    rows = std::move(found);
  } else {
    rows = std::make_unique<SnapshotRows>(executor.ReadRows());
  }
  std::unique_ptr<RecordsetCore> core(
      new RecordsetCore(std::move(database), std::move(infos), std::move(rows), dynaset, plan.text));
  core->MoveTo(0);
  return core;
}

RecordsetCore::RecordsetCore(std::shared_ptr<DatabaseCore> database, std::vector<FieldInfo> infos,
                             std::unique_ptr<RecordsetRows> rows, DynasetRows* dynaset, std::string plan)
    : m_database(std::move(database)),
      m_infos(std::move(infos)),
      m_rows(std::move(rows)),
      m_dynaset(dynaset),
      m_tableName(dynaset != nullptr ? dynaset->Table().Name() : ""),
      m_plan(std::move(plan)) {
  m_fields.reserve(m_infos.size());
  for (std::size_t i = 0; i < m_infos.size(); ++i)
    m_fields.emplace_back(*this, i);
  m_database->Add(*this);
}

RecordsetCore::~RecordsetCore() {
  Close();
}

void RecordsetCore::Close() {
  if (!m_isOpen) return;
  m_isOpen = false;
  m_edit.reset();
  m_rows.reset();
  m_dynaset = nullptr;
  m_database->Remove(*this);
}

void RecordsetCore::CheckOpen() const {
  if (!m_isOpen) throw Error(ErrorNumber::ObjectClosed, "The recordset is closed, or its database is.");
}

bool RecordsetCore::HasItsTable(Store& store) const {
  return m_dynaset == nullptr || store.FindTable(m_tableName) == &m_dynaset->Table();
}

bool RecordsetCore::IsUpdatable() const {
  return m_dynaset != nullptr && !m_database->IsReadOnly() && !m_dynaset->Table().IsSystem();
}

DynasetRows& RecordsetCore::UpdatableRows() const {
  if (IsUpdatable()) return *m_dynaset;
  std::string why = "its rows are the result of a join or of aggregates";
  if (m_database->IsReadOnly()) {
    why = "the database '" + m_database->Name() + "' is open for reading only";
  } else if (m_dynaset != nullptr) {
    why = "'" + m_tableName + "' is a system table";
  }
  throw Error(ErrorNumber::CannotUpdate, "The recordset cannot be changed: " + why + ".");
}

// To the first row from `row` on that was not deleted through this recordset.
void RecordsetCore::MoveTo(std::size_t row) {
  m_edit.reset();
  m_noMatch = false;
  m_row = row;
  while (m_row < m_rows->Count() && !m_rows->Has(m_row))
    ++m_row;
  m_state = m_row < m_rows->Count() ? State::AtRow : State::AtEnd;
}

void RecordsetCore::MoveFirst() {
  MoveTo(0);
}

void RecordsetCore::MoveNext() {
  if (m_state == State::AtEnd || m_state == State::NoRow)
    throw Error(ErrorNumber::NoCurrentRecord, "The recordset has no current row to move on from.");
  MoveTo(m_row + 1);
}

void RecordsetCore::FindFirst(const std::string& criterion) {
  const sql::BoundExpression condition =
      sql::BindCondition(sql::ParseCriterion(criterion), FieldScope(m_infos));
  MoveTo(0);
  SearchedRow searched(*m_rows);
  sql::Evaluator evaluator(searched);
  for (; m_state == State::AtRow; MoveTo(m_row + 1)) {
    searched.row = m_row;
    try {
      if (evaluator.Holds(condition)) return;
    } catch (const Error& error) {
      // Rows that someone else deleted are not found.
      if (error.Number() != ErrorNumber::RowDeleted) throw;
    }
  }
  m_noMatch = true;
  if (m_rows->Count() > 0) m_state = State::NoRow;
}

void RecordsetCore::CheckCurrentRow() const {
  if (m_state == State::Deleted)
    throw Error(ErrorNumber::RowDeleted, "The current row of table '" + m_tableName + "' was deleted.");
  if (m_state != State::AtRow) throw Error(ErrorNumber::NoCurrentRecord, "The recordset has no current row.");
}

void RecordsetCore::AddNew() {
  m_edit.emplace(UpdatableRows().Table(), RowEdit::Kind::Add);
}

void RecordsetCore::Edit() {
  DynasetRows& rows = UpdatableRows();
  CheckCurrentRow();
  rows.IdOf(m_row);
  m_edit.emplace(rows.Table(), RowEdit::Kind::Edit);
}

void RecordsetCore::Update() {
  DynasetRows& rows = UpdatableRows();
  if (!m_edit)
    throw Error(ErrorNumber::NoEditInProgress,
                "There is nothing to update: no row is being added or edited.");
  const std::vector<ColumnValue> changes = m_edit->Changes();
  if (m_edit->IsNew()) {
    RowId added;
    m_database->ChangeRows([&] { added = rows.Table().Insert(changes); });
    rows.Append(added);
  } else if (const RowId id = rows.IdOf(m_row); !changes.empty()) {
    m_database->ChangeRows([&] { rows.Table().Update(id, changes); });
  }
  m_edit.reset();
}

void RecordsetCore::Delete() {
  DynasetRows& rows = UpdatableRows();
  CheckCurrentRow();
  const RowId id = rows.IdOf(m_row);
  m_database->ChangeRows([&] { rows.Table().Delete(id); });
  rows.MarkDeleted(m_row);
  m_state = State::Deleted;
  m_edit.reset();
}

std::size_t RecordsetCore::FindField(std::string_view name) const {
  // Most callers write names as they are.
  for (std::size_t i = 0; i < m_infos.size(); ++i) {
    if (m_infos[i].name == name) return i;
  }
  for (std::size_t i = 0; i < m_infos.size(); ++i) {
    if (format::SameName(m_infos[i].name, name)) return i;
  }
  // With the table's name before it.
  for (std::size_t dot = name.find('.'); dot != std::string_view::npos; dot = name.find('.', dot + 1)) {
    for (std::size_t i = 0; dot > 0 && i < m_infos.size(); ++i) {
      if (IsCalled(m_infos[i], name.substr(0, dot), name.substr(dot + 1))) return i;
    }
  }
  throw Error(ErrorNumber::UnknownField, "The recordset has no column '" + std::string(name) + "'.");
}

Value RecordsetCore::ReadField(std::size_t field) {
  if (m_edit) {
    const std::size_t column = m_dynaset->ColumnOf(field);
    if (const Value* value = m_edit->Find(column)) return *value;
    if (m_edit->IsNew()) return m_edit->Missing(column);
  }
  CheckCurrentRow();
  return m_rows->Read(m_row, field);
}

const std::string* RecordsetCore::ReadFieldText(std::size_t field) {
  const FieldInfo& info = m_infos[field];
  if (info.type != ColumnType::Text && info.type != ColumnType::Memo)
    throw Error(ErrorNumber::CannotConvert, "The column '" + info.name + "' does not hold text.");
  if (m_edit) {
    const Value value = ReadField(field);
    if (value.IsNull()) return nullptr;
    m_text = *value.As<std::string>();
    return &m_text;
  }
  CheckCurrentRow();
  return m_rows->ReadText(m_row, field);
}

void RecordsetCore::AssignField(std::size_t field, const Value& value) {
  DynasetRows& rows = UpdatableRows();
  if (!m_edit) {
    throw Error(ErrorNumber::NoEditInProgress, "The column '" + m_infos[field].name +
                                                   "' cannot be assigned: no row is being added or edited.");
  }
  m_edit->Assign(rows.ColumnOf(field), value);
}

}  // namespace jet

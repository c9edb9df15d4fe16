#include "jet/dao/RecordsetCore.h"

#include <utility>

#include "jet/Error.h"
#include "jet/format/NameOrder.h"
#include "jet/sql/Evaluator.h"
#include "jet/sql/Parser.h"
#include "jet/sql/Query.h"

namespace jet {
namespace {

bool IsCalled(const sql::OutputColumn& field, std::string_view table, std::string_view name) {
  if (!format::SameName(field.name, name)) return false;
  return table.empty() || format::SameName(field.label, table);
}

/// The fields of a recordset as the columns of a criterion.
class FieldScope final : public sql::NameScope {
 public:
  explicit FieldScope(const std::vector<sql::OutputColumn>& fields) : m_fields(&fields) {}

  sql::BoundColumn Resolve(const sql::ColumnName& name) const override {
    const std::string full = name.table + "." + name.name;
    for (std::size_t i = 0; i < m_fields->size(); ++i) {
      const sql::OutputColumn& field = (*m_fields)[i];
      if (IsCalled(field, name.table, name.name) ||
          (!name.table.empty() && format::SameName(field.name, full)))
        return {{0, i}, field.type};
    }
    throw Error(
        ErrorNumber::UnknownColumnInStatement,
        "The criterion names the column " + sql::Describe(name) + ", which the recordset does not have.");
  }

 private:
  const std::vector<sql::OutputColumn>* m_fields;
};

/// One row of a recordset after the other, for the search.
class SearchedRow final : public sql::RowSource {
 public:
  explicit SearchedRow(RecordsetRows& rows) : m_rows(&rows) {}

  std::size_t row = 0;

  Value Read(sql::ColumnPlace place) const override { return m_rows->Read(row, place.column); }
  std::optional<std::string_view> ReadText(sql::ColumnPlace place, std::string& buffer) const override {
    return m_rows->ReadText(row, place.column, buffer);
  }

 private:
  RecordsetRows* m_rows;
};

}  // namespace

// To the first row from `row` on that was not deleted through this recordset.
inline void RecordsetCore::MoveTo(std::size_t row) {
  m_ready = nullptr;
  m_edit.reset();
  m_noMatch = false;
  m_row = row;
  while (m_row < m_rows->Count() && !m_rows->Has(m_row))
    ++m_row;
  m_state = m_row < m_rows->Count() ? State::AtRow : State::AtEnd;
}

RecordsetCore::RecordsetCore(std::shared_ptr<DatabaseCore> database, const std::string& sql)
    : m_database(std::move(database)),
      m_select(m_database->Statements().Get(sql, m_database->OpenStore())),
      m_numbers(m_database->Statements().Numbers()),
      m_transaction(m_database->TransactionDepth()) {
  const sql::Query& query = m_select->Bound();
  m_tableName = query.sources.front().table->Name();
  if (query.IsPlain()) {
    Table& table = *query.sources.front().table;
    m_rows = &m_dynaset.emplace(m_database->OpenStore(), table, m_select->Run().FindRows(), query.columns);
  } else {
    m_rows = &m_snapshot.emplace(m_select->Run().ReadRows());
  }
  m_fields.reserve(query.columns.size());
  for (std::size_t i = 0; i < query.columns.size(); ++i)
    m_fields.emplace_back(*this, i);
  MoveTo(0);
  m_database->Add(*this);
}

const std::string& RecordsetCore::PlanText() {
  if (m_plan.empty()) m_plan = m_select->Explain(m_numbers);
  return m_plan;
}

RecordsetCore::~RecordsetCore() {
  Close();
}

void RecordsetCore::Close() {
  if (!m_isOpen) return;
  m_isOpen = false;
  m_ready = nullptr;
  m_edit.reset();
  m_rows = nullptr;
  m_dynaset.reset();
  m_snapshot.reset();
  m_database->Remove(*this);
}

void RecordsetCore::CheckOpen() const {
  if (!m_isOpen) throw Error(ErrorNumber::ObjectClosed, "The recordset is closed, or its database is.");
}

bool RecordsetCore::IsUpdatable() const {
  return m_dynaset.has_value() && !m_database->IsReadOnly() && !m_dynaset->Table().IsSystem();
}

DynasetRows& RecordsetCore::UpdatableRows() {
  if (IsUpdatable()) return *m_dynaset;
  std::string why = "its rows are the result of a join or of aggregates";
  if (m_database->IsReadOnly()) {
    why = "the database '" + m_database->Name() + "' is open for reading only";
  } else if (m_dynaset) {
    why = "'" + m_tableName + "' is a system table";
  }
  throw Error(ErrorNumber::CannotUpdate, "The recordset cannot be changed: " + why + ".");
}

void RecordsetCore::MoveFirst() {
  MoveTo(0);
}

void RecordsetCore::MoveNext() {
  if (m_state == State::AtEnd || m_state == State::NoRow)
    throw Error(ErrorNumber::NoCurrentRecord,
                "The recordset on '" + m_tableName + "' has no current row to move on from.");
  MoveTo(m_row + 1);
}

void RecordsetCore::FindFirst(const std::string& criterion) {
  const sql::BoundExpression condition =
      sql::BindCondition(sql::ParseCriterion(criterion), FieldScope(m_select->Columns()));
  MoveTo(0);
  SearchedRow searched(*m_rows);
  sql::Evaluator evaluator(searched);
  for (; m_state == State::AtRow; MoveTo(m_row + 1)) {
    searched.row = m_row;
    try {
      if (evaluator.Holds(condition)) return;
    } catch (const Error& error) {
      // Rows deleted elsewhere are not found.
      if (error.Number() != ErrorNumber::RowDeleted) throw;
    }
  }
  m_noMatch = true;
  if (m_rows->Count() > 0) m_state = State::NoRow;
}

void RecordsetCore::CheckCurrentRow() const {
  if (m_state == State::Deleted)
    throw Error(ErrorNumber::RowDeleted, "The current row of table '" + m_tableName + "' was deleted.");
  if (m_state != State::AtRow) {
    throw Error(ErrorNumber::NoCurrentRecord, "The recordset on '" + m_tableName + "' has no current row.");
  }
}

void RecordsetCore::AddNew() {
  m_ready = nullptr;
  m_edit.emplace(UpdatableRows().Table(), RowEdit::Kind::Add);
}

void RecordsetCore::Edit() {
  DynasetRows& rows = UpdatableRows();
  CheckCurrentRow();
  rows.IdOf(m_row);
  m_ready = nullptr;
  m_edit.emplace(rows.Table(), RowEdit::Kind::Edit);
}

void RecordsetCore::Update() {
  DynasetRows& rows = UpdatableRows();
  if (!m_edit)
    throw Error(ErrorNumber::NoEditInProgress,
                "There is nothing to update: no row is being added or edited.");
  std::vector<ColumnValue> changes = m_edit->Changes();
  if (m_edit->IsNew()) {
    m_database->PrepareChange();
    rows.Append(rows.Table().Insert(std::move(changes)));
    m_transaction = m_database->TransactionDepth();
  } else if (const RowId id = rows.IdOf(m_row); !changes.empty()) {
    m_database->PrepareChange();
    rows.Table().Update(id, changes);
  }
  m_edit.reset();
}

void RecordsetCore::Delete() {
  DynasetRows& rows = UpdatableRows();
  CheckCurrentRow();
  const RowId id = rows.IdOf(m_row);
  m_database->PrepareChange();
  rows.Table().Delete(id);
  rows.MarkDeleted(m_row);
  m_transaction = m_database->TransactionDepth();
  m_state = State::Deleted;
  m_edit.reset();
}

std::size_t RecordsetCore::FindField(std::string_view name) {
  const std::vector<sql::OutputColumn>& columns = m_select->Columns();
  // Most callers write names as they are, and ask for them in their order.
  for (std::size_t i = 0; i < columns.size(); ++i) {
    const std::size_t field = m_nextField < columns.size() ? m_nextField : 0;
    m_nextField = field + 1;
    if (columns[field].name == name) return field;
  }
  for (std::size_t i = 0; i < columns.size(); ++i) {
    if (format::SameName(columns[i].name, name)) return i;
  }
  // With the table's name before it.
  for (std::size_t dot = name.find('.'); dot != std::string_view::npos; dot = name.find('.', dot + 1)) {
    for (std::size_t i = 0; dot > 0 && i < columns.size(); ++i) {
      if (IsCalled(columns[i], name.substr(0, dot), name.substr(dot + 1))) return i;
    }
  }
  throw Error(ErrorNumber::UnknownField,
              "The recordset on '" + m_tableName + "' has no column '" + std::string(name) + "'.");
}

Value RecordsetCore::ReadField(std::size_t field) {
  if (m_edit) {
    const std::size_t column = m_dynaset->ColumnOf(field);
    if (const Value* value = m_edit->Find(column)) return *value;
    if (m_edit->IsNew()) return m_edit->Missing(column);
  }
  CheckCurrentRow();
  if (m_dynaset && !m_edit) {
    const format::RowView& row = m_dynaset->Fetch(m_row);
    if (!m_database->IsObserved()) m_ready = &row;
  }
  return m_rows->Read(m_row, field);
}

std::optional<std::string_view> RecordsetCore::ReadFieldText(std::size_t field) {
  const sql::OutputColumn& info = InfoOf(field);
  if (info.type != ColumnType::Text && info.type != ColumnType::Memo)
    throw Error(ErrorNumber::CannotConvert, "The column '" + info.name + "' does not hold text.");
  if (m_edit) {
    const Value value = ReadField(field);
    if (value.IsNull()) return std::nullopt;
    m_text = *value.As<std::string>();
    return m_text;
  }
  CheckCurrentRow();
  return m_rows->ReadText(m_row, field, m_text);
}

void RecordsetCore::AssignField(std::size_t field, const Value& value) {
  DynasetRows& rows = UpdatableRows();
  if (!m_edit) {
    throw Error(ErrorNumber::NoEditInProgress, "The column '" + InfoOf(field).name +
                                                   "' cannot be assigned: no row is being added or edited.");
  }
  m_edit->Assign(rows.ColumnOf(field), value);
}

}  // namespace jet

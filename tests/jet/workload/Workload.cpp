#include "tests/jet/workload/Workload.h"

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <iostream>
#include <optional>
#include <random>

namespace jet::test {
namespace {

/// Most bytes that a row may take.
std::size_t RoomOf(const ModelTable& table, const ModelRow& row) {
  std::size_t room = 64;
  for (std::size_t i = 0; i < row.size(); ++i) {
    const auto* text = row[i].As<std::string>();
    const auto* bytes = row[i].As<Bytes>();
    const ColumnType type = table.info.columns[i].type;
    const std::size_t size = text != nullptr ? 2 * text->size() : bytes != nullptr ? bytes->size() : 17;
    room += 4 + (type == ColumnType::Memo || type == ColumnType::Ole ? std::min<std::size_t>(size, 128) + 12
                                                                     : size);
  }
  return room;
}

constexpr std::size_t kRoomThatFits = 3900;
constexpr std::int32_t kNotYetNumbered = INT32_MAX;

Value DefaultOf(const ColumnSpec& column) {
  if (column.type == ColumnType::YesNo) {
    return column.defaultValue == "True" || column.defaultValue == "Yes" || column.defaultValue == "-1";
  }
  if (!column.defaultValue) return {};
  if (column.type == ColumnType::Text || column.type == ColumnType::Memo) {
    return column.defaultValue->substr(1, column.defaultValue->size() - 2);
  }
  return static_cast<std::int32_t>(std::strtol(column.defaultValue->c_str(), nullptr, 10));
}

std::string Names(const std::set<ErrorNumber>& errors) {
  std::string text;
  for (const ErrorNumber error : errors)
    text += " " + std::to_string(static_cast<int>(error));
  return text;
}

}  // namespace

unsigned WorkloadSeed() {
  const char* given = std::getenv("HALCYRA_TEST_SEED");
  const unsigned seed =
      given != nullptr ? static_cast<unsigned>(std::strtoul(given, nullptr, 10)) : std::random_device{}();
  std::cout << "HALCYRA_TEST_SEED=" << seed << "\n";
  return seed;
}

std::string Workload::Summary() const {
  return std::to_string(m_adds) + " added, " + std::to_string(m_edits) + " edited, " +
         std::to_string(m_deletes) + " deleted, " + std::to_string(m_refused) +
         " refused; transactions: " + std::to_string(m_committed) + " committed, " +
         std::to_string(m_rolledBack) + " rolled back";
}

std::string Workload::Run(Database& database, std::size_t count) {
  for (std::size_t i = 0; i < count; ++i) {
    const std::int64_t dice = m_values.Number(0, 99);
    std::string trouble;
    try {
      if (m_values.Number(0, 49) == 0) BeginOrEndTransaction(database);
      trouble = dice < 48 ? Add(database) : dice < 80 ? Edit(database) : Delete(database);
    } catch (const Error& error) {
      trouble = "error " + std::to_string(static_cast<int>(error.Number())) + ": " + error.what();
    }
    if (!trouble.empty()) return "change " + std::to_string(i) + ": " + trouble;
  }
  for (; !m_before.empty(); m_before.pop_back())
    database.CommitTrans();
  return {};
}

void Workload::BeginOrEndTransaction(Database& database) {
  constexpr std::size_t kDeepest = 10;
  const std::int64_t dice = m_values.Number(0, 2);
  if (m_before.empty() || (dice == 0 && m_before.size() < kDeepest)) {
    database.BeginTrans();
    m_before.push_back(*m_model);
    return;
  }
  if (dice == 1) {
    database.CommitTrans();
    ++m_committed;
  } else {
    database.Rollback();
    *m_model = std::move(m_before.back());
    ++m_rolledBack;
  }
  m_before.pop_back();
}

ModelTable& Workload::AnyTable() {
  const auto names = m_model->TableNames();
  return m_model->Table(names[m_values.Below(names.size())]);
}

const ModelRow* Workload::AnyRow(const ModelTable& table) {
  if (table.rows.empty()) return nullptr;
  auto row = table.rows.begin();
  std::advance(row, static_cast<std::ptrdiff_t>(m_values.Below(table.rows.size())));
  return &row->second;
}

Value Workload::ValueFor(const ModelTable& table, std::size_t column) {
  const ColumnSpec& definition = table.info.columns[column];
  const bool isText = definition.type == ColumnType::Text || definition.type == ColumnType::Memo;
  if (isText && m_values.Chance(0.03) && !table.IsKey(column)) return "";
  if (definition.type != ColumnType::YesNo && m_values.Chance(definition.required ? 0.01 : 0.1)) return {};
  // Now and then a key that is taken.
  if (table.IsKey(column) && m_values.Chance(0.05)) {
    if (const ModelRow* other = AnyRow(table)) return (*other)[column];
  }
  return m_values.Make(definition, table.IsKey(column));
}

/// Lets columns that refer to other tables mostly refer to rows that are there.
void Workload::ChooseReferences(const ModelTable& table, ModelRow& row, std::vector<bool>& assigned) {
  for (const RelationInfo& relation : m_model->Relations()) {
    if (relation.table != table.info.name || m_values.Chance(0.04)) continue;
    const ModelTable& parent = m_model->Table(relation.parentTable);
    const ModelRow* referred = AnyRow(parent);
    for (std::size_t i = 0; i < relation.columns.size(); ++i) {
      const std::size_t column = table.Column(relation.columns[i]);
      if (!assigned[column]) continue;
      row[column] = referred == nullptr ? Value() : (*referred)[parent.Column(relation.parentColumns[i])];
    }
  }
}

std::string Workload::TryTextThatIsTooLong(Recordset& rows, const ModelTable& table) {
  for (const ColumnSpec& column : table.info.columns) {
    if (column.type != ColumnType::Text) continue;
    try {
      rows.Fields(column.name).Value(std::string(column.length + 1U, 'x'));
      return "a text too long for " + column.name + " was taken";
    } catch (const Error& error) {
      if (error.Number() != ErrorNumber::TextTooLong) return std::string("text too long: ") + error.what();
    }
  }
  return {};
}

/// The numbers that the engine gave the row added last: the highest ones.
void Workload::ReadAutoNumbers(Database& database, const ModelTable& table, ModelRow& row) {
  for (std::size_t i = 0; i < row.size(); ++i) {
    const ColumnSpec& column = table.info.columns[i];
    if (!column.autoNumber) continue;
    const auto rows =
        database.OpenRecordset("select max([" + column.name + "]) as highest from [" + table.info.name + "]");
    row[i] = rows->Fields("highest").Value();
  }
}

/// Assigns the columns and updates; the model decides whether that must succeed.
std::string Workload::Apply(Database& database, Recordset& rows, const std::string& name, ModelRow row,
                            const ModelRow* old, const std::vector<bool>& assigned) {
  const ModelTable& table = m_model->Table(name);
  const std::string what = std::string(old == nullptr ? "adding to " : "editing ") + name + " " +
                           table.KeyOf(old == nullptr ? row : *old) + ": ";
  for (std::size_t i = 0; i < row.size(); ++i) {
    if (assigned[i]) rows.Fields(table.info.columns[i].name).Value(row[i]);
  }
  if (m_values.Chance(0.01)) {
    const std::string trouble = TryTextThatIsTooLong(rows, table);
    if (!trouble.empty()) return what + trouble;
  }
  const std::set<ErrorNumber> refusals = m_model->Refusals(name, row, old);
  try {
    rows.Update();
  } catch (const Error& error) {
    rows.CancelUpdate();
    const bool tooLong = error.Number() == ErrorNumber::RecordTooLarge && RoomOf(table, row) > kRoomThatFits;
    if (refusals.count(error.Number()) == 0 && !tooLong) {
      return what + "refused with " + std::to_string(static_cast<int>(error.Number())) + " " + error.what() +
             ", expected" + (refusals.empty() ? " success" : Names(refusals));
    }
    ++m_refused;
    return {};
  }
  if (!refusals.empty()) return what + "stored, expected" + Names(refusals);
  if (old == nullptr) ReadAutoNumbers(database, table, row);
  m_model->Store(name, row, old);
  ++(old == nullptr ? m_adds : m_edits);
  return {};
}

std::string Workload::Add(Database& database) {
  ModelTable& table = AnyTable();
  const auto rows = database.OpenRecordset("select * from [" + table.info.name + "] where " + "[" +
                                           table.info.columns[table.key[0]].name + "] is null");
  rows->AddNew();
  ModelRow row;
  std::vector<bool> assigned;
  for (std::size_t i = 0; i < table.info.columns.size(); ++i) {
    const ColumnSpec& column = table.info.columns[i];
    const bool isKey = std::find(table.key.begin(), table.key.end(), i) != table.key.end();
    assigned.push_back(!column.autoNumber && (isKey || m_values.Chance(0.85)));
    row.push_back(column.autoNumber ? Value(kNotYetNumbered)
                  : assigned[i]     ? ValueFor(table, i)
                                    : DefaultOf(column));
  }
  ChooseReferences(table, row, assigned);
  return Apply(database, *rows, table.info.name, row, nullptr, assigned);
}

std::string Workload::Edit(Database& database) {
  ModelTable& table = AnyTable();
  const ModelRow* found = AnyRow(table);
  if (found == nullptr) return {};
  const ModelRow old = *found;
  const auto rows =
      database.OpenRecordset("select * from [" + table.info.name + "] where " + table.Where(old));
  if (rows->Eof()) return "the row " + table.KeyOf(old) + " of " + table.info.name + " is not found";
  rows->Edit();
  ModelRow row = old;
  std::vector<bool> assigned(row.size());
  const double share = m_values.Chance(0.5) ? 0.15 : 0.8;
  for (std::size_t i = 0; i < row.size(); ++i) {
    const bool isKey = std::find(table.key.begin(), table.key.end(), i) != table.key.end();
    if (table.info.columns[i].autoNumber || !m_values.Chance(isKey ? 0.05 : share)) continue;
    assigned[i] = true;
    row[i] = ValueFor(table, i);
  }
  ChooseReferences(table, row, assigned);
  return Apply(database, *rows, table.info.name, row, &old, assigned);
}

std::string Workload::Delete(Database& database) {
  ModelTable& table = AnyTable();
  const ModelRow* found = AnyRow(table);
  if (found == nullptr) return {};
  const ModelRow old = *found;
  const std::string what = "deleting " + table.KeyOf(old) + " of " + table.info.name + ": ";
  const auto rows =
      database.OpenRecordset("select * from [" + table.info.name + "] where " + table.Where(old));
  if (rows->Eof()) return what + "it is not found";
  const bool referred = m_model->IsReferred(table.info.name, old);
  try {
    rows->Delete();
  } catch (const Error& error) {
    if (!referred || error.Number() != ErrorNumber::RowIsReferred) return what + error.what();
    ++m_refused;
    return {};
  }
  if (referred) return what + "rows refer to it, and it went";
  m_model->Delete(table.info.name, old);
  ++m_deletes;
  return {};
}

}  // namespace jet::test

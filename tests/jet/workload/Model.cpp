#include "tests/jet/workload/Model.h"

#include <algorithm>
#include <cstdio>
#include <stdexcept>

namespace jet::test {
namespace {

std::string Hex(const std::byte* bytes, std::size_t count) {
  std::string text;
  for (std::size_t i = 0; i < count; ++i) {
    char digits[3];
    std::snprintf(digits, sizeof digits, "%02x", std::to_integer<unsigned>(bytes[i]));
    text += digits;
  }
  return text;
}

std::string Decimals(double number) {
  char text[64];
  std::snprintf(text, sizeof text, "%.17g", number);
  return text;
}

bool HasNull(const ModelRow& row, const std::vector<std::size_t>& columns) {
  return std::any_of(columns.begin(), columns.end(),
                     [&](std::size_t column) { return row[column].IsNull(); });
}

/// Whether two rows, of one table or of two, hold the same values in columns of theirs.
bool SameValues(const ModelRow& a, const std::vector<std::size_t>& columnsOfA, const ModelRow& b,
                const std::vector<std::size_t>& columnsOfB) {
  for (std::size_t i = 0; i < columnsOfA.size(); ++i) {
    if (!(a[columnsOfA[i]] == b[columnsOfB[i]])) return false;
  }
  return true;
}

}  // namespace

std::string ExactText(const Value& value) {
  if (const auto* number = value.As<double>()) return Decimals(*number);
  if (const auto* single = value.As<float>()) return Decimals(static_cast<double>(*single));
  if (const auto* date = value.As<DateTime>()) return Decimals(date->days);
  if (const auto* bytes = value.As<Bytes>()) return "x" + Hex(bytes->data(), bytes->size());
  if (value.IsNull()) return "Null";
  return value.ToText();
}

std::size_t ModelTable::Column(const std::string& name) const {
  for (std::size_t i = 0; i < info.columns.size(); ++i) {
    if (info.columns[i].name == name) return i;
  }
  throw std::runtime_error("no column " + name);
}

std::vector<std::size_t> ModelTable::Columns(const std::vector<std::string>& names) const {
  std::vector<std::size_t> columns;
  for (const std::string& name : names)
    columns.push_back(Column(name));
  return columns;
}

std::string ModelTable::KeyOf(const ModelRow& row) const {
  std::string text;
  for (const std::size_t column : key)
    text += ExactText(row[column]) + "|";
  return text;
}

std::string ModelTable::Where(const ModelRow& row) const {
  std::string text;
  for (const std::size_t column : key) {
    if (!text.empty()) text += " and ";
    const bool quoted = row[column].As<std::string>() != nullptr || row[column].As<Guid>() != nullptr;
    text += "[" + info.columns[column].name +
            "] = " + (quoted ? "'" + row[column].ToText() + "'" : row[column].ToText());
  }
  return text;
}

Model::Model(Database& database) : m_relations(database.Relations()) {
  m_relations.erase(
      std::remove_if(m_relations.begin(), m_relations.end(), [](const auto& r) { return !r.enforced; }),
      m_relations.end());
  for (const TableInfo& info : database.Tables()) {
    if (info.isSystem) continue;
    ModelTable table;
    table.info = info;
    for (const IndexSpec& index : info.indexes) {
      for (const IndexColumn& part : index.columns) {
        if (index.primary) table.key.push_back(table.Column(part.name));
        if (index.primary || index.unique) table.keyColumns.insert(table.Column(part.name));
      }
    }
    for (const RelationInfo& relation : m_relations) {
      for (std::size_t i = 0; i < relation.columns.size(); ++i) {
        if (relation.table == info.name) table.keyColumns.insert(table.Column(relation.columns[i]));
        if (relation.parentTable == info.name)
          table.keyColumns.insert(table.Column(relation.parentColumns[i]));
      }
    }
    if (table.key.empty()) throw std::runtime_error("no primary key in " + info.name);
    ReadRows(database, table);
    m_tables.emplace(info.name, std::move(table));
  }
}

void Model::ReadRows(Database& database, ModelTable& table) {
  const auto rows = database.OpenRecordset("select * from [" + table.info.name + "]");
  std::vector<Field*> fields;
  for (const ColumnSpec& column : table.info.columns)
    fields.push_back(&rows->Fields(column.name));
  for (; !rows->Eof(); rows->MoveNext()) {
    ModelRow row;
    for (const Field* field : fields)
      row.push_back(field->Value());
    if (!table.rows.emplace(table.KeyOf(row), row).second) {
      throw std::runtime_error("key " + table.KeyOf(row) + " twice in " + table.info.name);
    }
  }
}

std::vector<std::string> Model::TableNames() const {
  std::vector<std::string> names;
  for (const auto& [name, table] : m_tables)
    names.push_back(name);
  return names;
}

std::vector<ModelRow> Model::Children(const RelationInfo& relation, const ModelRow& parent) const {
  const ModelTable& table = m_tables.at(relation.table);
  const Positions foreign = table.Columns(relation.columns);
  const Positions referred = m_tables.at(relation.parentTable).Columns(relation.parentColumns);
  std::vector<ModelRow> children;
  if (HasNull(parent, referred)) return children;
  for (const auto& [key, row] : table.rows) {
    if (SameValues(row, foreign, parent, referred)) children.push_back(row);
  }
  return children;
}

bool Model::HasParent(const RelationInfo& relation, const ModelRow& child) const {
  const ModelTable& table = m_tables.at(relation.parentTable);
  const Positions foreign = m_tables.at(relation.table).Columns(relation.columns);
  const Positions referred = table.Columns(relation.parentColumns);
  return std::any_of(table.rows.begin(), table.rows.end(),
                     [&](const auto& entry) { return SameValues(entry.second, referred, child, foreign); });
}

std::set<ErrorNumber> Model::Refusals(const std::string& name, const ModelRow& row,
                                      const ModelRow* old) const {
  const ModelTable& table = m_tables.at(name);
  std::set<ErrorNumber> refusals;
  for (std::size_t i = 0; i < row.size(); ++i) {
    const ColumnSpec& column = table.info.columns[i];
    const auto* text = row[i].As<std::string>();
    if (column.required && row[i].IsNull()) refusals.insert(ErrorNumber::NullInRequiredColumn);
    if (!column.allowZeroLength && text != nullptr && text->empty())
      refusals.insert(ErrorNumber::ZeroLengthText);
    // The only rule that the model knows.
    const auto* number = row[i].As<std::int32_t>();
    if (column.validation && column.validation->expression == ">0" && number != nullptr && *number <= 0)
      refusals.insert(ErrorNumber::RuleViolated);
  }
  const std::string oldKey = old == nullptr ? std::string() : table.KeyOf(*old);
  for (const IndexSpec& index : table.info.indexes) {
    Positions columns;
    for (const IndexColumn& part : index.columns)
      columns.push_back(table.Column(part.name));
    const bool anyNull = HasNull(row, columns);
    if (anyNull && index.primary) refusals.insert(ErrorNumber::NullInPrimaryKey);
    if (anyNull && index.required) refusals.insert(ErrorNumber::NullInRequiredColumn);
    if (anyNull || !(index.unique || index.primary)) continue;
    for (const auto& [otherKey, other] : table.rows) {
      if (SameValues(other, columns, row, columns) && (old == nullptr || otherKey != oldKey)) {
        refusals.insert(ErrorNumber::DuplicateKey);
      }
    }
  }
  for (const RelationInfo& relation : m_relations) {
    if (relation.table == name && !HasNull(row, table.Columns(relation.columns)) &&
        !HasParent(relation, row)) {
      refusals.insert(ErrorNumber::NoReferredRow);
    }
    if (relation.parentTable == name && old != nullptr && !relation.cascadeUpdates) {
      const Positions columns = table.Columns(relation.parentColumns);
      if (!SameValues(*old, columns, row, columns) && !Children(relation, *old).empty()) {
        refusals.insert(ErrorNumber::RowIsReferred);
      }
    }
  }
  return refusals;
}

bool Model::IsReferred(const std::string& name, const ModelRow& row) const {
  for (const RelationInfo& relation : m_relations) {
    if (relation.parentTable != name) continue;
    for (const ModelRow& child : Children(relation, row)) {
      if (!relation.cascadeDeletes || IsReferred(relation.table, child)) return true;
    }
  }
  return false;
}

void Model::Store(const std::string& name, const ModelRow& row, const ModelRow* old) {
  ModelTable& table = m_tables.at(name);
  if (old != nullptr) {
    table.rows.erase(table.KeyOf(*old));
    for (const RelationInfo& relation : m_relations) {
      if (relation.parentTable != name) continue;
      const Positions columns = table.Columns(relation.parentColumns);
      if (SameValues(*old, columns, row, columns)) continue;
      for (const ModelRow& child : Children(relation, *old)) {
        ModelRow changed = child;
        for (std::size_t i = 0; i < columns.size(); ++i) {
          changed[m_tables.at(relation.table).Column(relation.columns[i])] = row[columns[i]];
        }
        Store(relation.table, changed, &child);
      }
    }
  }
  table.rows.emplace(table.KeyOf(row), row);
}

void Model::Delete(const std::string& name, const ModelRow& row) {
  ModelTable& table = m_tables.at(name);
  for (const RelationInfo& relation : m_relations) {
    if (relation.parentTable != name) continue;
    for (const ModelRow& child : Children(relation, row))
      Delete(relation.table, child);
  }
  table.rows.erase(table.KeyOf(row));
}

std::string Model::Compare(Database& database) const {
  std::string differences;
  for (const auto& [name, table] : m_tables) {
    ModelTable actual = table;
    actual.rows.clear();
    ReadRows(database, actual);
    for (const auto& [key, row] : table.rows) {
      const auto found = actual.rows.find(key);
      if (found == actual.rows.end()) {
        differences += name + ": row " + key + " is missing\n";
        continue;
      }
      for (std::size_t i = 0; i < row.size(); ++i) {
        if (row[i] == found->second[i]) continue;
        differences += name + ": row " + key + " column " + table.info.columns[i].name + " is " +
                       ExactText(found->second[i]).substr(0, 80) + ", expected " +
                       ExactText(row[i]).substr(0, 80) + "\n";
      }
    }
    for (const auto& [key, row] : actual.rows) {
      if (!table.rows.contains(key)) differences += name + ": row " + key + " should not be there\n";
    }
    if (database.Table(name).rowCount != table.rows.size())
      differences += name + ": the row count is wrong\n";
    if (differences.size() > 4000) return differences;
  }
  return differences;
}

}  // namespace jet::test

// The members of Table that check a change of rows: rules of columns, unique keys, relationships.

#include <optional>
#include <vector>

#include "jet/Error.h"
#include "jet/format/SortKey.h"
#include "jet/table/Store.h"
#include "jet/table/Table.h"

namespace jet {

using format::LogicalIndexDefinition;

namespace {

// Cascades that go deeper than this go round in circles.
constexpr int kMaxCascadeDepth = 64;

}  // namespace

std::string Table::DescribeKey(std::size_t index, const RowValues& values) const {
  std::string text;
  for (const std::size_t column : m_indexes[index].columns) {
    if (!text.empty()) text += ", ";
    text += m_definition.columns[column].name + " = " +
            (values[column].IsNull() ? "Null" : values[column].ToText());
  }
  return text;
}

void Table::CheckRules(std::size_t column, const Value& value) const {
  const ColumnRules& rules = Rules(column);
  const std::string& name = m_definition.columns[column].name;
  if (value.IsNull() && rules.required) {
    throw Error(ErrorNumber::NullInRequiredColumn,
                "Column '" + name + "' of table '" + m_name + "' needs a value.");
  }
  const std::string* text = value.As<std::string>();
  if (text != nullptr && text->empty() && !rules.allowZeroLength) {
    throw Error(ErrorNumber::ZeroLengthText,
                "Column '" + name + "' of table '" + m_name + "' cannot hold an empty text.");
  }
}

void Table::CheckExpressions(const IncomingRow& row) const {
  const TableRules& rules = ReadRules();
  if (!rules.hasExpressions) return;
  if (rules.evaluated == nullptr) {
    if (m_store->RulesMaker() == nullptr) {
      throw Error(ErrorNumber::FeatureNotSupported,
                  "Table '" + m_name + "' has validation rules, and nothing to evaluate them with.");
    }
    rules.evaluated = m_store->RulesMaker()(*this);
  }
  rules.evaluated->Check(row);
}

void Table::CheckKeyNulls(std::size_t index, const RowValues& values) const {
  const bool primary = PrimaryIndex() == index;
  if (!primary && !m_indexes[index].index.Definition().IsRequired()) return;
  for (const std::size_t column : m_indexes[index].columns) {
    if (!values[column].IsNull()) continue;
    const std::string& name = m_definition.columns[column].name;
    if (primary) {
      throw Error(ErrorNumber::NullInPrimaryKey, "Column '" + name + "' of table '" + m_name +
                                                     "' is part of the primary key and needs a value.");
    }
    throw Error(ErrorNumber::NullInRequiredColumn, "Column '" + name + "' of table '" + m_name +
                                                       "' needs a value for the " +
                                                       m_indexes[index].index.Where() + ".");
  }
}

void Table::CheckUnique(std::size_t index, const KeyOfRow& key, const RowValues& values,
                        std::optional<RowId> self) const {
  const Index& unique = m_indexes[index].index;
  if (!unique.Definition().IsUnique() || key.anyNull || !key.bytes) return;
  const std::optional<RowId> present = unique.Find(*key.bytes);
  if (!present || present == self) return;
  RaiseDuplicate(index, values);
}

void Table::RaiseDuplicate(std::size_t index, const RowValues& values) const {
  throw Error(ErrorNumber::DuplicateKey, "Table '" + m_name + "' already has a row with " +
                                             DescribeKey(index, values) + "; the " +
                                             m_indexes[index].index.Where() + " allows one only.");
}

void Table::RaiseNoKey(std::size_t index, const RowValues& values) const {
  throw Error(ErrorNumber::FeatureNotSupported,
              "The row cannot be stored: the " + m_indexes[index].index.Where() + " has no known key for " +
                  DescribeKey(index, values) + ".");
}

// The table at the other end of a relationship, and which of its real indexes takes part.
const Table& Table::Partner(const LogicalIndexDefinition& relation, std::size_t& realIndex) const {
  const Table& partner = m_store->TableAt(relation.partnerTable);
  for (const LogicalIndexDefinition& index : partner.m_definition.logicalIndexes) {
    if (index.number != relation.partnerNumber) continue;
    realIndex = index.real;
    return partner;
  }
  throw Error(ErrorNumber::DamagedFile, "The relationship '" + relation.name + "' of table '" + m_name +
                                            "' is damaged: table '" + partner.m_name + "' does not know it.");
}

void Table::CheckParent(const LogicalIndexDefinition& relation, const RowValues& values) const {
  std::vector<Value> foreignKey;
  for (const std::size_t column : m_indexes[relation.real].columns) {
    if (values[column].IsNull()) return;  // a foreign key with a Null refers to nothing
    foreignKey.push_back(values[column]);
  }
  std::size_t parentIndex = 0;
  const Table& parent = Partner(relation, parentIndex);
  const Index& index = parent.IndexAt(parentIndex);
  const std::optional<KeyBytes> key = index.KeyPrefix(foreignKey);
  if (key && index.Find(*key)) return;
  throw Error(ErrorNumber::NoReferredRow, "Table '" + parent.m_name + "' has no row for " +
                                              DescribeKey(relation.real, values) + " of table '" + m_name +
                                              "'.");
}

// Rows whose columns of an index, or the first of them, have these values, none of which is Null.
std::vector<RowId> Table::RowsWithKey(std::size_t index, const std::vector<Value>& key) const {
  std::vector<RowId> rows;
  if (const std::optional<KeyBytes> prefix = IndexAt(index).KeyPrefix(key)) {
    const KeyBytes after = KeyAfter(*prefix);
    for (IndexCursor cursor = IndexAt(index).Range(*prefix, after); cursor.Next();)
      rows.push_back(cursor.Row());
    return rows;
  }
  // Another writer may know a form of such keys.
  const std::vector<std::size_t>& columns = m_indexes[index].columns;
  for (TableScan scan(*this); scan.Next();) {
    const auto has = [&](std::size_t i) {
      const Value value = Read(scan.Row(), columns[i]);
      const auto* const text = value.As<std::string>();
      const auto* const wanted = key[i].As<std::string>();
      return text != nullptr && wanted != nullptr ? format::CompareText(*text, *wanted) == 0
                                                  : value == key[i];
    };
    bool all = true;
    for (std::size_t i = 0; i < columns.size() && i < key.size() && all; ++i)
      all = has(i);
    if (all) rows.push_back(scan.Id());
  }
  return rows;
}

void Table::CheckChildren(const LogicalIndexDefinition& relation, const RowValues& oldValues,
                          const RowValues* newValues, int depth) {
  std::vector<Value> key;
  for (const std::size_t column : m_indexes[relation.real].columns) {
    if (oldValues[column].IsNull()) return;
    key.push_back(oldValues[column]);
  }
  std::size_t childIndex = 0;
  const Table& childTable = Partner(relation, childIndex);
  Table& child = m_store->TableAt(childTable.m_definition.page);
  const std::vector<RowId> rows = child.RowsWithKey(childIndex, key);
  if (rows.empty()) return;
  const bool cascades = newValues == nullptr ? relation.cascadeDeletes == 1 : relation.cascadeUpdates == 1;
  if (!cascades) {
    throw Error(ErrorNumber::RowIsReferred, "The row of table '" + m_name + "' with " +
                                                DescribeKey(relation.real, oldValues) +
                                                " cannot be deleted or get another key, because table '" +
                                                child.m_name + "' has rows that refer to it.");
  }
  if (depth >= kMaxCascadeDepth) {
    throw Error(ErrorNumber::FeatureNotSupported,
                "The relationship '" + relation.name + "' cascades too deep.");
  }
  std::vector<ColumnValue> changes;
  if (newValues != nullptr) {
    for (std::size_t i = 0; i < child.m_indexes[childIndex].columns.size(); ++i) {
      changes.push_back(
          {child.m_indexes[childIndex].columns[i], (*newValues)[m_indexes[relation.real].columns[i]]});
    }
  }
  for (const RowId row : rows) {
    if (newValues != nullptr) {
      child.UpdateRow(row, changes, depth + 1);
    } else if (child.Fetch(row)) {  // an earlier cascade may have taken it
      child.DeleteRow(row, depth + 1);
    }
  }
}

}  // namespace jet

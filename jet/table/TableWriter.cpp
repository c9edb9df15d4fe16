// The members of Table that change rows.

#include <algorithm>
#include <random>
#include <utility>

#include "jet/Error.h"
#include "jet/format/Bytes.h"
#include "jet/format/IndexKey.h"
#include "jet/format/RowCodec.h"
#include "jet/format/SortKey.h"
#include "jet/format/TableDefinitionLayout.h"
#include "jet/format/TextCodec.h"
#include "jet/format/ValueCodec.h"
#include "jet/table/IndexEditor.h"
#include "jet/table/LongValues.h"
#include "jet/table/Store.h"
#include "jet/table/Table.h"

namespace jet {

using format::ColumnDefinition;
using format::LogicalIndexDefinition;
namespace definition_page = format::definition_page;

namespace {

// Cascades that go deeper than this go round in circles.
constexpr int kMaxCascadeDepth = 64;

constexpr std::size_t kUsualKey = 32;  // most keys are shorter

Guid RandomGuid() {
  static thread_local std::random_device device;
  Guid guid;
  for (std::uint8_t& byte : guid.bytes)
    byte = static_cast<std::uint8_t>(device());
  return guid;
}

}  // namespace

Table::RowValues Table::IndexedValues(const RowRef& row) const {
  RowValues values(m_definition.columns.size());
  for (const TableIndex& index : m_indexes) {
    for (const std::size_t column : index.columns) {
      if (values[column].IsNull()) values[column] = Read(row, column);
    }
  }
  return values;
}

Table::KeyOfRow Table::KeyFor(const TableIndex& index, const RowValues& values) const {
  KeyOfRow key;
  bool allNull = true;
  for (const std::size_t column : index.columns)
    (values[column].IsNull() ? key.anyNull : allNull) = values[column].IsNull();
  const format::IndexDefinition& definition = index.index.Definition();
  key.hasEntry = !(allNull && definition.IgnoresNulls());
  if (!key.hasEntry) return key;
  KeyBytes& bytes = key.bytes.emplace();
  bytes.reserve(kUsualKey);
  for (std::size_t i = 0; i < index.columns.size() && i < definition.columns.size(); ++i) {
    const std::size_t column = index.columns[i];
    if (format::AppendKeyColumn(bytes, values[column], m_definition.columns[column],
                                definition.columns[i].ascending))
      continue;
    key.bytes.reset();
    break;
  }
  return key;
}

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
  throw Error(ErrorNumber::DuplicateKey, "Table '" + m_name + "' already has a row with " +
                                             DescribeKey(index, values) + "; the " + unique.Where() +
                                             " allows one only.");
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

// The bytes of a value in a row, in `buffer`.
std::span<const std::byte> Table::StoredValue(const ColumnDefinition& column, const Value& value,
                                              Bytes& buffer) {
  buffer.clear();
  if (!column.IsLongValue()) {
    format::AppendValue(column, value, buffer);
    return buffer;
  }
  LongValues values(m_store->Pages(), m_store->Allocator(), m_definition, column);
  if (const std::string* text = value.As<std::string>())
    return buffer = values.Write(format::EncodeText(*text, column.compressed));
  if (const Bytes* bytes = value.As<Bytes>()) return buffer = values.Write(*bytes);
  throw Error(ErrorNumber::CannotConvert,
              "The value does not fit column '" + column.name + "' of table '" + m_name + "'.");
}

void Table::AddEntry(std::size_t index, KeyOfRow&& key, RowId id) {
  if (!key.hasEntry) return;
  IndexEditor editor(m_store->Pages(), m_store->Allocator(), m_indexes[index].index, m_definition.page);
  if (!editor.Insert(*std::move(key.bytes), id)) return;
  const MutablePage page = m_store->Pages().Change(m_definition.page);
  std::byte* const count = page.Data() + definition_page::DistinctKeysAt(index);
  format::StoreU32(count, format::LoadU32(count) + 1);
}

void Table::RemoveEntry(std::size_t index, const KeyOfRow& key, RowId id) {
  if (!key.hasEntry) return;
  IndexEditor editor(m_store->Pages(), m_store->Allocator(), m_indexes[index].index, m_definition.page);
  if (key.bytes && editor.Erase(*key.bytes, id)) return;
  // Another writer may form a key in another way than we do.
  if (editor.EraseRow(id)) return;
  throw Error(ErrorNumber::DamagedFile, "The " + m_indexes[index].index.Where() +
                                            " is damaged: it has no entry for a row of the table.");
}

void Table::AddToRowCount(std::int32_t difference) {
  const MutablePage page = m_store->Pages().Change(m_definition.page);
  std::byte* const count = page.Data() + definition_page::kRowCount;
  const std::uint32_t rows = format::LoadU32(count);
  if (difference < 0 && rows == 0) {
    throw Error(ErrorNumber::DamagedFile,
                "Table '" + m_name + "' is damaged: it has more rows than it counts.");
  }
  format::StoreU32(count, rows + static_cast<std::uint32_t>(difference));
}

void Table::GiveAutomaticValues(RowValues& values, std::vector<bool>& given) {
  for (std::size_t c = 0; c < values.size(); ++c) {
    const ColumnDefinition& column = m_definition.columns[c];
    if (column.IsAutoGuid() && values[c].IsNull()) {
      values[c] = RandomGuid();
      given[c] = true;
    }
    if (!column.IsAutoNumber() || column.type != ColumnType::Long) continue;
    const MutablePage page = m_store->Pages().Change(m_definition.page);
    std::byte* const last = page.Data() + definition_page::kLastAutoNumber;
    const auto lastGiven = static_cast<std::int32_t>(format::LoadU32(last));
    if (const auto* number = values[c].As<std::int32_t>()) {
      if (*number > lastGiven) format::StoreU32(last, static_cast<std::uint32_t>(*number));
      continue;
    }
    if (lastGiven == INT32_MAX) {
      throw Error(ErrorNumber::CannotConvert,
                  "Table '" + m_name + "' has no number left for column '" + column.name + "'.");
    }
    format::StoreU32(last, static_cast<std::uint32_t>(lastGiven + 1));
    values[c] = lastGiven + 1;
    given[c] = true;
  }
}

RowId Table::Insert(std::span<const ColumnValue> changes) {
  RowValues values(m_definition.columns.size());
  std::vector<bool> given(values.size());
  for (std::size_t c = 0; c < values.size(); ++c) {
    if (m_definition.columns[c].type == ColumnType::YesNo) values[c] = false;
  }
  for (const ColumnValue& change : changes) {
    values[change.column] = change.value;
    given[change.column] = true;
  }
  GiveAutomaticValues(values, given);
  for (std::size_t c = 0; c < values.size(); ++c)
    CheckRules(c, values[c]);

  std::vector<KeyOfRow> keys;
  keys.reserve(m_indexes.size());
  for (std::size_t i = 0; i < m_indexes.size(); ++i) {
    CheckKeyNulls(i, values);
    keys.push_back(KeyFor(m_indexes[i], values));
    if (keys.back().hasEntry && !keys.back().bytes) {
      throw Error(ErrorNumber::FeatureNotSupported,
                  "The row cannot be stored: the " + m_indexes[i].index.Where() + " has no known key for " +
                      DescribeKey(i, values) + ".");
    }
    CheckUnique(i, keys.back(), values, std::nullopt);
  }

  m_builder.Begin();
  Bytes stored;
  for (std::size_t c = 0; c < values.size(); ++c) {
    if (const bool* flag = values[c].As<bool>()) {
      m_builder.SetYesNo(c, *flag);
    } else if (given[c] && !values[c].IsNull()) {
      m_builder.Set(c, StoredValue(m_definition.columns[c], values[c], stored));
    }
  }
  const RowId id = m_rows->Insert(m_builder.Build());
  for (std::size_t i = 0; i < m_indexes.size(); ++i)
    AddEntry(i, std::move(keys[i]), id);
  AddToRowCount(1);
  // Only now, for a row may refer to itself.
  for (const LogicalIndexDefinition& relation : m_definition.logicalIndexes) {
    if (relation.side == LogicalIndexDefinition::Side::Child) CheckParent(relation, values);
  }
  return id;
}

void Table::Update(RowId id, std::span<const ColumnValue> values) {
  UpdateRow(id, values, 0);
}
void Table::Delete(RowId id) {
  DeleteRow(id, 0);
}

void Table::UpdateRow(RowId id, std::span<const ColumnValue> changes, int depth) {
  std::optional<RowRef> row = Fetch(id);
  if (!row) throw Error(ErrorNumber::RowDeleted, "The row of table '" + m_name + "' was deleted.");
  const RowValues oldValues = IndexedValues(*row);
  const Bytes oldBytes(row->Bytes().begin(), row->Bytes().end());
  row.reset();
  RowValues values = oldValues;
  for (const ColumnValue& change : changes) {
    CheckRules(change.column, change.value);
    values[change.column] = change.value;
  }

  struct KeyChange {
    std::size_t index;
    KeyOfRow before;
    KeyOfRow after;
  };
  std::vector<KeyChange> keyChanges;
  for (std::size_t i = 0; i < m_indexes.size(); ++i) {
    const auto touches = [&](const ColumnValue& change) {
      return std::find(m_indexes[i].columns.begin(), m_indexes[i].columns.end(), change.column) !=
             m_indexes[i].columns.end();
    };
    if (std::none_of(changes.begin(), changes.end(), touches)) continue;
    KeyChange key{i, KeyFor(m_indexes[i], oldValues), KeyFor(m_indexes[i], values)};
    if (key.before.hasEntry == key.after.hasEntry && key.before.bytes == key.after.bytes &&
        (key.after.bytes || !key.after.hasEntry)) {
      continue;
    }
    CheckKeyNulls(i, values);
    if (key.after.hasEntry && !key.after.bytes) {
      throw Error(ErrorNumber::FeatureNotSupported,
                  "The row cannot be stored: the " + m_indexes[i].index.Where() + " has no known key for " +
                      DescribeKey(i, values) + ".");
    }
    CheckUnique(i, key.after, values, id);
    keyChanges.push_back(std::move(key));
  }
  m_builder.Begin(oldBytes);
  Bytes stored;
  for (const ColumnValue& change : changes) {
    const ColumnDefinition& column = m_definition.columns[change.column];
    if (column.IsLongValue()) {
      const format::RowField old = format::FieldOf(oldBytes, column, m_definition.variableColumnsEver != 0);
      if (old.present)
        LongValues(m_store->Pages(), m_store->Allocator(), m_definition, column).Free(old.bytes);
    }
    if (const bool* flag = change.value.As<bool>()) {
      m_builder.SetYesNo(change.column, *flag);
    } else if (change.value.IsNull()) {
      m_builder.SetNull(change.column);
    } else {
      m_builder.Set(change.column, StoredValue(column, change.value, stored));
    }
  }
  m_rows->Replace(id, m_builder.Build());
  for (KeyChange& key : keyChanges) {
    RemoveEntry(key.index, key.before, id);
    AddEntry(key.index, std::move(key.after), id);
  }

  // Only now, for a row may refer to itself, by its old key or its new one. What refers to the old key comes
  // along before the row's own parents are looked for.
  const auto keyChanged = [&](std::size_t index) {
    return std::any_of(keyChanges.begin(), keyChanges.end(),
                       [&](const KeyChange& key) { return key.index == index; });
  };
  for (const LogicalIndexDefinition& relation : m_definition.logicalIndexes) {
    if (relation.side == LogicalIndexDefinition::Side::Parent && keyChanged(relation.real))
      CheckChildren(relation, oldValues, &values, depth);
  }
  for (const LogicalIndexDefinition& relation : m_definition.logicalIndexes) {
    if (relation.side == LogicalIndexDefinition::Side::Child && keyChanged(relation.real))
      CheckParent(relation, values);
  }
}

void Table::DeleteRow(RowId id, int depth) {
  const std::optional<RowRef> row = Fetch(id);
  if (!row) throw Error(ErrorNumber::RowDeleted, "The row of table '" + m_name + "' was deleted.");
  const RowValues values = IndexedValues(*row);
  const Bytes bytes(row->Bytes().begin(), row->Bytes().end());
  for (std::size_t i = 0; i < m_indexes.size(); ++i)
    RemoveEntry(i, KeyFor(m_indexes[i], values), id);
  for (const ColumnDefinition& column : m_definition.columns) {
    if (!column.IsLongValue()) continue;
    const format::RowField field = format::FieldOf(bytes, column, m_definition.variableColumnsEver != 0);
    if (field.present)
      LongValues(m_store->Pages(), m_store->Allocator(), m_definition, column).Free(field.bytes);
  }
  m_rows->Remove(id);
  AddToRowCount(-1);
  // Only now: the row may refer to itself, also by way of others.
  for (const LogicalIndexDefinition& relation : m_definition.logicalIndexes) {
    if (relation.side == LogicalIndexDefinition::Side::Parent)
      CheckChildren(relation, values, nullptr, depth);
  }
}

}  // namespace jet

// The members of Table that change rows.

#include <algorithm>
#include <cassert>
#include <optional>
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

constexpr std::size_t kUsualKey = 32;  // most keys are shorter

Guid RandomGuid() {
  std::random_device device;
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
      if (values[column].IsNull()) values[column] = ReadForKey(row, column);
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
    return buffer = values.Write(format::EncodeText(*text, column.compressed, format::LoneSurrogates::Keep));
  if (const Bytes* bytes = value.As<Bytes>()) return buffer = values.Write(*bytes);
  throw Error(ErrorNumber::CannotConvert,
              "The value does not fit column '" + column.name + "' of table '" + m_name + "'.");
}

void Table::AddEntry(std::size_t index, KeyOfRow&& key, RowId id) {
  if (!key.hasEntry) return;
  IndexEditor editor(m_store->Pages(), m_store->Allocator(), m_indexes[index].index, m_definition.page);
  if (editor.Insert(*std::move(key.bytes), id)) CountKey(index);
}

void Table::CountKey(std::size_t index) {
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

std::optional<std::int32_t> Table::GiveAutomaticValues(NewRow& row) const {
  std::optional<std::int32_t> lastGiven;
  for (std::size_t c = 0; c < row.values.size(); ++c) {
    const ColumnDefinition& column = m_definition.columns[c];
    Value& value = row.values[c];
    if (column.IsAutoGuid() && value.IsNull()) {
      value = RandomGuid();
      row.given[c] = true;
    }
    if (!column.IsAutoNumber() || column.type != ColumnType::Long) continue;
    if (!lastGiven) {
      const PageHandle page = m_store->Pages().Get(m_definition.page);
      lastGiven = static_cast<std::int32_t>(format::LoadU32(page.Data() + definition_page::kLastAutoNumber));
    }
    if (const auto* number = value.As<std::int32_t>()) {
      lastGiven = std::max(*lastGiven, *number);
      continue;
    }
    if (lastGiven == INT32_MAX) {
      throw Error(ErrorNumber::CannotConvert,
                  "Table '" + m_name + "' has no number left for column '" + column.name + "'.");
    }
    value = ++*lastGiven;
    row.given[c] = true;
  }
  return lastGiven;
}

Table::NewRow Table::MakeRow(std::vector<ColumnValue>&& changes) const {
  NewRow row{RowValues(m_definition.columns.size()), std::vector<bool>(m_definition.columns.size()), {}};
  for (std::size_t c = 0; c < row.values.size(); ++c) {
    if (m_definition.columns[c].type == ColumnType::YesNo) row.values[c] = false;
  }
  for (ColumnValue& change : changes) {
    row.values[change.column] = std::move(change.value);
    row.given[change.column] = true;
  }
  row.lastAutoNumber = GiveAutomaticValues(row);
  for (std::size_t c = 0; c < row.values.size(); ++c)
    CheckRules(c, row.values[c]);
  if (ReadRules().hasExpressions)
    CheckExpressions({[&](std::size_t column) { return row.values[column]; }, row.given, true});
  return row;
}

std::vector<Table::KeyOfRow> Table::KeysOf(const NewRow& row) const {
  std::vector<KeyOfRow> keys;
  keys.reserve(m_indexes.size());
  for (std::size_t i = 0; i < m_indexes.size(); ++i) {
    CheckKeyNulls(i, row.values);
    keys.push_back(KeyFor(m_indexes[i], row.values));
    if (keys.back().hasEntry && !keys.back().bytes) RaiseNoKey(i, row.values);
  }
  return keys;
}

const Bytes& Table::BuildRow(const NewRow& row) {
  m_builder.Begin();
  for (std::size_t c = 0; c < row.values.size(); ++c) {
    if (const bool* flag = row.values[c].As<bool>()) {
      m_builder.SetYesNo(c, *flag);
    } else if (row.given[c] && !row.values[c].IsNull()) {
      m_builder.Set(c, StoredValue(m_definition.columns[c], row.values[c], m_stored));
    }
  }
  return m_builder.Build();
}

void Table::CountRow(const NewRow& row) {
  AddToRowCount(1);
  if (!row.lastAutoNumber) return;
  const MutablePage page = m_store->Pages().Change(m_definition.page);
  format::StoreU32(page.Data() + definition_page::kLastAutoNumber,
                   static_cast<std::uint32_t>(*row.lastAutoNumber));
}

bool Table::RefersToItself(const LogicalIndexDefinition& relation) const {
  return relation.partnerTable == m_definition.page;
}

// Adds a row where nothing but the bytes of pages with room has to change. Until all of them are known
// nothing is written, and from then on nothing can fail, so that it needs no separate change unit to be
// whole or not at all. None, and nothing changed, when the row has to be added the long way.
std::optional<RowId> Table::InsertInPlace(const NewRow& row) {
  for (std::size_t c = 0; c < row.values.size(); ++c) {
    if (m_definition.columns[c].IsLongValue() && !row.values[c].IsNull()) return std::nullopt;
  }
  std::vector<KeyOfRow> keys = KeysOf(row);
  const Bytes& bytes = BuildRow(row);
  const std::optional<RowId> id = m_rows->LikelyPlace(bytes.size());
  if (!id) return std::nullopt;

  struct NewEntry {
    std::size_t index;
    format::EntryBytes bytes;
    LeafRoom room;
  };
  std::vector<NewEntry> entries;
  entries.reserve(keys.size());
  for (std::size_t i = 0; i < keys.size(); ++i) {
    if (!keys[i].hasEntry) continue;
    format::EntryBytes entry = MakeEntry(*std::move(keys[i].bytes), *id);
    const Index& index = m_indexes[i].index;
    std::optional<LeafRoom> room =
        IndexEditor(m_store->Pages(), m_store->Allocator(), index, m_definition.page).FindRoom(entry);
    if (!room) return std::nullopt;
    if (index.Definition().IsUnique() && !keys[i].anyNull) {
      if (room->isAtEdge) return std::nullopt;
      if (!room->isNewKey) RaiseDuplicate(i, row.values);
    }
    // Two indexes of a damaged file may share their pages.
    const auto isTaken = [&](const NewEntry& other) {
      return other.room.leaf.Number() == room->leaf.Number();
    };
    if (std::any_of(entries.begin(), entries.end(), isTaken)) return std::nullopt;
    entries.push_back({i, std::move(entry), *std::move(room)});
  }
  for (const LogicalIndexDefinition& relation : m_definition.logicalIndexes) {
    if (relation.side != LogicalIndexDefinition::Side::Child) continue;
    if (RefersToItself(relation)) return std::nullopt;
    CheckParent(relation, row.values);
  }
  const MutablePage definition = m_store->Pages().Change(m_definition.page);
  m_rows->Put(*id, bytes);
  for (const NewEntry& entry : entries) {
    [[maybe_unused]] const bool fits = format::IndexPage(entry.room.leaf.Bytes(), entry.room.leaf.Number())
                                           .Insert(entry.room.place, entry.bytes);
    assert(fits);
    if (entry.room.isNewKey) CountKey(entry.index);
  }
  CountRow(row);
  return id;
}

RowId Table::InsertAnywhere(const NewRow& row) {
  std::vector<KeyOfRow> keys = KeysOf(row);
  for (std::size_t i = 0; i < m_indexes.size(); ++i)
    CheckUnique(i, keys[i], row.values, std::nullopt);
  const RowId id = m_rows->Insert(BuildRow(row));
  for (std::size_t i = 0; i < m_indexes.size(); ++i)
    AddEntry(i, std::move(keys[i]), id);
  CountRow(row);
  // Only now, for a row may refer to itself.
  for (const LogicalIndexDefinition& relation : m_definition.logicalIndexes) {
    if (relation.side == LogicalIndexDefinition::Side::Child) CheckParent(relation, row.values);
  }
  return id;
}

RowId Table::Insert(std::vector<ColumnValue> changes) {
  const NewRow row = MakeRow(std::move(changes));
  std::optional<ChangeUnit> unit;
  if (!m_store->Pages().InUnit()) unit.emplace(m_store->Pages());
  std::optional<RowId> id = InsertInPlace(row);
  if (!id) {
    if (!unit) unit.emplace(m_store->Pages());
    id = InsertAnywhere(row);
  }
  if (unit) unit->Commit();
  return *id;
}

// The number given last is never below one in the table.
void Table::RaiseLastAutoNumber(std::span<const ColumnValue> changes) {
  for (const ColumnValue& change : changes) {
    const ColumnDefinition& column = m_definition.columns[change.column];
    const auto* const number = change.value.As<std::int32_t>();
    if (number == nullptr || !column.IsAutoNumber() || column.type != ColumnType::Long) continue;
    const PageHandle page = m_store->Pages().Get(m_definition.page);
    const auto last =
        static_cast<std::int32_t>(format::LoadU32(page.Data() + definition_page::kLastAutoNumber));
    if (*number <= last) continue;
    format::StoreU32(m_store->Pages().Change(m_definition.page).Data() + definition_page::kLastAutoNumber,
                     static_cast<std::uint32_t>(*number));
  }
}

void Table::CheckExpressions(const RowRef& old, std::span<const ColumnValue> changes) const {
  std::vector<bool> assigned(m_definition.columns.size());
  for (const ColumnValue& change : changes)
    assigned[change.column] = true;
  const auto read = [&](std::size_t column) {
    if (!assigned[column]) return Read(old, column);
    return std::ranges::find(changes, column, &ColumnValue::column)->value;
  };
  CheckExpressions({read, assigned, false});
}

void Table::Update(RowId id, std::span<const ColumnValue> values) {
  ChangeUnit unit(m_store->Pages());
  UpdateRow(id, values, 0);
  unit.Commit();
}

void Table::Delete(RowId id) {
  ChangeUnit unit(m_store->Pages());
  DeleteRow(id, 0);
  unit.Commit();
}

void Table::UpdateRow(RowId id, std::span<const ColumnValue> changes, int depth) {
  std::optional<RowRef> row = Fetch(id);
  if (!row) throw Error(ErrorNumber::RowDeleted, "The row of table '" + m_name + "' was deleted.");
  const RowValues oldValues = IndexedValues(*row);
  const Bytes oldBytes(row->Bytes().begin(), row->Bytes().end());
  RowValues values = oldValues;
  for (const ColumnValue& change : changes) {
    CheckRules(change.column, change.value);
    values[change.column] = change.value;
  }
  if (ReadRules().hasExpressions) CheckExpressions(*row, changes);
  row.reset();

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
    if (key.after.hasEntry && !key.after.bytes) RaiseNoKey(i, values);
    CheckUnique(i, key.after, values, id);
    keyChanges.push_back(std::move(key));
  }
  m_builder.Begin(oldBytes);
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
      m_builder.Set(change.column, StoredValue(column, change.value, m_stored));
    }
  }
  m_rows->Replace(id, m_builder.Build());
  RaiseLastAutoNumber(changes);
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

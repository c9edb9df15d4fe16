#include "jet/format/TableDefinitionCodec.h"

#include <algorithm>
#include <limits>
#include <set>
#include <string>

#include "jet/Error.h"
#include "jet/format/Bytes.h"
#include "jet/format/NameOrder.h"
#include "jet/format/PageLayout.h"
#include "jet/format/TableDefinitionLayout.h"
#include "jet/format/TextCodec.h"

namespace jet::format {
namespace {

using namespace definition_page;

Error Damaged(const std::string& why) {
  return Error(ErrorNumber::DamagedFile, "The definition of a table is damaged: " + why + ".");
}

std::string ReadName(ByteReader& reader) {
  const std::size_t size = reader.U16();
  const std::string name = DecodePlainText(reader.Take(size));
  if (name.empty()) throw Damaged("a name is empty");
  return name;
}

/// Fails when two of the names are one.
template <typename Named>
void CheckNamesDiffer(const std::vector<Named>& list, const char* what) {
  std::set<std::string> seen;
  for (const Named& item : list) {
    if (!seen.insert(FoldName(item.name)).second)
      throw Damaged(std::string("two ") + what + " are called '" + item.name + "'");
  }
}

ColumnDefinition ReadColumn(ByteReader& reader) {
  const std::byte* const at = reader.Take(kColumnSize).data();
  ColumnDefinition column;
  column.type = static_cast<ColumnType>(LoadU8(at));
  column.number = LoadU16(at + 5);
  column.variableIndex = LoadU16(at + 7);
  column.ordinal = LoadU16(at + 9);
  if (column.type == ColumnType::Decimal) {
    column.precision = LoadU8(at + 11);
    column.scale = LoadU8(at + 12);
  } else {
    column.sortLocale = LoadU16(at + 11);
  }
  column.sortVariant = LoadU8(at + 13);
  column.sortVersion = LoadU8(at + 14);
  column.flags = LoadU8(at + 15);
  column.compressed = (LoadU8(at + 16) & kCompressed) != 0;
  column.otherFlags = static_cast<std::uint8_t>(LoadU8(at + 16) & ~kCompressed);
  column.fixedOffset = LoadU16(at + 21);
  column.size = LoadU16(at + 23);
  return column;
}

void WriteColumn(const ColumnDefinition& column, std::byte* at) {
  StoreU8(at, static_cast<std::uint8_t>(column.type));
  StoreU32(at + 1, kMarkerValue);
  StoreU16(at + 5, column.number);
  StoreU16(at + 7, column.variableIndex);
  StoreU16(at + 9, column.ordinal);
  if (column.type == ColumnType::Decimal) {
    StoreU8(at + 11, column.precision);
    StoreU8(at + 12, column.scale);
  } else {
    StoreU16(at + 11, column.sortLocale);
  }
  StoreU8(at + 13, column.sortVariant);
  StoreU8(at + 14, column.sortVersion);
  StoreU8(at + 15, column.flags);
  StoreU8(at + 16, static_cast<std::uint8_t>(column.otherFlags | (column.compressed ? kCompressed : 0)));
  StoreU16(at + 21, column.IsFixed() ? column.fixedOffset : std::uint16_t{0});
  StoreU16(at + 23, column.size);
}

IndexDefinition ReadRealIndex(ByteReader& reader) {
  const std::byte* const at = reader.Take(kRealIndexSize).data();
  IndexDefinition index;
  for (std::size_t i = 0; i < kMaxIndexColumns; ++i) {
    const std::uint16_t column = LoadU16(at + 4 + 3 * i);
    if (column != kNoColumn) index.columns.push_back({column, (LoadU8(at + 6 + 3 * i) & 1) != 0});
  }
  index.usageMap = LoadU32(at + 34);
  index.root = LoadU32(at + kIndexRoot);
  index.flags = LoadU8(at + 46);
  return index;
}

void WriteRealIndex(const IndexDefinition& index, std::byte* at) {
  if (index.columns.empty() || index.columns.size() > kMaxIndexColumns) {
    throw Error(ErrorNumber::InvalidDefinition, "An index has 1 to 10 columns.");
  }
  StoreU32(at, kIndexMarkerValue);
  for (std::size_t i = 0; i < kMaxIndexColumns; ++i) {
    const bool used = i < index.columns.size();
    StoreU16(at + 4 + 3 * i, used ? index.columns[i].column : kNoColumn);
    StoreU8(at + 6 + 3 * i, used && index.columns[i].ascending ? 1 : 0);
  }
  StoreU32(at + 34, index.usageMap);
  StoreU32(at + kIndexRoot, index.root);
  StoreU8(at + 46, index.flags);
}

LogicalIndexDefinition ReadLogicalIndex(ByteReader& reader) {
  const std::byte* const at = reader.Take(kLogicalIndexSize).data();
  LogicalIndexDefinition index;
  index.number = LoadU32(at + 4);
  index.real = LoadU32(at + 8);
  const std::uint8_t side = LoadU8(at + 12);
  index.partnerNumber = LoadU32(at + 13);
  index.partnerTable = LoadU32(at + 17);
  index.cascadeUpdates = LoadU8(at + 21);
  index.cascadeDeletes = LoadU8(at + 22);
  const std::uint8_t kind = LoadU8(at + 23);
  if (side > 2) throw Damaged("an index stands on an unknown side of a relationship");
  if (kind > 2) throw Damaged("an index is of an unknown kind");
  index.side = static_cast<LogicalIndexDefinition::Side>(side);
  index.kind = static_cast<LogicalIndexDefinition::Kind>(kind);
  return index;
}

void WriteLogicalIndex(const LogicalIndexDefinition& index, std::byte* at) {
  StoreU32(at, kMarkerValue);
  StoreU32(at + 4, index.number);
  StoreU32(at + 8, index.real);
  StoreU8(at + 12, static_cast<std::uint8_t>(index.side));
  StoreU32(at + 13, index.partnerNumber);
  StoreU32(at + 17, index.partnerTable);
  StoreU8(at + 21, index.cascadeUpdates);
  StoreU8(at + 22, index.cascadeDeletes);
  StoreU8(at + 23, static_cast<std::uint8_t>(index.kind));
}

void CheckColumn(const TableDefinition& table, const ColumnDefinition& column) {
  const std::string who = "the column '" + column.name + "' ";
  if (column.number >= table.columnsEver) throw Damaged(who + "has a number that the table never gave");
  if (column.type == ColumnType::YesNo) return;
  if (!column.IsFixed()) {
    if (column.variableIndex >= table.variableColumnsEver)
      throw Damaged(who + "has no place among the variable ones");
    return;
  }
  if (column.IsLongValue()) throw Damaged(who + "is of fixed size, which its type cannot be");
  const std::uint16_t size = FixedSizeOf(column.type);
  if (size != 0 && column.size != size) throw Damaged(who + "has not the size of its type");
  if (std::size_t{column.fixedOffset} + column.size > kMaxRowSize)
    throw Damaged(who + "lies outside of any row");
}

void CheckColumns(const TableDefinition& table) {
  CheckNamesDiffer(table.columns, "columns");
  std::set<std::uint16_t> numbers;
  std::set<std::uint16_t> variable;
  std::vector<std::pair<std::size_t, std::size_t>> rooms;
  for (const ColumnDefinition& column : table.columns) {
    CheckColumn(table, column);
    if (!numbers.insert(column.number).second)
      throw Damaged("two columns have the number " + std::to_string(column.number));
    if (column.type == ColumnType::YesNo) continue;
    if (column.IsFixed()) {
      rooms.emplace_back(column.fixedOffset, column.fixedOffset + column.size);
    } else if (!variable.insert(column.variableIndex).second) {
      throw Damaged("two columns share a place among the variable ones");
    }
  }
  std::sort(rooms.begin(), rooms.end());
  for (std::size_t i = 1; i < rooms.size(); ++i) {
    if (rooms[i - 1].second > rooms[i].first) throw Damaged("two columns share their room in the row");
  }
}

void CheckIndexes(const TableDefinition& table) {
  for (const IndexDefinition& index : table.indexes) {
    if (index.columns.empty()) throw Damaged("an index has no columns");
    for (const IndexColumnDefinition& part : index.columns) {
      const bool known =
          std::any_of(table.columns.begin(), table.columns.end(),
                      [&](const ColumnDefinition& column) { return column.number == part.column; });
      if (!known)
        throw Damaged("an index is on a column that does not exist, number " + std::to_string(part.column));
    }
  }
  CheckNamesDiffer(table.logicalIndexes, "indexes");
  std::set<std::uint32_t> numbers;
  for (const LogicalIndexDefinition& index : table.logicalIndexes) {
    if (index.real >= table.indexes.size())
      throw Damaged("the index '" + index.name + "' names a tree that does not exist");
    if (!numbers.insert(index.number).second)
      throw Damaged("two indexes have the number " + std::to_string(index.number));
  }
}

/// A count of the definition, which must not pass its limit.
std::size_t Bounded(std::size_t count, std::size_t limit, const char* what) {
  if (count > limit) throw Damaged(std::string("it counts ") + std::to_string(count) + " " + what);
  return count;
}

std::size_t NameSize(const std::string& name) {
  return 2 + 2 * Utf16Length(name);
}

void AppendName(const std::string& name, Bytes& into) {
  const std::u16string units = Utf8ToUtf16(name);
  std::size_t at = into.size();
  into.resize(at + 2 + 2 * units.size());
  StoreU16(into.data() + at, static_cast<std::uint16_t>(2 * units.size()));
  for (const char16_t unit : units)
    StoreU16(into.data() + (at += 2), unit);
}

/// Room for a record at the end.
std::byte* Grow(Bytes& into, std::size_t size) {
  into.resize(into.size() + size);
  return into.data() + into.size() - size;
}

Bytes EncodeHead(const TableDefinition& table, const DefinitionCounts& counts) {
  Bytes stream(kIndexCounts);
  StoreU8(stream.data(), page_type::kTableDefinition);
  StoreU8(stream.data() + 1, page_type::kSecondByte);
  StoreU32(stream.data() + kMarker, kMarkerValue);
  StoreU32(stream.data() + kRowCount, counts.rows);
  StoreU32(stream.data() + kLastAutoNumber, counts.lastAutoNumber);
  StoreU32(stream.data() + kAutoNumberStep, 1);
  StoreU8(stream.data() + kKind, table.isSystem ? kSystemTable : kUserTable);
  StoreU16(stream.data() + kColumnsEver, table.columnsEver);
  StoreU16(stream.data() + kVariableColumnsEver, table.variableColumnsEver);
  StoreU16(stream.data() + kColumnCount, static_cast<std::uint16_t>(table.columns.size()));
  StoreU32(stream.data() + kLogicalIndexCount, static_cast<std::uint32_t>(table.logicalIndexes.size()));
  StoreU32(stream.data() + kRealIndexCount, static_cast<std::uint32_t>(table.indexes.size()));
  StoreU32(stream.data() + kOwnedPages, table.ownedPages);
  StoreU32(stream.data() + kFreePages, table.freePages);
  for (std::size_t i = 0; i < table.indexes.size(); ++i) {
    std::byte* const at = Grow(stream, kIndexCountsSize);
    if (i >= counts.indexes.size()) continue;
    StoreU32(at, counts.indexes[i].entriesWhenBuilt);
    StoreU32(at + kDistinctKeys, counts.indexes[i].distinctKeys);
  }
  return stream;
}

}  // namespace

std::uint16_t FixedSizeOf(ColumnType type) {
  switch (type) {
    case ColumnType::Byte:
      return 1;
    case ColumnType::Integer:
      return 2;
    case ColumnType::Long:
    case ColumnType::Single:
      return 4;
    case ColumnType::Currency:
    case ColumnType::Double:
    case ColumnType::DateTime:
      return 8;
    case ColumnType::Guid:
      return 16;
    case ColumnType::Decimal:
      return 17;
    default:
      return 0;
  }
}

TableDefinition DecodeTableDefinition(std::span<const std::byte> stream, std::uint32_t page) {
  if (stream.size() < kIndexCounts) throw Damaged("it is too short");
  const std::byte* const head = stream.data();
  if (LoadU8(head) != page_type::kTableDefinition) throw Damaged("its page is not one of a definition");
  if (std::uint64_t{LoadU32(head + kLength)} + kHeadSize != stream.size())
    throw Damaged("its length is wrong");
  if (LoadU32(head + kMarker) != kMarkerValue) throw Damaged("it does not begin as definitions do");
  TableDefinition table;
  table.page = page;
  const std::uint8_t kind = LoadU8(head + kKind);
  if (kind != kSystemTable && kind != kUserTable) throw Damaged("it is of an unknown kind of table");
  table.isSystem = kind == kSystemTable;
  table.columnsEver = LoadU16(head + kColumnsEver);
  table.variableColumnsEver = LoadU16(head + kVariableColumnsEver);
  Bounded(table.columnsEver, kMaxColumnsEver, "columns ever made");
  Bounded(table.variableColumnsEver, table.columnsEver, "variable columns ever made");
  const std::size_t columns = Bounded(LoadU16(head + kColumnCount), kMaxColumns, "columns");
  const std::size_t logical = Bounded(LoadU32(head + kLogicalIndexCount), kMaxIndexes, "indexes");
  const std::size_t real = Bounded(LoadU32(head + kRealIndexCount), kMaxIndexes, "index trees");
  table.ownedPages = LoadU32(head + kOwnedPages);
  table.freePages = LoadU32(head + kFreePages);

  ByteReader reader(stream, "definition of a table");
  reader.Seek(kIndexCounts);
  reader.Skip(kIndexCountsSize * real);
  for (std::size_t i = 0; i < columns; ++i)
    table.columns.push_back(ReadColumn(reader));
  for (ColumnDefinition& column : table.columns)
    column.name = ReadName(reader);
  for (std::size_t i = 0; i < real; ++i)
    table.indexes.push_back(ReadRealIndex(reader));
  for (std::size_t i = 0; i < logical; ++i)
    table.logicalIndexes.push_back(ReadLogicalIndex(reader));
  for (LogicalIndexDefinition& index : table.logicalIndexes)
    index.name = ReadName(reader);
  for (std::uint16_t number = reader.U16(); number != kNoColumn; number = reader.U16()) {
    LongValueMaps maps;
    maps.column = number;
    maps.owned = reader.U32();
    maps.free = reader.U32();
    table.longValueMaps.push_back(maps);
  }
  CheckColumns(table);
  CheckIndexes(table);
  return table;
}

DefinitionCounts DecodeDefinitionCounts(std::span<const std::byte> stream) {
  ByteReader reader(stream, "definition of a table");
  DefinitionCounts counts;
  reader.Seek(kRowCount);
  counts.rows = reader.U32();
  reader.Seek(kLastAutoNumber);
  counts.lastAutoNumber = reader.U32();
  reader.Seek(kRealIndexCount);
  const std::size_t indexes = Bounded(reader.U32(), kMaxIndexes, "index trees");
  reader.Seek(kIndexCounts);
  for (std::size_t i = 0; i < indexes; ++i) {
    const std::byte* const at = reader.Take(kIndexCountsSize).data();
    counts.indexes.push_back({LoadU32(at), LoadU32(at + kDistinctKeys)});
  }
  return counts;
}

Bytes EncodeTableDefinition(const TableDefinition& definition, const DefinitionCounts& counts) {
  std::vector<LogicalIndexDefinition> logical = definition.logicalIndexes;
  std::stable_sort(logical.begin(), logical.end(),
                   [](const auto& a, const auto& b) { return CompareNames(a.name, b.name) < 0; });
  Bytes stream = EncodeHead(definition, counts);
  for (const ColumnDefinition& column : definition.columns)
    WriteColumn(column, Grow(stream, kColumnSize));
  for (const ColumnDefinition& column : definition.columns)
    AppendName(column.name, stream);
  for (const IndexDefinition& index : definition.indexes)
    WriteRealIndex(index, Grow(stream, kRealIndexSize));
  for (const LogicalIndexDefinition& index : logical)
    WriteLogicalIndex(index, Grow(stream, kLogicalIndexSize));
  for (const LogicalIndexDefinition& index : logical)
    AppendName(index.name, stream);
  for (const LongValueMaps& maps : definition.longValueMaps) {
    std::byte* const at = Grow(stream, kLongValueMapsSize);
    StoreU16(at, maps.column);
    StoreU32(at + 2, maps.owned);
    StoreU32(at + 6, maps.free);
  }
  StoreU16(Grow(stream, kEndSize), kNoColumn);
  StoreU32(stream.data() + kLength, static_cast<std::uint32_t>(stream.size() - kHeadSize));
  return stream;
}

std::size_t IndexRootAt(std::span<const std::byte> stream, std::size_t index) {
  const TableDefinition table = DecodeTableDefinition(stream, 0);
  std::size_t at =
      kIndexCounts + kIndexCountsSize * table.indexes.size() + kColumnSize * table.columns.size();
  for (const ColumnDefinition& column : table.columns)
    at += NameSize(column.name);
  return at + kRealIndexSize * index + kIndexRoot;
}

}  // namespace jet::format

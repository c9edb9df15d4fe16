#include "jet/table/TableLayout.h"

#include <algorithm>
#include <set>

#include "jet/Error.h"
#include "jet/format/NameOrder.h"
#include "jet/format/PageLayout.h"
#include "jet/format/RowLayout.h"
#include "jet/format/TableDefinitionCodec.h"
#include "jet/format/TableDefinitionLayout.h"
#include "jet/format/TextCodec.h"

namespace jet {

using format::ColumnDefinition;
using format::IndexDefinition;
using format::LogicalIndexDefinition;
using format::TableDefinition;
namespace column_flag = format::column_flag;
namespace index_flag = format::index_flag;
namespace definition_page = format::definition_page;

namespace {

constexpr std::uint16_t kMaxTextLength = 255;
constexpr std::uint16_t kMaxBinaryLength = 510;
constexpr std::uint8_t kMaxPrecision = 28;

Error Invalid(const std::string& why) {
  return Error(ErrorNumber::InvalidDefinition, why);
}

std::string ColumnOf(const std::string& tableName, const std::string& column) {
  return "Column '" + column + "' of table '" + tableName + "' ";
}

std::uint16_t SizeOf(const ColumnSpec& column, const std::string& who) {
  switch (column.type) {
    case ColumnType::YesNo:
      return 1;
    case ColumnType::Text:
      if (column.length < 1 || column.length > kMaxTextLength)
        throw Invalid(who + "needs a length of 1 to 255 characters.");
      return static_cast<std::uint16_t>(2 * column.length);
    case ColumnType::Binary:
      if (column.length < 1 || column.length > kMaxBinaryLength)
        throw Invalid(who + "needs a length of 1 to 510 bytes.");
      return column.length;
    case ColumnType::Memo:
    case ColumnType::Ole:
      return 0;
    default:
      break;
  }
  const std::uint16_t size = format::FixedSizeOf(column.type);
  if (size == 0) throw Invalid(who + "is of a type that new columns cannot have.");
  return size;
}

ColumnDefinition LayOutColumn(const ColumnSpec& wanted, const std::string& tableName) {
  CheckName("column", wanted.name);
  const std::string who = ColumnOf(tableName, wanted.name);
  ColumnDefinition column;
  column.name = wanted.name;
  column.type = wanted.type;
  column.size = SizeOf(wanted, who);
  const bool variable =
      column.IsLongValue() || wanted.type == ColumnType::Text || wanted.type == ColumnType::Binary;
  column.flags = column_flag::kAlways;
  if (!variable) column.flags |= column_flag::kFixed;
  if (wanted.autoNumber) {
    if (wanted.type != ColumnType::Long)
      throw Invalid(who + "cannot be numbered automatically: it is no long integer.");
    column.flags |= column_flag::kAutoNumber;
  }
  if (wanted.type == ColumnType::Decimal) {
    if (wanted.precision < 1 || wanted.precision > kMaxPrecision || wanted.scale > wanted.precision) {
      throw Invalid(who + "needs 1 to 28 digits, and no more decimal places than digits.");
    }
    column.precision = wanted.precision;
    column.scale = wanted.scale;
    column.sortLocale = 0;
  }
  column.compressed =
      wanted.compressed && (wanted.type == ColumnType::Text || wanted.type == ColumnType::Memo);
  return column;
}

const ColumnDefinition& Find(const TableDefinition& definition, const std::string& name,
                             const std::string& who) {
  for (const ColumnDefinition& column : definition.columns) {
    if (format::SameName(column.name, name)) return column;
  }
  throw Invalid(who + "is on a column '" + name + "', which does not exist.");
}

}  // namespace

void CheckName(const char* what, std::string_view name) {
  const std::string quoted = "'" + std::string(name) + "' cannot be the name of a " + what + ": ";
  if (name.empty()) throw Invalid("The name of a " + std::string(what) + " is empty.");
  if (format::Utf16Length(name) > kMaxNameLength) throw Invalid(quoted + "it is longer than 64 characters.");
  if (name.front() == ' ' || name.back() == ' ') throw Invalid(quoted + "it begins or ends with a blank.");
  for (const char c : name) {
    const auto byte = static_cast<unsigned char>(c);
    if (byte < 0x20 || std::string_view(".!`[]").find(c) != std::string_view::npos) {
      throw Invalid(quoted + "it holds a control character or one of . ! ` [ ].");
    }
  }
}

void PlaceColumns(TableDefinition& definition, const std::string& tableName) {
  std::size_t fixed = 0;
  for (ColumnDefinition& column : definition.columns) {
    column.number = definition.columnsEver++;
    column.variableIndex = definition.variableColumnsEver;
    if (!column.IsFixed()) {
      ++definition.variableColumnsEver;
    } else if (column.type != ColumnType::YesNo) {
      column.fixedOffset = static_cast<std::uint16_t>(fixed);
      fixed += column.size;
    }
    if (column.IsLongValue()) definition.longValueMaps.push_back({column.number, 0, 0});
  }
  const std::size_t variables = definition.variableColumnsEver;
  const std::size_t least = format::row_layout::kFixedStart + fixed +
                            format::row_layout::MaskSize(definition.columnsEver) +
                            (variables == 0 ? 0 : format::row_layout::VariableTableSize(variables));
  if (least > format::kMaxRowSize) {
    throw Invalid("Table '" + tableName + "' has too many columns: its rows would need " +
                  std::to_string(least) + " bytes and more, and a page holds " +
                  std::to_string(format::kMaxRowSize) + ".");
  }
}

TableDefinition LayOutTable(const TableSpec& table) {
  CheckName("table", table.name);
  if (table.columns.empty()) throw Invalid("Table '" + table.name + "' has no columns.");
  if (table.columns.size() > definition_page::kMaxColumns) {
    throw Invalid("Table '" + table.name + "' has " + std::to_string(table.columns.size()) +
                  " columns; at most 255 are possible.");
  }
  TableDefinition definition;
  std::set<std::string> names;
  int autoNumbers = 0;
  for (const ColumnSpec& wanted : table.columns) {
    ColumnDefinition column = LayOutColumn(wanted, table.name);
    column.ordinal = static_cast<std::uint16_t>(definition.columns.size());
    if (!names.insert(format::FoldName(wanted.name)).second) {
      throw Invalid("Table '" + table.name + "' has two columns called '" + wanted.name + "'.");
    }
    autoNumbers += wanted.autoNumber ? 1 : 0;
    definition.columns.push_back(std::move(column));
  }
  if (autoNumbers > 1)
    throw Invalid("Table '" + table.name + "' has more than one column that is numbered automatically.");
  PlaceColumns(definition, table.name);
  for (const IndexSpec& index : table.indexes)
    AddIndex(definition, table.name, index);
  return definition;
}

TableDefinition LayOutLike(const TableDefinition& original, const std::string& tableName) {
  TableDefinition definition;
  definition.isSystem = original.isSystem;
  definition.columns = original.columns;
  std::ranges::sort(definition.columns, {}, &ColumnDefinition::number);
  for (ColumnDefinition& column : definition.columns) {
    column.flags &= static_cast<std::uint8_t>(~(column_flag::kAutoNumber | column_flag::kAutoGuid));
    column.fixedOffset = 0;
  }
  PlaceColumns(definition, tableName);
  // Back into the order in which the file lists them.
  std::vector<ColumnDefinition> listed;
  for (const ColumnDefinition& column : original.columns)
    listed.push_back(*std::ranges::find(definition.columns, column.name, &ColumnDefinition::name));
  definition.columns = std::move(listed);
  return definition;
}

std::uint32_t NextIndexNumber(const TableDefinition& definition) {
  std::uint32_t next = 0;
  for (const LogicalIndexDefinition& index : definition.logicalIndexes)
    next = std::max(next, index.number + 1);
  return next;
}

void CheckNewIndexName(const TableDefinition& definition, const std::string& tableName,
                       const std::string& name) {
  for (const LogicalIndexDefinition& index : definition.logicalIndexes) {
    if (!format::SameName(index.name, name)) continue;
    throw Error(ErrorNumber::ObjectExists, "Table '" + tableName + "' already has an index '" + name + "'.");
  }
  if (definition.logicalIndexes.size() >= kMaxIndexesOfTable) {
    throw Invalid("Table '" + tableName + "' has 32 indexes and can have no more.");
  }
}

void AddIndex(TableDefinition& definition, const std::string& tableName, const IndexSpec& wanted) {
  CheckName("index", wanted.name);
  CheckNewIndexName(definition, tableName, wanted.name);
  const std::string who = "Index '" + wanted.name + "' of table '" + tableName + "' ";
  if (wanted.columns.empty() || wanted.columns.size() > definition_page::kMaxIndexColumns) {
    throw Invalid(who + "needs 1 to 10 columns.");
  }
  IndexDefinition index;
  for (const IndexColumn& part : wanted.columns) {
    const ColumnDefinition& column = Find(definition, part.name, who);
    if (column.type == ColumnType::Ole)
      throw Invalid(who + "cannot be on the column '" + column.name + "', which holds long binary values.");
    const bool twice = std::any_of(index.columns.begin(), index.columns.end(),
                                   [&](const auto& other) { return other.column == column.number; });
    if (twice) throw Invalid(who + "names the column '" + column.name + "' twice.");
    index.columns.push_back({column.number, part.ascending});
  }
  index.flags = index_flag::kAlways;
  if (wanted.unique || wanted.primary) index.flags |= index_flag::kUnique;
  if (wanted.required || wanted.primary) index.flags |= index_flag::kRequired;
  if (wanted.ignoreNulls && !wanted.primary) index.flags |= index_flag::kIgnoreNulls;

  LogicalIndexDefinition logical;
  logical.name = wanted.name;
  logical.number = NextIndexNumber(definition);
  logical.real = static_cast<std::uint32_t>(definition.indexes.size());
  if (wanted.primary) {
    for (const LogicalIndexDefinition& other : definition.logicalIndexes) {
      if (other.kind != LogicalIndexDefinition::Kind::Primary) continue;
      throw Invalid("Table '" + tableName + "' already has the primary key '" + other.name + "'.");
    }
    logical.kind = LogicalIndexDefinition::Kind::Primary;
  }
  definition.indexes.push_back(std::move(index));
  definition.logicalIndexes.push_back(std::move(logical));
}

}  // namespace jet

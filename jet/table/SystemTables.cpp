#include "jet/table/SystemTables.h"

#include <algorithm>
#include <span>
#include <string>

#include "jet/format/NameOrder.h"
#include "jet/format/PageLayout.h"
#include "jet/format/TableDefinitionCodec.h"
#include "jet/format/TableDefinitionLayout.h"
#include "jet/table/TableLayout.h"

namespace jet {

using format::ColumnDefinition;
using format::TableDefinition;
namespace system_page = format::system_page;

namespace {

struct SystemColumn {
  const char* name;
  ColumnType type;
  bool identifiesAccount = false;  ///< carries a flag that no other column has
};

struct SystemIndex {
  const char* name;
  std::vector<std::uint16_t> columns;
  std::uint8_t flags;
  bool primary = false;
  std::uint32_t number;
};

constexpr std::uint8_t kAccountFlag = 0x20;
constexpr std::uint16_t kLongestText = 510;
constexpr std::uint8_t kPlain = format::index_flag::kAlways;
constexpr std::uint8_t kUnique = kPlain | format::index_flag::kUnique;
constexpr std::uint8_t kRequired = kPlain | format::index_flag::kRequired;
constexpr std::uint8_t kIgnoreNulls = kPlain | format::index_flag::kIgnoreNulls;

// Columns in the order of their numbers.
constexpr SystemColumn kObjects[] = {
    {"Id", ColumnType::Long},
    {"ParentId", ColumnType::Long},
    {"Name", ColumnType::Text},
    {"Type", ColumnType::Integer},
    {"DateCreate", ColumnType::DateTime},
    {"DateUpdate", ColumnType::DateTime},
    {"Owner", ColumnType::Binary, true},
    {"Flags", ColumnType::Long},
    {"Database", ColumnType::Memo},
    {"Connect", ColumnType::Memo},
    {"ForeignName", ColumnType::Text},
    {"RmtInfoShort", ColumnType::Binary},
    {"RmtInfoLong", ColumnType::Ole},
    {"Lv", ColumnType::Ole},
    {"LvProp", ColumnType::Ole},
    {"LvModule", ColumnType::Ole},
    {"LvExtra", ColumnType::Ole},
};
constexpr SystemColumn kAccessRights[] = {
    {"ObjectId", ColumnType::Long},
    {"SID", ColumnType::Binary, true},
    {"ACM", ColumnType::Long},
    {"FInheritable", ColumnType::YesNo},
};
constexpr SystemColumn kQueries[] = {
    {"ObjectId", ColumnType::Long}, {"Attribute", ColumnType::Byte}, {"Order", ColumnType::Binary},
    {"Name1", ColumnType::Text},    {"Name2", ColumnType::Text},     {"Expression", ColumnType::Memo},
    {"Flag", ColumnType::Integer},  {"LvExtra", ColumnType::Long},
};
constexpr SystemColumn kRelationships[] = {
    {"szRelationship", ColumnType::Text},
    {"grbit", ColumnType::Long},
    {"ccolumn", ColumnType::Long},
    {"icolumn", ColumnType::Long},
    {"szObject", ColumnType::Text},
    {"szColumn", ColumnType::Text},
    {"szReferencedObject", ColumnType::Text},
    {"szReferencedColumn", ColumnType::Text},
};

TableDefinition LayOut(PageNumber page, std::span<const SystemColumn> columns,
                       const std::vector<SystemIndex>& indexes) {
  TableDefinition definition;
  definition.page = page;
  definition.pages = {page};
  definition.isSystem = true;
  for (const SystemColumn& wanted : columns) {
    ColumnDefinition column;
    column.name = wanted.name;
    column.type = wanted.type;
    column.flags = format::column_flag::kAlways | format::column_flag::kSystem;
    if (wanted.identifiesAccount) column.flags |= kAccountFlag;
    column.size = format::FixedSizeOf(wanted.type);
    if (wanted.type == ColumnType::YesNo) column.size = 1;
    if (column.size != 0) column.flags |= format::column_flag::kFixed;
    if (wanted.type == ColumnType::Text || wanted.type == ColumnType::Binary) column.size = kLongestText;
    definition.columns.push_back(std::move(column));
  }
  PlaceColumns(definition, "system table");
  // Columns, and the maps of the long ones, are listed by name.
  std::sort(definition.columns.begin(), definition.columns.end(),
            [](const auto& a, const auto& b) { return format::CompareNames(a.name, b.name) < 0; });
  definition.longValueMaps.clear();
  for (const ColumnDefinition& column : definition.columns) {
    if (column.IsLongValue()) definition.longValueMaps.push_back({column.number, 0, 0});
  }
  for (const SystemIndex& wanted : indexes) {
    format::IndexDefinition index;
    for (const std::uint16_t column : wanted.columns)
      index.columns.push_back({column, true});
    index.flags = wanted.flags;
    format::LogicalIndexDefinition logical;
    logical.name = wanted.name;
    logical.number = wanted.number;
    logical.real = wanted.number;
    if (wanted.primary) logical.kind = format::LogicalIndexDefinition::Kind::Primary;
    definition.indexes.push_back(std::move(index));
    definition.logicalIndexes.push_back(std::move(logical));
  }
  return definition;
}

}  // namespace

std::vector<TableDefinition> LayOutSystemTables() {
  return {
      LayOut(system_page::kObjects, kObjects,
             {{"ParentIdName", {1, 2}, kUnique, false, 0}, {"Id", {0}, kUnique, true, 1}}),
      LayOut(system_page::kAccessRights, kAccessRights, {{"ObjectId", {0}, kRequired, false, 0}}),
      LayOut(system_page::kQueries, kQueries, {{"ObjectIdAttribute", {0, 1, 2}, kUnique, true, 0}}),
      LayOut(system_page::kRelationships, kRelationships,
             {{"szRelationship", {0}, kIgnoreNulls, false, 0},
              {"szObject", {4}, kIgnoreNulls, false, 1},
              {"szReferencedObject", {6}, kIgnoreNulls, false, 2}}),
  };
}

}  // namespace jet

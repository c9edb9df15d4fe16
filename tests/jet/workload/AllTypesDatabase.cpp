#include "tests/jet/workload/AllTypesDatabase.h"

#include <utility>

namespace jet::test {
namespace {

ColumnSpec Column(const char* name, ColumnType type, std::uint16_t length = 0) {
  ColumnSpec column;
  column.name = name;
  column.type = type;
  column.length = length;
  return column;
}

IndexSpec Primary(std::vector<IndexColumn> columns) {
  IndexSpec index;
  index.name = "PrimaryKey";
  index.columns = std::move(columns);
  index.primary = true;
  index.unique = true;
  return index;
}

IndexSpec Plain(const char* name, std::vector<IndexColumn> columns) {
  IndexSpec index;
  index.name = name;
  index.columns = std::move(columns);
  return index;
}

IndexSpec Unique(const char* name, std::vector<IndexColumn> columns) {
  IndexSpec index = Plain(name, std::move(columns));
  index.unique = true;
  return index;
}

TableSpec People() {
  TableSpec table;
  table.name = "people";
  table.columns = {Column("id", ColumnType::Long),         Column("code", ColumnType::Text, 12),
                   Column("name", ColumnType::Text, 60),   Column("about", ColumnType::Text, 255),
                   Column("plain", ColumnType::Text, 255), Column("active", ColumnType::YesNo),
                   Column("level", ColumnType::Byte),      Column("year", ColumnType::Integer),
                   Column("salary", ColumnType::Currency), Column("ratio", ColumnType::Single),
                   Column("score", ColumnType::Double),    Column("born", ColumnType::DateTime),
                   Column("photo", ColumnType::Ole),       Column("notes", ColumnType::Memo),
                   Column("tag", ColumnType::Binary, 50),  Column("uid", ColumnType::Guid),
                   Column("amount", ColumnType::Decimal)};
  table.columns[2].required = true;
  table.columns[3].allowZeroLength = true;
  table.columns[4].compressed = false;
  table.columns[6].defaultValue = "7";
  table.columns[13].allowZeroLength = true;
  table.columns[16].scale = 4;
  IndexSpec noNulls = Plain("score", {{"score", false}});
  noNulls.ignoreNulls = true;
  table.indexes = {Primary({{"id"}}),
                   Unique("code", {{"code"}}),
                   Plain("name", {{"name"}, {"year", false}}),
                   Plain("notes", {{"notes"}}),
                   Plain("amount", {{"amount", false}, {"tag"}}),
                   Plain("name down", {{"name", false}}),
                   Plain("active", {{"active"}, {"level", false}}),
                   Plain("salary", {{"salary"}}),
                   Plain("ratio", {{"ratio", false}}),
                   std::move(noNulls),
                   Plain("born", {{"born", false}}),
                   Plain("tag", {{"tag"}}),
                   Plain("uid", {{"uid"}})};
  return table;
}

TableSpec Categories() {
  TableSpec table;
  table.name = "categories";
  table.columns = {Column("name", ColumnType::Text, 20), Column("remark", ColumnType::Memo)};
  table.indexes = {Primary({{"name"}})};
  return table;
}

TableSpec Orders() {
  TableSpec table;
  table.name = "orders";
  table.columns = {Column("id", ColumnType::Long),           Column("person", ColumnType::Long),
                   Column("category", ColumnType::Text, 20), Column("quantity", ColumnType::Integer),
                   Column("due", ColumnType::DateTime),      Column("remark", ColumnType::Memo)};
  table.columns[0].autoNumber = true;
  table.columns[3].required = true;
  table.columns[3].defaultValue = "1";
  table.columns[5].compressed = false;
  IndexSpec due = Unique("person due", {{"person"}, {"due", false}});
  due.ignoreNulls = true;
  table.indexes = {Primary({{"id"}}), std::move(due)};
  return table;
}

TableSpec Parts() {
  TableSpec table;
  table.name = "parts";
  table.columns = {Column("order", ColumnType::Long), Column("number", ColumnType::Integer),
                   Column("text", ColumnType::Text, 100), Column("blob", ColumnType::Ole)};
  table.indexes = {Primary({{"order"}, {"number"}})};
  return table;
}

TableSpec Marks() {
  TableSpec table;
  table.name = "marks";
  table.columns = {Column("id", ColumnType::Long), Column("order", ColumnType::Long),
                   Column("number", ColumnType::Integer), Column("value", ColumnType::Double)};
  table.indexes = {Primary({{"id"}})};
  return table;
}

RelationInfo Relation(const char* name, const char* table, std::vector<std::string> columns,
                      const char* parent, std::vector<std::string> parentColumns) {
  RelationInfo relation;
  relation.name = name;
  relation.table = table;
  relation.columns = std::move(columns);
  relation.parentTable = parent;
  relation.parentColumns = std::move(parentColumns);
  return relation;
}

}  // namespace

void MakeAllTypesTables(Database& database) {
  for (const TableSpec& table : {People(), Categories(), Orders(), Parts(), Marks()})
    database.CreateTable(table);
  database.CreateRelation(Relation("orders of people", "orders", {"person"}, "people", {"id"}));
  RelationInfo categories = Relation("orders of categories", "orders", {"category"}, "categories", {"name"});
  categories.cascadeUpdates = true;
  database.CreateRelation(categories);
  RelationInfo parts = Relation("parts of orders", "parts", {"order"}, "orders", {"id"});
  parts.cascadeDeletes = true;
  database.CreateRelation(parts);
  database.CreateRelation(
      Relation("marks of parts", "marks", {"order", "number"}, "parts", {"order", "number"}));
}

}  // namespace jet::test

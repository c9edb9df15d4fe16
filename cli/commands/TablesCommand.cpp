#include <memory>

#include "cli/commands/Commands.h"
#include "cli/commands/DatabaseOptions.h"
#include "cli/output/Json.h"
#include "league/TextTable.h"
#include "league/Utf8.h"

namespace cli {

using namespace HLLeague;

namespace {

constexpr std::size_t kDefinitionWidth = 100;

struct TablesOptions : DatabaseOptions {
  bool system = false;
  bool all = false;
};

const char* TypeName(jet::ColumnType type) {
  switch (type) {
    case jet::ColumnType::YesNo:
      return "yes/no";
    case jet::ColumnType::Byte:
      return "byte";
    case jet::ColumnType::Integer:
      return "integer";
    case jet::ColumnType::Long:
      return "long";
    case jet::ColumnType::Currency:
      return "currency";
    case jet::ColumnType::Single:
      return "single";
    case jet::ColumnType::Double:
      return "double";
    case jet::ColumnType::DateTime:
      return "date/time";
    case jet::ColumnType::Binary:
      return "binary";
    case jet::ColumnType::Text:
      return "text";
    case jet::ColumnType::Ole:
      return "long binary";
    case jet::ColumnType::Memo:
      return "memo";
    case jet::ColumnType::Guid:
      return "guid";
    case jet::ColumnType::Decimal:
      return "decimal";
    case jet::ColumnType::Block:
      return "block";
  }
  return "unknown";
}

std::string KeyColumns(const jet::TableInfo& table) {
  std::string columns;
  for (const jet::IndexSpec& index : table.indexes) {
    if (!index.primary) continue;
    for (const jet::IndexColumn& column : index.columns)
      columns += (columns.empty() ? "" : ", ") + column.name;
  }
  return columns;
}

Json ColumnJson(const jet::ColumnSpec& column) {
  Json json;
  json["name"] = column.name;
  json["type"] = TypeName(column.type);
  if (column.type == jet::ColumnType::Text || column.type == jet::ColumnType::Binary)
    json["length"] = column.length;
  if (column.autoNumber) json["autoNumber"] = true;
  if (column.required) json["required"] = true;
  if (column.defaultValue) json["default"] = *column.defaultValue;
  return json;
}

Json IndexJson(const jet::IndexSpec& index) {
  Json json;
  json["name"] = index.name;
  Json columns = Json::Array();
  for (const jet::IndexColumn& column : index.columns) {
    columns.Append(column.ascending ? column.name : column.name + " desc");
  }
  json["columns"] = columns;
  json["primary"] = index.primary;
  json["unique"] = index.unique;
  return json;
}

Json TableJson(const jet::TableInfo& table) {
  Json json;
  json["name"] = table.name;
  json["rows"] = table.rowCount;
  json["columns"] = Json::Array();
  for (const jet::ColumnSpec& column : table.columns)
    json["columns"].Append(ColumnJson(column));
  json["indexes"] = Json::Array();
  for (const jet::IndexSpec& index : table.indexes)
    json["indexes"].Append(IndexJson(index));
  return json;
}

/// Every object of the file with its kind; for queries the statement, for linked tables where they are.
void AllObjects(Context& context, const jet::Database& database) {
  Json document = Json::Array();
  TextTable list({{"name"}, {"kind"}, {"rows", TextTable::Align::Right}, {"definition"}});
  for (const jet::ObjectInfo& object : database.Objects()) {
    const bool isTable = object.kind == jet::ObjectKind::Table || object.kind == jet::ObjectKind::SystemTable;
    Json json = isTable ? TableJson(database.Table(object.name)) : Json();
    json["name"] = object.name;
    json["kind"] = jet::NameOf(object.kind);
    if (!object.definition.empty()) json["definition"] = object.definition;
    document.Append(json);
    list.Add({Printable(object.name), jet::NameOf(object.kind),
              isTable ? std::to_string(database.Table(object.name).rowCount) : "",
              CutToWidth(Printable(object.definition), kDefinitionWidth)});
  }
  if (context.json) {
    context.output.Line(JsonText(document));
  } else {
    context.output.Lines(list.Lines());
  }
}

void Tables(Context& context, const TablesOptions& options) {
  const auto database = options.Open(context);
  if (options.all) return AllObjects(context, *database);
  Json document = Json::Array();
  using Align = TextTable::Align;
  TextTable list({{"table"}, {"rows", Align::Right}, {"columns", Align::Right}, {"key"}});
  for (const jet::TableInfo& table : database->Tables()) {
    if (table.isSystem && !options.system) continue;
    document.Append(TableJson(table));
    list.Add({table.name, std::to_string(table.rowCount), std::to_string(table.columns.size()),
              KeyColumns(table)});
  }
  if (context.json) {
    context.output.Line(JsonText(document));
  } else {
    context.output.Lines(list.Lines());
  }
}

}  // namespace

void AddTablesCommand(Command& app) {
  Command command =
      app.AddCommand("tables", "List the tables of a file; with --json their columns and indexes too");
  auto options = std::make_shared<TablesOptions>();
  command.AddFlag("--system", options->system, "list the system tables too");
  command.AddFlag("--all", options->all, "list every object of the file with its kind");
  options->AddTo(command);
  command.Runs(Tables, options);
}

}  // namespace cli

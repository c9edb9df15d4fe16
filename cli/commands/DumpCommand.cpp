#include <algorithm>
#include <memory>

#include "cli/commands/Commands.h"
#include "cli/commands/DatabaseOptions.h"
#include "cli/commands/ExitCode.h"
#include "cli/commands/Rows.h"
#include "league/EngineErrors.h"
#include "league/Nearest.h"
#include "league/Utf8.h"

namespace cli {

using namespace HLLeague;

namespace {

struct DumpOptions : DatabaseOptions {
  std::string table;
  FormatOption format;
};

/// The table, its name in any case; when there is none, a failure that suggests the nearest.
jet::TableInfo FindTable(const jet::Database& database, const std::string& name) {
  try {
    return database.Table(name);
  } catch (const jet::Error& error) {
    if (error.Number() != jet::ErrorNumber::UnknownTable) throw;
    for (const jet::ObjectInfo& object : database.Objects()) {
      if (LowerCase(object.name) == LowerCase(name)) throw;  // the error says what it is
    }
    std::vector<std::string> names;
    for (const jet::TableInfo& table : database.Tables()) {
      if (!table.isSystem) names.push_back(table.name);
    }
    const std::string nearest = NearestOf(name, names);
    const std::string hint = nearest.empty() ? "'halcyra tables' lists the tables of the file."
                                             : "Did you mean '" + nearest + "'?";
    throw Failure(FailureKindOf(error.Number()), error.what(), hint);
  }
}

/// All rows of the table, in the order of its primary key if it has one.
std::string SelectAll(const jet::TableInfo& table) {
  std::string statement = "select * from " + Bracketed(table.name);
  const auto key = std::find_if(table.indexes.begin(), table.indexes.end(),
                                [](const jet::IndexSpec& index) { return index.primary; });
  if (key == table.indexes.end()) return statement;
  const char* separator = " order by ";
  for (const jet::IndexColumn& column : key->columns) {
    statement += separator + Bracketed(column.name) + (column.ascending ? "" : " desc");
    separator = ", ";
  }
  return statement;
}

void Dump(Context& context, const DumpOptions& options) {
  const auto database = options.Open(context);
  const jet::TableInfo table = FindTable(*database, options.table);
  WriteRows(context, *database, SelectAll(table), options.format,
            "table '" + table.name + "' of " + options.Path(context));
}

}  // namespace

void AddDumpCommand(Command& app) {
  Command command = app.AddCommand("dump", "Print the rows of a table in the order of its primary key");
  auto options = std::make_shared<DumpOptions>();
  command.AddArgument("TABLE", options->table, "name of the table, in any case").Required();
  options->format.AddTo(command);
  options->AddTo(command);
  command.Runs(Dump, options);
}

}  // namespace cli

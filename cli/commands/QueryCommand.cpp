#include <memory>

#include "cli/commands/Commands.h"
#include "cli/commands/DatabaseOptions.h"
#include "cli/commands/Rows.h"

namespace cli {
namespace {

struct QueryOptions : DatabaseOptions {
  std::string statement;
  FormatOption format;
  bool explain = false;
};

void Query(Context& context, const QueryOptions& options) {
  WriteRows(context, *options.Open(context), options.statement, options.format, options.Path(context),
            options.explain);
}

}  // namespace

void AddQueryCommand(Command& app) {
  Command command = app.AddCommand("query", "Run a select statement and print its rows");
  auto options = std::make_shared<QueryOptions>();
  command.AddArgument("STATEMENT", options->statement, "the select statement").Required();
  options->format.AddTo(command);
  command.AddFlag("--explain", options->explain, "tell on standard error how the rows are found");
  options->AddTo(command);
  command.Runs(Query, options);
}

}  // namespace cli

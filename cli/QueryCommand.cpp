#include <memory>

#include "cli/Commands.h"
#include "cli/DatabaseOptions.h"
#include "cli/Rows.h"

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

void AddQueryCommand(CLI::App& app, Context& context) {
  CLI::App* command = app.add_subcommand("query", "Run a select statement and print its rows");
  auto options = std::make_shared<QueryOptions>();
  command->add_option("STATEMENT", options->statement, "the select statement")->type_name("")->required();
  options->format.AddTo(*command);
  command->add_flag("--explain", options->explain, "tell on standard error how the rows are found");
  options->AddTo(*command);
  command->callback(
      [&context, options] { context.action = [&context, options] { Query(context, *options); }; });
}

}  // namespace cli

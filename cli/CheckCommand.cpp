#include "cli/Commands.h"
#include "cli/DatabaseOptions.h"
#include "cli/ExitCode.h"
#include "cli/Json.h"
#include "jet/Check.h"

namespace cli {
namespace {

/// `check [FILE]`: the file may be named without --file.
class CheckOptions : public DatabaseOptions {
 public:
  void AddTo(Command& command) {
    command.AddArgument("FILE", m_file, "file to check; without one, the league's");
    DatabaseOptions::AddTo(command);
  }
};

void PrintJson(Output& output, const std::string& path, const jet::CheckReport& report) {
  Json document;
  document["file"] = path;
  document["sound"] = report.findings.empty();
  document["pages"] = report.pages;
  document["tables"] = report.tables;
  document["indexes"] = report.indexes;
  document["rows"] = report.rows;
  document["findings"] = report.findings;
  output.Line(JsonText(document));
}

void Check(Context& context, const CheckOptions& options) {
  const std::string path = options.Path(context);
  const jet::CheckReport report = options.Open(context)->Check();
  if (context.json) {
    PrintJson(context.output, path, report);
  } else {
    for (const std::string& finding : report.findings)
      context.output.Line(finding);
    if (report.findings.empty()) {
      context.output.Line(path + " is sound: " + std::to_string(report.pages) + " pages, " +
                          std::to_string(report.tables) + " tables, " + std::to_string(report.indexes) +
                          " indexes, " + std::to_string(report.rows) + " rows.");
    }
  }
  if (!report.findings.empty()) {
    const std::size_t count = report.findings.size();
    throw Failure(ExitCode::Damaged,
                  path + " is damaged: " + std::to_string(count) + (count == 1 ? " finding." : " findings."));
  }
}

}  // namespace

void AddCheckCommand(Command& app) {
  Command command = app.AddCommand("check", "Check the whole of a file: pages, maps, indexes, relationships");
  auto options = std::make_shared<CheckOptions>();
  options->AddTo(command);
  command.Runs(Check, options);
}

}  // namespace cli

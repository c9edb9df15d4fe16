#include <cstddef>
#include <memory>
#include <sstream>
#include <string>

#include "HLLeague/League.h"
#include "HLLeague/MasterRecords.h"
#include "HLLeague/PlayerImport.h"
#include "cli/commands/Commands.h"
#include "cli/commands/InputFile.h"
#include "cli/commands/RecordCommands.h"
#include "cli/output/Json.h"
#include "cli/output/ProgressBar.h"
#include "league/Numbers.h"

namespace cli {

using namespace HLLeague;

namespace {

using Kind = PlayerImport::Kind;

constexpr std::size_t kLongestFile = std::size_t{16} << 20;

struct ImportOptions {
  std::string file;
  bool isDryRun = false;
};

Json LineJson(const PlayerImport::Line& line) {
  Json json;
  json["line"] = line.number;
  json["id"] = line.id == 0 ? Json() : Json(line.id);
  json["firstName"] = line.values.firstName;
  json["lastName"] = line.values.lastName;
  return json;
}

void PrintJson(Context& context, const PlayerImport& lines, const ImportOptions& options) {
  Json document;
  document["dryRun"] = options.isDryRun;
  for (const char* list : {"added", "changed", "unchanged", "refused"})
    document[list] = Json::Array();
  for (const PlayerImport::Line& line : lines.Lines()) {
    const char* list = line.kind == Kind::Add ? "added" : line.kind == Kind::Change ? "changed" : "unchanged";
    document[list].Append(LineJson(line));
  }
  for (const PlayerImport::Refusal& refusal : lines.Refused())
    document["refused"].Append({{"line", refusal.number}, {"reason", refusal.reason}});
  context.output.Line(JsonText(document));
}

void PrintReport(Context& context, const PlayerImport& lines, const ImportOptions& options) {
  if (context.json) {
    PrintJson(context, lines, options);
    return;
  }
  if (options.isDryRun) {
    for (const PlayerImport::Line& line : lines.Lines()) {
      if (line.kind != Kind::Same)
        context.output.Line("line " + std::to_string(line.number) + " " + line.text);
    }
  }
  for (const PlayerImport::Refusal& refusal : lines.Refused())
    context.output.Line("line " + std::to_string(refusal.number) + " refused: " + refusal.reason);
  const std::string would = options.isDryRun ? " to be" : "";
  context.output.Line(CountOf(static_cast<std::int64_t>(lines.CountOf(Kind::Add)), "player") + would +
                      " added, " + std::to_string(lines.CountOf(Kind::Change)) + would + " changed, " +
                      std::to_string(lines.CountOf(Kind::Same)) + " as they are; " +
                      CountOf(static_cast<std::int64_t>(lines.Refused().size()), "line") + " refused.");
}

void ImportPlayers(Context& context, const ImportOptions& options) {
  League& league = context.OpenLeague();
  // As a whole: the reader goes back behind a byte order mark, which a pipe cannot.
  std::istringstream text(ReadInputFile("file", options.file, kLongestFile));
  PlayerImport lines(league);
  lines.Read(text, options.file);
  if (!options.isDryRun) {
    ProgressBar progress(context.messages, "Importing", lines.Lines().size());
    try {
      lines.Apply([&progress] { progress.Advance(); });
    } catch (const Failure& failure) {
      std::string hint = failure.Hint();
      for (const PlayerImport::Refusal& refusal : lines.Refused())
        hint += "\nline " + std::to_string(refusal.number) + " refused: " + refusal.reason;
      throw Failure(failure.Kind(), failure.what(), hint);
    }
  }
  PrintReport(context, lines, options);
  if (options.isDryRun) {
    context.messages.Note("Nothing was changed.");
  } else if (lines.CountOf(Kind::Add) + lines.CountOf(Kind::Change) > 0) {
    NoteDone(context, "The players were saved in");
  }
  if (!lines.Refused().empty()) {
    throw Failure(FailureKind::Refused, CountOf(static_cast<std::int64_t>(lines.Refused().size()), "line") +
                                            " of " + options.file + " could not be taken.");
  }
}

}  // namespace

void AddImportCommand(Command& app) {
  Command importing = app.AddCommand("import", "Take records from a CSV file into the league");
  Command players = importing.AddCommand("players", "Add and change players");
  auto options = std::make_shared<ImportOptions>();
  players.AddArgument("FILE", options->file, "CSV file whose first line names its columns").Required();
  players.AddFlag("--dry-run", options->isDryRun, "only tell what would be done");
  players.SetFooter(
      "Columns, in any order: id, first name, last name, position, team, is retired. A line with an id "
      "changes that player; without one, the name and the position tell who is meant, and a player whom the "
      "league does not have is added. 'new' as the id adds one in any case.");
  players.Runs(ImportPlayers, options);
}

}  // namespace cli

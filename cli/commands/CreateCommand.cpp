#include <algorithm>
#include <filesystem>
#include <memory>
#include <string_view>

#include "HLLeague/Backups.h"
#include "cli/commands/Commands.h"
#include "cli/commands/ExitCode.h"
#include "cli/output/Json.h"
#include "cli/output/System.h"
#include "jet/Error.h"
#include "platform/Paths.h"
#include "storage/LeagueCsv.h"
#include "storage/LeagueFile.h"

namespace cli {

using namespace HLLeague;

namespace {

struct CreateOptions {
  bool sample = false;
  bool force = false;
  std::string csvFolder;
};

/// The folder of the sample league: beside the program, or where an installation puts it.
std::string SampleFolder() {
  const std::string program = ProgramFolder();
  const std::string installed = program + "/../share/halcyra/sample";
  for (const std::string& folder : {program + "/sample", installed}) {
    if (std::filesystem::is_directory(HLDataSrvc::ToSystemPath(folder))) return folder;
  }
  throw Failure(FailureKind::CannotOpen,
                "The sample league is missing: there is no folder " + installed + ".");
}

std::vector<HLDataSrvc::LeagueCsv::Filled> Fill(jet::Database& database, const std::string& folder) {
  auto filled = HLDataSrvc::LeagueCsv::FillFromFolder(database, folder);
  if (filled.empty()) {
    std::string names;
    for (const std::string& name : HLDataSrvc::LeagueCsv::FileNames())
      names += (names.empty() ? "" : ", ") + name;
    throw Failure(FailureKind::Refused, "The folder " + folder + " has none of the files " + names + ".");
  }
  return filled;
}

void Create(Context& context, const CreateOptions& options) {
  const std::string path = context.PathInFolder(NewFileName(context.Kind()));
  const std::string csvFolder = options.sample ? SampleFolder() : options.csvFolder;
  std::vector<HLDataSrvc::LeagueCsv::Filled> filled;
  HLDataSrvc::LeagueFileOptions file{.overwrite = options.force};
  if (!csvFolder.empty()) file.fill = [&](jet::Database& database) { filled = Fill(database, csvFolder); };

  try {
    HLDataSrvc::CreateLeagueFile(path, file);
  } catch (const jet::Error& error) {
    if (error.Number() != jet::ErrorNumber::ObjectExists || options.force) throw;
    throw Failure(FailureKind::Refused, error.what(),
                  "With --force it is replaced, and what is in it is lost.");
  } catch (const HLDataSrvc::CsvError& error) {
    throw Failure(FailureKind::Refused, error.what(), "No file was made.");
  }

  if (context.json) {
    Json rows = Json::Object();
    for (const auto& part : filled)
      rows[part.table] = part.rows;
    Json document;
    document["file"] = path;
    document["rows"] = rows;
    context.output.Line(JsonText(document));
    return;
  }
  context.output.Line("Made " + path + ".");
  for (const auto& part : filled) {
    const std::string count = std::to_string(part.rows);
    context.output.Line(std::string(5 - std::min<std::size_t>(5, count.size()), ' ') + count + " rows  " +
                        part.table);
  }
  context.messages.Note("Next: 'halcyra info' shows the league, 'halcyra check' checks its file.");
}

}  // namespace

void AddCreateCommand(Command& app) {
  Command command = app.AddCommand("create", "Make a league file of the chosen kind");
  auto options = std::make_shared<CreateOptions>();
  const Option sample = command.AddFlag("--sample", options->sample, "fill it with the sample league");
  command
      .AddOption(
          "--csv", "DIR", options->csvFolder,
          "fill it from the files positions.csv, teams.csv, prize-types.csv, prizes.csv, players.csv and "
          "managers.csv of this folder, those that are there")
      .Excludes(sample);
  command.AddFlag("--force", options->force, "replace a file that is there already");
  command.Runs(Create, options);
}

}  // namespace cli

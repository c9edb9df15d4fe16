#include <cstdint>
#include <memory>
#include <optional>

#include "HLDataSrvc/ServiceDatabase.h"
#include "HLLeague/DraftSession.h"
#include "HLLeague/League.h"
#include "cli/commands/Commands.h"
#include "cli/commands/ExitCode.h"
#include "cli/output/Json.h"

namespace cli {

using namespace HLLeague;

namespace {

/// 0 is no season.
void RequireSeason(League& league, std::int32_t id) {
  const std::string text = std::to_string(id);
  const bool exists =
      !HLDataSrvc::SelectRows(league.Service(), "select [id] from [season info] where [id] = " + text)
           .empty();
  if (id == 0 || exists) return;
  throw Failure(FailureKind::Refused, "There is no season with the id " + text + ".",
                "'season list' shows the seasons; 0 makes none of them current.");
}

void Settings(Context& context, const std::optional<std::int32_t>& newSeason) {
  League& league = context.OpenLeague();
  if (newSeason) context.Draft().RefuseUnsaved("settings");
  const auto settings = league.Service().GetSettings();
  league.RaiseShownMessages();
  if (newSeason) {
    RequireSeason(league, *newSeason);
    league.Transact("The settings could not be saved.", [&] {
      settings->CurrentSeason(*newSeason);
      league.Service().SaveSettings();
    });
  }
  if (context.json) {
    Json document;
    document["currentSeasonID"] = settings->CurrentSeason();
    context.output.Line(JsonText(document));
  } else {
    context.output.Line("current season  " + std::to_string(settings->CurrentSeason()));
  }
  if (newSeason) context.messages.Note("The settings were saved in " + league.Path() + ".");
}

}  // namespace

void AddSettingsCommand(Command& app) {
  Command command = app.AddCommand("settings", "Show the league's settings, or change them");
  auto season = std::make_shared<std::optional<std::int32_t>>();
  command.AddOption("--current-season", "ID", *season,
                    "make the season with this id the current one; 0: none");
  command.Runs(Settings, season);
}

}  // namespace cli

#include <memory>
#include <optional>
#include <string>

#include "HLLeague/DraftOrder.h"
#include "HLLeague/DraftSession.h"
#include "HLLeague/Find.h"
#include "HLLeague/League.h"
#include "HLLeague/Locks.h"
#include "HLLeague/SeasonSettings.h"
#include "HLLeague/Seasons.h"
#include "cli/commands/Commands.h"
#include "cli/commands/ExitCode.h"
#include "cli/commands/SeasonReport.h"
#include "league/Numbers.h"

namespace cli {

using namespace HLLeague;

namespace {

void List(Context& context) {
  League& league = context.OpenLeague();
  std::string missing;
  const auto seasons = AllSeasons(league, &missing);
  PrintSeasons(context, seasons);
  RequireNoneMissing(missing);
  const std::int32_t current = league.Service().CurrentSeasonID();
  for (const auto& season : seasons) {
    if (season->ID() == current) return;
  }
  context.messages.Note(
      "No season is the current one; 'season use YEAR' makes one of them, or a new one, it.");
}

/// Makes the season of the year current, and creates it if there is none. The season and the settings that
/// name it are stored together.
void MakeCurrent(League& league, std::int32_t year) {
  league.Transact("The season " + std::to_string(year) + " could not be made the current one.", [&] {
    league.Service().CurrentSeasonYear(year);
    league.RaiseShownMessages();
    // If the service cannot create the season, it reports nothing and keeps the current one.
    if (league.Service().CurrentSeasonYear() != year || CurrentSeason(league)->Year() != year)
      throw Failure(FailureKind::Refused, "The service gave no reason.");
  });
}

void Use(Context& context, std::int32_t year, bool create) {
  League& league = context.OpenLeague();
  context.Draft().RefuseUnsaved("season use");
  RequireInRange("The year", year, kFirstYear, kLastYear);
  const bool isNew = SeasonsOfYear(league, year).empty();
  if (isNew && !create) {
    throw Failure(FailureKind::Refused, "There is no season " + std::to_string(year) + ".",
                  "With --create it is made.");
  }
  if (!isNew) SeasonToShow(league, year);  // refuses a year of several seasons
  MakeCurrent(league, year);
  PrintSeason(context, *CurrentSeason(league));
  context.messages.Note((isNew ? "The season was made, and is" : "The season is") +
                        std::string(" the current one in ") + league.Path() + ".");
  if (isNew) {
    context.messages.Note(
        "Next: 'season set' sets its managers, rounds and weeks, 'manager join' lets managers take part.");
  }
}

void Set(Context& context, const SeasonSettings& settings) {
  League& league = context.OpenLeague();
  ChangeSeason(context.Draft(), settings);
  PrintSeason(context, *CurrentSeason(league));
  context.messages.Note("The season was saved in " + league.Path() + ".");
}

/// What is missing before a ranking can be locked; empty when it is complete.
std::string WhatRankingLacks(const HLIData::ISeasonInfo& season) {
  return DraftOrder(season).WhyUnsettled();
}

/// What is missing before a draft can be locked; empty when it is complete.
std::string WhatDraftLacks(DraftSession& draft, const HLIData::ISeasonInfo& season) {
  const std::int32_t made = PicksMadeIn(draft, season);
  const std::int32_t all = DraftsOf(season).Count();
  if (made == all && all > 0) return {};
  return "Of " + CountOf(all, "pick") + ", " + std::to_string(made) + (made == 1 ? " is" : " are") + " made.";
}

void Lock(Context& context, const std::string& what, bool isSure) {
  League& league = context.OpenLeague();
  context.Draft().RefuseUnsaved("season lock");
  const auto season = CurrentSeason(league);
  const bool isRanking = what == "ranking";
  const std::string name = "The " + what + " of the season " + std::to_string(season->Year());
  RequireSeasonUnlocked(*season, "its locks");
  if (isRanking ? season->IsRankingLocked() : season->IsDraftLocked()) {
    PrintSeason(context, *season);
    context.messages.Note(name + " is locked already.");
    return;
  }
  const std::string lacks = isRanking ? WhatRankingLacks(*season) : WhatDraftLacks(context.Draft(), *season);
  if (!lacks.empty() && !isSure && !context.Confirm(lacks + " Lock the " + what + " for good?")) {
    throw Failure(FailureKind::Refused, name + " is not complete. " + lacks,
                  "This cannot be undone. Use --yes to lock it anyway.");
  }
  ChangeAndSave(league, "The lock", [&] {
    return isRanking ? league.Service().DisableRanking() : league.Service().DisableDrafting();
  });
  PrintSeason(context, *CurrentSeason(league));
  context.messages.Note(name + " is locked now.");
}

void AddShow(Command& season) {
  Command command = season.AddCommand("show", "Show the current season, or that of a year");
  auto year = std::make_shared<std::optional<std::int32_t>>();
  command.AddArgument("YEAR", *year, "year of the season");
  command.Runs([&context = season.GetContext(), year] {
    PrintSeason(context, *SeasonToShow(context.OpenLeague(), *year));
  });
}

void AddUse(Command& season) {
  struct Options {
    std::int32_t year = 0;
    bool create = false;
  };
  Command command = season.AddCommand("use", "Make the season of a year the current one");
  auto options = std::make_shared<Options>();
  command.AddArgument("YEAR", options->year, "year of the season").Required();
  command.AddFlag("--create", options->create, "make the season if there is none of that year");
  command.Runs([&context = season.GetContext(), options] { Use(context, options->year, options->create); });
}

void AddSet(Command& season) {
  Command command = season.AddCommand("set", "Change settings of the current season");
  auto settings = std::make_shared<SeasonSettings>();
  const auto add = [&](const char* name, std::optional<std::int32_t>& value, const char* description) {
    command.AddOption(name, "N", value, description);
  };
  add("--year", settings->year, "its year");
  add("--managers", settings->managers, "managers in the draft");
  add("--rounds", settings->rounds, "rounds of the draft");
  add("--contribution", settings->contribution, "what each manager pays in");
  add("--regular-weeks", settings->regularWeeks, "weeks of the regular season");
  add("--weeks", settings->weeks, "all weeks, the regular ones included");
  command.AddOption("--started", settings->hasStarted, "whether play has begun");
  command.AddOption("--season-locked", settings->isLocked, "whether the season is closed to changes");
  command.Runs(Set, settings);
}

void AddLock(Command& season) {
  struct Options {
    std::string what;
    bool isSure = false;
  };
  Command command =
      season.AddCommand("lock", "Lock the ranking or the draft of the current season, for good");
  auto options = std::make_shared<Options>();
  command.AddArgument("WHAT", options->what, "'ranking' or 'draft'").Required().OneOf({"ranking", "draft"});
  command.AddFlag("--yes,-y", options->isSure, "do not ask, although it is not complete");
  command.Runs([&context = season.GetContext(), options] { Lock(context, options->what, options->isSure); });
}

}  // namespace

void AddSeasonCommand(Command& app) {
  Command season = app.AddCommand("season", "List, choose, make, set and lock seasons");
  season.AddCommand("list", "List all seasons").Runs(List);
  AddShow(season);
  AddUse(season);
  AddSet(season);
  AddLock(season);
}

}  // namespace cli

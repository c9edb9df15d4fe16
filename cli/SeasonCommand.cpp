#include <memory>
#include <optional>
#include <string>

#include "cli/Commands.h"
#include "cli/DraftOrder.h"
#include "cli/ExitCode.h"
#include "cli/Find.h"
#include "cli/League.h"
#include "cli/Locks.h"
#include "cli/Numbers.h"
#include "cli/SeasonReport.h"
#include "cli/SeasonSettings.h"
#include "cli/Seasons.h"

namespace cli {
namespace {

void List(Context& context) {
  League& league = context.TheLeague();
  const auto seasons = AllSeasons(league);
  PrintSeasons(context, seasons);
  const std::int32_t current = league.Service().CurrentSeasonID();
  for (const auto& season : seasons) {
    if (season->ID() == current) return;
  }
  context.messages.Note(
      "No season is the current one; 'season use YEAR' makes one of them, or a new one, it.");
}

/// Makes the season of the year current in the service and in the file. When it cannot be stored, the one
/// that was current before is again.
void MakeCurrent(League& league, std::int32_t year) {
  const std::int32_t before = league.Service().CurrentSeasonID();
  std::string reason;
  try {
    league.Service().CurrentSeasonYear(year);
    league.RaiseShownMessages();
    // Of a season that could not be made nothing is said: the one before stays current.
    if (league.Service().CurrentSeasonYear() == year && CurrentSeason(league)->Year() == year) return;
    reason = "The service has not said why.";
  } catch (const std::exception& error) {
    reason = error.what();
  }
  league.Service().GetSettings()->CurrentSeason(before);
  throw Failure(ExitCode::Refused,
                "The season " + std::to_string(year) + " could not be made the current one. " + reason,
                "'season list' shows the seasons that there are.");
}

void Use(Context& context, std::int32_t year, bool create) {
  League& league = context.TheLeague();
  league.RefuseUnsavedPicks("season use");
  RequireInRange("The year", year, kFirstYear, kLastYear);
  const bool isNew = SeasonsOfYear(league, year).empty();
  if (isNew && !create) {
    throw Failure(ExitCode::Refused, "There is no season " + std::to_string(year) + ".",
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

/// What is missing before a ranking can be locked; empty when it is complete.
std::string WhatRankingLacks(const HLIData::ISeasonInfo& season) {
  return DraftOrder(season).WhyUnsettled();
}

/// What is missing before a draft can be locked; empty when it is complete.
std::string WhatDraftLacks(const HLIData::ISeasonInfo& season) {
  const std::int32_t made = PicksMadeIn(season).count;
  const std::int32_t all = DraftsOf(season).Count();
  if (made == all && all > 0) return {};
  return "Of " + CountOf(all, "pick") + ", " + std::to_string(made) + (made == 1 ? " is" : " are") + " made.";
}

void Lock(Context& context, const std::string& what, bool isSure) {
  League& league = context.TheLeague();
  league.RefuseUnsavedPicks("season lock");
  const auto season = CurrentSeason(league);
  const bool isRanking = what == "ranking";
  const std::string name = "The " + what + " of the season " + std::to_string(season->Year());
  RequireSeasonUnlocked(*season, "its locks");
  if (isRanking ? season->IsRankingLocked() : season->IsDraftLocked()) {
    PrintSeason(context, *season);
    context.messages.Note(name + " is locked already.");
    return;
  }
  const std::string lacks = isRanking ? WhatRankingLacks(*season) : WhatDraftLacks(*season);
  if (!lacks.empty() && !isSure && !context.Confirm(lacks + " Lock the " + what + " for good?")) {
    throw Failure(ExitCode::Refused, name + " is not complete. " + lacks,
                  "Nothing unlocks it again. With --yes it is locked all the same.");
  }
  ChangeAndSave(league, "The lock", [&] {
    return isRanking ? league.Service().DisableRanking() : league.Service().DisableDrafting();
  });
  PrintSeason(context, *CurrentSeason(league));
  context.messages.Note(name + " is locked now.");
}

void AddShow(CLI::App& season, Context& context) {
  CLI::App* command = season.add_subcommand("show", "Show the current season, or that of a year");
  auto year = std::make_shared<std::optional<std::int32_t>>();
  command->add_option("YEAR", *year, "year of the season")->type_name("");
  command->callback([&context, year] {
    context.action = [&context, year] { PrintSeason(context, *SeasonToShow(context.TheLeague(), *year)); };
  });
}

void AddUse(CLI::App& season, Context& context) {
  struct Options {
    std::int32_t year = 0;
    bool create = false;
  };
  CLI::App* command = season.add_subcommand("use", "Make the season of a year the current one");
  auto options = std::make_shared<Options>();
  command->add_option("YEAR", options->year, "year of the season")->type_name("")->required();
  command->add_flag("--create", options->create, "make the season if there is none of that year");
  command->callback([&context, options] {
    context.action = [&context, options] { Use(context, options->year, options->create); };
  });
}

void AddYesNo(CLI::App& command, const std::string& name, std::optional<bool>& value,
              const std::string& description) {
  command
      .add_option_function<std::string>(
          name, [&value](const std::string& word) { value = word == "yes"; }, description)
      ->type_name("yes|no")
      ->check(CLI::IsMember({"yes", "no"}));
}

void AddSet(CLI::App& season, Context& context) {
  CLI::App* command = season.add_subcommand("set", "Change settings of the current season");
  auto settings = std::make_shared<SeasonSettings>();
  const auto add = [&](const char* name, std::optional<std::int32_t>& value, const char* description) {
    command->add_option(name, value, description)->type_name("N");
  };
  add("--year", settings->year, "its year");
  add("--managers", settings->managers, "managers in the draft");
  add("--rounds", settings->rounds, "rounds of the draft");
  add("--contribution", settings->contribution, "what each manager pays in");
  add("--regular-weeks", settings->regularWeeks, "weeks of the regular season");
  add("--weeks", settings->weeks, "all weeks, the regular ones included");
  AddYesNo(*command, "--started", settings->hasStarted, "whether play has begun");
  AddYesNo(*command, "--season-locked", settings->isLocked, "whether the season is closed to changes");
  command->callback(
      [&context, settings] { context.action = [&context, settings] { SetSeason(context, *settings); }; });
}

void AddLock(CLI::App& season, Context& context) {
  struct Options {
    std::string what;
    bool isSure = false;
  };
  CLI::App* command =
      season.add_subcommand("lock", "Lock the ranking or the draft of the current season, for good");
  auto options = std::make_shared<Options>();
  command->add_option("WHAT", options->what, "'ranking' or 'draft'")
      ->type_name("")
      ->required()
      ->check(CLI::IsMember({"ranking", "draft"}));
  command->add_flag("--yes,-y", options->isSure, "do not ask, although it is not complete");
  command->callback([&context, options] {
    context.action = [&context, options] { Lock(context, options->what, options->isSure); };
  });
}

}  // namespace

void AddSeasonCommand(CLI::App& app, Context& context) {
  CLI::App* season = app.add_subcommand("season", "List, choose, make, set and lock seasons");
  season->require_subcommand(1);
  season->add_subcommand("list", "List all seasons")->callback([&context] {
    context.action = [&context] { List(context); };
  });
  AddShow(*season, context);
  AddUse(*season, context);
  AddSet(*season, context);
  AddLock(*season, context);
}

}  // namespace cli

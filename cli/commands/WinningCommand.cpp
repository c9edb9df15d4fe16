#include <algorithm>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "HLLeague/Find.h"
#include "HLLeague/League.h"
#include "HLLeague/Locks.h"
#include "HLLeague/Seasons.h"
#include "HLLeague/Winnings.h"
#include "cli/commands/Commands.h"
#include "cli/commands/ExitCode.h"
#include "cli/output/Json.h"
#include "league/Numbers.h"
#include "league/TextTable.h"
#include "league/Utf8.h"

namespace cli {

using namespace HLLeague;

namespace {

constexpr std::size_t kNameWidth = 26;

Json WinningJson(const Winning& winning) {
  Json json;
  json["id"] = winning.id;
  json["week"] = winning.week < 1 ? Json() : Json(winning.week);
  json["managerID"] = winning.managerID;
  json["manager"] = winning.manager;
  json["prizeID"] = winning.prizeID;
  json["prize"] = winning.prize;
  json["amount"] = winning.amount ? Json(*winning.amount) : Json();
  return json;
}

/// "Winning 213: Ann Lee wins Weekly high score, 25, in week 3."
std::string WinningText(const Winning& winning) {
  return "Winning " + std::to_string(winning.id) + ": " + Printable(winning.manager) + " wins " +
         Printable(winning.prize) + ", " + (winning.amount ? std::to_string(*winning.amount) : "no amount") +
         (winning.week < 1 ? "" : ", in week " + std::to_string(winning.week)) + ".";
}

void RequireWeek(const HLIData::ISeasonInfo& season, std::int32_t week) {
  if (week >= 1 && week <= season.TotalNoOfWeeks()) return;
  const std::string weeks = CountOf(season.TotalNoOfWeeks(), "week");
  throw Failure(FailureKind::Refused,
                "There is no week " + std::to_string(week) + ": the season " + std::to_string(season.Year()) +
                    " has " + weeks + ".",
                season.TotalNoOfWeeks() < 1 ? "'season set --weeks N' sets their number." : "");
}

struct ListOptions {
  std::optional<std::int32_t> year;
  std::optional<std::int32_t> week;
};

void List(Context& context, const ListOptions& options) {
  League& league = context.OpenLeague();
  const auto season = SeasonToShow(league, options.year);
  if (options.week) RequireWeek(*season, *options.week);
  std::vector<Winning> winnings = WinningsIn(league, *season);
  if (options.week) {
    winnings.erase(std::remove_if(winnings.begin(), winnings.end(),
                                  [&](const Winning& winning) { return winning.week != *options.week; }),
                   winnings.end());
  }
  std::int64_t sum = 0;
  for (const Winning& winning : winnings)
    sum += winning.amount.value_or(0);
  if (context.json) {
    Json document;
    document["season"] = season->Year();
    document["winnings"] = Json::Array();
    for (const Winning& winning : winnings)
      document["winnings"].Append(WinningJson(winning));
    document["sum"] = sum;
    context.output.Line(JsonText(document));
    return;
  }
  context.output.Line("Season " + std::to_string(season->Year()) +
                      (options.week ? ", week " + std::to_string(*options.week) : "") + ": " +
                      CountOf(static_cast<std::int64_t>(winnings.size()), "winning") + " of " +
                      std::to_string(sum) + " together.");
  if (winnings.empty()) return;
  using Align = TextTable::Align;
  TextTable table(
      {{"week", Align::Right}, {"id", Align::Right}, {"manager"}, {"prize"}, {"amount", Align::Right}});
  for (const Winning& winning : winnings) {
    table.Add({WeekText(winning.week), std::to_string(winning.id),
               CutToWidth(Printable(winning.manager), kNameWidth),
               CutToWidth(Printable(winning.prize), kNameWidth),
               winning.amount ? std::to_string(*winning.amount) : "-"});
  }
  context.output.Lines(table.Lines());
}

/// Tells what was added or removed.
void PrintChanged(Context& context, const char* name, const std::vector<Winning>& winnings,
                  const std::string& before) {
  if (context.json) {
    Json document;
    document[name] = Json::Array();
    for (const Winning& winning : winnings)
      document[name].Append(WinningJson(winning));
    context.output.Line(JsonText(document));
  } else {
    for (const Winning& winning : winnings)
      context.output.Line(before + WinningText(winning));
  }
  context.messages.Note("The winnings were saved in " + context.OpenLeague().Path() + ".");
}

struct AddOptions {
  std::string manager;
  std::string prize;
  std::optional<std::int32_t> week;
};

void NoteSameBefore(Context& context, const std::vector<Winning>& before, const Winning& added) {
  for (const Winning& other : before) {
    if (other.managerID != added.managerID || other.prizeID != added.prizeID || other.week != added.week)
      continue;
    context.messages.Note("It is there twice now: winning " + std::to_string(other.id) +
                          " is the same. 'winning remove ID' removes one.");
    return;
  }
}

void Add(Context& context, const AddOptions& options) {
  League& league = context.OpenLeague();
  const auto season = CurrentSeason(league);
  RequireSeasonUnlocked(*season, "its winnings");
  const auto manager = FindManager(*season, options.manager);
  const auto prize = FindPrize(*season, options.prize);
  if (options.week) RequireWeek(*season, *options.week);
  const std::vector<Winning> before = WinningsIn(league, *season);
  std::shared_ptr<HLIData::IWinningInfo> added;
  ChangeAndSave(league, "The winnings", [&] {
    if (!league.Service().AddWinning(added) || !added) return false;
    added->SeasonID(season->ID());
    added->ManagerID(std::to_string(manager->ID()));
    added->PrizeID(std::to_string(prize->ID()));
    added->Week(options.week.value_or(0));
    added->Action(HLIData::WinningAction::Add);
    // One that could get no id is dropped without a word.
    return league.Service().SaveWinnings() && added->ID() > 0;
  });
  const std::vector<Winning> now = WinningsIn(league, *CurrentSeason(league));
  const auto stored =
      std::find_if(now.begin(), now.end(), [&](const Winning& winning) { return winning.id == added->ID(); });
  if (stored == now.end())
    throw Failure(FailureKind::Refused, "The winning was saved, but is not there now.");
  PrintChanged(context, "added", {*stored}, "");
  NoteSameBefore(context, before, *stored);
}

void Remove(Context& context, const std::vector<std::int32_t>& ids) {
  League& league = context.OpenLeague();
  const auto season = CurrentSeason(league);
  RequireSeasonUnlocked(*season, "its winnings");
  const std::vector<Winning> before = WinningsIn(league, *season);
  std::vector<Winning> removed;
  for (const std::int32_t id : ids) {
    const auto hasID = [id](const Winning& winning) { return winning.id == id; };
    const auto found = std::find_if(before.begin(), before.end(), hasID);
    if (found == before.end()) {
      throw Failure(FailureKind::Refused,
                    "The season " + std::to_string(season->Year()) + " has no winning with the id " +
                        std::to_string(id) + ".",
                    "'winning list' shows the ids.");
    }
    if (std::none_of(removed.begin(), removed.end(), hasID)) removed.push_back(*found);
  }
  ChangeAndSave(league, "The winnings", [&] {
    for (const auto& winning : WinningsOf(*season).Items()) {
      const auto isIt = [&](const Winning& one) { return one.id == winning->ID(); };
      if (std::any_of(removed.begin(), removed.end(), isIt)) winning->Action(HLIData::WinningAction::Delete);
    }
    return league.Service().SaveWinnings();
  });
  PrintChanged(context, "removed", removed, "Removed. ");
}

}  // namespace

void AddWinningCommand(Command& app) {
  Command winning = app.AddCommand("winning", "The prizes won in the current season");

  Command list = winning.AddCommand("list", "List the prizes won, week by week");
  auto listOptions = std::make_shared<ListOptions>();
  list.AddOption("--season", "YEAR", listOptions->year, "in the season of this year");
  list.AddOption("--week", "N", listOptions->week, "in this week alone");
  list.Runs(List, listOptions);

  Command add = winning.AddCommand("add", "Record that a manager has won a prize");
  auto addOptions = std::make_shared<AddOptions>();
  add.AddArgument("MANAGER", addOptions->manager, "who takes part in the season: a name or an id").Required();
  add.AddArgument("PRIZE", addOptions->prize, "a prize that the season puts up: a name or an id").Required();
  add.AddOption("--week", "N", addOptions->week, "week in which it was won; without, it belongs to none");
  add.Runs(Add, addOptions);

  Command remove = winning.AddCommand("remove", "Take winnings back");
  auto ids = std::make_shared<std::vector<std::int32_t>>();
  remove.AddArgument("ID", *ids, "ids of the winnings, as 'winning list' shows them").Required();
  remove.Runs(Remove, ids);
}

}  // namespace cli

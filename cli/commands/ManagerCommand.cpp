#include <algorithm>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "HLLeague/DraftSession.h"
#include "HLLeague/Find.h"
#include "HLLeague/League.h"
#include "HLLeague/Locks.h"
#include "HLLeague/Ranking.h"
#include "HLLeague/Seasons.h"
#include "HLLeague/Winnings.h"
#include "cli/commands/Commands.h"
#include "cli/commands/ExitCode.h"
#include "cli/commands/ManagerReport.h"
#include "cli/commands/RecordCommands.h"
#include "cli/commands/WordsCommand.h"
#include "league/Numbers.h"
#include "records/RecordKey.h"

namespace cli {

using namespace HLLeague;

namespace {

using Words = std::vector<std::string>;

struct ListOptions {
  std::optional<std::int32_t> year;
  bool all = false;
};

void List(Context& context, const ListOptions& options) {
  League& league = context.OpenLeague();
  if (options.all) {
    PrintAllManagers(context, SeasonShownBeside(league, options.year).get());
  } else {
    PrintManagers(context, *SeasonToShow(league, options.year));
  }
}

/// Prints the managers as they are stored now, and says where.
void PrintSaved(Context& context) {
  PrintManagers(context, *CurrentSeason(context.OpenLeague()));
  context.messages.Note("The managers were saved in " + context.OpenLeague().Path() + ".");
}

/// Those whom the words mean, each once.
template <typename Record, typename Find>
std::vector<std::shared_ptr<Record>> AllMeant(const Words& names, const Find& find) {
  std::vector<std::shared_ptr<Record>> meant;
  for (const std::string& name : names) {
    const auto record = find(name);
    const auto isSame = [&](const auto& other) { return other->ID() == record->ID(); };
    if (std::any_of(meant.begin(), meant.end(), isSame))
      throw Failure(FailureKind::Refused, FullName(*record) + " is named twice.");
    meant.push_back(record);
  }
  return meant;
}

std::vector<std::shared_ptr<HLIData::IManagerInfo>> ManagersMeant(HLIData::ISeasonInfo& season,
                                                                  const Words& names) {
  return AllMeant<HLIData::IManagerInfo>(names, [&](const auto& name) { return FindManager(season, name); });
}

void Join(Context& context, const Words& names) {
  League& league = context.OpenLeague();
  context.Draft().RefuseUnsaved("manager join");
  const auto season = CurrentSeason(league);
  RequireRankingUnlocked(*season);
  const auto joining = AllMeant<HLIData::IManagerTmplInfo>(
      names, [&](const auto& name) { return FindManagerTmpl(league, name); });
  const auto& playing = ManagersOf(*season);
  for (const auto& manager : joining) {
    if (playing.Find(HLDataSrvc::RecordKey(manager->ID())))
      throw Failure(FailureKind::Refused, FullName(*manager) + " takes part in the season already.");
  }
  const auto together = playing.Count() + static_cast<std::int32_t>(joining.size());
  if (together > season->NoOfManagers()) {
    throw Failure(FailureKind::Refused,
                  "The season " + std::to_string(season->Year()) + " is set to " +
                      CountOf(season->NoOfManagers(), "manager") + "; it would have " +
                      std::to_string(together) + ".",
                  "'season set --managers N' changes their number.");
  }
  ChangeAndSave(league, "The managers", [&] {
    return std::all_of(joining.begin(), joining.end(),
                       [&](const auto& manager) { return season->AddManager(manager); }) &&
           league.Service().SaveManagersPlaying();
  });
  PrintSaved(context);
}

/// Raises Failure for a manager who has done more in the season than joining it.
void RequireNothingDone(DraftSession& draft, const HLIData::ISeasonInfo& season,
                        const HLIData::IManagerInfo& manager) {
  const Picks& picks = draft.Stored();
  const std::vector<MisfitPick>& misfits = draft.Misfits();
  const auto noOfPicks = std::count_if(picks.begin(), picks.end(),
                                       [&](const Pick& pick) { return pick.managerID == manager.ID(); }) +
                         std::count_if(misfits.begin(), misfits.end(), [&](const MisfitPick& misfit) {
                           const bool isOutside = misfit.number < 1 || misfit.number > std::ssize(picks);
                           return isOutside && misfit.managerID == manager.ID();
                         });
  const auto winnings = WinningsIn(draft.GetLeague(), season);
  const auto noOfWinnings = std::count_if(winnings.begin(), winnings.end(), [&](const Winning& winning) {
    return winning.managerID == manager.ID();
  });
  if (noOfPicks == 0 && noOfWinnings == 0) return;
  std::string what = noOfPicks == 0 ? "" : CountOf(noOfPicks, "pick");
  if (noOfWinnings > 0) what += (what.empty() ? "" : " and ") + CountOf(noOfWinnings, "winning");
  throw Failure(FailureKind::Refused, FullName(manager) + " cannot leave the season " +
                                          std::to_string(season.Year()) + ", having " + what + " in it.");
}

void Leave(Context& context, const Words& names) {
  League& league = context.OpenLeague();
  context.Draft().RefuseUnsaved("manager leave");
  const auto season = CurrentSeason(league);
  RequireRankingUnlocked(*season);
  const auto leaving = ManagersMeant(*season, names);
  for (const auto& manager : leaving)
    RequireNothingDone(context.Draft(), *season, *manager);
  ChangeAndSave(league, "The managers", [&] {
    for (const auto& manager : leaving) {
      if (!season->RemoveManager(manager)) return false;
    }
    ApplyRanking(*season, RankingOf(*season));  // those behind move up
    return league.Service().SaveManagersPlaying();
  });
  PrintSaved(context);
}

/// "NAME... paid|unpaid"
void Fee(Context& context, const Words& words) {
  const std::string& state = words.back();
  if (words.size() < 2 || (state != "paid" && state != "unpaid")) {
    throw Failure(FailureKind::WrongUsage, "Say whose fee it is, and then 'paid' or 'unpaid'.",
                  "'manager fee Ann paid', or several names before the last word.");
  }
  League& league = context.OpenLeague();
  context.Draft().RefuseUnsaved("manager fee");
  const auto season = CurrentSeason(league);
  RequireSeasonUnlocked(*season, "its fees");
  const auto managers = ManagersMeant(*season, Words(words.begin(), words.end() - 1));
  ChangeAndSave(league, "The managers", [&] {
    for (const auto& manager : managers)
      manager->IsFeePaid(state == "paid");
    return league.Service().SaveManagersPlaying();
  });
  PrintSaved(context);
}

/// "NAME PLACE", or all names.
void Rank(Context& context, const Words& words) {
  League& league = context.OpenLeague();
  context.Draft().RefuseUnsaved("manager rank");
  const auto season = CurrentSeason(league);
  RequireRankingUnlocked(*season);
  const auto place = words.size() == 2 ? WholeNumber(words.back()) : std::nullopt;
  const Ranking ranking =
      place ? RankingWithPlace(*season, words.front(), *place) : WholeRanking(*season, words);
  const std::int32_t picksMade = PicksMadeIn(context.Draft(), *season);
  ChangeAndSave(league, "The ranking", [&] {
    ApplyRanking(*season, ranking);
    return league.Service().SaveRanking();
  });
  PrintSaved(context);
  if (picksMade > 0) {
    context.messages.Note("The draft has begun: " + CountOf(picksMade, "pick") +
                          (picksMade == 1 ? " stays" : " stay") + " with whom made " +
                          (picksMade == 1 ? "it." : "them."));
  }
}

}  // namespace

void AddManagerCommand(Command& app) {
  Command manager = app.AddCommand(
      "manager", "Who takes part in the current season, ranks and fees; the league's managers");
  Command list = manager.AddCommand("list", "List who takes part, in the order of the ranking");
  auto options = std::make_shared<ListOptions>();
  list.AddOption("--season", "YEAR", options->year, "in the season of this year");
  list.AddFlag("--all", options->all, "list all managers of the league");
  list.Runs(List, options);
  AddWordsCommand(manager, "join", "Let managers take part", "NAME", "last names, full names, or ids", Join);
  AddWordsCommand(manager, "leave", "Take managers out who have neither picks nor winnings", "NAME",
                  "last names, full names, or ids", Leave);
  AddWordsCommand(manager, "fee", "Mark the fee of managers as paid or unpaid", "NAME",
                  "names, and as the last word 'paid' or 'unpaid'", Fee);
  AddWordsCommand(manager, "rank", "Rank all managers, or put one of them on a place", "NAME",
                  "all names from the first rank to the last; or one name and its place", Rank);
  AddManagerRecordCommands(manager);
}

}  // namespace cli

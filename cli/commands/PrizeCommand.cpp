#include <algorithm>
#include <limits>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "HLLeague/DraftSession.h"
#include "HLLeague/Find.h"
#include "HLLeague/League.h"
#include "HLLeague/Locks.h"
#include "HLLeague/Prizes.h"
#include "HLLeague/Seasons.h"
#include "HLLeague/Winnings.h"
#include "cli/commands/Commands.h"
#include "cli/commands/ExitCode.h"
#include "cli/commands/PrizeReport.h"
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
    PrintAllPrizes(context, SeasonShownBeside(league, options.year).get());
  } else {
    PrintPrizes(context, *SeasonToShow(league, options.year));
  }
}

/// A prize, and what it is to pay.
struct PrizeAmount {
  std::shared_ptr<HLIData::IPrizeTmplInfo> prize;
  std::int32_t amount = 0;
};

PrizeAmount Understood(League& league, const std::string& name, const std::string& amount) {
  const auto number = WholeNumber(amount);
  if (!number) {
    throw Failure(FailureKind::WrongUsage,
                  "'" + amount + "' is no amount of money: it must be a whole number.",
                  "'prize set \"High score\" 25', or 'prize set \"High score=25\" \"Low score=5\"'.");
  }
  PrizeAmount wanted{FindPrizeTmpl(league, name), *number};
  RequireLoaded(league, *wanted.prize);
  RequireInRange("The amount of " + wanted.prize->Desc(), wanted.amount, 0,
                 std::numeric_limits<std::int32_t>::max());
  return wanted;
}

/// "PRIZE AMOUNT", or "PRIZE=AMOUNT" as often as wanted.
std::vector<PrizeAmount> UnderstoodAll(League& league, const Words& words) {
  if (words.size() == 2 && words.back().find('=') == std::string::npos)
    return {Understood(league, words.front(), words.back())};
  std::vector<PrizeAmount> all;
  for (const std::string& word : words) {
    const std::size_t equals = word.rfind('=');
    if (equals == std::string::npos) {
      throw Failure(FailureKind::WrongUsage, "'" + word + "' does not say how much.",
                    "'prize set \"High score\" 25', or 'prize set \"High score=25\" \"Low score=5\"'.");
    }
    const PrizeAmount wanted = Understood(league, word.substr(0, equals), word.substr(equals + 1));
    const bool isTwice =
        std::any_of(all.begin(), all.end(), [&](const auto& other) { return other.prize == wanted.prize; });
    if (isTwice) throw Failure(FailureKind::Refused, wanted.prize->Desc() + " is named twice.");
    all.push_back(wanted);
  }
  return all;
}

/// Prints the prizes as they are stored now, and says where.
void PrintSaved(Context& context) {
  PrintPrizes(context, *CurrentSeason(context.OpenLeague()));
  context.messages.Note("The prizes were saved in " + context.OpenLeague().Path() + ".");
}

std::shared_ptr<HLIData::ISeasonInfo> SeasonToChange(Context& context, const std::string& command) {
  context.Draft().RefuseUnsaved(command);
  auto season = CurrentSeason(context.OpenLeague());
  RequireSeasonUnlocked(*season, "its prizes");
  PrizesOf(*season);
  return season;
}

void Set(Context& context, const Words& words) {
  League& league = context.OpenLeague();
  const auto season = SeasonToChange(context, "prize set");
  const std::vector<PrizeAmount> wanted = UnderstoodAll(league, words);
  ChangeAndSave(league, "The prizes", [&] {
    for (const PrizeAmount& one : wanted) {
      if (!season->AddPrize(one.prize)) return false;
      PrizesOf(*season).Item(HLDataSrvc::RecordKey(one.prize->ID()))->Amount(one.amount);
    }
    return league.Service().SaveCurrentSeasonInfo();
  });
  PrintSaved(context);
}

void Remove(Context& context, const Words& names) {
  League& league = context.OpenLeague();
  const auto season = SeasonToChange(context, "prize remove");
  const std::vector<Winning> winnings = WinningsIn(league, *season);
  std::vector<std::string> keys;
  for (const std::string& name : names) {
    const auto prize = FindPrize(*season, name);
    const std::string key = HLDataSrvc::RecordKey(prize->ID());
    if (std::find(keys.begin(), keys.end(), key) != keys.end())
      throw Failure(FailureKind::Refused, prize->Desc() + " is named twice.");
    keys.push_back(key);
    const auto won = std::count_if(winnings.begin(), winnings.end(),
                                   [&](const Winning& winning) { return winning.prizeID == prize->ID(); });
    if (won == 0) continue;
    throw Failure(FailureKind::Refused,
                  prize->Desc() + " cannot be removed from the season " + std::to_string(season->Year()) +
                      ": " + CountOf(won, "winning") + " would pay nothing.",
                  "'winning list' shows them, 'winning remove ID' removes one.");
  }
  ChangeAndSave(league, "The prizes", [&] {
    for (const std::string& key : keys)
      PrizesOf(*season).Remove(key);
    return league.Service().SaveCurrentSeasonInfo();
  });
  PrintSaved(context);
}

}  // namespace

void AddPrizeCommand(Command& app) {
  Command prize =
      app.AddCommand("prize", "The prizes that the current season puts up, and those of the league");
  Command list = prize.AddCommand("list", "List the prizes of the season, and what they pay");
  auto options = std::make_shared<ListOptions>();
  list.AddOption("--season", "YEAR", options->year, "of the season of this year");
  list.AddFlag("--all", options->all, "list all prizes of the league");
  list.Runs(List, options);
  AddWordsCommand(prize, "set", "Put prizes up, or change what they pay", "PRIZE",
                  "a name or an id, and the amount; or PRIZE=AMOUNT, as often as wanted", Set);
  AddWordsCommand(prize, "remove", "Take prizes out that nobody has won", "PRIZE", "names or ids", Remove);
  AddPrizeRecordCommands(prize);
}

}  // namespace cli

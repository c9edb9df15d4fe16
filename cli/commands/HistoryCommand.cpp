#include <algorithm>
#include <map>
#include <memory>
#include <string>
#include <vector>

#include "HLLeague/Accounts.h"
#include "HLLeague/DraftSession.h"
#include "HLLeague/League.h"
#include "HLLeague/Seasons.h"
#include "cli/commands/Commands.h"
#include "cli/output/Json.h"
#include "league/TextTable.h"
#include "league/Utf8.h"

namespace cli {

using namespace HLLeague;

namespace {

constexpr std::size_t kNameWidth = 24;

/// What a season came to.
struct PastSeason {
  std::shared_ptr<HLIData::ISeasonInfo> season;
  Accounts accounts;
  std::int32_t picksMade = 0;
};

/// The season in which a manager won most.
struct BestSeason {
  std::int32_t year = 0;
  std::int64_t won = 0;
};

using BestSeasons = std::map<std::int32_t, BestSeason>;

/// Who has won most; of several the one with the better balance. None while there are no winnings.
const Account* MostWon(const Accounts& accounts) {
  const auto most = std::max_element(accounts.managers.begin(), accounts.managers.end(),
                                     [](const Account& a, const Account& b) { return a.won < b.won; });
  return most == accounts.managers.end() || most->won == 0 ? nullptr : &*most;
}

BestSeasons BestSeasonsIn(const std::vector<PastSeason>& past) {
  BestSeasons best;
  for (const PastSeason& one : past) {
    for (const Account& account : one.accounts.managers) {
      BestSeason& known = best[account.managerID];
      if (account.won > known.won) known = {one.season->Year(), account.won};
    }
  }
  return best;
}

Json SeasonJson(const PastSeason& one) {
  const Account* most = MostWon(one.accounts);
  const Account total = one.accounts.Total();
  Json json;
  json["season"] = one.season->Year();
  json["managersPlaying"] = ManagersOf(*one.season).Count();
  json["noOfRounds"] = one.season->NoOfRounds();
  json["picksMade"] = one.picksMade;
  json["pool"] = PoolOf(*one.season);
  json["putUp"] = one.accounts.putUp;
  json["won"] = total.won;
  json["winnings"] = total.winnings;
  json["mostWon"] = most == nullptr
                        ? Json()
                        : Json{{"managerID", most->managerID}, {"manager", most->name}, {"won", most->won}};
  return json;
}

Json ManagerJson(const Account& account, const BestSeason& best) {
  Json json;
  json["managerID"] = account.managerID;
  json["manager"] = account.name;
  json["seasons"] = account.seasons;
  json["winnings"] = account.winnings;
  json["paid"] = account.paid;
  json["won"] = account.won;
  json["balance"] = account.Balance();
  json["bestSeason"] = best.won == 0 ? Json() : Json{{"season", best.year}, {"won", best.won}};
  return json;
}

void PrintJson(Context& context, const std::vector<PastSeason>& past, const Accounts& all) {
  BestSeasons best = BestSeasonsIn(past);
  Json document;
  document["seasons"] = Json::Array();
  for (const PastSeason& one : past)
    document["seasons"].Append(SeasonJson(one));
  document["managers"] = Json::Array();
  for (const Account& account : all.managers)
    document["managers"].Append(ManagerJson(account, best[account.managerID]));
  context.output.Line(JsonText(document));
}

void PrintSeasonTable(Context& context, const std::vector<PastSeason>& past) {
  using Align = TextTable::Align;
  TextTable table({{"season", Align::Right},
                   {"managers", Align::Right},
                   {"picks", Align::Right},
                   {"pool", Align::Right},
                   {"put up", Align::Right},
                   {"won", Align::Right},
                   {"won most"}});
  for (const PastSeason& one : past) {
    const Account* most = MostWon(one.accounts);
    table.Add({std::to_string(one.season->Year()), std::to_string(ManagersOf(*one.season).Count()),
               std::to_string(one.picksMade), std::to_string(PoolOf(*one.season)),
               std::to_string(one.accounts.putUp), std::to_string(one.accounts.Total().won),
               most == nullptr
                   ? "-"
                   : CutToWidth(Printable(most->name), kNameWidth) + " (" + std::to_string(most->won) + ")"});
  }
  context.output.Lines(table.Lines());
}

void PrintManagerTable(Context& context, const std::vector<PastSeason>& past, const Accounts& all) {
  using Align = TextTable::Align;
  BestSeasons best = BestSeasonsIn(past);
  TextTable table({{"manager"},
                   {"seasons", Align::Right},
                   {"winnings", Align::Right},
                   {"paid", Align::Right},
                   {"won", Align::Right},
                   {"balance", Align::Right},
                   {"best season"}});
  for (const Account& account : all.managers) {
    const BestSeason& his = best[account.managerID];
    table.Add({CutToWidth(Printable(account.name), kNameWidth), std::to_string(account.seasons),
               std::to_string(account.winnings), std::to_string(account.paid), std::to_string(account.won),
               std::to_string(account.Balance()),
               his.won == 0 ? "-" : std::to_string(his.year) + " (" + std::to_string(his.won) + ")"});
  }
  context.output.Lines(table.Lines());
}

void History(Context& context) {
  League& league = context.OpenLeague();
  std::vector<PastSeason> past;
  std::vector<Accounts> accounts;
  std::string missing;
  for (const auto& season : AllSeasons(league, &missing)) {
    past.push_back({season, AccountsOf(league, *season), PicksMadeIn(context.Draft(), *season)});
    accounts.push_back(past.back().accounts);
  }
  const Accounts all = SumOf(accounts);
  if (context.json) {
    PrintJson(context, past, all);
  } else if (past.empty()) {
    context.output.Line("There are no seasons.");
  } else {
    PrintSeasonTable(context, past);
    if (!all.managers.empty()) {
      context.output.Line("");
      PrintManagerTable(context, past, all);
    }
  }
  RequireNoneMissing(missing);
}

}  // namespace

void AddHistoryCommand(Command& app) {
  app.AddCommand("history", "Show all seasons, and each manager over all of them").Runs(History);
}

}  // namespace cli

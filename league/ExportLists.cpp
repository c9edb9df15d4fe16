#include "HLLeague/ExportLists.h"

#include <algorithm>
#include <limits>
#include <map>

#include "HLLeague/Accounts.h"
#include "HLLeague/DraftOrder.h"
#include "HLLeague/DraftSession.h"
#include "HLLeague/Failure.h"
#include "HLLeague/Find.h"
#include "HLLeague/Pickables.h"
#include "HLLeague/Players.h"
#include "HLLeague/Prizes.h"
#include "HLLeague/Seasons.h"
#include "HLLeague/Winnings.h"
#include "records/RecordKey.h"

namespace HLLeague {
namespace {

using HLIData::ISeasonInfo;
using Cell = ExportCell;

Cell Sum(std::int64_t amount) {
  using Limits = std::numeric_limits<std::int32_t>;
  if (amount < Limits::min() || amount > Limits::max()) return static_cast<double>(amount);
  return static_cast<std::int32_t>(amount);
}

Cell NumberOrNull(std::int32_t number) {
  return number < 1 ? Cell() : Cell(number);
}

Cell TextOrNull(const std::string& text) {
  return text.empty() ? Cell() : Cell(text);
}

template <typename Records>
const Records& Checked(League& league, const Records& records) {
  league.RaiseShownMessages();
  return records;
}

ExportList Players(DraftSession& draft) {
  ExportList list{"Players", {"id", "first name", "last name", "position", "team", "is retired"}, {}};
  for (const auto& player : AllPlayers(draft.GetLeague())) {
    list.rows.push_back({player->ID(), player->FirstName(), player->LastName(),
                         player->Position() ? Cell(player->Position()->Abbr()) : Cell(),
                         player->Team() ? Cell(player->Team()->Abbr()) : Cell(), player->IsRetired()});
  }
  return list;
}

ExportList Managers(DraftSession& draft) {
  ExportList list{"Managers", {"id", "first name", "last name"}, {}};
  for (const auto& manager : AllManagers(draft.GetLeague()))
    list.rows.push_back({manager->ID(), manager->FirstName(), manager->LastName()});
  return list;
}

ExportList Prizes(DraftSession& draft) {
  ExportList list{"Prizes", {"id", "prize", "type"}, {}};
  for (const auto& prize : AllPrizes(draft.GetLeague()))
    list.rows.push_back(
        {prize->ID(), prize->Desc(), prize->PrizeType() ? Cell(prize->PrizeType()->Name()) : Cell()});
  return list;
}

ExportList Positions(DraftSession& draft) {
  ExportList list{"Positions", {"id", "position", "name"}, {}};
  for (const auto& position : *Checked(draft.GetLeague(), draft.GetLeague().Service().GetPlayerPositions()))
    list.rows.push_back({position->ID(), position->Abbr(), position->Desc()});
  return list;
}

ExportList Teams(DraftSession& draft) {
  ExportList list{"Teams", {"id", "short", "name", "nickname", "position"}, {}};
  for (const auto& team : *Checked(draft.GetLeague(), draft.GetLeague().Service().GetTeams()))
    list.rows.push_back({team->ID(), team->Abbr(), team->Name(), team->Nickname(),
                         team->Position() ? Cell(team->Position()->Abbr()) : Cell()});
  return list;
}

ExportList Seasons(DraftSession& draft) {
  ExportList list{"Seasons",
                  {"year", "id", "current", "managers", "taking part", "rounds", "picks", "picks made",
                   "contribution", "regular weeks", "weeks", "prizes", "winnings", "started",
                   "ranking locked", "draft locked", "season locked"},
                  {}};
  for (const auto& season : AllSeasons(draft.GetLeague(), &list.missing)) {
    list.rows.push_back({season->Year(), season->ID(), IsCurrent(draft.GetLeague(), *season),
                         season->NoOfManagers(), ManagersOf(*season).Count(), season->NoOfRounds(),
                         DraftsOf(*season).Count(), PicksMadeIn(draft, *season), season->MoneyContribution(),
                         season->NoOfRegularWeeks(), season->TotalNoOfWeeks(), PrizesOf(*season).Count(),
                         WinningsOf(*season).Count(), season->HasSeasonStarted(), season->IsRankingLocked(),
                         season->IsDraftLocked(), season->IsSeasonLocked()});
  }
  return list;
}

ExportList SeasonManagers(DraftSession& draft, const ISeasonInfo& season) {
  auto picks = PicksByManager(draft, season);
  ExportList list{"Managers", {"rank", "id", "manager", "fee paid", "picks"}, {}};
  for (const auto& manager : ManagersInOrder(season))
    list.rows.push_back({NumberOrNull(manager->Rank()), manager->ID(), FullName(*manager),
                         manager->IsFeePaid(), picks[manager->ID()]});
  return list;
}

ExportList SeasonPrizes(DraftSession& draft, const ISeasonInfo& season) {
  std::map<std::int32_t, std::int32_t> won;
  for (const Winning& winning : WinningsIn(draft.GetLeague(), season))
    ++won[winning.prizeID];
  ExportList list{"Prizes", {"id", "prize", "type", "amount", "times won", "paid out"}, {}};
  for (const auto& prize : PrizesOf(season)) {
    const std::int32_t times = won[prize->ID()];
    list.rows.push_back({prize->ID(), prize->Desc(),
                         prize->PrizeType() ? Cell(prize->PrizeType()->Name()) : Cell(), prize->Amount(),
                         times, Sum(std::int64_t{times} * prize->Amount())});
  }
  return list;
}

ExportList WinningsList(DraftSession& draft, const ISeasonInfo& season) {
  ExportList list{"Winnings", {"week", "id", "manager id", "manager", "prize id", "prize", "amount"}, {}};
  for (const Winning& winning : WinningsIn(draft.GetLeague(), season))
    list.rows.push_back({NumberOrNull(winning.week), winning.id, NumberOrNull(winning.managerID),
                         winning.manager, NumberOrNull(winning.prizeID), winning.prize,
                         winning.amount ? Cell(*winning.amount) : Cell()});
  return list;
}

ExportList Money(DraftSession& draft, const ISeasonInfo& season) {
  ExportList list{"Money", {"manager id", "manager", "due", "paid", "owed", "won", "balance"}, {}};
  for (const Account& account : AccountsOf(draft.GetLeague(), season).managers)
    list.rows.push_back({NumberOrNull(account.managerID), account.name, Sum(account.due), Sum(account.paid),
                         Sum(account.Owed()), Sum(account.won), Sum(account.Balance())});
  return list;
}

ExportList PicksList(DraftSession& draft, const ISeasonInfo& season) {
  ExportList list{"Picks",
                  {"pick", "round", "pick in round", "turn of", "manager id", "manager", "picked id",
                   "first name", "last name", "position", "team"},
                  {}};
  const DraftOrder order(season);
  const Picks picks = PicksToShow(draft, season);
  for (std::int32_t number = 1; number <= order.NoOfPicks(); ++number) {
    const Pick& pick = picks[static_cast<std::size_t>(number) - 1];
    const Turn turn = order.At(number);
    const auto whose = order.ManagerAt(turn.place);
    const auto maker =
        pick.IsEmpty() ? nullptr : ManagersOf(season).Find(HLDataSrvc::RecordKey(*pick.managerID));
    const PickableFacts facts = pick.what ? FactsOf(*pick.what) : PickableFacts();
    list.rows.push_back({number, turn.round, turn.pickInRound, whose ? Cell(FullName(*whose)) : Cell(),
                         pick.IsEmpty() ? Cell() : Cell(*pick.managerID),
                         maker ? Cell(FullName(*maker)) : Cell(), TextOrNull(facts.id),
                         TextOrNull(facts.firstName), TextOrNull(facts.lastName), TextOrNull(facts.position),
                         TextOrNull(facts.team)});
  }
  return list;
}

std::string CellText(const Pick& pick) {
  if (!pick.what) return pick.type == HLIData::PickType::None ? "(nobody)" : "(unknown)";
  const PickableFacts facts = FactsOf(*pick.what);
  std::string text;
  for (const std::string& part : {facts.position, facts.name, facts.team}) {
    if (!part.empty()) text += (text.empty() ? "" : " ") + part;
  }
  return text;
}

/// A row for each round, a column for each manager.
ExportList Board(DraftSession& draft, const ISeasonInfo& season) {
  const DraftOrder order(season);
  const Picks picks = PicksToShow(draft, season);
  ExportList list{"Draft", {"round"}, {}};
  const auto columns = static_cast<std::size_t>(order.NoOfManagers());
  for (std::int32_t place = 1; place <= order.NoOfManagers(); ++place) {
    const auto manager = order.ManagerAt(place);
    list.columns.push_back(manager ? FullName(*manager) : "(nobody)");
  }
  for (std::int32_t round = 1; round <= order.NoOfRounds(); ++round)
    list.rows.emplace_back(columns + 1).front() = round;
  for (std::int32_t number = 1; number <= order.NoOfPicks(); ++number) {
    const Pick& pick = picks[static_cast<std::size_t>(number) - 1];
    const Turn turn = order.At(number);
    if (!pick.IsEmpty())
      list.rows[static_cast<std::size_t>(turn.round) - 1][static_cast<std::size_t>(turn.place)] =
          CellText(pick);
  }
  return list;
}

struct Maker {
  const char* name;
  ExportList (*ofLeague)(DraftSession&);
  ExportList (*ofSeason)(DraftSession&, const ISeasonInfo&);
};

constexpr Maker kMakers[] = {
    {"players", Players, nullptr},
    {"managers", Managers, nullptr},
    {"prizes", Prizes, nullptr},
    {"positions", Positions, nullptr},
    {"teams", Teams, nullptr},
    {"seasons", Seasons, nullptr},
    {"season-managers", nullptr, SeasonManagers},
    {"season-prizes", nullptr, SeasonPrizes},
    {"winnings", nullptr, WinningsList},
    {"money", nullptr, Money},
    {"picks", nullptr, PicksList},
    {"board", nullptr, Board},
};

const Maker& MakerOf(const std::string& name) {
  const auto* found = std::find_if(std::begin(kMakers), std::end(kMakers),
                                   [&](const Maker& maker) { return maker.name == name; });
  if (found == std::end(kMakers)) throw Failure(FailureKind::WrongUsage, "There is no list '" + name + "'.");
  return *found;
}

}  // namespace

std::vector<std::string> ExportListNames() {
  std::vector<std::string> names;
  for (const Maker& maker : kMakers)
    names.emplace_back(maker.name);
  return names;
}

bool IsOfSeason(const std::string& name) {
  return MakerOf(name).ofSeason != nullptr;
}

ExportList MakeExportList(DraftSession& draft, const std::string& name,
                          const std::optional<std::int32_t>& year) {
  const Maker& maker = MakerOf(name);
  if (maker.ofSeason == nullptr) return maker.ofLeague(draft);
  const auto season = SeasonToShow(draft.GetLeague(), year);
  ExportList list = maker.ofSeason(draft, *season);
  list.title += " " + std::to_string(season->Year());
  return list;
}

}  // namespace HLLeague

#include "HLLeague/Winnings.h"

#include <algorithm>
#include <tuple>

#include "HLLeague/Find.h"
#include "HLLeague/Prizes.h"
#include "HLLeague/Seasons.h"
#include "league/Numbers.h"
#include "records/RecordKey.h"

namespace HLLeague {
namespace {

/// The number that a stored text holds; 0 when it holds none.
std::int32_t StoredNumber(const std::string& text) {
  return WholeNumber(text).value_or(0);
}

/// What to show for something that has no name.
std::string Unnamed(const std::string& storedText) {
  return storedText.empty() ? "nobody" : "unknown " + storedText;
}

}  // namespace

std::vector<Winning> WinningsIn(League& league, const HLIData::ISeasonInfo& season) {
  const auto& stored = WinningsOf(season);
  const auto& prizes = PrizesOf(season);
  std::vector<Winning> winnings;
  if (stored.Count() == 0) return winnings;
  const auto managerNames = ManagerNames(league);
  const auto prizeTmpls = AllPrizes(league);
  for (const auto& item : stored) {
    Winning winning;
    winning.id = item->ID();
    winning.week = item->Week();
    winning.managerID = StoredNumber(item->ManagerID());
    const auto name = managerNames.find(winning.managerID);
    winning.manager = name == managerNames.end() ? Unnamed(item->ManagerID()) : name->second;
    winning.prizeID = StoredNumber(item->PrizeID());
    const std::string key = HLDataSrvc::RecordKey(winning.prizeID);
    const auto tmpl = std::find_if(prizeTmpls.begin(), prizeTmpls.end(),
                                   [&](const auto& prize) { return prize->ID() == winning.prizeID; });
    winning.prize = tmpl == prizeTmpls.end() ? Unnamed(item->PrizeID()) : (*tmpl)->Desc();
    if (const auto prize = prizes.Find(key)) winning.amount = prize->Amount();
    winnings.push_back(std::move(winning));
  }
  std::sort(winnings.begin(), winnings.end(), [](const Winning& a, const Winning& b) {
    return std::tuple(a.week < 1, a.week, a.id) < std::tuple(b.week < 1, b.week, b.id);
  });
  return winnings;
}

std::string WeekText(std::int32_t week) {
  return week < 1 ? "-" : std::to_string(week);
}

std::map<std::int32_t, std::string> ManagerNames(League& league) {
  std::map<std::int32_t, std::string> names;
  for (const auto& manager : AllManagers(league))
    names.emplace(manager->ID(), FullName(*manager));
  return names;
}

}  // namespace HLLeague

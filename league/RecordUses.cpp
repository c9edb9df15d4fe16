#include "HLLeague/RecordUses.h"

#include <algorithm>
#include <functional>
#include <vector>

#include "HLIData/IPickable.h"
#include "HLIData/IPlayerInfo.h"
#include "HLIData/ITeamInfo.h"
#include "HLLeague/Failure.h"
#include "HLLeague/Find.h"
#include "HLLeague/Seasons.h"
#include "HLLeague/StoredDraft.h"
#include "league/Numbers.h"

namespace HLLeague {
namespace {

using HLIData::ISeasonInfo;

std::vector<std::int32_t> YearsOf(League& league, const std::function<bool(const ISeasonInfo&)>& isUsed) {
  std::vector<std::int32_t> years;
  for (const auto& season : AllSeasons(league)) {
    if (isUsed(*season)) years.push_back(season->Year());
  }
  return years;
}

/// "Picked in the season 2010.", "Picked in the seasons 2010, 2011 and 2014."; empty for no season.
std::string InSeasons(const std::string& lead, const std::vector<std::int32_t>& years) {
  if (years.empty()) return {};
  std::string text = lead + (years.size() == 1 ? " the season " : " the seasons ");
  for (std::size_t i = 0; i < years.size(); ++i)
    text += (i == 0 ? "" : i + 1 == years.size() ? " and " : ", ") + std::to_string(years[i]);
  return text + ".";
}

template <typename Items, typename Fits>
bool Any(const Items& items, const Fits& fits) {
  return std::any_of(items.begin(), items.end(), fits);
}

std::string UsesOfManager(League& league, std::int32_t id) {
  return InSeasons("Has a part in", YearsOf(league, [&league, id](const ISeasonInfo& season) {
                     const auto text = std::to_string(id);
                     const auto isHim = [id](const auto& manager) { return manager && manager->ID() == id; };
                     return Any(ManagersOf(season), isHim) ||
                            Any(ReadStoredDraft(league, season).picks,
                                [id](const Pick& pick) { return pick.managerID == id; }) ||
                            Any(WinningsOf(season),
                                [&](const auto& winning) { return winning->ManagerID() == text; });
                   }));
}

std::string UsesOfPrize(League& league, std::int32_t id) {
  return InSeasons("Put up or won in", YearsOf(league, [id](const ISeasonInfo& season) {
                     const auto text = std::to_string(id);
                     return Any(PrizesOf(season), [id](const auto& prize) { return prize->ID() == id; }) ||
                            Any(WinningsOf(season),
                                [&](const auto& winning) { return winning->PrizeID() == text; });
                   }));
}

std::string UsesOfPosition(League& league, std::int32_t id) {
  const auto has = [id](const auto& record) { return record.Position() && record.Position()->ID() == id; };
  const auto teams = league.Service().GetTeams();
  const auto found =
      league.Service().Search(HLIData::SearchType::PlayersAndTeams, "", /*curSeasonOnly=*/false,
                              /*skipRetiredPlayers=*/false);
  league.RaiseShownMessages();
  if (!teams || !found) return {};
  const auto noOfTeams =
      std::count_if(teams->begin(), teams->end(), [&](const auto& team) { return has(*team); });
  const auto noOfPlayers = std::count_if(found->begin(), found->end(), [&](const auto& pickable) {
    const auto* player = dynamic_cast<const HLIData::IPlayerInfo*>(pickable.get());
    return player != nullptr && has(*player);
  });
  return "It is the position of " + CountOf(noOfPlayers, "player") + " and " + CountOf(noOfTeams, "team") +
         ".";
}

std::string Uses(League& league, HLIData::DeleteType type, std::int32_t id) {
  switch (type) {
    case HLIData::DeleteType::Player:
      return InSeasons("Picked in", YearsDrafted(league, id));
    case HLIData::DeleteType::Manager:
      return UsesOfManager(league, id);
    case HLIData::DeleteType::Prize:
      return UsesOfPrize(league, id);
    case HLIData::DeleteType::Position:
      return UsesOfPosition(league, id);
  }
  return {};
}

}  // namespace

std::vector<std::int32_t> YearsDrafted(League& league, std::int32_t playerID) {
  return YearsOf(league, [&](const ISeasonInfo& season) {
    return Any(ReadStoredDraft(league, season).picks, [playerID](const Pick& pick) {
      return pick.type == HLIData::PickType::Player && pick.id == playerID;
    });
  });
}

std::string UsesOf(League& league, HLIData::DeleteType type, std::int32_t id) {
  try {
    return Uses(league, type, id);
  } catch (const Failure&) {
    return {};
  }
}

}  // namespace HLLeague

#include "HLLeague/StoredDraft.h"

#include <exception>
#include <map>
#include <utility>

#include "HLDataSrvc/ServiceDatabase.h"
#include "HLIData/IPlayerInfo.h"
#include "HLIData/ITeamInfo.h"
#include "HLLeague/Seasons.h"
#include "league/Numbers.h"
#include "records/RecordKey.h"
#include "storage/Schema.h"

namespace HLLeague {
namespace {

namespace Schema = HLDataSrvc::Schema;
using HLIData::IPickable;
using HLIData::PickType;

std::string SelectPicks(const HLIData::ISeasonInfo& season) {
  const auto column = [](const char* name) { return "[" + std::string(name) + "]"; };
  return "select " + column(Schema::Draft::kDraftNo) + ", " + column(Schema::Draft::kManagerID) + ", " +
         column(Schema::Draft::kPlayerID) + ", " + column(Schema::Draft::kTeamID) + " from " +
         column(Schema::Draft::kTable) + " where " + column(Schema::Draft::kSeasonID) + " = " +
         std::to_string(season.ID()) + " order by " + column(Schema::Draft::kDraftNo);
}

std::int32_t NumberIn(const std::optional<std::string>& text) {
  return WholeNumber(text.value_or("")).value_or(0);
}

/// What a row says was picked; the record if it can be loaded.
Pick PickIn(League& league, const HLDataSrvc::TextRow& row, std::string& problem) {
  Pick pick;
  pick.managerID = NumberIn(row[1]);
  const std::int32_t playerID = NumberIn(row[2]);
  const std::int32_t teamID = NumberIn(row[3]);
  if (playerID >= 1) {
    pick.type = PickType::Player;
    pick.id = playerID;
    try {
      pick.what = std::dynamic_pointer_cast<IPickable>(HLDataSrvc::FindPlayer(league.Service(), playerID));
    } catch (const std::exception& error) {
      problem = "cannot be loaded. " + std::string(error.what());
    }
  } else if (teamID >= 1) {
    pick.type = PickType::Team;
    pick.id = teamID;
    const auto teams = league.Service().GetTeams();
    pick.what =
        std::dynamic_pointer_cast<IPickable>(teams ? teams->Find(HLDataSrvc::RecordKey(teamID)) : nullptr);
    if (!pick.what) problem = "is of team " + std::to_string(teamID) + ", which does not exist.";
  }
  return pick;
}

}  // namespace

std::string SelectPick(const HLIData::ISeasonInfo& season, std::int32_t number) {
  return "select * from [" + std::string(Schema::Draft::kTable) + "] where [" + Schema::Draft::kSeasonID +
         "] = " + std::to_string(season.ID()) + " and [" + Schema::Draft::kDraftNo +
         "] = " + std::to_string(number);
}

StoredDraft ReadStoredDraft(League& league, const HLIData::ISeasonInfo& season) {
  StoredDraft stored;
  stored.picks = PicksOf(season);
  if (!league.HasPartialDrafts()) return stored;
  std::map<std::pair<PickType, std::int32_t>, std::int32_t> numbers;  // of what was picked
  for (const HLDataSrvc::TextRow& row : HLDataSrvc::SelectRows(league.Service(), SelectPicks(season))) {
    const std::int32_t number = NumberIn(row[0]);
    const std::int32_t managerID = NumberIn(row[1]);
    std::string problem;
    Pick pick = PickIn(league, row, problem);
    if (number < 1 || number > std::ssize(stored.picks)) {
      problem = "lies outside the draft of " + CountOfPicks(stored.picks.size()) + ".";
    } else if (!ManagersOf(season).Find(HLDataSrvc::RecordKey(*pick.managerID))) {
      problem = "is of manager " + std::to_string(*pick.managerID) + ", who does not take part.";
    } else if (pick.id != 0) {
      const auto [earlier, isFirst] = numbers.try_emplace({pick.type, pick.id}, number);
      if (!isFirst) problem = "is the same as pick " + std::to_string(earlier->second) + ".";
    }
    if (!problem.empty())
      stored.misfits.push_back(
          {number, managerID, pick.type, pick.id, "Pick " + std::to_string(number) + " " + problem});
    if (number >= 1 && number <= std::ssize(stored.picks))
      stored.picks[static_cast<std::size_t>(number) - 1] = std::move(pick);
  }
  league.TakeShownMessages();  // of lists that could not be loaded; the misfits name what is missing
  return stored;
}

}  // namespace HLLeague

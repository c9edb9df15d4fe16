#include "HLLeague/Picks.h"

#include <cstddef>
#include <cstdlib>

#include "HLLeague/Failure.h"
#include "HLLeague/Seasons.h"
#include "records/RecordKey.h"

namespace HLLeague {
namespace {

using HLIData::PickType;

/// Type and identifier from the key under which a pick is held: "P17", "T5", "N3".
void ReadKey(const std::string& key, Pick& pick) {
  if (key.empty() || (key[0] != 'P' && key[0] != 'T')) return;
  pick.type = key[0] == 'P' ? PickType::Player : PickType::Team;
  pick.id = static_cast<std::int32_t>(std::strtol(key.c_str() + 1, nullptr, 10));
}

}  // namespace

Pick MakePick(const std::shared_ptr<HLIData::IPickable>& what, const HLIData::IManagerInfo& manager) {
  return {what->PickType(), what->PickID(), manager.ID(), what};
}

Picks PicksOf(const HLIData::ISeasonInfo& season) {
  Picks picks;
  const auto& drafts = DraftsOf(season);
  for (std::int32_t number = 1; number <= drafts.Count(); ++number) {
    Pick pick;
    if (const auto manager = drafts.Item(number)->Manager()) {
      pick.managerID = manager->ID();
      ReadKey(drafts.KeyAt(number), pick);
      // The key decides: a pick that was filled and emptied may still hold another player.
      const auto held = drafts.Item(number)->PlayerOrTeam();
      if (held && held->PickType() == pick.type && held->PickID() == pick.id) pick.what = held;
    }
    picks.push_back(std::move(pick));
  }
  return picks;
}

void RequireManager(const HLIData::ISeasonInfo& season, std::int32_t number, const Pick& pick) {
  if (pick.IsEmpty() || ManagersOf(season).Find(HLDataSrvc::RecordKey(*pick.managerID))) return;
  throw Failure(FailureKind::Refused, "The manager with the id " + std::to_string(*pick.managerID) +
                                          " of pick " + std::to_string(number) +
                                          " does not take part in the season " +
                                          std::to_string(season.Year()) + ".");
}

void PutPick(HLIData::ISeasonInfo& season, std::int32_t number, const Pick& pick) {
  RequireManager(season, number, pick);
  season.RemoveDraft(number);
  if (pick.IsEmpty()) return;
  const auto manager = ManagersOf(season).Item(HLDataSrvc::RecordKey(*pick.managerID));
  if (pick.what) {
    season.UpdateDraft(pick.what, number, manager);
  } else {
    season.Drafts()->Item(number)->Manager(manager);
  }
}

std::vector<std::int32_t> DifferingPicks(const Picks& a, const Picks& b) {
  std::vector<std::int32_t> numbers;
  for (std::size_t i = 0; i < a.size() && i < b.size(); ++i) {
    if (a[i] != b[i]) numbers.push_back(static_cast<std::int32_t>(i) + 1);
  }
  return numbers;
}

std::string PickNumbers(const std::vector<std::int32_t>& numbers) {
  if (numbers.empty()) return "no pick";
  std::string text = numbers.size() == 1 ? "pick " : "picks ";
  for (std::size_t i = 0; i < numbers.size();) {
    std::size_t last = i;
    while (last + 1 < numbers.size() && numbers[last + 1] == numbers[last] + 1)
      ++last;
    text += (i == 0 ? "" : ", ") + std::to_string(numbers[i]);
    if (last > i) text += "-" + std::to_string(numbers[last]);
    i = last + 1;
  }
  return text;
}

std::string CountOfPicks(std::size_t count) {
  return std::to_string(count) + (count == 1 ? " pick" : " picks");
}

}  // namespace HLLeague

#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "HLIData/IPickable.h"
#include "HLIData/ISeasonInfo.h"

namespace HLLeague {

/// What stands at one pick number of a draft: who picked, and whom.
///
/// A pick is empty while it has no manager. One with a manager may still hold nothing: a
/// stored pick without player or team, or with one that there is no record of.
struct Pick {
  HLIData::PickType type = HLIData::PickType::None;  ///< player, team or nothing
  std::int32_t id = 0;                               ///< of the player or team; 0 for nothing
  std::optional<std::int32_t> managerID;
  std::shared_ptr<HLIData::IPickable> what;  ///< the player or team; empty when there is none, or no record

  bool IsEmpty() const { return !managerID; }
  /// Both hold the same player or team, or both hold nothing.
  bool HoldsSameAs(const Pick& other) const { return type == other.type && id == other.id; }
  friend bool operator==(const Pick& a, const Pick& b) {
    return a.HoldsSameAs(b) && a.managerID == b.managerID;
  }
};

/// The pick with which a manager takes a player or team.
Pick MakePick(const std::shared_ptr<HLIData::IPickable>& what, const HLIData::IManagerInfo& manager);

/// All picks of a draft; pick 1 comes first.
using Picks = std::vector<Pick>;

/// A season's picks as they stand in memory, read from their managers and keys.
Picks PicksOf(const HLIData::ISeasonInfo& season);

/// Raises Failure when the manager of a pick that is not empty does not take part in a season.
void RequireManager(const HLIData::ISeasonInfo& season, std::int32_t number, const Pick& pick);

/// Empties a season's pick and then, unless `pick` is an empty one, fills it. Nothing else of the draft may
/// hold the same player or team. Raises Failure when the pick's manager does not take part in the season.
void PutPick(HLIData::ISeasonInfo& season, std::int32_t number, const Pick& pick);

/// The numbers of the picks in which two drafts of one size differ, in rising order.
std::vector<std::int32_t> DifferingPicks(const Picks& a, const Picks& b);

/// "pick 5", "picks 1-4, 7, 9-12", of rising numbers; "no pick" of none.
std::string PickNumbers(const std::vector<std::int32_t>& numbers);

/// "1 pick", "12 picks".
std::string CountOfPicks(std::size_t count);

}  // namespace HLLeague

#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "HLLeague/League.h"
#include "HLLeague/Picks.h"

namespace HLLeague {

/// A stored pick that does not fit the season: its number lies outside the draft, its manager does not take
/// part, an earlier pick holds the same, or what was picked cannot be loaded.
struct MisfitPick {
  std::int32_t number = 0;
  std::int32_t managerID = 0;
  HLIData::PickType type = HLIData::PickType::None;  ///< what was picked, as in Pick
  std::int32_t id = 0;
  std::string
      why;  ///< a sentence that begins with the pick: "Pick 6 is of manager 3, who does not take part."
};

/// The draft of a season as its rows have it. The season in memory is the same unless a row does not fit:
/// then it ends at that row, and later picks look empty there but are not.
struct StoredDraft {
  Picks picks;  ///< of every number of the draft, with those that do not fit
  std::vector<MisfitPick> misfits;
};

StoredDraft ReadStoredDraft(League& league, const HLIData::ISeasonInfo& season);

/// The statement that finds the row of a stored pick.
std::string SelectPick(const HLIData::ISeasonInfo& season, std::int32_t number);

}  // namespace HLLeague

#pragma once

#include <cstdint>
#include <optional>

#include "HLLeague/DraftSession.h"

namespace HLLeague {

/// Settings of a season to change; what is left out stays as it is.
struct SeasonSettings {
  std::optional<std::int32_t> year;
  std::optional<std::int32_t> managers;
  std::optional<std::int32_t> rounds;
  std::optional<std::int32_t> contribution;
  std::optional<std::int32_t> regularWeeks;
  std::optional<std::int32_t> weeks;
  std::optional<bool> hasStarted;
  std::optional<bool> isLocked;

  /// There is nothing to change.
  bool IsEmpty() const;
};

/// Changes settings of the current season, and saves it. Raises Failure, before anything is changed,
/// for a value out of range, for one that does not go with the others, with who takes part, with the picks or
/// the winnings that there are, and for a lock.
void ChangeSeason(DraftSession& draft, const SeasonSettings& settings);

}  // namespace HLLeague

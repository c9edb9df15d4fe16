#pragma once

#include "HLIData/ISeasonInfo.h"

namespace HLLeague {

// The locks of a season, which the service stores and leaves its callers to honour. All raise Failure, with
// one sentence that names the lock.

/// For every change of a season but unlocking it. `what` cannot be changed then: "its prizes".
void RequireSeasonUnlocked(const HLIData::ISeasonInfo& season, const char* what);

/// For changes of who takes part and in which order. They are over when the ranking is locked, and when the
/// draft is, which was played by that ranking.
void RequireRankingUnlocked(const HLIData::ISeasonInfo& season);

/// For changes of how many picks the draft has.
void RequireDraftUnlocked(const HLIData::ISeasonInfo& season);

}  // namespace HLLeague

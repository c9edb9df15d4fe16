#pragma once

#include "HLIData/ISeasonInfo.h"
#include "cli/commands/Context.h"

namespace cli {

/// Prints the prizes that a season puts up, what they pay, and how that compares with the money that comes
/// in; or the same as JSON.
void PrintPrizes(Context& context, const HLIData::ISeasonInfo& season);

/// Prints the master records of all prizes, and what they pay in a season, which may be none.
void PrintAllPrizes(Context& context, const HLIData::ISeasonInfo* season);

}  // namespace cli

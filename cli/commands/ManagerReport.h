#pragma once

#include "HLIData/ISeasonInfo.h"
#include "cli/commands/Context.h"

namespace cli {

/// Prints who takes part in a season in the order of the ranking, with fees and picks; or the same as JSON.
void PrintManagers(Context& context, const HLIData::ISeasonInfo& season);

/// Prints the master records of all managers, and who of them takes part in a season, which may be none.
void PrintAllManagers(Context& context, const HLIData::ISeasonInfo* season);

}  // namespace cli

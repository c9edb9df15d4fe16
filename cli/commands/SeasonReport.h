#pragma once

#include "HLIData/ISeasonInfo.h"
#include "cli/commands/Context.h"
#include "cli/output/Json.h"

namespace cli {

/// Everything about a season but its records, as JSON.
Json SeasonJson(HLLeague::DraftSession& draft, const HLIData::ISeasonInfo& season);

/// Prints the same, a line a fact, or as JSON.
void PrintSeason(Context& context, const HLIData::ISeasonInfo& season);

/// Prints seasons, a line each, or as JSON.
void PrintSeasons(Context& context, const std::vector<std::shared_ptr<HLIData::ISeasonInfo>>& seasons);

}  // namespace cli

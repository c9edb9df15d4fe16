#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "HLIData/IPrizeTmplInfo.h"
#include "HLLeague/League.h"

namespace HLLeague {

/// The master records of all prizes, in the order of their rows. One whose type does not exist has none; such
/// prizes, and those that the service did not reach behind one, can be shown and edited, but not put up.
std::vector<std::shared_ptr<HLIData::IPrizeTmplInfo>> AllPrizes(League& league);

/// A note for each prize whose type does not exist, which says how to mend it.
void NoteBrokenPrizes(League& league, const std::vector<std::shared_ptr<HLIData::IPrizeTmplInfo>>& prizes);

/// Raises Failure for a prize that no season can put up, since the service could not load it: the season
/// could not be loaded either.
void RequireLoaded(League& league, const HLIData::IPrizeTmplInfo& prize);

/// Adds a prize (`id` 0) or changes one through the service, one whose type does not exist too. Raises
/// Failure for a value that is missing or does not fit, and when the prize cannot be saved.
std::shared_ptr<HLIData::IPrizeTmplInfo> SavePrize(League& league, const std::string& name,
                                                   std::int32_t typeID, std::int32_t id);

}  // namespace HLLeague

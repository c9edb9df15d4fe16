#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "HLIData/Types.h"
#include "HLLeague/League.h"

namespace HLLeague {

/// Where a master record is used, which keeps it from being deleted, in sentences for people: "Picked in the
/// seasons 2010 and 2012." Empty when it is used nowhere, or the seasons cannot be read.
std::string UsesOf(League& league, HLIData::DeleteType type, std::int32_t id);

/// The years of the seasons in whose drafts a player was picked. Raises Failure when the seasons cannot be
/// read.
std::vector<std::int32_t> YearsDrafted(League& league, std::int32_t playerID);

}  // namespace HLLeague

#pragma once

#include "HLIData/IPlayerInfo.h"
#include "HLLeague/Pickables.h"
#include "cli/output/Json.h"

namespace cli {

// Records as JSON shows them.

Json PickableJson(const HLLeague::PickableFacts& facts);
Json PlayerJson(const HLIData::IPlayerInfo& player);

}  // namespace cli

#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>

#include "HLIData/IDraftInfo.h"
#include "HLIData/KeyedCollection.h"
#include "HLIData/Types.h"

/// Arithmetic and keys of the draft.
namespace HLDataSrvc::HLUtils {

/// The key under which a season's collections hold something: a letter for its kind, then the identifier as
/// plain decimal text. "P" for players, "T" for teams, "K" for manager and prize master records, which never
/// meet in one collection; "N" for an empty pick, whose identifier is the pick number; no letter for anything
/// else.
std::string MakePickKey(HLIData::PickType pickType, std::int32_t id);

/// Where a pick stands in the draft: in which round, at which place of the round, and which place in the
/// ranking picks. Rounds take each of the `noOfManagers` managers once, in ranking order, every even one in
/// reverse.
///
/// Every number counts from 1; one below 1 for `pickNo` is computed anyway. Fewer than one manager
/// leaves the three results untouched. Raises Overflow where a step of the arithmetic leaves 32 bits, and
/// then leaves them untouched too.
void GetDraftPosition(std::int32_t pickNo, std::int32_t noOfManagers, std::int32_t& managerPlace,
                      std::int32_t& round, std::int32_t& pickInRound);

/// Puts a pick back under a new key at the position from which it was just taken out, so that a pick's
/// number stays its position. Raises DuplicateKey for something picked elsewhere; the pick then stays out.
void PutPickBack(HLIData::KeyedCollection<HLIData::IDraftInfo>& drafts, std::int32_t position,
                 const std::shared_ptr<HLIData::IDraftInfo>& pick, std::string_view key);

}  // namespace HLDataSrvc::HLUtils

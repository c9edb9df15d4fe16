#include "records/HLUtils.h"

#include <cmath>

#include "records/Conversions.h"
#include "records/RecordKey.h"

namespace HLDataSrvc::HLUtils {

using Conversions::CheckedAdd;
using Conversions::CheckedSubtract;

std::string MakePickKey(HLIData::PickType pickType, std::int32_t id) {
  switch (pickType) {
    case HLIData::PickType::None:
      return "N" + std::to_string(id);
    case HLIData::PickType::Player:
      return "P" + std::to_string(id);
    case HLIData::PickType::Team:
      return "T" + std::to_string(id);
    case HLIData::PickType::ManagerTmpl:
    case HLIData::PickType::PrizeTmpl:
      return RecordKey(id);
    default:
      return std::to_string(id);
  }
}

void GetDraftPosition(std::int32_t pickNo, std::int32_t noOfManagers, std::int32_t& managerPlace,
                      std::int32_t& round, std::int32_t& pickInRound) {
  if (noOfManagers < 1) return;

  // The quotient is rounded down, the remainder towards zero: below pick 1 the two deliberately do not fit
  // together, see GetDraftPosition.BelowPickOneIsWorkedOutAllTheSame.
  const std::int32_t picksBefore = CheckedSubtract(pickNo, 1);
  const double roundsBefore = std::floor(static_cast<double>(picksBefore) / noOfManagers);
  const std::int32_t itsRound = CheckedAdd(static_cast<std::int32_t>(roundsBefore), 1);
  const std::int32_t itsPlace = CheckedAdd(picksBefore % noOfManagers, 1);
  const bool isForwards = itsRound % 2 == 1;  // never so for a round below 1

  managerPlace = isForwards ? itsPlace : CheckedSubtract(CheckedAdd(noOfManagers, 1), itsPlace);
  round = itsRound;
  pickInRound = itsPlace;
}

void PutPickBack(HLIData::KeyedCollection<HLIData::IDraftInfo>& drafts, std::int32_t position,
                 const std::shared_ptr<HLIData::IDraftInfo>& pick, std::string_view key) {
  if (position > drafts.Count()) {
    drafts.Add(pick, key);
  } else {
    drafts.InsertBefore(position, pick, key);
  }
}

}  // namespace HLDataSrvc::HLUtils

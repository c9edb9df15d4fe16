#include "records/WinningInfo.h"

#include "records/HLConsts.h"
#include "records/RecordKey.h"
#include "records/StoreIfDifferent.h"

namespace HLDataSrvc {

void WinningInfo::ID(std::int32_t value) {
  if (StoreIfDifferent(m_id, value)) m_isDirty = true;
}

void WinningInfo::SeasonID(std::int32_t value) {
  if (StoreIfDifferent(m_seasonID, value)) m_isDirty = true;
}

void WinningInfo::ManagerID(const std::string& value) {
  if (StoreIfDifferent(m_managerID, value)) m_isDirty = true;
}

void WinningInfo::PrizeID(const std::string& value) {
  if (StoreIfDifferent(m_prizeID, value)) m_isDirty = true;
}

void WinningInfo::Week(std::int32_t value) {
  if (StoreIfDifferent(m_week, value)) m_isDirty = true;
}

void WinningInfo::Action(HLIData::WinningAction value) {
  if (StoreIfDifferent(m_action, value)) m_isDirty = true;
}

std::string WinningInfo::MakeKey(std::int32_t sequence) {
  m_key = m_id < 1 ? HLConsts::kNewRecordKeyPrefix + std::to_string(sequence) : RecordKey(m_id);
  return m_key;
}

}  // namespace HLDataSrvc

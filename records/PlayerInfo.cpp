#include "records/PlayerInfo.h"

#include "records/StoreIfDifferent.h"

namespace HLDataSrvc {

void PlayerInfo::ID(std::int32_t value) {
  if (StoreIfDifferent(m_id, value)) m_isDirty = true;
}

void PlayerInfo::LastName(const std::string& value) {
  if (StoreIfDifferent(m_lastName, value)) m_isDirty = true;
}

void PlayerInfo::FirstName(const std::string& value) {
  if (StoreIfDifferent(m_firstName, value)) m_isDirty = true;
}

void PlayerInfo::Position(const std::shared_ptr<HLIData::IPositionInfo>& value) {
  if (StoreIfDifferent(m_position, value)) m_isDirty = true;
}

void PlayerInfo::Team(const std::shared_ptr<HLIData::ITeamInfo>& value) {
  if (StoreIfDifferent(m_team, value)) m_isDirty = true;
}

// Deliberately unlike the other setters: dirty whatever the value is, see
// PlayerInfo.TracksChangesOfEveryFieldAndRetirementAlways.
void PlayerInfo::IsRetired(bool value) {
  m_isRetired = value;
  m_isDirty = true;
}

}  // namespace HLDataSrvc

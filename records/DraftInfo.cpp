#include "records/DraftInfo.h"

#include <string>

#include "records/References.h"
#include "records/StoreIfDifferent.h"

namespace HLDataSrvc {

std::shared_ptr<HLIData::IPickable> DraftInfo::PlayerOrTeam() const {
  if (m_pickType == HLIData::PickType::Player) return m_player;
  if (m_pickType == HLIData::PickType::Team) return m_team;
  return nullptr;
}

void DraftInfo::PlayerOrTeam(const std::shared_ptr<HLIData::IPickable>& value) {
  // Deliberately: this is how a pick is emptied without losing what it held, see
  // SeasonDraft.ARemovedPickKeepsWhatItHeld.
  if (!value) return;
  const HLIData::PickType type = value->PickType();
  if (type == HLIData::PickType::Player) {
    Player(OwnRecord<PlayerInfo>(value, "Player " + std::to_string(value->PickID())));
  } else if (type == HLIData::PickType::Team) {
    Team(OwnRecord<TeamInfo>(value, "Team " + std::to_string(value->PickID())));
  }
}

void DraftInfo::Player(const std::shared_ptr<PlayerInfo>& value) {
  // Deliberately also leaves the pick type when the player is the one held, even if a team counts by now, see
  // DraftInfo.IgnoresTheVeryObjectThatItHolds.
  if (!StoreIfDifferent(m_player, value)) return;
  m_pickType = HLIData::PickType::Player;
  m_isChanged = true;
}

void DraftInfo::Team(const std::shared_ptr<TeamInfo>& value) {
  if (!StoreIfDifferent(m_team, value)) return;
  m_pickType = HLIData::PickType::Team;
  m_isChanged = true;
}

}  // namespace HLDataSrvc

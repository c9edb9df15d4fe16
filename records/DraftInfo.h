#pragma once

#include <cstdint>
#include <memory>

#include "HLIData/IDraftInfo.h"
#include "HLIData/IManagerInfo.h"
#include "HLIData/IPickable.h"
#include "HLIData/Types.h"
#include "records/PlayerInfo.h"
#include "records/TeamInfo.h"

namespace HLDataSrvc {

/// One pick of a season's draft.
///
/// Holds a player and a team side by side; setting one leaves the other, and the pick type decides which of
/// them counts.
class DraftInfo final : public HLIData::IDraftInfo {
 public:
  std::int32_t DraftNo() const override { return m_draftNo; }
  void DraftNo(std::int32_t value) override { m_draftNo = value; }
  std::shared_ptr<HLIData::IPickable> PlayerOrTeam() const override;
  /// Goes on to Player or Team with the object behind the interface. Raises TypeMismatch for what calls
  /// itself a player or a team and is no PlayerInfo or TeamInfo.
  void PlayerOrTeam(const std::shared_ptr<HLIData::IPickable>& value) override;
  std::shared_ptr<HLIData::IManagerInfo> Manager() const override { return m_manager; }
  /// Does not count as a change of the pick.
  void Manager(const std::shared_ptr<HLIData::IManagerInfo>& value) override { m_manager = value; }

  // For this component only.
  std::shared_ptr<PlayerInfo> Player() const { return m_player; }
  /// Makes the pick one of a player, and changed; nothing happens when it holds the very object already.
  void Player(const std::shared_ptr<PlayerInfo>& value);
  std::shared_ptr<TeamInfo> Team() const { return m_team; }
  /// Makes the pick one of a team, and changed; nothing happens when it holds the very object already.
  void Team(const std::shared_ptr<TeamInfo>& value);
  /// Which of Player and Team counts; None: neither.
  HLIData::PickType PickType() const { return m_pickType; }
  void PickType(HLIData::PickType value) { m_pickType = value; }
  /// Whether the pick differs from what the database holds.
  bool IsChanged() const { return m_isChanged; }
  void IsChanged(bool value) { m_isChanged = value; }
  /// Whether the loader found a row for the pick.
  bool IsStored() const { return m_isStored; }
  void IsStored(bool value) { m_isStored = value; }

 private:
  std::int32_t m_draftNo = 0;
  std::shared_ptr<HLIData::IManagerInfo> m_manager;
  std::shared_ptr<PlayerInfo> m_player;
  std::shared_ptr<TeamInfo> m_team;
  HLIData::PickType m_pickType = HLIData::PickType::None;
  bool m_isChanged = false;
  bool m_isStored = false;
};

}  // namespace HLDataSrvc

#pragma once

#include <cstdint>
#include <memory>
#include <string>

#include "HLIData/IPickable.h"
#include "HLIData/IPlayerInfo.h"
#include "HLIData/IPositionInfo.h"
#include "HLIData/ITeamInfo.h"

namespace HLDataSrvc {

/// A player with position and team. The service alone sets its fields.
///
/// Setting a field to another value makes the record dirty; setting it to the present value does nothing.
/// Texts compare exactly, position and team as objects: another object with the same content is a change.
/// Who loads or saves a player sets IsSaved, then clears IsDirty.
class PlayerInfo final : public HLIData::IPlayerInfo, public HLIData::IPickable {
 public:
  std::int32_t ID() const override { return m_id; }
  void ID(std::int32_t value);
  std::string LastName() const override { return m_lastName; }
  void LastName(const std::string& value);
  std::string FirstName() const override { return m_firstName; }
  void FirstName(const std::string& value);
  std::shared_ptr<HLIData::IPositionInfo> Position() const override { return m_position; }
  void Position(const std::shared_ptr<HLIData::IPositionInfo>& value);
  std::shared_ptr<HLIData::ITeamInfo> Team() const override { return m_team; }
  void Team(const std::shared_ptr<HLIData::ITeamInfo>& value);
  bool IsRetired() const override { return m_isRetired; }
  /// Makes the record dirty even when the value is the present one.
  void IsRetired(bool value);

  /// Whether a field was set since the last load or save.
  bool IsDirty() const { return m_isDirty; }
  void IsDirty(bool value) { m_isDirty = value; }
  /// Whether the record was read from or written to the database.
  bool IsSaved() const { return m_isSaved; }
  void IsSaved(bool value) { m_isSaved = value; }

  HLIData::PickType PickType() const override { return HLIData::PickType::Player; }
  /// First and last name with one blank between; nothing is trimmed, so a missing first name leaves the
  /// blank.
  std::string PickName() const override { return m_firstName + " " + m_lastName; }
  std::int32_t PickID() const override { return m_id; }

 private:
  std::int32_t m_id = 0;
  std::string m_lastName;
  std::string m_firstName;
  std::shared_ptr<HLIData::IPositionInfo> m_position;
  std::shared_ptr<HLIData::ITeamInfo> m_team;
  bool m_isRetired = false;
  bool m_isDirty = false;
  bool m_isSaved = false;
};

}  // namespace HLDataSrvc

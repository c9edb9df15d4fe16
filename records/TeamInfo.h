#pragma once

#include <cstdint>
#include <memory>
#include <string>

#include "HLIData/IPickable.h"
#include "HLIData/IPositionInfo.h"
#include "HLIData/ITeamInfo.h"

namespace HLDataSrvc {

/// A professional team. The service alone sets its fields; the setters track nothing.
class TeamInfo final : public HLIData::ITeamInfo, public HLIData::IPickable {
 public:
  std::int32_t ID() const override { return m_id; }
  void ID(std::int32_t value) { m_id = value; }
  std::string Abbr() const override { return m_abbr; }
  void Abbr(const std::string& value) { m_abbr = value; }
  std::string Name() const override { return m_name; }
  void Name(const std::string& value) { m_name = value; }
  std::string Nickname() const override { return m_nickname; }
  void Nickname(const std::string& value) { m_nickname = value; }
  std::shared_ptr<HLIData::IPositionInfo> Position() const override { return m_position; }
  void Position(const std::shared_ptr<HLIData::IPositionInfo>& value) { m_position = value; }

  HLIData::PickType PickType() const override { return HLIData::PickType::Team; }
  /// The name alone, without the nickname.
  std::string PickName() const override { return m_name; }
  std::int32_t PickID() const override { return m_id; }

 private:
  std::int32_t m_id = 0;
  std::string m_abbr;
  std::string m_name;
  std::string m_nickname;
  std::shared_ptr<HLIData::IPositionInfo> m_position;
};

}  // namespace HLDataSrvc

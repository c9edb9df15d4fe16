#pragma once

#include <cstdint>
#include <string>

#include "HLIData/IPickable.h"
#include "HLIData/IPositionInfo.h"

namespace HLDataSrvc {

/// A playing position. The service alone sets its fields; the setters track nothing.
class PositionInfo final : public HLIData::IPositionInfo, public HLIData::IPickable {
 public:
  std::int32_t ID() const override { return m_id; }
  void ID(std::int32_t value) { m_id = value; }
  std::string Abbr() const override { return m_abbr; }
  void Abbr(const std::string& value) { m_abbr = value; }
  std::string Desc() const override { return m_desc; }
  void Desc(const std::string& value) { m_desc = value; }

  HLIData::PickType PickType() const override { return HLIData::PickType::Position; }
  /// The description, not the short code.
  std::string PickName() const override { return m_desc; }
  std::int32_t PickID() const override { return m_id; }

 private:
  std::int32_t m_id = 0;
  std::string m_abbr;
  std::string m_desc;
};

}  // namespace HLDataSrvc

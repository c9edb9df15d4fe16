#pragma once

#include <cstdint>
#include <string>

#include "HLIData/IPrizeTypeInfo.h"

namespace HLDataSrvc {

/// A kind of prize. The service alone sets its fields.
class PrizeTypeInfo final : public HLIData::IPrizeTypeInfo {
 public:
  std::int32_t ID() const override { return m_id; }
  void ID(std::int32_t value) { m_id = value; }
  std::string Name() const override { return m_name; }
  void Name(const std::string& value) { m_name = value; }

 private:
  std::int32_t m_id = 0;
  std::string m_name;
};

}  // namespace HLDataSrvc

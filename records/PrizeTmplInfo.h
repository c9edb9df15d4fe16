#pragma once

#include <cstdint>
#include <memory>
#include <string>

#include "HLIData/IPickable.h"
#include "HLIData/IPrizeTmplInfo.h"
#include "HLIData/IPrizeTypeInfo.h"

namespace HLDataSrvc {

/// A prize's master record. The service alone sets its fields; the type is the object in the service's cache.
class PrizeTmplInfo final : public HLIData::IPrizeTmplInfo, public HLIData::IPickable {
 public:
  std::int32_t ID() const override { return m_id; }
  void ID(std::int32_t value) { m_id = value; }
  std::string Desc() const override { return m_desc; }
  void Desc(const std::string& value) { m_desc = value; }
  std::shared_ptr<HLIData::IPrizeTypeInfo> PrizeType() const override { return m_prizeType; }
  void PrizeType(const std::shared_ptr<HLIData::IPrizeTypeInfo>& value) { m_prizeType = value; }

  HLIData::PickType PickType() const override { return HLIData::PickType::PrizeTmpl; }
  std::string PickName() const override { return m_desc; }
  std::int32_t PickID() const override { return m_id; }

 private:
  std::int32_t m_id = 0;
  std::string m_desc;
  std::shared_ptr<HLIData::IPrizeTypeInfo> m_prizeType;
};

}  // namespace HLDataSrvc

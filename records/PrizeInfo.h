#pragma once

#include <cstdint>
#include <memory>
#include <string>

#include "HLIData/IPrizeInfo.h"
#include "HLIData/IPrizeTmplInfo.h"
#include "HLIData/IPrizeTypeInfo.h"

namespace HLDataSrvc {

/// A prize offered in one season. Keeps the amount only: identifier, description and type are read from the
/// master record every time, and raise ObjectNotSet when there is none.
class PrizeInfo final : public HLIData::IPrizeInfo {
 public:
  std::int32_t ID() const override { return Master().ID(); }
  std::string Desc() const override { return Master().Desc(); }
  std::shared_ptr<HLIData::IPrizeTypeInfo> PrizeType() const override { return Master().PrizeType(); }
  std::int32_t Amount() const override { return m_amount; }
  void Amount(std::int32_t value) override { m_amount = value; }
  std::shared_ptr<HLIData::IPrizeTmplInfo> PrizeTmpl() const override { return m_prizeTmpl; }
  /// For this component only.
  void PrizeTmpl(const std::shared_ptr<HLIData::IPrizeTmplInfo>& value) { m_prizeTmpl = value; }

 private:
  const HLIData::IPrizeTmplInfo& Master() const;

  std::int32_t m_amount = 0;
  std::shared_ptr<HLIData::IPrizeTmplInfo> m_prizeTmpl;
};

}  // namespace HLDataSrvc

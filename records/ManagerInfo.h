#pragma once

#include <cstdint>
#include <memory>
#include <string>

#include "HLIData/IManagerInfo.h"
#include "HLIData/IManagerTmplInfo.h"

namespace HLDataSrvc {

/// A manager's part in one season. Has no separate identifier and names: they are read from the master
/// record every time, and raise ObjectNotSet when there is none.
class ManagerInfo final : public HLIData::IManagerInfo {
 public:
  std::int32_t ID() const override { return Master().ID(); }
  std::string FirstName() const override { return Master().FirstName(); }
  std::string LastName() const override { return Master().LastName(); }
  std::int32_t Rank() const override { return m_rank; }
  void Rank(std::int32_t value) override { m_rank = value; }
  bool IsFeePaid() const override { return m_isFeePaid; }
  void IsFeePaid(bool value) override { m_isFeePaid = value; }
  std::shared_ptr<HLIData::IManagerTmplInfo> ManagerTmpl() const override { return m_managerTmpl; }
  /// For this component only.
  void ManagerTmpl(const std::shared_ptr<HLIData::IManagerTmplInfo>& value) { m_managerTmpl = value; }

 private:
  const HLIData::IManagerTmplInfo& Master() const;

  std::shared_ptr<HLIData::IManagerTmplInfo> m_managerTmpl;
  std::int32_t m_rank = 0;
  bool m_isFeePaid = false;
};

}  // namespace HLDataSrvc

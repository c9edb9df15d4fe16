#pragma once

#include <cstdint>
#include <string>

#include "HLIData/IManagerTmplInfo.h"
#include "HLIData/IPickable.h"

namespace HLDataSrvc {

/// A manager's master record. The service alone sets its fields; the setters track nothing.
class ManagerTmplInfo final : public HLIData::IManagerTmplInfo, public HLIData::IPickable {
 public:
  std::int32_t ID() const override { return m_id; }
  void ID(std::int32_t value) { m_id = value; }
  std::string FirstName() const override { return m_firstName; }
  void FirstName(const std::string& value) { m_firstName = value; }
  std::string LastName() const override { return m_lastName; }
  void LastName(const std::string& value) { m_lastName = value; }

  HLIData::PickType PickType() const override { return HLIData::PickType::ManagerTmpl; }
  /// First and last name with one blank between; nothing is trimmed.
  std::string PickName() const override { return m_firstName + " " + m_lastName; }
  std::int32_t PickID() const override { return m_id; }

 private:
  std::int32_t m_id = 0;
  std::string m_firstName;
  std::string m_lastName;
};

}  // namespace HLDataSrvc

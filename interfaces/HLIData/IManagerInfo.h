#pragma once

#include <cstdint>
#include <memory>
#include <string>

#include "HLIData/IManagerTmplInfo.h"
#include "HLIData/Visibility.h"

namespace HLIData {

/// A manager's part in one season. Identifier and names are those of the master record; without one they
/// raise ObjectNotSet.
class HLIDATA_TYPE IManagerInfo {
 public:
  virtual ~IManagerInfo() = default;

  virtual std::int32_t ID() const = 0;
  virtual std::string FirstName() const = 0;
  virtual std::string LastName() const = 0;
  /// Place in the season's ranking, which is also the draft order; below 1: not ranked.
  virtual std::int32_t Rank() const = 0;
  virtual void Rank(std::int32_t value) = 0;
  /// Whether the season's contribution was paid.
  virtual bool IsFeePaid() const = 0;
  virtual void IsFeePaid(bool value) = 0;
  virtual std::shared_ptr<IManagerTmplInfo> ManagerTmpl() const = 0;
};

}  // namespace HLIData

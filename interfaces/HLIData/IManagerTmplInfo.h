#pragma once

#include <cstdint>
#include <string>

#include "HLIData/Visibility.h"

namespace HLIData {

/// A manager's master record, shared by all seasons. Filled by the service only.
class HLIDATA_TYPE IManagerTmplInfo {
 public:
  virtual ~IManagerTmplInfo() = default;

  virtual std::int32_t ID() const = 0;
  virtual std::string FirstName() const = 0;
  virtual std::string LastName() const = 0;
};

}  // namespace HLIData

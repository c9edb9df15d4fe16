#pragma once

#include <cstdint>
#include <string>

#include "HLIData/Visibility.h"

namespace HLIData {

/// A kind of prize. Filled by the service only.
class HLIDATA_TYPE IPrizeTypeInfo {
 public:
  virtual ~IPrizeTypeInfo() = default;

  virtual std::int32_t ID() const = 0;
  virtual std::string Name() const = 0;
};

}  // namespace HLIData

#pragma once

#include <cstdint>
#include <string>

#include "HLIData/Visibility.h"

namespace HLIData {

/// A playing position. Filled by the service only.
class HLIDATA_TYPE IPositionInfo {
 public:
  virtual ~IPositionInfo() = default;

  virtual std::int32_t ID() const = 0;
  /// The short code shown in lists, such as "QB".
  virtual std::string Abbr() const = 0;
  virtual std::string Desc() const = 0;
};

}  // namespace HLIData

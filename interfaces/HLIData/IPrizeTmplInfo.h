#pragma once

#include <cstdint>
#include <memory>
#include <string>

#include "HLIData/IPrizeTypeInfo.h"
#include "HLIData/Visibility.h"

namespace HLIData {

/// A prize's master record, shared by all seasons. Filled by the service only.
class HLIDATA_TYPE IPrizeTmplInfo {
 public:
  virtual ~IPrizeTmplInfo() = default;

  virtual std::int32_t ID() const = 0;
  virtual std::string Desc() const = 0;
  virtual std::shared_ptr<IPrizeTypeInfo> PrizeType() const = 0;
};

}  // namespace HLIData

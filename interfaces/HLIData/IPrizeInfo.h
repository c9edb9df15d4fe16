#pragma once

#include <cstdint>
#include <memory>
#include <string>

#include "HLIData/IPrizeTmplInfo.h"
#include "HLIData/IPrizeTypeInfo.h"
#include "HLIData/Visibility.h"

namespace HLIData {

/// A prize offered in one season. Identifier, description and type are those of the master record; without
/// one they raise ObjectNotSet.
class HLIDATA_TYPE IPrizeInfo {
 public:
  virtual ~IPrizeInfo() = default;

  virtual std::int32_t ID() const = 0;
  virtual std::string Desc() const = 0;
  virtual std::shared_ptr<IPrizeTypeInfo> PrizeType() const = 0;
  /// The money paid for the prize in this season, in whole currency units.
  virtual std::int32_t Amount() const = 0;
  virtual void Amount(std::int32_t value) = 0;
  virtual std::shared_ptr<IPrizeTmplInfo> PrizeTmpl() const = 0;
};

}  // namespace HLIData

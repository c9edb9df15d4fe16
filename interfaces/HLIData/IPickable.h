#pragma once

#include <cstdint>
#include <string>

#include "HLIData/Types.h"
#include "HLIData/Visibility.h"

namespace HLIData {

/// Whatever a manager can draft or that is offered in a list to pick from: players, teams, manager and prize
/// master records, positions. The pair (PickType, PickID) is unique; PickID alone is not.
///
/// The interface of the record itself is reached with std::dynamic_pointer_cast, and the other way round.
class HLIDATA_TYPE IPickable {
 public:
  virtual ~IPickable() = default;

  /// Which kind of record this is; the same for every object of a class.
  virtual HLIData::PickType PickType() const = 0;
  /// The name to show in a list.
  virtual std::string PickName() const = 0;
  /// The record's identifier.
  virtual std::int32_t PickID() const = 0;
};

}  // namespace HLIData

#pragma once

#include <cstdint>
#include <memory>
#include <string>

#include "HLIData/IPositionInfo.h"
#include "HLIData/ITeamInfo.h"
#include "HLIData/Visibility.h"

namespace HLIData {

/// A player. Filled by the service only; changed through IDataService::UpdatePlayer.
class HLIDATA_TYPE IPlayerInfo {
 public:
  virtual ~IPlayerInfo() = default;

  virtual std::int32_t ID() const = 0;
  virtual std::string LastName() const = 0;
  virtual std::string FirstName() const = 0;
  /// May be empty.
  virtual std::shared_ptr<IPositionInfo> Position() const = 0;
  /// May be empty.
  virtual std::shared_ptr<ITeamInfo> Team() const = 0;
  virtual bool IsRetired() const = 0;
};

}  // namespace HLIData

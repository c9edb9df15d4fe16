#pragma once

#include <cstdint>
#include <memory>

#include "HLIData/IManagerInfo.h"
#include "HLIData/IPickable.h"
#include "HLIData/Visibility.h"

namespace HLIData {

/// One pick of a season's draft. Its Manager and its key decide whether it is empty, not PlayerOrTeam.
class HLIDATA_TYPE IDraftInfo {
 public:
  virtual ~IDraftInfo() = default;

  /// The pick's number in the season, from 1.
  virtual std::int32_t DraftNo() const = 0;
  virtual void DraftNo(std::int32_t value) = 0;
  /// What was picked, or empty. Setting an empty reference, or what is neither player nor team, changes
  /// nothing. Raises TypeMismatch for a player or team that is not one of the service's records.
  virtual std::shared_ptr<IPickable> PlayerOrTeam() const = 0;
  virtual void PlayerOrTeam(const std::shared_ptr<IPickable>& value) = 0;
  /// Who made the pick; empty while the pick is.
  virtual std::shared_ptr<IManagerInfo> Manager() const = 0;
  virtual void Manager(const std::shared_ptr<IManagerInfo>& value) = 0;
};

}  // namespace HLIData

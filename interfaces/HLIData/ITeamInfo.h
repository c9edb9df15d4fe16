#pragma once

#include <cstdint>
#include <memory>
#include <string>

#include "HLIData/IPositionInfo.h"
#include "HLIData/Visibility.h"

namespace HLIData {

/// A professional team, which can itself be drafted. Filled by the service only.
class HLIDATA_TYPE ITeamInfo {
 public:
  virtual ~ITeamInfo() = default;

  virtual std::int32_t ID() const = 0;
  virtual std::string Abbr() const = 0;
  virtual std::string Name() const = 0;
  virtual std::string Nickname() const = 0;
  /// The position under which the team is drafted; may be empty.
  virtual std::shared_ptr<IPositionInfo> Position() const = 0;
};

}  // namespace HLIData

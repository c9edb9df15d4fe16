#pragma once

#include <cstdint>
#include <string>

#include "HLIData/Types.h"
#include "HLIData/Visibility.h"

namespace HLIData {

/// One prize won by one manager in one week. Made by IDataService::AddWinning, written by SaveWinnings.
class HLIDATA_TYPE IWinningInfo {
 public:
  virtual ~IWinningInfo() = default;

  /// 0 until the winning is first saved.
  virtual std::int32_t ID() const = 0;
  /// The key under which the winning stands in its season's Winnings, for as long as it stands there.
  virtual std::string Key() const = 0;
  virtual std::int32_t SeasonID() const = 0;
  virtual void SeasonID(std::int32_t value) = 0;
  /// Identifier of the manager who won, as text.
  virtual std::string ManagerID() const = 0;
  virtual void ManagerID(const std::string& value) = 0;
  /// Identifier of the prize won, as text.
  virtual std::string PrizeID() const = 0;
  virtual void PrizeID(const std::string& value) = 0;
  /// Week number; 0: a prize that is not tied to a week.
  virtual std::int32_t Week() const = 0;
  virtual void Week(std::int32_t value) = 0;
  /// What the next save does with the winning. The setter comes first here.
  virtual void Action(WinningAction value) = 0;
  virtual WinningAction Action() const = 0;
};

}  // namespace HLIData

#pragma once

#include <cstdint>

#include "HLIData/Visibility.h"

namespace HLIData {

/// The event of ISettingInfo, received by registered observers.
class HLIDATA_TYPE ISettingInfoEvents {
 public:
  virtual ~ISettingInfoEvents() = default;

  /// The settings differ from what the database holds. Called before the setter that raised it returns.
  virtual void SettingsChanged() = 0;
};

/// The league's settings: the one row of the settings table.
class HLIDATA_TYPE ISettingInfo {
 public:
  virtual ~ISettingInfo() = default;

  /// Identifier of the current season. Setting another value raises SettingsChanged; the present one does
  /// nothing. The setter comes first here.
  virtual void CurrentSeason(std::int32_t value) = 0;
  virtual std::int32_t CurrentSeason() const = 0;

  /// Registers an observer of SettingsChanged. It is borrowed, and must be removed before it goes. Observers
  /// are called in the order in which they were registered; registering one twice has no further effect.
  virtual void AddObserver(ISettingInfoEvents& observer) = 0;
  /// One that is not registered is no error. Allowed while the event is being raised.
  virtual void RemoveObserver(ISettingInfoEvents& observer) = 0;
};

}  // namespace HLIData

#pragma once

#include <cstdint>
#include <memory>
#include <vector>

#include "HLIData/ISettingInfo.h"

namespace HLDataSrvc {

/// The league's settings in memory. Does not touch the database: the service loads and writes it, and follows
/// its event.
class SettingInfo final : public HLIData::ISettingInfo {
 public:
  void CurrentSeason(std::int32_t value) override;
  std::int32_t CurrentSeason() const override { return m_currentSeason; }
  void AddObserver(HLIData::ISettingInfoEvents& observer) override;
  void RemoveObserver(HLIData::ISettingInfoEvents& observer) override;

  /// Whether the value differs from what the database holds.
  bool IsChanged() const { return m_isChanged; }
  /// Setting true raises SettingsChanged, also when it was true before; setting false raises nothing.
  void IsChanged(bool value);

  /// An observer that lives as long as the settings do; empty at first.
  const std::shared_ptr<HLIData::ISettingInfoEvents>& OwnObserver() const { return m_ownObserver; }
  /// Registers an observer and keeps it. To be called once.
  void OwnObserver(std::shared_ptr<HLIData::ISettingInfoEvents> observer);

 private:
  std::int32_t m_currentSeason = 0;
  bool m_isChanged = false;
  std::vector<HLIData::ISettingInfoEvents*> m_observers;  // borrowed; each removes itself before it goes
  std::shared_ptr<HLIData::ISettingInfoEvents> m_ownObserver;
};

}  // namespace HLDataSrvc

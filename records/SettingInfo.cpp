#include "records/SettingInfo.h"

#include <algorithm>
#include <utility>

namespace HLDataSrvc {

void SettingInfo::CurrentSeason(std::int32_t value) {
  if (value == m_currentSeason) return;
  m_currentSeason = value;
  IsChanged(true);
}

void SettingInfo::IsChanged(bool value) {
  m_isChanged = value;
  if (!value) return;
  // An observer may remove itself or another during its call: iterate over a copy, and skip removed ones.
  const auto observers = m_observers;
  for (HLIData::ISettingInfoEvents* observer : observers) {
    if (std::find(m_observers.begin(), m_observers.end(), observer) != m_observers.end())
      observer->SettingsChanged();
  }
}

void SettingInfo::AddObserver(HLIData::ISettingInfoEvents& observer) {
  if (std::find(m_observers.begin(), m_observers.end(), &observer) == m_observers.end()) {
    m_observers.push_back(&observer);
  }
}

void SettingInfo::RemoveObserver(HLIData::ISettingInfoEvents& observer) {
  std::erase(m_observers, &observer);
}

void SettingInfo::OwnObserver(std::shared_ptr<HLIData::ISettingInfoEvents> observer) {
  AddObserver(*observer);
  m_ownObserver = std::move(observer);
}

}  // namespace HLDataSrvc

#include "com/Connections.h"

#include <algorithm>
#include <memory>

#include "records/SettingInfo.h"

namespace HLDataSrvc::Com {

Connections& Connections::Of(HLIData::ISettingInfo& record) {
  auto& settings = dynamic_cast<SettingInfo&>(record);
  if (!settings.OwnObserver()) settings.OwnObserver(std::make_shared<Connections>());
  return dynamic_cast<Connections&>(*settings.OwnObserver());
}

DWORD Connections::Add(ComPtr<IDispatch> sink) {
  m_connections.push_back({std::move(sink), m_lastCookie + 1});
  return ++m_lastCookie;
}

ComPtr<IDispatch> Connections::Remove(DWORD cookie) {
  const auto found = std::find_if(m_connections.begin(), m_connections.end(),
                                  [cookie](const Connection& each) { return each.cookie == cookie; });
  if (found == m_connections.end()) return {};
  ComPtr<IDispatch> sink = std::move(found->sink);
  m_connections.erase(found);
  return sink;
}

void Connections::SettingsChanged() {
  constexpr DISPID kEvent = 1;
  const std::vector<Connection> connections = m_connections;
  for (const Connection& connection : connections) {
    if (!Has(connection.cookie)) continue;
    DISPPARAMS none{};
    connection.sink->Invoke(kEvent, IID_NULL, LOCALE_USER_DEFAULT, DISPATCH_METHOD, &none, nullptr, nullptr,
                            nullptr);
  }
}

bool Connections::Has(DWORD cookie) const {
  return std::any_of(m_connections.begin(), m_connections.end(),
                     [cookie](const Connection& each) { return each.cookie == cookie; });
}

}  // namespace HLDataSrvc::Com

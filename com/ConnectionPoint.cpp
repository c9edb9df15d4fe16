#include "com/ConnectionPoint.h"

#include <algorithm>
#include <utility>

#include <olectl.h>

#include "com/Enumeration.h"
#include "com/Errors.h"

namespace HLDataSrvc::Com {
namespace {

using Held = std::pair<ComPtr<IUnknown>, DWORD>;

void HandOutConnection(const Held& connection, CONNECTDATA& element) {
  element.pUnk = ComPtr<IUnknown>(connection.first).Detach();
  element.dwCookie = connection.second;
}

using ConnectionEnumeration = Enumeration<IEnumConnections, CONNECTDATA, Held, &HandOutConnection>;

}  // namespace

ConnectionPoint::ConnectionPoint(IConnectionPointContainer& container, REFIID events)
    : m_container(container), m_events(events) {}

void ConnectionPoint::Raise() {
  constexpr DISPID kEvent = 1;
  const std::vector<Connection> connections = m_connections;
  for (const Connection& connection : connections) {
    const bool isConnected =
        std::any_of(m_connections.begin(), m_connections.end(),
                    [&](const Connection& each) { return each.cookie == connection.cookie; });
    if (!isConnected) continue;
    DISPPARAMS none{};
    connection.sink->Invoke(kEvent, IID_NULL, LOCALE_USER_DEFAULT, DISPATCH_METHOD, &none, nullptr, nullptr,
                            nullptr);
  }
}

HRESULT ConnectionPoint::QueryInterface(REFIID id, void** object) noexcept {
  if (!object) return E_POINTER;
  *object = id == IID_IUnknown || id == IID_IConnectionPoint ? static_cast<IConnectionPoint*>(this) : nullptr;
  if (!*object) return E_NOINTERFACE;
  AddRef();
  return S_OK;
}

HRESULT ConnectionPoint::GetConnectionInterface(IID* id) noexcept {
  if (!id) return E_POINTER;
  *id = m_events;
  return S_OK;
}

HRESULT ConnectionPoint::GetConnectionPointContainer(IConnectionPointContainer** container) noexcept {
  if (!container) return E_POINTER;
  *container = ComPtr<IConnectionPointContainer>(&m_container).Detach();
  return S_OK;
}

HRESULT ConnectionPoint::Advise(IUnknown* sink, DWORD* cookie) noexcept {
  if (!sink || !cookie) return E_POINTER;
  *cookie = 0;
  if (IsOtherApartment())
    return Report(RPC_E_WRONG_THREAD, "The settings belong to the apartment that made them.");
  try {
    Connection connection;
    if (FAILED(sink->QueryInterface(m_events, connection.sink.PutVoid())) &&
        FAILED(sink->QueryInterface(IID_IDispatch, connection.sink.PutVoid()))) {
      return Report(CONNECT_E_CANNOTCONNECT, "The sink has no dispatch interface to call.");
    }
    connection.cookie = ++m_lastCookie;
    m_connections.push_back(connection);
    *cookie = connection.cookie;
    return S_OK;
  } catch (...) {
    return ReportCurrentException();
  }
}

HRESULT ConnectionPoint::Unadvise(DWORD cookie) noexcept {
  if (IsOtherApartment())
    return Report(RPC_E_WRONG_THREAD, "The settings belong to the apartment that made them.");
  const auto found = std::find_if(m_connections.begin(), m_connections.end(),
                                  [cookie](const Connection& each) { return each.cookie == cookie; });
  if (found == m_connections.end())
    return Report(CONNECT_E_NOCONNECTION, "No sink is connected under that number.");
  // Let go of only when it is out of the list, which the sink may change in turn.
  const ComPtr<IDispatch> sink = std::move(found->sink);
  m_connections.erase(found);
  return S_OK;
}

HRESULT ConnectionPoint::EnumConnections(IEnumConnections** connections) noexcept {
  if (!connections) return E_POINTER;
  *connections = nullptr;
  if (IsOtherApartment())
    return Report(RPC_E_WRONG_THREAD, "The settings belong to the apartment that made them.");
  try {
    std::vector<Held> held;
    for (const Connection& connection : m_connections)
      held.emplace_back(ComPtr<IUnknown>(connection.sink.Get()), connection.cookie);
    *connections = Make<ConnectionEnumeration>(std::move(held)).Detach();
    return S_OK;
  } catch (...) {
    return ReportCurrentException();
  }
}

}  // namespace HLDataSrvc::Com

#include "com/ConnectionPoint.h"

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

ConnectionPoint::ConnectionPoint(IConnectionPointContainer& container, REFIID events,
                                 Connections& connections)
    : m_container(container), m_events(events), m_connections(connections) {}

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
  const ComPtr<IConnectionPointContainer> alive(&m_container);  // the sink may release the last reference
  try {
    ComPtr<IDispatch> listener;
    if (FAILED(sink->QueryInterface(m_events, listener.PutVoid())) &&
        FAILED(sink->QueryInterface(IID_IDispatch, listener.PutVoid()))) {
      return Report(CONNECT_E_CANNOTCONNECT, "The sink has no dispatch interface to call.");
    }
    *cookie = m_connections.Add(std::move(listener));
    return S_OK;
  } catch (...) {
    return ReportCurrentException();
  }
}

HRESULT ConnectionPoint::Unadvise(DWORD cookie) noexcept {
  if (IsOtherApartment())
    return Report(RPC_E_WRONG_THREAD, "The settings belong to the apartment that made them.");
  const ComPtr<IConnectionPointContainer> alive(&m_container);  // the sink may release the last reference
  if (!m_connections.Remove(cookie))
    return Report(CONNECT_E_NOCONNECTION, "No sink is connected under that number.");
  return S_OK;
}

HRESULT ConnectionPoint::EnumConnections(IEnumConnections** connections) noexcept {
  if (!connections) return E_POINTER;
  *connections = nullptr;
  if (IsOtherApartment())
    return Report(RPC_E_WRONG_THREAD, "The settings belong to the apartment that made them.");
  try {
    std::vector<Held> held;
    for (const Connections::Connection& connection : m_connections.All())
      held.emplace_back(ComPtr<IUnknown>(connection.sink.Get()), connection.cookie);
    *connections = Make<ConnectionEnumeration>(std::move(held)).Detach();
    return S_OK;
  } catch (...) {
    return ReportCurrentException();
  }
}

}  // namespace HLDataSrvc::Com

#pragma once

#include <ocidl.h>
#include <windows.h>

#include "com/Connections.h"

namespace HLDataSrvc::Com {

/// Where clients connect sinks to the event of a settings record. Part of its container: both share the
/// container's references and apartment.
class ConnectionPoint final : public IConnectionPoint {
 public:
  /// Borrows the container, of which it is a member, and the connections, which belong to the container's
  /// record. `events` is the dispatch interface that sinks implement.
  ConnectionPoint(IConnectionPointContainer& container, REFIID events, Connections& connections);
  ConnectionPoint(const ConnectionPoint&) = delete;
  ConnectionPoint& operator=(const ConnectionPoint&) = delete;

  STDMETHODIMP QueryInterface(REFIID id, void** object) noexcept override;
  STDMETHODIMP_(ULONG) AddRef() noexcept override { return m_container.AddRef(); }
  STDMETHODIMP_(ULONG) Release() noexcept override { return m_container.Release(); }

  STDMETHODIMP GetConnectionInterface(IID* id) noexcept override;
  HRESULT STDMETHODCALLTYPE
  GetConnectionPointContainer(IConnectionPointContainer** container) noexcept override;
  STDMETHODIMP Advise(IUnknown* sink, DWORD* cookie) noexcept override;
  STDMETHODIMP Unadvise(DWORD cookie) noexcept override;
  STDMETHODIMP EnumConnections(IEnumConnections** connections) noexcept override;

 private:
  bool IsOtherApartment() const { return GetCurrentThreadId() != m_thread; }

  IConnectionPointContainer& m_container;
  const IID m_events;
  const DWORD m_thread = GetCurrentThreadId();
  Connections& m_connections;
};

}  // namespace HLDataSrvc::Com

#pragma once

#include <vector>

#include <ocidl.h>
#include <windows.h>

#include "com/ComPtr.h"

namespace HLDataSrvc::Com {

/// Where the sinks of one event interface are connected. Part of its container: both share the container's
/// references and apartment.
class ConnectionPoint final : public IConnectionPoint {
 public:
  /// Borrows the container, of which it is a member. `events` is the dispatch interface that sinks implement.
  ConnectionPoint(IConnectionPointContainer& container, REFIID events);
  ConnectionPoint(const ConnectionPoint&) = delete;
  ConnectionPoint& operator=(const ConnectionPoint&) = delete;

  /// Calls every sink's event number 1; the caller holds the container. A sink may disconnect itself, or
  /// others, under way; one that fails does not keep the others from hearing it.
  void Raise();

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
  struct Connection {
    ComPtr<IDispatch> sink;
    DWORD cookie;
  };

  bool IsOtherApartment() const { return GetCurrentThreadId() != m_thread; }

  IConnectionPointContainer& m_container;
  const IID m_events;
  const DWORD m_thread = GetCurrentThreadId();
  std::vector<Connection> m_connections;
  DWORD m_lastCookie = 0;
};

}  // namespace HLDataSrvc::Com

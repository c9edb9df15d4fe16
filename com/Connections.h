#pragma once

#include <utility>
#include <vector>

#include <oaidl.h>
#include <windows.h>

#include "HLIData/ISettingInfo.h"
#include "com/ComPtr.h"

namespace HLDataSrvc::Com {

/// The sinks connected to the event of one settings record.
///
/// The record owns them: sinks stay connected while it lives, whether or not a client holds its COM object.
class Connections final : public HLIData::ISettingInfoEvents {
 public:
  struct Connection {
    ComPtr<IDispatch> sink;
    DWORD cookie;
  };

  /// Those of a record, which must be the component's own; creates them on first use.
  static Connections& Of(HLIData::ISettingInfo& record);

  Connections() = default;
  Connections(const Connections&) = delete;
  Connections& operator=(const Connections&) = delete;

  /// Connects a sink and returns its cookie, which no other sink of this record gets.
  DWORD Add(ComPtr<IDispatch> sink);
  /// Disconnects a sink and returns it, for the caller to release; empty if no sink has the cookie.
  ComPtr<IDispatch> Remove(DWORD cookie);
  const std::vector<Connection>& All() const { return m_connections; }

  /// Calls event number 1 of every sink; the caller holds the record. A sink may disconnect itself or others
  /// meanwhile. A sink that fails does not keep the others from hearing the event.
  void SettingsChanged() override;

 private:
  bool Has(DWORD cookie) const;

  std::vector<Connection> m_connections;
  DWORD m_lastCookie = 0;
};

}  // namespace HLDataSrvc::Com

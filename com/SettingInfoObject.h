#pragma once

#include <memory>

#include <ocidl.h>
#include <windows.h>

#include "com/ConnectionPoint.h"
#include "com/RecordObject.h"

namespace HLDataSrvc::Com {

/// The settings, and the source of their event: clients connect a sink of the dispatch interface
/// _ISettingInfoEvents.
class SettingInfoObject final : public RecordObject<HLIData::ISettingInfo, ::ISettingInfo>,
                                public IConnectionPointContainer,
                                public IProvideClassInfo2 {
 public:
  explicit SettingInfoObject(const std::shared_ptr<HLIData::ISettingInfo>& record);

  STDMETHODIMP QueryInterface(REFIID id, void** object) noexcept override {
    return RecordObject::QueryInterface(id, object);
  }
  STDMETHODIMP_(ULONG) AddRef() noexcept override { return RecordObject::AddRef(); }
  STDMETHODIMP_(ULONG) Release() noexcept override { return RecordObject::Release(); }

  STDMETHODIMP put_CurrentSeason(LONG value) noexcept override {
    return Put(value, &HLIData::ISettingInfo::CurrentSeason);
  }
  STDMETHODIMP get_CurrentSeason(LONG* value) noexcept override {
    return Get(value, &HLIData::ISettingInfo::CurrentSeason);
  }

  STDMETHODIMP EnumConnectionPoints(IEnumConnectionPoints** points) noexcept override;
  STDMETHODIMP FindConnectionPoint(REFIID id, IConnectionPoint** point) noexcept override;

  STDMETHODIMP GetClassInfo(ITypeInfo** info) noexcept override;
  STDMETHODIMP GetGUID(DWORD kind, GUID* id) noexcept override;

 protected:
  void* FindMore(REFIID id) noexcept override;

 private:
  ConnectionPoint m_point;
};

}  // namespace HLDataSrvc::Com

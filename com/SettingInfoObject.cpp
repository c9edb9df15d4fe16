#include "com/SettingInfoObject.h"

#include <olectl.h>

#include "com/Enumeration.h"

namespace HLDataSrvc::Com {
namespace {

void HandOutPoint(const ComPtr<IConnectionPoint>& point, IConnectionPoint*& element) {
  element = ComPtr<IConnectionPoint>(point).Detach();
}

using PointEnumeration =
    Enumeration<IEnumConnectionPoints, IConnectionPoint*, ComPtr<IConnectionPoint>, &HandOutPoint>;

}  // namespace

SettingInfoObject::SettingInfoObject(const std::shared_ptr<HLIData::ISettingInfo>& record)
    : RecordObject(record), m_point(*this, __uuidof(::_ISettingInfoEvents), Connections::Of(*record)) {}

HRESULT SettingInfoObject::EnumConnectionPoints(IEnumConnectionPoints** points) noexcept {
  return Filled(points, [&] {
    *points = Make<PointEnumeration>(std::vector{ComPtr<IConnectionPoint>(&m_point)}).Detach();
  });
}

HRESULT SettingInfoObject::FindConnectionPoint(REFIID id, IConnectionPoint** point) noexcept {
  return Filled(point, [&] {
    if (id != __uuidof(::_ISettingInfoEvents))
      throw ComError(CONNECT_E_NOCONNECTION, "The settings have no such event interface.");
    m_point.AddRef();
    *point = &m_point;
  });
}

HRESULT SettingInfoObject::GetClassInfo(ITypeInfo** info) noexcept {
  return Filled(info, [&] { *info = Module::TypeInfo(__uuidof(::SettingInfo)).Detach(); });
}

HRESULT SettingInfoObject::GetGUID(DWORD kind, GUID* id) noexcept {
  return Filled(id, [&] {
    if (kind != GUIDKIND_DEFAULT_SOURCE_DISP_IID)
      throw ComError(E_INVALIDARG,
                     "The settings have one kind of identifier, that of their event interface.");
    *id = __uuidof(::_ISettingInfoEvents);
  });
}

void* SettingInfoObject::FindMore(REFIID id) noexcept {
  if (id == IID_IConnectionPointContainer) return static_cast<IConnectionPointContainer*>(this);
  if (id == IID_IProvideClassInfo || id == IID_IProvideClassInfo2)
    return static_cast<IProvideClassInfo2*>(this);
  return nullptr;
}

}  // namespace HLDataSrvc::Com

#include "com/ClassFactory.h"

#include "com/Errors.h"

namespace HLDataSrvc::Com {

HRESULT ClassFactory::QueryInterface(REFIID id, void** object) noexcept {
  if (!object) return E_POINTER;
  *object = id == IID_IUnknown || id == IID_IClassFactory ? static_cast<IClassFactory*>(this) : nullptr;
  if (!*object) return E_NOINTERFACE;
  AddRef();
  return S_OK;
}

ULONG ClassFactory::Release() noexcept {
  const ULONG left = --m_references;
  if (left == 0) delete this;
  return left;
}

HRESULT ClassFactory::CreateInstance(IUnknown* outer, REFIID id, void** object) noexcept {
  if (!object) return E_POINTER;
  *object = nullptr;
  if (outer) return CLASS_E_NOAGGREGATION;
  try {
    return m_class.make()->QueryInterface(id, object);
  } catch (...) {
    return ReportCurrentException();
  }
}

HRESULT ClassFactory::LockServer(BOOL isLocked) noexcept {
  Module::Lock(isLocked != FALSE);
  return S_OK;
}

}  // namespace HLDataSrvc::Com

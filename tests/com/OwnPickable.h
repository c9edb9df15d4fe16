#pragma once

#include "HLIDataCom.h"

namespace HLDataSrvc::Com::test {

/// Something to pick that a program implements itself. Answers `result` to every question.
class OwnPickable final : public ::IPickable {
 public:
  OwnPickable(LONG type, LONG id, HRESULT result = S_OK) : m_type(type), m_id(id), m_result(result) {}
  OwnPickable(const OwnPickable&) = delete;
  OwnPickable& operator=(const OwnPickable&) = delete;

  STDMETHODIMP QueryInterface(REFIID id, void** object) override {
    const bool isKnown = id == IID_IUnknown || id == IID_IDispatch || id == __uuidof(::IPickable);
    *object = isKnown ? this : nullptr;
    if (!isKnown) return E_NOINTERFACE;
    AddRef();
    return S_OK;
  }
  STDMETHODIMP_(ULONG) AddRef() override { return ++m_references; }
  STDMETHODIMP_(ULONG) Release() override {
    const ULONG left = --m_references;
    if (left == 0) delete this;
    return left;
  }
  STDMETHODIMP GetTypeInfoCount(UINT* count) override {
    *count = 0;
    return S_OK;
  }
  STDMETHODIMP GetTypeInfo(UINT, LCID, ITypeInfo**) override { return E_NOTIMPL; }
  STDMETHODIMP GetIDsOfNames(REFIID, LPOLESTR*, UINT, LCID, DISPID*) override { return DISP_E_UNKNOWNNAME; }
  STDMETHODIMP Invoke(DISPID, REFIID, LCID, WORD, DISPPARAMS*, VARIANT*, EXCEPINFO*, UINT*) override {
    return DISP_E_MEMBERNOTFOUND;
  }

  STDMETHODIMP get_PickType(LONG* value) override {
    *value = m_type;
    return m_result;
  }
  STDMETHODIMP get_PickName(BSTR* value) override {
    *value = FAILED(m_result) ? nullptr : SysAllocString(L"(nobody)");
    return m_result;
  }
  STDMETHODIMP get_PickID(LONG* value) override {
    *value = m_id;
    return m_result;
  }

 private:
  ~OwnPickable() = default;

  const LONG m_type;
  const LONG m_id;
  const HRESULT m_result;
  ULONG m_references = 0;
};

}  // namespace HLDataSrvc::Com::test

#pragma once

#include <array>
#include <atomic>
#include <tuple>

#include <oaidl.h>
#include <windows.h>

#include "com/ComPtr.h"
#include "com/Dispatch.h"
#include "com/Errors.h"
#include "com/Module.h"
#include "com/RecordAccess.h"

namespace HLDataSrvc::Com {

/// What every object of the library has: identity, references, calls by name for its dual interfaces (the
/// first is the default one), descriptions of errors, and one apartment.
///
/// References count from 0; see Make. Members run inside Guarded, which keeps exceptions in and other
/// apartments out. `Interfaces` are from the type library.
template <typename... Interfaces>
class ComObject : public Interfaces..., public ISupportErrorInfo, public IRecordAccess {
 public:
  ComObject(const ComObject&) = delete;
  ComObject& operator=(const ComObject&) = delete;

  STDMETHODIMP QueryInterface(REFIID id, void** object) noexcept override {
    if (!object) return E_POINTER;
    *object = Find(id);
    if (!*object) return E_NOINTERFACE;
    AddRef();
    return S_OK;
  }
  STDMETHODIMP_(ULONG) AddRef() noexcept override { return ++m_references; }
  STDMETHODIMP_(ULONG) Release() noexcept override {
    const ULONG left = --m_references;
    if (left == 0) delete this;
    return left;
  }
  bool STDMETHODCALLTYPE TryAddRef() noexcept override {
    ULONG references = m_references;
    while (references != 0) {
      if (m_references.compare_exchange_weak(references, references + 1)) return true;
    }
    return false;
  }

  STDMETHODIMP GetTypeInfoCount(UINT* count) noexcept final {
    if (!count) return E_POINTER;
    *count = 1;
    return S_OK;
  }
  STDMETHODIMP GetTypeInfo(UINT index, LCID, ITypeInfo** info) noexcept final {
    return Dispatch::TypeInfo(Faces(), index, info);
  }
  STDMETHODIMP GetIDsOfNames(REFIID, LPOLESTR* names, UINT count, LCID, DISPID* numbers) noexcept final {
    return Dispatch::NumbersOfNames(Faces(), names, count, numbers);
  }
  STDMETHODIMP Invoke(DISPID member, REFIID, LCID, WORD flags, DISPPARAMS* parameters, VARIANT* result,
                      EXCEPINFO* exception, UINT* badArgument) noexcept final {
    return Dispatch::Invoke(Faces(), member, flags, parameters, result, exception, badArgument);
  }

  STDMETHODIMP InterfaceSupportsErrorInfo(REFIID id) noexcept final { return Find(id) ? S_OK : S_FALSE; }

 protected:
  using DefaultInterface = std::tuple_element_t<0, std::tuple<Interfaces...>>;

  ComObject() = default;
  virtual ~ComObject() = default;

  /// The object's pointer for an interface that is not in the type library; nullptr for one it lacks.
  virtual void* FindMore(REFIID) noexcept { return nullptr; }

  /// Raises when called in another apartment than the one where the object was made.
  void CheckApartment() const {
    if (GetCurrentThreadId() != m_thread) {
      throw ComError(RPC_E_WRONG_THREAD,
                     "The object belongs to the apartment that made it; pass it on by marshalling.");
    }
  }

  /// Runs `work()` and returns its result. The object, and with it its record, lives until then: a sink or
  /// another object of the client's that `work` calls may release the last reference.
  template <typename Work>
  HRESULT Guarded(Work&& work) noexcept {
    const ComPtr<DefaultInterface> alive(this);
    try {
      CheckApartment();
      work();
      return S_OK;
    } catch (...) {
      return ReportCurrentException();
    }
  }
  /// The same for work that fills `*out`, which is empty when it fails, in whatever apartment.
  template <typename Out, typename Work>
  HRESULT Filled(Out* out, Work&& work) noexcept {
    if (out) *out = Out{};
    return Guarded([&] {
      Required(out);
      work();
    });
  }

 private:
  void* Find(REFIID id) noexcept {
    if (id == IID_IUnknown || id == IID_IDispatch) return static_cast<DefaultInterface*>(this);
    if (id == IID_ISupportErrorInfo) return static_cast<ISupportErrorInfo*>(this);
    if (id == __uuidof(IRecordAccess)) return static_cast<IRecordAccess*>(this);
    for (const Dispatch::Face& face : Faces()) {
      if (id == *face.id) return face.pointer;
    }
    return FindMore(id);
  }

  std::array<Dispatch::Face, sizeof...(Interfaces)> Faces() noexcept {
    return {{{&__uuidof(Interfaces), static_cast<Interfaces*>(this)}...}};
  }

  const Module::Use m_use;
  const DWORD m_thread = GetCurrentThreadId();
  std::atomic<ULONG> m_references{0};
};

}  // namespace HLDataSrvc::Com

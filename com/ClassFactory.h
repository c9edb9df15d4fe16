#pragma once

#include <atomic>

#include <unknwn.h>
#include <windows.h>

#include "com/Classes.h"
#include "com/Module.h"

namespace HLDataSrvc::Com {

/// Makes objects of one class, and keeps the library loaded for clients that ask for it.
class ClassFactory final : public IClassFactory {
 public:
  explicit ClassFactory(const ClassEntry& made) : m_class(made) {}
  ClassFactory(const ClassFactory&) = delete;
  ClassFactory& operator=(const ClassFactory&) = delete;

  STDMETHODIMP QueryInterface(REFIID id, void** object) noexcept override;
  STDMETHODIMP_(ULONG) AddRef() noexcept override { return ++m_references; }
  STDMETHODIMP_(ULONG) Release() noexcept override;
  STDMETHODIMP CreateInstance(IUnknown* outer, REFIID id, void** object) noexcept override;
  STDMETHODIMP LockServer(BOOL isLocked) noexcept override;

 private:
  ~ClassFactory() = default;

  const ClassEntry& m_class;
  const Module::Use m_use;
  std::atomic<ULONG> m_references{0};
};

}  // namespace HLDataSrvc::Com

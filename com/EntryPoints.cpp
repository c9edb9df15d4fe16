// What the system calls in the library.

#include <string_view>

#include <olectl.h>
#include <windows.h>

#include "com/ClassFactory.h"
#include "com/Errors.h"
#include "com/Module.h"
#include "com/Registration.h"

using namespace HLDataSrvc::Com;

namespace {

template <typename Work>
HRESULT Try(Work&& work) noexcept {
  try {
    work();
    return S_OK;
  } catch (...) {
    return ReportCurrentException();
  }
}

}  // namespace

/// The class factory of one of the library's classes.
STDAPI DllGetClassObject(REFCLSID id, REFIID interfaceId, void** object) {
  if (!object) return E_POINTER;
  *object = nullptr;
  for (const ClassEntry& made : Classes()) {
    if (*made.id != id) continue;
    HRESULT found = E_NOINTERFACE;
    const HRESULT result =
        Try([&] { found = Make<ClassFactory>(made)->QueryInterface(interfaceId, object); });
    return FAILED(result) ? result : found;
  }
  return CLASS_E_CLASSNOTAVAILABLE;
}

/// Whether the library is unused.
STDAPI DllCanUnloadNow() {
  return Module::CanUnload() ? S_OK : S_FALSE;
}

/// Registers the library for everybody.
STDAPI DllRegisterServer() {
  return Try([] { Register(RegisteredFor::Everybody); });
}

STDAPI DllUnregisterServer() {
  return Try([] { Unregister(RegisteredFor::Everybody); });
}

/// Registers the library, or takes it out, for whom the command line says: "user", or nothing for everybody.
STDAPI DllInstall(BOOL isInstalled, LPCWSTR commandLine) {
  const std::wstring_view words = commandLine ? commandLine : L"";
  if (!words.empty() && words != L"user") return E_INVALIDARG;
  const RegisteredFor whom = words.empty() ? RegisteredFor::Everybody : RegisteredFor::User;
  return Try([&] { isInstalled ? Register(whom) : Unregister(whom); });
}

#pragma once

#include <typeinfo>

#include <unknwn.h>
#include <windows.h>

namespace HLDataSrvc::Com {

/// How the library finds its own record behind a COM object. Private: no other component implements it, and
/// it does not pass between apartments.
struct IRecordAccess : public IUnknown {
  /// Puts the record, or the collection, into `reference`, a shared pointer to `wanted`. False, and nothing
  /// done, when it is of another kind. Raises when asked in another apartment.
  virtual bool STDMETHODCALLTYPE View(const std::type_info& wanted, void* reference) = 0;
  /// Adds a reference unless the last has gone already.
  virtual bool STDMETHODCALLTYPE TryAddRef() noexcept = 0;
};

}  // namespace HLDataSrvc::Com

__CRT_UUID_DECL(HLDataSrvc::Com::IRecordAccess, 0x7caef6b5, 0xb6e6, 0x4a1f, 0x97, 0x53, 0x5c, 0xdd, 0x5b,
                0x83, 0xcf, 0xa0)

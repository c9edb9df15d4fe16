#pragma once

#include <oaidl.h>
#include <windows.h>

#include "com/ComPtr.h"

/// The library as its loader sees it: its type library, and whether it can be unloaded.
namespace HLDataSrvc::Com::Module {

/// Counts one object, or one lock, that keeps the library loaded for as long as it lives.
class Use {
 public:
  Use();
  ~Use();
  Use(const Use&) = delete;
  Use& operator=(const Use&) = delete;
};

/// The lock that clients hold through class factories; locks count.
void Lock(bool isLocked);

/// Whether no object and no lock is left. Answering true also lets go of the type library.
bool CanUnload();

/// The type library that the file carries. Raises ComError when it cannot be read.
ComPtr<ITypeLib> TypeLibrary();

/// The description of an interface or class in the type library, read once. Raises ComError when there is
/// none.
ComPtr<ITypeInfo> TypeInfo(const GUID& id);

}  // namespace HLDataSrvc::Com::Module

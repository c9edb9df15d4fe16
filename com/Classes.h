#pragma once

#include <span>
#include <string_view>

#include <windows.h>

#include "com/ComPtr.h"

namespace HLDataSrvc::Com {

/// A class that programs can make objects of.
struct ClassEntry {
  const CLSID* id;
  std::wstring_view name;         ///< programs create it as "HLDataSrvc." and this
  std::wstring_view description;  ///< for lists of classes
  ComPtr<IUnknown> (*make)();     ///< a new object; raises what its making raises
};

/// All of them: the service, the records, and the collection that programs make.
std::span<const ClassEntry> Classes();

}  // namespace HLDataSrvc::Com

#pragma once

#include <span>

#include <oaidl.h>
#include <windows.h>

/// Calling by name, for every object of the library: what IDispatch asks, implemented by the type library.
///
/// An object offers the members of all its interfaces, so that a script that got a player from a list to
/// pick from also reads his team. Arguments by reference may be untyped variables, as scripts pass them.
namespace HLDataSrvc::Com::Dispatch {

/// One interface of an object: which, and the object's pointer for it.
struct Face {
  const IID* id;
  void* pointer;
};

HRESULT TypeInfo(std::span<const Face> faces, UINT index, ITypeInfo** info) noexcept;
HRESULT NumbersOfNames(std::span<const Face> faces, LPOLESTR* names, UINT count, DISPID* numbers) noexcept;
HRESULT Invoke(std::span<const Face> faces, DISPID member, WORD flags, DISPPARAMS* parameters,
               VARIANT* result, EXCEPINFO* exception, UINT* badArgument) noexcept;

}  // namespace HLDataSrvc::Com::Dispatch

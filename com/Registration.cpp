#include "com/Registration.h"

#include <optional>
#include <string>

#include <ole2.h>
#include <windows.h>

#include "HLIDataCom.h"
#include "com/Classes.h"
#include "com/Errors.h"
#include "com/Module.h"
#include "platform/windows/ComponentFile.h"
#include "platform/windows/WideText.h"

namespace HLDataSrvc::Com {
namespace {

constexpr wchar_t kClassesKey[] = L"Software\\Classes\\";

std::wstring TextOf(const GUID& id) {
  wchar_t text[39];
  StringFromGUID2(id, text, 39);
  return text;
}

HKEY Root(RegisteredFor whom) {
  return whom == RegisteredFor::User ? HKEY_CURRENT_USER : HKEY_LOCAL_MACHINE;
}

void Check(LSTATUS status, const std::wstring& key) {
  if (status != ERROR_SUCCESS) {
    throw ComError(HRESULT_FROM_WIN32(static_cast<DWORD>(status)),
                   "The entry " + ToUtf8(key) + " of the registry cannot be changed.");
  }
}

/// Writes text under the classes of the registry; with no `name` that of the key itself.
void Write(RegisteredFor whom, const std::wstring& key, const wchar_t* name, const std::wstring& value) {
  const std::wstring path = kClassesKey + key;
  const auto size = static_cast<DWORD>((value.size() + 1) * sizeof(wchar_t));
  Check(RegSetKeyValueW(Root(whom), path.c_str(), name, REG_SZ, value.c_str(), size), path);
}

void Remove(RegisteredFor whom, const std::wstring& key) {
  const std::wstring path = kClassesKey + key;
  const LSTATUS status = RegDeleteTreeW(Root(whom), path.c_str());
  if (status != ERROR_FILE_NOT_FOUND) Check(status, path);
}

/// How many keys and values a key holds; nothing if there is no such key.
struct KeyContent {
  DWORD keys = 0;
  DWORD values = 0;
};
std::optional<KeyContent> ContentOf(RegisteredFor whom, const std::wstring& key) {
  const std::wstring path = kClassesKey + key;
  HKEY opened = nullptr;
  const LSTATUS status = RegOpenKeyExW(Root(whom), path.c_str(), 0, KEY_READ, &opened);
  if (status == ERROR_FILE_NOT_FOUND) return std::nullopt;
  Check(status, path);
  KeyContent content;
  const LSTATUS counted = RegQueryInfoKeyW(opened, nullptr, nullptr, nullptr, &content.keys, nullptr, nullptr,
                                           &content.values, nullptr, nullptr, nullptr, nullptr);
  RegCloseKey(opened);
  Check(counted, path);
  return content;
}

bool Exists(RegisteredFor whom, const std::wstring& key) {
  return ContentOf(whom, key).has_value();
}

void RemoveIfEmpty(RegisteredFor whom, const std::wstring& key) {
  const auto content = ContentOf(whom, key);
  if (!content || content->keys != 0 || content->values != 0) return;
  const std::wstring path = kClassesKey + key;
  Check(RegDeleteKeyW(Root(whom), path.c_str()), path);  // fails if another program adds a key meanwhile
}

std::wstring ProgramName(const ClassEntry& made) {
  return L"HLDataSrvc." + std::wstring(made.name);
}

void RegisterClass(RegisteredFor whom, const ClassEntry& made, const std::wstring& typeLibrary) {
  const std::wstring id = TextOf(*made.id);
  const std::wstring key = L"CLSID\\" + id;
  const std::wstring program = ProgramName(made);
  const std::wstring description(made.description);
  Write(whom, key, nullptr, description);
  Write(whom, key + L"\\InprocServer32", nullptr, ComponentFile());
  Write(whom, key + L"\\InprocServer32", L"ThreadingModel", L"Apartment");
  Write(whom, key + L"\\ProgID", nullptr, program);
  Write(whom, key + L"\\TypeLib", nullptr, typeLibrary);
  Write(whom, program, nullptr, description);
  Write(whom, program + L"\\CLSID", nullptr, id);
}

std::wstring LibraryKey(const TLIBATTR& library) {
  return L"TypeLib\\" + TextOf(library.guid);
}

std::wstring VersionOf(const TLIBATTR& library) {
  return std::to_wstring(library.wMajorVerNum) + L"." + std::to_wstring(library.wMinorVerNum);
}

/// Where the version of a type library names the file for programs of this bitness. The servers for 32 and 64
/// bits share everything else of it, and the classes' names; the system keeps the rest of each apart.
std::wstring PlatformOf(const TLIBATTR& library) {
  return library.syskind == SYS_WIN64 ? L"\\0\\win64" : L"\\0\\win32";
}

/// The identity of a type library.
TLIBATTR AttributesOf(ITypeLib& library) {
  TLIBATTR* attributes = nullptr;
  const HRESULT result = library.GetLibAttr(&attributes);
  if (FAILED(result)) throw ComError(result, "The type library of the component cannot be read.");
  const TLIBATTR copy = *attributes;
  library.ReleaseTLibAttr(attributes);
  return copy;
}

std::wstring NameOf(ITypeLib& library, INT index) {
  BSTR name = nullptr;
  if (FAILED(library.GetDocumentation(index, &name, nullptr, nullptr, nullptr))) return {};
  std::wstring text(name, SysStringLen(name));
  SysFreeString(name);
  return text;
}

/// Calls `visit(key, name, isDual)` for the registry's key of each interface in the library.
template <typename Visit>
void ForEachInterface(ITypeLib& library, Visit&& visit) {
  for (UINT i = 0; i < library.GetTypeInfoCount(); ++i) {
    TYPEKIND kind{};
    ComPtr<ITypeInfo> type;
    TYPEATTR* attributes = nullptr;
    if (FAILED(library.GetTypeInfoType(i, &kind)) || (kind != TKIND_DISPATCH && kind != TKIND_INTERFACE))
      continue;
    if (FAILED(library.GetTypeInfo(i, type.Put())) || FAILED(type->GetTypeAttr(&attributes))) continue;
    const std::wstring key = L"Interface\\" + TextOf(attributes->guid);
    const bool isDual = kind == TKIND_INTERFACE || (attributes->wTypeFlags & TYPEFLAG_FDUAL) != 0;
    type->ReleaseTypeAttr(attributes);
    visit(key, NameOf(library, static_cast<INT>(i)), isDual);
  }
}

void RegisterTypes(RegisteredFor whom, ITypeLib& library) {
  const TLIBATTR attributes = AttributesOf(library);
  const std::wstring version = VersionOf(attributes);
  const std::wstring key = LibraryKey(attributes) + L"\\" + version;
  Write(whom, key, nullptr, L"Halcyra league data");
  Write(whom, key + PlatformOf(attributes), nullptr, ComponentFile());
  Write(whom, key + L"\\FLAGS", nullptr, L"0");
  // The system's own marshallers carry calls between apartments: by slot, or by name.
  ForEachInterface(library, [&](const std::wstring& face, const std::wstring& name, bool isDual) {
    Write(whom, face, nullptr, name);
    Write(whom, face + L"\\ProxyStubClsid32", nullptr,
          isDual ? L"{00020424-0000-0000-C000-000000000046}" : L"{00020420-0000-0000-C000-000000000046}");
    Write(whom, face + L"\\TypeLib", nullptr, TextOf(attributes.guid));
    Write(whom, face + L"\\TypeLib", L"Version", version);
  });
}

/// Takes out the types for programs of this bitness. The library itself stays while another server is
/// registered with it.
void UnregisterTypes(RegisteredFor whom, ITypeLib& library) {
  ForEachInterface(library,
                   [whom](const std::wstring& face, const std::wstring&, bool) { Remove(whom, face); });
  const TLIBATTR attributes = AttributesOf(library);
  const std::wstring key = LibraryKey(attributes);
  const std::wstring version = key + L"\\" + VersionOf(attributes);
  Remove(whom, version + PlatformOf(attributes));
  const auto servers = ContentOf(whom, version + L"\\0");
  if (!servers || servers->keys == 0) Remove(whom, version);
  RemoveIfEmpty(whom, key);
}

}  // namespace

void Register(RegisteredFor whom) {
  const ComPtr<ITypeLib> library = Module::TypeLibrary();
  const std::wstring typeLibrary = TextOf(AttributesOf(*library.Get()).guid);
  try {
    for (const ClassEntry& made : Classes())
      RegisterClass(whom, made, typeLibrary);
    RegisterTypes(whom, *library.Get());
  } catch (const ComError&) {
    try {
      Unregister(whom);
    } catch (const ComError&) {
      // Report the original error.
    }
    throw;
  }
}

void Unregister(RegisteredFor whom) {
  const ComPtr<ITypeLib> library = Module::TypeLibrary();
  for (const ClassEntry& made : Classes())
    Remove(whom, L"CLSID\\" + TextOf(*made.id));
  UnregisterTypes(whom, *library.Get());
  if (!Exists(whom, LibraryKey(AttributesOf(*library.Get())))) {
    for (const ClassEntry& made : Classes())
      Remove(whom, ProgramName(made));
  }
  // A user's part of the registry may hold nothing else of the kind.
  for (const wchar_t* kind : {L"CLSID", L"Interface", L"TypeLib", L"Wow6432Node"})
    RemoveIfEmpty(whom, kind);
}

}  // namespace HLDataSrvc::Com

#include "com/Module.h"

#include <atomic>
#include <mutex>
#include <utility>
#include <vector>

#include <ole2.h>

#include "com/Errors.h"
#include "platform/windows/ComponentFile.h"

namespace HLDataSrvc::Com::Module {
namespace {

std::atomic<long> g_uses{0};

std::mutex g_typesMutex;
std::vector<std::pair<GUID, ComPtr<ITypeInfo>>> g_types;  // guarded by g_typesMutex

}  // namespace

Use::Use() {
  ++g_uses;
}

Use::~Use() {
  --g_uses;
}

void Lock(bool isLocked) {
  isLocked ? ++g_uses : --g_uses;
}

bool CanUnload() {
  if (g_uses != 0) return false;
  const std::lock_guard lock(g_typesMutex);
  g_types.clear();
  return true;
}

ComPtr<ITypeLib> TypeLibrary() {
  ComPtr<ITypeLib> library;
  const HRESULT result = LoadTypeLibEx(ComponentFile().c_str(), REGKIND_NONE, library.Put());
  if (FAILED(result)) throw ComError(result, "The type library of the component cannot be read.");
  return library;
}

ComPtr<ITypeInfo> TypeInfo(const GUID& id) {
  const std::lock_guard lock(g_typesMutex);
  for (const auto& [known, type] : g_types) {
    if (known == id) return type;
  }
  ComPtr<ITypeInfo> type;
  const HRESULT result = TypeLibrary()->GetTypeInfoOfGuid(id, type.Put());
  if (FAILED(result)) throw ComError(result, "The type library of the component lacks an interface.");
  g_types.emplace_back(id, type);
  return type;
}

}  // namespace HLDataSrvc::Com::Module

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

/// Static lifetime: unloading the library must not call into another, which may be gone by then.
struct Types {
  std::mutex mutex;
  std::vector<std::pair<GUID, ComPtr<ITypeInfo>>> known;  // guarded by mutex
};

Types& KnownTypes() {
  static Types& types = *new Types;
  return types;
}

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
  Types& types = KnownTypes();
  const std::lock_guard lock(types.mutex);
  types.known.clear();
  return true;
}

ComPtr<ITypeLib> TypeLibrary() {
  ComPtr<ITypeLib> library;
  const HRESULT result = LoadTypeLibEx(ComponentFile().c_str(), REGKIND_NONE, library.Put());
  if (FAILED(result)) throw ComError(result, "The type library of the component cannot be read.");
  return library;
}

ComPtr<ITypeInfo> TypeInfo(const GUID& id) {
  Types& types = KnownTypes();
  const std::lock_guard lock(types.mutex);
  for (const auto& [known, type] : types.known) {
    if (known == id) return type;
  }
  ComPtr<ITypeInfo> type;
  const HRESULT result = TypeLibrary()->GetTypeInfoOfGuid(id, type.Put());
  if (FAILED(result)) throw ComError(result, "The type library of the component lacks an interface.");
  types.known.emplace_back(id, type);
  return type;
}

}  // namespace HLDataSrvc::Com::Module

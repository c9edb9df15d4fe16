#include "com/Identities.h"

#include <mutex>
#include <unordered_map>

namespace HLDataSrvc::Com::Identities {
namespace {

std::mutex g_mutex;
std::unordered_map<const void*, IRecordAccess*> g_objects;  // guarded by g_mutex

}  // namespace

ComPtr<IUnknown> Find(const void* record) {
  const std::lock_guard lock(g_mutex);
  const auto found = g_objects.find(record);
  // One whose last reference has gone is on its way out, and waits for the mutex to say so.
  if (found == g_objects.end() || !found->second->TryAddRef()) return {};
  ComPtr<IUnknown> object;
  *object.Put() = found->second;
  return object;
}

void Keep(const void* record, IRecordAccess* object) {
  const std::lock_guard lock(g_mutex);
  g_objects[record] = object;
}

void Forget(const void* record, const IRecordAccess* object) {
  const std::lock_guard lock(g_mutex);
  const auto found = g_objects.find(record);
  if (found != g_objects.end() && found->second == object) g_objects.erase(found);
}

}  // namespace HLDataSrvc::Com::Identities

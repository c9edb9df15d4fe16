#include "com/Identities.h"

#include <mutex>
#include <unordered_map>

namespace HLDataSrvc::Com::Identities {
namespace {

/// Static lifetime: another library may release its last object after this one was detached.
struct Objects {
  std::mutex mutex;
  std::unordered_map<const void*, IRecordAccess*> byRecord;  // guarded by mutex
};

Objects& AllObjects() {
  static Objects& objects = *new Objects;
  return objects;
}

}  // namespace

ComPtr<IUnknown> Find(const void* record) {
  Objects& objects = AllObjects();
  const std::lock_guard lock(objects.mutex);
  const auto found = objects.byRecord.find(record);
  // One whose last reference has gone is on its way out, and waits for the mutex to say so.
  if (found == objects.byRecord.end() || !found->second->TryAddRef()) return {};
  ComPtr<IUnknown> object;
  *object.Put() = found->second;
  return object;
}

void Keep(const void* record, IRecordAccess* object) {
  Objects& objects = AllObjects();
  const std::lock_guard lock(objects.mutex);
  objects.byRecord[record] = object;
}

void Forget(const void* record, const IRecordAccess* object) {
  Objects& objects = AllObjects();
  const std::lock_guard lock(objects.mutex);
  const auto found = objects.byRecord.find(record);
  if (found != objects.byRecord.end() && found->second == object) objects.byRecord.erase(found);
}

}  // namespace HLDataSrvc::Com::Identities

// Preloaded into a program, ends it as a kill does at one of its calls that change files, or has calls fail.
//
// HALCYRA_TEST_CRASH_AT is the call's number, from 1, and HALCYRA_TEST_CRASH_HOW says when: "before" it, "in"
// it (a write leaves its first half), or "after" it; or it says "fail", "fail for good" (it and all calls
// after it) or "short" (a write leaves its first half, and the next one fails), with the error
// HALCYRA_TEST_ERROR. Without a number the program runs to its end. HALCYRA_TEST_CALLS names a file that
// receives the number of calls, outside of the count itself.

#include <cerrno>
#include <csignal>
#include <cstdarg>
#include <cstdio>
#include <cstdlib>
#include <cstring>

#include <dlfcn.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <sys/types.h>
#include <unistd.h>

namespace {

long calls = 0;

template <typename Function>
Function* Original(const char* name) {
  return reinterpret_cast<Function*>(::dlsym(RTLD_NEXT, name));
}

const char* Setting(const char* name) {
  const char* const value = std::getenv(name);
  return value == nullptr ? "" : value;
}

/// What becomes of the current call; "": it is carried out.
const char* HowToCrash() {
  static const long at = std::strtol(Setting("HALCYRA_TEST_CRASH_AT"), nullptr, 10);
  const char* const how = Setting("HALCYRA_TEST_CRASH_HOW");
  if (at == 0) return "";
  if (at == calls) return how;
  if (std::strcmp(how, "fail for good") == 0 && at < calls) return how;
  return std::strcmp(how, "short") == 0 && at + 1 == calls ? "fail" : "";
}

void Die() {
  ::kill(::getpid(), SIGKILL);
  ::pause();
}

/// Counts a call, and dies at the one that is meant; `half` does a part of it, or all if it has no parts.
template <typename Call, typename Half>
auto Enter(const Call& call, const Half& half) {
  ++calls;
  const char* const how = HowToCrash();
  if (std::strncmp(how, "fail", 4) == 0) {
    errno = std::atoi(Setting("HALCYRA_TEST_ERROR"));
    return decltype(call()){-1};
  }
  if (std::strcmp(how, "short") == 0) return half();
  if (std::strcmp(how, "before") == 0) Die();
  if (std::strcmp(how, "in") == 0) {
    half();
    Die();
  }
  const auto result = call();
  if (std::strcmp(how, "after") == 0) Die();
  return result;
}
template <typename Call>
auto Enter(const Call& call) {
  return Enter(call, call);
}

struct Report {
  ~Report() {
    const char* const name = std::getenv("HALCYRA_TEST_CALLS");
    if (name == nullptr) return;
    std::FILE* const file = std::fopen(name, "w");
    if (file == nullptr) return;
    std::fprintf(file, "%ld", calls);
    std::fclose(file);
  }
} report;

}  // namespace

extern "C" {

ssize_t pwrite(int file, const void* bytes, size_t size, off_t offset) {
  auto* const original = Original<ssize_t(int, const void*, size_t, off_t)>("pwrite");
  return Enter([&] { return original(file, bytes, size, offset); },
               [&] { return original(file, bytes, size / 2, offset); });
}
ssize_t pwrite64(int file, const void* bytes, size_t size, off64_t offset) {
  auto* const original = Original<ssize_t(int, const void*, size_t, off64_t)>("pwrite64");
  return Enter([&] { return original(file, bytes, size, offset); },
               [&] { return original(file, bytes, size / 2, offset); });
}
int ftruncate(int file, off_t size) noexcept {
  return Enter([&] { return Original<int(int, off_t)>("ftruncate")(file, size); });
}
int ftruncate64(int file, off64_t size) noexcept {
  return Enter([&] { return Original<int(int, off64_t)>("ftruncate64")(file, size); });
}
int fsync(int file) {
  return Enter([&] { return Original<int(int)>("fsync")(file); });
}
int fdatasync(int file) {
  return Enter([&] { return Original<int(int)>("fdatasync")(file); });
}
int unlink(const char* name) noexcept {
  return Enter([&] { return Original<int(const char*)>("unlink")(name); });
}
int rename(const char* from, const char* to) noexcept {
  return Enter([&] { return Original<int(const char*, const char*)>("rename")(from, to); });
}

int renameat2(int fromFolder, const char* from, int toFolder, const char* to, unsigned flags) noexcept {
  return Enter([&] {
    return Original<int(int, const char*, int, const char*, unsigned)>("renameat2")(fromFolder, from,
                                                                                    toFolder, to, flags);
  });
}
int link(const char* from, const char* to) noexcept {
  return Enter([&] { return Original<int(const char*, const char*)>("link")(from, to); });
}
int fchmod(int file, mode_t mode) noexcept {
  return Enter([&] { return Original<int(int, mode_t)>("fchmod")(file, mode); });
}
int fchown(int file, uid_t owner, gid_t group) noexcept {
  return Enter([&] { return Original<int(int, uid_t, gid_t)>("fchown")(file, owner, group); });
}
// Only an opening that creates counts.
int open(const char* name, int flags, ...) {
  if ((flags & O_CREAT) == 0) return Original<int(const char*, int, ...)>("open")(name, flags);
  va_list more;
  va_start(more, flags);
  const mode_t mode = va_arg(more, mode_t);
  va_end(more);
  return Enter([&] { return Original<int(const char*, int, ...)>("open")(name, flags, mode); });
}

}  // extern "C"

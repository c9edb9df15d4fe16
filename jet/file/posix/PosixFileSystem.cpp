#include <algorithm>
#include <cerrno>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <memory>
#include <string>
#include <system_error>
#include <thread>
#include <utility>

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include "jet/Error.h"
#include "jet/file/File.h"
#include "jet/file/FileNames.h"

namespace jet {
namespace {

std::string ToSystemName(std::string name) {
  std::replace(name.begin(), name.end(), '\\', '/');
  return name;
}

std::string ReasonOf(int error) {
  return std::generic_category().message(error);
}

/// Raises what the system's `error` means for an open file or for a name.
[[noreturn]] void RaiseFor(int error, const std::string& name, const std::string& action) {
  // The caller does not know the names of temporary files.
  const std::string shown =
      file_names::IsTemporary(name) ? "a file in '" + file_names::Folder(name) + "'" : "'" + name + "'";
  switch (error) {
    case EACCES:
    case EPERM:
    case EROFS:
      throw Error(ErrorNumber::PermissionDenied, "No permission to " + action + " " + shown + ".");
    case ENOSPC:
    case EDQUOT:
    case EFBIG:
      throw Error(ErrorNumber::DiskFull, "The disk is full: could not " + action + " " + shown + ".");
    case ENAMETOOLONG:
      throw Error(ErrorNumber::InvalidFileName, "'" + name + "' is too long for a file name.");
    case ENOENT:
      throw Error(ErrorNumber::FileNotFound, "Could not find the file '" + name + "'.");
    case ENOTDIR:
    case ELOOP:
      throw Error(ErrorNumber::PathNotFound, "The folder of '" + name + "' does not exist.");
    case ETXTBSY:
      throw Error(ErrorNumber::FileInUse, "'" + name + "' is in use.");
    default:
      throw Error(ErrorNumber::ReadFailed,
                  "Could not " + action + " " + shown + ": " + ReasonOf(error) + ".");
  }
}

/// A file descriptor that closes itself.
class Descriptor {
 public:
  explicit Descriptor(int number) : m_number(number) {}
  Descriptor(Descriptor&& other) noexcept : m_number(std::exchange(other.m_number, -1)) {}
  Descriptor& operator=(Descriptor&& other) noexcept {
    std::swap(m_number, other.m_number);
    return *this;
  }
  Descriptor(const Descriptor&) = delete;
  Descriptor& operator=(const Descriptor&) = delete;
  ~Descriptor() {
    if (m_number >= 0) ::close(m_number);
  }
  int Number() const { return m_number; }
  bool IsOpen() const { return m_number >= 0; }

 private:
  int m_number;
};

/// Repeats a system call for as long as signals interrupt it.
template <typename Call>
auto Uninterrupted(Call call) {
  auto result = call();
  while (result < 0 && errno == EINTR)
    result = call();
  return result;
}

/// Whether the name leads to the open file.
bool LeadsTo(const std::string& systemName, const Descriptor& descriptor) {
  struct stat opened {};
  struct stat named {};
  return ::fstat(descriptor.Number(), &opened) == 0 && ::stat(systemName.c_str(), &named) == 0 &&
         opened.st_dev == named.st_dev && opened.st_ino == named.st_ino;
}

Descriptor OpenDescriptor(const std::string& systemName, int flags, mode_t mode = 0666) {
  return Descriptor(Uninterrupted([&] { return ::open(systemName.c_str(), flags | O_CLOEXEC, mode); }));
}

/// Gives a new file, private so far, the owner, group and permissions of another one. Without the right to
/// change the owner it keeps its own; if the group cannot be changed either, the group gets what others get.
void TakeOver(const Descriptor& descriptor, const struct stat& like, const std::string& name) {
  constexpr mode_t kPermissions = 0777;
  mode_t mode = like.st_mode & kPermissions;
  struct stat now {};
  if (::fstat(descriptor.Number(), &now) != 0) RaiseFor(errno, name, "create");
  if (now.st_uid != like.st_uid || now.st_gid != like.st_gid) {
    const bool isGiven = ::fchown(descriptor.Number(), like.st_uid, like.st_gid) == 0;
    const bool hasGroup = isGiven || now.st_gid == like.st_gid ||
                          ::fchown(descriptor.Number(), static_cast<uid_t>(-1), like.st_gid) == 0;
    if (!hasGroup) mode &= ~static_cast<mode_t>(S_IRWXG) | ((mode & S_IRWXO) << 3);
  }
  if (::fchmod(descriptor.Number(), mode) != 0) RaiseFor(errno, name, "create");
}

class PosixFile final : public File {
 public:
  PosixFile(Descriptor descriptor, std::string name, bool readOnly)
      : m_descriptor(std::move(descriptor)), m_name(std::move(name)), m_readOnly(readOnly) {}

  std::uint64_t Size() const override {
    struct stat status {};
    if (::fstat(m_descriptor.Number(), &status) != 0) RaiseFor(errno, m_name, "read");
    return static_cast<std::uint64_t>(status.st_size);
  }

  void Read(std::uint64_t offset, std::span<std::byte> into) override {
    while (!into.empty()) {
      const ssize_t count = Uninterrupted([&] {
        return ::pread(m_descriptor.Number(), into.data(), into.size(), static_cast<off_t>(offset));
      });
      if (count < 0) RaiseFor(errno, m_name, "read");
      if (count == 0) {
        throw Error(ErrorNumber::ReadFailed, "Could not read '" + m_name + "': it ends at byte " +
                                                 std::to_string(offset) + ", too early.");
      }
      offset += static_cast<std::uint64_t>(count);
      into = into.subspan(static_cast<std::size_t>(count));
    }
  }

  void Write(std::uint64_t offset, std::span<const std::byte> from) override {
    RefuseIfReadOnly();
    while (!from.empty()) {
      const ssize_t count = Uninterrupted([&] {
        return ::pwrite(m_descriptor.Number(), from.data(), from.size(), static_cast<off_t>(offset));
      });
      if (count < 0) RaiseFor(errno, m_name, "write");
      if (count == 0) RaiseFor(ENOSPC, m_name, "write");  // no progress and no reason given
      offset += static_cast<std::uint64_t>(count);
      from = from.subspan(static_cast<std::size_t>(count));
    }
  }

  void Resize(std::uint64_t size) override {
    RefuseIfReadOnly();
    if (Uninterrupted([&] { return ::ftruncate(m_descriptor.Number(), static_cast<off_t>(size)); }) != 0) {
      RaiseFor(errno, m_name, "resize");
    }
  }

  void Sync() override {
    if (m_readOnly) return;
    if (Uninterrupted([&] { return ::fdatasync(m_descriptor.Number()); }) != 0)
      RaiseFor(errno, m_name, "write");
  }

  bool IsNamed(const std::string& name) const override { return LeadsTo(ToSystemName(name), m_descriptor); }

  bool IsRemoved() const override {
#ifdef STATX_NLINK
    // Ask for the link count only: asking for timestamps makes the kernel keep fine-grained ones, and every
    // fsync slower.
    struct statx status {};
    return ::statx(m_descriptor.Number(), "", AT_EMPTY_PATH, STATX_NLINK, &status) == 0 &&
           status.stx_nlink == 0;
#else
    struct stat status {};
    return ::fstat(m_descriptor.Number(), &status) == 0 && status.st_nlink == 0;
#endif
  }

 private:
  void RefuseIfReadOnly() const {
    if (m_readOnly)
      throw Error(ErrorNumber::PermissionDenied, "'" + m_name + "' was opened for reading only.");
  }

  Descriptor m_descriptor;
  std::string m_name;
  bool m_readOnly;
};

class PosixFileSystem final : public FileSystem {
 public:
  std::unique_ptr<File> Open(const std::string& name, const OpenMode& mode) override {
    file_names::Check(name);
    const std::string systemName = ToSystemName(name);
    // Another process may put a new file in the place of the one that was just opened and not yet locked.
    for (int attempt = 0; attempt < kAttempts; ++attempt) {
      Descriptor descriptor =
          mode.create ? Create(name, systemName, mode.like) : OpenExisting(name, systemName, mode.readOnly);
      try {
        Lock(descriptor, name, mode);
        if (LeadsTo(systemName, descriptor)) {
          RefuseIfShared(name);
          return std::make_unique<PosixFile>(std::move(descriptor), name, mode.readOnly);
        }
      } catch (...) {
        if (mode.create && LeadsTo(systemName, descriptor)) ::unlink(systemName.c_str());
        throw;
      }
    }
    throw Error(ErrorNumber::FileInUse, "'" + name + "' is being replaced by someone else.");
  }

  bool Exists(const std::string& name) override {
    struct stat status {};
    return !name.empty() && ::stat(ToSystemName(name).c_str(), &status) == 0;
  }

  std::vector<std::string> OtherNames(const std::string& name) override {
    const std::string systemName = FollowLinks(ToSystemName(name));
    struct stat status {};
    if (::stat(systemName.c_str(), &status) != 0 || status.st_nlink < 2) return {};
    std::vector<std::string> names;
    std::error_code error;
    const std::filesystem::path real = systemName;
    const std::filesystem::directory_iterator end;
    for (std::filesystem::directory_iterator entry(real.parent_path(), error); !error && entry != end;
         entry.increment(error)) {
      const std::filesystem::path& path = entry->path();
      struct stat other {};
      if (path == real || ::lstat(path.c_str(), &other) != 0) continue;
      if (other.st_dev == status.st_dev && other.st_ino == status.st_ino) names.push_back(path.string());
    }
    return names;
  }

  std::string RealName(const std::string& name) override { return FollowLinks(ToSystemName(name)); }

  void Remove(const std::string& name) override {
    file_names::Check(name);
    if (::unlink(ToSystemName(name).c_str()) == 0) {
      // A name that comes back after a power cut does no harm: a file of it can be made only when the folder
      // was synced.
      static_cast<void>(SyncFolder(ToSystemName(name)));
      return;
    }
    if (errno == ENOENT || errno == ENOTDIR) return;
    if (errno == EISDIR)
      throw Error(ErrorNumber::PermissionDenied, "'" + name + "' is a folder, not a file.");
    RaiseFor(errno, name, "remove");
  }

  void Replace(const std::string& from, const std::string& to, HeldFiles /*held*/) override {
    file_names::Check(from);
    file_names::Check(to);
    const std::string target = FollowLinks(ToSystemName(to));
    if (::rename(ToSystemName(from).c_str(), target.c_str()) != 0) RaiseFor(errno, to, "replace");
    SyncRenamed(target, to);
  }

  void Rename(const std::string& from, const std::string& to, HeldFiles /*held*/) override {
    file_names::Check(from);
    file_names::Check(to);
    const std::string source = ToSystemName(from);
    const std::string target = ToSystemName(to);
    if (!RenameUnlessTaken(source, target)) {
      if (errno == EEXIST) throw Error(ErrorNumber::ObjectExists, "The file '" + to + "' exists already.");
      RaiseFor(errno, to, "create");
    }
    SyncRenamed(target, to);
  }

  void RemoveLeftOvers(const std::string& name) override {
    const std::string folder = file_names::Folder(ToSystemName(name));
    std::error_code error;
    std::filesystem::directory_iterator entry(folder.empty() ? "." : folder, error);
    for (; !error && entry != std::filesystem::directory_iterator(); entry.increment(error)) {
      const std::string path = entry->path().string();
      if (file_names::IsTemporary(path)) RemoveLeftOver(path);
    }
  }

 private:
  static constexpr int kAttempts = 10;
  static constexpr int kLockAttempts = 50;

  static Descriptor Create(const std::string& name, const std::string& systemName, const std::string& like) {
    struct stat model {};
    const bool hasModel = !like.empty() && ::stat(ToSystemName(like).c_str(), &model) == 0;
    constexpr mode_t kPrivate = 0600;
    Descriptor descriptor = hasModel ? OpenDescriptor(systemName, O_RDWR | O_CREAT | O_EXCL, kPrivate)
                                     : OpenDescriptor(systemName, O_RDWR | O_CREAT | O_EXCL);
    if (!descriptor.IsOpen()) {
      if (errno == EEXIST) throw Error(ErrorNumber::ObjectExists, "The file '" + name + "' exists already.");
      RaiseOpenFailed(errno, name, systemName, "create");
    }
    try {
      if (hasModel) TakeOver(descriptor, model, name);
      if (const int error = SyncFolder(systemName); error != 0) RaiseFor(error, name, "create");
    } catch (...) {
      ::unlink(systemName.c_str());
      throw;
    }
    return descriptor;
  }

  /// False, with errno, when it cannot be done. Not every file system can rename so; all that cannot take
  /// hard links.
  static bool RenameUnlessTaken(const std::string& from, const std::string& to) {
#ifdef RENAME_NOREPLACE
    if (::renameat2(AT_FDCWD, from.c_str(), AT_FDCWD, to.c_str(), RENAME_NOREPLACE) == 0) return true;
    if (errno != EINVAL && errno != ENOSYS) return false;
#endif
    return ::link(from.c_str(), to.c_str()) == 0 && ::unlink(from.c_str()) == 0;
  }

  static void RemoveLeftOver(const std::string& systemName) {
    struct stat status {};
    if (::lstat(systemName.c_str(), &status) != 0 || !S_ISREG(status.st_mode) || status.st_nlink != 1 ||
        status.st_uid != ::geteuid())
      return;
    const Descriptor descriptor = OpenDescriptor(systemName, O_RDWR | O_NOFOLLOW | O_NONBLOCK);
    if (!descriptor.IsOpen() || ::flock(descriptor.Number(), LOCK_EX | LOCK_NB) != 0) return;
    if (LeadsTo(systemName, descriptor)) ::unlink(systemName.c_str());
  }

  static Descriptor OpenExisting(const std::string& name, const std::string& systemName, bool readOnly) {
    // Without O_NONBLOCK opening a pipe would block until it has a writer; files are not affected.
    Descriptor descriptor = OpenDescriptor(systemName, (readOnly ? O_RDONLY : O_RDWR) | O_NONBLOCK);
    const int error = errno;
    struct stat status {};
    const bool known = descriptor.IsOpen() ? ::fstat(descriptor.Number(), &status) == 0
                                           : ::stat(systemName.c_str(), &status) == 0;
    if (known && S_ISDIR(status.st_mode)) {
      throw Error(ErrorNumber::PermissionDenied, "'" + name + "' is a folder, not a file.");
    }
    if (known && !S_ISREG(status.st_mode)) {
      throw Error(ErrorNumber::NotADatabase, "'" + name + "' is not a file that can hold a database.");
    }
    if (!descriptor.IsOpen()) RaiseOpenFailed(error, name, systemName, readOnly ? "read" : "write");
    return descriptor;
  }

  [[noreturn]] static void RaiseOpenFailed(int error, const std::string& name, const std::string& systemName,
                                           const std::string& action) {
    const std::string folder = file_names::Folder(systemName);
    struct stat status {};
    if (error == ENOENT && !folder.empty() && ::stat(folder.c_str(), &status) != 0) error = ENOTDIR;
    if (error == ENOTDIR && file_names::IsTemporary(name))  // the caller does not know this name
      throw Error(ErrorNumber::PathNotFound, "The folder '" + folder + "' does not exist.");
    RaiseFor(error, name, action);
  }

  /// The lock belongs to this one opening of the file: a second opening conflicts, also in the same process.
  static void Lock(const Descriptor& descriptor, const std::string& name, const OpenMode& mode) {
    const bool alone = mode.exclusive || !mode.readOnly;
    // Whoever removes left-overs may have a look at a file that is not locked yet.
    for (int attempt = mode.create ? kLockAttempts : 1; attempt > 0; --attempt) {
      if (TryLock(descriptor, name, alone ? LOCK_EX : LOCK_SH)) return;
      if (attempt > 1) std::this_thread::sleep_for(std::chrono::milliseconds(1));
    }
    if (mode.exclusive && !TryLock(descriptor, name, LOCK_SH)) {
      throw Error(ErrorNumber::FileHeldExclusively, "'" + name + "' is opened exclusively by someone else.");
    }
    throw Error(ErrorNumber::FileInUse, "'" + name + "' is in use by someone else.");
  }

  static bool TryLock(const Descriptor& descriptor, const std::string& name, int kind) {
    if (Uninterrupted([&] { return ::flock(descriptor.Number(), kind | LOCK_NB); }) == 0) return true;
    if (errno == EWOULDBLOCK) return false;
    RaiseFor(errno, name, "lock");
  }

  /// Programs that share a database lock ranges of a file beside it. An unlocked one was left by a crash.
  static void RefuseIfShared(const std::string& name) {
    for (const char* extension : {".ldb", ".LDB"}) {
      const std::string lockFile = file_names::WithExtension(name, extension);
      const Descriptor descriptor = OpenDescriptor(ToSystemName(lockFile), O_RDONLY | O_NONBLOCK);
      if (!descriptor.IsOpen()) continue;
      struct flock wanted {};
      wanted.l_type = F_WRLCK;
      wanted.l_whence = SEEK_SET;
      if (::fcntl(descriptor.Number(), F_GETLK, &wanted) == 0 && wanted.l_type != F_UNLCK) {
        throw Error(ErrorNumber::FileInUse,
                    "'" + name + "' is in use: somebody holds its lock file '" + lockFile + "'.");
      }
    }
  }

  static std::string FollowLinks(const std::string& systemName) {
    const std::unique_ptr<char, decltype(&std::free)> real(::realpath(systemName.c_str(), nullptr),
                                                           &std::free);
    return real ? std::string(real.get()) : systemName;
  }

  /// Makes new and changed names in the folder of `systemName` durable. Returns the system's error, or 0. Not
  /// every file system can, and not every folder that takes names can be read; these are no errors.
  static int SyncFolder(const std::string& systemName) {
    const std::string folder = file_names::Folder(systemName);
    const Descriptor descriptor = OpenDescriptor(folder.empty() ? "." : folder, O_RDONLY | O_DIRECTORY);
    if (!descriptor.IsOpen() || Uninterrupted([&] { return ::fsync(descriptor.Number()); }) == 0) return 0;
    return errno == EINVAL || errno == ENOTSUP ? 0 : errno;
  }

  static void SyncRenamed(const std::string& systemName, const std::string& name) {
    const int error = SyncFolder(systemName);
    if (error == 0) return;
    try {
      RaiseFor(error, name, "replace");
    } catch (const Error& raised) {
      Error uncertain(
          raised.Number(),
          raised.what() + std::string(" The new file is there, but may not survive a power cut."));
      uncertain.MarkUncertain();
      throw uncertain;
    }
  }
};

}  // namespace

std::shared_ptr<FileSystem> SystemFiles() {
  static const std::shared_ptr<FileSystem> files = std::make_shared<PosixFileSystem>();
  return files;
}

}  // namespace jet

#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>
#include <string>
#include <vector>

namespace jet {

/// What the engine asks of an open file. Implemented for each system in a folder below this one,
/// and by the doubles in tests/support/. The lock taken when it was opened is held until the object goes.
class File {
 public:
  virtual ~File() = default;

  /// Size in bytes.
  virtual std::uint64_t Size() const = 0;
  /// Fills `into` from `offset`: all of it, or raises ReadFailed.
  virtual void Read(std::uint64_t offset, std::span<std::byte> into) = 0;
  /// Writes all of `from` at `offset`, growing the file if needed, or raises DiskFull, PermissionDenied or
  /// ReadFailed.
  virtual void Write(std::uint64_t offset, std::span<const std::byte> from) = 0;
  /// Cuts or extends (with zeros) the file to `size` bytes.
  virtual void Resize(std::uint64_t size) = 0;
  /// When it returns, earlier writes survive a power cut.
  virtual void Sync() = 0;
  /// True if the file was unlinked; later writes vanish when it is closed.
  virtual bool IsRemoved() const { return false; }
  /// Whether the name leads to this file, and not to another one that took its place.
  virtual bool IsNamed(const std::string& /*name*/) const { return true; }
};

/// How a file is opened and what others may do with it meanwhile.
struct OpenMode {
  bool exclusive = true;  ///< no other open of the file, in this or another process, while it is open
  bool readOnly = false;
  bool create = false;  ///< make a new file; raises ObjectExists when there is one
  /// The file whose owner, group and permissions a new one takes over, as far as the process may give them;
  /// empty, or without such a file: what the system gives new files.
  std::string like = {};
};

/// The two files of a renaming, as far as they are open here, and so locked.
struct HeldFiles {
  std::shared_ptr<File> from{};
  std::shared_ptr<File> to{};
};

/// What the engine asks of a file system. Names are UTF-8; `\` separates folders on every system, and `/`
/// too.
class FileSystem {
 public:
  virtual ~FileSystem() = default;

  /// Raises InvalidFileName (`*`, `?`, control characters), PathNotFound, FileNotFound, PermissionDenied,
  /// FileHeldExclusively or FileInUse (see OpenMode::exclusive), ObjectExists.
  virtual std::unique_ptr<File> Open(const std::string& name, const OpenMode& mode) = 0;
  virtual bool Exists(const std::string& name) = 0;
  /// The full name of a file that is there, which stays its name whatever folder the process goes to; of a
  /// link, where the system supports it, that of the target.
  virtual std::string RealName(const std::string& name) { return name; }
  /// Other names of the file (hard links) in its folder; none on systems that do not list them.
  virtual std::vector<std::string> OtherNames(const std::string& /*name*/) { return {}; }
  /// Removes a file; one that is not there is no error.
  virtual void Remove(const std::string& name) = 0;
  /// Renames a file over whatever has the new name, atomically, and makes the renaming durable. Where the
  /// system can rename and replace open files, those that are held stay locked throughout.
  /// An error that is uncertain means that the renaming was done and may not survive a power cut.
  virtual void Replace(const std::string& from, const std::string& to, HeldFiles held) = 0;
  /// The same for a new name that nothing has; raises ObjectExists otherwise.
  virtual void Rename(const std::string& from, const std::string& to, HeldFiles held);
  /// Removes the files in the folder of `name` that a crash left while they were made: plain ones of this
  /// user under a name that TemporaryName gives, which no process has open. Never throws.
  virtual void RemoveLeftOvers(const std::string& /*name*/) {}
};

/// A name beside `target` under which a file can be made that goes there once it is finished. Nobody can
/// guess it; left-overs of crashes are removed first.
std::string TemporaryName(FileSystem& files, const std::string& target);

/// Makes a file with these bytes, or replaces one, whose permissions it gets. Readers, and whatever is left
/// after a crash, see the old or the new file, whole. Raises what the operations of `files` raise.
void WriteFileAtomically(FileSystem& files, const std::string& target, std::span<const std::byte> bytes);

/// The file system of the machine. Static lifetime.
std::shared_ptr<FileSystem> SystemFiles();

}  // namespace jet

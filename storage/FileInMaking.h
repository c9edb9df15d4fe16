#pragma once

#include <string>

namespace jet {
class Database;
}

namespace HLDataSrvc {

/// A database file that is made beside the place where it goes, so that at its place there is always a whole
/// one: whatever was there before, or the new one. What is not put in its place is removed; what a crash
/// leaves over, the next making of the same file removes.
class FileInMaking {
 public:
  /// `target` is where the file goes. Raises what the removal of a left-over raises.
  explicit FileInMaking(const std::string& target);
  ~FileInMaking();
  FileInMaking(const FileInMaking&) = delete;
  FileInMaking& operator=(const FileInMaking&) = delete;

  /// Where to make it.
  const std::string& Path() const { return m_path; }

  /// Puts the finished, closed file in its place. Raises jet::Error: FileInUse or FileHeldExclusively when
  /// somebody has the file open that is there, PermissionDenied.
  void PutInPlace();
  /// The same in the place of a database that is open here, and is closed.
  void PutInPlaceOf(jet::Database& database);

 private:
  std::string m_target;
  std::string m_path;
};

}  // namespace HLDataSrvc

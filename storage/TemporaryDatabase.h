#pragma once

#include <memory>
#include <string>

namespace jet {
class Database;
class File;
}  // namespace jet

namespace HLDataSrvc {

/// Builds a database in a temporary file and renames it into place: under the target's name there is always a
/// whole file, the one before or the new one. Its lock is held from the moment it is finished. What is not
/// put in its place is removed; what a crash leaves, the next making of a file in that folder removes.
class TemporaryDatabase {
 public:
  /// `target` is where the file goes.
  explicit TemporaryDatabase(const std::string& target);
  ~TemporaryDatabase();
  TemporaryDatabase(const TemporaryDatabase&) = delete;
  TemporaryDatabase& operator=(const TemporaryDatabase&) = delete;

  /// Where to make it.
  const std::string& Path() const { return m_path; }
  /// Takes the finished file.
  void Finish(std::shared_ptr<jet::File> file) { m_file = std::move(file); }
  /// The same with a database that is open, and is closed.
  void Finish(jet::Database& database);

  // Each puts the finished file in its place. Raises jet::Error, PermissionDenied for one; an uncertain error
  // if the file is there, but may not survive a power cut.

  /// Where nothing is. Raises ObjectExists when something has come there meanwhile.
  void PutInPlace();
  /// In the place of a file, which `held` is.
  void PutInPlaceOf(std::shared_ptr<jet::File> held);
  /// In the place of a database that is open here, and is closed.
  void PutInPlaceOf(jet::Database& database);

 private:
  std::string m_target;
  std::string m_path;
  std::shared_ptr<jet::File> m_file;
};

}  // namespace HLDataSrvc

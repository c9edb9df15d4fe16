#pragma once

#include <memory>
#include <string>

namespace jet {
class Database;
class File;
}  // namespace jet

namespace HLDataSrvc {

/// A league file that is about to be replaced, locked meanwhile: one of the two members is set.
struct HeldLeague {
  std::shared_ptr<jet::Database> database;  ///< open; what a log beside it held is in it
  std::shared_ptr<jet::File> file;          ///< of a league that cannot be read
};

/// Holds a league file. Raises jet::Error: FileNotFound, FileInUse, FileHeldExclusively, PermissionDenied.
HeldLeague HoldLeague(const std::string& path);

}  // namespace HLDataSrvc

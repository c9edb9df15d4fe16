#pragma once

#include <functional>
#include <string>

namespace jet {
class Database;
}

namespace HLDataSrvc {

/// How a league file is made.
struct LeagueFileOptions {
  bool overwrite = false;  ///< replace a file that is there already
  std::function<void(jet::Database&)>
      fill{};  ///< puts rows into the finished schema; when it raises, no file is made
};

/// Makes a league file: the twelve tables with their keys, indexes, enforced relationships and defaults, the
/// password, and the settings row (current season 0). Files of all kinds are made alike; only their names
/// differ.
///
/// The file is built beside its place and put there when it is whole: whatever goes wrong, what was at `path`
/// before is still there. Raises jet::Error: ObjectExists when there is a file and `overwrite` is false,
/// FileInUse or FileHeldExclusively when it is to be replaced but open elsewhere, PathNotFound,
/// PermissionDenied, DiskFull; and whatever `fill` raises.
void CreateLeagueFile(const std::string& path, const LeagueFileOptions& options = {});

}  // namespace HLDataSrvc

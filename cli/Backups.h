#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "cli/Context.h"

namespace cli {

/// Name of a file of the chosen kind that is made now: backups are named for the date and the time.
std::string NewFileName(const Context& context);
/// Full name of a backup made now, which is not there yet: seconds that are taken are passed over.
std::string NewBackupPath(const Context& context);

/// A backup in the league's folder.
struct Backup {
  std::string name;
  std::string path;
  std::uintmax_t bytes = 0;
};

/// The backups in the chosen folder, newest first, as their names tell. Raises Failure for a folder that
/// cannot be read.
std::vector<Backup> BackupsIn(const Context& context);

}  // namespace cli

#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "HLIData/Types.h"

namespace HLLeague {

/// Name of a league's file of a kind that is made now: backups are named for the date and the time.
std::string NewFileName(HLIData::DBType kind);
/// Full name of a backup made now, in a folder, which is not there yet: seconds that are taken are passed
/// over.
std::string NewBackupPath(const std::string& folder);

/// A backup in a league's folder.
struct Backup {
  std::string name;
  std::string path;
  std::uintmax_t bytes = 0;
};

/// The backups in a folder, newest first, by their names. Raises Failure for a folder that
/// cannot be read.
std::vector<Backup> BackupsIn(const std::string& folder);

}  // namespace HLLeague

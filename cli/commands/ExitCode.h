#pragma once

#include "HLLeague/Failure.h"

namespace cli {

/// The program's exit codes. The table in docs/commands.md lists the same codes.
enum class ExitCode : int {
  Done = 0,  ///< all that was asked for was done, and the whole result was written
  Refused =
      1,  ///< refused, or failed, in the league's terms: a key that exists, an unknown table, broken SQL
  WrongUsage = 2,    ///< the command line itself is wrong
  CannotOpen = 3,    ///< the file is missing, in use, or wants another password
  Damaged = 4,       ///< the file is damaged, or nothing that the engine understands
  SystemFailed = 5,  ///< the system failed: disk full, no permission, output that could not be written
};

/// The code that stands for a kind of failure.
ExitCode ExitCodeOf(HLLeague::FailureKind kind);

}  // namespace cli

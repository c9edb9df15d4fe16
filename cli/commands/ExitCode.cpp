#include "cli/commands/ExitCode.h"

namespace cli {

using namespace HLLeague;

ExitCode ExitCodeOf(FailureKind kind) {
  switch (kind) {
    case FailureKind::Refused:
      return ExitCode::Refused;
    case FailureKind::WrongUsage:
      return ExitCode::WrongUsage;
    case FailureKind::CannotOpen:
      return ExitCode::CannotOpen;
    case FailureKind::Damaged:
      return ExitCode::Damaged;
    case FailureKind::SystemFailed:
      return ExitCode::SystemFailed;
  }
  return ExitCode::Refused;
}

}  // namespace cli

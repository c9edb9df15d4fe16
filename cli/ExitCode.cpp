#include "cli/ExitCode.h"

namespace cli {

ExitCode ExitCodeOf(jet::ErrorNumber number) {
  using jet::ErrorNumber;
  switch (number) {
    case ErrorNumber::FileNotFound:
    case ErrorNumber::PathNotFound:
    case ErrorNumber::InvalidFileName:
    case ErrorNumber::FileInUse:
    case ErrorNumber::FileHeldExclusively:
    case ErrorNumber::PasswordRejected:
      return ExitCode::CannotOpen;
    case ErrorNumber::NotADatabase:
    case ErrorNumber::DamagedFile:
    case ErrorNumber::LogDoesNotBelong:
      return ExitCode::Damaged;
    case ErrorNumber::PermissionDenied:
    case ErrorNumber::DiskFull:
    case ErrorNumber::FileTooLarge:
    case ErrorNumber::ReadFailed:
      return ExitCode::SystemFailed;
    default:
      return ExitCode::Refused;
  }
}

}  // namespace cli

#include "league/EngineErrors.h"

namespace HLLeague {

FailureKind FailureKindOf(jet::ErrorNumber number) {
  using jet::ErrorNumber;
  switch (number) {
    case ErrorNumber::FileNotFound:
    case ErrorNumber::PathNotFound:
    case ErrorNumber::InvalidFileName:
    case ErrorNumber::FileInUse:
    case ErrorNumber::FileHeldExclusively:
    case ErrorNumber::PasswordRejected:
      return FailureKind::CannotOpen;
    case ErrorNumber::NotADatabase:
    case ErrorNumber::DamagedFile:
    case ErrorNumber::LogDoesNotBelong:
      return FailureKind::Damaged;
    case ErrorNumber::PermissionDenied:
    case ErrorNumber::DiskFull:
    case ErrorNumber::FileTooLarge:
    case ErrorNumber::ReadFailed:
      return FailureKind::SystemFailed;
    default:
      return FailureKind::Refused;
  }
}

}  // namespace HLLeague

#include "storage/HeldLeague.h"

#include "jet/Error.h"
#include "jet/dao/DBEngine.h"
#include "storage/HLServiceUtils.h"

namespace HLDataSrvc {
namespace {

using HLServiceUtils::Engine;

/// Whether a file does not open because of what is in it. Other errors may go away.
bool IsUnreadable(jet::ErrorNumber number) {
  using enum jet::ErrorNumber;
  return number == NotADatabase || number == DamagedFile || number == PasswordRejected ||
         number == LogDoesNotBelong || number == FileTooLarge;
}

}  // namespace

HeldLeague HoldLeague(const std::string& path) {
  try {
    return {HLServiceUtils::OpenExclusively(path), nullptr};
  } catch (const jet::Error& error) {
    if (!IsUnreadable(error.Number())) throw;
    return {nullptr, Engine().Hold(path)};
  }
}

}  // namespace HLDataSrvc

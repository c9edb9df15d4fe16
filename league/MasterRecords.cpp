#include "HLLeague/MasterRecords.h"

#include <algorithm>

#include "HLIData/Error.h"
#include "HLLeague/Failure.h"
#include "league/Utf8.h"

namespace HLLeague {

void RequireFits(League& league, const std::string& table, const std::string& column, const std::string& what,
                 const std::string& text) {
  const auto length = Utf16Length(text);
  if (!length)
    throw Failure(FailureKind::Refused, "The " + what + " is not UTF-8: '" + Printable(text) + "'.");
  const std::size_t most = league.TextLength(table, column);
  if (*length <= most) return;
  throw Failure(FailureKind::Refused, "The " + what + " is too long: it has " + std::to_string(*length) +
                                          " characters, and may have " + std::to_string(most) + ".");
}

void SaveRecord(League& league, const std::string& what,
                const std::function<bool(std::string& errMessage)>& update) {
  std::string message;
  league.Transact(what + " could not be saved.", [&] {
    if (update(message) || !message.empty()) return;
    league.RaiseShownMessages();
    throw Failure(FailureKind::Refused, "The service gave no reason.");
  });
  if (!message.empty()) throw Failure(FailureKind::Refused, message);
}

void DeleteRecord(League& league, HLIData::DeleteType type, std::int32_t id, const std::string& text,
                  const std::function<std::string()>& usedBy) {
  std::string message;
  bool isDeleted = false;
  league.Transact(text + " could not be deleted.", [&] {
    try {
      isDeleted = league.Service().Delete(type, id, message);
    } catch (const HLIData::Error&) {
      isDeleted = true;  // the row is deleted, but the record was not cached
    }
  });
  if (isDeleted) return;
  message.erase(std::remove(message.begin(), message.end(), '\r'), message.end());
  std::replace(message.begin(), message.end(), '\n', ' ');
  throw Failure(FailureKind::Refused, text + " was not deleted. " + message, usedBy ? usedBy() : "");
}

}  // namespace HLLeague

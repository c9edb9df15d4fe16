#include "cli/MasterRecords.h"

#include <algorithm>
#include <memory>

#include "HLIData/Error.h"
#include "cli/ExitCode.h"
#include "cli/Utf8.h"

namespace cli {

std::string JoinedWords(const std::vector<std::string>& words) {
  std::string text;
  for (std::size_t i = 0; i < words.size(); ++i)
    text += (i > 0 ? " " : "") + words[i];
  return text;
}

void RequireFits(League& league, const std::string& table, const std::string& column, const std::string& what,
                 const std::string& text) {
  const auto length = Utf16Length(text);
  if (!length) throw Failure(ExitCode::Refused, "The " + what + " is not UTF-8: '" + Printable(text) + "'.");
  const std::size_t most = league.TextLength(table, column);
  if (*length <= most) return;
  throw Failure(ExitCode::Refused, "The " + what + " is too long: it has " + std::to_string(*length) +
                                       " characters, and may have " + std::to_string(most) + ".");
}

void SaveRecord(League& league, const std::string& what,
                const std::function<bool(std::string& errMessage)>& update) {
  std::string message;
  league.Transact(what + " could not be saved.", [&] {
    if (update(message) || !message.empty()) return;
    league.RaiseShownMessages();
    throw Failure(ExitCode::Refused, "The service gave no reason.");
  });
  if (!message.empty()) throw Failure(ExitCode::Refused, message);
}

void DeleteRecord(Context& context, const Deletion& deletion, bool isSure) {
  if (!isSure && !context.Confirm("Delete " + deletion.text + " for good?")) {
    throw Failure(ExitCode::Refused, deletion.text + " was not deleted.",
                  context.canAsk ? "" : "'--yes' answers the question that a terminal is asked.");
  }
  std::string message;
  bool isDeleted = false;
  League& league = context.TheLeague();
  league.Transact(deletion.text + " could not be deleted.", [&] {
    try {
      isDeleted = league.Service().Delete(deletion.type, deletion.id, message);
    } catch (const HLIData::Error&) {
      isDeleted = true;  // the row is deleted, but the record was not cached
    }
  });
  if (isDeleted) return;
  message.erase(std::remove(message.begin(), message.end(), '\r'), message.end());
  std::replace(message.begin(), message.end(), '\n', ' ');
  throw Failure(ExitCode::Refused, deletion.text + " was not deleted. " + message,
                deletion.usedBy ? deletion.usedBy() : "");
}

void AddDeleteCommand(Command& parent, const char* description, const char* word,
                      void (*action)(Context&, const DeleteOptions&)) {
  Command command = parent.AddCommand("delete", description);
  const auto options = std::make_shared<DeleteOptions>();
  command.AddArgument(word, options->who, "a name, or the id").Required();
  command.AddFlag("--yes", options->isSure, "do not ask whether it is meant");
  command.Runs(action, options);
}

void NoteDone(Context& context, const std::string& whatWasDone) {
  context.messages.Note(whatWasDone + " " + context.TheLeague().Path() + ".");
}

}  // namespace cli

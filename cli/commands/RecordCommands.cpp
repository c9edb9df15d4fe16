#include "cli/commands/RecordCommands.h"

#include "HLLeague/MasterRecords.h"
#include "cli/commands/ExitCode.h"

namespace cli {

using namespace HLLeague;

std::string JoinedWords(const std::vector<std::string>& words) {
  std::string text;
  for (std::size_t i = 0; i < words.size(); ++i)
    text += (i > 0 ? " " : "") + words[i];
  return text;
}

void DeleteRecord(Context& context, const Deletion& deletion, bool isSure) {
  if (!isSure && !context.Confirm("Delete " + deletion.text + " for good?")) {
    throw Failure(FailureKind::Refused, deletion.text + " was not deleted.",
                  context.canAsk ? "" : "'--yes' answers the question that a terminal is asked.");
  }
  DeleteRecord(context.OpenLeague(), deletion.type, deletion.id, deletion.text, deletion.usedBy);
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
  context.messages.Note(whatWasDone + " " + context.OpenLeague().Path() + ".");
}

}  // namespace cli

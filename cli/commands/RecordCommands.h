#pragma once

#include "cli/commands/Command.h"

namespace cli {

// Each adds `add`, `edit` and `delete` of the league's master records to a command that has been there
// before.

void AddManagerRecordCommands(Command& manager);
void AddPrizeRecordCommands(Command& prize);
void AddPositionRecordCommands(Command& position);

/// The words of a command that names a record: "ann lee" as it was typed.
std::string JoinedWords(const std::vector<std::string>& words);

/// What to delete, and the texts for its messages.
struct Deletion {
  HLIData::DeleteType type = HLIData::DeleteType::Player;
  std::int32_t id = 0;
  std::string text;  ///< what is deleted, for messages: "Ann Lee (P17, DAL, QB)"
  std::function<std::string()>
      usedBy;  ///< what refers to the record, asked for when it stays; none for an id without a record
};

/// Deletes a record, after a question or, with `isSure`, without. Raises Failure with the service's message.
void DeleteRecord(Context& context, const Deletion& deletion, bool isSure);

/// The words of a command that deletes a record.
struct DeleteOptions {
  std::vector<std::string> who;
  bool isSure = false;
};

/// Adds `delete`. `word` is what the record is called in the help.
void AddDeleteCommand(Command& parent, const char* description, const char* word,
                      void (*action)(Context&, const DeleteOptions&));

/// Names the file behind what was done: "The player was saved in".
void NoteDone(Context& context, const std::string& whatWasDone);

}  // namespace cli

#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

#include "cli/Command.h"
#include "cli/League.h"

namespace cli {

// How commands save and delete the master records of a league: players, managers, prizes and positions.

/// The words of a command that names a record: "ann lee" as it was typed.
std::string JoinedWords(const std::vector<std::string>& words);

/// Raises Failure for a text that its column does not take: one that is too long, or no UTF-8. `what` it is:
/// "last name".
void RequireFits(League& league, const std::string& table, const std::string& column, const std::string& what,
                 const std::string& text);

/// Saves a record through one of the service's Update operations, which `update` calls, as one transaction.
/// Raises Failure with its message when a value is missing, and when the record cannot be written. `what`:
/// "The player".
void SaveRecord(League& league, const std::string& what,
                const std::function<bool(std::string& errMessage)>& update);

/// What a deletion is told by, and how it can be refused.
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

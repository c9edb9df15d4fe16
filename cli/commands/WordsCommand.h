#pragma once

#include <string>
#include <vector>

#include "cli/commands/Command.h"

namespace cli {

/// Adds a command that takes one word or more, which its action understands. `word` is what one of them is
/// called in the help.
void AddWordsCommand(Command& parent, const char* name, const char* description, const char* word,
                     const char* wordsHelp, void (*action)(Context&, const std::vector<std::string>&));

}  // namespace cli

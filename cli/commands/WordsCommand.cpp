#include "cli/commands/WordsCommand.h"

#include <memory>

namespace cli {

void AddWordsCommand(Command& parent, const char* name, const char* description, const char* word,
                     const char* wordsHelp, void (*action)(Context&, const std::vector<std::string>&)) {
  Command command = parent.AddCommand(name, description);
  const auto words = std::make_shared<std::vector<std::string>>();
  command.AddArgument(word, *words, wordsHelp).Required();
  command.Runs(action, words);
}

}  // namespace cli

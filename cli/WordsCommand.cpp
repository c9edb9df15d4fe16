#include "cli/WordsCommand.h"

#include <memory>

namespace cli {

void AddWordsCommand(CLI::App& parent, Context& context, const char* name, const char* description,
                     const char* word, const char* wordsDescription,
                     void (*action)(Context&, const std::vector<std::string>&)) {
  CLI::App* command = parent.add_subcommand(name, description);
  auto words = std::make_shared<std::vector<std::string>>();
  command->add_option(word, *words, wordsDescription)->type_name("")->required();
  command->callback(
      [&context, words, action] { context.action = [&context, words, action] { action(context, *words); }; });
}

}  // namespace cli

#pragma once

#include <string>
#include <vector>

#include <CLI/CLI.hpp>

#include "cli/Context.h"

namespace cli {

/// Adds a command that takes one word or more, which its action understands. `word` is what one of them is
/// called in the help.
void AddWordsCommand(CLI::App& parent, Context& context, const char* name, const char* description,
                     const char* word, const char* wordsDescription,
                     void (*action)(Context&, const std::vector<std::string>&));

}  // namespace cli

#pragma once

#include <string>
#include <vector>

#include "cli/commands/ExitCode.h"
#include "cli/output/Messages.h"
#include "cli/output/Output.h"

namespace cli {

/// Runs the program on the words of a command line (without the program's name) and answers its exit code.
/// Whatever goes wrong is told through `messages`; nothing is raised.
ExitCode Run(const std::vector<std::string>& words, Output& output, Messages& messages);

}  // namespace cli

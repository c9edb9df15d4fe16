#pragma once

#include <string>
#include <vector>

#include "cli/commands/ExitCode.h"
#include "cli/output/Messages.h"
#include "cli/output/Output.h"

namespace cli {

/// Runs the program on the words of a command line (without the program's name) and returns its exit code.
/// Errors are reported through `messages`; nothing is thrown.
ExitCode Run(const std::vector<std::string>& words, Output& output, Messages& messages);

}  // namespace cli

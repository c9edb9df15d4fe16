#include "cli/line/App.h"

#include <utility>

#include "cli/commands/Context.h"
#include "cli/line/CommandLine.h"
#include "cli/output/System.h"

namespace cli {

ExitCode Run(const std::vector<std::string>& words, Output& output, Messages& messages) {
  ExitCode exitCode = ExitCode::Done;
  bool hasStored = false;
  const ExitCode code = Attempt(output, messages, [&] {
    Context context(output, messages);
    context.canAsk = IsTerminal(stdin) && IsTerminal(stderr);
    CommandLine line(context, CommandLine::Reader::Program);
    if (!line.Parse(words)) return;
    messages.SetQuiet(context.quiet);
    if (context.folder.empty()) context.folder = ProgramFolder();
    // The shell's own commands overwrite context.action.
    const auto action = std::exchange(context.action, nullptr);
    try {
      action();
    } catch (...) {
      hasStored = context.HasStored();
      throw;
    }
    hasStored = context.HasStored();
    exitCode = context.exitCode;
  });
  if (hasStored && output.HasFailed()) messages.Hint("What was changed in the league is stored.");
  return code == ExitCode::Done ? exitCode : code;
}

}  // namespace cli

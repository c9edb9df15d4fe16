#include <cstddef>
#include <iostream>
#include <memory>
#include <sstream>

#include "cli/commands/Commands.h"
#include "cli/commands/InputFile.h"
#include "cli/line/Shell.h"
#include "cli/output/System.h"

namespace cli {

using namespace HLLeague;

namespace {

constexpr std::size_t kLongestScript = std::size_t{16} << 20;

struct ShellOptions {
  std::string script;
  bool keepsGoing = false;
};

void RunShell(Context& context, const ShellOptions& options) {
  if (options.script.empty() || options.script == "-") {
    const bool isInteractive = options.script.empty() && IsTerminal(stdin);
    context.exitCode = Shell(context, {std::cin, "", isInteractive, options.keepsGoing}).Run();
    return;
  }
  std::istringstream lines(ReadInputFile("script", options.script, kLongestScript));
  context.exitCode = Shell(context, {lines, options.script, false, options.keepsGoing}).Run();
}

}  // namespace

void AddShellCommand(Command& app) {
  Command command = app.AddCommand("shell", "Run commands on the open league, from a terminal or a script");
  auto options = std::make_shared<ShellOptions>();
  command.AddOption("--script", "FILE", options->script,
                    "read the commands from this file; without one, standard input");
  command.AddFlag("--keep-going", options->keepsGoing, "let a script go on after a line that failed");
  command.Runs(RunShell, options);
}

}  // namespace cli

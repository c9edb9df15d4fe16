#include <cerrno>
#include <fstream>
#include <iostream>
#include <memory>
#include <system_error>

#include "cli/commands/Commands.h"
#include "cli/commands/ExitCode.h"
#include "cli/line/Shell.h"
#include "cli/output/System.h"
#include "platform/Paths.h"

namespace cli {

using namespace HLLeague;

namespace {

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
  errno = 0;
  std::ifstream file(HLDataSrvc::ToSystemPath(options.script), std::ios::binary);
  if (!file) {
    throw Failure(FailureKind::CannotOpen, "The script " + options.script + " cannot be read: " +
                                               std::generic_category().message(errno) + ".");
  }
  context.exitCode = Shell(context, {file, options.script, false, options.keepsGoing}).Run();
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

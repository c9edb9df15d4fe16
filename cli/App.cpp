#include "cli/App.h"

#include <algorithm>
#include <exception>
#include <new>

#include <CLI/CLI.hpp>

#include "HLIData/Error.h"
#include "cli/Commands.h"
#include "cli/Context.h"
#include "cli/Nearest.h"
#include "cli/System.h"
#include "jet/Error.h"

namespace cli {
namespace {

constexpr const char* kHelpHint =
    "'halcyra --help' lists the commands, 'halcyra COMMAND --help' a command's options.";

void AddGlobalOptions(CLI::App& app, Context& context) {
  app.add_option("--folder", context.folder, "folder of the league's files; without one, the program's own")
      ->type_name("DIR")
      ->envname("HALCYRA_FOLDER");
  app.add_option("--kind", context.kindName, "which of the league's files to work on")
      ->transform(CLI::IsMember({"live", "test", "blank", "backup", "setup"}, CLI::ignore_case))
      ->capture_default_str();
  app.add_flag("--json", context.json, "print the result as JSON");
  app.add_flag("--quiet,-q", context.quiet, "print no notes, only results and errors");
}

/// The commands on an open league, which a shell offers too.
void AddLeagueCommands(CLI::App& app, Context& context) {
  AddSettingsCommand(app, context);
}

void AddCommands(CLI::App& app, Context& context) {
  AddCreateCommand(app, context);
  AddInfoCommand(app, context);
  AddLeagueCommands(app, context);
  AddTablesCommand(app, context);
  AddDumpCommand(app, context);
  AddQueryCommand(app, context);
  AddCheckCommand(app, context);
  for (CLI::App* command : app.get_subcommands({})) {
    command->footer("The options that 'halcyra --help' lists may stand here too.");
  }
}

CLI::App& ChosenCommand(CLI::App& app) {
  const std::vector<CLI::App*> chosen = app.get_subcommands();
  return chosen.empty() ? app : *chosen.front();
}

std::vector<std::string> CommandNames(const CLI::App& app) {
  std::vector<std::string> names;
  for (const CLI::App* command : app.get_subcommands({}))
    names.push_back(command->get_name());
  return names;
}

/// The options, with their dashes, that may stand after `command`.
std::vector<std::string> OptionNames(const CLI::App& app, const CLI::App& command) {
  std::vector<std::string> names;
  for (const CLI::App* owner : {&command, &app}) {
    for (const CLI::Option* option : owner->get_options()) {
      for (const std::string& name : option->get_lnames())
        names.push_back("--" + name);
    }
  }
  return names;
}

/// What is wrong with a command line that CLI11 refused: it stops at the first rule that is broken, which is
/// seldom the word that was mistyped.
Failure Diagnose(CLI::App& app, const CLI::ParseError& error) {
  CLI::App& command = ChosenCommand(app);
  const bool hasCommand = &command != &app;
  const std::vector<std::string> left = app.remaining(true);
  if (left.empty()) {
    if (!hasCommand) return {ExitCode::WrongUsage, "No command was given.", kHelpHint};
    return {ExitCode::WrongUsage, std::string(error.what()),
            "'halcyra " + command.get_name() + " --help' tells how it is used."};
  }

  const std::string word = left.front();
  const bool isOption = word.size() > 1 && word.front() == '-';
  std::string what = "There is no command '" + word + "'.";
  std::string nearest;
  if (isOption) {
    const std::string name = word.substr(0, word.find('='));
    what = hasCommand ? "The command '" + command.get_name() + "' has no option '" + name + "'."
                      : "There is no option '" + name + "'.";
    nearest = NearestOf(name, OptionNames(app, command));
  } else if (hasCommand) {
    what = "The command '" + command.get_name() + "' does not take '" + word + "'.";
  } else {
    nearest = NearestOf(word, CommandNames(app));
  }
  return {ExitCode::WrongUsage, what, nearest.empty() ? kHelpHint : "Did you mean '" + nearest + "'?"};
}

/// Reads the command line into the context. False when help or the version was asked for, and printed.
bool Parse(CLI::App& app, std::vector<std::string> words, Output& output) {
  try {
    std::reverse(words.begin(), words.end());  // CLI11 takes them from the back
    app.parse(std::move(words));
    return true;
  } catch (const CLI::CallForHelp&) {
    output.Write(ChosenCommand(app).help("halcyra"));
  } catch (const CLI::CallForVersion& version) {
    output.Line(version.what());
  } catch (const CLI::ParseError& error) {
    throw Diagnose(app, error);
  }
  return false;
}

void ParseAndAct(const std::vector<std::string>& words, Output& output, Messages& messages) {
  Context context(output, messages);
  CLI::App app("The files of a private fantasy league: make them, look into them, check them.");
  app.set_help_flag("--help,-h", "print this help and exit");
  app.require_subcommand(1);
  app.fallthrough();
  app.set_version_flag("--version", "halcyra " HALCYRA_VERSION, "print the version and exit");
  AddGlobalOptions(app, context);
  AddCommands(app, context);
  if (Parse(app, words, output)) {
    messages.SetQuiet(context.quiet);
    if (context.folder.empty()) context.folder = ProgramFolder();
    context.action();
  }
  output.Flush();
}

}  // namespace

ExitCode Run(const std::vector<std::string>& words, Output& output, Messages& messages) {
  const auto flushed = [&output](ExitCode code) {
    try {
      output.Flush();
    } catch (const Failure&) {
      return code;  // the first failure is the one to report
    }
    return code;
  };
  try {
    ParseAndAct(words, output, messages);
    return ExitCode::Done;
  } catch (const Failure& failure) {
    messages.Error(failure.what());
    if (!failure.Hint().empty()) messages.Hint(failure.Hint());
    return flushed(failure.Code());
  } catch (const jet::Error& error) {
    messages.Error(error.what());
    for (const std::string& context : error.Context())
      messages.Hint("in " + context);
    return flushed(ExitCodeOf(error.Number()));
  } catch (const HLIData::Error& error) {
    messages.Error(error.what());
    return flushed(ExitCode::Refused);
  } catch (const std::bad_alloc&) {
    messages.Error("There is not enough memory.");
  } catch (const std::exception& error) {
    messages.Error(error.what());
  }
  return flushed(ExitCode::SystemFailed);
}

}  // namespace cli

#include "cli/line/CommandLine.h"

#include <algorithm>
#include <exception>
#include <new>

#include <CLI/CLI.hpp>

#include "HLIData/Error.h"
#include "cli/commands/Commands.h"
#include "jet/Error.h"
#include "league/EngineErrors.h"
#include "league/Nearest.h"

namespace cli {

using namespace HLLeague;

namespace {

/// The options of every command.
void AddResultOptions(Command& root) {
  Context& context = root.GetContext();
  root.AddFlag("--json", context.json, "print the result as JSON");
  root.AddFlag("--quiet,-q", context.quiet, "print no notes, only results and errors");
}

/// The options that choose the league.
void AddLeagueOptions(Command& root) {
  Context& context = root.GetContext();
  root.AddOption("--folder", "DIR", context.folder,
                 "folder of the league's files; without one, the program's own")
      .FromEnvironment("HALCYRA_FOLDER");
  root.AddOption("--kind", "KIND", context.kindName, "which of the league's files to work on")
      .OneOf({"live", "test", "blank", "backup", "setup"})
      .ShowsDefault();
}

/// The commands on a league that is open; a shell has them too.
void AddLeagueCommands(Command& root) {
  AddSettingsCommand(root);
  AddSeasonCommand(root);
  AddManagerCommand(root);
  AddPrizeCommand(root);
  AddDraftCommand(root);
  AddWinningCommand(root);
  AddMoneyCommand(root);
  AddHistoryCommand(root);
  AddSearchCommand(root);
  AddPlayerCommand(root);
  AddImportCommand(root);
  AddExportCommand(root);
  AddPositionCommand(root);
  AddTeamCommand(root);
}

/// The commands that open files themselves.
void AddFileCommands(Command& root) {
  AddBackupCommand(root);
  AddRestoreCommand(root);
  AddCompactCommand(root);
  AddTablesCommand(root);
  AddDumpCommand(root);
  AddQueryCommand(root);
  AddCheckCommand(root);
}

/// The command that was chosen, down to the last part of its name: of `draft pick` it is `pick`.
const CLI::App& ChosenCommand(const CLI::App& app) {
  const CLI::App* command = &app;
  while (!command->get_subcommands().empty())
    command = command->get_subcommands().front();
  return *command;
}

/// A command's name with those that it belongs to: "draft pick".
std::string NameOf(const CLI::App& command) {
  const CLI::App* parent = command.get_parent();
  const bool hasParent = parent != nullptr && parent->get_parent() != nullptr;
  return hasParent ? NameOf(*parent) + " " + command.get_name() : command.get_name();
}

std::vector<std::string> CommandNames(const CLI::App& app) {
  std::vector<std::string> names;
  for (const CLI::App* command : app.get_subcommands({}))
    names.push_back(command->get_name());
  return names;
}

/// The options, with their dashes, that may stand after `command`.
std::vector<std::string> OptionNames(const CLI::App& command) {
  std::vector<std::string> names;
  for (const CLI::App* owner = &command; owner != nullptr; owner = owner->get_parent()) {
    for (const CLI::Option* option : owner->get_options()) {
      for (const std::string& name : option->get_lnames())
        names.push_back("--" + name);
    }
  }
  return names;
}

/// Whether a word that a shell does not know is a command of the program.
bool IsFileCommand(const std::string& word) {
  const std::vector<std::string> names = {"create", "info", "shell", "backup", "restore",   "compact",
                                          "tables", "dump", "query", "check",  "completion"};
  return std::find(names.begin(), names.end(), word) != names.end();
}

}  // namespace

CommandLine::CommandLine(Context& context, Reader reader)
    : m_context(context), m_reader(reader), m_app(std::make_unique<CLI::App>()) {
  CLI::App& app = *m_app;
  app.set_help_flag("--help,-h", "print this help and exit");
  app.fallthrough();
  Command root = Root();
  if (reader == Reader::Program) {
    app.name("halcyra");
    app.description(
        "The files of a private fantasy league: make them, play a season, look into them, check them.");
    app.set_version_flag("--version", "halcyra " HALCYRA_VERSION, "print the version and exit");
    AddLeagueOptions(root);
    AddResultOptions(root);
    AddCreateCommand(root);
    AddInfoCommand(root);
    AddLeagueCommands(root);
    AddShellCommand(root);
    AddFileCommands(root);
    AddCompletionCommand(root);
  } else {
    app.description("Commands on the league that is open.");
    AddResultOptions(root);
    AddLeagueCommands(root);
  }
  for (CLI::App* command : app.get_subcommands({}))
    command->footer("The options that " +
                    std::string(reader == Reader::Program ? "'halcyra --help'" : "'help'") +
                    " lists may stand here too.");
}

CommandLine::~CommandLine() = default;

Command CommandLine::Root() {
  return {*m_app, m_context};
}

bool CommandLine::HasSubcommand(const std::string& command, const std::string& word) const {
  const std::vector<std::string> names = CommandNames(*m_app->get_subcommand(command));
  return std::find(names.begin(), names.end(), word) != names.end();
}

bool CommandLine::Parse(std::vector<std::string> words) {
  try {
    std::transform(words.begin(), words.end(), words.begin(), GuardedWord);
    std::reverse(words.begin(), words.end());  // CLI11 takes them from the back
    m_app->parse(std::move(words));
    return true;
  } catch (const CLI::CallForHelp&) {
    m_context.output.Write(m_app->help());
  } catch (const CLI::CallForVersion& version) {
    m_context.output.Line(version.what());
  } catch (const CLI::ParseError& error) {
    throw Diagnose(WithoutGuards(error.what()));
  }
  return false;
}

std::string CommandLine::HelpHint() const {
  return m_reader == Reader::Program
             ? "'halcyra --help' lists the commands, 'halcyra COMMAND --help' a command's options."
             : "'help' lists the commands, 'help COMMAND' a command's options.";
}

/// What is wrong with a command line that CLI11 refused: it stops at the first rule that is broken, which is
/// seldom the word that was mistyped.
Failure CommandLine::Diagnose(const std::string& whatIsWrong) const {
  const CLI::App& command = ChosenCommand(*m_app);
  const bool hasCommand = &command != m_app.get();
  const std::string name = hasCommand ? NameOf(command) : std::string();
  const std::vector<std::string> known = CommandNames(command);
  const std::vector<std::string> left = m_app->remaining(true);
  if (left.empty()) {
    if (!hasCommand) return {FailureKind::WrongUsage, "No command was given.", HelpHint()};
    const std::string help = m_reader == Reader::Program ? "halcyra " + name + " --help" : "help " + name;
    return {FailureKind::WrongUsage, known.empty() ? whatIsWrong : "'" + name + "' wants to know what to do.",
            "'" + help + "' tells how it is used."};
  }

  const std::string word = WithoutGuards(left.front());
  const bool isOption = word.size() > 1 && word.front() == '-';
  std::string what = "There is no command '" + word + "'.";
  std::string nearest;
  if (isOption) {
    const std::string option = word.substr(0, word.find('='));
    what = hasCommand ? "The command '" + name + "' has no option '" + option + "'."
                      : "There is no option '" + option + "'.";
    nearest = NearestOf(option, OptionNames(command));
  } else if (!known.empty()) {
    if (hasCommand) what = "There is no command '" + name + " " + word + "'.";
    if (m_reader == Reader::Shell && IsFileCommand(word)) {
      return {FailureKind::WrongUsage,
              "'" + word + "' opens files itself, and this shell has the league's file to itself.",
              "Use it after leaving the shell."};
    }
    nearest = NearestOf(word, known);
  } else {
    what = "The command '" + name + "' does not take '" + word + "'.";
  }
  return {FailureKind::WrongUsage, what, nearest.empty() ? HelpHint() : "Did you mean '" + nearest + "'?"};
}

ExitCode Attempt(Output& output, Messages& messages, const std::function<void()>& work,
                 const std::string& where) {
  const auto failed = [&](ExitCode code, const std::string& text) {
    messages.Error(where.empty() ? text : where + ": " + text);
    return code;
  };
  try {
    work();
    output.Flush();
    return ExitCode::Done;
  } catch (const Failure& failure) {
    const ExitCode code = failed(ExitCodeOf(failure.Kind()), failure.what());
    if (!failure.Hint().empty()) messages.Hint(failure.Hint());
    return code;
  } catch (const jet::Error& error) {
    const ExitCode code = failed(ExitCodeOf(FailureKindOf(error.Number())), error.what());
    for (const std::string& context : error.Context())
      messages.Hint("in " + context);
    return code;
  } catch (const HLIData::Error& error) {
    return failed(ExitCode::Refused, error.what());
  } catch (const std::bad_alloc&) {
    return failed(ExitCode::SystemFailed, "There is not enough memory.");
  } catch (const std::exception& error) {
    return failed(ExitCode::SystemFailed, error.what());
  }
}

}  // namespace cli

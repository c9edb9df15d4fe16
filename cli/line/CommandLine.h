#pragma once

#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "cli/commands/Command.h"
#include "cli/commands/ExitCode.h"

namespace cli {

/// One command line: which commands and options there are, and what is wrong with the words of one that does
/// not keep to them. Rebuilt for each line, so that no option of a line is left over from the one before.
///
/// Borrows the context, which learns the options and the action.
class CommandLine {
 public:
  /// Who reads the line: the program takes every command, a shell those that work on the league it has open.
  enum class Reader { Program, Shell };

  CommandLine(Context& context, Reader reader);

  ~CommandLine();

  /// For further commands.
  Command Root();

  /// Whether `word` is the name of a subcommand of `command`.
  bool HasSubcommand(const std::string& command, const std::string& word) const;

  /// Understands the words and fills in the context. False when help or the version was asked for, and
  /// printed. Raises Failure (WrongUsage) for words that are no command.
  bool Parse(std::vector<std::string> words);

 private:
  HLLeague::Failure Diagnose(const std::string& whatIsWrong) const;
  std::string HelpHint() const;

  Context& m_context;
  Reader m_reader;
  std::unique_ptr<CLI::App> m_app;
};

/// Runs `work`. Errors are reported through `messages`, after `where` if that is not empty, and returned as
/// their exit code. All output is flushed.
ExitCode Attempt(Output& output, Messages& messages, const std::function<void()>& work,
                 const std::string& where = {});

}  // namespace cli

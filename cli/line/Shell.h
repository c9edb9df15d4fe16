#pragma once

#include <cstddef>
#include <istream>
#include <string>
#include <vector>

#include "cli/commands/Context.h"
#include "cli/commands/ExitCode.h"
#include "cli/line/CommandLine.h"

namespace cli {

/// Where a shell's lines come from, and what it does when one of them fails.
struct ShellInput {
  std::istream& lines;
  std::string name;            ///< of the script's file; empty for standard input
  bool isInteractive = false;  ///< a user types the lines, and can be asked
  bool keepsGoing = false;     ///< a script continues after a line that failed
};

/// Runs commands, line by line, on one open league. Picks of the draft wait in memory until they are saved.
///
/// A line of a script that fails ends it. Leaving loses no picks: the user is asked, and a script
/// that leaves without `draft save` or `quit --discard` has failed.
class Shell {
 public:
  Shell(Context& context, ShellInput input);

  /// Until the lines end or one of them leaves. Answers the code of the first line of a script that failed;
  /// Refused when picks were left unsaved; else Done. Raises what opening the league raises.
  ExitCode Run();

 private:
  bool ReadLine(std::string& line);
  void PublishWithoutUnsaved();
  void RunLine(const std::string& line);
  void Perform(std::vector<std::string> words);
  void AddShellCommands(Command root);
  /// `quit`.
  void Leave(bool discards);
  /// The lines have come to their end without `quit`.
  void EndOfLines();
  void AskAndLeave(const std::string& unsaved);
  /// The picks that are not saved, as a sentence without its end; empty when there are none.
  std::string UnsavedText() const;
  void KeepFirst(ExitCode failure);

  Context& m_context;
  ShellInput m_input;
  const bool m_json;  ///< for every line; one alone may ask for it too
  const bool m_quiet;
  std::size_t m_lineNumber = 0;
  bool m_leaves = false;
  ExitCode m_failure = ExitCode::Done;  ///< the first of a script
};

}  // namespace cli

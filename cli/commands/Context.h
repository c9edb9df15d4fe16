#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <string>

#include "HLIData/Types.h"
#include "cli/commands/ExitCode.h"
#include "cli/output/Messages.h"
#include "cli/output/Output.h"

namespace HLLeague {
class DraftSession;
class League;
struct LeagueOptions;
}  // namespace HLLeague

namespace cli {

/// What one run of the program works with: the options that every command knows, where its result goes, and
/// what the command line asks to be done.
///
/// Lives as long as the run, which is one command, or a shell with all of its commands. Commands fill in
/// `action` while the command line is read; it is carried out once the whole of it has been understood.
struct Context {
  Context(Output& out, Messages& err);
  ~Context();
  Context(const Context&) = delete;
  Context& operator=(const Context&) = delete;

  Output& output;
  Messages& messages;

  std::string folder;            ///< --folder: where the league's files are
  std::string kindName{"live"};  ///< --kind, in lower case
  bool json = false;             ///< --json
  bool quiet = false;            ///< --quiet

  /// Somebody sits at a terminal and can be asked.
  bool canAsk = false;
  /// In a shell, changes of the draft wait for `draft save`; outside, each is saved at once.
  bool inShell = false;

  std::function<void()> action;
  /// Brings a published board up to date: called by a shell after each command. Empty: none is published.
  std::function<void()> publish;
  /// What the run ends with when its action raises nothing.
  ExitCode exitCode = ExitCode::Done;

  /// The league of the chosen folder and kind: opened on first use, open until the run ends. Raises what
  /// opening it raises; another try opens it again.
  HLLeague::League& OpenLeague();

  /// The draft of that league's current season, with the picks that are not saved yet.
  HLLeague::DraftSession& Draft();
  /// Whether the run has stored changes of the league.
  bool HasStored() const;
  /// What opens that league, once more.
  HLLeague::LeagueOptions Options();

  /// The line with which a question is answered, without blanks around it; none when there is no terminal, or
  /// at the end of the input.
  std::optional<std::string> Ask(const std::string& question);
  /// Whether the user says yes to a question.
  bool Confirm(const std::string& question);

  /// The kind that `kindName` names.
  HLIData::DBType Kind() const;
  /// A file of the chosen folder.
  std::string PathInFolder(const std::string& fileName) const;
  /// The league file of the chosen kind in the chosen folder, whether it is there or not. For backups it is
  /// the pattern of their names.
  std::string LeaguePath() const;

 private:
  std::unique_ptr<HLLeague::League> m_league;
  std::unique_ptr<HLLeague::DraftSession> m_draft;
};

}  // namespace cli

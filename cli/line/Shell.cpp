#include "cli/line/Shell.h"

#include <algorithm>
#include <csignal>
#include <cstdio>
#include <memory>
#include <optional>
#include <utility>

#include "HLLeague/DraftSession.h"
#include "HLLeague/League.h"
#include "cli/commands/InputFile.h"
#include "cli/line/ScriptWords.h"
#include "league/Utf8.h"

namespace cli {

using namespace HLLeague;

namespace {

constexpr const char* kByteOrderMark = "\xEF\xBB\xBF";

/// In an interactive shell Ctrl-C discards the line, not the draft.
class InterruptsIgnored {
 public:
  InterruptsIgnored() : m_before(std::signal(SIGINT, SIG_IGN)) {}
  ~InterruptsIgnored() { static_cast<void>(std::signal(SIGINT, m_before)); }
  InterruptsIgnored(const InterruptsIgnored&) = delete;
  InterruptsIgnored& operator=(const InterruptsIgnored&) = delete;

 private:
  void (*m_before)(int);
};

}  // namespace

Shell::Shell(Context& context, ShellInput input)
    : m_context(context), m_input(std::move(input)), m_json(context.json), m_quiet(context.quiet) {}

ExitCode Shell::Run() {
  const League& league = m_context.OpenLeague();
  m_context.inShell = true;
  m_context.canAsk = m_input.isInteractive;
  std::optional<InterruptsIgnored> interrupts;
  if (m_input.isInteractive) {
    interrupts.emplace();
    m_context.messages.Note(league.Path() + " is open. 'help' lists the commands, 'quit' leaves.");
  }
  for (std::string line; !m_leaves;) {
    if (ReadLine(line)) {
      RunLine(line);
    } else {
      EndOfLines();
    }
  }
  PublishWithoutUnsaved();
  return m_failure;
}

/// What is dropped on leaving does not stay on a published board.
void Shell::PublishWithoutUnsaved() {
  if (!m_context.publish || m_context.Draft().Unsaved().empty()) return;
  const ExitCode published = Attempt(m_context.output, m_context.messages, [this] {
    m_context.Draft().Revert();
    m_context.publish();
  });
  if (published != ExitCode::Done) KeepFirst(published);
}

bool Shell::ReadLine(std::string& line) {
  if (m_input.isInteractive) {
    const bool isUnsaved = !m_context.Draft().Unsaved().empty();
    m_context.messages.Prompt(isUnsaved ? "halcyra*> " : "halcyra> ");
  }
  if (!ReadInputLine(m_input.lines, line)) return false;
  if (++m_lineNumber == 1 && line.starts_with(kByteOrderMark))
    line.erase(0, std::char_traits<char>::length(kByteOrderMark));
  return true;
}

void Shell::RunLine(const std::string& line) {
  std::string where;
  if (!m_input.isInteractive) {
    where = (m_input.name.empty() ? "line " : m_input.name + ", line ") + std::to_string(m_lineNumber);
  }
  const ExitCode code = Attempt(
      m_context.output, m_context.messages,
      [&] {
        std::vector<std::string> words = ScriptWords(line);
        if (!words.empty()) Perform(std::move(words));
      },
      where);
  // What was done stays done when its page cannot be written.
  const ExitCode published = Attempt(
      m_context.output, m_context.messages,
      [this] {
        if (m_context.publish) m_context.publish();
      },
      where);
  if (!m_input.isInteractive && published != ExitCode::Done) KeepFirst(published);
  if (code == ExitCode::Done || m_input.isInteractive) return;
  KeepFirst(code);
  if (m_input.keepsGoing || m_leaves) return;
  m_leaves = true;
  const std::string unsaved = UnsavedText();
  if (!unsaved.empty()) m_context.messages.Hint(unsaved + ".");
}

void Shell::Perform(std::vector<std::string> words) {
  m_context.json = m_json;
  m_context.quiet = m_quiet;
  if (words.front() == "help") {  // "help draft pick" is "draft pick --help"
    words.erase(words.begin());
    words.emplace_back("--help");
  }
  CommandLine line(m_context, CommandLine::Reader::Shell);
  AddShellCommands(line.Root());
  // On draft night `pick` is typed often, and is short for `draft pick`.
  if (line.HasSubcommand("draft", words.front())) words.insert(words.begin(), "draft");
  if (!line.Parse(std::move(words))) return;
  m_context.messages.SetQuiet(m_context.quiet);
  std::exchange(m_context.action, nullptr)();
}

void Shell::AddShellCommands(Command root) {
  root.SetFooter(
      "The commands of 'draft' are understood without it: 'pick', 'undo', 'board' and the others.");
  root.AddCommand("help", "List the commands, or tell how one is used");
  for (const char* name : {"quit", "exit"}) {
    Command command = root.AddCommand(name, "Leave the shell");
    const auto discards = std::make_shared<bool>(false);
    command.AddFlag("--discard", *discards, "leave also when there are picks that are not saved");
    command.Runs([this, discards] { Leave(*discards); });
  }
}

void Shell::Leave(bool discards) {
  const std::string unsaved = discards ? std::string() : UnsavedText();
  if (!unsaved.empty() && m_input.isInteractive) {
    AskAndLeave(unsaved);
    return;
  }
  m_leaves = true;
  if (!unsaved.empty()) {
    throw Failure(FailureKind::Refused, unsaved + ".",
                  "'draft save' saves what is not, 'quit --discard' drops it.");
  }
}

void Shell::AskAndLeave(const std::string& unsaved) {
  const auto answer = m_context.Ask(unsaved + ". Save before leaving? [yes, no, cancel] ");
  if (!answer) {  // the terminal is gone
    m_leaves = true;
    KeepFirst(ExitCode::Refused);
    throw Failure(FailureKind::Refused, unsaved + ".");
  }
  const std::string word = LowerCase(*answer);
  if (word == "y" || word == "yes") {
    m_context.Draft().Save();
    m_context.messages.Note("The draft was saved.");
    m_leaves = true;
  } else if (word == "n" || word == "no") {
    m_leaves = true;
  }
}

void Shell::EndOfLines() {
  const std::string unsaved = UnsavedText();
  if (m_input.isInteractive) {
    m_context.messages.Prompt("\n");
    m_input.lines.clear();  // the user can still answer after Ctrl-D
    std::clearerr(stdin);
  }
  const ExitCode code = Attempt(
      m_context.output, m_context.messages, [this] { Leave(/*discards=*/false); }, m_input.name);
  if (code != ExitCode::Done && !m_input.isInteractive) KeepFirst(code);
}

std::string Shell::UnsavedText() const {
  const std::vector<std::int32_t> unsaved = m_context.Draft().Unsaved();
  if (unsaved.empty()) return {};
  return (unsaved.size() == 1 ? "A change of " : "Changes of ") + PickNumbers(unsaved) +
         (unsaved.size() == 1 ? " is not saved" : " are not saved");
}

void Shell::KeepFirst(ExitCode failure) {
  if (m_failure == ExitCode::Done) m_failure = failure;
}

}  // namespace cli

#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "cli/commands/Context.h"

// The library that parses command lines is costly to compile: only Command.cpp and CommandLine.cpp include
// it.
namespace CLI {
class App;
class Option;
}  // namespace CLI

namespace cli {

/// A word of a command line as the parser has to be given it: one in brackets would be taken for a list, and
/// its brackets be lost. Options and arguments get the word as it was.
std::string GuardedWord(std::string word);
/// A text of the parser with the words as they were, for messages.
std::string WithoutGuards(std::string text);

/// An option or argument of a command, to say more about it. Valid as long as its command line.
class Option {
 public:
  Option() = default;
  explicit Option(CLI::Option* option) : m_option(option) {}

  Option& Required();
  /// Takes these words only, in any case; the target gets them as they stand here.
  Option& OneOf(std::vector<std::string> words);
  /// Cannot be given together with `other`.
  Option& Excludes(const Option& other);
  /// Without the option, its value is that of the environment variable.
  Option& FromEnvironment(const char* name);
  /// The help shows the target's current value as the default.
  Option& ShowsDefault();

  /// Whether the line that was read has it.
  bool IsGiven() const;

 private:
  CLI::Option* m_option = nullptr;
};

/// An option as its users write it.
struct OptionDescription {
  std::vector<std::string> names;  ///< with their dashes; of an argument, what the help calls it
  std::string value;               ///< what the help calls its value; empty for flags and arguments
  std::vector<std::string> words;  ///< those that it takes; empty when it takes others too
};

/// A command with all that may stand behind it.
struct CommandDescription {
  std::string name;
  std::vector<OptionDescription> options;
  std::vector<OptionDescription> arguments;
  std::vector<CommandDescription> commands;
};

/// A command of the program, or what its options and subcommands are added to. A handle, valid as long as its
/// command line. Targets are written while a line is read, and live as long.
class Command {
 public:
  Command(CLI::App& app, Context& context) : m_app(&app), m_context(&context) {}

  /// A subcommand; one of them must be given then.
  Command AddCommand(const std::string& name, const std::string& description);

  /// A word without dashes. `name` is what the help calls it. A vector takes one word or more.
  Option AddArgument(const std::string& name, std::string& target, const std::string& help);
  Option AddArgument(const std::string& name, std::int32_t& target, const std::string& help);
  Option AddArgument(const std::string& name, std::optional<std::int32_t>& target, const std::string& help);
  Option AddArgument(const std::string& name, std::vector<std::string>& target, const std::string& help);
  Option AddArgument(const std::string& name, std::vector<std::int32_t>& target, const std::string& help);

  /// `--name VALUE`: `value` is what the help calls it.
  Option AddOption(const std::string& name, const std::string& value, std::string& target,
                   const std::string& help);
  Option AddOption(const std::string& name, const std::string& value, std::optional<std::string>& target,
                   const std::string& help);
  Option AddOption(const std::string& name, const std::string& value, std::optional<std::int32_t>& target,
                   const std::string& help);
  /// `--name yes|no`
  Option AddOption(const std::string& name, std::optional<bool>& target, const std::string& help);
  /// `--name`; several names are separated by commas.
  Option AddFlag(const std::string& names, bool& target, const std::string& help);

  /// Further lines at the end of the help.
  void SetFooter(const std::string& text);

  /// What the command does, once its whole line has been understood.
  void Runs(std::function<void()> action);
  void Runs(void (*action)(Context&));
  /// With options, which are the targets of the command's own.
  template <typename Options>
  void Runs(void (*action)(Context&, const Options&), const std::shared_ptr<Options>& options) {
    Runs([context = m_context, action, options] { action(*context, *options); });
  }

  /// The command as it is declared by now.
  CommandDescription Describe() const;

  Context& GetContext() const { return *m_context; }

 private:
  CLI::App* m_app;
  Context* m_context;
};

}  // namespace cli

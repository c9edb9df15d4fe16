#include "cli/commands/Command.h"

#include <algorithm>
#include <utility>

#include <CLI/CLI.hpp>

namespace cli {
namespace {

/// Appended to bracketed words so that CLI11 does not parse them as lists.
constexpr char kGuard = '\x1f';

void TakesGuardedWords(CLI::Option& option) {
  option.transform(
      [](std::string word) {
        if (word.starts_with('[') && word.back() == kGuard) word.pop_back();
        return word;
      },
      "");
}

template <typename Target>
Option Argument(CLI::App& app, const std::string& name, Target& target, const std::string& help) {
  CLI::Option* option = app.add_option(name, target, help);
  option->type_name("");
  TakesGuardedWords(*option);
  return Option(option);
}

template <typename Target>
Option NamedOption(CLI::App& app, const std::string& name, const std::string& value, Target& target,
                   const std::string& help) {
  CLI::Option* option = app.add_option(name, target, help);
  option->type_name(value);
  TakesGuardedWords(*option);
  return Option(option);
}

/// The words that an option takes, which the name of its type ends with: KIND:{live,test}.
std::vector<std::string> WordsOf(const CLI::Option& option) {
  const std::string type = option.get_type_name();
  const std::size_t open = type.rfind('{');
  const std::size_t close = type.rfind('}');
  if (open == std::string::npos || close == std::string::npos || close < open) return {};
  return CLI::detail::split(type.substr(open + 1, close - open - 1), ',');
}

OptionDescription DescriptionOf(const CLI::Option& option) {
  OptionDescription description;
  for (const std::string& name : option.get_lnames())
    description.names.push_back("--" + name);
  for (const std::string& name : option.get_snames())
    description.names.push_back("-" + name);
  if (description.names.empty()) description.names.push_back(option.get_name());
  if (option.get_items_expected_max() > 0) {
    const std::string type = option.get_type_name();
    description.value = type.substr(0, type.find(':'));
  }
  description.words = WordsOf(option);
  return description;
}

CommandDescription DescriptionOf(const CLI::App& app) {
  CommandDescription description;
  description.name = app.get_name();
  for (const CLI::Option* option : app.get_options())
    (option->get_positional() ? description.arguments : description.options)
        .push_back(DescriptionOf(*option));
  for (const CLI::App* command : app.get_subcommands({}))
    description.commands.push_back(DescriptionOf(*command));
  return description;
}

}  // namespace

std::string GuardedWord(std::string word) {
  if (word.starts_with('[') && word.ends_with(']')) word += kGuard;
  return word;
}

std::string WithoutGuards(std::string text) {
  text.erase(std::remove(text.begin(), text.end(), kGuard), text.end());
  return text;
}

Option& Option::Required() {
  m_option->required();
  return *this;
}

Option& Option::OneOf(std::vector<std::string> words) {
  m_option->transform(CLI::IsMember(std::move(words), CLI::ignore_case));
  return *this;
}

Option& Option::Excludes(const Option& other) {
  m_option->excludes(other.m_option);
  return *this;
}

Option& Option::FromEnvironment(const char* name) {
  m_option->envname(name);
  return *this;
}

Option& Option::ShowsDefault() {
  m_option->capture_default_str();
  return *this;
}

bool Option::IsGiven() const {
  return m_option->count() > 0;
}

Command Command::AddCommand(const std::string& name, const std::string& description) {
  m_app->require_subcommand(1);
  return {*m_app->add_subcommand(name, description), *m_context};
}

Option Command::AddArgument(const std::string& name, std::string& target, const std::string& help) {
  return Argument(*m_app, name, target, help);
}

Option Command::AddArgument(const std::string& name, std::int32_t& target, const std::string& help) {
  return Argument(*m_app, name, target, help);
}

Option Command::AddArgument(const std::string& name, std::optional<std::int32_t>& target,
                            const std::string& help) {
  return Argument(*m_app, name, target, help);
}

Option Command::AddArgument(const std::string& name, std::vector<std::string>& target,
                            const std::string& help) {
  return Argument(*m_app, name, target, help);
}

Option Command::AddArgument(const std::string& name, std::vector<std::int32_t>& target,
                            const std::string& help) {
  return Argument(*m_app, name, target, help);
}

Option Command::AddOption(const std::string& name, const std::string& value, std::string& target,
                          const std::string& help) {
  return NamedOption(*m_app, name, value, target, help);
}

Option Command::AddOption(const std::string& name, const std::string& value,
                          std::optional<std::string>& target, const std::string& help) {
  return NamedOption(*m_app, name, value, target, help);
}

Option Command::AddOption(const std::string& name, const std::string& value,
                          std::optional<std::int32_t>& target, const std::string& help) {
  return NamedOption(*m_app, name, value, target, help);
}

Option Command::AddOption(const std::string& name, std::optional<bool>& target, const std::string& help) {
  CLI::Option* option = m_app->add_option_function<std::string>(
      name, [&target](const std::string& word) { target = word == "yes"; }, help);
  option->type_name("yes|no")->check(CLI::IsMember({"yes", "no"}));
  return Option(option);
}

Option Command::AddFlag(const std::string& names, bool& target, const std::string& help) {
  return Option(m_app->add_flag(names, target, help));
}

void Command::SetFooter(const std::string& text) {
  m_app->footer(text);
}

CommandDescription Command::Describe() const {
  return DescriptionOf(*m_app);
}

void Command::Runs(std::function<void()> action) {
  m_app->callback([context = m_context, action = std::move(action)] { context->action = action; });
}

void Command::Runs(void (*action)(Context&)) {
  Runs([context = m_context, action] { action(*context); });
}

}  // namespace cli

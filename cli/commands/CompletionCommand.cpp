#include "cli/commands/Commands.h"
#include "cli/commands/Context.h"

namespace cli {
namespace {

std::string Joined(const std::vector<std::string>& words) {
  std::string line;
  for (const std::string& word : words)
    line += (line.empty() ? "" : " ") + word;
  return line;
}

/// The shell's option for the names of files that a value or an argument of this name wants.
std::string FilesOf(const std::string& value) {
  if (value == "FILE") return "-f";
  return value == "DIR" ? "-d" : "";
}

/// Adds what may stand behind `command`, a line of a case each, and the same of its subcommands.
void AddCases(const CommandDescription& command, const std::string& path, std::string& values,
              std::string& nexts) {
  std::vector<std::string> commands;
  for (const CommandDescription& subcommand : command.commands) {
    commands.push_back(subcommand.name);
    AddCases(subcommand, path.empty() ? subcommand.name : path + " " + subcommand.name, values, nexts);
  }
  std::vector<std::string> options;
  // Those of the program may stand behind every command, and come last.
  const std::string pattern = path.empty() ? "*" : "'" + path + "'";
  for (const OptionDescription& option : command.options) {
    for (const std::string& name : option.names) {
      options.push_back(name);
      if (option.value.empty()) continue;
      values += "    " + pattern + "'|" + name + "') words='" + Joined(option.words) + "' files='" +
                FilesOf(option.value) + "' ;;\n";
    }
  }
  std::vector<std::string> words;
  std::string files;
  for (const OptionDescription& argument : command.arguments) {
    words.insert(words.end(), argument.words.begin(), argument.words.end());
    if (files.empty()) files = FilesOf(argument.names.front());
  }
  nexts += "    '" + path + "') commands='" + Joined(commands) + "' options='" + Joined(options) +
           "' words='" + Joined(words) + "' files='" + files + "' ;;\n";
}

std::string BashScript(const CommandDescription& program) {
  std::string values;
  std::string nexts;
  AddCases(program, "", values, nexts);
  return R"(# Completion of halcyra's command lines.
_halcyra_value() {
  case "$1|$2" in
)" + values +
         R"(    *) return 1 ;;
  esac
}
_halcyra_next() {
  case "$1" in
)" + nexts +
         R"(  esac
}
_halcyra() {
  local cur=${COMP_WORDS[COMP_CWORD]} path= option= word i commands options words files all
  for ((i = 1; i < COMP_CWORD; i++)); do
    word=${COMP_WORDS[i]}
    [[ $word == = ]] && continue
    if [[ -n $option ]]; then option=; continue; fi
    if _halcyra_value "$path" "$word"; then option=$word; continue; fi
    _halcyra_next "$path"
    [[ $word != -* && " $commands " == *" $word "* ]] && path="${path:+$path }$word"
  done
  [[ $cur == = ]] && cur=
  if [[ -n $option ]]; then
    _halcyra_value "$path" "$option"
    all=$words
  else
    _halcyra_next ''
    all=$options
    _halcyra_next "$path"
    if [[ $cur == -* ]]; then all="$options $all" files=; else all="$commands $words"; fi
  fi
  COMPREPLY=($(compgen -W "$all" -- "$cur"))
  if [[ -n $files ]]; then
    compopt -o filenames 2>/dev/null
    while IFS= read -r word; do COMPREPLY+=("$word"); done < <(compgen $files -- "$cur")
  fi
}
complete -F _halcyra halcyra
)";
}

}  // namespace

void AddCompletionCommand(Command& app) {
  Command completion =
      app.AddCommand("completion", "Print what makes a shell complete halcyra's command lines");
  completion.AddCommand("bash", "For bash: source <(halcyra completion bash)").Runs([app] {
    app.GetContext().output.Write(BashScript(app.Describe()));
  });
  completion.AddCommand("zsh", "For zsh: source <(halcyra completion zsh)").Runs([app] {
    app.GetContext().output.Write("autoload -U +X compinit bashcompinit && compinit && bashcompinit\n" +
                                  BashScript(app.Describe()));
  });
}

}  // namespace cli

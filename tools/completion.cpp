// SPDX-License-Identifier: MIT
// tavelor completion: prints what lets a shell complete the command.
#include <CLI/CLI.hpp>
#include <algorithm>
#include <memory>

#include <fmt/format.h>
#include <fmt/ranges.h>

#include "tavelor/components.hpp"
#include "tavelor/frame/component.hpp"
#include "tools/command.hpp"
#include "tools/command_table.hpp"

namespace tavelor::tools {

namespace {

constexpr const char* kFooter =
    R"(Commands, options, the words that an option takes, classes, files and folders. The
packages bring it for all three shells; without them:

  source <(tavelor completion bash)
  tavelor completion zsh >~/.zfunc/_tavelor
  tavelor completion fish >~/.config/fish/completions/tavelor.fish)";

/// What completes the word behind an option, or an argument.
enum class What { kNothing, kFiles, kFolders, kClasses, kWords };

What whatOf(const OptionText& option) {
  if (!option.choices.empty()) return What::kWords;
  const std::string_view type = option.type;
  if (type.starts_with("FILE")) return What::kFiles;
  if (type.starts_with("FOLDER")) return What::kFolders;
  if (type.starts_with("CLASS")) return What::kClasses;
  return What::kNothing;
}

std::vector<std::string> classNames() {
  std::vector<std::string> names;
  for (const Component* each : components()) names.emplace_back(each->name());
  std::sort(names.begin(), names.end());
  return names;
}

std::vector<std::string> wordsOf(const OptionText& option) {
  return whatOf(option) == What::kClasses ? classNames() : option.choices;
}

/// The commands on the way to one, behind the program's name: " import articles".
std::string wayTo(const CommandText& command) {
  return command.joined(' ').substr(command.path.front().size());
}

std::string pattern(const std::string& way, const std::vector<std::string>& words) {
  std::string text;
  for (const std::string& word : words) {
    text += fmt::format("{}'{}:{}'", text.empty() ? "" : "|", way, word);
  }
  return text;
}

// ---------------------------------------------------------------------------------------------
// bash, and zsh by its own reading of it

std::string bashReply(const OptionText& option) {
  switch (whatOf(option)) {
    case What::kFiles:
      return "compopt -o filenames 2>/dev/null; COMPREPLY=($(compgen -f -- \"$word\"))";
    case What::kFolders:
      return "compopt -o filenames 2>/dev/null; COMPREPLY=($(compgen -d -- \"$word\"))";
    case What::kClasses:
    case What::kWords:
      return fmt::format("COMPREPLY=($(compgen -W '{}' -- \"$word\"))",
                         fmt::join(wordsOf(option), " "));
    case What::kNothing:
      break;
  }
  return "COMPREPLY=()";
}

void printBash(const std::vector<CommandText>& all) {
  fmt::print(R"(# Made by `tavelor completion bash`.
_tavelor() {{
  local word=${{COMP_WORDS[COMP_CWORD]}} last=${{COMP_WORDS[COMP_CWORD - 1]}} way= given=0 i
  local IFS=$' \t\n'
  for ((i = 1; i < COMP_CWORD; i++)); do
    case "$way:${{COMP_WORDS[i - 1]}}" in
)");
  std::string taking;
  std::string below;
  for (const CommandText& command : all) {
    for (const OptionText& option : command.options) {
      if (option.type.empty()) continue;
      taking += (taking.empty() ? "" : "|") + pattern(wayTo(command), option.names);
    }
    if (command.path.size() == 1) continue;
    below += fmt::format("{}'{}'", below.empty() ? "" : "|", wayTo(command));
  }
  fmt::print(R"(      {}) continue ;;
    esac
    case "$way ${{COMP_WORDS[i]}}" in
      {}) way="$way ${{COMP_WORDS[i]}}" given=0 ;;
      *' '-*) ;;
      *) given=$((given + 1)) ;;
    esac
  done
  COMPREPLY=()
  case "$way:$last" in
)",
             taking, below);
  for (const CommandText& command : all) {
    for (const OptionText& option : command.options) {
      if (option.type.empty()) continue;
      fmt::print("    {}) {}; return ;;\n", pattern(wayTo(command), option.names),
                 bashReply(option));
    }
  }
  fmt::print("  esac\n  if [[ $word == -* ]]; then\n    case $way in\n");
  for (const CommandText& command : all) {
    std::vector<std::string> names;
    for (const OptionText& option : command.options) {
      names.insert(names.end(), option.names.begin(), option.names.end());
    }
    fmt::print("      '{}') COMPREPLY=($(compgen -W '{}' -- \"$word\")) ;;\n", wayTo(command),
               fmt::join(names, " "));
  }
  fmt::print("    esac\n    return\n  fi\n  case \"$way:$given\" in\n");
  for (const CommandText& command : all) {
    if (!command.commands.empty()) {
      fmt::print("    '{}:0') COMPREPLY=($(compgen -W '{}' -- \"$word\")) ;;\n", wayTo(command),
                 fmt::join(command.commands, " "));
      continue;
    }
    for (std::size_t i = 0; i < command.arguments.size(); ++i) {
      fmt::print("    '{}:{}') {} ;;\n", wayTo(command), i, bashReply(command.arguments[i]));
    }
  }
  fmt::print("  esac\n}}\ncomplete -F _tavelor tavelor\n");
}

void printZsh(const std::vector<CommandText>& all) {
  fmt::print("#compdef tavelor\nautoload -U +X bashcompinit && bashcompinit\n");
  printBash(all);
}

// ---------------------------------------------------------------------------------------------
// fish

std::string fishQuoted(std::string_view text) {
  std::string out = "'";
  for (const char c : text) {
    if (c == '\'' || c == '\\') out += '\\';
    out += c;
  }
  return out + '\'';
}

/// Where a command is the last one of the line.
std::string fishCondition(const CommandText& command) {
  std::string text;
  for (std::size_t i = 1; i < command.path.size(); ++i) {
    text += fmt::format("{}__fish_seen_subcommand_from {}", text.empty() ? "" : "; and ",
                        command.path[i]);
  }
  if (!command.commands.empty()) {
    text += fmt::format("{}not __fish_seen_subcommand_from {}", text.empty() ? "" : "; and ",
                        fmt::join(command.commands, " "));
  }
  return text;
}

std::string fishReply(const OptionText& option) {
  switch (whatOf(option)) {
    case What::kFiles:
      return " -F";
    case What::kFolders:
      return " -x -a '(__fish_complete_directories)'";
    case What::kClasses:
    case What::kWords:
      return fmt::format(" -x -a {}",
                         fishQuoted(fmt::format("{}", fmt::join(wordsOf(option), " "))));
    case What::kNothing:
      break;
  }
  return " -x";
}

void printFish(const std::vector<CommandText>& all) {
  fmt::print("# Made by `tavelor completion fish`.\ncomplete -c tavelor -f\n");
  for (const CommandText& command : all) {
    const std::string condition = fishQuoted(fishCondition(command));
    for (const CommandText& other : all) {
      const bool isBelow = other.path.size() == command.path.size() + 1 &&
                           std::equal(command.path.begin(), command.path.end(), other.path.begin());
      if (!isBelow) continue;
      fmt::print("complete -c tavelor -n {} -a {} -d {}\n", condition, other.path.back(),
                 fishQuoted(other.description));
    }
    for (const OptionText& option : command.options) {
      std::string names;
      for (const std::string& name : option.names) {
        names += name.starts_with("--") ? fmt::format(" -l {}", name.substr(2))
                                        : fmt::format(" -s {}", name.substr(1));
      }
      fmt::print("complete -c tavelor -n {}{}{} -d {}\n", condition, names,
                 option.type.empty() ? "" : fishReply(option), fishQuoted(option.description));
    }
    for (const OptionText& argument : command.arguments) {
      if (whatOf(argument) == What::kNothing) continue;
      fmt::print("complete -c tavelor -n {}{}\n", condition, fishReply(argument));
    }
  }
}

}  // namespace

void addCompletion(CLI::App& app, Common&) {
  CLI::App* command =
      app.add_subcommand("completion", "Print what lets a shell complete the command");
  auto shell = std::make_shared<std::string>();
  command->add_option("shell", *shell, "For which shell")
      ->required()
      ->check(CLI::IsMember({"bash", "zsh", "fish"}).description(""))
      ->type_name("bash|zsh|fish");
  command->footer(kFooter);
  command->callback([shell, &app] {
    const std::vector<CommandText> all = commandTable(app);
    if (*shell == "bash") printBash(all);
    if (*shell == "zsh") printZsh(all);
    if (*shell == "fish") printFish(all);
  });
}

}  // namespace tavelor::tools

// SPDX-License-Identifier: MIT
// Reads the commands and options that the parser was told of.
#include "tools/command_table.hpp"

#include <CLI/CLI.hpp>

namespace tavelor::tools {

namespace {

/// "auto|always|never": where only some words may follow, the type names them.
std::vector<std::string> choicesOf(const std::string& type) {
  return type.find('|') == std::string::npos ? std::vector<std::string>()
                                             : CLI::detail::split(type, '|');
}

OptionText textOf(const CLI::Option& option) {
  OptionText text;
  if (option.get_positional()) {
    text.names = {option.get_single_name()};
  } else {
    for (const std::string& name : option.get_snames()) text.names.push_back("-" + name);
    for (const std::string& name : option.get_lnames()) text.names.push_back("--" + name);
  }
  // A flag takes nothing, whatever its type is called.
  if (option.get_items_expected_max() > 0) text.type = option.get_type_name();
  text.description = option.get_description();
  text.choices = choicesOf(text.type);
  text.isRequired = option.get_required();
  return text;
}

void add(const CLI::App& command, std::vector<std::string> path, std::vector<CommandText>& all) {
  path.push_back(command.get_name());
  CommandText text;
  text.path = path;
  text.description = command.get_description();
  text.footer = command.get_footer();
  for (const CLI::Option* option : command.get_options()) {
    (option->get_positional() ? text.arguments : text.options).push_back(textOf(*option));
  }
  const std::vector<const CLI::App*> below = command.get_subcommands(nullptr);
  for (const CLI::App* each : below) text.commands.push_back(each->get_name());
  all.push_back(std::move(text));
  for (const CLI::App* each : below) add(*each, path, all);
}

}  // namespace

std::string CommandText::joined(char separator) const {
  std::string text;
  for (const std::string& name : path) {
    if (!text.empty()) text += separator;
    text += name;
  }
  return text;
}

std::vector<CommandText> commandTable(const CLI::App& program) {
  std::vector<CommandText> all;
  add(program, {}, all);
  return all;
}

}  // namespace tavelor::tools

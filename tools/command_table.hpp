// SPDX-License-Identifier: MIT
// What the command's help is made of, for those who print it otherwise.
#pragma once

#include <string>
#include <vector>

namespace CLI {
class App;
}

namespace tavelor::tools {

/// An option, or an argument without one.
struct OptionText {
  std::vector<std::string> names;  ///< "-C", "--in"; of an argument its one name
  std::string type;                ///< what follows it, "" for a flag
  std::string description;
  std::vector<std::string> choices;  ///< where only some words may follow
  bool isRequired = false;
};

struct CommandText {
  std::vector<std::string> path;  ///< of the program's name and those of its commands
  std::string description;
  std::string footer;
  std::vector<OptionText> arguments;
  std::vector<OptionText> options;
  std::vector<std::string> commands;  ///< names of those below it

  /// "tavelor-import-articles".
  std::string joined(char separator) const;
};

/// A program and all commands of it, each behind the one it belongs to.
std::vector<CommandText> commandTable(const CLI::App& program);

}  // namespace tavelor::tools

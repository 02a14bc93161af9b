// SPDX-License-Identifier: MIT
// tavelor classes: the classes of the library, and the interface of one of them.
#include <CLI/CLI.hpp>
#include <algorithm>

#include <fmt/format.h>

#include "tavelor/components.hpp"
#include "tavelor/frame/component.hpp"
#include "tavelor/frame/record_class.hpp"
#include "tavelor/platform/text.hpp"
#include "tools/command.hpp"
#include "tools/output.hpp"

namespace tavelor::tools {

namespace {

void printAll(const Style& style) {
  std::size_t nameWidth = text::length("Class");
  std::size_t wordWidth = text::length("Class word");
  for (const Component* each : components()) {
    nameWidth = std::max(nameWidth, text::length(each->name()));
    wordWidth = std::max(wordWidth, text::length(each->word()));
  }
  const auto printLine = [&](std::string_view name, std::string_view word, std::string_view members,
                             std::string_view classId) {
    return fmt::format("{}  {}  {:>7}  {}", text::padRight(name, nameWidth),
                       text::padRight(word, wordWidth), members, classId);
  };
  fmt::print("{}\n", style.bold(printLine("Class", "Class word", "Members", "Class identifier")));
  for (const Component* each : components()) {
    fmt::print("{}\n", printLine(each->name(), each->word(), std::to_string(each->members().size()),
                                 each->classId()));
  }
  fmt::print("{}\n", style.dim(fmt::format("({} classes)", components().size())));
}

void printOne(const Component& component, const Style& style) {
  fmt::print("{}  {}", style.bold(component.name()), component.classId());
  if (!component.word().empty()) fmt::print("  class word {}", component.word());
  fmt::print("\n");
  int slot = 0;
  for (const Member& member : component.members()) {
    fmt::print("{:>4}  {}{}\n", ++slot, member.property ? "property " : "", member.signature());
  }
  const std::unique_ptr<Object> object = component.make();
  const auto* record = dynamic_cast<const RecordClass*>(object.get());
  if (record != nullptr && !record->eventInterface().empty()) {
    fmt::print("      event MoveComplete() on {}\n", record->eventInterface());
  }
}

}  // namespace

void addClasses(CLI::App& app, Common& common) {
  CLI::App* command =
      app.add_subcommand("classes", "List the classes, or the members of one in slot order");
  auto name = std::make_shared<std::string>();
  command->add_option("class", *name, "Name or class identifier")->type_name("CLASS");
  addColorOption(*command, common);
  command->footer("  tavelor classes\n  tavelor classes ClsBancos");
  command->callback([name, &common] {
    const Style style(common.color, stdout);
    if (name->empty()) {
      printAll(style);
    } else {
      printOne(component(*name), style);
    }
  });
}

}  // namespace tavelor::tools

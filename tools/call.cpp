// SPDX-License-Identifier: MIT
// tavelor call: calls a member by its name.
#include <CLI/CLI.hpp>
#include <algorithm>
#include <array>
#include <string_view>

#include <fmt/format.h>

#include "tavelor/components.hpp"
#include "tavelor/frame/component.hpp"
#include "tavelor/frame/modes.hpp"
#include "tavelor/platform/text.hpp"
#include "tavelor/services/recordset/recordset.hpp"
#include "tools/command.hpp"
#include "tools/output.hpp"
#include "tools/session.hpp"
#include "tools/table.hpp"
#include "tools/typed_number.hpp"

namespace tavelor::tools {

namespace {

constexpr const char* kFooter =
    R"(Arguments are texts that the member reads by the installation's locale: 1,5 is
one and a half in Spanish, and 1.5 would be fifteen, so it is refused where a
number is wanted. An empty one stands for what is not given, unless the parameter
is a text. Outputs need no argument, or an empty one where an input follows; they
are printed after the result as name = value, (empty) and (null) for what has no
value. -- ends the options.

  tavelor call ClsBancos NuevoCodigo
  tavelor call ClsBancos CrearBanco "" "Banco de Ahorro"
  tavelor call ClsBancos GetIbanBic 00001
  tavelor call ClsBancos ExistenRegistros --init registro --id 00001)";

struct CallOptions {
  std::string className;
  std::string member;
  std::string word;
  std::string id;
};

Variant argumentFor(const std::string& text, const Parameter* parameter) {
  const bool takesText =
      parameter == nullptr || parameter->type == "String" || parameter->type == "Variant";
  return text.empty() && !takesText ? Variant() : Variant(text);
}

/// Whether a member reads a typed argument as a number. One that takes anything does so, unless its
/// name says that it is a code or a date.
bool takesNumber(const Parameter& parameter) {
  if (parameter.type != "Variant") {
    constexpr std::array<std::string_view, 6> kNumbers = {"Double",  "Single", "Currency",
                                                          "Integer", "Long",   "Byte"};
    return std::find(kNumbers.begin(), kNumbers.end(), parameter.type) != kNumbers.end();
  }
  const std::string name = text::lower(parameter.name);
  return name.find("id") == std::string::npos && !name.starts_with("dt");
}

std::vector<Variant> argumentsFor(const Member& member, const std::vector<std::string>& texts,
                                  const Locale& locale) {
  std::vector<Variant> arguments;
  for (const std::string& text : texts) {
    const std::size_t position = arguments.size();
    const bool known = position < member.parameters.size();
    const Parameter* const parameter = known ? &member.parameters[position] : nullptr;
    if (known && takesNumber(*parameter)) requireTypedNumber(parameter->name, text, locale);
    arguments.push_back(argumentFor(text, parameter));
  }
  return arguments;
}

void printValue(const Variant& value, std::string_view lead, const Locale& locale,
                const Style& style) {
  if (const auto* object = value.getIf<ObjectPtr>()) {
    if (auto rows = std::dynamic_pointer_cast<Recordset>(*object)) {
      if (rows->State() == ObjectState::kOpen) return printRows(*rows, locale, {}, style);
    }
  }
  const std::string text = value.isNull()    ? style.dim("(null)")
                           : value.isEmpty() ? style.dim("(empty)")
                                             : shown(value, locale);
  fmt::print("{}{}\n", lead, text);
}

/// What the shell has no use for: a connection ends with the command.
bool isConnection(const Parameter& parameter) {
  return parameter.type == "Connection";
}

void printOutcome(const Member& member, const Variant& result,
                  const std::vector<Variant>& arguments, const Locale& locale, const Style& style) {
  if (!member.result.empty()) printValue(result, "", locale, style);
  for (std::size_t i = 0; i < member.parameters.size() && i < arguments.size(); ++i) {
    const Parameter& parameter = member.parameters[i];
    if (parameter.direction == Parameter::Direction::kIn || isConnection(parameter)) continue;
    printValue(arguments[i], parameter.name + " = ", locale, style);
  }
}

}  // namespace

void addCall(CLI::App& app, Common& common) {
  CLI::App* command = app.add_subcommand("call", "Make a class and call a member of it by name");
  auto options = std::make_shared<CallOptions>();
  command->add_option("class", options->className, "Name or class identifier")
      ->required()
      ->type_name("CLASS");
  command->add_option("member", options->member, "Name of the member, followed by its arguments")
      ->required()
      ->type_name("MEMBER [ARGUMENTS...]");
  command->add_option("--init", options->word, "Run IniciaRs with this mode word first")
      ->type_name("WORD");
  command->add_option("--id", options->id, "Its second argument")->type_name("ID")->needs("--init");
  addInstallationOptions(*command, common);
  addColorOption(*command, common);
  command->allow_extras();
  command->footer(kFooter);
  command->callback([options, command, &common] {
    const Component& called = component(options->className);
    const Member& member = called.member(options->member);
    Session session(common);
    std::vector<Variant> arguments =
        argumentsFor(member, argumentTexts(*command, common), session.locale());
    const std::unique_ptr<Object> object = called.make();
    if (command->count("--init") > 0) openMode(called, *object, options->word, options->id);
    const Variant result = called.call(*object, options->member, arguments);
    printOutcome(member, result, arguments, session.locale(), Style(common.color, stdout));
  });
}

}  // namespace tavelor::tools

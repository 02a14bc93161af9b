// SPDX-License-Identifier: MIT
// tavelor manual: writes the manual pages, made of the help.
#include <CLI/CLI.hpp>
#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <ctime>
#include <filesystem>
#include <memory>

#include <fmt/chrono.h>
#include <fmt/format.h>
#include <fmt/ranges.h>

#include "tavelor/platform/text.hpp"
#include "tools/command.hpp"
#include "tools/command_table.hpp"
#include "tools/input_file.hpp"
#include "tools/output.hpp"
#include "tools/output_file.hpp"

namespace tavelor::tools {

namespace {

constexpr const char* kFooter =
    R"(A page for the command and one for each of its commands: tavelor.1, tavelor-import.1,
tavelor-import-articles.1. The packages bring them.

  tavelor manual man/man1 && man -M man tavelor-import)";

/// A text as troff shows it letter by letter.
std::string escaped(std::string_view text) {
  std::string out;
  if (!text.empty() && (text.front() == '.' || text.front() == '\'')) out += "\\&";
  for (const char c : text) {
    switch (c) {
      case '\\':
        out += "\\e";
        break;
      case '-':
        out += "\\-";
        break;
      case '\'':
        out += "\\(aq";
        break;
      case '`':
        out += "\\(ga";
        break;
      case '^':
        out += "\\(ha";
        break;
      case '~':
        out += "\\(ti";
        break;
      default:
        out += c;
    }
  }
  return out;
}

std::string withoutPoint(std::string text) {
  if (text.ends_with('.')) text.pop_back();
  return text;
}

/// Paragraphs of a footer; lines that begin with two blanks are examples and stay lines.
std::string paragraphs(std::string_view footer) {
  enum class In { kNothing, kText, kExample };
  std::string out;
  In in = In::kNothing;
  for (const std::string_view line : text::lines(footer)) {
    const bool isExample = line.starts_with("  ");
    if (in == In::kExample && !isExample) out += ".EE\n";
    if (line.empty()) {
      in = In::kNothing;
      continue;
    }
    if (isExample) {
      if (in != In::kExample) out += out.empty() ? ".EX\n" : ".PP\n.EX\n";
      in = In::kExample;
    } else {
      if (in != In::kText && !out.empty()) out += ".PP\n";
      in = In::kText;
    }
    out += escaped(line) + '\n';
  }
  if (in == In::kExample) out += ".EE\n";
  return out;
}

/// "-C, --in FOLDER" with what is typed bold and what stands for something in italics.
std::string heading(const OptionText& option, bool isArgument) {
  std::string text;
  for (const std::string& name : option.names) {
    text += (text.empty() ? "" : ", ") +
            (isArgument ? fmt::format("\\fI{}\\fP", escaped(text::upper(name)))
                        : fmt::format("\\fB{}\\fP", escaped(name)));
  }
  const std::string type = isArgument ? "" : option.type;
  return type.empty() ? text : fmt::format("{} \\fI{}\\fP", text, escaped(type));
}

std::string optionList(std::string_view title, const std::vector<OptionText>& options,
                       bool areArguments) {
  if (options.empty()) return {};
  std::string out = fmt::format(".SH {}\n", title);
  for (const OptionText& option : options) {
    out += fmt::format(".TP\n{}\n{}\n", heading(option, areArguments),
                       escaped(withoutPoint(option.description) + '.'));
    if (areArguments && !option.choices.empty()) {
      out +=
          fmt::format("One of {}.\n", escaped(fmt::format("{}", fmt::join(option.choices, ", "))));
    }
  }
  return out;
}

std::string synopsis(const CommandText& command) {
  std::string out =
      fmt::format(".SH SYNOPSIS\n\\fB{}\\fP [\\fIOPTIONS\\fP]", escaped(command.joined(' ')));
  for (const OptionText& argument : command.arguments) {
    const std::string name =
        fmt::format("\\fI{}\\fP", escaped(text::upper(argument.names.front())));
    out += argument.isRequired ? " " + name : fmt::format(" [{}]", name);
  }
  if (!command.commands.empty()) out += " \\fICOMMAND\\fP";
  return out + '\n';
}

std::string dayOfPages() {
  const char* const told = std::getenv("SOURCE_DATE_EPOCH");
  const std::time_t now = told != nullptr ? std::atoll(told) : std::time(nullptr);
  return fmt::format("{:%Y-%m-%d}", fmt::gmtime(now));
}

std::string pageOf(const CommandText& command, const std::vector<CommandText>& all) {
  const std::string name = command.joined('-');
  std::string page = fmt::format(
      ".\\\" Made of the help of the command.\n.TH {} 1 {} \"Tavelor {}\"\n.nh\n.ad l\n.SH "
      "NAME\n{} \\- {}\n",
      escaped(text::upper(name)), dayOfPages(), TAVELOR_VERSION, escaped(name),
      escaped(withoutPoint(command.description)));
  page += synopsis(command);
  if (!command.footer.empty()) page += ".SH DESCRIPTION\n" + paragraphs(command.footer);
  if (!command.commands.empty()) {
    page += ".SH COMMANDS\n";
    for (const CommandText& other : all) {
      const bool isBelow = other.path.size() == command.path.size() + 1 &&
                           std::equal(command.path.begin(), command.path.end(), other.path.begin());
      if (!isBelow) continue;
      page += fmt::format(".TP\n\\fB{}\\fP(1)\n{}\n", escaped(other.joined('-')),
                          escaped(withoutPoint(other.description) + '.'));
    }
  }
  page += optionList("ARGUMENTS", command.arguments, true);
  page += optionList("OPTIONS", command.options, false);
  if (command.path.size() > 1) {
    CommandText above = command;
    above.path.pop_back();
    page += fmt::format(".SH SEE ALSO\n.BR {} (1)\n", escaped(above.joined('-')));
  }
  return page;
}

void writePages(const CLI::App& program, const std::string& folder) {
  std::error_code fault;
  std::filesystem::create_directories(folder, fault);
  const std::vector<CommandText> all = commandTable(program);
  for (const CommandText& command : all) {
    const std::string file =
        (std::filesystem::path(folder) / (command.joined('-') + ".1")).string();
    const std::string page = pageOf(command, all);
    const OutputFile out(std::fopen(file.c_str(), "wb"));
    if (!out || std::fwrite(page.data(), 1, page.size(), out.get()) != page.size() ||
        std::fflush(out.get()) != 0) {
      throw FileError(
          fmt::format("{} cannot be written: {}", printable(file), std::strerror(errno)));
    }
  }
  fmt::print("{} pages\n", all.size());
}

}  // namespace

void addManual(CLI::App& app, Common&) {
  CLI::App* command = app.add_subcommand("manual", "Write the manual pages of the command");
  auto folder = std::make_shared<std::string>();
  command->add_option("folder", *folder, "The folder; made when it is missing")
      ->required()
      ->type_name("FOLDER");
  command->footer(kFooter);
  command->callback([folder, &app] { writePages(app, *folder); });
}

}  // namespace tavelor::tools

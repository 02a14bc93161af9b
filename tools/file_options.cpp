// SPDX-License-Identifier: MIT
// Finds the columns of a file that fields come from.
#include "tools/file_options.hpp"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <utility>

#include <fmt/format.h>

#include "tavelor/platform/locale.hpp"
#include "tavelor/platform/text.hpp"
#include "tavelor/services/installation.hpp"
#include "tools/command.hpp"
#include "tools/output.hpp"

namespace tavelor::tools {

std::string joinedNames(const std::vector<std::string>& names) {
  std::string all;
  for (const std::string& name : names) all += (all.empty() ? "" : ", ") + printable(name);
  return all;
}

namespace {

std::vector<std::string_view> namesOf(const ImportTable& table) {
  std::vector<std::string_view> names;
  for (const ImportField& field : table.fields) {
    if (field.use != FieldUse::kDerived) names.push_back(field.name);
  }
  return names;
}

std::optional<std::size_t> fieldNamed(std::string_view name, const ImportTable& table) {
  for (std::size_t i = 0; i < table.fields.size(); ++i) {
    const bool isGiven = table.fields[i].use != FieldUse::kDerived;
    if (isGiven && text::foldAccents(name) == text::foldAccents(table.fields[i].name)) return i;
  }
  return std::nullopt;
}

/// "left=Field" taken apart at its last "=".
std::pair<std::string, std::size_t> assignment(const std::string& text, bool fieldFirst,
                                               const ImportTable& table) {
  const std::size_t equals = fieldFirst ? text.find('=') : text.rfind('=');
  if (equals == std::string::npos) {
    throw UsageError(
        fmt::format("{} is no {}", printable(text), fieldFirst ? "field=value" : "column=field"));
  }
  const std::string before = text.substr(0, equals);
  const std::string behind = text.substr(equals + 1);
  const std::string& name = fieldFirst ? before : behind;
  const std::optional<std::size_t> field = fieldNamed(name, table);
  if (!field) {
    const std::string near = text::nearest(name, namesOf(table));
    throw UsageError(fmt::format("{} have no field {}{}", table.what, printable(name),
                                 near.empty() ? "" : fmt::format("; did you mean {}?", near)));
  }
  return {fieldFirst ? behind : before, *field};
}

std::size_t columnNamed(const std::string& name, const std::vector<std::string>& columns) {
  const auto found = std::find(columns.begin(), columns.end(), name);
  if (found != columns.end()) {
    if (std::find(found + 1, columns.end(), name) != columns.end()) {
      throw UsageError(fmt::format("the file has several columns {}", printable(name)));
    }
    return static_cast<std::size_t>(found - columns.begin());
  }
  const std::string near = text::nearest(name, columns);
  throw UsageError(fmt::format("the file has no column {}{}; it has {}", printable(name),
                               near.empty() ? "" : fmt::format(" (did you mean {}?)", near),
                               joinedNames(columns)));
}

}  // namespace

std::vector<FieldSource> fieldSources(const FileOptions& options,
                                      const std::vector<std::string>& columns,
                                      const ImportTable& table) {
  std::vector<FieldSource> sources(table.fields.size());
  const auto give = [&](std::size_t field) -> FieldSource& {
    FieldSource& source = sources[field];
    if (source.given) {
      throw UsageError(fmt::format("the field {} is given twice", table.fields[field].name));
    }
    source.given = true;
    return source;
  };
  for (const std::string& map : options.maps) {
    const auto [column, field] = assignment(map, false, table);
    give(field).column = columnNamed(column, columns);
  }
  for (const std::string& constant : options.constants) {
    const auto [value, field] = assignment(constant, true, table);
    give(field).constant = value;
  }
  const std::vector<FieldSource> told = sources;
  for (std::size_t i = 0; i < columns.size(); ++i) {
    const std::optional<std::size_t> field = fieldNamed(columns[i], table);
    if (!field || told[*field].given) continue;
    if (sources[*field].given) {
      throw UsageError(fmt::format("the file has several columns {}", printable(columns[i])));
    }
    give(*field).column = i;
  }
  return sources;
}

void tellUnused(const std::vector<std::string>& columns, const std::vector<FieldSource>& sources) {
  std::vector<std::string> unused;
  for (std::size_t i = 0; i < columns.size(); ++i) {
    const bool isUsed = std::any_of(sources.begin(), sources.end(),
                                    [i](const FieldSource& source) { return source.column == i; });
    if (!isUsed) unused.push_back(columns[i]);
  }
  if (!unused.empty()) {
    complain(fmt::format("not taken of the file: {} {}\n",
                         unused.size() == 1 ? "column" : "columns", joinedNames(unused)));
  }
}

char separatorOf(const FileOptions& options) {
  const std::string& word = options.separator;
  if (word.empty()) return 0;
  if (word == "tab") return '\t';
  if (word.size() == 1 && word != "\"") return word.front();
  throw UsageError("a separator is one character, or the word tab");
}

std::shared_ptr<const Locale> numbersOf(const FileOptions& options,
                                        const Installation& installation) {
  if (options.decimal == "comma") return Locale::spanish();
  if (options.decimal == "point") return Locale::neutral();
  return installation.locale();
}

void addFileOptions(CLI::App& command, FileOptions& options) {
  command.add_option("file", options.file, "The file")->required()->type_name("FILE");
  command.add_option("--map", options.maps, "Which column is which field")
      ->type_name("COLUMN=FIELD...");
  command.add_option("--set", options.constants, "A field that is the same in all rows")
      ->type_name("FIELD=VALUE...");
  command
      .add_option("--separator", options.separator,
                  "Between fields; else what the first row has most of: , ; tab |")
      ->type_name("CHARACTER");
  command.add_option("--decimal", options.decimal, "Else as the installation's locale writes it")
      ->check(CLI::IsMember({"comma", "point"}).description(""))
      ->type_name("comma|point");
  command.add_option("--report", options.report, "Write all refused rows to this file")
      ->type_name("FILE");
  command.add_flag("--dry-run", options.isDryRun, "Try all of it and leave nothing written");
}

}  // namespace tavelor::tools

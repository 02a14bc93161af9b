// SPDX-License-Identifier: MIT
// Finds the tables and columns of an installation that those of a database file go into.
#include "tools/old_tables.hpp"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <limits>
#include <utility>

#include <fmt/format.h>
#include <fmt/ranges.h>

#include "tavelor/frame/class_info.hpp"
#include "tavelor/platform/text.hpp"
#include "tavelor/services/engine/engine.hpp"
#include "tavelor/services/installation.hpp"
#include "tools/command.hpp"
#include "tools/file_options.hpp"
#include "tools/output.hpp"

namespace tavelor::tools {

using engine::ColumnType;

namespace {

constexpr std::size_t kMostMissing = 10;  // names that are told

std::string folded(std::string_view name) {
  std::string text = text::foldAccents(name);
  std::replace(text.begin(), text.end(), ' ', '_');
  return text;
}

/// Records of invoices are proof only if nobody else writes them, and so is who may sign in to the
/// server.
bool isTheShopsOwn(std::string_view table) {
  const std::string name = text::foldCase(table);
  return name.starts_with("fiscal_") || name.starts_with("tavelor_") || name.starts_with("web_");
}

std::string_view wordOf(OldType type) {
  switch (type) {
    case OldType::kFlag:
      return "flag";
    case OldType::kByte:
    case OldType::kInt16:
    case OldType::kInt32:
      return "whole number";
    case OldType::kMoney:
      return "amount of money";
    case OldType::kSingle:
    case OldType::kDouble:
    case OldType::kDecimal:
      return "number";
    case OldType::kDate:
      return "date";
    case OldType::kText:
    case OldType::kMemo:
    case OldType::kGuid:
      return "text";
    case OldType::kBinary:
    case OldType::kLongBinary:
      return "picture or object";
  }
  return "value of a type that is not read";
}

bool isWholeType(OldType type) {
  return type == OldType::kByte || type == OldType::kInt16 || type == OldType::kInt32;
}

bool fits(OldType from, ColumnType to) {
  const std::string_view word = wordOf(from);
  if (word == "flag") {
    return to == ColumnType::kBoolean || to == ColumnType::kInt16 || to == ColumnType::kInt32;
  }
  if (word == "date") return to == ColumnType::kDate;
  if (word == "text") return engine::isText(to);
  if (word == "picture or object") return to == ColumnType::kBinary;
  if (isWholeType(from) && engine::isText(to)) return true;
  const bool isNumber = isWholeType(from) || word == "number" || word == "amount of money";
  return isNumber && (engine::isNumeric(to) || to == ColumnType::kBoolean);
}

// ---------------------------------------------------------------------------------------------
// Maps

/// What --map says, by the folded names of the file: of tables, and of their columns.
struct Maps {
  struct Entry {
    std::string table;
    std::string column;  ///< "" for the table itself
    std::string target;  ///< "" for nowhere
  };
  std::vector<Entry> entries;

  const Entry* find(std::string_view table, std::string_view column) const {
    const auto found = std::find_if(entries.begin(), entries.end(), [&](const Entry& entry) {
      return entry.table == folded(table) && entry.column == folded(column);
    });
    return found == entries.end() ? nullptr : &*found;
  }
};

template <typename Named>
std::vector<std::string> namesOf(const std::vector<Named>& all) {
  std::vector<std::string> names;
  for (const Named& each : all) names.push_back(each.name);
  return names;
}

template <typename Named>
const Named* named(const std::vector<Named>& all, std::string_view name) {
  const auto found = std::find_if(
      all.begin(), all.end(), [&](const Named& each) { return folded(each.name) == folded(name); });
  return found == all.end() ? nullptr : &*found;
}

[[noreturn]] void refuseName(std::string_view whose, std::string_view name,
                             const std::vector<std::string>& names) {
  const std::string near = text::nearest(name, names);
  throw UsageError(fmt::format("{} {}{}; there are {}", whose, printable(name),
                               near.empty() ? "" : fmt::format(" (did you mean {}?)", near),
                               names.empty() ? "none" : joinedNames(names)));
}

Maps mapsOf(const std::vector<std::string>& texts, const OldDatabase& file) {
  Maps maps;
  for (const std::string& text : texts) {
    const std::size_t equals = text.rfind('=');
    if (equals == std::string::npos) {
      throw UsageError(
          fmt::format("{} is no Table=Table and no Table.Column=Column", printable(text)));
    }
    const std::string left = text.substr(0, equals);
    const std::size_t point = left.find('.');
    const std::string table = left.substr(0, point);
    const std::string column = point == std::string::npos ? "" : left.substr(point + 1);
    const OldTable* const there = named(file.tables(), table);
    if (there == nullptr) refuseName("the file has no table", table, namesOf(file.tables()));
    if (!column.empty() && named(there->columns, column) == nullptr) {
      refuseName(fmt::format("the file's table {} has no column", printable(there->name)), column,
                 namesOf(there->columns));
    }
    if (maps.find(table, column) != nullptr) {
      throw UsageError(fmt::format("{} is mapped twice", printable(left)));
    }
    maps.entries.push_back({folded(table), folded(column), text.substr(equals + 1)});
  }
  return maps;
}

// ---------------------------------------------------------------------------------------------
// Tables

struct Target {
  int selector = 0;
  const engine::Catalogue* tables = nullptr;
};

std::vector<std::string> tableNames(const std::vector<Target>& targets) {
  std::vector<std::string> names;
  for (const Target& target : targets) {
    for (const engine::Table& table : target.tables->tables()) {
      if (!isTheShopsOwn(table.name)) names.push_back(table.name);
    }
  }
  return names;
}

void findTable(TablePlan& plan, std::string_view name, const std::vector<Target>& targets) {
  for (const Target& target : targets) {
    if (const engine::Table* const table = named(target.tables->tables(), name)) {
      plan.selector = target.selector;
      plan.to = table;
      return;
    }
  }
}

void planColumn(TablePlan& plan, std::size_t from, const OldColumn& old, const Maps& maps) {
  const Maps::Entry* const map = maps.find(plan.oldName, old.name);
  if (map != nullptr && map->target.empty()) {
    return plan.notTaken.push_back(fmt::format("{} (left out)", printable(old.name)));
  }
  const engine::Column* const to = named(plan.to->columns, map != nullptr ? map->target : old.name);
  if (to == nullptr) {
    if (map != nullptr) {
      refuseName(fmt::format("{} has no column", plan.to->name), map->target,
                 namesOf(plan.to->columns));
    }
    return plan.notTaken.push_back(fmt::format("{} (no such column)", printable(old.name)));
  }
  if (!fits(old.type, to->type)) {
    return plan.notTaken.push_back(fmt::format("{} (a {} does not go into {})", printable(old.name),
                                               wordOf(old.type), engine::ddlWord(to->type)));
  }
  if (plan.place(to->name) >= 0) {
    throw UsageError(fmt::format(
        "two columns of {} go into {}.{}: leave one out with --map {}.{}=", printable(plan.oldName),
        plan.to->name, to->name, plan.oldName, old.name));
  }
  plan.columns.push_back({from, old.type, to});
}

/// What the shop has and the file does not. A counter's numbers are then made here, and a row is
/// known by all that it tells.
void lookAtMissing(TablePlan& plan) {
  for (const engine::Column& column : plan.to->columns) {
    if (plan.place(column.name) >= 0) continue;
    plan.missing.push_back(column.name);
    if (!column.nullable && column.defaultText.empty() && !column.autoNumber) {
      plan.fault = fmt::format("the file has no {}, which every row must have", column.name);
    }
  }
  for (const std::size_t position : plan.to->key) {
    const int place = plan.place(plan.to->columns[position].name);
    if (place < 0) return plan.key.clear();
    plan.key.push_back(static_cast<std::size_t>(place));
  }
}

TablePlan planOf(std::size_t from, const OldTable& old, const Maps& maps,
                 const std::vector<Target>& targets, const Installation& shop) {
  TablePlan plan;
  plan.from = from;
  plan.oldName = old.name;
  const Maps::Entry* const map = maps.find(old.name, "");
  if (map != nullptr && map->target.empty()) {
    plan.fault = "left out";
    return plan;
  }
  const std::string name = map != nullptr ? map->target : old.name;
  if (isTheShopsOwn(name)) {
    plan.fault = "the shop alone writes it";
    return plan;
  }
  findTable(plan, name, targets);
  if (plan.to == nullptr) {
    const std::vector<std::string> names = tableNames(targets);
    if (map != nullptr) refuseName("the shop has no table", name, names);
    const std::string near = text::nearest(name, names);
    plan.fault = fmt::format("the shop has no such table{}",
                             near.empty() ? "" : fmt::format("; did you mean {}?", near));
    return plan;
  }
  plan.isInFile = shop.databaseEngine(plan.selector).isFile();
  for (std::size_t i = 0; i < old.columns.size(); ++i) planColumn(plan, i, old.columns[i], maps);
  lookAtMissing(plan);
  if (plan.columns.empty()) plan.fault = "no column of it is one of the shop's";
  return plan;
}

}  // namespace

int TablePlan::place(std::string_view column) const {
  const auto found = std::find_if(columns.begin(), columns.end(), [&](const ColumnPlan& each) {
    return text::equalsIgnoreCase(each.to->name, column);
  });
  return found == columns.end() ? -1 : static_cast<int>(found - columns.begin());
}

const TablePlan* TablePlans::into(std::string_view table) const {
  const auto found = std::find_if(tables.begin(), tables.end(), [&](const TablePlan& plan) {
    return plan.fault.empty() && text::equalsIgnoreCase(plan.to->name, table);
  });
  return found == tables.end() ? nullptr : &*found;
}

const TablePlan* TablePlans::of(std::string_view oldTable) const {
  const auto found = std::find_if(tables.begin(), tables.end(), [&](const TablePlan& plan) {
    return folded(plan.oldName) == folded(oldTable);
  });
  return found == tables.end() ? nullptr : &*found;
}

TablePlans planTables(const OldDatabase& file, const Installation& shop,
                      const std::vector<std::string>& maps, std::optional<int> into) {
  const Maps names = mapsOf(maps, file);
  TablePlans plans;
  std::vector<Target> targets;
  for (const int each :
       into ? std::vector<int>{*into} : std::vector<int>{selector::kMain, selector::kDocuments}) {
    plans.catalogues.push_back(shop.catalogue(each));
    targets.push_back({each, plans.catalogues.back().get()});
  }
  for (std::size_t i = 0; i < file.tables().size(); ++i) {
    TablePlan plan = planOf(i, file.tables()[i], names, targets, shop);
    const TablePlan* const other = plan.fault.empty() ? plans.into(plan.to->name) : nullptr;
    if (other != nullptr) {
      throw UsageError(
          fmt::format("the tables {} and {} go both into {}: leave one out with "
                      "--map {}=",
                      printable(other->oldName), printable(plan.oldName), plan.to->name,
                      printable(plan.oldName)));
    }
    plans.tables.push_back(std::move(plan));
  }
  return plans;
}

std::string described(const TablePlans& plans, const OldDatabase& file) {
  std::string text;
  for (const TablePlan& plan : plans.tables) {
    const OldTable& old = file.tables()[plan.from];
    const std::string name = printable(plan.oldName);
    if (!plan.fault.empty()) {
      text += fmt::format("{}: not taken, {} rows: {}\n", name, old.rows, plan.fault);
      continue;
    }
    text += fmt::format("{}{}: {} of {} columns\n", name,
                        name == plan.to->name ? "" : fmt::format(" into {}", plan.to->name),
                        plan.columns.size(), old.columns.size());
    if (!plan.notTaken.empty()) {
      text += fmt::format("  not taken: {}\n", fmt::join(plan.notTaken, ", "));
    }
    if (plan.missing.empty()) continue;
    const std::size_t shown = std::min(plan.missing.size(), kMostMissing);
    text += fmt::format("  not in the file: {}{}\n",
                        fmt::join(plan.missing.begin(),
                                  plan.missing.begin() + static_cast<std::ptrdiff_t>(shown), ", "),
                        shown == plan.missing.size()
                            ? ""
                            : fmt::format(" and {} more", plan.missing.size() - shown));
  }
  for (const std::string& name : file.linked()) {
    text += fmt::format("{}: not taken: it lies in another file\n", printable(name));
  }
  return text;
}

// ---------------------------------------------------------------------------------------------
// Values

namespace {

/// The double that a person would write for a single: 0.1, and not what its bits are as a double.
double asWritten(float number) {
  std::array<char, 32> digits = {};
  const auto end = std::to_chars(digits.data(), digits.data() + digits.size(), number).ptr;
  double written = 0;
  std::from_chars(digits.data(), end, written);
  return written;
}

double decimalNumber(std::string_view digits) {
  double number = 0;
  std::from_chars(digits.data(), digits.data() + digits.size(), number);
  return number;
}

/// Ten-thousandths of a decimal's digits; nothing where there are more, or too many.
std::optional<std::int64_t> decimalMoney(std::string_view digits) {
  constexpr std::size_t kDecimals = 4;
  const std::size_t point = std::min(digits.find('.'), digits.size());
  std::string text(digits.substr(0, point));
  std::string_view part = digits.substr(std::min(point + 1, digits.size()));
  while (part.size() > kDecimals && part.back() == '0') part.remove_suffix(1);
  if (part.size() > kDecimals) return std::nullopt;
  text += part;
  text.append(kDecimals - part.size(), '0');
  std::int64_t units = 0;
  const auto [end, fault] = std::from_chars(text.data(), text.data() + text.size(), units);
  if (fault != std::errc() || end != text.data() + text.size()) return std::nullopt;
  return units;
}

/// To the fifteenth digit, which is as far as a double tells what was meant.
std::optional<std::int64_t> moneyOf(double number) {
  constexpr double kMost = 9.2e18;
  constexpr double kNoise = 1e-15;
  const double units = number * static_cast<double>(Currency::kScale);
  if (!(std::abs(units) < kMost)) return std::nullopt;
  if (std::abs(units - std::round(units)) > std::max(std::abs(units) * kNoise, 1e-9)) {
    return std::nullopt;
  }
  return static_cast<std::int64_t>(std::llround(units));
}

std::string moneyText(std::int64_t units) {
  constexpr auto kScale = static_cast<std::uint64_t>(Currency::kScale);
  const auto size =
      units < 0 ? 0 - static_cast<std::uint64_t>(units) : static_cast<std::uint64_t>(units);
  return fmt::format("{}{}.{:04}", units < 0 ? "-" : "", size / kScale, size % kScale);
}

struct Number {
  double value = 0;
  std::optional<std::int64_t> money;
};

Number numberOf(const Variant& value) {
  Number number;
  if (const auto* const whole = value.getIf<std::int32_t>()) {
    return {static_cast<double>(*whole), *whole * Currency::kScale};
  }
  if (const auto* const money = value.getIf<Currency>()) {
    return {money->toDouble(), money->scaled()};
  }
  if (const auto* const digits = value.getIf<std::string>()) {
    return {decimalNumber(*digits), decimalMoney(*digits)};
  }
  const auto* const single = value.getIf<float>();
  number.value = single != nullptr ? asWritten(*single) : *value.getIf<double>();
  number.money = moneyOf(number.value);
  return number;
}

std::string convertNumber(const Variant& value, const ColumnPlan& column, bool isInFile,
                          Variant& to) {
  const std::string& name = column.to->name;
  const Number number = numberOf(value);
  if (!std::isfinite(number.value)) return fmt::format("{} is no number", name);
  switch (column.to->type) {
    case ColumnType::kBoolean:
      to = number.value != 0;
      return {};
    case ColumnType::kDouble:
      to = number.value;
      return {};
    case ColumnType::kSingle:
      if (std::abs(number.value) > std::numeric_limits<float>::max()) break;
      to = static_cast<float>(number.value);
      return {};
    case ColumnType::kCurrency: {
      if (!number.money) {
        return fmt::format("{} is no amount of four decimals: {}", name, number.value);
      }
      // An embedded database keeps money as a number.
      const auto kept = static_cast<double>(*number.money) / static_cast<double>(Currency::kScale);
      if (isInFile && std::llround(kept * static_cast<double>(Currency::kScale)) != *number.money) {
        break;
      }
      to = Currency::fromScaled(*number.money);
      return {};
    }
    default: {
      if (engine::isText(column.to->type)) break;
      const engine::WholeRange range = engine::wholeRange(column.to->type);
      if (number.value != std::trunc(number.value)) {
        return fmt::format("{} is no whole number: {}", name, number.value);
      }
      if (number.value < static_cast<double>(range.least) ||
          number.value > static_cast<double>(range.most)) {
        break;
      }
      to = static_cast<std::int32_t>(number.value);
      return {};
    }
  }
  const bool isMoney = column.to->type == ColumnType::kCurrency && number.money;
  return fmt::format("{} does not hold {}", name,
                     isMoney ? moneyText(*number.money) : fmt::format("{}", number.value));
}

std::string convertText(std::string text, const ColumnPlan& column, Variant& to) {
  const engine::Column& target = *column.to;
  if (text.find('\0') != std::string::npos) {
    return fmt::format("{} has a character of code 0", target.name);
  }
  const auto width = static_cast<std::size_t>(target.size);
  if (target.type == ColumnType::kText && text.size() > width && text::length(text) > width) {
    return fmt::format("{} has more than {} characters", target.name, width);
  }
  to = std::move(text);
  return {};
}

}  // namespace

std::string converted(const Variant& value, const ColumnPlan& column, bool isInFile, Variant& to) {
  const engine::Column& target = *column.to;
  to = Null();
  if (value.isNull()) {
    return target.nullable && !target.autoNumber ? "" : fmt::format("{} is missing", target.name);
  }
  if (const auto* const flag = value.getIf<bool>()) {
    if (target.type == ColumnType::kBoolean) {
      to = *flag;
    } else {
      to = std::int32_t{*flag ? -1 : 0};
    }
    return {};
  }
  if (const auto* const date = value.getIf<Date>()) {
    constexpr double kFirst = -657434;   // in the year 100
    constexpr double kBehind = 2958466;  // the year 9999
    if (!(date->days() >= kFirst && date->days() < kBehind)) {
      return fmt::format("{} is no day of the years 100 to 9999", target.name);
    }
    to = *date;
    return {};
  }
  if (value.getIf<Bytes>() != nullptr) {
    to = value;
    return {};
  }
  if (engine::isText(target.type)) {
    const auto* const whole = value.getIf<std::int32_t>();
    return convertText(whole != nullptr ? std::to_string(*whole) : *value.getIf<std::string>(),
                       column, to);
  }
  return convertNumber(value, column, isInFile, to);
}

}  // namespace tavelor::tools

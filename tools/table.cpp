// SPDX-License-Identifier: MIT
// Rows as an aligned table or as comma-separated values.
#include "tools/table.hpp"

#include <CLI/CLI.hpp>
#include <algorithm>

#include <fmt/format.h>

#include "tavelor/platform/text.hpp"
#include "tavelor/services/recordset/recordset.hpp"
#include "tools/output.hpp"

namespace tavelor::tools {

namespace {

// Characters of a text that a table shows.
constexpr std::size_t kCellWidth = 60;
constexpr std::string_view kNullMark = "·";

struct TableColumn {
  std::int32_t position;
  std::string name;
  bool number;
  std::size_t width;
};

struct Cell {
  std::string text;
  bool null = false;
};

bool isNumber(std::int32_t type) {
  switch (static_cast<DataType>(type)) {
    case DataType::kInt16:
    case DataType::kInt32:
    case DataType::kSingle:
    case DataType::kDouble:
    case DataType::kCurrency:
    case DataType::kDecimal:
    case DataType::kByte:
    case DataType::kInt64:
    case DataType::kNumeric:
      return true;
    default:
      return false;
  }
}

std::vector<TableColumn> columnsOf(Recordset& rows, const TableOptions& options) {
  std::vector<TableColumn> columns;
  const auto add = [&](const Field& field) {
    std::string name = printable(field.Name());
    const std::size_t width = text::length(name);
    columns.push_back({static_cast<std::int32_t>(field.column()), std::move(name),
                       isNumber(field.Type()), width});
  };
  if (options.columns.empty()) {
    for (std::int32_t i = 0; i < rows.Fields().Count(); ++i) add(rows.Field(i));
  } else {
    for (const std::string& name : options.columns) add(rows.Field(name));
  }
  return columns;
}

/// Calls `use` with the set on each row shown.
template <typename Use>
void eachRow(Recordset& rows, std::size_t limit, Use use) {
  if (rows.RecordCount() == 0) return;
  rows.MoveFirst();
  for (std::size_t shown = 0; shown < limit && !rows.Eof(); ++shown, rows.MoveNext()) use();
}

Cell cellOf(const Variant& value, const Locale& locale) {
  if (value.isNull() || value.isEmpty()) return {std::string(kNullMark), true};
  std::string text = printable(shown(value, locale));
  if (text::length(text) > kCellWidth) {
    text = std::string(text::left(text, kCellWidth - 1)).append("…");
  }
  return {std::move(text), false};
}

std::string padded(std::string_view text, const TableColumn& column, bool last) {
  if (column.number) return text::padLeft(text, column.width);
  return last ? std::string(text) : text::padRight(text, column.width);
}

void printTable(Recordset& rows, const Locale& locale, const TableOptions& options,
                const Style& style) {
  std::vector<TableColumn> columns = columnsOf(rows, options);
  std::vector<std::vector<Cell>> cells;
  eachRow(rows, options.limit, [&] {
    std::vector<Cell>& row = cells.emplace_back();
    for (TableColumn& column : columns) {
      row.push_back(cellOf(rows.Field(column.position).Value(), locale));
      column.width = std::max(column.width, text::length(row.back().text));
    }
  });

  const auto printLine = [&](auto textAt) {
    std::string line;
    for (std::size_t i = 0; i < columns.size(); ++i) {
      if (i > 0) line += "  ";
      line += textAt(i);
    }
    fmt::print("{}\n", line);
  };
  const auto isLast = [&](std::size_t i) { return i + 1 == columns.size(); };
  printLine(
      [&](std::size_t i) { return style.bold(padded(columns[i].name, columns[i], isLast(i))); });
  for (const std::vector<Cell>& row : cells) {
    printLine([&](std::size_t i) {
      const std::string text = padded(row[i].text, columns[i], isLast(i));
      return row[i].null ? style.dim(text) : text;
    });
  }

  const auto all = static_cast<std::size_t>(rows.RecordCount());
  const std::string_view noun = all == 1 ? "row" : "rows";
  const std::string count = cells.size() == all
                                ? fmt::format("({} {})", all, noun)
                                : fmt::format("({} of {} {})", cells.size(), all, noun);
  fmt::print("{}\n", style.dim(count));
}

/// A text that holds a separator, a quote or a line end, or holds nothing, is quoted.
std::string csvField(std::string_view text) {
  if (!text.empty() && text.find_first_of(",\"\r\n") == std::string_view::npos) {
    return std::string(text);
  }
  std::string quoted = "\"";
  for (const char c : text) {
    if (c == '"') quoted += '"';
    quoted += c;
  }
  return quoted + '"';
}

std::vector<std::string> split(std::string_view names) {
  std::vector<std::string> list;
  while (true) {
    const std::size_t comma = names.find(',');
    list.emplace_back(names.substr(0, comma));
    if (comma == std::string_view::npos) return list;
    names.remove_prefix(comma + 1);
  }
}

void printCsv(Recordset& rows, const Locale& locale, const TableOptions& options) {
  const std::vector<TableColumn> columns = columnsOf(rows, options);
  const auto printLine = [&](auto fieldAt) {
    std::string line;
    for (std::size_t i = 0; i < columns.size(); ++i) {
      if (i > 0) line += ',';
      line += fieldAt(columns[i]);
    }
    fmt::print("{}\r\n", line);
  };
  printLine([](const TableColumn& column) { return csvField(column.name); });
  eachRow(rows, options.limit, [&] {
    printLine([&](const TableColumn& column) {
      const Variant value = rows.Field(column.position).Value();
      return value.isNull() ? std::string() : csvField(shown(value, locale));
    });
  });
}

}  // namespace

std::string notNegative(const std::string& text) {
  return text.starts_with('-') ? fmt::format("{} is less than nothing", text) : std::string();
}

void addTableOptions(CLI::App& app, TableOptions& options) {
  app.add_option("--limit", options.limit, "Show at most so many rows")
      ->check(notNegative)
      ->type_name("N");
  app.add_option_function<std::string>(
         "--columns", [&options](const std::string& names) { options.columns = split(names); },
         "Show these columns only: Código,Descripción")
      ->type_name("NAMES");
  app.add_flag("--csv", options.csv, "Comma-separated values, uncut, and no count");
}

void printRows(Recordset& rows, const Locale& locale, const TableOptions& options,
               const Style& style) {
  if (options.csv) {
    printCsv(rows, locale, options);
  } else {
    printTable(rows, locale, options, style);
  }
}

}  // namespace tavelor::tools

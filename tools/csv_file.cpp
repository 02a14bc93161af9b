// SPDX-License-Identifier: MIT
// Feeds the lines of a file to the parser of comma-separated values, so that each row knows its
// line.
#include "tools/csv_file.hpp"

#include <algorithm>
#include <new>

#include <csv.h>

namespace tavelor::tools {

namespace {

char likelySeparator(std::string_view header) {
  constexpr std::string_view kKnown = ",;\t|";
  return *std::max_element(kKnown.begin(), kKnown.end(), [&](char a, char b) {
    return std::count(header.begin(), header.end(), a) <
           std::count(header.begin(), header.end(), b);
  });
}

}  // namespace

struct CsvFile::Parser {
  Parser() {
    if (csv_init(&state, CSV_STRICT | CSV_STRICT_FINI) != 0) throw std::bad_alloc();
  }
  ~Parser() { csv_free(&state); }
  Parser(const Parser&) = delete;
  Parser& operator=(const Parser&) = delete;

  static void fieldEnded(void* text, std::size_t size, void* self) {
    auto& parser = *static_cast<Parser*>(self);
    parser.broken = parser.broken || parser.ended;
    auto& fields = parser.row->fields;
    if (parser.count == fields.size()) fields.emplace_back();
    fields[parser.count++].assign(static_cast<const char*>(text), size);
  }
  static void rowEnded(int /*lineEnd*/, void* self) { static_cast<Parser*>(self)->ended = true; }

  csv_parser state = {};
  Row* row = nullptr;
  std::size_t count = 0;  // fields of the row so far
  std::size_t bytes = 0;  // of the row so far
  bool ended = false;
  bool broken = false;  // more fields behind the end of a row
  bool finished = false;
};

CsvFile::CsvFile(const std::string& path, char separator)
    : input_(path), parser_(std::make_unique<Parser>()) {
  if (separator == 0) {
    InputFile ahead(path);
    std::string_view header;
    ahead.next(header);
    separator = likelySeparator(header);
  }
  csv_set_delim(&parser_->state, static_cast<unsigned char>(separator));
  Row header;
  if (!take(header)) input_.failAt(1, "there is no row that names the columns");
  columns_ = std::move(header.fields);
}

CsvFile::~CsvFile() = default;

bool CsvFile::next(Row& row) {
  return take(row);
}

bool CsvFile::take(Row& row) {
  Parser& parser = *parser_;
  parser.row = &row;
  parser.count = 0;
  parser.bytes = 0;
  parser.ended = false;
  std::string_view line;
  while (!parser.ended && input_.next(line)) {
    if (parser.bytes == 0) row.line = input_.lineNumber();
    parser.bytes += line.size();
    if (parser.bytes > InputFile::kLongestLine) {
      input_.failAt(row.line, "the row is longer than 1 MiB; is a quote left open?");
    }
    const std::size_t read = csv_parse(&parser.state, line.data(), line.size(), &Parser::fieldEnded,
                                       &Parser::rowEnded, &parser);
    if (read != line.size()) input_.fail("a quote stands where none can be");
    // A carriage return alone ends a row for the parser, and what follows it would be lost.
    if (parser.broken || (parser.ended && parser.state.entry_pos != 0)) {
      input_.fail(
          "a carriage return within the line; if the file is an old Mac's, convert it with tr "
          "'\\r' '\\n'");
    }
    if (parser.count == 0 && parser.state.entry_pos == 0 && !parser.state.quoted) {
      parser.bytes = 0;  // a line without anything
    }
  }
  if (!parser.ended && !parser.finished) {
    parser.finished = true;
    if (csv_fini(&parser.state, &Parser::fieldEnded, &Parser::rowEnded, &parser) != 0) {
      input_.failAt(row.line, "a quote is left open");
    }
  }
  row.fields.resize(parser.count);
  return parser.ended;
}

}  // namespace tavelor::tools

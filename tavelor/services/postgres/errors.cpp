// SPDX-License-Identifier: MIT
// What the server answers as errors of the library.
#include "tavelor/services/postgres/errors.hpp"

#include <algorithm>
#include <array>
#include <charconv>
#include <optional>

#include <fmt/format.h>

#include "tavelor/platform/text.hpp"

namespace tavelor::engine::postgres {

namespace {

/// SQLSTATEs by their beginning; the longest that fits holds.
struct Known {
  std::string_view beginning;
  std::int32_t number;
};

constexpr std::array kKnown{
    Known{"08", errors::kConnectionLost},
    Known{"22001", errors::kMultipleStep},
    Known{"22003", errors::kOverflow},
    Known{"22007", errors::kTypeMismatch},
    Known{"22008", errors::kTypeMismatch},
    Known{"22012", errors::kDivisionByZero},
    Known{"22018", errors::kTypeMismatch},
    Known{"22021", errors::kTypeMismatch},  // bytes that are no text
    Known{"22P02", errors::kTypeMismatch},
    Known{"22P05", errors::kTypeMismatch},  // a character that the database's encoding lacks
    Known{"23", errors::kIntegrityViolation},
    Known{"25006", errors::kPathAccess},
    Known{"25P03", errors::kConnectionLost},  // idle in a transaction for too long
    Known{"28", errors::kPathAccess},
    Known{"3D000", errors::kFileNotFound},
    Known{"3F000", errors::kFileNotFound},
    Known{"40001", errors::kTryAgain},
    Known{"40P01", errors::kTryAgain},
    Known{"42", errors::kSyntax},
    Known{"42501", errors::kPathAccess},
    Known{"53300", errors::kBusy},
    Known{"54000", errors::kMultipleStep},  // a value, or all of a row's, of more than 1 GiB
    Known{"55P03", errors::kBusy},
    Known{"57014", errors::kTimeout},
    Known{"57P01", errors::kConnectionLost},
    Known{"57P02", errors::kConnectionLost},
    Known{"57P03", errors::kConnectionLost},
    Known{"57P05", errors::kConnectionLost},
};

/// What a function of the dialect has raised: its number is in the detail.
constexpr std::string_view kRaised = "TVERR";

std::string_view fieldOf(const PGresult& result, int field) {
  const char* const text = PQresultErrorField(&result, field);
  return text == nullptr ? std::string_view() : std::string_view(text);
}

std::optional<std::int32_t> raisedNumber(const PGresult& result) {
  const std::string_view detail = fieldOf(result, PG_DIAG_MESSAGE_DETAIL);
  std::int32_t number = 0;
  const auto read = std::from_chars(detail.data(), detail.data() + detail.size(), number);
  if (read.ec != std::errc() || number == 0) return std::nullopt;
  return number;
}

/// "T.A, T.B" of the detail "Key (\"A\", \"B\")=(1, 2) ...", whose words are of the server's
/// language but whose marks are not; the name of the constraint else.
std::string keyOf(const PGresult& result) {
  const std::string_view detail = fieldOf(result, PG_DIAG_MESSAGE_DETAIL);
  const std::string_view table = fieldOf(result, PG_DIAG_TABLE_NAME);
  const std::size_t open = detail.find('(');
  const std::size_t close = detail.find(")=(");
  if (open == std::string_view::npos || close == std::string_view::npos || close < open) {
    return fmt::format("{}, {}", table, fieldOf(result, PG_DIAG_CONSTRAINT_NAME));
  }
  std::string key;
  std::string_view columns = detail.substr(open + 1, close - open - 1);
  while (!columns.empty()) {
    const std::size_t comma = std::min(columns.find(", "), columns.size());
    std::string column(columns.substr(0, comma));
    std::erase(column, '"');
    key += fmt::format("{}{}.{}", key.empty() ? "" : ", ", table, column);
    columns.remove_prefix(std::min(comma + 2, columns.size()));
  }
  return key;
}

std::string integrityText(const PGresult& result, std::string_view sqlState) {
  if (sqlState == "23505")
    return fmt::format("There is a row with this key already: {}.", keyOf(result));
  if (sqlState == "23502") {
    return fmt::format("This column takes no Null: {}.{}.", fieldOf(result, PG_DIAG_TABLE_NAME),
                       fieldOf(result, PG_DIAG_COLUMN_NAME));
  }
  return fmt::format("The table refuses the row: {}.",
                     oneLine(fieldOf(result, PG_DIAG_MESSAGE_PRIMARY)));
}

std::string describe(const PGresult& result, std::string_view sqlState, std::int32_t number) {
  std::string message = oneLine(fieldOf(result, PG_DIAG_MESSAGE_PRIMARY));
  if (sqlState.empty()) {
    return fmt::format("The line to the server is lost: {}.",
                       oneLine(PQresultErrorMessage(&result)));
  }
  switch (number) {
    case errors::kIntegrityViolation:
      return integrityText(result, sqlState);
    case errors::kSyntax:
      return message;
    case errors::kBusy:
      if (sqlState == "53300")
        return fmt::format("The server takes no more connections: {}.", message);
      return fmt::format(
          "What the statement needs is locked by another session, and stayed so for "
          "the whole wait: {}.",
          message);
    case errors::kConnectionLost:
      return fmt::format("The server has ended the line: {}.", message);
    case errors::kTryAgain:
    case errors::kTimeout:
    case errors::kOverflow:
    case errors::kTypeMismatch:
    case errors::kDivisionByZero:
      return fmt::format("{} ({})", defaultDescription(number), message);
    case errors::kMultipleStep:
      return fmt::format("A value is longer than the database can hold: {}.", message);
    case errors::kPathAccess:
      if (sqlState == "42501") {
        return fmt::format(
            "The server refuses it: {}. Whoever owns it there grants the role that right.",
            message);
      }
      return fmt::format("The server refuses it: {}.", message);
    default:
      if (sqlState == "53100") return fmt::format("The server's disk is full: {}.", message);
      return fmt::format("{}.", message);
  }
}

/// The server counts characters from 1; 0 where it tells no place.
std::int64_t offsetOf(const PGresult& result, std::string_view statement, std::size_t shift) {
  const std::string_view position = fieldOf(result, PG_DIAG_STATEMENT_POSITION);
  std::size_t character = 0;
  std::from_chars(position.data(), position.data() + position.size(), character);
  if (character <= shift) return -1;
  character -= shift;
  std::size_t offset = 0;
  while (offset < statement.size()) {
    const bool starts = (static_cast<unsigned char>(statement[offset]) & 0xC0U) != 0x80;
    if (starts && --character == 0) return static_cast<std::int64_t>(offset);
    ++offset;
  }
  return -1;
}

}  // namespace

std::int32_t numberOf(std::string_view sqlState) {
  if (sqlState.empty()) return errors::kConnectionLost;
  const Known* best = nullptr;
  for (const Known& known : kKnown) {
    if (!sqlState.starts_with(known.beginning)) continue;
    if (best == nullptr || best->beginning.size() < known.beginning.size()) best = &known;
  }
  return best == nullptr ? errors::kUnspecified : best->number;
}

std::string_view sqlStateOf(const PGresult& result) {
  return fieldOf(result, PG_DIAG_SQLSTATE);
}

Error errorOf(const PGresult& result, std::string_view statement, std::size_t shift) {
  const std::string_view sqlState = sqlStateOf(result);
  const auto make = [&]() -> Error {
    if (sqlState == kRaised) {
      if (const auto number = raisedNumber(result)) {
        return {*number, std::string(kSource),
                std::string(fieldOf(result, PG_DIAG_MESSAGE_PRIMARY))};
      }
    }
    const std::int32_t number = numberOf(sqlState);
    Error error(number, std::string(kSource), describe(result, sqlState, number));
    for (const std::string_view note :
         {fieldOf(result, PG_DIAG_MESSAGE_DETAIL), fieldOf(result, PG_DIAG_MESSAGE_HINT)}) {
      if (!note.empty()) error.noting(note);
    }
    return error;
  };
  Error error = make();
  error.withNativeCode(nativeCodeOf(sqlState));
  if (!statement.empty()) error.inStatement(statement, offsetOf(result, statement, shift));
  return error;
}

std::string oneLine(std::string_view message) {
  std::string line;
  for (const std::string_view part : text::lines(message)) {
    std::string_view trimmed = text::trim(part);
    while (trimmed.starts_with('\t')) trimmed.remove_prefix(1);  // before a hint of libpq's
    if (trimmed.empty()) continue;
    if (!line.empty()) line += "; ";
    line += trimmed;
  }
  while (line.ends_with('.')) line.pop_back();
  return line;
}

void refuseWhileAsking() {
  raise(errors::kNotAllowedInContext, kSource, "Nothing is written while reads are asked for");
}

}  // namespace tavelor::engine::postgres

// SPDX-License-Identifier: MIT
// Text for a person.
#include "tools/output.hpp"

#include <algorithm>
#include <cstdlib>

#include <fmt/format.h>
#include <unistd.h>

#include "tavelor/platform/error.hpp"
#include "tavelor/platform/text.hpp"
#include "tavelor/platform/utf8.hpp"
#include "tavelor/platform/variant.hpp"

namespace tavelor::tools {

namespace {

// Characters of a statement that are shown around the fault.
constexpr std::size_t kShownWidth = 96;

/// The line of `statement` that holds byte `offset`, cut to what fits, and a caret below the place.
std::string markedPlace(std::string_view statement, std::size_t offset, const Style& style) {
  const std::size_t before = statement.substr(0, offset).rfind('\n');
  const std::size_t begin = before == std::string_view::npos ? 0 : before + 1;
  const std::size_t end = std::min(statement.find('\n', offset), statement.size());
  const std::string line = printable(statement.substr(begin, end - begin));
  const std::size_t column = text::length(statement.substr(begin, offset - begin));

  const std::size_t width = text::length(line);
  std::size_t first = column > kShownWidth / 2 ? column - kShownWidth / 2 : 0;
  first = std::min(first, width > kShownWidth ? width - kShownWidth : 0);
  const std::string_view lead = first > 0 ? "… " : "";
  const std::string_view rest = first + kShownWidth < width ? " …" : "";
  const TextPlace place = placeOf(statement, static_cast<std::int64_t>(offset));
  return fmt::format("  {}{}{}\n  {:>{}} line {}, column {}\n", lead,
                     text::mid(line, first, kShownWidth), rest, style.red("^"),
                     column - first + text::length(lead) + style.red("^").size(), place.line,
                     place.column);
}

}  // namespace

Style::Style(std::string_view color, std::FILE* stream)
    : on_(color == "always" ||
          (color == "auto" && std::getenv("NO_COLOR") == nullptr && isatty(fileno(stream)) == 1)) {}

std::string Style::paint(std::string_view code, std::string_view text) const {
  return on_ ? fmt::format("\033[{}m{}\033[0m", code, text) : std::string(text);
}

std::string printable(std::string_view text) {
  constexpr char32_t kControlPictures = 0x2400;
  constexpr char32_t kDeletePicture = 0x2421;
  constexpr char32_t kReplacement = 0xFFFD;
  std::string line;
  line.reserve(text.size());
  for (std::size_t i = 0; i < text.size();) {
    const utf8::Character character = utf8::decode(text, i);
    i += character.size;
    char32_t code = character.code;
    if (code < 0x20) code += kControlPictures;
    if (code == 0x7F) code = kDeletePicture;
    // The second set of control characters has no pictures of its own.
    if ((code >= 0x80 && code < 0xA0) || code >= utf8::kInvalidBase) code = kReplacement;
    utf8::append(line, code);
  }
  return line;
}

std::string shown(const Variant& value, const Locale& locale) {
  if (value.isNull() || value.isEmpty()) return {};
  if (const auto* object = value.getIf<ObjectPtr>()) return *object ? (*object)->typeName() : "";
  if (const auto* bytes = value.getIf<Bytes>()) return fmt::format("{} bytes", bytes->size());
  return value.toText(locale);
}

void complain(const std::string& text) {
  std::fputs(text.c_str(), stderr);
}

void printError(const Error& error, const Style& style) {
  std::string message = style.red(fmt::format("Error {}", error.number()));
  if (!error.source().empty()) message += fmt::format(" from {}", printable(error.source()));
  message += fmt::format(": {}\n", printable(error.description()));
  for (const std::string_view note : text::lines(error.notes())) {
    message += fmt::format("  {}\n", printable(note));
  }
  if (error.nativeCode() != 0) message += fmt::format("  engine code {}\n", error.nativeCode());
  const std::string& statement = error.statement();
  if (!statement.empty() && error.offset() >= 0) {
    const auto offset = std::min(static_cast<std::size_t>(error.offset()), statement.size());
    message += markedPlace(statement, offset, style);
  } else if (!statement.empty()) {
    const std::string line = printable(statement);
    const std::string_view head = text::left(line, kShownWidth);
    message += fmt::format("  {}{}\n", head, head.size() < line.size() ? " …" : "");
  }
  complain(message);
}

}  // namespace tavelor::tools

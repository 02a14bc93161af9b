// SPDX-License-Identifier: MIT
// How a function of the C interface looks at what it was given.
#include "tavelor/c/calls.hpp"

#include <fmt/format.h>

#include "tavelor/platform/literal.hpp"
#include "tavelor/platform/utf8.hpp"

namespace tavelor::c {

namespace {

bool isUtf8(std::string_view text) {
  if (utf8::isAscii(text)) return true;
  for (std::size_t at = 0; at < text.size();) {
    const utf8::Character character = utf8::decode(text, at);
    if (character.code >= utf8::kInvalidBase) return false;
    at += character.size;
  }
  return true;
}

}  // namespace

tavelor_object& asRecordset(tavelor_object* given) {
  tavelor_object& object = handle(given, Kind::kObject, "record set");
  object.room().requireUsable();
  if (object.recordset == nullptr) {
    raise(errors::kObjectRequired, kSource,
          fmt::format("This is no record set but a {}", object.object->typeName()));
  }
  return object;
}

tavelor_object& asConnection(tavelor_object* given) {
  tavelor_object& object = handle(given, Kind::kObject, "connection");
  object.room().requireUsable();
  if (object.connection == nullptr) {
    raise(errors::kObjectRequired, kSource,
          fmt::format("This is no connection but a {}", object.object->typeName()));
  }
  return object;
}

void requireUtf8(std::string_view given, std::string_view name) {
  if (!isUtf8(given)) {
    raise(errors::kTypeMismatch, kSource, fmt::format("`{}` is no UTF-8", name));
  }
}

std::string_view text(const char* given, std::string_view name) {
  const std::string_view whole = &output(given, name);
  requireUtf8(whole, name);
  return whole;
}

std::string_view optionalText(const char* given, std::string_view name) {
  return given == nullptr ? std::string_view() : text(given, name);
}

// ---------------------------------------------------------------------------------------------
// Values in statements

std::size_t nextMark(std::string_view text, std::size_t at) {
  // Behind the quote, bracket or sign that closes what one of these begins; a quote written twice
  // closes and begins.
  for (std::size_t i = at; i < text.size(); ++i) {
    char closing = 0;
    switch (text[i]) {
      case '?':
        return i;
      case '\'':
      case '"':
      case '#':
        closing = text[i];
        break;
      case '[':
        closing = ']';
        break;
      default:
        continue;
    }
    i = text.find(closing, i + 1);
    if (i == std::string_view::npos) break;
  }
  return std::string_view::npos;
}

void raiseMarks(std::size_t marks, std::size_t count) {
  raise(errors::kWrongNumberOfArguments, kSource,
        fmt::format("The text has {} question marks outside of quotes, and there are {} values",
                    marks, count));
}

std::string criteriaOf(const char* criteria, const tavelor_value* values, std::size_t count,
                       const Room& room) {
  std::string joined;
  splice(
      text(criteria, "criteria"), values, count, room, [&](std::string_view own) { joined += own; },
      [&](const Variant& value) { joined += sqlLiteral(value).text(); });
  return joined;
}

}  // namespace tavelor::c

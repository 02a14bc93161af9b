// SPDX-License-Identifier: MIT
// Text for a person: colours, values, errors with their place.
#pragma once

#include <cstdio>
#include <string>
#include <string_view>

namespace tavelor {
class Error;
class Variant;
struct Locale;
}  // namespace tavelor

namespace tavelor::tools {

/// Colours of a stream: "always", "never", or "auto" for a terminal without NO_COLOR.
class Style {
 public:
  Style(std::string_view color, std::FILE* stream);
  std::string bold(std::string_view text) const { return paint("1", text); }
  std::string dim(std::string_view text) const { return paint("2", text); }
  std::string red(std::string_view text) const { return paint("31", text); }

 private:
  std::string paint(std::string_view code, std::string_view text) const;
  bool on_;
};

/// One line of text that no terminal takes for an order: control characters become their pictures,
/// bytes that are no UTF-8 the replacement character. Character counts stay the same.
std::string printable(std::string_view text);

/// A value as a table or a script shows it: "" for Null and Empty, the type's name for an object.
std::string shown(const Variant& value, const Locale& locale);

/// Writes to standard error. What cannot be written there, closed or full, is lost without a word:
/// there is no other place to tell it, and the work goes on.
void complain(const std::string& text);

/// Works, and tells what was done, also when an error ended it, which passes then.
template <typename Work, typename Tell>
void workAndTell(Work&& work, Tell&& tell) {
  try {
    work();
  } catch (...) {
    tell();
    throw;
  }
  tell();
}

/// Number, source and description on standard error, and the statement with the place marked.
void printError(const Error& error, const Style& style);

}  // namespace tavelor::tools

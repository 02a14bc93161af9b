// SPDX-License-Identifier: MIT
// Statement text that remembers which bytes came from values.
#pragma once

#include <cstdint>
#include <span>
#include <string_view>

#include "tavelor/platform/short_buffer.hpp"

namespace tavelor {

/// A statement of the dialect, joined from the class's own text and from values:
///
///     Statement s("SELECT Http as web FROM Bancos WHERE codigo = '");
///     s << value(vId) << "'";
///
/// text() is exactly the joined text. Because the ranges of the values are known, a value that does
/// not stay inside the literal that it was put into is refused as a syntax error: a quote breaks
/// the statement, and can never change what it does.
class Statement {
 public:
  /// Bytes [begin, end) of text() that came from outside.
  struct Range {
    std::uint32_t begin;
    std::uint32_t end;
    friend constexpr bool operator==(Range, Range) = default;
  };
  /// A text marked as coming from outside. Lives only as long as the text that it views.
  struct Value {
    std::string_view text;
  };

  Statement() = default;
  /// The library's own text, trusted.
  explicit Statement(std::string_view trusted) { text_.append(trusted); }

  Statement& operator<<(std::string_view trusted) {
    text_.append(trusted);
    return *this;
  }
  Statement& operator<<(Value value) {
    const auto begin = static_cast<std::uint32_t>(text_.size());
    text_.append(value.text);
    ranges_.append(Range{begin, static_cast<std::uint32_t>(text_.size())});
    return *this;
  }
  /// Appends another statement with its ranges.
  Statement& operator<<(const Statement& part);

  /// Good until the statement grows or goes.
  std::string_view text() const { return {text_.data(), text_.size()}; }
  std::span<const Range> ranges() const { return ranges_.elements(); }

 private:
  // Room for most statements: they are joined by the thousand, and the heap would cost as much as
  // the joining.
  ShortBuffer<char, 256> text_;
  ShortBuffer<Range, 12> ranges_;
};

/// Marks a text as a value from outside.
inline Statement::Value value(std::string_view text) {
  return {text};
}

}  // namespace tavelor

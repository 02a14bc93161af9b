// SPDX-License-Identifier: MIT
// Statements made of constant text and of values, and joined only where their text is needed.
#pragma once

#include <concepts>
#include <cstddef>
#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <type_traits>
#include <vector>

#include "tavelor/platform/short_buffer.hpp"

namespace tavelor {

/// A statement of the dialect, made of the class's own text and of values:
///
///     Statement s("SELECT Http as web FROM Bancos WHERE codigo = '");
///     s << value(vId) << "'";
///
/// text() is exactly the joined text. Because the values are known, one that does not stay inside
/// the literal that it was put into is refused as a syntax error: a quote breaks the statement, and
/// can never change what it does.
class Statement {
 public:
  /// Text that is known when compiling. It never changes, and goes only with the module that has
  /// it: a statement must not outlive that.
  class Constant {
   public:
    /// Takes a literal.
    template <std::size_t kSize>
    consteval Constant(const char (&text)[kSize])  // NOLINT(google-explicit-constructor,*-c-arrays)
        : text_(text, kSize - 1) {
      // Reading it while compiling proves that nothing can write to it.
      if (text_.find('\0') != std::string_view::npos) throw "a constant has no NUL";
    }
    /// The literal.
    constexpr std::string_view text() const { return text_; }

   private:
    std::string_view text_;
  };
  /// A text marked as coming from outside.
  struct Value {
    std::string_view text;
  };
  /// Text that is trusted though it is known only when running, as a table's name.
  template <typename Text>
  static constexpr bool kIsTrusted =
      std::convertible_to<const Text&, std::string_view> && !std::is_array_v<Text>;

  Statement() = default;
  /// Begins with a constant.
  explicit Statement(Constant constant) { *this << constant; }
  /// Begins with text that the program has made, and vouches for.
  template <typename Text>
  requires kIsTrusted<Text>
  explicit Statement(const Text& trusted) { *this << trusted; }

  /// Appends a constant.
  Statement& operator<<(Constant constant) {
    pieces_.append({constant.text().data(), sizeOf(constant.text()), Piece::Kind::kConstant});
    return *this;
  }
  /// Appends text that the program has made, and vouches for.
  template <typename Text>
  requires kIsTrusted<Text> Statement& operator<<(const Text& trusted) {
    return keep(trusted, Piece::Kind::kTrusted);
  }
  /// Appends a value: it can break the statement and do nothing else.
  Statement& operator<<(Value value) { return keep(value.text, Piece::Kind::kValue); }
  /// Appends another statement, piece by piece.
  Statement& operator<<(const Statement& part);

  /// Whether nothing has been appended.
  bool empty() const { return pieces_.size() == 0; }
  /// The joined text, made anew by each call.
  std::string text() const { return joined().text; }

  /// Bytes [begin, end) of the text that came from outside.
  struct Range {
    std::uint32_t begin;
    std::uint32_t end;
    friend constexpr bool operator==(Range, Range) = default;
  };
  /// The text with the places of its values.
  struct Joined {
    std::string text;
    std::vector<Range> ranges;  ///< one a value
  };
  /// Made anew by each call.
  Joined joined() const;

  /// What was appended at once.
  struct Piece {
    /// Where its text comes from.
    enum class Kind : std::uint8_t { kConstant, kTrusted, kValue };
    const char* constant;  ///< null unless a constant: the text is in keptText()
    std::uint32_t size;    ///< bytes
    Kind kind;
  };
  /// Good until the statement grows or goes; so is keptText().
  std::span<const Piece> pieces() const { return pieces_.elements(); }
  /// The texts of all pieces that are no constants, one behind the other.
  std::string_view keptText() const { return {kept_.data(), kept_.size()}; }

 private:
  static std::uint32_t sizeOf(std::string_view text) {
    return static_cast<std::uint32_t>(text.size());
  }
  Statement& keep(std::string_view text, Piece::Kind kind);

  // Room for most statements: they are made by the thousand, and the heap would cost as much as the
  // rest.
  ShortBuffer<Piece, 24> pieces_;
  ShortBuffer<char, 256> kept_;
};

/// Marks a text as a value from outside.
inline Statement::Value value(std::string_view text) {
  return {text};
}

}  // namespace tavelor

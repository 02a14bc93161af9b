// SPDX-License-Identifier: MIT
// Statements made of constant text and of values, and joined only where their text is needed.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "tavelor/platform/export.hpp"
#include "tavelor/platform/literal.hpp"
#include "tavelor/platform/short_buffer.hpp"

namespace tavelor {

/// A statement of the dialect, made of the program's own text and of values:
///
///     Statement s("SELECT Http as web FROM Bancos WHERE codigo = ");
///     s << sqlText(code);
///
/// Its own text is known when compiling, or says Statement::trusted(); a value goes through
/// sqlText(), sqlLiteral() or spliced(). A text that is known only when running and has neither
/// does not compile.
///
/// text() is exactly the joined text. Because the values are known, one that does not stay inside
/// the literal that it was put into is refused as a syntax error: a quote breaks the statement, and
/// can never change what it does.
class TAVELOR_API Statement {
 public:
  /// Text that is known when compiling. It never changes, and goes only with the module that has
  /// it: a statement must not outlive that.
  class Constant {
   public:
    /// The empty text.
    constexpr Constant() = default;
    /// Takes a literal.
    template <std::size_t kSize>
    consteval Constant(const char (&text)[kSize])  // NOLINT(google-explicit-constructor,*-c-arrays)
        : Constant(std::string_view(text, kSize - 1)) {}
    /// Takes a constant made of literals.
    consteval Constant(std::string_view text)  // NOLINT(google-explicit-constructor)
        : text_(text) {
      // Reading it while compiling proves that nothing can write to it.
      if (text_.find('\0') != std::string_view::npos) throw "a constant has no NUL";
    }
    /// The literal.
    constexpr std::string_view text() const { return text_; }
    /// Whether it has no character.
    constexpr bool empty() const { return text_.empty(); }
    /// The same as text().
    constexpr operator std::string_view() const { return text_; }  // NOLINT(*-explicit-c*)
    friend constexpr bool operator==(Constant a, std::string_view b) { return a.text_ == b; }
    /// A part of a constant is one; cut as a text is.
    constexpr Constant part(std::size_t begin, std::size_t count = std::string_view::npos) const {
      Constant part;
      part.text_ = text_.substr(begin, count);
      return part;
    }

   private:
    std::string_view text_;
  };
  /// A text marked as coming from outside.
  struct Value {
    std::string_view text;
  };
  /// Text that the program has made, and vouches for.
  struct Trusted {
    std::string_view text;
  };
  /// Vouches for text that is known only when running: a statement that an operator has typed, a
  /// table's name out of the schema. Nobody looks at it: never a value.
  static Trusted trusted(std::string_view text) { return {text}; }

  Statement() = default;
  /// Begins with a constant.
  explicit Statement(Constant constant) { *this << constant; }
  /// Begins with text that the program vouches for.
  Statement(Trusted trusted) { *this << trusted; }  // NOLINT(google-explicit-constructor)

  /// Appends a constant.
  Statement& operator<<(Constant constant) {
    pieces_.append({constant.text().data(), sizeOf(constant.text()), Piece::Kind::kConstant});
    return *this;
  }
  /// Appends text that the program vouches for.
  Statement& operator<<(Trusted trusted) { return keep(trusted.text, Piece::Kind::kTrusted); }
  /// Appends a value: it can break the statement and do nothing else.
  Statement& operator<<(Value value) { return keep(value.text, Piece::Kind::kValue); }
  /// Appends a value with its quotes. Null is none: it is the word.
  Statement& operator<<(const Literal& literal);
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

/// A text from outside as it is, for those who write the quotes around it themselves: it has to be
/// printed as the statement wants it already, and a quote in it breaks the statement unless it is
/// doubled. For all others sqlText() and sqlLiteral() are the way.
inline Statement::Value spliced(std::string_view text) {
  return {text};
}
/// No text.
Statement::Value spliced(std::nullptr_t) = delete;

}  // namespace tavelor

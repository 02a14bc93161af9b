// SPDX-License-Identifier: MIT
// The short road from a statement to its plan: no lexer, and its text is never joined.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "tavelor/platform/statement.hpp"
#include "tavelor/services/dialect/literal_value.hpp"

namespace tavelor::dialect {

struct Shape;

/// The pieces of a statement, remembered with what the lexer found there. Another statement of the
/// same pieces but for its values, each of which stays inside its literal, has the same tokens; so
/// its literals can be taken straight out of it. Constants are looked for by their addresses and
/// compared by their text.
class Splice {
 public:
  /// Of a statement and its shape. `eitherKind[i]` tells that it makes no difference to the plan
  /// whether literal `i`, a number, is whole. Nothing when the text between the values does not
  /// decide the shape.
  static std::optional<Splice> of(const Statement& statement, const Shape& shape,
                                  const std::vector<bool>& eitherKind);

  /// A hash of all pieces but the texts of the values.
  static std::uint64_t hash(const Statement& statement);

  /// Takes the literals out of `statement`. False when its pieces are others, or when a value does
  /// not plainly fit its place: quotes, broken UTF-8, a number of another kind, no date. Then
  /// `literals` may have changed, and the lexer has to judge.
  /// The literals view the statement and this object until its next use.
  bool match(const Statement& statement, std::vector<LiteralValue>& literals);

  /// True if both match the same statements.
  friend bool operator==(const Splice& a, const Splice& b) { return a.parts_ == b.parts_; }

 private:
  enum class Place : std::uint8_t { kText, kDate, kWhole, kDecimal, kNumber };

  /// Where a value goes.
  struct Slot {
    std::int32_t literal = 0;
    std::int32_t joint = -1;  ///< -1: the value is its whole literal
    Place place = Place::kText;
    char quote = 0;          ///< 0: a bare number
    bool delimited = false;  ///< the value brings its quotes

    friend bool operator==(const Slot&, const Slot&) = default;
  };
  struct Part {
    Statement::Piece::Kind kind;
    Slot slot;         ///< of a value
    std::string text;  ///< of all others

    friend bool operator==(const Part&, const Part&) = default;
  };
  /// A value that is a part of its literal, and the constant text around it.
  struct Joint {
    std::string prefix;
    std::string suffix;
    bool isFirst = false;
    bool isLast = false;
  };
  /// A literal without a value: its text does not change.
  struct Fixed {
    std::int32_t literal = 0;
    std::string text;
    LiteralValue value;
  };

  static Place placeOf(LiteralKind kind, bool eitherKind);
  bool readValue(const Slot& slot, std::string_view value, LiteralValue& literal);
  bool readQuoted(const Slot& slot, std::string_view value, LiteralValue& literal);
  static bool readDate(std::string_view text, LiteralValue& literal);

  std::vector<Part> parts_;
  std::vector<Joint> joints_;
  std::vector<Fixed> fixed_;
  std::size_t literalCount_ = 0;
  std::vector<std::string> joined_;  ///< by literal; empty when there are no joints
};

}  // namespace tavelor::dialect

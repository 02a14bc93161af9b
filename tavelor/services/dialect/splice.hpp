// SPDX-License-Identifier: MIT
// The short road from a statement to its plan: no lexer, only its text between the values.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "tavelor/services/dialect/literal_value.hpp"

namespace tavelor {
class Statement;
}

namespace tavelor::dialect {

struct Shape;

/// A statement's own text between its values, remembered with what the lexer found there. Another
/// statement with the very same text between its values, each value of which stays inside its
/// literal, has the same tokens; so its literals can be taken straight out of it.
class Splice {
 public:
  /// Of a statement and its shape. `eitherKind[i]` tells that it makes no difference to the plan
  /// whether literal `i`, a number, is whole. Nothing when the text between the values does not
  /// decide the shape.
  static std::optional<Splice> of(const Statement& statement, const Shape& shape,
                                  const std::vector<bool>& eitherKind);

  /// A hash of the text before the first value and behind the last one, and of how long the rest of
  /// the own text is. Those few that have these in common are told apart by take().
  static std::uint64_t hash(const Statement& statement);

  /// Takes the literals out of `statement`. False when its own text is another, or when a value
  /// does not plainly fit its place: quotes, broken UTF-8, a number of another kind, no date. Then
  /// `literals` may have changed, and the lexer has to judge.
  /// The literals view the statement and this object until its next use.
  bool take(const Statement& statement, std::vector<Lifted>& literals);

  /// True if both take the same statements.
  friend bool operator==(const Splice& a, const Splice& b) {
    return a.segments_ == b.segments_ && a.slots_ == b.slots_;
  }

 private:
  enum class Place : std::uint8_t { kText, kDate, kWhole, kDecimal, kNumber };

  /// The text before, between or behind values.
  class Segment {
   public:
    explicit Segment(std::string_view text);
    bool is(std::string_view text) const;
    friend bool operator==(const Segment&, const Segment&) = default;

   private:
    std::size_t length_;
    std::uint64_t word_;  ///< of up to 8 bytes: these
    std::string text_;    ///< of more
  };
  struct Slot {
    std::int32_t literal = 0;
    std::int32_t joint = -1;  ///< -1: the value is its whole literal
    Place place = Place::kText;
    char quote = 0;          ///< 0: a bare number
    bool delimited = false;  ///< the value brings its quotes

    friend bool operator==(const Slot&, const Slot&) = default;
  };
  /// A value that is a part of its literal, and the constant text around it.
  struct Joint {
    std::string prefix;
    std::string suffix;
    bool isFirst = false;
    bool isLast = false;
  };
  /// A literal without a value: its text does not change.
  struct Constant {
    std::int32_t literal = 0;
    std::string text;
    Lifted lifted;
  };

  bool takeQuoted(const Slot& slot, std::string_view value, Lifted& literal);
  static bool takeDate(std::string_view text, Lifted& literal);

  std::vector<Segment> segments_;  ///< before, between and behind the values
  std::vector<Slot> slots_;        ///< one a value
  std::vector<Joint> joints_;
  std::vector<Constant> constants_;  ///< the literals without a value
  std::size_t literalCount_ = 0;
  std::vector<std::string> joined_;  ///< by literal; empty when there are no joints
};

}  // namespace tavelor::dialect

// SPDX-License-Identifier: MIT
// The short road from a statement to its plan: no lexer, only its text between the values.
#pragma once

#include <cstdint>
#include <memory>
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

  /// A hash of the text between the values.
  static std::uint64_t hash(const Statement& statement);

  /// Takes the literals out of `statement`. False when its own text is another, or when a value
  /// does not plainly fit its place: quotes, broken UTF-8, a number of another kind, no date. Then
  /// `literals` may have changed, and the lexer has to judge.
  /// The literals view the statement and this object until its next use.
  bool take(const Statement& statement, std::vector<Lifted>& literals);

 private:
  enum class Place : std::uint8_t { kText, kDate, kWhole, kDecimal, kNumber };

  struct Slot {
    std::int32_t literal = 0;
    std::int32_t joint = -1;  ///< -1: the value is its whole literal
    Place place = Place::kText;
    char quote = 0;          ///< 0: a bare number
    bool delimited = false;  ///< the value brings its quotes
  };
  /// A value that is a part of its literal, and the constant text around it.
  struct Joint {
    std::string prefix;
    std::string suffix;
    bool isFirst = false;
    bool isLast = false;
  };
  struct Constant {
    std::int32_t literal = 0;
    std::string text;
    double day = 0;
    bool quoted = false;
  };

  bool hasText(const Statement& statement) const;
  bool takeValue(const Slot& slot, std::string_view value, Lifted& literal);
  bool takeText(const Slot& slot, std::string_view text, Lifted& literal);

  std::string segments_;                ///< the texts before, between and behind the values
  std::vector<std::uint32_t> lengths_;  ///< of each segment
  std::vector<Slot> slots_;             ///< one a value
  std::vector<Joint> joints_;
  std::vector<Constant> constants_;  ///< the literals without a value
  std::size_t literalCount_ = 0;
  std::vector<std::string> joined_;  ///< by literal; empty when there are no joints
};

}  // namespace tavelor::dialect

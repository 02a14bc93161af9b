// SPDX-License-Identifier: MIT
// The Like operator of statements and filters.
#pragma once

#include <memory>
#include <string_view>

#include "tavelor/platform/export.hpp"

namespace tavelor {

/// A pattern read once and matched many times. `*` and `%` stand for any run of characters, `?` and
/// `_` for one, `#` for a digit, `[a-z]` and `[!a-z]` for a class; `[*]` is the character itself.
/// Case is ignored for all letters, accents are not.
class TAVELOR_API LikePattern {
 public:
  /// Raises 93 for a `[` that is never closed or a range that falls.
  explicit LikePattern(std::string_view pattern);
  ~LikePattern();
  /// Moves; the other one matches nothing afterwards but may be assigned to.
  LikePattern(LikePattern&&) noexcept;
  /// The same.
  LikePattern& operator=(LikePattern&&) noexcept;

  /// Linear in the text for patterns with a single run; never exponential.
  bool matches(std::string_view text) const;

 private:
  struct Program;
  std::unique_ptr<const Program> program_;
};

}  // namespace tavelor

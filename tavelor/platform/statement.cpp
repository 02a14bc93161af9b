// SPDX-License-Identifier: MIT
// Statement text that remembers which bytes came from values.
#include "tavelor/platform/statement.hpp"

namespace tavelor {

Statement& Statement::operator<<(const Statement& part) {
  const auto shift = static_cast<std::uint32_t>(text_.size());
  // By count, because the part may be this very statement.
  const std::size_t count = part.ranges_.size();
  ranges_.reserve(ranges_.size() + count);
  for (std::size_t i = 0; i < count; ++i) {
    const Range range = part.ranges_[i];
    ranges_.push_back({range.begin + shift, range.end + shift});
  }
  text_.append(part.text_);
  return *this;
}

}  // namespace tavelor

// SPDX-License-Identifier: MIT
// Statement text that remembers which bytes came from values.
#include "tavelor/platform/statement.hpp"

#include <cstddef>

namespace tavelor {

Statement& Statement::operator<<(const Statement& part) {
  const auto shift = static_cast<std::uint32_t>(text_.size());
  // By count, because the part may be this very statement.
  const std::size_t count = part.ranges().size();
  for (std::size_t i = 0; i < count; ++i) {
    const Range range = part.ranges()[i];
    ranges_.append(Range{range.begin + shift, range.end + shift});
  }
  text_.append(part.text());
  return *this;
}

}  // namespace tavelor

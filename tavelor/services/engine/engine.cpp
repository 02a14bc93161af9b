// SPDX-License-Identifier: MIT
// What all engines do alike.
#include "tavelor/services/engine/engine.hpp"

#include "tavelor/services/engine/row_store.hpp"

namespace tavelor::engine {

std::int64_t Prepared::fetchCounted(RowStore& rows) {
  const std::size_t before = rows.rows();
  fetch(rows);
  return static_cast<std::int64_t>(rows.rows() - before);
}

}  // namespace tavelor::engine

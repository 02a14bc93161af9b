// SPDX-License-Identifier: MIT
// What a shop needs on its first day.
#pragma once

#include <cstddef>
#include <string>
#include <vector>

namespace tavelor::flows {

/// What became of one catalogue: rows added, or rows that were there before and were left alone.
struct Seeded {
  std::string what;
  std::size_t added = 0;
  std::size_t kept = 0;
};

/// Fills each catalogue that is empty, in one transaction of its own, and makes the year's counters
/// and their period where there are none; on the calling thread's apartment. Catalogues with rows
/// stay as they are, so it may be run again, also over what a failure left.
std::vector<Seeded> seedCatalogues();

}  // namespace tavelor::flows

// SPDX-License-Identifier: MIT
// Which chains a taxpayer has, and which of their records stay in the shop.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "tavelor/services/data_session.hpp"

namespace tavelor::fiscal {

/// The codes of a taxpayer's chains, the oldest first.
std::vector<std::int32_t> chainsOf(const std::string& taxpayer, const ConnectionPtr& documents);

/// Records of a chain that follow each other, both ends included.
struct PositionRange {
  std::int32_t first = 1;
  std::int32_t last = 0;
  /// Whether a position lies in it.
  bool holds(std::int32_t position) const { return position >= first && position <= last; }
};

/// The records of a chain that were made while the shop did not send: they stay, and each wants a
/// signature. A range that goes on ends at the largest number.
std::vector<PositionRange> keptRanges(std::int32_t chain, const ConnectionPtr& documents);

}  // namespace tavelor::fiscal

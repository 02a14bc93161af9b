// SPDX-License-Identifier: MIT
// What this engine's columns cannot hold.
#pragma once

#include <cstddef>
#include <string>

#include "tavelor/services/engine/catalogue.hpp"
#include "tavelor/services/engine/row_store.hpp"

namespace tavelor::engine::sqlite {

/// As Destination::whyNot().
std::string whyNot(const Column& column, const RowStore::Row& row, std::size_t place);

}  // namespace tavelor::engine::sqlite

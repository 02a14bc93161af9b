// SPDX-License-Identifier: MIT
// Text indexes of a server: a table of words beside each table, kept by triggers.
#pragma once

#include <string>
#include <string_view>

#include "tavelor/services/engine/text_index.hpp"

namespace tavelor::engine::postgres {

/// What makes an index in a schema, in place of one that is there, and fills it.
std::string textIndexDdl(const TextIndex& index, std::string_view schema);

}  // namespace tavelor::engine::postgres

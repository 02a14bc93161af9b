// SPDX-License-Identifier: MIT
// A database in memory with all tables of the system and a few rows in each.
#pragma once

#include <memory>

#include "tavelor/services/engine/catalogue.hpp"
#include "tavelor/services/engine/engine.hpp"

namespace tavelor::fuzz {

struct Database {
  std::unique_ptr<engine::Session> session;
  std::shared_ptr<const engine::Catalogue> catalogue;
};

/// Made once.
Database& database();

}  // namespace tavelor::fuzz

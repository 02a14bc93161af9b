// SPDX-License-Identifier: MIT
// The tables of a database file.
#pragma once

namespace tavelor::engine {
class Catalogue;
}

namespace tavelor::engine::sqlite {

struct Database;

/// All tables in the order of their creation. Types come back from the declared ones; a word that
/// this library does not write is taken by the engine's own affinity rules.
Catalogue describeTables(Database& database);

}  // namespace tavelor::engine::sqlite

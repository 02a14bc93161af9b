// SPDX-License-Identifier: MIT
// The engine of a PostgreSQL server: one database is a schema of one server database.
#pragma once

#include "tavelor/services/engine/engine.hpp"

namespace tavelor::engine {

/// Lives for ever; may be used by any thread.
///
/// Values are stored as the server's own types, so that any other program reads them: flags as -1
/// and 0, money as numeric with four decimals, dates as timestamps, to the microsecond.
///
/// Sessions that are opened with the same OpenOptions::shared use one line to the server, and their
/// transactions are one: the outermost level of all of them begins it, and the last one that ends
/// keeps it. With OpenOptions::synchronous a committed transaction survives a power cut; without,
/// the last ones may be lost.
const Engine& postgresEngine();

}  // namespace tavelor::engine

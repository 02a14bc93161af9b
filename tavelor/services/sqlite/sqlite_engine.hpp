// SPDX-License-Identifier: MIT
// The embedded engine: one database is one file.
#pragma once

#include "tavelor/services/engine/engine.hpp"

namespace tavelor::engine {

/// Lives for ever; may be used by any thread.
///
/// Values are stored so that any other program reads them: text as UTF-8, whole numbers and flags
/// (-1, 0) as integers, other numbers, money and dates (days since 1899-12-30) as reals, or as
/// integers where they are whole. Beside the file lie its write-ahead log ("-wal") and the index of
/// that ("-shm"), which belong to it.
///
/// With OpenOptions::synchronous a committed transaction survives a power cut; without, the last
/// ones may be lost, but the file stays whole. The death of the process alone never loses any.
const Engine& sqliteEngine();

}  // namespace tavelor::engine

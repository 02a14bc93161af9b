// SPDX-License-Identifier: MIT
// The engine of a test run: the databases of its shops are files, or schemas on a server.
#pragma once

#include <gtest/gtest.h>

#include "tavelor/services/installation.hpp"

namespace tavelor::test {

/// Whether the shops of this run are on the server that TAVELOR_TEST_SERVER tells how to reach, as
/// a line of libpq: when TAVELOR_TEST_ENGINE is "postgresql". Else they are files.
bool runsOnServer();

/// Puts all databases of an installation that is to be made, and its registry, on the engine of
/// this run. On a server they get a database of their own, with what a new installation has in it
/// already; it is taken back at the end of the test.
void putOnEngine(Settings& settings);

/// A database of the server with nothing in it, gone at the end of the test. Only where
/// runsOnServer().
engine::ServerAddress emptyDatabase();

}  // namespace tavelor::test

/// Leaves a test on a server, and says why: what it looks at is there in files only.
#define TAVELOR_ONLY_IN_FILES(reason) \
  if (::tavelor::test::runsOnServer()) GTEST_SKIP() << "not on a server: " << (reason)

// SPDX-License-Identifier: MIT
// Which files an installation lives in.
#include <filesystem>

#include <gtest/gtest.h>

#include "tavelor/services/installation.hpp"
#include "tests/support/engines.hpp"
#include "tests/support/shop.hpp"

namespace tavelor {
namespace {

namespace fs = std::filesystem;

TEST(OwnFiles, AreKnownByAnyNameAndLink) {
  TAVELOR_ONLY_IN_FILES("a server has no files of the installation");
  const test::TemporaryFolder folder;
  const fs::path place = folder.path() / "shop";
  const auto made = Installation::create(place, test::fastSettings());
  for (const char* file :
       {"main.db", "further.db", "registry.db", "tavelor.xml", "fiscal.xml", "main.db-wal",
        "main.db-shm", "registry.db-journal", "documents.db-queue", "rpt/../main.db"}) {
    EXPECT_TRUE(made->isOwnFile((place / file).string())) << file;
  }
  fs::create_symlink(place / "main.db", folder.path() / "link.db");
  EXPECT_TRUE(made->isOwnFile((folder.path() / "link.db").string()));
  for (const char* file : {"rpt/main.db", "main.db.xml", "new.xml", ""}) {
    EXPECT_FALSE(made->isOwnFile((place / file).string())) << file;
  }
}

}  // namespace
}  // namespace tavelor

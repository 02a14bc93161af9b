// SPDX-License-Identifier: MIT
// The server that tests may use: TAVELOR_TEST_SERVER names a database in words of libpq, in which
// they make and drop schemas.
#pragma once

#include <atomic>
#include <cstdint>
#include <cstdlib>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include <gtest/gtest.h>
#include <libpq-fe.h>
#include <unistd.h>

#include "tavelor/platform/error.hpp"
#include "tavelor/services/engine/catalogue.hpp"
#include "tavelor/services/engine/row_store.hpp"
#include "tavelor/services/engine/value.hpp"
#include "tavelor/services/postgres/postgres_engine.hpp"
#include "tests/support/engine.hpp"

namespace tavelor::engine::test {

inline constexpr const char* kNoServer =
    "There is no server to test on: TAVELOR_TEST_SERVER is not set.";

/// Where it is; nothing when there is none.
inline const std::optional<ServerAddress>& testServer() {
  static const std::optional<ServerAddress> address = []() -> std::optional<ServerAddress> {
    const char* const words = std::getenv("TAVELOR_TEST_SERVER");
    if (words == nullptr || *words == '\0') return std::nullopt;
    std::map<std::string, std::string> known;
    PQconninfoOption* const options = PQconninfoParse(words, nullptr);
    for (PQconninfoOption* option = options; option != nullptr && option->keyword != nullptr;
         ++option) {
      if (option->val != nullptr) known[option->keyword] = option->val;
    }
    PQconninfoFree(options);
    ServerAddress server;
    server.hosts = known["host"];
    if (!known["port"].empty()) server.hosts += ":" + known["port"];
    server.database = known["dbname"];
    server.user = known["user"];
    if (!known["password"].empty()) ::setenv("PGPASSWORD", known["password"].c_str(), 1);
    return server;
  }();
  return address;
}

/// A schema of its own, dropped with the object.
class ServerSchema {
 public:
  ServerSchema() {
    static std::atomic<int> count = 0;
    name_ = "test_" + std::to_string(::getpid()) + "_" + std::to_string(++count);
  }
  ServerSchema(const ServerSchema&) = delete;
  ServerSchema& operator=(const ServerSchema&) = delete;
  ~ServerSchema() {
    try {
      open(options())->execute("DROP SCHEMA \"" + name_ + "\" CASCADE");
    } catch (const Error&) {
      // It was never made, or goes with the server.
    }
  }

  const std::string& name() const { return name_; }
  /// A table's name as statements write it.
  std::string table(const std::string& table) const {
    return "\"" + name_ + "\".\"" + table + "\"";
  }
  OpenOptions options(std::shared_ptr<Shared>* shared = nullptr) const {
    OpenOptions options;
    options.server = testServer().value();
    options.schema = name_;
    options.shared = shared;
    options.synchronous = false;
    return options;
  }
  /// Made if it is not there.
  std::unique_ptr<Session> open(std::shared_ptr<Shared>* shared = nullptr) const {
    OpenOptions creating = options(shared);
    creating.create = true;
    return open(creating);
  }
  static std::unique_ptr<Session> open(const OpenOptions& options) {
    return postgresEngine().open(options);
  }

 private:
  std::string name_;
};

/// Skipped where there is no server.
class ServerTest : public testing::Test {
 protected:
  void SetUp() override {
    if (!testServer()) GTEST_SKIP() << kNoServer;
  }
};

/// A session in a schema of its own.
class SessionTest : public ServerTest {
 protected:
  void SetUp() override {
    ServerTest::SetUp();
    if (IsSkipped()) return;
    schema.emplace();
    session = schema->open(&shared);
  }
  void TearDown() override {
    session.reset();
    shared.reset();
    schema.reset();
  }
  /// How often the line is waited for.
  template <typename Action>
  std::int64_t waitsOf(Action&& action) {
    const std::int64_t before = session->waits();
    action();
    return session->waits() - before;
  }

  std::optional<ServerSchema> schema;
  std::shared_ptr<Shared> shared;
  std::unique_ptr<Session> session;
};

}  // namespace tavelor::engine::test

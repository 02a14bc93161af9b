// SPDX-License-Identifier: MIT
// A database of its own on the server of a measurement, and the floor there: libpq's own calls.
#pragma once

#include <initializer_list>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include <libpq-fe.h>

#include "tavelor/services/engine/server_address.hpp"
#include "tavelor/services/installation.hpp"
#include "tests/support/temporary_folder.hpp"

namespace tavelor::bench {

/// How the server is reached: TAVELOR_BENCH_SERVER, words of libpq. "" where there is none.
std::string benchServer();

/// A line to a server, with what a careful programmer does over libpq: texts as values, binary
/// where rows are many.
class ServerLine {
 public:
  using Result = std::unique_ptr<PGresult, decltype(&PQclear)>;

  /// Raises std::runtime_error when the server does not take us, as all members do for errors.
  ServerLine(const std::string& words, const std::string& database);

  PGconn* handle() const { return line_.get(); }
  /// One or several statements; the first column of the first row of the last one.
  std::string run(const std::string& statements);
  void prepare(const std::string& name, const std::string& text);
  /// Waits for it.
  Result execute(const char* name, std::initializer_list<const char*> values, int format = 0);
  /// Between pipeline() and settle() nothing is waited for; settle() gives the first value of the
  /// last row that came.
  void pipeline();
  void send(const char* name, std::initializer_list<const char*> values);
  std::string settle();
  void endPipeline();

 private:
  [[noreturn]] void fail() const;
  Result checked(PGresult* result) const;

  std::unique_ptr<PGconn, decltype(&PQfinish)> line_;
};

/// Made on the server for one measurement, and dropped behind it.
class BenchDatabase {
 public:
  explicit BenchDatabase(std::string words);
  ~BenchDatabase();
  BenchDatabase(const BenchDatabase&) = delete;
  BenchDatabase& operator=(const BenchDatabase&) = delete;

  const std::string& name() const { return name_; }
  ServerLine line() const { return {words_, name_}; }
  engine::ServerAddress address() const;

 private:
  static std::string newName();

  std::string words_;
  std::string name_;
};

/// An installation in a database of its own.
class ServerShop {
 public:
  ServerShop()
      : database_(benchServer()),
        installation_(
            Installation::create(folder_.path() / "shop", onServer({}, database_.address()))) {}

  const BenchDatabase& database() const { return database_; }
  const std::shared_ptr<Installation>& installation() const { return installation_; }
  /// The same shop, found over that port of this computer.
  std::shared_ptr<Installation> over(int port) const {
    engine::ServerAddress address = database_.address();
    address.hosts = "127.0.0.1:" + std::to_string(port);
    return Installation::create(folder_.path() / "far", onServer({}, address));
  }

 private:
  BenchDatabase database_;
  test::TemporaryFolder folder_;
  std::shared_ptr<Installation> installation_;
};

}  // namespace tavelor::bench

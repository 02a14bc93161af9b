// SPDX-License-Identifier: MIT
// One connection to a server in pipeline mode: what is put on it goes without waiting, and its
// results come in the same order.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include <unistd.h>

#include "tavelor/services/postgres/codecs.hpp"
#include "tavelor/services/postgres/connect.hpp"

namespace tavelor::engine::postgres {

/// Who takes rows as they come.
class RowSink {
 public:
  RowSink() = default;
  RowSink(const RowSink&) = delete;
  RowSink& operator=(const RowSink&) = delete;
  virtual ~RowSink() = default;
  /// Rows of a result, or none: the last call shows the columns only.
  virtual void take(const PGresult& rows) noexcept = 0;
};

/// Every function that raises leaves the wire unusable: it is to be thrown away then. Errors:
/// kConnectionLost when the connection is gone, kUnspecified when memory ran out.
class Wire {
 public:
  explicit Wire(ConnectionHandle connection);
  Wire(const Wire&) = delete;
  Wire& operator=(const Wire&) = delete;
  /// In a process that was forked off it leaves the connection to the parent.
  ~Wire();

  /// Whether it was made by this process.
  bool isOurs() const { return process_ == ::getpid(); }
  /// Whether the other end has hung up while nothing was awaited.
  bool wasCut();

  /// Each of these has one result.
  void putText(const std::string& text);
  void putPrepare(const std::string& name, const std::string& text, const std::vector<Oid>& types);
  void putRun(const std::string& name, const Arguments& arguments);
  /// What failed before it no longer keeps from running what comes behind it.
  void putSync();
  /// Sends all that was put, reading meanwhile, so that neither end waits for the other.
  void flush();

  /// The next result, in the order in which they were put. Waits for it.
  ResultHandle next();
  /// The same of a statement whose rows are taken one by one while the server still makes the next.
  ResultHandle nextRows(RowSink& sink);
  /// Runs one or several statements, when no result is outstanding: the error, or the last result.
  ResultHandle run(const std::string& text);

  /// Whether somebody has told of a change of tables since it was asked last.
  bool takeNotifications();
  /// Of the server, when no result is outstanding.
  bool isInTransaction() const { return PQtransactionStatus(connection_.get()) != PQTRANS_IDLE; }

 private:
  [[noreturn]] void fail() const;
  void must(int isDone) const {
    if (isDone == 0) fail();
  }
  /// Behind a result comes an end.
  void skipEnd();
  /// Raises for a result that ends the connection.
  void mustBeAlive(const PGresult* result) const;

  ConnectionHandle connection_;
  pid_t process_ = ::getpid();
};

}  // namespace tavelor::engine::postgres

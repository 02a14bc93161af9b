// SPDX-License-Identifier: MIT
// Finds a server that takes us.
#pragma once

#include <cstdint>
#include <memory>
#include <string_view>

#include <libpq-fe.h>

#include "tavelor/services/engine/engine.hpp"

namespace tavelor::engine::postgres {

struct ConnectionCloser {
  void operator()(PGconn* connection) const { PQfinish(connection); }
};
using ConnectionHandle = std::unique_ptr<PGconn, ConnectionCloser>;

struct ResultClearer {
  void operator()(PGresult* result) const { PQclear(result); }
};
using ResultHandle = std::unique_ptr<PGresult, ResultClearer>;

/// What a line is opened with. Sessions of one apartment that want the same share one.
struct LineSettings {
  ServerAddress server;
  bool readOnly = false;
  bool synchronous = true;
  int busyTimeoutMs = 0;
  std::shared_ptr<const Locale> locale;  // never null
  friend bool operator==(const LineSettings&, const LineSettings&) = default;
};

/// Connects to the first of the hosts that takes us and, where there are several and something may
/// be written, takes writes; then sets what a session has to be like. Raises as Engine::open()
/// tells, with what every host answered.
ConnectionHandle connect(const LineSettings& settings);

/// What libpq says of a host without an SQLSTATE: kPathAccess where its certificate or ours is
/// refused or TLS is not to be had, which no other try mends; else kConnectionLost.
std::int32_t numberOfUnreached(std::string_view message);
/// Raises kUnspecified for a server that is too old: 120017 is version 12.17.
void mustBeNewEnough(int version, std::string_view database);

/// "main"."Bancos"'s parts: a name in double quotes.
std::string quotedName(std::string_view name);
/// A text between single quotes.
std::string quotedText(std::string_view text);

}  // namespace tavelor::engine::postgres

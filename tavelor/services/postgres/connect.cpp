// SPDX-License-Identifier: MIT
// Finds a server that takes us.
#include "tavelor/services/postgres/connect.hpp"

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <cstring>
#include <string>
#include <utility>
#include <vector>

#include <fmt/format.h>
#include <poll.h>

#include "tavelor/platform/error.hpp"
#include "tavelor/platform/locale.hpp"
#include "tavelor/services/postgres/errors.hpp"
#include "tavelor/services/postgres/functions.hpp"

namespace tavelor::engine::postgres {

namespace {

using std::chrono::milliseconds;
using std::chrono::steady_clock;

constexpr int kOldestServer = 130000;

// In seconds, but for the last: when a line without traffic is asked whether its other end lives,
// how long each answer is waited for, how many may be missing, and how long what was sent may stay
// without a sign.
constexpr const char* kKeepaliveIdle = "10";
constexpr const char* kKeepaliveInterval = "5";
constexpr const char* kKeepaliveCount = "3";
constexpr const char* kUnansweredMs = "25000";

constexpr std::string_view kWrongPassword = "28P01";
constexpr std::string_view kWhereItIs =
    "Passwords are looked for in PGPASSWORD, then in the password file";

struct Host {
  std::string name;  // or the folder of a local socket; "" for what libpq takes by itself
  std::string port;
};

/// Parts "db1:5432", "[::1]:5432" and "/run/postgresql:5433".
Host hostOf(std::string_view text) {
  std::string_view port;
  const std::size_t bracket = text.starts_with('[') ? text.find(']') : std::string_view::npos;
  const std::size_t colon = text.rfind(':');
  const bool isPlainAddress = bracket == std::string_view::npos && !text.starts_with('/') &&
                              std::count(text.begin(), text.end(), ':') > 1;
  if (colon != std::string_view::npos && !isPlainAddress &&
      (bracket == std::string_view::npos || colon > bracket)) {
    port = text.substr(colon + 1);
    text = text.substr(0, colon);
  }
  if (bracket != std::string_view::npos) text = text.substr(1, bracket - 1);
  return {std::string(text), std::string(port)};
}

std::vector<Host> hostsOf(std::string_view list) {
  std::vector<Host> hosts;
  for (std::size_t begin = 0; begin <= list.size();) {
    const std::size_t end = std::min(list.find(',', begin), list.size());
    std::string_view one = list.substr(begin, end - begin);
    while (one.starts_with(' ')) one.remove_prefix(1);
    while (one.ends_with(' ')) one.remove_suffix(1);
    hosts.push_back(hostOf(one));
    begin = end + 1;
  }
  return hosts;
}

std::string placeOf(const Host& host) {
  std::string place = host.name.empty() ? "the usual place" : host.name;
  return host.port.empty() ? place : place + ":" + host.port;
}

/// Why a host has not taken us.
struct Refusal {
  std::int32_t number = errors::kConnectionLost;
  std::string sqlState;
  std::string message;
};

/// Takes "FATAL:  28P01: password authentication failed\nLOCATION: ..." apart: only the verbose
/// message tells the SQLSTATE of a connection that was refused.
Refusal refusalOf(PGconn* connection) {
  const std::string_view message = PQerrorMessage(connection);
  constexpr std::string_view kBeforeState = ":  ";
  constexpr std::size_t kStateLength = 5;
  for (std::size_t at = message.find(kBeforeState); at != std::string_view::npos;
       at = message.find(kBeforeState, at + 1)) {
    const std::string_view rest = message.substr(at + kBeforeState.size());
    const std::string_view state = rest.substr(0, kStateLength);
    if (nativeCodeOf(state) == 0 || rest.substr(kStateLength, 2) != ": ") continue;
    const std::string_view told = rest.substr(kStateLength + 2);
    std::string line = oneLine(told.substr(0, told.find('\n')));
    if (state == kWrongPassword) line.append(". ").append(kWhereItIs);
    return {numberOf(state), std::string(state), std::move(line)};
  }
  Refusal refusal{numberOfUnreached(message), {}, oneLine(message)};
  if (PQconnectionNeedsPassword(connection) != 0) {
    refusal = {errors::kPathAccess, {}, std::string("it wants a password. ").append(kWhereItIs)};
  }
  return refusal;
}

/// Waits until the connection stands, is refused, or took too long.
bool isEstablished(PGconn* connection, steady_clock::time_point deadline) {
  PostgresPollingStatusType wants = PGRES_POLLING_WRITING;
  while (wants != PGRES_POLLING_OK) {
    if (wants == PGRES_POLLING_FAILED) return false;
    const auto left = std::chrono::ceil<milliseconds>(deadline - steady_clock::now()).count();
    if (left <= 0) return false;
    pollfd socket{PQsocket(connection),
                  static_cast<short>(wants == PGRES_POLLING_READING ? POLLIN : POLLOUT), 0};
    const int ready = ::poll(&socket, 1, static_cast<int>(left));
    if (ready == 0 || (ready < 0 && errno == EINTR)) continue;
    wants = PQconnectPoll(connection);
  }
  return true;
}

/// Null when the host has not taken us; why stands in `refusal`.
ConnectionHandle tryHost(const ServerAddress& server, const Host& host, bool mustTakeWrites,
                         Refusal& refusal) {
  const std::vector<std::pair<const char*, const char*>> words{
      {"host", host.name.c_str()},
      {"port", host.port.c_str()},
      {"dbname", server.database.c_str()},
      {"user", server.user.c_str()},
      {"passfile", server.passwordFile.c_str()},
      {"sslmode", server.tls.c_str()},
      {"sslrootcert", server.rootCertificate.c_str()},
      {"sslcert", server.certificate.c_str()},
      {"sslkey", server.key.c_str()},
      {"target_session_attrs", mustTakeWrites ? "read-write" : "any"},
      {"fallback_application_name", "tavelor"},
      {"client_encoding", "UTF8"},
      {"keepalives", "1"},
      {"keepalives_idle", kKeepaliveIdle},
      {"keepalives_interval", kKeepaliveInterval},
      {"keepalives_count", kKeepaliveCount},
      {"tcp_user_timeout", kUnansweredMs},
  };
  std::vector<const char*> names;
  std::vector<const char*> values;
  for (const auto& [name, value] : words) {
    names.push_back(name);
    values.push_back(value);
  }
  names.push_back(nullptr);
  values.push_back(nullptr);
  ConnectionHandle connection(PQconnectStartParams(names.data(), values.data(), 0));
  if (!connection) raise(errors::kUnspecified, kSource, "There is not enough memory for a line");
  PQsetErrorVerbosity(connection.get(), PQERRORS_VERBOSE);
  PQsetNoticeProcessor(
      connection.get(), [](void*, const char*) {}, nullptr);
  const auto deadline =
      steady_clock::now() + std::chrono::seconds(std::max(1, server.connectTimeoutS));
  if (PQstatus(connection.get()) != CONNECTION_BAD && isEstablished(connection.get(), deadline)) {
    PQsetErrorVerbosity(connection.get(), PQERRORS_DEFAULT);
    return connection;
  }
  if (PQstatus(connection.get()) == CONNECTION_BAD) {
    refusal = refusalOf(connection.get());
  } else {
    refusal = {errors::kConnectionLost,
               {},
               fmt::format("no answer within {} s", std::max(1, server.connectTimeoutS))};
  }
  return nullptr;
}

/// What a server says about us counts more than that another one is not there.
[[noreturn]] void raiseRefusals(const ServerAddress& server, const std::vector<Host>& hosts,
                                const std::vector<Refusal>& refusals) {
  const auto telling = std::find_if(refusals.begin(), refusals.end(), [](const Refusal& refusal) {
    return refusal.number != errors::kConnectionLost;
  });
  const Refusal& main = telling == refusals.end() ? refusals.front() : *telling;
  std::string text;
  for (std::size_t i = 0; i < hosts.size(); ++i) {
    text += fmt::format("{}{}: {}", i == 0 ? "" : "; ", placeOf(hosts[i]), refusals[i].message);
  }
  Error error(
      main.number, std::string(kSource),
      fmt::format("The database {} on a server can't be opened: {}.", server.database, text));
  throw error.withNativeCode(nativeCodeOf(main.sqlState));
}

ConnectionHandle takenByHost(const LineSettings& settings) {
  const ServerAddress& server = settings.server;
  for (const std::string* text :
       {&server.hosts, &server.database, &server.user, &server.passwordFile,
        &server.rootCertificate, &server.certificate, &server.key}) {
    if (text->find('\0') != std::string::npos) {
      raise(errors::kFileNotFound, kSource, "The address of the server holds a NUL character");
    }
  }
  if (server.database.empty()) {
    throw Error(errors::kFileNotFound, std::string(kSource),
                "The database on the server has no name.");
  }
  const std::vector<Host> hosts = hostsOf(server.hosts);
  std::vector<Refusal> refusals(hosts.size());
  for (std::size_t i = 0; i < hosts.size(); ++i) {
    ConnectionHandle connection =
        tryHost(server, hosts[i], hosts.size() > 1 && !settings.readOnly, refusals[i]);
    if (connection) return connection;
  }
  raiseRefusals(server, hosts, refusals);
}

/// Runs settings of ours; all rows are dropped but the last's.
ResultHandle set(PGconn* connection, const std::string& text) {
  ResultHandle result(PQexec(connection, text.c_str()));
  const ExecStatusType status = PQresultStatus(result.get());
  if (status == PGRES_COMMAND_OK || status == PGRES_TUPLES_OK) return result;
  if (result) throw errorOf(*result, text);
  throw Error(errors::kConnectionLost, std::string(kSource), oneLine(PQerrorMessage(connection)));
}

/// A machine that is gone without a word is noticed within half a minute, at both ends: until then
/// what it was doing keeps its locks.
std::string keepaliveSettings() {
  return fmt::format(
      "SET tcp_keepalives_idle = {}; SET tcp_keepalives_interval = {}; "
      "SET tcp_keepalives_count = {}; SET tcp_user_timeout = {}; ",
      kKeepaliveIdle, kKeepaliveInterval, kKeepaliveCount, kUnansweredMs);
}

std::string settingsText(const LineSettings& settings) {
  // 0 would be to wait for ever.
  std::string text =
      keepaliveSettings() +
      fmt::format(
          "SET search_path = tavelor, pg_catalog; SET datestyle = 'ISO'; "
          "SET intervalstyle = 'postgres'; SET extra_float_digits = 1; SET lock_timeout = {}; "
          "SET standard_conforming_strings = on; SET timezone = 'UTC'; "
          // To compile a statement to machine code takes longer than any of ours runs.
          "SET jit = off; ",
          std::max(1, settings.busyTimeoutMs));
  if (!settings.synchronous) text += "SET synchronous_commit = off; ";
  // Who only reads and begins a transaction wants one state of the data.
  if (settings.readOnly) {
    text +=
        "SET default_transaction_read_only = on; "
        "SET default_transaction_isolation = 'repeatable read'; ";
  }
  return text + localeSettings(*settings.locale) + "; SELECT pg_is_in_recovery()";
}

}  // namespace

std::int32_t numberOfUnreached(std::string_view message) {
  const auto tells = [&](std::string_view word) {
    return message.find(word) != std::string_view::npos;
  };
  // A server that dies while it shakes hands is gone like any other.
  if (tells("SYSCALL") || tells("unexpectedly")) return errors::kConnectionLost;
  return tells("SSL") || tells("certificate") ? errors::kPathAccess : errors::kConnectionLost;
}

void mustBeNewEnough(int version, std::string_view database) {
  if (version >= kOldestServer) return;
  constexpr int kMajor = 10000;
  constexpr int kMinor = 100;  // of versions before 10, which have one
  const int small = version % kMajor;
  const std::string told = version / kMajor < 10 ? fmt::format("{}.{}.{}", version / kMajor,
                                                               small / kMinor, small % kMinor)
                                                 : fmt::format("{}.{}", version / kMajor, small);
  throw Error(errors::kUnspecified, std::string(kSource),
              fmt::format("The server of the database {} is version {}; version {} or later is "
                          "needed: have it updated, or name another server.",
                          database, told, kOldestServer / kMajor));
}

ConnectionHandle connect(const LineSettings& settings) {
  ConnectionHandle connection = takenByHost(settings);
  mustBeNewEnough(PQserverVersion(connection.get()), settings.server.database);
  const ResultHandle standby = set(connection.get(), settingsText(settings));
  // A standby has no listeners, and nothing that may be written either.
  if (std::string_view(PQgetvalue(standby.get(), 0, 0)) == "f") {
    set(connection.get(), "LISTEN tavelor");
  }
  return connection;
}

std::string quotedName(std::string_view name) {
  std::string quoted = "\"";
  for (const char c : name) quoted.append(c == '"' ? 2 : 1, c);
  return quoted += '"';
}

std::string quotedText(std::string_view text) {
  std::string quoted = "'";
  for (const char c : text) quoted.append(c == '\'' ? 2 : 1, c);
  return quoted += '\'';
}

}  // namespace tavelor::engine::postgres

// SPDX-License-Identifier: MIT
// One connection to a server in pipeline mode.
#include "tavelor/services/postgres/wire.hpp"

#include <cerrno>

#include <fcntl.h>
#include <fmt/format.h>
#include <poll.h>

#include "tavelor/platform/error.hpp"
#include "tavelor/services/postgres/errors.hpp"

namespace tavelor::engine::postgres {

namespace {

/// What the socket is ready for, of `events`. 0 after the wait; a signal ends it too.
int readyFor(int socket, short events, int waitMs) {
  pollfd one{socket, events, 0};
  return ::poll(&one, 1, waitMs) > 0 ? one.revents : 0;
}

}  // namespace

Wire::Wire(ConnectionHandle connection) : connection_(std::move(connection)) {
  must(PQsetnonblocking(connection_.get(), 1) == 0 ? 1 : 0);
  must(PQenterPipelineMode(connection_.get()));
}

Wire::~Wire() {
  if (isOurs()) return;
  // The farewell would end the parent's session: it goes nowhere.
  const int nowhere = ::open("/dev/null", O_RDWR | O_CLOEXEC);
  if (nowhere < 0) {
    static_cast<void>(connection_.release());
    return;
  }
  ::dup2(nowhere, PQsocket(connection_.get()));
  ::close(nowhere);
}

bool Wire::wasCut() {
  PGconn* const connection = connection_.get();
  while (PQstatus(connection) == CONNECTION_OK && readyFor(PQsocket(connection), POLLIN, 0) != 0) {
    if (PQconsumeInput(connection) == 0) return true;
  }
  return PQstatus(connection) != CONNECTION_OK;
}

void Wire::putText(const std::string& text) {
  must(
      PQsendQueryParams(connection_.get(), text.c_str(), 0, nullptr, nullptr, nullptr, nullptr, 1));
}

void Wire::putPrepare(const std::string& name, const std::string& text,
                      const std::vector<Oid>& types) {
  must(PQsendPrepare(connection_.get(), name.c_str(), text.c_str(), static_cast<int>(types.size()),
                     types.data()));
}

void Wire::putRun(const std::string& name, const Arguments& arguments) {
  must(PQsendQueryPrepared(connection_.get(), name.c_str(), arguments.count(), arguments.values(),
                           arguments.lengths(), arguments.formats(), 1));
}

void Wire::putSync() {
  must(PQpipelineSync(connection_.get()));
}

void Wire::flush() {
  PGconn* const connection = connection_.get();
  int left = PQflush(connection);
  while (left == 1) {
    if ((readyFor(PQsocket(connection), POLLIN | POLLOUT, -1) & POLLIN) != 0) {
      must(PQconsumeInput(connection));
    }
    left = PQflush(connection);
  }
  if (left != 0) fail();
}

ResultHandle Wire::next() {
  PGconn* const connection = connection_.get();
  ResultHandle result(PQgetResult(connection));
  mustBeAlive(result.get());
  if (PQresultStatus(result.get()) == PGRES_PIPELINE_SYNC) return result;
  skipEnd();
  return result;
}

ResultHandle Wire::nextRows(RowSink& sink) {
  PGconn* const connection = connection_.get();
  PQsetSingleRowMode(connection);  // else they come all at once
  while (true) {
    ResultHandle result(PQgetResult(connection));
    mustBeAlive(result.get());
    const ExecStatusType status = PQresultStatus(result.get());
    if (status == PGRES_SINGLE_TUPLE || status == PGRES_TUPLES_OK) sink.take(*result);
    if (status == PGRES_SINGLE_TUPLE) continue;
    skipEnd();
    return result;
  }
}

void Wire::skipEnd() {
  while (ResultHandle(PQgetResult(connection_.get())) &&
         PQstatus(connection_.get()) == CONNECTION_OK) {
  }
}

ResultHandle Wire::run(const std::string& text) {
  PGconn* const connection = connection_.get();
  must(PQexitPipelineMode(connection));
  must(PQsendQuery(connection, text.c_str()));
  flush();
  ResultHandle last;
  while (ResultHandle result{PQgetResult(connection)}) {
    mustBeAlive(result.get());
    if (PQresultStatus(last.get()) != PGRES_FATAL_ERROR || !last) last = std::move(result);
    if (PQstatus(connection) != CONNECTION_OK) break;
  }
  mustBeAlive(last.get());
  must(PQenterPipelineMode(connection));
  return last;
}

bool Wire::takeNotifications() {
  bool any = false;
  while (PGnotify* const notification = PQnotifies(connection_.get())) {
    PQfreemem(notification);
    any = true;
  }
  return any;
}

void Wire::mustBeAlive(const PGresult* result) const {
  if (result == nullptr) fail();
  if (PQresultStatus(result) != PGRES_FATAL_ERROR) return;
  const std::string_view state = sqlStateOf(*result);
  const char* const severity = PQresultErrorField(result, PG_DIAG_SEVERITY_NONLOCALIZED);
  const std::string_view grave = severity == nullptr ? "" : severity;
  if (grave == "FATAL" || grave == "PANIC") {
    Error error(errors::kConnectionLost, std::string(kSource),
                fmt::format("The server has ended the line: {}.",
                            oneLine(PQresultErrorField(result, PG_DIAG_MESSAGE_PRIMARY))));
    throw error.withNativeCode(nativeCodeOf(state));
  }
  if (state.empty()) fail();
}

void Wire::fail() const {
  const std::string message = oneLine(PQerrorMessage(connection_.get()));
  if (PQstatus(connection_.get()) == CONNECTION_OK) {
    throw Error(errors::kUnspecified, std::string(kSource),
                fmt::format("A statement can't be sent, or its answer not be taken: {}.", message));
  }
  throw Error(errors::kConnectionLost, std::string(kSource),
              fmt::format("The line to the server is lost: {}.", message));
}

}  // namespace tavelor::engine::postgres

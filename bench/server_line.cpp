// SPDX-License-Identifier: MIT
// The server of a measurement.
#include <atomic>
#include <cstdlib>
#include <map>
#include <stdexcept>

#include <unistd.h>

#include "bench/server.hpp"

namespace tavelor::bench {

std::string benchServer() {
  const char* const words = std::getenv("TAVELOR_BENCH_SERVER");
  return words == nullptr ? "" : words;
}

ServerLine::ServerLine(const std::string& words, const std::string& database)
    : line_(PQconnectdb((words + " dbname=" + database).c_str()), &PQfinish) {
  if (PQstatus(line_.get()) != CONNECTION_OK) fail();
  PQsetNoticeProcessor(
      line_.get(), [](void*, const char*) {}, nullptr);
}

void ServerLine::fail() const {
  throw std::runtime_error(std::string("the server: ") + PQerrorMessage(line_.get()));
}

ServerLine::Result ServerLine::checked(PGresult* result) const {
  Result kept(result, &PQclear);
  const ExecStatusType status = PQresultStatus(result);
  if (status == PGRES_COMMAND_OK || status == PGRES_TUPLES_OK || status == PGRES_COPY_IN ||
      status == PGRES_PIPELINE_SYNC) {
    return kept;
  }
  fail();
}

std::string ServerLine::run(const std::string& statements) {
  const Result result = checked(PQexec(line_.get(), statements.c_str()));
  return PQntuples(result.get()) == 0 ? "" : PQgetvalue(result.get(), 0, 0);
}

void ServerLine::prepare(const std::string& name, const std::string& text) {
  checked(PQprepare(line_.get(), name.c_str(), text.c_str(), 0, nullptr));
}

ServerLine::Result ServerLine::execute(const char* name, std::initializer_list<const char*> values,
                                       int format) {
  return checked(PQexecPrepared(line_.get(), name, static_cast<int>(values.size()),
                                std::data(values), nullptr, nullptr, format));
}

void ServerLine::pipeline() {
  if (PQenterPipelineMode(line_.get()) == 0) fail();
}

void ServerLine::send(const char* name, std::initializer_list<const char*> values) {
  if (PQsendQueryPrepared(line_.get(), name, static_cast<int>(values.size()), std::data(values),
                          nullptr, nullptr, 0) == 0) {
    fail();
  }
}

std::string ServerLine::settle() {
  if (PQpipelineSync(line_.get()) == 0) fail();
  std::string value;
  while (true) {
    PGresult* const each = PQgetResult(line_.get());
    if (each == nullptr) continue;  // behind each statement
    const Result result = checked(each);
    if (PQresultStatus(each) == PGRES_PIPELINE_SYNC) return value;
    if (PQntuples(each) > 0) value = PQgetvalue(each, 0, 0);
  }
}

void ServerLine::endPipeline() {
  if (PQexitPipelineMode(line_.get()) == 0) fail();
}

BenchDatabase::BenchDatabase(std::string words) : words_(std::move(words)), name_(newName()) {
  ServerLine(words_, "postgres").run("CREATE DATABASE " + name_ + " TEMPLATE template0");
}

std::string BenchDatabase::newName() {
  static std::atomic<int> made = 0;
  return "bench_" + std::to_string(::getpid()) + "_" + std::to_string(++made);
}

BenchDatabase::~BenchDatabase() {
  try {
    ServerLine(words_, "postgres").run("DROP DATABASE IF EXISTS " + name_ + " WITH (FORCE)");
  } catch (const std::runtime_error&) {
    // It goes with the server.
  }
}

engine::ServerAddress BenchDatabase::address() const {
  std::map<std::string, std::string> known;
  PQconninfoOption* const options = PQconninfoParse(words_.c_str(), nullptr);
  for (const PQconninfoOption* each = options; each != nullptr && each->keyword != nullptr;
       ++each) {
    if (each->val != nullptr) known[each->keyword] = each->val;
  }
  PQconninfoFree(options);
  engine::ServerAddress address;
  address.hosts = known["host"] + (known["port"].empty() ? "" : ":" + known["port"]);
  address.user = known["user"];
  address.passwordFile = known["passfile"];
  address.database = name_;
  return address;
}

}  // namespace tavelor::bench

// SPDX-License-Identifier: MIT
// A connection to one database of an installation.
#include "tavelor/services/recordset/connection.hpp"

#include "tavelor/platform/error.hpp"
#include "tavelor/platform/locale.hpp"
#include "tavelor/platform/statement.hpp"
#include "tavelor/services/dialect/plan_cache.hpp"
#include "tavelor/services/engine/engine.hpp"
#include "tavelor/services/recordset/connection_trace.hpp"
#include "tavelor/services/recordset/recordset.hpp"
#include "tavelor/services/recordset/recordset_store.hpp"

namespace tavelor {

namespace {
constexpr std::string_view kSource = "Connection";
}

ConnectionPtr Connection::open(ConnectionSettings settings) {
  if (!settings.lease) raise(errors::kInvalidConnection, kSource, "There is no session");
  auto connection = std::make_shared<Connection>();
  connection->lease_ = std::move(settings.lease);
  connection->locale_ = settings.locale ? settings.locale : Locale::spanish();
  connection->connectionString_ = std::move(settings.connectionString);
  connection->trace_ = std::move(settings.trace);
  connection->selector_ = settings.selector;
  return connection;
}

Connection::~Connection() {
  rollbackAll();
}

SessionLease& Connection::lease() const {
  if (!lease_) raise(errors::kObjectClosed, kSource);
  return *lease_;
}

int Connection::BeginTrans() {
  return lease().session().begin();
}

void Connection::CommitTrans() {
  lease().session().commit();
}

void Connection::RollbackTrans() {
  lease().session().rollback();
}

int Connection::transactionLevel() const {
  return lease_ ? lease_->session().depth() : 0;
}

void Connection::Close() {
  const engine::Session& session = lease().session();
  session.mustNotBeLost();
  if (session.depth() > 0) {
    raise(errors::kInTransaction, kSource,
          "The connection cannot be closed while a transaction is open");
  }
  const std::shared_ptr<Connection> keep = weak_from_this().lock();
  while (firstRecordset_ != nullptr) firstRecordset_->detach();
  lease_.reset();
}

std::int64_t Connection::Execute(const Statement& statement) {
  SessionLease& open = lease();
  return traced([&] { return statement.text(); }, [&] { return open.plans().run(statement); });
}

std::optional<Variant> Connection::firstValue(const Statement& statement,
                                              std::string_view column) const {
  const std::shared_ptr<const RecordsetStore> store = Recordset::fetch(statement, *this, 1);
  if (store->rows().rows() == 0) return std::nullopt;
  return store->baseValue(0, store->schema().require(column, kSource));
}

bool Connection::anyRow(const Statement& statement) const {
  return Recordset::fetch(statement, *this, 1)->rows().rows() > 0;
}

void Connection::rollbackAll() noexcept {
  if (!lease_) return;
  try {
    while (lease_->session().depth() > 0) lease_->session().rollback();
  } catch (const Error&) {
    // The session is beyond use; the engine rolls back when it is closed.
  }
}

}  // namespace tavelor

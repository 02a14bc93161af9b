// SPDX-License-Identifier: MIT
// A connection to one database of an installation.
#include "tavelor/services/recordset/connection.hpp"

#include "tavelor/platform/error.hpp"
#include "tavelor/platform/locale.hpp"
#include "tavelor/platform/statement.hpp"
#include "tavelor/platform/utf8.hpp"
#include "tavelor/services/dialect/plan_cache.hpp"
#include "tavelor/services/engine/engine.hpp"
#include "tavelor/services/engine/text_index.hpp"
#include "tavelor/services/recordset/connection_trace.hpp"
#include "tavelor/services/recordset/recordset_parts.hpp"
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
  while (firstRecordset_ != nullptr) firstRecordset_->close();
  lease_.reset();
}

std::int64_t Connection::Execute(const Statement& statement) {
  SessionLease& open = lease();
  return traced([&] { return statement.text(); }, [&] { return open.plans().run(statement); });
}

void Connection::Send(const Statement& statement) {
  SessionLease& open = lease();
  traced([&] { return statement.text(); }, [&] { return open.plans().send(statement); });
}

std::vector<engine::TextFound> Connection::findText(std::string_view table,
                                                    std::string_view question,
                                                    std::size_t most) const {
  if (State() == ObjectState::kClosed) raise(errors::kInvalidConnection, kRecordsetSource);
  auto* const finder = dynamic_cast<engine::TextSearch*>(&lease().readingPlans().session());
  if (finder == nullptr) {
    raise(errors::kNotSupported, kSource, "The engine keeps no text indexes.");
  }
  // More than anybody types would only be cut into words in vain.
  constexpr std::size_t kLongest = 1024;
  std::string clean;
  for (std::size_t at = 0; at < question.size() && clean.size() < kLongest;) {
    const utf8::Character character = utf8::decode(question, at);
    const bool isText = character.code >= ' ' && character.code < utf8::kInvalidBase;
    clean += isText ? question.substr(at, character.size) : std::string_view(" ");
    at += character.size;
  }
  return finder->findText(table, clean, most);
}

void Connection::absorbTexts() const {
  if (State() == ObjectState::kClosed) raise(errors::kInvalidConnection, kRecordsetSource);
  if (auto* const keeper = dynamic_cast<engine::TextSearch*>(&lease().session())) {
    keeper->absorbTexts();
  }
}

void Connection::HoldNumbersOf(std::string_view table) {
  lease().session().holdNumbersOf(table);
}

std::int64_t Connection::waits() const {
  return lease_ ? lease_->session().waits() : 0;
}

std::shared_ptr<RecordsetStore> Connection::fetch(const Statement& statement,
                                                  std::size_t most) const {
  if (State() == ObjectState::kClosed) raise(errors::kInvalidConnection, kRecordsetSource);
  std::shared_ptr<RecordsetStore> store;
  traced([&] { return statement.text(); },
         [&] {
           dialect::PlanCache& plans = lease().readingPlans();
           do {
             store = std::make_shared<RecordsetStore>(RecordsetSchema{plans.plan(statement), {}},
                                                      locale());
           } while (!plans.fetch(statement, store->rows(), most));
           return static_cast<std::int64_t>(store->rows().rows());
         });
  store->statement = statement;
  return store;
}

std::optional<Variant> Connection::firstValue(const Statement& statement,
                                              std::string_view column) const {
  const std::shared_ptr<const RecordsetStore> store = fetch(statement, 1);
  if (store->rows().rows() == 0) return std::nullopt;
  return store->baseValue(0, store->schema().require(column, kSource));
}

bool Connection::anyRow(const Statement& statement) const {
  return fetch(statement, 1)->rows().rows() > 0;
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

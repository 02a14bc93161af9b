// SPDX-License-Identifier: MIT
// Opening, closing and sharing of record sets.
#include "tavelor/services/recordset/recordset.hpp"

#include "tavelor/services/dialect/plan_cache.hpp"
#include "tavelor/services/engine/engine.hpp"
#include "tavelor/services/recordset/connection_trace.hpp"
#include "tavelor/services/recordset/criteria.hpp"
#include "tavelor/services/recordset/recordset_internal.hpp"
#include "tavelor/services/recordset/sort.hpp"

namespace tavelor {

Recordset::Recordset() = default;

Recordset::~Recordset() {
  detach();
}

RecordsetStore& Recordset::opened() const {
  if (!store_) raise(errors::kObjectClosed, kRecordsetSource);
  return *store_;
}

const RecordsetSchema& Recordset::schema() const {
  if (store_) return store_->schema();
  if (fabric_) return fabric_->schema;
  raise(errors::kObjectClosed, kRecordsetSource);
}

ObjectState Recordset::State() const {
  return store_ ? ObjectState::kOpen : ObjectState::kClosed;
}

std::string Recordset::Source() const {
  return store_ ? store_->statement.text() : std::string();
}

// ---- Sharing

/// After listeners were told: rows that were settled before are rows of this store still.
void Recordset::requireSame(const std::shared_ptr<RecordsetStore>& store) const {
  if (store_ != store) {
    raise(errors::kNotAllowedInContext, kRecordsetSource, "A listener closed the set");
  }
}

void Recordset::attach(std::shared_ptr<RecordsetStore> store) {
  store_ = std::move(store);
  nextOnStore_ = store_->firstSet;
  store_->firstSet = this;
}

void Recordset::leaveStore() noexcept {
  if (!store_) return;
  // A row being added was seen by this set only and goes with it.
  if (draft_ && draft_->adding) store_->setFlags(draft_->row, RecordsetStore::kDead);
  draft_.reset();
  Recordset** link = &store_->firstSet;
  while (*link != this) link = &(*link)->nextOnStore_;
  *link = nextOnStore_;
  nextOnStore_ = nullptr;
  store_.reset();
}

void Recordset::join(const ConnectionPtr& connection) {
  leaveConnection();
  if (!connection) return;
  connection_ = connection;
  nextOnConnection_ = connection->firstRecordset_;
  connection->firstRecordset_ = this;
}

void Recordset::leaveConnection() noexcept {
  if (!connection_) return;
  Recordset** link = &connection_->firstRecordset_;
  while (*link != this) link = &(*link)->nextOnConnection_;
  *link = nextOnConnection_;
  nextOnConnection_ = nullptr;
  connection_.reset();
}

void Recordset::detach() noexcept {
  leaveStore();
  leaveConnection();
  fabric_.reset();
  resetView();
  affected_.clear();
  conflicting_.clear();
}

// ---- Open and close

std::shared_ptr<RecordsetStore> Recordset::fetch(const Statement& statement, const Connection& over,
                                                 std::size_t most) {
  if (over.State() == ObjectState::kClosed) raise(errors::kInvalidConnection, kRecordsetSource);
  std::shared_ptr<RecordsetStore> store;
  over.traced([&] { return statement.text(); },
              [&] {
                dialect::PlanCache& plans = over.lease().readingPlans();
                do {
                  store = std::make_shared<RecordsetStore>(
                      RecordsetSchema{plans.plan(statement), {}}, over.locale());
                } while (!plans.fetch(statement, store->rows(), most));
                return static_cast<std::int64_t>(store->rows().rows());
              });
  store->statement = statement;
  return store;
}

void Recordset::Open(const Statement& statement, const ConnectionPtr& connection) {
  if (store_) raise(errors::kObjectOpen, kRecordsetSource);
  if (!connection) raise(errors::kInvalidConnection, kRecordsetSource);
  attach(fetch(statement, *connection, engine::Prepared::kAllRows));
  fabric_.reset();
  join(connection);
  rebuildView();
  moving(
      EventReason::kMove, [&] { standOnFirst(); }, false);
}

void Recordset::Open() {
  if (store_) raise(errors::kObjectOpen, kRecordsetSource);
  if (!fabric_) {
    raise(errors::kInvalidConnection, kRecordsetSource, "The set has no statement and no fields");
  }
  auto store = std::make_shared<RecordsetStore>(std::move(fabric_->schema), nullptr);
  store->detached = true;
  attach(std::move(store));
  fabric_.reset();
  rebuildView();
  moving(
      EventReason::kMove, [&] { standOnFirst(); }, false);
}

void Recordset::Close() {
  opened();
  announced({.told = Told::kRecordset, .reason = EventReason::kClose}, [&] { detach(); });
}

void Recordset::Requery(std::int32_t /*options*/) {
  opened();
  if (draft_) raise(errors::kNotAllowedInContext, kRecordsetSource, "A row is being edited");
  if (store_->statement.empty()) {
    raise(errors::kNotAllowedInContext, kRecordsetSource, "The set comes from no statement");
  }
  if (!connection_ || connection_->State() == ObjectState::kClosed) {
    raise(errors::kInvalidConnection, kRecordsetSource);
  }
  announced({.told = Told::kRecordset, .reason = EventReason::kRequery}, [&] { refetch(); });
  if (store_)
    moving(
        EventReason::kRequery, [&] { standOnFirst(); }, false);
}

void Recordset::refetch() {
  if (!store_ || !connection_) raise(errors::kNotAllowedInContext, kRecordsetSource);
  std::shared_ptr<RecordsetStore> fresh =
      fetch(store_->statement, *connection_, engine::Prepared::kAllRows);
  // The schema may have changed meanwhile: filter and order are read again before the old rows go.
  std::unique_ptr<criteria::Program> program;
  if (criteria_) program = criteria::parse(filter_, fresh->schema(), fresh->locale());
  std::vector<SortKey> order = parseOrder(sort_, fresh->schema());
  const std::string filter = std::move(filter_);
  const std::string sort = std::move(sort_);
  leaveStore();
  resetView();
  affected_.clear();
  conflicting_.clear();
  attach(std::move(fresh));
  if (program) {
    criteria_ = std::move(program);
    filter_ = filter;
  }
  order_ = std::move(order);
  sort_ = sort;
  rebuildView();
  standOnFirst();
}

RecordsetPtr Recordset::Clone(tavelor::LockType lockType) {
  opened();
  if (lockType != tavelor::LockType::kUnspecified && lockType != tavelor::LockType::kReadOnly) {
    raise(errors::kInvalidArgument, kRecordsetSource, "A clone is read-only or like its source");
  }
  auto clone = std::make_shared<Recordset>();
  clone->lockType_ = lockType == tavelor::LockType::kUnspecified ? lockType_ : lockType;
  clone->attach(store_);
  clone->join(connection_);
  clone->rebuildView();
  clone->standOnFirst();
  return clone;
}

ConnectionPtr Recordset::ActiveConnection() const {
  return connection_;
}

void Recordset::ActiveConnection(const ConnectionPtr& connection) {
  if (connection && connection->State() == ObjectState::kClosed) {
    raise(errors::kInvalidConnection, kRecordsetSource);
  }
  // The old connection may die here; the rows do not need it.
  join(connection);
}

void Recordset::LockType(tavelor::LockType lockType) {
  if (store_) raise(errors::kObjectOpen, kRecordsetSource);
  if (lockType != tavelor::LockType::kOptimistic &&
      lockType != tavelor::LockType::kBatchOptimistic && lockType != tavelor::LockType::kReadOnly) {
    raise(errors::kInvalidArgument, kRecordsetSource, "The lock type is not supported");
  }
  lockType_ = lockType;
}

std::size_t Recordset::memory() const {
  std::size_t bytes =
      sizeof(*this) + view_.capacity() * sizeof(Row) + places_.capacity() * sizeof(std::int32_t);
  if (store_) bytes += store_->memory();
  return bytes;
}

}  // namespace tavelor

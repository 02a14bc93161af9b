// SPDX-License-Identifier: MIT
// Opening, closing and sharing of record sets.
#include "tavelor/services/recordset/recordset.hpp"

#include "tavelor/platform/error.hpp"
#include "tavelor/services/recordset/recordset_parts.hpp"

namespace tavelor {

Recordset::Recordset() : parts_(std::make_unique<RecordsetParts>(*this)) {}

Recordset::~Recordset() = default;

ObjectState Recordset::State() const {
  return parts_->store ? ObjectState::kOpen : ObjectState::kClosed;
}

std::string Recordset::Source() const {
  return parts_->store ? parts_->store->statement.text() : std::string();
}

// ---- Open and close

void Recordset::Open(const Statement& statement, const ConnectionPtr& connection) {
  if (parts_->store) raise(errors::kObjectOpen, kRecordsetSource);
  parts_->open(statement, connection);
  parts_->moving(
      EventReason::kMove, [&] { parts_->standOnFirst(); }, false);
}

void Recordset::Open() {
  if (parts_->store) raise(errors::kObjectOpen, kRecordsetSource);
  if (!parts_->appended) {
    raise(errors::kInvalidConnection, kRecordsetSource, "The set has no statement and no fields");
  }
  auto store = std::make_shared<RecordsetStore>(std::move(parts_->appended->schema), nullptr);
  store->detached = true;
  parts_->appended.reset();
  parts_->open(std::move(store));
  parts_->moving(
      EventReason::kMove, [&] { parts_->standOnFirst(); }, false);
}

void Recordset::Close() {
  parts_->opened();
  parts_->listeners.around({.kind = EventKind::kRecordset, .reason = EventReason::kClose},
                           [&] { parts_->close(); });
}

void Recordset::Requery(std::int32_t /*options*/) {
  const RecordsetStore& store = parts_->opened();
  if (parts_->edit.isActive()) {
    raise(errors::kNotAllowedInContext, kRecordsetSource, "A row is being edited");
  }
  if (store.statement.empty()) {
    raise(errors::kNotAllowedInContext, kRecordsetSource, "The set comes from no statement");
  }
  parts_->openConnection();
  parts_->listeners.around({.kind = EventKind::kRecordset, .reason = EventReason::kRequery},
                           [&] { parts_->refetch(); });
  if (!parts_->store) return;
  parts_->moving(
      EventReason::kRequery, [&] { parts_->standOnFirst(); }, false);
}

RecordsetPtr Recordset::Clone(tavelor::LockType lockType) {
  parts_->opened();
  if (lockType != tavelor::LockType::kUnspecified && lockType != tavelor::LockType::kReadOnly) {
    raise(errors::kInvalidArgument, kRecordsetSource, "A clone is read-only or like its source");
  }
  auto clone = std::make_shared<Recordset>();
  RecordsetParts& parts = *clone->parts_;
  parts.lockType = lockType == tavelor::LockType::kUnspecified ? parts_->lockType : lockType;
  parts.open(parts_->store);
  parts.connect(parts_->connection);
  parts.standOnFirst();
  return clone;
}

ConnectionPtr Recordset::ActiveConnection() const {
  return parts_->connection;
}

void Recordset::ActiveConnection(const ConnectionPtr& connection) {
  if (connection && connection->State() == ObjectState::kClosed) {
    raise(errors::kInvalidConnection, kRecordsetSource);
  }
  // The old connection may die here; the rows do not need it.
  parts_->connect(connection);
}

LockType Recordset::LockType() const {
  return parts_->lockType;
}

void Recordset::LockType(tavelor::LockType lockType) {
  if (parts_->store) raise(errors::kObjectOpen, kRecordsetSource);
  if (lockType != tavelor::LockType::kOptimistic &&
      lockType != tavelor::LockType::kBatchOptimistic && lockType != tavelor::LockType::kReadOnly) {
    raise(errors::kInvalidArgument, kRecordsetSource, "The lock type is not supported");
  }
  parts_->lockType = lockType;
}

std::size_t Recordset::memory() const {
  std::size_t bytes = sizeof(*this) + sizeof(*parts_) + parts_->view.memory();
  if (parts_->store) bytes += parts_->store->memory();
  return bytes;
}

// ---- Listeners

void Recordset::addListener(RecordsetEvents* listener) {
  parts_->listeners.add(listener);
}

void Recordset::removeListener(RecordsetEvents* listener) {
  parts_->listeners.remove(listener);
}

}  // namespace tavelor

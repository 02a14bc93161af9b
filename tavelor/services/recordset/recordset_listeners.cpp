// SPDX-License-Identifier: MIT
// Who is told of a record set's events, and how.
#include "tavelor/services/recordset/recordset_listeners.hpp"

#include <algorithm>
#include <array>

#include "tavelor/services/recordset/recordset_parts.hpp"

namespace tavelor {

void RecordsetListeners::join() {
  nextOnStore_ = store_->firstListeners;
  store_->firstListeners = this;
}

void RecordsetListeners::leave() noexcept {
  if (!store_) return;
  RecordsetListeners** link = &store_->firstListeners;
  while (*link != this) link = &(*link)->nextOnStore_;
  *link = nextOnStore_;
  nextOnStore_ = nullptr;
}

void RecordsetListeners::add(RecordsetEvents* listener) {
  if (listener != nullptr && !has(listener)) listeners_.push_back({listener, 0});
}

void RecordsetListeners::remove(RecordsetEvents* listener) {
  std::erase_if(listeners_, [&](const Listener& l) { return l.events == listener; });
}

bool RecordsetListeners::has(const RecordsetEvents* listener) const {
  return std::any_of(listeners_.begin(), listeners_.end(),
                     [&](const Listener& l) { return l.events == listener; });
}

bool RecordsetListeners::isHeardByClones() const {
  if (!store_) return false;
  for (const RecordsetListeners* each = store_->firstListeners; each != nullptr;
       each = each->nextOnStore_) {
    if (!each->listeners_.empty()) return true;
  }
  return false;
}

void RecordsetListeners::deliver(const EventNotice& notice, bool complete, const Error* error,
                                 EventStatus& status) {
  const auto bit = static_cast<std::uint16_t>(
      1U << (static_cast<unsigned>(notice.kind) * 2U + (complete ? 1U : 0U)));
  // Most sets have one listener, the class that opened them, and walks are long: no list is made.
  if (listeners_.size() == 1 && !reachesClones(notice.kind)) {
    const Listener sole = listeners_.front();
    if ((sole.unwanted & bit) != 0) return;
    EventStatus answer = status;
    call(notice, complete, error, answer, *sole.events, set_);
    if (answer == EventStatus::kUnwantedEvent) {
      for (Listener& l : listeners_) l.unwanted |= l.events == sole.events ? bit : 0;
    }
    if (answer == EventStatus::kCancel && !complete && notice.deniable) status = answer;
    return;
  }
  // Who is told is settled beforehand; who has gone or stopped listening meanwhile is left out.
  const std::shared_ptr<RecordsetStore> store = store_;
  std::vector<Recipient> recipients;
  for (const Listener& l : listeners_) recipients.push_back({this, l.events});
  if (store && reachesClones(notice.kind)) {
    for (RecordsetListeners* of = store->firstListeners; of != nullptr; of = of->nextOnStore_) {
      if (of == this) continue;
      for (const Listener& l : of->listeners_) recipients.push_back({of, l.events});
    }
  }
  const auto isThere = [&](const RecordsetListeners* of) {
    if (of == this) return true;
    for (const RecordsetListeners* l = store->firstListeners; l != nullptr; l = l->nextOnStore_) {
      if (l == of) return true;
    }
    return false;
  };
  const auto find = [&](const Recipient& recipient) -> Listener* {
    if (!isThere(recipient.of)) return nullptr;
    for (Listener& l : recipient.of->listeners_) {
      if (l.events == recipient.events) return &l;
    }
    return nullptr;
  };
  for (const Recipient& recipient : recipients) {
    const Listener* listener = find(recipient);
    if (listener == nullptr || (listener->unwanted & bit) != 0) continue;
    EventStatus answer = status;
    call(notice, complete, error, answer, *recipient.events, recipient.of->set_);
    if (answer == EventStatus::kUnwantedEvent) {
      if (Listener* again = find(recipient)) again->unwanted |= bit;
    }
    if (answer == EventStatus::kCancel && !complete && notice.deniable) {
      status = EventStatus::kCancel;
      return;
    }
  }
}

void RecordsetListeners::callForField(const EventNotice& notice, bool complete, const Error* error,
                                      EventStatus& status, RecordsetEvents& events,
                                      Recordset& set) {
  const std::array<Field, 1> fields{Field(set, notice.column)};
  return complete ? events.FieldChangeComplete(fields, error, status, set)
                  : events.WillChangeField(fields, status, set);
}

void RecordsetListeners::call(const EventNotice& notice, bool complete, const Error* error,
                              EventStatus& status, RecordsetEvents& events, Recordset& set) {
  switch (notice.kind) {
    case EventKind::kMove:
      return complete ? events.MoveComplete(notice.reason, error, status, set)
                      : events.WillMove(notice.reason, status, set);
    case EventKind::kField:
      return callForField(notice, complete, error, status, events, set);
    case EventKind::kRecord:
      return complete
                 ? events.RecordChangeComplete(notice.reason, notice.records, error, status, set)
                 : events.WillChangeRecord(notice.reason, notice.records, status, set);
    case EventKind::kRecordset:
      return complete ? events.RecordsetChangeComplete(notice.reason, error, status, set)
                      : events.WillChangeRecordset(notice.reason, status, set);
  }
}

void RecordsetListeners::tellWill(const EventNotice& notice) {
  EventStatus status = notice.deniable ? EventStatus::kOk : EventStatus::kCantDeny;
  const int records = notice.kind == EventKind::kRecord ? 1 : 0;
  recordNotices_ += records;
  try {
    deliver(notice, false, nullptr, status);
  } catch (...) {
    recordNotices_ -= records;
    throw;
  }
  recordNotices_ -= records;
  if (status != EventStatus::kCancel) return;
  const Error canceled(errors::kOperationCanceled, std::string(kRecordsetSource),
                       std::string(defaultDescription(errors::kOperationCanceled)));
  tellComplete(notice, &canceled);
  throw canceled;
}

void RecordsetListeners::tellComplete(const EventNotice& notice, const Error* error) {
  EventStatus status = error != nullptr ? EventStatus::kErrorsOccurred : EventStatus::kOk;
  deliver(notice, true, error, status);
}

bool RecordsetListeners::haveMoreRows() {
  bool moreData = false;
  const std::vector<Listener> asked = listeners_;
  for (const Listener& l : asked) {
    if (!has(l.events)) continue;
    EventStatus status = EventStatus::kOk;
    l.events->EndOfRecordset(moreData, status, set_);
  }
  return moreData;
}

}  // namespace tavelor

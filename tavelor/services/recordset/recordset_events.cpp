// SPDX-License-Identifier: MIT
// Delivery of a record set's events.
#include <algorithm>
#include <array>

#include "tavelor/services/recordset/recordset_internal.hpp"

namespace tavelor {

void Recordset::addListener(RecordsetEvents* listener) {
  if (listener != nullptr && !listens(listener)) listeners_.push_back({listener, 0});
}

void Recordset::removeListener(RecordsetEvents* listener) {
  std::erase_if(listeners_, [&](const Listener& l) { return l.events == listener; });
}

bool Recordset::listens(const RecordsetEvents* listener) const {
  return std::any_of(listeners_.begin(), listeners_.end(),
                     [&](const Listener& l) { return l.events == listener; });
}

/// Changes of rows are told to the listeners of the clones as well.
bool Recordset::toldToClones(Told told) {
  return told == Told::kField || told == Told::kRecord;
}

bool Recordset::heard(Told told) const {
  if (!listeners_.empty()) return true;
  if (!toldToClones(told) || !store_) return false;
  for (const Recordset* set = store_->firstSet; set != nullptr; set = set->nextOnStore_) {
    if (!set->listeners_.empty()) return true;
  }
  return false;
}

namespace {

struct Addressee {
  Recordset* set;
  RecordsetEvents* events;
};

}  // namespace

void Recordset::deliver(const Notice& notice, bool complete, const Error* error,
                        EventStatus& status) {
  const auto bit = static_cast<std::uint16_t>(
      1U << (static_cast<unsigned>(notice.told) * 2U + (complete ? 1U : 0U)));
  // Most sets have one listener, the class that opened them, and walks are long: no list is made.
  if (listeners_.size() == 1 && !toldToClones(notice.told)) {
    const Listener sole = listeners_.front();
    if ((sole.unwanted & bit) != 0) return;
    EventStatus answer = status;
    call(notice, complete, error, answer, *sole.events, *this);
    if (answer == EventStatus::kUnwantedEvent) {
      for (Listener& l : listeners_) l.unwanted |= l.events == sole.events ? bit : 0;
    }
    if (answer == EventStatus::kCancel && !complete && notice.deniable) status = answer;
    return;
  }
  // Who is told is settled beforehand; who has gone or stopped listening meanwhile is left out.
  const std::shared_ptr<RecordsetStore> store = store_;
  std::vector<Addressee> addressees;
  for (const Listener& l : listeners_) addressees.push_back({this, l.events});
  if (store && toldToClones(notice.told)) {
    for (Recordset* set = store->firstSet; set != nullptr; set = set->nextOnStore_) {
      if (set == this) continue;
      for (const Listener& l : set->listeners_) addressees.push_back({set, l.events});
    }
  }
  const auto isThere = [&](const Recordset* set) {
    if (set == this) return true;
    for (const Recordset* s = store->firstSet; s != nullptr; s = s->nextOnStore_) {
      if (s == set) return true;
    }
    return false;
  };
  const auto find = [&](const Addressee& a) -> Listener* {
    if (!isThere(a.set)) return nullptr;
    for (Listener& l : a.set->listeners_) {
      if (l.events == a.events) return &l;
    }
    return nullptr;
  };
  for (const Addressee& addressee : addressees) {
    const Listener* listener = find(addressee);
    if (listener == nullptr || (listener->unwanted & bit) != 0) continue;
    EventStatus answer = status;
    call(notice, complete, error, answer, *addressee.events, *addressee.set);
    if (answer == EventStatus::kUnwantedEvent) {
      if (Listener* again = find(addressee)) again->unwanted |= bit;
    }
    if (answer == EventStatus::kCancel && !complete && notice.deniable) {
      status = EventStatus::kCancel;
      return;
    }
  }
}

void Recordset::call(const Notice& notice, bool complete, const Error* error, EventStatus& status,
                     RecordsetEvents& events, Recordset& set) {
  switch (notice.told) {
    case Told::kMove:
      return complete ? events.MoveComplete(notice.reason, error, status, set)
                      : events.WillMove(notice.reason, status, set);
    case Told::kField: {
      const std::array<tavelor::Field, 1> fields{tavelor::Field(set, notice.column)};
      return complete ? events.FieldChangeComplete(fields, error, status, set)
                      : events.WillChangeField(fields, status, set);
    }
    case Told::kRecord:
      return complete
                 ? events.RecordChangeComplete(notice.reason, notice.records, error, status, set)
                 : events.WillChangeRecord(notice.reason, notice.records, status, set);
    case Told::kRecordset:
      return complete ? events.RecordsetChangeComplete(notice.reason, error, status, set)
                      : events.WillChangeRecordset(notice.reason, status, set);
  }
}

void Recordset::tellWill(const Notice& notice) {
  EventStatus status = notice.deniable ? EventStatus::kOk : EventStatus::kCantDeny;
  const bool changing = notice.told == Told::kRecord;
  changing_ += changing ? 1 : 0;
  try {
    deliver(notice, false, nullptr, status);
  } catch (...) {
    changing_ -= changing ? 1 : 0;
    throw;
  }
  changing_ -= changing ? 1 : 0;
  if (status != EventStatus::kCancel) return;
  const Error canceled(errors::kOperationCanceled, std::string(kRecordsetSource),
                       std::string(defaultDescription(errors::kOperationCanceled)));
  tellComplete(notice, &canceled);
  throw canceled;
}

void Recordset::tellComplete(const Notice& notice, const Error* error) {
  EventStatus status = error != nullptr ? EventStatus::kErrorsOccurred : EventStatus::kOk;
  deliver(notice, true, error, status);
}

bool Recordset::tellEnd() {
  bool moreData = false;
  const std::vector<Listener> told = listeners_;
  for (const Listener& l : told) {
    if (!listens(l.events)) continue;
    EventStatus status = EventStatus::kOk;
    l.events->EndOfRecordset(moreData, status, *this);
  }
  return moreData;
}

}  // namespace tavelor

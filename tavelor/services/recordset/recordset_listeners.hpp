// SPDX-License-Identifier: MIT
// Who is told of a record set's events, and how.
#pragma once

#include <cstdint>
#include <memory>
#include <utility>
#include <vector>

#include "tavelor/platform/error.hpp"
#include "tavelor/services/recordset/events.hpp"
#include "tavelor/services/recordset/recordset.hpp"
#include "tavelor/services/recordset/recordset_store.hpp"

namespace tavelor {

/// The pairs of events: a Will... and its ...Complete.
enum class EventKind : std::uint8_t { kMove, kField, kRecord, kRecordset };

/// What an event tells.
struct EventNotice {
  EventKind kind;
  EventReason reason;
  bool deniable = true;
  std::int32_t records = 1;
  std::size_t column = 0;
};

/// The listeners of one set. Those of all sets on a store are linked through it, because changes of
/// rows are told to the listeners of clones as well.
class RecordsetListeners {
 public:
  /// `store` is that of the set, null while it is closed.
  RecordsetListeners(Recordset& set, const std::shared_ptr<RecordsetStore>& store)
      : set_(set), store_(store) {}
  RecordsetListeners(const RecordsetListeners&) = delete;
  RecordsetListeners& operator=(const RecordsetListeners&) = delete;
  ~RecordsetListeners() { leave(); }

  /// Hears of the changes of the store until leave().
  void join();
  void leave() noexcept;

  void add(RecordsetEvents* listener);
  void remove(RecordsetEvents* listener);

  /// Tells the listeners, does the work, tells them again. The work itself checks that what it
  /// needs is still there: a listener may have changed everything.
  template <typename Work>
  void around(const EventNotice& notice, Work&& work);
  /// Asks whether somebody has more rows where a move is about to end behind the last one.
  bool haveMoreRows();
  /// A listener is being told that rows will change.
  bool areToldOfRecords() const { return recordNotices_ > 0; }

 private:
  struct Listener {
    RecordsetEvents* events;
    std::uint16_t unwanted;  // bits of the events that it wants no more
  };
  struct Recipient {
    RecordsetListeners* of;
    RecordsetEvents* events;
  };

  static bool reachesClones(EventKind kind) {
    return kind == EventKind::kField || kind == EventKind::kRecord;
  }
  bool has(const RecordsetEvents* listener) const;
  bool isHeard(EventKind kind) const {
    return !listeners_.empty() || (reachesClones(kind) && isHeardByClones());
  }
  bool isHeardByClones() const;
  void tellWill(const EventNotice& notice);
  void tellComplete(const EventNotice& notice, const Error* error);
  void deliver(const EventNotice& notice, bool complete, const Error* error, EventStatus& status);
  // Kept out of call(): moves are many, and would pay for what this one holds.
  [[gnu::noinline]] static void callForField(const EventNotice& notice, bool complete,
                                             const Error* error, EventStatus& status,
                                             RecordsetEvents& events, Recordset& set);
  static void call(const EventNotice& notice, bool complete, const Error* error,
                   EventStatus& status, RecordsetEvents& events, Recordset& set);

  Recordset& set_;
  const std::shared_ptr<RecordsetStore>& store_;
  RecordsetListeners* nextOnStore_ = nullptr;
  std::vector<Listener> listeners_;
  int recordNotices_ = 0;
};

template <typename Work>
void RecordsetListeners::around(const EventNotice& notice, Work&& work) {
  if (!isHeard(notice.kind)) {
    work();
    return;
  }
  const std::shared_ptr<Recordset> keep = set_.weak_from_this().lock();
  tellWill(notice);
  try {
    work();
  } catch (const Error& error) {
    tellComplete(notice, &error);
    throw;
  }
  tellComplete(notice, nullptr);
}

}  // namespace tavelor

// SPDX-License-Identifier: MIT
// Events of record sets, told to a function of the caller's.
#include "tavelor/services/recordset/events.hpp"

#include <atomic>

#include "tavelor/c/recordsets.hpp"

namespace tavelor::c {

namespace {

/// What an event tells besides its number.
struct Told {
  std::int32_t event = 0;
  std::int32_t reason = 0;
  std::int32_t records = 0;
  std::int32_t column = -1;
  const Error* error = nullptr;
};

template <typename Enum>
std::int32_t numberOf(Enum value) {
  return static_cast<std::int32_t>(value);
}

std::int32_t columnOf(std::span<const Field> fields) {
  return fields.empty() ? -1 : static_cast<std::int32_t>(fields.front().column());
}

/// Hands events on until it is stopped.
class Teller final : public RecordsetEvents {
 public:
  Teller(Room& room, tavelor_event_handler handler, void* user)
      : room_(room), handler_(handler), user_(user) {}

  void stop() { handler_ = nullptr; }

  void WillMove(EventReason reason, EventStatus& status, Recordset& set) override {
    tell({TAVELOR_EVENT_WILL_MOVE, numberOf(reason)}, status, set);
  }
  void MoveComplete(EventReason reason, const Error* error, EventStatus& status,
                    Recordset& set) override {
    tell({.event = TAVELOR_EVENT_MOVE_DONE, .reason = numberOf(reason), .error = error}, status,
         set);
  }
  void EndOfRecordset(bool& moreData, EventStatus& status, Recordset& set) override {
    moreData = tell({.event = TAVELOR_EVENT_END_OF_RECORDSET}, status, set, moreData);
  }
  void WillChangeField(std::span<const Field> fields, EventStatus& status,
                       Recordset& set) override {
    tell({.event = TAVELOR_EVENT_WILL_CHANGE_FIELD, .column = columnOf(fields)}, status, set);
  }
  void FieldChangeComplete(std::span<const Field> fields, const Error* error, EventStatus& status,
                           Recordset& set) override {
    tell({.event = TAVELOR_EVENT_CHANGE_FIELD_DONE, .column = columnOf(fields), .error = error},
         status, set);
  }
  void WillChangeRecord(EventReason reason, std::int32_t records, EventStatus& status,
                        Recordset& set) override {
    tell({TAVELOR_EVENT_WILL_CHANGE_RECORD, numberOf(reason), records}, status, set);
  }
  void RecordChangeComplete(EventReason reason, std::int32_t records, const Error* error,
                            EventStatus& status, Recordset& set) override {
    tell({TAVELOR_EVENT_CHANGE_RECORD_DONE, numberOf(reason), records, -1, error}, status, set);
  }
  void WillChangeRecordset(EventReason reason, EventStatus& status, Recordset& set) override {
    tell({TAVELOR_EVENT_WILL_CHANGE_RECORDSET, numberOf(reason)}, status, set);
  }
  void RecordsetChangeComplete(EventReason reason, const Error* error, EventStatus& status,
                               Recordset& set) override {
    tell({.event = TAVELOR_EVENT_CHANGE_RECORDSET_DONE, .reason = numberOf(reason), .error = error},
         status, set);
  }

 private:
  /// Gives whether there are more rows.
  bool tell(const Told& told, EventStatus& status, Recordset& set, bool moreData = false) {
    const tavelor_event_handler handler = handler_;
    const RecordsetPtr shared = set.weak_from_this().lock();
    // A set that is going away is nobody's any more.
    if (handler == nullptr || shared == nullptr) return moreData;
    // What the handler gives back waits until this call is over, also where the call came from C++.
    const Inside inside(room_);
    tavelor_event event{sizeof event,
                        told.event,
                        told.reason,
                        numberOf(status),
                        moreData ? 1 : 0,
                        told.records,
                        told.column,
                        told.error == nullptr ? 0 : told.error->number(),
                        newObject(room_.shared_from_this(), shared),
                        nullptr};
    tavelor_object* const of = event.recordset;
    const tavelor_status raised = handler(user_, &event);
    tavelor_object_release(of);
    if (raised != 0) {
      raise(raised, "Listener", optionalText(event.raise, "raise"));
    }
    status = static_cast<EventStatus>(event.status);
    return event.more_data != 0;
  }

  Room& room_;
  std::atomic<tavelor_event_handler> handler_;
  void* user_;
};

}  // namespace

}  // namespace tavelor::c

struct tavelor_listener final : tavelor::c::Held {
  tavelor_listener(const tavelor_object& of, tavelor_event_handler handler, void* user)
      : Held(tavelor::c::Kind::kListener, of.sharedRoom()),
        teller(of.room(), handler, user),
        set(of.recordset->weak_from_this()) {
    of.recordset->addListener(&teller);
  }
  ~tavelor_listener() override { leave(); }

  /// By the set's own thread.
  void leave() noexcept {
    teller.stop();
    if (const tavelor::RecordsetPtr there = set.lock()) there->removeListener(&teller);
    set.reset();
  }

  tavelor::c::Teller teller;
  std::weak_ptr<tavelor::Recordset> set;

 protected:
  void drop() noexcept override { leave(); }
};

using namespace tavelor::c;

tavelor_status tavelor_recordset_listen(tavelor_object* recordset, tavelor_event_handler handler,
                                        void* user, tavelor_listener** listener,
                                        tavelor_error** error) {
  return onRecordset(recordset, error, [&](tavelor::Recordset&, tavelor_object& object) {
    output(listener, "listener");
    if (handler == nullptr) {
      tavelor::raise(tavelor::errors::kInvalidCall, kSource, "`handler` is NULL");
    }
    *listener = std::make_unique<tavelor_listener>(object, handler, user).release();
  });
}

void tavelor_listener_remove(tavelor_listener* listener) {
  if (listener == nullptr) return;
  listener->teller.stop();
  listener->room().giveBack(listener);
}

// SPDX-License-Identifier: MIT
// What stands behind the handles of the C interface.
#pragma once

#include <atomic>
#include <cstdint>
#include <list>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <vector>

#include <pthread.h>

#include "tavelor/c/tavelor.h"
#include "tavelor/platform/variant.hpp"
#include "tavelor/services/apartment.hpp"

namespace tavelor {
class Component;
class Connection;
class Installation;
class Recordset;
struct Member;
}  // namespace tavelor

namespace tavelor::c {

/// What a handle is of. The numbers are unlikely ones, so that memory that is no handle is seldom
/// taken for one.
enum class Kind : std::uint32_t {
  kGone = 0,
  kInstallation = 0x7AE10001,
  kApartment = 0x7AE10002,
  kClass = 0x7AE10003,
  kMember = 0x7AE10004,
  kObject = 0x7AE10005,
  kListener = 0x7AE10006,
  kShop = 0x7AE10007,
  kTransaction = 0x7AE10008,
  kReconciliation = 0x7AE10009,
  kFiscalCheck = 0x7AE1000A
};

/// What all handles begin with.
class Handle {
 public:
  explicit Handle(Kind kind) : kind_(kind) {}
  virtual ~Handle() { kind_ = Kind::kGone; }
  Handle(const Handle&) = delete;
  Handle& operator=(const Handle&) = delete;

  Kind kind() const { return kind_; }

 private:
  // Written when it goes, and perhaps looked at after that by a caller who is wrong.
  volatile Kind kind_;
};

class Held;

/// An apartment and what is held of it. Handles share it, so it outlives the apartment.
class Room : public std::enable_shared_from_this<Room> {
 public:
  explicit Room(std::shared_ptr<Installation> installation);
  ~Room();
  Room(const Room&) = delete;
  Room& operator=(const Room&) = delete;

  /// Raises 5 on another thread, 91 once it has ended.
  void requireUsable() const {
    if (isOfOther() || apartment_ == nullptr) raiseUnusable();
  }
  /// Whether the calling thread is not its own.
  bool isOfOther() const { return pthread_equal(thread_, pthread_self()) == 0; }
  /// Of a room that is usable.
  Apartment& apartment() const { return *apartment_; }

  /// Gives a handle back: now, or when that cannot disturb anybody.
  void giveBack(Held* held) noexcept;
  /// Lets all objects go and ends the apartment. False, and nothing, from inside a call of its own.
  bool end() noexcept;

  /// Room for the arguments of one call, at any depth of calls.
  std::vector<Variant>& frame();

 private:
  friend class Held;
  friend class Inside;

  [[noreturn]] void raiseUnusable() const;
  /// Whether another apartment of the thread is bound over it. Where there is one in all, none is:
  /// nobody else makes them in this library, and to look costs as much as a call.
  bool isCovered() const;
  void deleteLeft() noexcept;

  static std::atomic<std::size_t> open_;  // rooms that have not ended

  const pthread_t thread_;
  std::unique_ptr<Apartment> apartment_;  // null once it has ended
  Held* newest_ = nullptr;                // handles that hold something, linked
  std::vector<std::unique_ptr<std::vector<Variant>>> frames_;
  std::size_t depth_ = 0;  // calls that run
  std::mutex mutex_;       // of what follows
  std::vector<Held*> left_;
  std::size_t handles_ = 0;
  std::atomic<bool> hasLeft_ = false;
  bool hasEnded_ = false;
};

/// A handle of something that lives in a room, and goes with it at the latest.
class Held : public Handle {
 public:
  Held(Kind kind, std::shared_ptr<Room> room);
  ~Held() override;

  Room& room() const { return *room_; }
  const std::shared_ptr<Room>& sharedRoom() const { return room_; }

 protected:
  friend class Room;
  /// Lets go what it holds. By the room's own thread, or when nobody uses the room.
  virtual void drop() noexcept = 0;

 private:
  std::shared_ptr<Room> room_;
  Held* older_ = nullptr;
  Held* newer_ = nullptr;
  bool isListed_ = true;
};

/// For the time of a call: its apartment is bound, and what is given back waits.
class Inside {
 public:
  /// Raises as Room::requireUsable.
  explicit Inside(Room& room);
  ~Inside();
  Inside(const Inside&) = delete;
  Inside& operator=(const Inside&) = delete;

 private:
  Room& room_;
  std::optional<Apartment::Scope> scope_;  // where another apartment covers the room's
};

}  // namespace tavelor::c

struct tavelor_installation final : tavelor::c::Handle {
  explicit tavelor_installation(std::shared_ptr<tavelor::Installation> opened)
      : Handle(tavelor::c::Kind::kInstallation), installation(std::move(opened)) {}

  const std::shared_ptr<tavelor::Installation> installation;
};

struct tavelor_apartment final : tavelor::c::Handle {
  explicit tavelor_apartment(std::shared_ptr<tavelor::Installation> installation)
      : Handle(tavelor::c::Kind::kApartment),
        room(std::make_shared<tavelor::c::Room>(std::move(installation))) {}

  const std::shared_ptr<tavelor::c::Room> room;
};

struct tavelor_member final : tavelor::c::Handle {
  tavelor_member(const tavelor::Member& behind, const tavelor_class& owner);

  const tavelor::Member& slot;
  const tavelor_class& of;
  const std::string signature;
  const char* const documentation;
};

struct tavelor_class final : tavelor::c::Handle {
  explicit tavelor_class(const tavelor::Component& behind);

  const tavelor::Component& component;
  const char* const documentation;
  std::list<tavelor_member> members;
  std::vector<const tavelor_member*> slots;
};

struct tavelor_object final : tavelor::c::Held {
  tavelor_object(std::shared_ptr<tavelor::c::Room> room, tavelor::ObjectPtr held);

  tavelor::ObjectPtr object;
  tavelor::Recordset* recordset;    ///< the object, where it is one
  tavelor::Connection* connection;  ///< the same
  const tavelor_class* of;          ///< null for an object of no class
  std::atomic<std::uint32_t> holds = 1;
  std::list<std::string> texts;  ///< of cells that lie nowhere else, until the set changes

 protected:
  void drop() noexcept override;
};

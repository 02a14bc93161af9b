// SPDX-License-Identifier: MIT
// What stands behind the handles of the C interface: whose they are, and when they go.
#include "tavelor/c/handles.hpp"

#include <utility>

#include "tavelor/c/calls.hpp"
#include "tavelor/services/installation.hpp"

namespace tavelor::c {

// ---------------------------------------------------------------------------------------------
// A room

std::atomic<std::size_t> Room::open_ = 0;

Room::Room(std::shared_ptr<Installation> installation)
    : thread_(pthread_self()), apartment_(std::make_unique<Apartment>(std::move(installation))) {
  open_.fetch_add(1, std::memory_order_relaxed);
}

Room::~Room() {
  if (apartment_ != nullptr) open_.fetch_sub(1, std::memory_order_relaxed);
}

bool Room::isCovered() const {
  return open_.load(std::memory_order_relaxed) > 1 && Apartment::find() != apartment_.get();
}

void Room::raiseUnusable() const {
  if (apartment_ == nullptr) raise(errors::kObjectNotSet, kSource, "The apartment has ended");
  raise(errors::kInvalidCall, kSource,
        "It belongs to the thread that opened its apartment, and this is another one");
}

std::vector<Variant>& Room::frame() {
  // The call that asks is counted already.
  while (frames_.size() < depth_) frames_.push_back(std::make_unique<std::vector<Variant>>());
  return *frames_[depth_ - 1];
}

void Room::giveBack(Held* held) noexcept {
  {
    const std::lock_guard lock(mutex_);
    if (!hasEnded_ && (isOfOther() || depth_ > 0)) {
      // There is room: it was reserved when the handle was made.
      left_.push_back(held);
      hasLeft_.store(true, std::memory_order_release);
      return;
    }
  }
  // The last handle may be what keeps the room.
  const std::shared_ptr<Room> keep = held->sharedRoom();
  delete held;
}

void Room::deleteLeft() noexcept {
  std::vector<Held*> left;
  {
    const std::lock_guard lock(mutex_);
    left.swap(left_);
    left_.reserve(left.capacity());
    hasLeft_.store(false, std::memory_order_release);
  }
  for (Held* held : left) delete held;
}

bool Room::end() noexcept {
  if (depth_ > 0) return false;
  std::vector<Held*> left;
  {
    const std::lock_guard lock(mutex_);
    if (hasEnded_) return true;
    hasEnded_ = true;
    left.swap(left_);
  }
  {
    std::optional<Apartment::Scope> scope;
    if (!isOfOther() && isCovered()) scope.emplace(*apartment_);
    for (Held* held : left) delete held;
    // What was made last may lean on what was made before.
    while (newest_ != nullptr) {
      Held* const held = newest_;
      newest_ = held->older_;
      held->isListed_ = false;
      held->drop();
    }
  }
  apartment_.reset();
  open_.fetch_sub(1, std::memory_order_relaxed);
  return true;
}

// ---------------------------------------------------------------------------------------------
// What is held of it

Held::Held(Kind kind, std::shared_ptr<Room> room) : Handle(kind), room_(std::move(room)) {
  {
    // Giving back must not fail for want of memory.
    const std::lock_guard lock(room_->mutex_);
    if (room_->left_.capacity() <= room_->handles_) {
      room_->left_.reserve(room_->handles_ * 2 + 16);
    }
    ++room_->handles_;
  }
  older_ = room_->newest_;
  if (older_ != nullptr) older_->newer_ = this;
  room_->newest_ = this;
}

Held::~Held() {
  if (isListed_) {
    if (newer_ != nullptr) newer_->older_ = older_;
    if (older_ != nullptr) older_->newer_ = newer_;
    if (room_->newest_ == this) room_->newest_ = older_;
  }
  const std::lock_guard lock(room_->mutex_);
  --room_->handles_;
}

// ---------------------------------------------------------------------------------------------
// The time of a call

Inside::Inside(Room& room) : room_(room) {
  room.requireUsable();
  if (room.isCovered()) scope_.emplace(*room.apartment_);
  if (room.depth_ == 0 && room.hasLeft_.load(std::memory_order_acquire)) room.deleteLeft();
  ++room.depth_;
}

Inside::~Inside() {
  --room_.depth_;
}

}  // namespace tavelor::c

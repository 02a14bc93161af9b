// SPDX-License-Identifier: MIT
// What flows tell while they wait for a server that does not let them through.
#include "tavelor/flows/outage.hpp"

#include <chrono>
#include <thread>
#include <utility>

#include "tavelor/flows/again.hpp"
#include "tavelor/platform/error.hpp"

namespace tavelor::flows {

namespace {

thread_local OutageListener* listening = nullptr;

}  // namespace

OutageListener::OutageListener(Callback<void(const Outage&)> tell)
    : tell_(std::move(tell)), covered_(std::exchange(listening, this)) {}

OutageListener::~OutageListener() {
  listening = covered_;
}

bool Patience::bears(const Error& error) {
  constexpr std::chrono::seconds kLongest{60};
  const bool isLost = error.number() == errors::kConnectionLost;
  if (!isLost && error.number() != errors::kBusy) return false;
  hasLostLine_ = hasLostLine_ || isLost;
  const Clock::time_point now = Clock::now();
  if (!since_) {
    since_ = now;
    outage_.reason = error.description();
    tell();
  }
  return now - *since_ < kLongest;
}

void Patience::pause() {
  std::this_thread::sleep_for(std::chrono::milliseconds{250});
}

void Patience::end() {
  if (!since_) return;
  outage_.lasted = std::chrono::duration_cast<std::chrono::milliseconds>(Clock::now() - *since_);
  outage_.isOver = true;
  tell();
}

void Patience::tell() const {
  if (listening != nullptr && listening->tell_) listening->tell_(outage_);
}

}  // namespace tavelor::flows

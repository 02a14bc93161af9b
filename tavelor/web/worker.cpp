// SPDX-License-Identifier: MIT
// What a thread that answers requests keeps from one to the next.
#include "tavelor/web/worker.hpp"

#include "tavelor/flows/shop.hpp"

namespace tavelor::web {

Worker::Worker() = default;
Worker::~Worker() = default;

flows::Shop& Worker::shop() {
  if (!shop_) shop_ = std::make_unique<flows::Shop>();
  return *shop_;
}

void Worker::forget() {
  kept_.clear();
  shop_.reset();
}

}  // namespace tavelor::web

// SPDX-License-Identifier: MIT
// What a thread that answers requests keeps from one to the next.
#pragma once

#include <any>
#include <memory>
#include <typeindex>
#include <unordered_map>

namespace tavelor::flows {
class Shop;
}

namespace tavelor::web {

/// Belongs to the apartment of the thread that made it, and is used by it alone.
class Worker {
 public:
  Worker();
  ~Worker();
  Worker(const Worker&) = delete;
  Worker& operator=(const Worker&) = delete;

  /// Made at first use.
  flows::Shop& shop();
  /// One of each type, made at first use, for an endpoint's own: cursors, catalogues.
  template <typename Kept>
  Kept& kept() {
    std::shared_ptr<void>& place = kept_[typeid(Kept)];
    if (!place) place = std::make_shared<Kept>();
    return *static_cast<Kept*>(place.get());
  }
  /// After an error that may have left something half done: what is kept is made anew.
  void forget();

 private:
  std::unique_ptr<flows::Shop> shop_;
  std::unordered_map<std::type_index, std::shared_ptr<void>> kept_;
};

}  // namespace tavelor::web

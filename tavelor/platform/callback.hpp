// SPDX-License-Identifier: MIT
// Something to call later, at a tenth of what <functional> costs those who include it.
#pragma once

#include <cstddef>
#include <memory>
#include <type_traits>
#include <utility>

#include "tavelor/platform/export.hpp"

namespace tavelor {

template <typename Signature>
class Callback;

/// Holds any callable, or nothing. Copies share the one callable, so what it captured is theirs
/// together; its own errors pass through.
template <typename R, typename... Arguments>
class TAVELOR_API Callback<R(Arguments...)> {
 public:
  Callback() = default;
  /// Nothing to call.
  Callback(std::nullptr_t) {}
  /// Calls a copy of `function`, which copies of the callback share.
  template <typename F>
  requires(!std::is_same_v<std::remove_cvref_t<F>, Callback> &&
           std::is_invocable_r_v<R, std::remove_cvref_t<F>&, Arguments...>) Callback(F&& function)
      : target_(std::make_shared<Target<std::remove_cvref_t<F>>>(std::forward<F>(function))) {}

  /// Whether there is something to call.
  explicit operator bool() const { return target_ != nullptr; }
  /// There must be something to call.
  R operator()(Arguments... arguments) const {
    return target_->call(std::forward<Arguments>(arguments)...);
  }

 private:
  struct Base {
    Base() = default;
    Base(const Base&) = delete;
    Base& operator=(const Base&) = delete;
    virtual ~Base() = default;
    virtual R call(Arguments... arguments) = 0;
  };
  template <typename F>
  struct Target final : Base {
    template <typename G>
    explicit Target(G&& function) : held(std::forward<G>(function)) {}
    R call(Arguments... arguments) override {
      if constexpr (std::is_void_v<R>) {
        held(std::forward<Arguments>(arguments)...);
      } else {
        return held(std::forward<Arguments>(arguments)...);
      }
    }
    F held;
  };

  std::shared_ptr<Base> target_;
};

}  // namespace tavelor

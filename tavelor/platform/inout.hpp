// SPDX-License-Identifier: MIT
// Parameters by reference that also take a temporary.
#pragma once

#include <type_traits>
#include <utility>

namespace tavelor {

/// A parameter that is read and written. Given a variable, writes reach that variable; given a
/// value, or nothing, they stay inside the call: `IniciaRs("registro", id)` and
/// `IniciaRs(modo, id)` both read well.
template <typename T>
class InOut {
 public:
  InOut() : target_(&own_) {}
  InOut(T& variable) : target_(&variable) {}
  template <typename U>
  requires(std::is_convertible_v<U&&, T> && !std::is_same_v<std::remove_cvref_t<U>, InOut> &&
           !std::is_same_v<U, T&>) InOut(U&& value)
      : own_(std::forward<U>(value)), target_(&own_) {}

  InOut(const InOut& other) : own_(other.own_), target_(other.isOwn() ? &own_ : other.target_) {}
  const InOut& operator=(const InOut&) const = delete;

  T& get() const { return *target_; }
  T& operator*() const { return *target_; }
  T* operator->() const { return target_; }
  template <typename U>
  requires(std::is_assignable_v<T&, U&&> &&
           !std::is_same_v<std::remove_cvref_t<U>, InOut>) const InOut&
  operator=(U&& value) const {
    *target_ = std::forward<U>(value);
    return *this;
  }

 private:
  bool isOwn() const { return target_ == &own_; }
  T own_{};
  T* target_;
};

}  // namespace tavelor

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
  /// Refers to the caller's variable.
  InOut(T& variable) : target_(&variable) {}
  /// Holds a value of its own; what is written to it is dropped.
  template <typename U>
  requires(std::is_convertible_v<U&&, T> && !std::is_same_v<std::remove_cvref_t<U>, InOut> &&
           !std::is_same_v<U, T&>) InOut(U&& value)
      : own_(std::forward<U>(value)), target_(&own_) {}

  /// Refers to what `other` refers to, or copies its own value.
  InOut(const InOut& other) : own_(other.own_), target_(other.isOwn() ? &own_ : other.target_) {}
  const InOut& operator=(const InOut&) const = delete;

  /// What it refers to.
  T& get() const { return *target_; }
  /// The same.
  T& operator*() const { return *target_; }
  /// The same.
  T* operator->() const { return target_; }
  template <typename U>
  requires(std::is_assignable_v<T&, U&&> &&
           !std::is_same_v<std::remove_cvref_t<U>, InOut>) const InOut&
  /// Writes to what it refers to.
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

// SPDX-License-Identifier: MIT
// Parameters by reference that also take a temporary.
#pragma once

#include <string_view>
#include <type_traits>
#include <utility>

#include "tavelor/platform/export.hpp"

namespace tavelor {

/// A parameter that is read and written. Given a variable, writes reach that variable; given a
/// value, or nothing, they stay inside the call: `IniciaRs("registro", id)` and
/// `IniciaRs(modo, id)` both read well.
///
/// A variable of another type does not compile: what is written would be lost. Made anew from
/// another one it refers to what that refers to, so that aggregates of them can be assigned:
/// `d = {.vId = id, .dTotal = total}`. A value that is assigned is written to the variable; a
/// variable that is assigned does not compile, as it would not be bound.
template <typename T>
class TAVELOR_API InOut {
  // What looks like a variable of the caller, and cannot be referred to. Nobody waits for a text in
  // a pointer to characters or a view of them: those are values.
  template <typename U>
  static constexpr bool kIsOtherVariable =
      std::is_lvalue_reference_v<U> && !std::is_const_v<std::remove_reference_t<U>> &&
      !std::is_array_v<std::remove_reference_t<U>> &&
      !std::is_pointer_v<std::remove_reference_t<U>> &&
      !std::is_same_v<std::remove_cvref_t<U>, std::string_view> &&
      !std::is_same_v<std::remove_cvref_t<U>, InOut> && !std::is_same_v<U, T&>;

 public:
  InOut() : target_(&own_) {}
  /// Refers to the caller's variable.
  InOut(T& variable) : target_(&variable) {}
  /// Holds a value of its own; what is written to it is dropped.
  template <typename U>
  requires(std::is_convertible_v<U&&, T> && !std::is_same_v<std::remove_cvref_t<U>, InOut> &&
           !std::is_same_v<U, T&> && !kIsOtherVariable<U>) InOut(U&& value)
      : own_(std::forward<U>(value)), target_(&own_) {}

  /// Refers to what `other` refers to, or copies its own value.
  InOut(const InOut& other) : own_(other.own_), target_(other.isOwn() ? &own_ : other.target_) {}
  /// The same: it is bound anew, and nothing is written.
  InOut& operator=(const InOut& other) {  // NOLINT(bugprone-unhandled-self-assignment)
    own_ = other.own_;
    target_ = other.isOwn() ? &own_ : other.target_;
    return *this;
  }

  /// What it refers to.
  T& get() const { return *target_; }
  /// The same.
  T& operator*() const { return *target_; }
  /// The same.
  T* operator->() const { return target_; }
  /// Writes to what it refers to.
  template <typename U>
  requires(std::is_assignable_v<T&, U&&> &&
           !std::is_same_v<std::remove_cvref_t<U>, InOut>) const InOut&
  operator=(U&& value) const {
    static_assert(!kIsOtherVariable<U> && !std::is_same_v<U, T&>,
                  "a variable is bound when the parameter is made; write a value by *parameter");
    *target_ = std::forward<U>(value);
    return *this;
  }
  /// The same.
  template <typename U>
  requires(std::is_assignable_v<T&, U&&> && !std::is_same_v<std::remove_cvref_t<U>, InOut>) InOut&
  operator=(U&& value) {
    std::as_const(*this) = std::forward<U>(value);
    return *this;
  }

 private:
  bool isOwn() const { return target_ == &own_; }
  T own_{};
  T* target_;
};

}  // namespace tavelor

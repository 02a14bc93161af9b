// SPDX-License-Identifier: MIT
// How a function of the C interface looks at what it was given, and answers with an error.
#pragma once

#include <cstring>
#include <memory>
#include <string>
#include <string_view>
#include <type_traits>
#include <utility>

#include "tavelor/c/handles.hpp"
#include "tavelor/platform/error.hpp"

namespace tavelor::c {

inline constexpr std::string_view kSource = "C interface";

/// Of what is being caught: its number, and in `error`, where somebody wants it, the rest.
tavelor_status caught(tavelor_error** error) noexcept;

/// Runs the work of a function: no exception leaves it.
template <typename Work>
tavelor_status answered(tavelor_error** error, Work&& work) noexcept {
  if (error != nullptr) *error = nullptr;
  try {
    work();
    return TAVELOR_OK;
  } catch (...) {
    return caught(error);
  }
}

// ---- What was given

/// A handle of that kind, else 424 naming `what`.
template <typename Of>
Of& handle(Of* given, Kind kind, std::string_view what) {
  // Looked at as what all handles are: it may be of another kind.
  const auto* any = reinterpret_cast<const Handle*>(given);
  if (any == nullptr || any->kind() != kind) {
    raise(errors::kObjectRequired, kSource,
          (any == nullptr ? "There is no " : "This is no ") + std::string(what));
  }
  return *given;
}

inline tavelor_apartment& asApartment(tavelor_apartment* given) {
  return handle(given, Kind::kApartment, "apartment");
}
inline tavelor_object& asObject(tavelor_object* given) {
  return handle(given, Kind::kObject, "object");
}
/// A handle that holds a record set. Raises as Room::requireUsable too.
tavelor_object& asRecordset(tavelor_object* given);
/// The same of a connection.
tavelor_object& asConnection(tavelor_object* given);

/// An output that must not be NULL, else 5 naming it.
template <typename T>
T& output(T* given, std::string_view name) {
  if (given == nullptr) {
    raise(errors::kInvalidCall, kSource, "`" + std::string(name) + "` is NULL");
  }
  return *given;
}
/// A list that may be NULL only where it has no entries.
inline void requireList(const void* given, std::size_t count, std::string_view name) {
  if (count > 0) output(static_cast<const char*>(given), name);
}
/// A text that must be there and be UTF-8.
std::string_view text(const char* given, std::string_view name);
/// The same, "" for NULL.
std::string_view optionalText(const char* given, std::string_view name);
/// Raises 13 for what is no UTF-8.
void requireUtf8(std::string_view given, std::string_view name);

/// A struct of the caller's: its size is that of a version.
template <typename T>
T& sized(T* given, std::string_view name) {
  output(given, name);
  if (given->size != sizeof(T)) {
    raise(errors::kInvalidCall, kSource,
          "`" + std::string(name) + "` has the size " + std::to_string(given->size) +
              "; set it to its sizeof, " + std::to_string(sizeof(T)));
  }
  return *given;
}

/// Whether one of `choices`, else 5 naming it.
template <typename... Choices>
void requireOneOf(std::int32_t given, std::string_view name, Choices... choices) {
  if (((given == choices) || ...)) return;
  raise(errors::kInvalidCall, kSource,
        "`" + std::string(name) + "` has no meaning for " + std::to_string(given));
}

// ---- Values

/// What a value holds. Raises 5 for a type that there is not, 13 for a text that is no UTF-8, 424
/// and 5 for an object that is no handle, or of another apartment than `room`.
Variant variantOf(const tavelor_value& value, const Room& room);
/// The same, made where it is to stay.
void append(std::vector<Variant>& variants, const tavelor_value& value, const Room& room);
/// Puts a variant into a value, whose old contents are the caller's matter. An object gets a handle
/// of `room`.
void put(tavelor_value& value, const Variant& variant, const std::shared_ptr<Room>& room);
/// A text that the value owns.
void putText(tavelor_value& value, std::string_view text);

/// A new handle.
tavelor_object* newObject(const std::shared_ptr<Room>& room, ObjectPtr object);
/// The class of a component's name; null where there is none.
const tavelor_class* classCalled(std::string_view name);

/// A text whose question marks are the values: `own` takes what stands between them, `value` each.
/// Raises 450 unless there are as many.
template <typename Own, typename Value>
void splice(std::string_view text, const tavelor_value* values, std::size_t count, const Room& room,
            Own&& own, Value&& value);
/// Where the next question mark outside of quotes, brackets and # signs is, from `at` on; npos
/// without one.
std::size_t nextMark(std::string_view text, std::size_t at);
[[noreturn]] void raiseMarks(std::size_t marks, std::size_t count);

template <typename Own, typename Value>
void splice(std::string_view text, const tavelor_value* values, std::size_t count, const Room& room,
            Own&& own, Value&& value) {
  requireList(values, count, "values");
  std::size_t begin = 0;
  std::size_t used = 0;
  if (count > 0) {
    std::size_t mark = nextMark(text, 0);
    for (; mark != std::string_view::npos; mark = nextMark(text, begin)) {
      if (used == count) {
        for (++used; (mark = nextMark(text, mark + 1)) != std::string_view::npos;) ++used;
        raiseMarks(used, count);
      }
      own(text.substr(begin, mark - begin));
      value(variantOf(values[used++], room));
      begin = mark + 1;
    }
    if (used < count) raiseMarks(used, count);
  }
  own(text.substr(begin));
}

/// A filter or a search with its values.
std::string criteriaOf(const char* criteria, const tavelor_value* values, std::size_t count,
                       const Room& room);

}  // namespace tavelor::c

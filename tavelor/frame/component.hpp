// SPDX-License-Identifier: MIT
// The component table: every member of a class by name, in slot order.
#pragma once

#include <cstdint>
#include <memory>
#include <span>
#include <string>
#include <string_view>
#include <tuple>
#include <type_traits>
#include <utility>
#include <vector>

#include "tavelor/platform/callback.hpp"
#include "tavelor/platform/export.hpp"
#include "tavelor/platform/inout.hpp"
#include "tavelor/platform/variant.hpp"

namespace tavelor {

class Connection;
class Recordset;
template <typename Result>
class SingleReadOf;

/// One parameter of a member, as the printed interface shows it.
struct TAVELOR_API Parameter {
  /// Who writes it: the caller, the member, or both.
  enum class Direction : std::uint8_t { kIn, kOut, kInOut };

  std::string name;
  std::string
      type;  ///< "String", "Variant", "Boolean", "Integer", "Long", "Double", "Connection"...
  Direction direction = Direction::kIn;
  bool optional = false;
  Variant byDefault = {};  ///< of an optional one; Empty for its type's zero, "" or nothing
};

/// One slot: a member that can be called with variants.
struct TAVELOR_API Member {
  /// Takes an object of the class, and arguments as call() does.
  using Call = Callback<Variant(Object& object, std::span<Variant> arguments)>;

  std::string name;
  bool property = false;
  std::vector<Parameter> parameters;
  std::string result;  ///< "" for none
  Call body;           ///< what call() runs, with as many arguments as parameters at most

  /// Arguments by reference are written back into `arguments`; missing ones are their type's zero.
  /// Raises 450 for more arguments than parameters, 13 for one of the wrong type.
  Variant call(Object& object, std::span<Variant> arguments) const;

  /// "GetIbanBic(vId As Variant, out sIban As String, out sBic As String, [objCn As Connection])".
  std::string signature() const;
};

/// A public class: how it is made and what it offers.
class TAVELOR_API Component {
 public:
  /// Makes an object of the class.
  using Make = std::unique_ptr<Object> (*)();

  /// `classId` in braces: "{6F1C...}".
  Component(std::string_view name, std::string_view classId, std::string_view word, Make maker,
            std::vector<Member> members);

  /// "ClsBancos".
  const std::string& name() const { return name_; }
  /// "{6F1C...}".
  const std::string& classId() const { return classId_; }
  /// Class word, "" for a class without the frame.
  const std::string& word() const { return word_; }
  /// In slot order.
  const std::vector<Member>& members() const { return members_; }

  /// A new object, in the apartment of the calling thread.
  std::unique_ptr<Object> make() const { return make_(); }
  /// Without regard to case. Raises 438 with the nearest name when there is none.
  const Member& member(std::string_view name) const;

  /// Calls a member by name. Missing optional arguments take their defaults; arguments by reference
  /// are written back, `arguments` growing to hold them, also when the member raises: what it had
  /// written until then is there, as for a direct caller. An output before an input needs its
  /// place, an Empty one. Raises 438 for an unknown member, 450 for a wrong number of arguments, 13
  /// for one of the wrong type.
  Variant call(Object& object, std::string_view name, std::vector<Variant>& arguments) const;
  /// The same by a slot, one of members(): whoever calls it often looks it up once.
  Variant call(Object& object, const Member& slot, std::vector<Variant>& arguments) const;

 private:
  std::string name_;
  std::string classId_;
  std::string word_;
  Make make_;
  std::vector<Member> members_;
};

/// A frame member of the component table, by name, for the place where a class has it.
TAVELOR_API const Member& frameMember(std::string_view name);
/// A class's slots: its first members, the frame members from EditingRecord on, whose order is the
/// same in all classes, and what some classes have behind them. A member of `last` that bears the
/// name of a frame member is the class's own version of it and takes its place.
TAVELOR_API std::vector<Member> withFrameTail(std::vector<Member> first,
                                              std::vector<Member> last = {});
/// The same slots with `more` behind the one called `name`: members of a class that stand among
/// those of the frame. Raises 438 when there is no such slot.
TAVELOR_API std::vector<Member> withSlotsBehind(std::string_view name, std::vector<Member> more,
                                                std::vector<Member> slots);
/// The same slots without the one called `name`: a frame member that a class does not have. Raises
/// 438 when there is no such slot.
TAVELOR_API std::vector<Member> withoutSlot(std::string_view name, std::vector<Member> slots);

// ---------------------------------------------------------------------------------------------
// From a member function to a slot.

namespace detail {

/// How a C++ parameter or result type travels as a Variant.
template <typename T>
struct Marshal;

TAVELOR_API const Locale& callLocale();
[[noreturn]] TAVELOR_API void raiseWrongObject(std::string_view wanted);
TAVELOR_API Object& objectArgument(const Variant* value, std::string_view wanted);
TAVELOR_API std::vector<Parameter> parseParameters(std::string_view names,
                                                   std::vector<std::string> types,
                                                   std::vector<bool> byReference);

template <>
struct TAVELOR_API Marshal<Variant> {
  static constexpr std::string_view kName = "Variant";
  static Variant in(const Variant& v) { return v; }
  static Variant out(Variant v) { return v; }
};
template <>
struct TAVELOR_API Marshal<std::string> {
  static constexpr std::string_view kName = "String";
  static std::string in(const Variant& v) { return v.toText(callLocale()); }
  static Variant out(std::string v) { return v; }
};
template <>
struct TAVELOR_API Marshal<std::string_view> : Marshal<std::string> {};
template <>
struct TAVELOR_API Marshal<bool> {
  static constexpr std::string_view kName = "Boolean";
  static bool in(const Variant& v) { return v.toBoolean(callLocale()); }
  static Variant out(bool v) { return v; }
};
template <>
struct TAVELOR_API Marshal<std::int16_t> {
  static constexpr std::string_view kName = "Integer";
  static std::int16_t in(const Variant& v) { return v.toInt16(callLocale()); }
  static Variant out(std::int16_t v) { return v; }
};
template <>
struct TAVELOR_API Marshal<std::int32_t> {
  static constexpr std::string_view kName = "Long";
  static std::int32_t in(const Variant& v) { return v.toInt32(callLocale()); }
  static Variant out(std::int32_t v) { return v; }
};
template <>
struct TAVELOR_API Marshal<float> {
  static constexpr std::string_view kName = "Single";
  static float in(const Variant& v) { return static_cast<float>(v.toDouble(callLocale())); }
  static Variant out(float v) { return v; }
};
template <>
struct TAVELOR_API Marshal<double> {
  static constexpr std::string_view kName = "Double";
  static double in(const Variant& v) { return v.toDouble(callLocale()); }
  static Variant out(double v) { return v; }
};
template <>
struct TAVELOR_API Marshal<Date> {
  static constexpr std::string_view kName = "Date";
  static Date in(const Variant& v) { return v.toDate(callLocale()); }
  static Variant out(Date v) { return v; }
};
/// A list reads as one text, its entries joined by line ends.
template <>
struct TAVELOR_API Marshal<std::vector<Variant>> {
  static constexpr std::string_view kName = "Collection";
  static std::vector<Variant> in(const Variant& v);
  static Variant out(const std::vector<Variant>& entries);
};
template <>
struct TAVELOR_API Marshal<std::shared_ptr<Connection>> {
  static constexpr std::string_view kName = "Connection";
  static std::shared_ptr<Connection> in(const Variant& v);
  static Variant out(std::shared_ptr<Connection> v);
};
template <>
struct TAVELOR_API Marshal<std::shared_ptr<Recordset>> {
  static constexpr std::string_view kName = "Recordset";
  static std::shared_ptr<Recordset> in(const Variant& v);
  static Variant out(std::shared_ptr<Recordset> v);
};
/// An object that a member gives: a collection, an item of one.
template <typename T>
requires std::is_base_of_v<Object, T>
struct TAVELOR_API Marshal<std::shared_ptr<T>> {
  static constexpr std::string_view kName = T::kTypeName;
  static Variant out(std::shared_ptr<T> v) { return ObjectPtr(std::move(v)); }
};

template <typename P>
struct TAVELOR_API Argument {
  using Value = std::remove_cvref_t<P>;
  using Stored = std::conditional_t<std::is_same_v<Value, std::string_view>, std::string, Value>;
  static constexpr bool kByReference = false;
  static constexpr std::string_view kName = Marshal<Stored>::kName;

  explicit Argument(const Variant* v) : stored(v ? Marshal<Stored>::in(*v) : Stored{}) {}
  const Stored& pass() { return stored; }
  void writeBack(Variant*) {}
  Stored stored;
};
/// An object of the application's: a control, the columns of a grid.
template <typename P>
requires std::is_base_of_v<Object, std::remove_cvref_t<P>>
struct TAVELOR_API Argument<P> {
  using Value = std::remove_cvref_t<P>;
  static constexpr bool kByReference = false;
  static constexpr std::string_view kName = "Object";

  explicit Argument(const Variant* v)
      : object(dynamic_cast<Value*>(&objectArgument(v, "control or a grid"))) {
    if (object == nullptr) raiseWrongObject("control or a grid of this kind");
  }
  Value& pass() { return *object; }
  void writeBack(Variant*) {}
  Value* object;
};
template <typename T>
struct TAVELOR_API Argument<InOut<T>> {
  static constexpr bool kByReference = true;
  static constexpr std::string_view kName = Marshal<T>::kName;

  explicit Argument(const Variant* v) : stored(v && !v->isEmpty() ? Marshal<T>::in(*v) : T{}) {}
  T& pass() { return stored; }
  void writeBack(Variant* v) {
    if (v) *v = Marshal<T>::out(std::move(stored));
  }
  T stored;
};

/// The value behind a field of an aggregate, by reference or not.
template <typename T>
struct TAVELOR_API Plain {
  using Value = T;
  static constexpr bool kByReference = false;
  static const T& get(const T& field) { return field; }
};
template <typename T>
struct TAVELOR_API Plain<InOut<T>> {
  using Value = T;
  static constexpr bool kByReference = true;
  static const T& get(const InOut<T>& field) { return *field; }
};

/// Calls a member function, or a function that takes the object first.
template <typename C, typename F, typename... A>
decltype(auto) called(C& object, F function, A&&... arguments) {
  if constexpr (std::is_member_pointer_v<F>) {
    return (object.*function)(std::forward<A>(arguments)...);
  } else {
    return function(object, std::forward<A>(arguments)...);
  }
}

template <typename R, typename C, typename F, typename... P, std::size_t... I>
Variant invoke(C& object, F function, std::span<Variant> arguments, std::index_sequence<I...>) {
  std::tuple<Argument<P>...> held{Argument<P>(I < arguments.size() ? &arguments[I] : nullptr)...};
  const auto writeBack = [&] {
    (std::get<I>(held).writeBack(I < arguments.size() ? &arguments[I] : nullptr), ...);
  };
  Variant result;
  try {
    if constexpr (std::is_void_v<R>) {
      called(object, function, std::get<I>(held).pass()...);
    } else {
      result = Marshal<std::remove_cvref_t<R>>::out(
          called(object, function, std::get<I>(held).pass()...));
    }
  } catch (...) {
    writeBack();
    throw;
  }
  writeBack();
  return result;
}

template <typename Class, typename R, typename F, typename... P>
Member makeMember(std::string_view name, F function, std::string_view names) {
  Member slot;
  slot.name = name;
  slot.parameters =
      parseParameters(names, {std::string(Argument<P>::kName)...}, {Argument<P>::kByReference...});
  if constexpr (!std::is_void_v<R>) slot.result = Marshal<std::remove_cvref_t<R>>::kName;
  slot.body = [function](Object& object, std::span<Variant> arguments) {
    auto* typed = dynamic_cast<Class*>(&object);
    if (!typed) raiseWrongObject("record class");
    return invoke<R, Class, F, P...>(*typed, function, arguments, std::index_sequence_for<P...>());
  };
  return slot;
}

}  // namespace detail

/// A slot from a member function. `names` lists its parameters in order: "vId", "out sIban",
/// "inout sSelecSql", "[objCn]" for an optional one, "[bSumar = True]", "[dCant = 1]" or
/// "[sAlmacen = '*']" for one that has another default than its type.
template <typename R, typename Class, typename... P>
Member member(std::string_view name, R (Class::*function)(P...), std::string_view names = {}) {
  return detail::makeMember<Class, R, decltype(function), P...>(name, function, names);
}
template <typename R, typename Class, typename... P>
Member member(std::string_view name, R (Class::*function)(P...) const,
              std::string_view names = {}) {
  return detail::makeMember<Class, R, decltype(function), P...>(name, function, names);
}
/// A slot from a function that takes the object first: a member that is overloaded, or whose types
/// do not travel as they are.
template <typename R, typename Class, typename... P>
Member member(std::string_view name, R (*function)(Class&, P...), std::string_view names = {}) {
  return detail::makeMember<Class, R, decltype(function), P...>(name, function, names);
}
/// A slot from a member that reads one value of one row.
template <typename Result, typename Class>
Member member(std::string_view name, const SingleReadOf<Result> Class::*read,
              std::string_view names = "id, [objCn]") {
  return detail::makeMember<Class, Result, decltype(read), const Variant&,
                            InOut<std::shared_ptr<Connection>>>(name, read, names);
}
/// One parameter of a member that takes them all in one aggregate.
template <typename Aggregate>
struct TAVELOR_API AggregateParameter {
  Parameter parameter;
  Callback<void(Aggregate&, const Variant&)> read;
  Callback<Variant(Aggregate&)> written;
};

/// A field of the aggregate as a parameter: "sCod", "out sNom", "[objCn]".
template <typename Aggregate, typename T>
AggregateParameter<Aggregate> parameter(std::string_view name, T Aggregate::*field) {
  using Value = typename detail::Plain<T>::Value;
  auto parsed = detail::parseParameters(name, {std::string(detail::Marshal<Value>::kName)},
                                        {detail::Plain<T>::kByReference});
  return {std::move(parsed.front()),
          [field](Aggregate& all, const Variant& v) { all.*field = detail::Marshal<Value>::in(v); },
          [field](Aggregate& all) {
            return detail::Marshal<Value>::out(detail::Plain<T>::get(all.*field));
          }};
}

/// `all` with `more` before its last one, the connection: members that take the same but for some.
template <typename Aggregate>
std::vector<AggregateParameter<Aggregate>> withParameters(
    std::vector<AggregateParameter<Aggregate>> all,
    const std::vector<AggregateParameter<Aggregate>>& more) {
  all.insert(all.end() - 1, more.begin(), more.end());
  return all;
}

/// A slot of a member that takes its parameters, in the order of `parameters`, as one aggregate.
template <typename R, typename Class, typename Aggregate>
Member member(std::string_view name, R (Class::*function)(Aggregate&) const,
              std::vector<AggregateParameter<std::remove_const_t<Aggregate>>> parameters) {
  Member slot;
  slot.name = name;
  if constexpr (!std::is_void_v<R>) slot.result = detail::Marshal<R>::kName;
  for (const auto& each : parameters) slot.parameters.push_back(each.parameter);
  slot.body = [function, parameters](Object& object, std::span<Variant> arguments) {
    auto* typed = dynamic_cast<Class*>(&object);
    if (!typed) detail::raiseWrongObject("record class");
    std::remove_const_t<Aggregate> all{};
    for (std::size_t i = 0; i < arguments.size(); ++i) {
      if (!arguments[i].isEmpty()) parameters[i].read(all, arguments[i]);
    }
    const auto writeBack = [&] {
      for (std::size_t i = 0; i < arguments.size(); ++i) {
        if (parameters[i].parameter.direction != Parameter::Direction::kIn) {
          arguments[i] = parameters[i].written(all);
        }
      }
    };
    Variant result;
    try {
      if constexpr (std::is_void_v<R>) {
        (typed->*function)(all);
      } else {
        result = detail::Marshal<R>::out((typed->*function)(all));
      }
    } catch (...) {
      writeBack();
      throw;
    }
    writeBack();
    return result;
  };
  return slot;
}

/// The same for a property.
template <typename Function>
Member property(std::string_view name, Function function, std::string_view names = {}) {
  Member slot = member(name, function, names);
  slot.property = true;
  return slot;
}

/// A property behind which there is nothing but a variable: it is written when a value is given.
template <typename Class, typename T>
Member variable(std::string_view name, T Class::*field) {
  Member slot;
  slot.name = name;
  slot.property = true;
  slot.parameters =
      detail::parseParameters("[value]", {std::string(detail::Marshal<T>::kName)}, {false});
  slot.result = detail::Marshal<T>::kName;
  slot.body = [field](Object& object, std::span<Variant> arguments) {
    auto* typed = dynamic_cast<Class*>(&object);
    if (!typed) detail::raiseWrongObject("object of the class");
    if (!arguments.empty() && !arguments[0].isEmpty()) {
      typed->*field = detail::Marshal<T>::in(arguments[0]);
    }
    return detail::Marshal<T>::out(typed->*field);
  };
  return slot;
}

}  // namespace tavelor

// SPDX-License-Identifier: MIT
// Calling members by name, and the frame's own slots.
#include "tavelor/frame/component.hpp"

#include <algorithm>
#include <iterator>
#include <optional>

#include <fmt/format.h>

#include "tavelor/frame/controls.hpp"
#include "tavelor/frame/record_class.hpp"
#include "tavelor/platform/error.hpp"
#include "tavelor/platform/locale.hpp"
#include "tavelor/platform/number_text.hpp"
#include "tavelor/platform/text.hpp"
#include "tavelor/services/apartment.hpp"
#include "tavelor/services/recordset/connection.hpp"
#include "tavelor/services/recordset/recordset.hpp"

namespace tavelor {

namespace {

constexpr std::string_view kSource = "Component";

std::vector<std::string> namesOf(const std::vector<Member>& members) {
  std::vector<std::string> names;
  names.reserve(members.size());
  for (const Member& slot : members) names.push_back(slot.name);
  return names;
}

std::string suggestion(std::string_view wanted, const std::vector<std::string>& known) {
  const std::string near = text::nearest(wanted, known);
  return near.empty() ? std::string() : fmt::format("; did you mean {}?", near);
}

std::string_view word(Parameter::Direction direction) {
  switch (direction) {
    case Parameter::Direction::kOut:
      return "out ";
    case Parameter::Direction::kInOut:
      return "inout ";
    case Parameter::Direction::kIn:
      break;
  }
  return "";
}

// The first five slots and the next three stand in other places in some classes, so a class's table
// names each of them; the rest is the tail, the same in all.
const std::vector<Member>& frameHead() {
  using C = RecordClass;
  static const std::vector<Member> slots = {
      member("GetRptPath", &C::GetRptPath, "inout sRptPath"),
      member("GetConnectionStrToRpt", &C::GetConnectionStrToRpt,
             "out sDbtype, out sDataSource, out sCatalog, out sUser, out sPasw"),
      property("sClassName", &C::sClassName),
      member("GetConnection", &C::GetConnection),
      member("GetConnectionStr", &C::GetConnectionStr),
      member("NuevoCodigo", &C::NuevoCodigo, "[objCn]"),
      member("SeguridadPermiso", &C::SeguridadPermiso, "sId"),
      member("CodigoLibre", &C::CodigoLibre, "vId, [objCn]"),
  };
  return slots;
}

const std::vector<Member>& frameTail() {
  using C = RecordClass;
  static const std::vector<Member> slots = {
      property("EditingRecord", &C::EditingRecord),
      property("AbsolutePosition", &C::AbsolutePosition),
      member("AddNew", static_cast<void (C::*)(bool)>(&C::AddNew), "[bDefVal]"),
      member("Delete", &C::Delete),
      member("MoveToBookmark", &C::MoveToBookmark, "mybookmark"),
      member("Requery", &C::Requery, "[inout sSelecSql]"),
      member("Update", &C::Update),
      member("CnnBeginTrans", &C::CnnBeginTrans),
      member("CnnCommitTrans", &C::CnnCommitTrans),
      member("CnnRollbackTrans", &C::CnnRollbackTrans),
      member("Cancel", &C::Cancel),
      member("MoveFirst", &C::MoveFirst),
      member("MoveLast", &C::MoveLast),
      member("MoveNext", &C::MoveNext),
      member("MovePrevious", &C::MovePrevious),
      member("ExistenRegistros", &C::ExistenRegistros),
      member("FindRecord", &C::FindRecord, "Criteria"),
      member("ValidaDefinedSize", &C::ValidaDefinedSize, "Text"),
      member("ValidaKey", &C::ValidaKey, "Text, KeyAscii"),
      member("ValidaValue", &C::ValidaValue, "Text"),
      member("GetFilter", &C::GetFilter, "sLlave"),
      member("AplyFilter", &C::AplyFilter, "Criteria"),
      member("CreateFilter", &C::CreateFilter, "ctl, [iType]"),
      member("SetFilter", &C::SetFilter, "Criteria, sLlave"),
      member("SetOrder", &C::SetOrder, "index, Mode, sLlave"),
      member("GetOrder", &C::GetOrder, "out index, out Mode, sLlave"),
      member("GetHtmlFile", &C::GetHtmlFile),
      member("ToHtmlGrid", &C::ToHtmlGrid, "clColfields, [bDoclone], [sSelecSql], [bFilter]"),
  };
  return slots;
}

// True, False, a number with a decimal point, or a text between single quotes.
Variant parseDefault(std::string_view literal) {
  if (literal.starts_with('\'')) return literal.substr(1, literal.size() - 2);
  if (literal == "True" || literal == "False") return literal == "True";
  const std::optional<double> number = parseSqlNumber(literal);
  if (!number) raise(errors::kTypeMismatch, kSource, fmt::format("{} is no default", literal));
  return *number;
}

std::string shownDefault(const Variant& value) {
  if (value.isEmpty()) return {};
  if (const bool* flag = value.getIf<bool>()) return *flag ? " = True" : " = False";
  if (const double* number = value.getIf<double>()) return " = " + sqlNumber(*number);
  return fmt::format(" = \"{}\"", value.toText(*Locale::neutral()));
}

template <typename T>
std::shared_ptr<T> objectIn(const Variant& value, std::string_view wanted) {
  if (value.isEmpty()) return nullptr;
  const ObjectPtr* object = value.getIf<ObjectPtr>();
  if (object == nullptr) detail::raiseWrongObject(wanted);
  auto typed = std::dynamic_pointer_cast<T>(*object);
  if (*object != nullptr && typed == nullptr) detail::raiseWrongObject(wanted);
  return typed;
}

template <typename T>
Variant objectOut(std::shared_ptr<T> object) {
  return object ? Variant(ObjectPtr(std::move(object))) : Variant();
}

[[noreturn]] void raiseWrongCount(std::string_view signature, std::size_t given) {
  raise(errors::kWrongNumberOfArguments, kSource,
        fmt::format("{} was given {} arguments", signature, given));
}

std::vector<Member>::iterator slotCalled(std::string_view name, std::vector<Member>& slots) {
  const auto found = std::find_if(slots.begin(), slots.end(),
                                  [&](const Member& slot) { return slot.name == name; });
  if (found == slots.end()) {
    raise(errors::kMemberNotFound, kSource, fmt::format("There is no slot {}", name));
  }
  return found;
}

bool mayBeLeftOut(const Parameter& parameter) {
  return parameter.optional || parameter.direction == Parameter::Direction::kOut;
}

}  // namespace

std::string Member::signature() const {
  std::string line = name;
  if (!property || !parameters.empty()) {
    line += '(';
    for (const Parameter& p : parameters) {
      if (line.back() != '(') line += ", ";
      line += fmt::format(fmt::runtime(p.optional ? "[{}{} As {}{}]" : "{}{} As {}{}"),
                          word(p.direction), p.name, p.type, shownDefault(p.byDefault));
    }
    line += ')';
  }
  if (!result.empty()) line += " As " + result;
  return line;
}

Variant Member::call(Object& object, std::span<Variant> arguments) const {
  if (arguments.size() > parameters.size()) raiseWrongCount(signature(), arguments.size());
  return body(object, arguments);
}

Component::Component(std::string_view name, std::string_view classId, std::string_view word,
                     Make maker, std::vector<Member> members)
    : name_(name), classId_(classId), word_(word), make_(maker), members_(std::move(members)) {}

const Member& Component::member(std::string_view name) const {
  const auto found = std::find_if(members_.begin(), members_.end(), [&](const Member& slot) {
    return text::equalsIgnoreCase(slot.name, name);
  });
  if (found == members_.end()) {
    raise(errors::kMemberNotFound, kSource,
          fmt::format("{} has no member {}{}", name_, name, suggestion(name, namesOf(members_))));
  }
  return *found;
}

Variant Component::call(Object& object, std::string_view name,
                        std::vector<Variant>& arguments) const {
  return call(object, member(name), arguments);
}

Variant Component::call(Object& object, const Member& slot, std::vector<Variant>& arguments) const {
  std::size_t required = slot.parameters.size();
  while (required > 0 && mayBeLeftOut(slot.parameters[required - 1])) --required;
  if (arguments.size() < required || arguments.size() > slot.parameters.size()) {
    raiseWrongCount(name_ + "." + slot.signature(), arguments.size());
  }
  arguments.resize(slot.parameters.size());
  for (std::size_t i = 0; i < arguments.size(); ++i) {
    if (arguments[i].isEmpty()) arguments[i] = slot.parameters[i].byDefault;
  }
  return slot.body(object, arguments);
}

const Member& frameMember(std::string_view name) {
  for (const std::vector<Member>* slots : {&frameHead(), &frameTail()}) {
    for (const Member& slot : *slots) {
      if (slot.name == name) return slot;
    }
  }
  raise(errors::kMemberNotFound, kSource, fmt::format("The frame has no member {}", name));
}

std::vector<Member> withFrameTail(std::vector<Member> first, std::vector<Member> last) {
  for (const Member& frameSlot : frameTail()) {
    const auto own = std::find_if(last.begin(), last.end(),
                                  [&](const Member& slot) { return slot.name == frameSlot.name; });
    if (own == last.end()) {
      first.push_back(frameSlot);
    } else {
      first.push_back(std::move(*own));
      last.erase(own);
    }
  }
  first.insert(first.end(), last.begin(), last.end());
  return first;
}

std::vector<Member> withSlotsBehind(std::string_view name, std::vector<Member> more,
                                    std::vector<Member> slots) {
  slots.insert(slotCalled(name, slots) + 1, std::make_move_iterator(more.begin()),
               std::make_move_iterator(more.end()));
  return slots;
}

std::vector<Member> withoutSlot(std::string_view name, std::vector<Member> slots) {
  slots.erase(slotCalled(name, slots));
  return slots;
}

namespace detail {

const Locale& callLocale() {
  return Apartment::current().locale();
}

void raiseWrongObject(std::string_view wanted) {
  raise(errors::kTypeMismatch, kSource, fmt::format("A {} is wanted here", wanted));
}

std::vector<Parameter> parseParameters(std::string_view names, std::vector<std::string> types,
                                       std::vector<bool> byReference) {
  std::vector<Parameter> parameters;
  while (!names.empty()) {
    const std::size_t comma = std::min(names.find(','), names.size());
    std::string_view entry = text::trim(names.substr(0, comma));
    names.remove_prefix(std::min(comma + 1, names.size()));
    Parameter parameter;
    if (entry.starts_with('[') && entry.ends_with(']')) {
      parameter.optional = true;
      entry = entry.substr(1, entry.size() - 2);
    }
    if (const std::size_t equals = entry.find(" = "); equals != std::string_view::npos) {
      parameter.byDefault = parseDefault(entry.substr(equals + 3));
      entry = entry.substr(0, equals);
    }
    const std::size_t position = parameters.size();
    if (position < byReference.size() && byReference[position]) {
      parameter.direction = Parameter::Direction::kInOut;
    }
    if (entry.starts_with("out ")) {
      parameter.direction = Parameter::Direction::kOut;
      entry.remove_prefix(4);
    } else if (entry.starts_with("inout ")) {
      parameter.direction = Parameter::Direction::kInOut;
      entry.remove_prefix(6);
    }
    parameter.name = entry;
    if (position < types.size()) parameter.type = types[position];
    parameters.push_back(std::move(parameter));
  }
  if (parameters.size() != types.size()) {
    raise(errors::kWrongNumberOfArguments, kSource,
          fmt::format("{} parameter names for {} parameters", parameters.size(), types.size()));
  }
  return parameters;
}

Object& objectArgument(const Variant* value, std::string_view wanted) {
  const ObjectPtr* object = value != nullptr ? value->getIf<ObjectPtr>() : nullptr;
  if (object == nullptr || *object == nullptr) raiseWrongObject(wanted);
  return **object;
}

std::vector<Variant> Marshal<std::vector<Variant>>::in(const Variant& v) {
  std::vector<Variant> entries;
  const std::string lines = v.toText(callLocale());
  for (const std::string_view line : text::lines(lines)) entries.emplace_back(std::string(line));
  return entries;
}

Variant Marshal<std::vector<Variant>>::out(const std::vector<Variant>& entries) {
  std::string lines;
  for (const Variant& entry : entries) {
    if (!lines.empty()) lines += '\n';
    if (!entry.isNull()) lines += entry.toText(callLocale());
  }
  return lines;
}

std::shared_ptr<Connection> Marshal<std::shared_ptr<Connection>>::in(const Variant& v) {
  return objectIn<Connection>(v, kName);
}
Variant Marshal<std::shared_ptr<Connection>>::out(std::shared_ptr<Connection> v) {
  return objectOut(std::move(v));
}
std::shared_ptr<Recordset> Marshal<std::shared_ptr<Recordset>>::in(const Variant& v) {
  return objectIn<Recordset>(v, kName);
}
Variant Marshal<std::shared_ptr<Recordset>>::out(std::shared_ptr<Recordset> v) {
  return objectOut(std::move(v));
}

}  // namespace detail

}  // namespace tavelor

// SPDX-License-Identifier: MIT
// Classes and members by name.
#include "tavelor/c/calls.hpp"
#include "tavelor/c/documentation.hpp"
#include "tavelor/components.hpp"
#include "tavelor/frame/component.hpp"
#include "tavelor/frame/recordset_components.hpp"
#include "tavelor/platform/text.hpp"

tavelor_member::tavelor_member(const tavelor::Member& behind, const tavelor_class& owner)
    : Handle(tavelor::c::Kind::kMember),
      slot(behind),
      of(owner),
      signature(behind.signature()),
      documentation(tavelor::c::documentationOf(owner.component.name(), behind.name)) {}

tavelor_class::tavelor_class(const tavelor::Component& behind)
    : Handle(tavelor::c::Kind::kClass),
      component(behind),
      documentation(tavelor::c::documentationOf(behind.name())) {
  for (const tavelor::Member& slot : component.members()) {
    slots.push_back(&members.emplace_back(slot, *this));
  }
}

namespace tavelor::c {

namespace {

/// All classes, in the order of the registry.
const std::list<tavelor_class>& classes() {
  static const std::list<tavelor_class> all = [] {
    std::list<tavelor_class> made;
    for (const auto* group : {&components(), &recordsetComponents()}) {
      for (const Component* component : *group) made.emplace_back(*component);
    }
    return made;
  }();
  return all;
}

const std::vector<const tavelor_class*>& classesByPosition() {
  static const std::vector<const tavelor_class*> all = [] {
    std::vector<const tavelor_class*> made;
    for (const tavelor_class& each : classes()) made.push_back(&each);
    return made;
  }();
  return all;
}

const tavelor_class& classOf(const Component& component) {
  for (const tavelor_class& each : classes()) {
    if (&each.component == &component) return each;
  }
  raise(errors::kMemberNotFound, kSource, "There is no class " + component.name());
}

/// A class or member that may be NULL, or no such thing: then null.
template <typename Of>
const Of* known(const Of* given, Kind kind) {
  const auto* any = reinterpret_cast<const Handle*>(given);
  return any != nullptr && any->kind() == kind ? given : nullptr;
}
const tavelor_class* known(const tavelor_class* given) {
  return known(given, Kind::kClass);
}
const tavelor_member* known(const tavelor_member* given) {
  return known(given, Kind::kMember);
}

}  // namespace

const tavelor_class* classCalled(std::string_view name) {
  for (const tavelor_class& each : classes()) {
    if (each.component.name() == name) return &each;
  }
  return nullptr;
}

}  // namespace tavelor::c

using namespace tavelor::c;

size_t tavelor_class_count(void) {
  return classes().size();
}

const tavelor_class* tavelor_class_at(size_t index) {
  return index < classesByPosition().size() ? classesByPosition()[index] : nullptr;
}

tavelor_status tavelor_class_find(const char* name_or_identifier, const tavelor_class** found,
                                  tavelor_error** error) {
  return answered(error, [&] {
    output(found, "found");
    *found = &classOf(tavelor::component(text(name_or_identifier, "name_or_identifier")));
  });
}

const char* tavelor_class_name(const tavelor_class* of) {
  return known(of) == nullptr ? nullptr : of->component.name().c_str();
}

const char* tavelor_class_identifier(const tavelor_class* of) {
  return known(of) == nullptr ? nullptr : of->component.classId().c_str();
}

const char* tavelor_class_word(const tavelor_class* of) {
  return known(of) == nullptr ? nullptr : of->component.word().c_str();
}

const char* tavelor_class_documentation(const tavelor_class* of) {
  return known(of) == nullptr ? nullptr : of->documentation;
}

size_t tavelor_class_member_count(const tavelor_class* of) {
  return known(of) == nullptr ? 0 : of->slots.size();
}

const tavelor_member* tavelor_class_member_at(const tavelor_class* of, size_t slot) {
  return slot < tavelor_class_member_count(of) ? of->slots[slot] : nullptr;
}

tavelor_status tavelor_class_find_member(const tavelor_class* of, const char* name,
                                         const tavelor_member** found, tavelor_error** error) {
  return answered(error, [&] {
    const tavelor_class& in = handle(of, Kind::kClass, "class");
    output(found, "found");
    const tavelor::Member& slot = in.component.member(text(name, "name"));
    *found = in.slots[static_cast<std::size_t>(&slot - in.component.members().data())];
  });
}

const char* tavelor_member_name(const tavelor_member* member) {
  return known(member) == nullptr ? nullptr : member->slot.name.c_str();
}

const char* tavelor_member_signature(const tavelor_member* member) {
  return known(member) == nullptr ? nullptr : member->signature.c_str();
}

const char* tavelor_member_documentation(const tavelor_member* member) {
  return known(member) == nullptr ? nullptr : member->documentation;
}

int32_t tavelor_member_is_property(const tavelor_member* member) {
  return known(member) != nullptr && member->slot.property ? 1 : 0;
}

const char* tavelor_member_result(const tavelor_member* member) {
  return known(member) == nullptr ? nullptr : member->slot.result.c_str();
}

size_t tavelor_member_parameter_count(const tavelor_member* member) {
  return known(member) == nullptr ? 0 : member->slot.parameters.size();
}

tavelor_status tavelor_member_parameter(const tavelor_member* member, size_t index,
                                        tavelor_parameter* parameter, tavelor_error** error) {
  return answered(error, [&] {
    const tavelor::Member& slot = handle(member, Kind::kMember, "member").slot;
    tavelor_parameter& out = sized(parameter, "parameter");
    if (index >= slot.parameters.size()) {
      tavelor::raise(tavelor::errors::kSubscriptOutOfRange, kSource,
                     slot.name + " has " + std::to_string(slot.parameters.size()) + " parameters");
    }
    const tavelor::Parameter& of = slot.parameters[index];
    tavelor_value byDefault = tavelor_of_empty();
    if (const std::string* words = of.byDefault.getIf<std::string>()) {
      byDefault = tavelor_of_text(words->c_str(), words->size());
    } else {
      put(byDefault, of.byDefault, nullptr);
    }
    out = {sizeof out,          of.name.c_str(),
           of.type.c_str(),     static_cast<std::int32_t>(of.direction),
           of.optional ? 1 : 0, byDefault};
  });
}

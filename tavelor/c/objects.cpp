// SPDX-License-Identifier: MIT
// Objects, and calls of their members.
#include <span>

#include "tavelor/c/calls.hpp"
#include "tavelor/components.hpp"
#include "tavelor/frame/component.hpp"
#include "tavelor/frame/record_class.hpp"
#include "tavelor/services/recordset/recordset.hpp"

namespace {

// Made by the thousand, so looked up once.
const tavelor_class* classOfRecordsets() {
  static const tavelor_class* const found = tavelor::c::classCalled("Recordset");
  return found;
}
const tavelor_class* classOfConnections() {
  static const tavelor_class* const found = tavelor::c::classCalled("Connection");
  return found;
}

}  // namespace

tavelor_object::tavelor_object(std::shared_ptr<tavelor::c::Room> room, tavelor::ObjectPtr held)
    : Held(tavelor::c::Kind::kObject, std::move(room)),
      object(std::move(held)),
      recordset(dynamic_cast<tavelor::Recordset*>(object.get())),
      connection(recordset != nullptr ? nullptr : dynamic_cast<tavelor::Connection*>(object.get())),
      of(recordset != nullptr    ? classOfRecordsets()
         : connection != nullptr ? classOfConnections()
                                 : tavelor::c::classCalled(object->typeName())) {}

void tavelor_object::drop() noexcept {
  texts.clear();
  object.reset();
}

using namespace tavelor::c;

namespace {

/// Gives back to the caller what a call has written by reference. One that stayed the object that
/// it was keeps its handle.
void writeBack(const tavelor::Member& slot, std::span<tavelor::Variant> values,
               tavelor_value* arguments, std::size_t count, const std::shared_ptr<Room>& room) {
  for (std::size_t i = 0; i < count && i < values.size(); ++i) {
    if (slot.parameters[i].direction == tavelor::Parameter::Direction::kIn) continue;
    tavelor_value& argument = arguments[i];
    const auto* object = values[i].getIf<tavelor::ObjectPtr>();
    if (object != nullptr && argument.type == TAVELOR_OBJECT &&
        argument.as.object->object == *object) {
      continue;
    }
    tavelor_value written;
    put(written, values[i], room);
    tavelor_value_clear(&argument);
    argument = written;
  }
}

/// Runs the member. What it wrote before it failed is given back too.
tavelor::Variant run(tavelor_object& object, const tavelor::Component& component,
                     const tavelor::Member& slot, std::vector<tavelor::Variant>& values,
                     tavelor_value* arguments, std::size_t count) {
  try {
    return component.call(*object.object, slot, values);
  } catch (...) {
    writeBack(slot, values, arguments, std::min(count, slot.parameters.size()),
              object.sharedRoom());
    throw;
  }
}

void call(tavelor_object& object, const tavelor::Component& component, const tavelor::Member& slot,
          tavelor_value* arguments, std::size_t count, tavelor_value* result) {
  requireList(arguments, count, "arguments");
  const std::shared_ptr<Room>& room = object.sharedRoom();
  std::vector<tavelor::Variant>& values = room->frame();
  // Emptied however it ends, so that what it holds does not outlive the call.
  struct Emptied {
    std::vector<tavelor::Variant>& values;
    ~Emptied() { values.clear(); }
  } const emptied{values};
  for (std::size_t i = 0; i < count; ++i) append(values, arguments[i], *room);
  const tavelor::Variant given = run(object, component, slot, values, arguments, count);
  writeBack(slot, values, arguments, count, room);
  if (result != nullptr) put(*result, given, room);
}

const tavelor_class& classOf(const tavelor_object& object) {
  if (object.of == nullptr) {
    tavelor::raise(tavelor::errors::kMemberNotFound, kSource,
                   "No member of a " + object.object->typeName() + " is called by name");
  }
  return *object.of;
}

}  // namespace

tavelor_object* tavelor::c::newObject(const std::shared_ptr<Room>& room, ObjectPtr object) {
  return std::make_unique<tavelor_object>(room, std::move(object)).release();
}

tavelor_status tavelor_object_new(tavelor_apartment* apartment, const tavelor_class* of,
                                  tavelor_object** object, tavelor_error** error) {
  return answered(error, [&] {
    const std::shared_ptr<Room>& room = asApartment(apartment).room;
    const Inside inside(*room);
    const tavelor_class& wanted = handle(of, Kind::kClass, "class");
    output(object, "object");
    *object = newObject(room, wanted.component.make());
  });
}

tavelor_object* tavelor_object_retain(tavelor_object* object) {
  if (object != nullptr) object->holds.fetch_add(1, std::memory_order_relaxed);
  return object;
}

void tavelor_object_release(tavelor_object* object) {
  if (object == nullptr) return;
  if (object->holds.fetch_sub(1, std::memory_order_acq_rel) == 1) object->room().giveBack(object);
}

int32_t tavelor_object_kind(const tavelor_object* object) {
  const auto* any = reinterpret_cast<const Handle*>(object);
  if (any == nullptr || any->kind() != Kind::kObject) return -1;
  if (object->recordset != nullptr) return TAVELOR_IS_RECORDSET;
  return object->connection != nullptr ? TAVELOR_IS_CONNECTION : TAVELOR_IS_OBJECT;
}

const tavelor_class* tavelor_object_class(const tavelor_object* object) {
  return tavelor_object_kind(object) < 0 ? nullptr : object->of;
}

int32_t tavelor_object_is_same(const tavelor_object* a, const tavelor_object* b) {
  if (tavelor_object_kind(a) < 0 || tavelor_object_kind(b) < 0) return 0;
  return a == b || (a->object != nullptr && a->object == b->object) ? 1 : 0;
}

tavelor_status tavelor_call(tavelor_object* object, const tavelor_member* member,
                            tavelor_value* arguments, size_t count, tavelor_value* result,
                            tavelor_error** error) {
  return answered(error, [&] {
    tavelor_object& on = asObject(object);
    const Inside inside(on.room());
    const tavelor_member& slot = handle(member, Kind::kMember, "member");
    if (on.of != &slot.of) {
      tavelor::raise(tavelor::errors::kTypeMismatch, kSource,
                     slot.slot.name + " is a member of " + slot.of.component.name() +
                         ", and this is a " + on.object->typeName());
    }
    call(on, slot.of.component, slot.slot, arguments, count, result);
  });
}

tavelor_status tavelor_call_by_name(tavelor_object* object, const char* name,
                                    tavelor_value* arguments, size_t count, tavelor_value* result,
                                    tavelor_error** error) {
  return answered(error, [&] {
    tavelor_object& on = asObject(object);
    const Inside inside(on.room());
    const tavelor::Component& component = classOf(on).component;
    call(on, component, component.member(text(name, "name")), arguments, count, result);
  });
}

tavelor_status tavelor_object_rows(tavelor_object* object, const char* data_member,
                                   tavelor_object** recordset, tavelor_error** error) {
  return answered(error, [&] {
    const tavelor_object& on = asObject(object);
    const Inside inside(on.room());
    const std::string_view name = text(data_member, "data_member");
    output(recordset, "recordset");
    const auto* of = dynamic_cast<const tavelor::RecordClass*>(on.object.get());
    if (of == nullptr) {
      tavelor::raise(tavelor::errors::kTypeMismatch, kSource,
                     "A " + on.object->typeName() + " is no record class");
    }
    tavelor::RecordsetPtr rows = of->DataMember(name);
    if (rows == nullptr) {
      tavelor::raise(tavelor::errors::kObjectNotSet, kSource,
                     of->typeName() + " has no rows '" + std::string(name) +
                         "': IniciaRs opens those of 'Primary'");
    }
    *recordset = newObject(on.sharedRoom(), std::move(rows));
  });
}

// SPDX-License-Identifier: MIT
// Record sets, fields, connections and events by name.
#include "tavelor/frame/recordset_components.hpp"

#include <array>
#include <memory>

#include "tavelor/frame/component.hpp"
#include "tavelor/platform/error.hpp"
#include "tavelor/platform/locale.hpp"
#include "tavelor/platform/statement.hpp"
#include "tavelor/services/recordset/connection.hpp"

namespace tavelor {

namespace {

using Collection = std::vector<Variant>;
using Long = std::int32_t;

template <typename T>
std::unique_ptr<Object> make() {
  return std::make_unique<T>();
}

template <typename Enum>
Long numberOf(Enum value) {
  return static_cast<Long>(value);
}

std::shared_ptr<FieldObject> fieldOf(Recordset& set, const Variant& which) {
  return std::make_shared<FieldObject>(set, set.Fields().Item(which).column());
}

/// A statement as a caller by name gives it, values and all.
Statement written(std::string_view text) {
  return Statement::trusted(text);
}

std::shared_ptr<const Locale> locale() {
  return Locale::byName(detail::callLocale().name);
}

RecordsetEvents& listenerIn(const Variant& value) {
  const ObjectPtr* object = value.getIf<ObjectPtr>();
  auto* listener = object != nullptr ? dynamic_cast<RecordsetEvents*>(object->get()) : nullptr;
  if (listener == nullptr) detail::raiseWrongObject("RecordsetEvents");
  return *listener;
}

/// A filter as callers by name give it: a text, or the number of a FilterGroup.
Variant filter(Recordset& set, const Variant& value) {
  if (value.isNumber()) {
    set.Filter(static_cast<FilterGroup>(value.toInt32(detail::callLocale())));
  } else if (!value.isEmpty()) {
    set.Filter(value.toText(detail::callLocale()));
  }
  const FilterGroup group = set.CurrentFilterGroup();
  if (group != FilterGroup::kNone) return numberOf(group);
  return set.Filter();
}

/// A row for each entry, its values with tabulators between them.
Collection rowsOf(Recordset& set, Long rows, const Variant& start, const Collection& fields) {
  const std::vector<std::vector<Variant>> values = set.GetRows(rows, start, fields);
  Collection lines(values.empty() ? 0 : values.front().size());
  for (std::size_t row = 0; row < lines.size(); ++row) {
    std::string line;
    for (std::size_t field = 0; field < values.size(); ++field) {
      if (field > 0) line += '\t';
      const Variant& value = values[field][row];
      if (!value.isNull()) line += value.toText(detail::callLocale());
    }
    lines[row] = std::move(line);
  }
  return lines;
}

std::vector<Member> recordsetMembers() {
  using R = Recordset;
  using std::shared_ptr;
  return {
      member(
          "Open",
          +[](R& r, std::string_view statement, const shared_ptr<Connection>& connection) {
            statement.empty() ? r.Open() : r.Open(written(statement), connection);
          },
          "[sStatement], [objCn]"),
      member(
          "Close", +[](R& r) { r.Close(); }),
      property(
          "State", +[](R& r) { return numberOf(r.State()); }),
      member(
          "Requery", +[](R& r, Long options) { r.Requery(options); }, "[Options = -1]"),
      member(
          "Clone", +[](R& r, Long lockType) { return r.Clone(static_cast<LockType>(lockType)); },
          "[LockType = -1]"),
      property(
          "ActiveConnection", +[](R& r) { return r.ActiveConnection(); }),
      member(
          "Connect",
          +[](R& r, const shared_ptr<Connection>& connection) { r.ActiveConnection(connection); },
          "[objCn]"),
      property(
          "Source", +[](R& r) { return r.Source(); }),
      property(
          "CursorLocation", +[](R& r) { return numberOf(r.CursorLocation()); }),
      property(
          "CursorType", +[](R& r) { return numberOf(r.CursorType()); }),
      property(
          "LockType",
          +[](R& r, const Variant& value) {
            if (!value.isEmpty())
              r.LockType(static_cast<LockType>(value.toInt32(detail::callLocale())));
            return numberOf(r.LockType());
          },
          "[value]"),
      property(
          "Fields", +[](R& r) { return std::make_shared<FieldsObject>(r); }),
      member(
          "Field", +[](R& r, const Variant& which) { return fieldOf(r, which); }, "which"),
      property(
          "Bof", +[](R& r) { return r.Bof(); }),
      property(
          "Eof", +[](R& r) { return r.Eof(); }),
      property(
          "RecordCount", +[](R& r) { return r.RecordCount(); }),
      member(
          "MoveFirst", +[](R& r) { r.MoveFirst(); }),
      member(
          "MoveLast", +[](R& r) { r.MoveLast(); }),
      member(
          "MoveNext", +[](R& r) { r.MoveNext(); }),
      member(
          "MovePrevious", +[](R& r) { r.MovePrevious(); }),
      member(
          "Move", +[](R& r, Long rows, const Variant& start) { r.Move(rows, start); },
          "rows, [start]"),
      property(
          "AbsolutePosition",
          +[](R& r, const Variant& value) {
            if (!value.isEmpty()) r.AbsolutePosition(value.toInt32(detail::callLocale()));
            return r.AbsolutePosition();
          },
          "[value]"),
      property(
          "Bookmark",
          +[](R& r, const Variant& value) {
            if (!value.isEmpty()) r.Bookmark(value);
            return r.Bookmark();
          },
          "[value]"),
      member(
          "CompareBookmarks",
          +[](R& r, const Variant& first, const Variant& second) {
            return numberOf(r.CompareBookmarks(first, second));
          },
          "first, second"),
      property(
          "PageSize",
          +[](R& r, const Variant& value) {
            if (!value.isEmpty()) r.PageSize(value.toInt32(detail::callLocale()));
            return r.PageSize();
          },
          "[value]"),
      property(
          "PageCount", +[](R& r) { return r.PageCount(); }),
      property(
          "AbsolutePage",
          +[](R& r, const Variant& value) {
            if (!value.isEmpty()) r.AbsolutePage(value.toInt32(detail::callLocale()));
            return r.AbsolutePage();
          },
          "[value]"),
      member(
          "Find",
          +[](R& r, std::string_view criteria, Long skipRows, Long direction,
              const Variant& start) {
            r.Find(criteria, skipRows, static_cast<SearchDirection>(direction), start);
          },
          "Criteria, [SkipRows], [Direction = 1], [start]"),
      member(
          "GetRows",
          +[](R& r, Long rows, const Variant& start, const Collection& fields) {
            return rowsOf(r, rows, start, fields);
          },
          "[rows = -1], [start], [fields]"),
      property(
          "Filter", +[](R& r, const Variant& value) { return filter(r, value); }, "[value]"),
      property(
          "CurrentFilterGroup", +[](R& r) { return numberOf(r.CurrentFilterGroup()); }),
      property(
          "Sort",
          +[](R& r, const Variant& value) {
            if (!value.isEmpty()) r.Sort(value.toText(detail::callLocale()));
            return r.Sort();
          },
          "[value]"),
      member(
          "AddNew",
          +[](R& r, const Collection& fields, const Collection& values) {
            fields.empty() ? r.AddNew() : r.AddNew(fields, values);
          },
          "[fields], [values]"),
      member(
          "Update",
          +[](R& r, const Collection& fields, const Collection& values) {
            fields.empty() ? r.Update() : r.Update(fields, values);
          },
          "[fields], [values]"),
      member(
          "CancelUpdate", +[](R& r) { r.CancelUpdate(); }),
      member(
          "Delete", +[](R& r, Long affect) { r.Delete(static_cast<Affect>(affect)); },
          "[AffectRecords = 1]"),
      member(
          "UpdateBatch", +[](R& r, Long affect) { r.UpdateBatch(static_cast<Affect>(affect)); },
          "[AffectRecords = 3]"),
      member(
          "CancelBatch", +[](R& r, Long affect) { r.CancelBatch(static_cast<Affect>(affect)); },
          "[AffectRecords = 3]"),
      member(
          "Resync",
          +[](R& r, Long affect, Long values) {
            r.Resync(static_cast<Affect>(affect), static_cast<ResyncValues>(values));
          },
          "[AffectRecords = 3], [ResyncValues = 2]"),
      member(
          "Supports", +[](R& r, Long options) { return r.Supports(options); }, "CursorOptions"),
      property(
          "EditMode", +[](R& r) { return numberOf(r.EditMode()); }),
      property(
          "Status", +[](R& r) { return r.Status(); }),
      property(
          "hasUnwrittenChanges", +[](R& r) { return r.hasUnwrittenChanges(); }),
      member(
          "Save", +[](R& r, std::string_view path) { r.Save(std::string(path)); }, "path"),
      member(
          "SaveXml", +[](R& r) { return r.SaveXml(); }),
      member(
          "OpenFile",
          +[](R&, std::string_view path) { return R::OpenFile(std::string(path), locale()); },
          "path"),
      member(
          "LoadXml", +[](R&, std::string_view xml) { return R::LoadXml(xml, locale()); }, "xml"),
      member(
          "addListener", +[](R& r, const Variant& events) { r.addListener(&listenerIn(events)); },
          "events"),
      member(
          "removeListener",
          +[](R& r, const Variant& events) { r.removeListener(&listenerIn(events)); }, "events"),
      property(
          "memory", +[](R& r) { return static_cast<double>(r.memory()); }),
  };
}

std::vector<Member> fieldsMembers() {
  using F = FieldsObject;
  return {
      property(
          "Count", +[](F& f) { return f.set().Fields().Count(); }),
      property(
          "Item", +[](F& f, const Variant& which) { return fieldOf(f.set(), which); }, "which"),
      member(
          "Append",
          +[](F& f, std::string_view name, Long type, Long size, Long attributes) {
            f.set().Fields().Append(name, static_cast<DataType>(type), size, attributes);
          },
          "Name, Type, [DefinedSize], [Attrib = 32]"),
  };
}

std::vector<Member> fieldMembers() {
  using F = FieldObject;
  return {
      property(
          "Name", +[](F& f) { return std::string(f.field().Name()); }),
      property(
          "Type", +[](F& f) { return f.field().Type(); }),
      property(
          "DefinedSize", +[](F& f) { return f.field().DefinedSize(); }),
      property(
          "ActualSize", +[](F& f) { return f.field().ActualSize(); }),
      property(
          "Precision", +[](F& f) { return f.field().Precision(); }),
      property(
          "Attributes", +[](F& f) { return f.field().Attributes(); }),
      property(
          "BaseTable", +[](F& f) { return std::string(f.field().BaseTable()); }),
      property(
          "Value",
          +[](F& f, const Variant& value) {
            if (!value.isEmpty()) f.field().Value(value);
            return f.field().Value();
          },
          "[value]"),
      property(
          "OriginalValue", +[](F& f) { return f.field().OriginalValue(); }),
      property(
          "UnderlyingValue", +[](F& f) { return f.field().UnderlyingValue(); }),
      member(
          "AppendChunk", +[](F& f, const Variant& data) { f.field().AppendChunk(data); }, "Data"),
      member(
          "GetChunk", +[](F& f, Long length) { return f.field().GetChunk(length); }, "Length"),
      property(
          "column", +[](F& f) { return static_cast<Long>(f.field().column()); }),
  };
}

std::vector<Member> connectionMembers() {
  using C = Connection;
  return {
      member(
          "BeginTrans", +[](C& c) { return Long{c.BeginTrans()}; }),
      member(
          "CommitTrans", +[](C& c) { c.CommitTrans(); }),
      member(
          "RollbackTrans", +[](C& c) { c.RollbackTrans(); }),
      member(
          "Close", +[](C& c) { c.Close(); }),
      property(
          "State", +[](C& c) { return numberOf(c.State()); }),
      property(
          "ConnectionString", +[](C& c) { return c.ConnectionString(); }),
      member(
          "Execute",
          +[](C& c, std::string_view statement) {
            return static_cast<double>(c.Execute(written(statement)));
          },
          "sStatement"),
      member(
          "Send", +[](C& c, std::string_view statement) { c.Send(written(statement)); },
          "sStatement"),
      member(
          "HoldNumbersOf", +[](C& c, std::string_view table) { c.HoldNumbersOf(table); }, "sTable"),
      property(
          "waits", +[](C& c) { return static_cast<double>(c.waits()); }),
      member(
          "firstValue",
          +[](C& c, std::string_view statement, std::string_view column) {
            return c.firstValue(written(statement), column).value_or(Variant());
          },
          "sStatement, sColumn"),
      member(
          "anyRow", +[](C& c, std::string_view statement) { return c.anyRow(written(statement)); },
          "sStatement"),
      property(
          "selector", +[](C& c) { return Long{c.selector()}; }),
      property(
          "transactionLevel", +[](C& c) { return Long{c.transactionLevel()}; }),
      property(
          "locale", +[](C& c) { return c.locale() ? c.locale()->name : std::string(); }),
  };
}

Member event(std::string_view name, std::string_view names, std::vector<std::string> types) {
  Member slot;
  slot.name = name;
  slot.parameters = detail::parseParameters(names, std::move(types), {});
  slot.body = [event = std::string(name)](Object& object, std::span<Variant> arguments) {
    auto* events = dynamic_cast<RecordsetEventsObject*>(&object);
    if (events == nullptr) detail::raiseWrongObject("RecordsetEvents");
    events->raise(event, arguments);
    return Variant();
  };
  return slot;
}

std::vector<Member> eventMembers() {
  const std::string number = "Long";
  const std::string object = "Object";
  return {
      event("WillMove", "reason, inout status, set", {number, number, object}),
      event("MoveComplete", "reason, error, inout status, set", {number, number, number, object}),
      event("EndOfRecordset", "inout moreData, inout status, set", {"Boolean", number, object}),
      event("WillChangeField", "field, inout status, set", {object, number, object}),
      event("FieldChangeComplete", "field, error, inout status, set",
            {object, number, number, object}),
      event("WillChangeRecord", "reason, records, inout status, set",
            {number, number, number, object}),
      event("RecordChangeComplete", "reason, records, error, inout status, set",
            {number, number, number, number, object}),
      event("WillChangeRecordset", "reason, inout status, set", {number, number, object}),
      event("RecordsetChangeComplete", "reason, error, inout status, set",
            {number, number, number, object}),
  };
}

Variant objectOf(Recordset& set) {
  ObjectPtr object = set.weak_from_this().lock();
  return object ? Variant(std::move(object)) : Variant();
}

Variant objectOf(std::span<const Field> fields, Recordset& set) {
  return ObjectPtr(std::make_shared<FieldObject>(set, fields.front().column()));
}

/// The number of an error, 0 for none.
Variant numberOf(const Error* error) {
  return error != nullptr ? error->number() : Long{0};
}

/// Hands an event on and reads back what its handler left in `status`.
template <std::size_t N>
void handOn(const RecordsetEventsObject& events, std::string_view name,
            std::array<Variant, N>& arguments, EventStatus& status) {
  constexpr std::size_t kStatus = N - 2;
  arguments[kStatus] = numberOf(status);
  events.raise(name, arguments);
  status = static_cast<EventStatus>(arguments[kStatus].toInt32(*Locale::neutral()));
}

}  // namespace

Recordset& FieldsObject::set() const {
  if (set_ == nullptr) raise(errors::kObjectNotSet, kTypeName, "It is of no record set");
  return *set_;
}

void RecordsetEventsObject::WillMove(EventReason reason, EventStatus& status, Recordset& set) {
  std::array<Variant, 3> arguments{numberOf(reason), {}, objectOf(set)};
  handOn(*this, "WillMove", arguments, status);
}

void RecordsetEventsObject::MoveComplete(EventReason reason, const Error* error,
                                         EventStatus& status, Recordset& set) {
  std::array<Variant, 4> arguments{numberOf(reason), numberOf(error), {}, objectOf(set)};
  handOn(*this, "MoveComplete", arguments, status);
}

void RecordsetEventsObject::EndOfRecordset(bool& moreData, EventStatus& status, Recordset& set) {
  std::array<Variant, 3> arguments{moreData, {}, objectOf(set)};
  handOn(*this, "EndOfRecordset", arguments, status);
  moreData = arguments[0].toBoolean(*Locale::neutral());
}

void RecordsetEventsObject::WillChangeField(std::span<const Field> fields, EventStatus& status,
                                            Recordset& set) {
  std::array<Variant, 3> arguments{objectOf(fields, set), {}, objectOf(set)};
  handOn(*this, "WillChangeField", arguments, status);
}

void RecordsetEventsObject::FieldChangeComplete(std::span<const Field> fields, const Error* error,
                                                EventStatus& status, Recordset& set) {
  std::array<Variant, 4> arguments{objectOf(fields, set), numberOf(error), {}, objectOf(set)};
  handOn(*this, "FieldChangeComplete", arguments, status);
}

void RecordsetEventsObject::WillChangeRecord(EventReason reason, std::int32_t records,
                                             EventStatus& status, Recordset& set) {
  std::array<Variant, 4> arguments{numberOf(reason), records, {}, objectOf(set)};
  handOn(*this, "WillChangeRecord", arguments, status);
}

void RecordsetEventsObject::RecordChangeComplete(EventReason reason, std::int32_t records,
                                                 const Error* error, EventStatus& status,
                                                 Recordset& set) {
  std::array<Variant, 5> arguments{numberOf(reason), records, numberOf(error), {}, objectOf(set)};
  handOn(*this, "RecordChangeComplete", arguments, status);
}

void RecordsetEventsObject::WillChangeRecordset(EventReason reason, EventStatus& status,
                                                Recordset& set) {
  std::array<Variant, 3> arguments{numberOf(reason), {}, objectOf(set)};
  handOn(*this, "WillChangeRecordset", arguments, status);
}

void RecordsetEventsObject::RecordsetChangeComplete(EventReason reason, const Error* error,
                                                    EventStatus& status, Recordset& set) {
  std::array<Variant, 4> arguments{numberOf(reason), numberOf(error), {}, objectOf(set)};
  handOn(*this, "RecordsetChangeComplete", arguments, status);
}

const std::vector<const Component*>& recordsetComponents() {
  static const std::array<Component, 5> tables{{
      {"Recordset", "{6B1F0A52-3C4D-4E8B-9A57-21D0C7E4BF01}", "", make<Recordset>,
       recordsetMembers()},
      {"Fields", "{6B1F0A52-3C4D-4E8B-9A57-21D0C7E4BF02}", "", make<FieldsObject>, fieldsMembers()},
      {"Field", "{6B1F0A52-3C4D-4E8B-9A57-21D0C7E4BF03}", "", make<FieldObject>, fieldMembers()},
      {"Connection", "{6B1F0A52-3C4D-4E8B-9A57-21D0C7E4BF04}", "", make<Connection>,
       connectionMembers()},
      {"RecordsetEvents", "{6B1F0A52-3C4D-4E8B-9A57-21D0C7E4BF05}", "", make<RecordsetEventsObject>,
       eventMembers()},
  }};
  static const std::vector<const Component*> all = {&tables[0], &tables[1], &tables[2], &tables[3],
                                                    &tables[4]};
  return all;
}

}  // namespace tavelor

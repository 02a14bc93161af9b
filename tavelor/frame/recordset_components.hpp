// SPDX-License-Identifier: MIT
// Record sets, fields, connections and events by name, for callers that know no C++ type.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "tavelor/platform/callback.hpp"
#include "tavelor/platform/export.hpp"
#include "tavelor/platform/variant.hpp"
#include "tavelor/services/recordset/events.hpp"
#include "tavelor/services/recordset/recordset.hpp"

namespace tavelor {

class Component;

/// The tables of Recordset, Fields, Field, Connection and RecordsetEvents. Enumerations and bits
/// travel as their numbers; a property is written when a value is given. Made alone, Fields and
/// Field raise 91: they come from a set.
TAVELOR_API const std::vector<const Component*>& recordsetComponents();

/// The columns of a set as an object, which keeps a set alive that somebody shares.
class TAVELOR_API FieldsObject final : public Object {
 public:
  /// Of its component.
  static constexpr std::string_view kTypeName = "Fields";

  /// Of no set.
  FieldsObject() = default;
  /// Of `set`, which must outlive the object where nobody shares it.
  explicit FieldsObject(Recordset& set) : set_(&set), kept_(set.weak_from_this().lock()) {}

  std::string typeName() const override { return std::string(kTypeName); }
  /// The set. Raises 91 without one.
  Recordset& set() const;

 private:
  Recordset* set_ = nullptr;
  RecordsetPtr kept_;
};

/// A column of a set as an object, kept as FieldsObject does.
class TAVELOR_API FieldObject final : public Object {
 public:
  /// Of its component.
  static constexpr std::string_view kTypeName = "Field";

  /// Of no set.
  FieldObject() = default;
  /// A column, from 0.
  FieldObject(Recordset& set, std::size_t column) : fields_(set), column_(column) {}

  std::string typeName() const override { return std::string(kTypeName); }
  /// The column. Raises 91 without a set.
  Field field() const { return {fields_.set(), column_}; }

 private:
  FieldsObject fields_;
  std::size_t column_ = 0;
};

/// A listener that hands each event on by its name, with arguments in the order of its table: those
/// by reference (`moreData`, `status`) are read back. Add it to a set with addListener; it must
/// outlive the set or be removed.
class TAVELOR_API RecordsetEventsObject final : public Object, public RecordsetEvents {
 public:
  /// Of its component.
  static constexpr std::string_view kTypeName = "RecordsetEvents";
  /// Takes an event's name and its arguments.
  using Handler = Callback<void(std::string_view event, std::span<Variant> arguments)>;

  /// Hands nothing on.
  RecordsetEventsObject() = default;
  /// Hands events on to `handler`.
  explicit RecordsetEventsObject(Handler handler) : handler_(std::move(handler)) {}

  std::string typeName() const override { return std::string(kTypeName); }
  /// Runs the handler, if there is one.
  void raise(std::string_view event, std::span<Variant> arguments) const {
    if (handler_) handler_(event, arguments);
  }

  void WillMove(EventReason reason, EventStatus& status, Recordset& set) override;
  void MoveComplete(EventReason reason, const Error* error, EventStatus& status,
                    Recordset& set) override;
  void EndOfRecordset(bool& moreData, EventStatus& status, Recordset& set) override;
  void WillChangeField(std::span<const Field> fields, EventStatus& status, Recordset& set) override;
  void FieldChangeComplete(std::span<const Field> fields, const Error* error, EventStatus& status,
                           Recordset& set) override;
  void WillChangeRecord(EventReason reason, std::int32_t records, EventStatus& status,
                        Recordset& set) override;
  void RecordChangeComplete(EventReason reason, std::int32_t records, const Error* error,
                            EventStatus& status, Recordset& set) override;
  void WillChangeRecordset(EventReason reason, EventStatus& status, Recordset& set) override;
  void RecordsetChangeComplete(EventReason reason, const Error* error, EventStatus& status,
                               Recordset& set) override;

 private:
  Handler handler_;
};

}  // namespace tavelor

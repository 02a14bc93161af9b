// SPDX-License-Identifier: MIT
// What a record set tells to those who listen.
#pragma once

#include <cstdint>
#include <span>

#include "tavelor/platform/export.hpp"
#include "tavelor/services/recordset/constants.hpp"

namespace tavelor {

class Error;
class Field;
class Recordset;

/// A listener of one record set. Every Will... is followed by its ...Complete. `status` comes as
/// kOk, or kCantDeny where the operation can't be stopped; a Will... that leaves kCancel in it
/// stops the operation, which then fails with -2147217842 and nothing changed, and the ...Complete
/// comes with kErrorsOccurred. kUnwantedEvent stops further deliveries of that event to that
/// listener.
///
/// A listener may move, edit or close the set and add or remove listeners from inside an event. If
/// that takes away the row that the operation works on, the operation fails with 3219. An exception
/// out of a Will... fails the operation with it; out of a ...Complete it reaches the caller, with
/// the operation done. The change events of a set are told to the listeners of its clones too.
class TAVELOR_API RecordsetEvents {
 public:
  virtual ~RecordsetEvents() = default;

  /// Before the cursor moves; kCancel keeps it where it is.
  virtual void WillMove(EventReason /*reason*/, EventStatus& /*status*/, Recordset& /*set*/) {}
  /// `error` is null unless `status` is kErrorsOccurred.
  virtual void MoveComplete(EventReason /*reason*/, const Error* /*error*/, EventStatus& /*status*/,
                            Recordset& /*set*/) {}
  /// A move forward is about to end behind the last row. `moreData` set true says that the listener
  /// appended rows, and the move goes to the first of them.
  virtual void EndOfRecordset(bool& /*moreData*/, EventStatus& /*status*/, Recordset& /*set*/) {}

  /// Before a field is written; kCancel leaves it as it is.
  virtual void WillChangeField(std::span<const Field> /*fields*/, EventStatus& /*status*/,
                               Recordset& /*set*/) {}
  /// After a field was written, or was not.
  virtual void FieldChangeComplete(std::span<const Field> /*fields*/, const Error* /*error*/,
                                   EventStatus& /*status*/, Recordset& /*set*/) {}
  /// Before rows change; kCancel leaves them as they are.
  virtual void WillChangeRecord(EventReason /*reason*/, std::int32_t /*records*/,
                                EventStatus& /*status*/, Recordset& /*set*/) {}
  /// After rows have changed, or have not.
  virtual void RecordChangeComplete(EventReason /*reason*/, std::int32_t /*records*/,
                                    const Error* /*error*/, EventStatus& /*status*/,
                                    Recordset& /*set*/) {}
  /// Requery and Close.
  virtual void WillChangeRecordset(EventReason /*reason*/, EventStatus& /*status*/,
                                   Recordset& /*set*/) {}
  /// After a Requery or Close.
  virtual void RecordsetChangeComplete(EventReason /*reason*/, const Error* /*error*/,
                                       EventStatus& /*status*/, Recordset& /*set*/) {}
};

}  // namespace tavelor

// SPDX-License-Identifier: MIT
// Record sets: opening, columns, positions, view and changes.
#include "tavelor/c/recordsets.hpp"

#include "tavelor/c/statements.hpp"

using namespace tavelor::c;
using tavelor::Recordset;

namespace {

void take(std::int32_t* to, std::int32_t value) {
  if (to != nullptr) *to = value;
}
void take(std::int32_t* to, bool value) {
  if (to != nullptr) *to = value ? 1 : 0;
}

void tellWhetherOnRow(std::int32_t* on_row, const Recordset& set) {
  if (on_row == nullptr) return;
  *on_row = set.State() == tavelor::ObjectState::kOpen && !set.Bof() && !set.Eof() ? 1 : 0;
}

}  // namespace

// ---------------------------------------------------------------------------------------------
// Opening

tavelor_status tavelor_recordset_open(tavelor_object* connection, const char* statement,
                                      const tavelor_value* values, size_t count, int32_t lock,
                                      tavelor_object** recordset, tavelor_error** error) {
  return answered(error, [&] {
    const tavelor_object& over = asConnection(connection);
    const Inside inside(over.room());
    output(recordset, "recordset");
    requireOneOf(lock, "lock", TAVELOR_LOCK_READ_ONLY, TAVELOR_LOCK_OPTIMISTIC, TAVELOR_LOCK_BATCH);
    auto set = std::make_shared<Recordset>();
    set->LockType(static_cast<tavelor::LockType>(lock));
    set->Open(statementOf(statement, values, count, over.room()),
              over.connection->weak_from_this().lock());
    *recordset = newObject(over.sharedRoom(), std::move(set));
  });
}

tavelor_status tavelor_recordset_new(tavelor_apartment* apartment,
                                     const tavelor_column_wish* columns, size_t count,
                                     tavelor_object** recordset, tavelor_error** error) {
  return answered(error, [&] {
    const std::shared_ptr<Room>& room = asApartment(apartment).room;
    const Inside inside(*room);
    output(recordset, "recordset");
    requireList(columns, count, "columns");
    auto set = std::make_shared<Recordset>();
    for (size_t i = 0; i < count; ++i) {
      const tavelor_column_wish& column = sized(&columns[i], "columns");
      set->Fields().Append(text(column.name, "name"), static_cast<tavelor::DataType>(column.type),
                           column.width);
    }
    set->Open();
    *recordset = newObject(room, std::move(set));
  });
}

tavelor_status tavelor_recordset_close(tavelor_object* recordset, tavelor_error** error) {
  return onRecordset(recordset, error, [](Recordset& set, tavelor_object&) { set.Close(); });
}

tavelor_status tavelor_recordset_requery(tavelor_object* recordset, tavelor_error** error) {
  return onRecordset(recordset, error, [](Recordset& set, tavelor_object&) { set.Requery(); });
}

tavelor_status tavelor_recordset_clone(tavelor_object* recordset, int32_t read_only,
                                       tavelor_object** clone, tavelor_error** error) {
  return onRecordset(recordset, error, [&](Recordset& set, tavelor_object& object) {
    output(clone, "clone");
    *clone = newObject(
        object.sharedRoom(),
        set.Clone(read_only != 0 ? tavelor::LockType::kReadOnly : tavelor::LockType::kUnspecified));
  });
}

tavelor_status tavelor_recordset_is_open(tavelor_object* recordset, int32_t* open,
                                         tavelor_error** error) {
  return answered(error, [&] {
    const tavelor_object& object = asRecordset(recordset);
    output(open, "open") = object.recordset->State() == tavelor::ObjectState::kOpen ? 1 : 0;
  });
}

// ---------------------------------------------------------------------------------------------
// Columns

tavelor_status tavelor_recordset_column_count(tavelor_object* recordset, int32_t* count,
                                              tavelor_error** error) {
  return answered(error, [&] {
    Recordset& set = *asRecordset(recordset).recordset;
    output(count, "count");
    static_cast<void>(set.Bof());  // raises where the set is closed
    *count = set.Fields().Count();
  });
}

tavelor_status tavelor_recordset_column(tavelor_object* recordset, int32_t index,
                                        tavelor_column* column, tavelor_error** error) {
  return answered(error, [&] {
    Recordset& set = *asRecordset(recordset).recordset;
    tavelor_column& out = sized(column, "column");
    const tavelor::Field field = set.Field(index);
    out = {sizeof out,          field.Name().c_str(), field.BaseTable().c_str(), field.Type(),
           field.DefinedSize(), field.Precision(),    field.Attributes()};
  });
}

tavelor_status tavelor_recordset_find_column(tavelor_object* recordset, const char* name,
                                             int32_t* index, tavelor_error** error) {
  return answered(error, [&] {
    Recordset& set = *asRecordset(recordset).recordset;
    output(index, "index");
    *index = static_cast<std::int32_t>(set.Field(text(name, "name")).column());
  });
}

// ---------------------------------------------------------------------------------------------
// Position

tavelor_status tavelor_recordset_move(tavelor_object* recordset, int32_t where, int32_t* on_row,
                                      tavelor_error** error) {
  return onRecordset(recordset, error, [&](Recordset& set, tavelor_object&) {
    requireOneOf(where, "where", TAVELOR_FIRST, TAVELOR_LAST, TAVELOR_NEXT, TAVELOR_PREVIOUS);
    const bool toEnd = where == TAVELOR_FIRST || where == TAVELOR_LAST;
    const bool isEmpty = toEnd && set.RecordCount() == 0 && set.Bof() && set.Eof();
    if (where == TAVELOR_NEXT) {
      set.MoveNext();
    } else if (where == TAVELOR_PREVIOUS) {
      set.MovePrevious();
    } else if (!isEmpty) {
      where == TAVELOR_FIRST ? set.MoveFirst() : set.MoveLast();
    }
    tellWhetherOnRow(on_row, set);
  });
}

tavelor_status tavelor_recordset_move_by(tavelor_object* recordset, int32_t rows,
                                         const double* bookmark, int32_t* on_row,
                                         tavelor_error** error) {
  return onRecordset(recordset, error, [&](Recordset& set, tavelor_object&) {
    set.Move(rows, bookmark == nullptr ? tavelor::Variant() : tavelor::Variant(*bookmark));
    tellWhetherOnRow(on_row, set);
  });
}

tavelor_status tavelor_recordset_where(tavelor_object* recordset, int32_t* bof, int32_t* eof,
                                       int32_t* rows, int32_t* position, tavelor_error** error) {
  return answered(error, [&] {
    Recordset& set = *asRecordset(recordset).recordset;
    const bool atBof = set.Bof();
    take(bof, atBof);
    take(eof, set.Eof());
    take(rows, set.RecordCount());
    if (position != nullptr) *position = set.AbsolutePosition();
  });
}

tavelor_status tavelor_recordset_set_position(tavelor_object* recordset, int32_t position,
                                              tavelor_error** error) {
  return onRecordset(recordset, error,
                     [&](Recordset& set, tavelor_object&) { set.AbsolutePosition(position); });
}

tavelor_status tavelor_recordset_bookmark(tavelor_object* recordset, double* bookmark,
                                          tavelor_error** error) {
  return answered(error, [&] {
    const Recordset& set = *asRecordset(recordset).recordset;
    output(bookmark, "bookmark");
    *bookmark = *set.Bookmark().getIf<double>();
  });
}

tavelor_status tavelor_recordset_set_bookmark(tavelor_object* recordset, double bookmark,
                                              tavelor_error** error) {
  return onRecordset(recordset, error,
                     [&](Recordset& set, tavelor_object&) { set.Bookmark(bookmark); });
}

// ---------------------------------------------------------------------------------------------
// View

tavelor_status tavelor_recordset_filter(tavelor_object* recordset, const char* criteria,
                                        const tavelor_value* values, size_t count,
                                        tavelor_error** error) {
  return onRecordset(recordset, error, [&](Recordset& set, tavelor_object& object) {
    set.Filter(criteriaOf(criteria, values, count, object.room()));
  });
}

tavelor_status tavelor_recordset_filter_group(tavelor_object* recordset, int32_t group,
                                              tavelor_error** error) {
  return onRecordset(recordset, error, [&](Recordset& set, tavelor_object&) {
    set.Filter(static_cast<tavelor::FilterGroup>(group));
  });
}

tavelor_status tavelor_recordset_filter_bookmarks(tavelor_object* recordset,
                                                  const double* bookmarks, size_t count,
                                                  tavelor_error** error) {
  return onRecordset(recordset, error, [&](Recordset& set, tavelor_object&) {
    requireList(bookmarks, count, "bookmarks");
    set.Filter(std::vector<tavelor::Variant>(bookmarks, bookmarks + count));
  });
}

tavelor_status tavelor_recordset_sort(tavelor_object* recordset, const char* order,
                                      tavelor_error** error) {
  return onRecordset(recordset, error,
                     [&](Recordset& set, tavelor_object&) { set.Sort(text(order, "order")); });
}

tavelor_status tavelor_recordset_view(tavelor_object* recordset, const char** filter,
                                      const char** order, tavelor_error** error) {
  return answered(error, [&] {
    const Recordset& set = *asRecordset(recordset).recordset;
    const char* const criteria = set.Filter().c_str();
    if (filter != nullptr) *filter = criteria;
    if (order != nullptr) *order = set.Sort().c_str();
  });
}

tavelor_status tavelor_recordset_find(tavelor_object* recordset, const char* criteria,
                                      const tavelor_value* values, size_t count, int32_t skip,
                                      int32_t backward, int32_t* found, tavelor_error** error) {
  return onRecordset(recordset, error, [&](Recordset& set, tavelor_object& object) {
    set.Find(
        criteriaOf(criteria, values, count, object.room()), skip,
        backward != 0 ? tavelor::SearchDirection::kBackward : tavelor::SearchDirection::kForward);
    tellWhetherOnRow(found, set);
  });
}

// ---------------------------------------------------------------------------------------------
// Changes

tavelor_status tavelor_recordset_set(tavelor_object* recordset, int32_t column,
                                     const tavelor_value* value, tavelor_error** error) {
  return onRecordset(recordset, error, [&](Recordset& set, tavelor_object& object) {
    set.Field(column).Value(variantOf(output(value, "value"), object.room()));
  });
}

tavelor_status tavelor_recordset_add_new(tavelor_object* recordset, tavelor_error** error) {
  return onRecordset(recordset, error, [](Recordset& set, tavelor_object&) { set.AddNew(); });
}

tavelor_status tavelor_recordset_update(tavelor_object* recordset, tavelor_error** error) {
  return onRecordset(recordset, error, [](Recordset& set, tavelor_object&) { set.Update(); });
}

tavelor_status tavelor_recordset_cancel_update(tavelor_object* recordset, tavelor_error** error) {
  return onRecordset(recordset, error, [](Recordset& set, tavelor_object&) { set.CancelUpdate(); });
}

tavelor_status tavelor_recordset_delete(tavelor_object* recordset, int32_t affect,
                                        tavelor_error** error) {
  return onRecordset(recordset, error, [&](Recordset& set, tavelor_object&) {
    set.Delete(static_cast<tavelor::Affect>(affect));
  });
}

tavelor_status tavelor_recordset_update_batch(tavelor_object* recordset, int32_t affect,
                                              tavelor_error** error) {
  return onRecordset(recordset, error, [&](Recordset& set, tavelor_object&) {
    set.UpdateBatch(static_cast<tavelor::Affect>(affect));
  });
}

tavelor_status tavelor_recordset_cancel_batch(tavelor_object* recordset, int32_t affect,
                                              tavelor_error** error) {
  return onRecordset(recordset, error, [&](Recordset& set, tavelor_object&) {
    set.CancelBatch(static_cast<tavelor::Affect>(affect));
  });
}

tavelor_status tavelor_recordset_resync(tavelor_object* recordset, int32_t affect,
                                        int32_t keep_changes, tavelor_error** error) {
  return onRecordset(recordset, error, [&](Recordset& set, tavelor_object&) {
    set.Resync(static_cast<tavelor::Affect>(affect), keep_changes != 0
                                                         ? tavelor::ResyncValues::kUnderlying
                                                         : tavelor::ResyncValues::kAll);
  });
}

tavelor_status tavelor_recordset_state(tavelor_object* recordset, int32_t* edit, int32_t* status,
                                       int32_t* unwritten, tavelor_error** error) {
  return answered(error, [&] {
    const Recordset& set = *asRecordset(recordset).recordset;
    const bool pending = set.hasUnwrittenChanges();
    const auto mode = edit == nullptr ? 0 : static_cast<std::int32_t>(set.EditMode());
    const std::int32_t bits = status == nullptr ? 0 : set.Status();
    take(edit, mode);
    take(status, bits);
    take(unwritten, pending);
  });
}

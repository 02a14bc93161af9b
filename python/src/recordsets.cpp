// SPDX-License-Identifier: MIT
// Record sets: cursor, cells, view, edit.
#include "recordsets.hpp"

#include <memory>
#include <vector>

#include "objects.hpp"
#include "values.hpp"

namespace tavelor::python {

namespace {

PyObject* rowFactory = nullptr;

/// Runs one function of the interface with a set's handle.
template <typename Call>
bool with(PyObject* self, Call call) {
  Object* const object = objectOf(self);
  return done(object->apartment,
              [&](tavelor_error** error) { return call(object->handle, error); });
}

template <auto kFunction>
PyObject* step(PyObject* self, PyObject* /*none*/) {
  return with(self, kFunction) ? none() : nullptr;
}

PyObject* close(PyObject* self, PyObject* /*none*/) {
  Object* const object = objectOf(self);
  int32_t isOpen = 0;
  if (object->apartment->handle == nullptr) return none();  // it went with its shop
  if (!with(self, [&](tavelor_object* set, tavelor_error** error) {
        return tavelor_recordset_is_open(set, &isOpen, error);
      })) {
    return nullptr;
  }
  return isOpen == 0 || with(self, tavelor_recordset_close) ? none() : nullptr;
}

PyObject* requery(PyObject* self, PyObject* /*none*/) {
  Py_CLEAR(objectOf(self)->rowType);
  return with(self, tavelor_recordset_requery) ? none() : nullptr;
}

PyObject* isOpen(PyObject* self, void* /*none*/) {
  int32_t open = 0;
  if (objectOf(self)->apartment->handle == nullptr) Py_RETURN_FALSE;
  if (!with(self, [&](tavelor_object* set, tavelor_error** error) {
        return tavelor_recordset_is_open(set, &open, error);
      })) {
    return nullptr;
  }
  return PyBool_FromLong(open);
}

PyObject* clone(PyObject* self, PyObject* arguments) {
  int readOnly = 0;
  tavelor_object* made = nullptr;
  if (!PyArg_ParseTuple(arguments, "|p", &readOnly) ||
      !with(self, [&](tavelor_object* set, tavelor_error** error) {
        return tavelor_recordset_clone(set, readOnly, &made, error);
      })) {
    return nullptr;
  }
  return wrap(objectOf(self)->apartment, made);
}

/// (name, base table, type, width, precision, attributes) of each column.
PyObject* columns(PyObject* self, PyObject* /*none*/) {
  int32_t count = 0;
  if (!with(self, [&](tavelor_object* set, tavelor_error** error) {
        return tavelor_recordset_column_count(set, &count, error);
      })) {
    return nullptr;
  }
  Ref all(PyTuple_New(count));
  for (int32_t i = 0; all && i < count; ++i) {
    tavelor_column column = {};
    column.size = sizeof column;
    if (!with(self, [&](tavelor_object* set, tavelor_error** error) {
          return tavelor_recordset_column(set, i, &column, error);
        })) {
      return nullptr;
    }
    PyObject* const entry = Py_BuildValue("ssiiii", column.name, column.base_table, column.type,
                                          column.width, column.precision, column.attributes);
    if (entry == nullptr) return nullptr;
    PyTuple_SET_ITEM(all.get(), i, entry);
  }
  return all.release();
}

// ---- Position

PyObject* move(PyObject* self, PyObject* arguments) {
  int where = 0;
  int32_t onRow = 0;
  if (!PyArg_ParseTuple(arguments, "i", &where) ||
      !with(self, [&](tavelor_object* set, tavelor_error** error) {
        return tavelor_recordset_move(set, where, &onRow, error);
      })) {
    return nullptr;
  }
  return PyBool_FromLong(onRow);
}

PyObject* moveBy(PyObject* self, PyObject* arguments) {
  int rows = 0;
  int32_t onRow = 0;
  if (!PyArg_ParseTuple(arguments, "i", &rows) ||
      !with(self, [&](tavelor_object* set, tavelor_error** error) {
        return tavelor_recordset_move_by(set, rows, nullptr, &onRow, error);
      })) {
    return nullptr;
  }
  return PyBool_FromLong(onRow);
}

PyObject* position(PyObject* self, void* /*none*/) {
  int32_t found = 0;
  if (!with(self, [&](tavelor_object* set, tavelor_error** error) {
        return tavelor_recordset_where(set, nullptr, nullptr, nullptr, &found, error);
      })) {
    return nullptr;
  }
  return found > 0 ? PyLong_FromLong(found - 1) : none();
}

int setPosition(PyObject* self, PyObject* value, void* /*none*/) {
  if (value == nullptr) {
    PyErr_SetString(PyExc_AttributeError, "position: cannot be deleted");
    return -1;
  }
  int overflow = 0;
  const long wanted = PyLong_AsLongAndOverflow(value, &overflow);
  if (wanted == -1 && PyErr_Occurred() != nullptr) return -1;
  if (overflow != 0 || wanted < 0 || wanted >= INT32_MAX) {
    PyErr_Format(PyExc_IndexError, "position: there is no row %S; rows are counted from 0", value);
    return -1;
  }
  return with(self,
              [&](tavelor_object* set, tavelor_error** error) {
                return tavelor_recordset_set_position(set, static_cast<int32_t>(wanted) + 1, error);
              })
             ? 0
             : -1;
}

PyObject* bookmark(PyObject* self, void* /*none*/) {
  double found = 0;
  if (!with(self, [&](tavelor_object* set, tavelor_error** error) {
        return tavelor_recordset_bookmark(set, &found, error);
      })) {
    return nullptr;
  }
  return PyFloat_FromDouble(found);
}

int setBookmark(PyObject* self, PyObject* value, void* /*none*/) {
  double wanted = 0;
  if (value == nullptr || !toNumber(value, "bookmark", wanted)) {
    if (value == nullptr) PyErr_SetString(PyExc_AttributeError, "bookmark: cannot be deleted");
    return -1;
  }
  return with(self,
              [&](tavelor_object* set, tavelor_error** error) {
                return tavelor_recordset_set_bookmark(set, wanted, error);
              })
             ? 0
             : -1;
}

// ---- Cells of the current row

/// The position of a column by name or number; -1 with an exception.
int32_t columnOf(PyObject* self, PyObject* key) {
  int32_t index = -1;
  if (PyUnicode_Check(key)) {
    const char* const name = toText(key, "column");
    if (name == nullptr || !with(self, [&](tavelor_object* set, tavelor_error** error) {
          return tavelor_recordset_find_column(set, name, &index, error);
        })) {
      return -1;
    }
    return index;
  }
  if (PyIndex_Check(key) == 0) {
    PyErr_Format(PyExc_TypeError, "column: wants a name or a number, not %R", Py_TYPE(key));
    return -1;
  }
  const Py_ssize_t number = PyNumber_AsSsize_t(key, PyExc_IndexError);
  if (number == -1 && PyErr_Occurred() != nullptr) return -1;
  if (number < 0 || number > INT32_MAX) {
    PyErr_Format(PyExc_IndexError, "column: there is no column %zd", number);
    return -1;
  }
  return static_cast<int32_t>(number);
}

PyObject* cell(PyObject* self, PyObject* arguments) {
  PyObject* key = nullptr;
  int which = TAVELOR_CELL_CURRENT;
  if (!PyArg_ParseTuple(arguments, "O|i", &key, &which)) return nullptr;
  const int32_t column = columnOf(self, key);
  tavelor_value value = tavelor_of_empty();
  if (column < 0 || !with(self, [&](tavelor_object* set, tavelor_error** error) {
        return tavelor_recordset_get_value(set, column, which, &value, error);
      })) {
    return nullptr;
  }
  PyObject* const made = fromValue(objectOf(self)->apartment, value);
  tavelor_value_clear(&value);
  return made;
}

PyObject* setCell(PyObject* self, PyObject* arguments) {
  PyObject* key = nullptr;
  PyObject* object = nullptr;
  if (!PyArg_ParseTuple(arguments, "OO", &key, &object)) return nullptr;
  const int32_t column = columnOf(self, key);
  tavelor_value value = tavelor_of_empty();
  if (column < 0 || !toValue(object, TAVELOR_NULL, {key}, value) ||
      !with(self, [&](tavelor_object* set, tavelor_error** error) {
        return tavelor_recordset_set(set, column, &value, error);
      })) {
    return nullptr;
  }
  return none();
}

// ---- View

PyObject* filter(PyObject* self, PyObject* arguments) {
  if (PyTuple_GET_SIZE(arguments) == 0) {
    return with(self,
                [](tavelor_object* set, tavelor_error** error) {
                  return tavelor_recordset_filter(set, "", nullptr, 0, error);
                })
               ? none()
               : nullptr;
  }
  const char* const criteria = toText(PyTuple_GET_ITEM(arguments, 0), "filter");
  Values values;
  if (criteria == nullptr || !values.take(arguments, 1, "filter") ||
      !with(self, [&](tavelor_object* set, tavelor_error** error) {
        return tavelor_recordset_filter(set, criteria, values.data(), values.size(), error);
      })) {
    return nullptr;
  }
  return none();
}

PyObject* filterGroup(PyObject* self, PyObject* arguments) {
  int group = 0;
  return PyArg_ParseTuple(arguments, "i", &group) &&
                 with(self,
                      [&](tavelor_object* set, tavelor_error** error) {
                        return tavelor_recordset_filter_group(set, group, error);
                      })
             ? none()
             : nullptr;
}

PyObject* sort(PyObject* self, PyObject* order) {
  const char* const text = toText(order, "sort");
  return text != nullptr && with(self,
                                 [&](tavelor_object* set, tavelor_error** error) {
                                   return tavelor_recordset_sort(set, text, error);
                                 })
             ? none()
             : nullptr;
}

PyObject* find(PyObject* self, PyObject* arguments) {
  int skip = 0;
  int backward = 0;
  PyObject* rest = nullptr;
  if (!PyArg_ParseTuple(arguments, "ipO!", &skip, &backward, &PyTuple_Type, &rest)) return nullptr;
  if (PyTuple_GET_SIZE(rest) == 0) {
    PyErr_SetString(PyExc_TypeError, "find: wants a comparison");
    return nullptr;
  }
  const char* const criteria = toText(PyTuple_GET_ITEM(rest, 0), "find");
  Values values;
  int32_t found = 0;
  if (criteria == nullptr || !values.take(rest, 1, "find") ||
      !with(self, [&](tavelor_object* set, tavelor_error** error) {
        return tavelor_recordset_find(set, criteria, values.data(), values.size(), skip, backward,
                                      &found, error);
      })) {
    return nullptr;
  }
  return PyBool_FromLong(found);
}

/// (filter, order)
PyObject* view(PyObject* self, PyObject* /*none*/) {
  const char* filterText = nullptr;
  const char* order = nullptr;
  if (!with(self, [&](tavelor_object* set, tavelor_error** error) {
        return tavelor_recordset_view(set, &filterText, &order, error);
      })) {
    return nullptr;
  }
  return Py_BuildValue("ss", filterText, order);
}

// ---- Edit

template <auto kFunction, int kDefault>
PyObject* affect(PyObject* self, PyObject* arguments) {
  int which = kDefault;
  return PyArg_ParseTuple(arguments, "|i", &which) &&
                 with(self, [&](tavelor_object* set,
                                tavelor_error** error) { return kFunction(set, which, error); })
             ? none()
             : nullptr;
}

PyObject* resync(PyObject* self, PyObject* arguments) {
  int which = TAVELOR_AFFECT_ALL;
  int keep = 0;
  return PyArg_ParseTuple(arguments, "|ip", &which, &keep) &&
                 with(self,
                      [&](tavelor_object* set, tavelor_error** error) {
                        return tavelor_recordset_resync(set, which, keep, error);
                      })
             ? none()
             : nullptr;
}

/// (edit, status) of the current row.
PyObject* state(PyObject* self, PyObject* /*none*/) {
  int32_t edit = 0;
  int32_t status = 0;
  if (!with(self, [&](tavelor_object* set, tavelor_error** error) {
        return tavelor_recordset_state(set, &edit, &status, nullptr, error);
      })) {
    return nullptr;
  }
  return Py_BuildValue("ii", edit, status);
}

PyObject* unwritten(PyObject* self, void* /*none*/) {
  int32_t found = 0;
  if (!with(self, [&](tavelor_object* set, tavelor_error** error) {
        return tavelor_recordset_state(set, nullptr, nullptr, &found, error);
      })) {
    return nullptr;
  }
  return PyBool_FromLong(found);
}

}  // namespace

PyMethodDef recordsetMethods[] = {
    {"close", close, METH_NOARGS,
     "close()\n--\n\nCloses the set; changes that are not written are lost."},
    {"requery", requery, METH_NOARGS,
     "requery()\n--\n\nRuns the statement again; changes that are not written are lost."},
    {"clone", clone, METH_VARARGS,
     "clone(read_only=False)\n--\n\nAnother cursor on the same rows and changes."},
    {"filter", filter, METH_VARARGS,
     "filter(criteria=\"\", *values)\n--\n\nShows the rows that fit; each question mark is the "
     "next "
     "of the values. Without criteria it shows all."},
    {"filter_group", filterGroup, METH_VARARGS,
     "filter_group(group)\n--\n\nShows the rows of a state: PENDING, CONFLICTING..."},
    {"sort", sort, METH_O, "sort(order)\n--\n\n\"field [ASC|DESC], ...\"; \"\" for none."},
    {"update", step<tavelor_recordset_update>, METH_NOARGS,
     "update()\n--\n\nPosts the row in edit, or writes it where the set writes at once."},
    {"cancel", step<tavelor_recordset_cancel_update>, METH_NOARGS,
     "cancel()\n--\n\nTakes back what is in edit, or the current row's changes."},
    {"delete", affect<tavelor_recordset_delete, TAVELOR_AFFECT_CURRENT>, METH_VARARGS,
     "delete(rows=1)\n--\n\nMarks the current row deleted."},
    {"update_batch", affect<tavelor_recordset_update_batch, TAVELOR_AFFECT_ALL>, METH_VARARGS,
     "update_batch(rows=3)\n--\n\nWrites changes. Conflict where somebody else has changed a row, "
     "which stays pending."},
    {"cancel_batch", affect<tavelor_recordset_cancel_batch, TAVELOR_AFFECT_ALL>, METH_VARARGS,
     "cancel_batch(rows=3)\n--\n\nDrops changes."},
    {"resync", resync, METH_VARARGS,
     "resync(rows=3, keep_changes=False)\n--\n\nReads rows again by their keys."},
    {"listen", listen, METH_O,
     "listen(handler)\n--\n\nTells handler(event) of the set's events for as long as the listener "
     "that this gives is kept."},
    {"_add_new", step<tavelor_recordset_add_new>, METH_NOARGS, nullptr},
    {"_columns", columns, METH_NOARGS, nullptr},
    {"_move", move, METH_VARARGS, nullptr},
    {"_move_by", moveBy, METH_VARARGS, nullptr},
    {"_cell", cell, METH_VARARGS, nullptr},
    {"_set", setCell, METH_VARARGS, nullptr},
    {"_find", find, METH_VARARGS, nullptr},
    {"_view", view, METH_NOARGS, nullptr},
    {"_state", state, METH_NOARGS, nullptr},
    {"_row_at", rowAt, METH_O, nullptr},
    {"_read_columns", readColumns, METH_VARARGS, nullptr},
    {"__arrow_c_stream__", arrowStream, METH_VARARGS,
     "__arrow_c_stream__(requested_schema=None)\n--\n\nThe rows as they are now, for Arrow's "
     "readers; good on any thread, and after the shop is closed."},
    {nullptr, nullptr, 0, nullptr}};
PyGetSetDef recordsetProperties[] = {
    {"is_open", isOpen, nullptr, "Whether it is open.", nullptr},
    {"position", position, setPosition,
     "The current row of the view, from 0; None where there is none.", nullptr},
    {"bookmark", bookmark, setBookmark,
     "A number that names the current row whatever the filter and order.", nullptr},
    {"unwritten", unwritten, nullptr, "Whether any row has changes that are not written.", nullptr},
    {nullptr, nullptr, nullptr, nullptr, nullptr}};

Py_ssize_t countRows(PyObject* self) {
  int32_t rows = 0;
  if (!with(self, [&](tavelor_object* set, tavelor_error** error) {
        return tavelor_recordset_where(set, nullptr, nullptr, &rows, nullptr, error);
      })) {
    return -1;
  }
  return rows;
}

void setRowFactory(PyObject* factory) {
  Py_XSETREF(rowFactory, Py_NewRef(factory));
}

PyTypeObject* rowTypeOf(Object* recordset) {
  if (recordset->rowType == nullptr) {
    const Ref all(columns(reinterpret_cast<PyObject*>(recordset), nullptr));
    if (!all) return nullptr;
    const Ref names(PyTuple_New(PyTuple_GET_SIZE(all.get())));
    for (Py_ssize_t i = 0; names && i < PyTuple_GET_SIZE(all.get()); ++i) {
      PyTuple_SET_ITEM(names.get(), i,
                       Py_NewRef(PyTuple_GET_ITEM(PyTuple_GET_ITEM(all.get(), i), 0)));
    }
    Ref made(names ? PyObject_CallOneArg(rowFactory, names.get()) : nullptr);
    if (!made) return nullptr;
    if (PyType_IsSubtype(reinterpret_cast<PyTypeObject*>(made.get()), &PyTuple_Type) == 0) {
      PyErr_SetString(PyExc_TypeError, "the class of rows is no tuple");
      return nullptr;
    }
    recordset->rowType = made.release();
  }
  return reinterpret_cast<PyTypeObject*>(recordset->rowType);
}

PyObject* newRows(PyObject* self, PyObject* arguments) {
  PyObject* wishes = nullptr;
  if (!PyArg_ParseTuple(arguments, "O!", &PyTuple_Type, &wishes)) return nullptr;
  std::vector<tavelor_column_wish> columns(static_cast<size_t>(PyTuple_GET_SIZE(wishes)));
  for (size_t i = 0; i < columns.size(); ++i) {
    PyObject* name = nullptr;
    columns[i].size = sizeof columns[i];
    PyObject* const wish = PyTuple_GET_ITEM(wishes, static_cast<Py_ssize_t>(i));
    if (!PyTuple_Check(wish)) {
      PyErr_SetString(PyExc_TypeError, "new_rows: a column is (name, type, width)");
      return nullptr;
    }
    if (!PyArg_ParseTuple(wish, "Ui|i", &name, &columns[i].type, &columns[i].width)) return nullptr;
    columns[i].name = toText(name, "new_rows");
    if (columns[i].name == nullptr) return nullptr;
  }
  auto* const apartment = reinterpret_cast<Apartment*>(self);
  tavelor_object* recordset = nullptr;
  if (!done(apartment, [&](tavelor_error** error) {
        return tavelor_recordset_new(apartment->handle, columns.data(), columns.size(), &recordset,
                                     error);
      })) {
    return nullptr;
  }
  return wrap(apartment, recordset);
}

}  // namespace tavelor::python

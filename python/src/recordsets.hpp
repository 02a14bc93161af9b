// SPDX-License-Identifier: MIT
// Record sets: cursor, cells, view, edit, events.
#pragma once

#include "python.hpp"

namespace tavelor::python {

struct Object;

extern PyMethodDef recordsetMethods[];
extern PyGetSetDef recordsetProperties[];

/// How many rows the view has.
Py_ssize_t countRows(PyObject* self);
/// new_rows(columns): a record set of an apartment without a database.
PyObject* newRows(PyObject* apartment, PyObject* arguments);
/// What makes the class of a set's rows: Python's own function.
void setRowFactory(PyObject* factory);
/// The class of a set's rows, borrowed. nullptr with an exception.
PyTypeObject* rowTypeOf(Object* recordset);
/// Makes the type of listeners. False with an exception.
bool addListeners(PyObject* module);
/// listen(handler) of a record set.
PyObject* listen(PyObject* self, PyObject* handler);

// Many rows at once.

/// Makes the types of buffers and iterators. False with an exception.
bool addBlocks(PyObject* module);
/// An iterator over the rows of the view.
PyObject* iterateRows(PyObject* self);
/// row_at(position from 0): one row of the view.
PyObject* rowAt(PyObject* self, PyObject* position);
/// read_columns([(column, layout, values, validity)]): all rows of the view, into buffers of the
/// caller's.
PyObject* readColumns(PyObject* self, PyObject* arguments);
/// The stream of the view for Arrow's readers.
PyObject* arrowStream(PyObject* self, PyObject* arguments);

}  // namespace tavelor::python

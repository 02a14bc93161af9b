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
PyObject* newRows(PyObject* self, PyObject* arguments);
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
/// read_columns(rows, [(column, layout, values, validity or None, offsets or None)]): the rows of
/// the view, into memory of the caller's; texts into a bytearray. Gives the counts of Nulls.
PyObject* readColumns(PyObject* self, PyObject* arguments);
/// make_texts(bytes, offsets, validity or None, array, is_bytes): a column's texts as objects, into
/// an array of them.
PyObject* makeTexts(PyObject* module, PyObject* arguments);
/// The stream of the view for Arrow's readers.
PyObject* arrowStream(PyObject* self, PyObject* arguments);

}  // namespace tavelor::python

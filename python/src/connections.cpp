// SPDX-License-Identifier: MIT
// Connections: statements, transactions.
#include "connections.hpp"

#include "objects.hpp"
#include "values.hpp"

namespace tavelor::python {

namespace {

/// The statement that a tuple begins with, whose other entries are its values. nullptr with an
/// exception.
const char* statementOf(PyObject* arguments, const char* what) {
  if (PyTuple_GET_SIZE(arguments) == 0) {
    PyErr_Format(PyExc_TypeError, "%s: wants a statement", what);
    return nullptr;
  }
  return toText(PyTuple_GET_ITEM(arguments, 0), what);
}

PyObject* execute(PyObject* self, PyObject* arguments) {
  Object* const object = objectOf(self);
  Values values;
  int64_t written = 0;
  const char* const statement = statementOf(arguments, "execute");
  if (statement == nullptr || !values.take(arguments, 1, "execute") ||
      !done(object->apartment, [&](tavelor_error** error) {
        return tavelor_connection_execute(object->handle, statement, values.data(), values.size(),
                                          &written, error);
      })) {
    return nullptr;
  }
  return PyLong_FromLongLong(written);
}

PyObject* open(PyObject* self, PyObject* arguments) {
  int lock = 0;
  PyObject* rest = nullptr;
  if (!PyArg_ParseTuple(arguments, "iO!", &lock, &PyTuple_Type, &rest)) return nullptr;
  Object* const object = objectOf(self);
  Values values;
  tavelor_object* recordset = nullptr;
  const char* const statement = statementOf(rest, "query");
  if (statement == nullptr || !values.take(rest, 1, "query") ||
      !done(object->apartment, [&](tavelor_error** error) {
        return tavelor_recordset_open(object->handle, statement, values.data(), values.size(), lock,
                                      &recordset, error);
      })) {
    return nullptr;
  }
  return wrap(object->apartment, recordset);
}

template <auto kFunction>
PyObject* step(PyObject* self, PyObject* /*none*/) {
  Object* const object = objectOf(self);
  if (!done(object->apartment,
            [&](tavelor_error** error) { return kFunction(object->handle, error); })) {
    return nullptr;
  }
  return none();
}

PyObject* level(PyObject* self, void* /*none*/) {
  Object* const object = objectOf(self);
  int32_t found = 0;
  if (!done(object->apartment, [&](tavelor_error** error) {
        return tavelor_connection_level(object->handle, &found, error);
      })) {
    return nullptr;
  }
  return PyLong_FromLong(found);
}

}  // namespace

PyMethodDef connectionMethods[] = {
    {"execute", execute, METH_VARARGS,
     "execute(statement, *values)\n--\n\nRuns a statement that gives no rows, and gives how many "
     "it "
     "wrote. Each question mark in it is the next of the values."},
    {"_open", open, METH_VARARGS, nullptr},
    {"begin", step<tavelor_connection_begin>, METH_NOARGS,
     "begin()\n--\n\nBegins a transaction, or one inside the one that is open."},
    {"commit", step<tavelor_connection_commit>, METH_NOARGS,
     "commit()\n--\n\nEnds the innermost transaction; the outermost is stored."},
    {"rollback", step<tavelor_connection_rollback>, METH_NOARGS,
     "rollback()\n--\n\nUndoes the innermost transaction."},
    {nullptr, nullptr, 0, nullptr}};
PyGetSetDef connectionProperties[] = {
    {"level", level, nullptr, "Open transactions, one inside the other.", nullptr},
    {nullptr, nullptr, nullptr, nullptr, nullptr}};

PyObject* openConnection(PyObject* self, PyObject* arguments) {
  int selector = 0;
  if (!PyArg_ParseTuple(arguments, "i", &selector)) return nullptr;
  auto* const apartment = reinterpret_cast<Apartment*>(self);
  tavelor_object* connection = nullptr;
  if (!done(apartment, [&](tavelor_error** error) {
        return tavelor_connection_open(apartment->handle, selector, &connection, error);
      })) {
    return nullptr;
  }
  return wrap(apartment, connection);
}

}  // namespace tavelor::python

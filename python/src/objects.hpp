// SPDX-License-Identifier: MIT
// Objects of the library as Python objects, and the Python types of the component table's classes.
#pragma once

#include "apartment.hpp"
#include "python.hpp"
#include "tavelor/c/tavelor.h"

namespace tavelor::python {

/// An object of the library: it keeps its apartment, which keeps its installation.
struct Object {
  PyObject head;
  tavelor_object* handle;
  Apartment* apartment;
  PyObject* rowType;  ///< of a record set: the class of its rows, made when first wanted
  PyObject* weak;
};

inline Object* objectOf(PyObject* self) {
  return reinterpret_cast<Object*>(self);
}

extern PyTypeObject* objectType;

/// Makes the base types. False with an exception.
bool addObjects(PyObject* module);
/// Python's own classes that are the bases of objects, record sets and connections.
bool setBases(PyObject* object, PyObject* recordset, PyObject* connection);

/// The handle of a Python object, borrowed; nullptr for any other.
tavelor_object* handleOf(PyObject* object);
/// A Python object for a handle, which it takes over, also when it fails.
PyObject* wrap(Apartment* apartment, tavelor_object* handle);
/// The Python type of a class of the table, borrowed; made when first asked for.
PyTypeObject* typeOf(const tavelor_class* of);

}  // namespace tavelor::python

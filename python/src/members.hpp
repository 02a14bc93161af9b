// SPDX-License-Identifier: MIT
// A member of a class as a callable of its Python type, or as a property.
#pragma once

#include "python.hpp"
#include "tavelor/c/tavelor.h"

namespace tavelor::python {

/// Makes the types of members. False with an exception.
bool addMembers(PyObject* module);
/// What makes the named tuple of a member's outputs: Python's own function.
void setResultFactory(PyObject* factory);
/// The descriptor of a member for the type that is called `owner`.
PyObject* memberObject(const tavelor_member* member, PyObject* owner);
/// All that the table tells of a class, for stubs: (name, identifier, word, documentation,
/// members).
PyObject* describe(const tavelor_class* of);

}  // namespace tavelor::python

// SPDX-License-Identifier: MIT
// Connections: statements, transactions.
#pragma once

#include "python.hpp"

namespace tavelor::python {

extern PyMethodDef connectionMethods[];
extern PyGetSetDef connectionProperties[];

/// connection(selector): an open one of its own, of an apartment.
PyObject* openConnection(PyObject* self, PyObject* arguments);

}  // namespace tavelor::python

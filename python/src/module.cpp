// SPDX-License-Identifier: MIT
// The extension module tavelor._native: what Python's own layer stands upon.
#include "apartment.hpp"
#include "flows.hpp"
#include "members.hpp"
#include "objects.hpp"
#include "python.hpp"
#include "recordsets.hpp"
#include "values.hpp"

namespace tavelor::python {

namespace {

/// setup(error, result, row, object, recordset, connection): functions and classes of Python's
/// layer that the module makes its own things with.
PyObject* setup(PyObject* /*module*/, PyObject* arguments) {
  PyObject* error = nullptr;
  PyObject* result = nullptr;
  PyObject* row = nullptr;
  PyObject* object = nullptr;
  PyObject* recordset = nullptr;
  PyObject* connection = nullptr;
  if (!PyArg_ParseTuple(arguments, "OOOOOO", &error, &result, &row, &object, &recordset,
                        &connection) ||
      !setBases(object, recordset, connection)) {
    return nullptr;
  }
  setErrorFactory(error);
  setResultFactory(result);
  setRowFactory(row);
  return none();
}

const tavelor_class* classNamed(PyObject* name) {
  const char* const text = toText(name, "class");
  const tavelor_class* found = nullptr;
  if (text == nullptr || !doneAnywhere([&](tavelor_error** error) {
        return tavelor_class_find(text, &found, error);
      })) {
    return nullptr;
  }
  return found;
}

PyObject* findType(PyObject* /*module*/, PyObject* name) {
  const tavelor_class* const of = classNamed(name);
  return of != nullptr ? Py_XNewRef(reinterpret_cast<PyObject*>(typeOf(of))) : nullptr;
}

PyObject* describeClass(PyObject* /*module*/, PyObject* name) {
  const tavelor_class* const of = classNamed(name);
  return of != nullptr ? describe(of) : nullptr;
}

PyObject* classNames(PyObject* /*module*/, PyObject* /*none*/) {
  const Ref names(PyList_New(0));
  for (size_t i = 0; names && i < tavelor_class_count(); ++i) {
    const Ref name(PyUnicode_FromString(tavelor_class_name(tavelor_class_at(i))));
    if (!name || PyList_Append(names.get(), name.get()) < 0) return nullptr;
  }
  return names ? PyList_AsTuple(names.get()) : nullptr;
}

PyObject* version(PyObject* /*module*/, PyObject* /*none*/) {
  return PyUnicode_FromString(tavelor_version());
}

PyMethodDef functions[] = {{"setup", setup, METH_VARARGS, nullptr},
                           {"type", findType, METH_O, nullptr},
                           {"describe", describeClass, METH_O, nullptr},
                           {"class_names", classNames, METH_NOARGS, nullptr},
                           {"make_texts", makeTexts, METH_VARARGS, nullptr},
                           {"version", version, METH_NOARGS, nullptr},
                           {nullptr, nullptr, 0, nullptr}};
PyModuleDef definition = {PyModuleDef_HEAD_INIT,
                          "tavelor._native",
                          nullptr,
                          -1,
                          functions,
                          nullptr,
                          nullptr,
                          nullptr,
                          nullptr};

}  // namespace

}  // namespace tavelor::python

// NOLINTNEXTLINE(readability-identifier-naming): the name that Python looks for
PyMODINIT_FUNC PyInit__native() {
  using namespace tavelor::python;
  if (tavelor_abi() != TAVELOR_ABI) {
    PyErr_Format(PyExc_ImportError, "libtavelor_c is of interface %d, and this module of %d",
                 tavelor_abi(), TAVELOR_ABI);
    return nullptr;
  }
  Ref module(PyModule_Create(&definition));
  if (!module || !prepareValues() || !addApartment(module.get()) || !addObjects(module.get()) ||
      !addMembers(module.get()) || !addListeners(module.get()) || !addBlocks(module.get()) ||
      !addFlows(module.get())) {
    return nullptr;
  }
  return module.release();
}

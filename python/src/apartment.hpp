// SPDX-License-Identifier: MIT
// An apartment as a Python object, and how every call of the library is made: with Python's lock
// given up, and errors raised as exceptions.
#pragma once

#include "python.hpp"
#include "tavelor/c/tavelor.h"

namespace tavelor::python {

/// All objects of an apartment hold it, so it closes by itself when the last of them has gone.
struct Apartment {
  PyObject head;
  tavelor_apartment* handle;  ///< none once it is closed
  tavelor_installation* installation;
  tavelor_shop* shop;  ///< its flows, opened when first wanted
  PyObject* folder;    ///< of the installation
  PyObject* prompts;   ///< who answers prompts, or none
  PyObject* typed;     ///< the last answer to an input, or none
  PyObject* raised;    ///< exception of a handler, which the call at hand ends with
  int calls;           ///< under way, handlers' own among them
  unsigned process;    ///< the generation of the process that it was opened in
};

extern PyTypeObject* apartmentType;

/// Makes the type. False with an exception.
bool addApartment(PyObject* module);
/// What makes an exception of an error: Python's own function.
void setErrorFactory(PyObject* factory);

/// Whether it may be called at all. False with an exception: closed, or copied by fork().
bool isUsable(Apartment* apartment);
/// Raises the exception of a call, frees its error, and gives nullptr.
PyObject* raise(Apartment* apartment, tavelor_status status, tavelor_error* error);
/// Keeps the current exception for the call at hand, out of a handler that the library has called.
tavelor_status keepException(Apartment* apartment);

/// Whether a call that belongs to no apartment went well; if not, its exception is raised.
template <typename Call>
bool doneAnywhere(Call call) {
  tavelor_error* error = nullptr;
  PyThreadState* const state = PyEval_SaveThread();
  const tavelor_status status = call(&error);
  PyEval_RestoreThread(state);
  if (status == TAVELOR_OK) return true;
  raise(nullptr, status, error);
  return false;
}

/// Whether a call in an apartment went well; if not, its exception is raised.
template <typename Call>
bool done(Apartment* apartment, Call call) {
  if (!isUsable(apartment)) return false;
  tavelor_error* error = nullptr;
  ++apartment->calls;
  PyThreadState* const state = PyEval_SaveThread();
  const tavelor_status status = call(&error);
  PyEval_RestoreThread(state);
  --apartment->calls;
  if (status == TAVELOR_OK && apartment->raised == nullptr) return true;
  raise(apartment, status, error);
  return false;
}

/// The flows of its shop. nullptr with an exception, before the catalogues are seeded.
tavelor_shop* flowsOf(Apartment* apartment);

}  // namespace tavelor::python

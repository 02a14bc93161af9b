// SPDX-License-Identifier: MIT
// What all sources of the extension module share: Python's header, and references that let go by
// themselves.
#pragma once

#define PY_SSIZE_T_CLEAN
#include <utility>

#include <Python.h>
#include <structmember.h>

namespace tavelor::python {

/// A reference of our own to a Python object, or none.
class Ref {
 public:
  Ref() = default;
  /// Takes a new reference over, as most of Python's functions give one.
  explicit Ref(PyObject* taken) : object_(taken) {}
  static Ref to(PyObject* borrowed) {
    Py_XINCREF(borrowed);
    return Ref(borrowed);
  }
  ~Ref() { Py_XDECREF(object_); }
  Ref(const Ref&) = delete;
  Ref& operator=(const Ref&) = delete;
  Ref(Ref&& other) noexcept : object_(std::exchange(other.object_, nullptr)) {}
  Ref& operator=(Ref&& other) noexcept {
    PyObject* old = std::exchange(object_, std::exchange(other.object_, nullptr));
    Py_XDECREF(old);
    return *this;
  }

  PyObject* get() const { return object_; }
  /// Hands it to the caller.
  PyObject* release() { return std::exchange(object_, nullptr); }
  explicit operator bool() const { return object_ != nullptr; }

 private:
  PyObject* object_ = nullptr;
};

/// None, as a new reference.
inline PyObject* none() {
  return Py_NewRef(Py_None);
}

/// A slot's function as Python's table wants it.
template <typename Function>
void* slot(Function* function) {
  return reinterpret_cast<void*>(function);
}

}  // namespace tavelor::python

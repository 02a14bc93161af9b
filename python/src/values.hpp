// SPDX-License-Identifier: MIT
// Values between Python and the library.
#pragma once

#include <cstdint>

#include "python.hpp"
#include "tavelor/c/tavelor.h"

namespace tavelor::python {

struct Apartment;

/// Fetches Python's classes for dates and money. False with an exception.
bool prepareValues();

/// What a value was given for, which its error names.
struct Place {
  PyObject* member = nullptr;  ///< its name, or none
  PyObject* parameter = nullptr;
};

/// A Python object as a value that borrows its text from it. `none` is what None becomes. False
/// with a TypeError, ValueError or OverflowError that names the place.
bool toValue(PyObject* object, int32_t none, const Place& place, tavelor_value& value);
/// A value as a Python object; it takes objects out of `value`, and leaves the rest to be cleared.
PyObject* fromValue(Apartment* apartment, tavelor_value& value);

/// A text as the library takes it where it ends with NUL. nullptr with an exception.
const char* toText(PyObject* object, const char* what);
/// A day number out of a datetime, date or time.
bool toDate(PyObject* object, const char* what, double& date);
/// A datetime of a day number.
PyObject* fromDate(double date);
/// A Decimal of ten-thousandths.
PyObject* fromMoney(int64_t money);
/// A number out of an int, a float or a Decimal.
bool toNumber(PyObject* object, const char* what, double& number);

/// Values that are given back when they go.
class Values {
 public:
  Values() = default;
  ~Values();
  Values(const Values&) = delete;
  Values& operator=(const Values&) = delete;

  /// All entries of a tuple from `first` on. False with an exception.
  bool take(PyObject* tuple, Py_ssize_t first, const char* what);
  const tavelor_value* data() const { return values_; }
  size_t size() const { return size_; }

 private:
  tavelor_value* values_ = nullptr;
  size_t size_ = 0;
};

}  // namespace tavelor::python

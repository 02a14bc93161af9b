// SPDX-License-Identifier: MIT
// Values between Python and the library: what does not fit is refused before the library is asked.
#include "values.hpp"

#include <array>
#include <cmath>
#include <cstring>

#include <datetime.h>

#include "apartment.hpp"
#include "objects.hpp"

namespace tavelor::python {

namespace {

PyObject* decimalClass = nullptr;

/// "GetDatos: vId", or what there is of it.
Ref told(const Place& place) {
  if (place.member == nullptr) return Ref(PyUnicode_FromString("value"));
  if (place.parameter == nullptr) return Ref::to(place.member);
  return Ref(PyUnicode_FromFormat("%U: %U", place.member, place.parameter));
}

/// `format` has %U for the place and %S for the object.
bool refuse(PyObject* exception, const char* format, const Place& place, PyObject* object) {
  const Ref where = told(place);
  if (where) PyErr_Format(exception, format, where.get(), object);
  return false;
}

bool textValue(PyObject* object, const Place& place, tavelor_value& value) {
  Py_ssize_t size = 0;
  const char* data = PyUnicode_AsUTF8AndSize(object, &size);
  if (data == nullptr) {
    PyErr_Clear();
    return refuse(PyExc_ValueError,
                  "%U: the text %A holds half a surrogate pair, which no text may", place, object);
  }
  value = tavelor_of_text(data, static_cast<size_t>(size));
  return true;
}

bool integerValue(PyObject* object, const Place& place, tavelor_value& value) {
  int overflow = 0;
  const long long number = PyLong_AsLongLongAndOverflow(object, &overflow);
  if (overflow != 0) {
    return refuse(PyExc_OverflowError, "%U: the number is wider than 64 bits", place, object);
  }
  if (number == -1 && PyErr_Occurred() != nullptr) return false;
  value = number >= INT32_MIN && number <= INT32_MAX
              ? tavelor_of_int32(static_cast<int32_t>(number))
              : tavelor_of_int64(number);
  return true;
}

/// Digits of a Decimal without an exponent, or none with an exception.
Ref plainDigits(PyObject* object, const Place& place) {
  Ref text(PyObject_Str(object));
  if (!text || PyUnicode_FindChar(text.get(), 'E', 0, PyUnicode_GET_LENGTH(text.get()), 1) < 0) {
    return text;
  }
  // Written out, an exponent may be a gigabyte of zeros.
  const Ref adjusted(PyObject_CallMethod(object, "adjusted", nullptr));
  const Ref isZero(PyObject_CallMethod(object, "__bool__", nullptr));
  if (!adjusted || !isZero) return Ref();
  if (isZero.get() == Py_False) return Ref(PyUnicode_FromString("0"));
  const long magnitude = PyLong_AsLong(adjusted.get());
  if (magnitude > 15) {
    refuse(PyExc_OverflowError, "%U: %S is beyond what money may be", place, object);
    return Ref();
  }
  if (magnitude < -4) {
    refuse(PyExc_ValueError, "%U: %S has more than four decimals; round it first", place, object);
    return Ref();
  }
  return Ref(PyObject_CallMethod(object, "__format__", "s", "f"));
}

bool moneyValue(PyObject* object, const Place& place, tavelor_value& value) {
  const Ref finite(PyObject_CallMethod(object, "is_finite", nullptr));
  if (!finite) return false;
  if (finite.get() != Py_True) {
    return refuse(PyExc_ValueError, "%U: %S is no amount of money", place, object);
  }
  const Ref digits = plainDigits(object, place);
  if (!digits) return false;
  Py_ssize_t size = 0;
  const char* data = PyUnicode_AsUTF8AndSize(digits.get(), &size);
  if (data == nullptr) return false;
  // Zeros behind the fourth decimal say nothing.
  const auto* point = static_cast<const char*>(std::memchr(data, '.', static_cast<size_t>(size)));
  while (point != nullptr && data + size - point > 5 && data[size - 1] == '0') --size;
  if (point != nullptr && data + size - point > 5) {
    return refuse(PyExc_ValueError, "%U: %S has more than four decimals; round it first", place,
                  object);
  }
  std::array<char, 64> text = {};
  int64_t money = 0;
  if (static_cast<size_t>(size) < text.size()) {
    std::memcpy(text.data(), data, static_cast<size_t>(size));
    if (tavelor_money_from_text(text.data(), &money, nullptr) == TAVELOR_OK) {
      value = tavelor_of_money(money);
      return true;
    }
  }
  return refuse(PyExc_OverflowError, "%U: %S is beyond what money may be", place, object);
}

bool isDay(PyObject* object) {
  return PyDate_Check(object) || PyTime_Check(object);
}

bool dateValue(PyObject* object, const Place& place, double& date) {
  tavelor_civil civil = {1899, 12, 30, 0, 0, 0};
  PyObject* zone = Py_None;
  if (PyTime_Check(object)) {
    civil.hour = PyDateTime_TIME_GET_HOUR(object);
    civil.minute = PyDateTime_TIME_GET_MINUTE(object);
    civil.second = PyDateTime_TIME_GET_SECOND(object);
    zone = PyDateTime_TIME_GET_TZINFO(object);
  } else {
    civil.year = PyDateTime_GET_YEAR(object);
    civil.month = PyDateTime_GET_MONTH(object);
    civil.day = PyDateTime_GET_DAY(object);
    if (PyDateTime_Check(object)) {
      civil.hour = PyDateTime_DATE_GET_HOUR(object);
      civil.minute = PyDateTime_DATE_GET_MINUTE(object);
      civil.second = PyDateTime_DATE_GET_SECOND(object);
      zone = PyDateTime_DATE_GET_TZINFO(object);
    }
  }
  if (zone != Py_None) {
    return refuse(PyExc_ValueError,
                  "%U: %S has a time zone, and a shop's dates have none: pass the shop's own time, "
                  "object.astimezone(zone).replace(tzinfo=None)",
                  place, object);
  }
  if (tavelor_date_from_civil(&civil, &date, nullptr) != TAVELOR_OK) {
    return refuse(PyExc_ValueError, "%U: %S is outside the years 100 to 9999", place, object);
  }
  return true;
}

}  // namespace

bool prepareValues() {
  PyDateTime_IMPORT;
  if (PyDateTimeAPI == nullptr) return false;
  const Ref module(PyImport_ImportModule("decimal"));
  if (module) decimalClass = PyObject_GetAttrString(module.get(), "Decimal");
  return decimalClass != nullptr;
}

bool toValue(PyObject* object, int32_t none, const Place& place, tavelor_value& value) {
  if (PyUnicode_Check(object)) return textValue(object, place, value);
  if (object == Py_None) {
    value = tavelor_nothing(none);
    return true;
  }
  if (PyBool_Check(object)) {
    value = tavelor_of_boolean(object == Py_True ? 1 : 0);
    return true;
  }
  if (PyLong_Check(object)) return integerValue(object, place, value);
  if (PyFloat_Check(object)) {
    const double number = PyFloat_AS_DOUBLE(object);
    if (!std::isfinite(number)) {
      return refuse(PyExc_ValueError, "%U: %S is no number that a shop can keep", place, object);
    }
    value = tavelor_of_double(number);
    return true;
  }
  if (isDay(object)) {
    double date = 0;
    if (!dateValue(object, place, date)) return false;
    value = tavelor_of_date(date);
    return true;
  }
  if (PyBytes_Check(object)) {
    value =
        tavelor_of_bytes(PyBytes_AS_STRING(object), static_cast<size_t>(PyBytes_GET_SIZE(object)));
    return true;
  }
  if (tavelor_object* handle = handleOf(object)) {
    value = tavelor_of_object(handle);
    return true;
  }
  const int isMoney = PyObject_IsInstance(object, decimalClass);
  if (isMoney < 0) return false;
  if (isMoney > 0) return moneyValue(object, place, value);
  if (PyIndex_Check(object)) {  // numpy's whole numbers
    const Ref number(PyNumber_Index(object));
    return number && integerValue(number.get(), place, value);
  }
  return refuse(PyExc_TypeError,
                "%U: takes str, int, float, Decimal, bool, bytes, datetime, date, time, None or an "
                "object of the library, not %R",
                place, reinterpret_cast<PyObject*>(Py_TYPE(object)));
}

PyObject* fromValue(Apartment* apartment, tavelor_value& value) {
  switch (value.type) {
    case TAVELOR_BOOLEAN:
      return PyBool_FromLong(value.as.boolean);
    case TAVELOR_INT16:
      return PyLong_FromLong(value.as.int16);
    case TAVELOR_INT32:
      return PyLong_FromLong(value.as.int32);
    case TAVELOR_INT64:
      return PyLong_FromLongLong(value.as.int64);
    case TAVELOR_SINGLE:
      return PyFloat_FromDouble(static_cast<double>(value.as.single));
    case TAVELOR_DOUBLE:
      return PyFloat_FromDouble(value.as.number);
    case TAVELOR_MONEY:
      return fromMoney(value.as.money);
    case TAVELOR_DATE:
      return fromDate(value.as.date);
    case TAVELOR_TEXT:
      return PyUnicode_DecodeUTF8(value.as.text.data, static_cast<Py_ssize_t>(value.as.text.size),
                                  "replace");
    case TAVELOR_BYTES:
      return PyBytes_FromStringAndSize(static_cast<const char*>(value.as.bytes.data),
                                       static_cast<Py_ssize_t>(value.as.bytes.size));
    case TAVELOR_OBJECT: {
      if (value.as.object == nullptr) return none();
      if (value.owned == 0) return wrap(apartment, tavelor_object_retain(value.as.object));
      value.owned = 0;
      return wrap(apartment, value.as.object);
    }
    default:
      return none();
  }
}

const char* toText(PyObject* object, const char* what) {
  if (!PyUnicode_Check(object)) {
    PyErr_Format(PyExc_TypeError, "%s: wants a text, not %R", what, Py_TYPE(object));
    return nullptr;
  }
  Py_ssize_t size = 0;
  const char* text = PyUnicode_AsUTF8AndSize(object, &size);
  if (text == nullptr) {
    PyErr_Clear();
    PyErr_Format(PyExc_ValueError, "%s: the text %A holds half a surrogate pair, which no text may",
                 what, object);
    return nullptr;
  }
  if (std::strlen(text) != static_cast<size_t>(size)) {
    PyErr_Format(PyExc_ValueError, "%s: the text %A holds a character of code 0", what, object);
    return nullptr;
  }
  return text;
}

bool toDate(PyObject* object, const char* what, double& date) {
  if (!isDay(object)) {
    PyErr_Format(PyExc_TypeError, "%s: wants a date or a datetime, not %R", what, Py_TYPE(object));
    return false;
  }
  const Ref name(PyUnicode_FromString(what));
  return name && dateValue(object, {name.get()}, date);
}

PyObject* fromDate(double date) {
  tavelor_civil civil = {};
  if (tavelor_date_to_civil(date, &civil, nullptr) != TAVELOR_OK) {
    PyErr_SetString(PyExc_OverflowError, "a stored date is outside the years 100 to 9999");
    return nullptr;
  }
  return PyDateTime_FromDateAndTime(civil.year, civil.month, civil.day, civil.hour, civil.minute,
                                    civil.second, 0);
}

PyObject* fromMoney(int64_t money) {
  std::array<char, TAVELOR_MONEY_TEXT_SIZE> text = {};
  const size_t size = tavelor_money_to_text(money, text.data(), text.size());
  const Ref digits(PyUnicode_FromStringAndSize(text.data(), static_cast<Py_ssize_t>(size)));
  return digits ? PyObject_CallOneArg(decimalClass, digits.get()) : nullptr;
}

bool toNumber(PyObject* object, const char* what, double& number) {
  const int isMoney = PyObject_IsInstance(object, decimalClass);
  if (isMoney < 0) return false;
  if (isMoney == 0 &&
      (PyBool_Check(object) || (!PyFloat_Check(object) && !PyIndex_Check(object)))) {
    PyErr_Format(PyExc_TypeError, "%s: wants a number, not %R", what, Py_TYPE(object));
    return false;
  }
  number = PyFloat_AsDouble(object);
  if (number == -1 && PyErr_Occurred() != nullptr) return false;
  if (!std::isfinite(number)) {
    PyErr_Format(PyExc_ValueError, "%s: %S is no number that a shop can keep", what, object);
    return false;
  }
  return true;
}

Values::~Values() {
  PyMem_Free(values_);
}

bool Values::take(PyObject* tuple, Py_ssize_t first, const char* what) {
  const Py_ssize_t count = PyTuple_GET_SIZE(tuple) - first;
  if (count <= 0) return true;
  values_ = PyMem_New(tavelor_value, static_cast<size_t>(count));
  if (values_ == nullptr) {
    PyErr_NoMemory();
    return false;
  }
  const Ref name(PyUnicode_FromString(what));
  if (!name) return false;
  for (Py_ssize_t i = 0; i < count; ++i) {
    if (!toValue(PyTuple_GET_ITEM(tuple, first + i), TAVELOR_NULL, {name.get()}, values_[i])) {
      return false;
    }
  }
  size_ = static_cast<size_t>(count);
  return true;
}

}  // namespace tavelor::python

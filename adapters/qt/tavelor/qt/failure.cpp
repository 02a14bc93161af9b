// SPDX-License-Identifier: MIT
// An error of the library as a value.
#include "tavelor/qt/failure.hpp"

#include <exception>

#include "tavelor/qt/values.hpp"

namespace tavelor::qt {

Failure currentFailure() {
  try {
    throw;
  } catch (const Error& error) {
    return {error.number(), error.kind(), toQString(error.source()), toQString(error.description()),
            toQString(error.notes())};
  } catch (const std::exception& error) {
    return {errors::kUnspecified, ErrorKind::kOther, {}, QString::fromLocal8Bit(error.what()), {}};
  }
}

}  // namespace tavelor::qt

// SPDX-License-Identifier: MIT
// An error of the library as a value: exceptions must not cross Qt's event loop.
#pragma once

#include <QtCore/QMetaType>
#include <QtCore/QString>
#include <cstdint>

#include "tavelor/platform/error.hpp"
#include "tavelor/qt/export.hpp"

namespace tavelor::qt {

/// What went wrong, for programs by its number and kind, for people by its texts.
struct TAVELOR_QT_API Failure {
  std::int32_t number = 0;             ///< one of tavelor::errors; 0 for none
  ErrorKind kind = ErrorKind::kOther;  ///< what to do about it
  QString source;                      ///< the class or part that raised it
  QString text;                        ///< what went wrong, in a sentence
  QString details;                     ///< what it was about and what helps, one a line; or ""

  /// Whether there is one.
  bool isSet() const { return number != 0; }
};

/// The error that is being handled: to be called in a catch block only. What is no tavelor::Error
/// has the number errors::kUnspecified.
TAVELOR_QT_API Failure currentFailure();

}  // namespace tavelor::qt

Q_DECLARE_METATYPE(tavelor::qt::Failure)

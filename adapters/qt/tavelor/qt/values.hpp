// SPDX-License-Identifier: MIT
// Values of the library as Qt's, and back.
#pragma once

#include <QtCore/QDateTime>
#include <QtCore/QString>
#include <QtCore/QVariant>
#include <memory>
#include <string>
#include <string_view>

#include "tavelor/platform/date.hpp"
#include "tavelor/platform/variant.hpp"
#include "tavelor/qt/export.hpp"

namespace tavelor::qt {

/// A text of the library, which is UTF-8.
inline QString toQString(std::string_view text) {
  return QString::fromUtf8(text.data(), static_cast<qsizetype>(text.size()));
}
/// A text of Qt as the library takes one.
inline std::string toText(const QString& text) {
  return text.toStdString();
}

/// Day and time as the calendar and the clock show them, without a zone: Qt calls that local.
TAVELOR_QT_API QDateTime toQDateTime(Date date);
/// The same back; seconds are whole. Raises 5 for what is no date of the years 100 to 9999.
TAVELOR_QT_API Date toDate(const QDateTime& moment);

/// In the type that Qt's editors take: a text, bool, int, double (money too), QDateTime,
/// QByteArray. Null and Empty are the invalid one, and so is an object.
TAVELOR_QT_API QVariant toQVariant(const Variant& value);
/// An invalid one is Null; a day, a time and a moment are a date; what is none of the library's
/// types is its text. Raises 3421 for what has none.
TAVELOR_QT_API Variant toVariant(const QVariant& value);

/// By the locale that the thread's apartment has; Spanish without one.
TAVELOR_QT_API std::shared_ptr<const Locale> currentLocale();

}  // namespace tavelor::qt

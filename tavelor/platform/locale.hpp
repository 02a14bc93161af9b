// SPDX-License-Identifier: MIT
// How numbers, dates and money are written, as data.
#pragma once

#include <array>
#include <memory>
#include <string>

#include "tavelor/platform/export.hpp"

namespace tavelor {

/// In which order a date is written and read.
enum class DateOrder { kDayMonthYear, kMonthDayYear, kYearMonthDay };

/// The writing habits of a country. It is data: no C or C++ locale is read or set, so two
/// apartments of one process may differ.
struct TAVELOR_API Locale {
  std::string name;                  ///< "es-ES"; "neutral"
  std::string decimal;               ///< "," in Spanish
  std::string thousands;             ///< "." in Spanish
  std::string currencySymbol;        ///< "€"
  bool currencySymbolBehind = true;  ///< "1.234,50 €" against "€1,234.50"
  std::string dateSeparator;         ///< "/"
  std::string timeSeparator;         ///< ":"
  DateOrder dateOrder = DateOrder::kDayMonthYear;
  std::string shortDate;                ///< mask of "Short Date": "dd/mm/yyyy"
  std::string longDate;                 ///< mask of "Long Date": "dddd, d \d\e mmmm \d\e yyyy"
  std::string longTime;                 ///< mask of "Long Time": "h:nn:ss"
  std::string shortTime;                ///< mask of "Short Time": "h:nn"
  std::array<std::string, 7> dayNames;  ///< Sunday first
  std::array<std::string, 7> shortDayNames;
  std::array<std::string, 12> monthNames;
  std::array<std::string, 12> shortMonthNames;
  std::string yes, no;              ///< "Sí", "No"
  std::string trueText, falseText;  ///< "Verdadero", "Falso": what text a boolean becomes
  std::string on, off;              ///< "Activado", "Desactivado"

  /// 1.234,56 · 31/12/2026 · "lunes, 21 de noviembre de 2026" · 1.234,50 €. The default.
  static const std::shared_ptr<const Locale>& spanish();
  /// English names and a decimal point: 1,234.56 · 2026-12-31, read as year, month, day. For tests
  /// and exports that must not depend on a country.
  static const std::shared_ptr<const Locale>& neutral();
  /// One of the above by its name, without regard to case; null when there is none. ca-ES, gl-ES
  /// and eu-ES are spanish(), its words and the names of its days too.
  static std::shared_ptr<const Locale> byName(const std::string& name);
};

}  // namespace tavelor

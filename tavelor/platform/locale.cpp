// SPDX-License-Identifier: MIT
// How numbers, dates and money are written, as data.
#include "tavelor/platform/locale.hpp"

#include "tavelor/platform/text.hpp"

namespace tavelor {

namespace {

std::shared_ptr<const Locale> makeSpanish() {
  auto locale = std::make_shared<Locale>();
  locale->name = "es-ES";
  locale->decimal = ",";
  locale->thousands = ".";
  locale->currencySymbol = "€";
  locale->currencySymbolBehind = true;
  locale->dateSeparator = "/";
  locale->timeSeparator = ":";
  locale->dateOrder = DateOrder::kDayMonthYear;
  locale->shortDate = "dd/mm/yyyy";
  locale->longDate = "dddd, d \\d\\e mmmm \\d\\e yyyy";
  locale->longTime = "h:nn:ss";
  locale->shortTime = "h:nn";
  locale->dayNames = {"domingo", "lunes", "martes", "miércoles", "jueves", "viernes", "sábado"};
  locale->shortDayNames = {"dom", "lun", "mar", "mié", "jue", "vie", "sáb"};
  locale->monthNames = {"enero", "febrero", "marzo",      "abril",   "mayo",      "junio",
                        "julio", "agosto",  "septiembre", "octubre", "noviembre", "diciembre"};
  locale->shortMonthNames = {"ene", "feb", "mar", "abr", "may", "jun",
                             "jul", "ago", "sep", "oct", "nov", "dic"};
  locale->yes = "Sí";
  locale->no = "No";
  locale->trueText = "Verdadero";
  locale->falseText = "Falso";
  locale->on = "Activado";
  locale->off = "Desactivado";
  return locale;
}

std::shared_ptr<const Locale> makeNeutral() {
  auto locale = std::make_shared<Locale>();
  locale->name = "neutral";
  locale->decimal = ".";
  locale->thousands = ",";
  locale->currencySymbol = "€";
  locale->currencySymbolBehind = false;
  locale->dateSeparator = "/";
  locale->timeSeparator = ":";
  locale->dateOrder = DateOrder::kYearMonthDay;
  locale->shortDate = "yyyy-mm-dd";
  locale->longDate = "dddd, d mmmm yyyy";
  locale->longTime = "hh:nn:ss";
  locale->shortTime = "hh:nn";
  locale->dayNames = {"Sunday", "Monday", "Tuesday", "Wednesday", "Thursday", "Friday", "Saturday"};
  locale->shortDayNames = {"Sun", "Mon", "Tue", "Wed", "Thu", "Fri", "Sat"};
  locale->monthNames = {"January", "February", "March",     "April",   "May",      "June",
                        "July",    "August",   "September", "October", "November", "December"};
  locale->shortMonthNames = {"Jan", "Feb", "Mar", "Apr", "May", "Jun",
                             "Jul", "Aug", "Sep", "Oct", "Nov", "Dec"};
  locale->yes = "Yes";
  locale->no = "No";
  locale->trueText = "True";
  locale->falseText = "False";
  locale->on = "On";
  locale->off = "Off";
  return locale;
}

}  // namespace

const std::shared_ptr<const Locale>& Locale::spanish() {
  static const std::shared_ptr<const Locale> locale = makeSpanish();
  return locale;
}

const std::shared_ptr<const Locale>& Locale::neutral() {
  static const std::shared_ptr<const Locale> locale = makeNeutral();
  return locale;
}

std::shared_ptr<const Locale> Locale::byName(const std::string& name) {
  for (const auto& locale : {spanish(), neutral()}) {
    if (text::equalsIgnoreCase(locale->name, name)) return locale;
  }
  for (const std::string_view alike : {"ca-ES", "gl-ES", "eu-ES"}) {
    if (text::equalsIgnoreCase(alike, name)) return spanish();
  }
  return nullptr;
}

}  // namespace tavelor

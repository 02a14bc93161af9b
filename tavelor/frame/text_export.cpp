// SPDX-License-Identifier: MIT
// A class's rows as plain text, record by record.
#include <string>

#include "tavelor/frame/page.hpp"
#include "tavelor/frame/record_class.hpp"
#include "tavelor/platform/format.hpp"
#include "tavelor/services/apartment.hpp"
#include "tavelor/services/clock.hpp"
#include "tavelor/services/recordset/recordset.hpp"

namespace tavelor {

namespace {

constexpr std::string_view kDates = "Long Date";

std::string shown(const Variant& value, const Locale& locale) {
  if (value.isNull() || value.type() == VariantType::kBytes) return {};
  return value.type() == VariantType::kDate ? format(value, kDates, locale) : value.toText(locale);
}

void writeRecord(Page& text, Recordset& rows, const Locale& locale) {
  for (std::int32_t i = 0; i < rows.Fields().Count(); ++i) {
    const Field field = rows.Field(i);
    text << field.Name() << ": ";
    text.line(shown(field.Value(), locale));
  }
  text.line();
}

}  // namespace

void RecordClass::writeRecordText(bool bDoclone, std::string_view sSelecSql, bool bFilter) {
  const RecordsetPtr rows = pageRows(bDoclone, sSelecSql, bFilter);
  if (!rows) return;

  Apartment& apartment = Apartment::current();
  Page text(reportFile(std::string(info_.word) + ".txt"));
  text.line(info_.word);
  text.line();
  std::size_t count = 0;
  if (!(rows->Bof() && rows->Eof())) rows->MoveFirst();
  for (; !rows->Eof(); rows->MoveNext()) {
    ++count;
    writeRecord(text, *rows, apartment.locale());
  }
  text << std::to_string(count) << " registros. - ";
  text.line(format(apartment.clock().now(), kDates, apartment.locale()));
  text.finish();
}

}  // namespace tavelor

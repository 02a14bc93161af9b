// SPDX-License-Identifier: MIT
// A class's rows as a page that the application shows or prints.
#include <string>

#include "tavelor/frame/controls.hpp"
#include "tavelor/frame/page.hpp"
#include "tavelor/frame/record_class.hpp"
#include "tavelor/platform/format.hpp"
#include "tavelor/platform/text.hpp"
#include "tavelor/services/apartment.hpp"
#include "tavelor/services/clock.hpp"
#include "tavelor/services/installation.hpp"
#include "tavelor/services/paths_service.hpp"
#include "tavelor/services/recordset/recordset.hpp"

namespace tavelor {

namespace {

constexpr std::string_view kStoredFilter = "Filter";

void writeHead(Page& page, std::string_view product, std::string_view word) {
  page.line("<HTML>");
  page.line("<HEAD>");
  // No blank before "content": browsers read it all the same, and pages are compared by the byte.
  page.line("<meta http-equiv='Content-Type'content='text/html; charset=iso-8859-1'>");
  page.line("<meta name='GENERATOR' content='Merivan HtmlPage Express 1.0'>");
  page << "<TITLE>" << product << " - " << word;
  page.line("</TITLE>");
  page.line("</HEAD>");
  page.line();
  page.line("<BODY bgcolor=white text=Black>");
}

void writeFoot(Page& page, std::size_t rows, std::string_view moment) {
  page.line("</TABLE>");
  page << "<P><FONT Size=2>" << std::to_string(rows) << " registros. - ";
  page.line(moment);
  page.line("<HR>");
  page.line("</BODY>");
  page.line("</HTML>");
}

std::string_view cellOf(std::int32_t alignment) {
  switch (alignment) {
    case 1:
      return "        <TD align=right><FONT Size=1>";
    case 3:
      return "        <TD align=left><FONT Size=1>";
    default:
      return "        <TD align=center><FONT Size=1>";
  }
}

std::string shown(const Variant& value, const Locale& locale) {
  return value.isNull() ? std::string() : value.toText(locale);
}

}  // namespace

std::string RecordClass::reportFile(std::string_view name) {
  return (Apartment::current().installation().reportFolder() / name).string();
}

std::string RecordClass::GetHtmlFile() const {
  return reportFile(std::string(info_.word) + ".htm");
}

RecordsetPtr RecordClass::pageRows(bool bDoclone, std::string_view sSelecSql, bool bFilter) {
  RecordsetPtr rows = primary().shared_from_this();
  if (bDoclone) {
    rows = rows->Clone(LockType::kUnspecified);
    std::int16_t index = 0;
    std::string mode;
    GetOrder(index, mode, sSelecSql);
    if (rows->RecordCount() == 0) return nullptr;
    sortBy(*rows, index, mode);
  }
  if (bFilter) {
    rows->Filter(GetFilter(kStoredFilter));
    rows->Requery();
  }
  return rows;
}

void RecordClass::ToHtmlGrid(const GridColumns& clColfields, bool bDoclone,
                             std::string_view sSelecSql, bool bFilter) {
  const RecordsetPtr rows = pageRows(bDoclone, sSelecSql, bFilter);
  if (!rows) return;

  Apartment& apartment = Apartment::current();
  const Locale& locale = apartment.locale();
  Page page(PathsService().HtmlFile(std::string(info_.word) + ".htm"));
  writeHead(page, apartment.version().product, info_.word);
  page << "<H1><font size=4>Listado de " << info_.word;
  page.line("</Font></H1><hr size=2 noshade><Br>");
  page.line("<TABLE WIDTH=100% CELLPADDING=1 CELLSPACING=1 BGCOLOR=white BORDER=1>");

  // Columns of the grid and fields of the record set are taken to stand at the same positions.
  struct Shown {
    std::int32_t field;
    std::string_view cell;
  };
  std::vector<Shown> columns;
  page.line("    <TR>");
  for (std::int32_t i = 0; i < clColfields.Count(); ++i) {
    const GridColumn column = clColfields.Item(i);
    if (!column.visible) continue;
    columns.push_back({i, cellOf(column.alignment)});
    page << "        <TH bgcolor=Silver ><FONT Size=1>" << text::upper(column.caption);
    page.line("</TH></FONT>");
  }
  page.line("    </TR>");

  std::size_t count = 0;
  if (!(rows->Bof() && rows->Eof())) rows->MoveFirst();
  for (; !rows->Eof(); rows->MoveNext()) {
    ++count;
    page << "    <TR>";
    for (const Shown& column : columns) {
      page << column.cell << shown(rows->Field(column.field).Value(), locale);
      page.line("</TD></FONT>");
    }
    page.line("</TR>");
  }
  writeFoot(page, count, Variant(apartment.clock().now()).toText(locale));
  page.finish();
}

void RecordClass::writeRecordPage(bool bDoclone, std::string_view sSelecSql, bool bFilter) {
  const RecordsetPtr rows = pageRows(bDoclone, sSelecSql, bFilter);
  if (!rows) return;

  Apartment& apartment = Apartment::current();
  const Locale& locale = apartment.locale();
  Page page(PathsService().HtmlFile(std::string(info_.word) + ".htm"));
  writeHead(page, apartment.version().product, info_.word);
  page << "<H1><font size=4>" << info_.word;
  page.line("</Font></H1><hr size=0 noshade><Br>");
  page.line(
      "<table border='1'; cellpadding='5'; cellspacing='5';width='50' bgcolor = '#FFFFFF'; "
      "bordercolordark = '#C5C5C5' >");

  std::size_t count = 0;
  const std::int32_t fields = rows->Fields().Count();
  if (!(rows->Bof() && rows->Eof())) rows->MoveFirst();
  for (; !rows->Eof(); rows->MoveNext()) {
    ++count;
    for (std::int32_t i = 0; i < fields; ++i) {
      const Field field = rows->Field(i);
      page.line("    <TR>");
      page << "        <th align='Right'; bgcolor='Silver'><FONT Size=1>" << field.Name();
      page.line("</FONT></th>");
      page << "        <td><font size=1>" << shown(field.Value(), locale);
      page.line("    </TD></FONT>");
      page.line("    </TR>");
    }
  }
  writeFoot(page, count, format(apartment.clock().now(), "Long Date", locale));
  page.finish();
}

}  // namespace tavelor

// SPDX-License-Identifier: MIT
// A class's rows as a page that the application shows or prints.
#include <algorithm>
#include <cmath>
#include <cstdint>
#include <filesystem>
#include <string>
#include <vector>

#include "tavelor/frame/controls.hpp"
#include "tavelor/frame/page.hpp"
#include "tavelor/frame/record_class.hpp"
#include "tavelor/platform/error.hpp"
#include "tavelor/platform/format.hpp"
#include "tavelor/platform/locale.hpp"
#include "tavelor/platform/number_text.hpp"
#include "tavelor/platform/text.hpp"
#include "tavelor/services/apartment.hpp"
#include "tavelor/services/clock.hpp"
#include "tavelor/services/installation.hpp"
#include "tavelor/services/paths_service.hpp"
#include "tavelor/services/recordset/recordset.hpp"
#include "tavelor/services/recordset/row_reader.hpp"

namespace tavelor {

namespace {

constexpr std::string_view kStoredFilter = "Filter";

std::string pageFile(std::string_view word) {
  return std::string(word) + ".htm";
}

// ---------------------------------------------------------------------------------------------
// Rows

/// What opens a cell, by the alignment of its grid column.
struct CellMarks {
  std::string_view right;
  std::string_view left;
  std::string_view centre;

  std::string_view of(const GridColumn& column) const {
    constexpr std::int32_t kRight = 1;
    constexpr std::int32_t kLeft = 3;
    if (column.alignment == kRight) return right;
    return column.alignment == kLeft ? left : centre;
  }
};

/// A column that the page shows. Columns of the grid and fields of the record set are taken to
/// stand at the same positions.
struct ShownColumn {
  std::int32_t field;
  std::string caption;
  std::string_view cell;
};

std::vector<ShownColumn> shownColumns(const GridColumns& grid, const CellMarks& marks) {
  std::vector<ShownColumn> columns;
  for (std::int32_t i = 0; i < grid.Count(); ++i) {
    GridColumn column = grid.Item(i);
    if (column.visible) columns.push_back({i, std::move(column.caption), marks.of(column)});
  }
  return columns;
}

/// A value as it is, with no escaping: a shop may keep markup in its texts. Null and pictures show
/// nothing.
void writeValue(Page& page, const Variant& value, const Locale& locale) {
  if (const auto* text = value.getIf<std::string>()) {
    page << *text;
  } else if (!value.isNull() && value.type() != VariantType::kBytes) {
    page << value.toText(locale);
  }
}

/// Days as text. Rows repeat few days, and a day costs more to print than all else in its row.
class DayTexts {
 public:
  explicit DayTexts(const Locale& locale) : locale_(locale) {}

  /// Good until the next call.
  std::string_view of(double days) {
    const auto whole = std::fabs(days) <= kLastDay ? static_cast<std::int32_t>(days) : 0;
    if (days != whole) {
      moment_ = Variant(Date(days)).toText(locale_);
      return moment_;
    }
    if (known_.empty()) known_.resize(kKept);
    Known& known = known_[static_cast<std::uint32_t>(whole) % kKept];
    if (known.text.empty() || known.day != whole) {
      known = {whole, Variant(Date(days)).toText(locale_)};
    }
    return known.text;
  }

 private:
  struct Known {
    std::int32_t day = 0;
    std::string text;
  };
  static constexpr double kLastDay = 2'958'465;  // 31/12/9999
  // Days of more than five years keep out of each other's place.
  static constexpr std::size_t kKept = 2048;

  const Locale& locale_;
  std::vector<Known> known_;
  std::string moment_;
};

/// Writes the cells of a row where they lie.
class CellWriter {
 public:
  CellWriter(Page& page, const Recordset& rows, const Locale& locale)
      : page_(page), row_(rows), locale_(locale), days_(locale) {}

  /// Goes to the current row. False when its values are not to be had here.
  bool take() { return row_.take(); }

  /// `before`, then what writeValue writes. False, with nothing written, for the rarer types, which
  /// go by their Variant.
  bool write(const PageMark& before, std::size_t column) {
    if (row_.isNull(column)) {
      page_ << before;
      return true;
    }
    switch (row_.type(column)) {
      case engine::ColumnType::kText:
      case engine::ColumnType::kMemo:
        page_.cell(before, row_.text(column));
        return true;
      case engine::ColumnType::kByte:
      case engine::ColumnType::kInt16:
      case engine::ColumnType::kInt32:
        page_.cell(before, row_.integer(column));
        return true;
      case engine::ColumnType::kBoolean:
        page_.cell(before, row_.integer(column) != 0 ? locale_.trueText : locale_.falseText);
        return true;
      case engine::ColumnType::kDouble:
        page_.cell(before, row_.real(column), locale_);
        return true;
      case engine::ColumnType::kDate:
        page_.cell(before, days_.of(row_.real(column)));
        return true;
      default:
        return false;
    }
  }

 private:
  Page& page_;
  RowReader row_;
  const Locale& locale_;
  DayTexts days_;
};

/// Calls `work` on each row; gives their number. The set is left at EOF.
template <typename Work>
std::size_t forEachRow(Recordset& rows, Work&& work) {
  std::size_t count = 0;
  if (!(rows.Bof() && rows.Eof())) rows.MoveFirst();
  for (; !rows.Eof(); rows.MoveNext()) {
    ++count;
    work();
  }
  return count;
}

/// What stands around the rows and the cells of a grid's page.
struct RowMarks {
  std::string_view open;
  std::string_view cellEnd;
  std::string_view close;
};

/// What stands before each value of a row and behind the last: all that a row has beside its
/// values, joined once for all rows.
std::vector<PageMark> textsBetween(const std::vector<ShownColumn>& columns, const RowMarks& marks) {
  std::vector<PageMark> texts;
  std::string text(marks.open);
  for (const ShownColumn& column : columns) {
    texts.emplace_back(text.append(column.cell));
    text = marks.cellEnd;
  }
  texts.emplace_back(text.append(marks.close));
  return texts;
}

std::size_t writeRows(Page& page, Recordset& rows, const std::vector<ShownColumn>& columns,
                      const RowMarks& marks, const Locale& locale) {
  const std::vector<PageMark> between = textsBetween(columns, marks);
  std::vector<Field> fields;
  CellWriter cells(page, rows, locale);
  return forEachRow(rows, [&] {
    if (fields.empty()) {
      for (const ShownColumn& column : columns) fields.push_back(rows.Field(column.field));
    }
    const bool asStored = cells.take();
    for (std::size_t i = 0; i < fields.size(); ++i) {
      if (asStored && cells.write(between[i], fields[i].column())) continue;
      page << between[i];
      writeValue(page, fields[i].Value(), locale);
    }
    page << between.back();
  });
}

// ---------------------------------------------------------------------------------------------
// The plain pages

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

// Tags close in the order in which they opened, and the first cell follows its row on one line:
// browsers show it well, and pages are compared by the byte.
constexpr CellMarks kPlainCells = {"        <TD align=right><FONT Size=1>",
                                   "        <TD align=left><FONT Size=1>",
                                   "        <TD align=center><FONT Size=1>"};
constexpr RowMarks kPlainRows = {"    <TR>", "</TD></FONT>\r\n", "</TR>\r\n"};

// ---------------------------------------------------------------------------------------------
// The modern page

constexpr std::string_view kModernHead[] = {
    "<style type='text/css'>",
    "body { background-color:#f8f9fa; color:#333; font-family:Verdana, Geneva, Tahoma, sans-serif; "
    "margin:20px; }",
    "h1 { font-size:20px; color:#2a4d7a; text-align:center; }",
    "hr { border:none; height:2px; background-color:#2a4d7a; margin-bottom:20px; }",
    "table { width:100%; border-collapse:collapse; background:white; box-shadow:0 0 6px "
    "rgba(0,0,0,0.1); }",
    "th { background-color:#4b8bc9; color:white; padding:6px; font-size:11px; border:1px solid "
    "#ccc; text-transform:uppercase; letter-spacing:0.5px; }",
    "td { font-size:11px; padding:5px 6px; border:1px solid #ddd; }",
    "tr:nth-child(even) { background-color:#f2f6fa; }",
    "tr:hover { background-color:#e0ebf7; }",
    ".footer { font-size:11px; color:#555; text-align:right; margin-top:10px; }",
    "</style>",
    "</head>",
    "<body>",
};

constexpr CellMarks kModernCells = {"    <td align='right'>", "    <td align='left'>",
                                    "    <td align='center'>"};
constexpr RowMarks kModernRows = {"  <tr>\r\n", "</td>\r\n", "  </tr>\r\n"};

void writeModernHead(Page& page, std::string_view product, std::string_view word) {
  page.line("<!DOCTYPE html>");
  page.line("<html lang='es'>");
  page.line("<head>");
  page.line("<meta http-equiv='X-UA-Compatible' content='IE=edge'>");
  page.line("<meta http-equiv='Content-Type' content='text/html; charset=iso-8859-1'>");
  page << "<title>" << product << " - " << word;
  page.line("</title>");
  for (const std::string_view entry : kModernHead) page.line(entry);
  page << "<h1>Listado de " << word;
  page.line("</h1>");
  page.line("<hr>");
}

void writeModernFoot(Page& page, std::size_t rows, std::string_view moment) {
  page.line("</table>");
  page << "<p class='footer'>" << std::to_string(rows) << " registros · Generado el " << moment;
  page.line("</p>");
  page.line("</body>");
  page.line("</html>");
}

/// Where a user's own page lies: in his folder, relative to the installation's unless it is
/// absolute; without one where the class's page lies.
std::string personalFile(std::string_view folder, std::string_view word) {
  if (folder.empty()) return PathsService().HtmlFile(pageFile(word));
  std::string given(folder);
  std::replace(given.begin(), given.end(), '\\', '/');
  return (std::filesystem::path(Apartment::current().installation().folder()) / given /
          pageFile(word))
      .string();
}

}  // namespace

// ---------------------------------------------------------------------------------------------

std::string RecordClass::reportFile(std::string_view name) {
  return (std::filesystem::path(Apartment::current().installation().reportFolder()) / name)
      .string();
}

std::string RecordClass::GetHtmlFile() const {
  return reportFile(pageFile(info_.word));
}

RecordsetPtr RecordClass::pageRows(bool bDoclone, std::string_view sSelecSql, bool bFilter) {
  RecordsetPtr rows = primary().shared_from_this();
  mustBeHome();
  if (bDoclone) {
    rows = rows->Clone(LockType::kUnspecified);
    std::int16_t index = 0;
    std::string mode;
    GetOrder(index, mode, sSelecSql);
    if (rows->RecordCount() == 0) return nullptr;
    sortBy(*rows, index, mode);
  }
  if (bFilter) {
    // A clone's changes live on in the record set it was taken from.
    if (!bDoclone && rows->hasUnwrittenChanges()) {
      raise(errors::kNotAllowedInContext, info_.word,
            "The rows would be fetched again and unsaved changes lost: save or cancel them first");
    }
    rows->Filter(GetFilter(kStoredFilter));
    rows->Requery();
  }
  return rows;
}

void RecordClass::ToHtmlGrid(const GridColumns& clColfields, bool bDoclone,
                             std::string_view sSelecSql, bool bFilter) {
  writeGridPage(clColfields, bDoclone, sSelecSql, bFilter);
}

void RecordClass::writeGridPage(const GridColumns& clColfields, bool bDoclone,
                                std::string_view sSelecSql, bool bFilter) {
  const RecordsetPtr rows = pageRows(bDoclone, sSelecSql, bFilter);
  if (!rows) return;

  Apartment& apartment = Apartment::current();
  const Locale& locale = apartment.locale();
  Page page(PathsService().HtmlFile(pageFile(info_.word)));
  writeHead(page, apartment.version().product, info_.word);
  page << "<H1><font size=4>Listado de " << info_.word;
  page.line("</Font></H1><hr size=2 noshade><Br>");
  page.line("<TABLE WIDTH=100% CELLPADDING=1 CELLSPACING=1 BGCOLOR=white BORDER=1>");

  const std::vector<ShownColumn> columns = shownColumns(clColfields, kPlainCells);
  page.line("    <TR>");
  for (const ShownColumn& column : columns) {
    page << "        <TH bgcolor=Silver ><FONT Size=1>" << text::upper(column.caption);
    page.line("</TH></FONT>");
  }
  page.line("    </TR>");

  const std::size_t count = writeRows(page, *rows, columns, kPlainRows, locale);
  writeFoot(page, count, Variant(apartment.clock().now()).toText(locale));
  page.finish();
}

void RecordClass::writeRecordPage(bool bDoclone, std::string_view sSelecSql, bool bFilter) {
  const RecordsetPtr rows = pageRows(bDoclone, sSelecSql, bFilter);
  if (!rows) return;

  Apartment& apartment = Apartment::current();
  const Locale& locale = apartment.locale();
  Page page(PathsService().HtmlFile(pageFile(info_.word)));
  writeHead(page, apartment.version().product, info_.word);
  page << "<H1><font size=4>" << info_.word;
  page.line("</Font></H1><hr size=0 noshade><Br>");
  page.line(
      "<table border='1'; cellpadding='5'; cellspacing='5';width='50' bgcolor = '#FFFFFF'; "
      "bordercolordark = '#C5C5C5' >");

  const std::int32_t fields = rows->Fields().Count();
  const std::size_t count = forEachRow(*rows, [&] {
    for (std::int32_t i = 0; i < fields; ++i) {
      const Field field = rows->Field(i);
      page.line("    <TR>");
      page << "        <th align='Right'; bgcolor='Silver'><FONT Size=1>" << field.Name();
      page.line("</FONT></th>");
      page << "        <td><font size=1>";
      writeValue(page, field.Value(), locale);
      page.line("    </TD></FONT>");
      page.line("    </TR>");
    }
  });
  writeFoot(page, count, format(apartment.clock().now(), "Long Date", locale));
  page.finish();
}

void RecordClass::writeModernPage(std::string_view sPersonalFolder, const GridColumns& clColfields,
                                  bool bDoclone, std::string_view sSelecSql, bool bFilter) {
  const RecordsetPtr rows = pageRows(bDoclone, sSelecSql, bFilter);
  if (!rows) return;

  Apartment& apartment = Apartment::current();
  const Locale& locale = apartment.locale();
  Page page(personalFile(sPersonalFolder, info_.word));
  writeModernHead(page, apartment.version().product, info_.word);

  const std::vector<ShownColumn> columns = shownColumns(clColfields, kModernCells);
  page.line("<table>");
  page.line("  <tr>");
  for (const ShownColumn& column : columns) {
    page << "    <th>" << column.caption;
    page.line("</th>");
  }
  page.line("  </tr>");

  const std::size_t count = writeRows(page, *rows, columns, kModernRows, locale);
  writeModernFoot(page, count, format(apartment.clock().now(), "dd/mm/yyyy hh:nn:ss", locale));
  page.finish();
}

}  // namespace tavelor

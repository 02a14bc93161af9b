// SPDX-License-Identifier: MIT
// Records as files for whoever asks for them.
#include "tavelor/fiscal/export.hpp"

#include <algorithm>
#include <filesystem>
#include <system_error>

#include <fmt/format.h>

#include "tavelor/fiscal/chains.hpp"
#include "tavelor/fiscal/record_xml.hpp"
#include "tavelor/fiscal/words.hpp"
#include "tavelor/frame/class_info.hpp"
#include "tavelor/frame/rows.hpp"
#include "tavelor/platform/error.hpp"
#include "tavelor/services/apartment.hpp"
#include "tavelor/services/clock.hpp"
#include "tavelor/services/recordset/connection.hpp"
#include "tavelor/services/settings_file.hpp"

namespace tavelor::fiscal {

namespace fs = std::filesystem;

namespace {

constexpr std::string_view kDeclaration = "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n";
constexpr std::string_view kPage = "sums.txt";

/// Writes the files of an export, and remembers their sums.
class Exporter {
 public:
  Exporter(const Book& book, const std::string& folder) : book_(book), folder_(folder) {
    std::error_code error;
    fs::create_directories(folder_, error);
    if (error) {
      raise(errors::kPathAccess, "Fiscal",
            fmt::format("The folder {} cannot be made: {}.", folder_.string(), error.message()));
    }
  }

  ExportReport run(const DaySpan& span) {
    for (const std::int32_t chain : chainsOf(book_.settings().taxpayer.number, book_.documents())) {
      exportRecords(chain, span);
      exportEvents(chain, span);
    }
    report_.quota = Amount::ofCents(quota_);
    report_.total = Amount::ofCents(total_);
    writePage(span);
    return std::move(report_);
  }

 private:
  Rows read(const Statement& statement) const {
    return {selector::kDocuments, statement, book_.documents()};
  }

  void exportRecords(std::int32_t chain, const DaySpan& span) {
    Statement range(
        "SELECT Min(Posicion) AS Primera, Max(Posicion) AS Ultima FROM Fiscal_Registros WHERE "
        "Cadena = ");
    range << sqlLiteral(chain);
    if (span.from) range << " AND Fecha_Expedicion >= " << sqlLiteral(*span.from);
    if (span.to) range << " AND Fecha_Expedicion < " << sqlLiteral(Date(span.to->days() + 1));
    const Rows ends = read(range);
    if (ends.isNull("Primera")) return;
    const std::int32_t last = ends.whole("Ultima");
    const std::vector<PositionRange> kept = keptRanges(chain, book_.documents());
    for (std::int32_t first = ends.whole("Primera"); first <= last; first += kMostInMessage) {
      std::vector<std::string> records;
      Statement statement(
          "SELECT R.Posicion, R.Tipo, R.Cuota, R.Total, R.Registro, F.Firma FROM "
          "Fiscal_Registros AS R LEFT JOIN Fiscal_Firmas AS F ON R.Cadena = F.Cadena AND "
          "R.Posicion = F.Posicion WHERE R.Cadena = ");
      statement << sqlLiteral(chain) << " AND R.Posicion >= " << sqlLiteral(first)
                << " AND R.Posicion < " << sqlLiteral(std::min(first + kMostInMessage, last + 1))
                << " ORDER BY R.Posicion";
      for (Rows rows = read(statement); rows.hasRow(); rows.next()) {
        records.push_back(withSignature(rows.text("Registro"), rows.text("Firma")));
        const std::int32_t position = rows.whole("Posicion");
        const auto holds = [&](const PositionRange& each) { return each.holds(position); };
        if (rows.isNull("Firma") && std::any_of(kept.begin(), kept.end(), holds)) {
          ++report_.unsignedRecords;
        }
        if (rows.text("Tipo") == kCancellationWord) {
          ++report_.cancellations;
          continue;
        }
        ++report_.registrations;
        quota_ += Amount::of(rows.number("Cuota")).cents();
        total_ += Amount::of(rows.number("Total")).cents();
      }
      if (records.empty()) continue;
      write(fmt::format("records-{}-{:07}.xml", chain, first),
            std::string(kDeclaration) + messageOf(book_.settings().taxpayer, records) + "\n");
    }
  }

  /// One event a file: their schema has no message of several.
  void exportEvents(std::int32_t chain, const DaySpan& span) {
    Statement statement(
        "SELECT E.Posicion, E.Momento, E.Evento, F.Firma FROM Fiscal_Eventos AS E LEFT JOIN "
        "Fiscal_Firmas_Eventos AS F ON E.Cadena = F.Cadena AND E.Posicion = F.Posicion WHERE "
        "E.Cadena = ");
    statement << sqlLiteral(chain) << " ORDER BY E.Posicion";
    for (Rows rows = read(statement); rows.hasRow(); rows.next()) {
      const Date day = dayOf(rows.text("Momento"));
      if ((span.from && day < *span.from) || (span.to && day > *span.to)) continue;
      ++report_.events;
      if (rows.isNull("Firma")) ++report_.unsignedEvents;
      write(fmt::format("event-{}-{:05}.xml", chain, rows.whole("Posicion")),
            std::string(kDeclaration) + withSignature(rows.text("Evento"), rows.text("Firma")) +
                "\n");
    }
  }

  /// Of "2027-01-02T..".
  static Date dayOf(std::string_view moment) {
    if (moment.size() < 10) return {};
    const std::string day =
        fmt::format("{}-{}-{}", moment.substr(8, 2), moment.substr(5, 2), moment.substr(0, 4));
    return readDay(day).value_or(Date());
  }

  void write(const std::string& name, const std::string& content) {
    const fs::path file = folder_ / name;
    std::error_code error;
    if (fs::exists(file, error) || error) {
      raise(errors::kPathAccess, "Fiscal",
            fmt::format("{} is there already; an export is written into a folder of its own.",
                        file.string()));
    }
    replaceFile(file, content);
    std::string sum = hasher_(content);
    for (char& c : sum) c = c >= 'A' && c <= 'F' ? static_cast<char>(c - 'A' + 'a') : c;
    sums_ += fmt::format("{}  {}\n", sum, name);
    report_.files.push_back(file.string());
  }

  /// Lines that begin with # are none of `sha256sum -c`.
  void writePage(const DaySpan& span) {
    const Party& taxpayer = book_.settings().taxpayer;
    const auto day = [](const std::optional<Date>& each, std::string_view none) {
      return each ? dayText(*each) : std::string(none);
    };
    std::string missing;
    if (report_.unsignedRecords + report_.unsignedEvents > 0) {
      missing = fmt::format("# not signed: records {}, events {}\n", report_.unsignedRecords,
                            report_.unsignedEvents);
    }
    const std::string page = fmt::format(
        "# {}, {}\n# records of invoices from {} to {}, exported {}\n"
        "# registrations {}, quotas {}, totals {}\n# cancellations {}\n# events {}\n{}{}",
        taxpayer.name, taxpayer.number, day(span.from, "the first"), day(span.to, "the last"),
        momentOf(Apartment::current().clock()), report_.registrations, report_.quota.text(),
        report_.total.text(), report_.cancellations, report_.events, missing, sums_);
    write(std::string(kPage), page);
  }

  const Book& book_;
  fs::path folder_;
  Hasher hasher_;
  std::string sums_;
  ExportReport report_;
  std::int64_t quota_ = 0;
  std::int64_t total_ = 0;
};

}  // namespace

std::string messageOf(const Party& taxpayer, const std::vector<std::string>& records, bool isLate) {
  constexpr std::string_view kOpen = "<RegistroFactura>";
  constexpr std::string_view kClose = "</RegistroFactura>";
  constexpr std::string_view kEnd = "</RegFactuSistemaFacturacion>";
  std::string message = fmt::format(
      "<RegFactuSistemaFacturacion xmlns=\"{}\"><Cabecera><ObligadoEmision xmlns=\"{}\">"
      "<NombreRazon>{}</NombreRazon><NIF>{}</NIF></ObligadoEmision>",
      kMessageNamespace, kRecordNamespace, escaped(taxpayer.name), escaped(taxpayer.number));
  if (isLate) {
    message += fmt::format(
        "<RemisionVoluntaria xmlns=\"{}\"><Incidencia>S</Incidencia></RemisionVoluntaria>",
        kRecordNamespace);
  }
  message += "</Cabecera>";
  std::size_t size = message.size() + kEnd.size();
  for (const std::string& record : records) size += record.size() + kOpen.size() + kClose.size();
  message.reserve(size);
  for (const std::string& record : records) message.append(kOpen).append(record).append(kClose);
  return message.append(kEnd);
}

std::string withSignature(std::string xml, std::string_view signature) {
  constexpr std::string_view kEventEnd = "</Evento>";  // within <RegistroEvento>
  if (signature.empty()) return xml;
  const std::size_t event = xml.rfind(kEventEnd);
  const std::size_t end = event == std::string::npos ? xml.rfind("</") : event;
  if (end != std::string::npos) xml.insert(end, signature);
  return xml;
}

ExportReport exportRecords(const Book& book, const DaySpan& span, const std::string& folder) {
  return Exporter(book, folder).run(span);
}

void logExport(Book& book, const ExportReport& report, const DaySpan& span) {
  if (book.settings().mode == Mode::kSending) return;
  const ChainEnd end = book.end();
  Statement statement(
      "SELECT Min(Posicion) AS Primera, Max(Posicion) AS Ultima FROM "
      "Fiscal_Registros WHERE Cadena = ");
  statement << sqlLiteral(end.chain);
  if (span.from) statement << " AND Fecha_Expedicion >= " << sqlLiteral(*span.from);
  if (span.to) statement << " AND Fecha_Expedicion < " << sqlLiteral(Date(span.to->days() + 1));
  const Rows ends(selector::kDocuments, statement, book.documents());
  if (ends.isNull("Primera")) return;
  const auto linkAt = [&](std::int32_t position, std::string& moment) {
    Statement record(
        "SELECT Serie_Numero, Fecha_Expedicion, Huella, Momento FROM "
        "Fiscal_Registros WHERE Cadena = ");
    record << sqlLiteral(end.chain) << " AND Posicion = " << sqlLiteral(position);
    const Rows row(selector::kDocuments, record, book.documents());
    moment = row.text("Momento");
    return Link{
        {book.settings().taxpayer.number, row.text("Serie_Numero"), row.day("Fecha_Expedicion")},
        row.text("Huella")};
  };
  Exported exported;
  exported.first = linkAt(ends.whole("Primera"), exported.from);
  exported.last = linkAt(ends.whole("Ultima"), exported.to);
  exported.registrations = report.registrations;
  exported.cancellations = report.cancellations;
  exported.quota = report.quota;
  exported.total = report.total;
  book.log(EventKind::kExport, std::move(exported));
}

}  // namespace tavelor::fiscal

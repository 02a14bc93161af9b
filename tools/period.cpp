// SPDX-License-Identifier: MIT
// tavelor period: the session's period and its counters.
#include <CLI/CLI.hpp>
#include <algorithm>
#include <array>
#include <stdexcept>
#include <vector>

#include <fmt/format.h>

#include "tavelor/numbering/numeradores.hpp"
#include "tavelor/platform/statement.hpp"
#include "tavelor/platform/text.hpp"
#include "tavelor/services/clock.hpp"
#include "tavelor/services/data_session.hpp"
#include "tavelor/services/recordset/recordset.hpp"
#include "tools/command.hpp"
#include "tools/output.hpp"
#include "tools/session.hpp"

namespace tavelor::tools {

namespace {

constexpr const char* kFooter =
    R"(Counters are those of the session's period, for all programs of the
installation. With YEAR it becomes that year, which must have a row of counters.
--create makes the row of YEAR, or of today's year, as at the start of that year,
after giving rows from before periods theirs.

  tavelor period
  tavelor period 2025
  tavelor period 2027 --create)";

struct PeriodOptions {
  std::string year;
  bool create = false;
};

struct CountersLine {
  std::string_view family;
  std::string_view columns;  // without the letter of the series
};

constexpr std::array kLines = {
    CountersLine{"Pedidos", "Pedido_"},
    CountersLine{"Facturas_Proveedores", "Factura_Prov_"},
    CountersLine{"Pedidos_Clientes", "Pedido_Cli_"},
    CountersLine{"Albaranes", "Albaran_"},
    CountersLine{"Facturas", "Factura_"},
    CountersLine{"Ordenes", "Orden_"},
    CountersLine{"Tickets", "Ticket_"},
    CountersLine{"Presupuestos", "Presupuesto_"},
};

constexpr std::size_t kFamilyWidth = 20;
constexpr std::size_t kNumberWidth = 10;
constexpr std::string_view kNeverUsed = "·";

RecordsetPtr select(const Statement& statement) {
  RecordsetPtr rows;
  ConnectionPtr connection;
  DataSession().OpenRecordset(selector::kMain, statement, rows, connection);
  return rows;
}

RecordsetPtr rowsOf(std::string_view year) {
  Statement statement("SELECT * FROM Numeradores WHERE Periodo = '");
  statement << spliced(year) << "'";
  return select(statement);
}

std::string knownYears(const Locale& locale) {
  const RecordsetPtr rows =
      select(Statement("SELECT DISTINCT Periodo FROM Numeradores WHERE Periodo Is Not Null "
                       "ORDER BY Periodo"));
  std::string years;
  for (; !rows->Eof(); rows->MoveNext()) {
    years += fmt::format("{}{}", years.empty() ? "" : ", ",
                         printable(shown(rows->Field(0).Value(), locale)));
  }
  return years.empty() ? "none" : years;
}

std::string line(std::string_view family, const std::vector<std::string>& numbers) {
  std::string joined = text::padRight(family, kFamilyWidth);
  for (const std::string& number : numbers) joined += "  " + text::padLeft(number, kNumberWidth);
  return joined;
}

void printCounters(Recordset& rows, const Locale& locale) {
  const auto number = [&](const std::string& column) {
    const Variant found = rows.Field(column).Value();
    return found.isNull() ? std::string(kNeverUsed) : shown(found, locale);
  };
  for (const auto& [family, series] : kLines) {
    const std::string columns(series);
    fmt::print("{}\n",
               line(family, {number(columns + "a"), number(columns + "b"), number(columns + "c")}));
  }
  fmt::print("{}\n", line("rectificativa", {number("Factura_r")}));
}

void printPeriod(const Session& session, const Style& style) {
  const Locale& locale = session.locale();
  const std::string period = clsNumeradores::currentPeriod();
  if (period.empty()) {
    fmt::print("The session has no period; years with counters: {}\n", knownYears(locale));
    return;
  }
  const RecordsetPtr rows = rowsOf(period);
  if (rows->RecordCount() == 0) {
    fmt::print("Period {} has no counters; years with counters: {}\n", printable(period),
               knownYears(locale));
    return;
  }
  const auto column = [&](const char* name) {
    return printable(shown(rows->Field(name).Value(), locale));
  };
  fmt::print("Period {}, row {}: {}\n", printable(period), column("Codigo"), column("Descripcion"));
  if (rows->RecordCount() > 1) {
    fmt::print("It has {} rows, of which this one counts\n", rows->RecordCount());
  }
  fmt::print("\n{}\n", style.bold(line("Last number used", {"a", "b", "c"})));
  printCounters(*rows, locale);
}

/// Puts the session's period back, so that the lengths of its codes carry over to the new year.
void adoptOldRows(const clsNumeradores& counters) {
  constexpr const char* kFirstYear = "2004";
  const std::string before = clsNumeradores::currentPeriod();
  counters.ActualizarPeriodosNulos();
  clsNumeradores::setCurrentPeriod(before.empty() ? kFirstYear : before);
  fmt::print("Rows without a period are those of {} now\n", kFirstYear);
}

void create(Apartment& apartment, const std::string& year) {
  if (!year.empty()) apartment.clock().fix(Date::of(std::stoi(year), 1, 1));
  clsNumeradores counters;
  if (counters.ExistenPeriodoActual()) {
    throw std::runtime_error(
        fmt::format("{} has its counters already", apartment.clock().today().civil().year));
  }
  if (counters.ExistenPeriodosNulos()) adoptOldRows(counters);
  counters.CrearPeriodoActual();
}

void changeTo(const std::string& year, const Locale& locale) {
  if (rowsOf(year)->RecordCount() == 0) {
    throw std::runtime_error(
        fmt::format("{} has no counters: --create makes its row. Years with counters: {}", year,
                    knownYears(locale)));
  }
  clsNumeradores::setCurrentPeriod(year);
}

/// "", or a year that has seeds.
void check(const std::string& year) {
  const bool digits =
      year.size() == 4 && year.front() != '0' &&
      std::all_of(year.begin(), year.end(), [](char c) { return c >= '0' && c <= '9'; });
  if (!year.empty() && !digits) {
    throw UsageError(fmt::format("{} is no year of four digits", printable(year)));
  }
}

void run(const PeriodOptions& options, const Common& common) {
  check(options.year);
  Session session(common);
  if (options.create) {
    create(session.apartment(), options.year);
  } else if (!options.year.empty()) {
    changeTo(options.year, session.locale());
  }
  printPeriod(session, Style(common.color, stdout));
}

}  // namespace

void addPeriod(CLI::App& app, Common& common) {
  CLI::App* command =
      app.add_subcommand("period", "Show or change the session's period, or create one");
  auto options = std::make_shared<PeriodOptions>();
  command->add_option("year", options->year, "The period to change to")->type_name("YEAR");
  command->add_flag("--create", options->create, "Make the year's row of counters");
  addInstallationOptions(*command, common);
  addColorOption(*command, common);
  command->footer(kFooter);
  command->callback([options, &common] { run(*options, common); });
}

}  // namespace tavelor::tools

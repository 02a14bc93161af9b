// SPDX-License-Identifier: MIT
// tavelor agenda: the appointments of a day.
#include <CLI/CLI.hpp>
#include <map>
#include <memory>
#include <string>
#include <utility>

#include <fmt/format.h>

#include "tavelor/platform/date.hpp"
#include "tavelor/platform/format.hpp"
#include "tavelor/services/clock.hpp"
#include "tavelor/services/recordset/recordset.hpp"
#include "tavelor/staff/citas.hpp"
#include "tools/command.hpp"
#include "tools/day_option.hpp"
#include "tools/output.hpp"
#include "tools/page.hpp"
#include "tools/session.hpp"
#include "tools/table.hpp"

namespace tavelor::tools {

namespace {

constexpr const char* kFooter =
    R"(Without a day, that of today. Appointments of one time in one box are told.

  tavelor agenda
  tavelor agenda 2026-11-20 --columns Hora,Cliente,Box
  tavelor agenda 2026-11-20 --html
  tavelor call ClsCitas Upd_llego 7        the customer of appointment 7 has come)";

struct AgendaOptions {
  std::string day;
  TableOptions table;
  bool html = false;
};

/// Nobody looks at this when an appointment is written. A cancelled one takes no place.
void tellSharedBoxes(Recordset& rows, const Locale& locale, const Style& style) {
  std::map<std::pair<double, std::string>, int> taken;
  for (rows.MoveFirst(); !rows.Eof(); rows.MoveNext()) {
    const std::string box = shown(rows.Field("Box").Value(), locale);
    const Variant time = rows.Field("Hora").Value();
    if (box.empty() || time.isNull() || shown(rows.Field("Estado").Value(), locale) == "Anula") {
      continue;
    }
    ++taken[{time.toDate(locale).days(), box}];
  }
  for (const auto& [place, appointments] : taken) {
    if (appointments == 1) continue;
    fmt::print("{}\n", style.red(fmt::format("! box {} is taken {} times at {}",
                                             printable(place.second), appointments,
                                             format(Date(place.first), "Short Time", locale))));
  }
}

void showAgenda(const AgendaOptions& options, const Common& common) {
  const std::optional<Date> asked = dayOption("the day", options.day);
  Session session(common);
  const Date day = asked.value_or(session.apartment().clock().today());
  ClsCitas agenda;
  agenda.IniciaRs("fecha", day);
  Recordset& rows = *agenda.DataMember("Primary");
  rows.Sort("Hora");
  if (options.html) {
    fmt::print("{}\n", writePage(agenda, options.table.columns));
    return;
  }
  const Style style(common.color, stdout);
  if (!options.table.csv) {
    fmt::print("{}\n", style.bold(format(day, "dddd", session.locale()) + ", " +
                                  format(day, "Short Date", session.locale())));
  }
  printRows(rows, session.locale(), options.table, style);
  if (!options.table.csv && rows.RecordCount() > 0) tellSharedBoxes(rows, session.locale(), style);
}

}  // namespace

void addAgenda(CLI::App& app, Common& common) {
  CLI::App* command = app.add_subcommand("agenda", "Show the appointments of a day");
  auto options = std::make_shared<AgendaOptions>();
  command->add_option("day", options->day, "The day, today without one")->type_name("DAY");
  addTableOptions(*command, options->table);
  command->add_flag("--html", options->html, "Write the page of the day, and tell where it lies")
      ->excludes("--limit", "--csv");
  addInstallationOptions(*command, common);
  addColorOption(*command, common);
  command->footer(kFooter);
  command->callback([options, &common] { showAgenda(*options, common); });
}

}  // namespace tavelor::tools

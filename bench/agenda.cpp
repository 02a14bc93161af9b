// SPDX-License-Identifier: MIT
// One day of an agenda of ten years, beside the bare query.
#include <algorithm>
#include <optional>
#include <string>

#include <fmt/format.h>

#include "bench/shop.hpp"
#include "bench/works.hpp"
#include "tavelor/platform/date.hpp"
#include "tavelor/services/recordset/recordset.hpp"
#include "tavelor/staff/citas.hpp"

namespace tavelor::bench {

namespace {

constexpr std::size_t kAppointments = 1'000'000;
constexpr double kLastDay = 46'347;
constexpr std::size_t kDays = 3'650;

void fill(BenchShop& shop, std::size_t appointments) {
  driver::Database& filler = shop.filler();
  filler.execute("BEGIN");
  driver::Query insert = filler.prepare(
      "INSERT INTO Citas (Id, Fecha, Hora, Codigo, Cliente, Descripcion, Codigo_e, Empleado, Box, "
      "Tipo) VALUES (?, ?, ?, ?, ?, ?, '001', ?, '2', 'Visita')");
  Dice dice(41);
  const std::size_t aDay = std::max<std::size_t>(appointments / kDays, 1);
  for (std::size_t i = 0; i < appointments; ++i) {
    const double day = kLastDay - static_cast<double>(i / aDay);
    const double quarter = static_cast<double>(32 + dice.below(48)) / 96;
    const std::string code = fmt::format("{:05}", dice.below(100'000));
    const std::string customer = dice.text();
    const std::string text = dice.text();
    const std::string employee = dice.text();
    insert.bind(1, static_cast<std::int64_t>(i + 1)).bind(2, day).bind(3, quarter);
    insert.bind(4, std::string_view(code)).bind(5, std::string_view(customer));
    insert.bind(6, std::string_view(text)).bind(7, std::string_view(employee)).run();
  }
  filler.execute("COMMIT");
}

}  // namespace

void measureAgenda(Report& report, const Scale& scale) {
  const std::size_t appointments = scale.of(kAppointments);
  BenchShop shop;
  fill(shop, appointments);
  shop.share();

  driver::Query query = shop.floor().prepare(
      "SELECT Hora, Cliente, Empleado, Box, Tipo, Descripcion, Estado, Id FROM Citas WHERE Fecha = "
      "? ORDER BY Hora");
  driver::Rows rows;
  std::optional<ClsCitas> agenda;
  constexpr double kDay = kLastDay - 1;
  const Side byHand{[&] {
                      rows = query.bind(1, kDay).fetch();
                      return static_cast<double>(rows.size());
                    },
                    {},
                    [&] { driver::Rows().swap(rows); }};
  const Side ours{[&] {
                    agenda.emplace();
                    agenda->IniciaRs("fecha", Date(kDay));
                    return static_cast<double>(agenda->DataMember("Primary")->RecordCount());
                  },
                  {},
                  [&] { agenda.reset(); }};
  report.add(compare({"open one day of the agenda", appointments, 1.2, byHand, ours}, scale));
}

}  // namespace tavelor::bench

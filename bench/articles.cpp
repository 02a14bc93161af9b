// SPDX-License-Identifier: MIT
// Members of the article master beside the same reads and writes by prepared statements.
#include <optional>
#include <string>
#include <vector>

#include <fmt/format.h>

#include "bench/shop.hpp"
#include "bench/works.hpp"
#include "tavelor/articles/articulos.hpp"
#include "tavelor/services/data_session.hpp"
#include "tavelor/services/recordset/recordset.hpp"

namespace tavelor::bench {

namespace {

constexpr std::size_t kArticles = 100'000;
constexpr std::size_t kReads = 5'000;

std::string codeOf(std::size_t number) {
  return fmt::format("A{:06}", number);
}

double numberOf(const driver::Cell& cell) {
  const auto* whole = std::get_if<std::int64_t>(&cell);
  return whole != nullptr ? static_cast<double>(*whole) : std::get<double>(cell);
}

void addArticles(BenchShop& shop, std::size_t count) {
  driver::Query insert = shop.filler().prepare(
      "INSERT INTO Articulos (Codigo, Lista, Referencia, Descripcion, Idioma_1, Idioma_2, Seccion, "
      "Familia, Tarifa_A, Tarifa_B, Tarifa_C, Impuesto, Precio_Coste, Precio_Medio, Existencia, "
      "Unidad_Stock, Activo, Unidad_Compra, Actualizar_Stock, Valor_Interno, Empleado, Merma) "
      "VALUES (?,'PRC',?1,?,?2,?2,'S01',?,?,?4,?4,'21',?,?5,100,'Und',-1,'Caja',-1,1,'001',0)");
  Dice dice(5);
  shop.filler().execute("BEGIN");
  for (std::size_t i = 0; i < count; ++i) {
    const std::string code = codeOf(i);
    const std::string description = dice.text();
    const std::string family = fmt::format("F{:02}", dice.below(40));
    insert.bind(1, std::string_view(code)).bind(2, std::string_view(description));
    insert.bind(3, std::string_view(family));
    insert.bind(4, static_cast<double>(dice.below(10'000)) / 100);
    insert.bind(5, static_cast<double>(dice.below(8'000)) / 100).run();
  }
  shop.filler().execute("COMMIT");
}

/// What a document line asks for, by hand: the same columns, the values that it takes.
constexpr std::string_view kLine =
    "SELECT Codigo, Referencia, Descripcion, Seccion, Familia, Tarifa_A, Impuesto, Precio_Coste, "
    "Precio_Medio, Descuento, Existencia, Unidad_Stock, Minimo, Maximo, Pendiente, Activo, "
    "Unidad_Compra, Medida_Compra, Actualizar_Stock, Lotes, Articulo_Compuesto, Interno, "
    "Valor_Interno, Empleado, Merma FROM Articulos WHERE Codigo = ? AND Activo <> 0 AND (Lista = ? "
    "OR Actualizar_Stock <> 0)";
constexpr std::size_t kPrice = 5;

void measureLines(BenchShop& shop, Report& report, const Scale& scale, std::size_t articles) {
  const std::size_t reads = scale.of(kReads);
  std::vector<std::string> codes;
  Dice dice(17);
  for (std::size_t i = 0; i < reads; ++i) codes.push_back(codeOf(dice.below(articles)));

  driver::Query line = shop.floor().prepare(kLine);
  const Side byHand{[&] {
    double sum = 0;
    for (const std::string& code : codes) {
      line.bind(1, std::string_view(code)).bind(2, std::string_view("PRC"));
      sum += numberOf(line.fetch().at(0).at(kPrice));
    }
    return sum;
  }};
  const clsArticulos master;
  ConnectionPtr connection = DataSession().OpenConnection(selector::kMain);
  const Side ours{[&] {
    double sum = 0;
    for (const std::string& code : codes) {
      clsArticulos::Datos datos{.vId = code, .sTarifa = "A", .objCn = connection, .sLista = "PRC"};
      master.GetDatos(datos);
      sum += datos.dPrecio;
    }
    return sum;
  }};
  report.add(compare({"GetDatos of an article by its code", reads, 1.5, byHand, ours}, scale));
}

/// The list that an article is picked from: the same statement, by hand into rows of variants.
void measureSelection(BenchShop& shop, Report& report, const Scale& scale, std::size_t articles) {
  ConnectionPtr connection = DataSession().OpenConnection(selector::kMain);
  std::optional<clsArticulos> master;
  const auto open = [&] {
    std::string mode = "seleccion";
    master.emplace();
    master->IniciaRs(mode, {}, connection);
    return master->DataMember("Primary");
  };
  driver::Query list = shop.floor().prepare(open()->Source());
  driver::Rows rows;
  const auto countOf = [](std::size_t count) { return static_cast<double>(count); };
  const Side byHand{[&] { return countOf((rows = list.fetch()).size()); },
                    {},
                    [&] { driver::Rows().swap(rows); }};
  const Side reading{[&] { return countOf(list.readThrough()); }};
  const Side ours{
      [&] { return static_cast<double>(open()->RecordCount()); }, {}, [&] { master.reset(); }};
  report.add(compare({"open articles, mode seleccion", articles, 0.60, byHand, ours}, scale));
  report.add(compare({"open articles (by hand: cells read, none kept)", articles, 0, reading, ours},
                     scale));
}

void measureRise(BenchShop& shop, Report& report, const Scale& scale, std::size_t articles) {
  // Prices that both sides round to the same.
  const std::string reset = "UPDATE Articulos SET Tarifa_A = (rowid % 10000) / 10.0";
  const std::string sum = "SELECT SUM(Tarifa_A) FROM Articulos";
  driver::Query rise = shop.floor().prepare(
      "UPDATE Articulos SET Tarifa_A = ROUND(Tarifa_A * ? / 100 + Tarifa_A, 2) WHERE Lista LIKE ?");
  const Side byHand{[&] {
                      rise.bind(1, 10.0).bind(2, std::string_view("PRC")).run();
                      return shop.floor().prepare(sum).firstNumber();
                    },
                    [&] { shop.floor().execute(reset); }};
  driver::Database beside(shop.installation().databaseFile(selector::kMain));
  const clsArticulos master;
  ConnectionPtr connection = DataSession().OpenConnection(selector::kMain);
  const Side ours{[&] {
                    master.ActualizarTarifas("a", 10, "Todas", "PRC", connection);
                    return beside.prepare(sum).firstNumber();
                  },
                  [&] { beside.execute(reset); }};
  report.add(compare({"ActualizarTarifas of all articles", articles, 1.1, byHand, ours}, scale));
}

}  // namespace

void measureArticles(Report& report, const Scale& scale) {
  const std::size_t articles = scale.of(kArticles);
  BenchShop shop;
  addArticles(shop, articles);
  shop.share();
  measureLines(shop, report, scale, articles);
  measureSelection(shop, report, scale, articles);
  measureRise(shop, report, scale, articles);
}

}  // namespace tavelor::bench

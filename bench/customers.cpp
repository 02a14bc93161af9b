// SPDX-License-Identifier: MIT
// Customers opened as lists and cleaned, beside the same by hand.
#include <array>
#include <optional>
#include <string>
#include <vector>

#include <fmt/format.h>

#include "bench/shop.hpp"
#include "bench/works.hpp"
#include "tavelor/customers/clientes.hpp"
#include "tavelor/platform/fiscal_number.hpp"
#include "tavelor/services/data_session.hpp"
#include "tavelor/services/prompt_global.hpp"
#include "tavelor/services/recordset/recordset.hpp"

namespace tavelor::bench {

namespace {

constexpr std::size_t kCustomers = 100'000;

/// Agrees to everything.
class Agrees final : public PromptHandler {
 public:
  void message(const Prompt& /*prompt*/) override {}
  Variant askInput(const std::string& /*prompt*/) override { return ""; }
  bool question(const Prompt& /*prompt*/) override { return true; }
  void beep() override {}
};

/// As people type them: with labels, points, hyphens and blanks, in either case.
std::string typedNumber(Dice& dice) {
  const auto number = static_cast<std::uint32_t>(dice.below(100'000'000));
  const char letter = personalControl(number);
  switch (dice.below(4)) {
    case 0:
      return fmt::format("nif: {:02}.{:03}.{:03}-{}", number / 1'000'000, number / 1000 % 1000,
                         number % 1000, letter);
    case 1:
      return fmt::format("B-{:07}{}", number / 10, number % 10);
    case 2:
      return fmt::format(" x{:07}{} ", number / 10, letter);
    default:
      return fmt::format("{:08} {}", number, letter);
  }
}

/// Customers with most of their columns filled. The number as typed is kept in Rs.
void addCustomers(BenchShop& shop, std::size_t count) {
  driver::Query insert = shop.filler().prepare(
      "INSERT INTO Clientes (Codigo, Activo, Nombre, Razon_Social, Contacto, NIF, Rs, Direccion, "
      "Codigo_Postal, Poblacion, Provincia, Telefono, Movil, E_Mail, Horario, Tarifa, Serie, "
      "Lista, Concepto, Transportista, Tipo_Factura_A, Documento_P, Documento_A, Documento_F, "
      "Cta_Tesoreria, Cta_Contable, Cta_Contrapartida, IRPF, Impuesto, Divisa, Forma_Pago, Banco, "
      "Descuento, Descuento_pp, Bonificacion_1, Condicion_1, Riesgo, Facturar, codigo_fac, "
      "Tipo_Cliente, Fecha, E_Mail_doc, Rpt_Alb, Rpt_Fac, Centro, ExternalID) VALUES "
      "(?,?,?,?,?,?6,?6,?,?,?,?8,?9,?9,?10,'9 a 14','A','A','PRC','Varios','001','01','Ped','Alb',"
      "'Fac','430000','430000','700000',0,-1,'Eur','Ctd','001',?11,0,0,0,9000,'Mensual','','Nuevo',"
      "46086,?10,'No','No','Norte',substr(?1,1,2))");
  Dice dice(7);
  shop.filler().execute("BEGIN");
  for (std::size_t i = 0; i < count; ++i) {
    const std::string code = fmt::format("{:06}", i);
    const std::array<std::string, 3> names = {dice.text(), dice.text(), dice.text()};
    const std::string number = typedNumber(dice);
    const std::string street = dice.text();
    const std::string town = fmt::format("Población {:03}", dice.below(500));
    const std::string phone = fmt::format("9{:08}", dice.below(100'000'000));
    const std::string mail = fmt::format("cliente{}@example.org", i);
    insert.bind(1, std::string_view(code)).bind(2, std::int64_t{dice.below(10) == 0 ? 0 : -1});
    insert.bind(3, std::string_view(names[0])).bind(4, std::string_view(names[1]));
    insert.bind(5, std::string_view(names[2])).bind(6, std::string_view(number));
    insert.bind(7, std::string_view(street)).bind(8, std::string_view(town));
    insert.bind(9, std::string_view(phone)).bind(10, std::string_view(mail));
    insert.bind(11, static_cast<double>(dice.below(400)) / 10).run();
  }
  shop.filler().execute("COMMIT");
}

void measureList(BenchShop& shop, Report& report, const Scale& scale, std::size_t customers,
                 const std::string& mode, double target) {
  std::optional<ClsClientes> master;
  const auto open = [&] {
    std::string word = mode;
    master.emplace();
    master->IniciaRs(word);
    return master->DataMember("Primary");
  };
  driver::Query list = shop.floor().prepare(open()->Source());
  driver::Rows rows;
  const auto countOf = [](std::size_t count) { return static_cast<double>(count); };
  const Side byHand{[&] { return countOf((rows = list.fetch()).size()); },
                    {},
                    [&] { driver::Rows().swap(rows); }};
  const Side ours{
      [&] { return static_cast<double>(open()->RecordCount()); }, {}, [&] { master.reset(); }};
  report.add(compare({"open customers, mode " + mode, customers, target, byHand, ours}, scale));
}

void measureCleaning(BenchShop& shop, Report& report, const Scale& scale, std::size_t customers) {
  const std::string dirty = "UPDATE Clientes SET NIF = Rs, ID_Fiscal = NULL";
  const std::string sum = "SELECT SUM(length(NIF) + 10 * length(ID_Fiscal)) FROM Clientes";
  driver::Database beside(shop.installation().databaseFile(selector::kMain));
  Apartment::current().setPromptHandler(std::make_shared<Agrees>());
  const ClsClientes master;

  // What cleaning gives, for the side that only reads and writes.
  beside.execute(dirty);
  master.LimpiarNIFCIF();
  const driver::Rows clean =
      beside.prepare("SELECT NIF, ID_Fiscal FROM Clientes ORDER BY Codigo").fetch();

  driver::Query read =
      shop.floor().prepare("SELECT Codigo, NIF, ID_Fiscal FROM Clientes ORDER BY Codigo");
  driver::Query write =
      shop.floor().prepare("UPDATE Clientes SET NIF = ?, ID_Fiscal = ? WHERE Codigo = ?");
  const Side byHand{[&] {
                      const driver::Rows rows = read.fetch();
                      shop.floor().execute("BEGIN");
                      for (std::size_t i = 0; i < rows.size(); ++i) {
                        const auto textOf = [](const driver::Cell& cell) {
                          return std::string_view(std::get<std::string>(cell));
                        };
                        write.bind(1, textOf(clean[i][0])).bind(2, textOf(clean[i][1]));
                        write.bind(3, textOf(rows[i][0])).run();
                      }
                      shop.floor().execute("COMMIT");
                      return shop.floor().prepare(sum).firstNumber();
                    },
                    [&] { shop.floor().execute(dirty); }};
  const Side ours{[&] {
                    master.LimpiarNIFCIF();
                    return beside.prepare(sum).firstNumber();
                  },
                  [&] { beside.execute(dirty); }};
  report.add(compare({"LimpiarNIFCIF of all customers", customers, 2.0, byHand, ours}, scale));
  Apartment::current().setPromptHandler(nullptr);
}

}  // namespace

void measureCustomers(Report& report, const Scale& scale) {
  const std::size_t customers = scale.of(kCustomers);
  BenchShop shop;
  addCustomers(shop, customers);
  shop.share();
  measureList(shop, report, scale, customers, "todos", 0.60);
  measureList(shop, report, scale, customers, "seleccioncombo", 0.75);
  measureCleaning(shop, report, scale, customers);
}

}  // namespace tavelor::bench

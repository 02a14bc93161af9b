// SPDX-License-Identifier: MIT
// clsNumeradores: the counters of documents. The periods are in numeradores_periodos.cpp.
#include "tavelor/numbering/numeradores.hpp"

#include <algorithm>
#include <array>

#include "tavelor/frame/component.hpp"
#include "tavelor/frame/reading.hpp"
#include "tavelor/platform/format.hpp"
#include "tavelor/platform/statement.hpp"
#include "tavelor/platform/text.hpp"
#include "tavelor/services/apartment.hpp"
#include "tavelor/services/clock.hpp"
#include "tavelor/services/data_session.hpp"
#include "tavelor/services/recordset/recordset.hpp"

namespace tavelor {

// Table Numeradores: one row a period. A null counter has never been used in its period.

namespace {

constexpr std::array kModes = {
    Mode{"seleccion", "SELECT Codigo AS Código, Descripcion AS Descripción FROM Numeradores"},
    Mode{kAnyOtherWord,
         "SELECT Codigo as Código, Periodo, Descripcion AS Descripción, No_Renumerar, "
         "Digitos_Articulos, Digitos_Clientes, Digitos_Proveedores, Pedido_a, Pedido_b, Pedido_c, "
         "Factura_Prov_a, Factura_Prov_b, Factura_Prov_c, Pedido_Cli_a, Pedido_Cli_b, "
         "Pedido_Cli_c, Albaran_a, Albaran_b, Albaran_c, Factura_a, Factura_b, Factura_c, "
         "Orden_a, Orden_b, Orden_c, Ticket_a, Ticket_b, Ticket_c, Presupuesto_a, Presupuesto_b, "
         "Presupuesto_c, Activar_Lote_Uso, Letra, Año, Mes, Contador, Factura_r FROM "
         "Numeradores"},
};

constexpr ClassInfo kInfo = {
    .word = "Numeradores", .table = "Numeradores", .modes = kModes, .codeWidth = 3};

// A family of documents: its word, how its next numbers are read and its last ones written. The
// blanks differ between the families and stay as they are.
struct Family {
  std::string_view word;
  Statement::Constant select;
  Statement::Constant column;
};

constexpr std::array kFamilies = {
    Family{"Pedidos", "SELECT Pedido_a as Serie_a, Pedido_b as Serie_b , Pedido_c as Serie_c FROM ",
           "Pedido_"},
    Family{"Facturas_Proveedores",
           "SELECT Factura_Prov_a as Serie_a, Factura_Prov_b as Serie_b, Factura_Prov_c as "
           "Serie_c  FROM ",
           "Factura_Prov_"},
    Family{"Pedidos_Clientes",
           "SELECT Pedido_Cli_a as Serie_a, Pedido_Cli_b as Serie_b , Pedido_Cli_c as Serie_c "
           "FROM ",
           "Pedido_Cli_"},
    Family{"Albaranes",
           "SELECT Albaran_a as Serie_a, Albaran_b as Serie_b, Albaran_c as Serie_c FROM ",
           "Albaran_"},
    Family{"Facturas",
           "SELECT Factura_a as Serie_a, Factura_b as Serie_b , Factura_c as Serie_c FROM ",
           "Factura_"},
    Family{"Tickets", "SELECT Ticket_a as Serie_a, Ticket_b as Serie_b, Ticket_c as Serie_c FROM ",
           "Ticket_"},
    Family{"Presupuestos",
           "SELECT Presupuesto_a as Serie_a, Presupuesto_b as Serie_b, Presupuesto_c as Serie_c "
           "FROM ",
           "Presupuesto_"},
    Family{"Ordenes", "SELECT Orden_a as Serie_a, Orden_b as Serie_b, Orden_c as Serie_c FROM ",
           "Orden_"},
};

constexpr std::string_view kDeliveryNotes = "Albaranes";
constexpr std::string_view kRectifying = "rectificativa";

const Family* familyOf(std::string_view word) {
  const auto* const found = std::find_if(kFamilies.begin(), kFamilies.end(),
                                         [&](const Family& family) { return family.word == word; });
  return found == kFamilies.end() ? nullptr : found;
}

// A seed is a text of digits that counts as a number.
double seedNumber(const std::string& digits) {
  return asNumber(Variant(digits));
}

double greatestOf(double a, double b, double c) {
  return std::max({a, b, c});
}

}  // namespace

clsNumeradores::clsNumeradores() : OpensByWord(kInfo) {}

// ---------------------------------------------------------------------------------------------
// Reading

void clsNumeradores::GetNewNum(std::string_view vId, InOut<double> dSerieA, InOut<double> dSerieB,
                               InOut<double> dSerieC, ObjCn objCn) const {
  readNumbers(vId, currentPeriod(), today("yy") + "0000", *dSerieA, *dSerieB, *dSerieC, *objCn);
  const bool simple = Alb_Num_Simple(*objCn);
  if (vId == kDeliveryNotes && simple) {
    const double greatest = greatestOf(*dSerieA, *dSerieB, *dSerieC);
    dSerieA = greatest;
    dSerieB = greatest;
    dSerieC = greatest;
  }
}

void clsNumeradores::GetNewNumPeriodo(std::string_view vId, std::string_view sPeriodo,
                                      InOut<double> dSerieA, InOut<double> dSerieB,
                                      InOut<double> dSerieC, ObjCn objCn) const {
  readNumbers(vId, sPeriodo, std::string(text::right(sPeriodo, 2)) + "0000", *dSerieA, *dSerieB,
              *dSerieC, *objCn);
}

// A series never used leaves its seed in the first number, not in its own: programs that work with
// one series read the first number only, and find the seed there whichever series is missing.
void clsNumeradores::readNumbers(std::string_view vId, std::string_view period,
                                 const std::string& seed, double& dSerieA, double& dSerieB,
                                 double& dSerieC, ObjCn objCn) const {
  Statement statement;
  if (const Family* family = familyOf(vId)) statement << family->select << "Numeradores";
  statement << " WHERE (((Periodo)='" << spliced(period) << "'));";
  const RecordsetPtr rows = read(statement, *objCn);

  const Variant a = rows->Field("Serie_a").Value();
  const Variant b = rows->Field("Serie_b").Value();
  const Variant c = rows->Field("Serie_c").Value();
  dSerieA = a.isNull() ? seedNumber(seed) : asNumber(a) + 1;
  if (b.isNull()) {
    dSerieA = seedNumber(seed + "00");
  } else {
    dSerieB = asNumber(b) + 1;
  }
  if (c.isNull()) {
    dSerieA = seedNumber(seed + "000");
  } else {
    dSerieC = asNumber(c) + 1;
  }
}

void clsNumeradores::GetNewRectifi(InOut<double> dSeriR, ObjCn objCn) const {
  const std::string period = currentPeriod();
  Statement statement("SELECT Factura_R as Serie_R FROM Numeradores WHERE (((Periodo)='");
  statement << spliced(period) << "'));";
  const Variant last = read(statement, *objCn)->Field("Serie_R").Value();
  dSeriR = last.isNull() ? seedNumber(today("yyyy") + "0001") : asNumber(last) + 1;
}

bool clsNumeradores::Alb_Num_Simple(ObjCn objCn) const {
  return asFlag(lookUp(
      withId("SELECT Alb_Num_Simple FROM Numeradores WHERE ((Periodo)='{id}');", currentPeriod()),
      "Alb_Num_Simple", *objCn));
}

// A server's database always works with lots of use and is not asked.
bool clsNumeradores::ActivarLoteUso(const Variant& /*vId*/, ObjCn objCn) const {
  if (!DataSession().IsDbFile(info().selector)) return true;
  return asFlag(lookUp(
      withId("SELECT Activar_Lote_Uso FROM Numeradores WHERE ((Periodo)='{id}');", currentPeriod()),
      "Activar_Lote_Uso", *objCn));
}

Variant clsNumeradores::GetLong(std::string_view vId, ObjCn objCn) const {
  const RecordsetPtr rows =
      read(withId("SELECT Digitos_Articulos, Digitos_Clientes, Digitos_Proveedores FROM "
                  "Numeradores WHERE ((Periodo)='{id}');",
                  currentPeriod()),
           *objCn);
  struct Length {
    std::string_view word, column;
    std::int16_t whenNull;  // what a null length leaves for a word that is none of the three
    std::int32_t digits = 0;
  };
  std::array<Length, 3> lengths = {{{"Artículos", "Digitos_Articulos", 0},
                                    {"Clientes", "Digitos_Clientes", 3},
                                    {"Proveedores", "Digitos_Proveedores", 3}}};
  std::int16_t other = 6;
  if (rows->RecordCount() > 0) {
    for (Length& length : lengths) {
      if (rows->Field(length.column).Value().isNull()) {
        other = length.whenNull;
      } else {
        takeColumn(*rows, length.column, length.digits);
      }
    }
  }
  for (const Length& length : lengths) {
    if (length.word == vId) return length.digits;
  }
  return other;
}

// ---------------------------------------------------------------------------------------------
// Writing

void clsNumeradores::SetNewNum(std::string_view vId, double dSerieA, double dSerieB, double dSerieC,
                               ObjCn objCn, InOut<std::string> sPeriodo) const {
  const bool simple = Alb_Num_Simple(*objCn);
  if (vId == kDeliveryNotes) {
    if (simple) {
      dSerieA = dSerieB = dSerieC = greatestOf(dSerieA, dSerieB, dSerieC);
    } else {
      // One zero less than GetNewNum adds: these are the lengths that a new period starts with.
      const std::string seed = today("yy") + "0000";
      if (dSerieA == 0) dSerieA = seedNumber(seed);
      if (dSerieB == 0) dSerieB = seedNumber(seed + "0");
      if (dSerieC == 0) dSerieC = seedNumber(seed + "00");
    }
  }
  fillPeriod(*sPeriodo);

  Statement statement;
  if (const Family* family = familyOf(vId)) {
    statement << "UPDATE Numeradores SET " << family->column << "a ='" << spliced(joined(dSerieA))
              << "' , " << family->column << "b ='" << spliced(joined(dSerieB)) << "' , "
              << family->column << "c ='" << spliced(joined(dSerieC)) << "' ";
  } else if (vId == kRectifying) {
    statement << "UPDATE Numeradores SET Factura_R ='" << spliced(joined(dSerieA)) << "' ";
  }
  writeCounters(std::move(statement), *objCn, *sPeriodo);
}

void clsNumeradores::SetNewNumOrd(std::string_view vId, double dSerieA, double dSerieB,
                                  double dSerieC, ObjCn objCn, InOut<std::string> sPeriodo) const {
  fillPeriod(*sPeriodo);
  const std::string letter = text::upper(vId);
  Statement statement;
  if (letter == "A") {
    statement << "UPDATE Numeradores SET Orden_a ='" << spliced(joined(dSerieA)) << "' ";
  } else if (letter == "B") {
    statement << "UPDATE Numeradores SET Orden_b ='" << spliced(joined(dSerieB)) << "' ";
  } else if (letter == "C") {
    statement << "UPDATE Numeradores SET Orden_c ='" << spliced(joined(dSerieC)) << "' ";
  }
  writeCounters(std::move(statement), *objCn, *sPeriodo);
}

void clsNumeradores::SetDigitArtTo0(ObjCn objCn) const {
  std::string period = currentPeriod();
  Statement statement("UPDATE Numeradores SET Digitos_Articulos = 0");
  writeCounters(std::move(statement), *objCn, period);
}

void clsNumeradores::writeCounters(Statement statement, ObjCn objCn, std::string& sPeriodo) const {
  const std::string code = joined(GetCodigo(*objCn, sPeriodo));
  statement << " WHERE (((Numeradores.Codigo) ='" << spliced(code) << "'));";
  write(statement, *objCn);
}

// ---------------------------------------------------------------------------------------------
// The session's period

std::string clsNumeradores::today(std::string_view mask) {
  Apartment& apartment = Apartment::current();
  return format(apartment.clock().today(), mask, apartment.locale());
}

void clsNumeradores::fillPeriod(std::string& sPeriodo) {
  if (sPeriodo.empty()) sPeriodo = currentPeriod();
}

const Component& clsNumeradores::component() {
  using C = clsNumeradores;
  static const Component table(
      "clsNumeradores", "{6B1F0A52-3C4D-4E8B-9A57-21D0C7E4B101}", kInfo.word,
      []() -> std::unique_ptr<Object> { return std::make_unique<C>(); },
      withFrameTail({
          frameMember("GetRptPath"),
          frameMember("GetConnectionStrToRpt"),
          frameMember("sClassName"),
          frameMember("GetConnection"),
          frameMember("GetConnectionStr"),
          member("IniciaRs", &C::IniciaRs, "[inout sSelecSql], [id]"),
          member("ActivarLoteUso", &C::ActivarLoteUso, "vId, [objCn]"),
          member("Alb_Num_Simple", &C::Alb_Num_Simple, "[objCn]"),
          frameMember("NuevoCodigo"),
          member("GetNewNumPeriodo", &C::GetNewNumPeriodo,
                 "vId, sPeriodo, inout dSerieA, inout dSerieB, inout dSerieC, [objCn]"),
          member("GetNewRectifi", &C::GetNewRectifi, "inout dSeriR, [objCn]"),
          member("GetNewNum", &C::GetNewNum,
                 "vId, inout dSerieA, inout dSerieB, inout dSerieC, [objCn]"),
          member("SetNewNum", &C::SetNewNum,
                 "vId, dSerieA, dSerieB, dSerieC, [objCn], [inout sPeriodo]"),
          member("SetNewNumOrd", &C::SetNewNumOrd,
                 "vId, dSerieA, dSerieB, dSerieC, [objCn], [inout sPeriodo]"),
          member("SetDigitArtTo0", &C::SetDigitArtTo0, "[objCn]"),
          member("GetCodigo", &C::GetCodigo, "[objCn], [inout sPeriodo]"),
          member("GetLetra", &C::GetLetra, "[objCn], [inout sPeriodo]"),
          member("GetAño", &C::GetAño, "[objCn], [inout sPeriodo]"),
          member("GetMes", &C::GetMes, "[objCn], [inout sPeriodo]"),
          member("GetContador", &C::GetContador, "[objCn], [inout sPeriodo]"),
          member("GetLong", &C::GetLong, "vId, [objCn]"),
          frameMember("SeguridadPermiso"),
          member("ExistenPeriodosNulos", &C::ExistenPeriodosNulos, "[objCn]"),
          member("CrearPeriodoActual", &C::CrearPeriodoActual),
          member("ExistenPeriodoActual", &C::ExistenPeriodoActual, "[objCn]"),
          member("ActualizarPeriodosNulos", &C::ActualizarPeriodosNulos, "[cnnActive]"),
          frameMember("CodigoLibre"),
      }));
  return table;
}

}  // namespace tavelor

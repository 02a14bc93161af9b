// SPDX-License-Identifier: MIT
// ClsBancos, the catalogue of the owner's bank accounts.
#include "tavelor/reference/bancos.hpp"

#include <array>

#include "tavelor/frame/component.hpp"
#include "tavelor/platform/statement.hpp"
#include "tavelor/platform/text.hpp"
#include "tavelor/services/apartment.hpp"
#include "tavelor/services/recordset/recordset.hpp"

namespace tavelor {

// Table Bancos: one row an account, found by a text code; Predeterminada marks the default one.

namespace {

constexpr std::string_view kTodos =
    "SELECT Codigo AS Código, Banco AS Descripción, Entidad, Oficina, DC,"
    "  CC AS Cuenta, IBAN, Swift, Direccion_Banco AS Dirección,"
    "  Codigo_Postal_Banco AS Cp,"
    "  Poblacion_Banco AS Población,"
    "  Provincia_Banco AS Provincia,"
    "  Telefono_Banco As Teléfono, Fax_Banco as Fax, E_Mail, Http, Predeterminada"
    " FROM Bancos";
constexpr std::string_view kSeleccion = "SELECT Codigo AS Código, Banco AS Descripción FROM Bancos";

constexpr std::array kModes = {
    Mode{"seleccion", kSeleccion},
    Mode{"seleccioncombo", kSeleccion, " Order By Banco"},
    Mode{"registro", kTodos, " Where ( Codigo = '{id}')"},
    Mode{kAnyOtherWord, kTodos},
};

constexpr ClassInfo kInfo = {.word = "Bancos", .table = "Bancos", .modes = kModes};

// What GetWeb answers for a bank without an address.
constexpr std::string_view kPlaceholderWeb = "http://www.banco.es";
// Codes that CrearBanco makes are filled with zeros to this many characters.
constexpr std::size_t kCodeWidth = 5;

}  // namespace

ClsBancos::ClsBancos() : OpensByWord(kInfo) {}

Variant ClsBancos::GetPredeterminada(ObjCn objCn) const {
  return lookUp(Statement("SELECT codigo as ds FROM Bancos where predeterminada <> 0"), "ds",
                objCn);
}

bool ClsBancos::ExistePredeterminada(ObjCn objCn) const {
  return anyRow(Statement("SELECT Codigo FROM Bancos where predeterminada <> 0"), objCn);
}

void ClsBancos::GetIbanBic(const Variant& vId, InOut<std::string> sIban, InOut<std::string> sBic,
                           ObjCn objCn) const {
  const std::string code = joined(vId);
  if (code == "0") {
    sIban = "00";
    sBic = "ND";
    return;
  }
  Statement statement("SELECT iBan AS Código, swift FROM Bancos WHERE codigo = '");
  statement << spliced(code) << "'";
  const RecordsetPtr rows = read(statement, objCn);
  const auto textOrZero = [&](std::string_view column) {
    const Variant found = rows->Field(column).Value();
    return found.isNull() ? std::string("0") : joined(found);
  };
  sIban = textOrZero("Código");
  sBic = textOrZero("swift");
}

Variant ClsBancos::GetValor(const Variant& vId, ObjCn objCn) const {
  Statement statement(
      "SELECT Codigo AS Código, Banco AS Descripción, Entidad, Oficina, DC,"
      "  CC AS Cuenta, IBAN,"
      "  Telefono_Banco As Teléfono, Fax_Banco as Fax, E_Mail, Http, Predeterminada"
      " FROM Bancos"
      " WHERE codigo = '");
  statement << spliced(joined(vId)) << "'";
  const RecordsetPtr rows = read(statement, objCn);

  // The fallback of the first part spells a whole account already and the others add theirs all the
  // same, the IBAN's being shaped like an account too: documents are printed with these texts.
  struct Part {
    std::string_view column, lead, fallback;
  };
  constexpr std::array<Part, 5> kParts = {{{"Entidad", "  CC :  ", "0000-0000-00-0000000000"},
                                           {"Oficina", "-", "-0000"},
                                           {"DC", "-", "-00"},
                                           {"Cuenta", "-", "-0000000000"},
                                           {"IBAN", "  IBAN :  ", "-0000000000"}}};
  std::string account;
  for (const Part& part : kParts) {
    const Variant found = rows->Field(part.column).Value();
    if (found.isNull()) {
      account += part.fallback;
    } else {
      account.append(part.lead).append(joined(found));
    }
  }
  return account;
}

Variant ClsBancos::GetWeb(const Variant& vId, ObjCn objCn) const {
  Statement statement("SELECT Http as web FROM Bancos WHERE codigo = '");
  statement << spliced(joined(vId)) << "'";
  Variant web = read(statement, objCn)->Field("web").Value();
  return web.isNull() ? Variant(kPlaceholderWeb) : web;
}

std::string ClsBancos::CrearBanco(InOut<Variant> vId, std::string_view sBanco, ObjCn objCn) const {
  vId = NuevoCodigo(objCn);
  const std::string next = joined(*vId);
  std::string code = text::length(next) < kCodeWidth ? text::padLeft(next, kCodeWidth, '0') : next;
  vId = Variant(code);

  // The blank behind the code belongs to the text and goes into the row: such rows are told from
  // those typed by hand by it.
  Statement statement(
      "INSERT INTO Bancos ( "
      " Codigo, Banco"
      "  )"
      " values ( '");
  statement << spliced(code) << " ', '" << spliced(sBanco) << "')";
  write(statement, objCn);
  return code;
}

const Component& ClsBancos::component() {
  using C = ClsBancos;
  static const Component table(
      "ClsBancos", "{6B1F0A52-3C4D-4E8B-9A57-21D0C7E4B001}", kInfo.word,
      []() -> std::unique_ptr<Object> { return std::make_unique<C>(); },
      withFrameTail({
          frameMember("GetRptPath"),
          frameMember("GetConnectionStrToRpt"),
          frameMember("sClassName"),
          frameMember("GetConnection"),
          frameMember("GetConnectionStr"),
          member("GetPredeterminada", &C::GetPredeterminada, "[objCn]"),
          member("ExistePredeterminada", &C::ExistePredeterminada, "[objCn]"),
          member("GetIbanBic", &C::GetIbanBic, "vId, out sIban, out sBic, [objCn]"),
          member("GetValor", &C::GetValor, "vId, [objCn]"),
          member("GetWeb", &C::GetWeb, "vId, [objCn]"),
          member("IniciaRs", &C::IniciaRs, "[inout sSelecSql], [id]"),
          member("CrearBanco", &C::CrearBanco, "inout vId, sBanco, [objCn]"),
          frameMember("NuevoCodigo"),
          frameMember("SeguridadPermiso"),
          frameMember("CodigoLibre"),
      }));
  return table;
}

}  // namespace tavelor

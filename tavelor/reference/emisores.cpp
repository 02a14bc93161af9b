// SPDX-License-Identifier: MIT
// Emisores, the issuers of documents.
#include "tavelor/reference/emisores.hpp"

#include <array>

#include "tavelor/frame/component.hpp"
#include "tavelor/platform/statement.hpp"
#include "tavelor/reference/logotipo.hpp"
#include "tavelor/services/apartment.hpp"
#include "tavelor/services/recordset/recordset.hpp"

namespace tavelor {

// Table Emisores: the key is a number, spliced without quotes.

namespace {

constexpr std::string_view kBreve =
    "SELECT Id, Descripcion as Descripción FROM Emisores Order by id";

constexpr std::array kModes = {
    Mode{"seleccombo", kBreve},
    Mode{"seleccion", kBreve},
    Mode{kAnyOtherWord,
         "SELECT Id, Descripcion as Descripción, Logotipo FROM Emisores Order by id"},
};

constexpr ClassInfo kInfo = {.word = "Emisores",
                             .table = "Emisores",
                             .codeColumn = "Id",
                             .modes = kModes,
                             .freeCode = "SELECT Id FROM Emisores where id ={id}"};

}  // namespace

Emisores::Emisores() : OpensOnConnection(kInfo) {}

std::string Emisores::GetValor(const Variant& vId, ObjCn objCn) const {
  const Variant found = lookUp(withId("SELECT Descripcion as v  FROM "
                                      "Emisores"
                                      "  where id = {id}",
                                      vId),
                               "v", objCn);
  return found.isEmpty() ? "no" : joined(found);
}

std::int16_t Emisores::CuantosRegistros(ObjCn objCn) const {
  return Variant(read(Statement("SELECT Descripcion as v  FROM "
                                "Emisores"),
                      objCn)
                     ->RecordCount())
      .toInt16(Apartment::current().locale());
}

void Emisores::ReadBLOB(InOut<std::string> Source) {
  readLogotipo(primary(), *Source);
}

const Component& Emisores::component() {
  using C = Emisores;
  static const Component table(
      "Emisores", "{6B1F0A52-3C4D-4E8B-9A57-21D0C7E4B007}", kInfo.word,
      []() -> std::unique_ptr<Object> { return std::make_unique<C>(); },
      withFrameTail(
          {
              frameMember("GetRptPath"),
              frameMember("GetConnectionStrToRpt"),
              frameMember("sClassName"),
              frameMember("GetConnection"),
              frameMember("GetConnectionStr"),
              member("GetValor", &C::GetValor, "vId, [objCn]"),
              member("CuantosRegistros", &C::CuantosRegistros, "[objCn]"),
              member("IniciaRs", &C::IniciaRs, "[inout cnnActive], [inout sSelecSql], [id]"),
              frameMember("NuevoCodigo"),
              frameMember("SeguridadPermiso"),
              frameMember("CodigoLibre"),
          },
          {member("ReadBLOB", &C::ReadBLOB, "inout Source")}));
  return table;
}

}  // namespace tavelor

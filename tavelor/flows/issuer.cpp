// SPDX-License-Identifier: MIT
// Who the shop is to those who read its receipts.
#include "tavelor/flows/issuer.hpp"

#include <filesystem>

#include "tavelor/frame/class_info.hpp"
#include "tavelor/frame/reading.hpp"
#include "tavelor/frame/rows.hpp"
#include "tavelor/platform/error.hpp"
#include "tavelor/platform/statement.hpp"
#include "tavelor/reference/tipos_documento.hpp"
#include "tavelor/services/apartment.hpp"
#include "tavelor/services/installation.hpp"

namespace tavelor::flows {

Issuer issuer() {
  Issuer found;
  const Rows row(
      selector::kMain,
      Statement("SELECT Nombre, Razon_Social, NIF, Direccion, Poblacion, Codigo_Postal, "
                "Provincia FROM Tipos_Documento WHERE Predeterminada = True ORDER BY Codigo"));
  if (row.hasRow()) {
    found = {.name = row.text("Nombre"),
             .company = row.text("Razon_Social"),
             .fiscalNumber = row.text("NIF"),
             .address = row.text("Direccion"),
             .place = row.text("Poblacion"),
             .postcode = row.text("Codigo_Postal"),
             .province = row.text("Provincia")};
  }
  if (found.name.empty()) found.name = found.company;
  if (found.name.empty()) {
    const std::filesystem::path folder = Apartment::current().installation().folder();
    found.name = folder.filename().string();
  }
  return found;
}

void setIssuer(const Issuer& issuer) {
  ClsTiposDocumento types;
  types.IniciaRs({}, "todos");
  const RecordsetPtr rows = types.DataMember("Primary");
  while (!rows->Eof() && !asFlag(rows->Field("Predeterminada").Value())) rows->MoveNext();
  if (rows->Eof()) {
    throw Error(errors::kNoCurrentRecord, "Shop",
                "There is no default document type. `tavelor seed` makes one.");
  }
  rows->Field("Nombre").Value(issuer.name);
  rows->Field("Empresa").Value(issuer.company);
  rows->Field("NIF").Value(issuer.fiscalNumber);
  rows->Field("Dirección").Value(issuer.address);
  rows->Field("Población").Value(issuer.place);
  if (!issuer.postcode.empty()) rows->Field("Codigo_Postal").Value(issuer.postcode);
  if (!issuer.province.empty()) rows->Field("Provincia").Value(issuer.province);
  types.Update();
}

}  // namespace tavelor::flows

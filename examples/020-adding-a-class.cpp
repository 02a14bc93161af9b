// SPDX-License-Identifier: MIT
// A catalogue class of one's own: a table, its modes, one member, its component table.
#include <array>
#include <iostream>

#include "tavelor/frame/component.hpp"
#include "tavelor/frame/record_class.hpp"
#include "tavelor/platform/error.hpp"
#include "tavelor/platform/statement.hpp"
#include "tavelor/services/apartment.hpp"
#include "tavelor/services/installation.hpp"
#include "tavelor/services/recordset/recordset.hpp"

namespace {

using tavelor::ClassInfo;
using tavelor::Component;
using tavelor::Mode;
using tavelor::ObjCn;
using tavelor::Variant;

// [table]
constexpr std::string_view kTable =
    "CREATE TABLE Colores ("
    "  Codigo TEXT(10) NOT NULL,"
    "  Descripcion TEXT(50),"
    "  CONSTRAINT PK_Colores PRIMARY KEY (Codigo));";
// [table]

// [class]
constexpr std::string_view kTodos =
    "SELECT Codigo AS Código, Descripcion AS Descripción FROM Colores";

constexpr std::array kModes = {
    Mode{"seleccioncombo", kTodos, " Order By Descripcion"},
    Mode{"registro", kTodos, " Where ( Codigo = '{id}')"},
    Mode{tavelor::kAnyOtherWord, kTodos},
};

constexpr ClassInfo kInfo = {.word = "Colores", .table = "Colores", .modes = kModes};

/// The colours that articles come in.
class ClsColores final : public tavelor::OpensByWord {
 public:
  ClsColores() : OpensByWord(kInfo) {}
  std::string typeName() const override { return "ClsColores"; }
  static const Component& component();

  /// Name of a colour, or Empty for a code that is not there.
  Variant GetDescripcion(const Variant& vId, ObjCn objCn = {}) const {
    return lookUp(withId("SELECT Descripcion as ds FROM Colores where codigo = '{id}'", vId), "ds",
                  objCn);
  }
};

const Component& ClsColores::component() {
  using C = ClsColores;
  static const Component table(
      "ClsColores", "{0B7D1C5A-6E7F-4C0B-8E55-5B1E6C1D9A20}", kInfo.word,
      []() -> std::unique_ptr<tavelor::Object> { return std::make_unique<C>(); },
      tavelor::withFrameTail({
          tavelor::frameMember("GetRptPath"),
          tavelor::frameMember("GetConnectionStrToRpt"),
          tavelor::frameMember("sClassName"),
          tavelor::frameMember("GetConnection"),
          tavelor::frameMember("GetConnectionStr"),
          tavelor::member("IniciaRs", &C::IniciaRs, "[inout sSelecSql], [id]"),
          tavelor::member("GetDescripcion", &C::GetDescripcion, "vId, [objCn]"),
          tavelor::frameMember("NuevoCodigo"),
          tavelor::frameMember("SeguridadPermiso"),
          tavelor::frameMember("CodigoLibre"),
      }));
  return table;
}
// [class]

}  // namespace

int main() {
  try {
    // [use]
    const auto shop = tavelor::Installation::create("shop");
    shop->addToSchema(tavelor::selector::kMain, kTable);

    tavelor::Apartment apartment(shop);
    ClsColores colours;
    colours.IniciaRs("todos");
    for (const char* name : {"Rojo", "Añil"}) {
      colours.AddNew(true);  // the next code is written to the first field
      colours.DataMember("Primary")->Field("Descripción").Value(name);
      colours.Update();
    }
    std::cout << colours.GetDescripcion("2").toText(apartment.locale()) << '\n';
    // [use]

    std::cout << ClsColores::component().member("getdescripcion").signature() << '\n';
    return 0;
  } catch (const tavelor::Error& error) {
    std::cerr << error.what() << '\n';
    return 1;
  }
}

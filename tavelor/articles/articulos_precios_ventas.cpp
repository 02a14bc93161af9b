// SPDX-License-Identifier: MIT
// ClsArticulosPreciosVentas, customers' prices and offers.
#include "tavelor/articles/articulos_precios_ventas.hpp"

#include <array>

#include "tavelor/articles/euros.hpp"
#include "tavelor/articles/stock.hpp"
#include "tavelor/frame/component.hpp"
#include "tavelor/frame/reading.hpp"
#include "tavelor/platform/statement.hpp"
#include "tavelor/platform/text.hpp"
#include "tavelor/services/apartment.hpp"
#include "tavelor/services/clock.hpp"
#include "tavelor/services/data_session.hpp"
#include "tavelor/services/format_global.hpp"
#include "tavelor/services/recordset/recordset.hpp"

namespace tavelor {

// Table Articulos_Precios_Ventas: what the customer Cliente pays for the article Codigo or the
// family Familia, "0" standing for the one that the row is not about. Dto says that Porcentaje is
// granted; Fecha is the last day.

namespace {

constexpr std::string_view kTodos =
    "SELECT id, Cliente, Codigo AS Código, Familia, descripcion as Descripción, Precio, Dto,"
    " Porcentaje, Lista, Fecha FROM Articulos_Precios_Ventas";

constexpr std::array kModes = {
    Mode{"seleccion", kTodos, " WHERE ( Codigo =  '{id}' or Cliente =  '{id}')"},
    Mode{kAnyOtherWord, kTodos},
};

constexpr ClassInfo kInfo = {
    .word = "Articulos_Precios_Ventas",
    .table = "Articulos_Precios_Ventas",
    .codeColumn = "Id",
    .modes = kModes,
    .addNew = AddNewForm::kShort,
};

constexpr std::string_view kNoFamily = "0";
// The marker of a free article: nobody sells for a cent.
constexpr Currency kFree = Currency::fromScaled(100);

const Locale& locale() {
  return Apartment::current().locale();
}

// What grids show for a row of an article without a date; as good as never.
Date lastDayOfAll() {
  return Date::of(2040, 1, 1);
}

Statement ofPair(Statement::Constant before, const std::string& first, Statement::Constant between,
                 const std::string& second, Statement::Constant after) {
  Statement statement(before);
  statement << spliced(first) << between << spliced(second) << after;
  return statement;
}

/// Takes the price of a row if it has one.
bool takePrice(Recordset& rows, double& dPrecio) {
  double price = 0;
  takeColumn(rows, "Precio", price);
  if (price <= 0) return false;
  dPrecio = price;
  return true;
}

/// Takes the percentage of a row that grants one.
bool takePercentage(Recordset& rows, float& dDto) {
  if (!asFlag(rows.Field("dto").Value())) return false;
  takeColumn(rows, "porcentaje", dDto);
  return true;
}

bool isFree(const Variant& price) {
  return !price.isNull() && price.toCurrency(locale()) == kFree;
}

std::vector<AggregateParameter<ClsArticulosPreciosVentas::Oferta>> ofOferta(bool dated) {
  using Oferta = ClsArticulosPreciosVentas::Oferta;
  std::vector<AggregateParameter<Oferta>> parameters = {
      parameter("sCod", &Oferta::sCod),
      parameter("sCliente", &Oferta::sCliente),
      parameter("sDescripcion", &Oferta::sDescripcion),
      parameter("dPrecio", &Oferta::dPrecio),
      parameter("sFamilia", &Oferta::sFamilia),
      parameter("bDto", &Oferta::bDto),
      parameter("dPorcentaje", &Oferta::dPorcentaje),
      parameter("sLista", &Oferta::sLista)};
  if (dated) parameters.push_back(parameter("dtFecha", &Oferta::dtFecha));
  parameters.push_back(parameter("[objCn]", &Oferta::objCn));
  return parameters;
}

}  // namespace

ClsArticulosPreciosVentas::ClsArticulosPreciosVentas() : OpensByWord(kInfo) {}

// ---------------------------------------------------------------------------------------------
// Look-ups

std::vector<Variant> ClsArticulosPreciosVentas::ObtenerPreciosCliente(std::string_view sId,
                                                                      std::string_view sLista,
                                                                      ObjCn objCn) const {
  Statement statement(
      "SELECT id, Cliente, Codigo AS Código, descripcion as Artículo, Precio, Familia, Dto,"
      " Porcentaje, Fecha FROM Articulos_Precios_Ventas WHERE ( Cliente =  '");
  statement << spliced(sId) << "' and Lista =  '" << spliced(sLista) << "') Order by Codigo";
  return columnValues(*read(statement, *objCn), "id");
}

void ClsArticulosPreciosVentas::GetDatosImport(Datos& datos) const {
  const RecordsetPtr rows =
      read(withId("SELECT id, Cliente, Codigo AS Código, descripcion as Artículo, Precio, Familia,"
                  " Dto, Porcentaje, Lista FROM Articulos_Precios_Ventas"
                  " WHERE ( id =  {id}) Order by ID",
                  datos.vId),
           *datos.objCn);
  if (rows->RecordCount() == 0) return;
  takeColumn(*rows, "Código", datos.sCodigo);
  takeColumn(*rows, "Artículo", datos.sDescripcion);
  takeColumn(*rows, "Familia", datos.sFamilia);
  takeColumn(*rows, "precio", datos.dPrecio);
  takeColumn(*rows, "dto", datos.bDto);
  takeColumn(*rows, "Porcentaje", datos.dPorcentaje);
  takeColumn(*rows, "Lista", datos.sLista);
}

bool ClsArticulosPreciosVentas::GetPrecioVenta(const Variant& vId, const Variant& vIdCli,
                                               InOut<double> dPrecio, InOut<float> dDto,
                                               ObjCn objCn) const {
  const RecordsetPtr rows = read(ofPair("SELECT Codigo , Cliente, Precio, porcentaje, dto, fecha"
                                        " FROM Articulos_Precios_Ventas WHERE ( Codigo =  '",
                                        joined(vId), "'  and Cliente =  '", joined(vIdCli), "')"),
                                 *objCn);
  if (rows->RecordCount() == 0) return false;

  const Variant lastDay = rows->Field("fecha").Value();
  const bool isDated = isDate(lastDay, locale());
  const bool isOver = isDated && lastDay.toDate(locale()) < Apartment::current().clock().today();

  bool applies = takePrice(*rows, *dPrecio);
  if (applies && isDated && !isOver) dDto = 0.0F;
  if (takePercentage(*rows, *dDto)) applies = true;
  if (isFree(rows->Field("Precio").Value())) dPrecio = 0.0;
  return applies && !isOver;
}

bool ClsArticulosPreciosVentas::GetPrecioVentaFamilia(const Variant& vId, const Variant& vIdCli,
                                                      InOut<double> dPrecio, InOut<float> dDto,
                                                      ObjCn objCn) const {
  const RecordsetPtr rows = read(ofPair("SELECT Familia , Cliente, Precio, porcentaje, dto"
                                        " FROM Articulos_Precios_Ventas WHERE ( Familia =  '",
                                        joined(vId), "'  and Cliente =  '", joined(vIdCli), "')"),
                                 *objCn);
  if (rows->RecordCount() == 0) return false;
  takePrice(*rows, *dPrecio);
  takePercentage(*rows, *dDto);
  return true;
}

bool ClsArticulosPreciosVentas::CodigoLibre(const Variant& vId, const Variant& vIdSec,
                                            ObjCn objCn) const {
  return !anyRow(ofPair("SELECT Cliente, Codigo FROM Articulos_Precios_Ventas where ( Cliente ='",
                        joined(vId), "' and Codigo='", joined(vIdSec), "')"),
                 *objCn);
}

bool ClsArticulosPreciosVentas::FamiliaLibre(const Variant& vId, const Variant& vIdSec,
                                             ObjCn objCn) const {
  return !anyRow(ofPair("SELECT Cliente, Familia FROM Articulos_Precios_Ventas where ( Cliente ='",
                        joined(vId), "' and Familia='", joined(vIdSec), "')"),
                 *objCn);
}

// ---------------------------------------------------------------------------------------------
// Writing

void ClsArticulosPreciosVentas::ActualizarEuros(ObjCn cnnActive) const {
  write(euros::nullToZero(kInfo.table), *cnnActive);
  write(euros::pricesInEuros(kInfo.table), *cnnActive);
}

void ClsArticulosPreciosVentas::DeleteAll(const Variant& vId, ObjCn cnnActive) const {
  write(withId("DELETE  FROM Articulos_Precios_Ventas"
               " WHERE ( Codigo =  '{id}' or Cliente =  '{id}')",
               vId),
        *cnnActive);
}

void ClsArticulosPreciosVentas::ActualizarTarifas(std::string_view sCliente, double dPorcent,
                                                  ObjCn cnnActive) const {
  const int decimals = Apartment::current().formatGlobal().CurrencyDecimals();
  Statement statement("UPDATE  Articulos_Precios_Ventas SET Precio =  ROUND(((Precio * ");
  statement << spliced(stock::bare(dPorcent)) << ")/100)+ Precio,"
            << spliced(std::to_string(decimals)) << ") WHERE (((Cliente) Like '"
            << spliced(sCliente) << "'));";
  write(statement, *cnnActive);
}

void ClsArticulosPreciosVentas::Insertar(const Variant& vCod, std::string_view sDescripcion,
                                         std::string_view sCliente, double dPrecio,
                                         std::string_view sLista, ObjCn objCn) const {
  Statement statement(
      "INSERT INTO Articulos_Precios_Ventas (  ID, Codigo, Descripcion, Cliente, Precio, Lista,"
      " Familia ) values ( ");
  statement << spliced(joined(NuevoCodigo(*objCn))) << ", '" << spliced(joined(vCod)) << "', '"
            << spliced(sDescripcion) << "', '" << spliced(sCliente) << "', "
            << spliced(stock::bare(dPrecio)) << ", '" << spliced(sLista) << "', '0' )";
  write(statement, *objCn);
}

// The literal is asked of the historic database, whose dialect is that of all others.
void ClsArticulosPreciosVentas::InsertarOferta(const Oferta& oferta) const {
  if (text::trim(joined(oferta.dtFecha)).empty()) return InsertarTodo(oferta);
  insert(oferta, ", Fecha", DataSession().DateLiteral(selector::kHistoric, oferta.dtFecha));
}

void ClsArticulosPreciosVentas::InsertarTodo(const Oferta& oferta) const {
  insert(oferta, {}, {});
}

void ClsArticulosPreciosVentas::insert(const Oferta& oferta, Statement::Constant dateColumn,
                                       const std::string& date) const {
  ConnectionPtr& connection = *oferta.objCn;
  Statement statement(
      "INSERT INTO Articulos_Precios_Ventas (  ID, Codigo, Descripcion, Precio, Familia, dto,"
      " Porcentaje, Cliente, Lista");
  statement << dateColumn << " ) values ( " << spliced(joined(NuevoCodigo(connection))) << ", '"
            << spliced(oferta.sCod) << "', '" << spliced(oferta.sDescripcion) << "', "
            << spliced(stock::bare(oferta.dPrecio)) << ", '" << spliced(oferta.sFamilia) << "', "
            << spliced(oferta.bDto ? "-1" : "0") << ", " << spliced(stock::bare(oferta.dPorcentaje))
            << ", '" << spliced(oferta.sCliente) << "', '" << spliced(oferta.sLista) << "'";
  if (!date.empty()) statement << ", " << spliced(date);
  statement << " )";
  write(statement, connection);
}

// ---------------------------------------------------------------------------------------------
// The grid

void ClsArticulosPreciosVentas::SetDesripcion(std::string_view sDes) {
  primary().Field("Descripción").Value(sDes);
}

void ClsArticulosPreciosVentas::AddNew(bool bDefVal, std::string_view sIdCli) {
  RecordClass::addRow(bDefVal);
  if (!bDefVal) return;
  Recordset& rows = primary();
  rows.Field("Cliente").Value(sIdCli);
  for (const char* name : {"Código", "Familia", "Descripción", "Lista"}) rows.Field(name).Value("");
  rows.Field("Precio").Value(0.0);
  rows.Field("Dto").Value(false);
  rows.Field("Porcentaje").Value(0.0);
}

void ClsArticulosPreciosVentas::Update() {
  Recordset& rows = primary();
  Field lastDay = rows.Field("Fecha");
  if (!isDate(lastDay.Value(), locale()) && joined(rows.Field("Familia").Value()) == kNoFamily) {
    lastDay.Value(lastDayOfAll());
  }
  RecordClass::Update();
}

void ClsArticulosPreciosVentas::Update_Familia() {
  if (primary().EditMode() != EditMode::kNone) RecordClass::Update();
}

const Component& ClsArticulosPreciosVentas::component() {
  using C = ClsArticulosPreciosVentas;
  constexpr std::string_view kLookUp = "vId, vIdCli, inout dPrecio, inout dDto, [objCn]";
  static const Component table(
      "ClsArticulosPreciosVentas", "{6B1F0A52-3C4D-4E8B-9A57-21D0C7E4B607}", kInfo.word,
      []() -> std::unique_ptr<Object> { return std::make_unique<C>(); },
      withFrameTail(
          {
              frameMember("GetRptPath"),
              frameMember("GetConnectionStrToRpt"),
              frameMember("sClassName"),
              frameMember("GetConnection"),
              frameMember("GetConnectionStr"),
              member("ObtenerPreciosCliente", &C::ObtenerPreciosCliente, "sId, sLista, [objCn]"),
              member(
                  "GetDatosImport", &C::GetDatosImport,
                  {parameter("vId", &Datos::vId), parameter("out sCodigo", &Datos::sCodigo),
                   parameter("out sDescripcion", &Datos::sDescripcion),
                   parameter("out dPrecio", &Datos::dPrecio),
                   parameter("out sFamilia", &Datos::sFamilia), parameter("out bDto", &Datos::bDto),
                   parameter("out dPorcentaje", &Datos::dPorcentaje),
                   parameter("out sLista", &Datos::sLista), parameter("[objCn]", &Datos::objCn)}),
              member("ActualizarEuros", &C::ActualizarEuros, "[cnnActive]"),
              member("DeleteAll", &C::DeleteAll, "vId, [cnnActive]"),
              member("GetPrecioVenta", &C::GetPrecioVenta, kLookUp),
              member("GetPrecioVentaFamilia", &C::GetPrecioVentaFamilia, kLookUp),
              member("ActualizarTarifas", &C::ActualizarTarifas, "sCliente, dPorcent, [cnnActive]"),
              member("Insertar", &C::Insertar,
                     "vCod, sDescripcion, sCliente, dPrecio, sLista, [objCn]"),
              member("InsertarOferta", &C::InsertarOferta, ofOferta(true)),
              member("InsertarTodo", &C::InsertarTodo, ofOferta(false)),
              property("sQFamilia", &C::sQFamilia),
              member("SetDesripcion", &C::SetDesripcion, "sDes"),
              member("IniciaRs", &C::IniciaRs, "[inout sSelecSql], [id]"),
              frameMember("NuevoCodigo"),
              frameMember("SeguridadPermiso"),
              member("CodigoLibre", &C::CodigoLibre, "vId, vIdSec, [objCn]"),
              member("FamiliaLibre", &C::FamiliaLibre, "vId, vIdSec, [objCn]"),
          },
          {
              member("AddNew", &C::AddNew, "[bDefVal], [sIdCli]"),
              member("Update", &C::Update),
              member("Update_Familia", &C::Update_Familia),
          }));
  return table;
}

}  // namespace tavelor

// SPDX-License-Identifier: MIT
// The component table of clsArticulos.
#include <array>

#include "tavelor/articles/articulos.hpp"
#include "tavelor/frame/component.hpp"
#include "tavelor/frame/controls.hpp"

namespace tavelor {

namespace {

using C = clsArticulos;

constexpr std::string_view kOnArticle = "vId, [cnnActive]";
constexpr std::string_view kOfArticle = "vId, [objCn]";
constexpr std::string_view kSetsQuantity = "vId, vCant, [cnnActive]";
constexpr std::string_view kMovesStock =
    "vId, vCant, vRec, [bSumar = True], [bExistencia], [cnnActive]";

using Datos = C::Datos;
using DatosParameters = std::vector<AggregateParameter<Datos>>;

// What the three members that fill a line have in common.
DatosParameters lineParameters() {
  return {parameter("inout vId", &Datos::vId),
          parameter("inout sDescripcion", &Datos::sDescripcion),
          parameter("out sSeccion", &Datos::sSeccion),
          parameter("out sFamilia", &Datos::sFamilia),
          parameter("sTarifa", &Datos::sTarifa),
          parameter("sQIdioma", &Datos::sQIdioma),
          parameter("out dPrecio", &Datos::dPrecio),
          parameter("out bDto", &Datos::bDto),
          parameter("out sImpuesto", &Datos::sImpuesto),
          parameter("out dExistencia", &Datos::dExistencia),
          parameter("out bLotes", &Datos::bLotes),
          parameter("out bInterno", &Datos::bInterno),
          parameter("mbIsProvider", &Datos::mbIsProvider),
          parameter("index", &Datos::index),
          parameter("[objCn]", &Datos::objCn),
          parameter("[out sEmpleado]", &Datos::sEmpleado),
          parameter("[out dPuntos]", &Datos::dPuntos),
          parameter("[out dMerma]", &Datos::dMerma),
          parameter("[sLista]", &Datos::sLista)};
}

DatosParameters with(DatosParameters parameters, AggregateParameter<Datos> last) {
  parameters.push_back(std::move(last));
  return parameters;
}

std::vector<Member> viewSlots() {
  return {
      frameMember("GetRptPath"),
      frameMember("GetConnectionStrToRpt"),
      member("GetValorClsReg", &C::GetValorClsReg, "sLlave, sValue, sDef"),
      member("SetValorClsReg", &C::SetValorClsReg, "sLlave, sKey, sValue"),
      member("Aceptar_todos", &C::Aceptar_todos, "[cnnActive]"),
      member("Denegar_todos", &C::Denegar_todos, "[cnnActive]"),
      member("IniciaXML", &C::IniciaXML, "sPath"),
      member("UpdateTablesGeneralesToRpt", &C::UpdateTablesGeneralesToRpt),
      member("Create_xml_Articulos", &C::Create_xml_Articulos, "sPath, [objCn]"),
      member("GetExportPath", &C::GetExportPath, "inout sExportPath"),
      member("CambiarListarticulo", &C::CambiarListarticulo, "vId, sLista, [cnnActive]"),
      member("CambiarEstadoarticulo", &C::CambiarEstadoarticulo, "vId, bModo, [cnnActive]"),
      member("CambiarDescripcionarticulo", &C::CambiarDescripcionarticulo,
             "vId, sDescrip, sFamilia, sSeccion, [cnnActive]"),
      member("ObtenerArticulosVentaActivos", &C::ObtenerArticulosVentaActivos, "sLista, [objCn]"),
      member("ObtenerArticulosImport", &C::ObtenerArticulosImport, "[objCn]"),
      member("ObtenerTarifaArticuloImport", &C::ObtenerTarifaArticuloImport,
             "vId, sTarifa, [objCn]"),
      member("ObtenerDto_D", &C::ObtenerDto_D, "vId, [sLista], [objCn]"),
      member("ExisteArt", &C::ExisteArt, kOfArticle),
      member("ExisteArtEnLista", &C::ExisteArtEnLista, "vId, sLista, [objCn]"),
      member("ObtenerCodigo", &C::ObtenerCodigo, "inout sMidato"),
      member("GetTxtFile", &C::GetTxtFile),
      frameMember("sClassName"),
      property("sQCodigo", &C::sQCodigo),
      property("sQFamilia", &C::sQFamilia),
      property("sQseccion", &C::sQseccion),
      frameMember("GetConnection"),
      frameMember("GetConnectionStr"),
  };
}

std::vector<Member> readingSlots() {
  return {
      member("GetRecargo", &C::GetRecargo, kOfArticle),
      member("GetPorcentIva", &C::GetPorcentIva, kOfArticle),
      member("GetPrecioVenta", &C::GetPrecioVenta, kOfArticle),
      member("GetMediaUnitaria", &C::GetMediaUnitaria, kOfArticle),
      member("GetValorInterno", &C::GetValorInterno, kOfArticle),
      member("GetImpuesto", &C::GetImpuesto, kOfArticle),
      member("GetDescripcion", &C::GetDescripcion, kOfArticle),
      member("GetFamilia", &C::GetFamilia, kOfArticle),
      member("GetSeccion", &C::GetSeccion, kOfArticle),
      member("GetEmpleado", &C::GetEmpleado, kOfArticle),
      member("GetMedidaCompra", &C::GetMedidaCompra, kOfArticle),
      member("GetPrecioTarifa", &C::GetPrecioTarifa, "vId, sTarifa, [objCn]"),
      member("ObtenerDescripcion", &C::ObtenerDescripcion, "vId, out sDescrip, [objCn]"),
      member("ActualizaPrecioTarifa", &C::ActualizaPrecioTarifa,
             "vId, sTarifa, dPrecio, [cnnActive]"),
      member("InsertarPrecioTarifa", &C::InsertarPrecioTarifa,
             "vId, sTarifa, dPrecio, [cnnActive]"),
      member("RegularizarStock", &C::RegularizarStock, kOnArticle),
      member("EsPaquete", &C::EsPaquete, kOfArticle),
      member("EsInterno", &C::EsInterno, kOfArticle),
      member("EsDescontable", &C::EsDescontable, kOfArticle),
      member("EsNoSumable", &C::EsNoSumable, kOfArticle),
      member("EsRepetible", &C::EsRepetible, kOfArticle),
      member("EsdeAlmacen", &C::EsdeAlmacen, kOfArticle),
      member("RestaStock_V", &C::RestaStock_V, kOfArticle),
      member("EsdeAlmacenVenta", &C::EsdeAlmacenVenta, kOfArticle),
      member("ObtenerCol_Materiales", &C::ObtenerCol_Materiales, "[objCn]"),
      member("ObtenerCol_Tarifas", &C::ObtenerCol_Tarifas, "[objCn]"),
      member("ObtenerCol_TarifasArticulo", &C::ObtenerCol_TarifasArticulo, "sId, [objCn]"),
      member("ObtenerRegistroActivo", &C::ObtenerRegistroActivo,
             "out vId, out sDescripcion, out dPrecio, out sImpuesto"),
      member("GetDatoslote", &C::GetDatoslote, lineParameters()),
      member("GetDatos", &C::GetDatos,
             with(lineParameters(), parameter("[mbIsAlbAlmacen]", &Datos::mbIsAlbAlmacen))),
      member("GetDatosReferencia", &C::GetDatosReferencia, lineParameters()),
  };
}

std::vector<Member> writingSlots() {
  using I = C::DatosImport;
  using Cambio = C::Cambio;
  using Alta = C::Alta;
  return {
      member("GetDatosImport", &C::GetDatosImport,
             {parameter("inout vId", &I::vId), parameter("out sDescripcion", &I::sDescripcion),
              parameter("out sSeccion", &I::sSeccion), parameter("out sFamilia", &I::sFamilia),
              parameter("out dPrecio_A", &I::dPrecio_A), parameter("out dPrecio_B", &I::dPrecio_B),
              parameter("out dPrecio_C", &I::dPrecio_C), parameter("out bDto", &I::bDto),
              parameter("out sImpuesto", &I::sImpuesto),
              parameter("out dExistencia", &I::dExistencia), parameter("out bLotes", &I::bLotes),
              parameter("out bInterno", &I::bInterno), parameter("out bStock", &I::bStock),
              parameter("out bActivo", &I::bActivo), parameter("out sLista", &I::sLista),
              parameter("out dDto_D", &I::dDto_D), parameter("[objCn]", &I::objCn)}),
      member("Actualizar", &C::Actualizar,
             {parameter("vId", &Cambio::vId), parameter("sDescripcion", &Cambio::sDescripcion),
              parameter("sSeccion", &Cambio::sSeccion), parameter("sFamilia", &Cambio::sFamilia),
              parameter("dPrecio", &Cambio::dPrecio), parameter("dPrecio_B", &Cambio::dPrecio_B),
              parameter("dPrecio_C", &Cambio::dPrecio_C), parameter("bDto", &Cambio::bDto),
              parameter("bDto_D", &Cambio::bDto_D), parameter("bActivo", &Cambio::bActivo),
              parameter("[sLista]", &Cambio::sLista), parameter("[objCn]", &Cambio::objCn)}),
      member(
          "Insertar", &C::Insertar,
          {parameter("vId", &Alta::vId), parameter("sDescripcion", &Alta::sDescripcion),
           parameter("sSeccion", &Alta::sSeccion), parameter("sFamilia", &Alta::sFamilia),
           parameter("dPrecio", &Alta::dPrecio), parameter("dPrecio_B", &Alta::dPrecio_B),
           parameter("dPrecio_C", &Alta::dPrecio_C), parameter("bDto", &Alta::bDto),
           parameter("sImpuesto", &Alta::sImpuesto), parameter("dExistencia", &Alta::dExistencia),
           parameter("bLotes", &Alta::bLotes), parameter("bStock", &Alta::bStock),
           parameter("bActivo", &Alta::bActivo), parameter("[sLista]", &Alta::sLista),
           parameter("[dDto_D]", &Alta::dDto_D), parameter("[objCn]", &Alta::objCn)}),
      member("ActualizarStock", &C::ActualizarStock, kSetsQuantity),
      member("ActualizarStockPendiente", &C::ActualizarStockPendiente, kSetsQuantity),
      member("ActualizarStockPendiente_Entrega", &C::ActualizarStockPendiente_Entrega,
             kSetsQuantity),
      member("DescargarStock", &C::DescargarStock, kOnArticle),
      member("ActualizarStock_Pedido", &C::ActualizarStock_Pedido, kMovesStock),
      member("ActualizarStock_C", &C::ActualizarStock_C, kMovesStock),
      member("ActualizarStock_Recep_pedido", &C::ActualizarStock_Recep_pedido, kSetsQuantity),
      member("ActualizarStock_Recep_Entrega", &C::ActualizarStock_Recep_Entrega, kSetsQuantity),
      member("ActualizarStock_Movimientos", &C::ActualizarStock_Movimientos, kMovesStock),
      member("DescargarStock_V", &C::DescargarStock_V, kMovesStock),
      member("DescargarStockPaquete", &C::DescargarStockPaquete, kMovesStock),
      member("ActualizarPrecioMedio", &C::ActualizarPrecioMedio,
             "vId, dPrecioMedio, [cnnActive], [dCant = 1]"),
      member("ActualizarEuros", &C::ActualizarEuros, "[cnnActive]"),
      member("ActualizarTarifas", &C::ActualizarTarifas,
             "sTarifa, dPorcent, sFamilia, sLista, [cnnActive]"),
      member("EliminarTarifaPrecios", &C::EliminarTarifaPrecios, "sTarifa, [cnnActive]"),
      member("CopiatTarifaPrecios", &C::CopiatTarifaPrecios, "sTarifa, SNewTarifa, [cnnActive]"),
      member("CrearTarifaPrecios", &C::CrearTarifaPrecios,
             "sTarifa, SNewTarifa, sNombre, [cnnActive]"),
      member("ActualizarPrecio", &C::ActualizarPrecio, "vId, dPrecio, dDto, [cnnActive]"),
      member("ActualizarTarifa", &C::ActualizarTarifa, "vId, dPrecio, sTarifa, [cnnActive]"),
      member("ActualizarDto_D", &C::ActualizarDto_D, "vId, dDto_D, [cnnActive]"),
      member("DeleteAllTarifas", &C::DeleteAllTarifas, kOnArticle),
      member("IniciaRs", &C::IniciaRs, "[inout sSelecSql], [id], [inout cnnActive]"),
      frameMember("NuevoCodigo"),
      member("NuevoCodigo_Fam", &C::NuevoCodigo_Fam, "sFam, [objCn]"),
      member("NuevaRef", &C::NuevaRef, "[objCn]"),
      frameMember("SeguridadPermiso"),
      frameMember("CodigoLibre"),
      member("CodigoRefLibre", &C::CodigoRefLibre, "vId, vIdCodigo, [objCn]"),
  };
}

std::vector<Member> ownSlots() {
  std::vector<Member> slots = viewSlots();
  for (std::vector<Member>& more : std::array{readingSlots(), writingSlots()}) {
    slots.insert(slots.end(), more.begin(), more.end());
  }
  return slots;
}

}  // namespace

const Component& C::component() {
  static const Component table(
      "clsArticulos", "{6B1F0A52-3C4D-4E8B-9A57-21D0C7E4B061}", "Articulos",
      []() -> std::unique_ptr<Object> { return std::make_unique<C>(); },
      withFrameTail(ownSlots(), {member("AddNew", &C::AddNew, "[bDefVal = True]"),
                                 member("CopyPrevious", &C::CopyPrevious),
                                 member("CreateRptFilter", &C::CreateRptFilter, "ctl, [iType]")}));
  return table;
}

}  // namespace tavelor

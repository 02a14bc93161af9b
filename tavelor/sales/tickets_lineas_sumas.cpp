// SPDX-License-Identifier: MIT
// ClsTicketsLineas: totals, receipts and collections.
#include "tavelor/articles/articulos.hpp"
#include "tavelor/articles/registros.hpp"
#include "tavelor/frame/reading.hpp"
#include "tavelor/platform/format.hpp"
#include "tavelor/platform/statement.hpp"
#include "tavelor/platform/text.hpp"
#include "tavelor/sales/receipt.hpp"
#include "tavelor/sales/registros_tickets.hpp"
#include "tavelor/sales/tickets_lineas.hpp"
#include "tavelor/services/apartment.hpp"
#include "tavelor/services/format_global.hpp"
#include "tavelor/services/recordset/recordset.hpp"

namespace tavelor {

namespace {

const Locale& locale() {
  return Apartment::current().locale();
}

/// The tax inside an amount that includes it.
double includedTax(double amount, double rate) {
  return amount - (amount * 100) / (100 + rate);
}

}  // namespace

// Rounding is not the same for the three sums, and printed receipts depend on it: the tax on top of
// an amount and the surcharge are added as they are.
void ClsTicketsLineas::SumaCol(bool bIncTax, InOut<double> dBase, InOut<double> dImpIva,
                               InOut<double> dImpRecargo, bool bRecargos) const {
  const std::string mask = Apartment::current().formatGlobal().QuantityFormat();
  const RoundingMask rounded(mask, locale());
  if (!ExistenRegistros()) return;

  const RecordsetPtr rows = primary().Clone();
  const Field amounts = rows->Field("Importe");
  const Field rates = rows->Field("Iva");
  const Field codes = rows->Field("Código");
  const clsArticulos articles;
  ConnectionPtr articlesConnection;
  for (; !rows->Eof(); rows->MoveNext()) {
    double amount = asNumber(amounts.Value());
    const Variant rate = rates.Value();
    double tax = 0;
    if (bIncTax) {
      if (!rate.isNull()) tax = rounded(includedTax(amount, asNumber(rate)));
      amount -= tax;
    } else if (!rate.isNull()) {
      tax = (amount * asNumber(rate)) / 100;
    }
    const double surcharge =
        bRecargos ? articles.GetRecargo(codes.Value(), articlesConnection) * amount / 100 : 0;
    *dBase += rounded(amount);
    *dImpIva += tax;
    *dImpRecargo += surcharge;
  }
}

std::vector<Variant> ClsTicketsLineas::GetCollectionLin() const {
  return receipt::lines(*primary().Clone());
}

std::vector<Variant> ClsTicketsLineas::GetCollectionLinImpuestos(const Variant& vId, bool bIncTax,
                                                                 ObjCn objCn) const {
  return receipt::taxes(*read(withId("SELECT IVA, Sum(Tickets_Lineas.Importe) AS SumaDeImporte"
                                     " From Tickets_Lineas"
                                     " GROUP BY IVA, Numero"
                                     " HAVING (((Numero)={id}));",
                                     vId),
                              *objCn),
                        bIncTax);
}

CollectionTicketsPtr ClsTicketsLineas::SumCollectionLinHFamilias(const Variant& vId,
                                                                 ObjCn objCn) const {
  const RecordsetPtr rows = read(withId("SELECT Familia, Sum(Importe) AS Total"
                                        " From Tickets_Lineas"
                                        " GROUP BY Familia, Cierre"
                                        " HAVING (((Cierre)= {id}));",
                                        vId),
                                 *objCn);
  auto groups = std::make_shared<CollectionTickets>();
  for (; !rows->Eof(); rows->MoveNext()) {
    groups->Add({}, rows->Field("Familia").Value(), {}, rows->Field("Total").Value(), {});
  }
  return groups;
}

CollectionTicketsPtr ClsTicketsLineas::SumCollectionLinHImpuestos(const Variant& vId,
                                                                  ObjCn objCn) const {
  const RecordsetPtr rows = read(withId("SELECT IVA, Sum(Base) AS BaseI, Sum(Importe) AS ImporteI"
                                        " From HTickets_Lineas_Impuestos"
                                        " GROUP BY IVA, Cierre"
                                        " HAVING (((Cierre={id})));",
                                        vId),
                                 *objCn);
  auto groups = std::make_shared<CollectionTickets>();
  for (; !rows->Eof(); rows->MoveNext()) {
    groups->Add({}, rows->Field("Iva").Value(), {}, rows->Field("ImporteI").Value(),
                rows->Field("BaseI").Value());
  }
  return groups;
}

CollectionRegistrosPtr ClsTicketsLineas::GetCollectionRegs(const Variant& vIdAlm) {
  auto requests = std::make_shared<CollectionRegistros>();
  if (!ExistenRegistros()) return requests;
  Recordset& rows = primary();
  for (rows.MoveFirst(); !rows.Eof(); rows.MoveNext()) {
    const Variant code = rows.Field("Código").Value();
    if (code.isNull() || code.isEmpty()) continue;
    const double quantity = asNumber(rows.Field("Cantidad").Value());
    const Variant lot = rows.Field("Lote").Value();
    requests->Add(joined(code), code, quantity - quantity, quantity,
                  lot.isNull() || lot.isEmpty() ? Variant("0") : lot, vIdAlm,
                  rows.Field("Precio").Value());
  }
  rows.MoveFirst();
  return requests;
}

}  // namespace tavelor

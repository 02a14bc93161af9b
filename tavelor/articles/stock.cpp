// SPDX-License-Identifier: MIT
// Guards and quantities of the stock members.
#include "tavelor/articles/stock.hpp"

#include <cmath>

#include "tavelor/articles/articulos.hpp"
#include "tavelor/platform/error.hpp"
#include "tavelor/platform/format.hpp"
#include "tavelor/platform/number_text.hpp"
#include "tavelor/services/apartment.hpp"
#include "tavelor/services/data_session.hpp"
#include "tavelor/services/format_global.hpp"

namespace tavelor::stock {

namespace {

const Locale& locale() {
  return Apartment::current().locale();
}

// An infinite number would be printed as a word, and refused as a text instead of as too large.
double finite(double number) {
  if (!std::isfinite(number)) raise(errors::kOverflow, "Articulos", "A number is too large");
  return number;
}

}  // namespace

void connect(ConnectionPtr& cnnActive) {
  if (!cnnActive) cnnActive = DataSession().OpenConnection(selector::kMain);
}

bool isKept(const clsArticulos& articles, const Variant& vId, ConnectionPtr& cnnActive) {
  connect(cnnActive);
  return !clsArticulos::isFreeText(vId) && articles.EsdeAlmacen(vId, cnnActive);
}

bool isSold(const clsArticulos& articles, const Variant& vId, ConnectionPtr& cnnActive) {
  return isKept(articles, vId, cnnActive) && articles.RestaStock_V(vId, cnnActive);
}

double measure(const clsArticulos& articles, const Variant& vId, ConnectionPtr& cnnActive) {
  return quantity(articles.GetMedidaCompra(vId, cnnActive));
}

double quantity(const Variant& value) {
  return value.toDouble(locale());
}

double units(const Variant& value, bool bSumar, double measure) {
  return finite((bSumar ? quantity(value) : -quantity(value)) * measure);
}

// The way through the text is the rule: a mask of no decimals makes stock whole, and a shop sees in
// its reports what it stores.
double rounded(double quantity) {
  const std::string shown =
      format(finite(quantity), Apartment::current().formatGlobal().QuantityFormat(), locale());
  return stock::quantity(Variant(shown));
}

std::string bare(const Variant& quantity) {
  return Apartment::current().formatGlobal().SqlNumber(quantity);
}

std::string plain(double number) {
  return plainNumber(finite(number), locale());
}

}  // namespace tavelor::stock

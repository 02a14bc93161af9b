// SPDX-License-Identifier: MIT
// The classes whose code is a number: it grows by one, however many digits it has.
#include <type_traits>

#include <gtest/gtest.h>

#include "tavelor/articles/articulos_almacenes.hpp"
#include "tavelor/articles/articulos_cbarras.hpp"
#include "tavelor/articles/articulos_comentarios.hpp"
#include "tavelor/articles/articulos_componentes.hpp"
#include "tavelor/articles/articulos_lotes.hpp"
#include "tavelor/articles/articulos_mov_almacen.hpp"
#include "tavelor/articles/articulos_precios.hpp"
#include "tavelor/articles/articulos_precios_ventas.hpp"
#include "tavelor/closing/cierres.hpp"
#include "tavelor/reference/emisores.hpp"
#include "tavelor/reference/rutas.hpp"
#include "tavelor/sales/tickets.hpp"
#include "tavelor/sales/tickets_cabecera.hpp"
#include "tavelor/sales/tickets_comentarios.hpp"
#include "tavelor/sales/tickets_lineas.hpp"
#include "tests/support/shop.hpp"

namespace tavelor {
namespace {

template <typename Class>
struct NumberedCodes : testing::Test {
  test::Shop shop;
  Class numbered;

  void store(std::int32_t code) {
    const ClassInfo& info = numbered.info();
    std::string others, values;
    if (info.table == "Rutas") {
      others = ", Codigo";
      values = ", " + std::to_string(code);
    }
    if (info.table == "Tickets") {
      others = ", Serie";
      values = ", 'A'";
    }
    shop.run("INSERT INTO " + std::string(info.table) + " (" + std::string(info.codeColumn) +
                 others + ") VALUES (" + std::to_string(code) + values + ")",
             info.selector);
  }
};

using Classes = testing::Types<ClsCierres, ClsTickets, ClsTicketsLineas, ClsTicketsCabecera,
                               ClsTicketsComentarios, ClsArticulosAlmacenes, ClsArticulosCbarras,
                               ClsArticulosComentarios, ClsArticulosComponentes, ClsArticulosLotes,
                               ClsArticulosMovAlmacen, ClsArticulosPrecios,
                               ClsArticulosPreciosVentas, Emisores, Rutas>;
TYPED_TEST_SUITE(NumberedCodes, Classes);

TYPED_TEST(NumberedCodes, GoOnBehind9999) {
  const auto next = [&] {
    // Tickets are numbered by their series.
    if constexpr (std::is_same_v<TypeParam, ClsTickets>) return this->numbered.NuevoCodigo("A");
    const RecordClass& codes = this->numbered;
    return codes.NuevoCodigo();
  };
  for (const std::int32_t last : {9'999, 99'999, 9'999'999}) {
    this->store(last);
    EXPECT_EQ(next(), Variant(last + 1));
  }
}

}  // namespace
}  // namespace tavelor

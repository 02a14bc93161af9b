// SPDX-License-Identifier: MIT
// A member that a class has of its own is that one through the frame too: a grid that knows record
// classes only shows what a form of the class shows.
#include <algorithm>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tavelor/articles/articulos.hpp"
#include "tavelor/articles/articulos_almacenes.hpp"
#include "tavelor/articles/articulos_mov_almacen.hpp"
#include "tavelor/articles/articulos_precios_ventas.hpp"
#include "tavelor/customers/clientes.hpp"
#include "tavelor/customers/clientes_apuntes_conta.hpp"
#include "tavelor/customers/clientes_colaboradores.hpp"
#include "tavelor/platform/literal.hpp"
#include "tavelor/sales/tickets.hpp"
#include "tavelor/sales/tickets_comentarios.hpp"
#include "tavelor/sales/tickets_lineas.hpp"
#include "tavelor/services/clock.hpp"
#include "tavelor/services/recordset/recordset.hpp"
#include "tests/support/shop.hpp"

namespace tavelor {
namespace {

/// The fields of the current row, as text; what nobody has written is "Empty".
std::vector<std::string> fieldsOf(RecordClass& record) {
  std::vector<std::string> fields;
  const RecordsetPtr rows = record.DataMember("Primary");
  for (std::int32_t i = 0; i < rows->Fields().Count(); ++i) {
    const Variant value = rows->Field(i).Value();
    fields.push_back(value.isEmpty() ? "Empty" : sqlLiteral(value).text());
  }
  return fields;
}

class ThroughTheFrame : public testing::Test {
 protected:
  ThroughTheFrame() { shop.apartment().clock().fix(Date::of(2026, 3, 5)); }

  /// What the three ways to add a row leave in it, by the class and by the frame.
  template <typename Class>
  void expectTheSameRows(Class& own) {
    RecordClass& frame = own;
    const auto row = [&](auto add) {
      add();
      const std::vector<std::string> fields = fieldsOf(own);
      own.DataMember("Primary")->CancelUpdate();
      return fields;
    };
    const auto filled = row([&] { own.AddNew(true); });
    EXPECT_GT(std::count_if(filled.begin(), filled.end(),
                            [](const std::string& field) { return field != "Empty"; }),
              0);
    EXPECT_EQ(row([&] { frame.AddNew(true); }), filled);
    EXPECT_EQ(row([&] { frame.AddNew(false); }), row([&] { own.AddNew(false); }));
    EXPECT_EQ(row([&] { frame.AddNew(); }), row([&] { own.AddNew(); }));
  }

  test::Shop shop;
};

TEST_F(ThroughTheFrame, AnArticleBeginsFilledWhereNothingIsSaid) {
  clsArticulos articles;
  articles.IniciaRs();
  expectTheSameRows(articles);
  static_cast<RecordClass&>(articles).AddNew();
  EXPECT_EQ(articles.DataMember("Primary")->Field("Lista").Value(), Variant("PRC"));
}

TEST_F(ThroughTheFrame, ARowOfAWarehouseHasTheKeyMinusOne) {
  ClsArticulosAlmacenes warehouses;
  warehouses.IniciaRs({}, "seleccion", "A100");
  expectTheSameRows(warehouses);
}

TEST_F(ThroughTheFrame, AMovementBeginsFilledWhereNothingIsSaid) {
  ClsArticulosMovAlmacen movements;
  movements.IniciaRs("todos");
  expectTheSameRows(movements);
}

TEST_F(ThroughTheFrame, ACollaboratorIsActive) {
  ClsClientesColaboradores collaborators;
  collaborators.IniciaRs({}, "todos");
  expectTheSameRows(collaborators);
}

TEST_F(ThroughTheFrame, ATicketItsLinesAndItsComments) {
  ClsTickets tickets;
  tickets.IniciaRs("todos");
  expectTheSameRows(tickets);
  ClsTicketsLineas lines;
  lines.IniciaRs({}, "todos");
  expectTheSameRows(lines);
  ClsTicketsComentarios comments;
  comments.IniciaRs({}, "todos");
  expectTheSameRows(comments);
}

TEST_F(ThroughTheFrame, AnEntryOfALedgerIsOfNoOwner) {
  ClsClientesApuntesConta ledger;
  ledger.IniciaRs({}, "ninguno");
  static_cast<RecordClass&>(ledger).AddNew(true);
  const RecordsetPtr rows = ledger.DataMember("Primary");
  EXPECT_EQ(rows->Field("Serie").Value(), Variant("A"));
  EXPECT_NE(rows->Field("Codigo").Value(), Variant("00012"));
}

TEST_F(ThroughTheFrame, UpdateOfACustomerGivesItsOutsideCode) {
  shop.run("INSERT INTO Clientes (Codigo, Activo, Razon_Social) VALUES ('00012', -1, 'Uno')");
  ClsClientes customers;
  customers.IniciaRs("todos");
  RecordClass& frame = customers;
  customers.DataMember("Primary")->Field("Nombre").Value("Dos");
  frame.Update();
  EXPECT_EQ(shop.text("SELECT ExternalID FROM Clientes"), "00");
}

TEST_F(ThroughTheFrame, NumbersOfTicketsLookAtHistoryToo) {
  shop.run("INSERT INTO HTickets (Numero, Serie) VALUES (7, '')", selector::kDocuments);
  ClsTickets tickets;
  const RecordClass& frame = tickets;
  EXPECT_FALSE(frame.CodigoLibre(7));
  EXPECT_TRUE(frame.CodigoLibre(8));
  EXPECT_EQ(frame.NuevoCodigo().toDouble(shop.apartment().locale()), 8);
}

}  // namespace
}  // namespace tavelor

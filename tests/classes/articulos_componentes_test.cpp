// SPDX-License-Identifier: MIT
// What packages are made of, and the collection that tells it.
#include "tavelor/articles/articulos_componentes.hpp"

#include <limits>

#include "tavelor/articles/registros.hpp"
#include "tests/classes/catalogue.hpp"

namespace tavelor {
namespace {

using test::errorOf;
using testing::ElementsAre;

constexpr std::string_view kTodos =
    "SELECT Id, Codigo AS Código, Articulo as Artículo, Cantidad FROM Articulos_Componentes";

class ClsArticulosComponentesTest : public test::CatalogueTest<ClsArticulosComponentes> {
 protected:
  void add(int id, const std::string& package, const std::string& component,
           const std::string& quantity) {
    shop.run("INSERT INTO Articulos_Componentes (Id, Codigo, Articulo, Cantidad) VALUES (" +
             std::to_string(id) + ", '" + package + "', '" + component + "', " + quantity + ")");
  }
  std::string count() { return shop.text("SELECT Count(*) FROM Articulos_Componentes"); }

  ClsArticulosComponentes& components = catalogue;
};

// ---- Modes

TEST_F(ClsArticulosComponentesTest, SeleccionIsOnePackageAndAnyOtherWordIsAll) {
  add(1, "P1", "X", "2");
  add(2, "P2", "Y", "1");
  const Opened one = open("seleccion", "P2");
  EXPECT_EQ(one.statement, std::string(kTodos) + " WHERE Codigo =  'P2'");
  EXPECT_EQ(one.word, "seleccion");
  EXPECT_THAT(codes(), ElementsAre("2"));
  const Opened all = open("otra");
  EXPECT_EQ(all.statement, kTodos);
  EXPECT_EQ(all.word, "todos");
  EXPECT_THAT(fieldNames(), ElementsAre("Id", "Código", "Artículo", "Cantidad"));
}

// ---- The explosion of a package

TEST_F(ClsArticulosComponentesTest, APackageExplodesIntoItsComponentsTimesTheQuantity) {
  add(1, "P1", "X", "2");
  add(2, "P1", "Y", "0.5");
  add(3, "P2", "Z", "9");
  components.IniciaRs("seleccion", "P1");
  components.MoveLast();
  const CollectionRegistrosPtr requests = components.GetCollectionRegs("01", 3);
  ASSERT_EQ(requests->Count(), 2);
  const ClsRegistrosPtr first = requests->Item(std::int32_t{1});
  EXPECT_EQ(first->Key, "");
  EXPECT_EQ(first->Codigo, Variant("X"));
  EXPECT_EQ(first->Cantidad, Variant(6.0F));
  EXPECT_EQ(shown(first->Recibido), "0");
  EXPECT_EQ(shown(first->Lote), "0");
  EXPECT_EQ(shown(first->Precio), "0");
  EXPECT_EQ(first->Almacen, Variant("01"));
  const ClsRegistrosPtr second = requests->Item(std::int32_t{2});
  EXPECT_EQ(second->Codigo, Variant("Y"));
  EXPECT_EQ(shown(second->Cantidad), "1,5");
  EXPECT_EQ(second->Almacen, Variant("01"));
  EXPECT_EQ(components.AbsolutePosition(), 1);
}

TEST_F(ClsArticulosComponentesTest, AnArticleWithoutComponentsExplodesIntoNothing) {
  components.IniciaRs("seleccion", "P1");
  EXPECT_EQ(components.GetCollectionRegs("01", 3)->Count(), 0);
}

TEST_F(ClsArticulosComponentesTest, ASetThatStandsOnNoRowExplodesIntoNothing) {
  add(1, "P1", "X", "2");
  components.IniciaRs("seleccion", "P1");
  rows().MoveNext();
  EXPECT_EQ(components.GetCollectionRegs("01", 3)->Count(), 0);
  EXPECT_TRUE(rows().Eof());
}

// Nothing is nested and cycles do not matter.
TEST_F(ClsArticulosComponentesTest, AComponentThatIsAPackageIsOneEntry) {
  add(1, "P1", "P2", "2");
  add(2, "P2", "P1", "3");
  components.IniciaRs("seleccion", "P1");
  const CollectionRegistrosPtr requests = components.GetCollectionRegs("01", 1);
  ASSERT_EQ(requests->Count(), 1);
  EXPECT_EQ(requests->Item(std::int32_t{1})->Codigo, Variant("P2"));
}

TEST_F(ClsArticulosComponentesTest, QuantitiesAreOfSinglePrecisionAndNullIsNone) {
  add(1, "P1", "X", "0.1");
  add(2, "P1", "Y", "Null");
  components.IniciaRs("seleccion", "P1");
  const CollectionRegistrosPtr requests = components.GetCollectionRegs("01", 3);
  EXPECT_EQ(requests->Item(std::int32_t{1})->Cantidad, Variant(static_cast<float>(0.1 * 3)));
  EXPECT_EQ(requests->Item(std::int32_t{2})->Cantidad, Variant(0.0F));
}

TEST_F(ClsArticulosComponentesTest, AQuantityThatSinglePrecisionDoesNotHoldOverflows) {
  add(1, "P1", "X", "2");
  components.IniciaRs("seleccion", "P1");
  for (const double packages : {1e39, -1e39, std::numeric_limits<double>::quiet_NaN()}) {
    EXPECT_EQ(errorOf([&] { components.GetCollectionRegs("01", packages); }), errors::kOverflow);
  }
  EXPECT_EQ(components.GetCollectionRegs("01", 1e38)->Item(std::int32_t{1})->Cantidad,
            Variant(2e38F));
}

TEST_F(ClsArticulosComponentesTest, TheExplosionNeedsARecordSet) {
  EXPECT_EQ(errorOf([&] { components.GetCollectionRegs("01", 1); }), errors::kObjectNotSet);
}

TEST_F(ClsArticulosComponentesTest, ByNameTheExplosionIsAnObject) {
  add(1, "P1", "X", "2");
  components.IniciaRs("seleccion", "P1");
  std::vector<Variant> arguments = {"01", 3.0};
  const Variant given =
      ClsArticulosComponentes::component().call(components, "GetCollectionRegs", arguments);
  ASSERT_EQ(given.type(), VariantType::kObject);
  Object& requests = **given.getIf<ObjectPtr>();
  arguments = {std::int32_t{1}};
  const Variant item = CollectionRegistros::component().call(requests, "Item", arguments);
  arguments.clear();
  EXPECT_EQ(ClsRegistros::component().call(**item.getIf<ObjectPtr>(), "codigo", arguments),
            Variant("X"));
  EXPECT_EQ(signature("GetCollectionRegs"),
            "GetCollectionRegs(vIdAlm As Variant, dCant As Double) As CollectionRegistros");
}

// ---- Others

TEST_F(ClsArticulosComponentesTest, ACodeIsFreeForThePairOfComponentAndPackage) {
  add(1, "P1", "X", "2");
  EXPECT_FALSE(components.CodigoLibre("X", "P1"));
  EXPECT_EQ(statement(),
            "SELECT Articulo, Codigo FROM Articulos_Componentes  where (Articulo ='X' and "
            "Codigo='P1')");
  EXPECT_TRUE(components.CodigoLibre("P1", "X"));
}

TEST_F(ClsArticulosComponentesTest, DeleteAllDeletesTheComponentsOfOnePackage) {
  add(1, "P1", "X", "2");
  add(2, "P2", "P1", "2");
  components.DeleteAll("P1");
  EXPECT_EQ(statement(), "DELETE  FROM Articulos_Componentes WHERE (Codigo = 'P1')");
  EXPECT_EQ(count(), "1");
}

TEST_F(ClsArticulosComponentesTest, CodesAreIdsPlusOneHoweverLong) {
  EXPECT_EQ(shown(components.NuevoCodigo()), "1");
  EXPECT_EQ(statement(), "SELECT MAX(Id) AS Nuevo_Codigo FROM Articulos_Componentes");
  add(99999, "P1", "X", "1");
  components.IniciaRs();
  components.AddNew(true);
  EXPECT_EQ(field("Id"), "100000");
}

TEST_F(ClsArticulosComponentesTest, HostileTextInEveryValueChangesNothing) {
  add(1, "P1", "X", "2");
  for (const std::string& attack : test::hostileTexts()) {
    EXPECT_NE(errorOf([&] { components.CodigoLibre(attack, "P1"); }), 0);
    EXPECT_NE(errorOf([&] { components.CodigoLibre("X", attack); }), 0);
    EXPECT_NE(errorOf([&] { components.DeleteAll(attack); }), 0);
    EXPECT_NE(errorOf([&] { components.IniciaRs("seleccion", attack); }), 0);
  }
  EXPECT_EQ(count(), "1");
}

TEST_F(ClsArticulosComponentesTest, TheSlotsStandInOrder) {
  EXPECT_THAT(firstSlots(),
              ElementsAre("GetRptPath", "GetConnectionStrToRpt", "sClassName", "GetConnection",
                          "GetConnectionStr", "GetCollectionRegs", "DeleteAll", "IniciaRs",
                          "NuevoCodigo", "SeguridadPermiso", "CodigoLibre"));
}

// ---- The collection

class CollectionRegistrosTest : public testing::Test {
 protected:
  void add(const std::string& code, const std::string& key = {}) {
    requests.Add("", code, 1.0, 0.0, "", "01", 0.0, key);
  }
  std::vector<std::string> codes(const CollectionRegistros& of) {
    std::vector<std::string> all;
    for (std::int32_t i = 1; i <= of.Count(); ++i) {
      all.push_back(*of.Item(i)->Codigo.getIf<std::string>());
    }
    return all;
  }
  CollectionRegistros requests;
};

TEST_F(CollectionRegistrosTest, AddGivesTheRequestWithAllItsValues) {
  const ClsRegistrosPtr item = requests.Add("k", "A1", 1.5, 2.5, "L1", "01", 9.75, "first");
  EXPECT_EQ(item->Key, "k");
  EXPECT_EQ(item->Codigo, Variant("A1"));
  EXPECT_EQ(item->Cantidad, Variant(1.5));
  EXPECT_EQ(item->Recibido, Variant(2.5));
  EXPECT_EQ(item->Lote, Variant("L1"));
  EXPECT_EQ(item->Almacen, Variant("01"));
  EXPECT_EQ(item->Precio, Variant(9.75));
  EXPECT_EQ(requests.Item("first"), item);
  EXPECT_EQ(requests.Item(std::int32_t{1}), item);
}

TEST_F(CollectionRegistrosTest, AnObjectIsSharedNotCopied) {
  const auto lot = std::make_shared<ClsRegistros>();
  const ClsRegistrosPtr item = requests.Add("", "A1", 1.0, 0.0, ObjectPtr(lot), "01", 0.0);
  EXPECT_EQ(item->Lote, Variant(ObjectPtr(lot)));
}

TEST_F(CollectionRegistrosTest, TheKeyOfTheRequestIsNotTheKeyItIsFoundBy) {
  requests.Add("k", "A1", 1.0, 0.0, "", "01", 0.0);
  EXPECT_EQ(errorOf([&] { requests.Item("k"); }), errors::kInvalidCall);
}

TEST_F(CollectionRegistrosTest, ARequestIsChangedInItsPlace) {
  add("A1");
  requests.Item(std::int32_t{1})->Cantidad = 7.0;
  EXPECT_EQ(requests.Item(std::int32_t{1})->Cantidad, Variant(7.0));
}

TEST_F(CollectionRegistrosTest, ARepeatedKeyAddsNothing) {
  add("A1", "clave");
  EXPECT_EQ(errorOf([&] { add("A2", "CLAVE"); }), errors::kKeyAlreadyAssociated);
  EXPECT_EQ(requests.Count(), 1);
  add("A3");
  add("A4");
  EXPECT_EQ(requests.Count(), 3) << "no key at all may repeat";
}

TEST_F(CollectionRegistrosTest, WhatIsRemovedLetsTheOthersMoveUp) {
  add("A1", "a");
  add("A2", "b");
  add("A3", "c");
  requests.Remove("B");
  EXPECT_THAT(codes(requests), ElementsAre("A1", "A3"));
  requests.Remove(std::int32_t{1});
  EXPECT_THAT(codes(requests), ElementsAre("A3"));
  add("A4", "b");
  EXPECT_EQ(requests.Item("b")->Codigo, Variant("A4"));
}

TEST_F(CollectionRegistrosTest, AnEnumerationStaysAsItIsWhileTheCollectionChanges) {
  add("A1");
  add("A2");
  const CollectionRegistrosPtr all = requests.NewEnum();
  requests.Remove(std::int32_t{1});
  EXPECT_THAT(codes(*all), ElementsAre("A1", "A2"));
  EXPECT_EQ(all->Item(std::int32_t{2}), requests.Item(std::int32_t{1})) << "the items are shared";
}

TEST_F(CollectionRegistrosTest, ByNameAPropertyIsWrittenWhenAValueIsGiven) {
  const test::Shop shop;
  ClsRegistros item;
  std::vector<Variant> arguments = {"L7"};
  ClsRegistros::component().call(item, "Lote", arguments);
  EXPECT_EQ(item.Lote, Variant("L7"));
  arguments.clear();
  EXPECT_EQ(ClsRegistros::component().call(item, "Lote", arguments), Variant("L7"));
  arguments = {"clave"};
  EXPECT_EQ(ClsRegistros::component().call(item, "Key", arguments), Variant("clave"));
  EXPECT_EQ(errorOf([&] { ClsRegistros::component().call(requests, "Key", arguments); }),
            errors::kTypeMismatch);
}

}  // namespace
}  // namespace tavelor

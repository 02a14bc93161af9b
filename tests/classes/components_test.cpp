// SPDX-License-Identifier: MIT
// The component table: finding classes and calling members by name.
#include "tavelor/components.hpp"

#include <algorithm>
#include <set>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tavelor/frame/component.hpp"
#include "tavelor/reference/bancos.hpp"
#include "tests/support/shop.hpp"

namespace tavelor {
namespace {

using test::errorOf;
using testing::ElementsAre;

std::vector<std::string> memberNames(const Component& component) {
  std::vector<std::string> names;
  for (const Member& slot : component.members()) names.push_back(slot.name);
  return names;
}

TEST(Components, ClassesAreFoundByNameLibraryNameAndIdentifier) {
  const Component& byName = component("ClsBancos");
  EXPECT_EQ(&component("tavelor.clsbancos"), &byName);
  EXPECT_EQ(&component(byName.classId()), &byName);
  EXPECT_EQ(byName.make()->typeName(), "ClsBancos");
}

TEST(Components, NamesAndIdentifiersAreUnique) {
  std::set<std::string> seen;
  for (const Component* entry : components()) {
    EXPECT_TRUE(seen.insert(entry->name()).second) << entry->name();
    EXPECT_TRUE(seen.insert(entry->classId()).second) << entry->classId();
    EXPECT_EQ(entry->make()->typeName(), entry->name());
  }
}

TEST(Components, AnUnknownClassNamesTheNearest) {
  try {
    component("ClsBanco");
    FAIL();
  } catch (const Error& error) {
    EXPECT_EQ(error.number(), errors::kMemberNotFound);
    EXPECT_THAT(error.description(), testing::HasSubstr("did you mean ClsBancos?"));
  }
}

TEST(Components, TheSlotsOfClsBancosStandInOrder) {
  EXPECT_THAT(
      memberNames(ClsBancos::component()),
      ElementsAre("GetRptPath", "GetConnectionStrToRpt", "sClassName", "GetConnection",
                  "GetConnectionStr", "GetPredeterminada", "ExistePredeterminada", "GetIbanBic",
                  "GetValor", "GetWeb", "IniciaRs", "CrearBanco", "NuevoCodigo", "SeguridadPermiso",
                  "CodigoLibre", "EditingRecord", "AbsolutePosition", "AddNew", "Delete",
                  "MoveToBookmark", "Requery", "Update", "CnnBeginTrans", "CnnCommitTrans",
                  "CnnRollbackTrans", "Cancel", "MoveFirst", "MoveLast", "MoveNext", "MovePrevious",
                  "ExistenRegistros", "FindRecord", "ValidaDefinedSize", "ValidaKey", "ValidaValue",
                  "GetFilter", "AplyFilter", "CreateFilter", "SetFilter", "SetOrder", "GetOrder",
                  "GetHtmlFile", "ToHtmlGrid"));
}

TEST(Components, ASignatureShowsDirectionsTypesAndOptions) {
  const Component& banks = ClsBancos::component();
  EXPECT_EQ(banks.member("GetIbanBic").signature(),
            "GetIbanBic(vId As Variant, out sIban As String, out sBic As String, [inout objCn As "
            "Connection])");
  EXPECT_EQ(banks.member("ExistenRegistros").signature(), "ExistenRegistros() As Boolean");
  EXPECT_EQ(banks.member("sClassName").signature(), "sClassName As String");
}

TEST(Components, AnOptionShowsItsDefault) {
  EXPECT_EQ(component("ClsArticulosLotes").member("DescargarStock_V").signature(),
            "DescargarStock_V(vId As Variant, vIdLote As Variant, vCant As Variant, vRec As "
            "Variant, [bSumar As Boolean = True], [inout cnnActive As Connection])");
  EXPECT_THAT(component("ClsArticulosMovAlmacen").member("GetEntradas_Art_Fecha").signature(),
              testing::HasSubstr("[sAlmacen As String = \"*\"]"));
}

TEST(Components, AClasssOwnVersionStandsInTheFramesPlace) {
  const std::vector<std::string> banks = memberNames(ClsBancos::component());
  const std::vector<std::string> ledger = memberNames(component("ClsArticulosMovAlmacen"));
  const auto tail = [](const std::vector<std::string>& names) {
    return std::find(names.begin(), names.end(), "EditingRecord");
  };
  EXPECT_TRUE(std::equal(tail(banks), banks.end(), tail(ledger)));
  EXPECT_EQ(component("ClsArticulosMovAlmacen").member("AddNew").signature(),
            "AddNew([bDefVal As Boolean = True], [bIsInvoiced As Boolean = True])");
}

class CallTest : public testing::Test {
 protected:
  Variant call(std::string_view member, std::vector<Variant> arguments = {}) {
    Variant result = component("ClsBancos").call(*bank, member, arguments);
    left = std::move(arguments);
    return result;
  }
  test::Shop shop;
  std::unique_ptr<Object> bank = component("ClsBancos").make();
  std::vector<Variant> left;
};

TEST_F(CallTest, AMemberIsCalledByNameWithoutRegardToCase) {
  EXPECT_EQ(call("sclassname"), Variant("Bancos"));
}

TEST_F(CallTest, ArgumentsByReferenceAreWrittenBack) {
  call("GetIbanBic", {"0"});
  ASSERT_EQ(left.size(), 4U);
  EXPECT_EQ(left[1], Variant("00"));
  EXPECT_EQ(left[2], Variant("ND"));
}

// As a direct caller finds them: the code was taken before the name broke the statement.
TEST_F(CallTest, ArgumentsByReferenceAreWrittenBackWhenTheMemberRaises) {
  std::vector<Variant> arguments = {"mine", "Banca d'Or"};
  EXPECT_EQ(errorOf([&] { component("ClsBancos").call(*bank, "CrearBanco", arguments); }),
            errors::kSyntax);
  ASSERT_EQ(arguments.size(), 3U);
  EXPECT_EQ(arguments[0], Variant("00001"));
  EXPECT_EQ(arguments[2].type(), VariantType::kObject);
}

TEST_F(CallTest, AMemberTakesNoMoreArgumentsThanItHasParameters) {
  for (const Component* each : components()) {
    const std::unique_ptr<Object> object = each->make();
    for (const Member& slot : each->members()) {
      std::vector<Variant> arguments(slot.parameters.size() + 1, Variant(1));
      EXPECT_EQ(errorOf([&] { slot.call(*object, arguments); }), errors::kWrongNumberOfArguments)
          << each->name() << '.' << slot.name;
    }
  }
}

TEST_F(CallTest, AnOutputBeforeAnInputNeedsItsPlace) {
  EXPECT_EQ(errorOf([&] { call("GetOrder", {"todos"}); }), errors::kWrongNumberOfArguments);
  call("GetOrder", {{}, {}, "todos"});
  EXPECT_EQ(left[0], Variant(std::int16_t{0}));
}

TEST_F(CallTest, AFilledConnectionComesBackAndServesTheNextCall) {
  call("NuevoCodigo", {Variant()});
  ASSERT_EQ(left[0].type(), VariantType::kObject);
  const Variant connection = left[0];
  call("CodigoLibre", {"1", connection});
  EXPECT_EQ(left[1], connection);
}

TEST_F(CallTest, OptionalArgumentsMayBeLeftOut) {
  call("IniciaRs");
  EXPECT_EQ(left[0], Variant("todos"));
  EXPECT_EQ(call("ExistenRegistros"), Variant(false));
  call("AddNew", {true});
  EXPECT_EQ(call("EditingRecord"), Variant(true));
}

TEST_F(CallTest, ALeftOutOptionTakesItsDefault) {
  shop.run("INSERT INTO Articulos (Codigo, Actualizar_Stock, Medida_Compra) VALUES ('A', True, 1)");
  const std::unique_ptr<Object> articles = component("ClsArticulosAlmacenes").make();
  std::vector<Variant> arguments = {"A", "01", 0, 3};
  component("ClsArticulosAlmacenes").call(*articles, "ActualizarStock", arguments);
  EXPECT_EQ(shop.text("SELECT Cantidad FROM Articulos_Almacenes"), "3");
  arguments = {"A", "01", 0, 5, false};
  component("ClsArticulosAlmacenes").call(*articles, "ActualizarStock", arguments);
  EXPECT_EQ(shop.text("SELECT Cantidad FROM Articulos_Almacenes"), "-2");
}

TEST_F(CallTest, MistakesAreNamed) {
  EXPECT_EQ(errorOf([&] { call("GetValores", {"1"}); }), errors::kMemberNotFound);
  EXPECT_EQ(errorOf([&] { call("GetValor"); }), errors::kWrongNumberOfArguments);
  EXPECT_EQ(errorOf([&] { call("GetValor", {"1", {}, {}}); }), errors::kWrongNumberOfArguments);
  EXPECT_EQ(errorOf([&] { call("AddNew", {"quizás"}); }), errors::kTypeMismatch);
  EXPECT_EQ(errorOf([&] { call("GetValor", {"1", "no connection"}); }), errors::kTypeMismatch);
}

}  // namespace
}  // namespace tavelor

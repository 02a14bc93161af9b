// SPDX-License-Identifier: MIT
// Criteria from controls, filters and orders.
#include <array>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tavelor/services/list_config.hpp"
#include "tavelor/services/registry_tree.hpp"
#include "tests/frame/sample.hpp"
#include "tests/services/faults.hpp"
#include "tests/support/form.hpp"

namespace tavelor {
namespace {

using test::BoundCombo;
using test::CheckBox;
using test::ComboBox;
using test::errorOf;
using test::ListBox;
using test::OptionButton;
using test::TextBox;
using testing::ElementsAre;
using testing::IsEmpty;

class FiltersTest : public testing::Test {
 protected:
  FiltersTest() {
    shop.run(
        "INSERT INTO Muestras (Codigo, Nombre, Numero, Precio, Activo, Fecha) VALUES "
        "('1', 'Caja', 3, 1.5, True, #12/31/2026#)");
    shop.run(
        "INSERT INTO Muestras (Codigo, Nombre, Numero, Precio, Activo, Fecha) VALUES "
        "('2', 'Banco', 10, 2.5, False, #01/02/2027#)");
    shop.run("INSERT INTO Muestras (Codigo, Nombre, Numero, Precio) VALUES ('3', 'cajón', 4, 0)");
    sample.IniciaRs();
    shop.statements();
  }

  template <typename Ctl>
  std::string criterion(Ctl&& control, std::string_view iType = {}) {
    return sample.CreateFilter(control, iType);
  }
  /// Codes of the rows that are left.
  std::vector<std::string> applied(const std::string& criteria) {
    sample.AplyFilter(criteria);
    std::vector<std::string> found;
    Recordset& rows = *sample.DataMember("Primary");
    for (; !rows.Eof(); rows.MoveNext()) found.push_back(rows.Field(0).Value().toText(locale()));
    return found;
  }
  const Locale& locale() { return shop.apartment().locale(); }
  std::string sort() { return sample.DataMember("Primary")->Sort(); }

  test::SampleShop shop;
  test::Sample sample;
};

// ---- CreateFilter on booleans

TEST_F(FiltersTest, ATickedCheckBoxOnABooleanIsNotZero) {
  EXPECT_EQ(criterion(CheckBox("Activo", 1)), "Activo <> 0 ");
  EXPECT_THAT(applied("Activo <> 0 "), ElementsAre("1"));
}

// On a number the same box gives a criterion: forms tell "no" from "any" by the field's type.
TEST_F(FiltersTest, ACheckBoxThatIsNotTickedIsEmptyOnABooleanAndItsValueOnANumber) {
  EXPECT_EQ(criterion(CheckBox("Activo", 0)), "");
  EXPECT_EQ(criterion(CheckBox("Numero", 0)), "Numero = 0 ");
  EXPECT_EQ(criterion(CheckBox("Precio", 0)), "Precio = 0 ");
}

TEST_F(FiltersTest, AGreyedCheckBoxIsEmptyOnEveryField) {
  EXPECT_EQ(criterion(CheckBox("Activo", 2)), "");
  EXPECT_EQ(criterion(CheckBox("Numero", 2)), "");
}

TEST_F(FiltersTest, ATextBoxOnABooleanTakesTheOtherOperator) {
  EXPECT_EQ(criterion(TextBox("Activo", "True")), "Activo = True ");
  EXPECT_EQ(criterion(TextBox("Activo", "0"), "1"), "Activo >= 0 ");
  EXPECT_EQ(criterion(TextBox("Activo", "0"), "2"), "Activo <= 0 ");
  EXPECT_EQ(criterion(TextBox("Activo", "")), "");
}

TEST_F(FiltersTest, AnyOtherControlOnABooleanGivesItsTextForZeroAndOne) {
  EXPECT_EQ(criterion(OptionButton("Activo", 1)), "Activo = 1 ");
  EXPECT_EQ(criterion(OptionButton("Activo", 0), "1"), "Activo = 0 ") << "whatever the type asked";
  EXPECT_EQ(criterion(OptionButton("Activo", 2)), "");
}

// ---- On numbers

TEST_F(FiltersTest, ATickedCheckBoxOnANumberIsNotZero) {
  EXPECT_EQ(criterion(CheckBox("Numero", 1)), "Numero <> 0 ");
  EXPECT_EQ(criterion(CheckBox("Precio", 1), "1"), "Precio <> 0 ");
}

TEST_F(FiltersTest, AnyOtherControlOnANumberGivesItsText) {
  EXPECT_EQ(criterion(TextBox("Numero", "3")), "Numero = 3 ");
  EXPECT_EQ(criterion(TextBox("Numero", "3"), "1"), "Numero >= 3 ");
  EXPECT_EQ(criterion(ComboBox("Precio", "1.5"), "2"), "Precio <= 1.5 ");
  EXPECT_EQ(criterion(OptionButton("Numero", 1)), "Numero = 1 ");
  EXPECT_EQ(criterion(TextBox("Numero", "")), "");
  EXPECT_THAT(applied(criterion(TextBox("Numero", "4"), "1")), ElementsAre("2", "3"));
  EXPECT_THAT(applied(criterion(TextBox("Precio", "1.5"), "2")), ElementsAre("1", "3"));
}

// ---- On text

TEST_F(FiltersTest, ATextBoxOnATextLooksForTheBeginning) {
  EXPECT_EQ(criterion(TextBox("Nombre", "Caj")), "Nombre Like 'Caj*' ");
  EXPECT_THAT(applied("Nombre Like 'Caj*' "), ElementsAre("1", "3"));
}

TEST_F(FiltersTest, AnAliasIsTheNameInTheCriterion) {
  EXPECT_EQ(criterion(TextBox("código", "1")), "Código Like '1*' ");
  EXPECT_THAT(applied("Código Like '1*' "), ElementsAre("1"));
}

TEST_F(FiltersTest, AComboBoxOnATextDoesTheSame) {
  EXPECT_EQ(criterion(ComboBox("Nombre", "Caja")), "Nombre Like 'Caja*' ");
}

TEST_F(FiltersTest, ABoundComboGivesItsCodeWithoutAWildcard) {
  EXPECT_EQ(criterion(BoundCombo("Nombre", "La caja", "Caja")), "Nombre Like 'Caja' ");
  EXPECT_EQ(criterion(BoundCombo("Nombre", "La caja", "Caja"), "2"), "Nombre <= 'Caja' ");
  EXPECT_EQ(criterion(BoundCombo("Nombre", "", "Caja")), "") << "the text decides, not the code";
}

// The wildcard makes no sense behind >= and <=, and filters stored by forms carry it: it stays.
TEST_F(FiltersTest, TypeOneAndTwoOnATextKeepTheWildcardInsideTheQuotes) {
  EXPECT_EQ(criterion(TextBox("Nombre", "C"), "1"), "Nombre >= 'C*' ");
  EXPECT_EQ(criterion(TextBox("Nombre", "C"), "2"), "Nombre <= 'C*' ");
  EXPECT_EQ(criterion(ComboBox("Nombre", "C"), "1"), "Nombre >= 'C*' ");
  EXPECT_THAT(applied("Nombre >= 'C*' "), ElementsAre("1", "3"));
}

TEST_F(FiltersTest, TypesCompareAsTextAndAnyOtherMeansLikeOrEqual) {
  for (const char* type : {"", "0", "3", "01", " 1", "uno"}) {
    EXPECT_EQ(criterion(TextBox("Nombre", "C"), type), "Nombre Like 'C*' ") << type;
    EXPECT_EQ(criterion(TextBox("Numero", "1"), type), "Numero = 1 ") << type;
  }
}

TEST_F(FiltersTest, AnEmptyControlGivesAnEmptyCriterion) {
  EXPECT_EQ(criterion(TextBox("Nombre", "")), "");
  EXPECT_EQ(criterion(ComboBox("Nombre", "")), "");
  EXPECT_EQ(criterion(TextBox("Fecha", "")), "");
  EXPECT_EQ(criterion(ListBox("Nombre", {})), "");
  EXPECT_EQ(criterion(ListBox("Numero", {})), "");
  EXPECT_EQ(criterion(ListBox("Activo", {})), "");
}

TEST_F(FiltersTest, QuotesInTheTextAreNotEscapedAndTheFilterRefusesThem) {
  const std::string broken = criterion(TextBox("Nombre", "O'Hara"));
  EXPECT_EQ(broken, "Nombre Like 'O'Hara*' ");
  sample.AplyFilter("Código = '2'");
  EXPECT_EQ(errorOf([&] { sample.AplyFilter(broken); }), errors::kInvalidArgument);
  EXPECT_EQ(sample.DataMember("Primary")->Filter(), "Código = '2'") << "the old filter stays";
}

// ---- On anything else

TEST_F(FiltersTest, ADateStandsBetweenItsDelimiters) {
  EXPECT_EQ(criterion(TextBox("Fecha", "31/12/2026")), "Fecha = #31/12/2026# ");
  EXPECT_EQ(criterion(TextBox("Fecha", "31/12/2026"), "1"), "Fecha >= #31/12/2026# ");
  EXPECT_THAT(applied("Fecha >= #12/31/2026# "), ElementsAre("1", "2"));
  EXPECT_THAT(applied("Fecha <= #12/31/2026# "), ElementsAre("1"));
  EXPECT_THAT(applied("Fecha = #1/2/2027# "), ElementsAre("2")) << "month, day, year";
  EXPECT_THAT(applied("Fecha = #31/12/2026# "), ElementsAre("1")) << "there is no 31st month";
}

// Short numbers, amounts and memos go the way of dates. Which columns a form filters by is settled
// with that in mind, so it is not mended here.
TEST_F(FiltersTest, WhateverIsNoBooleanLongDoubleOrTextIsTakenForADate) {
  EXPECT_EQ(criterion(TextBox("Corto", "3")), "Corto = #3# ");
  EXPECT_EQ(criterion(TextBox("Dinero", "3")), "Dinero = #3# ");
  EXPECT_EQ(criterion(TextBox("Notas", "x")), "Notas = #x# ");
  EXPECT_EQ(criterion(CheckBox("Corto", 1)), "Corto = #1# ");
  for (const char* refused : {"Corto = #3# ", "Dinero = #3# "}) {
    EXPECT_EQ(errorOf([&] { sample.AplyFilter(refused); }), errors::kCriteriaTypeMismatch);
  }
}

// ---- List boxes

TEST_F(FiltersTest, AListBoxMakesATermOfEachEntryAndMovesItsSelection) {
  ListBox names("Nombre", {"Caja", "Banco"});
  EXPECT_EQ(criterion(names), "Nombre Like 'Caja'  Or Nombre Like 'Banco' ");
  EXPECT_EQ(names.selected(), 1) << "the last entry was selected to be read";
  EXPECT_THAT(applied("Nombre Like 'Caja'  Or Nombre Like 'Banco' "), ElementsAre("1", "2"));
}

TEST_F(FiltersTest, AListBoxOnANumberOrABooleanHasTwoBlanksBeforeEachEntry) {
  EXPECT_EQ(criterion(ListBox("Numero", {"3", "4"})), "Numero =  3  Or Numero =  4 ");
  EXPECT_EQ(criterion(ListBox("Numero", {"3"}), "1"), "Numero >=  3 ");
  EXPECT_EQ(criterion(ListBox("Activo", {"1", "0"})), "Activo =  1  Or Activo =  0 ");
  EXPECT_THAT(applied("Numero =  3  Or Numero =  4 "), ElementsAre("1", "3"));
}

// ---- Joining is the caller's

TEST_F(FiltersTest, TheCallerJoinsCriteria) {
  const std::string joined =
      criterion(TextBox("Nombre", "Caj")) + "And " + criterion(CheckBox("Activo", 1));
  EXPECT_THAT(applied(joined), ElementsAre("1"));
}

// ---- Controls that cannot serve

TEST_F(FiltersTest, AControlWithoutAFieldOrWithAnUnknownOneFailsInThePlatform) {
  for (const char* field : {"", "Ninguno", "Codigo"}) {
    EXPECT_EQ(errorOf([&] { criterion(TextBox(field, "x")); }), errors::kItemNotFound) << field;
  }
}

TEST_F(FiltersTest, AControlThatLacksAPropertyOfItsKindIsNamedByItsField) {
  struct Bare final : test::FormControl {
    using FormControl::FormControl;
  };
  for (const auto& [kind, field] : {std::pair{ControlKind::kCheckBox, "Activo"},
                                    {ControlKind::kOther, "Activo"},
                                    {ControlKind::kListBox, "Nombre"},
                                    {ControlKind::kBoundCombo, "Nombre"}}) {
    Bare control(kind, field, "x");
    try {
      sample.CreateFilter(control);
      ADD_FAILURE() << field;
    } catch (const Error& error) {
      EXPECT_EQ(error.number(), errors::kMemberNotFound);
      EXPECT_THAT(error.description(), testing::HasSubstr(field));
    }
  }
  EXPECT_EQ(errorOf([] { Bare(ControlKind::kOther, "x").ListIndex(0); }), errors::kMemberNotFound);
}

TEST_F(FiltersTest, BeforeIniciaRsThereIsNothingToFilter) {
  test::Sample unopened;
  TextBox box("Nombre", "x");
  EXPECT_EQ(errorOf([&] { unopened.CreateFilter(box); }), errors::kObjectNotSet);
  EXPECT_EQ(errorOf([&] { unopened.AplyFilter(""); }), errors::kObjectNotSet);
  EXPECT_EQ(errorOf([&] { unopened.SetOrder(0, "", "todos"); }), errors::kObjectNotSet);
}

// ---- AplyFilter

TEST_F(FiltersTest, AplyFilterOfAnEmptyTextClearsTheFilter) {
  EXPECT_THAT(applied("Código = '2'"), ElementsAre("2"));
  EXPECT_THAT(applied(""), ElementsAre("1", "2", "3"));
}

TEST_F(FiltersTest, AFilterOnAnUnknownColumnIsRefusedAndTheOldOneStays) {
  sample.AplyFilter("Código = '2'");
  EXPECT_EQ(errorOf([&] { sample.AplyFilter("Ninguna = 1"); }), errors::kItemNotFound);
  EXPECT_EQ(sample.DataMember("Primary")->RecordCount(), 1);
}

// ---- GetFilter, SetFilter

TEST_F(FiltersTest, AFilterNeverStoredIsEmpty) {
  EXPECT_EQ(sample.GetFilter("Filter"), "");
  EXPECT_EQ(sample.GetFilter(""), "");
}

TEST_F(FiltersTest, AFilterIsRememberedUnderClassAndKeyAndTheRecordSetStaysAsItIs) {
  sample.SetFilter("Código = 'ñ'", "Filter");
  sample.SetFilter("otra", "lista");
  EXPECT_EQ(sample.GetFilter("Filter"), "Código = 'ñ'");
  EXPECT_EQ(sample.GetFilter("lista"), "otra");
  EXPECT_EQ(test::Sample(test::kOtherInfo).GetFilter("Filter"), "") << "another class";
  EXPECT_EQ(sample.DataMember("Primary")->RecordCount(), 3);
  EXPECT_THAT(shop.statements(), IsEmpty());
  sample.SetFilter("", "Filter");
  EXPECT_EQ(sample.GetFilter("Filter"), "");
}

TEST_F(FiltersTest, SettingsLieUnderTheKeyOfTheClassAndTheWord) {
  sample.SetFilter("Código = '2'", "Filter");
  sample.SetOrder(1, " DESC", "lista");
  RegistryTree& tree = shop.apartment().registry();
  const std::string root = "SOFTWARE\\Merivan\\Tavelor\\1.0\\Configuracion\\registros\\Muestras\\";
  EXPECT_EQ(tree.get(root + "Filter\\", "Criteria"), "Código = '2'");
  EXPECT_EQ(tree.get(root + "lista\\", "IndexOrderField"), "1");
  EXPECT_EQ(tree.get(root + "lista\\", "Mode"), " DESC");
}

// ---- GetOrder, SetOrder

TEST_F(FiltersTest, GetOrderOnANewInstallationIsTheFirstColumnAscending) {
  std::int16_t index = 7;
  std::string mode = "x";
  sample.GetOrder(index, mode, "nunca");
  EXPECT_EQ(index, 0);
  EXPECT_EQ(mode, "");
}

TEST_F(FiltersTest, AnOrderIsRememberedForEachWord) {
  sample.SetOrder(3, " DESC", "lista");
  EXPECT_EQ(sort(), "Numero DESC");
  std::int16_t index = 0;
  std::string mode;
  sample.GetOrder(index, mode, "LISTA");
  EXPECT_EQ(index, 3) << "registry keys do not care about case";
  EXPECT_EQ(mode, " DESC");
  sample.GetOrder(index, mode, "todos");
  EXPECT_EQ(index, 0);
}

TEST_F(FiltersTest, SetOrderOnAnEmptyRecordSetStoresNothing) {
  sample.SetOrder(1, " DESC", "todos");
  sample.AplyFilter("Código = 'ninguno'");
  sample.SetOrder(0, "", "todos");
  std::int16_t index = 0;
  std::string mode;
  sample.GetOrder(index, mode, "todos");
  EXPECT_EQ(index, 1);
  EXPECT_EQ(mode, " DESC");
}

TEST_F(FiltersTest, AnIndexOutOfRangeIsRefusedAndNothingIsStored) {
  sample.SetOrder(1, "", "todos");
  for (const std::int16_t index : std::array<std::int16_t, 3>{-1, 10, 32'767}) {
    EXPECT_EQ(errorOf([&] { sample.SetOrder(index, "", "todos"); }), errors::kItemNotFound);
  }
  EXPECT_EQ(sort(), "Nombre");
  std::int16_t index = 0;
  std::string mode;
  sample.GetOrder(index, mode, "todos");
  EXPECT_EQ(index, 1);
}

TEST_F(FiltersTest, AStoredOrderThatIsNoNumberFailsAsInThePlatform) {
  shop.apartment().registry().set(
      "SOFTWARE\\Merivan\\Tavelor\\1.0\\Configuracion\\registros\\Muestras\\roto",
      "IndexOrderField", "primero");
  std::int16_t index = 0;
  std::string mode;
  EXPECT_EQ(errorOf([&] { sample.GetOrder(index, mode, "roto"); }), errors::kTypeMismatch);
}

// SetOrder takes any word: here that of rows with fewer columns than those it sorts.
TEST_F(FiltersTest, AnOrderThatDoesNotFitTheRowsIsForgottenWhenTheyAreOpened) {
  sample.SetOrder(3, " DESC", "corto");
  for (int i = 0; i < 2; ++i) {
    std::string word = "corto";
    sample.IniciaRs(word);
    EXPECT_EQ(sort(), i == 0 ? "" : "Código");
    EXPECT_EQ(sample.DataMember("Primary")->RecordCount(), 3);
    std::int16_t index = 9;
    std::string mode = "x";
    sample.GetOrder(index, mode, "corto");
    EXPECT_EQ(index, 0);
    EXPECT_EQ(mode, "");
  }
}

TEST_F(FiltersTest, AStoredOrderThatDoesNotReadIsForgottenWhenTheRowsAreOpened) {
  const auto store = [&](std::string_view name, std::string_view text) {
    shop.apartment().registry().set(
        "SOFTWARE\\Merivan\\Tavelor\\1.0\\Configuracion\\registros\\Muestras\\todos", name, text);
  };
  for (const char* index : {"primero", "", "99999999999", "-1", "10"}) {
    store("IndexOrderField", index);
    sample.IniciaRs();
    EXPECT_EQ(sort(), "") << index;
  }
  store("Mode", " HACIA ARRIBA");
  sample.IniciaRs();
  EXPECT_EQ(sort(), "");
  sample.IniciaRs();
  EXPECT_EQ(sort(), "Código");
}

// ---- Programs of one installation

// Both keep it open all the time.
TEST(Filters, WhatTwoProcessesStoreIsSeenByBoth) {
  const test::TemporaryFolder folder;
  const auto shop = folder.path() / "shop";
  Installation::create(shop, test::fastSettings())
      ->addToSchema(1, "CREATE TABLE Muestras (Codigo TEXT(5), Nombre TEXT(20))");
  static constexpr std::array kShort = {Mode{kAnyOtherWord, "SELECT Codigo, Nombre FROM Muestras"}};
  static constexpr ClassInfo kInfo = {.word = "Muestras", .table = "Muestras", .modes = kShort};
  const auto await = [](auto&& condition) {
    if (!test::eventually(condition)) raise(errors::kUnspecified, "test", "it never came");
  };
  const auto orderIs = [](const RecordClass& sample, std::int16_t index, std::string_view mode) {
    std::int16_t storedIndex = -1;
    std::string storedMode;
    sample.GetOrder(storedIndex, storedMode, "todos");
    return storedIndex == index && storedMode == mode;
  };

  test::Child first([&] {
    Apartment apartment(Installation::open(shop));
    test::Sample sample(kInfo);
    ConnectionPtr own;
    DataSession().Execute(1, Statement("INSERT INTO Muestras (Codigo) VALUES ('1')"), own);
    sample.IniciaRs();
    sample.SetOrder(1, " DESC", "todos");
    sample.SetFilter("Codigo = '1'", "Filter");
    await([&] { return sample.GetFilter("Filter") == "Codigo = '2'"; });
    if (!orderIs(sample, 0, " ASC")) raise(errors::kUnspecified, "test", "another order");
  });
  test::Child second([&] {
    Apartment apartment(Installation::open(shop));
    test::Sample sample(kInfo);
    await([&] { return sample.GetFilter("Filter") == "Codigo = '1'"; });
    if (!orderIs(sample, 1, " DESC")) raise(errors::kUnspecified, "test", "another order");
    sample.IniciaRs();
    sample.SetOrder(0, " ASC", "todos");
    sample.SetFilter("Codigo = '2'", "Filter");
  });
  EXPECT_TRUE(first.wait());
  EXPECT_TRUE(second.wait());
}

}  // namespace
}  // namespace tavelor

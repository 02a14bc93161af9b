// SPDX-License-Identifier: MIT
// ClsTicketsLineas: totals, receipts and collections.
#include "tavelor/articles/registros.hpp"
#include "tavelor/sales/registros_tickets.hpp"
#include "tests/classes/sales/lineas.hpp"

namespace tavelor {
namespace {

using test::errorOf;
using testing::ElementsAre;
using testing::IsEmpty;

class ClsTicketsLineasSumasTest : public testing::Test, protected test::LineShop {
 protected:
  ClsTicketsLineasSumasTest() = default;
  explicit ClsTicketsLineasSumasTest(const Settings& settings) : LineShop(settings) {}

  struct Sums {
    double base = 0;
    double tax = 0;
    double surcharge = 0;
  };
  Sums sums(bool taxIncluded, bool surcharges = false) {
    open();
    Sums of;
    lines.SumaCol(taxIncluded, of.base, of.tax, of.surcharge, surcharges);
    return of;
  }
  /// An article whose tax has that surcharge.
  void surcharged(const std::string& code, const std::string& tax, const std::string& surcharge) {
    shop.run("INSERT INTO TIPOS_IMPUESTO (Codigo, Impuesto, Recargo) VALUES ('" + tax + "', 21, " +
             surcharge + ")");
    shop.run("INSERT INTO Articulos (Codigo, Impuesto) VALUES ('" + code + "', '" + tax + "')");
  }
  std::vector<std::string> receipt() {
    open();
    return shown(lines.GetCollectionLin());
  }
};

// ---- SumaCol

TEST_F(ClsTicketsLineasSumasTest, ALineOf121WithTaxIncludedIs100And21) {
  store({.amount = "121"});
  const Sums of = sums(true);
  EXPECT_EQ(of.base, 100);
  EXPECT_EQ(of.tax, 21);
  EXPECT_EQ(of.surcharge, 0);
}

TEST_F(ClsTicketsLineasSumasTest, ALineOf100WithTaxOnTopIs100And21) {
  store({.amount = "100"});
  const Sums of = sums(false);
  EXPECT_EQ(of.base, 100);
  EXPECT_EQ(of.tax, 21);
}

TEST_F(ClsTicketsLineasSumasTest, ANullRateAddsNoTaxAndTheBaseTakesTheWholeAmount) {
  store({.rate = "Null", .amount = "121"});
  for (const bool included : {true, false}) {
    const Sums of = sums(included);
    EXPECT_EQ(of.base, 121);
    EXPECT_EQ(of.tax, 0);
  }
}

TEST_F(ClsTicketsLineasSumasTest, ANullAmountCountsAsZero) {
  store({.id = 1, .amount = "Null"});
  store({.id = 2, .amount = "10"});
  const Sums of = sums(false);
  EXPECT_EQ(of.base, 10);
  EXPECT_EQ(of.tax, 2.1);
}

TEST_F(ClsTicketsLineasSumasTest, NoLinesChangeNothing) {
  open();
  Sums of{1, 2, 3};
  lines.SumaCol(true, of.base, of.tax, of.surcharge, true);
  EXPECT_EQ(of.base, 1);
  EXPECT_EQ(of.tax, 2);
  EXPECT_EQ(of.surcharge, 3);
}

TEST_F(ClsTicketsLineasSumasTest, LinesAreAddedToWhatTheCallerPasses) {
  store({.amount = "100"});
  open();
  Sums of{1000, 200, 3};
  lines.SumaCol(false, of.base, of.tax, of.surcharge, false);
  EXPECT_EQ(of.base, 1100);
  EXPECT_EQ(of.tax, 221);
  EXPECT_EQ(of.surcharge, 3);
}

// The base of 9.99 is 8.2562 before and 8.26 after its tax of 1.7338 is rounded to 1.73.
TEST_F(ClsTicketsLineasSumasTest, TaxInsideAnAmountIsRoundedBeforeTheBaseIsTaken) {
  store({.amount = "9.99"});
  const Sums of = sums(true);
  EXPECT_EQ(of.tax, 1.73);
  EXPECT_EQ(of.base, 8.26);
}

// Tax on top keeps its decimals and the base does not: whoever rounds both breaks the totals of
// receipts that are printed already.
TEST_F(ClsTicketsLineasSumasTest, TaxOnTopIsNotRoundedAndTheBaseIs) {
  store({.amount = "9.995"});
  const Sums of = sums(false);
  EXPECT_EQ(of.base, 10);
  EXPECT_EQ(of.tax, 9.995 * 21 / 100);
}

TEST_F(ClsTicketsLineasSumasTest, HalvesGoAwayFromZeroInEachLine) {
  store({.id = 1, .rate = "0", .amount = "1.005"});
  store({.id = 2, .rate = "0", .amount = "1.005"});
  EXPECT_EQ(sums(false).base, 2.02);
}

TEST_F(ClsTicketsLineasSumasTest, TheSurchargeIsThatOfEachLinesArticleAndIsNotRounded) {
  surcharged("A1", "01", "5.2");
  surcharged("A2", "02", "1.4");
  store({.id = 1, .code = "'A1'", .amount = "9.99"});
  store({.id = 2, .code = "'A2'", .amount = "3.33"});
  EXPECT_DOUBLE_EQ(sums(false, true).surcharge, 5.2 * 9.99 / 100 + 1.4 * 3.33 / 100);
  EXPECT_EQ(sums(false, false).surcharge, 0);
}

TEST_F(ClsTicketsLineasSumasTest, TheSurchargeIsTakenOfTheAmountWithoutItsTax) {
  surcharged("A1", "01", "5.2");
  store({.amount = "121"});
  EXPECT_DOUBLE_EQ(sums(true, true).surcharge, 5.2);
}

TEST_F(ClsTicketsLineasSumasTest, TheSurchargeIsAskedForEachLine) {
  surcharged("A1", "01", "5.2");
  store({.id = 1});
  store({.id = 2});
  open();
  shop.statements();
  Sums of;
  lines.SumaCol(false, of.base, of.tax, of.surcharge, true);
  const auto asked = shop.statements();
  EXPECT_EQ(asked.size(), 4U) << "the tax of the article and its surcharge, twice";
  EXPECT_THAT(asked, testing::Each(testing::Not(testing::HasSubstr("Tickets"))));
}

TEST_F(ClsTicketsLineasSumasTest, AFailedSurchargeLeavesTheSumsPartlyAdded) {
  surcharged("A1", "01", "5.2");
  store({.id = 1, .code = "'A1'", .amount = "100"});
  store({.id = 2, .code = "'A''2'", .amount = "50"});
  open();
  Sums of;
  EXPECT_EQ(errorOf([&] { lines.SumaCol(false, of.base, of.tax, of.surcharge, true); }),
            errors::kSyntax);
  EXPECT_EQ(of.base, 100);
  EXPECT_EQ(of.tax, 21);
  EXPECT_DOUBLE_EQ(of.surcharge, 5.2);
}

TEST_F(ClsTicketsLineasSumasTest, TheCallersPositionStays) {
  store({.id = 1});
  store({.id = 2});
  open();
  lines.MoveNext();
  double sum = 0;
  lines.SumaCol(false, sum, sum, sum, false);
  lines.GetCollectionLin();
  EXPECT_EQ(lines.AbsolutePosition(), 2);
}

TEST_F(ClsTicketsLineasSumasTest, PendingLinesCount) {
  store({.amount = "100"});
  open();
  lines.AddNew(true);
  rows().Field("Importe").Value(50.0);
  rows().Update();
  Sums of;
  lines.SumaCol(false, of.base, of.tax, of.surcharge, false);
  EXPECT_EQ(of.base, 150);
  EXPECT_EQ(of.tax, 21);
}

class FourDecimalsTest : public ClsTicketsLineasSumasTest {
 protected:
  FourDecimalsTest() : ClsTicketsLineasSumasTest(settings()) {}
  static Settings settings() {
    Settings of = test::fastSettings();
    of.quantityFormat = "#,##0.0000";
    return of;
  }
};

TEST_F(FourDecimalsTest, TheMaskOfQuantitiesRoundsNotThatOfAmounts) {
  store({.amount = "9.99"});
  const Sums of = sums(true);
  EXPECT_EQ(of.tax, 1.7338);
  EXPECT_EQ(of.base, 8.2562);
}

// ---- Receipts

TEST_F(ClsTicketsLineasSumasTest, ALineOfAReceiptIsQuantityDescriptionAndAmount) {
  store({.description = "'Pan'", .quantity = "2", .amount = "12.5"});
  EXPECT_THAT(receipt(), ElementsAre("   2 Pan                  12,5"));
}

TEST_F(ClsTicketsLineasSumasTest, ADiscountSharesTheColumnsOfTheAmount) {
  store({.description = "'Pan'", .quantity = "2", .discount = "10", .amount = "12.5"});
  EXPECT_THAT(receipt(), ElementsAre("   2 Pan              10% 12,5"));
}

TEST_F(ClsTicketsLineasSumasTest, NoDiscountHasNoPercentSign) {
  store({.id = 1, .discount = "0"});
  store({.id = 2, .discount = "Null"});
  for (const std::string& line : receipt()) EXPECT_EQ(line.find('%'), std::string::npos) << line;
}

TEST_F(ClsTicketsLineasSumasTest, ADescriptionOfTwentyCharactersPrintsFifteen) {
  store({.description = "'ABCDEFGHIJKLMNOPQRST'"});
  EXPECT_THAT(receipt(), ElementsAre("   1 ABCDEFGHIJKLMNO       100"));
}

TEST_F(ClsTicketsLineasSumasTest, ColumnsAreCharactersNotBytes) {
  store({.id = 1, .description = "'Piñón añejo ñññññññ'"});
  store({.id = 2, .description = "'Ñu'"});
  EXPECT_THAT(receipt(),
              ElementsAre("   1 Piñón añejo ñññ       100", "   1 Ñu                    100"));
}

TEST_F(ClsTicketsLineasSumasTest, WhatIsWiderThanItsColumnsIsNotCut) {
  store({.quantity = "12345", .discount = "33.33", .amount = "123456.78"});
  EXPECT_THAT(receipt(), ElementsAre("12345 Café molido     33,33%123456,78"));
}

TEST_F(ClsTicketsLineasSumasTest, AQuantityHasSinglePrecision) {
  store({.quantity = "0.123456789"});
  EXPECT_THAT(receipt(), ElementsAre("0,1234568 Café molido           100"));
}

TEST_F(ClsTicketsLineasSumasTest, AQuantityThatSinglePrecisionDoesNotHoldIsRefused) {
  store({.quantity = "1e39"});
  EXPECT_EQ(errorOf([&] { receipt(); }), errors::kOverflow);
}

TEST_F(ClsTicketsLineasSumasTest, NullsOfAReceiptAreZeroAndBlank) {
  store({.description = "Null", .quantity = "Null", .amount = "Null"});
  EXPECT_THAT(receipt(), ElementsAre("   0                         0"));
}

TEST_F(ClsTicketsLineasSumasTest, AReceiptWithoutLinesIsEmpty) {
  EXPECT_THAT(receipt(), IsEmpty());
}

TEST_F(ClsTicketsLineasSumasTest, TheTaxesOfAReceiptAreALineARate) {
  store({.id = 1, .rate = "21", .amount = "121"});
  store({.id = 2, .rate = "21", .amount = "12.1"});
  store({.id = 3, .rate = "5.2", .amount = "9.99"});
  store({.id = 4, .ticket = "9", .rate = "10", .amount = "10"});
  shop.statements();
  const auto with = shown(lines.GetCollectionLinImpuestos(std::int32_t{1234}, true));
  EXPECT_THAT(shop.statements(),
              ElementsAre("SELECT IVA, Sum(Tickets_Lineas.Importe) AS SumaDeImporte From "
                          "Tickets_Lineas GROUP BY IVA, Numero HAVING (((Numero)=1234));"));
  EXPECT_THAT(with, testing::UnorderedElementsAre("  21% IVA de       110     23,1",
                                                  " 5,2% IVA de       9,5     0,49"));
  EXPECT_THAT(shown(lines.GetCollectionLinImpuestos(std::int32_t{1234}, false)),
              testing::UnorderedElementsAre("  21% IVA de     133,1    27,95",
                                            " 5,2% IVA de      9,99     0,52"));
}

class WholeQuantitiesTest : public ClsTicketsLineasSumasTest {
 protected:
  WholeQuantitiesTest() : ClsTicketsLineasSumasTest(settings()) {}
  static Settings settings() {
    Settings of = test::fastSettings();
    of.quantityFormat = "#,##0";
    return of;
  }
};

// The tax is taken of the base as the mask of quantities leaves it, before that of amounts.
TEST_F(WholeQuantitiesTest, ABaseThatHadToBeComputedIsRoundedByTheMaskOfQuantitiesFirst) {
  store({.rate = "21", .amount = "9.99"});
  EXPECT_THAT(shown(lines.GetCollectionLinImpuestos(std::int32_t{1234}, true)),
              ElementsAre("  21% IVA de         8     1,68"));
  EXPECT_THAT(shown(lines.GetCollectionLinImpuestos(std::int32_t{1234}, false)),
              ElementsAre("  21% IVA de      9,99      2,1"));
}

// A base of 0,0240 gives a tax of 0,00504; one of 0,02 would give none.
TEST_F(FourDecimalsTest, TheTaxOfAReceiptIsTakenBeforeTheBaseIsRoundedAsAnAmount) {
  store({.rate = "21", .amount = "0.029"});
  EXPECT_THAT(shown(lines.GetCollectionLinImpuestos(std::int32_t{1234}, true)),
              ElementsAre("  21% IVA de      0,02     0,01"));
}

// 5,2 is a little less in single precision, which ten million show: 520000 would be the tax.
TEST_F(ClsTicketsLineasSumasTest, ARateOfAReceiptHasSinglePrecision) {
  store({.rate = "5.2", .amount = "10000000"});
  EXPECT_THAT(shown(lines.GetCollectionLinImpuestos(std::int32_t{1234}, false)),
              ElementsAre(" 5,2% IVA de  10000000519999,98"));
}

TEST_F(ClsTicketsLineasSumasTest, ATicketWithoutLinesHasNoTaxes) {
  EXPECT_THAT(lines.GetCollectionLinImpuestos(std::int32_t{1}, true), IsEmpty());
}

// ---- Collections

TEST_F(ClsTicketsLineasSumasTest, RequestsToTheStockHaveNothingAgainstTheQuantity) {
  store({.id = 1, .code = "'A1'", .quantity = "5", .price = "2.5", .lot = "'L7'"});
  store({.id = 2, .code = "'A1'", .quantity = "2"});
  store({.id = 3, .code = "Null"});
  open();
  lines.MoveLast();
  const CollectionRegistrosPtr requests = lines.GetCollectionRegs("01");
  ASSERT_EQ(requests->Count(), 2) << "an article may stand twice, a line without one is left out";
  const ClsRegistrosPtr first = requests->Item(std::int32_t{1});
  EXPECT_EQ(first->Key, "A1");
  EXPECT_EQ(first->Codigo, Variant("A1"));
  EXPECT_EQ(first->Cantidad, Variant(0.0));
  EXPECT_EQ(first->Recibido, Variant(5.0));
  EXPECT_EQ(first->Lote, Variant("L7"));
  EXPECT_EQ(first->Almacen, Variant("01"));
  EXPECT_EQ(first->Precio, Variant(2.5));
  EXPECT_EQ(requests->Item(std::int32_t{2})->Lote, Variant("0"));
  EXPECT_EQ(lines.AbsolutePosition(), 1);
}

TEST_F(ClsTicketsLineasSumasTest, NoLinesGiveNoRequests) {
  open();
  EXPECT_EQ(lines.GetCollectionRegs("01")->Count(), 0);
}

TEST_F(ClsTicketsLineasSumasTest, SalesByFamilyAreThoseOfLiveLines) {
  store({.id = 1, .amount = "10", .family = "'BEB'", .closing = 5});
  store({.id = 2, .amount = "2.5", .family = "'BEB'", .closing = 5});
  store({.id = 3, .amount = "7", .family = "'PAN'", .closing = 5});
  store({.id = 4, .amount = "99", .family = "'PAN'", .closing = 4});
  store({.amount = "99", .closing = 5}, "HTickets_Lineas");
  shop.statements();
  const CollectionTicketsPtr groups = lines.SumCollectionLinHFamilias(std::int32_t{5});
  EXPECT_THAT(shop.statements(),
              ElementsAre("SELECT Familia, Sum(Importe) AS Total From Tickets_Lineas GROUP BY "
                          "Familia, Cierre HAVING (((Cierre)= 5));"));
  ASSERT_EQ(groups->Count(), 2);
  EXPECT_EQ(groups->Item(std::int32_t{1})->Codigo, Variant("BEB"));
  EXPECT_EQ(groups->Item(std::int32_t{1})->Importe, Variant(12.5));
  EXPECT_EQ(groups->Item(std::int32_t{2})->Codigo, Variant("PAN"));
  EXPECT_EQ(groups->Item(std::int32_t{2})->Importe, Variant(7.0));
}

TEST_F(ClsTicketsLineasSumasTest, TaxesOfAClosingAreThoseOfHistory) {
  run("INSERT INTO HTickets_Lineas_Impuestos (Numero, IVA, Base, Importe, Cierre) VALUES (1, 21, "
      "100, 21, 5)");
  run("INSERT INTO HTickets_Lineas_Impuestos (Numero, IVA, Base, Importe, Cierre) VALUES (2, 21, "
      "50, 10.5, 5)");
  shop.statements();
  const CollectionTicketsPtr groups = lines.SumCollectionLinHImpuestos(std::int32_t{5});
  EXPECT_THAT(shop.statements(),
              ElementsAre("SELECT IVA, Sum(Base) AS BaseI, Sum(Importe) AS ImporteI From "
                          "HTickets_Lineas_Impuestos GROUP BY IVA, Cierre HAVING (((Cierre=5)));"));
  ASSERT_EQ(groups->Count(), 1);
  const ClsRegTicketsPtr group = groups->Item(std::int32_t{1});
  EXPECT_EQ(shown(group->Codigo), "21");
  EXPECT_EQ(shown(group->Suma), "150");
  EXPECT_EQ(shown(group->Importe), "31,5");
}

// ---- The other locale

class ClsTicketsLineasSumasNeutralTest : public ClsTicketsLineasSumasTest {
 protected:
  ClsTicketsLineasSumasNeutralTest() : ClsTicketsLineasSumasTest(test::lineSettings("neutral")) {}
};

TEST_F(ClsTicketsLineasSumasNeutralTest, SumsAreTheSameUnderADecimalPoint) {
  store({.id = 1, .amount = "9.99"});
  store({.id = 2, .rate = "0", .amount = "12345.675"});
  const Sums of = sums(true);
  EXPECT_EQ(of.tax, 1.73);
  EXPECT_DOUBLE_EQ(of.base, 12353.94);
}

TEST_F(ClsTicketsLineasSumasNeutralTest, ReceiptsHaveADecimalPoint) {
  store({.description = "'Pan'", .quantity = "1.5", .amount = "12.5"});
  EXPECT_THAT(receipt(), ElementsAre(" 1.5 Pan                  12.5"));
  EXPECT_THAT(shown(lines.GetCollectionLinImpuestos(std::int32_t{1234}, false)),
              ElementsAre("  21% IVA de      12.5     2.63"));
}

}  // namespace
}  // namespace tavelor

// SPDX-License-Identifier: MIT
// The grammar of criteria, by what a filter shows.
#include "tests/recordset/support.hpp"

namespace tavelor::test {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

class Criteria : public testing::Test {
 protected:
  Criteria() {
    set.Fields().Append("Id", DataType::kInt32);
    set.Fields().Append("Texto", DataType::kVarWChar, 40);
    set.Fields().Append("Precio", DataType::kCurrency);
    set.Fields().Append("Fecha", DataType::kDate);
    set.Fields().Append("Activo", DataType::kBoolean);
    set.Fields().Append("Peso", DataType::kSingle);
    set.Fields().Append("Ratio", DataType::kDouble);
    set.Fields().Append("Forma Pago", DataType::kLongVarWChar);
    set.Fields().Append("Código", DataType::kVarWChar, 10);
    set.Fields().Append("Imagen", DataType::kLongVarBinary);
    set.Open();
    const std::vector<Variant> fields = {0, 1, 2, 3, 4, 5, 6, 7, 8};
    set.AddNew(fields, {1, "Uno", "1,5", Date::of(2024, 1, 31), true, 0.1F, 0.25, "Contado", "A1"});
    set.AddNew(fields, {2, "dos", "2,0001", Date::of({2024, 2, 1, 10, 30, 0}), false, 2.5F, -1.0,
                        "Giro a 30", "B_2"});
    set.AddNew(fields, {3, "O'Hara", 100, Date::of(1950, 5, 5), true, 3.0F, 3.0, "100% ya", "C?3"});
    set.AddNew({0}, {4});
    set.UpdateBatch();
  }

  std::vector<std::string> ids(std::string_view criteria) {
    set.Filter(criteria);
    return column(set, "Id");
  }
  std::int32_t number(std::string_view criteria) {
    return errorOf([&] { set.Filter(criteria); });
  }

  Recordset set;
};

TEST_F(Criteria, EveryOperatorOnNumbers) {
  EXPECT_THAT(ids("Id = 2"), ElementsAre("2"));
  EXPECT_THAT(ids("Id <> 2"), ElementsAre("1", "3", "4"));
  EXPECT_THAT(ids("Id < 2"), ElementsAre("1"));
  EXPECT_THAT(ids("Id <= 2"), ElementsAre("1", "2"));
  EXPECT_THAT(ids("Id > 3"), ElementsAre("4"));
  EXPECT_THAT(ids("Id >= 3"), ElementsAre("3", "4"));
}

TEST_F(Criteria, BlanksAreFree) {
  EXPECT_THAT(ids("Id=2"), ElementsAre("2"));
  EXPECT_THAT(ids("  Id\t>=\n 4  "), ElementsAre("4"));
}

TEST_F(Criteria, TextsCompareByExactCharacters) {
  EXPECT_THAT(ids("Texto = 'Uno'"), ElementsAre("1"));
  EXPECT_THAT(ids("Texto = 'uno'"), IsEmpty());
  EXPECT_THAT(ids("Texto > 'Z'"), ElementsAre("2"));
}

TEST_F(Criteria, AQuoteInsideIsDoubled) {
  EXPECT_THAT(ids("Texto = 'O''Hara'"), ElementsAre("3"));
  EXPECT_EQ(number("Texto = 'O'Hara'"), 3001);
}

TEST_F(Criteria, HashesDelimitATextWithQuotes) {
  EXPECT_THAT(ids("Texto = #O'Hara#"), ElementsAre("3"));
}

TEST_F(Criteria, DatesAreMonthFirstWhateverTheLocale) {
  EXPECT_THAT(ids("Fecha = #1/31/2024#"), ElementsAre("1"));
  EXPECT_THAT(ids("Fecha >= #02/01/2024#"), ElementsAre("2"));
  EXPECT_THAT(ids("Fecha = #2/1/2024 10:30:00#"), ElementsAre("2"));
  EXPECT_THAT(ids("Fecha < #2024-01-31#"), ElementsAre("3"));
}

TEST_F(Criteria, ADateFieldTakesAQuotedDateByTheLocaleAndADayNumber) {
  EXPECT_THAT(ids("Fecha = '31/01/2024'"), ElementsAre("1"));
  EXPECT_THAT(ids("Fecha = 45322"), ElementsAre("1"));
}

TEST_F(Criteria, NumbersHaveADecimalPointAndMayHaveASignADollarAndAnExponent) {
  EXPECT_THAT(ids("Precio = 1.5"), ElementsAre("1"));
  EXPECT_THAT(ids("Precio = $2.0001"), ElementsAre("2"));
  EXPECT_THAT(ids("Precio >= 1e2"), ElementsAre("3"));
  EXPECT_THAT(ids("Ratio = -1"), ElementsAre("2"));
  EXPECT_THAT(ids("Ratio = .25"), ElementsAre("1"));
  EXPECT_EQ(number("Precio = 1,5"), 3001);
}

TEST_F(Criteria, AQuotedNumberIsReadByTheLocale) {
  EXPECT_THAT(ids("Precio = '1,5'"), ElementsAre("1"));
  EXPECT_THAT(ids("Id = '3'"), ElementsAre("3"));
  EXPECT_EQ(number("Id = 'tres'"), errors::kCriteriaTypeMismatch);
}

TEST_F(Criteria, WholeAndMoneyFieldsCompareWithFractions) {
  EXPECT_THAT(ids("Id < 1.5"), ElementsAre("1"));
  EXPECT_THAT(ids("Id = 1.5"), IsEmpty());
  EXPECT_THAT(ids("Precio > 2.00005"), ElementsAre("2", "3"));
  EXPECT_THAT(ids("Precio > 2.00015"), ElementsAre("3"));
  EXPECT_THAT(ids("Precio < 1e30"), ElementsAre("1", "2", "3"));
}

TEST_F(Criteria, ASingleEqualsTheDecimalNumberThatItPrintsAs) {
  EXPECT_THAT(ids("Peso = 0.1"), ElementsAre("1"));
}

TEST_F(Criteria, AFlagComparesWithNumbersAndWords) {
  EXPECT_THAT(ids("Activo <> 0"), ElementsAre("1", "3"));
  EXPECT_THAT(ids("Activo = 1"), ElementsAre("1", "3"));
  EXPECT_THAT(ids("Activo = -1"), ElementsAre("1", "3"));
  EXPECT_THAT(ids("Activo = False"), ElementsAre("2"));
  EXPECT_THAT(ids("Activo = Verdadero"), ElementsAre("1", "3"));
}

TEST_F(Criteria, NullComparesWithEqualAndNotEqualOnly) {
  EXPECT_THAT(ids("Texto = Null"), ElementsAre("4"));
  EXPECT_THAT(ids("Texto <> NULL"), ElementsAre("1", "2", "3"));
  EXPECT_EQ(number("Texto < Null"), 3001);
  EXPECT_EQ(number("Texto LIKE Null"), 3001);
}

TEST_F(Criteria, ANullFieldFitsNoOtherComparison) {
  EXPECT_THAT(ids("Texto <> 'x'"), ElementsAre("1", "2", "3"));
  EXPECT_THAT(ids("Texto Like '*'"), ElementsAre("1", "2", "3"));
  EXPECT_THAT(ids("Precio < 1000"), ElementsAre("1", "2", "3"));
}

TEST_F(Criteria, LikeIgnoresCaseButNotAccents) {
  EXPECT_THAT(ids("Texto Like 'UNO'"), ElementsAre("1"));
  EXPECT_THAT(ids("Texto LIKE 'DOS'"), ElementsAre("2"));
  EXPECT_THAT(ids("Texto like 'dós'"), IsEmpty());
}

TEST_F(Criteria, LikeTakesTheWildcardAnywhere) {
  EXPECT_THAT(ids("Texto Like 'u*'"), ElementsAre("1"));
  EXPECT_THAT(ids("Texto Like '*o*'"), ElementsAre("1", "2", "3"));
  EXPECT_THAT(ids("Texto Like '*ra'"), ElementsAre("3"));
  EXPECT_THAT(ids("Texto Like 'O*ra'"), ElementsAre("3"));
  EXPECT_THAT(ids("Texto Like '%s'"), ElementsAre("2"));
}

// A user who types C#, B_ or [ into a search box looks for that text.
TEST_F(Criteria, OtherSignsOfAPatternStandForThemselves) {
  EXPECT_THAT(ids("Código Like 'B_*'"), ElementsAre("2"));
  EXPECT_THAT(ids("Código Like 'A_*'"), IsEmpty());
  EXPECT_THAT(ids("Código Like '*?3'"), ElementsAre("3"));
  EXPECT_THAT(ids("Código Like '[ab]*'"), IsEmpty());
  EXPECT_THAT(ids("Código Like '[*'"), IsEmpty());
  EXPECT_THAT(ids("Código Like '*#*'"), IsEmpty());
}

TEST_F(Criteria, LikeOnANumberLooksAtItsText) {
  EXPECT_THAT(ids("Id Like '2*'"), ElementsAre("2"));
  EXPECT_THAT(ids("Precio Like '1*'"), ElementsAre("1", "3"));
  EXPECT_THAT(ids("Fecha Like '*/2024*'"), ElementsAre("1", "2"));
}

TEST_F(Criteria, AndBindsMoreTightlyThanOr) {
  EXPECT_THAT(ids("Id = 1 OR Id = 2 AND Texto = 'nadie'"), ElementsAre("1"));
  EXPECT_THAT(ids("Texto = 'nadie' and Id = 2 or Id = 1"), ElementsAre("1"));
}

TEST_F(Criteria, ParenthesesGroupInAnyNesting) {
  EXPECT_THAT(ids("(Id = 1 OR Id = 2) AND Texto = 'dos'"), ElementsAre("2"));
  EXPECT_THAT(ids("(Id = 1 AND Activo <> 0) OR (Id = 2 AND Activo <> 0)"), ElementsAre("1"));
  EXPECT_THAT(ids("((Id > 1) and ((Id < 4) and (Id <> 2 or Id = 2)))"), ElementsAre("2", "3"));
}

TEST_F(Criteria, ThousandsOfTermsAreRead) {
  std::string criteria = "Id = 3";
  for (int i = 100; i < 5'000; ++i) criteria += " Or Id = " + std::to_string(i);
  EXPECT_THAT(ids(criteria), ElementsAre("3"));
}

TEST_F(Criteria, NestingBeyondReasonIsRefused) {
  const std::string criteria = std::string(100'000, '(') + "Id = 1" + std::string(100'000, ')');
  EXPECT_EQ(number(criteria), 3001);
}

TEST_F(Criteria, NamesAreFoundWithoutRegardToCaseWithBracketsOrBlanks) {
  EXPECT_THAT(ids("TEXTO = 'Uno'"), ElementsAre("1"));
  EXPECT_THAT(ids("[forma pago] = 'Contado'"), ElementsAre("1"));
  EXPECT_THAT(ids("Forma Pago Like 'giro*'"), ElementsAre("2"));
  EXPECT_THAT(ids("código = 'A1'"), ElementsAre("1"));
  EXPECT_THAT(ids("CÓDIGO = 'A1'"), ElementsAre("1"));
}

TEST_F(Criteria, WordsOfStatementsThatCriteriaHaveNotAreRefusedByName) {
  for (const std::string_view text :
       {"Not Id = 1", "NOT (Id = 1)", "Id = 2 AND not Id = 1", "Id In (1, 2)", "Id not in (1)",
        "Id Between 1 And 2", "[Id] Between 1 And 2", "Texto Is Null", "Texto Is Not Null",
        "Texto Not Like 'a*'", "Forma Pago In ('x')", "Nada In (1)"}) {
    EXPECT_EQ(number(text), 3001) << text;
    EXPECT_EQ(errorOf([&] { set.Find(text); }), 3001) << text;
  }
  EXPECT_THAT(sentenceOf([&] { set.Filter("Id = 2 AND Id in (1)"); }),
              HasSubstr("criteria have no IN"));
  EXPECT_THAT(sentenceOf([&] { set.Filter("Id = 2 AND Id in (1)"); }),
              HasSubstr("at character 15 of: "));
  EXPECT_EQ(number("Nada = 1"), 3265);
  EXPECT_EQ(number("Is Bueno = 1"), 3265);
}

TEST_F(Criteria, AFieldMayBeCalledByOneOfThoseWords) {
  Recordset named;
  named.Fields().Append("Not", DataType::kInt32);
  named.Fields().Append("Pago In", DataType::kInt32);
  named.Open();
  named.AddNew({0, 1}, {1, 2});
  named.Filter("Not = 1 AND Pago In = 2");
  EXPECT_EQ(named.RecordCount(), 1);
}

TEST_F(Criteria, TheEmptyTextFitsNoNumberDateOrFlag) {
  for (const std::string_view field : {"Id", "Precio", "Fecha", "Activo", "Peso", "Ratio"}) {
    for (const std::string_view op : {"=", "<>", "<", ">="}) {
      const std::string text = std::string(field) + " " + std::string(op) + " ''";
      EXPECT_THAT(ids(text), IsEmpty()) << text;
    }
    EXPECT_THAT(ids(std::string(field) + " = '' OR Id = 2"), ElementsAre("2"));
  }
  EXPECT_EQ(number("Id = ' '"), errors::kCriteriaTypeMismatch);
}

TEST_F(Criteria, FaultsNameTheirPlaceInCharacters) {
  const auto sentence = [&](std::string_view criteria) {
    return sentenceOf([&] { set.Filter(criteria); });
  };
  EXPECT_THAT(sentence("Código = "), HasSubstr("expected a value"));
  EXPECT_THAT(sentence("Código = "), HasSubstr("at character 10 of: Código = "));
  EXPECT_THAT(sentence("Id 5"), HasSubstr("There is no field 'Id 5'"));
  EXPECT_THAT(sentence("Id = 1 2"), HasSubstr("at character 8"));
  EXPECT_THAT(sentence("(Id = 1"), HasSubstr("expected ) at character 8"));
  EXPECT_THAT(sentence("= 1"), HasSubstr("expected a field name at character 1"));
  EXPECT_THAT(sentence("Texto = 'x"), HasSubstr("never closed at character 9"));
  EXPECT_THAT(sentence("Fecha = #1/1/2024"), HasSubstr("never closed"));
  EXPECT_THAT(sentence("[Id = 1"), HasSubstr("expected ]"));
  EXPECT_THAT(sentence("Id = 1 AND"), HasSubstr("expected a field name"));
}

TEST_F(Criteria, HostileTextsAreRefusedWithAnError) {
  for (const std::string_view text :
       {"'",        "#",        "[",           "(",         ")",       "=",
        "Id",       "Id =",     "Id = =",      "Id == 1",   "Id = 1)", "Id = 1;",
        "Id = 1--", "Id = nan", "Id = inf",    "Id = 0x10", "Id = 1e", "Id = --1",
        "\xff = 1", "''=''",    "Id = 1 OR 1", "Id = 1e999"}) {
    EXPECT_NE(number(text), 0) << text;
  }
}

TEST_F(Criteria, TypesThatCannotMeetAreAMismatch) {
  EXPECT_EQ(number("Fecha = 'ayer'"), errors::kCriteriaTypeMismatch);
  EXPECT_EQ(number("Fecha = #ayer#"), errors::kCriteriaTypeMismatch);
  EXPECT_EQ(number("Id = #1/1/2024#"), errors::kCriteriaTypeMismatch);
  EXPECT_EQ(number("Activo = 'quizás'"), errors::kCriteriaTypeMismatch);
  EXPECT_EQ(number("Imagen = 'x'"), errors::kCriteriaTypeMismatch);
  EXPECT_EQ(number("Imagen Like 'x'"), 3001);
}

TEST_F(Criteria, ANumberMeetsATextFieldAsItIsWritten) {
  set.Filter("");
  set.MoveLast();
  set.Update({"Texto"}, {"007"});
  EXPECT_THAT(ids("Texto = 007"), ElementsAre("4"));
  EXPECT_THAT(ids("Texto = 7"), IsEmpty());
}

}  // namespace
}  // namespace tavelor::test

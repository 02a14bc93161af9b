// SPDX-License-Identifier: MIT
// Fields: their collection, what they tell of themselves, and what they take.
#include "tests/recordset/support.hpp"

namespace tavelor::test {
namespace {

using testing::HasSubstr;

class FieldRules : public ShopTest {};

TEST_F(FieldRules, AreFoundByPositionFromZeroAndByNameWithoutRegardToCase) {
  const auto set = openBanks();
  EXPECT_EQ(set->Fields().Count(), 10);
  EXPECT_EQ(set->Fields().Item(1).Name(), "Descripcion");
  EXPECT_EQ(set->Fields().Item("DESCRIPCION").Name(), "Descripcion");
  EXPECT_EQ(set->Fields().Item(Variant(0.1)).Name(), "Codigo");
  EXPECT_EQ(set->Fields().Item(Variant("saldo")).Name(), "Saldo");
}

TEST_F(FieldRules, AnUnknownNameOrPositionIsNotInTheCollection) {
  const auto set = openBanks();
  EXPECT_EQ(errorOf([&] { set->Fields().Item(10); }), 3265);
  EXPECT_EQ(errorOf([&] { set->Fields().Item(-1); }), 3265);
  EXPECT_EQ(errorOf([&] { set->Fields().Item(Variant(1000)); }), 3265);
  EXPECT_EQ(errorOf([&] { set->Fields().Item(Variant(connection)); }), 3265);
  EXPECT_EQ(errorOf([&] { set->Fields().Item(Variant(Null{})); }), 3265);
  EXPECT_THAT(sentenceOf([&] { set->Field("Descripcio"); }), HasSubstr("'Descripcion'"));
}

TEST_F(FieldRules, AnAliasIsTheNameAccentsIncluded) {
  const auto set = open("SELECT Codigo AS Código FROM Bancos");
  EXPECT_EQ(set->Field(0).Name(), "Código");
  EXPECT_EQ(textAt(*set, "código"), "001");
  EXPECT_EQ(textAt(*set, "CÓDIGO"), "001");
  EXPECT_EQ(errorOf([&] { set->Field("Codigo"); }), 3265);
}

TEST_F(FieldRules, HiddenKeyColumnsAreNoFields) {
  const auto set = open("SELECT Descripcion FROM Bancos");
  EXPECT_EQ(set->Fields().Count(), 1);
  EXPECT_EQ(errorOf([&] { set->Field(1); }), 3265);
  EXPECT_EQ(errorOf([&] { set->Field("Codigo"); }), 3265);
}

TEST_F(FieldRules, CountIsZeroAfterClose) {
  const auto set = openBanks();
  set->Close();
  EXPECT_EQ(set->Fields().Count(), 0);
}

TEST_F(FieldRules, TellTypeSizeAndPrecision) {
  const auto set = openBanks();
  struct Row {
    const char* name;
    std::int32_t type, size, precision;
  };
  for (const Row& row :
       {Row{"Codigo", 202, 10, 255}, Row{"Saldo", 6, 8, 19}, Row{"Alta", 7, 8, 255},
        Row{"Activo", 11, 2, 255}, Row{"Plazos", 2, 2, 5}, Row{"Nota", 203, 536870910, 255},
        Row{"Logotipo", 205, 2147483647, 255}, Row{"Peso", 4, 4, 7}, Row{"Ratio", 5, 8, 15}}) {
    const Field field = set->Field(row.name);
    EXPECT_EQ(field.Type(), row.type) << row.name;
    EXPECT_EQ(field.DefinedSize(), row.size) << row.name;
    EXPECT_EQ(field.Precision(), row.precision) << row.name;
  }
  const auto lines = open("SELECT Ticket FROM Lineas");
  EXPECT_EQ(lines->Field(0).Type(), 3);
  EXPECT_EQ(lines->Field(0).Precision(), 10);
}

TEST_F(FieldRules, ReadAsTheirType) {
  const auto set = openBanks();
  EXPECT_EQ(set->Field("Codigo").Value(), Variant("001"));
  EXPECT_EQ(set->Field("Saldo").Value(), Variant(Currency::fromScaled(105'000)));
  EXPECT_EQ(set->Field("Alta").Value(), Variant(Date::of(2024, 1, 2)));
  EXPECT_EQ(set->Field("Activo").Value(), Variant(true));
  EXPECT_EQ(set->Field("Plazos").Value(), Variant(std::int16_t{3}));
  EXPECT_TRUE(set->Field("Nota").Value().isNull());
}

TEST_F(FieldRules, TakeTextByTheLocale) {
  const auto set = openBanks();
  set->Field("Saldo").Value("1.234,56");
  EXPECT_EQ(set->Field("Saldo").Value(), Variant(Currency::fromScaled(12'345'600)));
  set->Field("Alta").Value("05/03/2024");
  EXPECT_EQ(set->Field("Alta").Value(), Variant(Date::of(2024, 3, 5)));
  set->Field("Plazos").Value("12");
  EXPECT_EQ(set->Field("Plazos").Value(), Variant(std::int16_t{12}));
  set->Field("Codigo").Value(13);
  EXPECT_EQ(set->Field("Codigo").Value(), Variant("13"));
}

TEST_F(FieldRules, RoundWholeNumbersHalvesToEven) {
  const auto set = openBanks();
  set->Field("Plazos").Value(2.5);
  EXPECT_EQ(set->Field("Plazos").Value(), Variant(std::int16_t{2}));
}

TEST_F(FieldRules, RefuseAValueOfAnotherTypeAndKeepTheOld) {
  const auto set = openBanks();
  EXPECT_EQ(errorOf([&] { set->Field("Saldo").Value("mucho"); }), 3421);
  EXPECT_EQ(errorOf([&] { set->Field("Alta").Value("ayer"); }), 3421);
  EXPECT_EQ(errorOf([&] { set->Field("Plazos").Value(""); }), 3421);
  EXPECT_EQ(errorOf([&] { set->Field("Codigo").Value(Variant(connection)); }), 3421);
  EXPECT_EQ(errorOf([&] { set->Field("Codigo").Value("\xff"); }), 3421);
  EXPECT_EQ(errorOf([&] { set->Field("Logotipo").Value(5); }), 3421);
  EXPECT_EQ(textAt(*set, "Saldo"), "10,5");
  EXPECT_EQ(set->EditMode(), EditMode::kNone);
}

TEST_F(FieldRules, RefuseATextThatIsTooLongInCharacters) {
  const auto set = openBanks();
  set->Field("Codigo").Value("ññññññññññ");
  EXPECT_EQ(errorOf([&] { set->Field("Codigo").Value("12345678901"); }), errors::kMultipleStep);
  EXPECT_THAT(sentenceOf([&] { set->Field("Codigo").Value("12345678901"); }),
              HasSubstr("'Codigo' takes 10 characters; the text has 11"));
  EXPECT_EQ(textAt(*set, "Codigo"), "ññññññññññ");
}

TEST_F(FieldRules, RefuseTheEmptyTextWhereTheyHoldNone) {
  const auto set = openBanks();
  for (const char* name : {"Saldo", "Alta", "Activo", "Plazos", "Peso", "Ratio"}) {
    const Variant before = set->Field(name).Value();
    EXPECT_EQ(errorOf([&] { set->Field(name).Value(""); }), errors::kWrongType) << name;
    EXPECT_EQ(set->Field(name).Value(), before);
  }
}

// A statement refuses such a text, so nothing could ever find it again.
TEST_F(FieldRules, RefuseACharacterOfCodeZero) {
  const auto set = openBanks();
  const std::string text("U\0no", 4);
  for (const char* name : {"Descripcion", "Nota"}) {
    EXPECT_EQ(errorOf([&] { set->Field(name).Value(text); }), errors::kWrongType) << name;
  }
  EXPECT_EQ(errorOf([&] { set->Field("Nota").AppendChunk(text); }), errors::kWrongType);
  EXPECT_EQ(errorOf([&] { set->AddNew({"Codigo"}, {text}); }), errors::kWrongType);
  set->Field("Logotipo").Value(Bytes(2));
  EXPECT_EQ(textAt(*set, "Descripcion"), "Uno");
}

TEST_F(FieldRules, RefuseANumberOutOfRange) {
  const auto set = openBanks();
  EXPECT_EQ(errorOf([&] { set->Field("Plazos").Value(40'000); }), errors::kMultipleStep);
  EXPECT_EQ(errorOf([&] { set->Field("Saldo").Value(1e18); }), errors::kMultipleStep);
  EXPECT_EQ(errorOf([&] { set->Field("Peso").Value(1e300); }), errors::kMultipleStep);
}

TEST_F(FieldRules, EmptyIsNullInARowThatTheDatabaseHas) {
  const auto set = openBanks();
  set->Field("Saldo").Value(Empty{});
  set->Update();
  EXPECT_TRUE(set->Field("Saldo").Value().isNull());
}

TEST_F(FieldRules, ActualSizeCountsCharactersAndBytes) {
  const auto set = openBanks();
  set->Field("Nota").Value("año");
  EXPECT_EQ(set->Field("Nota").ActualSize(), 3);
  EXPECT_EQ(set->Field("Logotipo").ActualSize(), 0);
  EXPECT_EQ(set->Field("Saldo").ActualSize(), 8);
}

TEST_F(FieldRules, AttributesTellNullsAndPieces) {
  const auto set = openBanks();
  EXPECT_EQ(set->Field("Codigo").Attributes() & field_attribute::kIsNullable, 0);
  EXPECT_NE(set->Field("Saldo").Attributes() & field_attribute::kIsNullable, 0);
  EXPECT_NE(set->Field("Nota").Attributes() & field_attribute::kLong, 0);
  EXPECT_EQ(set->Field("Saldo").Attributes() & field_attribute::kLong, 0);
}

// ---- Pieces

TEST_F(FieldRules, TheFirstPieceReplacesAndTheNextAppend) {
  const auto set = openBanks();
  set->Field("Logotipo").Value(Bytes{std::byte{9}});
  set->Update();
  set->Field("Codigo").Value();
  const Field logo = set->Field("Logotipo");
  Field(logo).AppendChunk(Bytes{std::byte{1}, std::byte{2}});
  Field(logo).AppendChunk(Bytes{std::byte{3}});
  EXPECT_EQ(logo.Value(), Variant(Bytes{std::byte{1}, std::byte{2}, std::byte{3}}));
  set->UpdateBatch();
  set->Requery();
  EXPECT_EQ(set->Field("Logotipo").ActualSize(), 3);
}

TEST_F(FieldRules, TouchingAnotherFieldBeginsThePiecesAnew) {
  const auto set = openBanks();
  set->Field("Nota").AppendChunk("uno");
  set->Field("Nota").AppendChunk(" dos");
  EXPECT_EQ(textAt(*set, "Nota"), "uno dos");
  set->Field("Codigo").Value();
  set->Field("Nota").AppendChunk("tres");
  EXPECT_EQ(textAt(*set, "Nota"), "tres");
}

TEST_F(FieldRules, PiecesMayBeginWithNothing) {
  const auto set = openBanks();
  for (const Variant& nothing : {Variant(Empty{}), Variant(Null{})}) {
    set->Field("Codigo").Value();
    set->Field("Nota").AppendChunk(nothing);
    set->Field("Nota").AppendChunk("x");
    set->Field("Nota").AppendChunk(nothing);
    set->Field("Nota").AppendChunk("y");
    EXPECT_EQ(set->Field("Nota").Value(), Variant("xy"));
    set->Field("Logotipo").AppendChunk(nothing);
    set->Field("Logotipo").AppendChunk(Bytes{std::byte{7}});
    EXPECT_EQ(set->Field("Logotipo").Value(), Variant(Bytes{std::byte{7}}));
  }
}

TEST_F(FieldRules, PiecesMayBeginWithNothingInANewRow) {
  const auto set = openBanks();
  set->AddNew();
  set->Field("Nota").AppendChunk(Empty{});
  set->Field("Nota").AppendChunk("x");
  EXPECT_EQ(set->Field("Nota").Value(), Variant("x"));
}

TEST_F(FieldRules, APieceIsRefusedWhenAListenerTookTheValueAway) {
  struct Taker final : RecordsetEvents {
    void WillChangeField(std::span<const Field> /*fields*/, EventStatus& /*status*/,
                         Recordset& set) override {
      if (on && !inside) {
        inside = true;
        set.Field("Nota").Value(Null{});
      }
    }
    bool on = false;
    bool inside = false;
  } taker;
  const auto set = openBanks();
  set->addListener(&taker);
  set->Field("Nota").AppendChunk("uno");
  taker.on = true;
  EXPECT_EQ(errorOf([&] { set->Field("Nota").AppendChunk("dos"); }), errors::kNotAllowedInContext);
  set->removeListener(&taker);
}

TEST_F(FieldRules, PiecesAreForMemoAndBinaryOnly) {
  const auto set = openBanks();
  EXPECT_EQ(errorOf([&] { set->Field("Codigo").AppendChunk("x"); }), 3219);
  EXPECT_EQ(errorOf([&] { set->Field("Codigo").GetChunk(1); }), 3219);
}

TEST_F(FieldRules, GetChunkReadsOnAndGivesNullAtTheEnd) {
  const auto set = openBanks();
  set->Field("Nota").Value("año nuevo");
  set->Update();
  EXPECT_EQ(set->Field("Nota").GetChunk(3), Variant("año"));
  EXPECT_EQ(set->Field("Nota").GetChunk(100), Variant(" nuevo"));
  EXPECT_TRUE(set->Field("Nota").GetChunk(1).isNull());
  set->Field("Codigo").Value();
  EXPECT_EQ(set->Field("Nota").GetChunk(1), Variant("a"));
}

// ---- Appending

TEST_F(FieldRules, GetChunkOfAValueThatBecameShorterGivesNull) {
  const auto set = openBanks();
  set->Field("Nota").Value("año nuevo");
  set->Field("Nota").GetChunk(6);
  set->Field("Nota").Value("año");
  EXPECT_TRUE(set->Field("Nota").GetChunk(5).isNull());
  set->Field("Logotipo").Value(Bytes(9));
  set->Field("Logotipo").GetChunk(6);
  set->Field("Logotipo").Value(Bytes(2));
  EXPECT_TRUE(set->Field("Logotipo").GetChunk(5).isNull());
}

TEST_F(FieldRules, GetChunkNeverBeginsWithinACharacter) {
  const auto set = openBanks();
  set->Field("Nota").Value("abc");
  set->Field("Nota").GetChunk(1);
  set->Field("Nota").Value("ñandú");
  EXPECT_EQ(set->Field("Nota").GetChunk(3), Variant("and"));
}

TEST(FieldsAppend, RefusesWhatCannotBe) {
  Recordset set;
  set.Fields().Append("a", DataType::kInt32);
  EXPECT_EQ(errorOf([&] { set.Fields().Append("A", DataType::kInt32); }), 3367);
  EXPECT_EQ(errorOf([&] { set.Fields().Append("", DataType::kInt32); }), 3001);
  EXPECT_EQ(errorOf([&] { set.Fields().Append("b", DataType::kInt64); }), 3001);
  EXPECT_EQ(errorOf([&] { set.Fields().Append("b", static_cast<DataType>(9999)); }), 3001);
  EXPECT_EQ(set.Fields().Count(), 1);
  set.Open();
  EXPECT_EQ(errorOf([&] { set.Fields().Append("b", DataType::kInt32); }), 3705);
}

TEST(FieldsAppend, TypeAnswersTheNumberThatWasAsked) {
  Recordset set;
  set.Fields().Append("a", DataType::kVarChar, 5);
  set.Fields().Append("b", DataType::kNumeric);
  set.Open();
  EXPECT_EQ(set.Field("a").Type(), 200);
  EXPECT_EQ(set.Field("b").Type(), 131);
  EXPECT_EQ(set.Field("a").DefinedSize(), 5);
}

}  // namespace
}  // namespace tavelor::test

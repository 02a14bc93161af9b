// SPDX-License-Identifier: MIT
// What may be typed into a control.
#include <gtest/gtest.h>

#include "tests/frame/sample.hpp"
#include "tests/support/form.hpp"

namespace tavelor {
namespace {

using test::errorOf;
using test::TextBox;

constexpr std::int16_t kBackspace = 8;
constexpr std::int16_t kBlank = 32;
constexpr std::int16_t kExclamation = 33;
constexpr std::int16_t kAt = 64;  // the last key before the letters

class ValidationTest : public testing::Test {
 protected:
  ValidationTest() { sample.IniciaRs(); }

  std::int32_t size(const std::string& field) {
    return sample.ValidaDefinedSize(TextBox(field, ""));
  }
  bool key(const std::string& field, const std::string& text, std::int16_t key) {
    return sample.ValidaKey(TextBox(field, text), key);
  }
  bool value(const std::string& field, const std::string& text) {
    return sample.ValidaValue(TextBox(field, text));
  }

  test::SampleShop shop;
  test::Sample sample;
};

// ---- ValidaDefinedSize

TEST_F(ValidationTest, AWholeNumberFieldOfPrecisionTenHasRoomForFive) {
  EXPECT_EQ(size("Numero"), 5);
}

TEST_F(ValidationTest, ADoubleFieldHasRoomForItsPrecision) {
  EXPECT_EQ(size("Precio"), 15);
}

TEST_F(ValidationTest, ATextFieldHasRoomForItsDefinedSize) {
  EXPECT_EQ(size("Código"), 5);
  EXPECT_EQ(size("Nombre"), 20);
}

TEST_F(ValidationTest, AMemoHasRoomForItsDefinedSize) {
  EXPECT_EQ(size("Notas"), sample.DataMember("Primary")->Field("Notas").DefinedSize());
  EXPECT_GT(size("Notas"), 65'535);
}

TEST_F(ValidationTest, AnyOtherFieldHasRoomForTen) {
  for (const char* field : {"Corto", "Dinero", "Activo", "Fecha", "Foto"}) {
    EXPECT_EQ(size(field), 10) << field;
  }
}

// ---- ValidaKey

TEST_F(ValidationTest, AKeyUnderThirtyThreeIsAcceptedOnAFullField) {
  for (const std::int16_t control : {kBackspace, kBlank}) {
    EXPECT_TRUE(key("Código", "12345", control));
    EXPECT_TRUE(key("Numero", "123456789", control));
  }
  EXPECT_FALSE(key("Código", "12345", kExclamation));
}

TEST_F(ValidationTest, AControlKeyIsAcceptedBeforeTheFieldIsLookedAt) {
  EXPECT_TRUE(key("Ninguno", "", kBackspace));
  EXPECT_TRUE(test::Sample().ValidaKey(TextBox("Código", ""), kBackspace))
      << "not even a record set is needed";
}

TEST_F(ValidationTest, AWholeNumberTakesFiveKeysBelowTheLetters) {
  EXPECT_TRUE(key("Numero", "1234", '9'));
  EXPECT_FALSE(key("Numero", "12345", '9'));
  EXPECT_FALSE(key("Numero", "", 'A'));
  EXPECT_TRUE(key("Numero", "", kAt)) << "signs are not told from digits";
}

TEST_F(ValidationTest, ATextTakesAnyKeyUntilItIsFull) {
  EXPECT_TRUE(key("Código", "ABCD", 'z'));
  EXPECT_FALSE(key("Código", "ABCDE", 'z'));
}

TEST_F(ValidationTest, LengthsCountCharacters) {
  EXPECT_TRUE(key("Código", "ñáéí", 'o'));
  EXPECT_FALSE(key("Código", "ñáéíó", 'o'));
}

TEST_F(ValidationTest, AMemoTakesEveryKey) {
  EXPECT_TRUE(key("Notas", std::string(100'000, 'x'), 'z'));
}

TEST_F(ValidationTest, ALetterOnADateFieldIsRefusedAndDigitAndSlashPass) {
  EXPECT_FALSE(key("Fecha", "", 'A'));
  EXPECT_FALSE(key("Fecha", "", 'z'));
  EXPECT_TRUE(key("Fecha", "31", '/'));
  EXPECT_TRUE(key("Fecha", "31/", '1'));
}

TEST_F(ValidationTest, AnyOtherFieldTakesKeysBelowTheLettersUpToItsPrecision) {
  EXPECT_TRUE(key("Corto", "1234", '5'));
  EXPECT_FALSE(key("Corto", "12345", '6'));
  EXPECT_TRUE(key("Precio", std::string(14, '1'), '1'));
  EXPECT_FALSE(key("Precio", std::string(15, '1'), '1'));
  EXPECT_TRUE(key("Dinero", std::string(18, '1'), ','));
  EXPECT_FALSE(key("Activo", "", 'V'));
}

// ---- ValidaValue

TEST_F(ValidationTest, ANumberFieldWantsANumberAsTheLocaleWritesIt) {
  for (const char* field : {"Numero", "Precio"}) {
    EXPECT_TRUE(value(field, "1.234,5")) << field;
    EXPECT_TRUE(value(field, " -3 ")) << field;
    EXPECT_FALSE(value(field, "tres")) << field;
    EXPECT_FALSE(value(field, "")) << field;
    EXPECT_FALSE(value(field, "1,2,3")) << field;
  }
}

// A whole number field takes a number that it cannot hold: only the record set refuses it.
TEST_F(ValidationTest, TheTestOfANumberLooksAtNoRange) {
  EXPECT_TRUE(value("Numero", "99999999999"));
}

TEST_F(ValidationTest, ADateFieldWantsADate) {
  EXPECT_TRUE(value("Fecha", "31/12/2026"));
  EXPECT_TRUE(value("Fecha", "1/2/26 10:30"));
  EXPECT_FALSE(value("Fecha", "31/02/2026"));
  EXPECT_FALSE(value("Fecha", "mañana"));
  EXPECT_FALSE(value("Fecha", ""));
}

TEST_F(ValidationTest, AMemoIsAlwaysValidAndSoIsWhatIsNeitherNumberNorDate) {
  for (const char* field : {"Notas", "Código", "Nombre", "Corto", "Dinero", "Activo", "Foto"}) {
    EXPECT_TRUE(value(field, "lo que sea")) << field;
    EXPECT_TRUE(value(field, "")) << field;
  }
}

// ---- Failures

TEST_F(ValidationTest, AControlWhoseFieldIsNotThereFailsInThePlatform) {
  for (const char* field : {"Ninguno", ""}) {
    EXPECT_EQ(errorOf([&] { size(field); }), errors::kItemNotFound);
    EXPECT_EQ(errorOf([&] { key(field, "", 'a'); }), errors::kItemNotFound);
    EXPECT_EQ(errorOf([&] { value(field, ""); }), errors::kItemNotFound);
  }
}

TEST_F(ValidationTest, BeforeIniciaRsThereIsNoField) {
  const test::Sample unopened;
  const TextBox box("Código", "");
  EXPECT_EQ(errorOf([&] { unopened.ValidaDefinedSize(box); }), errors::kObjectNotSet);
  EXPECT_EQ(errorOf([&] { unopened.ValidaKey(box, 'a'); }), errors::kObjectNotSet);
  EXPECT_EQ(errorOf([&] { unopened.ValidaValue(box); }), errors::kObjectNotSet);
}

}  // namespace
}  // namespace tavelor

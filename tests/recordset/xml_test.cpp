// SPDX-License-Identifier: MIT
// Saving as XML and loading it again, from ourselves and from strangers.
#include <cmath>
#include <fstream>
#include <limits>
#include <random>

#include "tests/recordset/support.hpp"

namespace tavelor::test {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::Not;

class Xml : public ShopTest {};

constexpr std::string_view kHead = R"(<xml xmlns:s='uuid:BDC6E3F0-6DA3-11d1-A2A3-00AA00C14882'
 xmlns:dt='uuid:C2F41010-65B3-11d1-A29F-00AA00C14882'
 xmlns:rs='urn:schemas-microsoft-com:rowset' xmlns:z='#RowsetSchema'>
<s:Schema id='RowsetSchema'><s:ElementType name='row' content='eltOnly' rs:updatable='true'>)";

std::string field(const std::string& name, const std::string& datatype) {
  return "<s:AttributeType name='" + name + "' rs:nullable='true'><s:datatype " + datatype +
         "/></s:AttributeType>";
}

std::string document(const std::string& fields, const std::string& rows) {
  return std::string(kHead) + fields + "</s:ElementType></s:Schema><rs:data>" + rows +
         "</rs:data></xml>";
}

TEST_F(Xml, RoundTripsFieldsAndValuesOfEveryType) {
  const auto set = openBanks();
  const Bytes logo = {std::byte{0}, std::byte{127}, std::byte{255}};
  set->Update(
      {"Nota", "Logotipo", "Peso", "Ratio", "Alta"},
      {"<a href='x'>&amp; \"ñ\"</a>\r\n\tfin ", logo, 0.1F, 1.0 / 3.0, Date(45000.123456789)});
  set->UpdateBatch();
  const auto loaded = Recordset::LoadXml(set->SaveXml());
  ASSERT_EQ(loaded->Fields().Count(), set->Fields().Count());
  ASSERT_EQ(loaded->RecordCount(), 3);
  for (; !set->Eof(); set->MoveNext(), loaded->MoveNext()) {
    for (std::int32_t i = 0; i < set->Fields().Count(); ++i) {
      EXPECT_EQ(loaded->Field(i).Name(), set->Field(i).Name());
      EXPECT_EQ(loaded->Field(i).Type(), set->Field(i).Type());
      EXPECT_EQ(loaded->Field(i).DefinedSize(), set->Field(i).DefinedSize());
      EXPECT_EQ(loaded->Field(i).Attributes(), set->Field(i).Attributes());
      EXPECT_EQ(loaded->Field(i).Value(), set->Field(i).Value()) << set->Field(i).Name();
    }
  }
}

TEST_F(Xml, ALoadedSetIsSavedByteByByteAsItCame) {
  const auto set = openBanks();
  set->Update({"Descripcion", "Alta"}, {"<x>", Null{}});
  set->MoveNext();
  set->Delete();
  set->AddNew({"Codigo"}, {"nuevo"});
  const std::string xml = set->SaveXml();
  EXPECT_EQ(Recordset::LoadXml(xml)->SaveXml(), xml);
}

TEST_F(Xml, RoundTripsTheEdgesOfNumbersAndDates) {
  Recordset set;
  set.Fields().Append("d", DataType::kDouble);
  set.Fields().Append("f", DataType::kSingle);
  set.Fields().Append("c", DataType::kCurrency);
  set.Fields().Append("t", DataType::kDate);
  set.Open();
  const std::vector<Variant> fields = {0, 1, 2, 3};
  set.AddNew(fields, {std::numeric_limits<double>::max(), std::numeric_limits<float>::max(),
                      Currency::fromScaled(std::numeric_limits<std::int64_t>::max()),
                      Date::of({9999, 12, 31, 23, 59, 59})});
  set.AddNew(fields, {std::numeric_limits<double>::denorm_min(), -0.0F,
                      Currency::fromScaled(std::numeric_limits<std::int64_t>::min()),
                      Date::of({100, 1, 1, 0, 0, 0})});
  set.AddNew(fields, {0.1, 0.1F, Currency::fromScaled(-1), Date(-1.25)});
  set.AddNew(fields, {0, 0, 0, Date(0.999988425925926)});
  set.AddNew(fields, {0, 0, 0, Date(46347.0 + 1.0 / 3.0)});
  const auto loaded = Recordset::LoadXml(set.SaveXml());
  for (; !set.Eof(); set.MoveNext(), loaded->MoveNext()) {
    for (std::int32_t i = 0; i < 4; ++i) EXPECT_EQ(loaded->Field(i).Value(), set.Field(i).Value());
  }
}

// A time without a day is a number near 0, which has more digits than nanoseconds tell.
TEST_F(Xml, ATimeOfTheDayComesBackToTheLastBit) {
  std::mt19937_64 random(11);
  std::uniform_real_distribution<double> anyTime(0, 1);
  std::vector<double> days = {0.499983712345678,
                              std::nextafter(0.5, 0),
                              std::nextafter(1.0, 0),
                              std::nextafter(0.0, 1),
                              1e-9,
                              1e-300,
                              -0.75,
                              -1.0 / 3.0,
                              std::nextafter(45000.0, 0)};
  for (int i = 0; i < 500; ++i) {
    const double time = anyTime(random);
    for (const double day : {time, 45000 + time, -time, -45000 - time}) days.push_back(day);
  }
  Recordset set;
  set.Fields().Append("Hora", DataType::kDate);
  set.Open();
  for (const double day : days) set.AddNew({"Hora"}, {Date(day)});
  const auto loaded = Recordset::LoadXml(set.SaveXml());
  for (const double day : days) {
    EXPECT_EQ(loaded->Field(0).Value().toDate(*Locale::neutral()).days(), day);
    loaded->MoveNext();
  }
}

TEST_F(Xml, AWholeSecondIsWrittenWithoutAFraction) {
  Recordset set;
  set.Fields().Append("Hora", DataType::kDate);
  set.Open();
  for (int second = 0; second < 86'400; second += 11) {
    set.AddNew({"Hora"}, {Date::of({1899, 12, 30, second / 3600, second / 60 % 60, second % 60})});
  }
  const std::string xml = set.SaveXml();
  EXPECT_THAT(xml, HasSubstr("Hora='1899-12-30T00:01:06'"));
  EXPECT_EQ(xml.substr(xml.find("<rs:data>")).find('.'), std::string::npos);
}

TEST_F(Xml, ARowThatWentThroughXmlIsStillTheOneThatTheDatabaseHolds) {
  const auto set = openBanks();
  set->Field("Alta").Value(Date(0.499983712345678));
  set->UpdateBatch();
  const auto loaded = Recordset::LoadXml(set->SaveXml(), Locale::spanish());
  loaded->Field("Alta").Value(Date(0.25));
  loaded->ActiveConnection(connection);
  EXPECT_EQ(errorOf([&] { loaded->UpdateBatch(); }), 0);
}

TEST_F(Xml, NullIsAbsentAndTheEmptyTextIsNot) {
  const auto set = openBanks();
  set->Update({"Descripcion"}, {""});
  set->UpdateBatch();
  const std::string xml = set->SaveXml();
  EXPECT_THAT(xml, HasSubstr("Descripcion=''"));
  EXPECT_THAT(xml, Not(HasSubstr("Nota=''")));
  const auto loaded = Recordset::LoadXml(xml);
  EXPECT_EQ(loaded->Field("Descripcion").Value(), Variant(""));
  EXPECT_TRUE(loaded->Field("Nota").Value().isNull());
}

TEST_F(Xml, PendingChangesAreSavedAndCanBeWrittenLater) {
  const auto set = openBanks();
  set->Update({"Descripcion", "Saldo"}, {"x", Null{}});
  set->MoveNext();
  set->Delete();
  set->AddNew({"Codigo", "Descripcion"}, {"009", Null{}});
  const std::string xml = set->SaveXml();
  set->Close();

  const auto loaded = Recordset::LoadXml(xml);
  EXPECT_EQ(loaded->RecordCount(), 3);
  EXPECT_EQ(loaded->Status(), record_status::kModified);
  EXPECT_EQ(loaded->Field("Descripcion").OriginalValue(), Variant("Uno"));
  EXPECT_TRUE(loaded->Field("Saldo").Value().isNull());
  loaded->MoveLast();
  EXPECT_TRUE(loaded->Field("Descripcion").Value().isNull());
  EXPECT_TRUE(loaded->Field("Saldo").Value().isEmpty());
  EXPECT_EQ(errorOf([&] { loaded->UpdateBatch(); }), 3709);
  loaded->ActiveConnection(connection);
  loaded->UpdateBatch();
  EXPECT_THAT(column(*openBanks(), "Codigo"), ElementsAre("001", "003", "009"));
  EXPECT_THAT(column(*openBanks(), "Descripcion"), ElementsAre("x", "Tres", "Null"));
}

TEST_F(Xml, ASetWithAHiddenKeyCanBeWrittenAfterLoading) {
  const auto loaded = Recordset::LoadXml(open("SELECT Descripcion FROM Bancos")->SaveXml());
  EXPECT_EQ(loaded->Fields().Count(), 1);
  loaded->Field(0).Value("x");
  loaded->ActiveConnection(connection);
  loaded->UpdateBatch();
  EXPECT_EQ(scalar("SELECT Descripcion FROM Bancos WHERE Codigo = '001'"), "x");
}

TEST_F(Xml, HiddenFieldsComeLastAndAreNotSeen) {
  const std::string seen =
      "<s:AttributeType name='A'><s:datatype dt:type='int'/></s:AttributeType>";
  const std::string hidden =
      "<s:AttributeType name='B' rs:hidden='true'><s:datatype dt:type='int'/></s:AttributeType>";
  const std::string another =
      "<s:AttributeType name='C' rs:hidden='true'><s:datatype dt:type='int'/></s:AttributeType>";
  const std::string third =
      "<s:AttributeType name='D'><s:datatype dt:type='int'/></s:AttributeType>";
  EXPECT_EQ(Recordset::LoadXml(document(seen + hidden + another, ""))->Fields().Count(), 1);
  EXPECT_EQ(Recordset::LoadXml(document(seen, ""))->Fields().Count(), 1);
  EXPECT_THAT(sentenceOf([&] { Recordset::LoadXml(document(hidden + seen, "")); }),
              HasSubstr("hidden fields must come last"));
  EXPECT_THAT(sentenceOf([&] { Recordset::LoadXml(document(seen + hidden + third, "")); }),
              HasSubstr("hidden fields must come last"));
}

TEST_F(Xml, OnlyRowsOfAFilterTextAreSavedAndTheSetGoesToItsFirstRow) {
  const auto set = openBanks();
  set->Filter("Codigo > '001'");
  set->MoveLast();
  const auto loaded = Recordset::LoadXml(set->SaveXml());
  EXPECT_THAT(column(*loaded, "Codigo"), ElementsAre("002", "003"));
  EXPECT_EQ(textAt(*set, "Codigo"), "002");
  set->Filter({1.0});
  EXPECT_EQ(Recordset::LoadXml(set->SaveXml())->RecordCount(), 3);
}

TEST_F(Xml, NamesThatAreNoXmlNamesComeBack) {
  Recordset set;
  for (const char* name : {"Forma Pago", "1x", "c0", "xmlns", "Año", "Nº", "a", "A<&'", "b×"}) {
    set.Fields().Append(name, DataType::kInt32);
  }
  set.Open();
  set.AddNew({0, 1, 2, 3, 4, 5, 6, 7, 8}, {0, 1, 2, 3, 4, 5, 6, 7, 8});
  const std::string xml = set.SaveXml();
  EXPECT_THAT(xml, HasSubstr("rs:name='Forma Pago'"));
  EXPECT_THAT(xml, HasSubstr("name='Año'"));
  const auto loaded = Recordset::LoadXml(xml);
  ASSERT_EQ(loaded->Fields().Count(), 9);
  for (std::int32_t i = 0; i < 9; ++i) {
    EXPECT_EQ(loaded->Field(i).Name(), set.Field(i).Name());
    EXPECT_EQ(loaded->Field(i).Value(), Variant(i));
  }
}

TEST_F(Xml, ControlCharactersComeBack) {
  std::string text;
  for (int c = 1; c < 0x20; ++c) text += static_cast<char>(c);
  text += "_x0001_ _x000 x0001_ \x7f";
  const auto set = openBanks();
  set->Field("Nota").Value(text);
  const std::string xml = set->SaveXml();
  for (const char c : xml)
    EXPECT_TRUE(static_cast<unsigned char>(c) >= 0x20 || c == '\n' || c == '\t');
  EXPECT_EQ(Recordset::LoadXml(xml)->Field("Nota").Value(), Variant(text));
}

TEST_F(Xml, TextThatIsNoUtf8IsRefused) {
  lease->session().execute("UPDATE Bancos SET Nota = CAST(x'ff' AS TEXT)");
  const auto set = openBanks();
  EXPECT_EQ(errorOf([&] { set->SaveXml(); }), 3421);
}

// ---- Files

TEST_F(Xml, SaveAndOpenFileGiveTheSameRows) {
  const Folder folder;
  const auto set = openBanks();
  set->Save(folder.file("bancos.xml"));
  const auto loaded = Recordset::OpenFile(folder.file("bancos.xml"));
  EXPECT_THAT(column(*loaded, "Codigo"), ElementsAre("001", "002", "003"));
  EXPECT_EQ(folder.files(), 1U);
}

TEST_F(Xml, AFailedSaveLeavesTheOldFileAndNoOther) {
  const Folder folder;
  const auto set = openBanks();
  set->Save(folder.file("bancos.xml"));
  lease->session().execute("UPDATE Bancos SET Nota = CAST(x'ff' AS TEXT)");
  set->Requery();
  EXPECT_EQ(errorOf([&] { set->Save(folder.file("bancos.xml")); }), 3421);
  EXPECT_EQ(Recordset::OpenFile(folder.file("bancos.xml"))->RecordCount(), 3);
  EXPECT_EQ(folder.files(), 1U);
}

TEST_F(Xml, AFolderThatIsNotThereIsNamed) {
  const Folder folder;
  const auto set = openBanks();
  const std::string path = folder.file("nada/bancos.xml");
  EXPECT_EQ(errorOf([&] { set->Save(path); }), errors::kPathAccess);
  EXPECT_THAT(sentenceOf([&] { set->Save(path); }), HasSubstr(path));
  EXPECT_EQ(errorOf([&] { Recordset::OpenFile(path); }), errors::kFileNotFound);
}

TEST_F(Xml, AFolderInThePlaceOfTheFileIsNamed) {
  const Folder folder;
  const std::string path = folder.file("");
  EXPECT_EQ(errorOf([&] { Recordset::OpenFile(path); }), errors::kPathAccess);
  EXPECT_THAT(sentenceOf([&] { Recordset::OpenFile(path); }), HasSubstr(path));
}

// ---- From strangers

TEST(XmlForeign, TypesAreKnownByTheirNames) {
  const auto set = Recordset::LoadXml(document(
      field("i", "dt:type='int'") + field("h", "dt:type='i2'") + field("u", "dt:type='ui1'") +
          field("f", "dt:type='float'") + field("r", "dt:type='r4'") +
          field("m", "dt:type='number' rs:dbtype='currency'") +
          field("n", "dt:type='number' rs:dbtype='numeric'") +
          field("d", "dt:type='dateTime' rs:dbtype='timestamp'") + field("b", "dt:type='boolean'") +
          field("x", "dt:type='bin.hex' rs:long='true'") + field("g", "dt:type='uuid'") +
          field("s", "dt:type='string' rs:dbtype='str' dt:maxLength='5'") +
          field("l", "dt:type='string' rs:long='true'"),
      "<z:row i='1' h='-2' u='255' f='1.5' r='.5' m='12.3456' n='7' d='2024-02-29T10:20:30' "
      "b='True' x='00FF' g='{1}' s='á' l='m' desconocido='1'/>"
      "<z:row b='0' d='2024-02-29'/><z:row d='10:00:00'/>"));
  const std::vector<std::int32_t> types = {3, 2, 17, 5, 4, 6, 131, 135, 11, 205, 72, 200, 203};
  ASSERT_EQ(set->Fields().Count(), static_cast<std::int32_t>(types.size()));
  for (std::size_t i = 0; i < types.size(); ++i) {
    EXPECT_EQ(set->Field(static_cast<std::int32_t>(i)).Type(), types[i]);
  }
  EXPECT_EQ(set->Field("m").Value(), Variant(Currency::fromScaled(123'456)));
  EXPECT_EQ(set->Field("d").Value(), Variant(Date::of({2024, 2, 29, 10, 20, 30})));
  EXPECT_EQ(set->Field("x").Value(), Variant(Bytes{std::byte{0}, std::byte{255}}));
  EXPECT_EQ(set->Field("s").DefinedSize(), 5);
  set->MoveNext();
  EXPECT_EQ(set->Field("b").Value(), Variant(false));
  EXPECT_EQ(set->Field("d").Value(), Variant(Date::of(2024, 2, 29)));
}

TEST(XmlForeign, EscapesOfOurOwnAreNotReadInForeignFiles) {
  const auto set =
      Recordset::LoadXml(document(field("s", "dt:type='string'"), "<z:row s='_x0041_'/>"));
  EXPECT_EQ(set->Field("s").Value(), Variant("_x0041_"));
}

TEST(XmlForeign, Utf16WithAMarkIsRead) {
  const std::string utf8 = document(field("s", "dt:type='string'"), "<z:row s='hola'/>");
  std::string utf16 = "\xFF\xFE";
  for (const char c : utf8) {
    utf16 += c;
    utf16 += '\0';
  }
  EXPECT_EQ(Recordset::LoadXml(utf16)->Field("s").Value(), Variant("hola"));
}

TEST(XmlHostile, AFaultIsAnErrorWithItsPlace) {
  const auto sentence = [](const std::string& xml) {
    return sentenceOf([&] { Recordset::LoadXml(xml); });
  };
  EXPECT_THAT(sentence("<xml>\n<a></b></xml>"), HasSubstr("line 2"));
  EXPECT_THAT(sentence(document(field("n", "dt:type='int'"), "\n<z:row n='uno'/>")),
              HasSubstr("'uno' is no value of field 'n' at line"));
  EXPECT_THAT(sentence("<html/>"), HasSubstr("root element"));
}

TEST(XmlHostile, EverythingThatIsNoRecordSetIsRefused) {
  const std::string number = field("n", "dt:type='int'");
  const std::vector<std::string> texts = {
      "",
      "<",
      "<xml",
      "<xml/>",
      std::string("\0\0\0", 3),
      document("", ""),
      document(field("", "dt:type='int'"), ""),
      document(number + number, ""),
      document(field("n", "dt:type='jpeg'"), ""),
      document(field("n", ""), ""),
      document(field("s", "dt:type='string' dt:maxLength='-1'"), ""),
      document(number, "<z:row n='99999999999'/>"),
      document(number, "<z:row n=''/>"),
      document(number, "<z:row n='1 '/>"),
      document(field("n", "dt:type='ui1'"), "<z:row n='256'/>"),
      document(field("n", "dt:type='i2'"), "<z:row n='40000'/>"),
      document(field("n", "dt:type='float'"), "<z:row n='nan'/>"),
      document(field("n", "dt:type='float'"), "<z:row n='1e999'/>"),
      document(field("n", "dt:type='number' rs:dbtype='currency'"), "<z:row n='1e300'/>"),
      document(field("n", "dt:type='boolean'"), "<z:row n='quizás'/>"),
      document(field("n", "dt:type='bin.hex'"), "<z:row n='abc'/>"),
      document(field("n", "dt:type='bin.hex'"), "<z:row n='zz'/>"),
      document(field("n", "dt:type='dateTime'"), "<z:row n='2024-13-01T00:00:00'/>"),
      document(field("n", "dt:type='dateTime'"), "<z:row n='2024-01-01T25:00:00'/>"),
      document(field("n", "dt:type='dateTime'"), "<z:row n='ayer'/>"),
      document(field("n", "dt:type='dateTime'"), "<z:row n='2024'/>"),
      document(number, "<rs:update><z:row n='1'/></rs:update>"),
      document(number, "<rs:nada/>"),
      document(field("s", "dt:type='string'"), "<z:row s='\xff'/>")};
  for (const std::string& text : texts) {
    EXPECT_EQ(errorOf([&] { Recordset::LoadXml(text); }), 3001) << text;
    EXPECT_THAT(sentenceOf([&] { Recordset::LoadXml(text); }), HasSubstr(" at line ")) << text;
  }
}

TEST(XmlHostile, EntitiesAreNotExpanded) {
  const std::string xml =
      "<!DOCTYPE xml [<!ENTITY a 'aaaaaaaaaa'><!ENTITY b '&a;&a;&a;&a;'>"
      "<!ENTITY f SYSTEM 'file:///etc/passwd'>]>" +
      document(field("s", "dt:type='string'"), "<z:row s='&b;&f;'/>");
  EXPECT_EQ(Recordset::LoadXml(xml)->Field("s").Value(), Variant("&b;&f;"));
}

TEST(XmlHostile, DeepNestingIsNoDanger) {
  std::string deep;
  for (int i = 0; i < 200'000; ++i) deep += "<a>";
  EXPECT_EQ(errorOf([&] { Recordset::LoadXml(deep); }), 3001);
  std::string closed = deep;
  for (int i = 0; i < 200'000; ++i) closed += "</a>";
  EXPECT_EQ(errorOf([&] { Recordset::LoadXml(document(field("n", "dt:type='int'"), closed)); }),
            3001);
}

TEST_F(Xml, EveryTruncationIsAnErrorOrALoad) {
  const auto set = openBanks();
  set->Update({"Descripcion"}, {"x"});
  set->AddNew({"Codigo"}, {"009"});
  const std::string xml = set->SaveXml();
  for (std::size_t length = 0; length < xml.size(); length += 7) {
    const std::int32_t number = errorOf([&] { Recordset::LoadXml(xml.substr(0, length)); });
    EXPECT_TRUE(number == 3001 || number == 0) << length;
  }
}

TEST_F(Xml, EveryTruncationTellsItsLineAndColumn) {
  const auto set = openBanks();
  set->Update({"Descripcion"}, {"Crédito"});
  set->AddNew({"Codigo"}, {"009"});
  const std::string xml = set->SaveXml();
  std::string utf16 = "\xFF\xFE";
  for (const char c : xml) {
    if (static_cast<unsigned char>(c) >= 0x80) continue;
    utf16 += c;
    utf16 += '\0';
  }
  for (const std::string& whole : {xml, utf16}) {
    // Behind the root's end there are blanks at most.
    for (std::size_t length = 0; length + 8 < whole.size(); ++length) {
      const std::string sentence =
          sentenceOf([&] { Recordset::LoadXml(std::string_view(whole).substr(0, length)); });
      EXPECT_THAT(sentence, testing::ContainsRegex("at line [0-9]+, column [0-9]+")) << length;
    }
  }
}

TEST(XmlHostile, APlaceInUtf16IsThatOfTheText) {
  const std::string text = "<xml>\n<\xC3\xB1/>\n </no></xml>";
  std::string utf16 = "\xFE\xFF";
  for (const char16_t c : std::u16string(u"<xml>\n<ñ/>\n </no></xml>")) {
    utf16 += static_cast<char>(c >> 8);
    utf16 += static_cast<char>(c & 0xFF);
  }
  const std::string place = sentenceOf([&] { Recordset::LoadXml(text); });
  EXPECT_THAT(place, HasSubstr("line 3, column 4"));
  EXPECT_EQ(sentenceOf([&] { Recordset::LoadXml(utf16); }), place);
}

TEST_F(Xml, EveryChangedByteIsAnErrorOrALoad) {
  const auto set = openBanks();
  set->Update({"Descripcion"}, {"x"});
  const std::string xml = set->SaveXml();
  for (std::size_t at = 0; at < xml.size(); at += 3) {
    for (const char c : {'<', '\'', '\xff', '9', '\0'}) {
      std::string changed = xml;
      changed[at] = c;
      const std::int32_t number = errorOf([&] { Recordset::LoadXml(changed); });
      EXPECT_TRUE(number == 3001 || number == 0) << at << " " << number;
    }
  }
}

}  // namespace
}  // namespace tavelor::test

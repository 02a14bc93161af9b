// SPDX-License-Identifier: MIT
// Form 347, as a reader finds it who knows its design only.
#include "tavelor/fiscal/form347.hpp"

#include <gmock/gmock.h>

#include "tests/fiscal/form347_reader.hpp"
#include "tests/fiscal/samples.hpp"

namespace tavelor::fiscal {
namespace {

using ::testing::ElementsAre;
using ::testing::HasSubstr;

Declared declared(bool isSupplier, Party party, std::array<std::int64_t, 4> cents) {
  Declared made;
  made.isSupplier = isSupplier;
  made.party = std::move(party);
  made.called = "the customer 401";
  made.province = 8;
  made.cents = cents;
  return made;
}

Form347 form() {
  Form347 form{.year = 2027, .declarant = {"Rius Puig, Joan", "1234567L"}};
  form.phone = "938860000";
  form.contact = "Ibáñez Güell, M.ª";
  form.declared = {
      declared(true, {"Conserves del Nord, S.L.", "B12345674"}, {100'000, 200'000, 0, 5'000}),
      declared(false, {"Ñandú & Açaí SA", "A58818501"}, {-400'000, 0, 50, 0}),
      declared(false, {"Kneipe GmbH", "", ForeignId{"", "02", "EL123456789"}}, {0, 0, 0, 301'000}),
      declared(false, {"Pub Ltd", "", ForeignId{"US", "04", "X-1"}}, {900'000, 0, 0, 0})};
  form.declared[3].cash = 600'001;
  form.declared[1].cash = 600'000;
  return form;
}

TEST(Form347, BeginsWithWhoDeclaresAndTheSums) {
  Form347 made = form();
  made.declarant.number = "12345678Z";
  const FormLine line = formLines(textOf(made)).at(0);
  EXPECT_EQ(line.at(1, 8), "13472027");
  EXPECT_EQ(line.at(9, 17), "12345678Z");
  EXPECT_EQ(line.text(18, 57), "RIUS PUIG JOAN");
  EXPECT_EQ(line.at(58, 67), "T938860000");
  EXPECT_EQ(line.text(68, 107),
            "IBA\xD1"
            "EZ GUELL M");
  EXPECT_EQ(line.number(108, 120), 3472027000001);
  EXPECT_EQ(line.at(121, 122), "  ");
  EXPECT_EQ(line.number(123, 135), 0);
  EXPECT_EQ(line.number(136, 144), 4);
  EXPECT_EQ(line.cents(145), 305'000 - 399'950 + 301'000 + 900'000);
  EXPECT_EQ(line.number(161, 169), 0);
  EXPECT_EQ(line.cents(170), 0);
  EXPECT_EQ(line.text(186, 500), "");
}

TEST(Form347, TellsEachPartnerWithHisQuarters) {
  Form347 made = form();
  made.declarant.number = "12345678Z";
  const std::vector<FormLine> lines = formLines(textOf(made));
  ASSERT_EQ(lines.size(), 5U);
  const FormLine& supplier = lines[1];
  EXPECT_EQ(supplier.at(1, 26), "2347202712345678ZB12345674");
  EXPECT_EQ(supplier.text(27, 35), "");
  EXPECT_EQ(supplier.text(36, 75), "CONSERVES DEL NORD SL");
  EXPECT_EQ(supplier.at(76, 82), "D08   A");
  EXPECT_EQ(supplier.cents(83), 305'000);
  EXPECT_EQ(supplier.cents(136), 100'000);
  EXPECT_EQ(supplier.cents(168), 200'000);
  EXPECT_EQ(supplier.cents(200), 0);
  EXPECT_EQ(supplier.cents(232), 5'000);
  const FormLine& customer = lines[2];
  EXPECT_EQ(customer.text(36, 75),
            "\xD1"
            "ANDU & A\xC7"
            "AI SA");
  EXPECT_EQ(customer.at(82, 83), "BN") << "what comes back may be more than what went";
  EXPECT_EQ(customer.cents(83), -399'950);
  EXPECT_EQ(customer.cents(136), -400'000);
  EXPECT_EQ(customer.cents(200), 50);
}

TEST(Form347, TellsCashAboveSixThousandWithItsYear) {
  Form347 made = form();
  made.declarant.number = "12345678Z";
  const std::vector<FormLine> lines = formLines(textOf(made));
  EXPECT_EQ(lines[2].number(101, 115), 0) << "6,000.00 are not above";
  EXPECT_EQ(lines[2].number(132, 135), 0);
  EXPECT_EQ(lines[4].number(101, 115), 600'001);
  EXPECT_EQ(lines[4].number(132, 135), 2027);
}

TEST(Form347, TellsForeignersInTheirField) {
  Form347 made = form();
  made.declarant.number = "12345678Z";
  const std::vector<FormLine> lines = formLines(textOf(made));
  EXPECT_EQ(lines[3].text(18, 26), "");
  EXPECT_EQ(lines[3].at(77, 80), "99GR");
  EXPECT_EQ(lines[3].text(264, 280), "EL123456789");
  EXPECT_EQ(lines[4].at(77, 80), "99US");
  EXPECT_EQ(lines[4].text(264, 280), "") << "none of the Union";
}

TEST(Form347, PutsNumbersAtTheRightBehindZeros) {
  Form347 made = form();
  made.declarant = {"Rius Puig, Joan", "12345678Z"};
  made.declared = {made.declared[0]};
  made.declared[0].cents = {99'999'999'999'999, 0, 0, 0};
  const FormLine line = formLines(textOf(made)).at(1);
  EXPECT_EQ(line.at(83, 98), " 099999999999999");
  made.declared[0].cents = {1'000'000'000'000'000, 0, 0, 0};
  EXPECT_EQ(test::errorOf([&] { textOf(made); }), errors::kOverflow);
}

TEST(Form347, SaysWhatItDoesToAnEarlierOne) {
  Form347 made = form();
  made.declarant.number = "12345678Z";
  made.number = 3470000000012;
  made.kind = FormKind::kReplaces;
  made.previous = 3470000000011;
  FormLine line = formLines(textOf(made)).at(0);
  EXPECT_EQ(line.at(108, 135), "3470000000012 S3470000000011");
  made.kind = FormKind::kComplements;
  line = formLines(textOf(made)).at(0);
  EXPECT_EQ(line.at(121, 122), "C ");
}

TEST(Form347, IsDueAboveTheLimitWhateverTheSign) {
  Declared each;
  each.cents = {300'506, 0, 0, 0};
  EXPECT_FALSE(each.isDue());
  each.cents = {300'507, 0, 0, 0};
  EXPECT_TRUE(each.isDue());
  each.cents = {0, -300'507, 0, 0};
  EXPECT_TRUE(each.isDue());
}

TEST(Form347, IsNotWrittenWhileSomethingIsMissing) {
  Form347 made = form();
  made.declared[0].province.reset();
  made.declared[1].party.number.clear();
  made.phone = "12";
  made.number = 12;
  EXPECT_THAT(faultsOf(made),
              ElementsAre(HasSubstr("the shop has the fiscal number 1234567L, which"),
                          "the phone has not nine digits",
                          HasSubstr("the number of the declaration has not thirteen digits"),
                          "the customer 401 has neither a postcode nor a province",
                          "the customer 401 has no fiscal number"));
  EXPECT_EQ(test::errorOf([&] { textOf(made); }), errors::kInvalidCall);
}

/// Every field of the design holds what its nature lets it, and the fields leave nothing out.
void expectDesigned(const FormLine& line, const std::string& title) {
  const std::vector<DesignedField> fields = designedFields(title);
  std::size_t next = 1;
  for (const DesignedField& field : fields) {
    SCOPED_TRACE(title + " " + std::to_string(field.from) + " " + field.nature);
    EXPECT_EQ(field.from, next);
    next = field.to + 1;
    const std::string content = line.at(field.from, field.to);
    if (field.nature.front() == '-') {
      EXPECT_EQ(content.find_first_not_of(' '), std::string::npos);
    } else if (field.nature.front() == 'N' && field.from != 77) {
      // 77 to 80 is a province and the letters of a country.
      EXPECT_EQ(content.find_first_not_of("0123456789"), std::string::npos) << content;
    }
  }
  EXPECT_EQ(next, 501U) << "the design is of 500 characters";
}

TEST(Form347, KeepsToEveryFieldOfTheDesign) {
  TAVELOR_NEEDS_SCHEMAS();
  Form347 made = form();
  made.declarant.number = "12345678Z";
  const std::vector<FormLine> lines = formLines(textOf(made));
  expectDesigned(lines[0], "A.- TIPO DE REGISTRO 1");
  for (std::size_t at = 1; at < lines.size(); ++at) {
    expectDesigned(lines[at], "B.- TIPO DE REGISTRO 2:    REGISTRO DE DECLARADO");
  }
}

}  // namespace
}  // namespace tavelor::fiscal

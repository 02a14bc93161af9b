// SPDX-License-Identifier: MIT
// Sort on texts that begin alike, and beside a plain stable sort.
#include <algorithm>
#include <cstdint>
#include <random>

#include "tests/recordset/support.hpp"

namespace tavelor::test {
namespace {

using testing::ElementsAre;

struct Line {
  Variant text;
  Variant number;
  std::int32_t place = 0;
};

Recordset& fill(Recordset& set, const std::vector<Line>& lines) {
  set.Fields().Append("Texto", DataType::kLongVarWChar);
  set.Fields().Append("Numero", DataType::kCurrency);
  set.Fields().Append("Lugar", DataType::kInt32);
  set.Open();
  for (const Line& line : lines) set.AddNew({0, 1, 2}, {line.text, line.number, line.place});
  set.UpdateBatch();
  return set;
}

std::vector<std::int32_t> places(Recordset& set) {
  std::vector<std::int32_t> found;
  for (set.MoveFirst(); !set.Eof(); set.MoveNext()) {
    found.push_back(*set.Field("Lugar").Value().getIf<std::int32_t>());
  }
  return found;
}

TEST(Sort, TextsThatBeginAlikeGoByWhatFollows) {
  Recordset set;
  fill(set, {{"ARTICULO-000000000000002", 0, 1},
             {"ARTICULO-000000000000001B", 0, 2},
             {"ARTICULO-000000000000001", 0, 3},
             {"ARTICULO-", 0, 4}});
  set.Sort("Texto");
  EXPECT_THAT(places(set), ElementsAre(4, 3, 2, 1));
  set.Sort("Texto DESC");
  EXPECT_THAT(places(set), ElementsAre(1, 2, 3, 4));
}

TEST(Sort, ATextComesBeforeTheSameWithANulBehindIt) {
  // A field takes no such text, but another program may have stored one: the file that comes from
  // it has it escaped.
  constexpr std::string_view kXml =
      "<xml xmlns:tv='urn:tavelor:recordset'><s:Schema><s:ElementType name='row'>"
      "<s:AttributeType name='Texto'><s:datatype dt:type='string' tv:type='203'/></s:AttributeType>"
      "<s:AttributeType name='Lugar'><s:datatype dt:type='int' tv:type='3'/></s:AttributeType>"
      "</s:ElementType></s:Schema><rs:data>"
      "<z:row Texto='abcdefg_x0000_' Lugar='1'/><z:row Texto='abcdefg' Lugar='2'/>"
      "<z:row Texto='abc_x0000__x0000_' Lugar='3'/><z:row Texto='abc_x0000_' Lugar='4'/>"
      "<z:row Texto='abc' Lugar='5'/></rs:data></xml>";
  const auto set = Recordset::LoadXml(kXml);
  ASSERT_EQ(set->Field("Texto").Value(), Variant(std::string("abcdefg\0", 8)));
  set->Sort("Texto");
  EXPECT_THAT(places(*set), ElementsAre(5, 4, 3, 2, 1));
}

TEST(Sort, NullComesBeforeTheEmptyTextAndTheLeastAmount) {
  Recordset set;
  const Variant least = Currency::fromScaled(std::numeric_limits<std::int64_t>::min());
  fill(set, {{"", least, 1}, {Null{}, Null{}, 2}, {"", least, 3}, {Null{}, Null{}, 4}});
  for (const char* field : {"Texto", "Numero"}) {
    set.Sort(field);
    EXPECT_THAT(places(set), ElementsAre(2, 4, 1, 3)) << field;
    set.Sort(std::string(field) + " DESC");
    EXPECT_THAT(places(set), ElementsAre(1, 3, 2, 4)) << field;
  }
}

TEST(Sort, AFieldNamedAgainDecidesNothingHoweverOften) {
  Recordset set;
  fill(set, {{"b", 1, 1}, {"a", 1, 2}, {"b", 1, 3}, {"a", 1, 4}});
  std::string order = "Texto DESC";
  for (int i = 0; i < 60'000; ++i) order += ", Texto, Numero";
  set.Sort(order);
  EXPECT_THAT(places(set), ElementsAre(1, 3, 2, 4));
}

TEST(Sort, ManyFieldsInWhichAllRowsAreEqualNeedNoStack) {
  constexpr int kFields = 500;
  Recordset set;
  std::string order;
  for (int i = 0; i < kFields; ++i) {
    const std::string name = "F" + std::to_string(i);
    set.Fields().Append(name, DataType::kVarWChar, 9);
    order += (i == 0 ? "" : ", ") + name;
  }
  set.Open();
  for (const char* last : {"b", "a"}) {
    set.AddNew();
    for (int i = 0; i < kFields; ++i) set.Field(i).Value(i + 1 < kFields ? "x" : last);
    set.Update();
  }
  set.UpdateBatch();
  set.Sort(order);
  EXPECT_EQ(set.Field(kFields - 1).Value(), Variant("a"));
}

// Each text is the beginning of all that follow it.
TEST(Sort, TextsThatEndOneAfterTheOtherComeOutInOrder) {
  std::vector<Line> lines;
  constexpr std::int32_t kLines = 400;
  for (std::int32_t i = 0; i < kLines; ++i) {
    const auto length = static_cast<std::size_t>((kLines - i) * 8);
    lines.push_back({std::string(length, 'a'), 0, i});
  }
  Recordset set;
  fill(set, lines);
  set.Sort("Texto");
  EXPECT_EQ(places(set).front(), kLines - 1);
  EXPECT_EQ(places(set).back(), 0);
}

TEST(Sort, AgreesWithAStableSortOnManyFieldsOfAnyLength) {
  std::mt19937 random(7);
  std::vector<Line> lines;
  for (std::int32_t i = 0; i < 3000; ++i) {
    std::string text(random() % 5 * 7 + random() % 3, 'a');
    for (char& c : text) c = random() % 8 == 0 ? 'b' : 'a';
    lines.push_back({random() % 10 == 0 ? Variant(Null{}) : Variant(text),
                     random() % 10 == 0 ? Variant(Null{})
                                        : Variant(Currency::fromScaled(
                                              static_cast<std::int64_t>(random() % 5) - 2)),
                     i});
  }
  Recordset set;
  fill(set, lines);
  set.Sort("Texto DESC, Numero");

  // Null is the smallest; both types compare with their like by themselves.
  const auto compare = [](const Variant& a, const Variant& b) {
    if (a.isNull() || b.isNull())
      return static_cast<int>(b.isNull()) - static_cast<int>(a.isNull());
    if (const auto* text = a.getIf<std::string>()) return text->compare(*b.getIf<std::string>());
    const auto x = a.getIf<Currency>()->scaled();
    const auto y = b.getIf<Currency>()->scaled();
    return static_cast<int>(x > y) - static_cast<int>(x < y);
  };
  std::stable_sort(lines.begin(), lines.end(), [&](const Line& a, const Line& b) {
    const int texts = compare(b.text, a.text);
    return texts != 0 ? texts < 0 : compare(a.number, b.number) < 0;
  });
  std::vector<std::int32_t> expected;
  for (const Line& line : lines) expected.push_back(line.place);
  EXPECT_EQ(places(set), expected);
}

TEST(Sort, ManyNumbersOfAnySignAndSizeGoBothWays) {
  std::mt19937_64 random(11);
  std::vector<Line> lines;
  for (std::int32_t i = 0; i < 2000; ++i) {
    const auto scaled = static_cast<std::int64_t>(random()) >> random() % 60;
    lines.push_back({"", Variant(Currency::fromScaled(scaled)), i});
  }
  const auto number = [&](std::int32_t place) {
    return lines[static_cast<std::size_t>(place)].number.getIf<Currency>()->scaled();
  };
  Recordset set;
  fill(set, lines);
  set.Sort("Numero");
  const std::vector<std::int32_t> up = places(set);
  ASSERT_EQ(up.size(), lines.size());
  EXPECT_TRUE(std::is_sorted(
      up.begin(), up.end(), [&](std::int32_t a, std::int32_t b) { return number(a) < number(b); }));
  set.Sort("Numero DESC");
  const std::vector<std::int32_t> down = places(set);
  EXPECT_TRUE(std::is_sorted(down.begin(), down.end(), [&](std::int32_t a, std::int32_t b) {
    return number(a) > number(b);
  }));
}

}  // namespace
}  // namespace tavelor::test

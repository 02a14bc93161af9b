// SPDX-License-Identifier: MIT
// JSON as requests bring it.
#include "tavelor/web/json.hpp"

#include <gtest/gtest.h>

#include "tavelor/platform/variant.hpp"
#include "tavelor/web/answer.hpp"

namespace tavelor::web {
namespace {

template <typename Action>
std::string complaintOf(Action&& action) {
  try {
    action();
  } catch (const Failure& failure) {
    return std::to_string(failure.status) + " " + failure.what();
  }
  return {};
}

TEST(Json, ThatIsBrokenIsRefusedWithItsPlace) {
  EXPECT_EQ(complaintOf([] { parsed("{\"a\":}"); }),
            "400 This is no JSON: what stands at byte 6 does not fit.");
  for (const char* const text :
       {"", "{", "{\"a\"", "[1,]", "\"\xff\"", "nul", "1 2", "{'a':1}", "\x00"}) {
    EXPECT_NE(complaintOf([&] { parsed(text); }), "") << text;
  }
  EXPECT_EQ(complaintOf([] { parsed("[1e999]"); }),
            "400 This JSON has a number that is too large.");
}

TEST(Json, IsNestedThirtyTwoLevelsAtMost) {
  const auto nested = [](std::size_t levels) {
    return std::string(levels, '[') + std::string(levels, ']');
  };
  EXPECT_EQ(complaintOf([&] { parsed(nested(32)); }), "");
  EXPECT_EQ(complaintOf([&] { parsed(nested(33)); }), "400 The JSON is nested deeper than 32.");
  EXPECT_NE(complaintOf([&] { parsed(nested(500'000)); }), "");
  EXPECT_NE(complaintOf([&] { parsed(std::string(900'000, '[')); }), "");
}

TEST(Json, HasValuesAsTheyAre) {
  EXPECT_EQ(dumped(toJson(Variant(Currency::fromScaled(12'345)))), "1.2345");
  EXPECT_EQ(dumped(toJson(Variant(0.1F))), "0.1");
  EXPECT_EQ(dumped(toJson(0.1 + 0.2)), "0.3");
  EXPECT_EQ(dumped(toJson(Variant(Date::of(2026, 11, 20)))), "\"2026-11-20\"");
  EXPECT_EQ(dumped(toJson(Variant(Date::of({2026, 11, 20, 10, 32, 5})))),
            "\"2026-11-20T10:32:05\"");
  EXPECT_EQ(dumped(toJson(Variant(Null()))), "null");
  EXPECT_EQ(dumped(toJson(Variant(Bytes{std::byte{1}, std::byte{2}}))), "\"AQI=\"");
  EXPECT_EQ(dumped(toJson(Variant("a\xff"))), "\"a\xEF\xBF\xBD\"") << "always UTF-8";
  EXPECT_EQ(dumped(toJson(Variant(1e300 * 1e300))), "null");
  EXPECT_EQ(dumped(toJson(Variant(17.0))), "17");
}

TEST(Json, ReadsAsItsTypes) {
  EXPECT_EQ(variantOf(Json(17), "x"), Variant(17));
  EXPECT_EQ(variantOf(Json(9'000'000'000), "x"), Variant(9e9));
  EXPECT_EQ(variantOf(Json(18'446'744'073'709'551'615ULL), "x").type(), VariantType::kDouble);
  EXPECT_EQ(variantOf(Json(true), "x"), Variant(true));
  EXPECT_TRUE(variantOf(Json(nullptr), "x").isNull());
  EXPECT_EQ(complaintOf([] { variantOf(Json::array(), "values.Codigo"); }),
            "400 values.Codigo must be a text, a number, true, false or null.");
}

TEST(Json, TellsDaysAsTheCalendarHasThem) {
  EXPECT_EQ(dayOf("2026-11-20"), Date::of(2026, 11, 20));
  EXPECT_EQ(dayOf("2026-11-20T10:32"), Date::of({2026, 11, 20, 10, 32, 0}));
  for (const char* const text :
       {"", "2026-02-30", "20-11-2026", "2026-11-2", "2026-11-20T", "2026-11-20T25:00",
        "0000-00-00", "2026-11-20x10:32", "+026-11-20"}) {
    EXPECT_FALSE(dayOf(text)) << text;
  }
}

TEST(JsonFields, SayWhatIsWrongAndWhere) {
  const Json line =
      Json::parse(R"({"code":17,"quantity":"2","name":"abcdef","deep":{},"bell":"\u0007"})");
  const Fields fields(line, "lines[2]");
  EXPECT_EQ(complaintOf([&] { fields.text("code", 5); }), "400 lines[2].code must be a text.");
  EXPECT_EQ(complaintOf([&] { fields.number("quantity"); }),
            "400 lines[2].quantity must be a number.");
  EXPECT_EQ(complaintOf([&] { fields.text("name", 5); }),
            "400 lines[2].name may have 5 characters at most.");
  EXPECT_EQ(complaintOf([&] { fields.text("bell", 5); }),
            "400 lines[2].bell has a control character.");
  EXPECT_EQ(complaintOf([&] { fields.text("none", 5); }), "400 lines[2].none is missing.");
  EXPECT_EQ(complaintOf([&] { fields.array("deep", 5); }), "400 lines[2].deep must be an array.");
  EXPECT_EQ(complaintOf([&] {
              fields.allowOnly({"code", "quantity", "name", "deep"});
            }),
            "400 lines[2].bell is not known here.");
  EXPECT_EQ(complaintOf([] { Fields(Json(17)); }), "400 The body must be an object.");
}

}  // namespace
}  // namespace tavelor::web

// SPDX-License-Identifier: MIT
// The dialect's functions on a server give what the embedded engine gives, for every value.
#include <array>
#include <cmath>

#include "tavelor/platform/text.hpp"
#include "tavelor/platform/utf8.hpp"
#include "tests/postgres/functions_support.hpp"
#include "tests/postgres/functions_values.hpp"

namespace tavelor::engine::test {
namespace {

TEST_F(PostgresFunctions, NumbersOfOneArgument) {
  std::vector<Argument> numbers = argumentsOf(kNumbers);
  for (int i = 0; i < 1500; ++i) numbers.push_back(Argument::of(someNumber()));
  for (const char* call : {"tv_int(?1)", "tv_fix(?1)", "tv_not(?1)", "tv_single(?1)",
                           "tv_currency(?1)", "tv_number(?1)", "tv_val(?1)", "tv_whole(?1, 2)",
                           "tv_whole(?1, 3)", "tv_whole(?1, 17)", "tv_round(?1, 0)"}) {
    compareEach(call, numbers);
  }
  std::vector<Argument> wholes = argumentsOf(kWholes);
  for (int i = 0; i < 200; ++i) wholes.push_back(Argument::of(someWhole()));
  for (const char* call : {"tv_int(?1)", "tv_fix(?1)", "tv_not(?1)", "tv_currency(?1)",
                           "tv_number(?1)", "tv_whole(?1, 2)", "tv_whole(?1, 3)",
                           "tv_whole(?1, 17)", "tv_round(?1, 0)", "tv_single(?1)"}) {
    compareEach(call, wholes);
  }
}

TEST_F(PostgresFunctions, NumbersOfTwoArguments) {
  const std::vector<Argument> numbers = argumentsOf(kNumbers);
  for (const char* call : {"tv_add(?1, ?2)", "tv_sub(?1, ?2)", "tv_mul(?1, ?2)", "tv_div(?1, ?2)",
                           "tv_power(?1, ?2)"}) {
    compareAll(call, numbers, numbers);
    for (int i = 0; i < 1500; ++i) {
      compare(call, {Argument::of(someNumber()), Argument::of(someNumber())});
    }
  }
  const std::vector<double> few{
      0,   -0.4, 0.5,   1.5,          2.5,           -1,     7,   -7, 3.4999999999999996, 12.6,
      5.5, -2.5, 255.5, 2147483647.4, -2147483648.6, 9.3e18, 1e-5};
  const std::vector<std::int64_t> fewWholes{
      0, -1, 1, 2, 12, 10, -7, 2147483647, -2147483648, 2147483648, kMost64, kLeast64};
  std::vector<Argument> both = argumentsOf(few);
  for (const std::int64_t whole : fewWholes) both.push_back(Argument::of(whole));
  for (const char* call :
       {"tv_intdiv(?1, ?2)", "tv_mod(?1, ?2)", "tv_and(?1, ?2)", "tv_or(?1, ?2)"}) {
    compareAll(call, both, both);
  }
}

TEST_F(PostgresFunctions, ChainsAreCalculatedFromTheLeft) {
  for (int i = 0; i < 500; ++i) {
    const Arguments three{Argument::of(someNumber()), Argument::of(someNumber()),
                          Argument::of(someNumber())};
    compare("tv_add(?1, ?2, ?3)", three);
    compare("tv_sub(?1, ?2, ?3)", three);
    compare("tv_mul(?1, ?2, ?3)", three);
    const Arguments money{Argument::of(someAmount()), Argument::of(someAmount()),
                          Argument::of(someAmount())};
    compare("tv_money_add(?1, ?2, ?3)", money);
    compare("tv_money_sub(?1, ?2, ?3)", money);
  }
  compare("tv_add(?1, ?2, ?3)", {Argument::of(1.0), Argument::null(), Argument::of(2.0)});
  compare("tv_add(?1, ?2, ?3)", {Argument::of(1e308), Argument::of(1e308), Argument::of(-1e308)});
}

TEST_F(PostgresFunctions, RoundGoesToEvenOnTheDigitsAsSeen) {
  const std::vector<std::int64_t> places{0, 1, 2, 3, 4, 5, 9, 10, 15, 30, 99, -1};
  std::vector<Argument> numbers = argumentsOf(kNumbers);
  for (int i = 0; i < 500; ++i) numbers.push_back(Argument::of(someNumber()));
  compareAll("tv_round(?1, ?2)", numbers, argumentsOf(places));
  compareAll("tv_round(?1, ?2)", argumentsOf(std::vector<double>{1.25, -1.35, 7}),
             argumentsOf(std::vector<double>{0.5, 1.5, 2.5, -0.4, -0.6, 3e9}));
  compareAll("tv_round(?1, ?2)", argumentsOf(kWholes), argumentsOf(places));
}

TEST_F(PostgresFunctions, MoneyStaysExactWhereDoublesDo) {
  std::vector<Argument> money = amounts();
  for (int i = 0; i < 20; ++i) money.push_back(Argument::of(someAmount()));
  for (const char* call : {"tv_money_add(?1, ?2)", "tv_money_sub(?1, ?2)"}) {
    compareAll(call, money, money);
  }
  // A product is rounded from the double that the embedded engine keeps.
  compareAll("tv_money_mul(?1, ?2)", amounts(), amounts());
  compareAll("tv_money_mul(?1, ?2)", amounts(),
             argumentsOf(std::vector<std::int64_t>{0, 1, -3, 12}));
  for (const char* call : {"tv_money_neg(?1)", "tv_money_abs(?1)", "tv_currency(?1)"}) {
    compareEach(call, money);
  }
  compareAll("tv_money_round(?1, ?2)", amounts(),
             argumentsOf(std::vector<std::int64_t>{-1, 0, 1, 2, 3, 4, 9}));
}

TEST_F(PostgresFunctions, MoneyBeyondItsLimitsRaises6) {
  const Currency most = Currency::fromScaled(kMost64);
  const Currency least = Currency::fromScaled(kLeast64);
  compare("tv_money_add(?1, ?2)", {Argument::of(most), Argument::of(Currency::fromScaled(10000))});
  compare("tv_money_sub(?1, ?2)", {Argument::of(least), Argument::of(Currency::fromScaled(10000))});
  compare("tv_money_mul(?1, ?2)", {Argument::of(most), Argument::of(Currency::fromScaled(20000))});
  compare("tv_money_neg(?1)", {Argument::of(least)});
  compare("tv_money_abs(?1)", {Argument::of(least)});
  compare("tv_currency(?1)", {Argument::of(std::int64_t{922337203685478})});
}

/// A call of an aggregate over so many rows.
std::string overRows(std::string_view aggregate, std::size_t count) {
  std::string call = fmt::format("(SELECT {}(column1) FROM (VALUES ", aggregate);
  for (std::size_t i = 1; i <= count; ++i) call += fmt::format("{}(?{})", i == 1 ? "" : ", ", i);
  return call + ") AS r)";
}

TEST_F(PostgresFunctions, TotalsAreExactWhateverTheirOrder) {
  constexpr std::size_t kSizes[] = {1, 2, 3, 7, 20, 80};
  for (const std::size_t size : kSizes) {
    for (int i = 0; i < 40; ++i) {
      Arguments numbers;
      Arguments money;
      Arguments wholes;
      for (std::size_t n = 0; n < size; ++n) {
        const bool isNull = n > 0 && random_() % 9 == 0;
        const double number = someNumber();
        numbers.push_back(isNull ? Argument::null() : Argument::of(number));
        money.push_back(isNull ? Argument::null()
                               : Argument::of(Currency::fromScaled(someAmount().scaled() >> 12)));
        wholes.push_back(isNull ? Argument::null() : Argument::of(someWhole() >> 16));
      }
      compare(overRows("tv_sum", size), numbers);
      compare(overRows("tv_avg", size), numbers);
      compare(overRows("tv_money_sum", size), money);
      for (const char* aggregate : {"tv_first", "tv_last"}) {
        compare(overRows(aggregate, size), numbers);
        compare(overRows(aggregate, size), wholes);
      }
    }
  }
  const Argument none{Value::ofReal(0), {}};
  for (const char* aggregate : {"tv_sum", "tv_avg", "tv_money_sum", "tv_first", "tv_last"}) {
    compare(
        "(SELECT " + std::string(aggregate) + "(column1) FROM (VALUES (1.5)) AS r WHERE ?1 <> 0)",
        {none});
  }
  compare(overRows("tv_sum", 2), {Argument::of(1e308), Argument::of(1e308)});
  compare(overRows("tv_money_sum", 3),
          {Argument::of(Currency::fromScaled(kMost64)), Argument::of(Currency::fromScaled(kMost64)),
           Argument::of(Currency::fromScaled(-kMost64))});
  compare(overRows("tv_money_sum", 2), {Argument::of(Currency::fromScaled(kMost64)),
                                        Argument::of(Currency::fromScaled(kMost64))});
}

TEST_F(PostgresFunctions, TotalsOfWholeNumbersAreWhole) {
  for (const char* type : {"smallint", "integer", "bigint"}) {
    const std::string rows = fmt::format(" FROM (VALUES (1::{0}), (2), (NULL), (4)) AS r(x)", type);
    EXPECT_EQ(server_->call("SELECT tv_sum(x)" + rows, {}).value, numberText(7));
    EXPECT_EQ(server_->call("SELECT pg_typeof(tv_sum(x))::text" + rows, {}).value, "'bigint'");
    EXPECT_EQ(server_->call("SELECT tv_avg(x)" + rows, {}).value, numberText(7.0 / 3));
    EXPECT_EQ(server_->call("SELECT pg_typeof(tv_avg(x))::text" + rows, {}).value,
              "'double precision'");
    EXPECT_EQ(server_->call("SELECT tv_avg(x)" + rows + " WHERE x > 9", {}).value, "Null");
  }
  EXPECT_EQ(
      server_->call("SELECT tv_avg(x) FROM (VALUES (0.0001::numeric), (0.0002)) AS r(x)", {}).value,
      numberText(0.0002))
      << "a mean of amounts is an amount";
}

TEST_F(PostgresFunctions, LettersChangeCaseByTheLibrarysTable) {
  compareEach("tv_ucase(?1)", argumentsOf(kTexts));
  compareEach("tv_lcase(?1)", argumentsOf(kTexts));
  // Every character that there is, a thousand at a time.
  std::string block;
  int count = 0;
  for (char32_t code = 1; code < 0x110000; ++code) {
    if (code == 0xD800) code = 0xE000;
    utf8::append(block, code);
    if (++count % 1000 != 0 && code != 0x10FFFF) continue;
    compare("tv_ucase(?1)", {Argument::of(block)});
    compare("tv_lcase(?1)", {Argument::of(block)});
    const Outcome folded = server_->call("SELECT tv_fold($1)", {Argument::of(block)});
    EXPECT_EQ(folded.value, "'" + text::foldCase(block) + "'");
    block.clear();
  }
}

TEST_F(PostgresFunctions, LikeMatchesAsTheLibrarysOwn) {
  compareAll("tv_like(?1, ?2)", argumentsOf(kTexts), argumentsOf(kPatterns));
  const std::vector<std::string> pieces{"a",    "b",    "A", "ñ", "Ñ", "*",  "?", "#",
                                        "[ab]", "[!a]", "7", "%", "_", "\\", ".", "[a-ñ]",
                                        "é",    "(",    "+", "^", "$", "|"};
  for (int i = 0; i < 4000; ++i) {
    std::string text;
    std::string pattern;
    for (std::size_t n = random_() % 8; n > 0; --n) text += oneOf(pieces);
    for (std::size_t n = random_() % 6; n > 0; --n) pattern += oneOf(pieces);
    compare("tv_like(?1, ?2)", {Argument::of(text), Argument::of(pattern)});
  }
}

TEST_F(PostgresFunctions, AWrongPatternRaisesOnlyWhereARowIsLookedAt) {
  const Arguments wrong{Argument::of("[a")};
  const std::string rows = " FROM (VALUES ('a')) AS r(t) WHERE length(t) > ";
  EXPECT_EQ(server_->call("SELECT tv_like(t, $1)" + rows + "0", wrong).error,
            errors::kInvalidPattern);
  EXPECT_EQ(server_->call("SELECT max(tv_like(t, $1)::integer)" + rows + "9", wrong).value, "Null");
}

TEST_F(PostgresFunctions, TextsAreCutByCharacters) {
  const std::vector<std::int64_t> counts{0, 1, 2, 3, 7, 100, 3000000000, kMost64, -1, kLeast64};
  const std::vector<double> reals{0.5, 1.5, 2.5, -0.4, -0.6, 1e10, 1e19};
  for (const char* call : {"tv_left(?1, ?2)", "tv_right(?1, ?2)", "tv_mid(?1, ?2)"}) {
    compareAll(call, argumentsOf(kTexts), argumentsOf(counts));
    compareAll(call, argumentsOf(kTexts), argumentsOf(reals));
  }
  for (const std::string& text : kTexts) {
    for (const std::int64_t start : counts) {
      for (const std::int64_t count : counts) {
        compare("tv_mid(?1, ?2, ?3)",
                {Argument::of(text), Argument::of(start), Argument::of(count)});
      }
    }
  }
  for (const char* call : {"trim(?1)", "ltrim(?1)", "rtrim(?1)", "length(?1)"}) {
    compareEach(call, argumentsOf(kTexts));
  }
  for (const std::int64_t room : {0, 3, 12, 255}) {
    compareEach(fmt::format("tv_fit(?1, {})", room), argumentsOf(kTexts));
  }
}

TEST_F(PostgresFunctions, PartsAreFoundInEitherCase) {
  const std::vector<std::string> parts{"",   "a", "A", "ñ", "Ñ", "de", "NÚMERO",
                                       "ss", "ß", "i", "İ", "σ", "😀",  "x"};
  compareAll("tv_instr(?1, ?2)", argumentsOf(kTexts), argumentsOf(parts));
  for (const std::string& text : kTexts) {
    for (const std::string& part : parts) {
      for (const std::int64_t start : {0, 1, 2, 5, 1000}) {
        compare("tv_instr(?1, ?2, ?3)",
                {Argument::of(start), Argument::of(text), Argument::of(part)});
        for (const std::int64_t by : {-1, 0, 1, 2, 3}) {
          compare("tv_instr(?1, ?2, ?3, ?4)",
                  {Argument::of(start), Argument::of(text), Argument::of(part), Argument::of(by)});
        }
      }
    }
  }
  compare("tv_instr(?1, ?2, ?3)", {Argument::of(1.5), Argument::of("aba"), Argument::of("a")});
}

/// An own country: nothing as in Spain.
std::shared_ptr<const Locale> ownLocale() {
  auto locale = std::make_shared<Locale>(*Locale::neutral());
  locale->name = "";
  locale->thousands = "'";
  locale->currencySymbol = "$\\";
  locale->dateOrder = DateOrder::kMonthDayYear;
  locale->dateSeparator = ".";
  locale->timeSeparator = "h";
  locale->shortDate = "mm/dd/yy";
  locale->longTime = "h:nn:ss AM/PM";
  return locale;
}

std::vector<std::shared_ptr<const Locale>> locales() {
  return {Locale::spanish(), Locale::neutral(), ownLocale()};
}

TEST_F(PostgresFunctions, TextsReadAsNumbersByTheLocale) {
  const std::vector<std::string> pieces{"1", "23", ",",  ".",  "-", "(",   ")", "€",
                                        " ", "e",  "e5", "&H", "F", "$\\", "'"};
  for (const auto& locale : locales()) {
    useLocale(locale);
    compareEach("tv_number(?1)", argumentsOf(kNumberTexts));
    compareEach("tv_val(?1)", argumentsOf(kNumberTexts));
    for (int i = 0; i < 2000; ++i) {
      std::string text;
      for (std::size_t n = 1 + random_() % 6; n > 0; --n) text += oneOf(pieces);
      compare("tv_number(?1)", {Argument::of(text)});
      compare("tv_val(?1)", {Argument::of(text)});
    }
  }
}

TEST_F(PostgresFunctions, TextsReadAsDatesByTheLocale) {
  const std::vector<std::string> pieces{"1",  "12",    "31",     "2024", "/",  "-",
                                        ":",  " ",     "mar",    "mayo", "de", ",",
                                        "pm", "10:30", "martes", "sept", "May"};
  for (const auto& locale : locales()) {
    useLocale(locale);
    compareEach("tv_date(?1)", argumentsOf(kDates));
    for (int i = 0; i < 3000; ++i) {
      std::string text;
      for (std::size_t n = 1 + random_() % 8; n > 0; --n)
        text += oneOf(pieces) + (random_() % 3 == 0 ? " " : "");
      compare("tv_date(?1)", {Argument::of(text)});
    }
  }
}

const std::vector<double> kDays{0,
                                -0.0,
                                0.25,
                                -0.25,
                                -1.25,
                                -1,
                                1,
                                46347,
                                46347.75,
                                46347.999999,
                                46347.9999999,
                                -1.9999999,
                                59,
                                60,
                                61,
                                -657434,
                                -657434.5,
                                -657434.99999999,
                                -657435,
                                2958465,
                                2958465.5,
                                2958465.99999,
                                2958465.9999999999,
                                2958466,
                                1e10,
                                -1e10,
                                36526,
                                36585,
                                45351,
                                45351.999988425926,
                                0.5 / 86400,
                                1.5 / 86400,
                                46347.5 + 0.5 / 86400};

TEST_F(PostgresFunctions, DatesComeApart) {
  std::vector<Argument> days = argumentsOf(kDays);
  for (int i = 0; i < 300; ++i) days.push_back(Argument::of(someSecond()));
  for (const char* part : {"yyyy", "m", "d", "h", "n", "s", "w"}) {
    compareEach(fmt::format("tv_part('{}', ?1)", part), days);
  }
  compare("tv_part('z', ?1)", {Argument::of(1.5)});
  compareEach("tv_day(?1)", days);
  compareEach("tv_date(?1)", days);
  compareAll("tv_part('w', ?1, ?2)", argumentsOf(std::vector<double>{46347, -3.5, 0}),
             argumentsOf(std::vector<std::int64_t>{-1, 0, 1, 2, 3, 4, 5, 6, 7, 8}));
  compareAll("tv_part('w', ?1, ?2)", argumentsOf(std::vector<double>{46347, -3.5, 0}),
             argumentsOf(std::vector<double>{0.5, 1.5, 7.4}));
  const std::vector<std::int64_t> years{99, 100, 1899, 1900, 2000, 2024, 9999, 10000, -5, 4000001};
  for (const std::int64_t year : years) {
    for (const std::int64_t month : {-13, 0, 1, 2, 12, 13, 25, 4000000}) {
      for (const std::int64_t day : {-400, 0, 1, 29, 30, 31, 32, 4000000}) {
        compare("tv_date_serial(?1, ?2, ?3)",
                {Argument::of(year), Argument::of(month), Argument::of(day)});
      }
    }
  }
  compare("tv_date_serial(?1, ?2, ?3)",
          {Argument::of(2024.4), Argument::of(2.5), Argument::of(28.5)});
}

TEST_F(PostgresFunctions, ATimestampIsItsDayNumber) {
  for (int i = 0; i < 3000; ++i) {
    const Argument days = Argument::of(someSecond());
    const Outcome back = server_->call("SELECT tv_days(tv_timestamp($1))", {days});
    EXPECT_EQ(back.value, numberText(days.value.real)) << back.description;
    for (const char* part : {"yyyy", "d", "s", "w"}) {
      const Outcome ofDays = server_->call(fmt::format("SELECT tv_part('{}', $1)", part), {days});
      const Outcome ofTimestamp =
          server_->call(fmt::format("SELECT tv_part('{}', tv_timestamp($1))", part), {days});
      EXPECT_EQ(ofDays.value, ofTimestamp.value) << part << days.shown();
    }
  }
  for (const double out : {-657435.0, 2958466.0, 1e300}) {
    EXPECT_EQ(server_->call("SELECT tv_timestamp($1)", {Argument::of(out)}).error,
              errors::kOverflow);
  }
}

TEST_F(PostgresFunctions, ValuesPrintByTheirTypes) {
  std::vector<Argument> values = argumentsOf(kNumbers);
  for (int i = 0; i < 300; ++i) values.push_back(Argument::of(someNumber()));
  for (const std::int64_t whole : kWholes) values.push_back(Argument::of(whole));
  for (const double day : kDays) values.push_back(Argument::of(day));
  for (const auto& locale : locales()) {
    useLocale(locale);
    for (const int type : {2, 3, 5, 6, 7, 11}) {
      compareEach(fmt::format("tv_text(?1, {})", type), values);
    }
    compareEach("tv_text(?1, 6)", amounts());
    compareEach("tv_text(?1, 202)", argumentsOf(kTexts));
    for (const double number : kNumbers) {
      if (std::fabs(number) < 3e38) compare("tv_text(?1, 4)", {Argument::of(number)});
    }
    for (int i = 0; i < 1000; ++i) {
      const auto narrow = static_cast<double>(static_cast<float>(someNumber()));
      if (std::isfinite(narrow)) compare("tv_text(?1, 4)", {Argument::of(narrow)});
    }
  }
}

TEST_F(PostgresFunctions, ValuesPrintByMasks) {
  const std::vector<double> numbers{
      0,        1,       -1,        0.5,     -0.5,          1234.5, -1234.567, 0.005,
      1.005,    999.995, 9.99,      0.00012, 123456789.987, 1e15,   1e-7,      46347,
      46347.75, -1.25,   59.999999, 100,     1e20,          9.9999};
  for (const auto& locale : locales()) {
    useLocale(locale);
    for (const std::string& mask : kMasks) {
      const Argument by = Argument::of(mask);
      for (const double number : numbers) {
        const Argument value = Argument::of(number);
        compare("tv_format(?1, ?2, 5)", {value, by});
        if (random_() % 6 != 0) continue;
        compare("tv_format(?1, ?2, 7)", {value, by});
        compare("tv_format(?1, ?2, 4)", {value, by});
        compare("tv_format(?1, ?2, 11)", {value, by});
      }
      for (const std::int64_t whole : {0, 1, -1, 12345, 46347}) {
        compare("tv_format(?1, ?2, 3)", {Argument::of(whole), by});
      }
      for (const Argument& amount : amounts()) {
        if (random_() % 4 == 0) compare("tv_format(?1, ?2, 6)", {amount, by});
      }
      for (const char* text : {"", "ab", "Ñandú 7", "1.234,5", "-5", "21/11/2026", "10:30",
                               "Verdadero", "false", "1e400"}) {
        compare("tv_format(?1, ?2, 202)", {Argument::of(text), by});
      }
    }
  }
  compare("tv_format(?1, ?2, 5)", {Argument::of(1.5), Argument::null()});
}

TEST_F(PostgresFunctions, NullComesFirst) {
  // Before what is wrong with the other argument.
  const Argument null = Argument::null();
  compare("tv_div(?1, ?2)", {null, Argument::of(0.0)});
  compare("tv_left(?1, ?2)", {null, Argument::of(std::int64_t{-1})});
  compare("tv_right(?1, ?2)", {null, Argument::of(std::int64_t{-1})});
  compare("tv_mid(?1, ?2)", {null, Argument::of(std::int64_t{0})});
  compare("tv_round(?1, ?2)", {null, Argument::of(std::int64_t{-1})});
  compare("tv_like(?1, ?2)", {null, Argument::of("[")});
}

TEST_F(PostgresFunctions, AnyMixOfNumbersFindsItsFunction) {
  const auto works = [](const std::string& call) {
    const Outcome outcome = server_->call("SELECT " + call, {});
    EXPECT_TRUE(outcome.error == 0 || outcome.error == errors::kDivisionByZero)
        << call << ": " << outcome.description;
  };
  const std::vector<std::string> exact = parted("smallint~integer~bigint~numeric~flag~byte");
  const std::vector<std::string> types =
      parted("smallint~integer~bigint~numeric~flag~byte~real~double precision");
  for (const std::string& a : types) {
    const std::string x = "0::" + a;
    for (const std::string& name : parted("tv_int~tv_fix~tv_not~tv_single~tv_currency~tv_number~"
                                          "tv_avg~tv_first~tv_last")) {
      works(fmt::format("{}({})", name, x));
    }
    works(fmt::format("tv_left('a', {0}), tv_right('a', {0}), tv_mid('a', {0} + 1)", x));
    works(fmt::format("tv_whole({0}, 3), tv_text({0}, 5), tv_format({0}, '0', 5)", x));
    works(fmt::format("tv_instr({0} + 1, 'a', 'a')", x));
    for (const std::string& b : types) {
      const std::string both = x + ", 0::" + b;
      for (const std::string& name : parted("tv_add~tv_sub~tv_mul~tv_div~tv_intdiv~tv_mod~"
                                            "tv_power~tv_round~tv_and~tv_or")) {
        works(fmt::format("{}({})", name, both));
      }
      works(fmt::format("tv_add({}, 1.5)", both));
      works(fmt::format("tv_mid('a', 1 + {})", both));
    }
  }
  for (const std::string& a : exact) {
    works(fmt::format("tv_money_neg(0::{0}), tv_money_abs(0::{0}), tv_money_sum(0::{0})", a));
    for (const std::string& b : exact) {
      works(fmt::format("tv_money_add(0::{0}, 0::{1}), tv_money_mul(0::{0}, 0::{1}, 1)", a, b));
      works(fmt::format("tv_money_round(0::{0}, 0::{1})", a, b));
    }
  }
  for (const std::string& a : parted("smallint~integer~bigint~real~double precision")) {
    works(fmt::format("tv_sum(0::{})", a));
  }
  works("tv_round(NULL, 2), tv_text(NULL, 5), tv_part('d', NULL), tv_days(NULL), tv_add(NULL, 1)");
}

TEST_F(PostgresFunctions, NothingRaisesBeforeItIsReached) {
  const std::string one = " FROM (VALUES (1)) AS r(x)";
  EXPECT_EQ(server_->call("SELECT CASE WHEN x = 1 THEN 5 ELSE tv_div(1, 0) END" + one, {}).value,
            numberText(5));
  EXPECT_EQ(server_->call("SELECT CASE WHEN true THEN 'a' ELSE tv_left('a', -1) END", {}).value,
            "'a'");
}

TEST_F(PostgresFunctions, ADomainTakesItsValuesOnly) {
  EXPECT_EQ(server_->call("SELECT (-1)::flag", {}).error, 0);
  EXPECT_NE(server_->call("SELECT 1::flag", {}).error, 0);
  EXPECT_EQ(server_->call("SELECT 255::byte", {}).error, 0);
  EXPECT_NE(server_->call("SELECT 256::byte", {}).error, 0);
}

TEST_F(PostgresFunctions, TheTextMayRunAgain) {
  server_->execute("BEGIN");
  server_->execute(std::string(postgres::functionsDdl()));
  server_->execute("COMMIT");
}

}  // namespace
}  // namespace tavelor::engine::test

// SPDX-License-Identifier: MIT
// Calls of one function on both engines, compared to the last bit.
#pragma once

#include <bit>
#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <memory>
#include <random>
#include <string>
#include <string_view>
#include <unordered_map>
#include <utility>
#include <vector>

#include <fmt/format.h>
#include <gtest/gtest.h>
#include <libpq-fe.h>
#include <unistd.h>

#include "tavelor/services/postgres/functions.hpp"
#include "tests/sqlite/support.hpp"

namespace tavelor::engine::test {

// Types of columns by the server's numbers.
constexpr Oid kBool = 16;
constexpr Oid kInt8 = 20;
constexpr Oid kText = 25;
constexpr Oid kFloat8 = 701;
constexpr Oid kNumeric = 1700;

/// What a call gave: a value as text that tells every bit of it, or an error.
struct Outcome {
  std::string value;
  std::int32_t error = 0;
  std::string description;
};

inline std::string numberText(double number) {
  return fmt::format("{:a} ({})", number, number);
}

/// Of the server's text, which has four decimals at most.
inline Currency amountOf(std::string_view text) {
  std::string digits(text);
  std::size_t decimals = 0;
  if (const std::size_t point = text.find('.'); point != std::string_view::npos) {
    digits.erase(point, 1);
    decimals = digits.size() - point;
  }
  EXPECT_LE(decimals, 4U) << text;
  if (decimals < 4) digits.append(4 - decimals, '0');
  return Currency::fromScaled(std::strtoll(digits.c_str(), nullptr, 10));
}

/// An argument. An amount is a double to the embedded engine.
struct Argument {
  Value value;
  std::string text;  // what a text views

  static Argument null() { return {}; }
  static Argument of(double number) { return {Value::ofReal(number), {}}; }
  static Argument of(std::int64_t number) { return {Value::ofInteger(number), {}}; }
  static Argument of(Currency amount) { return {Value::ofCurrency(amount), {}}; }
  static Argument of(std::string text) { return {Value::ofText({}), std::move(text)}; }

  Value bound() const { return value.kind == Value::Kind::kText ? Value::ofText(text) : value; }
  Oid type() const {
    switch (value.kind) {
      case Value::Kind::kInteger:
        return kInt8;
      case Value::Kind::kReal:
        return kFloat8;
      case Value::Kind::kCurrency:
        return kNumeric;
      case Value::Kind::kText:
        return kText;
      default:
        return 0;
    }
  }
  /// As the server reads it.
  std::string sent() const {
    switch (value.kind) {
      case Value::Kind::kInteger:
        return std::to_string(value.integer);
      case Value::Kind::kReal:
        return fmt::format("{}", value.real);
      case Value::Kind::kCurrency: {
        const bool negative = value.integer < 0;
        const auto count = negative ? 0 - static_cast<std::uint64_t>(value.integer)
                                    : static_cast<std::uint64_t>(value.integer);
        return fmt::format("{}{}.{:04}", negative ? "-" : "", count / 10000, count % 10000);
      }
      default:
        return text;
    }
  }
  std::string shown() const {
    if (value.kind == Value::Kind::kNull) return "Null";
    return value.kind == Value::Kind::kText ? "'" + text + "'" : sent();
  }
};

using Arguments = std::vector<Argument>;

template <typename T>
std::vector<Argument> argumentsOf(const std::vector<T>& values) {
  std::vector<Argument> arguments{Argument::null()};
  for (const T& value : values) arguments.push_back(Argument::of(value));
  return arguments;
}

/// A line to the server of the tests, with the functions in a schema of its own.
class Server {
 public:
  explicit Server(const char* address) : line_(PQconnectdb(address)) {
    if (PQstatus(line_) != CONNECTION_OK) {
      problem = PQerrorMessage(line_);
      return;
    }
    execute("SET client_min_messages = warning; BEGIN; CREATE SCHEMA " + schema_ +
            "; SET search_path = " + schema_ + ", pg_catalog");
    execute(std::string(postgres::functionsDdl()));
    execute("COMMIT");
  }
  Server(const Server&) = delete;
  Server& operator=(const Server&) = delete;
  ~Server() {
    if (problem.empty()) execute("DROP SCHEMA " + schema_ + " CASCADE");
    PQfinish(line_);
  }

  /// Begins anew with what a session is told of its country.
  void useLocale(const Locale& locale) {
    execute("RESET ALL; SET client_min_messages = warning; SET search_path = " + schema_ +
            ", pg_catalog;" + postgres::localeSettings(locale));
  }

  void execute(const std::string& text) {
    PGresult* result = PQexec(line_, text.c_str());
    const ExecStatusType status = PQresultStatus(result);
    if (status != PGRES_COMMAND_OK && status != PGRES_TUPLES_OK) {
      ADD_FAILURE() << PQerrorMessage(line_) << text.substr(0, 200);
    }
    PQclear(result);
  }

  Outcome call(const std::string& text, const Arguments& arguments) {
    std::vector<Oid> types;
    std::string key = text;
    for (const Argument& argument : arguments) {
      types.push_back(argument.type());
      key += fmt::format(" {}", argument.type());
    }
    std::string& name = plans_[key];
    if (name.empty()) {
      name = fmt::format("p{}", plans_.size());
      PGresult* prepared = PQprepare(line_, name.c_str(), text.c_str(),
                                     static_cast<int>(types.size()), types.data());
      Outcome failed = failureOf(prepared);
      PQclear(prepared);
      if (failed.error != 0) {
        name.clear();
        return failed;
      }
    }
    std::vector<std::string> sent;
    std::vector<const char*> values;
    for (const Argument& argument : arguments) sent.push_back(argument.sent());
    for (std::size_t i = 0; i < sent.size(); ++i) {
      const bool isNull = arguments[i].value.kind == Value::Kind::kNull;
      values.push_back(isNull ? nullptr : sent[i].c_str());
    }
    PGresult* result = PQexecPrepared(line_, name.c_str(), static_cast<int>(values.size()),
                                      values.data(), nullptr, nullptr, 0);
    Outcome outcome = failureOf(result);
    if (outcome.error == 0) outcome.value = valueOf(result);
    PQclear(result);
    return outcome;
  }

  std::string problem;

 private:
  static Outcome failureOf(PGresult* result) {
    Outcome outcome;
    const char* const state = PQresultErrorField(result, PG_DIAG_SQLSTATE);
    if (state == nullptr) return outcome;
    const std::string_view code = state;
    if (code == "TVERR") {
      outcome.error = std::atoi(PQresultErrorField(result, PG_DIAG_MESSAGE_DETAIL));
      outcome.description = PQresultErrorField(result, PG_DIAG_MESSAGE_PRIMARY);
    } else {
      outcome.error = code == "22003"   ? errors::kOverflow
                      : code == "22012" ? errors::kDivisionByZero
                                        : errors::kUnspecified;
      outcome.description = PQresultErrorMessage(result);
    }
    return outcome;
  }

  static std::string valueOf(PGresult* result) {
    if (PQgetisnull(result, 0, 0) != 0) return "Null";
    const char* const value = PQgetvalue(result, 0, 0);
    switch (PQftype(result, 0)) {
      case kBool:
        return numberText(*value == 't' ? 1 : 0);
      case kText:
        return std::string("'") + value + "'";
      case kNumeric:
        return numberText(amountOf(value).toDouble());
      default:
        // A whole number too, as the double that the embedded engine gives.
        return numberText(std::strtod(value, nullptr));
    }
  }

  PGconn* line_;
  // Tests run beside each other on one server.
  std::string schema_ = fmt::format("functions_test_{}", ::getpid());
  std::unordered_map<std::string, std::string> plans_;
};

class PostgresFunctions : public testing::Test {
 protected:
  static void SetUpTestSuite() {
    const char* const address = std::getenv("TAVELOR_TEST_SERVER");
    if (address != nullptr && *address != '\0') server_ = std::make_unique<Server>(address);
  }
  static void TearDownTestSuite() { server_.reset(); }

  void SetUp() override {
    if (!server_) {
      GTEST_SKIP() << "There is no server: TAVELOR_TEST_SERVER is not set.";
    }
    ASSERT_EQ(server_->problem, "");
    useLocale(Locale::spanish());
  }

  void useLocale(const std::shared_ptr<const Locale>& locale) {
    server_->useLocale(*locale);
    OpenOptions options = creating(":memory:");
    options.locale = locale;
    plans_.clear();
    embedded_ = sqliteEngine().open(options);
  }

  Outcome embedded(const std::string& text, const Arguments& arguments) {
    std::unique_ptr<Prepared>& prepared = plans_[text];
    Outcome outcome;
    try {
      if (!prepared) prepared = embedded_->prepare(text);
      RowStore rows({ColumnType::kInt32, ColumnType::kDouble, ColumnType::kMemo});
      for (std::size_t i = 0; i < arguments.size(); ++i) {
        prepared->bind(static_cast<int>(i + 1), arguments[i].bound());
      }
      prepared->fetch(rows);
      switch (rows.integer(0, 0)) {
        case 0:
          outcome.value = "Null";
          break;
        case 1:
          outcome.value = numberText(rows.real(0, 1));
          break;
        default:
          outcome.value = "'" + std::string(rows.text(0, 2)) + "'";
      }
    } catch (const Error& error) {
      outcome.error = error.number();
      outcome.description = error.description();
    }
    return outcome;
  }

  /// Calls the function on both engines. `call` is "tv_round(?1, ?2)".
  void compare(const std::string& call, const Arguments& arguments) {
    ++compared;
    const Outcome wanted = embedded(
        "SELECT CASE typeof(v) WHEN 'null' THEN 0 WHEN 'text' THEN 2 ELSE 1 END, "
        "CASE typeof(v) WHEN 'text' THEN NULL ELSE v END, "
        "CASE typeof(v) WHEN 'text' THEN v END FROM (SELECT " +
            call + " AS v)",
        arguments);
    std::string text = "SELECT " + call;
    for (char& c : text) c = c == '?' ? '$' : c;
    const Outcome got = server_->call(text, arguments);
    if (wanted.error == got.error && wanted.value == got.value) {
      // A number that no double holds is told by the server in its own words.
      const bool ownWords = got.description.find("TVERR") != std::string::npos ||
                            got.description.starts_with("ERROR:");
      if (ownWords || wanted.description == got.description) return;
    }
    if (++differing > 25) return;
    std::string shown;
    for (const Argument& argument : arguments) shown += " " + argument.shown();
    ADD_FAILURE() << call << " of" << shown << "\n  embedded: " << wanted.value << " "
                  << wanted.error << " " << wanted.description << "\n  server:   " << got.value
                  << " " << got.error << " " << got.description;
  }

  void compareEach(const std::string& call, const std::vector<Argument>& first) {
    for (const Argument& a : first) compare(call, {a});
  }
  void compareAll(const std::string& call, const std::vector<Argument>& first,
                  const std::vector<Argument>& second) {
    for (const Argument& a : first) {
      for (const Argument& b : second) compare(call, {a, b});
    }
  }
  void TearDown() override {
    EXPECT_LE(differing, 25) << "only the first are shown of so many";
    if (!IsSkipped()) RecordProperty("compared", compared);
  }

  /// Numbers of all sizes, most of them such as a shop has.
  double someNumber() {
    const double sign = random_() % 3 == 0 ? -1 : 1;
    switch (random_() % 6) {
      case 0:  // a random double
        for (;;) {
          const auto number = std::bit_cast<double>(wide_(random_));
          if (std::isfinite(number)) return number;
        }
      case 1:
        return sign * static_cast<double>(random_() % 1000);
      case 2:  // halves of all places
        return sign * (static_cast<double>(random_() % 100000) + 0.5) /
               std::pow(10, static_cast<double>(random_() % 7));
      case 3:  // the noise of a calculation
        return sign * (0.1 * static_cast<double>(random_() % 100) + 0.2) * 3;
      default:
        return sign * static_cast<double>(random_() % 100000000) /
               std::pow(10, static_cast<double>(random_() % 9));
    }
  }
  std::int64_t someWhole() {
    const std::uint64_t bits = wide_(random_);
    return static_cast<std::int64_t>(bits) >> random_() % 64;
  }
  Currency someAmount() {
    return Currency::fromScaled(static_cast<std::int64_t>(wide_(random_)) >> (14 + random_() % 50));
  }
  /// A date within a few centuries, on a whole second.
  double someSecond() {
    const auto day = static_cast<double>(static_cast<int>(random_() % 3615900) - 657434);
    const double fraction = static_cast<double>(random_() % 86400) / 86400;
    return day < 0 ? day - fraction : day + fraction;
  }
  template <typename T>
  const T& oneOf(const std::vector<T>& values) {
    return values[random_() % values.size()];
  }

  inline static std::unique_ptr<Server> server_;
  std::unique_ptr<Session> embedded_;
  std::unordered_map<std::string, std::unique_ptr<Prepared>> plans_;
  std::mt19937 random_{20261121};
  std::uniform_int_distribution<std::uint64_t> wide_;
  int compared = 0;
  int differing = 0;
};

inline std::vector<Argument> amounts() {
  std::vector<Argument> all{Argument::null()};
  for (const std::int64_t scaled : {0L,
                                    1L,
                                    -1L,
                                    5L,
                                    -5L,
                                    50L,
                                    15L,
                                    25L,
                                    500L,
                                    1500L,
                                    2500L,
                                    5000L,
                                    15000L,
                                    25000L,
                                    -25000L,
                                    10000L,
                                    12345L,
                                    99999L,
                                    1234567L,
                                    1005000L,
                                    -1005000L,
                                    123456789012L,
                                    922337203685477L,
                                    30000000000000L}) {
    all.push_back(Argument::of(Currency::fromScaled(scaled)));
  }
  return all;
}

}  // namespace tavelor::engine::test

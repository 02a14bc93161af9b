// SPDX-License-Identifier: MIT
// Parameters by reference that also take a temporary.
#include "tavelor/platform/inout.hpp"

#include <string>
#include <type_traits>

#include <gtest/gtest.h>

#include "tavelor/platform/variant.hpp"

namespace tavelor {
namespace {

std::string answer(InOut<std::string> name) {
  name = *name + "!";
  return *name;
}

TEST(InOut, WritesReachAVariable) {
  std::string name = "a";
  EXPECT_EQ(answer(name), "a!");
  EXPECT_EQ(name, "a!");
}

TEST(InOut, AValueStaysInsideTheCall) {
  EXPECT_EQ(answer("a"), "a!");
  EXPECT_EQ(answer(std::string("b")), "b!");
  EXPECT_EQ(answer({}), "!");
}

TEST(InOut, ACopyOfABoundOneWritesToTheSameVariable) {
  std::string name = "a";
  const InOut<std::string> bound(name);
  const InOut<std::string> copy = bound;
  copy = "z";
  EXPECT_EQ(name, "z");
}

TEST(InOut, ACopyOfAValueIsItsOwn) {
  const InOut<std::string> first("a");
  const InOut<std::string> second = first;
  second = "b";
  EXPECT_EQ(*first, "a");
  EXPECT_EQ(second->size(), 1U);
}

struct Line {
  std::string code = {};
  InOut<double> total = {};
  InOut<std::string> name = {};
};

TEST(InOut, AnAggregateOfThemIsAssignedAnewAndBindsAnew) {
  double first = 1;
  double second = 2;
  std::string name;
  Line line;
  for (double* total : {&first, &second}) {
    line = {.code = "A", .total = *total, .name = name};
    line.total = *line.total + 10;
    line.name = "x";
  }
  EXPECT_EQ(first, 11);
  EXPECT_EQ(second, 12);
  EXPECT_EQ(name, "x");
}

TEST(InOut, AssignedFromAValueOfAnotherItIsItsOwn) {
  double bound = 1;
  InOut<double> target(bound);
  {
    const InOut<double> value(7.0);
    target = value;
  }
  EXPECT_EQ(*target, 7);
  target = 8.0;
  EXPECT_EQ(bound, 1);
}

// What is written to a variable of another type would be lost without a word.
static_assert(std::is_constructible_v<InOut<double>, double&>);
static_assert(std::is_constructible_v<InOut<double>, const double&>);
static_assert(std::is_constructible_v<InOut<double>, int>);
static_assert(!std::is_constructible_v<InOut<double>, int&>);
static_assert(!std::is_constructible_v<InOut<double>, float&>);
static_assert(!std::is_constructible_v<InOut<Variant>, std::string&>);
static_assert(std::is_constructible_v<InOut<std::string>, const char*&>);
static_assert(std::is_constructible_v<InOut<Variant>, const char*&>);
static_assert(std::is_constructible_v<InOut<std::string>, const std::string&>);

}  // namespace
}  // namespace tavelor

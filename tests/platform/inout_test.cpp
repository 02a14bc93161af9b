// SPDX-License-Identifier: MIT
// Parameters by reference that also take a temporary.
#include "tavelor/platform/inout.hpp"

#include <string>

#include <gtest/gtest.h>

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

}  // namespace
}  // namespace tavelor

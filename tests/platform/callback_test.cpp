// SPDX-License-Identifier: MIT
// Things to call later.
#include "tavelor/platform/callback.hpp"

#include <memory>
#include <stdexcept>
#include <string>

#include <gtest/gtest.h>

namespace tavelor {
namespace {

TEST(Callback, HoldsNothingUntilItIsGivenSomething) {
  Callback<int()> callback;
  EXPECT_FALSE(callback);
  callback = [] { return 7; };
  ASSERT_TRUE(callback);
  EXPECT_EQ(callback(), 7);
  callback = nullptr;
  EXPECT_FALSE(callback);
}

TEST(Callback, PassesReferencesThrough) {
  const Callback<void(std::string&, int)> append = [](std::string& text, int times) {
    text.append(static_cast<std::size_t>(times), 'x');
  };
  std::string text = "a";
  append(text, 2);
  EXPECT_EQ(text, "axx");
}

TEST(Callback, CopiesShareWhatWasCaptured) {
  Callback<int()> counter = [count = 0]() mutable { return ++count; };
  const Callback<int()> copy = counter;
  EXPECT_EQ(counter(), 1);
  EXPECT_EQ(copy(), 2);
}

TEST(Callback, ResultThatNobodyWantsIsDropped) {
  int told = 0;
  const Callback<void()> tell = [&] { return ++told; };
  tell();
  EXPECT_EQ(told, 1);
}

TEST(Callback, HoldsWhatItCapturedUntilTheLastCopyGoes) {
  auto held = std::make_shared<int>(1);
  {
    Callback<int()> callback = [held] { return *held; };
    const auto copy = callback;
    callback = nullptr;
    EXPECT_EQ(held.use_count(), 2);
    EXPECT_EQ(copy(), 1);
  }
  EXPECT_EQ(held.use_count(), 1);
}

TEST(Callback, ErrorsPassThrough) {
  const Callback<void()> fails = [] { throw std::runtime_error("no"); };
  EXPECT_THROW(fails(), std::runtime_error);
}

}  // namespace
}  // namespace tavelor

// SPDX-License-Identifier: MIT
// Quotes inside of quoted texts.
#include "tavelor/platform/quotes.hpp"

#include <gtest/gtest.h>

namespace tavelor {
namespace {

TEST(Quotes, EachSingleQuoteIsDoubledAndNothingElse) {
  EXPECT_EQ(doubledQuotes("L'Hospitalet \"d'avui\" ñ"), "L''Hospitalet \"d''avui\" ñ");
  EXPECT_EQ(doubledQuotes("''"), "''''");
  EXPECT_EQ(doubledQuotes(""), "");
}

}  // namespace
}  // namespace tavelor

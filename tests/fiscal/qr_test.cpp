// SPDX-License-Identifier: MIT
// The code on an invoice: what it holds, and how large it is.
#include "tavelor/fiscal/qr.hpp"

#include <algorithm>
#include <cstdlib>
#include <set>
#include <string>
#include <utility>

#include <gtest/gtest.h>

#include "tavelor/fiscal/qr_symbol.hpp"
#include "tests/support/shop.hpp"

namespace tavelor::fiscal {
namespace {

double sideOf(int size) {
  return size * dotsPerModule(size) * kMillimetresPerDot;
}

TEST(QrSymbol, ACodeOfEverySizeUpToVersion20IsFrom30To40MillimetresWide) {
  for (int size = 21; size <= 97; size += 4) {
    EXPECT_GE(sideOf(size), 30) << size;
    EXPECT_LE(sideOf(size), 40) << size;
  }
}

TEST(QrSymbol, TheAddressOfAnyInvoiceTakesVersion6To13) {
  std::set<int> sizes;
  for (std::size_t characters = 1; characters <= 60; ++characters) {
    for (const char* const total : {"0.01", "-999999999999.99"}) {
      for (const bool isSending : {true, false}) {
        for (const bool isTest : {true, false}) {
          const InvoiceId invoice{"89890001K", std::string(characters, '/'), Date::of(2027, 1, 2)};
          const QrSymbol symbol(
              qrAddress(invoice, *Amount::read(total), {.isSending = isSending, .isTest = isTest}));
          sizes.insert(symbol.size());
        }
      }
    }
  }
  EXPECT_EQ(*sizes.begin(), 17 + 4 * 6);
  EXPECT_EQ(*sizes.rbegin(), 17 + 4 * 13);
}

TEST(QrSymbol, HasItsThreeCornersAndTheirWhiteEdges) {
  const QrSymbol symbol("https://example.org/?nif=89890001K&numserie=T%2F1");
  const int last = symbol.size() - 1;
  for (const auto& [left, top] :
       {std::pair(0, 0), std::pair(last - 6, 0), std::pair(0, last - 6)}) {
    for (int row = 0; row < 7; ++row) {
      for (int column = 0; column < 7; ++column) {
        const int ring = std::max(std::abs(row - 3), std::abs(column - 3));
        EXPECT_EQ(symbol.isDark(left + column, top + row), ring != 2) << column << ", " << row;
      }
    }
  }
  for (int at = 0; at < 8; ++at) {
    EXPECT_FALSE(symbol.isDark(7, at));
    EXPECT_FALSE(symbol.isDark(at, 7));
  }
}

/// The two bits of the level stand beside the corner at the top, under a mask: level M is 00.
TEST(QrSymbol, IsOfLevelM) {
  const QrSymbol symbol("https://example.org/");
  constexpr int kMaskOfFormat = 0b101010000010010;
  const int first = symbol.isDark(0, 8) ? 1 : 0;
  const int second = symbol.isDark(1, 8) ? 1 : 0;
  EXPECT_EQ(first ^ ((kMaskOfFormat >> 14) & 1), 0);
  EXPECT_EQ(second ^ ((kMaskOfFormat >> 13) & 1), 0);
}

TEST(QrSymbol, WhatNoCodeTakesIsRefused) {
  EXPECT_EQ(test::errorOf([] { const QrSymbol none(""); }), errors::kInvalidCall);
  EXPECT_EQ(test::errorOf([] { const QrSymbol all(std::string(2332, 'a')); }),
            errors::kInvalidCall);
  EXPECT_EQ(QrSymbol(std::string(2331, 'a')).size(), 177);
}

}  // namespace
}  // namespace tavelor::fiscal

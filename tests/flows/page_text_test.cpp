// SPDX-License-Identifier: MIT
// Numbers and texts of a page.
#include "tavelor/flows/page_text.hpp"

#include <gtest/gtest.h>

#include "tavelor/platform/locale.hpp"

namespace tavelor::flows {
namespace {

const PageText kText(*Locale::spanish());

TEST(PageText, WhatMarkupIsMadeOfBecomesReferences) {
  EXPECT_EQ(escaped("<b>&\"' ñ"), "&lt;b&gt;&amp;&quot;&#39; ñ");
}

TEST(PageText, QuantityShowsGramsOnlyWhereThereAreAnyAndBelowAThousand) {
  EXPECT_EQ(kText.quantity(12), "12");
  EXPECT_EQ(kText.quantity(0.1 + 0.2), "0,300");
  EXPECT_EQ(kText.quantity(2.9999999), "3");
  EXPECT_EQ(kText.quantity(1234.5678), "1.235");
  EXPECT_EQ(kText.quantity(-0.175), "-0,175");
}

TEST(PageText, ShareOfNothingIsNone) {
  EXPECT_EQ(kText.percent(0, 0), "0,0 %");
  EXPECT_EQ(kText.percent(1, 8), "12,5 %");
}

TEST(PageText, OneTicketIsSingular) {
  EXPECT_EQ(kText.tickets(1), "1 ticket");
  EXPECT_EQ(kText.tickets(1200), "1.200 tickets");
}

TEST(PageText, RateHasDecimalsOnlyWhereItNeedsThem) {
  EXPECT_EQ(kText.rate(21), "21 %");
  EXPECT_EQ(kText.rate(5.2), "5,2 %");
}

}  // namespace
}  // namespace tavelor::flows

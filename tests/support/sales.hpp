// SPDX-License-Identifier: MIT
// Plain sales.
#pragma once

#include <string>
#include <utility>

#include <fmt/format.h>

#include "tavelor/flows/sale.hpp"

namespace tavelor::test {

/// In cash at the till 01, of as many articles as lines: A00, A01 and so on.
inline flows::Sale saleOfArticles(std::string reference, int lines, Date day, double quantity = 1) {
  flows::Sale sale;
  sale.reference = std::move(reference);
  sale.till = "01";
  sale.day = day;
  sale.time = "10:32";
  sale.payment = "1";
  for (int i = 0; i < lines; ++i) {
    sale.lines.push_back({.code = fmt::format("A{:02}", i),
                          .description = "Barra",
                          .family = "PAN",
                          .quantity = quantity,
                          .price = 1.21,
                          .tax = 21});
  }
  return sale;
}

}  // namespace tavelor::test

// SPDX-License-Identifier: MIT
// A receipt as lines of a width in characters, for what prints characters.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "tavelor/flows/receipt_content.hpp"

namespace tavelor::flows {

// What the law wants above the code, and below that of a shop that sends its records.
inline constexpr std::string_view kAboveCode = "QR tributario:";
inline constexpr std::string_view kBelowCode = "VERI*FACTU";

/// What a line is, for those that can print it otherwise than the next one.
enum class Look : std::uint8_t {
  kPlain,
  kName,     ///< of the shop
  kCentred,  ///< who it is
  kStrong,   ///< what the document is
  kTotal,
};

/// A line. Texts may be wider than the paper.
struct ReceiptLine {
  std::string text;
  Look look = Look::kPlain;
};

/// The whole receipt but for the code and its texts.
std::vector<ReceiptLine> linesOf(const ReceiptContent& content, std::size_t width);

/// The price of one unit, to four decimals.
double priceWithoutTax(const ContentLine& line, bool isTaxIncluded);

}  // namespace tavelor::flows

// SPDX-License-Identifier: MIT
// The code that stands on an invoice, as squares, and how large it is printed.
#pragma once

#include <string_view>
#include <vector>

namespace tavelor::fiscal {

/// A QR code of error correction level M: squares ("modules") that are dark or light.
class QrSymbol {
 public:
  /// Of a text, in the smallest version that takes it. Raises 5 for an empty one and for one beyond
  /// 2,331 bytes, which no version takes.
  explicit QrSymbol(std::string_view text);

  /// Modules a side, without the quiet zone: 21 for version 1, 4 more for each that follows.
  int size() const { return size_; }
  /// From 0 on, at the left and at the top.
  bool isDark(int column, int row) const {
    return dark_[static_cast<std::size_t>(row) * static_cast<std::size_t>(size_) +
                 static_cast<std::size_t>(column)];
  }

 private:
  int size_ = 0;
  std::vector<bool> dark_;  // row by row
};

/// Ticket printers have 203 dots to an inch, eight to a millimetre.
inline constexpr double kMillimetresPerDot = 25.4 / 203;
/// White around the code, on each side: 6 mm. The law wants 2 of them and advises 6.
inline constexpr int kQuietZone = 48;  // dots

/// Dots a module's side for a code of so many modules: whole ones, so that no module is wider than
/// another, and as many as bring the code nearest to 35 mm. Up to 97 modules (version 20) that is
/// between the 30 and the 40 mm that the law allows; the address of an invoice takes
/// version 6 to 13.
int dotsPerModule(int size);

}  // namespace tavelor::fiscal

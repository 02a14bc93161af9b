// SPDX-License-Identifier: MIT
// Orders for ticket printers, as bytes (ESC/POS).
#pragma once

#include <cstddef>
#include <initializer_list>
#include <string>
#include <string_view>

namespace tavelor::fiscal {
class QrSymbol;
}

namespace tavelor::flows {

/// UTF-8 text in the printer's page 19 (PC858). Typographic quotes and dashes become plain ones;
/// what else the page does not have loses its accents, or becomes "?". So do control characters,
/// which the printer would take for orders.
std::string printerText(std::string_view text);

/// Collects orders for one ticket. Texts are UTF-8.
class TicketPrinter {
 public:
  /// How a line stands.
  struct Style {
    bool isCentred = false;
    bool isBold = false;
    bool isTall = false;  ///< twice as high, as wide as ever
  };

  /// Sets the printer back to what it was when it was turned on, and chooses the page.
  TicketPrinter();

  /// A line, wrapped between words where it has more than `width` characters.
  void line(std::string_view text, std::size_t width, Style style);
  void line(std::string_view text, std::size_t width) { line(text, width, {}); }
  /// A code as an image in the middle of the paper, with the quiet zone around it.
  void code(const fiscal::QrSymbol& symbol);
  /// Feeds what is printed past the knife, and cuts but for one point.
  void cut();

  /// All orders.
  const std::string& bytes() const { return bytes_; }

 private:
  void put(std::initializer_list<int> bytes);

  std::string bytes_;
};

}  // namespace tavelor::flows

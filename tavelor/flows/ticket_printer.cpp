// SPDX-License-Identifier: MIT
// Orders for ticket printers.
#include "tavelor/flows/ticket_printer.hpp"

#include <array>
#include <optional>
#include <utility>

#include "tavelor/fiscal/qr_symbol.hpp"
#include "tavelor/flows/receipt.hpp"
#include "tavelor/flows/receipt_lines.hpp"
#include "tavelor/platform/error.hpp"
#include "tavelor/platform/text.hpp"

namespace tavelor::flows {

namespace {

constexpr int kEscape = 0x1b;
constexpr int kGroup = 0x1d;
constexpr int kDotsOfAByte = 8;

// What stands at 0x80 to 0xff of PC858.
constexpr std::string_view kPage858 =
    "ÇüéâäàåçêëèïîìÄÅÉæÆôöòûùÿÖÜø£Ø×ƒáíóúñÑªº¿®¬½¼¡«»░▒▓│┤ÁÂÀ©╣║╗╝¢¥┐└┴┬├─┼ãÃ╚╔╩╦╠═╬¤"
    "ðÐÊËÈ€ÍÎÏ┘┌█▄¦Ì▀ÓßÔÒõÕµþÞÚÛÙýÝ¯´\u00ad±‗¾¶§÷¸°¨·¹³²■\u00a0";

/// Characters that have a plain one in their place.
constexpr std::array<std::pair<std::string_view, char>, 7> kPlainOnes = {{
    {"’", '\''},
    {"‘", '\''},
    {"“", '"'},
    {"”", '"'},
    {"–", '-'},
    {"—", '-'},
    {"−", '-'},
}};

std::optional<char> inPage(std::string_view character) {
  constexpr int kFirst = 0x80;
  int code = kFirst;
  for (std::string_view rest = kPage858; !rest.empty(); ++code) {
    const std::string_view each = text::left(rest, 1);
    if (each == character) return static_cast<char>(code);
    rest.remove_prefix(each.size());
  }
  return std::nullopt;
}

bool isPrintable(char c) {
  return c >= ' ' && c <= '~';
}

/// One byte for one character, so that columns stay where they are.
char inPrinter(std::string_view character) {
  if (character.size() == 1) return isPrintable(character[0]) ? character[0] : '?';
  if (const std::optional<char> code = inPage(character)) return *code;
  for (const auto& [typographic, plain] : kPlainOnes) {
    if (typographic == character) return plain;
  }
  const bool isCapital = text::lower(character) != character;
  const std::string folded = text::foldAccents(character);
  const std::string bare = isCapital ? text::upper(folded) : folded;
  return bare.size() == 1 && isPrintable(bare[0]) ? bare[0] : '?';
}

/// What a line of a receipt looks like on paper.
TicketPrinter::Style styleOf(Look look) {
  switch (look) {
    case Look::kName:
      return {.isCentred = true, .isBold = true, .isTall = true};
    case Look::kCentred:
      return {.isCentred = true};
    case Look::kStrong:
      return {.isBold = true};
    case Look::kTotal:
      return {.isBold = true, .isTall = true};
    case Look::kPlain:
      break;
  }
  return {};
}

std::string bytesOf(const std::optional<ReceiptContent>& content, Paper paper) {
  if (paper == Paper::kA4) {
    raise(errors::kInvalidCall, "Shop", "A ticket printer has paper of 58 or 80 mm.");
  }
  if (!content) return {};
  // Of the printer's own letters, twelve dots wide, on 384 and 576 dots.
  const std::size_t width = paper == Paper::k58 ? 32 : 48;
  TicketPrinter printer;
  if (content->invoice) {
    printer.line(kAboveCode, width, {.isCentred = true});
    printer.code(fiscal::QrSymbol(content->invoice->address));
    if (content->invoice->isSending) printer.line(kBelowCode, width, {.isCentred = true});
    printer.line("", width);
  }
  for (const ReceiptLine& line : linesOf(*content, width)) {
    printer.line(line.text, width, styleOf(line.look));
  }
  printer.cut();
  return printer.bytes();
}

}  // namespace

std::string printerText(std::string_view text) {
  const std::string composed = text::composed(text);
  std::string bytes;
  for (std::string_view rest = composed; !rest.empty();) {
    const std::string_view character = text::left(rest, 1);
    bytes += inPrinter(character);
    rest.remove_prefix(character.size());
  }
  return bytes;
}

TicketPrinter::TicketPrinter() {
  constexpr int kPage = 19;
  put({kEscape, '@'});
  put({kEscape, 't', kPage});
}

void TicketPrinter::put(std::initializer_list<int> bytes) {
  for (const int byte : bytes) bytes_ += static_cast<char>(byte);
}

void TicketPrinter::line(std::string_view text, std::size_t width, Style style) {
  constexpr int kTall = 0x01;
  put({kEscape, 'a', style.isCentred ? 1 : 0});
  put({kEscape, 'E', style.isBold ? 1 : 0});
  put({kGroup, '!', style.isTall ? kTall : 0});
  std::string rest = printerText(text);
  while (rest.size() > width) {
    std::size_t end = rest.rfind(' ', width);
    if (end == std::string::npos || end == 0) end = width;
    bytes_.append(rest, 0, end).append("\n");
    rest.erase(0, rest[end] == ' ' ? end + 1 : end);
  }
  bytes_ += rest + "\n";
}

/// As a raster image, whose dots are ours: a printer's own order for codes leaves their size to the
/// printer.
void TicketPrinter::code(const fiscal::QrSymbol& symbol) {
  constexpr int kAtTheSides = 16;  // dots, 2 mm; the paper's own white is the rest
  constexpr int kNormalDensity = 0;
  const int module = fiscal::dotsPerModule(symbol.size());
  const int side = symbol.size() * module;
  const int height = side + 2 * fiscal::kQuietZone;
  const int bytesOfARow = (side + 2 * kAtTheSides + kDotsOfAByte - 1) / kDotsOfAByte;
  put({kEscape, 'a', 1});
  put({kGroup, 'v', '0', kNormalDensity, bytesOfARow % 256, bytesOfARow / 256, height % 256,
       height / 256});
  for (int y = -fiscal::kQuietZone; y < side + fiscal::kQuietZone; ++y) {
    for (int first = 0; first < bytesOfARow; ++first) {
      int dots = 0;
      for (int bit = 0; bit < kDotsOfAByte; ++bit) {
        const int x = first * kDotsOfAByte + bit - kAtTheSides;
        const bool isInside = x >= 0 && x < side && y >= 0 && y < side;
        const bool isDark = isInside && symbol.isDark(x / module, y / module);
        dots = 2 * dots + (isDark ? 1 : 0);
      }
      put({dots});
    }
  }
}

void TicketPrinter::cut() {
  constexpr int kFeedAndCut = 'B';
  constexpr int kPastTheKnife = 24;  // dots more
  put({kGroup, 'V', kFeedAndCut, kPastTheKnife});
}

std::string ticketBytes(double number, Paper paper) {
  return bytesOf(readTicket(number), paper);
}

std::string invoiceBytes(const std::string& number, Paper paper) {
  return bytesOf(readInvoice(number), paper);
}

}  // namespace tavelor::flows

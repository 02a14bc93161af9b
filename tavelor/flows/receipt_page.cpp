// SPDX-License-Identifier: MIT
// A receipt as a page: a roll of 58 or 80 mm, or a sheet.
#include <iterator>
#include <optional>
#include <string>
#include <string_view>
#include <utility>

#include <fmt/format.h>

#include "tavelor/fiscal/qr_symbol.hpp"
#include "tavelor/flows/page_text.hpp"
#include "tavelor/flows/receipt.hpp"
#include "tavelor/flows/receipt_lines.hpp"
#include "tavelor/platform/format.hpp"
#include "tavelor/platform/locale.hpp"
#include "tavelor/platform/number_text.hpp"
#include "tavelor/platform/variant.hpp"
#include "tavelor/services/apartment.hpp"

namespace tavelor::flows {

namespace {

// Printers of rolls have no greys: what is fainter on a screen is smaller here.
constexpr std::string_view kReceiptStyle = R"(*{box-sizing:border-box}
html{background:#fff;color:#000;-webkit-print-color-adjust:exact;print-color-adjust:exact}
body{margin:0 auto;font-family:"Liberation Sans",Arial,Helvetica,sans-serif;line-height:1.3;
font-variant-numeric:tabular-nums;overflow-wrap:anywhere}
p,h1,h2{margin:0}
figure{margin:0;text-align:center;break-inside:avoid}
figure svg{display:block}
.shop h1{font-size:1.5em;line-height:1.15}
table{width:100%;border-collapse:collapse}
th,td{padding:.12em 0;text-align:left;vertical-align:top;font-weight:normal}
.n{text-align:right;white-space:nowrap;padding-left:.6em}
small{display:block;font-size:.86em}
.total td{font-weight:bold;font-size:1.35em}
tr{break-inside:avoid}
)";

constexpr std::string_view kRollStyle = R"(body{padding:4mm 0 6mm}
figure{margin-bottom:3mm}
figure p{font-size:1.05em}
figure svg{margin:0 auto}
.shop{text-align:center}
h2{font-size:1.1em;margin-top:2mm}
.heads{margin-top:2mm}
.heads p{display:flex;justify-content:space-between;gap:1em}
.who{margin-top:1.5mm}
.sold{margin-top:2mm;border-top:.25mm solid #000;border-bottom:.25mm solid #000}
.sold thead{display:none}
.sold tr:first-child td{padding-top:.6mm}
.sold tr:last-child td{padding-bottom:.6mm}
.q{text-align:right;white-space:nowrap;padding-right:.6em;width:1%}
.sums{margin-top:1mm}
.taxes{margin-top:2mm;font-size:.92em}
.taxes th{border-bottom:.2mm solid #000}
.comments{margin-top:2.5mm;text-align:center}
)";

constexpr std::string_view kSheetStyle = R"(body{width:210mm;padding:14mm 16mm;font-size:10pt}
header{display:grid;grid-template-columns:auto 1fr auto;gap:9mm;align-items:start}
figure p{font-size:9pt}
.shop{padding-top:5mm}
.shop h1{font-size:17pt;margin-bottom:1mm}
.paper{padding-top:5mm;text-align:right;max-width:62mm}
.paper h2{font-size:13pt;line-height:1.2;margin-bottom:1.5mm}
.heads p{display:flex;justify-content:flex-end;gap:1.2em}
.notes{margin-top:4mm}
.who{margin:9mm 0 0 auto;width:88mm;border:.25mm solid #9aa7b0;border-radius:1.5mm;padding:3mm 4mm}
.who p:first-child{font-weight:bold}
.sold{margin-top:10mm}
.sold th,.taxes th{border-bottom:.4mm solid #000;padding-bottom:1mm;font-size:9pt}
.sold td{border-bottom:.15mm solid #c6ced4;padding:1.6mm 0}
.sold .q{text-align:right;white-space:nowrap;padding-right:5mm;width:1%}
.ends{display:flex;justify-content:space-between;align-items:flex-start;gap:14mm;margin-top:8mm;
break-inside:avoid}
.taxes{flex:1 1 auto;width:auto}
.taxes td{padding-top:.8mm}
.sums{width:66mm;flex:none}
.comments{margin-top:10mm}
)";

class ReceiptPage {
 public:
  ReceiptPage(const ReceiptContent& content, Paper paper)
      : content_(content), paper_(paper), locale_(Apartment::current().locale()), text_(locale_) {
    if (content_.invoice) symbol_.emplace(content_.invoice->address);
  }

  std::string make() {
    begin();
    put("<header>\n");
    code();
    shop();
    if (isSheet()) put("<div class=\"paper\">\n");
    heads();
    if (isSheet()) put("</div>\n");
    put("</header>\n");
    notes();
    who();
    sold();
    if (isSheet()) {
      put("<div class=\"ends\">\n");
      taxes();
      sums();
      put("</div>\n");
    } else {
      sums();
      taxes();
    }
    paragraphs("comments", content_.comments);
    put("</body>\n</html>\n");
    return std::move(out_);
  }

 private:
  template <typename... Parts>
  void put(fmt::format_string<Parts...> form, Parts&&... parts) {
    fmt::format_to(std::back_inserter(out_), form, std::forward<Parts>(parts)...);
  }

  bool isSheet() const { return paper_ == Paper::kA4; }
  std::string money(double amount) const { return escaped(format(amount, "#,##0.00", locale_)); }
  std::string unitPrice(double price) const {
    return escaped(format(price, "#,##0.00##", locale_));
  }
  /// As many decimals as it has, six at most.
  std::string plain(double number) const {
    return escaped(Variant(roundHalfAway(number, 6)).toText(locale_));
  }

  void begin() {
    const std::string title = content_.invoice
                                  ? content_.invoice->title + " " + content_.invoice->id.number
                                  : content_.heads.front().first;
    put("<!DOCTYPE html>\n<html lang=\"es\" class=\"receipt\">\n<head>\n<meta charset=\"utf-8\">\n"
        "<meta name=\"viewport\" content=\"width=device-width, initial-scale=1\">\n"
        "<title>{} · {}</title>\n<style>\n{}{}{}{}</style>\n</head>\n<body>\n",
        escaped(title), escaped(content_.shop.name), kReceiptStyle,
        isSheet() ? kSheetStyle : kRollStyle, paperStyle(), codeStyle());
  }

  /// A roll is as long as what is on it, which only the printer's driver knows; a page too short
  /// would be parted.
  std::string paperStyle() const {
    if (isSheet()) return "@page{size:A4;margin:0}\n";
    constexpr double kHead = 115;       // mm: code, shop, heads, sums
    constexpr double kLineHeight = 10;  // of an article whose text takes two lines
    const double length =
        kHead + kLineHeight * static_cast<double>(content_.lines.size()) +
        5.0 * static_cast<double>(content_.taxes.size() + content_.comments.size() + 8);
    // What a roll's printer reaches: 48 and 72 mm.
    const bool isNarrow = paper_ == Paper::k58;
    return fmt::format(
        "@page{{size:{}mm {:.0f}mm;margin:0}}\nbody{{width:{}mm;padding-left:{}mm;"
        "padding-right:{}mm;font-size:{}pt}}\n",
        isNarrow ? 58 : 80, length, isNarrow ? 58 : 80, isNarrow ? 5 : 4, isNarrow ? 5 : 4,
        isNarrow ? "8.5" : "10");
  }

  /// Beside the other rules and not at the code: a server lets the one style of a page through.
  std::string codeStyle() const {
    if (!symbol_) return {};
    const int size = symbol_->size();
    const double side = size * fiscal::dotsPerModule(size) * fiscal::kMillimetresPerDot;
    const double quiet = fiscal::kQuietZone * fiscal::kMillimetresPerDot;
    // The white at the sides of a roll is there anyway.
    return fmt::format(
        "#qr "
        "svg{{width:{0:.4f}mm;height:{0:.4f}mm;margin-top:{1:.1f}mm;margin-bottom:{1:.1f}mm}}\n",
        side, quiet);
  }

  /// A row's dark modules that follow each other are one stroke.
  void code() {
    if (!symbol_) return;
    const fiscal::QrSymbol& symbol = *symbol_;
    const int size = symbol.size();
    put("<figure id=\"qr\"><p>{}</p>\n<svg xmlns=\"http://www.w3.org/2000/svg\" role=\"img\" "
        "aria-label=\"{}\" viewBox=\"0 0 {} {}\" shape-rendering=\"crispEdges\"><path d=\"",
        kAboveCode, escaped(content_.invoice->address), size, size);
    for (int row = 0; row < size; ++row) {
      for (int column = 0; column < size; ++column) {
        if (!symbol.isDark(column, row)) continue;
        const int begin = column;
        while (column < size && symbol.isDark(column, row)) ++column;
        put("M{} {}h{}v1h-{}z", begin, row, column - begin, column - begin);
      }
    }
    put("\"/></svg>\n{}</figure>\n",
        content_.invoice->isSending ? fmt::format("<p>{}</p>\n", kBelowCode) : std::string());
  }

  void shop() {
    const Issuer& shop = content_.shop;
    put("<div class=\"shop\"><h1>{}</h1>\n", escaped(shop.name));
    if (shop.company != shop.name) paragraph(shop.company);
    if (!shop.fiscalNumber.empty()) paragraph("NIF " + shop.fiscalNumber);
    paragraph(shop.address);
    paragraph(shop.place);
    put("</div>\n");
  }

  void paragraph(const std::string& line) {
    if (!line.empty()) put("<p>{}</p>\n", escaped(line));
  }

  void paragraphs(std::string_view name, const std::vector<std::string>& lines) {
    if (lines.empty()) return;
    put("<div class=\"{}\">\n", name);
    for (const std::string& line : lines) paragraph(line);
    put("</div>\n");
  }

  void heads() {
    if (content_.invoice) put("<h2>{}</h2>\n", escaped(content_.invoice->title));
    put("<div class=\"heads\">\n");
    for (const auto& [label, value] : content_.heads) {
      put("<p><span>{}</span>{}</p>\n", escaped(label),
          value.empty() ? std::string() : "<span>" + escaped(value) + "</span>");
    }
    put("</div>\n");
  }

  void notes() {
    if (content_.invoice) paragraphs("notes", content_.invoice->notes);
  }

  void who() {
    const bool isNamed = content_.invoice && !content_.invoice->recipient.empty();
    paragraphs("who", isNamed ? content_.invoice->recipient : content_.customer);
  }

  bool wantsUnitPrices() const { return content_.invoice && content_.invoice->wantsUnitPrices; }

  void sold() {
    put("<table class=\"sold\"><thead><tr><th class=\"q\">Cant.</th><th>Descripción</th>{}"
        "<th class=\"n\">Importe</th></tr></thead>\n<tbody>\n",
        !isSheet() ? ""
        : wantsUnitPrices()
            ? "<th class=\"n\">Precio sin IVA</th><th class=\"n\">Dto.</th><th class=\"n\">IVA</th>"
            : "<th class=\"n\">Precio</th><th class=\"n\">Dto.</th><th class=\"n\">IVA</th>");
    for (const ContentLine& line : content_.lines) soldRow(line);
    put("</tbody></table>\n");
  }

  void soldRow(const ContentLine& line) {
    const std::string unit = wantsUnitPrices()
                                 ? unitPrice(priceWithoutTax(line, content_.isTaxIncluded))
                                 : money(line.price);
    const std::string discount = line.discount == 0 ? std::string() : plain(line.discount) + " %";
    put("<tr><td class=\"q\">{}</td><td>{}", plain(line.quantity), escaped(line.description));
    if (isSheet()) {
      put("</td><td class=\"n\">{}</td><td class=\"n\">{}</td><td class=\"n\">{} %", unit, discount,
          plain(line.rate));
    } else {
      if (!discount.empty()) put("<small>{} − {}</small>", money(line.price), discount);
      if (wantsUnitPrices()) put("<small>{} sin IVA, {} %</small>", unit, plain(line.rate));
    }
    put("</td><td class=\"n\">{}</td></tr>\n", money(line.amount));
  }

  void sums() {
    put("<table class=\"sums\"><tr class=\"total\"><td>TOTAL</td><td class=\"n\">{}</td></tr>\n",
        text_.money(content_.total));
    for (const auto& [name, amount] : content_.parts) {
      put("<tr><td>{}</td><td class=\"n\">{}</td></tr>\n", escaped(name), money(amount));
    }
    if (content_.money) {
      put("<tr><td>Entregado</td><td class=\"n\">{}</td></tr>\n"
          "<tr><td>Cambio</td><td class=\"n\">{}</td></tr>\n",
          money(content_.money->first), money(content_.money->second));
    }
    put("</table>\n");
  }

  void taxes() {
    if (content_.taxes.empty()) return;
    put("<table class=\"taxes\"><thead><tr><th>IVA</th><th class=\"n\">Base</th>"
        "<th class=\"n\">Cuota</th></tr></thead>\n<tbody>\n");
    for (const ContentTax& tax : content_.taxes) {
      taxRow(plain(tax.rate) + " %", tax.split.base, tax.split.tax);
      if (tax.surcharge == 0) continue;
      taxRow("Recargo " + plain(tax.surchargeRate) + " %", tax.split.base, tax.surcharge);
    }
    put("</tbody></table>\n");
  }

  void taxRow(const std::string& name, double base, double tax) {
    put("<tr><td>{}</td><td class=\"n\">{}</td><td class=\"n\">{}</td></tr>\n", name, money(base),
        money(tax));
  }

  const ReceiptContent& content_;
  std::optional<fiscal::QrSymbol> symbol_;  // of an invoice
  Paper paper_;
  const Locale& locale_;
  PageText text_;
  std::string out_;
};

std::string pageOf(const std::optional<ReceiptContent>& content, Paper paper) {
  return content ? ReceiptPage(*content, paper).make() : std::string();
}

}  // namespace

std::string ticketPage(double number, Paper paper) {
  return pageOf(readTicket(number), paper);
}

std::string invoicePage(const std::string& number, Paper paper) {
  return pageOf(readInvoice(number), paper);
}

}  // namespace tavelor::flows

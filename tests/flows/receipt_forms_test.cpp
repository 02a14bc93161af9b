// SPDX-License-Identifier: MIT
// Receipts that bear the code of the law: as text, as a page, and for ticket printers.
#include <algorithm>
#include <filesystem>
#include <optional>
#include <regex>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tavelor/fiscal/book.hpp"
#include "tavelor/fiscal/qr_symbol.hpp"
#include "tavelor/fiscal/settings.hpp"
#include "tavelor/flows/issuer.hpp"
#include "tavelor/flows/receipt.hpp"
#include "tavelor/flows/ticket_printer.hpp"
#include "tavelor/frame/class_info.hpp"
#include "tavelor/services/data_session.hpp"
#include "tavelor/services/recordset/connection.hpp"
#include "tests/flows/lives.hpp"
#include "tests/support/records.hpp"

namespace tavelor::flows {
namespace {

using ::testing::Contains;
using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::Not;

constexpr std::string_view kFirstAddress =
    "https://www2.agenciatributaria.gob.es/wlpl/TIKE-CONT/ValidarQR?nif=89890001K&numserie=T%2F1&"
    "fecha=20-11-2026&importe=3.63";

/// A line of paper.
struct Printed {
  std::string text;  // in the printer's page
  bool isCentred = false;
  bool isBold = false;
  bool isTall = false;
  friend bool operator==(const Printed&, const Printed&) = default;
};

/// What a ticket printer makes of bytes; it knows the orders of its manual and no others.
class PaperReader {
 public:
  explicit PaperReader(std::string bytes) : bytes_(std::move(bytes)) {
    while (at_ < bytes_.size()) read();
  }

  std::vector<Printed> lines;
  int page = -1;
  std::vector<std::vector<bool>> image;  // rows of dots
  std::size_t linesAbove = 0;            // of the image
  bool isImageCentred = false;
  bool isCut = false;

  std::vector<std::string> texts() const {
    std::vector<std::string> all;
    for (const Printed& line : lines) all.push_back(line.text);
    return all;
  }

 private:
  int next() { return at_ < bytes_.size() ? static_cast<unsigned char>(bytes_[at_++]) : -1; }

  void read() {
    EXPECT_FALSE(isCut) << "nothing is printed behind the cut";
    const int byte = next();
    if (byte == 0x1b) {
      escape();
    } else if (byte == 0x1d) {
      group();
    } else if (byte == '\n') {
      lines.push_back(line_);
      line_.text.clear();
    } else {
      ASSERT_GE(byte, 0x20) << "no control character is printed";
      line_.text += static_cast<char>(byte);
    }
  }

  void escape() {
    switch (next()) {
      case '@':
        line_ = {};
        break;
      case 't':
        page = next();
        break;
      case 'a':
        EXPECT_EQ(line_.text, "") << "alignment is that of a whole line";
        line_.isCentred = next() == 1;
        break;
      case 'E':
        line_.isBold = next() == 1;
        break;
      default:
        FAIL() << "an unknown order";
    }
  }

  void group() {
    switch (next()) {
      case '!':
        line_.isTall = next() == 1;
        break;
      case 'v':
        raster();
        break;
      case 'V':
        EXPECT_EQ(next(), 'B');
        next();
        isCut = true;
        break;
      default:
        FAIL() << "an unknown order";
    }
  }

  void raster() {
    EXPECT_EQ(next(), '0');
    EXPECT_EQ(next(), 0) << "of normal density";
    const int columns = next() + 256 * next();
    const int rows = next() + 256 * next();
    linesAbove = lines.size();
    isImageCentred = line_.isCentred;
    for (int row = 0; row < rows; ++row) {
      std::vector<bool>& dots = image.emplace_back();
      for (int column = 0; column < columns; ++column) {
        const int byte = next();
        for (int bit = 7; bit >= 0; --bit) dots.push_back(((byte >> bit) & 1) != 0);
      }
    }
  }

  std::string bytes_;
  std::size_t at_ = 0;
  Printed line_;
};

/// The modules of a page's code, out of its path.
std::vector<std::vector<bool>> modulesOf(const std::string& page, int size) {
  std::vector<std::vector<bool>> dark(static_cast<std::size_t>(size),
                                      std::vector<bool>(static_cast<std::size_t>(size)));
  static const std::regex kStroke(R"(M(\d+) (\d+)h(\d+)v1h-(\d+)z)");
  for (std::sregex_iterator at(page.begin(), page.end(), kStroke), end; at != end; ++at) {
    EXPECT_EQ((*at)[3], (*at)[4]);
    for (int x = std::stoi((*at)[1]); x < std::stoi((*at)[1]) + std::stoi((*at)[3]); ++x) {
      dark.at(static_cast<std::size_t>(std::stoi((*at)[2]))).at(static_cast<std::size_t>(x)) = true;
    }
  }
  return dark;
}

/// Behind a property of the code's style, in millimetres.
double styleOf(const std::string& page, const std::string& property) {
  const std::regex form("#qr svg\\{[^}]*\\b" + property + ":([0-9.]+)mm");
  std::smatch found;
  return std::regex_search(page, found, form) ? std::stod(found[1]) : -1;
}

class ReceiptFormsTest : public ::testing::Test {
 protected:
  ReceiptFormsTest() {
    openShop();
    setIssuer({.name = "Colmado Rius", .fiscalNumber = "89890001K", .address = "Carrer Major 1"});
    settings_.taxpayer.name = "Núria Rius Pla";
    open();
    place_.run(
        "INSERT INTO Clientes (Codigo, Activo, Razon_Social, NIF, Direccion, Codigo_Postal, "
        "Poblacion, Provincia) VALUES ('C1', -1, 'Ñandú SA', 'A-58818501', 'Gran Via 2', '08001', "
        "'Barcelona', 'Barcelona')");
  }

  void open() {
    fiscal::writeSettings(place_.installation(), settings_);
    shop_.emplace();
  }
  /// As `tavelor fiscal correct` does.
  static void correct(const std::string& number, const fiscal::Party& recipient) {
    const ConnectionPtr documents = DataSession().OpenConnection(selector::kDocuments);
    const auto book = fiscal::Book::open(documents);
    fiscal::Registration right = book->find(number)->record;
    if (!recipient.name.empty()) right.recipients = {recipient};
    right.description = "Pan";
    documents->BeginTrans();
    book->correct(right);
    documents->CommitTrans();
  }
  static Sale ticketOf(std::string reference, double price = 1.21, double quantity = 3) {
    Sale sale = saleOf(std::move(reference));
    sale.lines = {{.code = "PAN", .description = "Barra", .quantity = quantity, .price = price}};
    return sale;
  }

  test::Shop place_;
  fiscal::Settings settings_ = test::recordSettings();
  std::optional<Shop> shop_;
};

TEST_F(ReceiptFormsTest, TheTextTellsTheAddressOnTopAndWhatTheLawWants) {
  shop_->sell(ticketOf("V1"));
  EXPECT_THAT(
      ticketText(1),
      ElementsAre("QR tributario:", std::string(kFirstAddress), "VERI*FACTU", "Colmado Rius",
                  "Núria Rius Pla", "NIF 89890001K", "Carrer Major 1", "Factura simplificada",
                  "Número T/1          20/11/2026", "Ticket A/1", "Caja 01                  10:32",
                  "Ref. V1", "------------------------------", "    3 Barra               3,63",
                  "------------------------------", "TOTAL                     3,63",
                  "Entregado                 3,63", "Cambio                    0,00",
                  "  21% IVA de      3,00     0,63"));
  EXPECT_EQ(invoiceText("T/1"), ticketText(1));
  EXPECT_THAT(invoiceText("T/2"), IsEmpty());
  EXPECT_THAT(invoiceText("x'y"), IsEmpty());
  const std::vector<std::string> live = ticketText(1);
  shop_->close("01", kDay);
  EXPECT_EQ(ticketText(1), live) << "and from history";
}

TEST_F(ReceiptFormsTest, ATicketFromBeforeTheRecordsReadsAsEver) {
  Sale sale = ticketOf("V1");
  sale.day = Date::of(2026, 10, 31);
  shop_->sell(sale);
  const std::vector<std::string> with = ticketText(1);
  EXPECT_THAT(with, Not(Contains(HasSubstr("QR"))));
  EXPECT_THAT(ticketPage(1, Paper::k80), Not(HasSubstr("QR")));
  EXPECT_THAT(PaperReader(ticketBytes(1, Paper::k80)).image, IsEmpty());
  EXPECT_THAT(invoiceText("T/1"), IsEmpty());
  std::filesystem::remove(fiscal::settingsFile(place_.installation()));
  EXPECT_EQ(ticketText(1), with);
}

TEST_F(ReceiptFormsTest, WithoutTheSettingsOfItsRecordsNoReceiptIsPrinted) {
  shop_->sell(ticketOf("V1"));
  std::filesystem::remove(fiscal::settingsFile(place_.installation()));
  EXPECT_EQ(test::errorOf([] { ticketText(1); }), errors::kFileNotFound);
}

TEST_F(ReceiptFormsTest, AShopThatDoesNotSendSaysNothingBelowTheCode) {
  settings_.mode = fiscal::Mode::kNotSending;
  settings_.isTest = true;
  open();
  shop_->sell(ticketOf("V1"));
  EXPECT_THAT(ticketText(1).at(1), HasSubstr("https://prewww2.aeat.es/wlpl/TIKE-CONT/"
                                             "ValidarQRNoVerifactu?nif="));
  EXPECT_THAT(ticketText(1), Not(Contains("VERI*FACTU")));
  EXPECT_THAT(ticketPage(1, Paper::k80), Not(HasSubstr("VERI*FACTU")));
  EXPECT_THAT(PaperReader(ticketBytes(1, Paper::k80)).texts(), Not(Contains("VERI*FACTU")));
}

TEST_F(ReceiptFormsTest, AnInvoiceNamesWhoBuysAndTellsPricesWithoutTax) {
  Sale sale = ticketOf("V1");
  sale.customer = "C1";
  sale.name = "Bar Ñandú";
  sale.invoice.form = fiscal::Form::kInvoice;
  shop_->sell(sale);
  const std::vector<std::string> text = ticketText(1);
  EXPECT_THAT(text, Contains("Factura"));
  EXPECT_THAT(text, Contains("Número F/1          20/11/2026"));
  EXPECT_THAT(text, Contains("Ñandú SA"));
  EXPECT_THAT(text, Contains("NIF A58818501"));
  EXPECT_THAT(text, Contains("Gran Via 2"));
  EXPECT_THAT(text, Contains("08001 Barcelona"));
  EXPECT_THAT(text, Contains("      1,00 sin IVA, 21%"));
  EXPECT_THAT(text, Not(Contains("Bar Ñandú"))) << "the legal name stands there";
}

TEST_F(ReceiptFormsTest, ATicketWithTheCustomersNumberIsASimplifiedInvoiceStill) {
  Sale sale = ticketOf("V1");
  sale.customer = "C1";
  sale.invoice.form = fiscal::Form::kQualifiedTicket;
  shop_->sell(sale);
  EXPECT_THAT(ticketText(1), Contains("Factura simplificada"));
  EXPECT_THAT(ticketText(1), Contains("NIF A58818501"));
  EXPECT_THAT(ticketText(1), Not(Contains(HasSubstr("sin IVA"))));
}

TEST_F(ReceiptFormsTest, AReturnIsARectifyingOneAndNamesTheTicket) {
  shop_->sell(ticketOf("V1"));
  EXPECT_EQ(shop_->takeBack(returnOf(1)), 2);
  const std::vector<std::string> text = ticketText(2);
  EXPECT_THAT(text.at(1), HasSubstr("numserie=R%2F1&fecha=20-11-2026&importe=-3.63"));
  EXPECT_THAT(text, Contains("Factura simplificada rectificativa"));
  EXPECT_THAT(text, Contains("Rectifica T/1 de 20/11/2026"));
  EXPECT_THAT(text, Contains("Causa: devolución"));
  EXPECT_THAT(text, Contains("  21% IVA de     -3,00    -0,63"));
}

TEST_F(ReceiptFormsTest, AnInvoiceInThePlaceOfTicketsHasTheirLinesAndTheySaySo) {
  shop_->sell(ticketOf("V1"));
  shop_->sell(ticketOf("V2", 2.42, 1));
  InvoiceWish wish;
  wish.tickets = {1, 2};
  wish.day = kDay;
  wish.customer = "C1";
  EXPECT_EQ(shop_->invoiceTickets(wish), "F/1");
  const std::vector<std::string> text = invoiceText("F/1");
  EXPECT_THAT(text.at(1), HasSubstr("numserie=F%2F1&fecha=20-11-2026&importe=6.05"));
  EXPECT_THAT(text, Contains("Sustituye a T/1 de 20/11/2026"));
  EXPECT_THAT(text, Contains("Sustituye a T/2 de 20/11/2026"));
  EXPECT_THAT(text, Contains("    3 Barra               3,63"));
  EXPECT_THAT(text, Contains("    1 Barra               2,42"));
  EXPECT_THAT(text, Contains("TOTAL                     6,05"));
  EXPECT_THAT(text, Contains("  21% IVA de      5,00     1,05"));
  EXPECT_THAT(text, Not(Contains(HasSubstr("Entregado")))) << "the tickets told it";
  EXPECT_THAT(ticketText(1), Contains("Sustituida por la factura F/1"));
  EXPECT_THAT(ticketText(1).at(1), HasSubstr("numserie=T%2F1&"));
}

TEST_F(ReceiptFormsTest, AnInvoiceThatWasCorrectedHasTheLinesOfItsTicketStill) {
  Sale sale = ticketOf("V1");
  sale.customer = "C1";
  sale.invoice.form = fiscal::Form::kInvoice;
  shop_->sell(sale);
  correct("F/1", {"Ñandú Sur SL", "B12345674"});
  const std::vector<std::string> text = invoiceText("F/1");
  EXPECT_THAT(text, Contains("Ñandú Sur SL"));
  EXPECT_THAT(text, Contains("    3 Barra               3,63"));
  EXPECT_EQ(text, ticketText(1));
}

TEST_F(ReceiptFormsTest, AnInvoiceInThePlaceOfACorrectedTicketHasItsLines) {
  shop_->sell(ticketOf("V1"));
  correct("T/1", {});
  InvoiceWish wish;
  wish.tickets = {1};
  wish.day = kDay;
  wish.customer = "C1";
  EXPECT_EQ(shop_->invoiceTickets(wish), "F/1");
  EXPECT_THAT(invoiceText("F/1"), Contains("    3 Barra               3,63"));
}

TEST_F(ReceiptFormsTest, TwoTaxesThatAreWiderThanTheirColumnsDoNotRunTogether) {
  Sale sale = ticketOf("V1", 121'000'000, 1);
  sale.customer = "C1";
  shop_->sell(sale);
  EXPECT_THAT(ticketText(1), Contains("  21% IVA de  100000000,00 21000000,00"));
}

TEST_F(ReceiptFormsTest, ACancelledTicketSaysSoAndTheOneThatCancelsHasNoCode) {
  shop_->sell(ticketOf("V1"));
  EXPECT_EQ(shop_->cancel(returnOf(1)), 2);
  EXPECT_THAT(ticketText(1), Contains("ANULADA"));
  EXPECT_THAT(ticketText(2), Contains("Anula la factura T/1"));
  EXPECT_THAT(ticketText(2), Not(Contains("QR tributario:")));
}

TEST_F(ReceiptFormsTest, WhatIsSoldWithoutTaxTellsWhy) {
  Sale sale = ticketOf("V1");
  sale.lines.front().tax = 0;
  shop_->sell(sale);
  EXPECT_THAT(ticketText(1), Contains("Operación exenta, art. 20 de la Ley del IVA"));
}

// ---------------------------------------------------------------------------------------------
// Pages

class ReceiptPageTest : public ReceiptFormsTest, public ::testing::WithParamInterface<Paper> {};

TEST_P(ReceiptPageTest, TheCodeStandsOnTopWithItsTextsAndItsSize) {
  shop_->sell(ticketOf("V1"));
  const std::string page = ticketPage(1, GetParam());
  const auto above = page.find("QR tributario:");
  const auto code = page.find("<svg");
  const auto below = page.find("<p>VERI*FACTU</p>");
  EXPECT_LT(above, code);
  EXPECT_LT(code, below);
  EXPECT_LT(below, page.find("<h1>Colmado Rius</h1>"));
  EXPECT_EQ(styleOf(page, "width"), styleOf(page, "height"));
  EXPECT_GE(styleOf(page, "width"), 30);
  EXPECT_LE(styleOf(page, "width"), 40);
  EXPECT_GE(styleOf(page, "margin-top"), 6);
  EXPECT_GE(styleOf(page, "margin-bottom"), 6);

  const fiscal::QrSymbol symbol(kFirstAddress);
  const auto dark = modulesOf(page, symbol.size());
  for (int row = 0; row < symbol.size(); ++row) {
    for (int column = 0; column < symbol.size(); ++column) {
      ASSERT_EQ(dark[static_cast<std::size_t>(row)][static_cast<std::size_t>(column)],
                symbol.isDark(column, row))
          << column << ", " << row;
    }
  }
  EXPECT_EQ(invoicePage("T/1", GetParam()), page);
}

TEST_P(ReceiptPageTest, NamesAreTextAndNothingComesFromElsewhere) {
  Sale sale = ticketOf("V1");
  sale.lines.front().description = "<script>\"&'";
  sale.comment = "</body>";
  shop_->sell(sale);
  const std::string page = ticketPage(1, GetParam());
  EXPECT_THAT(page, Not(HasSubstr("<script")));
  EXPECT_THAT(page, HasSubstr("&lt;script&gt;&quot;&amp;&#39;"));
  EXPECT_EQ(page.find("</body>"), page.rfind("</body>"));
  EXPECT_THAT(page, Not(HasSubstr("src=")));
  EXPECT_THAT(page, Not(HasSubstr("url(")));
}

TEST_P(ReceiptPageTest, AnInvoiceTellsPricesWithoutTaxAndItsRates) {
  Sale sale = ticketOf("V1", 1.1);
  sale.customer = "C1";
  sale.invoice.form = fiscal::Form::kInvoice;
  sale.lines.front().discount = 12.5;
  shop_->sell(sale);
  const std::string page = ticketPage(1, GetParam());
  EXPECT_THAT(page, HasSubstr("<h2>Factura</h2>"));
  EXPECT_THAT(page, HasSubstr("0,9091"));
  EXPECT_THAT(page, HasSubstr("12,5 %"));
  EXPECT_THAT(page, HasSubstr("<p>Ñandú SA</p>\n<p>NIF A58818501</p>"));
}

TEST_P(ReceiptPageTest, ATicketThatIsNotThereHasNone) {
  EXPECT_EQ(ticketPage(1, GetParam()), "");
  EXPECT_EQ(invoicePage("T/1", GetParam()), "");
}

INSTANTIATE_TEST_SUITE_P(OnEachPaper, ReceiptPageTest,
                         ::testing::Values(Paper::k58, Paper::k80, Paper::kA4));

// ---------------------------------------------------------------------------------------------
// Ticket printers

class TicketBytesTest : public ReceiptFormsTest, public ::testing::WithParamInterface<Paper> {};

TEST_P(TicketBytesTest, TheImageIsTheCodeInWholeDotsWithWhiteAround) {
  shop_->sell(ticketOf("V1"));
  const PaperReader paper(ticketBytes(1, GetParam()));
  const fiscal::QrSymbol symbol(kFirstAddress);
  const auto module = static_cast<std::size_t>(fiscal::dotsPerModule(symbol.size()));
  const std::size_t side = static_cast<std::size_t>(symbol.size()) * module;
  ASSERT_FALSE(paper.image.empty());
  const std::size_t width = paper.image.front().size();
  EXPECT_LE(width, GetParam() == Paper::k58 ? 384U : 576U) << "the printer's own dots";
  EXPECT_EQ(paper.linesAbove, 1U);
  EXPECT_TRUE(paper.isImageCentred);
  constexpr std::size_t kAbove = 48;
  constexpr std::size_t kBeside = 16;
  ASSERT_EQ(paper.image.size(), side + 2 * kAbove);
  ASSERT_GE(width, side + 2 * kBeside);
  for (std::size_t y = 0; y < paper.image.size(); ++y) {
    for (std::size_t x = 0; x < width; ++x) {
      const bool isInside = x >= kBeside && x < kBeside + side && y >= kAbove && y < kAbove + side;
      const bool isDark = isInside && symbol.isDark(static_cast<int>((x - kBeside) / module),
                                                    static_cast<int>((y - kAbove) / module));
      ASSERT_EQ(paper.image[y][x], isDark) << x << ", " << y;
    }
  }
}

TEST_P(TicketBytesTest, LinesAreAsWideAsThePaperAndTheTicketIsCut) {
  Sale sale = ticketOf("V1");
  sale.lines.front().description = "Café de olla 3 €";
  sale.comment = "Un comentario que es más ancho que el papel de cincuenta y ocho milímetros";
  shop_->sell(sale);
  const PaperReader paper(ticketBytes(1, GetParam()));
  const std::size_t width = GetParam() == Paper::k58 ? 32 : 48;
  EXPECT_EQ(paper.page, 19);
  EXPECT_TRUE(paper.isCut);
  std::size_t widest = 0;
  for (const Printed& line : paper.lines) widest = std::max(widest, line.text.size());
  EXPECT_EQ(widest, width);
  EXPECT_EQ(paper.lines.at(0), (Printed{"QR tributario:", true, false, false}));
  EXPECT_EQ(paper.lines.at(1), (Printed{"VERI*FACTU", true, false, false}));
  EXPECT_EQ(paper.lines.at(3), (Printed{"Colmado Rius", true, true, true}));
  EXPECT_THAT(paper.texts(), Contains(HasSubstr("Caf\x82 de olla")));
  EXPECT_THAT(paper.texts(), Contains(HasSubstr("Un comentario que es m\xa0s")));
  const auto total = std::find_if(paper.lines.begin(), paper.lines.end(), [](const Printed& line) {
    return line.text.starts_with("TOTAL");
  });
  ASSERT_NE(total, paper.lines.end());
  EXPECT_TRUE(total->isBold && total->isTall && !total->isCentred);
  EXPECT_EQ(total->text.size(), width);
}

TEST_P(TicketBytesTest, NoNameGivesThePrinterAnOrder) {
  Sale sale = ticketOf("V1");
  sale.lines.front().description = "\x1b@\x1dV0 \n\r\x07";
  shop_->sell(sale);
  const PaperReader paper(ticketBytes(1, GetParam()));
  EXPECT_THAT(paper.texts(), Contains(HasSubstr("?@?V0 ???")));
}

INSTANTIATE_TEST_SUITE_P(OnEachRoll, TicketBytesTest, ::testing::Values(Paper::k58, Paper::k80));

TEST_F(ReceiptFormsTest, ATicketPrinterHasNoSheets) {
  shop_->sell(ticketOf("V1"));
  EXPECT_EQ(test::errorOf([] { ticketBytes(1, Paper::kA4); }), errors::kInvalidCall);
  EXPECT_EQ(ticketBytes(2, Paper::k58), "");
}

TEST(PrinterText, EachCharacterIsOneByteOfThePage) {
  EXPECT_EQ(printerText("Ñandú 3 €"),
            "\xa5"
            "and\xa3 3 \xd5");
  EXPECT_EQ(printerText("“L’Espiga” – Łódź…"),
            "\"L'Espiga\" - ?\xa2"
            "dz?");
  EXPECT_EQ(printerText("a\xcc\x81"), "\xa0") << "a letter and its accent apart";
  EXPECT_EQ(printerText("Ç\u00a0"), "\x80\xff") << "the first and the last of the page";
  EXPECT_EQ(printerText("\xff日"), "??");
}

}  // namespace
}  // namespace tavelor::flows

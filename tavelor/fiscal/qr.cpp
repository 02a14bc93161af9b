// SPDX-License-Identifier: MIT
// The address behind the code that stands on an invoice.
#include "tavelor/fiscal/qr.hpp"

#include <fmt/format.h>

namespace tavelor::fiscal {

namespace {

/// Letters, digits and "-_.~" as they are, every other byte as %2F.
std::string encoded(std::string_view text) {
  std::string address;
  for (const char c : text) {
    const bool isPlain = (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') ||
                         (c >= '0' && c <= '9') ||
                         std::string_view("-_.~").find(c) != std::string_view::npos;
    if (isPlain) {
      address += c;
    } else {
      address += fmt::format("%{:02X}", static_cast<unsigned char>(c));
    }
  }
  return address;
}

}  // namespace

std::string qrAddress(const InvoiceId& invoice, const Amount& total, Lookup where) {
  return fmt::format("https://{}/wlpl/TIKE-CONT/{}?nif={}&numserie={}&fecha={}&importe={}",
                     where.isTest ? "prewww2.aeat.es" : "www2.agenciatributaria.gob.es",
                     where.isSending ? "ValidarQR" : "ValidarQRNoVerifactu",
                     encoded(invoice.issuer), encoded(invoice.number), dayText(invoice.day),
                     encoded(total.text()));
}

}  // namespace tavelor::fiscal

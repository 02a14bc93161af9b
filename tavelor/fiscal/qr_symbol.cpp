// SPDX-License-Identifier: MIT
// The code that stands on an invoice.
#include "tavelor/fiscal/qr_symbol.hpp"

#include <cmath>
#include <cstddef>
#include <memory>

#include <qrencode.h>

#include "tavelor/platform/error.hpp"

namespace tavelor::fiscal {

QrSymbol::QrSymbol(std::string_view text) {
  constexpr int kSmallest = 0;  // version: the library's choice
  constexpr unsigned char kIsDark = 1;
  const auto* const bytes = reinterpret_cast<const unsigned char*>(text.data());
  const std::unique_ptr<QRcode, decltype(&QRcode_free)> code(
      QRcode_encodeData(static_cast<int>(text.size()), bytes, kSmallest, QR_ECLEVEL_M),
      &QRcode_free);
  if (!code) raise(errors::kInvalidCall, "Fiscal", "No QR code takes this text.");
  size_ = code->width;
  const auto modules = static_cast<std::size_t>(size_) * static_cast<std::size_t>(size_);
  dark_.reserve(modules);
  for (std::size_t at = 0; at < modules; ++at) {
    dark_.push_back((code->data[at] & kIsDark) != 0);
  }
}

int dotsPerModule(int size) {
  constexpr double kSide = 35;  // mm
  return static_cast<int>(std::lround(kSide / kMillimetresPerDot / size));
}

}  // namespace tavelor::fiscal

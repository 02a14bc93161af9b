// SPDX-License-Identifier: MIT
// The address behind the code that stands on an invoice.
#pragma once

#include <string>

#include "tavelor/fiscal/record.hpp"

namespace tavelor::fiscal {

/// Where an invoice may be looked up.
struct Lookup {
  bool isSending = true;  ///< else the page of systems that do not send
  bool isTest = false;    ///< the tax office's host for tests
};

/// What the code holds: number of the issuer, of the invoice, its day and its total, in this order,
/// each encoded for an address.
std::string qrAddress(const InvoiceId& invoice, const Amount& total, Lookup where = {});

}  // namespace tavelor::fiscal

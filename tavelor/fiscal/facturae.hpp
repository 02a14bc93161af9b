// SPDX-License-Identifier: MIT
// A full invoice as a Facturae document, version 3.2.2, for public bodies above all.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "tavelor/fiscal/record.hpp"

namespace tavelor::fiscal {

/// An address in Spain.
struct PostalAddress {
  std::string street;    ///< and number, up to 80 characters
  std::string postcode;  ///< five digits
  std::string town;      ///< up to 50
  std::string province;  ///< up to 20; "" for that of the postcode
};

/// An office of a public body that an invoice goes through.
struct AdministrativeCentre {
  std::string code;       ///< up to 10 characters
  std::string role;       ///< "01" accounts, "02" manages, "03" processes, "04" proposes
  std::string name;       ///< of the office; "" for none
  PostalAddress address;  ///< its own, or the body's
};

/// Who sells or who buys.
struct FacturaeParty {
  Party party;                                  ///< a person's name is "surnames, name"
  std::string called;                           ///< as messages name it: "the customer 401"
  PostalAddress address;                        ///< the fiscal one
  std::vector<AdministrativeCentre> centres{};  ///< of who buys
};

/// What was sold.
struct FacturaeLine {
  std::string article{};      ///< code, up to 20 characters
  std::string description{};  ///< up to 2500
  double quantity = 0;        ///< negative of what comes back
  double price = 0;           ///< of one, with tax, without surcharge, before the discount; euros
  double discount = 0;        ///< percent
  double amount = 0;          ///< of all, with tax, without surcharge; whole cents
  double rate = 0;            ///< percent
  std::optional<double> surcharge{};  ///< percent; none: that of the invoice's rate
};

/// An invoice with all that its document tells.
struct Facturae {
  Registration invoice;             ///< its record
  FacturaeParty seller;             ///< the shop
  FacturaeParty buyer;              ///< the first recipient of the record
  std::vector<FacturaeLine> lines;  ///< of its tickets
};

/// What is missing, or cannot be told by such a document, a sentence each: parts of addresses and
/// names, centres (three of a public body, or of whoever has one), a recipient without a Spanish
/// number, an invoice that names nobody, lines that do not come to what its record tells.
std::vector<std::string> faultsOf(const Facturae& facturae);

/// The document without a signature. Amounts by rate are those of the record, to the cent. Of each
/// line the base is shared out in whole cents, so that lines add up to the bases. Raises 5 with all
/// that faultsOf() tells.
std::string xmlOf(const Facturae& facturae);

}  // namespace tavelor::fiscal

// SPDX-License-Identifier: MIT
// Who the shop is to those who read its receipts.
#pragma once

#include <string>

namespace tavelor::flows {

/// What stands on top of receipts, slips and pages. It is kept in the default document type.
struct Issuer {
  std::string name;               ///< of the shop, up to 100 characters
  std::string company = {};       ///< legal name, where it is another, up to 100
  std::string fiscalNumber = {};  ///< up to 20
  std::string address = {};       ///< street and number, up to 100
  std::string place = {};         ///< up to 50
  std::string postcode = {};      ///< up to 10; "" leaves it as it is, as for the next
  std::string province = {};      ///< up to 50
};

/// Of the default document type. Without a name the shop goes by its legal one, without either by
/// the installation's folder; what else is not told is "".
Issuer issuer();

/// Writes it into the default document type. Raises 3021 where there is none, as before
/// seedCatalogues(), and what a text that is too long raises; then all stays as it was.
void setIssuer(const Issuer& issuer);

}  // namespace tavelor::flows

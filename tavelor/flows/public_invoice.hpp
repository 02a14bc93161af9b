// SPDX-License-Identifier: MIT
// An invoice of the shop with all that its Facturae document tells.
#pragma once

#include <string>

#include "tavelor/fiscal/facturae.hpp"

namespace tavelor::flows {

/// By the number that the invoice bears, "F/12": its record, the lines of its tickets, who sells as
/// the default document type tells, and who buys. That is the customer with the code `customer`; of
/// "" the ticket's, else the one in the master whose fiscal number the record names. A centre is a
/// row of Clientes_Centros, with its own address; where the customer has none of a role, the
/// master's code and name of it, at the customer's address. What is missing is left empty, for
/// fiscal::faultsOf() to tell. Raises 5 for an invoice that there is not or that is cancelled, and
/// where nobody in the master, or more than one, can be meant.
fiscal::Facturae publicInvoice(const std::string& number, const std::string& customer = {});

}  // namespace tavelor::flows

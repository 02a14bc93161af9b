// SPDX-License-Identifier: MIT
// Suppliers as the flows of a shop make them.
#pragma once

#include <string_view>

#include "tavelor/services/recordset/connection.hpp"

namespace tavelor::flows {

/// Writes a supplier as a form begins one: in use, no subcontractor, of tariff and series A, with
/// the usual accounts. Texts are as they are read, quotes included. Raises the integrity error for
/// a code that is there.
void makeSupplier(std::string_view code, std::string_view legalName, ConnectionPtr& connection);

}  // namespace tavelor::flows

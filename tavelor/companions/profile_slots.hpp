// SPDX-License-Identifier: MIT
// What the component tables of customers and suppliers share.
#pragma once

#include <vector>

#include "tavelor/companions/business_partner.hpp"
#include "tavelor/frame/component.hpp"

namespace tavelor {

/// Those of GetDatosFacturacion without the trade name, in their order.
std::vector<AggregateParameter<BusinessPartner::Facturacion>> profileParameters();

}  // namespace tavelor

// SPDX-License-Identifier: MIT
// Lines of a receipt, in columns of fixed width that count characters.
#pragma once

#include <vector>

#include "tavelor/platform/export.hpp"

namespace tavelor {

class Recordset;
class Variant;

namespace receipt {

/// What was sold, a line a row from the current one on: Cantidad, 15 characters of Descripción, Dto
/// and Importe. A null number counts as 0; a quantity that single precision does not hold raises 6.
/// The set is left at EOF.
TAVELOR_API std::vector<Variant> lines(Recordset& rows);

/// The tax summary, a line a rate: IVA, base and tax of SumaDeImporte. `bIncTax`: the amounts
/// include tax. Both are rounded by the mask of amounts, a base that had to be computed first by
/// that of quantities. The set is left at EOF.
TAVELOR_API std::vector<Variant> taxes(Recordset& groups, bool bIncTax);

}  // namespace receipt
}  // namespace tavelor

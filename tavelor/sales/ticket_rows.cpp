// SPDX-License-Identifier: MIT
// Keys of rows that go to a ticket.
#include "tavelor/sales/ticket_rows.hpp"

#include "tavelor/frame/reading.hpp"
#include "tavelor/services/recordset/recordset.hpp"

namespace tavelor {

// The gap is what installed tills have: mended, old and new rows would be numbered by two rules.
void giveToTicket(Recordset& rows, const Variant& vId, const Variant& next) {
  rows.Field("Código").Value(vId);
  rows.Field("ID").Value(number(next) + 1);
  rows.Update();
}

}  // namespace tavelor

// SPDX-License-Identifier: MIT
// The row that a form stands on, for masters and what hangs from them.
#include "tavelor/companions/active_row.hpp"

#include <string_view>

#include "tavelor/frame/reading.hpp"
#include "tavelor/platform/error.hpp"
#include "tavelor/services/recordset/recordset.hpp"

namespace tavelor {

void takeActiveRow(const RecordsetPtr& rows, const ActiveRow& to) {
  if (!rows) return;
  const auto passingErrors = [](auto takeOne) {
    try {
      takeOne();
    } catch (const Error&) {
    }
  };
  const auto text = [&](std::string_view field, std::string& variable) {
    passingErrors([&] { take(*rows, field, variable); });
  };
  passingErrors([&] {
    const Variant code = rows->Field("Código").Value();
    if (!code.isNull()) to.code = code;
  });
  text("Nombre", to.name);
  text("Empresa", to.company);
  text("Dirección", to.street);
  text("Codigo_Postal", to.postcode);
  text("Población", to.town);
  text("Provincia", to.province);
  text("Teléfono", to.telephone);
}

}  // namespace tavelor

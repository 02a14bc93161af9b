// SPDX-License-Identifier: MIT
// The row that a form stands on, for masters and what hangs from them.
#include "tavelor/companions/active_row.hpp"

#include <string_view>

#include "tavelor/frame/reading.hpp"
#include "tavelor/platform/error.hpp"
#include "tavelor/services/recordset/recordset.hpp"

namespace tavelor {

namespace {

/// Hands each variable with its field to `read`, in the order of the parameters.
template <typename Read>
void eachOf(const ActiveRow& to, const Read& read) {
  read("Código", to.code);
  read("Nombre", to.name);
  read("Empresa", to.company);
  read("Dirección", to.street);
  read("Codigo_Postal", to.postcode);
  read("Población", to.town);
  read("Provincia", to.province);
  read("Teléfono", to.telephone);
}

}  // namespace

void takeActiveRow(Recordset& rows, const ActiveRow& to) {
  eachOf(to, [&](std::string_view field, auto& variable) { takeColumn(rows, field, variable); });
}

void takeActiveRowIfThere(const RecordsetPtr& rows, const ActiveRow& to) {
  if (!rows) return;
  eachOf(to, [&](std::string_view field, auto& variable) {
    try {
      takeColumn(*rows, field, variable);
    } catch (const Error&) {
      // Forms ask while they have no row yet, and lists need not show all.
    }
  });
}

}  // namespace tavelor

// SPDX-License-Identifier: MIT
// Which chains a taxpayer has, and which of their records stay in the shop.
#include "tavelor/fiscal/chains.hpp"

#include <limits>

#include "tavelor/frame/class_info.hpp"
#include "tavelor/frame/rows.hpp"

namespace tavelor::fiscal {

std::vector<std::int32_t> chainsOf(const std::string& taxpayer, const ConnectionPtr& documents) {
  Statement statement("SELECT Codigo FROM Fiscal_Cadenas WHERE NIF = ");
  statement << sqlText(taxpayer) << " ORDER BY Codigo";
  std::vector<std::int32_t> chains;
  for (Rows rows(selector::kDocuments, statement, documents); rows.hasRow(); rows.next()) {
    chains.push_back(rows.whole("Codigo"));
  }
  return chains;
}

std::vector<PositionRange> keptRanges(std::int32_t chain, const ConnectionPtr& documents) {
  // The log says when the shop began to work without sending (01), and when it ended to (02).
  Statement statement("SELECT Tipo, Registros FROM Fiscal_Eventos WHERE Cadena = ");
  statement << sqlLiteral(chain) << " AND Tipo IN ('01', '02') ORDER BY Posicion";
  std::vector<PositionRange> ranges;
  for (Rows rows(selector::kDocuments, statement, documents); rows.hasRow(); rows.next()) {
    const std::int32_t records = rows.whole("Registros");
    if (rows.text("Tipo") == "01") {
      ranges.push_back({records + 1, std::numeric_limits<std::int32_t>::max()});
    } else if (!ranges.empty()) {
      ranges.back().last = records;
    }
  }
  return ranges;
}

}  // namespace tavelor::fiscal

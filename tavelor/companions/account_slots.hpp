// SPDX-License-Identifier: MIT
// What the component tables of the running accounts share.
#pragma once

#include <vector>

#include "tavelor/companions/running_account.hpp"
#include "tavelor/frame/component.hpp"

namespace tavelor {

/// Those of an entry, in their order.
template <typename Entry>
std::vector<AggregateParameter<Entry>> entryParameters() {
  return {parameter("sSerie", &Entry::sSerie),   parameter("sCodigo", &Entry::sCodigo),
          parameter("dtFecha", &Entry::dtFecha), parameter("sConcepto", &Entry::sConcepto),
          parameter("sD_H", &Entry::sD_H),       parameter("dDebe", &Entry::dDebe),
          parameter("dHaber", &Entry::dHaber),   parameter("iEstado", &Entry::iEstado),
          parameter("vDoc_E", &Entry::vDoc_E),   parameter("[objCn]", &Entry::objCn)};
}

/// The slots of a running account: `head` are those before EditingRecord.
std::vector<Member> withAccountTail(std::vector<Member> head);

}  // namespace tavelor

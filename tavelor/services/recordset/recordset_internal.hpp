// SPDX-License-Identifier: MIT
// What the files of the record set share: the row in edit, and work announced to listeners.
#pragma once

#include <vector>

#include "tavelor/platform/error.hpp"
#include "tavelor/services/recordset/recordset.hpp"
#include "tavelor/services/recordset/recordset_store.hpp"

namespace tavelor {

inline constexpr std::string_view kRecordsetSource = "Recordset";

struct Recordset::Draft {
  Row row = 0;
  bool adding = false;
  std::vector<WrittenCell> cells;
  Cursor before;  // where the cursor was when the row was added
};

/// Fields appended to a set that is not open yet.
struct Recordset::Fabric {
  std::shared_ptr<dialect::Plan> plan = std::make_shared<dialect::Plan>();
  RecordsetSchema schema{plan, {}};
};

/// Tells the listeners, does the work, tells them again. The work itself checks that what it needs
/// is still there: a listener may have changed everything.
template <typename Work>
void Recordset::announced(const Notice& notice, Work&& work) {
  if (!heard(notice.told)) {
    work();
    return;
  }
  const std::shared_ptr<Recordset> keep = weak_from_this().lock();
  tellWill(notice);
  try {
    work();
  } catch (const Error& error) {
    tellComplete(notice, &error);
    throw;
  }
  tellComplete(notice, nullptr);
}

template <typename Work>
void Recordset::moving(EventReason reason, Work&& work, bool deniable) {
  announced({.told = Told::kMove, .reason = reason, .deniable = deniable},
            std::forward<Work>(work));
}

}  // namespace tavelor

// SPDX-License-Identifier: MIT
// What the functions on record sets begin with.
#pragma once

#include "tavelor/c/calls.hpp"
#include "tavelor/services/recordset/recordset.hpp"

namespace tavelor::c {

/// Runs `work`, which may move or write, with the record set and its handle.
template <typename Work>
tavelor_status onRecordset(tavelor_object* given, tavelor_error** error, Work&& work) noexcept {
  return answered(error, [&] {
    tavelor_object& object = asRecordset(given);
    const Inside inside(object.room());
    if (!object.texts.empty()) object.texts.clear();
    work(*object.recordset, object);
  });
}

}  // namespace tavelor::c

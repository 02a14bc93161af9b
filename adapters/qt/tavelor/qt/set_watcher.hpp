// SPDX-License-Identifier: MIT
// Listens to one record set at a time.
#pragma once

#include <cstdint>
#include <utility>

#include "tavelor/services/recordset/events.hpp"
#include "tavelor/services/recordset/recordset.hpp"

namespace tavelor::qt {

/// Holds a record set and is told of its events until another one comes.
class SetWatcher : public RecordsetEvents {
 public:
  SetWatcher() = default;
  ~SetWatcher() override { watch(nullptr); }
  SetWatcher(const SetWatcher&) = delete;
  SetWatcher& operator=(const SetWatcher&) = delete;

  /// Null for none.
  void watch(RecordsetPtr rows) {
    if (rows_) rows_->removeListener(this);
    rows_ = std::move(rows);
    if (rows_) rows_->addListener(this);
  }
  const RecordsetPtr& rows() const { return rows_; }
  /// Whether there is a set with rows to be read.
  bool isOpen() const { return rows_ && rows_->State() == ObjectState::kOpen; }
  /// The set's row by the number that is its bookmark; 0 for none.
  std::uint32_t currentNumber() const {
    if (!isOpen() || rows_->Bof() || rows_->Eof()) return 0;
    return static_cast<std::uint32_t>(*rows_->Bookmark().getIf<double>());
  }

 private:
  RecordsetPtr rows_;
};

}  // namespace tavelor::qt

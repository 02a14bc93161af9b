// SPDX-License-Identifier: MIT
// The levels of transaction of all sessions of a line, as one pile.
#include <algorithm>
#include <utility>

#include "tavelor/services/postgres/errors.hpp"
#include "tavelor/services/postgres/line.hpp"

namespace tavelor::engine::postgres {

void Line::later(const Control& control) {
  if (!holds_.empty()) {
    // They belong to what is open now.
    beReady();
    onWire([&](Wire&) { putWaiting(); });
  }
  later_.push_back(control);
}

std::size_t Line::innermostOf(const Levels& of) const {
  const auto found = std::find_if(levels_.rbegin(), levels_.rend(),
                                  [&](const Level& level) { return level.owner == &of; });
  return static_cast<std::size_t>(levels_.rend() - found) - 1;
}

void Line::mustNotBeLost(const Levels& of) const {
  if (of.lost == 0) [[likely]]
    return;
  Error error(errors::kTransactionLost, std::string(kSource),
              std::string(defaultDescription(errors::kTransactionLost)));
  throw error.noting("It was lost by: " + of.lostBy);
}

std::optional<Line::Control> Line::cleanSince() const {
  if (!holds_.empty()) return std::nullopt;
  if (later_.empty()) return mark_;
  const Control& last = later_.back();
  switch (last.kind) {
    case Control::Kind::kBegin:
    case Control::Kind::kSavepoint:
      return last;
    case Control::Kind::kRollbackTo:
      return Control{Control::Kind::kSavepoint, last.serial};
    default:
      return std::nullopt;
  }
}

bool Line::hasLevelOf(int serial) const {
  return std::any_of(levels_.begin(), levels_.end(),
                     [serial](const Level& level) { return level.serial == serial; });
}

void Line::begin(Levels& of) {
  mustNotBeLost(of);
  if (levels_.empty()) {
    later_.push_back({Control::Kind::kBegin});
    levels_.push_back({&of, 0});
  } else if (const auto mark = cleanSince()) {
    levels_.push_back({&of, mark->serial});
  } else {
    later({Control::Kind::kSavepoint, ++lastSerial_});
    levels_.push_back({&of, lastSerial_});
  }
  if (++of.open == 1) of.commitFailed = false;
}

void Line::commit(Levels& of) {
  if (of.open == 0) {
    raise(errors::kNotAllowedInContext, kSource, "There is no transaction to commit");
  }
  mustNotBeLost(of);
  const std::size_t place = innermostOf(of);
  const int serial = levels_[place].serial;
  const bool isTop = place + 1 == levels_.size();
  levels_.erase(levels_.begin() + static_cast<std::ptrdiff_t>(place));
  --of.open;
  if (levels_.empty()) return commitTransaction(of);
  // What it wrote belongs to those that are left.
  if (!isTop || hasLevelOf(serial)) return;
  const bool isWaiting = !later_.empty() && later_.back().kind == Control::Kind::kSavepoint &&
                         later_.back().serial == serial;
  if (isWaiting) {
    later_.pop_back();
  } else {
    later({Control::Kind::kRelease, serial});
  }
}

void Line::commitTransaction(Levels& of) {
  if (!isBegun_) return endTransaction();
  const auto fail = [&](Error error) {
    dropTransaction();
    endTransaction();
    of.commitFailed = true;
    return error;
  };
  try {
    beReady();
    holds_.clear();
    onWire([&](Wire&) {
      putWaiting();
      put({Sent::Kind::kAwaited}, Control{Control::Kind::kCommit}.text());
      putSync();
    });
  } catch (const Error& error) {
    throw fail(error);
  }
  ResultHandle answer;
  try {
    answer = collect();
  } catch (const Error& error) {
    if (error.number() != errors::kConnectionLost) throw fail(error);
    Error unknown(error.number(), error.source(),
                  error.description() + " Whether what was being committed is kept is not known.");
    throw fail(unknown.withNativeCode(error.nativeCode()));
  }
  if (std::string_view(PQcmdStatus(answer.get())) != "COMMIT") {
    throw fail(Error(errors::kTransactionLost, std::string(kSource),
                     "The server has rolled back what was to be committed."));
  }
  isChangingSchema_ = false;
  endTransaction();
}

void Line::rollback(Levels& of) {
  if (of.open == 0) {
    if (std::exchange(of.commitFailed, false)) return;
    raise(errors::kNotAllowedInContext, kSource, "There is no transaction to roll back");
  }
  --of.open;
  if (of.lost > 0) {
    if (--of.lost == 0) of.lostBy.clear();
    return;
  }
  const std::size_t place = innermostOf(of);
  const int serial = levels_[place].serial;
  loseFrom(place + 1, "another session has rolled back the level that it began in.");
  levels_.pop_back();
  answers_.clear();
  if (isChangingSchema_) ++schemaChanges_;
  const bool isShared = hasLevelOf(serial);
  if (const auto mark = cleanSince(); isShared && mark && mark->serial == serial) return;
  if (serial == 0) {
    dropTransaction();
    if (isShared) later_.push_back({Control::Kind::kBegin});
    return;
  }

  holds_.clear();
  held_.clear();
  const auto waiting = std::find_if(later_.begin(), later_.end(), [&](const Control& control) {
    return control.kind == Control::Kind::kSavepoint && control.serial == serial;
  });
  if (waiting != later_.end()) {
    later_.erase(isShared ? waiting + 1 : waiting, later_.end());
  } else {
    if (unsettled_ > 0) {
      // Whether its savepoint stands is known only when what was sent before has run.
      try {
        beReady();
        onWire([&](Wire&) { putSync(); });
        collect();
      } catch (const Error&) {
        if (levels_.empty()) throw;  // with it goes what others have committed
        return;                      // those that are left are lost by it, and will say so
      }
    }
    later_.push_back({Control::Kind::kRollbackTo, serial});
    if (!isShared) later_.push_back({Control::Kind::kRelease, serial});
  }
  if (levels_.empty()) commitTransaction(of);
}

void Line::abandon(Levels& of) noexcept {
  of.lost = 0;
  of.lostBy.clear();
  const auto outermost = std::find_if(levels_.begin(), levels_.end(),
                                      [&](const Level& level) { return level.owner == &of; });
  if (outermost == levels_.end()) return;
  loseFrom(static_cast<std::size_t>(outermost - levels_.begin()) + 1,
           "another session has ended below it.");
  of = {.open = 1, .lost = 0, .commitFailed = false, .lostBy = {}};
  try {
    rollback(of);
  } catch (const std::exception&) {
    // Of a line that is lost nothing is left either.
  }
}

void Line::dropTransaction() noexcept {
  if (isChangingSchema_) ++schemaChanges_;
  if (!std::exchange(isBegun_, false)) return endTransaction();
  try {
    if (wire_ && wire_->isOurs()) {
      onWire([&](Wire& wire) {
        for (Sent& sent : underWay_) {
          sent.isDropped = true;
          sent.outcome = {};
        }
        if (!underWay_.empty()) putSync();
        put({Sent::Kind::kControl, false, true}, Control{Control::Kind::kRollback}.text());
        putSync();
        wire.flush();
      });
    }
  } catch (const std::exception&) {
    // Then the server ends it with the line.
  }
  endTransaction();
}

void Line::endTransaction() noexcept {
  isBegun_ = false;
  isChangingSchema_ = false;
  later_.clear();
  mark_.reset();
  undo_.clear();
  holds_.clear();
  held_.clear();
  lastSerial_ = 0;
  unsettled_ = 0;
  unsettledBytes_ = 0;
  answers_.clear();
}

void Line::loseFrom(std::size_t level, std::string_view by) noexcept {
  for (std::size_t i = level; i < levels_.size(); ++i) {
    ++levels_[i].owner->lost;
    levels_[i].owner->lostBy = by;
  }
  answers_.clear();
  levels_.erase(levels_.begin() + static_cast<std::ptrdiff_t>(std::min(level, levels_.size())),
                levels_.end());
}

}  // namespace tavelor::engine::postgres

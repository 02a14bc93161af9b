// SPDX-License-Identifier: MIT
// A chain gone along: what somebody has done to it is told by what each item says of the one
// before.
#include "tavelor/fiscal/chain_walk.hpp"

#include <algorithm>
#include <utility>

#include <fmt/format.h>

namespace tavelor::fiscal {

namespace {

constexpr std::int32_t kPage = 1000;
constexpr std::int64_t kClocksDiffer = 60;  // seconds

}  // namespace

std::string ChainItem::name() const {
  if (self.empty()) return fmt::format("{} {}", what, position);
  return fmt::format("{} {}, {}{},", what, position, isCancellation ? "the cancellation of " : "",
                     self);
}

std::vector<Flaw> ChainWalk::walk(ChainPlace begin, std::int32_t last) {
  place_ = std::move(begin);
  flaws_.clear();
  before_.reset();
  std::optional<ChainItem> waiting;
  const auto take = [&](ChainItem item) {
    if (waiting) {
      look(*waiting, &item);
      pass(std::move(*waiting));
    }
    waiting = std::move(item);
  };
  for (std::int32_t behind = place_.position; behind < last;) {
    const std::int32_t upTo = last - behind > kPage ? behind + kPage : last;
    read_(behind, upTo, take);
    behind = upTo;
  }
  if (waiting) {
    look(*waiting, nullptr);
    pass(std::move(*waiting));
  }
  // Some are only seen from the next item on; at one place, what was done to it comes first.
  std::stable_sort(flaws_.begin(), flaws_.end(), [](const Flaw& a, const Flaw& b) {
    return std::pair(a.position, a.kind) < std::pair(b.position, b.kind);
  });
  return std::move(flaws_);
}

void ChainWalk::tell(Flaw::Kind kind, const ChainItem& item, std::string sentence) {
  Flaw flaw;
  flaw.kind = kind;
  flaw.position = item.position;
  flaw.invoice = item.invoice;
  flaw.sentence = std::move(sentence);
  flaws_.push_back(std::move(flaw));
}

void ChainWalk::look(const ChainItem& item, const ChainItem* next) {
  ++seen_;
  const bool isInPlace = lookAtPlace(item, next);
  if (!item.fault.empty()) {
    tell(Flaw::Kind::kChanged, item, fmt::format("{} was changed: {}", item.name(), item.fault));
  } else if (isInPlace && hasher_(place_.seal, item.text) != item.seal) {
    tell(Flaw::Kind::kChanged, item,
         fmt::format("{} was changed: its seal is not that of what stands in it", item.name()));
  }
  lookAtTime(item);
  flaws_.insert(flaws_.end(), item.others.begin(), item.others.end());
}

void ChainWalk::pass(ChainItem item) {
  place_.position = item.position;
  place_.self = item.self;
  place_.hash = item.hash;
  place_.seal = item.seal;
  place_.moment = item.moment;
  before_ = std::move(item);
}

/// Whether it follows the item before it.
bool ChainWalk::lookAtPlace(const ChainItem& item, const ChainItem* next) {
  const std::int32_t expected = place_.position + 1;
  if (item.position > expected) {
    Flaw flaw;
    flaw.kind = Flaw::Kind::kRemoved;
    flaw.position = expected;
    const std::string what = item.position == expected + 1
                                 ? fmt::format("{} is", expected)
                                 : fmt::format("{} to {} are", expected, item.position - 1);
    flaw.sentence =
        fmt::format("what stood at {} missing{}", what,
                    item.previous.empty() ? std::string()
                                          : fmt::format("; the last of it was {}", item.previous));
    flaws_.push_back(std::move(flaw));
    return false;
  }
  if (!item.isRead) return false;
  if (item.previousHash == place_.hash && item.previous == place_.self) return true;

  if (item.previousHash.empty()) {
    tell(Flaw::Kind::kInserted, item,
         fmt::format("{} was inserted: it says that it is the first of the chain", item.name()));
    return false;
  }
  const std::int32_t follows = find_(item.previousHash);
  if (follows > item.position) {
    tell(Flaw::Kind::kReordered, item,
         fmt::format("{} was reordered: it stands before {}, which it follows", item.name(),
                     item.previous));
    return false;
  }
  if (next != nullptr && next->isRead && next->position == item.position + 1 &&
      next->previousHash == place_.hash && next->previous == place_.self) {
    tell(Flaw::Kind::kInserted, item,
         fmt::format("{} was inserted: the next one follows {}", item.name(),
                     place_.self.empty() ? "none" : place_.self));
    return false;
  }
  const std::string nameBefore = before_ ? before_->name() : std::string();
  Flaw flaw;
  flaw.position = place_.position;
  if (before_) flaw.invoice = before_->invoice;
  if (follows > 0) {
    flaw.kind = Flaw::Kind::kInserted;
    flaw.sentence =
        fmt::format("{} was inserted: the next one follows {}", nameBefore, item.previous);
  } else if (item.previous == place_.self && !place_.self.empty()) {
    flaw.kind = Flaw::Kind::kChanged;
    flaw.sentence = fmt::format("{} was changed: its hash is not the one that the next one tells",
                                before_ ? nameBefore : place_.self);
    // One that is told to be changed already has another hash for that very reason.
    const auto isTold = [&](const Flaw& told) {
      return told.kind == Flaw::Kind::kChanged && told.position == place_.position;
    };
    if (std::any_of(flaws_.begin(), flaws_.end(), isTold)) return false;
  } else {
    flaw.kind = Flaw::Kind::kRemoved;
    flaw.position = item.position;
    flaw.invoice.reset();
    flaw.sentence =
        fmt::format("{}, which {} follows, was removed, or another one put in its place",
                    item.previous, item.name());
  }
  flaws_.push_back(std::move(flaw));
  return false;
}

void ChainWalk::lookAtTime(const ChainItem& item) {
  if (!item.isRead) return;
  if (item.moment < place_.moment) {
    tell(Flaw::Kind::kDate, item,
         fmt::format("{} is {} s older than the one before it", item.name(),
                     place_.moment - item.moment));
  }
  if (item.moment > now_ + kClocksDiffer) {
    tell(Flaw::Kind::kDate, item, fmt::format("{} was made in the future", item.name()));
  }
}

}  // namespace tavelor::fiscal

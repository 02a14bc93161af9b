// SPDX-License-Identifier: MIT
// A chain of records, or of events, gone along from one end to the other.
#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "tavelor/fiscal/check.hpp"

namespace tavelor::fiscal {

/// One of a chain, as a check needs it.
struct ChainItem {
  std::int32_t position = 0;
  std::optional<InvoiceId> invoice{};
  std::string fault{};         ///< of its own: it is not what it was; "" for none
  bool isRead = true;          ///< else its place in the chain is not known
  std::string previous{};      ///< "" of the first, else what names the one before
  std::string previousHash{};  ///< "" of the first
  std::string self{};          ///< what names it in the one behind it; "" where that is not known
  std::string hash{};          ///< recomputed
  std::string seal{};          ///< as stored
  std::string text{};          ///< what was sealed
  std::int64_t moment = 0;     ///< seconds
  std::vector<Flaw> others{};  ///< what else is wrong with it
  std::string_view what = "record";  ///< or "event"
  bool isCancellation = false;       ///< of what `self` names

  /// "record 5, the invoice T/5 of 01-02-2027,"
  std::string name() const;
};

/// Where a chain ends by its own row, or where a look along it does.
struct ChainPlace {
  std::int32_t position = 0;
  std::string self{};
  std::string hash{};
  std::string seal{};
  std::int64_t moment = 0;
};

/// Goes along a chain and tells where it was harmed.
class ChainWalk {
 public:
  using Take = std::function<void(ChainItem item)>;
  /// Gives the items behind one position and up to another, in order.
  using Read = std::function<void(std::int32_t behind, std::int32_t upTo, const Take& take)>;
  /// The position of the item with a hash; 0 where there is none.
  using Find = std::function<std::int32_t(const std::string& hash)>;

  /// `now` is the last second in which an item can have been made.
  ChainWalk(Read read, Find find, std::int64_t now)
      : read_(std::move(read)), find_(std::move(find)), now_(now) {}

  /// From behind `begin` up to `last`. Gives the flaws in the order of the items.
  std::vector<Flaw> walk(ChainPlace begin, std::int32_t last);
  /// How many items it has seen.
  std::uint64_t seen() const { return seen_; }
  /// The last item that it has seen.
  const ChainPlace& place() const { return place_; }

 private:
  void look(const ChainItem& item, const ChainItem* next);
  void pass(ChainItem item);
  bool lookAtPlace(const ChainItem& item, const ChainItem* next);
  void lookAtTime(const ChainItem& item);
  void tell(Flaw::Kind kind, const ChainItem& item, std::string sentence);

  Read read_;
  Find find_;
  std::int64_t now_;
  ChainPlace place_;
  std::optional<ChainItem> before_;  // the item at place_, where that was seen
  std::uint64_t seen_ = 0;
  Hasher hasher_;
  std::vector<Flaw> flaws_;
};

}  // namespace tavelor::fiscal

// SPDX-License-Identifier: MIT
// Goods that come in: a delivery is posted whole, once, or not at all.
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "tavelor/flows/delivery.hpp"

namespace tavelor::flows {

class Shop;

/// The kind of document that a delivery is to the ledgers of movements and of suppliers (their
/// column Estado).
inline constexpr std::int16_t kDeliveryKind = 2;

/// What became of a delivery.
struct Receipt {
  /// Of a delivery that was handed over.
  enum class Outcome : std::uint8_t {
    kReceived,  ///< now
    kKnown,     ///< it was received before, line by line the same
    kRefused,   ///< something is wrong with it, and nothing of it is stored
  };
  /// What is wrong, by the name of the value: "Lote L1 expired on 2026-11-01".
  struct Fault {
    std::uint64_t origin = 0;  ///< of the line; that of the first one for the delivery as such
    std::string reason;        ///< for people
  };

  /// Which of the three.
  Outcome outcome = Outcome::kRefused;
  double number = 0;          ///< of the delivery in both ledgers; 0 for a refused one
  std::vector<Fault> faults;  ///< of a known one: what a person should look at
};

/// Receives goods in the installation of the thread's apartment.
///
/// All that a delivery moves lies in the main database: the stock of article, warehouse and lot,
/// the movements, the prices, and what the shop owes its supplier. So each is one transaction: a
/// program that dies, whenever it does, leaves all of a delivery or nothing, and there is nothing
/// to mend afterwards.
///
/// A delivery is known again by the entry that it has in the supplier's ledger, whose text is the
/// number of the note, letter by letter. Whoever deletes that entry lets the same note come in once
/// more.
class Receiving {
 public:
  /// Over a connection of its own. Raises what opening the database raises.
  Receiving();
  /// Over that of a shop, whose Transaction its deliveries join.
  explicit Receiving(const Shop& shop);
  ~Receiving();
  Receiving(const Receiving&) = delete;
  Receiving& operator=(const Receiving&) = delete;

  /// Posts a delivery, unless the supplier has one of that number: then it is told whether both are
  /// the same. Looks at all lines before it refuses one. An error of the database passes, and
  /// leaves nothing.
  Receipt receive(const Delivery& delivery);
  /// The same, and nothing stays written.
  Receipt rehearse(const Delivery& delivery);

 private:
  class Inner;
  std::unique_ptr<Inner> inner_;
};

}  // namespace tavelor::flows

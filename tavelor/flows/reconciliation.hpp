// SPDX-License-Identifier: MIT
// Whether what was sold is what the shop has, at every place where it lies.
#pragma once

#include <array>
#include <cstdint>
#include <map>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "tavelor/flows/findings.hpp"
#include "tavelor/flows/payments.hpp"
#include "tavelor/flows/sale.hpp"
#include "tavelor/platform/date.hpp"

namespace tavelor::flows {

/// What is counted of a till's day. A place that does not tell a figure leaves it alone.
struct Tally {
  std::int64_t tickets = 0;
  std::int64_t lines = 0;
  double units = 0;            ///< returns count negative
  std::int64_t cents = 0;      ///< money, tax included, and surcharge where the place has it
  std::int64_t lineCents = 0;  ///< the same by the lines, which hold no surcharge
  std::int64_t owed = 0;       ///< cents that went on account, returns negative

  /// Adds each figure.
  Tally& operator+=(const Tally& other);
};

/// Compares sales as they were meant with six places of the installation, for each till and day of
/// which a sale was meant: its tickets and their lines, live and in history; what is in history of
/// them; the closings; the movements of stock; what the ledgers of customers hold of its tickets.
///
/// All that the installation has of such a till and day counts, whoever sold it. Movements of such
/// a day whose ticket is nowhere, and lines without movements, are told by the ticket's number.
class Reconciliation {
 public:
  /// Where figures come from: what was meant, and the places of the installation.
  enum Place : std::uint8_t {
    kMeant,
    kTickets,
    kHistory,
    kClosings,
    kMovements,
    kAccounts,
    kPlaces
  };
  /// Of the places, for people.
  static constexpr std::array<std::string_view, kPlaces> kNames = {
      "sales", "tickets", "history", "closings", "stock moves", "accounts"};

  /// One figure that differs, or one ticket or closing that only one of the databases knows.
  struct Difference {
    std::string till;  ///< "" for a ticket that is nowhere
    Date day;
    Place place;
    std::string what;  ///< "12 tickets where 13 were sold"
  };

  /// One more sale that was meant.
  void expect(const Sale& sale);
  /// Reads the installation of the thread's apartment. What differs is in differences().
  void compare();

  /// Of all tills and days together.
  const Tally& total(Place place) const { return totals_[place]; }
  /// What compare() found, by till and day; empty when all agree.
  const std::vector<Difference>& differences() const { return differences_; }
  /// Of how many tills and days a sale was meant.
  std::size_t tillDays() const { return meant_.size(); }

 private:
  using TillDay = std::pair<double, std::string>;  // the day first: days are read one by one
  using PlaceTallies = std::array<Tally, kPlaces>;
  class Day;

  void compareOnce();

  void judge(const TillDay& key, const PlaceTallies& found);
  void tellDisagreements(Date day, const std::vector<Finding>& findings);

  PaymentMethods methods_;
  std::map<TillDay, Tally> meant_;
  std::array<Tally, kPlaces> totals_ = {};
  std::vector<Difference> differences_;
};

}  // namespace tavelor::flows

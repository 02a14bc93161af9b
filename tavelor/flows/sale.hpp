// SPDX-License-Identifier: MIT
// A sale as the till hands it over: who, when, what, and how it is paid.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include "tavelor/fiscal/terms.hpp"
#include "tavelor/platform/date.hpp"
#include "tavelor/platform/error.hpp"

namespace tavelor::flows {

/// "2026-11-20".
std::string isoDay(Date day);

inline constexpr double kMostMoney = 1e9;    ///< euros of a line, and units
inline constexpr double kGeneralTax = 21;    ///< percent
inline constexpr double kTaxOfArticle = -1;  ///< until the line is priced

/// How many characters the texts of a sale may have.
struct SaleWidths {
  static constexpr std::size_t kReference = 50;     ///< of Sale::reference
  static constexpr std::size_t kCustomer = 20;      ///< of Sale::customer
  static constexpr std::size_t kName = 100;         ///< of Sale::name
  static constexpr std::size_t kPlace = 100;        ///< of Sale::place
  static constexpr std::size_t kCode = 20;          ///< of SaleLine::code
  static constexpr std::size_t kDescription = 255;  ///< of SaleLine::description
  static constexpr std::size_t kFamily = 10;        ///< of SaleLine::family
  static constexpr std::size_t kLot = 50;           ///< of SaleLine::lot
};

/// One article of a sale. A negative quantity is a return.
struct SaleLine {
  std::string code;              ///< of the article
  std::string description = {};  ///< as the receipt tells it
  std::string family = {};       ///< code; "" for none
  double quantity = 0;           ///< pieces, kilos; not 0
  double price = 0;              ///< of one unit, euros, tax included; not 0 unless isFree
  double tax = kGeneralTax;      ///< percent; a rate that the shop has
  double surcharge = 0;          ///< percent of the base, which the price does not hold; of a
                                 ///< customer under equivalence surcharge, see Shop::price
  double discount = 0;           ///< percent off the price, 0 to 100
  bool wantsPrice = false;       ///< it brings none: the shop's own is to be taken, see Shop::price
  bool isFree = false;           ///< given away on purpose: its price may be 0
  /// Of an article that is kept by lots; "" for the active one. See Shop::sell.
  std::string lot = {};
  std::uint64_t origin = 0;  ///< line of the file that it comes from; 0 for none

  /// Price less discount, to the four decimals that movements keep.
  double netPrice() const;
  /// Quantity by net price, in whole cents; half a cent goes away from zero. Without surcharge.
  double amount() const;
};

/// What is wrong with the values of a line, whatever the shop has; "" for nothing. A line that
/// wants a price may come without price and tax.
std::string faultOf(const SaleLine& line);

/// What was paid of a sale in one way, where it was paid in several.
struct PaymentPart {
  std::string payment;  ///< code of one of the shop's payment methods
  double amount = 0;    ///< euros, whole cents; negative in a return, where it is given back
};

/// One ticket. What money it makes follows from its lines.
struct Sale {
  std::string reference;  ///< what the shop calls it elsewhere; of all sales, only this one has it
  std::string till;       ///< code; one that the shop has
  Date day;               ///< without a time
  std::string time;       ///< "10:32"; "" for none
  std::string customer;   ///< code; "" for one that nobody knows
  std::string name;       ///< of the customer, as typed
  std::string place;      ///< where the customer lives
  std::string payment;    ///< code of one of the shop's payment methods
  /// Where it is paid in several ways: they add up to the total, none is on credit, no method comes
  /// twice, and `payment`, which the ticket bears, is that of one of them. None: all by `payment`.
  std::vector<PaymentPart> parts = {};
  double delivered = 0;   ///< euros handed over; less than the total counts as the total, and what
                          ///< is sold on credit takes none. Of parts, what was given in cash
  std::string comment;
  /// Somebody answers for it: sold on credit whatever the customer owes, blocked and out of use
  /// too.
  bool isCreditGranted = false;
  /// How the law's record of it is to be, in a shop that keeps records.
  fiscal::Terms invoice = {};
  /// Number of the ticket that it brings back, and whether that one is cancelled by it, as
  /// Shop::takeBack() and Shop::cancel() have it; 0 for none.
  double returned = 0;
  bool isCancellation = false;  ///< see returned
  std::vector<SaleLine> lines;

  /// Euros, tax and surcharge included.
  double total() const;
  /// What of it is surcharge: of each pair of rates the base, as the receipt tells it, by the
  /// surcharge's rate, to the nearest cent.
  double surcharge() const;
};

/// What a sale's total is made of, in euros: the parts add up to it.
struct SaleTaxes {
  double base = 0;
  double tax = 0;
  double surcharge = 0;
  double surchargeRate = 0;  ///< percent; 0 where its lines do not all have the same
};

/// Of each pair of rates the sum of the lines is split as on the receipt.
SaleTaxes taxesOf(const Sale& sale);

/// What is wrong with a sale, or with one of its lines.
struct SaleFault {
  std::size_t line = 0;      ///< from 1; 0 for the sale as such
  std::uint64_t origin = 0;  ///< of the line; that of the first one for the sale as such
  std::string code = {};     ///< of the line's article
  std::string reason;        ///< "the quantity is 0"
};

/// Raised, by number 5, for a sale that is not taken: all that is wrong with it at once, each with
/// its line. Nothing of the sale is left.
class RefusedSale final : public Error {
 public:
  /// Of the sale with that reference.
  RefusedSale(const std::string& reference, std::vector<SaleFault> faults,
              bool isConflict = false);
  /// In the order of the lines, the sale as such first.
  const std::vector<SaleFault>& faults() const { return faults_; }
  /// Whether nothing is wrong with it but that another one is there by its name.
  bool isConflict() const { return isConflict_; }

 private:
  std::vector<SaleFault> faults_;
  bool isConflict_;
};

}  // namespace tavelor::flows

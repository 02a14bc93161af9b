// SPDX-License-Identifier: MIT
// Sales from a file of comma-separated lines, one line of the file a line of a sale.
#pragma once

#include <array>
#include <cstdint>
#include <deque>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "tavelor/flows/payments.hpp"
#include "tavelor/flows/sale.hpp"
#include "tools/csv_file.hpp"
#include "tools/refusals.hpp"

namespace tavelor::tools {

/// Which lines of a file are wanted, and by whom they were sold.
struct SalesSelection {
  std::vector<std::string> tills;  ///< of the shop; a sale's reference says which one made it
  std::optional<Date> from;        ///< first day
  std::optional<Date> to;          ///< last day
  flows::PaymentMethods payments;  ///< of the shop
};

/// Reads the columns InvoiceNo, StockCode, Quantity and InvoiceDate, and, where they are there,
/// UnitPrice, Description, CustomerID, Country, Family, Tax, Payment, Delivered and Till; case does
/// not count, others are passed over. A line without a price wants the shop's own. Numbers have a
/// decimal point; dates are yyyy-mm-dd, with or without a time.
///
/// The lines of a sale need not follow each other, but may lie no more than fifteen minutes apart:
/// with the first line after that, or of another day, the sale is complete. So no more than some
/// minutes of sales are held at a time; beside them, the reference of each sale is remembered.
///
/// A line with a fault is refused and the rest goes on; one of a day that is not wanted is passed
/// over. What is wrong with the file as a whole raises FileError; sales that were not complete then
/// are not given.
class SalesFile {
 public:
  /// Raises FileError for a file without one of the four columns, or with one of them all twice.
  SalesFile(const std::string& path, SalesSelection selection);

  /// The next complete sale; false at the end.
  bool next(flows::Sale& sale);

  std::uint64_t linesRead() const { return lines_; }
  /// Those since the last call.
  std::vector<Refusal> takeRefused();

 private:
  enum Column : std::uint8_t {
    kReference,
    kCode,
    kQuantity,
    kMoment,
    kPrice,
    kDescription,
    kCustomer,
    kPlace,
    kFamily,
    kTax,
    kPayment,
    kDelivered,
    kTill,
    kColumns
  };
  static constexpr std::array<std::string_view, kColumns> kNames = {
      "InvoiceNo", "StockCode", "Quantity", "InvoiceDate", "UnitPrice", "Description", "CustomerID",
      "Country",   "Family",    "Tax",      "Payment",     "Delivered", "Till"};
  static constexpr std::size_t kWanted = kPrice;

  struct OpenSale {
    flows::Sale sale;
    double last = 0;  ///< moment of its last line, in days
  };
  struct Line;

  std::string_view text(Column column) const;
  void takeRow();
  bool readLine(Line& line);
  bool readNumber(Column column, double most, double& to, double otherwise);
  bool wanted(Date day) const;
  OpenSale* openSale(const Line& line);
  std::optional<std::string> paymentOf(const std::string& customer);
  bool belongs(const flows::Sale& sale);
  std::string tillOf(std::string_view reference) const;
  bool refuse(std::string reason);
  void completeBefore(double moment);

  CsvFile file_;
  SalesSelection selection_;
  double today_;
  std::array<std::optional<std::size_t>, kColumns> places_;
  CsvFile::Row row_;
  std::uint64_t lines_ = 0;
  std::deque<OpenSale> open_;  ///< in the order of their first lines
  std::deque<flows::Sale> complete_;
  std::unordered_map<std::string, std::uint64_t> begun_;  ///< line of each sale's beginning
  std::vector<Refusal> refused_;
  bool ended_ = false;
};

}  // namespace tavelor::tools

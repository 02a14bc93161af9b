// SPDX-License-Identifier: MIT
// What a till has to close, and closings as they are stored, with what was counted.
#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

#include "tavelor/flows/day_figures.hpp"
#include "tavelor/platform/date.hpp"

namespace tavelor::flows {

/// What a till's tickets were paid by.
struct TillPayment : Share {
  bool isCash = false;  ///< it lies in the drawer
};

/// A till's tickets of a day that no closing has taken. Euros.
struct TillDay {
  std::size_t tickets = 0;
  double total = 0;
  std::vector<TillPayment> payments;  ///< by code
  double opening = 0;                 ///< what the last closing left, by what was counted then
  double expected = 0;                ///< cash that must be there: the opening and what came in
};

/// Nothing but zeros and the opening for a till that has sold nothing.
TillDay tillDay(const std::string& till, Date day);

/// A count as it was made. Euros.
struct StoredCount {
  double expected = 0;
  double counted = 0;
  double difference = 0;  ///< counted less expected
  std::string by;         ///< code of the employee
  Date moment;
};

/// A closing. Euros.
struct ClosingRow {
  double number = 0;
  std::string till;
  Date day;
  double total = 0;  ///< of its tickets
  double start = 0;  ///< the till's balance by its closings
  double end = 0;
  std::optional<StoredCount> count{};  ///< none where nobody counted
};

/// Which closings.
struct ClosingQuestion {
  std::string till = {};  ///< "" for all
  std::optional<Date> from{};
  std::optional<Date> to{};  ///< included
  std::size_t offset = 0;
  std::size_t limit = 100;  ///< 500 at most are given
};

/// A page of a list.
struct ClosingList {
  std::vector<ClosingRow> rows;  ///< the latest first
  std::size_t total = 0;         ///< that there are
};

/// The closings that the question asks for, of all tills unless it names one.
ClosingList listClosings(const ClosingQuestion& question);

/// A closing with all that is told of it.
struct ClosingDetails : ClosingRow {
  std::size_t tickets = 0;           ///< as far as history has them
  std::optional<double> previous{};  ///< number of the till's closing before
  bool isBroken = false;             ///< its start is not the end of that one, to the cent
  std::vector<Share> families;
  std::vector<Share> payments;
  std::vector<TaxFigures> taxes;
};

/// Nothing where it is not there.
std::optional<ClosingDetails> findClosing(double number);
/// The latest one of a till and a day.
std::optional<ClosingDetails> findClosing(const std::string& till, Date day);

/// Of a closing; nothing where nobody counted.
std::optional<StoredCount> countOf(double closing);

}  // namespace tavelor::flows

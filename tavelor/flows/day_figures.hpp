// SPDX-License-Identifier: MIT
// What a shop owner wants to know of a day or a run of days, read from the databases.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "tavelor/platform/date.hpp"

namespace tavelor::flows {

/// Tickets and their money, tax included, in euros.
struct Takings {
  std::int32_t tickets = 0;
  double amount = 0;
};

/// What an hour took.
struct HourFigures : Takings {
  int hour = 0;  ///< 0 to 23
};

/// What a day took.
struct DayFigures : Takings {
  Date day;
};

/// A part of the money by its name: a family, a payment method.
struct Share {
  std::string code;
  std::string name;  ///< of the catalogue; the code where that knows none
  double amount = 0;
};

/// What was sold of an article; amounts in euros, tax included.
struct ArticleFigures {
  std::string code;
  std::string description;
  double units = 0;
  double amount = 0;
};

/// What was taxed at a rate, in euros.
struct TaxFigures {
  double rate = 0;  ///< percent
  double base = 0;
  double tax = 0;
};

/// One closing of a till.
struct ClosingFigures {
  std::int32_t number = 0;
  std::string till;
  Date day;
  double start = 0;
  double sales = 0;
  double end = 0;
  double expected = 0;    ///< end of the till's closing before
  bool isBroken = false;  ///< the start is not the expected one, to the cent
};

/// All that the page of one or more days shows. Amounts are euros, tax included.
struct PageFigures {
  Date first;
  Date last;
  std::string shop;  ///< name of the default document type's company, else of the folder

  Takings all;       ///< of the tickets that closings took
  Takings open;      ///< of those that no closing took yet; they count nowhere else
  Takings timeless;  ///< of those of `all` whose concept is no time of the day
  std::int32_t lines = 0;
  double units = 0;

  std::vector<HourFigures> hours;        ///< with sales, in their order
  std::vector<DayFigures> days;          ///< with sales, in their order
  std::vector<Share> families;           ///< largest first
  std::vector<Share> payments;           ///< largest first
  std::vector<ArticleFigures> articles;  ///< all that were sold, by code; returns are taken off
  std::vector<ArticleFigures> returned;  ///< largest money first; positive
  std::int32_t returns = 0;              ///< tickets with a returned article
  std::vector<TaxFigures> taxes;         ///< by rate
  double surcharge = 0;                  ///< equivalence surcharge of `all`
  std::vector<ClosingFigures> closings;  ///< by till and number

  double tax() const;           ///< of all rates
  double closedAmount() const;  ///< of the closings
};

/// Reads the days from `first` to `last`, both included, on the calling thread's apartment. What
/// closings say counts for the day of the closing. Raises 5 when `last` is before `first`.
PageFigures gatherFigures(Date first, Date last);

}  // namespace tavelor::flows

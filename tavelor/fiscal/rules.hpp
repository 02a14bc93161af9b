// SPDX-License-Identifier: MIT
// What the tax office refuses, asked before it does.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "tavelor/fiscal/record.hpp"

namespace tavelor::fiscal {

/// Up to so much a ticket needs nobody's name, in cents.
inline constexpr std::int64_t kTicketLimit = 300'000;
/// From so much on an invoice is marked, in cents, whatever its sign.
inline constexpr std::int64_t kLargeInvoice = 10'000'000'000;
/// Before it there were no records.
inline constexpr Date kFirstDay = Date(45593);  // 28 October 2024
/// How long texts may be, in characters.
inline constexpr std::size_t kLongestName = 120;
inline constexpr std::size_t kLongestNumber = 60;        ///< of an invoice
inline constexpr std::size_t kLongestDescription = 500;  ///< the same
inline constexpr std::size_t kMostDetails = 12;          ///< rates of an invoice

/// Whether the law knows the rate on that day, with that surcharge; 0 for none. In hundredths of a
/// percent.
bool isLegalRate(std::int64_t rate, std::int64_t surcharge, Date day);

/// What is wrong with a party, to stand behind its name: "the fiscal number 123 has not nine
/// characters"; "" for nothing. Spanish numbers are read strictly.
std::string faultOf(const Party& party);

/// What is wrong with the number of an invoice; "" for nothing.
std::string faultOfNumber(std::string_view number);

/// "does not add up: bases 10.00, quotas 2.10, total 12.00" where the details come to another quota
/// or total than the registration's, by a cent or more; "" for nothing.
std::string faultOfSums(const Registration& record);

/// What the tax office would refuse in a registration, or accept with errors: all of it, a sentence
/// each. `today` is the last day on which it can have been issued.
std::vector<std::string> faultsOf(const Registration& record, Date today);

/// A text as records and events take it: without control characters and blanks around it, and no
/// longer than `most` characters.
std::string recordText(std::string_view given, std::size_t most);

}  // namespace tavelor::fiscal

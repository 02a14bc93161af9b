// SPDX-License-Identifier: MIT
// Form 347: with whom a shop has done business in a year, as the file that the tax office takes.
#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "tavelor/fiscal/record.hpp"

namespace tavelor::fiscal {

/// Above so much with somebody in a year he is declared, in cents, tax included, whatever the sign.
inline constexpr std::int64_t kDeclaredAbove = 300'506;
/// Above so much in cash it is told apart, in cents.
inline constexpr std::int64_t kCashAbove = 600'000;

/// Somebody that the shop has bought from, or sold to.
struct Declared {
  bool isSupplier = false;              ///< key A; else a customer, key B
  Party party;                          ///< a person's name is "surnames, name"
  std::string called;                   ///< as messages name it: "the customer 401"
  std::optional<int> province{};        ///< 1 to 52; of who lives in Spain
  std::array<std::int64_t, 4> cents{};  ///< by quarter, tax included
  std::int64_t cash = 0;                ///< what of it a customer has paid in cash, cents

  /// Of the year, in cents.
  std::int64_t total() const { return cents[0] + cents[1] + cents[2] + cents[3]; }
  /// Whether the law wants it declared.
  bool isDue() const { return total() > kDeclaredAbove || total() < -kDeclaredAbove; }
};

/// What a declaration does to one that was handed in before.
enum class FormKind : std::uint8_t {
  kFirst,        ///< there was none
  kComplements,  ///< adds to it what it left out
  kReplaces,     ///< takes the place of it
};

/// A declaration.
struct Form347 {
  int year = 0;              ///< four digits
  Party declarant{};         ///< the shop; a person's name is "surnames, name"
  std::string phone{};       ///< of who answers for it: nine digits, or ""
  std::string contact{};     ///< his name
  std::uint64_t number = 0;  ///< thirteen digits that begin with 347; 0: the first of its year
  FormKind kind = FormKind::kFirst;  ///< the first of its year, or not
  std::uint64_t previous = 0;        ///< number of the one before, where it is not the first
  std::vector<Declared> declared{};  ///< a record each
};

/// What is missing or wrong, a sentence each: fiscal numbers of Spain, provinces, names, numbers of
/// declarations.
std::vector<std::string> faultsOf(const Form347& form);

/// The file: the record of who declares, with the sums, then one of everybody declared; 500
/// characters each and a line end (CR LF), in ISO-8859-1, in capitals without accents. All that are
/// in `declared` are written, due or not. Raises 5 with all that faultsOf() tells, and 6 for an
/// amount of more than 15 digits.
std::string textOf(const Form347& form);

}  // namespace tavelor::fiscal

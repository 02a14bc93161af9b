// SPDX-License-Identifier: MIT
// Spanish fiscal numbers by the public rules: persons, foreigners and companies.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "tavelor/platform/export.hpp"

namespace tavelor {

/// Whose number it is, by its form.
enum class FiscalKind : std::uint8_t {
  kNone,        ///< no form of a Spanish number
  kNif,         ///< 8 digits and a letter
  kNie,         ///< X, Y or Z, 7 digits and a letter: foreigners
  kSpecialNif,  ///< K, L or M, 7 digits and a letter: minors, Spaniards abroad, others without one
  kCif,         ///< a letter, 7 digits and a control digit or letter: companies and bodies
};

/// How strictly a number is read.
enum class FiscalReading : std::uint8_t {
  kLenient,  ///< what circulates: a company may end in its control digit or in its control letter
  /// What the tax office takes: companies of P, Q, R, S, N and W end in the letter, those of A, B,
  /// E, H, J, U and V in the digit; K, L and M go on with a province, 01 to 56; four numbers are
  /// reserved.
  kStrict,
};

/// The first thing that is wrong with a number.
enum class FiscalFault : std::uint8_t {
  kNone,
  kEmpty,
  kLength,    ///< not nine characters
  kForm,      ///< the characters are not those of any kind
  kControl,   ///< the last character does not fit the others
  kEnding,    ///< strict: a digit where this kind of company ends in a letter, or the reverse
  kProvince,  ///< strict
  kReserved,  ///< strict
};

/// A fiscal number that was read.
struct TAVELOR_API FiscalNumber {
  std::string text;  ///< as it goes into a record: compactFiscalNumber() of what was typed
  FiscalKind kind = FiscalKind::kNone;
  FiscalFault fault = FiscalFault::kNone;

  /// Whether nothing is wrong with it.
  bool isValid() const { return fault == FiscalFault::kNone; }
};

/// Reads a number as somebody typed it. Never raises, whatever the bytes.
TAVELOR_API FiscalNumber readFiscalNumber(std::string_view typed,
                                          FiscalReading reading = FiscalReading::kLenient);

/// In capitals, without blanks and hyphens wherever they stand, white space around, and a leading
/// ES. Prefixes of other countries stay, and so does every other character.
TAVELOR_API std::string compactFiscalNumber(std::string_view typed);

/// The letter of a person's number: 12345678 has Z.
TAVELOR_API char personalControl(std::uint32_t number);

/// The two controls of a company, of which its kind takes one.
struct TAVELOR_API CompanyControl {
  char digit;
  char letter;
};
/// Of the seven digits behind its letter: 1234567 has 4 and D.
TAVELOR_API CompanyControl companyControl(std::string_view sevenDigits);

/// "has not nine characters", to stand behind the number in a message; "" for none.
TAVELOR_API std::string_view faultText(FiscalFault fault);
/// "NIF", "NIE", "CIF"; "" for none. K, L and M are NIF too.
TAVELOR_API std::string_view kindWord(FiscalKind kind);

}  // namespace tavelor

// SPDX-License-Identifier: MIT
// Bank account numbers by the public rules: IBAN, and the old Spanish number inside it.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "tavelor/platform/export.hpp"

namespace tavelor {

/// The first thing that is wrong with an account number.
enum class AccountFault : std::uint8_t {
  kNone,
  kEmpty,
  kCountry,  ///< the first two letters are no country of the register
  kLength,
  kForm,      ///< a letter where the country has digits, or the reverse
  kControl,   ///< the control digits of the IBAN do not fit
  kNational,  ///< those of the Spanish number do not fit
};

/// An account number that was read.
struct TAVELOR_API AccountNumber {
  std::string text;  ///< in capitals, without what stands between the groups
  AccountFault fault = AccountFault::kNone;

  /// Whether nothing is wrong with it.
  bool isValid() const { return fault == AccountFault::kNone; }
};

/// Reads an IBAN as somebody typed it: country, control digits, and for a Spanish one the number
/// inside; of other countries the form, by the register of 2022. Blanks, hyphens and points may
/// stand anywhere. Never raises, whatever the bytes.
TAVELOR_API AccountNumber readIban(std::string_view typed);

/// Reads an old Spanish number (CCC): 4 digits of the bank, 4 of the branch, 2 of control, 10 of
/// the account. Blanks and hyphens may stand anywhere. Never raises.
TAVELOR_API AccountNumber readCcc(std::string_view typed);

/// The two control digits of a bank and branch (8 digits) and of an account (10 digits).
TAVELOR_API std::string cccControl(std::string_view bankAndBranch, std::string_view account);
/// The two control digits of an IBAN: "ES" and the twenty digits of a Spanish number. In capitals
/// and digits only.
TAVELOR_API std::string ibanControl(std::string_view country, std::string_view national);
/// The IBAN of a valid Spanish number without blanks.
TAVELOR_API std::string ibanOfCcc(std::string_view ccc);

/// "has a wrong number of characters", to stand behind the number in a message; "" for none.
TAVELOR_API std::string_view faultText(AccountFault fault);

}  // namespace tavelor

// SPDX-License-Identifier: MIT
// Who may sign in: PINs of employees, roles, and keys of programs, in the apartment's main
// database.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "tavelor/web/rights.hpp"

namespace tavelor::web {

inline constexpr int kFreeTries = 5;  ///< wrong ones in a row, before there is a wait

/// Rights of a role: of the table where the shop has changed it, else as it comes. "seller" sells
/// and takes back; "manager" does all of the till, and reads and writes in the office; "owner" may
/// do everything. None for a role that is not there.
std::optional<Rights> rightsOfRole(std::string_view role);
/// Of all roles there are.
std::vector<std::string> roleNames();

/// Of those who have a PIN, by code.
std::vector<Caller> employeesWithPin();

/// Sets the PIN and the role of an employee; whoever is signed in with the old one is signed out.
/// Raises 5 for a PIN that is none and for a role that is not there, 3021 where there is no such
/// employee.
void setPin(std::string_view employee, std::string_view pin, std::string_view role);
/// False where there was none.
bool removePin(std::string_view employee);

/// What came of a try.
struct PinTry {
  bool isRight = false;
  int left = 0;     ///< tries before the next wait; 0 where isRight
  int seconds = 0;  ///< until another one is taken; of those before, nothing was looked at
};
/// Counts the try before it looks at it, so that many at a time are no more than one after the
/// other. After kFreeTries wrong ones each further one costs a wait, twice that of the one before:
/// half a minute to an hour. Codes that nobody has are answered in the same way and the same time.
PinTry tryPin(std::string_view employee, std::string_view pin);

/// Makes a key for a program and gives it; only its hash is kept. Raises 5 for rights that are
/// none and for a name that is "" or too long, -2147217873 for one that is there.
std::string makeKey(std::string_view name, std::string_view rights);
/// False where there was none.
bool removeKey(std::string_view name);
/// Nobody for a text that is no key.
Caller callerOfKey(std::string_view key);

}  // namespace tavelor::web

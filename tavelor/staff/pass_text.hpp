// SPDX-License-Identifier: MIT
// The text that a screen proposes as an employee's password.
#pragma once

#include <string>

namespace tavelor {

class Variant;

/// The postcode followed by the code. Zeros stand for a Null postcode; a Null code leaves nothing
/// but zeros, the postcode is lost.
std::string passText(const Variant& postcode, const Variant& code);

}  // namespace tavelor

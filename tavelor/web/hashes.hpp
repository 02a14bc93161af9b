// SPDX-License-Identifier: MIT
// Secrets: made, hashed, compared.
#pragma once

#include <string>
#include <string_view>

namespace tavelor::web {

/// 256 bits of the system's own, in hexadecimal.
std::string newSecret();
/// SHA-256 in hexadecimal. What has 256 bits of its own needs nothing slower.
std::string hashOf(std::string_view secret);
/// In a time that tells nothing of where they differ.
bool isSame(std::string_view a, std::string_view b);

/// Of a PIN, by argon2id with a salt of its own: some hundredths of a second, and 19 MiB.
std::string pinHash(std::string_view pin);
/// Whether a PIN is that of the hash. Takes the same time for "", which no PIN has.
bool isPinOf(std::string_view pin, const std::string& hash);
/// Why a PIN cannot be one; "" where it can: 4 to 12 digits, or 8 to 128 characters.
std::string faultOfPin(std::string_view pin);

}  // namespace tavelor::web

// SPDX-License-Identifier: MIT
// Secrets: made, hashed, compared.
#include "tavelor/web/hashes.hpp"

#include <algorithm>
#include <array>
#include <cerrno>
#include <span>
#include <system_error>

#include <argon2.h>
#include <fmt/format.h>
#include <openssl/crypto.h>
#include <openssl/sha.h>
#include <sys/random.h>

#include "tavelor/platform/error.hpp"

namespace tavelor::web {

namespace {

// What is recommended for servers: 19 MiB, two passes, one lane.
constexpr std::uint32_t kPasses = 2;
constexpr std::uint32_t kMemory = 19 * 1024;  // KiB
constexpr std::uint32_t kLanes = 1;
constexpr std::size_t kSaltBytes = 16;
constexpr std::size_t kHashBytes = 32;
constexpr std::size_t kFewestDigits = 4;
constexpr std::size_t kMostDigits = 12;
constexpr std::size_t kShortestPhrase = 8;
constexpr std::size_t kLongestPhrase = 128;

template <std::size_t kBytes>
std::array<unsigned char, kBytes> randomBytes() {
  std::array<unsigned char, kBytes> bytes{};
  for (std::size_t at = 0; at < kBytes;) {
    const ssize_t got = getrandom(bytes.data() + at, kBytes - at, 0);
    if (got < 0 && errno == EINTR) continue;
    if (got < 0) throw std::system_error(errno, std::generic_category(), "getrandom");
    at += static_cast<std::size_t>(got);
  }
  return bytes;
}

std::string hexOf(std::span<const unsigned char> bytes) {
  std::string text;
  for (const unsigned char byte : bytes) text += fmt::format("{:02x}", byte);
  return text;
}

}  // namespace

std::string newSecret() {
  return hexOf(randomBytes<32>());
}

std::string hashOf(std::string_view secret) {
  std::array<unsigned char, SHA256_DIGEST_LENGTH> hash{};
  SHA256(reinterpret_cast<const unsigned char*>(secret.data()), secret.size(), hash.data());
  return hexOf(hash);
}

bool isSame(std::string_view a, std::string_view b) {
  return a.size() == b.size() && CRYPTO_memcmp(a.data(), b.data(), a.size()) == 0;
}

std::string pinHash(std::string_view pin) {
  const auto salt = randomBytes<kSaltBytes>();
  std::string text(argon2_encodedlen(kPasses, kMemory, kLanes, kSaltBytes, kHashBytes, Argon2_id),
                   '\0');
  const int code =
      argon2id_hash_encoded(kPasses, kMemory, kLanes, pin.data(), pin.size(), salt.data(),
                            salt.size(), kHashBytes, text.data(), text.size());
  if (code != ARGON2_OK) {
    raise(errors::kUnspecified, "Pin", fmt::format("No hash: {}.", argon2_error_message(code)));
  }
  text.resize(text.find('\0'));
  return text;
}

bool isPinOf(std::string_view pin, const std::string& hash) {
  if (hash.empty()) {
    static const std::string kNobodys = pinHash(newSecret());
    argon2id_verify(kNobodys.c_str(), pin.data(), pin.size());
    return false;
  }
  return argon2id_verify(hash.c_str(), pin.data(), pin.size()) == ARGON2_OK;
}

std::string faultOfPin(std::string_view pin) {
  const bool isDigits =
      std::all_of(pin.begin(), pin.end(), [](char c) { return c >= '0' && c <= '9'; });
  if (isDigits && pin.size() >= kFewestDigits && pin.size() <= kMostDigits) return {};
  if (!isDigits && pin.size() >= kShortestPhrase && pin.size() <= kLongestPhrase) return {};
  return fmt::format("a PIN has {} to {} digits; one with other characters {} to {} bytes",
                     kFewestDigits, kMostDigits, kShortestPhrase, kLongestPhrase);
}

}  // namespace tavelor::web

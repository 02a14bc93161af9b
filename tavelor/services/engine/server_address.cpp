// SPDX-License-Identifier: MIT
// A server's address as one text.
#include "tavelor/services/engine/server_address.hpp"

#include <algorithm>
#include <charconv>

#include "tavelor/platform/error.hpp"

namespace tavelor::engine {

namespace {

constexpr std::string_view kForm = "postgresql://user@host:port/database";

[[noreturn]] void refuse(const std::string& why) {
  raise(errors::kInvalidCall, "Server", why + " The form is " + std::string(kForm) + ".");
}

/// What stands before the first `end`, which is taken off too; all of it where there is none.
std::string_view takeUntil(std::string_view& rest, char end) {
  const std::size_t place = std::min(rest.find(end), rest.size());
  const std::string_view part = rest.substr(0, place);
  rest.remove_prefix(std::min(place + 1, rest.size()));
  return part;
}

/// With %2F as the character that it stands for.
std::string decoded(std::string_view part) {
  std::string text;
  for (std::size_t at = 0; at < part.size(); ++at) {
    if (part[at] != '%') {
      text.push_back(part[at]);
      continue;
    }
    const std::string_view digits = part.substr(at + 1, 2);
    unsigned code = 0;
    const auto read = std::from_chars(digits.data(), digits.data() + digits.size(), code, 16);
    if (digits.size() != 2 || read.ptr != digits.data() + 2 || code == 0) {
      refuse("In the address of the server a % stands without two digits behind it.");
    }
    text.push_back(static_cast<char>(code));
    at += 2;
  }
  return text;
}

void takeWord(std::string_view word, ServerAddress& address) {
  const std::string name = decoded(takeUntil(word, '='));
  const std::string value = decoded(word);
  if (name == "sslmode") {
    address.tls = value;
  } else if (name == "sslrootcert") {
    address.rootCertificate = value;
  } else if (name == "sslcert") {
    address.certificate = value;
  } else if (name == "sslkey") {
    address.key = value;
  } else if (name == "passfile") {
    address.passwordFile = value;
  } else if (name == "connect_timeout") {
    const auto read =
        std::from_chars(value.data(), value.data() + value.size(), address.connectTimeoutS);
    if (read.ec != std::errc() || read.ptr != value.data() + value.size() ||
        address.connectTimeoutS < 1) {
      refuse("connect_timeout is a number of seconds.");
    }
  } else if (name == "password") {
    refuse(
        "A password has no place in the address of a server: it comes from the environment "
        "(PGPASSWORD) or from a password file.");
  } else {
    refuse("The address of a server takes no " + name + ".");
  }
}

}  // namespace

ServerAddress serverAddress(std::string_view uri) {
  std::string_view rest = uri;
  if (rest.starts_with("postgresql://")) {
    rest.remove_prefix(13);
  } else if (rest.starts_with("postgres://")) {
    rest.remove_prefix(11);
  } else {
    refuse("This is no address of a server.");
  }
  ServerAddress address;
  std::string_view place = takeUntil(rest, '?');
  for (; !rest.empty();) takeWord(takeUntil(rest, '&'), address);
  std::string_view hosts = takeUntil(place, '/');
  if (const std::size_t at = hosts.rfind('@'); at != std::string_view::npos) {
    const std::string_view user = hosts.substr(0, at);
    if (user.find(':') != std::string_view::npos) {
      refuse(
          "A password has no place in the address of a server: it comes from the environment "
          "(PGPASSWORD) or from a password file.");
    }
    address.user = decoded(user);
    hosts.remove_prefix(at + 1);
  }
  address.hosts = decoded(hosts);
  address.database = decoded(place);
  if (address.hosts.empty()) refuse("The address of the server names no host.");
  if (address.database.empty()) refuse("The address of the server names no database.");
  return address;
}

}  // namespace tavelor::engine

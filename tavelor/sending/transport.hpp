// SPDX-License-Identifier: MIT
// The line to the tax office: one message there, one answer back.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace tavelor {
class Installation;
}
namespace tavelor::fiscal {
struct Settings;
}

namespace tavelor::sending {

/// Where messages go, and who sends them.
struct Endpoint {
  std::string url;            ///< https, or http of this computer itself
  std::string certificate{};  ///< file with certificate and key, PKCS#12 or PEM; "" for none
  std::string password{};     ///< of it
  std::string authorities{};  ///< PEM file of who vouches for the tax office; "" for the system's
  int connectSeconds = 20;    ///< at most, until it listens
  int totalSeconds = 120;     ///< at most, until it has answered
  std::size_t mostBytes = std::size_t{16} << 20U;  ///< of an answer
};

/// The tax office's own address, for tests or for good.
std::string_view officeAddress(bool isTest);

/// The endpoint of the settings, the password taken from the environment. Raises 5, saying what to
/// do, where an address is none that may be used, there is no certificate for it, the variable of
/// its password is not set, or the shop does not send; 53 for a certificate that is not there.
Endpoint endpointOf(const fiscal::Settings& settings, const Installation& installation);

/// Why an address may not be used; "" where it may. A record goes over TLS, or does not leave this
/// computer.
std::string faultOfAddress(const std::string& url);

/// What came back.
struct Reply {
  std::string body{};       ///< of an answer
  std::string fault{};      ///< why there is none, a sentence; "" where there is one
  bool mayBeThere = false;  ///< whether the message may have arrived all the same
};

/// Sends a SOAP 1.1 message and waits for its answer. Whoever answers must prove by TLS who he is;
/// nobody is sent on to another address. Raises nothing for what goes wrong on the way; neither
/// `fault` nor anything else ever tells the password.
Reply post(const Endpoint& endpoint, const std::string& message);

}  // namespace tavelor::sending

// SPDX-License-Identifier: MIT
// The certificate that a shop signs with.
#pragma once

#include <cstdint>
#include <memory>
#include <string>

namespace tavelor::signing {

/// A certificate with its private key, as a file has them.
class Certificate {
 public:
  /// Reads a PKCS#12 file (.p12, .pfx), or a PEM file with certificate and key. Its password is
  /// that of the environment's variable; "" for a file without one. Raises 53 where there is no
  /// such file, 75 where it cannot be read, and 5 for a password that is wrong or missing, and for
  /// what holds no certificate with its key. No message tells the password.
  static Certificate read(const std::string& file, const std::string& passwordVariable);

  /// Who it was issued to, for people: "CN=Colmado Rius,C=ES".
  const std::string& subject() const;
  /// Who issued it, as signatures write it (RFC 2253).
  const std::string& issuer() const;
  /// Its number, decimal.
  const std::string& serial() const;
  /// Itself, DER in base64 without line ends.
  const std::string& base64() const;
  /// SHA-256 of it, base64.
  const std::string& digest() const;
  /// Whether its key is one of elliptic curves; else of RSA.
  bool isElliptic() const;

  /// Raises 5 where it has expired by then, or is not valid yet. Seconds since the beginning of
  /// 1970 at Greenwich.
  void requireValidAt(std::int64_t seconds) const;

  struct Inner;  ///< what it holds of the library behind it
  /// The key, for what signs.
  const Inner& inner() const { return *inner_; }

 private:
  explicit Certificate(std::shared_ptr<const Inner> inner) : inner_(std::move(inner)) {}
  std::shared_ptr<const Inner> inner_;
};

}  // namespace tavelor::signing

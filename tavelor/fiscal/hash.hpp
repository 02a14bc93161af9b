// SPDX-License-Identifier: MIT
// The hash of a record: SHA-256 over some of its fields, as the law lists them.
#pragma once

#include <memory>
#include <string>
#include <string_view>

#include "tavelor/fiscal/event.hpp"
#include "tavelor/fiscal/record.hpp"

namespace tavelor::fiscal {

/// What is hashed: "IDEmisorFactura=89890001K&NumSerieFactura=..". Values without the blanks around
/// them, amounts as they are written, nothing encoded.
std::string hashedText(const Registration& record);
/// "IDEmisorFacturaAnulada=..".
std::string hashedText(const Cancellation& record);
/// "NIF=..", the producer's, later the taxpayer's.
std::string hashedText(const Event& event);
/// Of either.
std::string hashedText(const Record& record);

/// SHA-256 of one text after the other. Of one thread.
class Hasher {
 public:
  /// Raises errors::kUnspecified where the system's cryptography has no SHA-256.
  Hasher();
  ~Hasher();
  Hasher(const Hasher&) = delete;
  Hasher& operator=(const Hasher&) = delete;

  /// 64 hexadecimal digits, capitals, over the bytes of both texts, one behind the other.
  std::string operator()(std::string_view text, std::string_view more = {});

 private:
  struct Inner;
  std::unique_ptr<Inner> inner_;
};

/// The hash of what is hashed.
template <typename Hashed>
std::string hashOf(const Hashed& hashed) {
  return Hasher()(hashedText(hashed));
}

}  // namespace tavelor::fiscal

// SPDX-License-Identifier: MIT
// What a certificate holds of OpenSSL's.
#pragma once

#include <memory>
#include <string>

#include <openssl/evp.h>
#include <openssl/x509.h>

#include "tavelor/signing/certificate.hpp"

namespace tavelor::signing {

/// Calls a function of OpenSSL's in the place of delete.
template <auto free>
struct Freed {
  template <typename Any>
  void operator()(Any* object) const {
    free(object);
  }
};
using KeyPtr = std::unique_ptr<EVP_PKEY, Freed<EVP_PKEY_free>>;
using X509Ptr = std::unique_ptr<X509, Freed<X509_free>>;

/// A name as RFC 2253 writes it, in UTF-8.
std::string nameText(const X509_NAME* name);

struct Certificate::Inner {
  std::string file;
  KeyPtr key;
  X509Ptr certificate;
  std::string subject;
  std::string issuer;
  std::string serial;
  std::string base64;
  std::string digest;
};

}  // namespace tavelor::signing

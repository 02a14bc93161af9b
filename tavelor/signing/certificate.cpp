// SPDX-License-Identifier: MIT
// Reads certificates from PKCS#12 and PEM files.
#include "tavelor/signing/certificate.hpp"

#include <array>
#include <cstdlib>
#include <ctime>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <vector>

#include <fmt/format.h>
#include <openssl/bio.h>
#include <openssl/bn.h>
#include <openssl/err.h>
#include <openssl/pem.h>
#include <openssl/pkcs12.h>
#include <openssl/provider.h>
#include <openssl/sha.h>

#include "tavelor/platform/error.hpp"
#include "tavelor/signing/certificate_key.hpp"

namespace tavelor::signing {

namespace {

constexpr std::string_view kSigning = "Signing";

using BioPtr = std::unique_ptr<BIO, Freed<BIO_free>>;
using Pkcs12Ptr = std::unique_ptr<PKCS12, Freed<PKCS12_free>>;
using BigNumberPtr = std::unique_ptr<BIGNUM, Freed<BN_free>>;
using ProviderPtr = std::unique_ptr<OSSL_PROVIDER, Freed<OSSL_PROVIDER_unload>>;

[[noreturn]] void refuseFile(const std::string& file, std::string_view what) {
  ERR_clear_error();
  raise(errors::kInvalidCall, kSigning, fmt::format("The certificate {} {}.", file, what));
}

std::string readWhole(const std::string& file) {
  std::error_code error;
  const auto status = std::filesystem::status(file, error);
  if (status.type() == std::filesystem::file_type::not_found) {
    raise(errors::kFileNotFound, kSigning, fmt::format("The certificate {} is not there.", file));
  }
  std::ifstream in(file, std::ios::binary);
  std::string bytes;
  if (status.type() == std::filesystem::file_type::regular && in) {
    bytes.assign(std::istreambuf_iterator<char>(in), {});
  }
  if (bytes.empty() || in.bad()) {
    raise(errors::kPathAccess, kSigning, fmt::format("The certificate {} cannot be read.", file));
  }
  return bytes;
}

/// Of the variable of the environment; nothing where none is named.
const char* passwordOf(const std::string& file, const std::string& variable) {
  if (variable.empty()) return nullptr;
  const char* const password = std::getenv(variable.c_str());
  if (password == nullptr) {
    refuseFile(file, fmt::format("has a password, and the variable {} that tells it is not set",
                                 variable));
  }
  return password;
}

std::string wrongPassword(const std::string& variable) {
  return variable.empty()
             ? "has a password, and no variable is named that tells it"
             : fmt::format("has another password than the variable {} tells", variable);
}

BioPtr readerOf(const std::string& bytes) {
  return BioPtr(BIO_new_mem_buf(bytes.data(), static_cast<int>(bytes.size())));
}

void takePkcs12(PKCS12& container, const char* password, const std::string& variable,
                Certificate::Inner& to) {
  const bool isOpen = PKCS12_mac_present(&container) == 0 ||
                      PKCS12_verify_mac(&container, password, -1) == 1 ||
                      (password == nullptr && PKCS12_verify_mac(&container, "", -1) == 1);
  if (!isOpen) refuseFile(to.file, wrongPassword(variable));
  const auto open = [&] {
    EVP_PKEY* key = nullptr;
    X509* certificate = nullptr;
    const bool isDone = PKCS12_parse(&container, password, &key, &certificate, nullptr) == 1;
    to.key.reset(key);
    to.certificate.reset(certificate);
    return isDone;
  };
  if (open()) return;
  // Browsers write such files with ciphers that are out of use otherwise.
  const ProviderPtr outOfUse(OSSL_PROVIDER_try_load(nullptr, "legacy", 1));
  if (!open()) refuseFile(to.file, "is locked by a cipher that this computer does not have");
}

extern "C" int tavelorGivePassword(char* buffer, int size, int /*isWriting*/, void* user) {
  const auto* const password = static_cast<const char*>(user);
  if (password == nullptr) return -1;
  const std::string_view text(password);
  if (text.size() > static_cast<std::size_t>(size)) return -1;
  text.copy(buffer, text.size());
  return static_cast<int>(text.size());
}

void takePem(const std::string& bytes, const char* password, const std::string& variable,
             Certificate::Inner& to) {
  // The library hands the password back to the callback, which only reads it.
  to.key.reset(PEM_read_bio_PrivateKey(readerOf(bytes).get(), nullptr, tavelorGivePassword,
                                       const_cast<char*>(password)));
  if (!to.key) {
    const bool isLocked = bytes.find("ENCRYPTED") != std::string::npos;
    if (isLocked) refuseFile(to.file, wrongPassword(variable));
    const bool hasKey = bytes.find("PRIVATE KEY-----") != std::string::npos;
    refuseFile(to.file, hasKey ? "has a key that does not read"
                               : "holds no private key, neither as PKCS#12 nor as PEM");
  }
  const BioPtr reader = readerOf(bytes);
  while (const X509Ptr each{PEM_read_bio_X509(reader.get(), nullptr, nullptr, nullptr)}) {
    if (X509_check_private_key(each.get(), to.key.get()) != 1) continue;
    X509_up_ref(each.get());
    to.certificate.reset(each.get());
    return;
  }
}

std::string base64Of(const std::vector<unsigned char>& bytes) {
  std::string text(4 * ((bytes.size() + 2) / 3) + 1, '\0');
  const int size = EVP_EncodeBlock(reinterpret_cast<unsigned char*>(text.data()), bytes.data(),
                                   static_cast<int>(bytes.size()));
  text.resize(static_cast<std::size_t>(size));
  return text;
}

void describe(Certificate::Inner& to) {
  const X509* const certificate = to.certificate.get();
  to.subject = nameText(X509_get_subject_name(certificate));
  to.issuer = nameText(X509_get_issuer_name(certificate));
  const BigNumberPtr number(ASN1_INTEGER_to_BN(X509_get0_serialNumber(certificate), nullptr));
  char* const digits = BN_bn2dec(number.get());
  to.serial = digits;
  OPENSSL_free(digits);
  std::vector<unsigned char> der(static_cast<std::size_t>(i2d_X509(certificate, nullptr)));
  unsigned char* end = der.data();
  i2d_X509(certificate, &end);
  to.base64 = base64Of(der);
  std::vector<unsigned char> sum(SHA256_DIGEST_LENGTH);
  SHA256(der.data(), der.size(), sum.data());
  to.digest = base64Of(sum);
}

std::string timeText(const ASN1_TIME* time) {
  std::tm parts{};
  ASN1_TIME_to_tm(time, &parts);
  return fmt::format("{:02}-{:02}-{}", parts.tm_mday, parts.tm_mon + 1, parts.tm_year + 1900);
}

}  // namespace

std::string nameText(const X509_NAME* name) {
  const BioPtr out(BIO_new(BIO_s_mem()));
  constexpr unsigned long kUtf8 = XN_FLAG_RFC2253 & ~ASN1_STRFLGS_ESC_MSB;
  X509_NAME_print_ex(out.get(), name, 0, kUtf8);
  char* bytes = nullptr;
  const long size = BIO_get_mem_data(out.get(), &bytes);
  return {bytes, static_cast<std::size_t>(size)};
}

Certificate Certificate::read(const std::string& file, const std::string& passwordVariable) {
  auto inner = std::make_shared<Inner>();
  inner->file = file;
  const std::string bytes = readWhole(file);
  const char* const password = passwordOf(file, passwordVariable);
  if (const Pkcs12Ptr container{d2i_PKCS12_bio(readerOf(bytes).get(), nullptr)}) {
    takePkcs12(*container, password, passwordVariable, *inner);
  } else {
    takePem(bytes, password, passwordVariable, *inner);
  }
  ERR_clear_error();
  if (!inner->key) refuseFile(file, "holds no private key");
  if (!inner->certificate) refuseFile(file, "holds no certificate of its private key");
  const int kind = EVP_PKEY_get_base_id(inner->key.get());
  if (kind != EVP_PKEY_RSA && kind != EVP_PKEY_EC) {
    refuseFile(file, "has a key that is neither of RSA nor of an elliptic curve");
  }
  describe(*inner);
  return Certificate(std::move(inner));
}

const std::string& Certificate::subject() const {
  return inner_->subject;
}
const std::string& Certificate::issuer() const {
  return inner_->issuer;
}
const std::string& Certificate::serial() const {
  return inner_->serial;
}
const std::string& Certificate::base64() const {
  return inner_->base64;
}
const std::string& Certificate::digest() const {
  return inner_->digest;
}
bool Certificate::isElliptic() const {
  return EVP_PKEY_get_base_id(inner_->key.get()) == EVP_PKEY_EC;
}

void Certificate::requireValidAt(std::int64_t seconds) const {
  std::time_t moment = seconds;
  const ASN1_TIME* const from = X509_get0_notBefore(inner_->certificate.get());
  const ASN1_TIME* const to = X509_get0_notAfter(inner_->certificate.get());
  if (X509_cmp_time(from, &moment) > 0) {
    refuseFile(inner_->file, fmt::format("is not valid before {}", timeText(from)));
  }
  if (X509_cmp_time(to, &moment) < 0) {
    refuseFile(inner_->file, fmt::format("has expired on {}", timeText(to)));
  }
}

}  // namespace tavelor::signing

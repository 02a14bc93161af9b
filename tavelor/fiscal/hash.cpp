// SPDX-License-Identifier: MIT
// The hash of a record.
#include "tavelor/fiscal/hash.hpp"

#include <array>
#include <initializer_list>
#include <utility>

#include <openssl/evp.h>

#include "tavelor/platform/error.hpp"

namespace tavelor::fiscal {

namespace {

using Field = std::pair<std::string_view, std::string_view>;

std::string_view withoutBlanksAround(std::string_view text) {
  constexpr std::string_view kBlanks = " \t\r\n";
  const std::size_t first = text.find_first_not_of(kBlanks);
  if (first == std::string_view::npos) return {};
  return text.substr(first, text.find_last_not_of(kBlanks) - first + 1);
}

std::string joined(std::initializer_list<Field> fields) {
  std::string text;
  text.reserve(384);
  for (const auto& [name, content] : fields) {
    if (!text.empty()) text += '&';
    text.append(name).append("=").append(withoutBlanksAround(content));
  }
  return text;
}

std::string_view previousHash(const Chaining& chaining) {
  return chaining.previous ? std::string_view(chaining.previous->hash) : std::string_view();
}

[[noreturn]] void refuse() {
  raise(errors::kUnspecified, "Fiscal", "The system's cryptography offers no SHA-256.");
}

}  // namespace

std::string hashedText(const Registration& record) {
  return joined({{"IDEmisorFactura", record.invoice.issuer},
                 {"NumSerieFactura", record.invoice.number},
                 {"FechaExpedicionFactura", dayText(record.invoice.day)},
                 {"TipoFactura", word(record.kind)},
                 {"CuotaTotal", record.quota.text()},
                 {"ImporteTotal", record.total.text()},
                 {"Huella", previousHash(record.chaining)},
                 {"FechaHoraHusoGenRegistro", record.chaining.moment}});
}

std::string hashedText(const Cancellation& record) {
  return joined({{"IDEmisorFacturaAnulada", record.invoice.issuer},
                 {"NumSerieFacturaAnulada", record.invoice.number},
                 {"FechaExpedicionFacturaAnulada", dayText(record.invoice.day)},
                 {"Huella", previousHash(record.chaining)},
                 {"FechaHoraHusoGenRegistro", record.chaining.moment}});
}

std::string hashedText(const Event& event) {
  const Party& producer = event.system.producer;
  return joined(
      {{"NIF", producer.number},
       {"ID", producer.foreign ? std::string_view(producer.foreign->id) : std::string_view()},
       {"IdSistemaInformatico", event.system.id},
       {"Version", event.system.version},
       {"NumeroInstalacion", event.system.installation},
       {"NIF", event.taxpayer.number},
       {"TipoEvento", word(event.kind)},
       {"HuellaEvento",
        event.previous ? std::string_view(event.previous->hash) : std::string_view()},
       {"FechaHoraHusoGenEvento", event.moment}});
}

std::string hashedText(const Record& record) {
  return std::visit([](const auto& each) { return hashedText(each); }, record);
}

struct Hasher::Inner {
  EVP_MD_CTX* context = EVP_MD_CTX_new();
  EVP_MD* algorithm = EVP_MD_fetch(nullptr, "SHA256", nullptr);

  Inner() = default;
  ~Inner() {
    EVP_MD_free(algorithm);
    EVP_MD_CTX_free(context);
  }
  Inner(const Inner&) = delete;
  Inner& operator=(const Inner&) = delete;
};

Hasher::Hasher() : inner_(std::make_unique<Inner>()) {
  if (inner_->context == nullptr || inner_->algorithm == nullptr) refuse();
}

Hasher::~Hasher() = default;

std::string Hasher::operator()(std::string_view text, std::string_view more) {
  std::array<unsigned char, EVP_MAX_MD_SIZE> digest = {};
  unsigned int size = 0;
  if (EVP_DigestInit_ex(inner_->context, inner_->algorithm, nullptr) != 1 ||
      EVP_DigestUpdate(inner_->context, text.data(), text.size()) != 1 ||
      EVP_DigestUpdate(inner_->context, more.data(), more.size()) != 1 ||
      EVP_DigestFinal_ex(inner_->context, digest.data(), &size) != 1) {
    refuse();
  }
  constexpr std::string_view kDigits = "0123456789ABCDEF";
  std::string hexadecimal(2 * std::size_t{size}, '0');
  for (unsigned int at = 0; at < size; ++at) {
    hexadecimal[2 * at] = kDigits[digest[at] >> 4U];
    hexadecimal[2 * at + 1] = kDigits[digest[at] & 15U];
  }
  return hexadecimal;
}

}  // namespace tavelor::fiscal

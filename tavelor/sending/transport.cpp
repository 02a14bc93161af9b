// SPDX-License-Identifier: MIT
// Carries messages by libcurl.
#include "tavelor/sending/transport.hpp"

#include <array>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <memory>
#include <system_error>

#include <curl/curl.h>
#include <fmt/format.h>

#include "tavelor/fiscal/settings.hpp"
#include "tavelor/platform/error.hpp"
#include "tavelor/services/installation.hpp"

namespace tavelor::sending {

namespace fs = std::filesystem;

namespace {

constexpr std::string_view kOffice =
    "https://www1.agenciatributaria.gob.es/wlpl/TIKE-CONT/ws/SistemaFacturacion/VerifactuSOAP";
constexpr std::string_view kTestOffice =
    "https://prewww1.aeat.es/wlpl/TIKE-CONT/ws/SistemaFacturacion/VerifactuSOAP";
constexpr long kAnswered = 200;
constexpr long kSoapFault = 500;  // SOAP 1.1 answers a fault with it

struct Address {
  std::string scheme;
  std::string host;
  bool hasUser = false;
};

std::string partOf(CURLU* url, CURLUPart which) {
  char* part = nullptr;
  if (curl_url_get(url, which, &part, 0) != CURLUE_OK) return {};
  const std::unique_ptr<char, void (*)(void*)> kept(part, curl_free);
  return part;
}

/// Nothing but an empty scheme for what is no address.
Address addressOf(const std::string& text) {
  const std::unique_ptr<CURLU, void (*)(CURLU*)> url(curl_url(), curl_url_cleanup);
  if (!url || curl_url_set(url.get(), CURLUPART_URL, text.c_str(), 0) != CURLUE_OK) return {};
  return {partOf(url.get(), CURLUPART_SCHEME), partOf(url.get(), CURLUPART_HOST),
          !partOf(url.get(), CURLUPART_USER).empty()};
}

bool isThisComputer(const std::string& host) {
  if (host == "localhost" || host == "[::1]") return true;
  // 127.0.0.1 and its like, and no name that begins so.
  return host.starts_with("127.") && host.find_first_not_of("0123456789.") == std::string::npos;
}

/// PEM says so in its text; anything else is PKCS#12.
bool isPem(const std::string& file) {
  std::ifstream in(file, std::ios::binary);
  const std::string text{std::istreambuf_iterator<char>(in), {}};
  return text.find("-----BEGIN ") != std::string::npos;
}

/// An answer as it grows, up to its limit.
struct Answer {
  std::string body;
  std::size_t most = 0;
};

std::size_t takeBytes(char* bytes, std::size_t one, std::size_t count, void* to) {
  auto& answer = *static_cast<Answer*>(to);
  if (answer.body.size() + one * count > answer.most) return 0;
  answer.body.append(bytes, one * count);
  return one * count;
}

/// Of this process, made at first use.
bool isCurlReady() {
  static const bool isReady = curl_global_init(CURL_GLOBAL_DEFAULT) == CURLE_OK;
  return isReady;
}

std::string faultOfStatus(long status) {
  if (status == kAnswered || status == kSoapFault) return {};
  if (status >= 300 && status < 400) {
    return fmt::format("it sends to another address (status {}), which is not followed", status);
  }
  return fmt::format("it answers with status {}{}", status,
                     status == 503 ? ", for now it takes no messages" : "");
}

}  // namespace

std::string_view officeAddress(bool isTest) {
  return isTest ? kTestOffice : kOffice;
}

std::string faultOfAddress(const std::string& url) {
  const Address address = addressOf(url);
  if (address.scheme.empty() || address.host.empty()) {
    return fmt::format("\"{}\" is no address", url);
  }
  if (address.hasUser) return "a name or a password has no place in the address";
  if (address.scheme == "https") return {};
  if (address.scheme == "http" && isThisComputer(address.host)) return {};
  return fmt::format("\"{}\" is not https, and leaves this computer", url);
}

Endpoint endpointOf(const fiscal::Settings& settings, const Installation& installation) {
  const auto refuse = [&](const std::string& why) {
    raise(errors::kInvalidCall, "Sending",
          fmt::format("{}: {}.", fiscal::settingsFile(installation), why));
  };
  if (settings.mode != fiscal::Mode::kSending) {
    refuse("the shop does not send its records (its mode is no-verifactu)");
  }
  Endpoint endpoint;
  endpoint.url =
      settings.endpoint.empty() ? std::string(officeAddress(settings.isTest)) : settings.endpoint;
  if (const std::string fault = faultOfAddress(endpoint.url); !fault.empty()) refuse(fault);
  if (settings.certificate.empty()) {
    if (addressOf(endpoint.url).scheme == "https") {
      refuse("there is no certificate: `tavelor fiscal setup --certificate FILE` names it");
    }
    return endpoint;
  }
  endpoint.certificate = (fs::path(installation.folder()) / settings.certificate).string();
  std::error_code ignored;
  if (!fs::is_regular_file(endpoint.certificate, ignored)) {
    raise(errors::kFileNotFound, "Sending",
          fmt::format("The certificate {} is not there.", endpoint.certificate));
  }
  if (settings.passwordName.empty()) return endpoint;
  const char* const password = std::getenv(settings.passwordName.c_str());
  if (password == nullptr) {
    refuse(fmt::format("the variable {} with the certificate's password is not set",
                       settings.passwordName));
  }
  endpoint.password = password;
  return endpoint;
}

Reply post(const Endpoint& endpoint, const std::string& message) {
  Reply reply;
  const std::unique_ptr<CURL, void (*)(CURL*)> line(isCurlReady() ? curl_easy_init() : nullptr,
                                                    curl_easy_cleanup);
  if (!line) {
    reply.fault = "libcurl cannot be used";
    return reply;
  }
  if (reply.fault = faultOfAddress(endpoint.url); !reply.fault.empty()) return reply;
  CURLcode set = CURLE_OK;
  const auto with = [&](CURLoption option, auto value) {
    if (set == CURLE_OK) set = curl_easy_setopt(line.get(), option, value);
  };
  Answer answer{.body = {}, .most = endpoint.mostBytes};
  std::array<char, CURL_ERROR_SIZE> error{};
  // Without "Expect" a server that does not know it is not waited for.
  curl_slist* list = nullptr;
  for (const char* const header :
       {"Content-Type: text/xml; charset=utf-8", "SOAPAction: \"\"", "Expect:"}) {
    list = curl_slist_append(list, header);
  }
  const std::unique_ptr<curl_slist, void (*)(curl_slist*)> headers(list, curl_slist_free_all);
  with(CURLOPT_ERRORBUFFER, error.data());
  with(CURLOPT_URL, endpoint.url.c_str());
  with(CURLOPT_PROTOCOLS_STR, "https,http");
  with(CURLOPT_FOLLOWLOCATION, 0L);
  with(CURLOPT_NOSIGNAL, 1L);
  with(CURLOPT_HTTPHEADER, headers.get());
  with(CURLOPT_POSTFIELDSIZE_LARGE, static_cast<curl_off_t>(message.size()));
  with(CURLOPT_POSTFIELDS, message.c_str());
  with(CURLOPT_WRITEFUNCTION, takeBytes);
  with(CURLOPT_WRITEDATA, &answer);
  with(CURLOPT_MAXFILESIZE_LARGE, static_cast<curl_off_t>(endpoint.mostBytes));
  with(CURLOPT_CONNECTTIMEOUT, static_cast<long>(endpoint.connectSeconds));
  with(CURLOPT_TIMEOUT, static_cast<long>(endpoint.totalSeconds));
  with(CURLOPT_SSL_VERIFYPEER, 1L);
  with(CURLOPT_SSL_VERIFYHOST, 2L);
  with(CURLOPT_SSLVERSION, static_cast<long>(CURL_SSLVERSION_TLSv1_2));
  // A message to this computer goes past every proxy.
  if (isThisComputer(addressOf(endpoint.url).host)) with(CURLOPT_PROXY, "");
  if (!endpoint.authorities.empty()) with(CURLOPT_CAINFO, endpoint.authorities.c_str());
  if (!endpoint.certificate.empty()) {
    with(CURLOPT_SSLCERT, endpoint.certificate.c_str());
    with(CURLOPT_SSLCERTTYPE, isPem(endpoint.certificate) ? "PEM" : "P12");
    with(CURLOPT_KEYPASSWD, endpoint.password.c_str());
  }
  const CURLcode done = set == CURLE_OK ? curl_easy_perform(line.get()) : set;
  long sent = 0;
  long status = 0;
  curl_easy_getinfo(line.get(), CURLINFO_REQUEST_SIZE, &sent);
  curl_easy_getinfo(line.get(), CURLINFO_RESPONSE_CODE, &status);
  reply.mayBeThere = sent > 0;
  if (done == CURLE_OK) {
    reply.fault = faultOfStatus(status);
    if (reply.fault.empty()) reply.body = std::move(answer.body);
  } else if (done == CURLE_FILESIZE_EXCEEDED || done == CURLE_WRITE_ERROR) {
    reply.fault = fmt::format("its answer has more than {} bytes", endpoint.mostBytes);
  } else {
    reply.fault = error[0] != '\0' ? error.data() : curl_easy_strerror(done);
  }
  return reply;
}

}  // namespace tavelor::sending

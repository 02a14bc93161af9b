// SPDX-License-Identifier: MIT
// Answers, and what was raised as one.
#include "tavelor/web/answer.hpp"

#include <array>

#include <fmt/format.h>
#include <openssl/evp.h>
#include <openssl/sha.h>

#include "tavelor/flows/findings.hpp"
#include "tavelor/flows/sale.hpp"
#include "tavelor/platform/error.hpp"

namespace tavelor::web {

namespace {

constexpr int kRetrySeconds = 2;

/// 'sha256-...' of a style sheet.
std::string sourceOf(std::string_view style) {
  std::array<unsigned char, SHA256_DIGEST_LENGTH> hash{};
  SHA256(reinterpret_cast<const unsigned char*>(style.data()), style.size(), hash.data());
  std::array<unsigned char, 64> text{};
  const int size = EVP_EncodeBlock(text.data(), hash.data(), static_cast<int>(hash.size()));
  return fmt::format("'sha256-{}'", std::string_view(reinterpret_cast<const char*>(text.data()),
                                                     static_cast<std::size_t>(size)));
}

std::string stylesOf(std::string_view html) {
  constexpr std::string_view kOpen = "<style";
  constexpr std::string_view kClose = "</style>";
  std::string sources;
  for (std::size_t at = html.find(kOpen); at != std::string_view::npos; at = html.find(kOpen, at)) {
    const std::size_t begin = html.find('>', at);
    const std::size_t end = html.find(kClose, at);
    if (begin == std::string_view::npos || end == std::string_view::npos || end < begin) break;
    sources += " " + sourceOf(html.substr(begin + 1, end - begin - 1));
    at = end;
  }
  return sources.empty() ? " 'none'" : sources;
}

Json jsonOf(const Fault& fault) {
  Json json = Json::object();
  if (fault.line != 0) json["line"] = fault.line;
  if (!fault.code.empty()) json["code"] = fault.code;
  if (!fault.field.empty()) json["field"] = fault.field;
  json["reason"] = fault.reason;
  return json;
}

Answer answerOf(const Failure& failure, std::int32_t number) {
  Json error = {{"number", number}, {"kind", failure.kind}, {"message", failure.what()}};
  Json faults = Json::array();
  for (const Fault& fault : failure.faults) faults.push_back(jsonOf(fault));
  error["faults"] = std::move(faults);
  if (failure.details.is_object()) error.update(failure.details);
  Json body = {{"error", std::move(error)}};
  if (failure.further.is_object()) body.update(failure.further);
  Answer made = answer(body, failure.status);
  made.headers = failure.headers;
  return made;
}

Failure failureOf(const Error& error) {
  const std::string& text = error.description();
  switch (error.kind()) {
    case ErrorKind::kArgument:
    case ErrorKind::kValue:
    case ErrorKind::kCancelled:
      return Failure::refused(text);
    case ErrorKind::kNotFound:
      return Failure::missing(text);
    case ErrorKind::kConflict:
    case ErrorKind::kIntegrity:
    case ErrorKind::kNotAllowed:
      return Failure::conflict(text);
    case ErrorKind::kBusy:
      return Failure::busy(text);
    case ErrorKind::kClosed:
    case ErrorKind::kSyntax:
    case ErrorKind::kEngine:
    case ErrorKind::kOther:
      break;
  }
  if (error.number() == errors::kConnectionLost || error.number() == errors::kTimeout) {
    return Failure::busy(text);
  }
  return {500, "failure", text};
}

}  // namespace

Failure Failure::locked(const std::string& message, int seconds) {
  Failure failure{423, "locked", message};
  failure.headers = {{"Retry-After", std::to_string(seconds)}};
  return failure;
}

Failure Failure::limit(int code, const std::string& message, int seconds) {
  Failure failure{code, "limit", message};
  if (seconds > 0) failure.headers = {{"Retry-After", std::to_string(seconds)}};
  return failure;
}

Failure Failure::busy(const std::string& message) {
  Failure failure{503, "busy", message};
  failure.headers = {{"Retry-After", std::to_string(kRetrySeconds)}};
  return failure;
}

Answer answer(const Json& json, int status) {
  return {.status = status, .body = dumped(json)};
}

Answer page(std::string html) {
  const std::string policy = fmt::format(
      "default-src 'none'; img-src 'self' data:; style-src{}; frame-ancestors 'self'; "
      "base-uri 'none'; form-action 'none'; require-trusted-types-for 'script'",
      stylesOf(html));
  return {.type = "text/html; charset=utf-8",
          .headers = {{"Content-Security-Policy", policy}},
          .body = std::move(html)};
}

Answer answerOf(std::exception_ptr thrown, std::string& forLog) {
  try {
    std::rethrow_exception(std::move(thrown));
  } catch (const Failure& failure) {
    forLog = failure.what();
    return answerOf(failure, errors::kInvalidCall);
  } catch (const flows::RefusedSale& refused) {
    Failure failure = refused.isConflict() ? Failure::conflict(refused.description())
                                           : Failure::refused(refused.description());
    for (const flows::SaleFault& fault : refused.faults()) {
      failure.faults.push_back({.line = fault.line, .code = fault.code, .reason = fault.reason});
    }
    forLog = refused.what();
    return answerOf(failure, refused.number());
  } catch (const flows::Disagreement& disagreement) {
    Failure failure = Failure::conflict(disagreement.description());
    for (const std::string& sentence : flows::told(disagreement.findings())) {
      failure.faults.push_back({.reason = sentence});
    }
    forLog = disagreement.what();
    return answerOf(failure, disagreement.number());
  } catch (const Error& error) {
    forLog = error.what();
    return answerOf(failureOf(error), error.number());
  } catch (const Json::exception& error) {
    forLog = error.what();
    return answerOf(Failure::input("The JSON is not what belongs here."), errors::kInvalidCall);
  } catch (const std::bad_alloc&) {
    forLog = "out of memory";
    return answerOf(Failure::busy("There is no memory left."), errors::kUnspecified);
  } catch (const std::exception& error) {
    forLog = error.what();
  } catch (...) {
    forLog = "something that is no exception was thrown";
  }
  return answerOf(Failure{500, "failure", "The server has failed; its log tells why."},
                  errors::kUnspecified);
}

}  // namespace tavelor::web

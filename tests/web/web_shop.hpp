// SPDX-License-Identifier: MIT
// A shop whose application is asked without a line in between.
#pragma once

#include <string>
#include <string_view>
#include <utility>

#include <gtest/gtest.h>

#include "tavelor/flows/seed.hpp"
#include "tavelor/flows/shop.hpp"
#include "tavelor/web/application.hpp"
#include "tavelor/web/json.hpp"
#include "tavelor/web/worker.hpp"
#include "tests/support/shop.hpp"

namespace tavelor::test {

/// An answer with its JSON, null where it has none.
struct WebAnswer : web::Answer {
  explicit WebAnswer(web::Answer answer) : web::Answer(std::move(answer)) {
    if (type.starts_with("application/json")) json = web::Json::parse(body, nullptr, false);
  }
  web::Json json;
};

/// With the catalogues and a till of the demonstration. Whoever asks may do everything, unless `as`
/// is changed.
class WebShop : public Shop {
 public:
  explicit WebShop(web::ApplicationOptions options = {})
      : application_(installationPtr(), std::move(options)) {
    flows::seedCatalogues();
    worker_.shop().openTills({"01", "02"});
  }

  web::Application& application() { return application_; }
  web::Worker& worker() { return worker_; }

  WebAnswer get(const std::string& target) { return ask({.target = target}); }
  WebAnswer send(web::Method method, const std::string& target, const web::Json& body) {
    return ask({.method = method,
                .target = target,
                .headers = {{"content-type", "application/json"}},
                .body = web::dumped(body)});
  }
  WebAnswer post(const std::string& target, const web::Json& body) {
    return send(web::Method::kPost, target, body);
  }
  /// As it is, but that it names the host.
  WebAnswer ask(web::Request request) {
    if (request.header("host").empty()) request.headers.emplace_back("host", "localhost");
    return WebAnswer(application_.answerFor(request, worker_, as));
  }

  web::Caller as{.kind = web::Caller::Kind::kEmployee,
                 .code = "1",
                 .name = "Ana",
                 .role = "owner",
                 .rights = web::Rights::of("*")};

 private:
  web::Application application_;
  web::Worker worker_;
};

}  // namespace tavelor::test

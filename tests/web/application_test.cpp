// SPDX-License-Identifier: MIT
// The road of a request that needs no line.
#include "tests/web/web_shop.hpp"

namespace tavelor::test {
namespace {

using web::Method;

TEST(Application, TellsThatItWorks) {
  WebShop shop;
  const WebAnswer answer = shop.get("/health");
  EXPECT_EQ(answer.status, 200);
  EXPECT_EQ(answer.json["status"], "ok");
  EXPECT_EQ(answer.json["engine"], runsOnServer() ? "postgresql" : "sqlite");
}

TEST(Application, TellsWhichMethodsAnAddressTakes) {
  WebShop shop;
  const WebAnswer refused = shop.ask({.method = Method::kDelete, .target = "/health"});
  EXPECT_EQ(refused.status, 405);
  EXPECT_EQ(refused.header("Allow"), "GET, HEAD, OPTIONS");
  const WebAnswer told = shop.ask({.method = Method::kOptions, .target = "/health"});
  EXPECT_EQ(told.status, 204);
  EXPECT_EQ(told.header("Allow"), "GET, HEAD, OPTIONS");
}

TEST(Application, MeetsATableWhateverThePathTries) {
  WebShop shop;
  for (const char* const path :
       {"/health/", "//health", "/api", "/..%2fhealth", "/%2e%2e/health", "/health%00", "/%c0%af",
        "/%", "health", "", "*", "/health/../health"}) {
    const int status = shop.get(path).status;
    EXPECT_TRUE(status == 404 || status == 400) << path << ": " << status;
  }
}

}  // namespace
}  // namespace tavelor::test

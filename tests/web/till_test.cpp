// SPDX-License-Identifier: MIT
// A till's day by its addresses: quotes, sales, returns, closings, sales that wait, and all of them
// again after a lost answer.
#include <future>

#include <gmock/gmock.h>

#include "tavelor/services/clock.hpp"
#include "tests/web/web_shop.hpp"

namespace tavelor::test {
namespace {

using ::testing::HasSubstr;
using web::Json;
using web::Rights;

Json lineOf(const std::string& code, double quantity, double price) {
  return {{"code", code},   {"description", "Barra"}, {"family", "PAN"}, {"quantity", quantity},
          {"price", price}, {"discount", 0},          {"tax", 21},       {"surcharge", 0}};
}

Json saleOf(const std::string& key, double quantity = 2) {
  return {{"key", key},     {"till", "01"},
          {"customer", ""}, {"name", ""},
          {"payment", "1"}, {"delivered", 5},
          {"comment", ""},  {"lines", Json::array({lineOf("PAN", quantity, 1.21)})}};
}

Json mixedOf(const std::string& key) {
  Json sale = saleOf(key, 10);
  sale["parts"] = {{{"payment", "1"}, {"amount", 5}}, {{"payment", "2"}, {"amount", 7.10}}};
  sale["delivered"] = 10;
  return sale;
}

class Till : public ::testing::Test {
 protected:
  Till() { shop_.apartment().clock().fix(Date(Date::of(2026, 11, 20).days() + 0.44)); }

  /// From here on a seller asks, without the rights of a manager.
  void asSeller() { shop_.as.rights = Rights::of("till.sell till.return"); }
  std::string kindOf(const WebAnswer& answer) { return answer.json["error"].value("kind", ""); }
  std::string count(const std::string& table, int selector = 3) {
    return shop_.text("SELECT Count(*) FROM " + table, selector);
  }
  /// An article that the shop sells at 1,21.
  void stockBread() { shop_.post("/api/v1/sales", saleOf("stock")); }

  WebShop shop_;
};

TEST_F(Till, SellsOnceByItsKey) {
  const WebAnswer sold = shop_.post("/api/v1/sales", saleOf("K1"));
  EXPECT_EQ(sold.status, 201) << sold.body;
  EXPECT_EQ(sold.json["ticket"], 1);
  EXPECT_EQ(sold.json["total"], 2.42);
  EXPECT_EQ(sold.json["change"], 2.58);
  EXPECT_EQ(sold.json["receipt"], "/print/ticket/1");
  const WebAnswer again = shop_.post("/api/v1/sales", saleOf("K1"));
  EXPECT_EQ(again.status, 200) << again.body;
  EXPECT_EQ(again.json["wasThere"], true);
  EXPECT_EQ(again.json["change"], 2.58);
  const WebAnswer other = shop_.post("/api/v1/sales", saleOf("K1", 3));
  EXPECT_EQ(other.status, 409) << other.body;
  EXPECT_EQ(kindOf(other), "conflict");
  EXPECT_EQ(count("Tickets"), "1");
  EXPECT_EQ(shop_.get("/api/v1/sales/K1").json["ticket"], 1);
  EXPECT_EQ(shop_.get("/api/v1/sales/K2").status, 404);
}

TEST_F(Till, SellsTheSameSaleOnceOverMidnight) {
  shop_.post("/api/v1/sales", saleOf("K1"));
  shop_.apartment().clock().fix(Date::of(2026, 11, 21));
  const WebAnswer again = shop_.post("/api/v1/sales", saleOf("K1"));
  EXPECT_EQ(again.status, 200) << again.body;
  EXPECT_EQ(shop_.post("/api/v1/sales", saleOf("K1", 3)).status, 409);
}

TEST_F(Till, TwoThreadsWithOneSaleSellItOnce) {
  stockBread();
  const auto sells = [&] {
    Apartment apartment(shop_.installationPtr());
    apartment.clock().fix(Date(Date::of(2026, 11, 20).days() + 0.44));
    web::Worker worker;
    const web::Request request{
        .method = web::Method::kPost,
        .target = "/api/v1/sales",
        .headers = {{"content-type", "application/json"}, {"host", "localhost"}},
        .body = web::dumped(saleOf("K1"))};
    return shop_.application().answerFor(request, worker, shop_.as).status;
  };
  auto one = std::async(std::launch::async, sells);
  auto other = std::async(std::launch::async, sells);
  EXPECT_EQ(one.get() + other.get(), 401) << "201 and 200";
  EXPECT_EQ(count("Tickets"), "2");
}

TEST_F(Till, QuotesTheShopsPricesWhereNoneIsGiven) {
  stockBread();
  const WebAnswer quoted =
      shop_.post("/api/v1/till/quote", {{"till", "01"},
                                        {"customer", ""},
                                        {"lines",
                                         {{{"code", "PAN"}, {"quantity", 3}},
                                          {{"code", "PAN"}, {"quantity", 1}, {"discount", 50}},
                                          {{"code", "NADA"}, {"quantity", 1}}}}});
  ASSERT_EQ(quoted.status, 200) << quoted.body;
  EXPECT_EQ(quoted.json["lines"][0]["price"], 1.21);
  EXPECT_EQ(quoted.json["lines"][0]["amount"], 3.63);
  EXPECT_EQ(quoted.json["lines"][0]["description"], "Barra");
  EXPECT_EQ(quoted.json["lines"][1]["discount"], 50);
  EXPECT_THAT(quoted.json["lines"][2]["reason"].get<std::string>(), HasSubstr("no article NADA"));
  EXPECT_EQ(quoted.json["total"], 4.24);
  EXPECT_EQ(quoted.json["taxes"][0]["rate"], 21);
  EXPECT_EQ(count("Tickets"), "1") << "nothing is sold";
}

TEST_F(Till, PaidInPartsTellsThemAndClosesByThem) {
  const WebAnswer sold = shop_.post("/api/v1/sales", mixedOf("M1"));
  ASSERT_EQ(sold.status, 201) << sold.body;
  EXPECT_EQ(sold.json["change"], 5) << "of the cash that was handed over";
  EXPECT_EQ(shop_.post("/api/v1/sales", mixedOf("M1")).status, 200);
  const WebAnswer ticket = shop_.get("/api/v1/tickets/1");
  EXPECT_EQ(ticket.json["parts"].size(), 2U) << ticket.body;
  EXPECT_EQ(ticket.json["lines"][0]["returned"], 0);
  EXPECT_EQ(ticket.json["closing"], nullptr);
  const WebAnswer day = shop_.get("/api/v1/tills/01/day");
  EXPECT_EQ(day.json["expected"], 5) << day.body;
  EXPECT_EQ(day.json["payments"].size(), 2U);
  Json wrong = mixedOf("M2");
  wrong["parts"][0]["amount"] = 6;
  const WebAnswer refused = shop_.post("/api/v1/sales", wrong);
  EXPECT_EQ(refused.status, 422);
  EXPECT_THAT(refused.body, HasSubstr("its parts are 13.10"));
}

TEST_F(Till, ClosesOnceAndKeepsWhatWasCounted) {
  shop_.post("/api/v1/sales", saleOf("K1"));
  const Json count = {{"till", "01"}, {"day", "2026-11-20"}, {"counted", 2.40}, {"tickets", 1}};
  Json other = count;
  other["tickets"] = 3;
  EXPECT_EQ(shop_.post("/api/v1/closings", other).status, 409);
  const WebAnswer closed = shop_.post("/api/v1/closings", count);
  ASSERT_EQ(closed.status, 201) << closed.body;
  EXPECT_EQ(closed.json["difference"], -0.02);
  EXPECT_EQ(closed.json["expected"], 2.42);
  EXPECT_EQ(closed.json["countedBy"], "1");
  EXPECT_FALSE(closed.json["slip"].empty());
  const WebAnswer again = shop_.post("/api/v1/closings", count);
  EXPECT_EQ(again.status, 200) << again.body;
  EXPECT_EQ(again.json["wasThere"], true);
  EXPECT_EQ(again.json["closing"], 1);
  other = count;
  other["counted"] = 7;
  EXPECT_EQ(shop_.post("/api/v1/closings", other).status, 409);
  EXPECT_EQ(shop_.post("/api/v1/closings", {{"till", "02"}, {"counted", 0}}).status, 422);
  EXPECT_EQ(shop_.get("/api/v1/closings?till=01").json["total"], 1);
  EXPECT_EQ(shop_.get("/api/v1/closings/1").json["payments"][0]["total"], 2.42);
  EXPECT_EQ(shop_.get("/api/v1/closings/2").status, 404);
  EXPECT_THAT(shop_.get("/print/closing/1").body, HasSubstr("Diferencia"));
  EXPECT_EQ(shop_.get("/api/v1/day?day=2026-11-20").json["all"]["tickets"], 1);
  EXPECT_EQ(shop_.get("/api/v1/tickets?day=2026-11-20").json["tickets"][0]["closing"], 1);
}

TEST_F(Till, TakesBackOnceAndTellsOfAnotherReturnMeanwhile) {
  shop_.post("/api/v1/sales", saleOf("K1", 5));
  const Json some = {
      {"ticket", 1}, {"till", "02"}, {"earlier", 0}, {"lines", {{{"line", 1}, {"quantity", 2}}}}};
  const WebAnswer made = shop_.post("/api/v1/returns", some);
  ASSERT_EQ(made.status, 201) << made.body;
  EXPECT_EQ(made.json["total"], -2.42);
  const WebAnswer again = shop_.post("/api/v1/returns", some);
  EXPECT_EQ(again.status, 200) << again.body;
  EXPECT_EQ(again.json["ticket"], made.json["ticket"]);
  Json other = some;
  other["lines"][0]["quantity"] = 1;
  EXPECT_EQ(shop_.post("/api/v1/returns", other).status, 409);
  other["earlier"] = 1;
  EXPECT_EQ(shop_.post("/api/v1/returns", other).status, 201);
  other["earlier"] = 2;
  other["lines"][0]["quantity"] = 3;
  EXPECT_EQ(shop_.post("/api/v1/returns", other).status, 422) << "2 are left";
  const WebAnswer ticket = shop_.get("/api/v1/tickets/1");
  EXPECT_EQ(ticket.json["lines"][0]["returned"], 3);
  EXPECT_EQ(ticket.json["returns"].size(), 2U);
  EXPECT_EQ(shop_.get("/api/v1/tickets/2").json["returnOf"], 1);
}

TEST_F(Till, ASaleThatWaitsIsTakenByOne) {
  Json held = saleOf("H1");
  held["label"] = "<script>alert(1)</script>";
  const WebAnswer kept = shop_.post("/api/v1/held", held);
  ASSERT_EQ(kept.status, 201) << kept.body;
  EXPECT_EQ(shop_.post("/api/v1/held", held).json["id"], kept.json["id"]);
  const std::string place = "/api/v1/held/" + kept.json["id"].dump() + "/take";
  EXPECT_EQ(shop_.get("/api/v1/held").json["held"][0]["lines"], 1);
  shop_.as.session = "one";
  EXPECT_EQ(shop_.post(place, Json::object()).json["lines"][0]["code"], "PAN");
  EXPECT_EQ(shop_.post(place, Json::object()).status, 200) << "its answer was lost";
  shop_.as.session = "other";
  EXPECT_EQ(shop_.post(place, Json::object()).status, 409);
  EXPECT_EQ(shop_.get("/api/v1/held").json["held"].size(), 0U);
  EXPECT_EQ(shop_.post("/api/v1/held/99/take", Json::object()).status, 404);
}

// What a seller may not do is told by its right, and leaves nothing.
TEST_F(Till, ASellerSellsAtTheShopsPricesOnly) {
  stockBread();
  asSeller();
  const auto needs = [&](const Json& sale) {
    const WebAnswer answer = shop_.post("/api/v1/sales", sale);
    return answer.status == 403 ? answer.json["error"]["message"].get<std::string>()
                                : std::to_string(answer.status);
  };
  EXPECT_EQ(needs(saleOf("K1")), "201");
  Json sale = saleOf("K2");
  sale["lines"][0]["price"] = 1;
  EXPECT_THAT(needs(sale), HasSubstr("till.price"));
  sale["lines"][0]["price"] = 0;
  EXPECT_THAT(needs(sale), HasSubstr("till.price"));
  sale = saleOf("K2");
  sale["lines"][0]["tax"] = 4;
  EXPECT_THAT(needs(sale), HasSubstr("till.price"));
  sale = saleOf("K2");
  sale["lines"][0]["discount"] = 5;
  EXPECT_THAT(needs(sale), HasSubstr("till.discount"));
  sale = saleOf("K2");
  sale["lines"][0]["code"] = "NUEVO";
  EXPECT_THAT(needs(sale), HasSubstr("till.price")) << "an article that the shop does not have";
  sale = saleOf("K2");
  sale["creditGranted"] = true;
  EXPECT_THAT(needs(sale), HasSubstr("till.credit"));
  EXPECT_EQ(needs(saleOf("K3", -1)), "201") << "sellers may take back";
  shop_.as.rights = Rights::of("till.sell");
  EXPECT_THAT(needs(saleOf("K4", -1)), HasSubstr("till.return"));
  EXPECT_EQ(shop_.post("/api/v1/returns", {{"ticket", 1}}).status, 403);
  EXPECT_EQ(shop_.post("/api/v1/closings", {{"till", "01"}, {"counted", 0}}).status, 403);
  EXPECT_EQ(count("Tickets"), "3");

  shop_.as.rights = Rights::of("-class.Bancos.write");
  EXPECT_EQ(shop_.get("/api/v1/tickets").status, 403);
  EXPECT_EQ(shop_.get("/print/ticket/1").status, 403);
  EXPECT_EQ(shop_.post("/api/v1/sales", saleOf("K5")).status, 403);
}

TEST_F(Till, ASaleMadeAtEarlierPricesIsKnownAgainToASeller) {
  stockBread();
  asSeller();
  EXPECT_EQ(shop_.post("/api/v1/sales", saleOf("K1")).status, 201);
  shop_.run("UPDATE Articulos SET Tarifa_A = 2 WHERE Codigo = 'PAN'");
  EXPECT_EQ(shop_.post("/api/v1/sales", saleOf("K1")).status, 200);
  EXPECT_EQ(shop_.post("/api/v1/sales", saleOf("K2")).status, 403);
}

TEST_F(Till, FindsArticlesAndCustomers) {
  Json sale = saleOf("K1");
  sale["customer"] = "C1";
  sale["name"] = "Ferretería Sol";
  sale["payment"] = "4";
  ASSERT_EQ(shop_.post("/api/v1/sales", sale).status, 201);
  EXPECT_EQ(shop_.get("/api/v1/articles/search?q=barr").json["articles"][0]["code"], "PAN");
  EXPECT_EQ(shop_.get("/api/v1/articles/scan/PAN").json["article"]["price"], 1.21);
  EXPECT_EQ(shop_.get("/api/v1/articles/scan/PA").status, 404);
  EXPECT_EQ(shop_.get("/api/v1/customers/search?q=ferre").json["customers"][0]["code"], "C1");
  const WebAnswer customer = shop_.get("/api/v1/customers/C1");
  EXPECT_EQ(customer.json["account"]["balance"], 2.42) << customer.body;
  const WebAnswer account = shop_.get("/api/v1/customers/C1/account");
  EXPECT_EQ(account.json["entries"][0]["debit"], 2.42);
  EXPECT_EQ(account.json["balance"], 2.42);
  EXPECT_EQ(shop_.get("/api/v1/customers/C1/documents").json["total"], 1);
  EXPECT_EQ(shop_.get("/api/v1/customers/C2").status, 404);
  EXPECT_EQ(shop_.get("/api/v1/customers/C2/documents").status, 404);
  EXPECT_THAT(shop_.get("/print/account/C1").body, HasSubstr("2,42"));
  EXPECT_THAT(shop_.get("/print/ticket/1?paper=a4").body, HasSubstr("2,42"));
  EXPECT_EQ(shop_.get("/print/ticket/1?paper=a3").status, 400);
}

TEST_F(Till, TellsWhatHappensToThoseWhoListen) {
  std::string heard;
  const auto listener = shop_.application().events().listen(
      [&](const std::shared_ptr<const std::string>& message) { heard += *message; });
  shop_.post("/api/v1/sales", saleOf("K1"));
  shop_.post("/api/v1/sales", saleOf("K1"));
  shop_.post("/api/v1/returns", {{"ticket", 1}, {"till", "01"}, {"earlier", 0}});
  shop_.post("/api/v1/closings", {{"till", "01"}, {"counted", 0}});
  shop_.application().events().forget(listener);
  EXPECT_THAT(heard, HasSubstr("event: sale\n"));
  EXPECT_EQ(heard.find("event: sale"), heard.rfind("event: sale")) << "once";
  EXPECT_THAT(heard, HasSubstr("event: return\n"));
  EXPECT_THAT(heard, HasSubstr("event: closing\n"));
}

// ---------------------------------------------------------------------------------------------
// Bad input

TEST_F(Till, WhatDoesNotReadIsRefusedAndStoresNothing) {
  const auto statusOf = [&](const char* field, const Json& value) {
    Json sale = saleOf("K1");
    sale[field] = value;
    return shop_.post("/api/v1/sales", sale).status;
  };
  for (const char* const field : {"key", "till", "customer", "payment", "name", "comment"}) {
    EXPECT_EQ(statusOf(field, 7), 400) << field;
    EXPECT_EQ(statusOf(field, Json::array()), 400) << field;
    EXPECT_EQ(statusOf(field, std::string(100'000, 'x')), 400) << field;
    EXPECT_EQ(statusOf(field, std::string("a\0b", 3)), 400) << field;
  }
  EXPECT_EQ(statusOf("key", ""), 400);
  EXPECT_EQ(statusOf("key", "Dev. A/1 (1)"), 400) << "that of a return";
  EXPECT_EQ(statusOf("delivered", "5"), 400);
  EXPECT_EQ(statusOf("delivered", 1e300), 422);
  EXPECT_EQ(statusOf("till", "99"), 422);
  EXPECT_EQ(statusOf("payment", "' OR 1=1 --"), 422);
  EXPECT_EQ(statusOf("lines", "x"), 400);
  EXPECT_EQ(statusOf("lines", Json::array()), 422);
  EXPECT_EQ(statusOf("lines", Json(std::vector<int>(501, 1))), 400);
  EXPECT_EQ(statusOf("lines", Json::array({7})), 400);
  EXPECT_EQ(statusOf("parts", {{{"payment", "1"}, {"amount", "x"}}}), 400);
  EXPECT_EQ(statusOf("parts", Json(std::vector<int>(21, 1))), 400);
  const auto lineStatus = [&](const char* field, const Json& value) {
    Json sale = saleOf("K1");
    sale["lines"][0][field] = value;
    return shop_.post("/api/v1/sales", sale).status;
  };
  EXPECT_EQ(lineStatus("quantity", 0), 422);
  EXPECT_EQ(lineStatus("quantity", 1e12), 422);
  EXPECT_EQ(lineStatus("quantity", nullptr), 400);
  EXPECT_EQ(lineStatus("price", -1), 422);
  EXPECT_EQ(lineStatus("discount", 101), 422);
  EXPECT_EQ(lineStatus("tax", 7.77), 422);
  EXPECT_EQ(lineStatus("tax", 1e308), 422);
  EXPECT_EQ(lineStatus("code", ""), 422);
  EXPECT_EQ(lineStatus("code", std::string(21, 'x')), 400);
  EXPECT_EQ(lineStatus("lot", "x"), 422);
  EXPECT_EQ(count("Tickets"), "0");
}

TEST_F(Till, HostileAddressesAndBodiesGiveNoFailure) {
  stockBread();
  const std::vector<std::string> values = {"",
                                           "0",
                                           "-1",
                                           "1e9",
                                           "99999999999999999999",
                                           "%27%20OR%201=1--",
                                           "%3Cscript%3E",
                                           "%25",
                                           "%F0%9F%8D%9E",
                                           "*",
                                           "2026-02-30",
                                           "%5B%23%3F",
                                           "NaN"};
  for (const char* const path : {"/api/v1/tickets?q=",
                                 "/api/v1/tickets?day=",
                                 "/api/v1/tickets?limit=",
                                 "/api/v1/tickets?offset=",
                                 "/api/v1/tickets?customer=",
                                 "/api/v1/tickets/",
                                 "/api/v1/closings?from=",
                                 "/api/v1/closings?till=",
                                 "/api/v1/closings/",
                                 "/api/v1/tills/01/day?day=",
                                 "/api/v1/tills/X/day?day=",
                                 "/api/v1/day?day=",
                                 "/api/v1/articles/search?q=",
                                 "/api/v1/articles/search?tariff=X&q=pan&most=",
                                 "/api/v1/articles/scan/",
                                 "/api/v1/customers/search?q=",
                                 "/api/v1/customers/",
                                 "/api/v1/sales/",
                                 "/print/ticket/",
                                 "/print/closing/",
                                 "/print/account/",
                                 "/print/ticket/1?paper="}) {
    for (const std::string& value : values) {
      const WebAnswer answer = shop_.get(path + value);
      EXPECT_LT(answer.status, 500) << path << value << "\n" << answer.body;
    }
  }
  const std::vector<Json> bodies = {
      Json::object(),
      {{"till", nullptr}, {"counted", nullptr}},
      {{"till", "01"}, {"counted", "1"}},
      {{"till", "01"}, {"counted", 1e300}},
      {{"till", "01"}, {"counted", 0.001}},
      {{"till", "01"}, {"day", "tomorrow"}, {"counted", 1}},
      {{"till", "01"}, {"tickets", -1}, {"counted", 1}},
      {{"ticket", 1.5}, {"till", "01"}, {"earlier", 0}},
      {{"ticket", 99}, {"till", "01"}, {"earlier", 0}},
      {{"ticket", 1}, {"till", "01"}, {"earlier", -1}},
      {{"ticket", 1}, {"till", "01"}, {"earlier", 5}},
      {{"ticket", 1}, {"till", "99"}, {"earlier", 0}},
      {{"ticket", 1}, {"till", "01"}, {"earlier", 0}, {"payment", "x"}},
      {{"ticket", 1}, {"till", "01"}, {"earlier", 0}, {"lines", Json::array()}},
      {{"ticket", 1}, {"till", "01"}, {"earlier", 0}, {"lines", {{{"line", 9}, {"quantity", 1}}}}},
      {{"ticket", 1}, {"till", "01"}, {"earlier", 0}, {"lines", {{{"line", 1}, {"quantity", -1}}}}},
      {{"ticket", 1},
       {"till", "01"},
       {"earlier", 0},
       {"lines", {{{"line", 1}, {"quantity", 1e300}}}}},
      {{"key", "K"}, {"till", "01"}, {"lines", "x"}},
      {{"key", ""}, {"till", "01"}, {"lines", Json::array()}}};
  for (const char* const path : {"/api/v1/sales", "/api/v1/returns", "/api/v1/closings",
                                 "/api/v1/held", "/api/v1/till/quote"}) {
    for (const Json& body : bodies) {
      const WebAnswer answer = shop_.post(path, body);
      EXPECT_TRUE(answer.status >= 400 || body.contains("lines")) << path << web::dumped(body);
      EXPECT_LT(answer.status, 500) << path << web::dumped(body) << "\n" << answer.body;
    }
  }
  EXPECT_EQ(count("Tickets"), "1");
  EXPECT_EQ(count("Cierres", 1), "0");
  EXPECT_EQ(count("Tickets_Espera"), "0");
}

TEST_F(Till, TextsOfTheDatabaseStayTextOnPages) {
  Json sale = saleOf("K1");
  sale["lines"][0]["description"] = "<script>alert(1)</script>";
  sale["customer"] = "C1";
  sale["name"] = "<img src=x onerror=alert(1)>";
  ASSERT_EQ(shop_.post("/api/v1/sales", sale).status, 201);
  shop_.run("INSERT INTO Familias (Codigo, Descripcion) VALUES ('<b>', '<b>x')");
  shop_.post("/api/v1/closings", {{"till", "01"}, {"counted", 0}});
  for (const char* const path : {"/print/ticket/1", "/print/closing/1", "/print/account/C1"}) {
    const std::string html = shop_.get(path).body;
    EXPECT_EQ(html.find("<script"), std::string::npos) << path;
    EXPECT_EQ(html.find("<img src=x"), std::string::npos) << path;
  }
}

}  // namespace
}  // namespace tavelor::test

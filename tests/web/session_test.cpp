// SPDX-License-Identifier: MIT
// Who may sign in, and what a session is worth to whoever finds a part of it.
#include "tavelor/platform/date.hpp"
#include "tavelor/services/clock.hpp"
#include "tavelor/web/hashes.hpp"
#include "tavelor/web/pins.hpp"
#include "tests/web/web_shop.hpp"

namespace tavelor::test {
namespace {

using web::Json;
using web::Method;
using web::Request;

constexpr const char* kSession = "/api/v1/session";

/// With two employees; requests are asked as they come.
class SignedIn : public WebShop {
 public:
  SignedIn() {
    run("INSERT INTO Empleados (Codigo, Nombre, Activo) VALUES ('1', 'Ana', True)");
    run("INSERT INTO Empleados (Codigo, Nombre, Activo) VALUES ('2', 'Joan', True)");
    web::setPin("1", "1234", "owner");
    web::setPin("2", "4321", "seller");
  }

  WebAnswer raw(Request request) {
    if (request.header("host").empty()) request.headers.emplace_back("host", "localhost:8080");
    return WebAnswer(application().answer(request, worker()));
  }
  WebAnswer signIn(const std::string& employee, const std::string& pin) {
    return raw(json(Method::kPost, kSession, {{"employee", employee}, {"pin", pin}}));
  }
  static Request json(Method method, const std::string& target, const Json& body) {
    return {.method = method,
            .target = target,
            .headers = {{"content-type", "application/json"}},
            .body = web::dumped(body)};
  }
  /// "tavelor_session=..." of an answer.
  static std::string cookieOf(const WebAnswer& answer) {
    const std::string_view all = answer.header("Set-Cookie");
    return std::string(all.substr(0, all.find(';')));
  }
  WebAnswer as(const std::string& cookie, Request request, const std::string& token = {}) {
    request.headers.emplace_back("cookie", cookie);
    if (!token.empty()) request.headers.emplace_back("x-tavelor-token", token);
    return raw(std::move(request));
  }
};

TEST(Session, TellsNobodyMoreThanHowToSignIn) {
  SignedIn shop;
  const WebAnswer answer = shop.raw({.target = kSession});
  EXPECT_EQ(answer.status, 200);
  EXPECT_TRUE(answer.json["employee"].is_null());
  EXPECT_TRUE(answer.json["rights"].empty());
  EXPECT_EQ(answer.json["employees"].size(), 2U);
  EXPECT_FALSE(answer.json.contains("token"));
  EXPECT_FALSE(answer.json["shop"].contains("fiscalNumber"));
}

TEST(Session, BeginsByTheRightPinWithACookieThatScriptsCannotRead) {
  SignedIn shop;
  const WebAnswer answer = shop.signIn("1", "1234");
  ASSERT_EQ(answer.status, 200) << answer.body;
  const std::string cookie(answer.header("Set-Cookie"));
  EXPECT_NE(cookie.find("; HttpOnly"), std::string::npos);
  EXPECT_NE(cookie.find("; SameSite=Strict"), std::string::npos);
  EXPECT_NE(cookie.find("; Path=/"), std::string::npos);
  EXPECT_EQ(cookie.find("Secure"), std::string::npos);
  EXPECT_EQ(answer.json["employee"]["name"], "Ana");
  EXPECT_EQ(shop.as(SignedIn::cookieOf(answer), {.target = kSession}).json["role"], "owner");
  EXPECT_EQ(shop.value("SELECT Count(*) FROM Web_Registro WHERE Detalle = '1 signs in'"),
            Variant(1));
}

TEST(Session, HasASecureCookieOverTls) {
  SignedIn shop;
  Request request = SignedIn::json(Method::kPost, kSession, {{"employee", "1"}, {"pin", "1234"}});
  request.isSecure = true;
  const WebAnswer answer = shop.raw(request);
  EXPECT_NE(answer.header("Set-Cookie").find("; Secure"), std::string_view::npos);
  EXPECT_EQ(answer.header("Strict-Transport-Security"), "max-age=31536000");
}

TEST(Session, KeepsNeitherPinNorSecretThatAThiefOfTheDatabaseCouldUse) {
  SignedIn shop;
  const std::string cookie = SignedIn::cookieOf(shop.signIn("1", "1234"));
  EXPECT_TRUE(
      shop.text("SELECT Huella FROM Web_Pines WHERE Empleado = '1'").starts_with("$argon2id$"));
  EXPECT_EQ(cookie.find(shop.text("SELECT Huella FROM Web_Sesiones")), std::string::npos);
}

TEST(Session, TakesNoForgedCookie) {
  SignedIn shop;
  const std::string cookie = SignedIn::cookieOf(shop.signIn("1", "1234"));
  std::string other = cookie;
  other.back() = other.back() == '0' ? '1' : '0';
  for (const std::string& forged :
       {other, cookie + "0", cookie.substr(0, cookie.size() - 1), std::string("tavelor_session="),
        std::string("tavelor_session=") + std::string(64, '\''), "x" + cookie}) {
    EXPECT_TRUE(shop.as(forged, {.target = kSession}).json["employee"].is_null()) << forged;
  }
}

TEST(Session, EndsAtSignOutAndForThatSessionOnly) {
  SignedIn shop;
  const WebAnswer first = shop.signIn("1", "1234");
  const WebAnswer second = shop.signIn("1", "1234");
  const std::string token = first.json["token"];
  const WebAnswer out =
      shop.as(SignedIn::cookieOf(first), {.method = Method::kDelete, .target = kSession}, token);
  EXPECT_EQ(out.status, 204);
  EXPECT_NE(out.header("Set-Cookie").find("Max-Age=0"), std::string_view::npos);
  EXPECT_TRUE(shop.as(SignedIn::cookieOf(first), {.target = kSession}).json["employee"].is_null());
  EXPECT_FALSE(
      shop.as(SignedIn::cookieOf(second), {.target = kSession}).json["employee"].is_null());
}

TEST(Session, EndsAfterTwoHoursOfNothingAndTwelveOfWork) {
  SignedIn shop;
  Clock& clock = shop.apartment().clock();
  const Date start = Date::of({2026, 11, 20, 8, 0, 0});
  const auto at = [&](double hours) { clock.fix(Date(start.days() + hours / 24)); };
  at(0);
  const std::string idle = SignedIn::cookieOf(shop.signIn("1", "1234"));
  const std::string busy = SignedIn::cookieOf(shop.signIn("2", "4321"));
  for (double hours = 1; hours < 12; hours += 1) {
    at(hours);
    EXPECT_FALSE(shop.as(busy, {.target = kSession}).json["employee"].is_null()) << hours;
  }
  EXPECT_TRUE(shop.as(idle, {.target = kSession}).json["employee"].is_null());
  at(12.1);
  EXPECT_TRUE(shop.as(busy, {.target = kSession}).json["employee"].is_null());
}

TEST(Session, EndsWithItsPin) {
  SignedIn shop;
  const std::string cookie = SignedIn::cookieOf(shop.signIn("1", "1234"));
  EXPECT_TRUE(web::removePin("1"));
  EXPECT_TRUE(shop.as(cookie, {.target = kSession}).json["employee"].is_null());
  EXPECT_FALSE(web::removePin("1"));
}

TEST(Session, OfAnEmployeeIsOneOfTwentyAtMost) {
  SignedIn shop;
  const std::string first = SignedIn::cookieOf(shop.signIn("1", "1234"));
  for (int i = 0; i < 22; ++i) ASSERT_EQ(shop.signIn("1", "1234").status, 200);
  EXPECT_EQ(shop.value("SELECT Count(*) FROM Web_Sesiones"), Variant(20));
}

TEST(Session, ChangesNothingWithoutTheTokenOfThatSession) {
  SignedIn shop;
  const WebAnswer mine = shop.signIn("1", "1234");
  const WebAnswer other = shop.signIn("2", "4321");
  const Request out{.method = Method::kDelete, .target = kSession};
  EXPECT_EQ(shop.as(SignedIn::cookieOf(mine), out).status, 403);
  EXPECT_EQ(shop.as(SignedIn::cookieOf(mine), out, "0").status, 403);
  EXPECT_EQ(shop.as(SignedIn::cookieOf(mine), out, other.json["token"]).status, 403);
  EXPECT_EQ(shop.as(SignedIn::cookieOf(mine), out, mine.json["token"]).status, 204);
}

TEST(Session, ChangesNothingForAPageOfAnotherSite) {
  SignedIn shop;
  const WebAnswer mine = shop.signIn("1", "1234");
  for (const auto& header : web::Headers{{"origin", "https://evil.example"},
                                         {"origin", "null"},
                                         {"origin", "http://localhost:9090"},
                                         {"sec-fetch-site", "cross-site"},
                                         {"sec-fetch-site", "same-site"}}) {
    Request out{.method = Method::kDelete, .target = kSession, .headers = {header}};
    EXPECT_EQ(shop.as(SignedIn::cookieOf(mine), out, mine.json["token"]).status, 403)
        << header.second;
  }
  Request own{.method = Method::kDelete,
              .target = kSession,
              .headers = {{"origin", "http://localhost:8080"}, {"sec-fetch-site", "same-origin"}}};
  EXPECT_EQ(shop.as(SignedIn::cookieOf(mine), own, mine.json["token"]).status, 204);
}

TEST(Session, IsAskedForByANameOfOursOnly) {
  SignedIn shop;
  for (const char* const host :
       {"localhost", "LOCALHOST:8080", "127.0.0.1:8080", "[::1]:8080", "10.0.0.7"}) {
    EXPECT_EQ(shop.raw({.target = kSession, .headers = {{"host", host}}}).status, 200) << host;
  }
  for (const char* const host :
       {"evil.example", "localhost.evil.example", "127.0.0.1.evil.example", "[::1"}) {
    EXPECT_EQ(shop.raw({.target = kSession, .headers = {{"host", host}}}).status, 421) << host;
  }
}

TEST(LockOut, ComesAfterFiveWrongTriesAndGrows) {
  SignedIn shop;
  Clock& clock = shop.apartment().clock();
  Date now = Date::of({2026, 11, 20, 8, 0, 0});
  clock.fix(now);
  for (int left = 4; left > 0; --left) {
    const WebAnswer wrong = shop.signIn("1", "9999");
    EXPECT_EQ(wrong.status, 401);
    EXPECT_EQ(wrong.json["error"]["left"], left);
  }
  int seconds = 30;
  for (int i = 0; i < 3; ++i, seconds *= 2) {
    const WebAnswer locked = shop.signIn("1", "9999");
    EXPECT_EQ(locked.status, 423);
    EXPECT_EQ(locked.header("Retry-After"), std::to_string(seconds));
    EXPECT_EQ(shop.signIn("1", "1234").status, 423) << "the right one is not looked at either";
    now = Date(now.days() + (seconds + 1) / 86'400.0);
    clock.fix(now);
  }
  EXPECT_EQ(shop.signIn("1", "1234").status, 200);
  EXPECT_EQ(shop.signIn("1", "9999").json["error"]["left"], 4)
      << "a right one forgives the wrong ones";
}

TEST(LockOut, IsTheSameForAnEmployeeWhoIsNotThere) {
  SignedIn shop;
  for (const char* const nobody : {"77", "' OR '1'='1"}) {
    for (int left = 4; left > 0; --left) {
      const WebAnswer wrong = shop.signIn(nobody, "9999");
      EXPECT_EQ(wrong.status, 401);
      EXPECT_EQ(wrong.json["error"]["left"], left);
    }
    EXPECT_EQ(shop.signIn(nobody, "9999").status, 423);
  }
}

TEST(LockOut, LeavesAnAddressThirtyTries) {
  SignedIn shop;
  int limited = 0;
  for (int i = 0; i < 40; ++i) {
    const WebAnswer answer = shop.raw(SignedIn::json(Method::kPost, kSession, Json::object()));
    if (answer.status == 429) ++limited;
  }
  EXPECT_GE(limited, 8);
}

TEST(Pin, IsFourToTwelveDigitsOrAPhrase) {
  for (const char* const good : {"1234", "123456789012", "una frase larga"}) {
    EXPECT_EQ(web::faultOfPin(good), "") << good;
  }
  for (const char* const bad : {"", "123", "1234567890123", "abc", "abcdefg"}) {
    EXPECT_NE(web::faultOfPin(bad), "") << bad;
  }
}

TEST(Pin, IsForAnEmployeeOfTheShopAndARoleThatIsThere) {
  SignedIn shop;
  EXPECT_EQ(errorOf([] { web::setPin("77", "1234", "owner"); }), errors::kNoCurrentRecord);
  EXPECT_EQ(errorOf([] { web::setPin("1", "1234", "king"); }), errors::kInvalidCall);
  EXPECT_EQ(errorOf([] { web::setPin("1", "12", "owner"); }), errors::kInvalidCall);
  EXPECT_EQ(shop.signIn("1", "1234").status, 200) << "and the old one stays";
}

TEST(Pin, IsChangedByItsOwnerWhoSignsAllOthersOut) {
  SignedIn shop;
  const WebAnswer here = shop.signIn("1", "1234");
  const WebAnswer there = shop.signIn("1", "1234");
  const auto change = [&](const char* old, const char* fresh) {
    return shop.as(
        SignedIn::cookieOf(here),
        SignedIn::json(Method::kPost, "/api/v1/session/pin", {{"old", old}, {"new", fresh}}),
        here.json["token"]);
  };
  EXPECT_EQ(change("9999", "5678").status, 401);
  EXPECT_EQ(change("1234", "5").status, 422);
  const WebAnswer changed = change("1234", "5678");
  EXPECT_EQ(changed.status, 200);
  EXPECT_TRUE(shop.as(SignedIn::cookieOf(there), {.target = kSession}).json["employee"].is_null());
  EXPECT_FALSE(
      shop.as(SignedIn::cookieOf(changed), {.target = kSession}).json["employee"].is_null());
  EXPECT_EQ(shop.signIn("1", "5678").status, 200);
}

TEST(Role, IsDataOfTheShopsOwn) {
  SignedIn shop;
  shop.run(
      "INSERT INTO Web_Roles (Rol, Derechos) VALUES ('seller', 'till.sell "
      "-class.ClsBancos.write')");
  const WebAnswer seller = shop.signIn("2", "4321");
  EXPECT_EQ(seller.json["rights"], Json({"till.sell"}));
  EXPECT_TRUE(web::rightsOfRole("seller")->denies("class.ClsBancos.write"));
  EXPECT_FALSE(web::rightsOfRole("owner")->denies("class.ClsBancos.write"));
}

TEST(Key, OfAProgramNeedsNoToken) {
  SignedIn shop;
  const std::string key = web::makeKey("webshop", "till.sell");
  const auto ask = [&](const std::string& given) {
    return shop.raw({.target = kSession, .headers = {{"authorization", "Bearer " + given}}});
  };
  EXPECT_EQ(ask(key).json["rights"], Json({"till.sell"}));
  EXPECT_EQ(ask(key + "0").status, 401);
  EXPECT_EQ(ask("").status, 401);
  EXPECT_EQ(errorOf([] { web::makeKey("webshop", "till.sell"); }), errors::kIntegrityViolation);
  EXPECT_EQ(errorOf([] { web::makeKey("x", "till.steal"); }), errors::kInvalidCall);
  EXPECT_TRUE(web::removeKey("webshop"));
  EXPECT_EQ(ask(key).status, 401);
}

TEST(Secrets, AreNeverTheSame) {
  EXPECT_EQ(web::newSecret().size(), 64U);
  EXPECT_NE(web::newSecret(), web::newSecret());
  EXPECT_NE(web::pinHash("1234"), web::pinHash("1234"));
  EXPECT_TRUE(web::isPinOf("1234", web::pinHash("1234")));
  EXPECT_FALSE(web::isPinOf("1235", web::pinHash("1234")));
  EXPECT_FALSE(web::isPinOf("", ""));
}

}  // namespace
}  // namespace tavelor::test

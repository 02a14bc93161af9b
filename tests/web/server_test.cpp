// SPDX-License-Identifier: MIT
// What the lines take, and what they do not.
#include "tavelor/web/server.hpp"

#include <array>
#include <chrono>
#include <cstdio>
#include <fstream>
#include <latch>
#include <memory>
#include <thread>
#include <vector>

#include "tavelor/web/pins.hpp"
#include "tavelor/web/rate_limit.hpp"
#include "tavelor/web/worker_pool.hpp"
#include "tests/web/line_client.hpp"
#include "tests/web/web_shop.hpp"

namespace tavelor::test {
namespace {

using std::chrono::steady_clock;

web::ServerOptions quiet() {
  web::ServerOptions options;
  options.port = 0;
  options.log = "-";
  options.workers = 2;
  options.requestsPerSecond = 0;
  return options;
}

/// A shop whose server runs beside the test.
class RunningServer : public Shop {
 public:
  explicit RunningServer(web::ServerOptions options = quiet())
      : server_(std::make_unique<web::Server>(installationPtr(), std::move(options))),
        thread_([this] { allAnswered_ = server_->run(); }) {}
  ~RunningServer() { stop(); }
  RunningServer(const RunningServer&) = delete;
  RunningServer& operator=(const RunningServer&) = delete;

  web::Server& server() { return *server_; }
  std::uint16_t port() const { return server_->port(); }
  /// Whether all was answered.
  bool stop() {
    if (!thread_.joinable()) return allAnswered_;
    server_->stop();
    thread_.join();
    return allAnswered_;
  }
  std::string ask(const std::string& request) { return LineClient(port()).ask(request); }

 private:
  std::unique_ptr<web::Server> server_;
  bool allAnswered_ = false;
  std::thread thread_;
};

constexpr std::string_view kClose = "Connection: close\r\n";

TEST(ServerThread, TellsBrowsersWhatTheyMayDo) {
  RunningServer shop;
  const std::string answer = shop.ask(get("/health", kClose));
  EXPECT_EQ(statusOf(answer), 200);
  for (const char* const header :
       {"Content-Security-Policy: default-src 'self'; object-src 'none'; frame-ancestors 'none'; "
        "base-uri 'none'; form-action 'none'; require-trusted-types-for 'script'\r\n",
        "X-Content-Type-Options: nosniff\r\n", "X-Frame-Options: DENY\r\n",
        "Referrer-Policy: no-referrer\r\n", "Cross-Origin-Opener-Policy: same-origin\r\n",
        "Cross-Origin-Resource-Policy: same-origin\r\n", "Permissions-Policy: camera=()",
        "Cache-Control: no-store\r\n"}) {
    EXPECT_NE(answer.find(header), std::string::npos) << header;
  }
  EXPECT_EQ(answer.find("unsafe"), std::string::npos);
  EXPECT_EQ(answer.find("Server:"), std::string::npos);
}

TEST(ServerThread, KeepsALineForFurtherRequestsAndAnswersThemInOrder) {
  RunningServer shop;
  LineClient line(shop.port());
  line.send(get("/health") + get("/none") + get("/health", kClose));
  const std::string answers = line.receive();
  const std::size_t missing = answers.find("HTTP/1.1 404");
  EXPECT_EQ(answers.find("HTTP/1.1 200"), 0U);
  ASSERT_NE(missing, std::string::npos);
  EXPECT_GT(answers.rfind("HTTP/1.1 200"), missing);
}

TEST(ServerThread, AnswersHeadWithoutABody) {
  RunningServer shop;
  const std::string answer =
      shop.ask("HEAD /health HTTP/1.1\r\nHost: localhost\r\nConnection: close\r\n\r\n");
  EXPECT_EQ(statusOf(answer), 200);
  EXPECT_TRUE(answer.ends_with("\r\n\r\n"));
  EXPECT_NE(answer.find("Content-Length: "), std::string::npos);
}

TEST(ServerThread, RefusesABodyOf100MegabytesBeforeItComes) {
  RunningServer shop;
  LineClient line(shop.port());
  line.send(
      "POST /api/v1/session HTTP/1.1\r\nHost: localhost\r\nContent-Length: 104857600\r\n\r\n");
  const auto begin = steady_clock::now();
  EXPECT_EQ(statusOf(line.receive("\r\n\r\n")), 413);
  EXPECT_LT(steady_clock::now() - begin, std::chrono::seconds(5));
  EXPECT_EQ(statusOf(shop.ask(get("/health", kClose))), 200);
}

TEST(ServerThread, RefusesAnEndlessBodyOfChunks) {
  RunningServer shop;
  LineClient line(shop.port());
  line.send(
      "POST /api/v1/session HTTP/1.1\r\nHost: localhost\r\nTransfer-Encoding: chunked\r\n\r\n");
  const std::string chunk = "10000\r\n" + std::string(0x10000, 'a') + "\r\n";
  for (int i = 0; i < 20 && line.send(chunk); ++i) {
  }
  EXPECT_EQ(statusOf(line.receive("\r\n\r\n")), 413);
}

TEST(ServerThread, RefusesAHeaderOfMoreThanEightKilobytes) {
  RunningServer shop;
  EXPECT_EQ(statusOf(shop.ask(get("/health", "X: " + std::string(9'000, 'x') + "\r\n"))), 431);
  EXPECT_EQ(statusOf(shop.ask(get("/" + std::string(5'000, 'x'), kClose))), 414);
}

TEST(ServerThread, RefusesWhatIsNoRequest) {
  RunningServer shop;
  for (const char* const text :
       {"\r\n\r\n", "GET\r\n\r\n", "GET /health\r\n\r\n", "GET /health HTTP/9.9\r\n\r\n",
        "G(T /health HTTP/1.1\r\nHost: localhost\r\n\r\n",
        "GET /health HTTP/1.1\r\nHost localhost\r\n\r\n",
        "POST / HTTP/1.1\r\nHost: localhost\r\nContent-Length: -1\r\n\r\n",
        "POST / HTTP/1.1\r\nHost: localhost\r\nContent-Length: 1\r\nContent-Length: 2\r\n\r\n",
        "\x16\x03\x01\x02\x00\x01\x00\x01\xfc\x03\x03"}) {
    EXPECT_EQ(statusOf(shop.ask(text)), 400) << text;
  }
  EXPECT_EQ(statusOf(shop.ask("GET /health HTTP/1.1\r\nConnection: close\r\n\r\n")), 400)
      << "no host";
  EXPECT_EQ(
      statusOf(shop.ask("BREW /health HTTP/1.1\r\nHost: localhost\r\nConnection: close\r\n\r\n")),
      405);
}

TEST(ServerThread, ClosesALineWhoseHeaderComesTooSlowly) {
  web::ServerOptions options = quiet();
  options.headerSeconds = 1;
  RunningServer shop(options);
  LineClient line(shop.port());
  const auto begin = steady_clock::now();
  bool isOpen = true;
  for (int i = 0; i < 50 && isOpen; ++i) {
    isOpen = line.send("G");
    line.receive({}, 100);
    isOpen = isOpen && line.timedOut();
    if (steady_clock::now() - begin > std::chrono::seconds(4)) break;
  }
  line.receive({}, 3'000);
  EXPECT_LT(steady_clock::now() - begin, std::chrono::seconds(4));
}

TEST(ServerThread, ClosesALineWhoseBodyComesTooSlowly) {
  web::ServerOptions options = quiet();
  options.headerSeconds = 1;
  options.slowestBytes = 100'000;
  RunningServer shop(options);
  LineClient line(shop.port());
  line.send(
      "POST /api/v1/session HTTP/1.1\r\nHost: localhost\r\nContent-Length: 100000\r\n\r\nabc");
  const auto begin = steady_clock::now();
  EXPECT_EQ(line.receive(), "");
  EXPECT_FALSE(line.timedOut());
  EXPECT_LT(steady_clock::now() - begin, std::chrono::seconds(5));
}

TEST(ServerThread, ClosesALineThatIsIdle) {
  web::ServerOptions options = quiet();
  options.idleSeconds = 1;
  RunningServer shop(options);
  LineClient line(shop.port());
  line.send(get("/health"));
  EXPECT_EQ(statusOf(line.receive("\"uptime\"")), 200);
  EXPECT_EQ(line.receive({}, 5'000).find("HTTP"), std::string::npos);
  EXPECT_FALSE(line.timedOut());
}

TEST(ServerThread, HoldsTwoThousandConnectionsAndNoMoreThanItMay) {
  constexpr std::size_t kLines = 2'000;
  web::ServerOptions options = quiet();
  options.mostConnections = kLines;
  options.mostOfAddress = kLines;
  RunningServer shop(options);
  if (!shop.server().warnings().empty()) GTEST_SKIP() << shop.server().warnings().front();
  std::vector<std::unique_ptr<LineClient>> lines;
  for (std::size_t i = 0; i < kLines; ++i) {
    lines.push_back(std::make_unique<LineClient>(shop.port()));
    ASSERT_TRUE(lines.back()->isOpen()) << i;
  }
  for (std::size_t i = 0; i < kLines; i += 100) {
    lines[i]->send(get("/health"));
    EXPECT_EQ(statusOf(lines[i]->receive("\"uptime\"")), 200) << i;
  }
  LineClient oneMore(shop.port());
  oneMore.send(get("/health"));
  EXPECT_EQ(oneMore.receive({}, 3'000), "");
  EXPECT_FALSE(oneMore.timedOut());
}

TEST(ServerThread, TakesSoManyConnectionsOfAnAddress) {
  web::ServerOptions options = quiet();
  options.mostOfAddress = 2;
  RunningServer shop(options);
  LineClient first(shop.port());
  LineClient second(shop.port());
  second.send(get("/health"));
  EXPECT_EQ(statusOf(second.receive("\"uptime\"")), 200);
  EXPECT_EQ(shop.ask(get("/health")), "");
}

TEST(ServerThread, TakesSoManyRequestsASecondOfAnAddress) {
  web::ServerOptions options = quiet();
  options.requestsPerSecond = 1;
  RunningServer shop(options);
  EXPECT_EQ(statusOf(shop.ask(get("/health", kClose))), 200);
  EXPECT_EQ(statusOf(shop.ask(get("/health", kClose))), 200);
  const std::string limited = shop.ask(get("/health", kClose));
  EXPECT_EQ(statusOf(limited), 429);
  EXPECT_NE(limited.find("Retry-After: 1\r\n"), std::string::npos);
}

TEST(ServerThread, TellsAStreamWhatHappens) {
  RunningServer shop;
  const std::string key = web::makeKey("screen", "office.read");
  LineClient line(shop.port());
  line.send(get("/api/v1/events", "Authorization: Bearer " + key + "\r\n"));
  EXPECT_EQ(statusOf(line.receive("event: hello")), 200);
  shop.server().application().events().publish("sale", {{"ticket", 17}});
  EXPECT_NE(line.receive("\n\n").find("event: sale\ndata: {\"ticket\":17}"), std::string::npos);
  EXPECT_EQ(statusOf(shop.ask(get("/api/v1/events", kClose))), 401);
}

TEST(ServerThread, DropsAStreamThatNobodyReads) {
  RunningServer shop;
  const std::string key = web::makeKey("screen", "office.read");
  LineClient line(shop.port());
  line.send(get("/api/v1/events", "Authorization: Bearer " + key + "\r\n"));
  line.receive("event: hello");
  const std::string text(100'000, 'x');
  for (int i = 0; i < 2'000; ++i) {
    shop.server().application().events().publish("change", {{"text", text}});
    if (i % 100 != 0) continue;
    EXPECT_EQ(statusOf(shop.ask(get("/health", kClose))), 200);
  }
  // What the system holds for the line is still there; behind it, its end.
  const std::string rest = line.receive({}, 20'000);
  EXPECT_FALSE(line.timedOut());
  EXPECT_LT(rest.size(), 2'000 * text.size());
}

TEST(ServerThread, EndsWhenAllIsAnswered) {
  RunningServer shop;
  shop.run("INSERT INTO Empleados (Codigo, Nombre, Activo) VALUES ('1', 'Ana', True)");
  web::setPin("1", "1234", "owner");
  LineClient idle(shop.port());
  LineClient busy(shop.port());
  const std::string body = R"({"employee":"1","pin":"1234"})";
  busy.send(
      "POST /api/v1/session HTTP/1.1\r\nHost: localhost\r\nContent-Type: application/json\r\n"
      "Expect: 100-continue\r\nContent-Length: " +
      std::to_string(body.size()) + "\r\n\r\n");
  EXPECT_NE(busy.receive("100 Continue").find("100"), std::string::npos);
  busy.send(body);
  const std::uint16_t port = shop.port();
  std::this_thread::sleep_for(std::chrono::milliseconds(20));
  EXPECT_TRUE(shop.stop());
  const std::string answer = busy.receive();
  EXPECT_NE(answer.find("HTTP/1.1 200"), std::string::npos) << answer;
  EXPECT_EQ(idle.receive({}, 1'000), "");
  EXPECT_FALSE(LineClient(port).isOpen());
}

TEST(ServerThread, SpeaksTlsByACertificate) {
  const TemporaryFolder folder;
  const std::string make =
      "openssl req -x509 -newkey rsa:2048 -nodes -days 2 -subj /CN=localhost -addext "
      "subjectAltName=DNS:localhost -keyout " +
      folder.file("key.pem") + " -out " + folder.file("shop.pem") + " 2>/dev/null";
  ASSERT_EQ(std::system(make.c_str()), 0);
  web::ServerOptions options = quiet();
  options.certificate = folder.file("shop.pem");
  options.key = folder.file("key.pem");
  RunningServer shop(options);
  EXPECT_TRUE(shop.server().url().starts_with("https://"));
  const auto client = [&](const std::string& more) {
    const std::string line =
        "printf 'GET /health HTTP/1.1\\r\\nHost: localhost\\r\\nConnection: close\\r\\n\\r\\n' | "
        "openssl s_client -quiet -verify_return_error -verify_hostname localhost -CAfile " +
        folder.file("shop.pem") + " -connect 127.0.0.1:" + std::to_string(shop.port()) + " " +
        more + " > " + folder.file("answer") + " 2>/dev/null";
    const int code = std::system(line.c_str());
    std::ifstream file(folder.file("answer"));
    return code == 0 ? std::string(std::istreambuf_iterator<char>(file), {}) : std::string();
  };
  const std::string answer = client("");
  EXPECT_EQ(statusOf(answer), 200);
  EXPECT_NE(answer.find("Strict-Transport-Security"), std::string::npos);
  EXPECT_EQ(client("-tls1_1"), "");
  EXPECT_EQ(statusOf(shop.ask(get("/health"))), 0) << "and nothing else";
}

TEST(Server, ListensForOthersOnlyWhenGuarded) {
  Shop shop;
  web::ServerOptions options = quiet();
  options.address = "0.0.0.0";
  const auto listens = [&] {
    return errorOf([&] { web::Server(shop.installationPtr(), options); }) == 0;
  };
  EXPECT_FALSE(listens());
  options.isBehindProxy = true;
  EXPECT_TRUE(listens());
  options.isBehindProxy = false;
  options.isOpen = true;
  EXPECT_TRUE(listens());
  options.address = "shop.example";
  EXPECT_FALSE(listens());
}

TEST(Server, NeedsACertificateWithItsKey) {
  Shop shop;
  web::ServerOptions options = quiet();
  options.certificate = "none.pem";
  EXPECT_EQ(errorOf([&] { web::Server(shop.installationPtr(), options); }), errors::kInvalidCall);
  options.key = "none.pem";
  EXPECT_EQ(errorOf([&] { web::Server(shop.installationPtr(), options); }), errors::kPathAccess);
}

TEST(ServerThread, IsAloneOnItsPort) {
  RunningServer shop;
  web::ServerOptions options = quiet();
  options.port = shop.port();
  EXPECT_EQ(errorOf([&] { web::Server(shop.installationPtr(), options); }), errors::kPathAccess);
}

TEST(ServerThread, BelievesAProxyAboutWhoAsks) {
  TemporaryFolder folder;
  web::ServerOptions options = quiet();
  options.isBehindProxy = true;
  options.log = folder.file("log");
  RunningServer shop(options);
  const std::string answer = shop.ask(get(
      "/health?q=secret",
      "X-Forwarded-For: 1.2.3.4, 10.0.0.9\r\nX-Forwarded-Proto: https\r\nConnection: close\r\n"));
  EXPECT_NE(answer.find("Strict-Transport-Security"), std::string::npos);
  shop.stop();
  shop.server();
  std::string log;
  for (int i = 0; i < 100 && log.find("/health") == std::string::npos; ++i) {
    std::this_thread::sleep_for(std::chrono::milliseconds(20));
    std::ifstream file(folder.file("log"));
    log.assign(std::istreambuf_iterator<char>(file), {});
  }
  EXPECT_NE(log.find("\"path\":\"/health\",\"status\":200"), std::string::npos) << log;
  EXPECT_NE(log.find("\"address\":\"10.0.0.9\""), std::string::npos) << log;
  EXPECT_EQ(log.find("secret"), std::string::npos);
}

TEST(WorkerPoolThread, TakesNoMoreThanMayWait) {
  WebShop shop;
  std::latch begun(1);
  std::latch goOn(1);
  int answered = 0;
  {
    web::WorkerPool pool(shop.application(), 1, 1);
    const web::Request request{.target = "/health", .headers = {{"host", "localhost"}}};
    EXPECT_TRUE(pool.give(request, [&](const web::Answer&, const web::Told&) {
      begun.count_down();
      goOn.wait();
      ++answered;
    }));
    begun.wait();
    const auto count = [&](const web::Answer&, const web::Told&) { ++answered; };
    EXPECT_TRUE(pool.give(request, count));
    EXPECT_FALSE(pool.give(request, count));
    goOn.count_down();
  }
  EXPECT_EQ(answered, 2) << "what waits is answered at the end";
}

TEST(RateLimit, GivesTokensBackWithTime) {
  web::RateLimit limit(2, 3);
  const auto start = steady_clock::time_point() + std::chrono::hours(1);
  for (int i = 0; i < 3; ++i) EXPECT_TRUE(limit.take("a", start));
  EXPECT_FALSE(limit.take("a", start));
  EXPECT_TRUE(limit.take("b", start));
  EXPECT_TRUE(limit.take("a", start + std::chrono::milliseconds(500)));
  EXPECT_FALSE(limit.take("a", start + std::chrono::milliseconds(500)));
}

TEST(RateLimit, RemembersABoundedCrowd) {
  web::RateLimit limit(1, 1);
  for (int i = 0; i < 50'000; ++i) EXPECT_TRUE(limit.take(std::to_string(i)));
}

}  // namespace
}  // namespace tavelor::test

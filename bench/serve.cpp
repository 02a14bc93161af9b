// SPDX-License-Identifier: MIT
// What the server adds to a sale, and how long tills wait when there are many: tavelor_served
// [TILLS [SECONDS]]. Sales have five lines, and each till sells once in five seconds. TMPDIR names
// the disk that commits go to; without it the shop lies in memory, and only the processor is
// measured.
#include <algorithm>
#include <chrono>
#include <cstdio>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

#include <fmt/format.h>

#include "tavelor/flows/sale.hpp"
#include "tavelor/flows/seed.hpp"
#include "tavelor/flows/shop.hpp"
#include "tavelor/services/apartment.hpp"
#include "tavelor/services/clock.hpp"
#include "tavelor/services/installation.hpp"
#include "tavelor/web/pins.hpp"
#include "tavelor/web/server.hpp"
#include "tests/support/sales.hpp"
#include "tests/support/temporary_folder.hpp"
#include "tests/web/line_client.hpp"

namespace tavelor::bench {

namespace {

using Clock = std::chrono::steady_clock;

constexpr int kLines = 5;
constexpr int kRounds = 20;
constexpr int kSalesOfRound = 25;
constexpr double kPause = 5;  // seconds between two sales of a till

double milliseconds(Clock::duration time) {
  return std::chrono::duration<double, std::milli>(time).count();
}

double at(std::vector<double>& values, double part) {
  std::sort(values.begin(), values.end());
  return values[std::min(values.size() - 1,
                         static_cast<std::size_t>(part * static_cast<double>(values.size())))];
}

/// A till that sells through the server, over a line that stays open.
class Till {
 public:
  Till(std::uint16_t port, std::string key) : line_(port), key_(std::move(key)) {}

  void sell(const flows::Sale& sale) {
    std::string lines;
    for (const flows::SaleLine& line : sale.lines) {
      lines +=
          fmt::format(R"({}{{"code":"{}","description":"{}","quantity":{},"price":{},"tax":{}}})",
                      lines.empty() ? "" : ",", line.code, line.description, line.quantity,
                      line.price, line.tax);
    }
    const std::string body = fmt::format(
        R"({{"key":"{}","till":"01","customer":"","name":"","payment":"1","delivered":0,"comment":"","lines":[{}]}})",
        sale.reference, lines);
    line_.send(
        fmt::format("POST /api/v1/sales HTTP/1.1\r\nHost: localhost\r\nAuthorization: Bearer {}\r\n"
                    "Content-Type: application/json\r\nContent-Length: {}\r\n\r\n{}",
                    key_, body.size(), body));
    const std::string answer = line_.receive("}");
    if (test::statusOf(answer) != 201) throw std::runtime_error(answer);
  }

 private:
  test::LineClient line_;
  std::string key_;
};

/// The same sale both ways, in turns.
void measureSale(std::uint16_t port, const std::string& key, flows::Shop& shop, Date today) {
  Till till(port, key);
  std::vector<double> bare;
  std::vector<double> served;
  int number = 0;
  for (int round = 0; round < kRounds; ++round) {
    for (int i = 0; i < kSalesOfRound; ++i) {
      const auto begin = Clock::now();
      shop.sell(test::saleOfArticles(fmt::format("B{}", ++number), kLines, today));
      bare.push_back(milliseconds(Clock::now() - begin));
    }
    for (int i = 0; i < kSalesOfRound; ++i) {
      const auto begin = Clock::now();
      till.sell(test::saleOfArticles(fmt::format("S{}", ++number), kLines, today));
      served.push_back(milliseconds(Clock::now() - begin));
    }
  }
  const double one = at(bare, 0.5);
  const double other = at(served, 0.5);
  fmt::print("a sale in process {:.2f} ms, by the server {:.2f} ms: {:.2f}\n", one, other,
             other / one);
}

void measureTills(std::uint16_t port, const std::string& key, Date today, int tills,
                  double seconds) {
  std::vector<double> waits;
  std::mutex mutex;
  std::vector<std::thread> threads;
  const auto start = Clock::now();
  for (int i = 0; i < tills; ++i) {
    threads.emplace_back([&, i] {
      Till till(port, key);
      std::chrono::duration<double> next(kPause * i / tills);
      for (int sale = 0; next.count() < seconds;
           ++sale, next += std::chrono::duration<double>(kPause)) {
        std::this_thread::sleep_until(start + std::chrono::duration_cast<Clock::duration>(next));
        const auto begin = Clock::now();
        till.sell(test::saleOfArticles(fmt::format("T{}-{}", i, sale), kLines, today));
        const double wait = milliseconds(Clock::now() - begin);
        const std::lock_guard lock(mutex);
        waits.push_back(wait);
      }
    });
  }
  for (std::thread& thread : threads) thread.join();
  const std::size_t count = waits.size();
  fmt::print(
      "{} tills, {} sales in {:.0f} s: half within {:.1f} ms, 99 of 100 within {:.1f} ms, all "
      "within {:.1f} ms\n",
      tills, count, seconds, at(waits, 0.5), at(waits, 0.99), at(waits, 1));
}

void measure(int tills, double seconds) {
  const test::TemporaryFolder folder;
  const auto installation = Installation::create(folder.file("shop"));
  Apartment apartment(installation);
  flows::seedCatalogues();
  flows::Shop shop;
  shop.openTills({"01"});
  const Date today = apartment.clock().today();
  const std::string key = web::makeKey("bench", "till.* office.read");
  web::Server server(installation, {.port = 0, .requestsPerSecond = 0, .log = "-"});
  std::thread runs([&] { server.run(); });
  measureSale(server.port(), key, shop, today);
  measureTills(server.port(), key, today, tills, seconds);
  server.stop();
  runs.join();
}

}  // namespace

}  // namespace tavelor::bench

int main(int argc, char** argv) {
  try {
    tavelor::bench::measure(argc > 1 ? std::stoi(argv[1]) : 50, argc > 2 ? std::stod(argv[2]) : 30);
    return 0;
  } catch (const std::exception& error) {
    std::fprintf(stderr, "%s\n", error.what());
    return 1;
  }
}

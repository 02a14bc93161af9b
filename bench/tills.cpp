// SPDX-License-Identifier: MIT
// Many tills of one shop on a server, each at its own pace: how long their customers wait. Used by
// bench/thousand-tills, which starts the server.
#include <algorithm>
#include <atomic>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <exception>
#include <mutex>
#include <semaphore>
#include <stdexcept>
#include <thread>
#include <vector>

#include <fmt/format.h>

#include "bench/server.hpp"
#include "tavelor/flows/seed.hpp"
#include "tavelor/flows/shop.hpp"
#include "tavelor/services/apartment.hpp"
#include "tavelor/services/clock.hpp"
#include "tavelor/services/installation.hpp"
#include "tests/support/sales.hpp"
#include "tests/support/temporary_folder.hpp"

namespace tavelor::bench {

namespace {

using Clock = std::chrono::steady_clock;
using Seconds = std::chrono::duration<double>;

constexpr int kArticles = 1'000;
constexpr int kLines = 3;
constexpr int kFirst = 1'000'000;  // turn of what a till sells before its customers come
// Shops do not switch on all tills in the same second; a server that makes a process for each of a
// thousand lets some of them wait longer than they are willing to.
constexpr int kOpenAtOnce = 8;

struct Plan {
  int tills = 1'000;
  double seconds = 300;
  double every = 20;  // seconds
};

std::string tillCode(int till) {
  return fmt::format("{:04}", till);
}

flows::Sale saleOf(int till, int turn, Date day) {
  flows::Sale sale = test::saleOfArticles(fmt::format("{}-{}", till, turn), kLines, day);
  sale.till = tillCode(till);
  int place = 0;
  for (flows::SaleLine& line : sale.lines) {
    line.code = fmt::format("A{:04}", (till * 31 + turn * 7 + place++ * 331) % kArticles);
  }
  return sale;
}

/// So that no till makes one on the way.
void makeArticles(flows::Shop& shop, Date day) {
  for (int code = 0; code < kArticles; code += 50) {
    flows::Sale sale = saleOf(0, -1 - code, day);
    sale.till = tillCode(1);
    sale.lines.resize(50, sale.lines.front());
    int next = code;
    for (flows::SaleLine& line : sale.lines) line.code = fmt::format("A{:04}", next++);
    shop.sell(sale);
  }
}

/// What all tills have seen.
struct Seen {
  std::mutex mutex;
  std::vector<double> milliseconds{};
  std::vector<std::string> errors{};
  std::atomic<int> open = 0;
  std::counting_semaphore<kOpenAtOnce> opening{kOpenAtOnce};
};

void sellAt(int till, const Plan& plan, const std::shared_ptr<Installation>& installation,
            Seen& seen, const std::atomic<bool>& hasBegun) {
  std::vector<double> taken;
  std::string error;
  try {
    Apartment apartment(installation);
    const Date day = apartment.clock().today();
    flows::Shop shop;
    seen.opening.acquire();
    try {
      shop.sell(saleOf(till, kFirst, day));  // connects, and compiles its statements
    } catch (...) {
      seen.opening.release();
      throw;
    }
    seen.opening.release();
    ++seen.open;
    while (!hasBegun) std::this_thread::sleep_for(std::chrono::milliseconds(20));
    // Customers do not come at the same moment.
    Clock::time_point next =
        Clock::now() + std::chrono::duration_cast<Clock::duration>(
                           Seconds(plan.every * till / static_cast<double>(plan.tills)));
    const int sales = static_cast<int>(plan.seconds / plan.every);
    for (int turn = 0; turn < sales; ++turn) {
      std::this_thread::sleep_until(next);
      const Clock::time_point begun = Clock::now();
      if (!shop.sell(saleOf(till, turn, day))) throw std::runtime_error("a sale was there already");
      taken.push_back(Seconds(Clock::now() - begun).count() * 1e3);
      next += std::chrono::duration_cast<Clock::duration>(Seconds(plan.every));
    }
  } catch (const std::exception& failure) {
    error = fmt::format("till {}: {}", till, failure.what());
    ++seen.open;
  }
  const std::lock_guard lock(seen.mutex);
  seen.milliseconds.insert(seen.milliseconds.end(), taken.begin(), taken.end());
  if (!error.empty()) seen.errors.push_back(error);
}

int run(const Plan& plan) {
  const BenchDatabase database(benchServer());
  const test::TemporaryFolder folder;
  const auto installation =
      Installation::create(folder.path() / "shop", onServer({}, database.address()));
  {
    Apartment apartment(installation);
    flows::seedCatalogues();
    flows::Shop shop;
    std::vector<std::string> codes;
    for (int till = 1; till <= plan.tills; ++till) codes.push_back(tillCode(till));
    shop.openTills(codes);
    makeArticles(shop, apartment.clock().today());
  }
  ServerLine line = database.line();

  Seen seen;
  std::atomic<bool> hasBegun = false;
  std::vector<std::thread> tills;
  for (int till = 1; till <= plan.tills; ++till) {
    tills.emplace_back([&, till] { sellAt(till, plan, installation, seen, hasBegun); });
  }
  while (seen.open < plan.tills) std::this_thread::sleep_for(std::chrono::milliseconds(50));
  const std::string connections = line.run("SELECT count(*) FROM pg_stat_activity");
  const std::string before = line.run("SELECT count(*) FROM documents.\"Tickets\"");
  hasBegun = true;
  for (std::thread& till : tills) till.join();

  const long sold =
      std::stol(line.run("SELECT count(*) FROM documents.\"Tickets\"")) - std::stol(before);
  const std::string gaps = line.run(
      "SELECT max(\"Numero\") - min(\"Numero\") + 1 - count(*) FROM documents.\"Tickets\"");
  const auto wanted = static_cast<long>(plan.tills) * static_cast<long>(plan.seconds / plan.every);
  std::sort(seen.milliseconds.begin(), seen.milliseconds.end());
  const auto part = [&](double share) {
    if (seen.milliseconds.empty()) return 0.0;
    const auto place =
        static_cast<std::size_t>(share * static_cast<double>(seen.milliseconds.size()));
    return seen.milliseconds[std::min(place, seen.milliseconds.size() - 1)];
  };
  fmt::print(
      "| tills | connections | seconds | sales wanted | sales in | numbers missing | median ms | "
      "99 "
      "of 100 ms | slowest ms |\n"
      "|---:|---:|---:|---:|---:|---:|---:|---:|---:|\n"
      "| {} | {} | {:.0f} | {} | {} | {} | {:.1f} | {:.1f} | {:.1f} |\n",
      plan.tills, connections, plan.seconds, wanted, sold, gaps, part(0.5), part(0.99), part(1));
  for (const std::string& error : seen.errors) fmt::print(stderr, "{}\n", error);
  return sold == wanted && gaps == "0" && seen.errors.empty() ? 0 : 1;
}

}  // namespace

}  // namespace tavelor::bench

int main(int count, char** arguments) {
  tavelor::bench::Plan plan;
  if (count > 1) plan.tills = std::atoi(arguments[1]);
  if (count > 2) plan.seconds = std::atof(arguments[2]);
  if (count > 3) plan.every = std::atof(arguments[3]);
  if (tavelor::bench::benchServer().empty() || plan.tills < 1 || plan.every <= 0) {
    fmt::print(
        stderr,
        "usage: TAVELOR_BENCH_SERVER='host=.. user=..' tavelor_tills [TILLS [SECONDS [EVERY]]]\n");
    return 2;
  }
  try {
    return tavelor::bench::run(plan);
  } catch (const std::exception& error) {
    fmt::print(stderr, "{}\n", error.what());
    return 1;
  }
}

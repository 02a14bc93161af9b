// SPDX-License-Identifier: MIT
// Rounds, medians and the report's text.
#include "bench/runner.hpp"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <fstream>
#include <stdexcept>
#include <thread>
#include <utility>

#include <fmt/format.h>
#include <malloc.h>
#include <sqlite3.h>
#include <unistd.h>

namespace tavelor::bench {

namespace {

double now(bool waits) {
  timespec time{};
  clock_gettime(waits ? CLOCK_MONOTONIC : CLOCK_PROCESS_CPUTIME_ID, &time);
  return static_cast<double>(time.tv_sec) * 1e3 + static_cast<double>(time.tv_nsec) / 1e6;
}

struct Sample {
  double milliseconds = 0;
  double check = 0;
};

/// The heap joins small blocks that were freed when it is next asked for a large one. Those of one
/// side are joined before the other begins, which would pay for it else.
void tidyHeap() {
  constexpr std::size_t kLarge = 64UL * 1024;
  void* volatile room = std::malloc(kLarge);  // the compiler leaves out what it sees to be unused
  std::free(room);
}

Sample once(const Side& side, bool waits) {
  if (side.before) side.before();
  tidyHeap();
  const double begin = now(waits);
  const double check = side.work();
  const double end = now(waits);
  if (side.after) side.after();
  return {end - begin, check};
}

double median(std::vector<double> values) {
  const auto middle = values.begin() + static_cast<std::ptrdiff_t>(values.size() / 2);
  std::nth_element(values.begin(), middle, values.end());
  return *middle;
}

std::string processor() {
  std::ifstream info("/proc/cpuinfo");
  for (std::string line; std::getline(info, line);) {
    if (line.starts_with("model name")) {
      const auto colon = line.find(": ");
      if (colon != std::string::npos) return line.substr(colon + 2);
    }
  }
  return "unknown processor";
}

std::string compiler() {
#ifdef __clang__
  return fmt::format("clang {}", __clang_version__);
#else
  return fmt::format("g++ {}", __VERSION__);
#endif
}

std::string today() {
  char text[16];
  const std::time_t now = std::time(nullptr);
  std::tm civil{};
  gmtime_r(&now, &civil);
  std::strftime(text, sizeof text, "%Y-%m-%d", &civil);
  return text;
}

std::string amount(double value, const std::string& unit) {
  return fmt::format("{:.{}f} {}", value, value < 10 ? 3 : 1, unit);
}

/// Characters, not bytes: letters with accents take two.
std::size_t width(const std::string& text) {
  return static_cast<std::size_t>(std::count_if(text.begin(), text.end(), [](char c) {
    return (static_cast<unsigned char>(c) & 0xC0) != 0x80;
  }));
}

std::string markdown(const std::vector<std::string>& columns,
                     const std::vector<std::vector<std::string>>& rows) {
  std::vector<std::size_t> widths;
  for (const auto& column : columns) widths.push_back(width(column));
  for (const auto& row : rows) {
    for (std::size_t i = 0; i < row.size(); ++i) widths[i] = std::max(widths[i], width(row[i]));
  }
  std::string text;
  const auto line = [&](const std::vector<std::string>& cells) {
    for (std::size_t i = 0; i < cells.size(); ++i) {
      const std::string pad(widths[i] - width(cells[i]), ' ');
      text += i == 0 ? "| " + cells[i] + pad : " | " + pad + cells[i];
    }
    text += " |\n";
  };
  line(columns);
  for (std::size_t i = 0; i < columns.size(); ++i) {
    text += (i == 0 ? "|:" : "|-") + std::string(widths[i], '-') + (i == 0 ? "-" : ":");
  }
  text += "|\n";
  for (const auto& row : rows) line(row);
  return text;
}

}  // namespace

Result compare(const Comparison& comparison, const Scale& scale) {
  // The first turn of each warms the caches and shows that both do the same.
  const double expected = once(comparison.floor, comparison.waits).check;
  const double given = once(comparison.ours, comparison.waits).check;
  if (std::abs(expected - given) > 1e-6 * std::max(1.0, std::abs(expected))) {
    throw std::runtime_error(
        fmt::format("{}: by hand it gives {}, here {}", comparison.work, expected, given));
  }
  std::vector<double> floor;
  std::vector<double> ours;
  for (std::size_t round = 0; round < scale.rounds; ++round) {
    // Who comes first changes, so that neither always meets the other's leavings.
    const bool floorFirst = round % 2 == 0;
    if (floorFirst) floor.push_back(once(comparison.floor, comparison.waits).milliseconds);
    ours.push_back(once(comparison.ours, comparison.waits).milliseconds);
    if (!floorFirst) floor.push_back(once(comparison.floor, comparison.waits).milliseconds);
  }
  return {comparison.work, comparison.rows, median(floor), median(ours), "ms", comparison.target};
}

double measure(const Side& side, const Scale& scale) {
  once(side, false);
  std::vector<double> times;
  for (std::size_t round = 0; round < scale.rounds; ++round)
    times.push_back(once(side, false).milliseconds);
  return median(times);
}

std::size_t residentBytes() {
  malloc_trim(0);
  std::size_t pages = 0;
  std::size_t resident = 0;
  std::ifstream("/proc/self/statm") >> pages >> resident;
  return resident * static_cast<std::size_t>(sysconf(_SC_PAGESIZE));
}

void Report::add(Result result) {
  fmt::print(stderr, "{:<58} {:>12} {:>12}  {:.2f}{}\n", result.work,
             amount(result.floor, result.unit), amount(result.ours, result.unit), result.ratio(),
             result.met() ? "" : "  MISSED");
  results_.push_back(std::move(result));
}

bool Report::allMet() const {
  return std::all_of(results_.begin(), results_.end(), [](const Result& r) { return r.met(); });
}

std::string Report::text() const {
  std::string text = fmt::format(
      "{} cores, {} · {} · SQLite {} · {}\nMedians of the "
      "processor's time, of the clock where a disk is waited for.\n\n",
      std::thread::hardware_concurrency(), processor(), compiler(), sqlite3_libversion(), today());
  std::vector<std::vector<std::string>> rows;
  for (const Result& r : results_) {
    rows.push_back({r.work, std::to_string(r.rows), amount(r.floor, r.unit), amount(r.ours, r.unit),
                    fmt::format("{:.2f}", r.ratio()),
                    r.target == 0 ? "" : fmt::format("{:.2f}", r.target),
                    r.target == 0 ? ""
                    : r.met()     ? "yes"
                                  : "NO"});
  }
  text += markdown({"work", "rows", "by hand", "Tavelor", "ratio", "target", "met"}, rows);
  for (const Table& table : tables_) {
    text += fmt::format("\n## {}\n\n{}", table.title, markdown(table.columns, table.rows));
  }
  for (const std::string& note : notes_) text += "\n" + note + "\n";
  return text;
}

}  // namespace tavelor::bench

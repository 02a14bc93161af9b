// SPDX-License-Identifier: MIT
// Runs the measurements that are asked for and prints their report.
#include <array>
#include <cstdio>
#include <cstring>
#include <exception>
#include <fstream>
#include <sstream>
#include <string>
#include <vector>

#include <fmt/format.h>

#include "bench/works.hpp"

namespace {

using tavelor::bench::Report;
using tavelor::bench::Scale;

struct Work {
  const char* name;
  void (*run)(Report&, const Scale&);
};

constexpr std::array kWorks{
    Work{"cursor", tavelor::bench::measureCursor},
    Work{"page", tavelor::bench::measurePage},
    Work{"statements", tavelor::bench::measureStatements},
    Work{"sale", tavelor::bench::measureSale},
    Work{"sales", tavelor::bench::measureSales},
    Work{"articles", tavelor::bench::measureArticles},
    Work{"customers", tavelor::bench::measureCustomers},
    Work{"stock", tavelor::bench::measureStock},
    Work{"receive", tavelor::bench::measureReceive},
    Work{"ledger", tavelor::bench::measureLedger},
    Work{"agenda", tavelor::bench::measureAgenda},
    Work{"import", tavelor::bench::measureImport},
    Work{"search", tavelor::bench::measureSearch},
    Work{"translation", tavelor::bench::measureTranslation},
    Work{"growth", tavelor::bench::measureGrowth},
    Work{"years", tavelor::bench::measureYears},
    Work{"storage", tavelor::bench::measureStorage},
    Work{"records", tavelor::bench::measureRecords},
    Work{"server", tavelor::bench::measureServer},
#ifdef TAVELOR_BENCH_C
    Work{"c", tavelor::bench::measureC},
#endif
#ifdef TAVELOR_BENCH_QT
    Work{"qt", tavelor::bench::measureQt},
#endif
};

constexpr std::string_view kUsage =
    "usage: tavelor_bench [--quick] [--rounds N] [--write FILE] [WORK...]\n"
    "  --quick       a hundredth of the rows, one round: shows that all works run\n"
    "  --rounds N    turns a work, 15 without it; the median counts\n"
    "  --write FILE  keeps the report there too\n"
    "works:";

/// In the place of the earlier report. What another program has measured stays behind it.
void keep(const std::string& file, const std::string& text) {
  std::ostringstream before;
  before << std::ifstream(file).rdbuf();
  const std::string earlier = before.str();
  const std::size_t others = earlier.find("\n## Tills of one shop on a server");
  std::ofstream(file) << "# Measurements\n\n"
                      << text << (others == std::string::npos ? "" : earlier.substr(others));
}

int usage() {
  fmt::print(stderr, "{}", kUsage);
  for (const Work& work : kWorks) fmt::print(stderr, " {}", work.name);
  fmt::print(stderr, "\n");
  return 2;
}

}  // namespace

int main(int count, char** arguments) {
  Scale scale;
  std::string file;
  std::vector<Work> chosen;
  for (int i = 1; i < count; ++i) {
    const std::string_view word = arguments[i];
    if (word == "--quick") {
      scale = {true, 1};
    } else if (word == "--rounds" && i + 1 < count && std::atoi(arguments[i + 1]) > 0) {
      scale.rounds = static_cast<std::size_t>(std::atoi(arguments[++i]));
    } else if (word == "--write" && i + 1 < count) {
      file = arguments[++i];
    } else {
      const std::size_t before = chosen.size();
      for (const Work& work : kWorks) {
        if (word == work.name) chosen.push_back(work);
      }
      if (chosen.size() == before) return usage();
    }
  }
  if (chosen.empty()) chosen.assign(kWorks.begin(), kWorks.end());

  try {
    Report report;
    for (const Work& work : chosen) work.run(report, scale);
    const std::string text = report.text();
    fmt::print("\n{}", text);
    if (!file.empty()) keep(file, text);
    return 0;
  } catch (const std::exception& error) {
    fmt::print(stderr, "{}\n", error.what());
    return 1;
  }
}

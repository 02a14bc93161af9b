// SPDX-License-Identifier: MIT
// Measures our work beside the floor: the same work done by hand, in the same run, turn by turn.
#pragma once

#include <cstddef>
#include <functional>
#include <string>
#include <vector>

namespace tavelor::bench {

/// One way to do a piece of work. Only `work` is timed. What it gives must be equal on both sides:
/// a count, a sum, whatever shows that the same was done.
struct Side {
  std::function<double()> work;
  std::function<void()> before = {};
  std::function<void()> after = {};
};

struct Comparison {
  std::string work;
  std::size_t rows = 0;
  double target = 0;  ///< greatest ratio that is good enough; 0 for none
  Side floor;
  Side ours;
  /// Time by the clock on the wall, for what waits for a disk; else by the processor, which other
  /// programs on the machine do not disturb.
  bool waits = false;
};

/// A line of the report.
struct Result {
  std::string work;
  std::size_t rows = 0;
  double floor = 0;
  double ours = 0;
  std::string unit = "ms";
  double target = 0;

  double ratio() const { return ours / floor; }
  bool met() const { return target == 0 || ratio() <= target; }
};

/// A table beside the comparisons.
struct Table {
  std::string title;
  std::vector<std::string> columns;
  std::vector<std::vector<std::string>> rows;
};

/// How much is measured: the smallest round tells that everything works, not how fast.
struct Scale {
  bool quick = false;
  std::size_t rounds = 15;
  std::size_t of(std::size_t rows) const { return quick ? (rows + 99) / 100 : rows; }
};

class Report {
 public:
  void add(Result result);
  void add(Table table) { tables_.push_back(std::move(table)); }
  void note(std::string line) { notes_.push_back(std::move(line)); }
  /// Markdown, which reads well on a terminal too.
  std::string text() const;
  bool allMet() const;

 private:
  std::vector<Result> results_;
  std::vector<Table> tables_;
  std::vector<std::string> notes_;
};

/// Medians of rounds that alternate between the two sides. Raises std::runtime_error when the sides
/// do not give the same.
Result compare(const Comparison& comparison, const Scale& scale);

/// Median of the processor's time of one side, in milliseconds.
double measure(const Side& side, const Scale& scale);

/// Bytes of memory that the process has, what the allocator can give back not counted.
std::size_t residentBytes();

}  // namespace tavelor::bench

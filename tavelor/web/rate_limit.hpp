// SPDX-License-Identifier: MIT
// How often somebody may come.
#pragma once

#include <chrono>
#include <cstddef>
#include <mutex>
#include <string>
#include <string_view>
#include <unordered_map>

namespace tavelor::web {

/// A bucket for each name, an address: what comes takes a token, and tokens come back with time.
/// Any thread may ask.
class RateLimit {
 public:
  using Moment = std::chrono::steady_clock::time_point;

  /// So many tokens a second, and so many in a full bucket. 0 a second: no limit.
  RateLimit(double perSecond, double most) : perSecond_(perSecond), most_(most) {}

  /// Whether there was a token.
  bool take(std::string_view name, Moment now = std::chrono::steady_clock::now());
  /// Until there is one again.
  int seconds() const;

 private:
  static constexpr std::size_t kMostBuckets = 10'000;
  struct Bucket {
    double tokens = 0;
    Moment at;
  };
  double tokensOf(const Bucket& bucket, Moment now) const;
  void dropFull(Moment now);

  double perSecond_;
  double most_;
  std::mutex mutex_;
  std::unordered_map<std::string, Bucket> buckets_;
};

}  // namespace tavelor::web

// SPDX-License-Identifier: MIT
// How often somebody may come.
#include "tavelor/web/rate_limit.hpp"

#include <algorithm>
#include <cmath>

namespace tavelor::web {

double RateLimit::tokensOf(const Bucket& bucket, Moment now) const {
  const std::chrono::duration<double> passed = now - bucket.at;
  return std::min(most_, bucket.tokens + std::max(0.0, passed.count()) * perSecond_);
}

// One that is full again says nothing. Where all are in use the crowd starts anew: memory is
// bounded, and who has that many addresses is stopped by no limit of each.
void RateLimit::dropFull(Moment now) {
  std::erase_if(buckets_, [&](const auto& each) { return tokensOf(each.second, now) >= most_; });
  if (buckets_.size() >= kMostBuckets) buckets_.clear();
}

bool RateLimit::take(std::string_view name, Moment now) {
  if (perSecond_ <= 0) return true;
  const std::lock_guard lock(mutex_);
  if (buckets_.size() >= kMostBuckets) dropFull(now);
  Bucket& bucket = buckets_.try_emplace(std::string(name), Bucket{most_, now}).first->second;
  bucket.tokens = tokensOf(bucket, now);
  bucket.at = now;
  if (bucket.tokens < 1) return false;
  bucket.tokens -= 1;
  return true;
}

int RateLimit::seconds() const {
  return std::max(1, static_cast<int>(std::ceil(1 / perSecond_)));
}

}  // namespace tavelor::web

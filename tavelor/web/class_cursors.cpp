// SPDX-License-Identifier: MIT
// Lists that are open.
#include "tavelor/web/class_cursors.hpp"

#include <algorithm>

namespace tavelor::web {

void ClassCursor::show(const std::string& filter, const std::string& order) const {
  if (rows->Filter() != filter) rows->Filter(filter);
  const std::string& wanted = order.empty() ? ownOrder : order;
  if (rows->Sort() != wanted) rows->Sort(wanted);
}

ClassCursors::KeptPtr ClassCursors::take(const Place& place, std::uint64_t& version) {
  const std::lock_guard lock(mutex_);
  const auto changed = versions_.find(place.className);
  version = changed == versions_.end() ? 0 : changed->second;
  KeptPtr& kept = kept_[place];
  if (!kept) kept = std::make_shared<Kept>();
  kept->used = Clock::now();
  return kept;
}

/// Those that go, taken out of the list; they end outside of the lock, for rows may be many.
std::vector<ClassCursors::KeptPtr> ClassCursors::dropped(const Place& place) {
  std::vector<KeptPtr> gone;
  const Clock::time_point now = Clock::now();
  const auto drop = [&](auto entry) {
    gone.push_back(std::move(entry->second));
    return kept_.erase(entry);
  };
  for (auto entry = kept_.begin(); entry != kept_.end();) {
    const bool isIdle = !(entry->first == place) && now - entry->second->used > limits_.idle;
    entry = isIdle ? drop(entry) : std::next(entry);
  }
  /// The one that was used longest ago, of a caller or of all; never the one in use here.
  const auto oldest = [&](const std::string* caller) {
    auto found = kept_.end();
    for (auto entry = kept_.begin(); entry != kept_.end(); ++entry) {
      if (entry->first == place || (caller != nullptr && entry->first.caller != *caller)) continue;
      if (found == kept_.end() || entry->second->used < found->second->used) found = entry;
    }
    return found;
  };
  const auto isOfCaller = [&](const auto& entry) { return entry.first.caller == place.caller; };
  auto ofCaller = static_cast<std::size_t>(std::count_if(kept_.begin(), kept_.end(), isOfCaller));
  for (; ofCaller > limits_.mostOfCaller; --ofCaller) {
    const auto entry = oldest(&place.caller);
    if (entry == kept_.end()) break;
    drop(entry);
  }
  std::size_t bytes = 0;
  for (const auto& entry : kept_) bytes += entry.second->bytes;
  while (kept_.size() > limits_.most || bytes > limits_.mostBytes) {
    const auto entry = oldest(nullptr);
    if (entry == kept_.end()) break;
    bytes -= entry->second->bytes;
    drop(entry);
  }
  return gone;
}

void ClassCursors::put(Kept& kept, const Place& place) {
  const std::size_t bytes = kept.cursor.rows ? kept.cursor.rows->memory() : 0;
  std::vector<KeptPtr> gone;
  {
    const std::lock_guard lock(mutex_);
    kept.bytes = bytes;
    gone = dropped(place);
  }
}

void ClassCursors::use(const Place& place, Wanted wanted, const Open& open, const Work& work) {
  std::uint64_t version = 0;
  const KeptPtr kept = take(place, version);
  const std::lock_guard busy(kept->busy);
  const bool isOld = kept->version != version || wanted == Wanted::kAnew ||
                     (wanted == Wanted::kRecent && Clock::now() - kept->opened > limits_.fresh);
  if (!kept->cursor.rows || isOld) {
    kept->cursor = {};
    kept->cursor = open();
    kept->version = version;
    kept->opened = Clock::now();
  }
  work(kept->cursor);
  put(*kept, place);
}

void ClassCursors::changed(std::string_view className) {
  const std::lock_guard lock(mutex_);
  ++versions_[std::string(className)];
}

std::size_t ClassCursors::count() const {
  const std::lock_guard lock(mutex_);
  return kept_.size();
}

std::size_t ClassCursors::bytes() const {
  const std::lock_guard lock(mutex_);
  std::size_t bytes = 0;
  for (const auto& entry : kept_) bytes += entry.second->bytes;
  return bytes;
}

}  // namespace tavelor::web

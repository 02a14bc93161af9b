// SPDX-License-Identifier: MIT
// Lists that are open: rows that were read once and are paged through by many requests.
#pragma once

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <mutex>
#include <string>
#include <string_view>
#include <vector>

#include "tavelor/services/recordset/recordset.hpp"
#include "tavelor/web/class_shape.hpp"

namespace tavelor::web {

/// The rows of a mode as they were read, without a connection: any thread may show them, one at a
/// time.
struct ClassCursor {
  RecordsetPtr rows;
  ClassColumns columns;
  std::string ownOrder = {};  ///< in which they were opened

  /// Narrows and sorts where they are not so already.
  void show(const std::string& filter, const std::string& order) const;
};

/// Cursors by caller, class, mode and id. What nobody has asked for in a while is dropped, and the
/// oldest ones where there are too many or too many bytes. Any thread may use it.
class ClassCursors {
 public:
  struct Limits {
    std::size_t mostOfCaller = 6;
    std::size_t most = 200;
    std::size_t mostBytes = std::size_t{1} << 30U;
    std::chrono::seconds idle{600};
    /// Older rows are not recent.
    std::chrono::seconds fresh{10};
  };
  struct Place {
    std::string caller;
    std::string className;
    std::string mode;
    std::string id;
    auto operator<=>(const Place&) const = default;
  };
  /// Which rows are good enough: any that were read, those read a moment ago, or none.
  enum class Wanted : std::uint8_t { kAsRead, kRecent, kAnew };
  using Open = std::function<ClassCursor()>;
  using Work = std::function<void(ClassCursor&)>;

  ClassCursors() : ClassCursors(Limits{}) {}
  explicit ClassCursors(Limits limits) : limits_(limits) {}

  /// Runs `work` with the cursor of a place, which `open` makes where there is none, where its
  /// class was changed since, or where it is older than is wanted. Others that want the same one
  /// wait. What `open` or `work` raises comes through; a cursor whose `work`
  /// has raised stays.
  void use(const Place& place, Wanted wanted, const Open& open, const Work& work);
  /// Rows of a class were changed: the next request reads them anew.
  void changed(std::string_view className);

  std::size_t count() const;
  std::size_t bytes() const;

 private:
  using Clock = std::chrono::steady_clock;
  struct Kept {
    std::mutex busy;
    ClassCursor cursor;  ///< without rows until it was opened
    std::uint64_t version = 0;
    Clock::time_point opened;
    // These under the mutex of all.
    Clock::time_point used;
    std::size_t bytes = 0;
  };
  using KeptPtr = std::shared_ptr<Kept>;

  KeptPtr take(const Place& place, std::uint64_t& version);
  void put(Kept& kept, const Place& place);
  std::vector<KeptPtr> dropped(const Place& place);

  const Limits limits_;
  mutable std::mutex mutex_;
  std::map<Place, KeptPtr> kept_;
  std::map<std::string, std::uint64_t, std::less<>> versions_;  ///< of classes that were changed
};

}  // namespace tavelor::web

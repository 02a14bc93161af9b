// SPDX-License-Identifier: MIT
// A line to a server that takes its time, and that breaks when a test says so.
#pragma once

#include <atomic>
#include <chrono>
#include <cstddef>
#include <list>
#include <memory>
#include <mutex>
#include <string>
#include <thread>

namespace tavelor::test {

/// Listens on this computer and carries all that comes to a server and back, as a switch between
/// two machines does. Each connection has a thread of its own; all members may be called from any
/// thread.
class LineProxy {
 public:
  /// `server` is "127.0.0.1:5432", the folder of a local socket in that form, "/tmp:5432", or the
  /// socket's path; it is asked anew for each connection, and may come later, or again. `port` 0 is
  /// one that is free. Raises std::system_error when nobody can listen there.
  explicit LineProxy(const std::string& server, int port = 0);
  LineProxy(const LineProxy&) = delete;
  LineProxy& operator=(const LineProxy&) = delete;
  /// Cuts what is left.
  ~LineProxy();

  /// Of 127.0.0.1.
  int port() const { return port_; }

  /// How long all that comes from now on is under way, in either direction: half of a round trip.
  /// Nothing waits for what is before it, so that bytes which are sent at once arrive at once.
  void delayBy(std::chrono::microseconds oneWay) { delay_ = oneWay; }

  /// Breaks every connection. What is under way is lost, at both ends. Returns how many there were.
  std::size_t cut();
  /// The same, and whoever comes is hung up on until up().
  void down();
  void up() { isDown_ = false; }
  /// Breaks the connection by which that text is the next to go to the server: when the server has
  /// it, and has answered, and before anybody gets the answer. Once.
  void loseAnswerTo(const std::string& text);
  /// The same when the server has it, and may have done nothing about it yet.
  void breakBehind(const std::string& text);
  /// Connections so far.
  std::size_t taken() const { return taken_; }

 private:
  class Connection;

  void accept();
  void take(int client);
  /// Whether what goes to the server holds that text, which is forgotten then.
  bool isAwaited(std::string& text, const std::string& bytes);

  const std::string server_;
  std::atomic<std::chrono::microseconds> delay_{std::chrono::microseconds{0}};
  std::atomic<bool> isDown_ = false;
  std::atomic<bool> isEnding_ = false;
  std::atomic<std::size_t> taken_ = 0;
  std::mutex mutex_;
  std::string loses_;  // these three under mutex_
  std::string breaks_;
  std::list<std::unique_ptr<Connection>> connections_;
  int listener_ = -1;
  int port_ = 0;
  std::thread accepting_;
};

}  // namespace tavelor::test

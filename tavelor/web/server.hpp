// SPDX-License-Identifier: MIT
// The lines to browsers and programs: HTTP/1.1, over TLS or not.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <vector>

namespace tavelor {
class Installation;
}

namespace tavelor::web {

class Application;

/// Where and how a server listens. Times are seconds.
struct ServerOptions {
  std::string address = "127.0.0.1";
  std::uint16_t port = 8080;     ///< 0 takes a free one
  std::string certificate = {};  ///< PEM file, with those of who vouches; "" for no TLS
  std::string key = {};          ///< PEM file
  bool isBehindProxy = false;    ///< X-Forwarded-For and -Proto tell who asks, and how
  bool isOpen = false;  ///< listens beyond this machine without TLS or a proxy all the same
  std::vector<std::string> hosts = {};  ///< names by which it may be asked, see Application
  std::size_t workers = 0;              ///< threads; 0 for as many as cores, at least 2
  std::size_t mostWaiting = 256;        ///< requests for a worker; beyond: 503
  std::size_t mostConnections = 4096;   ///< beyond: closed
  std::size_t mostOfAddress = 512;      ///< connections of one address
  double requestsPerSecond = 500;       ///< of one address; 0 for no limit. Beyond: 429
  std::size_t mostBytes = std::size_t{1} << 20U;  ///< of a body; beyond: 413
  int headerSeconds = 10;                         ///< for a whole header
  int idleSeconds = 60;                           ///< between two requests
  int slowestBytes = 16 * 1024;                   ///< a second, of a body there and an answer back
  int stopSeconds = 10;                           ///< for what is being answered at the end
  std::string log = {};                           ///< file; "" for standard error, "-" for none
  bool takesSignals = false;  ///< SIGTERM and SIGINT stop it; a second one ends the program
};

/// Listens from its construction on, answers while run() runs.
class Server {
 public:
  /// Raises 5 for options that make no sense, above all an address that others can reach without
  /// TLS, 75 where it cannot listen or a file cannot be read.
  Server(std::shared_ptr<Installation> installation, ServerOptions options = {});
  ~Server();
  Server(const Server&) = delete;
  Server& operator=(const Server&) = delete;

  std::uint16_t port() const;
  /// "http://127.0.0.1:8080/".
  std::string url() const;
  Application& application();
  /// What is less than asked, a sentence each: connections, above all.
  const std::vector<std::string>& warnings() const;

  /// Until stop(), or a signal where it takes them: then no further line is taken, what is being
  /// answered is answered, and idle lines are closed. False where something was not answered within
  /// stopSeconds; its thread goes on until it is.
  bool run();
  /// By any thread.
  void stop();

 private:
  struct Inner;
  std::unique_ptr<Inner> inner_;
};

}  // namespace tavelor::web

// SPDX-License-Identifier: MIT
// The other end of a line to a server, as rude as a test wants it.
#pragma once

#include <chrono>
#include <cstdint>
#include <stdexcept>
#include <string>
#include <string_view>

#include <arpa/inet.h>
#include <netinet/in.h>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

namespace tavelor::test {

/// A connection over the loopback.
class LineClient {
 public:
  explicit LineClient(std::uint16_t port)
      : socket_(::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0)) {
    sockaddr_in place{};
    place.sin_family = AF_INET;
    place.sin_port = htons(port);
    place.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    isOpen_ = socket_ >= 0 &&
              ::connect(socket_, reinterpret_cast<const sockaddr*>(&place), sizeof place) == 0;
  }
  ~LineClient() {
    if (socket_ >= 0) ::close(socket_);
  }
  LineClient(const LineClient&) = delete;
  LineClient& operator=(const LineClient&) = delete;

  bool isOpen() const { return isOpen_; }
  /// False where the other end has closed.
  bool send(std::string_view bytes) {
    return ::send(socket_, bytes.data(), bytes.size(), MSG_NOSIGNAL) ==
           static_cast<ssize_t>(bytes.size());
  }
  /// Until the other end closes, `end` has come, or the time is over.
  std::string receive(std::string_view end = {}, int milliseconds = 10'000) {
    using Clock = std::chrono::steady_clock;
    const auto latest = Clock::now() + std::chrono::milliseconds(milliseconds);
    std::string text;
    while (end.empty() || text.find(end) == std::string::npos) {
      const auto rest =
          std::chrono::duration_cast<std::chrono::milliseconds>(latest - Clock::now());
      pollfd one{socket_, POLLIN, 0};
      if (rest.count() <= 0 || ::poll(&one, 1, static_cast<int>(rest.count())) <= 0) {
        timedOut_ = true;
        break;
      }
      char buffer[4096];  // NOLINT(*-avoid-c-arrays)
      const ssize_t got = ::recv(socket_, buffer, sizeof buffer, 0);
      if (got <= 0) break;
      text.append(buffer, static_cast<std::size_t>(got));
    }
    return text;
  }
  /// Whether the last receive() ended because nothing more came in time.
  bool timedOut() const { return timedOut_; }
  /// A whole exchange with a server that closes behind it.
  std::string ask(std::string_view request) {
    send(request);
    return receive();
  }

 private:
  int socket_;
  bool isOpen_ = false;
  bool timedOut_ = false;
};

/// "GET /health HTTP/1.1" with what it must have.
inline std::string get(std::string_view target, std::string_view headers = {}) {
  return std::string("GET ") + std::string(target) + " HTTP/1.1\r\nHost: localhost\r\n" +
         std::string(headers) + "\r\n";
}

/// The number in the first line of an answer; 0 for none.
inline int statusOf(std::string_view answer) {
  constexpr std::string_view kBegin = "HTTP/1.1 ";
  return answer.starts_with(kBegin) ? std::stoi(std::string(answer.substr(kBegin.size(), 3))) : 0;
}

}  // namespace tavelor::test

// SPDX-License-Identifier: MIT
// A line to a server that takes its time, and that breaks when a test says so.
#include "tests/support/line_proxy.hpp"

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstdint>
#include <cstring>
#include <deque>
#include <stdexcept>
#include <system_error>
#include <utility>

#include <arpa/inet.h>
#include <netinet/in.h>
#include <netinet/tcp.h>
#include <poll.h>
#include <sys/eventfd.h>
#include <sys/prctl.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

namespace tavelor::test {

namespace {

using std::chrono::nanoseconds;
using Clock = std::chrono::steady_clock;

// Who sends more than this without being read waits, as on any line.
constexpr std::size_t kMostUnderWay = std::size_t{4} * 1024 * 1024;
constexpr std::size_t kPiece = std::size_t{64} * 1024;

[[noreturn]] void failWith(const std::string& what) {
  throw std::system_error(errno, std::generic_category(), what);
}

template <typename Address>
const sockaddr* generic(const Address& address) {
  return reinterpret_cast<const sockaddr*>(&address);  // how sockets take theirs
}

sockaddr_in addressOf(const std::string& host, int port) {
  sockaddr_in address{};
  address.sin_family = AF_INET;
  address.sin_port = htons(static_cast<std::uint16_t>(port));
  if (::inet_pton(AF_INET, host.c_str(), &address.sin_addr) != 1) {
    throw std::invalid_argument("No address of a computer: " + host);
  }
  return address;
}

void dontGather(int socket) {
  const int yes = 1;
  ::setsockopt(socket, IPPROTO_TCP, TCP_NODELAY, &yes, sizeof yes);
}

/// The path of a socket that is told as a server's folder and port; anything else as it is.
std::string socketOf(const std::string& server) {
  const std::size_t colon = server.rfind(':');
  return server.starts_with('/') && colon != std::string::npos
             ? server.substr(0, colon) + "/.s.PGSQL." + server.substr(colon + 1)
             : server;
}

/// -1 where nobody answers.
int connectTo(const std::string& server) {
  int connected = -1;
  int socket = -1;
  if (server.starts_with('/')) {
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    if (server.size() >= sizeof address.sun_path)
      throw std::invalid_argument("Too long: " + server);
    std::memcpy(&address.sun_path, server.c_str(), server.size() + 1);
    socket = ::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0);
    connected = ::connect(socket, generic(address), sizeof address);
  } else {
    const std::size_t colon = server.rfind(':');
    const sockaddr_in address =
        addressOf(server.substr(0, colon), std::stoi(server.substr(colon + 1)));
    socket = ::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
    connected = ::connect(socket, generic(address), sizeof address);
    dontGather(socket);
  }
  if (connected == 0) return socket;
  ::close(socket);
  return -1;
}

/// Closes it so that the other end learns of a broken line, and not of a farewell.
void breakOff(int socket) {
  const linger atOnce{1, 0};
  ::setsockopt(socket, SOL_SOCKET, SO_LINGER, &atOnce, sizeof atOnce);
  ::close(socket);
}

}  // namespace

class LineProxy::Connection {
 public:
  Connection(LineProxy& of, int client, int server)
      : of_(of),
        client_(client),
        server_(server),
        wake_(::eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK)),
        thread_([this] { run(); }) {}
  Connection(const Connection&) = delete;
  Connection& operator=(const Connection&) = delete;
  ~Connection() {
    cut();
    thread_.join();
    ::close(wake_);
  }

  bool hasEnded() const { return hasEnded_; }
  void cut() {
    isCut_ = true;
    const std::uint64_t one = 1;
    static_cast<void>(!::write(wake_, &one, sizeof one));
  }

 private:
  struct Piece {
    Clock::time_point due;
    std::string bytes;
  };
  /// What goes one way.
  struct Way {
    int from;
    int to;
    std::deque<Piece> underWay = {};
    std::size_t size = 0;
    bool isEnded = false;    // nothing comes any more
    bool isBlocked = false;  // the other end does not read

    bool isOver() const { return isEnded && underWay.empty(); }
  };

  void run() {
    ::prctl(PR_SET_TIMERSLACK, 1UL);  // else a delay is longer by a twentieth of a millisecond
    while (!isCut_ && !up_.isOver() && !down_.isOver()) {
      deliver(up_);
      deliver(down_);
      if (breaksBehind_ && up_.underWay.empty()) isCut_ = true;
      if (!isCut_ && !up_.isOver() && !down_.isOver()) wait();
    }
    if (isCut_) {
      breakOff(client_);
    } else {
      ::close(client_);
    }
    // What the server was to have is not to be taken from it.
    if (isCut_ && !breaksBehind_) {
      breakOff(server_);
    } else {
      ::close(server_);
    }
    hasEnded_ = true;
  }

  /// What is due by now.
  static void deliver(Way& way) {
    way.isBlocked = false;
    while (!way.underWay.empty() && way.underWay.front().due <= Clock::now()) {
      std::string& bytes = way.underWay.front().bytes;
      const ssize_t sent = ::send(way.to, bytes.data(), bytes.size(), MSG_DONTWAIT | MSG_NOSIGNAL);
      if (sent < 0) {
        way.isBlocked = errno == EAGAIN || errno == EINTR;
        if (way.isBlocked) return;
        way.underWay.clear();  // nobody is there
        way.isEnded = true;
        return;
      }
      way.size -= static_cast<std::size_t>(sent);
      bytes.erase(0, static_cast<std::size_t>(sent));
      if (bytes.empty()) way.underWay.pop_front();
    }
  }

  /// Until something comes, is due, or can be sent.
  void wait() {
    const auto eventsOf = [](const Way& in, const Way& out) {
      const bool isTaken = !in.isEnded && in.size < kMostUnderWay;
      return static_cast<short>((isTaken ? POLLIN : 0) | (out.isBlocked ? POLLOUT : 0));
    };
    std::array<pollfd, 3> sockets{pollfd{client_, eventsOf(up_, down_), 0},
                                  pollfd{server_, eventsOf(down_, up_), 0},
                                  pollfd{wake_, POLLIN, 0}};
    // A negative number is passed over: who has hung up would be told of again and again.
    if (sockets[0].events == 0) sockets[0].fd = -1;
    if (sockets[1].events == 0) sockets[1].fd = -1;
    nanoseconds left = std::chrono::hours{1};
    for (const Way* way : {&up_, &down_}) {
      if (way->underWay.empty() || way->isBlocked) continue;
      left = std::min<nanoseconds>(left, way->underWay.front().due - Clock::now());
    }
    left = std::max(left, nanoseconds{0});
    const timespec time{left.count() / 1'000'000'000, left.count() % 1'000'000'000};
    if (::ppoll(sockets.data(), sockets.size(), &time, nullptr) <= 0) return;
    if (sockets[0].revents != 0) read(up_);
    if (sockets[1].revents != 0) read(down_);
  }

  void read(Way& way) {
    if (way.isEnded) return;
    std::string bytes(kPiece, '\0');
    const ssize_t count = ::recv(way.from, bytes.data(), bytes.size(), MSG_DONTWAIT);
    if (count < 0 && (errno == EAGAIN || errno == EINTR)) return;
    if (count <= 0) {
      way.isEnded = true;
      return;
    }
    bytes.resize(static_cast<std::size_t>(count));
    if (&way == &up_) {
      losesAnswer_ = losesAnswer_ || of_.isAwaited(of_.loses_, bytes);
      breaksBehind_ = breaksBehind_ || of_.isAwaited(of_.breaks_, bytes);
    }
    if (&way == &down_ && losesAnswer_) {
      isCut_ = true;
      return;
    }
    way.size += bytes.size();
    way.underWay.push_back({Clock::now() + of_.delay_.load(), std::move(bytes)});
  }

  LineProxy& of_;
  const int client_;
  const int server_;
  const int wake_;
  std::atomic<bool> isCut_ = false;
  std::atomic<bool> hasEnded_ = false;
  bool losesAnswer_ = false;
  bool breaksBehind_ = false;
  Way up_{client_, server_};
  Way down_{server_, client_};
  std::thread thread_;  // last: it uses all of the above
};

LineProxy::LineProxy(const std::string& server, int port)
    : server_(socketOf(server)), listener_(::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0)) {
  constexpr int kWaiting = 1024;
  const int yes = 1;
  ::setsockopt(listener_, SOL_SOCKET, SO_REUSEADDR, &yes, sizeof yes);
  sockaddr_in address = addressOf("127.0.0.1", port);
  socklen_t size = sizeof address;
  if (::bind(listener_, generic(address), size) != 0 || ::listen(listener_, kWaiting) != 0 ||
      ::getsockname(listener_, reinterpret_cast<sockaddr*>(&address), &size) != 0) {
    const int error = errno;
    ::close(listener_);
    errno = error;
    failWith("Nobody can listen at port " + std::to_string(port));
  }
  port_ = ntohs(address.sin_port);
  accepting_ = std::thread([this] { accept(); });
}

LineProxy::~LineProxy() {
  isEnding_ = true;
  ::shutdown(listener_, SHUT_RDWR);  // wakes who waits there
  accepting_.join();
  ::close(listener_);
}

void LineProxy::accept() {
  while (!isEnding_) {
    const int client = ::accept4(listener_, nullptr, nullptr, SOCK_CLOEXEC);
    if (client >= 0) take(client);
  }
}

void LineProxy::take(int client) {
  const int server = isDown_ ? -1 : connectTo(server_);
  const std::lock_guard lock(mutex_);
  connections_.remove_if([](const auto& each) { return each->hasEnded(); });
  if (server < 0 || isDown_) {
    breakOff(client);
    if (server >= 0) breakOff(server);
    return;
  }
  ++taken_;
  dontGather(client);
  connections_.push_back(std::make_unique<Connection>(*this, client, server));
}

std::size_t LineProxy::cut() {
  std::list<std::unique_ptr<Connection>> all;
  {
    const std::lock_guard lock(mutex_);
    all.swap(connections_);
  }
  return all.size() -
         static_cast<std::size_t>(std::count_if(all.begin(), all.end(),
                                                [](const auto& each) { return each->hasEnded(); }));
}

void LineProxy::down() {
  isDown_ = true;
  cut();
}

void LineProxy::loseAnswerTo(const std::string& text) {
  const std::lock_guard lock(mutex_);
  loses_ = text;
}

void LineProxy::breakBehind(const std::string& text) {
  const std::lock_guard lock(mutex_);
  breaks_ = text;
}

bool LineProxy::isAwaited(std::string& text, const std::string& bytes) {
  const std::lock_guard lock(mutex_);
  if (text.empty() || bytes.find(text) == std::string::npos) return false;
  text.clear();
  return true;
}

}  // namespace tavelor::test

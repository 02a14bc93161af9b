// SPDX-License-Identifier: MIT
// The only source that sees Asio and Beast: one thread moves all bytes and waits for nothing,
// workers answer.
#include "tavelor/web/server.hpp"

#include <chrono>
#include <csignal>
#include <cstdlib>

#include <fmt/format.h>
#include <sys/resource.h>

#include "tavelor/platform/error.hpp"
#include "tavelor/web/line.hpp"

namespace tavelor::web {

namespace {

constexpr std::string_view kSource = "Server";
constexpr rlim_t kOtherFiles = 128;  // databases, libraries, the log

}  // namespace

struct Server::Inner {
  Inner(std::shared_ptr<Installation> installation, ServerOptions given)
      : options(checked(std::move(given))),
        log(options.log),
        application(std::move(installation), {.hosts = options.hosts, .workers = options.workers}),
        hall{.application = application,
             .log = log,
             .options = options,
             .rate = RateLimit(options.requestsPerSecond, 2 * options.requestsPerSecond)},
        pool(application, options.workers, options.mostWaiting) {
    hall.pool = &pool;
    raiseFileLimit();
    if (!options.certificate.empty()) readCertificate();
    listen();
  }

  static ServerOptions checked(ServerOptions options);
  void raiseFileLimit();
  void readCertificate();
  void listen();
  void accept();
  void take(Tcp::socket socket);
  void waitForSignal();
  void stopSoon();
  void lookWhetherDone(Clock::time_point latest);

  ServerOptions options;
  std::vector<std::string> warnings;
  RequestLog log;
  Application application;
  Hall hall;
  WorkerPool pool;  ///< ends before the hall that its answers go to
  asio::ssl::context tls{asio::ssl::context::tls_server};
  Tcp::acceptor acceptor{hall.io};
  asio::signal_set signals{hall.io};
  asio::steady_timer timer{hall.io};
  bool allAnswered = true;
};

ServerOptions Server::Inner::checked(ServerOptions options) {
  Code fault;
  const auto address = asio::ip::make_address(options.address, fault);
  if (fault) {
    raise(
        errors::kInvalidCall, kSource,
        fmt::format("{} is no address to listen on; 127.0.0.1 and 0.0.0.0 are.", options.address));
  }
  if (options.certificate.empty() != options.key.empty()) {
    raise(errors::kInvalidCall, kSource, "A certificate needs its key, and a key its certificate.");
  }
  const bool isGuarded = !options.certificate.empty() || options.isBehindProxy || options.isOpen;
  if (!address.is_loopback() && !isGuarded) {
    raise(errors::kInvalidCall, kSource,
          fmt::format(
              "{} can be reached by others, who would read PINs on their way: give a certificate "
              "and its key, or say that a proxy stands before it.",
              options.address));
  }
  if (options.workers == 0) {
    options.workers = std::max(2U, std::thread::hardware_concurrency());
  }
  return options;
}

/// A line is a file. What the system does not grant is told.
void Server::Inner::raiseFileLimit() {
  rlimit limit = {};
  if (getrlimit(RLIMIT_NOFILE, &limit) != 0) return;
  const rlim_t wanted = options.mostConnections + kOtherFiles;
  if (limit.rlim_cur < wanted) {
    limit.rlim_cur = std::min(wanted, limit.rlim_max);
    setrlimit(RLIMIT_NOFILE, &limit);
  }
  if (limit.rlim_cur >= wanted) return;
  const rlim_t rest =
      limit.rlim_cur > 2 * kOtherFiles ? limit.rlim_cur - kOtherFiles : limit.rlim_cur / 2;
  warnings.push_back(fmt::format("The system grants {} open files: at most {} connections, not {}.",
                                 limit.rlim_cur, rest, options.mostConnections));
  options.mostConnections = rest;
}

void Server::Inner::readCertificate() {
  Code fault;
  tls.set_options(asio::ssl::context::default_workarounds | asio::ssl::context::no_sslv2 |
                  asio::ssl::context::no_sslv3 | asio::ssl::context::no_tlsv1 |
                  asio::ssl::context::no_tlsv1_1 | asio::ssl::context::single_dh_use);
  tls.use_certificate_chain_file(options.certificate, fault);
  if (fault) {
    raise(errors::kPathAccess, kSource,
          fmt::format("{} is no certificate in PEM: {}.", options.certificate, fault.message()));
  }
  tls.use_private_key_file(options.key, asio::ssl::context::pem, fault);
  if (fault) {
    raise(errors::kPathAccess, kSource,
          fmt::format("{} is not the key of {}: {}.", options.key, options.certificate,
                      fault.message()));
  }
}

void Server::Inner::listen() {
  const Tcp::endpoint place(asio::ip::make_address(options.address), options.port);
  Code fault;
  acceptor.open(place.protocol(), fault);
  if (!fault) acceptor.set_option(Tcp::acceptor::reuse_address(true), fault);
  if (!fault) acceptor.bind(place, fault);
  if (!fault) acceptor.listen(asio::socket_base::max_listen_connections, fault);
  if (fault) {
    raise(errors::kPathAccess, kSource,
          fmt::format("Nothing can listen on {} port {}: {}.", options.address, options.port,
                      fault.message()));
  }
}

void Server::Inner::accept() {
  acceptor.async_accept([this](Code fault, Tcp::socket socket) {
    if (hall.isStopping) return;
    if (!fault) {
      take(std::move(socket));
      return accept();
    }
    // No files left, above all: others close theirs.
    timer.expires_after(std::chrono::milliseconds(100));
    timer.async_wait([this](Code cancelled) {
      if (!cancelled && !hall.isStopping) accept();
    });
  });
}

void Server::Inner::take(Tcp::socket socket) {
  Code fault;
  const Tcp::endpoint who = socket.remote_endpoint(fault);
  if (fault || hall.lines.size() >= options.mostConnections) return;
  std::string address = who.address().to_string();
  std::size_t& count = hall.ofAddress[address];
  // A proxy is one address for all.
  if (count >= options.mostOfAddress && !options.isBehindProxy) return;
  ++count;
  socket.set_option(Tcp::no_delay(true), fault);
  std::shared_ptr<Line> line;
  if (options.certificate.empty()) {
    line =
        std::make_shared<LineOver<beast::tcp_stream>>(hall, std::move(address), std::move(socket));
  } else {
    line = std::make_shared<LineOver<beast::ssl_stream<beast::tcp_stream>>>(
        hall, std::move(address), std::move(socket), tls);
  }
  hall.lines.insert(line);
  line->begin();
}

void Server::Inner::waitForSignal() {
  signals.async_wait([this](Code fault, int number) {
    if (fault) return;
    if (hall.isStopping) std::_Exit(128 + number);
    stopSoon();
    waitForSignal();
  });
}

void Server::Inner::stopSoon() {
  if (hall.isStopping) return;
  hall.isStopping = true;
  log.tell("stopping");
  Code ignored;
  acceptor.close(ignored);
  timer.cancel();
  const auto lines = hall.lines;  // ending takes them out
  for (const auto& line : lines) line->endSoon();
  lookWhetherDone(Clock::now() + Seconds(options.stopSeconds));
}

void Server::Inner::lookWhetherDone(Clock::time_point latest) {
  if (hall.lines.empty() || Clock::now() > latest) {
    allAnswered = hall.lines.empty();
    const auto lines = hall.lines;
    for (const auto& line : lines) line->endNow();
    return hall.io.stop();
  }
  timer.expires_after(std::chrono::milliseconds(20));
  timer.async_wait([this, latest](Code) { lookWhetherDone(latest); });
}

Server::Server(std::shared_ptr<Installation> installation, ServerOptions options)
    : inner_(std::make_unique<Inner>(std::move(installation), std::move(options))) {}

Server::~Server() = default;

std::uint16_t Server::port() const {
  return inner_->acceptor.local_endpoint().port();
}

std::string Server::url() const {
  const bool isSecure = !inner_->options.certificate.empty();
  const bool isSix = inner_->options.address.find(':') != std::string::npos;
  return fmt::format("{}://{}{}{}:{}/", isSecure ? "https" : "http", isSix ? "[" : "",
                     inner_->options.address, isSix ? "]" : "", port());
}

Application& Server::application() {
  return inner_->application;
}

const std::vector<std::string>& Server::warnings() const {
  return inner_->warnings;
}

bool Server::run() {
  inner_->log.tell("started", url());
  if (inner_->options.takesSignals) {
    inner_->signals.add(SIGINT);
    inner_->signals.add(SIGTERM);
    inner_->waitForSignal();
  }
  inner_->accept();
  inner_->hall.io.run();
  inner_->log.tell("stopped");
  return inner_->allAnswered;
}

void Server::stop() {
  asio::post(inner_->hall.io, [this] { inner_->stopSoon(); });
}

}  // namespace tavelor::web

// SPDX-License-Identifier: MIT
// A connection, from its first byte to its last. Part of server.cpp, and included by nothing else.
#pragma once

// clang-format off
#include <utility>  // which Asio forgets
// clang-format on
#include <algorithm>
#include <boost/asio.hpp>
#include <boost/asio/ssl.hpp>
#include <boost/beast/core.hpp>
#include <boost/beast/http.hpp>
#include <boost/beast/ssl.hpp>
#include <chrono>
#include <cstdint>
#include <deque>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <type_traits>
#include <unordered_map>

#include <fmt/format.h>

#include "tavelor/web/answer.hpp"
#include "tavelor/web/application.hpp"
#include "tavelor/web/rate_limit.hpp"
#include "tavelor/web/request_log.hpp"
#include "tavelor/web/server.hpp"
#include "tavelor/web/worker_pool.hpp"

namespace tavelor::web {

namespace asio = boost::asio;
namespace beast = boost::beast;
namespace http = boost::beast::http;
using Tcp = asio::ip::tcp;
using Code = boost::system::error_code;
using Clock = std::chrono::steady_clock;
using Seconds = std::chrono::seconds;
using Text = std::shared_ptr<const std::string>;

inline constexpr std::size_t kHeaderBytes = 8 * 1024;
inline constexpr std::size_t kDrainedBytes = 64 * 1024;
inline constexpr Seconds kDrainTime(2);
inline constexpr Seconds kHeartbeat(15);
inline constexpr Seconds kLongestStream(
    1800);  // then the browser comes again, and is asked who it is
inline constexpr std::size_t kMostUnsent = 256;  // messages of a stream that is read too slowly

inline Method methodOf(http::verb verb) {
  switch (verb) {
    case http::verb::get:
      return Method::kGet;
    case http::verb::head:
      return Method::kHead;
    case http::verb::post:
      return Method::kPost;
    case http::verb::put:
      return Method::kPut;
    case http::verb::patch:
      return Method::kPatch;
    case http::verb::delete_:
      return Method::kDelete;
    case http::verb::options:
      return Method::kOptions;
    default:
      return Method::kOther;
  }
}

inline std::string lower(beast::string_view text) {
  std::string made(text);
  for (char& c : made) c = static_cast<char>(c >= 'A' && c <= 'Z' ? c + ('a' - 'A') : c);
  return made;
}

inline std::string trimmed(std::string_view text) {
  const std::size_t begin = std::min(text.find_first_not_of(" \t"), text.size());
  const std::size_t end = text.find_last_not_of(" \t") + 1;
  return std::string(text.substr(begin, end > begin ? end - begin : 0));
}

class Line;

/// What all lines share.
struct Hall {
  asio::io_context io{1};
  Application& application;
  RequestLog& log;
  const ServerOptions& options;
  RateLimit rate;
  WorkerPool* pool = nullptr;
  std::set<std::shared_ptr<Line>> lines = {};
  std::unordered_map<std::string, std::size_t> ofAddress = {};
  bool isStopping = false;
};

/// One connection, for all its life. Everything runs in the thread of the hall's io.
class Line : public std::enable_shared_from_this<Line> {
 public:
  explicit Line(Hall& hall, std::string address) : hall_(hall), address_(std::move(address)) {}
  virtual ~Line() = default;
  Line(const Line&) = delete;
  Line& operator=(const Line&) = delete;

  const std::string& address() const { return address_; }
  virtual void begin() = 0;
  /// Closes it unless a request is being answered on it.
  virtual void endSoon() = 0;
  virtual void endNow() = 0;

 protected:
  Hall& hall() { return hall_; }

 private:
  Hall& hall_;
  std::string address_;
};

/// Over a socket, or TLS over one.
template <typename Stream>
class LineOver final : public Line {
 public:
  template <typename... Parts>
  LineOver(Hall& hall, std::string address, Parts&&... parts)
      : Line(hall, std::move(address)), stream_(std::forward<Parts>(parts)...), timer_(hall.io) {}

  void begin() override {
    if constexpr (kIsSecure) {
      lowest().expires_after(Seconds(hall().options.headerSeconds));
      stream_.async_handshake(asio::ssl::stream_base::server, [self = self()](Code fault) {
        fault ? self->end() : self->readHeader();
      });
    } else {
      readHeader();
    }
  }

  void endSoon() override {
    if (!isAnswering_) end();
  }
  void endNow() override { end(); }

 private:
  static constexpr bool kIsSecure = !std::is_same_v<Stream, beast::tcp_stream>;
  using Parser = http::request_parser<http::string_body>;

  std::shared_ptr<LineOver> self() {
    return std::static_pointer_cast<LineOver>(this->shared_from_this());
  }
  beast::tcp_stream& lowest() { return beast::get_lowest_layer(stream_); }

  // A request.

  void waitForNext() {
    if (hall().isStopping) return end();
    if (buffer_.size() > 0) return readHeader();
    lowest().expires_after(Seconds(hall().options.idleSeconds));
    stream_.async_read_some(buffer_.prepare(kHeaderBytes),
                            [self = self()](Code fault, std::size_t bytes) {
                              if (fault) return self->end();
                              self->buffer_.commit(bytes);
                              self->readHeader();
                            });
  }

  void readHeader() {
    parser_.emplace();
    parser_->header_limit(kHeaderBytes);
    parser_->body_limit(hall().options.mostBytes);
    lowest().expires_after(Seconds(hall().options.headerSeconds));
    http::async_read_header(stream_, buffer_, *parser_, [self = self()](Code fault, std::size_t) {
      self->begun_ = Clock::now();
      if (fault) return self->refuse(fault);
      self->readBody();
    });
  }

  /// By the slowest rate that is taken.
  Seconds timeFor(std::size_t bytes) {
    const ServerOptions& options = hall().options;
    return Seconds(options.headerSeconds + static_cast<int>(bytes) / options.slowestBytes);
  }

  void readBody() {
    isAnswering_ = true;
    if (parser_->is_done()) return giveToWorker();
    const std::size_t bytes = parser_->content_length()
                                  ? static_cast<std::size_t>(*parser_->content_length())
                                  : hall().options.mostBytes;
    lowest().expires_after(timeFor(bytes));
    if (beast::iequals(parser_->get()[http::field::expect], "100-continue")) {
      static constexpr std::string_view kGoOn = "HTTP/1.1 100 Continue\r\n\r\n";
      asio::async_write(stream_, asio::buffer(kGoOn), [self = self()](Code fault, std::size_t) {
        fault ? self->end() : self->readRest();
      });
    } else {
      readRest();
    }
  }

  void readRest() {
    http::async_read(stream_, buffer_, *parser_, [self = self()](Code fault, std::size_t) {
      if (fault) return self->refuse(fault);
      self->giveToWorker();
    });
  }

  /// What does not read is answered, and the line ends. What comes too slowly has lost its line
  /// already.
  void refuse(Code fault) {
    if (fault == http::error::body_limit) {
      return answerOwn(Failure::limit(
          413, fmt::format("The body is longer than {} bytes.", hall().options.mostBytes)));
    }
    if (fault == http::error::header_limit) {
      return answerOwn(
          Failure::limit(431, fmt::format("The header is longer than {} bytes.", kHeaderBytes)));
    }
    if (fault.category() == http::make_error_code(http::error::bad_target).category() &&
        fault != http::error::end_of_stream && fault != http::error::partial_message) {
      return answerOwn(Failure::input("This is no request of HTTP/1.1."));
    }
    end();
  }

  Request requestOf() {
    auto& message = parser_->get();
    Request request;
    request.method = methodOf(message.method());
    request.target = std::string(message.target());
    for (const auto& field : message) {
      request.headers.emplace_back(lower(field.name_string()), std::string(field.value()));
    }
    request.body = std::move(message.body());
    request.address = address();
    request.isSecure = kIsSecure;
    if (hall().options.isBehindProxy) {
      // The last one is what the proxy has seen; those before it are what it was told.
      const std::string_view chain = request.header("x-forwarded-for");
      const std::string last = trimmed(chain.substr(chain.rfind(',') + 1));
      if (!last.empty()) request.address = last;
      request.isSecure = request.header("x-forwarded-proto") == "https";
    }
    return request;
  }

  void giveToWorker() {
    isAnswering_ = true;
    lowest().expires_never();
    keepsAlive_ = parser_->get().keep_alive();
    isHead_ = parser_->get().method() == http::verb::head;
    Request request = requestOf();
    line_ = {.method = std::string(parser_->get().method_string()),
             .path = request.target.substr(0, request.target.find('?')),
             .address = request.address};
    if (!hall().rate.take(request.address)) {
      return answerOwn(
          Failure::limit(429, "Too many requests from this address.", hall().rate.seconds()), true);
    }
    auto done = [self = self()](Answer answer, Told told) {
      asio::post(self->hall().io,
                 [self, answer = std::move(answer), told = std::move(told)]() mutable {
                   self->line_.who = std::move(told.who);
                   self->line_.fault = std::move(told.fault);
                   self->write(std::move(answer));
                 });
    };
    if (!hall().pool->give(std::move(request), std::move(done))) {
      answerOwn(Failure::busy("Too many requests wait; try again."), true);
    }
  }

  // An answer.

  void answerOwn(const Failure& failure, bool keepsLine = false) {
    if (line_.method.empty()) {
      line_.method = std::string(parser_->get().method_string());
      line_.path = std::string(parser_->get().target());
      line_.path.resize(std::min(line_.path.size(), line_.path.find('?')));
      line_.address = address();
    }
    isHead_ = parser_->get().method() == http::verb::head;
    if (!keepsLine) {
      keepsAlive_ = false;
      drains_ = true;
    }
    write(answerOf(std::make_exception_ptr(failure), line_.fault));
  }

  void write(Answer answer) {
    if (hall().isStopping) keepsAlive_ = false;
    line_.status = answer.status;
    line_.bytes = isHead_ ? 0 : answer.body.size();
    line_.milliseconds = std::chrono::duration<double, std::milli>(Clock::now() - begun_).count();
    hall().log.write(line_);
    line_ = {};
    const bool isStream = answer.isEventStream && !isHead_;
    if (isStream) keepsAlive_ = false;
    response_.emplace();
    response_->version(11);
    response_->result(static_cast<unsigned>(answer.status));
    response_->keep_alive(keepsAlive_);
    if (!answer.type.empty()) response_->set(http::field::content_type, answer.type);
    for (const auto& [name, value] : answer.headers) response_->insert(name, value);
    if (isStream) return beginStream(std::move(answer.body));
    const bool mayHaveBody = answer.status >= 200 && answer.status != 204 && answer.status != 304;
    if (mayHaveBody) response_->content_length(answer.body.size());
    const std::size_t bytes = answer.body.size();
    if (!isHead_) response_->body() = std::move(answer.body);
    lowest().expires_after(timeFor(bytes));
    http::async_write(stream_, *response_, [self = self()](Code fault, std::size_t) {
      self->isAnswering_ = false;
      if (fault) return self->end();
      if (self->keepsAlive_) return self->waitForNext();
      self->drains_ ? self->drain() : self->close();
    });
  }

  // A stream of events.

  void beginStream(std::string first) {
    serializer_.emplace(*response_);
    lowest().expires_after(Seconds(hall().options.headerSeconds));
    http::async_write_header(
        stream_, *serializer_, [self = self(), first = std::move(first)](Code fault, std::size_t) {
          if (fault) return self->end();
          self->isAnswering_ = false;
          self->streamEnd_ = Clock::now() + kLongestStream;
          // Listeners are called by whoever publishes: it only hands the message over.
          std::weak_ptr<LineOver> weak = self;
          auto& io = self->hall().io;
          self->listener_ = self->hall().application.events().listen([weak, &io](Text message) {
            asio::post(io, [weak, message = std::move(message)] {
              if (const auto line = weak.lock()) line->send(message);
            });
          });
          self->send(std::make_shared<const std::string>(first));
          self->watch();
          self->beat();
        });
  }

  /// Sees the other end close.
  void watch() {
    stream_.async_read_some(
        buffer_.prepare(kHeaderBytes),
        [self = self()](Code fault, std::size_t) { fault ? self->end() : self->watch(); });
  }

  void beat() {
    timer_.expires_after(kHeartbeat);
    timer_.async_wait([self = self()](Code fault) {
      if (fault) return;
      if (Clock::now() > self->streamEnd_) return self->end();
      static const Text kComment = std::make_shared<const std::string>(": \n\n");
      self->send(kComment);
      self->beat();
    });
  }

  void send(const Text& message) {
    if (unsent_.size() >= kMostUnsent) return end();
    unsent_.push_back(message);
    if (unsent_.size() == 1) sendNext();
  }

  void sendNext() {
    lowest().expires_after(Seconds(hall().options.headerSeconds));
    asio::async_write(stream_, asio::buffer(*unsent_.front()),
                      [self = self()](Code fault, std::size_t) {
                        if (fault) return self->end();
                        self->unsent_.pop_front();
                        if (!self->unsent_.empty())
                          self->sendNext();
                        else
                          self->lowest().expires_never();
                      });
  }

  // The end.

  /// What is still on its way is read and thrown away for a while: closing at once would take the
  /// answer from who has not read it yet.
  void drain() {
    Code ignored;
    lowest().socket().shutdown(Tcp::socket::shutdown_send, ignored);
    lowest().expires_after(kDrainTime);
    drained_ = 0;
    drainNext();
  }
  void drainNext() {
    buffer_.consume(buffer_.size());
    lowest().async_read_some(buffer_.prepare(kHeaderBytes),
                             [self = self()](Code fault, std::size_t bytes) {
                               self->drained_ += bytes;
                               if (fault || self->drained_ > kDrainedBytes) return self->end();
                               self->drainNext();
                             });
  }

  void close() {
    if constexpr (kIsSecure) {
      lowest().expires_after(kDrainTime);
      stream_.async_shutdown([self = self()](Code) { self->end(); });
    } else {
      Code ignored;
      lowest().socket().shutdown(Tcp::socket::shutdown_send, ignored);
      end();
    }
  }

  void end() {
    if (hasEnded_) return;
    hasEnded_ = true;
    isAnswering_ = false;
    if (listener_) hall().application.events().forget(*listener_);
    timer_.cancel();
    Code ignored;
    lowest().socket().close(ignored);
    const auto found = hall().ofAddress.find(address());
    if (found != hall().ofAddress.end() && --found->second == 0) hall().ofAddress.erase(found);
    hall().lines.erase(this->shared_from_this());
  }

  Stream stream_;
  asio::steady_timer timer_;
  beast::flat_buffer buffer_;
  std::optional<Parser> parser_;
  std::optional<http::response<http::string_body>> response_;
  std::optional<http::response_serializer<http::string_body>> serializer_;
  std::deque<Text> unsent_;
  std::optional<std::uint64_t> listener_;
  Clock::time_point begun_ = Clock::now();
  Clock::time_point streamEnd_;
  LogLine line_;
  std::size_t drained_ = 0;
  bool isAnswering_ = false;
  bool keepsAlive_ = false;
  bool isHead_ = false;
  bool drains_ = false;
  bool hasEnded_ = false;
};

}  // namespace tavelor::web

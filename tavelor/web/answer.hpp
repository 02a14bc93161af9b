// SPDX-License-Identifier: MIT
// Answers, and the one place where what was raised becomes one.
#pragma once

#include <cstddef>
#include <exception>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

#include "tavelor/web/json.hpp"
#include "tavelor/web/message.hpp"

namespace tavelor::web {

/// What is wrong with a part of a request.
struct Fault {
  std::size_t line = 0;   ///< from 1; 0 for none
  std::string code = {};  ///< of the line's article
  std::string field = {};
  std::string reason;
};

/// Why a request is not answered as asked.
class Failure final : public std::runtime_error {
 public:
  /// The code of HTTP, and one of the words of docs/serve.md: "input", "missing"...
  Failure(int code, std::string word, const std::string& message)
      : std::runtime_error(message), status(code), kind(std::move(word)) {}

  int status;
  std::string kind;
  std::vector<Fault> faults = {};
  Headers headers = {};  ///< of the answer
  Json further = {};     ///< members beside "error"; null for none
  Json details = {};     ///< members inside of "error"; null for none

  static Failure input(const std::string& message) { return {400, "input", message}; }
  static Failure signedOut(const std::string& message) { return {401, "signedOut", message}; }
  static Failure forbidden(const std::string& message) { return {403, "forbidden", message}; }
  static Failure missing(const std::string& message) { return {404, "missing", message}; }
  static Failure conflict(const std::string& message) { return {409, "conflict", message}; }
  static Failure refused(const std::string& message, std::vector<Fault> faults = {}) {
    Failure failure{422, "refused", message};
    failure.faults = std::move(faults);
    return failure;
  }
  static Failure locked(const std::string& message, int seconds);
  static Failure limit(int code, const std::string& message, int seconds = 0);
  static Failure busy(const std::string& message);
};

Answer answer(const Json& json, int status = 200);
/// A page of the library, whose style sheets stand in it: they are let through by their hashes.
Answer page(std::string html);
/// Of a Failure, of an Error and of whatever else was thrown. What is told is for people; the
/// statement behind an error and texts of an unknown exception are in `forLog` only.
Answer answerOf(std::exception_ptr thrown, std::string& forLog);

}  // namespace tavelor::web

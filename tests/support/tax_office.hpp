// SPDX-License-Identifier: MIT
// A stand-in of the tax office: takes messages on this computer, keeps what it has accepted, and
// answers as the real one does, or in any of the ways in which a network and a server go wrong.
#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <vector>

namespace tavelor::sending {

/// How a message is answered.
enum class Way : std::uint8_t {
  kProperly,      ///< each record by the rules, or by what was told of it
  kSlowly,        ///< the same, after a while
  kNever,         ///< the records are taken, and no answer comes until release()
  kHalf,          ///< the same, and the line breaks in the middle of the answer
  kBroken,        ///< the same, and the answer is no XML
  kLogin,         ///< the same, and a page for people comes
  kBackward,      ///< properly, the lines the other way round
  kWithoutFirst,  ///< properly, and the first line is missing
  kWithStranger,  ///< properly, and a line more, of a record of somebody else
  kTwice,         ///< properly, and the first line once more
  kOddWord,       ///< properly, and the first line's verdict is no word of the schema
  kUnavailable,   ///< 503, nothing is taken
  kRedirect,      ///< 302, to itself
  kHuge,          ///< more than anybody takes
  kServerFault,   ///< a SOAP fault of the server's, nothing is taken
  kClientFault,   ///< a SOAP fault that blames the message, nothing is taken
};

/// Files of a server that speaks TLS and wants to know who calls.
struct Papers {
  std::string certificate;
  std::string key;
  std::string clientAuthority;
};

class TaxOffice {
 public:
  TaxOffice();
  /// Over TLS.
  explicit TaxOffice(const Papers& papers);
  ~TaxOffice();
  TaxOffice(const TaxOffice&) = delete;
  TaxOffice& operator=(const TaxOffice&) = delete;

  /// Where it listens.
  std::string url() const;

  /// The way of the next message, behind those that were told before; then properly again.
  void next(Way way);
  /// A message that holds this invoice is refused whole, as one that blames it.
  void cannotRead(const std::string& number);
  /// What is said of the next record of an invoice.
  void refuse(const std::string& number, int code, const std::string& text);
  void acceptWithErrors(const std::string& number, int code, const std::string& text);
  /// It has a record of that invoice, from whomever.
  void know(const std::string& number, const std::string& day, const std::string& state);
  /// Seconds that answers tell to wait; 60 at first.
  void setWait(const std::string& seconds);
  /// How long kSlowly and kProperly take.
  void setDelay(int milliseconds);
  /// Called with each record that is taken: "Alta T/1 01-02-2027".
  void onTaken(std::function<void(const std::string&)> listener);

  /// Waits until a message has come that is answered kNever.
  void awaitCaller();
  /// Lets those answers go.
  void release();

  /// The bodies that came, without their envelopes.
  std::vector<std::string> messages() const;
  /// The answers that were given properly, without their envelopes.
  std::vector<std::string> answers() const;
  /// "Alta T/1 01-02-2027", in the order in which they were taken; a correction "Subsanacion ..".
  std::vector<std::string> taken() const;

 private:
  struct Inner;
  std::unique_ptr<Inner> inner_;
};

}  // namespace tavelor::sending

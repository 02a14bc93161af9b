// SPDX-License-Identifier: MIT
// Sends the records of a shop to the tax office, a message at a time.
#include "tavelor/sending/sender.hpp"

#include <algorithm>
#include <array>
#include <cerrno>
#include <charconv>
#include <csignal>
#include <map>
#include <random>
#include <tuple>

#include <fmt/format.h>
#include <sys/types.h>
#include <unistd.h>

#include "tavelor/fiscal/chains.hpp"
#include "tavelor/fiscal/export.hpp"
#include "tavelor/sending/answer.hpp"
#include "tavelor/sending/outbox.hpp"
#include "tavelor/services/apartment.hpp"
#include "tavelor/services/clock.hpp"

namespace tavelor::sending {

namespace {

constexpr std::int32_t kLongestWait = 9999;  // seconds: the answer has four digits for them
constexpr std::int64_t kClocksApart = 60;    // seconds between those of two tills
constexpr std::int64_t kLate = 180;  // seconds beyond the wait, after which an outage is told

constexpr std::string_view kBegin =
    "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<soapenv:Envelope "
    "xmlns:soapenv=\"http://schemas.xmlsoap.org/soap/envelope/\"><soapenv:Header/><soapenv:Body>";
constexpr std::string_view kEnd = "</soapenv:Body></soapenv:Envelope>";

std::string hostName() {
  std::array<char, 64> name{};
  if (gethostname(name.data(), name.size() - 1) != 0) return "unknown";
  return name.data();
}

/// "till01 4711 9f3a..": which computer, which process, and which of its senders.
std::string newName() {
  std::random_device random;
  return fmt::format("{} {} {:08x}{:08x}", hostName(), getpid(), random(), random());
}

/// Whether an outage kept records of a message from being sent when they were made.
bool isLate(const std::vector<WaitingRecord>& records, const Pace& pace, std::int64_t now) {
  if (pace.failures > 0) return true;
  return std::any_of(records.begin(), records.end(), [&](const WaitingRecord& record) {
    const std::int64_t made = fiscal::secondsOf(record.moment).value_or(0);
    return record.times > 0 || made < now - pace.wait - kLate;
  });
}

using Key = std::tuple<std::string, Date, bool>;

/// The state of a record that its line tells.
Outcome outcomeOf(const AnswerLine& line, const WaitingRecord& record) {
  const auto with = [&](Verdict verdict, std::int32_t code, const std::string& text) {
    const std::string_view state = verdict == Verdict::kAccepted             ? state::kAccepted
                                   : verdict == Verdict::kAcceptedWithErrors ? state::kWithErrors
                                                                             : state::kRefused;
    return Outcome{record.position, state, code, text};
  };
  if (line.verdict != Verdict::kRefused || !line.duplicate) {
    return with(line.verdict, line.code, line.text);
  }
  // It was in a message before: the answer to that one was lost.
  if (record.times > 0) {
    return with(line.duplicate->verdict, line.duplicate->code, line.duplicate->text);
  }
  return {record.position, state::kForeign, line.code, line.text};
}

/// What the answer says of each record of the message, in whatever order. A record that has no
/// line, or several, waits on. `strangers` counts lines of records that were not sent.
std::vector<Outcome> outcomesOf(const Answer& answer, const std::vector<WaitingRecord>& records,
                                const std::string& taxpayer, std::int32_t& strangers) {
  std::multimap<Key, const AnswerLine*> lines;
  for (const AnswerLine& line : answer.lines) {
    if (line.invoice.issuer == taxpayer) {
      lines.emplace(Key{line.invoice.number, line.invoice.day, line.isCancellation}, &line);
    } else {
      ++strangers;
    }
  }
  std::map<Key, std::size_t> sent;
  for (const WaitingRecord& each : records) ++sent[{each.number, each.day, each.isCancellation}];
  std::vector<Outcome> outcomes;
  for (const WaitingRecord& record : records) {
    const Key key{record.number, record.day, record.isCancellation};
    const auto [begin, end] = lines.equal_range(key);
    const auto count = static_cast<std::size_t>(std::distance(begin, end));
    Outcome outcome{.position = record.position};
    if (count == 0) {
      outcome.text = "the answer has no line for it";
    } else if (count != 1 || sent[key] != 1) {
      outcome.text = "the answer does not say which of its lines is meant for it";
    } else {
      outcome = outcomeOf(*begin->second, record);
    }
    outcomes.push_back(std::move(outcome));
  }
  for (const auto& [key, line] : lines) strangers += sent.contains(key) ? 0 : 1;
  return outcomes;
}

void count(const std::vector<Outcome>& outcomes, Round& round) {
  for (const Outcome& each : outcomes) {
    if (each.state == state::kAccepted) {
      ++round.accepted;
    } else if (each.state == state::kWithErrors) {
      ++round.withErrors;
    } else if (each.state == state::kUnknown) {
      ++round.unanswered;
    } else {
      ++round.refused;
    }
  }
}

}  // namespace

Sender::Sender(const fiscal::Book& book, Endpoint endpoint)
    : book_(book), endpoint_(std::move(endpoint)), name_(newName()) {}

std::int64_t Sender::now() const {
  return fiscal::secondsOf(fiscal::momentOf(Apartment::current().clock())).value_or(0);
}

/// Known only of processes of this computer.
bool Sender::isDead(const std::string& sender) const {
  const std::string head = hostName() + " ";
  if (!sender.starts_with(head)) return false;
  pid_t process = 0;
  const char* const begin = sender.data() + head.size();
  if (std::from_chars(begin, sender.data() + sender.size(), process).ec != std::errc())
    return false;
  return process > 0 && kill(process, 0) != 0 && errno == ESRCH;
}

Round Sender::sendNext() {
  Round last;
  for (const std::int32_t chain :
       fiscal::chainsOf(book_.settings().taxpayer.number, book_.documents())) {
    Outbox outbox(chain, book_.documents());
    Round round = look(outbox);
    round.chain = chain;
    if (round.what == Round::What::kAnswered || round.what == Round::What::kFailed) return round;
    if (round.what != Round::What::kNothing) last = round;
  }
  return last;
}

/// Sends a message of the chain if it may.
Round Sender::look(Outbox& outbox) {
  const Pace pace = outbox.pace();
  std::vector<WaitingRecord> records = outbox.waiting(pace);
  Round round;
  round.records = static_cast<std::int32_t>(records.size());
  if (records.empty()) return round;
  const std::int64_t time = now();
  const std::int64_t longest = endpoint_.totalSeconds + 2 * kClocksApart;
  // A time beyond what can be told comes from a clock that was wrong.
  const bool isHeld = !pace.sender.empty() && pace.lease > static_cast<double>(time) &&
                      pace.lease <= static_cast<double>(time + kLongestWait);
  if (isHeld && !isDead(pace.sender)) {
    round.what = Round::What::kBusy;
    round.next = static_cast<std::int64_t>(pace.lease);
    return round;
  }
  const bool isEarly = pace.next > static_cast<double>(time) &&
                       pace.next <= static_cast<double>(time + kLongestWait + kClocksApart);
  if (isEarly && records.size() < static_cast<std::size_t>(fiscal::kMostInMessage)) {
    round.what = Round::What::kNotYet;
    round.next = static_cast<std::int64_t>(pace.next);
    return round;
  }
  const std::size_t most = pace.isThere ? static_cast<std::size_t>(std::max(pace.most, 1))
                                        : static_cast<std::size_t>(fiscal::kMostInMessage);
  if (records.size() > most) records.resize(most);
  const auto message = outbox.begin(pace, records, name_, static_cast<double>(time),
                                    static_cast<double>(time + longest),
                                    fiscal::momentOf(Apartment::current().clock()));
  if (!message) {
    round.what = Round::What::kBusy;
    round.next = time + 1;
    return round;
  }
  return deliver(outbox, pace, std::move(records), *message);
}

Round Sender::deliver(Outbox& outbox, const Pace& pace, std::vector<WaitingRecord> records,
                      std::int32_t message) {
  Round round;
  round.message = message;
  round.records = static_cast<std::int32_t>(records.size());
  const bool isTold = isLate(records, pace, now());
  std::vector<std::string> texts;
  texts.reserve(records.size());
  for (WaitingRecord& record : records) texts.push_back(std::move(record.xml));
  std::string envelope(kBegin);
  envelope.append(fiscal::messageOf(book_.settings().taxpayer, texts, isTold)).append(kEnd);
  texts.clear();

  const Reply reply = post(endpoint_, envelope);
  AnswerRead read;
  if (reply.fault.empty()) {
    read = readAnswer(reply.body);
  } else {
    read.fault = legible(reply.fault);
  }
  Pace after = pace;
  after.moment = fiscal::momentOf(Apartment::current().clock());
  const auto waitFrom = [&](std::int64_t time) {
    after.next = static_cast<double>(time + after.wait);
  };
  waitFrom(now());
  if (!pace.isThere) after.most = fiscal::kMostInMessage;
  if (!read.answer) {
    round.what = Round::What::kFailed;
    round.reason = read.fault;
    round.unanswered = round.records;
    ++after.failures;
    after.reason = read.fault;
    if (!reply.fault.empty() && !reply.mayBeThere) {
      outbox.takeBack(message, after);
    } else {
      std::vector<Outcome> outcomes;
      // Who of them is to blame is found by smaller messages; alone it stands back behind others.
      if (read.isOurFault) after.most = std::max(round.records / 2, 1);
      const bool isAlone = read.isOurFault && round.records == 1;
      for (const WaitingRecord& record : records) {
        outcomes.push_back({.position = record.position,
                            .state = isAlone ? state::kApart : state::kUnknown,
                            .text = read.fault});
      }
      outbox.finish(message, after, outcomes, {});
    }
    round.next = static_cast<std::int64_t>(after.next);
    return round;
  }
  std::int32_t strangers = 0;
  const std::vector<Outcome> outcomes =
      outcomesOf(*read.answer, records, book_.settings().taxpayer.number, strangers);
  round.what = Round::What::kAnswered;
  count(outcomes, round);
  if (round.unanswered > 0) {
    round.reason = fmt::format("the answer does not tell of {} record{}", round.unanswered,
                               round.unanswered == 1 ? "" : "s");
  }
  if (strangers > 0) {
    round.reason += fmt::format("{}{} line{} of records that were not sent",
                                round.reason.empty() ? "the answer has " : ", and has ", strangers,
                                strangers == 1 ? "" : "s");
  }
  if (read.answer->wait) after.wait = std::clamp(*read.answer->wait, 0, kLongestWait);
  waitFrom(now());
  after.failures = 0;
  after.reason = round.reason;
  after.most = std::min(std::max(after.most, 1) * 2, fiscal::kMostInMessage);
  outbox.finish(message, after, outcomes, read.answer->csv);
  round.next = static_cast<std::int64_t>(after.next);
  return round;
}

}  // namespace tavelor::sending

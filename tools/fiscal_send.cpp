// SPDX-License-Identifier: MIT
// tavelor fiscal send, status and correct: records on their way to the tax office.
#include <CLI/CLI.hpp>
#include <algorithm>
#include <array>
#include <chrono>
#include <ctime>
#include <memory>
#include <stdexcept>
#include <thread>

#include <fmt/format.h>

#include "tavelor/fiscal/terms.hpp"
#include "tavelor/platform/error.hpp"
#include "tavelor/sending/correction.hpp"
#include "tavelor/sending/sender.hpp"
#include "tavelor/sending/status.hpp"
#include "tools/command.hpp"
#include "tools/fiscal.hpp"
#include "tools/fiscal_book.hpp"
#include "tools/interrupt.hpp"
#include "tools/output.hpp"

namespace tavelor::tools {

namespace {

constexpr const char* kSendFooter =
    R"(Sends what waits, up to a thousand records a message, in the chain's order, and
waits between two messages as long as the tax office wants: a minute at first, then
what its last answer tells, unless a thousand wait. With --service it goes on with
what is sold, until it is interrupted. No sale waits for it.

What has no answer is sent again; what the tax office knows already is not counted
twice. Refused records are set apart: `tavelor fiscal status` tells them, and
`tavelor fiscal correct` makes them again. Two programs never send at once.

Exit code 1 where a message has no answer.)";

constexpr const char* kStatusFooter =
    R"(What waits, and why, what the tax office has answered, when the next message may
go, and which records somebody must correct, with the tax office's own words.)";

constexpr const char* kCorrectFooter =
    R"(A record that was refused, or accepted with errors, is made again, right: as a new
record of the same invoice, which is sent as any other. The names of the shop and
its program are those of fiscal.xml as it is now; who bought and what was sold are
told here. Amounts and rates cannot be another: where they are wrong, so is the
invoice, which is cancelled or rectified.

  tavelor fiscal correct F/12 --name "Ñandú SA" --nif A58818501
  tavelor fiscal correct T/7 --description "Pan y dulces")";

struct SendOptions {
  bool isService = false;
  bool isPatient = true;
  int seconds = 120;
  std::string number;
  std::string name;
  std::string nif;
  std::string description;
};

std::string howMany(std::int64_t count, std::string_view what) {
  return fmt::format("{} {}{}", count, what, count == 1 ? "" : "s");
}

std::string verbOf(std::int64_t count) {
  return count == 1 ? "waits" : "wait";
}

/// Of this computer's time zone.
std::string localTime(std::int64_t seconds) {
  const auto time = static_cast<std::time_t>(seconds);
  std::tm parts{};
  localtime_r(&time, &parts);
  std::array<char, 32> text{};
  std::strftime(text.data(), text.size(), "%Y-%m-%d %H:%M:%S", &parts);
  return text.data();
}

void tellLine(const std::string& line) {
  fmt::print("{}\n", printable(line));
  std::fflush(stdout);
}

/// Until then, or until somebody interrupts.
void sleepUntil(std::int64_t seconds) {
  constexpr std::chrono::milliseconds kLook{200};
  while (!Interruptible::interrupted() && std::time(nullptr) < static_cast<std::time_t>(seconds)) {
    std::this_thread::sleep_for(kLook);
  }
}

std::string lineOf(const sending::Round& round) {
  std::string line = fmt::format("message {}: {}, {} accepted", round.message,
                                 howMany(round.records, "record"), round.accepted);
  const auto add = [&](std::int32_t count, std::string_view what) {
    if (count > 0) line += fmt::format(", {} {}", count, what);
  };
  add(round.withErrors, "accepted with errors");
  add(round.refused, "refused");
  add(round.unanswered, "without an answer");
  if (!round.reason.empty()) line += fmt::format(": {}", round.reason);
  return line;
}

bool hasProgress(const sending::Round& round) {
  return round.accepted + round.withErrors + round.refused > 0;
}

std::int64_t waitingOf(const fiscal::Book& book) {
  std::int64_t waiting = 0;
  for (const sending::ChainStatus& chain : sending::statusOf(book, 0)) waiting += chain.waiting;
  return waiting;
}

/// Once through what waits at its beginning.
void sendOnce(sending::Sender& sender, const fiscal::Book& book, bool isPatient) {
  using What = sending::Round::What;
  std::int64_t left = waitingOf(book);
  if (left == 0) return tellLine("nothing waits");
  while (left > 0 && !Interruptible::interrupted()) {
    const sending::Round round = sender.sendNext();
    switch (round.what) {
      case What::kNothing:
        return;
      case What::kNotYet:
      case What::kBusy:
        tellLine(
            round.what == What::kBusy
                ? fmt::format("another program is sending; its message ends at {} at the latest",
                              localTime(round.next))
                : fmt::format("{} {}; no message before {}", howMany(left, "record"), verbOf(left),
                              localTime(round.next)));
        if (!isPatient) return;
        sleepUntil(round.next);
        break;
      case What::kAnswered:
        tellLine(lineOf(round));
        if (!hasProgress(round))
          throw std::runtime_error("the answer tells of no record: they wait");
        left -= round.records - round.unanswered;
        break;
      case What::kFailed:
        throw std::runtime_error(fmt::format("no answer: {}; {} {}", printable(round.reason),
                                             howMany(left, "record"), verbOf(left)));
    }
  }
}

/// Until somebody interrupts. What goes wrong is told when it changes, and tried again.
void serveSending(sending::Sender& sender) {
  using What = sending::Round::What;
  constexpr std::int64_t kLookEvery = 5;  // seconds
  std::string trouble;
  const auto complainOnce = [&](const std::string& what) {
    if (what != trouble && !what.empty()) complain(fmt::format("{}\n", printable(what)));
    trouble = what;
  };
  tellLine("sending; interrupt to end");
  while (!Interruptible::interrupted()) {
    try {
      const sending::Round round = sender.sendNext();
      if (round.what == What::kAnswered) {
        complainOnce({});
        tellLine(lineOf(round));
        if (hasProgress(round)) continue;
      }
      if (round.what == What::kFailed) complainOnce(fmt::format("no answer: {}", round.reason));
    } catch (const Error& error) {
      complainOnce(error.description());
    }
    sleepUntil(std::time(nullptr) + kLookEvery);
  }
  tellLine("ended");
}

void sendRecords(const SendOptions& options, const Common& common) {
  const KeptBook shop(common);
  sending::Endpoint endpoint =
      sending::endpointOf(shop.book->settings(), shop.session.installation());
  endpoint.totalSeconds = options.seconds;
  endpoint.connectSeconds = std::min(endpoint.connectSeconds, options.seconds);
  sending::Sender sender(*shop.book, std::move(endpoint));
  const Interruptible interruptible;
  if (options.isService) return serveSending(sender);
  sendOnce(sender, *shop.book, options.isPatient);
}

std::string_view standingWord(sending::Standing standing) {
  switch (standing) {
    case sending::Standing::kWithErrors:
      return "accepted with errors";
    case sending::Standing::kOtherIsThere:
      return "refused, as the tax office has another record of it, not sent from here";
    case sending::Standing::kApart:
      return "not taken, as its message is refused whole";
    default:
      return "refused";
  }
}

void showChain(const sending::ChainStatus& chain, bool isOneOfMany) {
  if (isOneOfMany) fmt::print("chain {}\n", chain.chain);
  fmt::print("{} accepted, {} of them with errors; {} refused\n", howMany(chain.accepted, "record"),
             chain.withErrors, chain.refused);
  fmt::print("{} {}", howMany(chain.waiting, "record"), verbOf(chain.waiting));
  if (chain.unanswered > 0) {
    fmt::print(", {} of them sent without an answer", chain.unanswered);
  }
  fmt::print("{}\n",
             chain.oldest.empty() ? "" : fmt::format("; the oldest is of {}", chain.oldest));
  if (chain.failures > 0) {
    fmt::print("no answer since {}, {} tried: {}\n", chain.lastMessage,
               howMany(chain.failures, "message"), printable(chain.reason));
  } else if (!chain.reason.empty()) {
    fmt::print("last message, {}: {}\n", chain.lastMessage, printable(chain.reason));
  }
  if (!chain.sender.empty())
    fmt::print("a message is under way, from {}\n", printable(chain.sender));
  if (chain.waiting > 0 && chain.next > std::time(nullptr)) {
    fmt::print("no message before {}\n", localTime(chain.next));
  }
  for (const sending::RecordStatus& record : chain.open) {
    fmt::print("{}{} of {}: {}: {}{}\n", record.isCancellation ? "the cancellation of " : "",
               printable(record.invoice.number), fiscal::dayText(record.invoice.day),
               standingWord(record.standing),
               record.code == 0 ? "" : fmt::format("{} ", record.code), printable(record.text));
  }
  if (!chain.open.empty()) fmt::print("make them again, right, with `tavelor fiscal correct`\n");
}

void showStatus(const Common& common) {
  const KeptBook shop(common);
  const fiscal::Settings& settings = shop.book->settings();
  if (settings.mode != fiscal::Mode::kSending) {
    fmt::print("this shop does not send its records\n");
    return;
  }
  fmt::print("to {}\n", printable(settings.endpoint.empty()
                                      ? std::string(sending::officeAddress(settings.isTest))
                                      : settings.endpoint));
  const auto chains = sending::statusOf(*shop.book);
  if (chains.empty()) fmt::print("there are no records yet\n");
  for (const sending::ChainStatus& chain : chains) showChain(chain, chains.size() > 1);
}

void correctRecord(const SendOptions& options, const Common& common) {
  if (options.name.empty() != options.nif.empty()) {
    throw UsageError("who bought has a name and a number: --name and --nif");
  }
  const KeptBook shop(common);
  sending::Correction correction;
  correction.number = options.number;
  correction.description = options.description;
  if (!options.name.empty()) correction.recipient = fiscal::partyOf(options.name, options.nif);
  const fiscal::Record record = sending::correct(*shop.book, correction);
  fmt::print("record {} {} {}\n", shop.book->end().records,
             std::holds_alternative<fiscal::Cancellation>(record) ? "cancels again" : "corrects",
             printable(options.number));
}

}  // namespace

void addFiscalSend(CLI::App& fiscal, Common& common) {
  CLI::App* command = fiscal.add_subcommand("send", "Send records to the tax office");
  auto options = std::make_shared<SendOptions>();
  command->add_option("folder", common.folder, "Folder of the installation")->type_name("FOLDER");
  command->add_flag("--service", options->isService, "Go on until interrupted");
  command->add_flag("!--no-wait", options->isPatient, "End where the tax office wants to wait");
  command->add_option("--timeout", options->seconds, "Seconds that an answer may take")
      ->check(CLI::Range(1, 3600).description(""))
      ->type_name("SECONDS");
  addInstallationOptions(*command, common);
  command->footer(kSendFooter);
  command->callback([options, &common] { sendRecords(*options, common); });
}

void addFiscalStatus(CLI::App& fiscal, Common& common) {
  CLI::App* command = fiscal.add_subcommand("status", "What waits to be sent, and why");
  command->add_option("folder", common.folder, "Folder of the installation")->type_name("FOLDER");
  addInstallationOptions(*command, common);
  command->footer(kStatusFooter);
  command->callback([&common] { showStatus(common); });
}

void addFiscalCorrect(CLI::App& fiscal, Common& common) {
  CLI::App* command = fiscal.add_subcommand("correct", "Make a record again that was refused");
  auto options = std::make_shared<SendOptions>();
  command->add_option("invoice", options->number, "Number of the invoice")
      ->required()
      ->type_name("NUMBER");
  command->add_option("--name", options->name, "Legal name of who bought")->type_name("TEXT");
  command->add_option("--nif", options->nif, "Fiscal number of who bought")->type_name("NUMBER");
  command->add_option("--description", options->description, "Of what was sold")->type_name("TEXT");
  addInstallationOptions(*command, common);
  command->footer(kCorrectFooter);
  command->callback([options, &common] { correctRecord(*options, common); });
}

}  // namespace tavelor::tools

// SPDX-License-Identifier: MIT
// The names of rights, and lists of them.
#include "tavelor/web/rights.hpp"

#include <array>

#include <fmt/format.h>

#include "tavelor/platform/error.hpp"

namespace tavelor::web {

namespace {

constexpr std::array<std::string_view, kRights> kNames = {"",
                                                          "",
                                                          "till.sell",
                                                          "till.price",
                                                          "till.discount",
                                                          "till.return",
                                                          "till.credit",
                                                          "till.close",
                                                          "till.drawer",
                                                          "office.read",
                                                          "office.write",
                                                          "office.call",
                                                          "admin"};

Right rightAt(std::size_t place) {
  return static_cast<Right>(place);
}

}  // namespace

std::string_view nameOf(Right right) {
  return kNames.at(static_cast<std::size_t>(right));
}

std::optional<Right> rightOf(std::string_view name) {
  for (std::size_t i = 0; i < kRights; ++i) {
    if (!kNames[i].empty() && kNames[i] == name) return rightAt(i);
  }
  return std::nullopt;
}

Rights Rights::of(std::string_view words) {
  Rights rights;
  while (!words.empty()) {
    const std::string_view word = words.substr(0, words.find(' '));
    words.remove_prefix(word.size() + (word.size() < words.size() ? 1 : 0));
    if (word.empty()) continue;
    if (word.front() == '-') {
      rights.denied_.emplace(word.substr(1));
    } else if (word.back() == '*') {
      const std::string_view group = word.substr(0, word.size() - 1);
      bool isSome = false;
      for (std::size_t i = 0; i < kRights; ++i) {
        if (kNames[i].empty() || !kNames[i].starts_with(group)) continue;
        rights.add(rightAt(i));
        isSome = true;
      }
      if (!isSome) {
        raise(errors::kInvalidCall, "Rights", fmt::format("No right begins with {}.", group));
      }
    } else if (const auto right = rightOf(word)) {
      rights.add(*right);
    } else {
      std::string known;
      for (const std::string_view name : kNames) {
        if (!name.empty()) known += fmt::format("{}{}", known.empty() ? "" : ", ", name);
      }
      raise(errors::kInvalidCall, "Rights",
            fmt::format("There is no right {}; there are {}.", word, known));
    }
  }
  return rights;
}

bool Rights::has(Right right) const {
  return granted_.test(static_cast<std::size_t>(right));
}

std::vector<std::string> Rights::names() const {
  std::vector<std::string> names;
  for (std::size_t i = 0; i < kRights; ++i) {
    if (!kNames[i].empty() && granted_.test(i)) names.emplace_back(kNames[i]);
  }
  return names;
}

bool Caller::may(Right right) const {
  if (right == Right::kAnyone) return true;
  if (right == Right::kSignedIn) return !isNobody();
  return rights.has(right);
}

}  // namespace tavelor::web

// SPDX-License-Identifier: MIT
// Numbers as people type them.
#include "tools/typed_number.hpp"

#include <algorithm>

#include <fmt/format.h>

#include "tavelor/platform/locale.hpp"
#include "tavelor/platform/number_text.hpp"
#include "tools/command.hpp"
#include "tools/output.hpp"

namespace tavelor::tools {

namespace {

bool isDigit(char c) {
  return c >= '0' && c <= '9';
}

}  // namespace

bool groupsFit(std::string_view text, const Locale& numbers) {
  const std::string_view mark = numbers.thousands;
  std::size_t at = text.find(mark);
  if (mark.empty() || at == std::string_view::npos) return true;
  if (text.find(numbers.decimal) < at) return false;
  std::size_t first = at;
  while (first > 0 && isDigit(text[first - 1])) --first;
  if (first == at || at - first > 3 || text[first] == '0') return false;
  for (; at != std::string_view::npos; at = text.find(mark, at + mark.size())) {
    const std::string_view behind = text.substr(at + mark.size());
    const auto digits = std::find_if_not(behind.begin(), behind.end(), isDigit) - behind.begin();
    if (digits != 3) return false;
  }
  return true;
}

void requireTypedNumber(std::string_view what, std::string_view text, const Locale& numbers) {
  if (groupsFit(text, numbers)) return;
  const std::optional<double> read = parseNumber(text, numbers);
  if (!read) return;
  throw UsageError(fmt::format("{}: {} would be read as {}; the decimal sign is {} here",
                               printable(what), printable(text), plainNumber(*read, numbers),
                               numbers.decimal));
}

}  // namespace tavelor::tools

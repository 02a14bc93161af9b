// SPDX-License-Identifier: MIT
// Functions on texts: Like, cuts, case, masks.
#include <array>
#include <cctype>
#include <limits>

#include <fmt/format.h>

#include "tavelor/platform/format.hpp"
#include "tavelor/platform/like.hpp"
#include "tavelor/platform/locale.hpp"
#include "tavelor/platform/text.hpp"
#include "tavelor/services/sqlite/functions.hpp"

namespace tavelor::engine::sqlite {

namespace {

void deletePattern(void* pattern) {
  delete static_cast<LikePattern*>(pattern);
}

void like(Call& call) {
  auto* pattern = static_cast<LikePattern*>(sqlite3_get_auxdata(call.context(), 1));
  if (pattern != nullptr) {
    call.give(std::int64_t{pattern->matches(call.text(0))});
    return;
  }
  auto read = std::make_unique<LikePattern>(call.text(1));
  const bool matches = read->matches(call.text(0));
  // The engine keeps it only while the pattern is the same for every row, and may delete it at
  // once.
  sqlite3_set_auxdata(call.context(), 1, read.release(), deletePattern);
  call.give(std::int64_t{matches});
}

/// A count of characters or a position.
std::size_t countOf(const Call& call, int i, std::int64_t least) {
  const std::int64_t count = call.rounded(i);
  if (count < least) {
    refuse(errors::kInvalidCall, fmt::format("{} is less than {}", count, least));
  }
  return static_cast<std::size_t>(count);
}

void left(Call& call) {
  call.give(text::left(call.text(0), countOf(call, 1, 0)));
}
void right(Call& call) {
  call.give(text::right(call.text(0), countOf(call, 1, 0)));
}

void mid(Call& call) {
  const std::size_t start = countOf(call, 1, 1) - 1;
  const std::size_t count =
      call.count() == 3 ? countOf(call, 2, 0) : std::numeric_limits<std::size_t>::max();
  call.give(text::mid(call.text(0), start, count));
}

/// tv_instr([start,] text, part[, compare]): where a part begins, in characters from 1; 0 where it
/// does not stand. Without regard to case unless `compare` is 0, for exact characters.
void findPart(Call& call) {
  const int first = call.count() == 2 ? 0 : 1;
  const std::size_t start = first == 0 ? 1 : countOf(call, 0, 1);
  const std::int64_t compare = call.count() == 4 ? call.rounded(3) : 1;
  if (compare < 0 || compare > 2) {
    refuse(errors::kInvalidCall, fmt::format("InStr compares by 0, 1 or 2, not by {}", compare));
  }
  const std::string text =
      compare == 0 ? std::string(call.text(first)) : text::foldCase(call.text(first));
  const std::string part =
      compare == 0 ? std::string(call.text(first + 1)) : text::foldCase(call.text(first + 1));
  if (start > text::length(text)) return call.give(std::int64_t{0});
  const std::size_t before = text.size() - text::mid(text, start - 1).size();
  const std::size_t found = text.find(part, before);
  if (found == std::string::npos) return call.give(std::int64_t{0});
  call.give(static_cast<std::int64_t>(text::length(std::string_view(text).substr(0, found)) + 1));
}

void upper(Call& call) {
  call.give(std::string_view(text::upper(call.text(0))));
}
void lower(Call& call) {
  call.give(std::string_view(text::lower(call.text(0))));
}

/// tv_fit(text, n): a text that is to go into a column of n characters.
void fit(Call& call) {
  const auto room = static_cast<std::size_t>(call.integer(1));
  if (const std::size_t length = text::length(call.text(0)); length > room) {
    refuse(errors::kMultipleStep,
           fmt::format("a text of {} characters is too long for {}", length, room));
  }
  call.pass(0);
}

void formatValue(Call& call) {
  if (call.isNull(0)) return call.give(std::string_view());
  const std::string_view mask = call.isNull(1) ? std::string_view() : call.text(1);
  call.give(std::string_view(
      format(variantOf(call.argument(0), call.columnType(2)), mask, call.locale())));
}

void textValue(Call& call) {
  if (call.storedType(0) == SQLITE_TEXT) return call.pass(0);
  call.give(
      std::string_view(variantOf(call.argument(0), call.columnType(1)).toText(call.locale())));
}

constexpr std::array kFunctions{Function{"tv_like", 2, entry<like, Nulls::kGiveNull>},
                                Function{"tv_left", 2, entry<left, Nulls::kGiveNull>},
                                Function{"tv_right", 2, entry<right, Nulls::kGiveNull>},
                                Function{"tv_instr", -1, entry<findPart, Nulls::kGiveNull>},
                                Function{"tv_mid", 2, entry<mid, Nulls::kGiveNull>},
                                Function{"tv_mid", 3, entry<mid, Nulls::kGiveNull>},
                                Function{"tv_ucase", 1, entry<upper, Nulls::kGiveNull>},
                                Function{"tv_lcase", 1, entry<lower, Nulls::kGiveNull>},
                                Function{"tv_fit", 2, entry<fit, Nulls::kGiveNull>},
                                Function{"tv_format", 3, entry<formatValue, Nulls::kTaken>},
                                Function{"tv_text", 2, entry<textValue, Nulls::kGiveNull>}};

}  // namespace

void addTextFunctions(Database& database) {
  addFunctions(database, kFunctions.data(), kFunctions.size());
}

}  // namespace tavelor::engine::sqlite

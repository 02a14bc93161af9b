// SPDX-License-Identifier: MIT
// The shop owner's page of a day or a run of days.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "tavelor/platform/date.hpp"

namespace tavelor::flows {

struct PageFigures;

/// Writes the page of the days from `first` to `last`, both included, and gives its path: in the
/// export folder, "day-2026-11-20.htm" or "day-2010-12-01_2011-02-28.htm". An earlier page of that
/// name is replaced in one step. Raises 5 when `last` is before `first`, 75 when the page cannot be
/// written; the earlier one is untouched then.
std::string writeDayPage(Date first, Date last);

/// Where the page of a day lies.
std::string dayPagePath(Date day);

/// What the page of a single day says in its head of the closings that it knows, so that one which
/// was made before the last of them is found. Begins with kClosingsMark.
std::string closingsMark(std::vector<double> closings);
/// How closingsMark() begins.
inline constexpr std::string_view kClosingsMark = "<meta name=\"closings\" content=\"";

/// The page itself: one HTML text in UTF-8 that needs neither network nor script, by the locale of
/// the calling thread's apartment.
std::string dayPage(const PageFigures& figures);

}  // namespace tavelor::flows

// SPDX-License-Identifier: MIT
// Date masks.
#include <cstddef>
#include <string>
#include <string_view>

#include "tavelor/platform/format_parts.hpp"
#include "tavelor/platform/locale.hpp"
#include "tavelor/platform/text.hpp"
#include "tavelor/platform/utf8.hpp"

namespace tavelor {

namespace {

void appendPadded(std::string& out, int value, std::size_t width) {
  const std::string digits = std::to_string(value);
  if (digits.size() < width) out.append(width - digits.size(), '0');
  out += digits;
}

int dayOfYear(const CivilTime& civil) {
  int day = civil.day;
  for (int month = 1; month < civil.month; ++month) day += daysInMonth(civil.year, month);
  return day;
}

/// How the mask asks for the half of the day, and thereby for a clock of 12 hours.
constexpr std::string_view kHalfDayMarks[] = {"AM/PM", "A/P", "AMPM"};

std::string_view halfDayMarkAt(std::string_view mask, std::size_t position) {
  if (utf8::foldAscii(mask[position]) != 'a') return {};
  for (const std::string_view mark : kHalfDayMarks) {
    const std::string_view part = mask.substr(position, mark.size());
    if (text::equalsIgnoreCase(part, mark)) return part;
  }
  return {};
}

class DateWriter {
 public:
  DateWriter(Date date, std::string_view mask, const Locale& locale)
      : date_(date),
        civil_(date.civil()),
        mask_(mask),
        locale_(locale),
        twelve_(asksForHalfDay()) {}

  std::string write() {
    while (at_ < mask_.size()) {
      if (const std::string_view mark = halfDayMarkAt(mask_, at_); !mark.empty()) {
        writeHalfDay(mark);
        at_ += mark.size();
        afterHour_ = false;
        continue;
      }
      const char c = mask_[at_];
      if (skipQuoted(c)) continue;
      const char letter = utf8::foldAscii(c);
      if (std::string_view("dmyhnswqct").find(letter) == std::string_view::npos) {
        out_ += c == '/'   ? locale_.dateSeparator
                : c == ':' ? locale_.timeSeparator
                           : std::string(1, c);
        ++at_;
        continue;
      }
      const std::size_t begin = at_;
      while (at_ < mask_.size() && utf8::foldAscii(mask_[at_]) == letter) ++at_;
      writeRun(letter, at_ - begin);
    }
    return std::move(out_);
  }

 private:
  bool asksForHalfDay() const {
    for (std::size_t i = 0; i < mask_.size(); ++i) {
      if (mask_[i] == '\\') {
        ++i;
      } else if (mask_[i] == '"') {
        i = mask_.find('"', i + 1);
        if (i == std::string_view::npos) return false;
      } else if (!halfDayMarkAt(mask_, i).empty()) {
        return true;
      }
    }
    return false;
  }

  /// Copies what a backslash or quotes protect.
  bool skipQuoted(char c) {
    if (c == '\\') {
      out_ += mask_.substr(at_ + 1, 1);
      at_ += 2;
      return true;
    }
    if (c != '"') return false;
    const std::size_t end = mask_.find('"', at_ + 1);
    if (end == std::string_view::npos) {
      out_ += mask_.substr(at_ + 1);
      at_ = mask_.size();
    } else {
      out_ += mask_.substr(at_ + 1, end - at_ - 1);
      at_ = end + 1;
    }
    return true;
  }

  void writeHalfDay(std::string_view mark) {
    const bool afternoon = civil_.hour >= 12;
    if (mark.size() == 4) return;  // AMPM: the country's own words, and these have none
    const std::size_t size = mark.size() == 3 ? 1 : 2;
    out_ += afternoon ? mark.substr(mark.size() - size) : mark.substr(0, size);
  }

  void writeRun(char letter, std::size_t size) {
    const bool minutes = letter == 'n' || (letter == 'm' && afterHour_ && size <= 2);
    afterHour_ = letter == 'h';
    if (minutes) return appendPadded(out_, civil_.minute, size > 1 ? 2 : 1);
    switch (letter) {
      case 'd':
        return writeDay(size);
      case 'm':
        return writeMonth(size);
      case 'y':
        return writeYear(size);
      case 'h':
        return appendPadded(out_, hour(), size > 1 ? 2 : 1);
      case 's':
        return appendPadded(out_, civil_.second, size > 1 ? 2 : 1);
      case 'w':
        return writeWeek(size);
      case 'q':
        return appendPadded(out_, (civil_.month + 2) / 3, 1);
      case 'c':
        out_ += generalDate(date_, locale_);
        return;
      default:
        // Only a full run of t is the long time; a shorter one is text.
        if (size == 5) {
          out_ += formatDate(date_, locale_.longTime, locale_);
        } else {
          out_ += mask_.substr(at_ - size, size);
        }
    }
  }

  int hour() const {
    if (!twelve_) return civil_.hour;
    const int hour = civil_.hour % 12;
    return hour == 0 ? 12 : hour;
  }

  void writeDay(std::size_t size) {
    const auto weekday = static_cast<std::size_t>(date_.weekday() - 1);
    if (size <= 2) return appendPadded(out_, civil_.day, size);
    if (size == 3) {
      out_ += locale_.shortDayNames[weekday];
    } else if (size == 4) {
      out_ += locale_.dayNames[weekday];
    } else {
      out_ += formatDate(date_, size == 5 ? locale_.shortDate : locale_.longDate, locale_);
    }
  }

  void writeMonth(std::size_t size) {
    const auto month = static_cast<std::size_t>(civil_.month - 1);
    if (size <= 2) return appendPadded(out_, civil_.month, size);
    out_ += size == 3 ? locale_.shortMonthNames[month] : locale_.monthNames[month];
  }

  void writeYear(std::size_t size) {
    if (size == 1 || size == 3) return appendPadded(out_, dayOfYear(civil_), 1);
    if (size == 2) return appendPadded(out_, civil_.year % 100, 2);
    appendPadded(out_, civil_.year, 4);
  }

  void writeWeek(std::size_t size) {
    if (size == 1) return appendPadded(out_, date_.weekday(), 1);
    // Week 1 holds the first of January; weeks begin on Sunday.
    const int first = Date::of(civil_.year, 1, 1).weekday();
    appendPadded(out_, (dayOfYear(civil_) + first - 2) / 7 + 1, 1);
  }

  Date date_;
  CivilTime civil_;
  std::string_view mask_;
  const Locale& locale_;
  bool twelve_;
  std::size_t at_ = 0;
  bool afterHour_ = false;  ///< the last letters were hours, so m means minutes
  std::string out_;
};

}  // namespace

bool startsHalfDay(std::string_view mask) {
  return !mask.empty() && !halfDayMarkAt(mask, 0).empty();
}

std::string formatDate(Date date, std::string_view mask, const Locale& locale) {
  return DateWriter(date, mask, locale).write();
}

std::string generalDate(Date date, const Locale& locale) {
  const CivilTime civil = date.civil();
  const bool midnight = civil.hour == 0 && civil.minute == 0 && civil.second == 0;
  const bool dayZero = civil.year == 1899 && civil.month == 12 && civil.day == 30;
  std::string out;
  if (!dayZero) out = formatDate(date, locale.shortDate, locale);
  if (!dayZero && midnight) return out;
  if (!dayZero) out += ' ';
  return out + formatDate(date, locale.longTime, locale);
}

}  // namespace tavelor

// SPDX-License-Identifier: MIT
// Charts as inline SVG. Across, everything is in percent and the texts in pixels, so that a chart
// that gets narrower keeps its letters legible.
#include "tavelor/flows/charts.hpp"

#include <algorithm>
#include <cmath>
#include <iterator>
#include <string_view>

#include <fmt/format.h>

#include "tavelor/flows/page_text.hpp"
#include "tavelor/platform/text.hpp"

namespace tavelor::flows {

namespace {

constexpr double kHeight = 250;
constexpr double kTop = 24;      // room of the captions
constexpr double kBottom = 28;   // room of the labels
constexpr double kLetter = 6.6;  // width of a letter, pixels
constexpr double kGap = 8;       // between two texts
constexpr double kWide = 560;    // width of the columns on a wide page and on a telephone, pixels
constexpr double kNarrow = 270;
constexpr std::size_t kFewestSlots = 6;  // fewer columns do not get fatter
constexpr double kHundred = 100;
constexpr std::size_t kColours = 6;

/// 1, 2 or 5 times a power of ten: about `lines` of them make `span`.
double niceStep(double span, double lines) {
  const double raw = span / lines;
  const double power = std::pow(10.0, std::floor(std::log10(raw)));
  for (const double factor : {1.0, 2.0, 5.0}) {
    if (raw <= factor * power) return factor * power;
  }
  return 10 * power;
}

/// Euros to pixels from the top.
class Scale {
 public:
  explicit Scale(std::span<const Column> columns) {
    double low = 0;
    double high = 0;
    for (const Column& column : columns) {
      low = std::min(low, column.value);
      high = std::max(high, column.value);
    }
    constexpr double kLines = 4;
    // Below one euro the axis, which shows whole ones, would repeat itself.
    step_ = high > low ? std::max(1.0, niceStep(high - low, kLines)) : 1;
    low_ = low;
    high_ = high > low ? high : low + step_;
  }

  double at(double value) const {
    return kTop + (high_ - value) / (high_ - low_) * (kHeight - kTop - kBottom);
  }
  std::vector<double> lines() const {
    std::vector<double> values;
    const auto last = std::lround(std::floor(high_ / step_));
    for (auto i = std::lround(std::ceil(low_ / step_)); i <= last; ++i) {
      values.push_back(static_cast<double>(i) * step_);
    }
    return values;
  }

 private:
  double step_;
  double low_;
  double high_;
};

/// Every how manieth text of that length has room.
std::size_t everyHowMany(std::size_t longest, double width, std::size_t slots) {
  const double needed = static_cast<double>(longest) * kLetter + kGap;
  return static_cast<std::size_t>(
      std::max(1.0, std::ceil(needed / (width / static_cast<double>(slots)))));
}

class ColumnChart {
 public:
  ColumnChart(std::span<const Column> columns, const PageText& text)
      : columns_(columns), text_(text), scale_(columns) {
    slots_ = std::max(columns.size(), kFewestSlots);
    std::size_t caption = 0;
    std::size_t label = 0;
    for (const Column& column : columns) {
      caption = std::max(caption, text::length(column.caption));
      label = std::max(label, text::length(column.label));
    }
    showsCaptions_ = everyHowMany(caption, kWide, slots_) == 1;
    captionsAreWide_ = everyHowMany(caption, kNarrow, slots_) > 1;
    labelsWide_ = everyHowMany(label, kWide, slots_);
    // A multiple, so that the labels of the narrow page are among those of the wide one.
    labelsNarrow_ = everyHowMany(label, kNarrow, slots_);
    labelsNarrow_ = (labelsNarrow_ + labelsWide_ - 1) / labelsWide_ * labelsWide_;
  }

  std::string draw(const std::string& name) {
    put("<div class=\"chart\"><svg class=\"axis\" height=\"{:.0f}\" aria-hidden=\"true\">",
        kHeight);
    for (const double line : scale_.lines()) {
      put("<text x=\"100%\" y=\"{:.1f}\">{}</text>", scale_.at(line) + 4, text_.shortMoney(line));
    }
    put("</svg><svg class=\"plot\" height=\"{:.0f}\" role=\"img\" aria-label=\"{}\">", kHeight,
        name);
    for (const double line : scale_.lines()) {
      put("<line class=\"{}\" x1=\"0\" x2=\"100%\" y1=\"{:.1f}\" y2=\"{:.1f}\"/>",
          line == 0 ? "base" : "grid", scale_.at(line), scale_.at(line));
    }
    for (std::size_t i = 0; i < columns_.size(); ++i) drawColumn(i);
    put("</svg></div>\n");
    return std::move(out_);
  }

 private:
  template <typename... Parts>
  void put(fmt::format_string<Parts...> form, Parts&&... parts) {
    fmt::format_to(std::back_inserter(out_), form, std::forward<Parts>(parts)...);
  }

  void drawColumn(std::size_t index) {
    constexpr double kFilled = 0.68;
    const Column& column = columns_[index];
    const double slot = kHundred / static_cast<double>(slots_);
    const double margin = slot * static_cast<double>(slots_ - columns_.size()) / 2;
    const double left = margin + slot * static_cast<double>(index);
    const double middle = left + slot / 2;
    const double zero = scale_.at(0);
    const double end = scale_.at(column.value);
    put("<g class=\"col\"><title>{}</title>", column.title);
    // The whole height answers to the pointer: a low column is hard to hit.
    put("<rect class=\"hit\" x=\"{:.3f}%\" y=\"0\" width=\"{:.3f}%\" height=\"{:.0f}\"/>", left,
        slot, kHeight);
    if (column.value != 0) {
      put("<rect class=\"mark{}\" x=\"{:.3f}%\" y=\"{:.1f}\" width=\"{:.3f}%\" height=\"{:.1f}\" "
          "rx=\"2\"/>",
          column.value < 0  ? " below"
          : column.isStrong ? " strong"
                            : "",
          middle - slot * kFilled / 2, std::min(zero, end), slot * kFilled,
          std::max(std::abs(zero - end), 1.0));
      if (showsCaptions_) {
        put("<text class=\"caption{}\" x=\"{:.3f}%\" y=\"{:.1f}\">{}</text>",
            captionsAreWide_ ? " wide" : "", middle, std::min(zero, end) - 6, column.caption);
      }
    }
    if (index % labelsWide_ == 0) {
      put("<text class=\"label{}\" x=\"{:.3f}%\" y=\"{:.1f}\">{}</text>",
          index % labelsNarrow_ == 0 ? "" : " wide", middle, kHeight - 8, column.label);
    }
    put("</g>");
  }

  std::span<const Column> columns_;
  const PageText& text_;
  Scale scale_;
  std::size_t slots_;
  bool showsCaptions_;
  bool captionsAreWide_;
  std::size_t labelsWide_;
  std::size_t labelsNarrow_;
  std::string out_;
};

}  // namespace

std::string columnChart(std::span<const Column> columns, const std::string& name,
                        const PageText& text) {
  return ColumnChart(columns, text).draw(name);
}

std::string barList(std::span<const Bar> bars) {
  double longest = 0;
  for (const Bar& bar : bars) longest = std::max(longest, std::abs(bar.length));
  std::string out = "<ol class=\"bars\">\n";
  for (const Bar& bar : bars) {
    const double part = longest == 0 ? 0 : std::abs(bar.length) / longest * kHundred;
    fmt::format_to(
        std::back_inserter(out),
        "<li title=\"{0}\"><span class=\"name\">{1}</span><span class=\"value\">{2}"
        "</span><small>{3}</small><svg width=\"100%\" height=\"8\" role=\"img\" aria-label=\"{0}\">"
        "<title>{0}</title><rect class=\"rail\" width=\"100%\" height=\"8\" rx=\"4\"/>"
        "<rect class=\"mark{4}\" width=\"{5:.2f}%\" height=\"8\" rx=\"4\"/></svg></li>\n",
        bar.title, bar.name, bar.value, bar.detail, bar.length < 0 ? " below" : "", part);
  }
  return out + "</ol>\n";
}

std::string donut(std::span<const Slice> slices, const std::string& name, const std::string& middle,
                  const std::string& below) {
  // With this radius the circle is a hundred long, and a dash is a percentage.
  constexpr double kRadius = 15.9155;
  constexpr double kSlit = 0.6;
  double all = 0;
  std::size_t drawn = 0;
  for (const Slice& slice : slices) {
    all += std::max(0.0, slice.size);
    if (slice.size > 0) ++drawn;
  }
  std::string ring;
  std::string legend;
  double turned = 0;
  for (std::size_t i = 0; i < slices.size(); ++i) {
    const Slice& slice = slices[i];
    const std::size_t colour = i % kColours;
    if (slice.size > 0) {
      const double part = slice.size / all * kHundred;
      const double dash = std::max(part - (drawn > 1 ? kSlit : 0), 0.1);
      fmt::format_to(std::back_inserter(ring),
                     "<circle class=\"slice c{}\" cx=\"21\" cy=\"21\" r=\"{}\" "
                     "stroke-dasharray=\"{:.3f} {:.3f}\" stroke-dashoffset=\"{:.3f}\">"
                     "<title>{}</title></circle>",
                     colour, kRadius, dash, kHundred - dash, 25 - turned, slice.title);
      turned += part;
    }
    fmt::format_to(std::back_inserter(legend),
                   "<li title=\"{}\"><svg width=\"12\" height=\"12\" aria-hidden=\"true\">"
                   "<rect class=\"c{}\" width=\"12\" height=\"12\" rx=\"3\"/></svg>"
                   "<span class=\"name\">{}</span><span class=\"value\">{}</span><small>{}</small>"
                   "</li>\n",
                   slice.title, colour, slice.name, slice.value, slice.detail);
  }
  return fmt::format(
      "<div class=\"donut\"><svg viewBox=\"0 0 42 42\" role=\"img\" aria-label=\"{}\">"
      "<circle class=\"ring\" cx=\"21\" cy=\"21\" r=\"{}\"/>{}"
      "<text class=\"middle\" x=\"21\" y=\"21.6\">{}</text>"
      "<text class=\"under\" x=\"21\" y=\"25.4\">{}</text></svg><ul>\n{}</ul></div>\n",
      name, kRadius, ring, middle, below, legend);
}

std::string_view chartStyle() {
  return R"(.chart{display:flex;gap:.5rem}
.axis{flex:0 0 2.6rem;width:2.6rem;overflow:visible}
.axis text{text-anchor:end;font-size:11px;fill:var(--soft)}
.plot{flex:1 1 auto;width:100%;min-width:0;overflow:visible}
.plot .grid{stroke:var(--line)}
.plot .base{stroke:#a9b4c0}
.plot .hit{fill:transparent}
.plot .col:hover .hit{fill:#2b6f8a0d}
.mark{fill:var(--sea)}
.plot .mark{fill:#8dbccb}
.plot .mark.strong{fill:var(--sea)}
.plot .col:hover .mark{fill:#1f5a72}
.mark.below,.plot .mark.below{fill:var(--alarm)}
.plot text{text-anchor:middle;font-size:11px;fill:var(--soft)}
.plot .caption{fill:var(--ink);font-weight:600}
.bars,.donut ul{list-style:none;margin:0;padding:0;display:grid;column-gap:.7rem}
.bars{grid-template-columns:minmax(0,1fr) auto auto;row-gap:.62rem}
.bars li,.donut li{display:grid;grid-column:1/-1;gap:.22rem .7rem;align-items:baseline}
.bars li{grid-template-columns:minmax(0,1fr) auto auto;grid-template-columns:subgrid}
.bars svg{grid-column:1/-1;display:block}
.rail{fill:#edf1f4}
.name{overflow:hidden;text-overflow:ellipsis;white-space:nowrap}
.value,.bars small,.donut small{font-variant-numeric:tabular-nums;white-space:nowrap;text-align:right}
.value{font-weight:600}
.bars small,.donut small{color:var(--soft);font-size:.8rem}
.donut{display:grid;justify-items:center;gap:1rem}
.donut>svg{width:100%;max-width:13rem;height:auto}
.donut ul{width:100%;grid-template-columns:12px minmax(0,1fr) auto auto;row-gap:.5rem}
.donut li{grid-template-columns:12px minmax(0,1fr) auto auto;grid-template-columns:subgrid}
.ring{fill:none;stroke:#edf1f4;stroke-width:5.2}
.middle{text-anchor:middle;font-size:4px;font-weight:700;fill:var(--ink)}
.under{text-anchor:middle;font-size:2.3px;fill:var(--soft)}
.c0{fill:#2b7c96}.c1{fill:#e6a84a}.c2{fill:#79a873}.c3{fill:#b8708a}.c4{fill:#8389b8}.c5{fill:#b9ab95}
.slice.c0{stroke:#2b7c96}.slice.c1{stroke:#e6a84a}.slice.c2{stroke:#79a873}
.slice.c3{stroke:#b8708a}.slice.c4{stroke:#8389b8}.slice.c5{stroke:#b9ab95}
.slice.slice{fill:none;stroke-width:5.2}
@media print{.plot text,.axis text{font-size:8px}}
)";
}

}  // namespace tavelor::flows

// SPDX-License-Identifier: MIT
// Charts as inline SVG. Texts come in escaped.
#pragma once

#include <span>
#include <string>
#include <vector>

namespace tavelor::flows {

class PageText;

struct Column {
  std::string label;    ///< below
  std::string caption;  ///< at the end of the column
  std::string title;    ///< shown to who points at it
  double value = 0;
  bool isStrong = false;
};

/// Columns over a base line, as wide as the page, with an axis in euros. Labels and captions that
/// would meet are left out, more of them on a narrow page.
std::string columnChart(std::span<const Column> columns, const std::string& name,
                        const PageText& text);

struct Bar {
  std::string name;
  std::string value;
  std::string detail;  ///< small, behind the value
  std::string title;
  double length = 0;  ///< of the largest one, a full bar; below 0 is drawn as such
};

/// A line of text and a bar for each.
std::string barList(std::span<const Bar> bars);

struct Slice {
  std::string name;
  std::string value;
  std::string detail;
  std::string title;
  double size = 0;  ///< what is not above 0 is listed and not drawn
};

/// A ring with its legend; `middle` is written in the hole, above `below`.
std::string donut(std::span<const Slice> slices, const std::string& name, const std::string& middle,
                  const std::string& below);

/// The rules that the charts' classes need.
std::string_view chartStyle();

}  // namespace tavelor::flows

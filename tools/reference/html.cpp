// SPDX-License-Identifier: MIT
// Pieces of HTML as text.
#include "tools/reference/html.hpp"

#include <algorithm>
#include <array>
#include <cctype>
#include <utility>

#include <fmt/format.h>

#include "tavelor/platform/text.hpp"

namespace tavelor::reference {

namespace {

constexpr std::array<std::pair<char, std::string_view>, 4> kEntities = {
    {{'&', "&amp;"}, {'<', "&lt;"}, {'>', "&gt;"}, {'"', "&quot;"}}};

}  // namespace

std::string escaped(std::string_view text) {
  std::string out;
  for (const char c : text) {
    const auto* const entity = std::find_if(kEntities.begin(), kEntities.end(),
                                            [c](const auto& each) { return each.first == c; });
    if (entity == kEntities.end()) {
      out += c;
    } else {
      out += entity->second;
    }
  }
  return out;
}

std::string code(std::string_view text) {
  return fmt::format("<code>{}</code>", escaped(text));
}

std::string link(std::string_view address, std::string_view inner) {
  return fmt::format("<a href=\"{}\">{}</a>", escaped(address), inner);
}

std::string plainOf(std::string_view html) {
  std::string plain;
  bool inTag = false;
  for (std::size_t at = 0; at < html.size(); ++at) {
    char c = html[at];
    if (inTag) {
      inTag = c != '>';
      continue;
    }
    if (c == '<') {
      inTag = true;
      continue;
    }
    if (c == '&') {
      const auto* const entity =
          std::find_if(kEntities.begin(), kEntities.end(),
                       [&](const auto& each) { return html.substr(at).starts_with(each.second); });
      if (entity != kEntities.end()) {
        c = entity->first;
        at += entity->second.size() - 1;
      }
    }
    const bool blank = std::isspace(static_cast<unsigned char>(c)) != 0;
    if (blank && (plain.empty() || plain.back() == ' ')) continue;
    plain += blank ? ' ' : c;
  }
  if (plain.ends_with(' ')) plain.pop_back();
  return plain;
}

std::string anchorOf(std::string_view heading) {
  std::string anchor;
  for (const char c : text::lower(heading)) {
    const auto byte = static_cast<unsigned char>(c);
    if (c == ' ') {
      anchor += '-';
    } else if (byte >= 0x80 || std::isalnum(byte) != 0 || c == '-' || c == '_') {
      anchor += c;
    }
  }
  return anchor;
}

}  // namespace tavelor::reference

// SPDX-License-Identifier: MIT
// Reads form 347 by the positions of its design, which it knows from nowhere else; and the design
// itself, where the machine has it.
#pragma once

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <fstream>
#include <regex>
#include <string>
#include <vector>

#include <gtest/gtest.h>

namespace tavelor::fiscal {

/// The characters from one position to another, which count from 1.
struct FormLine {
  std::string bytes;

  std::string at(std::size_t from, std::size_t to) const {
    return bytes.substr(from - 1, to - from + 1);
  }
  /// Without the blanks behind.
  std::string text(std::size_t from, std::size_t to) const {
    std::string found = at(from, to);
    found.erase(found.find_last_not_of(' ') + 1);
    return found;
  }
  std::int64_t number(std::size_t from, std::size_t to) const {
    const std::string digits = at(from, to);
    EXPECT_EQ(digits.find_first_not_of("0123456789"), std::string::npos) << from << ": " << digits;
    return std::strtoll(digits.c_str(), nullptr, 10);
  }
  /// A sign and fifteen digits.
  std::int64_t cents(std::size_t from) const {
    const std::string sign = at(from, from);
    EXPECT_TRUE(sign == " " || sign == "N") << from << ": " << sign;
    return (sign == "N" ? -1 : 1) * number(from + 1, from + 15);
  }
};

/// The records of a file; that all are whole is looked at.
inline std::vector<FormLine> formLines(const std::string& file) {
  constexpr std::size_t kWidth = 502;  // with the line end
  EXPECT_EQ(file.size() % kWidth, 0U);
  std::vector<FormLine> lines;
  for (std::size_t at = 0; at + kWidth <= file.size(); at += kWidth) {
    lines.push_back({file.substr(at, kWidth - 2)});
    EXPECT_EQ(file.substr(at + kWidth - 2, 2), "\r\n");
  }
  return lines;
}

/// A field of the design.
struct DesignedField {
  std::size_t from = 0;
  std::size_t to = 0;
  std::string nature;  // "Numérico", "Alfanumérico", "Alfabético", or hyphens for blanks
};

/// The fields of the section of the design behind a title, up to the remarks at its end.
inline std::vector<DesignedField> designedFields(const std::string& title) {
  std::ifstream in(std::string(std::getenv("TAVELOR_LAW_SCHEMAS")) +
                   "/modelo347/record-design.txt");
  static const std::regex kField(
      R"(^[ \f]*([0-9]+)(?: *[-\xE2\x80\x93]+ *([0-9]+))? +(Num\S+rico|Alfanum\S+rico|Alfab\S+tico|-+)(?: .*)?$)");
  std::vector<DesignedField> fields;
  bool isInside = false;
  for (std::string line; std::getline(in, line);) {
    if (line.find(title) != std::string::npos) isInside = true;
    if (isInside && line.find("Todos los importes") != std::string::npos) break;
    std::smatch found;
    if (!isInside || !std::regex_match(line, found, kField)) continue;
    const std::size_t from = std::stoul(found[1]);
    fields.push_back({from, found[2].matched ? std::stoul(found[2]) : from, found[3]});
  }
  return fields;
}

}  // namespace tavelor::fiscal

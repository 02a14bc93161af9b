// SPDX-License-Identifier: MIT
// What the tests of the catalogue classes share.
#pragma once

#include <algorithm>
#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tavelor/frame/component.hpp"
#include "tavelor/frame/record_class.hpp"
#include "tests/support/shop.hpp"

namespace tavelor::test {

/// A shop and one object of the class under test.
template <typename Class>
class CatalogueTest : public testing::Test {
 protected:
  /// The statement that a mode word runs, and the word that it leaves.
  struct Opened {
    std::string statement;
    std::string word;
  };
  Opened open(std::string word, const Variant& id = {}) {
    shop.statements();
    if constexpr (std::is_base_of_v<OpensOnConnection, Class>) {
      catalogue.IniciaRs({}, word, id);
    } else {
      catalogue.IniciaRs(word, id);
    }
    const std::vector<std::string> ran = shop.statements();
    EXPECT_EQ(ran.size(), 1U);
    return {ran.empty() ? "" : ran.front(), word};
  }

  Recordset& rows() { return *catalogue.DataMember("Primary"); }
  std::vector<std::string> fieldNames() {
    std::vector<std::string> names;
    for (std::int32_t i = 0; i < rows().Fields().Count(); ++i) {
      names.push_back(rows().Field(i).Name());
    }
    return names;
  }
  /// A value as text, "Null" and "Empty" for those.
  std::string shown(const Variant& value) {
    if (value.isNull()) return "Null";
    return value.isEmpty() ? "Empty" : value.toText(shop.apartment().locale());
  }
  std::string field(std::string_view name) { return shown(rows().Field(name).Value()); }
  /// First column of all rows.
  std::vector<std::string> codes() {
    std::vector<std::string> found;
    for (catalogue.MoveFirst(); !rows().Eof(); rows().MoveNext()) {
      found.push_back(shown(rows().Field(0).Value()));
    }
    return found;
  }
  /// Statements since the last call, when there is one only.
  std::string statement() {
    const std::vector<std::string> ran = shop.statements();
    EXPECT_EQ(ran.size(), 1U);
    return ran.empty() ? "" : ran.front();
  }
  /// The slots before those that are the same in all classes.
  static std::vector<std::string> firstSlots() {
    std::vector<std::string> names;
    for (const Member& slot : Class::component().members()) {
      if (slot.name == "EditingRecord") break;
      names.push_back(slot.name);
    }
    return names;
  }
  static std::string lastSlot() { return Class::component().members().back().name; }
  static std::string signature(std::string_view member) {
    return Class::component().member(member).signature();
  }

  Shop shop;
  Class catalogue;
};

inline constexpr std::string_view kMissing = "no such code";

/// Texts that try to leave their place in a statement.
inline const std::vector<std::string>& hostileTexts() {
  static const std::vector<std::string> texts = {"'",
                                                 "O'Hara",
                                                 "'; DELETE FROM Bancos",
                                                 "' or '1'='1",
                                                 std::string("1\0' or 1=1", 11),
                                                 "\xc3\x28",
                                                 std::string(1 << 16, '\'') + "x'"};
  return texts;
}

}  // namespace tavelor::test

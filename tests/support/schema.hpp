// SPDX-License-Identifier: MIT
// The schema as an engine gives it back.
#pragma once

#include <cstddef>
#include <string>

#include <gtest/gtest.h>

#include "tests/dialect/corpus_case.hpp"

namespace tavelor::engine::test {

/// The whole schema, with the types, sizes and keys that its files give.
inline void expectTheSchema(const Catalogue& found) {
  ASSERT_EQ(found.tables().size(), tests::schemaCatalogue().tables().size());
  for (const Table& wanted : tests::schemaCatalogue().tables()) {
    const Table* table = found.find(wanted.name);
    ASSERT_NE(table, nullptr) << wanted.name;
    EXPECT_EQ(table->key, wanted.key) << wanted.name;
    ASSERT_EQ(table->columns.size(), wanted.columns.size()) << wanted.name;
    for (std::size_t i = 0; i < wanted.columns.size(); ++i) {
      const Column& column = table->columns[i];
      const Column& expected = wanted.columns[i];
      const std::string name = wanted.name + "." + expected.name;
      EXPECT_EQ(column.name, expected.name) << name;
      EXPECT_EQ(column.type, expected.type) << name;
      EXPECT_EQ(column.size, expected.size) << name;
      EXPECT_EQ(column.autoNumber, expected.autoNumber) << name;
    }
  }
}

}  // namespace tavelor::engine::test

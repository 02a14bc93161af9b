// SPDX-License-Identifier: MIT
// The registry: its tree, its values, and what it survives.
#include "tavelor/services/registry_tree.hpp"

#include <gmock/gmock.h>

#include "tavelor/services/engine/engine.hpp"
#include "tavelor/services/sqlite/sqlite_engine.hpp"
#include "tests/services/faults.hpp"

namespace tavelor {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

class Registry : public ::testing::Test {
 protected:
  static RegistryTree::Options making() { return {true, false, 5000}; }

  test::TemporaryFolder folder_;
  std::filesystem::path file_ = folder_.path() / "registry.db";
  RegistryTree tree_{file_, making()};
};

TEST_F(Registry, ValueThatWasNeverSetIsNothing) {
  EXPECT_EQ(tree_.get("SOFTWARE\\Merivan", "Mode"), std::nullopt);
  EXPECT_FALSE(tree_.has("SOFTWARE\\Merivan", "Mode"));
}

TEST_F(Registry, ValueIsReadAsItWasSet) {
  tree_.set("SOFTWARE\\Merivan\\", "Mode", " DESC");
  EXPECT_EQ(tree_.get("SOFTWARE\\Merivan\\", "Mode"), " DESC");
}

TEST_F(Registry, EmptyValueIsSet) {
  tree_.set("A", "Denied", "");
  EXPECT_TRUE(tree_.has("A", "Denied"));
  EXPECT_EQ(tree_.get("A", "Denied"), "");
}

TEST_F(Registry, NewValueReplacesTheOld) {
  tree_.set("A", "n", "1");
  tree_.set("A", "n", "2");
  EXPECT_EQ(tree_.get("A", "n"), "2");
  EXPECT_EQ(tree_.values("A").size(), 1U);
}

TEST_F(Registry, ValuesKeepEveryByte) {
  const std::string odd("'quotes' \"and\" \\ \r\n\t \0 ñ € \xff end ", 35);
  tree_.set("A", "n", odd);
  EXPECT_EQ(tree_.get("A", "n"), odd);
  const std::string numberLike = "0012,50";
  tree_.set("A", "number", numberLike);
  EXPECT_EQ(tree_.get("A", "number"), numberLike);
  const std::string large(1 << 20, 'x');
  tree_.set("A", "large", large);
  EXPECT_EQ(tree_.get("A", "large"), large);
}

TEST_F(Registry, KeysAndNamesDoNotCareAboutCaseOfAnyLetter) {
  tree_.set("SOFTWARE\\Españá\\ÑANDÚ", "Código", "x");
  EXPECT_EQ(tree_.get("software\\ESPAÑÁ\\ñandú", "CÓDIGO"), "x");
  EXPECT_EQ(tree_.get("software\\ESPANA\\ñandú", "CÓDIGO"), std::nullopt);
}

TEST_F(Registry, TodosAndTodosWithACapitalAreOneKey) {
  tree_.set("R\\Bancos\\todos\\", "Mode", " DESC");
  tree_.set("R\\Bancos\\Todos\\", "Mode", "");
  EXPECT_EQ(tree_.get("R\\Bancos\\todos\\", "Mode"), "");
  EXPECT_THAT(tree_.keys("R\\Bancos"), ElementsAre("todos"));
}

TEST_F(Registry, BackslashesAroundAndDoubledOnesDoNotMatter) {
  tree_.set("\\A\\\\B\\", "n", "1");
  EXPECT_EQ(tree_.get("A\\B", "n"), "1");
}

TEST_F(Registry, KeysAreSeparate) {
  tree_.set("A\\B", "n", "1");
  EXPECT_EQ(tree_.get("A", "n"), std::nullopt);
  EXPECT_EQ(tree_.get("A\\BB", "n"), std::nullopt);
  EXPECT_EQ(tree_.get("A\\B\\n", ""), std::nullopt);
}

TEST_F(Registry, ListsTheKeysDirectlyBelow) {
  tree_.set("A\\zeta\\deep", "n", "1");
  tree_.set("A\\Alfa", "n", "1");
  tree_.set("AB", "n", "1");
  EXPECT_THAT(tree_.keys("A"), ElementsAre("Alfa", "zeta"));
  EXPECT_THAT(tree_.keys("a\\ZETA\\"), ElementsAre("deep"));
  EXPECT_THAT(tree_.keys(""), ElementsAre("A", "AB"));
  EXPECT_THAT(tree_.keys("nowhere"), IsEmpty());
}

TEST_F(Registry, ListsTheValuesOfAKey) {
  tree_.set("A", "b", "2");
  tree_.set("A", "a", "1");
  tree_.set("A\\C", "c", "3");
  using Named = RegistryTree::NamedValue;
  EXPECT_THAT(tree_.values("A"), ElementsAre(Named{"a", "1"}, Named{"b", "2"}));
}

TEST_F(Registry, RemovedValueIsGoneAndItsKeyStays) {
  tree_.set("A", "n", "1");
  EXPECT_TRUE(tree_.remove("a", "N"));
  EXPECT_FALSE(tree_.remove("A", "n"));
  EXPECT_FALSE(tree_.has("A", "n"));
  EXPECT_THAT(tree_.keys(""), ElementsAre("A"));
}

TEST_F(Registry, RemovedKeyTakesAllBelowItAndNothingBeside) {
  tree_.set("A\\B", "n", "1");
  tree_.set("A\\B\\C", "n", "1");
  tree_.set("A\\BC", "n", "1");
  tree_.set("A\\B C", "n", "1");
  EXPECT_TRUE(tree_.removeKey("a\\b"));
  EXPECT_FALSE(tree_.removeKey("A\\B"));
  EXPECT_FALSE(tree_.has("A\\B\\C", "n"));
  EXPECT_TRUE(tree_.has("A\\BC", "n"));
  EXPECT_THAT(tree_.keys("A"), ElementsAre("B C", "BC"));
}

TEST_F(Registry, EmptyPathAndZeroBytesAreRefused) {
  EXPECT_EQ(test::errorOf([&] { tree_.set("", "n", "1"); }), errors::kInvalidCall);
  EXPECT_EQ(test::errorOf([&] { tree_.get("\\\\", "n"); }), errors::kInvalidCall);
  EXPECT_EQ(test::errorOf([&] { tree_.set(std::string_view("A\0B", 3), "n", "1"); }),
            errors::kInvalidCall);
  EXPECT_EQ(test::errorOf([&] { tree_.set("A", std::string_view("\0", 1), "1"); }),
            errors::kInvalidCall);
  EXPECT_EQ(test::errorOf([&] { tree_.set(std::string(5000, 'k'), "n", "1"); }),
            errors::kInvalidCall);
}

TEST_F(Registry, HostileNamesAreOnlyNames) {
  const std::string hostile = "x'; DELETE FROM registry_values; --";
  tree_.set(hostile, hostile, hostile);
  tree_.set("A", "n", "1");
  EXPECT_EQ(tree_.get(hostile, hostile), hostile);
  tree_.removeKey("%");
  EXPECT_TRUE(tree_.has("A", "n"));
}

TEST_F(Registry, SettingTheSameTextWritesNothing) {
  tree_.set("A", "n", "1");
  // Whoever holds the right to write would make a real write wait, and here fail.
  RegistryTree other(file_, {false, false, 0});
  engine::OpenOptions options;
  options.path = file_.string();
  const auto session = engine::sqliteEngine().open(options);
  const engine::Transaction holding(*session);
  EXPECT_EQ(test::errorOf([&] { other.set("A", "n", "1"); }), 0);
  EXPECT_EQ(test::errorOf([&] { other.set("A", "n", "2"); }), errors::kBusy);
}

TEST_F(Registry, WhatAnotherObjectWritesIsSeenAtOnce) {
  RegistryTree other(file_);
  tree_.set("A", "n", "1");
  EXPECT_EQ(other.get("A", "n"), "1");
  other.set("A", "n", "2");
  EXPECT_EQ(tree_.get("A", "n"), "2");
}

TEST_F(Registry, TwoProcessesWriteAtOnceAndLoseNothing) {
  constexpr int kEach = 200;
  const auto writer = [this](const std::string& name) {
    return [this, name] {
      RegistryTree own(file_, {false, false, 20000});
      for (int i = 0; i < kEach; ++i) own.set("P\\" + name, std::to_string(i), name);
    };
  };
  test::Child first(writer("first"));
  test::Child second(writer("second"));
  EXPECT_TRUE(first.wait());
  EXPECT_TRUE(second.wait());
  EXPECT_EQ(tree_.values("P\\first").size(), 200U);
  EXPECT_EQ(tree_.values("P\\second").size(), 200U);
}

TEST_F(Registry, ProcessKilledInMidWriteLeavesWholeWritesOnly) {
  test::Child child([this] {
    RegistryTree own(file_, {false, true, 20000});
    for (int i = 0;; ++i) {
      const std::string number = std::to_string(i);
      own.set("K\\" + number + "\\below", "n", number);
    }
  });
  ASSERT_TRUE(test::eventually([&] { return tree_.keys("K").size() > 20; }));
  child.kill();

  RegistryTree after(file_);
  const auto keys = after.keys("K");
  for (const std::string& key : keys) EXPECT_EQ(after.get("K\\" + key + "\\below", "n"), key);
  after.set("K", "alive", "yes");
  EXPECT_EQ(tree_.get("K", "alive"), "yes");
}

TEST(RegistryFile, MissingOneIsNamed) {
  const test::TemporaryFolder folder;
  const auto file = folder.path() / "nothing.db";
  const Error error = test::raisedBy([&] { RegistryTree tree(file); });
  EXPECT_EQ(error.number(), errors::kFileNotFound);
  EXPECT_THAT(error.description(), ::testing::HasSubstr(file.string()));
  EXPECT_FALSE(std::filesystem::exists(file));
}

TEST(RegistryFile, DamagedOneIsNamedAndLeftAlone) {
  const test::TemporaryFolder folder;
  const auto file = folder.path() / "registry.db";
  const std::string damage(8192, '?');
  test::writeFile(file, damage);
  const Error error = test::raisedBy([&] { RegistryTree tree(file); });
  EXPECT_EQ(error.number(), errors::kUnspecified);
  EXPECT_THAT(error.description(), ::testing::HasSubstr(file.string()));
  EXPECT_EQ(test::readFile(file), damage);
}

TEST(RegistryFile, AnotherDatabaseIsNoRegistry) {
  const test::TemporaryFolder folder;
  const auto file = folder.path() / "registry.db";
  engine::OpenOptions options;
  options.path = file.string();
  options.create = true;
  engine::sqliteEngine().open(options)->execute("CREATE TABLE other (x INTEGER)");
  const Error error = test::raisedBy([&] { RegistryTree tree(file); });
  EXPECT_EQ(error.number(), errors::kUnspecified);
  EXPECT_THAT(error.description(), ::testing::HasSubstr("no registry"));
}

TEST(RegistryFile, FolderInItsPlaceIsNamed) {
  const test::TemporaryFolder folder;
  const Error error = test::raisedBy([&] { RegistryTree tree(folder.path(), {true, true, 0}); });
  EXPECT_EQ(error.number(), errors::kPathAccess);
}

}  // namespace
}  // namespace tavelor

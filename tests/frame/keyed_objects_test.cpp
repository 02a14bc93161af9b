// SPDX-License-Identifier: MIT
// Objects in order, some of them under a key.
#include "tavelor/frame/keyed_objects.hpp"

#include <gtest/gtest.h>

#include "tests/support/shop.hpp"

namespace tavelor {
namespace {

using test::errorOf;

class Named final : public Object {
 public:
  explicit Named(std::string name) : name_(std::move(name)) {}
  std::string typeName() const override { return name_; }

 private:
  std::string name_;
};

class KeyedObjectsTest : public testing::Test {
 protected:
  void add(const std::string& name, std::string_view key = {}) {
    objects.add(std::make_shared<Named>(name), key);
  }
  std::string at(const Variant& which) { return objects.item(which)->typeName(); }

  KeyedObjects objects;
};

// Each key is looked for among all others; a day's collections have more than a line can wait for.
TEST_F(KeyedObjectsTest, ManyKeysAreFoundWithoutGoingThroughThem) {
  constexpr int kMany = 50'000;
  for (int i = 0; i < kMany; ++i) add("x", "Clave " + std::to_string(i));
  for (int i = 0; i < kMany; i += 7) EXPECT_EQ(at("CLAVE " + std::to_string(i)), "x");
  EXPECT_EQ(errorOf([&] { add("x", "clave 9"); }), errors::kKeyAlreadyAssociated);
  EXPECT_EQ(objects.count(), kMany);
}

TEST_F(KeyedObjectsTest, KeysFollowTheirItemsWhenOneIsRemoved) {
  for (const char* key : {"a", "b", "", "d"}) add(std::string("item ") + key, key);
  objects.remove("B");
  EXPECT_EQ(at("d"), "item d");
  EXPECT_EQ(at(std::int32_t{3}), "item d");
  EXPECT_EQ(errorOf([&] { at("b"); }), errors::kInvalidCall);
  add("new b", "b");
  EXPECT_EQ(at("b"), "new b");
  objects.remove(std::int32_t{1});
  EXPECT_EQ(errorOf([&] { at("a"); }), errors::kInvalidCall);
  EXPECT_EQ(at("D"), "item d");
}

TEST_F(KeyedObjectsTest, PositionsCountFromOne) {
  add("a");
  add("b");
  EXPECT_EQ(at(std::int32_t{1}), "a");
  EXPECT_EQ(at(std::int32_t{2}), "b");
  for (const std::int32_t none : {-1, 0, 3}) {
    EXPECT_EQ(errorOf([&] { at(none); }), errors::kSubscriptOutOfRange) << none;
  }
  EXPECT_EQ(errorOf([&] { at({}); }), errors::kSubscriptOutOfRange);
}

TEST_F(KeyedObjectsTest, APositionWithDecimalsIsRoundedHalvesToEven) {
  add("a");
  add("b");
  add("c");
  EXPECT_EQ(at(1.5), "b");
  EXPECT_EQ(at(2.5), "b");
}

TEST_F(KeyedObjectsTest, ATextIsAKeyAndNeverAPosition) {
  add("a", "2");
  add("b", "Ñandú");
  EXPECT_EQ(at("2"), "a");
  EXPECT_EQ(at("ÑANDÚ"), "b");
  EXPECT_EQ(errorOf([&] { at("1"); }), errors::kInvalidCall);
}

TEST_F(KeyedObjectsTest, TheEmptyTextIsTheKeyOfNothing) {
  add("a");
  EXPECT_EQ(errorOf([&] { at(""); }), errors::kInvalidCall);
}

TEST_F(KeyedObjectsTest, WhatIsNeitherNumberNorTextFindsNothing) {
  add("a");
  EXPECT_EQ(errorOf([&] { at(Null{}); }), errors::kInvalidUseOfNull);
  EXPECT_EQ(errorOf([&] { at(objects.item(std::int32_t{1})); }), errors::kTypeMismatch);
}

TEST_F(KeyedObjectsTest, ARemovedKeyIsFreeAgain) {
  add("a", "k");
  EXPECT_EQ(errorOf([&] { add("b", "K"); }), errors::kKeyAlreadyAssociated);
  objects.remove("k");
  EXPECT_EQ(objects.count(), 0);
  EXPECT_EQ(errorOf([&] { objects.remove("k"); }), errors::kInvalidCall);
  add("b", "k");
  EXPECT_EQ(at("k"), "b");
}

}  // namespace
}  // namespace tavelor

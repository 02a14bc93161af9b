// SPDX-License-Identifier: MIT
// The collection of grouped sales.
#include "tavelor/sales/registros_tickets.hpp"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tavelor/frame/component.hpp"
#include "tests/support/shop.hpp"

namespace tavelor {
namespace {

using test::errorOf;
using testing::ElementsAre;

class CollectionTicketsTest : public testing::Test {
 protected:
  void add(const std::string& code, const std::string& key = {}) {
    groups.Add("", code, "", 1.0, 0.0, key);
  }
  std::vector<std::string> codes(const CollectionTickets& of) {
    std::vector<std::string> all;
    for (std::int32_t i = 1; i <= of.Count(); ++i) {
      all.push_back(*of.Item(i)->Codigo.getIf<std::string>());
    }
    return all;
  }
  std::vector<std::string> slots(const Component& of) {
    std::vector<std::string> names;
    for (const Member& slot : of.members()) names.push_back(slot.name);
    return names;
  }
  CollectionTickets groups;
};

TEST_F(CollectionTicketsTest, AddGivesTheGroupWithItsFourValues) {
  const ClsRegTicketsPtr item = groups.Add("k", "BEB", "Bebidas", 121.5, 21.0, "first");
  EXPECT_EQ(item->Codigo, Variant("BEB"));
  EXPECT_EQ(item->Descripcion, Variant("Bebidas"));
  EXPECT_EQ(item->Importe, Variant(121.5));
  EXPECT_EQ(item->Suma, Variant(21.0));
  EXPECT_EQ(groups.Item("first"), item);
  EXPECT_EQ(groups.Item(std::int32_t{1}), item);
}

TEST_F(CollectionTicketsTest, AnObjectIsSharedNotCopied) {
  const auto family = std::make_shared<ClsRegTickets>();
  const ClsRegTicketsPtr item = groups.Add("", ObjectPtr(family), "", 1.0, 0.0);
  EXPECT_EQ(item->Codigo, Variant(ObjectPtr(family)));
}

TEST_F(CollectionTicketsTest, AddWithAnEmptyKeyAddsWithoutAKey) {
  add("A");
  add("B");
  EXPECT_EQ(groups.Count(), 2);
  EXPECT_EQ(errorOf([&] { groups.Item(""); }), errors::kInvalidCall);
}

TEST_F(CollectionTicketsTest, ARepeatedKeyAddsNothing) {
  add("A", "clave");
  EXPECT_EQ(errorOf([&] { add("B", "CLAVE"); }), errors::kKeyAlreadyAssociated);
  EXPECT_EQ(groups.Count(), 1);
}

TEST_F(CollectionTicketsTest, TheFirstArgumentIsNotTheKeyThatAGroupIsFoundBy) {
  groups.Add("k", "A", "", 1.0, 0.0);
  EXPECT_EQ(errorOf([&] { groups.Item("k"); }), errors::kInvalidCall);
}

TEST_F(CollectionTicketsTest, APositionThatIsNotThereIsRefused) {
  add("A");
  EXPECT_EQ(errorOf([&] { groups.Item(std::int32_t{2}); }), errors::kSubscriptOutOfRange);
  EXPECT_EQ(errorOf([&] { groups.Remove(std::int32_t{0}); }), errors::kSubscriptOutOfRange);
}

TEST_F(CollectionTicketsTest, WhatIsRemovedLetsTheOthersMoveUp) {
  add("A", "a");
  add("B", "b");
  add("C", "c");
  groups.Remove("B");
  EXPECT_THAT(codes(groups), ElementsAre("A", "C"));
  groups.Remove(std::int32_t{1});
  EXPECT_THAT(codes(groups), ElementsAre("C"));
}

TEST_F(CollectionTicketsTest, AnEnumerationStaysAsItIsWhileTheCollectionChanges) {
  add("A");
  add("B");
  const CollectionTicketsPtr all = groups.NewEnum();
  groups.Remove(std::int32_t{1});
  EXPECT_THAT(codes(*all), ElementsAre("A", "B"));
}

TEST_F(CollectionTicketsTest, ByNameAPropertyIsWrittenWhenAValueIsGiven) {
  const test::Shop shop;
  ClsRegTickets item;
  std::vector<Variant> arguments = {12.5};
  ClsRegTickets::component().call(item, "importe", arguments);
  EXPECT_EQ(item.Importe, Variant(12.5));
  arguments.clear();
  EXPECT_EQ(ClsRegTickets::component().call(item, "Importe", arguments), Variant(12.5));
}

TEST_F(CollectionTicketsTest, TheSlotsStandInOrder) {
  EXPECT_THAT(slots(ClsRegTickets::component()),
              ElementsAre("Suma", "Importe", "Descripcion", "Codigo"));
  EXPECT_THAT(slots(CollectionTickets::component()),
              ElementsAre("Add", "Item", "Count", "Remove", "NewEnum"));
}

}  // namespace
}  // namespace tavelor

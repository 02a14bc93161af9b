// SPDX-License-Identifier: MIT
// What a listener of a record class may do while it is told.
#include <functional>

#include <gtest/gtest.h>

#include "tavelor/frame/record_class.hpp"
#include "tests/frame/any_class.hpp"
#include "tests/support/shop.hpp"

namespace tavelor {
namespace {

struct Reaction final : RecordClassEvents {
  void MoveComplete() override {
    ++moves;
    if (onMove) onMove();
  }
  void DataMemberChanged(std::string_view /*member*/) override {
    ++changes;
    if (onChange) onChange();
  }
  int moves = 0;
  int changes = 0;
  std::function<void()> onMove;
  std::function<void()> onChange;
};

class RecordClassListeners : public test::AnyClassTest {
 protected:
  void SetUp() override {
    add("1");
    add("2");
    banks.IniciaRs();
  }
};

TEST_F(RecordClassListeners, OneThatWasRemovedInsideAnEventIsNotToldOfIt) {
  Reaction first;
  auto second = std::make_unique<Reaction>();
  const auto removeSecond = [&] {
    if (second) banks.removeListener(*second);
    second.reset();
  };
  first.onMove = removeSecond;
  banks.addListener(first);
  banks.addListener(*second);
  banks.MoveNext();
  EXPECT_EQ(first.moves, 1);
  EXPECT_EQ(second, nullptr);

  second = std::make_unique<Reaction>();
  first.onMove = nullptr;
  first.onChange = removeSecond;
  banks.addListener(*second);
  banks.Requery();
  EXPECT_EQ(first.changes, 1);
  EXPECT_EQ(second, nullptr);
  banks.removeListener(first);
}

TEST_F(RecordClassListeners, TheInterfaceOfTheEventIsNamedAfterTheClass) {
  EXPECT_EQ(banks.eventInterface(), "__AnyClass");
  ClassInfo silent = test::kBase;
  silent.raisesMoveComplete = false;
  EXPECT_EQ(test::AnyClass<OpensByWord>(silent).eventInterface(), "");
}

TEST_F(RecordClassListeners, OneMayRemoveItselfInsideAnEvent) {
  Reaction once;
  once.onMove = [&] { banks.removeListener(once); };
  banks.addListener(once);
  banks.MoveNext();
  banks.MovePrevious();
  EXPECT_EQ(once.moves, 1);
}

// A form that opens another list when its row changes: the members go on with the new record set.
TEST_F(RecordClassListeners, OneMayOpenAnotherRecordSetInsideAnyMove) {
  const auto reopenOnce = [&](auto&& action) {
    banks.IniciaRs();
    Reaction form;
    form.onMove = [&] {
      banks.removeListener(form);
      banks.IniciaRs("seleccion");
    };
    banks.addListener(form);
    action();
    EXPECT_EQ(form.moves, 1);
    EXPECT_EQ(rows(banks).Fields().Count(), 2);
    EXPECT_EQ(code(banks), "1");
  };
  reopenOnce([&] { banks.MoveNext(); });
  reopenOnce([&] { banks.MovePrevious(); });
  reopenOnce([&] { banks.MoveLast(); });
  reopenOnce([&] { banks.MoveFirst(); });
  reopenOnce([&] { banks.FindRecord("2"); });
  reopenOnce([&] { banks.SetOrder(0, " DESC", "otra"); });
  reopenOnce([&] { banks.Requery(); });
}

TEST_F(RecordClassListeners, OneMayOpenAnotherRecordSetWhileARowIsAddedOrDeleted) {
  Reaction form;
  form.onMove = [&] {
    banks.removeListener(form);
    banks.IniciaRs("seleccion");
  };
  banks.addListener(form);
  banks.AddNew(true);  // the code goes to the row that is current in the new one
  EXPECT_EQ(rows(banks).Fields().Count(), 2);
  EXPECT_EQ(code(banks), "3");
  EXPECT_EQ(rows(banks).RecordCount(), 2);
}

}  // namespace
}  // namespace tavelor

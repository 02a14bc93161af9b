// SPDX-License-Identifier: MIT
// What is kept of open lists, for how long, and by how many at a time.
#include "tavelor/web/class_cursors.hpp"

#include <atomic>
#include <string>
#include <thread>
#include <vector>

#include <gtest/gtest.h>

namespace tavelor {
namespace {

using web::ClassCursor;
using web::ClassCursors;
using Wanted = ClassCursors::Wanted;

ClassCursor made(int rows) {
  ClassCursor cursor;
  cursor.rows = std::make_shared<Recordset>();
  cursor.rows->Fields().Append("Id", DataType::kInt32);
  cursor.rows->Open();
  for (int i = 0; i < rows; ++i) {
    cursor.rows->AddNew();
    cursor.rows->Field(0).Value(std::int32_t{i});
    cursor.rows->Update();
  }
  return cursor;
}

struct Opened {
  ClassCursors::Limits limits;
  ClassCursors cursors{limits};
  int count = 0;
  void use(const ClassCursors::Place& place, Wanted wanted = Wanted::kAsRead) {
    cursors.use(
        place, wanted,
        [&] {
          ++count;
          return made(3);
        },
        [](ClassCursor&) {});
  }
};

TEST(ClassCursorsTest, RowsAreReadOnceForACallerAndAMode) {
  Opened opened;
  opened.use({"ana", "ClsBancos", "todos", ""});
  opened.use({"ana", "ClsBancos", "todos", ""});
  EXPECT_EQ(opened.count, 1);
  opened.use({"eva", "ClsBancos", "todos", ""});
  opened.use({"ana", "ClsBancos", "seleccion", ""});
  opened.use({"ana", "ClsBancos", "todos", "1"});
  EXPECT_EQ(opened.count, 4);
  EXPECT_EQ(opened.cursors.count(), 4U);
}

TEST(ClassCursorsTest, AChangeOfTheClassReadsThemAnew) {
  Opened opened;
  opened.use({"ana", "ClsBancos", "todos", ""});
  opened.cursors.changed("ClsCajas");
  opened.use({"ana", "ClsBancos", "todos", ""});
  EXPECT_EQ(opened.count, 1);
  opened.cursors.changed("ClsBancos");
  opened.use({"ana", "ClsBancos", "todos", ""});
  EXPECT_EQ(opened.count, 2);
  opened.use({"ana", "ClsBancos", "todos", ""}, Wanted::kAnew);
  EXPECT_EQ(opened.count, 3);
}

TEST(ClassCursorsTest, TheOldestOfACallerGoesAndNobodyElses) {
  Opened opened{.limits = {.mostOfCaller = 2}};
  opened.use({"eva", "ClsBancos", "todos", ""});
  for (const char* name : {"A", "B", "C"}) opened.use({"ana", name, "todos", ""});
  EXPECT_EQ(opened.cursors.count(), 3U);
  opened.use({"eva", "ClsBancos", "todos", ""});
  opened.use({"ana", "C", "todos", ""});
  EXPECT_EQ(opened.count, 4);
  opened.use({"ana", "A", "todos", ""});
  EXPECT_EQ(opened.count, 5);
}

TEST(ClassCursorsTest, BytesAndIdleTimeAreBounded) {
  Opened few{.limits = {.mostBytes = 1}};
  few.use({"ana", "A", "todos", ""});
  few.use({"eva", "B", "todos", ""});
  EXPECT_EQ(few.cursors.count(), 1U);
  EXPECT_GT(few.cursors.bytes(), 0U);
  Opened idle{.limits = {.idle = std::chrono::seconds(0)}};
  idle.use({"ana", "A", "todos", ""});
  std::this_thread::sleep_for(std::chrono::milliseconds(2));
  idle.use({"eva", "B", "todos", ""});
  EXPECT_EQ(idle.cursors.count(), 1U);
}

TEST(ClassCursorsTest, ThreadsUseOneAfterTheOther) {
  ClassCursors cursors;
  std::atomic<int> opened = 0;
  std::atomic<int> inside = 0;
  std::vector<std::thread> threads;
  for (int i = 0; i < 4; ++i) {
    threads.emplace_back([&, i] {
      for (int round = 0; round < 50; ++round) {
        cursors.use(
            {"ana", "ClsBancos", "todos", ""}, Wanted::kAsRead,
            [&] {
              ++opened;
              return made(20);
            },
            [&](ClassCursor& cursor) {
              EXPECT_EQ(++inside, 1);
              cursor.show(round % 2 == 0 ? "" : "Id >= 10", i % 2 == 0 ? "Id" : "Id DESC");
              EXPECT_EQ(cursor.rows->RecordCount(), round % 2 == 0 ? 20 : 10);
              --inside;
            });
      }
    });
  }
  for (std::thread& thread : threads) thread.join();
  EXPECT_EQ(opened, 1);
}

}  // namespace
}  // namespace tavelor

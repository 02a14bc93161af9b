// SPDX-License-Identifier: MIT
// Apartments: one a thread, shared objects, the trace and the clock.
#include "tavelor/services/apartment.hpp"

#include <ctime>
#include <thread>

#include <gmock/gmock.h>

#include "tavelor/platform/format.hpp"
#include "tavelor/platform/locale.hpp"
#include "tavelor/services/clock.hpp"
#include "tavelor/services/format_global.hpp"
#include "tavelor/services/list_config.hpp"
#include "tavelor/services/paths_service.hpp"
#include "tavelor/services/prompt_global.hpp"
#include "tavelor/services/registry_tree.hpp"
#include "tavelor/services/session_global.hpp"
#include "tests/services/faults.hpp"

namespace tavelor {
namespace {

using test::errorOf;
using test::fastSettings;
using test::Shop;
using ::testing::HasSubstr;

TEST(WithoutAnApartment, EveryServiceRaisesObjectNotSet) {
  EXPECT_EQ(errorOf([] { Apartment::current(); }), errors::kObjectNotSet);
  EXPECT_EQ(Apartment::find(), nullptr);
  EXPECT_EQ(errorOf([] { DataSession(); }), errors::kObjectNotSet);
  EXPECT_EQ(errorOf([] { ListConfig(); }), errors::kObjectNotSet);
  EXPECT_EQ(errorOf([] { PathsService(); }), errors::kObjectNotSet);
}

TEST(ApartmentOfAThread, NeedsAnInstallation) {
  EXPECT_EQ(errorOf([] { Apartment apartment(nullptr); }), errors::kObjectNotSet);
  EXPECT_EQ(Apartment::find(), nullptr);
}

TEST(ApartmentOfAThread, IsTheCurrentOneWhileItLives) {
  {
    Shop shop;
    EXPECT_EQ(&Apartment::current(), &shop.apartment());
  }
  EXPECT_EQ(Apartment::find(), nullptr);
}

TEST(ApartmentOfAThread, SecondOneCoversTheFirstUntilItEnds) {
  Shop shop;
  {
    Apartment second(shop.installationPtr());
    EXPECT_EQ(&Apartment::current(), &second);
  }
  EXPECT_EQ(&Apartment::current(), &shop.apartment());
}

TEST(ApartmentOfAThread, MayEndInAnyOrder) {
  Shop shop;
  auto second = std::make_unique<Apartment>(shop.installationPtr());
  auto third = std::make_unique<Apartment>(shop.installationPtr());
  second.reset();
  EXPECT_EQ(&Apartment::current(), third.get());
  third.reset();
  EXPECT_EQ(&Apartment::current(), &shop.apartment());
}

TEST(ApartmentOfAThread, EndedOnAnotherThreadIsGoneFromItsOwn) {
  Shop shop;
  auto second = std::make_unique<Apartment>(shop.installationPtr());
  std::thread([&] { second.reset(); }).join();
  EXPECT_EQ(&Apartment::current(), &shop.apartment());

  std::unique_ptr<Apartment> only;
  std::thread([&] {
    only = std::make_unique<Apartment>(shop.installationPtr());
    std::thread([&] { only.reset(); }).join();
    EXPECT_EQ(Apartment::find(), nullptr);
    EXPECT_EQ(errorOf([] { DataSession(); }), errors::kObjectNotSet);
  }).join();
}

TEST(ApartmentOfAThread, MayOutliveItsThread) {
  Shop shop;
  std::unique_ptr<Apartment> left;
  std::thread([&] { left = std::make_unique<Apartment>(shop.installationPtr()); }).join();
  left.reset();
  EXPECT_EQ(&Apartment::current(), &shop.apartment());
}

TEST(ApartmentOfAThread, ScopeBindsACoveredOneAgain) {
  Shop shop;
  Apartment second(shop.installationPtr());
  {
    const Apartment::Scope scope(shop.apartment());
    EXPECT_EQ(&Apartment::current(), &shop.apartment());
    {
      const Apartment::Scope inner(second);
      EXPECT_EQ(&Apartment::current(), &second);
    }
    EXPECT_EQ(&Apartment::current(), &shop.apartment());
  }
  EXPECT_EQ(&Apartment::current(), &second);
}

TEST(ApartmentOfAThread, EndedInsideItsScopeIsNotBoundAnyMore) {
  Shop shop;
  auto second = std::make_unique<Apartment>(shop.installationPtr());
  const Apartment::Scope outer(shop.apartment());
  const Apartment::Scope scope(*second);
  second.reset();
  EXPECT_EQ(&Apartment::current(), &shop.apartment());
}

TEST(ApartmentOfAThread, ScopeOfAnotherThreadIsRefused) {
  Shop shop;
  std::int32_t error = 0;
  std::thread([&] {
    error = errorOf([&] { const Apartment::Scope scope(shop.apartment()); });
    EXPECT_EQ(Apartment::find(), nullptr);
  }).join();
  EXPECT_EQ(error, errors::kInvalidCall);
}

TEST(ApartmentOfAThread, HomeIsTheOneThatAnObjectWasMadeIn) {
  const Apartment::Home anywhere;
  EXPECT_NO_THROW(anywhere.mustBeBound("x"));
  Shop shop;
  EXPECT_NO_THROW(anywhere.mustBeBound("x"));
  auto second = std::make_unique<Apartment>(shop.installationPtr());
  const Apartment::Home home;
  EXPECT_NO_THROW(home.mustBeBound("x"));
  {
    const Apartment::Scope scope(shop.apartment());
    EXPECT_EQ(errorOf([&] { home.mustBeBound("x"); }), errors::kInvalidCall);
  }
  std::int32_t elsewhere = 0;
  std::thread([&] { elsewhere = errorOf([&] { home.mustBeBound("x"); }); }).join();
  EXPECT_EQ(elsewhere, errors::kInvalidCall);
  EXPECT_NO_THROW(home.mustBeBound("x"));
  second.reset();
  EXPECT_EQ(errorOf([&] { home.mustBeBound("x"); }), errors::kObjectNotSet);
}

TEST(ApartmentOfAThread, OtherThreadsDoNotSeeIt) {
  Shop shop;
  Apartment* seen = &shop.apartment();
  std::thread([&] { seen = Apartment::find(); }).join();
  EXPECT_EQ(seen, nullptr);
}

TEST(ApartmentOfAThread, SharedObjectsAreOneEach) {
  Shop shop;
  Apartment& apartment = shop.apartment();
  EXPECT_EQ(&apartment.registry(), &apartment.registry());
  EXPECT_EQ(&apartment.registryStore(), &apartment.registryStore());
  EXPECT_EQ(&apartment.formatGlobal(), &apartment.formatGlobal());
  EXPECT_EQ(&apartment.sessionGlobal(), &apartment.sessionGlobal());
  EXPECT_EQ(&apartment.promptGlobal(), &apartment.promptGlobal());

  Apartment second(shop.installationPtr());
  EXPECT_NE(&second.formatGlobal(), &apartment.formatGlobal());
  EXPECT_NE(&second.promptGlobal(), &apartment.promptGlobal());
}

TEST(ApartmentOfAThread, TwoThreadsWriteNumbersByTheirOwnLocales) {
  test::TemporaryFolder folder;
  const auto work = [&](const std::string& name, std::string& printed) {
    Settings settings = fastSettings();
    settings.locale = name;
    Apartment apartment(Installation::create(folder.path() / name, settings));
    for (int i = 0; i < 50; ++i) {
      ConnectionPtr connection;
      RecordsetPtr rows;
      DataSession().OpenRecordset(1, Statement("SELECT '1,5' + 0 AS n FROM Tavelor_Schema"), rows,
                                  connection);
      printed = rows->Field(0).Value().toText(apartment.locale()) + " " +
                Variant(1234.5).toText(apartment.locale());
    }
  };
  std::string spanish;
  std::string neutral;
  std::thread first(work, "es-ES", std::ref(spanish));
  std::thread second(work, "neutral", std::ref(neutral));
  first.join();
  second.join();
  EXPECT_EQ(spanish, "1,5 1234,5");
  EXPECT_EQ(neutral, "15 1234.5");
}

TEST(ApartmentOfAThread, ThreadsOfOneInstallationWorkAtOnce) {
  Shop shop;
  constexpr int kThreads = 3;
  constexpr int kEach = 40;
  std::vector<std::thread> threads;
  std::vector<std::string> failures(kThreads);
  for (int t = 0; t < kThreads; ++t) {
    threads.emplace_back([&, t] {
      try {
        Apartment apartment(shop.installationPtr());
        for (int i = 0; i < kEach; ++i) {
          ConnectionPtr connection;
          const std::string code = std::to_string(t * 1000 + i);
          DataSession().Execute(
              1, Statement("INSERT INTO Bancos (Codigo) VALUES ('") << spliced(code) << "')",
              connection);
          apartment.registry().set("T\\" + std::to_string(t), code, code);
        }
      } catch (const Error& error) {
        failures[static_cast<std::size_t>(t)] = error.what();
      }
    });
  }
  for (std::thread& thread : threads) thread.join();
  for (const std::string& failure : failures) EXPECT_EQ(failure, "");
  EXPECT_EQ(shop.text("SELECT Count(*) AS n FROM Bancos"), "120");
}

TEST(TraceOfAnApartment, TellsStatementsTimesRowsAndErrors) {
  Shop shop;
  ConnectionPtr connection;
  DataSession session;
  session.Execute(1, Statement("INSERT INTO Bancos (Codigo) VALUES ('1')"), connection);
  RecordsetPtr rows;
  session.OpenRecordset(1, Statement("SELECT Codigo FROM Bancos"), rows, connection);
  const std::int32_t number = errorOf([&] {
    session.Execute(1, Statement("INSERT INTO Bancos (Codigo) VALUES ('1')"), connection);
  });
  const auto& entries = shop.apartment().trace().entries();
  ASSERT_EQ(entries.size(), 3U);
  EXPECT_EQ(entries[0].selector, 1);
  EXPECT_EQ(entries[0].text, "INSERT INTO Bancos (Codigo) VALUES ('1')");
  EXPECT_EQ(entries[0].rows, 1);
  EXPECT_EQ(entries[0].error, 0);
  EXPECT_GE(entries[0].microseconds, 0);
  EXPECT_EQ(entries[1].rows, 1);
  EXPECT_EQ(entries[2].error, number);
  EXPECT_EQ(number, errors::kIntegrityViolation);
}

TEST(TraceOfAnApartment, IsOffUnlessTheSettingsTurnItOn) {
  test::TemporaryFolder folder;
  Settings settings = fastSettings();
  settings.traceFile = "trace.txt";
  {
    Apartment apartment(Installation::create(folder.path() / "off", settings));
    EXPECT_FALSE(apartment.trace().isOn());
    EXPECT_FALSE(std::filesystem::exists(folder.path() / "off" / "trace.txt"));
  }
  settings.trace = true;
  Apartment apartment(Installation::create(folder.path() / "on", settings));
  ConnectionPtr connection;
  DataSession().Execute(1, Statement("DELETE FROM Bancos WHERE Banco = 'a\nb'"), connection);
  EXPECT_EQ(apartment.trace().entries().size(), 1U);
  const std::string written = test::readFile(folder.path() / "on" / "trace.txt");
  EXPECT_THAT(written, HasSubstr("0 rows DELETE FROM Bancos WHERE Banco = 'a b'\n"));
}

TEST(TraceOfAnApartment, KeepsTheLastStatementsOnlyAndTellsItsListener) {
  StatementTrace trace;
  int told = 0;
  trace.listen([&](const TraceEntry&) { ++told; });
  trace.statement({1, "while off", 0, 0, 0});
  EXPECT_TRUE(trace.entries().empty());
  trace.turn(true);
  for (std::size_t i = 0; i < StatementTrace::kKept + 10; ++i) {
    trace.statement({1, std::to_string(i), 0, 0, 0});
  }
  EXPECT_EQ(trace.entries().size(), StatementTrace::kKept);
  EXPECT_EQ(trace.entries().front().text, "10");
  EXPECT_EQ(told, static_cast<int>(StatementTrace::kKept) + 10);
}

TEST(TraceOfAnApartment, FileThatCannotBeWrittenStopsNothing) {
  StatementTrace trace;
  trace.turn(true);
  trace.writeTo("/nowhere/at/all.txt");
  EXPECT_NO_THROW(trace.statement({1, "SELECT", 0, 0, 0}));
  EXPECT_EQ(trace.entries().size(), 1U);
}

Date localDate(std::time_t seconds) {
  std::tm local{};
  localtime_r(&seconds, &local);
  return Date::of({local.tm_year + 1900, local.tm_mon + 1, local.tm_mday, local.tm_hour,
                   local.tm_min, local.tm_sec});
}

TEST(ClockOfAnApartment, ShowsLocalTime) {
  const Clock clock;
  const Date before = localDate(std::time(nullptr));
  const Date now = clock.now();
  EXPECT_LE(before, now);
  EXPECT_LE(now, localDate(std::time(nullptr)));
}

TEST(ClockOfAnApartment, MayBeFixedAndReleased) {
  Clock clock;
  const Date moment = Date::of({2026, 11, 21, 10, 30, 0});
  clock.fix(moment);
  EXPECT_EQ(clock.now(), moment);
  EXPECT_EQ(clock.today(), Date::of(2026, 11, 21));
  clock.release();
  EXPECT_NE(clock.now(), moment);
}

TEST(ClockOfAnApartment, IsThatOfItsStatements) {
  Shop shop;
  shop.run("INSERT INTO Bancos (Codigo) VALUES ('1')");  // leaves an idle session
  const Date moment = Date::of({2026, 11, 21, 10, 30, 15});
  shop.apartment().clock().fix(moment);
  EXPECT_EQ(shop.value("SELECT Now() AS a FROM Bancos"), Variant(moment));
  EXPECT_EQ(shop.value("SELECT Date() AS a FROM Bancos"), Variant(Date::of(2026, 11, 21)));
  EXPECT_EQ(shop.text("SELECT Format(Time(), 'hh:nn:ss') AS a FROM Bancos"), "10:30:15");
  EXPECT_EQ(shop.text("SELECT Count(*) AS n FROM Bancos WHERE Date() = #11/21/2026#"), "1");
  {
    Apartment other(shop.installationPtr());
    EXPECT_NE(shop.value("SELECT Now() AS a FROM Bancos"), Variant(moment));
  }
  shop.apartment().clock().release();
  EXPECT_NE(shop.value("SELECT Now() AS a FROM Bancos"), Variant(moment));
}

TEST(ClockOfAnApartment, OutlivesItInItsConnections) {
  test::TemporaryFolder folder;
  ConnectionPtr connection;
  {
    Apartment apartment(Installation::create(folder.path() / "shop", fastSettings()));
    apartment.clock().fix(Date::of(2026, 11, 21));
    connection = DataSession().OpenConnection(1);
  }
  Recordset rows;
  rows.Open(Statement("SELECT Date() AS a FROM Tavelor_Schema"), connection);
  EXPECT_EQ(rows.Field(0).Value(), Variant(Date::of(2026, 11, 21)));
}

class RecordingHandler final : public PromptHandler {
 public:
  void message(const Prompt& prompt) override { last = prompt; }
  Variant askInput(const std::string& prompt) override {
    last = {prompt, "", PromptKind::kPlain};
    return "31/12/26";
  }
  bool question(const Prompt& prompt) override {
    last = prompt;
    return true;
  }
  void beep() override { ++beeps; }

  Prompt last;
  int beeps = 0;
};

TEST(Prompts, WithoutAHandlerMessagesAreKeptAndQuestionsAnswerNo) {
  Shop shop;
  PromptGlobal& prompts = shop.apartment().promptGlobal();
  prompts.Message("Cliente moroso", "", "");
  prompts.Message(Variant(1.5));
  prompts.Message("Error en X", "Error", PromptKind::kCritical);
  EXPECT_FALSE(prompts.Question("¿Desea continuar?", "Confirmar"));
  EXPECT_EQ(prompts.AskInput("Fecha"), Variant(""));
  prompts.Beep();
  ASSERT_EQ(prompts.messages().size(), 3U);
  EXPECT_EQ(prompts.messages()[0].text, "Cliente moroso");
  EXPECT_EQ(prompts.messages()[1].text, "1,5");
  EXPECT_EQ(prompts.messages()[2].title, "Error");
  EXPECT_EQ(prompts.messages()[2].kind, PromptKind::kCritical);
  EXPECT_EQ(prompts.beeps(), 1);
  prompts.clearMessages();
  EXPECT_TRUE(prompts.messages().empty());
}

TEST(Prompts, KeepsTheLastMessagesOnly) {
  PromptGlobal prompts(Locale::spanish());
  for (std::size_t i = 0; i < PromptGlobal::kKept + 5; ++i) prompts.Message(std::to_string(i));
  EXPECT_EQ(prompts.messages().size(), PromptGlobal::kKept);
  EXPECT_EQ(prompts.messages().front().text, "5");
}

TEST(Prompts, NullMessageIsAnError) {
  PromptGlobal prompts(Locale::spanish());
  EXPECT_EQ(errorOf([&] { prompts.Message(Variant(Null())); }), errors::kInvalidUseOfNull);
  EXPECT_TRUE(prompts.messages().empty());
}

TEST(Prompts, HandlerIsAskedWhetherGivenBeforeOrAfterTheFirstUse) {
  for (const bool before : {true, false}) {
    Shop shop;
    const auto handler = std::make_shared<RecordingHandler>();
    if (before) shop.apartment().setPromptHandler(handler);
    PromptGlobal& prompts = shop.apartment().promptGlobal();
    if (!before) shop.apartment().setPromptHandler(handler);
    prompts.Message("text", "title");
    EXPECT_EQ(handler->last.text, "text");
    EXPECT_EQ(handler->last.title, "title");
    EXPECT_TRUE(prompts.Question("¿Sí?"));
    EXPECT_EQ(prompts.AskInput("Fecha"), Variant("31/12/26"));
    prompts.Beep();
    EXPECT_EQ(handler->beeps, 1);
    EXPECT_TRUE(prompts.messages().empty());
    EXPECT_EQ(prompts.beeps(), 0);
    shop.apartment().setPromptHandler(nullptr);
    EXPECT_FALSE(prompts.Question("¿Sí?"));
  }
}

}  // namespace
}  // namespace tavelor

// SPDX-License-Identifier: MIT
// Making and opening installations, and everything that may be wrong with one.
#include "tavelor/services/installation.hpp"

#include <gmock/gmock.h>

#include "tavelor/platform/locale.hpp"
#include "tavelor/services/engine/catalogue.hpp"
#include "tavelor/services/engine/engine.hpp"
#include "tavelor/services/registry_tree.hpp"
#include "tavelor/services/settings_file.hpp"
#include "tavelor/services/sqlite/sqlite_engine.hpp"
#include "tests/services/faults.hpp"
#include "tests/support/engines.hpp"

namespace tavelor {
namespace {

namespace fs = std::filesystem;
using test::errorOf;
using test::fastSettings;
using test::raisedBy;
using ::testing::AllOf;
using ::testing::HasSubstr;

class InstallationFolder : public ::testing::Test {
 protected:
  void SetUp() override { TAVELOR_ONLY_IN_FILES("settings and files are what it looks at"); }
  std::shared_ptr<Installation> create() { return Installation::create(place_, fastSettings()); }
  std::unique_ptr<engine::Session> session(const std::string& file, bool make = false) const {
    engine::OpenOptions options;
    options.path = (place_ / file).string();
    options.create = make;
    return engine::sqliteEngine().open(options);
  }
  Error openError() const {
    return raisedBy([&] { Installation::open(place_); });
  }
  fs::path settingsFile() const { return place_ / Installation::kSettingsFile; }
  void replaceInSettings(const std::string& what, const std::string& by) const {
    std::string text = test::readFile(settingsFile());
    const std::size_t place = text.find(what);
    ASSERT_NE(place, std::string::npos) << what << " in " << text;
    test::writeFile(settingsFile(), text.replace(place, what.size(), by));
  }

  test::TemporaryFolder folder_;
  fs::path place_ = folder_.path() / "shop";
};

TEST_F(InstallationFolder, CreateMakesSettingsDatabasesRegistryAndFolders) {
  create();
  for (const char* file : {"tavelor.xml", "main.db", "documents.db", "historic.db", "import.db",
                           "further.db", "registry.db"}) {
    EXPECT_TRUE(fs::is_regular_file(place_ / file)) << file;
  }
  for (const char* folder : {"rpt", "export", "doc", "txt", "email"}) {
    EXPECT_TRUE(fs::is_directory(place_ / folder)) << folder;
  }
}

TEST_F(InstallationFolder, WhatIsCreatedOpens) {
  create();
  const auto opened = Installation::open(place_);
  EXPECT_EQ(opened->folder(), place_);
  EXPECT_EQ(opened->locale()->name, "es-ES");
  EXPECT_FALSE(opened->settings().synchronous);
}

TEST_F(InstallationFolder, RelativeFolderAndSeparatorAtTheEndMeanTheSamePlace) {
  create();
  EXPECT_EQ(Installation::open(place_ / "")->folder(), place_);
  EXPECT_EQ(Installation::open(fs::relative(place_))->folder(), fs::absolute(place_));
}

TEST_F(InstallationFolder, VersionRecordFormsTheRegistryRoots) {
  const auto made = create();
  const VersionRecord& version = made->version();
  EXPECT_EQ(version.folder, place_);
  EXPECT_EQ(version.company, "Merivan");
  EXPECT_EQ(version.product, "Tavelor");
  EXPECT_EQ(version.major, 1);
  EXPECT_EQ(version.minor, 0);
  EXPECT_EQ(version.registryRoot(), "SOFTWARE\\Merivan\\Tavelor\\1.0");
  EXPECT_EQ(version.sessionRoot(), "SOFTWARE\\Merivan\\Global\\Configuracion\\Sesion\\");
}

TEST_F(InstallationFolder, EachDatabaseHasItsTables) {
  const auto made = create();
  for (const int selector : {0, 1, 4, 5}) {
    EXPECT_NE(made->catalogue(selector)->find("Articulos"), nullptr) << selector;
    EXPECT_NE(made->catalogue(selector)->find("Numeradores"), nullptr) << selector;
  }
  for (const char* table : {"Tickets", "HTickets", "Tickets_Lineas", "Tickets_Cabecera",
                            "Tickets_Comentarios", "HTickets_Lineas_Impuestos"}) {
    EXPECT_NE(made->catalogue(3)->find(table), nullptr) << table;
  }
  EXPECT_EQ(made->catalogue(3)->find("Bancos"), nullptr);
  EXPECT_EQ(made->catalogue(1)->find("Tickets"), nullptr);
}

TEST_F(InstallationFolder, CreateRefusesAnInstallationAndLeavesItAlone) {
  create();
  const std::string before = test::readFile(settingsFile());
  Settings other = fastSettings();
  other.company = "Another";
  const Error error = raisedBy([&] { Installation::create(place_, other); });
  EXPECT_EQ(error.number(), errors::kPathAccess);
  EXPECT_THAT(error.description(), HasSubstr(place_.string()));
  EXPECT_EQ(test::readFile(settingsFile()), before);
}

TEST_F(InstallationFolder, FailedCreateLeavesNoInstallationAndMayBeRepeated) {
  fs::create_directories(place_ / "historic.db");
  const Error error = raisedBy([&] { create(); });
  EXPECT_THAT(error.description(), HasSubstr("historic.db"));
  EXPECT_FALSE(fs::exists(settingsFile()));
  EXPECT_EQ(openError().number(), errors::kFileNotFound);

  fs::remove(place_ / "historic.db");
  create();
  EXPECT_NO_THROW(Installation::open(place_));
}

TEST_F(InstallationFolder, CreateThatDiedHalfWayMayBeRepeated) {
  test::Child child([this] {
    create();
    fs::remove(settingsFile());  // what a death before the last step leaves
    fs::remove(place_ / "import.db");
    test::writeFile(place_ / "further.db", "");
  });
  ASSERT_TRUE(child.wait());
  const auto made = create();
  EXPECT_NE(made->catalogue(5)->find("Articulos"), nullptr);
  EXPECT_NE(made->catalogue(0)->find("Articulos"), nullptr);
}

TEST_F(InstallationFolder, ProcessKilledWhileCreatingLeavesNothingOrAll) {
  for (int milliseconds = 0; milliseconds < 60; milliseconds += 6) {
    fs::remove_all(place_);
    test::Child child([this] { create(); });
    std::this_thread::sleep_for(std::chrono::milliseconds(milliseconds));
    child.kill();
    if (!fs::exists(settingsFile())) create();
    EXPECT_NO_THROW(Installation::open(place_));
  }
}

TEST_F(InstallationFolder, CreateDoesNotTouchADatabaseOfSomethingElse) {
  fs::create_directories(place_);
  session("main.db", true)->execute("CREATE TABLE Other (x INTEGER)");
  const Error error = raisedBy([&] { create(); });
  EXPECT_EQ(error.number(), errors::kUnspecified);
  EXPECT_THAT(error.description(), HasSubstr("main.db"));
  EXPECT_EQ(session("main.db")->describe().tables().size(), 1U);
}

TEST_F(InstallationFolder, CreateRefusesWrongSettingsBeforeItMakesAnything) {
  const auto numberOf = [&](auto change) {
    Settings settings = fastSettings();
    change(settings);
    return errorOf([&] { Installation::create(place_, settings); });
  };
  EXPECT_EQ(numberOf([](Settings& s) { s.company = ""; }), errors::kInvalidCall);
  EXPECT_EQ(numberOf([](Settings& s) { s.company = "A\\B"; }), errors::kInvalidCall);
  EXPECT_EQ(numberOf([](Settings& s) { s.product = " Tavelor"; }), errors::kInvalidCall);
  EXPECT_EQ(numberOf([](Settings& s) { s.product = "a\nb"; }), errors::kInvalidCall);
  EXPECT_EQ(numberOf([](Settings& s) { s.company = "\xff"; }), errors::kInvalidCall);
  EXPECT_EQ(numberOf([](Settings& s) { s.locale = "xx"; }), errors::kInvalidCall);
  EXPECT_EQ(numberOf([](Settings& s) { s.currencyDecimals = -1; }), errors::kInvalidCall);
  EXPECT_EQ(numberOf([](Settings& s) { s.busyTimeoutMs = -1; }), errors::kInvalidCall);
  EXPECT_EQ(numberOf([](Settings& s) { s.databases.clear(); }), errors::kInvalidCall);
  EXPECT_EQ(numberOf([](Settings& s) { s.databases[1].selector = 1; }), errors::kInvalidCall);
  EXPECT_EQ(numberOf([](Settings& s) { s.databases[0].engine = "none"; }), errors::kInvalidCall);
  EXPECT_EQ(numberOf([](Settings& s) { s.registryFile = ""; }), errors::kInvalidCall);
  EXPECT_FALSE(fs::exists(place_));
}

TEST_F(InstallationFolder, FolderThatCannotBeMadeIsNamed) {
  test::writeFile(place_, "a file");
  const Error error = raisedBy([&] { create(); });
  EXPECT_EQ(error.number(), errors::kPathAccess);
  EXPECT_THAT(error.description(), HasSubstr(place_.string()));
}

TEST_F(InstallationFolder, PathThatTheSystemFindsTooLongIsAnErrorOfItsOwn) {
  for (const std::string& name : {std::string(300, 'x'), std::string(5000, 'x')}) {
    place_ = folder_.path() / name;
    EXPECT_EQ(raisedBy([&] { create(); }).number(), errors::kPathAccess);
    EXPECT_EQ(openError().number(), errors::kPathAccess);
  }
  EXPECT_TRUE(fs::is_empty(folder_.path()));
}

TEST_F(InstallationFolder, PathThatTheEngineFindsTooLongIsNamedWithItsLength) {
  for (int i = 0; i < 6; ++i) place_ /= std::string(100, 'x');
  const Error error = raisedBy([&] { create(); });
  EXPECT_EQ(error.number(), errors::kPathAccess);
  EXPECT_THAT(error.description(), HasSubstr("main.db is longer than the 504 bytes"));
  EXPECT_EQ(openError().number(), errors::kFileNotFound) << "it is no installation";
}

/// Runs `work` in a process that has no rights but those of everybody.
template <typename Work>
bool holdsForNobody(Work work) {
  constexpr unsigned kNobody = 65534;
  test::Child child([&] {
    if (::geteuid() == 0 && ::setresuid(kNobody, kNobody, kNobody) != 0) ::_exit(1);
    if (!work()) ::_exit(1);
  });
  return child.wait();
}

TEST_F(InstallationFolder, WithoutRightsIsNamed) {
  fs::permissions(folder_.path(), fs::perms{0755});
  const auto isRefusedWith = [&](const fs::path& named, auto action) {
    return holdsForNobody([&] {
      const Error error = raisedBy(action);
      return error.number() == errors::kPathAccess &&
             error.description().find(named.string()) != std::string::npos;
    });
  };
  EXPECT_TRUE(isRefusedWith(place_, [&] { create(); }));
  EXPECT_FALSE(fs::exists(place_));
  create();
  EXPECT_TRUE(isRefusedWith(place_ / "main.db", [&] { Installation::open(place_); }));
  fs::permissions(settingsFile(), fs::perms{0600});
  EXPECT_TRUE(isRefusedWith(settingsFile(), [&] { Installation::open(place_); }));
  fs::permissions(place_, fs::perms{0700});
  EXPECT_TRUE(isRefusedWith(place_, [&] { Installation::open(place_); }));
}

TEST_F(InstallationFolder, OpenOfAFolderWithoutSettingsIsRefused) {
  EXPECT_EQ(openError().number(), errors::kFileNotFound);
  fs::create_directories(place_);
  const Error error = openError();
  EXPECT_EQ(error.number(), errors::kFileNotFound);
  EXPECT_THAT(error.description(), HasSubstr(place_.string()));
  EXPECT_TRUE(fs::is_empty(place_));
}

TEST_F(InstallationFolder, FolderInThePlaceOfTheSettingsIsNamed) {
  fs::create_directories(settingsFile());
  const Error error = openError();
  EXPECT_EQ(error.number(), errors::kPathAccess);
  EXPECT_THAT(error.description(), HasSubstr(settingsFile().string()));
}

TEST_F(InstallationFolder, SettingsThatAreNoXmlGiveLineAndColumn) {
  create();
  replaceInSettings("<formats ", "<formats <");
  const Error error = openError();
  EXPECT_EQ(error.number(), errors::kInvalidCall);
  EXPECT_THAT(error.description(), AllOf(HasSubstr("tavelor.xml"), HasSubstr("line 6, column")));
}

TEST_F(InstallationFolder, CutOrEmptySettingsAreRefusedAndNothingIsLost) {
  create();
  const std::string whole = test::readFile(settingsFile());
  for (std::size_t length = 0; length + 5 < whole.size(); length += 37) {
    test::writeFile(settingsFile(), whole.substr(0, length));
    EXPECT_EQ(openError().number(), errors::kInvalidCall) << length;
  }
  test::writeFile(settingsFile(), whole);
  EXPECT_NO_THROW(Installation::open(place_));
}

TEST_F(InstallationFolder, HostileSettingsAreRefused) {
  create();
  std::string deep;
  for (int i = 0; i < 100'000; ++i) deep += "<a>";
  for (const std::string& hostile :
       {deep, std::string(2 << 20, ' '), std::string("\0\0\0\0", 4), std::string("\xff\xfe<"),
        std::string("<!DOCTYPE x [<!ENTITY e 'es-ES'>]><installation format='1'>"
                    "<locale>&e;</locale></installation>"),
        std::string("<installation format='1'>text</installation>")}) {
    test::writeFile(settingsFile(), hostile);
    EXPECT_EQ(openError().number(), errors::kInvalidCall) << hostile.substr(0, 20);
  }
}

TEST_F(InstallationFolder, MisspeltSettingNamesTheNearestOne) {
  create();
  replaceInSettings("<locale>es-ES</locale>", "<locales>es-ES</locales>");
  EXPECT_THAT(openError().description(),
              AllOf(HasSubstr("line 5"), HasSubstr("\"locales\""), HasSubstr("\"locale\"")));
}

TEST_F(InstallationFolder, MisspeltAttributeNamesTheNearestOne) {
  create();
  replaceInSettings("busy-timeout-ms", "busy-timeout");
  EXPECT_THAT(openError().description(),
              AllOf(HasSubstr("\"busy-timeout\""), HasSubstr("\"busy-timeout-ms\"")));
}

TEST_F(InstallationFolder, WrongValuesSayWhatTheyShouldBe) {
  create();
  const std::string whole = test::readFile(settingsFile());
  const auto description = [&](const std::string& what, const std::string& by) {
    test::writeFile(settingsFile(), whole);
    replaceInSettings(what, by);
    const Error error = openError();
    EXPECT_EQ(error.number(), errors::kInvalidCall) << by;
    return error.description();
  };
  EXPECT_THAT(description("busy-timeout-ms=\"5000\"", "busy-timeout-ms=\"5 s\""),
              HasSubstr("whole number"));
  EXPECT_THAT(description("currency-decimals=\"2\"", "currency-decimals=\"99\""),
              HasSubstr("from 0 to 6"));
  EXPECT_THAT(description("synchronous=\"false\"", "synchronous=\"no\""),
              HasSubstr("true or false"));
  EXPECT_THAT(description("es-ES", "es-XX"), HasSubstr("neutral"));
  EXPECT_THAT(description("selector=\"3\"", "selector=\"1\""), HasSubstr("given twice"));
  EXPECT_THAT(description("engine=\"sqlite\"", "engine=\"abacus\""), HasSubstr("abacus"));
  EXPECT_THAT(description("format=\"1\"", "format=\"2\""), HasSubstr("format"));
  EXPECT_THAT(description("<company>Merivan</company>", "<company/>"), HasSubstr("company"));
  EXPECT_THAT(description("<company>Merivan", "<company><b/>Merivan"),
              HasSubstr("must hold a text"));
  EXPECT_THAT(description("file=\"main.db\"", "file=\"main.db\" serves-as=\"x\""),
              HasSubstr("serves-as"));
}

// A setting that is silently ignored is worse than a program that does not start.
TEST_F(InstallationFolder, WhatWouldBeIgnoredIsRefused) {
  create();
  const std::string whole = test::readFile(settingsFile());
  const auto description = [&](const std::string& what, const std::string& by) {
    test::writeFile(settingsFile(), whole);
    replaceInSettings(what, by);
    const Error error = openError();
    EXPECT_EQ(error.number(), errors::kInvalidCall) << by;
    return error.description();
  };
  EXPECT_THAT(description("<locale>", "<company>Otra</company>\n<locale>"),
              AllOf(HasSubstr("line 5"), HasSubstr("<company> is given twice")));
  EXPECT_THAT(description("file=\"registry.db\"", "file=\"registry.db\" file=\"other.db\""),
              HasSubstr("\"file\" is given twice"));
  EXPECT_THAT(description("<trace on=\"false\" file=\"\" />", "<trace><on>true</on></trace>"),
              HasSubstr("<trace> takes attributes only"));
  EXPECT_THAT(description("<registry file=\"registry.db\" />", "<registry>other.db</registry>"),
              HasSubstr("<registry> takes attributes only"));
  EXPECT_THAT(description("<folders", "<folders>text</folders>\n<folders"),
              HasSubstr("<folders> takes attributes only"));
}

// One would spoil what the other writes there: the second database would lack its tables, and a
// line of the trace is no page of a database.
TEST_F(InstallationFolder, TwoUsesOfOneFileAreRefusedBeforeAnythingIsMade) {
  Settings settings = fastSettings();
  const auto description = [&] {
    const Error error = raisedBy([&] { Installation::create(place_, settings); });
    EXPECT_EQ(error.number(), errors::kInvalidCall);
    EXPECT_FALSE(fs::exists(place_));
    return error.description();
  };
  settings.databases[1].file = "main.db";
  EXPECT_THAT(description(), AllOf(HasSubstr("database 1"), HasSubstr("database 3")));
  settings.databases[1].file = (place_ / "x" / ".." / "main.db").string();
  EXPECT_THAT(description(), AllOf(HasSubstr("database 1"), HasSubstr("database 3")));
  settings = fastSettings();
  settings.registryFile = "main.db";
  EXPECT_THAT(description(), AllOf(HasSubstr("database 1"), HasSubstr("the registry")));
  settings = fastSettings();
  settings.traceFile = "./documents.db";
  EXPECT_THAT(description(), AllOf(HasSubstr("database 3"), HasSubstr("the trace")));
  settings.traceFile = "tavelor.xml";
  EXPECT_THAT(description(), AllOf(HasSubstr("the settings"), HasSubstr("the trace")));
}

TEST_F(InstallationFolder, SettingsReadAsTheyWereWritten) {
  Settings written;
  written.company = "Hermanos <Ñandú> & \"Cía\"";
  written.product = "Tienda 2";
  written.locale = "neutral";
  written.amountFormat = "#,##0.00 €";
  written.quantityFormat = "0.###";
  written.currencyDecimals = 3;
  written.databases = {{1, "principal", "sqlite", "d/m&n.db", true},
                       {7, "otra", "sqlite", "/tmp/x.db", false}};
  written.registryFile = "r.db";
  written.synchronous = false;
  written.busyTimeoutMs = 1;
  written.exportFolder = "/srv/e";
  written.documentFolder = "d";
  written.textFolder = "t";
  written.emailTextFolder = "t/e";
  written.trace = true;
  written.traceFile = "trace.txt";
  const fs::path file = folder_.path() / "s.xml";
  writeSettings(file, written);
  const Settings read = readSettings(file);
  EXPECT_EQ(read.company, written.company);
  EXPECT_EQ(read.product, written.product);
  EXPECT_EQ(read.locale, written.locale);
  EXPECT_EQ(read.amountFormat, written.amountFormat);
  EXPECT_EQ(read.quantityFormat, written.quantityFormat);
  EXPECT_EQ(read.currencyDecimals, written.currencyDecimals);
  ASSERT_EQ(read.databases.size(), 2U);
  EXPECT_EQ(read.databases[0].selector, 1);
  EXPECT_EQ(read.databases[0].label, "principal");
  EXPECT_EQ(read.databases[0].engine, "sqlite");
  EXPECT_EQ(read.databases[0].file, "d/m&n.db");
  EXPECT_TRUE(read.databases[0].servesAsServer);
  EXPECT_EQ(read.databases[1].selector, 7);
  EXPECT_FALSE(read.databases[1].servesAsServer);
  EXPECT_EQ(read.registryFile, written.registryFile);
  EXPECT_EQ(read.synchronous, written.synchronous);
  EXPECT_EQ(read.busyTimeoutMs, written.busyTimeoutMs);
  EXPECT_EQ(read.exportFolder, written.exportFolder);
  EXPECT_EQ(read.documentFolder, written.documentFolder);
  EXPECT_EQ(read.textFolder, written.textFolder);
  EXPECT_EQ(read.emailTextFolder, written.emailTextFolder);
  EXPECT_EQ(read.trace, written.trace);
  EXPECT_EQ(read.traceFile, written.traceFile);
}

TEST_F(InstallationFolder, AFormatWhoseNumbersDoNotReadAgainIsRefusedWhenTheSettingsAreOpened) {
  const fs::path file = folder_.path() / "s.xml";
  const auto opened = [&](const char* kind, const char* mask) -> std::string {
    test::writeFile(
        file, std::string("<installation format='1'><company>Tienda</company><formats ") + kind +
                  "='" + mask + "'/></installation>");
    try {
      readSettings(file);
    } catch (const Error& error) {
      EXPECT_EQ(error.number(), errors::kInvalidCall);
      return error.description();
    }
    return "";
  };
  EXPECT_THAT(opened("quantity", "#,###.##"), HasSubstr("the quantity format \"#,###.##\""));
  EXPECT_THAT(opened("quantity", "0,"), HasSubstr("the quantity format"));
  EXPECT_THAT(opened("amount", "0%"), HasSubstr("the amount format"));
  EXPECT_EQ(opened("quantity", "#,##0.###"), "");
  EXPECT_EQ(opened("amount", "#,##0"), "");
}

TEST_F(InstallationFolder, SettingsThatAreLeftOutHaveTheirDefaults) {
  const fs::path file = folder_.path() / "s.xml";
  test::writeFile(file, "<installation format='1'><company>Tienda</company></installation>");
  const Settings read = readSettings(file);
  EXPECT_EQ(read.company, "Tienda");
  EXPECT_EQ(read.product, "Tavelor");
  EXPECT_EQ(read.amountFormat, "#,##0.00");
  EXPECT_EQ(read.databases.size(), 5U);
  EXPECT_TRUE(read.synchronous);
}

TEST_F(InstallationFolder, RefusedSettingsLeaveTheFileAsItWas) {
  create();
  const std::string before = test::readFile(settingsFile());
  Settings wrong;
  wrong.locale = "xx";
  EXPECT_EQ(errorOf([&] { Installation::saveSettings(place_, wrong); }), errors::kInvalidCall);
  EXPECT_EQ(test::readFile(settingsFile()), before);
}

TEST_F(InstallationFolder, SettingsThatCannotBeWrittenLeaveNoTemporaryFile) {
  fs::create_directories(settingsFile() / "full");  // a folder can't be replaced by a file
  const Error error = raisedBy([&] { Installation::saveSettings(place_, Settings()); });
  EXPECT_EQ(error.number(), errors::kPathAccess);
  EXPECT_EQ(std::distance(fs::directory_iterator(place_), fs::directory_iterator()), 1);
  EXPECT_EQ(errorOf([&] { Installation::saveSettings(place_ / "no", Settings()); }),
            errors::kPathAccess);
}

TEST_F(InstallationFolder, KilledWriterLeavesOldOrNewSettings) {
  create();
  test::Child child([this] {
    Settings settings = fastSettings();
    for (int i = 0;; ++i) {
      settings.product = "Tavelor " + std::to_string(i);
      Installation::saveSettings(place_, settings);
    }
  });
  ASSERT_TRUE(test::eventually(
      [&] { return readSettings(settingsFile()).product.starts_with("Tavelor 1"); }));
  for (int i = 0; i < 200; ++i) EXPECT_NO_THROW(readSettings(settingsFile()));
  child.kill();
  EXPECT_THAT(readSettings(settingsFile()).product, HasSubstr("Tavelor "));
}

TEST_F(InstallationFolder, MissingDatabaseIsNamedAndNotMade) {
  create();
  fs::remove(place_ / "documents.db");
  const Error error = openError();
  EXPECT_EQ(error.number(), errors::kFileNotFound);
  EXPECT_THAT(error.description(), HasSubstr("documents.db"));
  EXPECT_FALSE(fs::exists(place_ / "documents.db"));
}

TEST_F(InstallationFolder, DamagedDatabaseIsNamedAndLeftAlone) {
  create();
  const std::string damage(20000, 'x');
  test::writeFile(place_ / "main.db", damage);
  const Error error = openError();
  EXPECT_EQ(error.number(), errors::kUnspecified);
  EXPECT_THAT(error.description(), HasSubstr("main.db"));
  EXPECT_EQ(test::readFile(place_ / "main.db"), damage);
}

TEST_F(InstallationFolder, EmptiedDatabaseIsNotTakenForANewOne) {
  create();
  test::writeFile(place_ / "main.db", "");
  const Error error = openError();
  EXPECT_EQ(error.number(), errors::kUnspecified);
  EXPECT_THAT(error.description(), HasSubstr("main.db"));
}

TEST_F(InstallationFolder, FolderInThePlaceOfADatabaseIsNamed) {
  create();
  fs::remove(place_ / "main.db");
  fs::create_directory(place_ / "main.db");
  const Error error = openError();
  EXPECT_EQ(error.number(), errors::kPathAccess);
  EXPECT_THAT(error.description(), HasSubstr("main.db"));
}

TEST_F(InstallationFolder, MissingRegistryIsNamed) {
  create();
  fs::remove(place_ / "registry.db");
  EXPECT_THAT(openError().description(), HasSubstr("registry.db"));
}

TEST_F(InstallationFolder, NewerDatabaseIsRefusedAndLeftAlone) {
  create();
  session("main.db")->execute("UPDATE Tavelor_Schema SET Version = 1000");
  const std::string before = test::readFile(place_ / "main.db");
  const Error error = openError();
  EXPECT_EQ(error.number(), errors::kUnspecified);
  EXPECT_THAT(error.description(), AllOf(HasSubstr("main.db"), HasSubstr("1000")));
  EXPECT_EQ(test::readFile(place_ / "main.db"), before);
}

TEST_F(InstallationFolder, ReadOnlyDatabaseIsNamed) {
  if (::geteuid() == 0) GTEST_SKIP() << "root may write everywhere";
  create();
  fs::permissions(place_ / "main.db", fs::perms::owner_read);
  const Error error = openError();
  EXPECT_EQ(error.number(), errors::kPathAccess);
  EXPECT_THAT(error.description(), HasSubstr("main.db"));
}

TEST_F(InstallationFolder, UnreadableSettingsAreNamed) {
  if (::geteuid() == 0) GTEST_SKIP() << "root may read everywhere";
  create();
  fs::permissions(settingsFile(), fs::perms::none);
  const Error error = openError();
  EXPECT_EQ(error.number(), errors::kPathAccess);
  EXPECT_THAT(error.description(), HasSubstr(settingsFile().string()));
}

TEST_F(InstallationFolder, UnknownSelectorIsOutOfRange) {
  const auto made = create();
  for (const int selector : {2, -1, 6}) {
    EXPECT_EQ(errorOf([&] { made->database(selector); }), errors::kSubscriptOutOfRange);
    EXPECT_EQ(errorOf([&] { made->catalogue(selector); }), errors::kSubscriptOutOfRange);
  }
}

TEST_F(InstallationFolder, FilesAndFoldersMayLieElsewhere) {
  Settings settings = fastSettings();
  settings.databases = {{1, "main", "sqlite", (folder_.path() / "data.db").string(), false}};
  settings.exportFolder = (folder_.path() / "out/").string();
  settings.textFolder = "deep/text";
  const auto made = Installation::create(place_, settings);
  EXPECT_TRUE(fs::is_regular_file(folder_.path() / "data.db"));
  EXPECT_EQ(made->databaseFile(1), folder_.path() / "data.db");
  EXPECT_EQ(made->exportFolder(), folder_.path() / "out");
  EXPECT_TRUE(fs::is_directory(place_ / "deep" / "text"));
}

TEST_F(InstallationFolder, PathsWithSpecialCharactersWork) {
  place_ = folder_.path() / "tienda ñ '1' %20 #?&";
  create();
  EXPECT_NO_THROW(Installation::open(place_));
}

TEST_F(InstallationFolder, TwoProcessesThatCreateAtOnceMakeOneWholeInstallation) {
  const auto work = [this] {
    try {
      create();
    } catch (const Error& error) {
      if (error.number() != errors::kPathAccess) throw;  // the other one was there first
    }
  };
  test::Child first(work);
  test::Child second(work);
  EXPECT_TRUE(first.wait());
  EXPECT_TRUE(second.wait());
  EXPECT_NO_THROW(Installation::open(place_));
}

}  // namespace
}  // namespace tavelor

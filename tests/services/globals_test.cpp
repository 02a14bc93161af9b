// SPDX-License-Identifier: MIT
// Lists of settings, session values, number formats, paths and permissions.
#include <filesystem>

#include <gmock/gmock.h>

#include "tavelor/platform/format.hpp"
#include "tavelor/platform/locale.hpp"
#include "tavelor/services/format_global.hpp"
#include "tavelor/services/list_config.hpp"
#include "tavelor/services/paths_service.hpp"
#include "tavelor/services/registry_store.hpp"
#include "tavelor/services/registry_tree.hpp"
#include "tavelor/services/session_global.hpp"
#include "tests/services/faults.hpp"
#include "tests/support/engines.hpp"

namespace tavelor {
namespace {

namespace fs = std::filesystem;
using test::errorOf;
using test::fastSettings;
using test::Shop;

constexpr const char* kKey =
    "SOFTWARE\\Merivan\\Tavelor\\1.0\\Configuracion\\registros\\Bancos\\todos\\";

TEST(ListConfigValues, KeyThatDoesNotExistGivesTheDefaults) {
  Shop shop;
  ListConfig list;
  list.Key(kKey);
  EXPECT_EQ(list.GetValue("IndexOrderField", "0"), "0");
  EXPECT_EQ(list.GetValue("Mode", ""), "");
  EXPECT_EQ(list.GetValue("Criteria"), "");
}

TEST(ListConfigValues, ValueOutlivesListApartmentAndProgram) {
  test::TemporaryFolder folder;
  {
    Apartment apartment(Installation::create(folder.path() / "shop", fastSettings()));
    ListConfig list;
    list.Key(kKey);
    list.SetValue("Mode", " DESC");
  }
  test::Child child([&] {
    Apartment apartment(Installation::open(folder.path() / "shop"));
    ListConfig list;
    list.Key(kKey);
    if (list.GetValue("Mode") != " DESC") ::_exit(1);
    list.SetValue("Mode", " ASC");
  });
  EXPECT_TRUE(child.wait());
  Apartment apartment(Installation::open(folder.path() / "shop"));
  ListConfig list;
  list.Key(kKey);
  EXPECT_EQ(list.GetValue("MODE"), " ASC");
}

TEST(ListConfigValues, StoredEmptyValueIsNotTheDefault) {
  Shop shop;
  ListConfig list;
  list.Key(kKey);
  list.SetValue("Mode", "");
  EXPECT_EQ(list.GetValue("Mode", "fallback"), "");
}

TEST(ListConfigValues, NameIsTakenAsText) {
  Shop shop;
  ListConfig list;
  list.Key(kKey);
  list.SetValue(Variant(7), "seven");
  EXPECT_EQ(list.GetValue("7"), "seven");
  EXPECT_EQ(errorOf([&] { list.GetValue(Null()); }), errors::kInvalidUseOfNull);
}

TEST(ListConfigValues, WithoutAKeyThereIsNothingToReadOrWrite) {
  Shop shop;
  ListConfig list;
  EXPECT_EQ(errorOf([&] { list.GetValue("a"); }), errors::kObjectNotSet);
  EXPECT_EQ(errorOf([&] { list.SetValue("a", "b"); }), errors::kObjectNotSet);
}

TEST(RegistryStoreTests, ValueThatIsThereIsTrueWhateverItHolds) {
  Shop shop;
  RegistryStore& store = shop.apartment().registryStore();
  const std::string base =
      store.BaseKey(shop.installation().version().registryRoot() + "\\Seguridad\\");
  EXPECT_EQ(base, "SOFTWARE\\Merivan\\Tavelor\\1.0\\Seguridad\\");
  const std::string key = base + "Seguridad\\Configuraciones\\";
  EXPECT_FALSE(store.TestValue(key, "BorrarClientes"));
  shop.apartment().registry().set(key, "BorrarClientes", "");
  EXPECT_TRUE(store.TestValue(key, "borrarclientes"));
  EXPECT_FALSE(store.TestValue(key, "Otro"));
}

TEST(RegistryStoreTests, BaseKeyEndsWithOneBackslash) {
  Shop shop;
  const RegistryStore& store = shop.apartment().registryStore();
  EXPECT_EQ(store.BaseKey("A\\B"), "A\\B\\");
  EXPECT_EQ(store.BaseKey("A\\B\\\\"), "A\\B\\");
}

TEST(SessionValues, ValueOfAKeyIsReadBackAndLeftInTheVariable) {
  Shop shop;
  SessionGlobal& session = shop.apartment().sessionGlobal();
  const std::string key = shop.installation().version().sessionRoot() + "Periodo\\";
  EXPECT_EQ(session.GetValue(key), "");
  session.SetValue(key, "2026");
  std::string period = "old";
  EXPECT_EQ(session.GetValue(key, period), "2026");
  EXPECT_EQ(period, "2026");
  EXPECT_EQ(session.GetValue("SOFTWARE\\Merivan\\Global\\Configuracion\\Sesion\\Periodo"), "2026");
}

TEST(SessionValues, NamedValuesStandBesideTheKeysOwn) {
  Shop shop;
  SessionGlobal& session = shop.apartment().sessionGlobal();
  const std::string key = shop.installation().version().sessionRoot() + "Clientes";
  EXPECT_EQ(session.GetNamedValue(key, "Serie"), "");
  session.SetValue(key, "own");
  session.SetNamedValue(key, "Serie", "A");
  EXPECT_EQ(session.GetNamedValue(key, "serie"), "A");
  EXPECT_EQ(session.GetValue(key), "own");
}

TEST(NumberFormats, AreThoseOfTheSettings) {
  {
    Shop shop;
    const FormatGlobal& formats = shop.apartment().formatGlobal();
    EXPECT_EQ(format(Variant(1234.5), formats.AmountFormat(), *Locale::spanish()), "1.234,50");
    EXPECT_EQ(format(Variant(1234.5), formats.QuantityFormat(), *Locale::spanish()), "1.234,50");
    EXPECT_EQ(formats.CurrencyDecimals(), 2);
  }
  Settings settings = fastSettings();
  settings.amountFormat = "0.0";
  settings.quantityFormat = "0.000";
  settings.currencyDecimals = 4;
  Shop shop(settings);
  EXPECT_EQ(shop.apartment().formatGlobal().AmountFormat(), "0.0");
  EXPECT_EQ(shop.apartment().formatGlobal().QuantityFormat(), "0.000");
  EXPECT_EQ(shop.apartment().formatGlobal().CurrencyDecimals(), 4);
}

TEST(NumberFormats, SqlNumberHasAPointWhateverTheLocale) {
  Shop shop;
  const FormatGlobal& formats = shop.apartment().formatGlobal();
  EXPECT_EQ(formats.SqlNumber(1.5), "1.5");
  EXPECT_EQ(formats.SqlNumber("1,5"), "1.5");
  EXPECT_EQ(formats.SqlNumber("1.234,5"), "1234.5");
  EXPECT_EQ(formats.SqlNumber(-3), "-3");
  EXPECT_EQ(formats.SqlNumber(Currency::fromScaled(12345)), "1.2345");
  EXPECT_EQ(formats.SqlNumber(Variant()), "0");
}

TEST(NumberFormats, SqlNumberRoundsToItsDecimals) {
  Shop shop;
  const FormatGlobal& formats = shop.apartment().formatGlobal();
  EXPECT_EQ(formats.SqlNumber(1.0 / 3), "0.333333");
  EXPECT_EQ(formats.SqlNumber(0.0000005), "0.000001");
  EXPECT_EQ(formats.SqlNumber(1.005, 2), "1.01");
  EXPECT_EQ(formats.SqlNumber(2.5, 0), "3");
  EXPECT_EQ(formats.SqlNumber(1e15), "1000000000000000");
}

TEST(NumberFormats, SqlNumberOfWhatIsNoNumberIsAnError) {
  Shop shop;
  const FormatGlobal& formats = shop.apartment().formatGlobal();
  EXPECT_EQ(errorOf([&] { formats.SqlNumber(Null()); }), errors::kInvalidUseOfNull);
  EXPECT_EQ(errorOf([&] { formats.SqlNumber("12x"); }), errors::kTypeMismatch);
  EXPECT_EQ(errorOf([&] { formats.SqlNumber(std::numeric_limits<double>::infinity()); }),
            errors::kOverflow);
}

TEST(Paths, AreThoseOfTheInstallation) {
  Shop shop;
  const PathsService paths;
  const fs::path folder = shop.installation().folder();
  EXPECT_EQ(paths.HtmlFile("Bancos.htm"), (folder / "rpt/Bancos.htm").string());
  EXPECT_EQ(paths.HtmlFile("Formas Pago.htm"), (folder / "rpt/Formas Pago.htm").string());
  EXPECT_EQ(paths.TxtFolder(), (folder / "txt/").string());
  EXPECT_EQ(paths.EmailTxtFolder(), (folder / "email/").string());
  EXPECT_EQ(paths.WorkPath(), folder.string());
}

TEST(Paths, MissingFolderIsMade) {
  Shop shop;
  fs::remove_all(fs::path(shop.installation().folder()) / "txt");
  EXPECT_TRUE(fs::is_directory(PathsService().TxtFolder()));
}

TEST(Paths, HtmlFileStaysInItsFolder) {
  Shop shop;
  EXPECT_EQ(errorOf([] { PathsService().HtmlFile("../x.htm"); }), errors::kInvalidCall);
}

TEST(Paths, FileExistsIsTrueForFilesOnly) {
  TAVELOR_ONLY_IN_FILES("it looks at the database file");
  Shop shop;
  const PathsService paths;
  EXPECT_TRUE(paths.FileExists(shop.installation().databaseFile(1)));
  EXPECT_FALSE(paths.FileExists(shop.installation().folder()));
  EXPECT_FALSE(paths.FileExists("/nowhere/at/all"));
  EXPECT_FALSE(paths.FileExists(""));
  EXPECT_FALSE(paths.FileExists(shop.installation().databaseFile(1) + std::string("\0.db", 4)));
  EXPECT_FALSE(paths.FileExists(std::string(100000, 'x')));
}

}  // namespace
}  // namespace tavelor

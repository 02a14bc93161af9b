// SPDX-License-Identifier: MIT
// Whether a user may use a function of the application.
#include <gtest/gtest.h>

#include "tavelor/services/registry_store.hpp"
#include "tavelor/services/registry_tree.hpp"
#include "tests/frame/sample.hpp"

namespace tavelor {
namespace {

class PermissionsTest : public testing::Test {
 protected:
  std::string denials() {
    RegistryStore& store = shop.apartment().registryStore();
    return store.BaseKey(shop.apartment().version().registryRoot() + "\\Seguridad\\") +
           "Seguridad\\Configuraciones\\";
  }

  test::SampleShop shop;
  test::Sample sample;
};

TEST_F(PermissionsTest, ANewInstallationAllowsEverything) {
  for (const char* id : {"Borrar", "mnuTickets", "", "Ñandú"}) {
    EXPECT_TRUE(sample.SeguridadPermiso(id)) << id;
  }
}

TEST_F(PermissionsTest, AValueThatIsThereDeniesWhateverItHolds) {
  RegistryTree& tree = shop.apartment().registry();
  tree.set(denials(), "Borrar", "1");
  tree.set(denials(), "Cerrar", "");
  EXPECT_FALSE(sample.SeguridadPermiso("Borrar"));
  EXPECT_FALSE(sample.SeguridadPermiso("Cerrar"));
  EXPECT_TRUE(sample.SeguridadPermiso("Otra"));
  tree.remove(denials(), "Borrar");
  EXPECT_TRUE(sample.SeguridadPermiso("Borrar"));
}

TEST_F(PermissionsTest, TheDenialsLieBelowTheBaseOfTheStore) {
  EXPECT_TRUE(denials().starts_with("SOFTWARE\\Merivan\\Tavelor\\1.0\\Seguridad\\"));
  EXPECT_TRUE(denials().ends_with("\\Seguridad\\Configuraciones\\"));
}

TEST_F(PermissionsTest, ClassesAnswerAlike) {
  shop.apartment().registry().set(denials(), "Borrar", "1");
  const test::Sample other(test::kOtherInfo);
  EXPECT_EQ(sample.SeguridadPermiso("Borrar"), other.SeguridadPermiso("Borrar"));
  EXPECT_EQ(sample.SeguridadPermiso("Otra"), other.SeguridadPermiso("Otra"));
}

TEST_F(PermissionsTest, NoRecordSetIsNeeded) {
  EXPECT_TRUE(sample.SeguridadPermiso("Borrar"));
  EXPECT_TRUE(shop.statements().empty());
}

}  // namespace
}  // namespace tavelor

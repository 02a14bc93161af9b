// SPDX-License-Identifier: MIT
// Customers as pages: the modern one, and the one that it followed.
#include <filesystem>

#include "tavelor/frame/component.hpp"
#include "tests/classes/customers/clientes.hpp"
#include "tests/frame/approved.hpp"
#include "tests/support/form.hpp"

namespace tavelor {
namespace {

namespace fs = std::filesystem;

using test::bytesOf;
using test::errorOf;
using test::expectApproved;
using test::Grid;
using testing::ElementsAre;
using testing::HasSubstr;

constexpr std::int32_t kCentred = 0;
constexpr std::int32_t kRight = 1;
constexpr std::int32_t kLeft = 3;
const std::string kApproved = "tests/classes/customers/approved";

class CustomerPagesTest : public testing::Test {
 protected:
  CustomerPagesTest() {
    shop.apartment().clock().fix(Date::of({2026, 11, 21, 8, 5, 9}));
    shop.run(
        "INSERT INTO Clientes (Codigo, Activo, Nombre, Razon_Social, NIF, Poblacion) VALUES "
        "('00002', -1, 'Núñez & Pi', 'Núñez y Pi <b>SL</b>', 'B60000000', 'Móstoles')");
    shop.run(
        "INSERT INTO Clientes (Codigo, Activo, Razon_Social) VALUES "
        "('00001', 0, 'Obras del Sur – €')");
    customers.IniciaRs();
    page = customers.GetHtmlFile();
  }

  /// The first columns of the list: code, mark, name, company; the contact hidden; class word and
  /// number.
  const Grid grid{{{true, "Código", kLeft},
                   {true, "Activo", kCentred},
                   {true, "Nombre", kLeft},
                   {true, "Empresa", kLeft},
                   {false, "Contacto", kLeft},
                   {true, "ID_Fiscal", kCentred},
                   {true, "NIF", kRight}}};
  test::Shop shop;
  ClsClientes customers;
  fs::path page;
};

TEST_F(CustomerPagesTest, ToHtmlGridWritesTheModernPageThatWasApproved) {
  customers.ToHtmlGrid("", grid, true, "todos");
  expectApproved(page, "modern.htm", kApproved);
}

TEST_F(CustomerPagesTest, ToHtmlGridV0WritesThePlainPageThatWasApproved) {
  customers.ToHtmlGrid_V0(grid, true, "todos");
  expectApproved(page, "plain.htm", kApproved);
}

TEST_F(CustomerPagesTest, ThePersonalFolderComesFirst) {
  const fs::path folder = fs::path(shop.installation().folder()) / "ana";
  EXPECT_EQ(errorOf([&] { customers.ToHtmlGrid("ana", grid); }), errors::kPathAccess);
  fs::create_directory(folder);
  customers.ToHtmlGrid("ana\\", grid);
  EXPECT_THAT(bytesOf(folder / "Clientes.htm"), HasSubstr("<h1>Listado de Clientes</h1>"));
  EXPECT_FALSE(fs::exists(page));
}

TEST_F(CustomerPagesTest, BothPagesTakeAClonesOrderAndTheStoredFilter) {
  customers.SetOrder(0, " DESC", "lista");
  customers.SetFilter("Activo <> 0", "Filter");
  const auto codes = [&] {
    std::vector<std::string> found;
    const std::string text = bytesOf(page);
    for (std::size_t at = text.find("0000"); at != std::string::npos;
         at = text.find("0000", at + 1)) {
      if (text[at - 1] == '>') found.push_back(text.substr(at, 5));
    }
    return found;
  };
  customers.ToHtmlGrid("", grid, true, "lista");
  EXPECT_THAT(codes(), ElementsAre("00002", "00001"));
  customers.ToHtmlGrid("", grid, true, "lista", true);
  EXPECT_THAT(codes(), ElementsAre("00002"));
  customers.ToHtmlGrid_V0(grid, true, "lista");
  EXPECT_THAT(codes(), ElementsAre("00002", "00001"));
  customers.ToHtmlGrid_V0(grid, true, "lista", true);
  EXPECT_THAT(codes(), ElementsAre("00002"));
}

TEST_F(CustomerPagesTest, WithoutACloneTheRecordSetIsWalkedAndLeftAtEof) {
  customers.ToHtmlGrid("", grid);
  EXPECT_TRUE(customers.DataMember("Primary")->Eof());
  customers.ToHtmlGrid_V0(grid);
  EXPECT_TRUE(customers.DataMember("Primary")->Eof());
}

TEST_F(CustomerPagesTest, ACloneWithoutRowsWritesNoPageAndAnEmptyListOneWithItsFoot) {
  shop.run("DELETE FROM Clientes");
  customers.IniciaRs();
  customers.ToHtmlGrid("", grid, true, "todos");
  customers.ToHtmlGrid_V0(grid, true, "todos");
  EXPECT_FALSE(fs::exists(page));
  customers.ToHtmlGrid("", Grid({{true, "Código", kLeft}}));
  EXPECT_THAT(bytesOf(page), HasSubstr("<p class='footer'>0 registros \xB7 Generado el 21/11/2026 "
                                       "08:05:09</p>\r\n</body>\r\n</html>\r\n"));
  customers.ToHtmlGrid_V0(Grid({{true, "Código", kLeft}}));
  EXPECT_THAT(bytesOf(page), HasSubstr("<P><FONT Size=2>0 registros. - 21/11/2026 8:05:09"));
}

TEST_F(CustomerPagesTest, ThePagesStandAtTheEndOfTheSlots) {
  const std::vector<Member>& slots = ClsClientes::component().members();
  EXPECT_EQ(slots[slots.size() - 2].signature(),
            "ToHtmlGrid(sPersonalFolder As String, clColfields As Object, [bDoclone As Boolean], "
            "[sSelecSql As String], [bFilter As Boolean])");
  EXPECT_EQ(slots.back().signature(),
            "ToHtmlGrid_V0(clColfields As Object, [bDoclone As Boolean], [sSelecSql As String], "
            "[bFilter As Boolean])");
}

}  // namespace
}  // namespace tavelor

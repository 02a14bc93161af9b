// SPDX-License-Identifier: MIT
// Articles and customers found by the beginnings of words, on either engine.
#include "tavelor/flows/search.hpp"

#include <atomic>
#include <thread>

#include <fmt/format.h>
#include <gmock/gmock.h>

#include "tavelor/articles/articulos.hpp"
#include "tavelor/services/engine/catalogue.hpp"
#include "tavelor/services/engine/engine.hpp"
#include "tests/classes/catalogue.hpp"
#include "tests/support/shop.hpp"

namespace tavelor::flows {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::SizeIs;
using ::testing::UnorderedElementsAre;

constexpr int kMain = 1;

class Search : public ::testing::Test {
 protected:
  /// `columns` and `values` go on behind those.
  void add(const std::string& code, const std::string& description, const std::string& columns = "",
           const std::string& values = "") {
    Statement statement("INSERT INTO Articulos (Codigo, Descripcion, Activo");
    statement << Statement::trusted(columns) << ") VALUES (" << sqlText(code) << ", "
              << sqlText(description) << ", True" << Statement::trusted(values) << ")";
    place_.run(statement.text());
  }
  void barcode(int id, const std::string& code, const std::string& bars) {
    place_.run(fmt::format(
        "INSERT INTO Articulos_Codigos_barras (Id, Codigo, Codigo_barras) VALUES ({}, '{}', '{}')",
        id, code, bars));
  }
  static std::vector<std::string> codes(const std::string& words, std::size_t most = 20) {
    std::vector<std::string> found;
    for (const FoundArticle& each : findArticles({.words = words, .most = most})) {
      found.push_back(each.code);
    }
    return found;
  }
  static std::vector<std::string> customers(const std::string& words) {
    std::vector<std::string> found;
    for (const FoundCustomer& each : findCustomers({.words = words})) found.push_back(each.code);
    return found;
  }
  /// In the engine's own text, past the dialect, as another program writes.
  void engineRun(const std::string& files, const std::string& server) {
    const Installation& installation = place_.installation();
    const auto session = installation.databaseEngine(kMain).open(installation.openOptions(kMain));
    session->execute(test::runsOnServer() ? server : files);
  }

  test::Shop place_;
};

TEST_F(Search, WordsAreFoundByTheirBeginningsInAnyOrderWithoutAccentsAndCase) {
  add("1", "Aceite de Oliva Virgen Añejo 1,5 l");
  add("2", "Jabón de aceite");
  add("3", "Vinagre añejo");
  EXPECT_THAT(codes("oli ace"), ElementsAre("1"));
  EXPECT_THAT(codes("ACEITE"), ElementsAre("1", "2"));
  EXPECT_THAT(codes("anej"), ElementsAre("3", "1"));
  EXPECT_THAT(codes("Añej"), ElementsAre("3", "1"));
  EXPECT_THAT(codes("jabon"), ElementsAre("2"));
  EXPECT_THAT(codes("1,5 l"), ElementsAre("1"));
  EXPECT_THAT(codes("ace vinagre"), IsEmpty());
  EXPECT_THAT(codes("ceite"), IsEmpty());
}

TEST_F(Search, LettersOfOtherScriptsAndMarksAreFound) {
  add("1", "Calçots i col·lecció");
  add("2", "ΕΛΛΗΝΙΚΌ λάδι");
  add("3", "Чай чёрный");
  add("4", "日本茶");
  add("5", "Pinguïno L'Hospitalet");
  EXPECT_THAT(codes("calcots"), ElementsAre("1"));
  EXPECT_THAT(codes("colecc"), IsEmpty());
  EXPECT_THAT(codes("leccio col"), ElementsAre("1"));
  EXPECT_THAT(codes("λάδ ελλ"), ElementsAre("2"));
  EXPECT_THAT(codes("ЧЁР ча"), ElementsAre("3"));
  EXPECT_THAT(codes("日本"), ElementsAre("4"));
  EXPECT_THAT(codes("l'hosp pingui"), ElementsAre("5"));
}

TEST_F(Search, WhatIsAskedForExactlyComesFirstThenCodesThatBeginSo) {
  add("PAN", "Barra de cuarto");
  add("PAN-001", "Chapata");
  add("9", "Pan");
  add("8", "Pan de molde");
  add("7", "Pantalón");
  add("6", "Molde para pan");
  EXPECT_THAT(codes("pan"), ElementsAre("PAN", "PAN-001", "9", "8", "7", "6"));
  EXPECT_TRUE(findArticles({.words = "pan"}).front().isExact);
  EXPECT_FALSE(findArticles({.words = "pan"}).at(1).isExact);
  EXPECT_THAT(codes("pan-0"), ElementsAre("PAN-001"));
  EXPECT_THAT(codes("pan", 2), ElementsAre("PAN", "PAN-001"));
}

TEST_F(Search, BarcodesReferencesFamiliesAndSuppliersReferencesAreFound) {
  add("1", "Turrón", ", Referencia, Familia", ", 'TR-77', 'DULCES'");
  barcode(1, "1", "8410076472885");
  place_.run(
      "INSERT INTO Articulos_Precios_Compras (Id, Codigo, Codigo_Proveedor, Proveedor) VALUES (1, "
      "'1', 'XIX/5', '401')");
  for (const char* const words :
       {"8410076472885", "84100", "tr-77", "dulc", "xix/5", "turr 841 dul"}) {
    EXPECT_THAT(codes(words), ElementsAre("1")) << words;
  }
  EXPECT_TRUE(findArticles({.words = "8410076472885"}).front().isExact);
  EXPECT_FALSE(findArticles({.words = "dulces"}).front().isExact);
}

TEST_F(Search, ThoseOutOfUseComeLastAndInternalOnesOnlyIfAskedFor) {
  add("1", "Sal");
  add("2", "Sal gorda");
  add("3", "Sal interna", ", Interno", ", True");
  place_.run("UPDATE Articulos SET Activo = False WHERE Codigo = '1'");
  EXPECT_THAT(codes("sal"), ElementsAre("2", "1"));
  EXPECT_FALSE(findArticles({.words = "sal"}).back().isActive);
  EXPECT_THAT(findArticles({.words = "sal", .withInternal = true}), SizeIs(3));
  EXPECT_THAT(findArticles({.words = "sal", .withOutOfUse = false}), SizeIs(1));
}

TEST_F(Search, AnArticleBringsPriceTaxAndStock) {
  place_.run("INSERT INTO Tipos_Impuesto (Codigo, Impuesto) VALUES ('2', 10)");
  add("1", "Leche", ", Tarifa_A, Tarifa_B, Impuesto, Existencia, Actualizar_Stock",
      ", 1.25, 1.1, '2', 7.5, True");
  add("2", "Leche entera");
  place_.run("INSERT INTO Articulos_Tarifas (Codigo, Tarifa, Precio) VALUES ('1', 'F', 0.95)");
  const FoundArticle milk = findArticles({.words = "leche"}).front();
  EXPECT_EQ(milk.description, "Leche");
  EXPECT_EQ(milk.price, 1.25);
  EXPECT_EQ(milk.tax, 10);
  EXPECT_EQ(milk.stock, 7.5);
  EXPECT_EQ(findArticles({.words = "leche"}).back().stock, std::nullopt);
  EXPECT_EQ(findArticles({.words = "leche", .tariff = "B"}).front().price, 1.1);
  EXPECT_EQ(findArticles({.words = "leche", .tariff = "F"}).front().price, 0.95);
}

TEST_F(Search, NoWordsFindNothingAndSignsAloneOnlyACode) {
  add("+", "Suplemento");
  add("1", "Otro");
  EXPECT_THAT(codes(""), IsEmpty());
  EXPECT_THAT(codes("   "), IsEmpty());
  EXPECT_THAT(codes("%"), IsEmpty());
  EXPECT_THAT(codes("+"), ElementsAre("+"));
  EXPECT_THAT(codes("otro", 0), IsEmpty());
}

TEST_F(Search, WhatIsTypedIsNeverAnOperator) {
  add("1", "Uno and dos");
  add("2", "Near tres OR cuatro");
  for (const char* const words : {"and", "uno AND dos", "\"uno dos\"", "uno*", "-uno", "uno & dos",
                                  "dos:*", "(uno", "^uno", "Titulo : uno", "uno + dos"}) {
    EXPECT_NO_THROW(codes(words)) << words;
  }
  EXPECT_THAT(codes("uno*"), ElementsAre("1"));
  EXPECT_THAT(codes("uno AND dos"), ElementsAre("1"));
  EXPECT_THAT(codes("uno NOT dos"), IsEmpty());
  EXPECT_THAT(codes("NEAR(tres"), ElementsAre("2"));
  EXPECT_THAT(codes("uno OR cuatro"), IsEmpty());
}

TEST_F(Search, HostileTextsRaiseNothingAndAreFoundAsTheyAre) {
  std::vector<std::string> texts = test::hostileTexts();
  texts.insert(texts.end(),
               {std::string("a\0b", 3), "\xC3", "\xED\xA0\x80", std::string(100'000, 'x'),
                std::string(5'000, '"'), "\xEE\x80\x80", "\xF4\x8F\xBF\xBF", "'; DROP TABLE x; --",
                "\\", "%_", "a\tb\nc", "e\xCC\x81"});
  std::string many;
  for (int i = 0; i < 500; ++i) many += fmt::format("w{} ", i);
  texts.push_back(many);
  add("1", "Uno");
  for (const std::string& text : texts) {
    EXPECT_NO_THROW(findArticles({.words = text})) << text.substr(0, 60);
    EXPECT_NO_THROW(findCustomers({.words = text})) << text.substr(0, 60);
  }
  EXPECT_THAT(codes("uno"), ElementsAre("1"));
  const std::string odd = "Uña \"5'\" \\ {a,b} $body$ %s 100% : & | ! <-> ' OR '1'='1";
  Statement rename("UPDATE Articulos SET Descripcion = ");
  rename << sqlText(odd);
  place_.run(rename.text());
  EXPECT_THAT(codes(odd), ElementsAre("1"));
  EXPECT_THAT(codes("una body"), ElementsAre("1"));
}

TEST_F(Search, TheIndexFollowsEveryWrite) {
  add("1", "Manzana");
  add("2", "Pera");
  place_.run("UPDATE Articulos SET Descripcion = 'Melocotón' WHERE Codigo = '1'");
  EXPECT_THAT(codes("manz"), IsEmpty());
  EXPECT_THAT(codes("melo"), ElementsAre("1"));
  place_.run("UPDATE Articulos SET Codigo = '11' WHERE Codigo = '1'");
  EXPECT_THAT(codes("melo"), ElementsAre("11"));
  barcode(1, "2", "555");
  EXPECT_THAT(codes("555"), ElementsAre("2"));
  place_.run("UPDATE Articulos_Codigos_barras SET Codigo = '11'");
  EXPECT_THAT(codes("555"), ElementsAre("11"));
  place_.run("UPDATE Articulos_Codigos_barras SET Codigo_barras = '777'");
  EXPECT_THAT(codes("555"), IsEmpty());
  EXPECT_THAT(codes("777"), ElementsAre("11"));
  place_.run("DELETE FROM Articulos_Codigos_barras");
  EXPECT_THAT(codes("777"), IsEmpty());
  place_.run("DELETE FROM Articulos WHERE Codigo = '2'");
  EXPECT_THAT(codes("pera"), IsEmpty());
  place_.run("DELETE FROM Articulos");
  EXPECT_THAT(codes("melo"), IsEmpty());
}

// More rows than the file's engine lets wait for its index.
TEST_F(Search, ManyRowsAreWrittenChangedAndTakenAway) {
  for (int i = 0; i < 300; ++i) add(fmt::format("N{:03}", i), fmt::format("Tornillo {}x", i));
  EXPECT_THAT(codes("tornillo", 500), SizeIs(300));
  EXPECT_THAT(codes("torn 299x"), ElementsAre("N299"));
  EXPECT_THAT(codes("torn 7x"), ElementsAre("N007"));
  place_.run("UPDATE Articulos SET Descripcion = 'Tuerca ' & Codigo WHERE Codigo < 'N100'");
  EXPECT_THAT(codes("tornillo", 500), SizeIs(200));
  EXPECT_THAT(codes("tuer", 500), SizeIs(100));
  EXPECT_THAT(codes("tuerca n050"), ElementsAre("N050"));
  place_.run("DELETE FROM Articulos WHERE Codigo >= 'N050'");
  EXPECT_THAT(codes("tornillo"), IsEmpty());
  EXPECT_THAT(codes("tuerca", 500), SizeIs(50));
}

TEST_F(Search, OfVeryManyTheExactOneAndTheBeginningsAreFound) {
  ConnectionPtr connection = DataSession().OpenConnection(kMain);
  connection->BeginTrans();
  for (int i = 0; i < 1'500; ++i) {
    Statement statement("INSERT INTO Articulos (Codigo, Descripcion, Activo) VALUES (");
    statement << sqlText(fmt::format("A{:04}", i)) << ", "
              << sqlText(fmt::format("Bolsa para arroz {}", i)) << ", True)";
    connection->Execute(statement);
  }
  connection->CommitTrans();
  add("Z1", "Arroz");
  add("A", "Cuerda");
  add("AR", "Sedal");
  EXPECT_THAT(codes("a", 1), ElementsAre("A"));
  EXPECT_THAT(codes("ar", 2), ElementsAre("AR", "Z1"));
  EXPECT_THAT(codes("arroz", 1), ElementsAre("Z1"));
  EXPECT_THAT(codes("arroz bolsa", 500), SizeIs(::testing::Ge(400U)));
}

TEST_F(Search, WhatIsRolledBackIsNotFoundAndAnOpenTransactionFindsItsOwn) {
  add("1", "Vela");
  ConnectionPtr connection = DataSession().OpenConnection(kMain);
  connection->BeginTrans();
  for (int i = 0; i < 70; ++i) {
    Statement statement("INSERT INTO Articulos (Codigo, Descripcion, Activo) VALUES (");
    statement << sqlText(fmt::format("T{}", i)) << ", 'Vela de té', True)";
    connection->Execute(statement);
  }
  connection->Execute(Statement("DELETE FROM Articulos WHERE Codigo = '1'"));
  EXPECT_THAT(codes("vela", 500), SizeIs(70));
  connection->BeginTrans();
  connection->Execute(Statement("UPDATE Articulos SET Descripcion = 'Cirio'"));
  EXPECT_THAT(codes("cirio", 500), SizeIs(70));
  connection->RollbackTrans();
  EXPECT_THAT(codes("vela", 500), SizeIs(70));
  EXPECT_THAT(codes("cirio"), IsEmpty());
  connection->RollbackTrans();
  EXPECT_THAT(codes("vela"), ElementsAre("1"));
}

TEST_F(Search, ABatchOfARecordSetIsFound) {
  add("1", "Uno");
  add("2", "Dos");
  RecordsetPtr rows;
  ConnectionPtr connection;
  DataSession().OpenRecordset(kMain, Statement("SELECT * FROM Articulos ORDER BY Codigo"), rows,
                              connection);
  rows->Field("Descripcion").Value("Tres");
  rows->MoveNext();
  rows->Delete();
  rows->UpdateBatch();
  EXPECT_THAT(codes("tres"), ElementsAre("1"));
  EXPECT_THAT(codes("uno"), IsEmpty());
  EXPECT_THAT(codes("dos"), IsEmpty());
}

TEST_F(Search, AWriteTellsTheRowsOfItsTableAlone) {
  for (int i = 0; i < 130; ++i) add(fmt::format("{}", i), "Clavo");
  ConnectionPtr connection = DataSession().OpenConnection(kMain);
  EXPECT_EQ(connection->Execute(Statement("UPDATE Articulos SET Descripcion = 'Punta'")), 130);
  EXPECT_EQ(connection->Execute(Statement("UPDATE Articulos SET Existencia = 5")), 130);
  EXPECT_EQ(connection->Execute(Statement("DELETE FROM Articulos WHERE Codigo = '7'")), 1);
  EXPECT_EQ(connection->Execute(Statement("DELETE FROM Articulos WHERE Codigo = '7'")), 0);
}

TEST_F(Search, AnotherProgramsWritesAreFound) {
  engineRun("INSERT INTO Articulos (Codigo, Descripcion, Activo) VALUES ('X', 'Ajeno łódź', -1)",
            "RESET search_path; INSERT INTO \"main\".\"Articulos\" (\"Codigo\", \"Descripcion\", "
            "\"Activo\") VALUES ('X', 'Ajéno ŁÓDŹ Πέρα', -1)");
  EXPECT_THAT(codes("ajeno"), ElementsAre("X"));
}

TEST_F(Search, TheSchemaShowsNothingOfTheIndexes) {
  for (const engine::Table& table : place_.installation().catalogue(kMain)->tables()) {
    EXPECT_FALSE(table.name.starts_with("tv_")) << table.name;
  }
}

TEST_F(Search, AnOlderInstallationGetsItsIndexesWhenItIsOpened) {
  add("1", "Antiguo");
  std::string triggers;
  for (int i = 1; i <= 9; ++i) triggers += fmt::format("DROP TRIGGER tv_search_Articulos_{};", i);
  engineRun(triggers +
                "DROP TABLE tv_search_Articulos_of; DROP TABLE tv_search_Articulos_words; DROP "
                "TABLE tv_search_Articulos_new;"
                "DROP TABLE tv_search_Articulos; UPDATE Tavelor_Schema SET Version = 7",
            "DROP FUNCTION \"main\".\"tv_search_Articulos\"() CASCADE;"
            "DROP FUNCTION \"main\".\"tv_search_Articulos\"(text);"
            "DROP TABLE \"main\".\"tv_search_Articulos\";"
            "UPDATE \"main\".\"Tavelor_Schema\" SET \"Version\" = 7");
  add("2", "Antigua también");
  EXPECT_ANY_THROW(codes("antig"));
  const auto again = Installation::open(place_.installation().folder());
  Apartment apartment(again);
  EXPECT_THAT(codes("antig"), ElementsAre("1", "2"));
  add("3", "Antiguas");
  EXPECT_THAT(codes("antiguas"), ElementsAre("3"));
}

TEST_F(Search, AnIndexThatIsWrongIsMadeAnew) {
  add("1", "Roto");
  engineRun("DELETE FROM tv_search_Articulos; DELETE FROM tv_search_Articulos_new",
            "DELETE FROM \"main\".\"tv_search_Articulos\"");
  EXPECT_THAT(codes("roto"), IsEmpty());
  rebuildSearch();
  EXPECT_THAT(codes("roto"), ElementsAre("1"));
  add("2", "Roto dos");
  EXPECT_THAT(codes("roto"), ElementsAre("1", "2"));
}

TEST_F(Search, CustomersAreFoundByNamesNumberPhoneAndPlace) {
  place_.run(
      "INSERT INTO Clientes (Codigo, Activo, Razon_Social, Nombre, NIF, Telefono_2, Poblacion) "
      "VALUES ('00012', -1, 'Peña e Hijos SL', 'Bar Núñez', 'B12345674', '93 555 01 02', "
      "'L''Hospitalet')");
  place_.run("INSERT INTO Clientes (Codigo, Activo, Razon_Social) VALUES ('00013', 0, 'Peñarol')");
  for (const char* const words : {"hijos", "nunez bar", "b12345674", "93 555", "hospitalet pe"}) {
    EXPECT_THAT(customers(words), ElementsAre("00012")) << words;
  }
  EXPECT_THAT(customers("pena"), ElementsAre("00012", "00013"));
  const FoundCustomer found = findCustomers({.words = "b12345674"}).front();
  EXPECT_TRUE(found.isExact);
  EXPECT_EQ(found.name, "Peña e Hijos SL");
  EXPECT_EQ(found.tradeName, "Bar Núñez");
  EXPECT_EQ(found.phone, "93 555 01 02");
  EXPECT_EQ(found.place, "L'Hospitalet");
}

TEST_F(Search, ASearchIsNoStatementOfTheTrace) {
  add("1", "Traza");
  static_cast<void>(place_.statements());
  static_cast<void>(codes("traza"));
  EXPECT_THAT(place_.statements(), SizeIs(1));  // the articles by their codes
}

TEST_F(Search, ThreadsOfTwentyTillsWriteAndFind) {
  constexpr int kTills = 20;
  constexpr int kArticles = 12;
  std::atomic<int> failures = 0;
  std::vector<std::thread> tills;
  for (int till = 0; till < kTills; ++till) {
    tills.emplace_back([&, till] {
      try {
        Apartment apartment(place_.installationPtr());
        ConnectionPtr connection = DataSession().OpenConnection(kMain);
        for (int i = 0; i < kArticles; ++i) {
          Statement statement("INSERT INTO Articulos (Codigo, Descripcion, Activo) VALUES (");
          statement << sqlText(fmt::format("C{}x{}", till, i)) << ", "
                    << sqlText(fmt::format("Caja {} artículo {}", till, i)) << ", True)";
          connection->Execute(statement);
          if (codes(fmt::format("articulo c{}x{}", till, i)).empty()) ++failures;
        }
      } catch (const std::exception& error) {
        ADD_FAILURE() << error.what();
      }
    });
  }
  for (std::thread& till : tills) till.join();
  EXPECT_EQ(failures, 0);
  EXPECT_THAT(codes("caja art", 500), SizeIs(kTills * kArticles));
}

}  // namespace
}  // namespace tavelor::flows

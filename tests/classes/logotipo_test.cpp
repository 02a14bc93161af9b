// SPDX-License-Identifier: MIT
// Pictures on their way into a record.
#include "tavelor/reference/logotipo.hpp"

#include <array>
#include <filesystem>
#include <fstream>
#include <span>

#include "tavelor/reference/emisores.hpp"
#include "tavelor/reference/tipos_documento.hpp"
#include "tavelor/reference/tipos_factura.hpp"
#include "tavelor/services/recordset/events.hpp"
#include "tests/classes/catalogue.hpp"

namespace tavelor {
namespace {

namespace fs = std::filesystem;

using test::errorOf;

/// Counts the writes to the picture.
struct Pieces final : RecordsetEvents {
  void WillChangeField(std::span<const Field> /*fields*/, EventStatus& /*status*/,
                       Recordset& /*set*/) override {
    ++count;
  }
  int count = 0;
};

class LogotipoTest : public test::CatalogueTest<ClsTiposDocumento> {
 protected:
  LogotipoTest() {
    shop.run("INSERT INTO Tipos_Documento (Codigo) VALUES ('1')");
    open("todos");
  }

  /// A file of that many bytes, no two neighbours alike.
  std::string picture(std::size_t size, unsigned seed = 0) {
    Bytes bytes(size);
    for (std::size_t i = 0; i < size; ++i) bytes[i] = static_cast<std::byte>((i * 7 + seed) % 251);
    const fs::path file = folder.path() / ("picture" + std::to_string(seed) + ".bin");
    std::ofstream(file, std::ios::binary)
        .write(reinterpret_cast<const char*>(bytes.data()), static_cast<std::streamsize>(size));
    last = std::move(bytes);
    return file.string();
  }
  Variant logo() { return rows().Field("Logotipo").Value(); }
  Variant stored() {
    open("todos");
    return logo();
  }

  test::TemporaryFolder folder;
  Bytes last;
};

TEST_F(LogotipoTest, AFileThatIsNotThereChangesNothing) {
  for (const char* missing : {"", "/no/such/file.bmp", "no.bmp"}) {
    catalogue.ReadBLOB(std::string(missing));
    EXPECT_FALSE(catalogue.EditingRecord()) << missing;
  }
  catalogue.ReadBLOB(folder.path().string());
  EXPECT_FALSE(catalogue.EditingRecord()) << "a folder is no picture";
}

TEST_F(LogotipoTest, AFileOfNoBytesIsNotRead) {
  catalogue.ReadBLOB(picture(0));
  EXPECT_FALSE(catalogue.EditingRecord());
  EXPECT_TRUE(logo().isNull());
}

TEST_F(LogotipoTest, AFileIsReadInLargeBlocksThenSmallOnesThenSingleBytes) {
  Pieces pieces;
  rows().addListener(&pieces);
  catalogue.ReadBLOB(picture(33'025));
  rows().removeListener(&pieces);
  EXPECT_EQ(pieces.count, 3) << "32768 + 256 + 1";
  EXPECT_EQ(logo(), Variant(last));
}

TEST_F(LogotipoTest, FilesOfEverySizeArriveWhole) {
  for (const std::size_t size : std::array<std::size_t, 10>{1, 255, 256, 257, 511, 32'767, 32'768,
                                                            32'769, 65'536, 100'000}) {
    catalogue.ReadBLOB(picture(size));
    ASSERT_EQ(logo(), Variant(last)) << size;
    catalogue.Cancel();
  }
}

TEST_F(LogotipoTest, TheRowIsWrittenByTheCallersUpdate) {
  catalogue.ReadBLOB(picture(33'025));
  EXPECT_TRUE(catalogue.EditingRecord());
  EXPECT_EQ(shop.text("SELECT Count(*) FROM Tipos_Documento WHERE Logotipo IS NOT NULL"), "0");
  catalogue.Update();
  EXPECT_EQ(stored(), Variant(last));
}

TEST_F(LogotipoTest, CancelTakesThePictureBack) {
  catalogue.ReadBLOB(picture(300));
  catalogue.Cancel();
  EXPECT_TRUE(logo().isNull());
}

TEST_F(LogotipoTest, ASecondPictureTakesThePlaceOfTheFirst) {
  catalogue.ReadBLOB(picture(300, 1));
  catalogue.ReadBLOB(picture(500, 2));
  EXPECT_EQ(logo(), Variant(last));
}

TEST_F(LogotipoTest, AnEmptyFileLeavesTheEarlierPicture) {
  catalogue.ReadBLOB(picture(300));
  catalogue.Update();
  const Bytes kept = last;
  catalogue.ReadBLOB(picture(0));
  EXPECT_EQ(logo(), Variant(kept));
}

// Large enough to show a cost that grows with the square of the size.
TEST_F(LogotipoTest, APictureOfFiftyMegabytesArrivesWhole) {
  catalogue.ReadBLOB(picture(50'000'000));
  catalogue.Update();
  EXPECT_TRUE(stored() == Variant(last));
}

TEST_F(LogotipoTest, ARecordSetWithoutThatColumnOrWithoutARowFailsInThePlatform) {
  const std::string file = picture(10);
  EXPECT_EQ(errorOf([&] { ClsTiposDocumento().ReadBLOB(file); }), errors::kObjectNotSet);
  open("seleccion");
  EXPECT_EQ(errorOf([&] { catalogue.ReadBLOB(file); }), errors::kItemNotFound);
  shop.run("DELETE FROM Tipos_Documento");
  open("todos");
  EXPECT_EQ(errorOf([&] { catalogue.ReadBLOB(file); }), errors::kNoCurrentRecord);
}

TEST_F(LogotipoTest, IssuersTakePicturesToo) {
  shop.run("INSERT INTO Emisores (Id, Descripcion) VALUES (1, 'Uno')");
  Emisores issuers;
  issuers.IniciaRs();
  issuers.ReadBLOB(picture(33'025));
  issuers.Update();
  EXPECT_TRUE(shop.value("SELECT Logotipo FROM Emisores") == Variant(last));
}

// The table of invoice types has no such column: the member is there and can only fail.
TEST_F(LogotipoTest, InvoiceTypesHaveNoColumnForAPicture) {
  shop.run("INSERT INTO Tipos_Factura (Codigo) VALUES ('1')");
  ClsTiposFactura types;
  types.IniciaRs();
  EXPECT_EQ(errorOf([&] { types.ReadBLOB(picture(10)); }), errors::kItemNotFound);
  types.ReadBLOB(std::string("/no/such/file"));
  EXPECT_FALSE(types.EditingRecord());
}

}  // namespace
}  // namespace tavelor

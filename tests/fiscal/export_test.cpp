// SPDX-License-Identifier: MIT
// Records as files.
#include "tavelor/fiscal/export.hpp"

#include <fstream>

#include <gmock/gmock.h>

#include "tests/fiscal/samples.hpp"
#include "tests/fiscal/shops.hpp"

namespace tavelor::fiscal {
namespace {

using ::testing::EndsWith;
using ::testing::HasSubstr;
using ::testing::SizeIs;

class ExportTest : public BookTest {
 protected:
  std::string folder() const { return (folder_.path() / "out").string(); }
  static std::string textOf(const std::string& file) {
    std::ifstream in(file, std::ios::binary);
    return {std::istreambuf_iterator<char>(in), {}};
  }

  test::TemporaryFolder folder_;
};

TEST_F(ExportTest, WritesRecordsAsTheyAreStoredWithAPageOfSums) {
  sell(1.21, 1.0);
  sell(2.42, 2.0);
  documents_->BeginTrans();
  book_->cancel("T/2", 3.0);
  documents_->CommitTrans();
  const ExportReport report = exportRecords(*book_, {}, folder());
  EXPECT_EQ(report.registrations, 2U);
  EXPECT_EQ(report.cancellations, 1U);
  EXPECT_EQ(report.total.text(), "3.63");
  ASSERT_THAT(report.files, SizeIs(2));
  EXPECT_THAT(report.files[0], EndsWith("records-1-0000001.xml"));
  const std::string message = textOf(report.files[0]);
  for (int at = 1; at <= 3; ++at) {
    EXPECT_THAT(message, HasSubstr(documents("SELECT Registro FROM Fiscal_Registros WHERE "
                                             "Posicion = " +
                                             std::to_string(at))));
  }
  const std::string page = textOf(report.files[1]);
  EXPECT_THAT(page, HasSubstr("# registrations 2, quotas 0.63, totals 3.63\n# cancellations 1\n"));
  const std::string verify = "cd '" + folder() + "' && sha256sum -c sums.txt >/dev/null 2>&1";
  EXPECT_EQ(std::system(verify.c_str()), 0);
}

TEST_F(ExportTest, KeepsToTheSchema) {
  TAVELOR_NEEDS_SCHEMAS();
  sell(1.21);
  sell(-2.42);
  const ExportReport report = exportRecords(*book_, {}, folder());
  EXPECT_EQ(complaintsOf(textOf(report.files[0]), "SuministroLR.xsd"), "");
}

TEST_F(ExportTest, OfASpanHoldsItsRecordsOnly) {
  const Registration first = sell(1.21);
  Registration second = first;
  second.invoice.day = Date::of(2027, 2, 3);
  add(second);
  const Date day = Date::of(2027, 2, 3);
  const ExportReport report = exportRecords(*book_, {day, day}, folder());
  EXPECT_EQ(report.registrations, 1U);
  EXPECT_THAT(textOf(report.files[0]), HasSubstr("<NumSerieFactura>T/2<"));
  EXPECT_THAT(textOf(report.files.back()), HasSubstr("from 03-02-2027 to 03-02-2027"));
}

TEST_F(ExportTest, PutsAThousandIntoAFile) {
  documents_->BeginTrans();
  Registration record = ticket();
  for (int at = 0; at < 1001; ++at) book_->add(record, {});
  documents_->CommitTrans();
  const ExportReport report = exportRecords(*book_, {}, folder());
  ASSERT_THAT(report.files, SizeIs(3));
  EXPECT_THAT(report.files[1], EndsWith("records-1-0001001.xml"));
}

TEST_F(ExportTest, IsNotWrittenOverAnother) {
  sell(1.21);
  exportRecords(*book_, {}, folder());
  EXPECT_EQ(test::errorOf([&] { exportRecords(*book_, {}, folder()); }), errors::kPathAccess);
}

TEST_F(ExportTest, OfASystemThatDoesNotSendHoldsItsLogAndIsLogged) {
  Settings other = settings();
  other.mode = Mode::kNotSending;
  book_ = std::make_unique<Book>(other, documents_);
  sell(1.21);
  sell(2.42);
  const ExportReport report = exportRecords(*book_, {}, folder());
  EXPECT_EQ(report.events, 1U);
  EXPECT_THAT(report.files[1], EndsWith("event-1-00001.xml"));
  documents_->BeginTrans();
  logExport(*book_, report, {});
  documents_->CommitTrans();
  const std::string logged = documents("SELECT Evento FROM Fiscal_Eventos WHERE Tipo = '08'");
  EXPECT_THAT(logged, HasSubstr("<SumaImporteTotalAlta>3.63<"));
  EXPECT_THAT(logged, HasSubstr("<RegistroFacturacionInicialPeriodo><IDEmisorFactura>89890001K<"
                                "/IDEmisorFactura><NumSerieFactura>T/1<"));
}

}  // namespace
}  // namespace tavelor::fiscal

// SPDX-License-Identifier: MIT
// A small program on the installed library. all_headers.hpp is written by the check.
#include <cstdio>
#include <string>

#include "all_headers.hpp"

namespace {

/// A class of the program's own, which the frame calls back.
class Colours final : public tavelor::OpensByWord {
 public:
  Colours() : OpensByWord(kInfo) {}
  std::string typeName() const override { return "Colours"; }

 private:
  static constexpr tavelor::Mode kModes[] = {
      {tavelor::kAnyOtherWord, "SELECT Codigo, Banco AS Nombre FROM Bancos"}};
  static constexpr tavelor::ClassInfo kInfo = {
      .word = "Colours", .table = "Bancos", .modes = kModes};
  void setDefaults(bool /*bDefVal*/) override { primary().Field(1).Value("L'Hospitalet"); }
};

int run(const char* folder) {
  tavelor::Apartment apartment(tavelor::Installation::create(folder));
  tavelor::ClsBancos banks;
  const std::string code = banks.CrearBanco("", "Banco de Ahorro");
  Colours colours;
  colours.IniciaRs();
  colours.AddNew(true);
  colours.Update();

  tavelor::Statement statement("SELECT Codigo FROM Bancos WHERE Banco = ");
  statement << tavelor::sqlText("L'Hospitalet");
  tavelor::RecordsetPtr rows;
  tavelor::ConnectionPtr connection;
  tavelor::DataSession().OpenRecordset(tavelor::selector::kMain, statement, rows, connection);
  if (rows->RecordCount() != 1) return 1;
  rows->MoveNext();
  try {
    rows->Field("Codigo").Value();
  } catch (const tavelor::Error& error) {
    // Thrown in the library and caught here: one type on both sides.
    if (error.kind() != tavelor::ErrorKind::kNotFound) return 2;
    std::puts("The installed library works.");
    return 0;
  }
  return 3;
}

}  // namespace

int main(int count, char** arguments) {
  try {
    return count == 2 ? run(arguments[1]) : 4;
  } catch (const std::exception& error) {
    std::puts(error.what());
    return 5;
  }
}

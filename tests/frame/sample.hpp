// SPDX-License-Identifier: MIT
// A record class over a table that has a column of every type.
#pragma once

#include <array>
#include <string>

#include "tavelor/frame/record_class.hpp"
#include "tests/support/shop.hpp"

namespace tavelor::test {

inline constexpr std::string_view kSampleRows =
    "SELECT Codigo AS Código, Nombre, Notas, Numero, Corto, Precio, Dinero, Activo, Fecha, Foto "
    "FROM Muestras";
inline constexpr std::array kSampleModes = {
    Mode{"corto", "SELECT Codigo AS Código, Nombre FROM Muestras"},
    Mode{kAnyOtherWord, kSampleRows},
};
inline constexpr ClassInfo kSampleInfo = {
    .word = "Muestras", .table = "Muestras", .modes = kSampleModes};
/// The same rows under another class word.
inline constexpr ClassInfo kOtherInfo = {
    .word = "Otras", .table = "Muestras", .modes = kSampleModes};

class Sample final : public OpensByWord {
 public:
  explicit Sample(const ClassInfo& info = kSampleInfo) : OpensByWord(info) {}
  std::string typeName() const override { return "Sample"; }

  using RecordClass::writeModernPage;
  using RecordClass::writeRecordPage;
};

class SampleShop : public Shop {
 public:
  explicit SampleShop(const Settings& settings = fastSettings()) : Shop(settings) {
    installation().addToSchema(
        1,
        "CREATE TABLE Muestras (Codigo TEXT(5) NOT NULL, Nombre TEXT(20), Notas MEMO, Numero LONG, "
        "Corto SHORT, Precio DOUBLE, Dinero CURRENCY, Activo BIT NOT NULL DEFAULT 0, Fecha "
        "DATETIME, Foto LONGBINARY, CONSTRAINT PK_Muestras PRIMARY KEY (Codigo))");
  }
};

}  // namespace tavelor::test

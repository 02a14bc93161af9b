// SPDX-License-Identifier: MIT
// One class body for every ClassInfo of the frame's tests, on the table of banks.
#pragma once

#include <array>
#include <string>

#include <gtest/gtest.h>

#include "tavelor/frame/record_class.hpp"
#include "tests/support/shop.hpp"

namespace tavelor::test {

inline constexpr std::array kModes = {
    Mode{"seleccion", "SELECT Codigo AS Código, Banco AS Descripción FROM Bancos"},
    Mode{"registro", "SELECT Codigo AS Código, Banco, Entidad FROM Bancos",
         " Where ( Codigo = '{id}')"},
    Mode{kAnyOtherWord, "SELECT Codigo AS Código, Banco, Entidad FROM Bancos"},
};
inline constexpr ClassInfo kBase = {.word = "Bancos", .table = "Bancos", .modes = kModes};

inline constexpr std::array kNumberedModes = {
    Mode{kAnyOtherWord, "SELECT Id, Descripcion FROM Emisores"}};
/// A class whose code is a number.
inline constexpr ClassInfo kNumbered = {
    .word = "Emisores", .table = "Emisores", .codeColumn = "Id", .modes = kNumberedModes};

template <typename Shape>
class AnyClass final : public Shape {
 public:
  explicit AnyClass(const ClassInfo& info) : Shape(info) {}
  std::string typeName() const override { return "AnyClass"; }
};

class AnyClassTest : public testing::Test {
 protected:
  void add(const std::string& code, const std::string& name = "X") {
    shop.run("INSERT INTO Bancos (Codigo, Banco) VALUES ('" + code + "', '" + name + "')");
  }
  std::string code(RecordClass& of) {
    return of.DataMember("Primary")->Field(0).Value().toText(shop.apartment().locale());
  }
  Recordset& rows(RecordClass& of) { return *of.DataMember("Primary"); }

  Shop shop;
  AnyClass<OpensByWord> banks{kBase};
};

}  // namespace tavelor::test

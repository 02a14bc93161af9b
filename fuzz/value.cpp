// SPDX-License-Identifier: MIT
// Any value in the places where classes put values: it is refused, or it stays a value, and the
// statement keeps the shape that it has with a harmless one.
#include <array>
#include <set>
#include <string>
#include <vector>

#include "fuzz/input.hpp"
#include "tavelor/platform/error.hpp"

namespace tavelor::fuzz {

namespace {

/// Trusted text around one value, and what is harmless there.
struct Place {
  Statement::Constant before;
  Statement::Constant behind;
  std::vector<std::string_view> harmless;
};

/// What may stand where a class puts no quotes. The parser may want less, as behind TOP.
const std::vector<std::string_view> kBare{"12",           "1.5",  "'x'",  "\"x\"",
                                          "#03/04/2025#", "True", "False"};

const std::array kPlaces{
    Place{"SELECT * FROM Bancos WHERE codigo = '", "'", {"00012"}},
    Place{"SELECT * FROM Bancos WHERE codigo = \"", "\" AND banco <> 'x'", {"00012"}},
    Place{"SELECT * FROM Bancos WHERE codigo = ", " AND banco = 'x'", kBare},
    Place{"SELECT * FROM Bancos WHERE banco Like 'a", "*'", {"b"}},
    Place{"UPDATE Articulos SET Existencia = Existencia + ", " WHERE(Codigo ='A')", kBare},
    Place{"SELECT * FROM Tickets WHERE Fecha = #", "#", {"03/04/2025"}},
    Place{"INSERT INTO Bancos (Codigo, Banco) VALUES ('", "', 'b')", {"x"}},
    Place{"INSERT INTO Bancos (Codigo, Banco) VALUES (", ", 'b')", kBare},
    Place{"SELECT TOP ", " Codigo FROM Bancos", kBare},
    Place{"DELETE FROM Bancos WHERE Codigo = '", "';", {"x"}}};

Statement filled(const Place& place, std::string_view with) {
  Statement statement(place.before);
  statement << spliced(with) << place.behind;
  return statement;
}

/// What stands in place of literals that are not lifted must not make a difference here: only the
/// count and the kinds of the tokens are compared.
std::vector<dialect::TokenKind> kindsOf(const Statement& statement) {
  std::vector<dialect::TokenKind> kinds;
  for (const dialect::Token& token : dialect::lex(statement).tokens) kinds.push_back(token.kind);
  return kinds;
}

void check(const Place& place, std::string_view with) {
  const Statement statement = filled(place, with);
  std::vector<dialect::TokenKind> kinds;
  try {
    kinds = kindsOf(statement);
  } catch (const Error& error) {
    require(error.number() == errors::kSyntax, "a value is refused as a syntax error",
            error.what());
    return;
  }
  for (const std::string_view harmless : place.harmless) {
    if (kindsOf(filled(place, harmless)) == kinds) return;
  }
  require(false, "a value stays a value", statement.text());
}

}  // namespace

}  // namespace tavelor::fuzz

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string_view with(reinterpret_cast<const char*>(data), size);
  for (const auto& place : tavelor::fuzz::kPlaces) tavelor::fuzz::check(place, with);
  return 0;
}

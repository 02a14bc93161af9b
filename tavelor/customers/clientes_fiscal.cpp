// SPDX-License-Identifier: MIT
// ClsClientes: fiscal identifiers as this shop checks, classes and cleans them. What the law says
// is in tavelor/platform/fiscal_number.hpp; the two are not to be brought together, since the words
// stored with customers come from here.
#include <algorithm>
#include <array>
#include <iterator>
#include <optional>

#include <fmt/format.h>

#include "tavelor/customers/clientes.hpp"
#include "tavelor/platform/error.hpp"
#include "tavelor/platform/statement.hpp"
#include "tavelor/platform/text.hpp"
#include "tavelor/services/apartment.hpp"
#include "tavelor/services/prompt_global.hpp"
#include "tavelor/services/recordset/recordset.hpp"

namespace tavelor {

namespace {

constexpr std::string_view kControlLetters = "TRWAGMYFPDXBNJZSQVHLCKE";
constexpr std::string_view kCompanyLetters = "ABCDEFGHJNPQRSUVW";
constexpr std::string_view kAndorranLetters = "KLMABCDEFGHJPQRSUVW";

// The classifier and the earlier cleaning know different countries.
constexpr std::array<std::string_view, 18> kCountries = {"FR", "DE", "IT", "PT", "GB", "NL",
                                                         "BE", "CH", "AT", "DK", "SE", "NO",
                                                         "FI", "PL", "LU", "US", "CA", "IE"};
constexpr std::array<std::string_view, 23> kCountriesV1 = {
    "ES", "FR", "DE", "IT", "PT", "GB", "NL", "BE", "CH", "US", "CA", "AT",
    "SE", "DK", "FI", "NO", "CZ", "PL", "AV", "AW", "AX", "LM", "AU"};

const Locale& locale() {
  return Apartment::current().locale();
}

bool oneOf(char letter, std::string_view letters) {
  return letters.find(letter) != std::string_view::npos;
}
bool isDigit(char c) {
  return c >= '0' && c <= '9';
}
bool isLetter(char c) {
  return c >= 'A' && c <= 'Z';
}

// The platform's test: a sign, a decimal comma or an exponent pass too.
bool numeric(std::string_view text) {
  return isNumeric(Variant(text), locale());
}

bool bearsLetterOf(std::int32_t number, std::string_view letter) {
  const std::int32_t place = number % static_cast<std::int32_t>(kControlLetters.size());
  return place >= 0 && letter == kControlLetters.substr(static_cast<std::size_t>(place), 1);
}

// Nothing for what is no number, or too large a one: 12345E99 is a number of this machine.
std::optional<std::int32_t> wholeNumber(std::string_view text) {
  try {
    return Variant(text).toInt32(locale());
  } catch (const Error&) {
    return std::nullopt;
  }
}

bool isNif(std::string_view s) {
  if (text::length(s) != 9) return false;
  const std::string_view digits = text::left(s, 8);
  if (!numeric(digits)) return false;
  const std::optional<std::int32_t> number = wholeNumber(digits);
  return number && bearsLetterOf(*number, text::right(s, 1));
}

bool isNie(std::string_view s) {
  if (text::length(s) != 9) return false;
  const std::size_t digit = std::string_view("XYZ").find(s.front());
  if (digit == std::string_view::npos) return false;
  const std::string number = std::to_string(digit) + std::string(text::mid(s, 1, 7));
  return bearsLetterOf(wholeNumber(number).value_or(0), text::right(s, 1));
}

// The character at a position from 1; what is no digit counts as 0.
int valueAt(std::string_view s, std::size_t position) {
  const std::string_view character = text::mid(s, position - 1, 1);
  return character.size() == 1 && isDigit(character.front()) ? character.front() - '0' : 0;
}

// The even positions of the whole identifier, letter included, go in plain and the odd ones
// doubled. The law counts positions in the seven digits, the other way round: so the answer differs
// from that of the law for nearly every identifier.
int companyControl(std::string_view s) {
  int plain = 0;
  int doubled = 0;
  for (std::size_t i = 2; i <= 8; i += 2) {
    plain += valueAt(s, i);
    const int twice = 2 * valueAt(s, i - 1);
    doubled += twice / 10 + twice % 10;
  }
  return (10 - (plain + doubled) % 10) % 10;
}

bool isCif(std::string_view s) {
  if (text::length(s) != 9 || !oneOf(s.front(), kCompanyLetters)) return false;
  if (!numeric(text::mid(s, 1, 7))) return false;
  const int control = companyControl(s);
  const bool bearsDigit = s.back() == static_cast<char>('0' + control);
  const bool bearsLetter = s.back() == (control == 0 ? 'J' : static_cast<char>('A' + control - 1));
  if (oneOf(s.front(), "PQRSW")) return bearsLetter;
  if (oneOf(s.front(), "ABEH")) return bearsDigit;
  return bearsDigit || bearsLetter;
}

// One character less than the earlier cleaning wants, whose form ends in a letter.
bool isAndorran(std::string_view s) {
  return text::length(s) == 7 && oneOf(s.front(), kAndorranLetters) && numeric(text::mid(s, 1));
}

template <std::size_t kSize>
bool beginsWithCountry(std::string_view s, const std::array<std::string_view, kSize>& countries) {
  return std::find(countries.begin(), countries.end(), s.substr(0, 2)) != countries.end();
}

std::string cleaned(std::string_view s) {
  std::string kept;
  std::copy_if(s.begin(), s.end(), std::back_inserter(kept),
               [](char c) { return isDigit(c) || isLetter(c); });
  return kept;
}

std::string capitals(std::string_view s) {
  return text::upper(text::trim(s));
}

// Each test looks at what the one before has left, so that labels in a row fall one after another.
std::string_view withoutLabels(std::string_view s) {
  constexpr std::array<std::string_view, 12> kLabels = {
      "NIF:", "NIF.", "NIF ", "NIF", "CIF:", "CIF.", "CIF ", "CIF", "NIE:", "NIE.", "NIE ", "NIE"};
  for (const std::string_view label : kLabels) {
    if (s.starts_with(label)) s.remove_prefix(label.size());
  }
  return s;
}

std::string_view withoutLabel(std::string_view s) {
  constexpr std::array<std::string_view, 6> kLabels = {"NIF:", "NIF ", "NIF",
                                                       "CIF:", "CIF ", "CIF"};
  for (const std::string_view label : kLabels) {
    if (s.starts_with(label)) return s.substr(label.size());
  }
  return s;
}

// `s` is in capitals and trimmed.
std::string_view classWord(std::string_view s) {
  if (s.empty()) return "";
  if (beginsWithCountry(s, kCountries)) return "INT";
  if (isAndorran(s)) return "AND";
  if (isNie(s)) return "NIE";
  if (isNif(s)) return "NIF";
  return isCif(s) ? "CIF" : "VERIFICAR";
}

// Of cleaned text, by its form alone.
std::string_view classWordV1(std::string_view s) {
  if (s.size() == 8 && isLetter(s.front()) && isLetter(s.back()) &&
      std::all_of(s.begin() + 1, s.end() - 1, isDigit)) {
    return "AND";
  }
  if (beginsWithCountry(s, kCountriesV1)) return "INT";
  if (s.size() == 9) {
    if (oneOf(s.front(), "XYZ")) return "NIE";
    if (oneOf(s.front(), "ABCDEFGHJUV")) return "CIF";
    if (isDigit(s.front()) && isLetter(s.back())) return "NIF";
  }
  return "VERIFICAR";
}

PromptGlobal& prompts() {
  return Apartment::current().promptGlobal();
}

}  // namespace

// ---------------------------------------------------------------------------------------------
// One identifier

bool ClsClientes::EsNIF(std::string_view s) const {
  try {
    return isNif(s);
  } catch (const Error&) {
    return false;
  }
}

bool ClsClientes::EsNIE(std::string_view s) const {
  try {
    return isNie(s);
  } catch (const Error&) {
    return false;
  }
}

bool ClsClientes::EsCIF(InOut<std::string> s) const {
  s = capitals(*s);
  try {
    return isCif(*s);
  } catch (const Error&) {
    return false;
  }
}

std::string ClsClientes::Tipo_Id_Fiscal(std::string_view s) const {
  return std::string(classWord(capitals(s)));
}

std::string ClsClientes::ValidarNIFCIF(std::string_view valorOriginal) const {
  return cleaned(withoutLabel(capitals(valorOriginal)));
}

// ---------------------------------------------------------------------------------------------
// All customers

void ClsClientes::LimpiarNIFCIF(ObjCn objCn) const {
  const bool agreed = prompts().Question(
      "Este proceso limpiará y reclasificará TODOS los NIF/NIE/CIF.\r\n"
      "La acción NO se puede deshacer.\r\n"
      "\r\n"
      "¿Desea continuar?",
      "Confirmar limpieza de datos fiscales");
  if (!agreed) return;
  try {
    const RecordsetPtr rows = read(
        Statement("SELECT Codigo, NIF, ID_Fiscal FROM Clientes WHERE NIF IS NOT NULL"), *objCn);
    Field number = rows->Field("NIF");
    Field word = rows->Field("ID_Fiscal");
    std::int32_t changed = 0;
    for (; !rows->Eof(); rows->MoveNext()) {
      const std::string stored = joined(number.Value());
      const std::string kept = cleaned(withoutLabels(capitals(stored)));
      const std::string_view found = classWord(kept);
      if (stored == kept && capitals(joined(word.Value())) == found) continue;
      number.Value(kept);
      word.Value(found);
      rows->Update();
      ++changed;
    }
    rows->UpdateBatch(Affect::kAll);
    prompts().Message(
        fmt::format("Proceso completado correctamente.\r\n"
                    "\r\n"
                    "- NIF/NIE/CIF normalizados\r\n"
                    "- TIPOS clasificados (NIF / NIE / CIF / AND / INT / VERIFICAR)\r\n"
                    "- Registros modificados: {}\r\n"
                    "\r\n"
                    "La base de datos ya está limpia y coherente.",
                    changed),
        "Actualización finalizada", PromptKind::kInformation);
  } catch (const Error& error) {
    prompts().Message("Error en LimpiarNIFCIF: " + error.description(), "Error",
                      PromptKind::kCritical);
  }
}

void ClsClientes::LimpiarNIFCIF_v1(ObjCn objCn) const {
  try {
    const RecordsetPtr rows = read(Statement("SELECT Codigo, NIF, ID_Fiscal FROM Clientes"
                                             " WHERE NIF IS NOT NULL AND Trim(NIF) <> ''"),
                                   *objCn);
    Field number = rows->Field("NIF");
    Field word = rows->Field("ID_Fiscal");
    for (; !rows->Eof(); rows->MoveNext()) {
      const std::string kept = cleaned(capitals(joined(number.Value())));
      number.Value(kept);
      word.Value(classWordV1(kept));
      rows->Update();
    }
    rows->UpdateBatch(Affect::kAll);
    prompts().Message("Proceso completado: NIF y tipos fiscales corregidos.", "",
                      PromptKind::kInformation);
  } catch (const Error& error) {
    prompts().Message("Error al limpiar NIF/CIF: " + error.description(), "",
                      PromptKind::kCritical);
  }
}

// The second statement leaves A out of its list: the first one has classed those rows by then.
void ClsClientes::Actualizar_Nif_Cif(ObjCn cnnActive) const {
  write(Statement("UPDATE Clientes SET Clientes.ID_Fiscal = 'CIF' WHERE"
                  " (Clientes.ID_Fiscal IS NULL        OR Clientes.ID_Fiscal = 'VERIFICAR'       "
                  " OR Len(Trim(Clientes.ID_Fiscal)) < 3)  "
                  " AND UCase(Left(Trim(Clientes.NIF), 1)) IN"
                  " ('A','B','C','D','E','F','G','H','J','N','P','Q','R','S','U','V','W');"),
        *cnnActive);
  write(
      Statement("UPDATE Clientes  Set Clientes.ID_Fiscal = 'NIF' "
                " Where (Clientes.ID_Fiscal Is Null Or Trim(Clientes.ID_Fiscal) ='') "
                " AND (Clientes.NIF IS NOT NULL AND Trim(Clientes.NIF) <> '') "
                " AND UCase(Left(Trim(Clientes.NIF), 1)) NOT IN"
                " ('B','C','D','E','F','G','H','J','N','P','Q','R','S','U','V','W','X','Y','Z');"),
      *cnnActive);
  write(Statement("UPDATE Clientes  Set Clientes.ID_Fiscal = 'NIE' "
                  " Where (Clientes.ID_Fiscal Is Null Or Trim(Clientes.ID_Fiscal) = '') "
                  " AND (Clientes.NIF IS NOT NULL AND Trim(Clientes.NIF) <> '') "
                  " AND UCase(Left(Trim(Clientes.NIF), 1)) IN ('X','Y','Z');"),
        *cnnActive);
}

bool ClsClientes::ExistenClientesSinIdFiscal(ObjCn objCn) const {
  return anyRow(Statement("SELECT Codigo From Clientes Where Activo = True AND"
                          " (ID_Fiscal IS NULL OR Trim(ID_Fiscal) = '' OR UCase(Trim(ID_Fiscal))"
                          " NOT IN ('NIF','CIF','NIE','AND','INT','VERIFICAR'));"),
                *objCn);
}

bool ClsClientes::ExistenClientesSinCodigoPostal(ObjCn objCn) const {
  return anyRow(Statement("SELECT Codigo FROM Clientes WHERE Activo = True AND"
                          " (Codigo_Postal IS NULL OR Trim(Codigo_Postal) = '')"),
                *objCn);
}

}  // namespace tavelor

// SPDX-License-Identifier: MIT
// What customers and suppliers share as rows of text.
#include "tools/partner_import.hpp"

#include <algorithm>

#include <fmt/format.h>

#include "tavelor/articles/articulos.hpp"
#include "tavelor/flows/customers.hpp"
#include "tavelor/frame/reading.hpp"
#include "tavelor/frame/rows.hpp"
#include "tavelor/platform/number_text.hpp"
#include "tavelor/platform/quotes.hpp"
#include "tavelor/platform/statement.hpp"
#include "tavelor/platform/text.hpp"
#include "tavelor/services/apartment.hpp"
#include "tavelor/services/data_session.hpp"
#include "tools/output.hpp"

namespace tavelor::tools {

PartnerImport::PartnerImport(const Kind& kind, ImportSetup setup)
    : RowImport(kind.table, std::move(setup)), kind_(kind) {
  readNumbers();
}

// ---------------------------------------------------------------------------------------------
// What the shop has

void PartnerImport::allow(std::size_t field, Words words, std::string_view what) {
  choices_.push_back({field, std::move(words), what});
}

PartnerImport::Words PartnerImport::tariffs() {
  Words words = series();
  for (const Variant& letter : clsArticulos().ObtenerCol_Tarifas(connection())) {
    const std::string* text = letter.getIf<std::string>();
    if (text != nullptr) words.emplace(text::foldCase(*text), *text);
  }
  return words;
}

PartnerImport::Words PartnerImport::series() {
  Words words;
  for (const char* letter : {"A", "B", "C"}) words.emplace(text::foldCase(letter), letter);
  return words;
}

PartnerImport::Words PartnerImport::catalogue(Statement::Constant table) {
  Statement statement("SELECT codigo, Descripcion FROM ");
  statement << table;
  Words codes, descriptions;
  for (Rows rows(selector::kMain, statement, connection()); rows.hasRow(); rows.next()) {
    const std::string code = rows.text("codigo");
    codes.emplace(text::foldCase(code), code);
    descriptions.emplace(text::foldCase(rows.text("Descripcion")), code);
  }
  codes.merge(descriptions);
  return codes;
}

void PartnerImport::readNumbers() {
  Statement statement("SELECT Codigo, NIF FROM ");
  statement << table().name << " WHERE NIF <> ''";
  for (Rows rows(selector::kMain, statement, connection()); rows.hasRow(); rows.next()) {
    ownerOf_.emplace(flows::fiscalEntry(rows.text("NIF")).text, rows.text("Codigo"));
  }
}

// ---------------------------------------------------------------------------------------------
// Reading a row

std::string PartnerImport::replaceWord(Record& record, const Choice& choice) const {
  if (!record.has(choice.field)) return {};
  const auto found = choice.words.find(text::foldCase(record.text(choice.field)));
  if (found == choice.words.end()) {
    return faultOf(choice.field, choice.what, record.text(choice.field));
  }
  record.values[choice.field] = std::string_view(found->second);
  return {};
}

std::string PartnerImport::check(Record& record) {
  for (const Choice& choice : choices_) {
    if (std::string fault = replaceWord(record, choice); !fault.empty()) return fault;
  }
  if (!record.has(kind_.number)) return {};
  flows::FiscalEntry entry = flows::fiscalEntry(record.text(kind_.number));
  // Who has no number keeps the word that a person has given him: see rewrite() of customers.
  if (!entry.text.empty()) classify(record, entry.word);
  record.values[kind_.number] = std::move(entry.text);
  return {};
}

// ---------------------------------------------------------------------------------------------
// Writing a row

void PartnerImport::rewrite(const Record& record, Recordset& /*stored*/,
                            std::span<const std::size_t> differing) {
  update(record, differing);
}

std::vector<std::size_t> PartnerImport::toldFrom(const Record& record, std::size_t first) const {
  std::vector<std::size_t> told;
  for (std::size_t field = first; field < table().fields.size(); ++field) {
    if (record.has(field)) told.push_back(field);
  }
  return told;
}

// As the classes write it: numbers too stand between quotes, with all digits.
std::string PartnerImport::literalOf(const Record& record, std::size_t field) const {
  switch (table().fields[field].kind) {
    case FieldKind::kText:
    case FieldKind::kWord:
      return doubledQuotes(record.text(field));
    case FieldKind::kFlag:
      return record.flag(field) ? "-1" : "0";
    default:
      return plainNumber(record.number(field), Apartment::current().locale());
  }
}

void PartnerImport::update(const Record& record, std::span<const std::size_t> fields) {
  if (fields.empty()) return;
  Statement statement("UPDATE ");
  statement << table().name << " SET ";
  for (const std::size_t field : fields) {
    statement << (field == fields.front() ? Statement::Constant() : ", ")
              << table().fields[field].name << " = ";
    const std::string text = literalOf(record, field);
    if (table().fields[field].kind == FieldKind::kFlag) {
      statement << spliced(text);
    } else {
      statement << "'" << spliced(text) << "'";
    }
  }
  statement << " WHERE Codigo = " << sqlText(record.key);
  DataSession().Execute(selector::kMain, statement, connection());
}

void PartnerImport::taken(const Record& record, Recordset* before) {
  if (!record.has(kind_.number)) return;
  const std::string number(record.text(kind_.number));
  if (before != nullptr) {
    std::string old;
    takeColumn(*before, "NIF", old);
    const auto owner = ownerOf_.find(flows::fiscalEntry(old).text);
    const bool wasIts = owner != ownerOf_.end() && owner->second == record.key;
    if (wasIts && owner->first != number) ownerOf_.erase(owner);
  }
  if (number.empty()) return;
  if (const std::string doubt = flows::fiscalEntry(number).doubt; !doubt.empty()) {
    remark(record, fmt::format("NIF {} {}: {}", printable(number), doubt, kind_.doubted));
  }
  const auto [owner, isFirst] = ownerOf_.emplace(number, std::string(record.key));
  if (!isFirst && owner->second != record.key) {
    remark(record, fmt::format("{} {} has the NIF {} too", kind_.one, printable(owner->second),
                               printable(number)));
  }
}

}  // namespace tavelor::tools

// SPDX-License-Identifier: MIT
// What customers and suppliers share as rows of text: catalogues, and fiscal numbers.
#pragma once

#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "tools/row_import.hpp"

namespace tavelor::tools {

/// Fiscal numbers are cleaned; one that a person has to look at, and one that another of them has,
/// is told in a remark and taken. A word that is none of the shop's is the row's fault.
///
/// Of one who is there only the columns that differ are written, so that whatever the file does not
/// speak of stays.
class PartnerImport : public RowImport {
 protected:
  struct Kind {
    const ImportTable& table;
    std::string_view one;      ///< "customer"
    std::size_t number;        ///< the field NIF
    std::string_view doubted;  ///< what a number that is not right is taken as, for the remark
  };
  /// Words that a field takes, each with the code that is stored for it.
  using Words = std::unordered_map<std::string, std::string>;

  /// Reads the number of everybody there: some fifty bytes each are kept. `kind` outlives the
  /// import.
  PartnerImport(const Kind& kind, ImportSetup setup);

  /// A field takes no other words. `what` is what another one is not: "no tariff of the shop".
  void allow(std::size_t field, Words words, std::string_view what);
  /// A, B, C and those that articles have.
  Words tariffs();
  static Words series();
  /// Codes, and descriptions where they are nobody's code.
  Words catalogue(Statement::Constant table);

  /// Replaces words by their codes and cleans the number, of which `entry` is told then.
  std::string check(Record& record) override;
  /// The number of a row, cleaned; by default nothing more becomes of it.
  virtual void classify(Record& /*record*/, const std::string& /*word*/) {}
  void rewrite(const Record& record, Recordset& stored,
               std::span<const std::size_t> differing) override;
  void taken(const Record& record, Recordset* before) override;
  void update(const Record& record, std::span<const std::size_t> fields);
  /// The fields from `first` on that the row tells.
  std::vector<std::size_t> toldFrom(const Record& record, std::size_t first) const;

 private:
  struct Choice {
    std::size_t field;
    Words words;
    std::string_view what;
  };

  void readNumbers();
  std::string replaceWord(Record& record, const Choice& choice) const;
  std::string literalOf(const Record& record, std::size_t field) const;

  const Kind& kind_;
  std::vector<Choice> choices_;
  std::unordered_map<std::string, std::string> ownerOf_;  // codes by number
};

}  // namespace tavelor::tools

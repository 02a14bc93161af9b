// SPDX-License-Identifier: MIT
// What makes one record class differ from another, as data.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <string_view>

#include "tavelor/platform/export.hpp"
#include "tavelor/platform/statement.hpp"

namespace tavelor {

/// Databases of an installation, as services and classes name them.
namespace selector {
inline constexpr int kFurther = 0;    ///< whatever the application wants besides
inline constexpr int kMain = 1;       ///< masters, counters, stock, closings and ledgers
inline constexpr int kDocuments = 3;  ///< documents that are open: tickets
inline constexpr int kHistoric = 4;   ///< years that were put away
inline constexpr int kImport = 5;     ///< what was brought from elsewhere
}  // namespace selector

/// The word of the mode that stands for all words without a mode of their own.
inline constexpr std::string_view kAnyOtherWord = {};

/// A word that IniciaRs understands, and its statement: `select` followed by `tail`. Where they say
/// {id} the argument of that name of IniciaRs stands, as text. Words compare exactly. The last mode
/// of a class is that of any other word, which then becomes "todos".
struct TAVELOR_API Mode {
  std::string_view word;
  Statement::Constant select;
  Statement::Constant tail = {};
};

/// AddNew computes a code; the general form drops one that is longer than the first field allows.
enum class AddNewForm : std::uint8_t { kGeneral, kShort };
/// Update writes the current row; or, where there are rows, all that are pending.
enum class UpdateForm : std::uint8_t { kCurrentRow, kAllRows };
/// Delete writes at once; or only marks the row and leaves the writing to Update.
enum class DeleteForm : std::uint8_t { kWrites, kMarks };
/// FindRecord looks for the whole value of the first field, or for its beginning.
enum class FindForm : std::uint8_t { kWhole, kPrefix };

/// One record class. Texts must outlive the class objects: they are literals.
struct TAVELOR_API ClassInfo {
  std::string_view word;      ///< class word: registry segment, export file, sClassName
  Statement::Constant table;  ///< as its statements write it
  int selector = selector::kMain;
  /// Whose maximum NuevoCodigo takes. Where it is a text, a next code too long for it is dropped.
  Statement::Constant codeColumn = "Codigo";
  std::span<const Mode> modes;  ///< in the order compared, kAnyOtherWord last
  /// Words whose statement the class makes when it is asked, in modeStatement, beside `modes`.
  std::span<const std::string_view> madeModes = {};
  /// Statement of CodigoLibre with {id}; empty: by the column Codigo, in quotes.
  Statement::Constant freeCode = {};
  /// AddNew fills its code with zeros to this many characters; 0: as it is.
  std::size_t codeWidth = 0;
  AddNewForm addNew = AddNewForm::kGeneral;
  UpdateForm update = UpdateForm::kCurrentRow;
  DeleteForm remove = DeleteForm::kWrites;
  FindForm find = FindForm::kWhole;
  bool clearsDataMembers = false;  ///< IniciaRs empties the list of data members first
  bool raisesMoveComplete = true;
  /// IniciaRs and Requery restore the order last chosen; else rows stay in that of the statement.
  bool restoresOrder = true;
  bool givesConnectionString = false;  ///< GetConnectionStr of all others answers ""
};

}  // namespace tavelor

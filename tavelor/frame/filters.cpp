// SPDX-License-Identifier: MIT
// Filters and orders: made from a form's controls, applied, and remembered for each class and use.
#include <string>

#include <fmt/format.h>

#include "tavelor/frame/controls.hpp"
#include "tavelor/frame/list_settings.hpp"
#include "tavelor/frame/record_class.hpp"
#include "tavelor/platform/error.hpp"
#include "tavelor/services/apartment.hpp"
#include "tavelor/services/installation.hpp"
#include "tavelor/services/list_config.hpp"
#include "tavelor/services/recordset/recordset.hpp"

namespace tavelor {

namespace {

struct Operators {
  std::string_view text;
  std::string_view other;
};

Operators operatorsOf(std::string_view iType) {
  if (iType == "1") return {">=", ">="};
  if (iType == "2") return {"<=", "<="};
  return {"Like", "="};
}

// One term an entry. Selecting each entry in turn is how its text is read, so the selection moves.
std::string listTerms(Control& list, std::string_view field, std::string_view op,
                      std::string_view open, std::string_view close) {
  std::string terms;
  const std::int32_t entries = list.ListCount();
  for (std::int32_t entry = 0; entry < entries; ++entry) {
    list.ListIndex(entry);
    if (!terms.empty()) terms += " Or ";
    terms += fmt::format("{} {}{}{}{}", field, op, open, list.Text(), close);
  }
  return terms;
}

std::string booleanCriterion(Control& ctl, std::string_view field, const Operators& op) {
  switch (ctl.kind()) {
    case ControlKind::kCheckBox:
      return ctl.Value() == 1 ? fmt::format("{} <> 0 ", field) : "";
    case ControlKind::kTextBox:
      return ctl.defaultText().empty()
                 ? ""
                 : fmt::format("{} {} {} ", field, op.other, ctl.defaultText());
    case ControlKind::kListBox:
      return listTerms(ctl, field, op.other, "  ", " ");
    default:
      return ctl.Value() == 1 || ctl.Value() == 0
                 ? fmt::format("{} = {} ", field, ctl.defaultText())
                 : "";
  }
}

std::string numberCriterion(Control& ctl, std::string_view field, const Operators& op) {
  switch (ctl.kind()) {
    case ControlKind::kCheckBox:
      if (ctl.Value() == 1) return fmt::format("{} <> 0 ", field);
      return ctl.Value() == 0 ? fmt::format("{} = {} ", field, ctl.defaultText()) : "";
    case ControlKind::kListBox:
      return listTerms(ctl, field, op.other, "  ", " ");
    default:
      return ctl.defaultText().empty() ? "" : fmt::format("{} {} {} ", field, op.other, ctl.Text());
  }
}

// With >= and <= the wildcard stays behind the text: stored filters carry it, and it sorts so low
// that the comparison hardly feels it.
std::string textCriterion(Control& ctl, std::string_view field, const Operators& op) {
  if (ctl.kind() == ControlKind::kListBox) return listTerms(ctl, field, op.text, " '", "' ");
  if (ctl.defaultText().empty()) return "";
  if (ctl.kind() == ControlKind::kBoundCombo) {
    return fmt::format("{} {} '{}' ", field, op.text, ctl.BoundText());
  }
  return fmt::format("{} {} '{}*' ", field, op.text, ctl.Text());
}

/// A stored order that is no number, or one of no field, or whose mode is none.
bool isOfOrder(const Error& error) {
  return error.number() == errors::kTypeMismatch || error.number() == errors::kOverflow ||
         error.number() == errors::kItemNotFound || error.number() == errors::kInvalidArgument;
}

}  // namespace

ListConfig listSettings(const ClassInfo& info, std::string_view sLlave) {
  ListConfig settings;
  settings.Key(fmt::format("{}\\Configuracion\\registros\\{}\\{}\\",
                           Apartment::current().version().registryRoot(), info.word, sLlave));
  return settings;
}

std::string RecordClass::GetFilter(std::string_view sLlave) const {
  mustBeHome();
  return listSettings(info_, sLlave).GetValue(list_value::kFilter, "");
}

void RecordClass::SetFilter(std::string_view Criteria, std::string_view sLlave) const {
  mustBeHome();
  listSettings(info_, sLlave).SetValue(list_value::kFilter, Criteria);
}

void RecordClass::AplyFilter(std::string_view Criteria) {
  primary().Filter(Criteria);
}

std::string RecordClass::CreateFilter(Control& ctl, std::string_view iType) const {
  const Field field = primary().Field(ctl.DataField());
  const Operators op = operatorsOf(iType);
  switch (static_cast<DataType>(field.Type())) {
    case DataType::kBoolean:
      return booleanCriterion(ctl, field.Name(), op);
    case DataType::kInt32:
    case DataType::kDouble:
      return numberCriterion(ctl, field.Name(), op);
    case DataType::kVarChar:
    case DataType::kVarWChar:
      return textCriterion(ctl, field.Name(), op);
    default:
      return ctl.defaultText().empty()
                 ? ""
                 : fmt::format("{} {} #{}# ", field.Name(), op.other, ctl.defaultText());
  }
}

void RecordClass::SetOrder(std::int16_t index, std::string_view Mode, std::string_view sLlave) {
  Recordset& rows = primary();
  if (rows.RecordCount() == 0) return;
  mustBeHome();
  sortBy(rows, index, Mode);
  ListConfig settings = listSettings(info_, sLlave);
  settings.SetValue(list_value::kOrder, std::to_string(index));
  settings.SetValue(list_value::kDirection, Mode);
}

void RecordClass::GetOrder(InOut<std::int16_t> index, InOut<std::string> Mode,
                           std::string_view sLlave) const {
  mustBeHome();
  ListConfig settings = listSettings(info_, sLlave);
  index =
      Variant(settings.GetValue(list_value::kOrder, "0")).toInt16(Apartment::current().locale());
  Mode = settings.GetValue(list_value::kDirection, "");
}

void RecordClass::restoreOrder(std::string_view sLlave) {
  if (!info_.restoresOrder) return;
  std::int16_t index = 0;
  std::string mode;
  GetOrder(index, mode, sLlave);
  SetOrder(index, mode, sLlave);
}

/// For the rows that the word stands for: an order that does not fit them (stored under their word
/// when rows of more columns were open, or written by hand) would make every opening raise.
void RecordClass::restoreOrForgetOrder(std::string_view sLlave) {
  try {
    restoreOrder(sLlave);
  } catch (const Error& error) {
    if (!isOfOrder(error)) throw;
    ListConfig settings = listSettings(info_, sLlave);
    settings.SetValue(list_value::kOrder, "0");
    settings.SetValue(list_value::kDirection, "");
  }
}

void RecordClass::sortBy(Recordset& rows, std::int16_t index, std::string_view mode) {
  rows.Sort(rows.Field(index).Name() + std::string(mode));
}

}  // namespace tavelor

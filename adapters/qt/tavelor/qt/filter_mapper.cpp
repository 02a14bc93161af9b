// SPDX-License-Identifier: MIT
// A search form over a record class.
#include "tavelor/qt/filter_mapper.hpp"

#include <QtWidgets/QCheckBox>
#include <string>
#include <utility>
#include <vector>

#include "tavelor/frame/record_class.hpp"
#include "tavelor/platform/error.hpp"
#include "tavelor/platform/literal.hpp"
#include "tavelor/platform/locale.hpp"
#include "tavelor/platform/quotes.hpp"
#include "tavelor/qt/values.hpp"
#include "tavelor/qt/widget_control.hpp"
#include "tavelor/services/recordset/recordset.hpp"

namespace tavelor::qt {

namespace {

std::string typeWord(Comparison comparison) {
  switch (comparison) {
    case Comparison::kAtLeast:
      return "1";
    case Comparison::kAtMost:
      return "2";
    case Comparison::kLike:
      break;
  }
  return "";
}

std::string_view operatorOf(Comparison comparison) {
  switch (comparison) {
    case Comparison::kAtLeast:
      return ">=";
    case Comparison::kAtMost:
      return "<=";
    case Comparison::kLike:
      break;
  }
  return "=";
}

/// What is compared with a number. Raises 13 for a text that is none.
Literal numberIn(const std::string& text, const Locale& locale) {
  return sqlLiteral(Variant(text).toDouble(locale));
}

/// A widget as CreateFilter wants to read it: what it gives is joined as it is.
class CriterionControl final : public WidgetControl {
 public:
  CriterionControl(QWidget* widget, const QString& field) : WidgetControl(widget, field) {}

  void fitTo(DataType type) { type_ = type; }
  std::string defaultText() const override { return fitted(WidgetControl::defaultText()); }
  std::string Text() const override { return defaultText(); }
  std::string BoundText() const override { return doubledQuotes(WidgetControl::BoundText()); }

 private:
  std::string fitted(const std::string& text) const {
    if (text.empty()) return text;
    const std::shared_ptr<const Locale> locale = currentLocale();
    switch (type_) {
      case DataType::kVarChar:
      case DataType::kVarWChar:
        return doubledQuotes(text);
      case DataType::kBoolean:
        return text;
      case DataType::kInt32:
      case DataType::kDouble:
        return numberIn(text, *locale).text();
      default: {
        // Between marks of its own.
        const std::string literal = sqlLiteral(Variant(text).toDate(*locale)).text();
        return literal.substr(1, literal.size() - 2);
      }
    }
  }

  DataType type_ = DataType::kVarWChar;
};

/// Of the other types than dates that CreateFilter would take for dates.
std::string ownCriterion(const CriterionControl& control, DataType type, Comparison comparison) {
  const std::string text = control.WidgetControl::defaultText();
  if (text.empty()) return {};
  const std::string field = control.DataField();
  const std::string op(operatorOf(comparison));
  switch (type) {
    case DataType::kLongVarWChar:
    case DataType::kLongVarChar:
      if (comparison != Comparison::kLike) return field + " " + op + " " + sqlText(text) + " ";
      return field + " Like " + sqlText(text + "*") + " ";
    default:
      return field + " " + op + " " + numberIn(text, *currentLocale()) + " ";
  }
}

bool isLeftToUs(DataType type) {
  switch (type) {
    case DataType::kByte:
    case DataType::kInt16:
    case DataType::kSingle:
    case DataType::kCurrency:
    case DataType::kLongVarChar:
    case DataType::kLongVarWChar:
      return true;
    default:
      return false;
  }
}

}  // namespace

class FilterMapper::Inner {
 public:
  struct Bound {
    CriterionControl control;
    Comparison comparison;
  };

  Inner(FilterMapper& mapper, RecordClass& classRecords) : records(classRecords), mapper_(mapper) {}

  std::string criterionOf(Bound& bound) const;
  std::string criteria();
  template <typename Work>
  bool attempt(Work&& work);

  RecordClass& records;
  std::vector<Bound> fields;
  Failure failure;

 private:
  FilterMapper& mapper_;
};

std::string FilterMapper::Inner::criterionOf(Bound& bound) const {
  if (bound.control.widget() == nullptr) return {};
  const RecordsetPtr rows = records.DataMember("Primary");
  if (!rows) raise(errors::kObjectNotSet, "FilterMapper", "IniciaRs has not been called");
  const auto type = static_cast<DataType>(rows->Field(bound.control.DataField()).Type());
  bound.control.fitTo(type);
  if (isLeftToUs(type)) return ownCriterion(bound.control, type, bound.comparison);
  std::string made = records.CreateFilter(bound.control, typeWord(bound.comparison));
  // Its entries are joined by Or, which binds less than And.
  if (bound.control.kind() == ControlKind::kListBox && !made.empty()) made = "(" + made + ") ";
  return made;
}

std::string FilterMapper::Inner::criteria() {
  std::string all;
  for (Bound& each : fields) {
    const std::string one = criterionOf(each);
    if (one.empty()) continue;
    if (!all.empty()) all += "And ";
    all += one;
  }
  return all;
}

template <typename Work>
bool FilterMapper::Inner::attempt(Work&& work) {
  try {
    work();
    return true;
  } catch (...) {
    failure = currentFailure();
  }
  Q_EMIT mapper_.failed(failure);
  return false;
}

FilterMapper::FilterMapper(RecordClass& records, QObject* parent)
    : QObject(parent), inner_(std::make_unique<Inner>(*this, records)) {}

FilterMapper::~FilterMapper() = default;

bool FilterMapper::add(QWidget* widget, const QString& field, Comparison comparison) {
  if (!WidgetControl::isKnown(widget)) return false;
  inner_->fields.push_back({CriterionControl(widget, field), comparison});
  return true;
}

QString FilterMapper::criteria(bool* ok) {
  QString made;
  const bool isMade = inner_->attempt([&] { made = toQString(inner_->criteria()); });
  if (ok != nullptr) *ok = isMade;
  return made;
}

const Failure& FilterMapper::lastFailure() const {
  return inner_->failure;
}

bool FilterMapper::apply() {
  return inner_->attempt([&] { inner_->records.AplyFilter(inner_->criteria()); });
}

bool FilterMapper::clear() {
  for (Inner::Bound& each : inner_->fields) {
    if (auto* tick = qobject_cast<QCheckBox*>(each.control.widget())) {
      tick->setChecked(false);
      continue;
    }
    inner_->attempt([&] { each.control.show(Null{}); });
  }
  return inner_->attempt([&] { inner_->records.AplyFilter(""); });
}

bool FilterMapper::remember(const QString& key) {
  return inner_->attempt([&] { inner_->records.SetFilter(inner_->criteria(), toText(key)); });
}

bool FilterMapper::applyRemembered(const QString& key) {
  return inner_->attempt(
      [&] { inner_->records.AplyFilter(inner_->records.GetFilter(toText(key))); });
}

}  // namespace tavelor::qt

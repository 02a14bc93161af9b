// SPDX-License-Identifier: MIT
// The rows of a record class for Qt's views, by the rules of the class.
#include "tavelor/qt/record_class_model.hpp"

#include <cstdint>
#include <limits>
#include <string>
#include <utility>

#include <fmt/format.h>

#include "tavelor/frame/record_class.hpp"
#include "tavelor/platform/error.hpp"
#include "tavelor/qt/values.hpp"
#include "tavelor/services/apartment.hpp"
#include "tavelor/services/installation.hpp"
#include "tavelor/services/list_config.hpp"
#include "tavelor/services/recordset/recordset.hpp"

namespace tavelor::qt {

namespace {

constexpr const char* kDescending = " DESC";

/// Where the frame keeps the order of these rows.
ListConfig settingsOf(const RecordClassModel& model) {
  ListConfig settings;
  settings.Key(fmt::format("{}\\Configuracion\\registros\\{}\\{}\\",
                           Apartment::current().version().registryRoot(),
                           model.records().info().word, toText(model.key())));
  return settings;
}

}  // namespace

/// A class that fetches its rows anew may have another record set then.
class RecordClassModel::Listener final : public RecordClassEvents {
 public:
  explicit Listener(RecordClassModel& model) : model_(model) { model_.records_.addListener(*this); }
  ~Listener() override { model_.records_.removeListener(*this); }
  Listener(const Listener&) = delete;
  Listener& operator=(const Listener&) = delete;

  void DataMemberChanged(std::string_view /*member*/) override {
    if (model_.records_.DataMember("Primary") != model_.recordset()) model_.load();
  }

 private:
  RecordClassModel& model_;
};

RecordClassModel::RecordClassModel(RecordClass& records, QString key, QObject* parent)
    : RecordsetModel(parent),
      records_(records),
      key_(std::move(key)),
      listener_(std::make_unique<Listener>(*this)) {
  load();
}

RecordClassModel::~RecordClassModel() = default;

RecordClass& RecordClassModel::records() const {
  return records_;
}

const QString& RecordClassModel::key() const {
  return key_;
}

void RecordClassModel::load() {
  setRecordset(records_.DataMember("Primary"));
}

int RecordClassModel::rememberedColumn() const {
  try {
    std::int16_t column = 0;
    std::string mode;
    records_.GetOrder(column, mode, toText(key_));
    return column;
  } catch (const Error&) {
    return -1;  // no number, or no apartment to ask
  }
}

Qt::SortOrder RecordClassModel::rememberedOrder() const {
  try {
    std::int16_t column = 0;
    std::string mode;
    records_.GetOrder(column, mode, toText(key_));
    return mode == kDescending ? Qt::DescendingOrder : Qt::AscendingOrder;
  } catch (const Error&) {
    return Qt::AscendingOrder;
  }
}

QString RecordClassModel::remembered(const QString& name) {
  QString value;
  attempt([&] { value = toQString(settingsOf(*this).GetValue(toText(name))); });
  return value;
}

bool RecordClassModel::remember(const QString& name, const QString& value) {
  return attempt([&] { settingsOf(*this).SetValue(toText(name), toText(value)); });
}

void RecordClassModel::addRow(Recordset& /*rows*/) {
  records_.AddNew(true);
}

void RecordClassModel::deleteRow(Recordset& /*rows*/) {
  records_.Delete();
}

void RecordClassModel::sortRows(Recordset& rows, int column, Qt::SortOrder order) {
  if (column < 0) return RecordsetModel::sortRows(rows, column, order);
  if (column > std::numeric_limits<std::int16_t>::max()) raise(errors::kOverflow, "Qt");
  records_.SetOrder(static_cast<std::int16_t>(column),
                    order == Qt::DescendingOrder ? kDescending : "", toText(key_));
}

void RecordClassModel::fetchAnew(Recordset& /*rows*/) {
  std::string word = toText(key_);
  records_.Requery(word);
}

}  // namespace tavelor::qt

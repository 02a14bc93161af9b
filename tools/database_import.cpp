// SPDX-License-Identifier: MIT
// Compares the rows of a database file with what is stored, and writes the new ones.
#include "tools/database_import.hpp"

#include <algorithm>
#include <array>
#include <cmath>
#include <functional>
#include <utility>

#include <fmt/format.h>

#include "tavelor/platform/error.hpp"
#include "tavelor/platform/literal.hpp"
#include "tavelor/platform/locale.hpp"
#include "tavelor/platform/text.hpp"
#include "tavelor/services/data_session.hpp"
#include "tools/input_file.hpp"
#include "tools/interrupt.hpp"
#include "tools/output.hpp"
#include "tools/row_errors.hpp"

namespace tavelor::tools {

namespace {

constexpr std::size_t kBatch = 1000;

// What hangs from what in the shop's own tables: rows that mean nothing without the other one.
struct Hanging {
  std::string_view child;
  std::string_view column;
  std::string_view parent;
  std::string_view parentColumn;
};
constexpr std::array kHanging = {
    Hanging{"Articulos_Tarifas", "Codigo", "Articulos", "Codigo"},
    Hanging{"Articulos_Precios_Compras", "Codigo", "Articulos", "Codigo"},
    Hanging{"Articulos_Codigos_barras", "Codigo", "Articulos", "Codigo"},
    Hanging{"Articulos_Componentes", "Codigo", "Articulos", "Codigo"},
    Hanging{"Articulos_Componentes", "Articulo", "Articulos", "Codigo"},
    Hanging{"Articulos_Comentarios", "Codigo", "Articulos", "Codigo"},
    Hanging{"Articulos_Almacenes", "Codigo", "Articulos", "Codigo"},
    Hanging{"Articulos_Lotes", "Codigo", "Articulos", "Codigo"},
    Hanging{"Clientes_Direcciones", "Codigo", "Clientes", "Codigo"},
    Hanging{"Clientes_Centros", "Codigo", "Clientes", "Codigo"},
    Hanging{"Clientes_Colaboradores", "Codigo", "Clientes", "Codigo"},
    Hanging{"Clientes_Comentarios", "Codigo", "Clientes", "Codigo"},
    Hanging{"Clientes_Apuntes_Contables", "Codigo", "Clientes", "Codigo"},
    Hanging{"Proveedores_Comentarios", "Codigo", "Proveedores", "Codigo"},
    Hanging{"Proveedores_Apuntes_Contables", "Codigo", "Proveedores", "Codigo"},
    Hanging{"Empleados_Puntos", "Empleado", "Empleados", "Codigo"},
    Hanging{"Cierres_Familias", "Cierre", "Cierres", "Codigo"},
    Hanging{"Cierres_Lineas_Impuestos", "Cierre", "Cierres", "Codigo"},
    Hanging{"Cierres_Formas_Pago", "Cierre", "Cierres", "Codigo"},
    Hanging{"Tickets_Lineas", "Numero", "Tickets", "Numero"},
    Hanging{"Tickets_Lineas_Impuestos", "Numero", "Tickets", "Numero"},
    Hanging{"Tickets_Cabecera", "Codigo", "Tickets", "Numero"},
    Hanging{"Tickets_Comentarios", "Codigo", "Tickets", "Numero"},
    Hanging{"HTickets_Lineas", "Numero", "HTickets", "Numero"},
    Hanging{"HTickets_Lineas_Impuestos", "Numero", "HTickets", "Numero"},
    Hanging{"HTickets_Cabecera", "Codigo", "HTickets", "Numero"},
    Hanging{"HTickets_Comentarios", "Codigo", "HTickets", "Numero"},
};

/// A value as what is equal to it is written here, whichever type holds it: numbers are doubles,
/// dates are seconds, and of numbers fifteen digits count, which is what statements carry.
void addTo(std::string& bytes, const Variant& value, bool isFolded) {
  const Locale& locale = *Locale::neutral();
  switch (value.type()) {
    case VariantType::kEmpty:
    case VariantType::kNull:
      bytes += 'N';
      break;
    case VariantType::kText: {
      const std::string& text = *value.getIf<std::string>();
      const std::string folded = isFolded ? text::foldCase(text) : text;
      bytes += fmt::format("T{}:{}", folded.size(), folded);
      break;
    }
    case VariantType::kBytes: {
      const Bytes& all = *value.getIf<Bytes>();
      bytes += fmt::format("B{}:", all.size());
      bytes.append(reinterpret_cast<const char*>(all.data()), all.size());
      break;
    }
    case VariantType::kCurrency:
      bytes += fmt::format("C{};", value.getIf<Currency>()->scaled());
      break;
    case VariantType::kDate:
      bytes += fmt::format("D{};", std::llround(value.getIf<Date>()->days() * 86'400));
      break;
    case VariantType::kSingle:
      bytes += fmt::format("F{:.6g};", *value.getIf<float>() + 0.0F);
      break;
    default:
      bytes += fmt::format("R{:.15g};", value.toDouble(locale) + 0.0);
  }
}

/// Values count as equal when their hashes are, which for others is not to be expected in 64 bits.
std::uint64_t hashOf(const std::vector<Variant>& values, const std::vector<std::size_t>* places,
                     bool isFolded = false) {
  thread_local std::string bytes;
  bytes.clear();
  if (places == nullptr) {
    for (const Variant& value : values) addTo(bytes, value, isFolded);
  } else {
    for (const std::size_t place : *places) addTo(bytes, values[place], isFolded);
  }
  return std::hash<std::string>()(bytes);
}

Statement::Trusted quoted(std::string& keep, std::string_view name) {
  keep = fmt::format("[{}]", name);
  return Statement::trusted(keep);
}

Statement selectOf(const std::vector<const engine::Column*>& columns, std::string_view table) {
  std::string name;
  Statement statement("SELECT ");
  for (std::size_t i = 0; i < columns.size(); ++i) {
    if (i > 0) statement << ", ";
    statement << quoted(name, columns[i]->name);
  }
  statement << " FROM " << quoted(name, table);
  return statement;
}

std::vector<const engine::Column*> columnsOf(const TablePlan& plan) {
  std::vector<const engine::Column*> columns;
  for (const ColumnPlan& column : plan.columns) columns.push_back(column.to);
  return columns;
}

bool hasCounter(const TablePlan& plan) {
  return std::any_of(plan.columns.begin(), plan.columns.end(),
                     [](const ColumnPlan& column) { return column.to->autoNumber; });
}

std::vector<Variant> valuesOf(const Row& row, std::size_t columns) {
  std::vector<Variant> values;
  for (std::size_t i = 0; i < columns; ++i) {
    values.push_back(row.value(static_cast<std::int32_t>(i)));
  }
  return values;
}

std::string textOf(const Variant& value) {
  return value.isNull() ? "Null" : shown(value, *Locale::neutral());
}

/// The values of a plan's columns, as they are before they become the columns'.
std::vector<Variant> asInFile(const TablePlan& plan, const OldRow& row) {
  std::vector<Variant> values;
  for (const ColumnPlan& column : plan.columns) values.push_back(row.values[column.from]);
  return values;
}

/// "Articulos_Tarifas A1, D".
std::string nameOf(const TablePlan& plan, const std::vector<Variant>& values) {
  std::string name = plan.to->name;
  const char* separator = " ";
  for (const std::size_t place : plan.key) {
    name += separator + textOf(values[place]);
    separator = ", ";
  }
  return name;
}

}  // namespace

/// Columns of a plan whose values one row of another table must have.
struct DatabaseImport::Reference {
  const TablePlan* child = nullptr;
  std::vector<std::size_t> places;  ///< in the child's plan
  const engine::Table* parent = nullptr;
  int selector = 0;  ///< of the parent
  std::vector<const engine::Column*> columns;
  const TablePlan* plan = nullptr;            ///< the parent's, where the file brings it too
  std::vector<std::size_t> parentPlaces;      ///< in the parent's plan
  std::unordered_set<std::uint64_t> present;  ///< the parent's values
};

/// What is stored of a table, or was taken from the file.
struct DatabaseImport::Known {
  std::uint64_t row = 0;   ///< all of it
  std::uint64_t line = 0;  ///< of the file, 0 for none
};

/// What goes on with a table.
struct DatabaseImport::Work {
  const TablePlan& plan;
  TableCounts counts;
  std::vector<Refusal> refusals;
  std::unordered_map<std::uint64_t, Known> byKey;
  std::unordered_map<std::uint64_t, std::uint32_t> byRow;  ///< how often, where there is no key
  std::vector<Record> fresh;                               ///< to be inserted
};

DatabaseImport::DatabaseImport(OldDatabase& file, const TablePlans& plans, Setup setup)
    : file_(file), plans_(plans), setup_(setup) {
  findReferences();
  std::unordered_set<const TablePlan*> seen;
  for (const TablePlan& plan : plans_.tables) orderBy(plan, seen);
  std::vector<int> selectors;
  for (const TablePlan* plan : order_) selectors.push_back(plan->selector);
  std::sort(selectors.begin(), selectors.end());  // who holds main may look at the documents
  selectors.erase(std::unique(selectors.begin(), selectors.end()), selectors.end());
  if (!selectors.empty()) first_.emplace(connectionOf(selectors.front()));
  if (selectors.size() > 1) second_.emplace(connectionOf(selectors.back()));
}

DatabaseImport::~DatabaseImport() = default;

void DatabaseImport::commit() {
  if (first_) first_->commit();
  if (second_) second_->commit();
  for (const auto& [selector, connection] : connections_) connection->absorbTexts();
}

ConnectionPtr& DatabaseImport::connectionOf(int selector) {
  ConnectionPtr& connection = connections_[selector];
  if (!connection) connection = DataSession().OpenConnection(selector);
  return connection;
}

// ---------------------------------------------------------------------------------------------
// References

void DatabaseImport::addReference(Reference reference) {
  const bool isKnown = std::any_of(references_.begin(), references_.end(), [&](const auto& each) {
    return each->child == reference.child && each->parent == reference.parent &&
           each->places == reference.places && each->columns == reference.columns;
  });
  if (!isKnown) references_.push_back(std::make_unique<Reference>(std::move(reference)));
}

/// Those of the shop's own tables, and those that the file has kept to.
void DatabaseImport::findReferences() {
  const auto add = [&](const TablePlan* child, const std::vector<std::string>& columns,
                       std::string_view parent, const std::vector<std::string>& parentColumns) {
    Reference reference;
    reference.child = child;
    reference.plan = plans_.into(parent);
    for (const auto& catalogue : plans_.catalogues) {
      if (reference.parent == nullptr) reference.parent = catalogue->find(parent);
    }
    if (child == nullptr || !child->fault.empty() || reference.parent == nullptr) return;
    reference.selector = child->selector;
    for (const TablePlan& plan : plans_.tables) {
      if (plan.to == reference.parent) reference.selector = plan.selector;
    }
    for (std::size_t i = 0; i < columns.size(); ++i) {
      const int place = child->place(columns[i]);
      const int column = reference.parent->find(parentColumns[i]);
      if (place < 0 || column < 0) return;
      reference.places.push_back(static_cast<std::size_t>(place));
      reference.columns.push_back(&reference.parent->columns[static_cast<std::size_t>(column)]);
      const int inPlan = reference.plan != nullptr ? reference.plan->place(parentColumns[i]) : -1;
      if (inPlan < 0) reference.plan = nullptr;
      reference.parentPlaces.push_back(static_cast<std::size_t>(std::max(inPlan, 0)));
    }
    addReference(std::move(reference));
  };
  for (const Hanging& hanging : kHanging) {
    add(plans_.into(hanging.child), {std::string(hanging.column)}, hanging.parent,
        {std::string(hanging.parentColumn)});
  }
  const auto newNames = [&](const TablePlan& plan, const std::vector<std::string>& old) {
    std::vector<std::string> names;
    for (const std::string& name : old) {
      const auto found =
          std::find_if(plan.columns.begin(), plan.columns.end(), [&](const ColumnPlan& column) {
            return text::equalsIgnoreCase(file_.tables()[plan.from].columns[column.from].name,
                                          name);
          });
      names.push_back(found == plan.columns.end() ? std::string() : found->to->name);
    }
    return names;
  };
  for (const OldRelation& relation : file_.relations()) {
    const TablePlan* const child = plans_.of(relation.child);
    const TablePlan* const parent = plans_.of(relation.parent);
    if (child == nullptr || parent == nullptr || parent->to == nullptr) continue;
    add(child, newNames(*child, relation.childColumns), parent->to->name,
        newNames(*parent, relation.parentColumns));
  }
}

void DatabaseImport::orderBy(const TablePlan& plan, std::unordered_set<const TablePlan*>& seen) {
  if (!plan.fault.empty() || !seen.insert(&plan).second) return;
  for (const auto& reference : references_) {
    if (reference->child == &plan && reference->plan != nullptr) orderBy(*reference->plan, seen);
  }
  order_.push_back(&plan);
}

/// What is stored, and where a circle of references leaves no other way, what the file has.
void DatabaseImport::loadParents(Reference& reference) {
  RecordsetPtr rows;
  DataSession().OpenRecordset(reference.selector,
                              selectOf(reference.columns, reference.parent->name), rows,
                              connectionOf(reference.selector));
  for (const Row row : rows) {
    reference.present.insert(hashOf(valuesOf(row, reference.columns.size()), nullptr, true));
  }
  if (reference.plan == nullptr || done_.contains(reference.plan)) return;
  const TablePlan& plan = *reference.plan;
  std::vector<Variant> values;
  file_.read(plan.from, [&](OldRow& row) {
    values.assign(reference.parentPlaces.size(), Null());
    for (std::size_t i = 0; i < values.size(); ++i) {
      const ColumnPlan& column = plan.columns[reference.parentPlaces[i]];
      if (!converted(row.values[column.from], column, plan.isInFile, values[i]).empty()) return;
    }
    reference.present.insert(hashOf(values, nullptr, true));
  });
}

std::string DatabaseImport::missingParent(const TablePlan& plan, const Record& record) const {
  for (const auto& reference : references_) {
    if (reference->child != &plan) continue;
    const bool hasNull = std::any_of(reference->places.begin(), reference->places.end(),
                                     [&](std::size_t at) { return record.values[at].isNull(); });
    if (hasNull || reference->present.contains(hashOf(record.values, &reference->places, true))) {
      continue;
    }
    std::string names;
    for (const std::size_t place : reference->places) {
      names += fmt::format("{}{} {}", names.empty() ? "" : ", ", plan.columns[place].to->name,
                           textOf(record.values[place]));
    }
    return fmt::format("{} is in no row of {}", names, reference->parent->name);
  }
  return {};
}

/// Rows that are stored or taken may be referred to.
void DatabaseImport::accept(const TablePlan& plan, const Record& record) {
  for (const auto& reference : references_) {
    if (reference->plan == &plan && reference->child != &plan) {
      reference->present.insert(hashOf(record.values, &reference->parentPlaces, true));
    }
  }
}

// ---------------------------------------------------------------------------------------------
// A table

TableCounts DatabaseImport::take(const TablePlan& plan, Refusals& refusals,
                                 const Callback<void(std::uint64_t)>& progress) {
  Work work{plan, {}, {}, {}, {}, {}};
  for (const auto& reference : references_) {
    if (reference->child == &plan) loadParents(*reference);
  }
  loadStored(work);
  const auto flush = [&] {
    write(work);
    std::stable_sort(work.refusals.begin(), work.refusals.end(),
                     [](const Refusal& a, const Refusal& b) { return a.line < b.line; });
    refusals.add(work.refusals);
    work.refusals.clear();
    progress(work.counts.total());
    if (Interruptible::interrupted()) throw FileError("interrupted; nothing was written");
  };
  std::size_t read = 0;
  file_.read(plan.from, [&](OldRow& row) {
    Record record;
    std::string fault = this->read(work, row, record);
    if (!fault.empty()) {
      refuse(work, row.number, nameOf(plan, asInFile(plan, row)), std::move(fault));
    } else {
      sort(work, std::move(record));
    }
    if (++read % kBatch == 0) flush();
  });
  flush();
  done_.insert(&plan);
  return work.counts;
}

void DatabaseImport::loadStored(Work& work) {
  const TablePlan& plan = work.plan;
  RecordsetPtr rows;
  DataSession().OpenRecordset(plan.selector, selectOf(columnsOf(plan), plan.to->name), rows,
                              connectionOf(plan.selector));
  for (const Row row : rows) {
    const std::vector<Variant> values = valuesOf(row, plan.columns.size());
    const std::uint64_t all = hashOf(values, nullptr);
    if (plan.key.empty()) {
      ++work.byRow[all];
    } else {
      work.byKey[hashOf(values, &plan.key)] = {all, 0};
    }
  }
}

std::string DatabaseImport::read(Work& work, OldRow& row, Record& record) {
  const TablePlan& plan = work.plan;
  record.number = row.number;
  record.values.assign(plan.columns.size(), Null());
  std::string fault = row.fault;
  for (std::size_t i = 0; i < plan.columns.size(); ++i) {
    const ColumnPlan& column = plan.columns[i];
    std::string own = converted(row.values[column.from], column, plan.isInFile, record.values[i]);
    if (fault.empty()) fault = std::move(own);
  }
  return fault.empty() ? missingParent(plan, record) : fault;
}

/// New, as stored, or otherwise.
void DatabaseImport::sort(Work& work, Record record) {
  const TablePlan& plan = work.plan;
  const std::uint64_t all = hashOf(record.values, nullptr);
  if (plan.key.empty()) {
    const auto stored = work.byRow.find(all);
    if (stored != work.byRow.end() && stored->second > 0) {
      --stored->second;
      ++work.counts.same;
      return accept(plan, record);
    }
    return work.fresh.push_back(std::move(record));
  }
  const auto [known, isNew] =
      work.byKey.try_emplace(hashOf(record.values, &plan.key), Known{all, record.number});
  if (isNew) return work.fresh.push_back(std::move(record));
  if (known->second.line != 0) {
    return refuse(work, record.number, nameOf(plan, record.values),
                  fmt::format("row {} has that key already", known->second.line));
  }
  known->second.line = record.number;
  if (known->second.row == all) {
    ++work.counts.same;
    return accept(plan, record);
  }
  rewriteOrTell(work, record);
}

void DatabaseImport::refuse(Work& work, std::uint64_t number, std::string name,
                            std::string reason) {
  ++work.counts.refused;
  work.refusals.push_back({number, std::move(name), std::move(reason)});
}

// ---------------------------------------------------------------------------------------------
// Writing

/// All of them, or if the table refuses one of them, each by itself: a record set writes several
/// rows whole or not at all, and a statement its one. A table without a key refuses no row.
void DatabaseImport::write(Work& work) {
  const std::vector<Record> fresh = std::exchange(work.fresh, {});
  if (fresh.empty()) return;
  const auto insertAll = [&](std::span<const Record> records) {
    insert(work.plan, records);
    work.counts.added += records.size();
    for (const Record& record : records) accept(work.plan, record);
  };
  try {
    if (!hasCounter(work.plan)) return insertAll(fresh);
  } catch (const Error& error) {
    if (!isOfTheRow(error.number()) || work.plan.to->key.empty()) throw;
  }
  for (const Record& record : fresh) {
    try {
      insertAll(std::span(&record, 1));
    } catch (const Error& error) {
      if (!isOfTheRow(error.number())) throw;
      refuse(work, record.number, nameOf(work.plan, record.values), error.description());
    }
  }
}

void DatabaseImport::insert(const TablePlan& plan, std::span<const Record> records) {
  // A record set writes to no table without a key, and leads no counter behind the numbers it
  // gives.
  if (plan.to->key.empty() || hasCounter(plan)) {
    for (const Record& record : records) insertByStatement(plan, record);
    return;
  }
  RecordsetPtr rows;
  Statement none = selectOf(columnsOf(plan), plan.to->name);
  none << " WHERE 1 = 0";
  DataSession().OpenRecordset(plan.selector, none, rows, connectionOf(plan.selector));
  for (const Record& record : records) {
    std::vector<Variant> places;
    std::vector<Variant> values;
    for (std::size_t i = 0; i < plan.columns.size(); ++i) {
      places.emplace_back(static_cast<std::int32_t>(i));
      values.push_back(record.values[i]);
    }
    rows->AddNew(places, values);
  }
  rows->UpdateBatch();
}

void DatabaseImport::insertByStatement(const TablePlan& plan, const Record& record) {
  std::string name;
  Statement statement("INSERT INTO ");
  statement << quoted(name, plan.to->name) << " (";
  for (std::size_t i = 0; i < plan.columns.size(); ++i) {
    if (i > 0) statement << ", ";
    statement << quoted(name, plan.columns[i].to->name);
  }
  statement << ") VALUES (";
  for (std::size_t i = 0; i < record.values.size(); ++i) {
    if (i > 0) statement << ", ";
    statement << sqlLiteral(record.values[i]);
  }
  statement << ")";
  const ConnectionPtr& connection = connectionOf(plan.selector);
  if (hasCounter(plan)) {
    connection->Execute(statement);  // what it refuses is to be known at once
  } else {
    connection->Send(statement);
  }
}

RecordsetPtr DatabaseImport::storedRow(const TablePlan& plan, const Record& record) {
  std::string name;
  Statement statement = selectOf(columnsOf(plan), plan.to->name);
  for (const std::size_t place : plan.key) {
    statement << (place == plan.key.front() ? Statement::Constant(" WHERE ") : " AND ");
    statement << quoted(name, plan.columns[place].to->name) << " = "
              << sqlLiteral(record.values[place]);
  }
  RecordsetPtr rows;
  DataSession().OpenRecordset(plan.selector, statement, rows, connectionOf(plan.selector));
  return rows;
}

void DatabaseImport::rewriteOrTell(Work& work, const Record& record) {
  const TablePlan& plan = work.plan;
  const RecordsetPtr rows = storedRow(plan, record);
  std::vector<Variant> places;
  std::vector<Variant> values;
  std::string names;
  for (std::size_t i = 0; i < plan.columns.size() && !rows->Eof(); ++i) {
    std::string stored;
    std::string given;
    addTo(stored, rows->Field(static_cast<std::int32_t>(i)).Value(), false);
    addTo(given, record.values[i], false);
    if (stored == given) continue;
    places.emplace_back(static_cast<std::int32_t>(i));
    values.push_back(record.values[i]);
    names += (names.empty() ? "" : ", ") + plan.columns[i].to->name;
  }
  if (!setup_.isRewriting) {
    ++work.counts.kept;
    work.refusals.push_back({record.number, nameOf(plan, record.values),
                             fmt::format("is there already, with another {}", names), true});
    return accept(plan, record);
  }
  try {
    rows->Update(places, values);
    rows->UpdateBatch();
    ++work.counts.changed;
    accept(plan, record);
  } catch (const Error& error) {
    if (!isOfTheRow(error.number())) throw;
    refuse(work, record.number, nameOf(plan, record.values), error.description());
  }
}

}  // namespace tavelor::tools

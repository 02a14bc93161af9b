// SPDX-License-Identifier: MIT
// Calls through the C interface beside the same calls by name in C++, and rows into a caller's
// memory beside their opening.
#include <stdexcept>
#include <string>
#include <vector>

#include <fmt/format.h>
#include <tavelor.h>

#include "bench/shop.hpp"
#include "bench/works.hpp"
#include "tavelor/components.hpp"
#include "tavelor/frame/component.hpp"
#include "tavelor/services/data_session.hpp"
#include "tavelor/services/recordset/recordset.hpp"

namespace tavelor::bench {

namespace {

void check(tavelor_status status, tavelor_error* error) {
  if (status != TAVELOR_OK) throw std::runtime_error(tavelor_error_message(error));
}

/// The installation of a shop, seen through the C interface.
class SeenFromC {
 public:
  explicit SeenFromC(const std::string& folder) {
    tavelor_error* error = nullptr;
    check(tavelor_installation_open(folder.c_str(), &installation_, &error), error);
    check(tavelor_apartment_open(installation_, &apartment_, &error), error);
    check(tavelor_connection_open(apartment_, 1, &connection_, &error), error);
  }
  SeenFromC(const SeenFromC&) = delete;
  SeenFromC& operator=(const SeenFromC&) = delete;
  ~SeenFromC() {
    tavelor_object_release(connection_);
    tavelor_apartment_close(apartment_);
    tavelor_installation_release(installation_);
  }

  tavelor_object* connection() const { return connection_; }
  using Made = std::unique_ptr<tavelor_object, decltype(&tavelor_object_release)>;
  Made make(const char* name) const {
    tavelor_error* error = nullptr;
    const tavelor_class* of = nullptr;
    check(tavelor_class_find(name, &of, &error), error);
    tavelor_object* object = nullptr;
    check(tavelor_object_new(apartment_, of, &object, &error), error);
    return {object, &tavelor_object_release};
  }
  static const tavelor_member* slot(tavelor_object* object, const char* name) {
    tavelor_error* error = nullptr;
    const tavelor_member* member = nullptr;
    check(tavelor_class_find_member(tavelor_object_class(object), name, &member, &error), error);
    return member;
  }

 private:
  tavelor_installation* installation_ = nullptr;
  tavelor_apartment* apartment_ = nullptr;
  tavelor_object* connection_ = nullptr;
};

/// Nothing behind it but a word: what the call itself costs.
void measureProperty(const SeenFromC& c, Report& report, const Scale& scale) {
  const std::size_t calls = scale.of(200'000);
  const Component& banks = component("ClsBancos");
  const std::unique_ptr<Object> object = banks.make();
  const Side byName{[&] {
    double sum = 0;
    std::vector<Variant> arguments;
    for (std::size_t i = 0; i < calls; ++i) {
      arguments.clear();
      sum += static_cast<double>(
          banks.call(*object, "sClassName", arguments).getIf<std::string>()->size());
    }
    return sum;
  }};
  const SeenFromC::Made made = c.make("ClsBancos");
  tavelor_object* const seen = made.get();
  const tavelor_member* const slot = SeenFromC::slot(seen, "sClassName");
  const auto through = [&](auto call) {
    return Side{[&, call] {
      double sum = 0;
      for (std::size_t i = 0; i < calls; ++i) {
        tavelor_value result;
        if (call(&result) != TAVELOR_OK) throw std::runtime_error("sClassName");
        sum += static_cast<double>(result.as.text.size);
        tavelor_value_clear(&result);
      }
      return sum;
    }};
  };
  report.add(compare({"C: a property by slot (C++: by name)", calls, 1.1, byName,
                      through([=](tavelor_value* result) {
                        return tavelor_call(seen, slot, nullptr, 0, result, nullptr);
                      })},
                     scale));
  report.add(compare({"C: the same by name", calls, 0, byName, through([=](tavelor_value* result) {
                        return tavelor_call_by_name(seen, "sClassName", nullptr, 0, result,
                                                    nullptr);
                      })},
                     scale));
}

/// A row is read, and two texts come back.
void measureRow(const SeenFromC& c, Report& report, const Scale& scale) {
  const std::size_t calls = scale.of(20'000);
  const Component& banks = component("ClsBancos");
  const std::unique_ptr<Object> object = banks.make();
  const ConnectionPtr connection = DataSession().OpenConnection(1);
  const Side byName{[&] {
    double sum = 0;
    for (std::size_t i = 0; i < calls; ++i) {
      std::vector<Variant> arguments{"B1", Variant(), Variant(), Variant(ObjectPtr(connection))};
      banks.call(*object, "GetIbanBic", arguments);
      sum += static_cast<double>(arguments[1].getIf<std::string>()->size());
    }
    return sum;
  }};
  const SeenFromC::Made made = c.make("ClsBancos");
  tavelor_object* const seen = made.get();
  const tavelor_member* const slot = SeenFromC::slot(seen, "GetIbanBic");
  const Side bySlot{[&] {
    double sum = 0;
    for (std::size_t i = 0; i < calls; ++i) {
      tavelor_value arguments[] = {tavelor_of_string("B1"), tavelor_of_empty(), tavelor_of_empty(),
                                   tavelor_of_object(c.connection())};
      if (tavelor_call(seen, slot, arguments, 4, nullptr, nullptr) != TAVELOR_OK) {
        throw std::runtime_error("GetIbanBic");
      }
      sum += static_cast<double>(arguments[1].as.text.size);
      tavelor_value_clear(&arguments[1]);
      tavelor_value_clear(&arguments[2]);
    }
    return sum;
  }};
  report.add(
      compare({"C: a member that reads a row (C++: by name)", calls, 1.1, byName, bySlot}, scale));
}

/// Memory for all rows of a set, by columns.
class Columns {
 public:
  Columns(tavelor_object* rows, std::size_t count) {
    tavelor_error* error = nullptr;
    std::int32_t columns = 0;
    check(tavelor_recordset_column_count(rows, &columns, &error), error);
    buffers_.resize(static_cast<std::size_t>(columns));
    memory_.resize(buffers_.size());
    for (std::int32_t i = 0; i < columns; ++i) {
      tavelor_column column{sizeof column, nullptr, nullptr, 0, 0, 0, 0};
      check(tavelor_recordset_column(rows, i, &column, &error), error);
      tavelor_column_buffer& buffer = buffers_[static_cast<std::size_t>(i)];
      Memory& memory = memory_[static_cast<std::size_t>(i)];
      memory.validity.resize((count + 7) / 8);
      buffer = {sizeof buffer,
                i,
                TAVELOR_AS_DOUBLE,
                nullptr,
                memory.validity.data(),
                nullptr,
                nullptr,
                0,
                0,
                0};
      if (column.type == TAVELOR_COLUMN_TEXT || column.type == TAVELOR_COLUMN_MEMO) {
        buffer.as = TAVELOR_AS_TEXT;
        memory.offsets.resize(count + 1);
        memory.bytes.resize(count * 40);
        buffer.offsets = memory.offsets.data();
        buffer.bytes = memory.bytes.data();
        buffer.capacity = memory.bytes.size();
        continue;
      }
      memory.values.resize(count * 8);
      buffer.values = memory.values.data();
      if (column.type == TAVELOR_COLUMN_DATE) buffer.as = TAVELOR_AS_UNIX_US;
      if (column.type == TAVELOR_COLUMN_BOOLEAN) buffer.as = TAVELOR_AS_BOOL8;
      if (column.type == TAVELOR_COLUMN_INT32) buffer.as = TAVELOR_AS_INT32;
    }
  }

  double read(tavelor_object* rows, std::size_t count) {
    tavelor_error* error = nullptr;
    std::int64_t read = 0;
    check(tavelor_recordset_read(rows, 0, static_cast<std::int64_t>(count), buffers_.data(),
                                 buffers_.size(), &read, &error),
          error);
    return static_cast<double>(read);
  }

 private:
  struct Memory {
    std::vector<char> values;
    std::vector<std::uint8_t> validity;
    std::vector<std::int64_t> offsets;
    std::vector<char> bytes;
  };
  std::vector<tavelor_column_buffer> buffers_;
  std::vector<Memory> memory_;
};

void measureRows(const SeenFromC& c, BenchShop& shop, Report& report, const Scale& scale,
                 std::size_t rows) {
  constexpr const char* kAll = "SELECT * FROM Anchas ORDER BY Id";
  RecordsetPtr set;
  const Side opened{[&] {
                      set = shop.open(kAll);
                      return static_cast<double>(set->RecordCount());
                    },
                    {},
                    [&] { set.reset(); }};
  tavelor_object* rowsOfC = nullptr;
  const auto open = [&] {
    tavelor_error* error = nullptr;
    check(tavelor_recordset_open(c.connection(), kAll, nullptr, 0, TAVELOR_LOCK_READ_ONLY, &rowsOfC,
                                 &error),
          error);
  };
  open();
  Columns columns(rowsOfC, rows);
  tavelor_object_release(rowsOfC);
  const Side laidDown{[&] {
                        open();
                        return columns.read(rowsOfC, rows);
                      },
                      {},
                      [&] { tavelor_object_release(rowsOfC); }};
  report.add(compare(
      {"C: open 45 columns and lay them down (C++: open)", rows, 1.3, opened, laidDown}, scale));
}

}  // namespace

void measureC(Report& report, const Scale& scale) {
  BenchShop shop;
  const std::size_t rows = scale.of(100'000);
  addWideTable(shop, rows);
  shop.filler().execute(
      "INSERT INTO Bancos (Codigo, Banco, IBAN, Swift, Predeterminada) VALUES ('B1', 'Banco de "
      "Ahorro', 'ES9121000418450200051332', 'CAIXESBBXXX', 0)");
  shop.share();
  const SeenFromC c(shop.installation().folder());
  measureProperty(c, report, scale);
  measureRow(c, report, scale);
  measureRows(c, shop, report, scale, rows);
}

}  // namespace tavelor::bench

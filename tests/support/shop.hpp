// SPDX-License-Identifier: MIT
// A shop for a test: an installation in a temporary folder, and an apartment on this thread.
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "tavelor/platform/error.hpp"
#include "tavelor/platform/statement.hpp"
#include "tavelor/platform/variant.hpp"
#include "tavelor/services/apartment.hpp"
#include "tavelor/services/data_session.hpp"
#include "tavelor/services/installation.hpp"
#include "tavelor/services/recordset/recordset.hpp"
#include "tavelor/services/trace.hpp"
#include "tests/support/engines.hpp"
#include "tests/support/errors.hpp"
#include "tests/support/temporary_folder.hpp"

namespace tavelor::test {

inline Settings fastSettings() {
  Settings settings;
  putOnEngine(settings);
  settings.synchronous = false;  // no test of this kind cuts the power
  return settings;
}

class Shop {
 public:
  explicit Shop(const Settings& settings = fastSettings())
      : installation_(Installation::create(folder_.path() / "shop", settings)),
        apartment_(installation_) {
    apartment_.trace().turn(true);
  }

  Installation& installation() { return *installation_; }
  const std::shared_ptr<Installation>& installationPtr() { return installation_; }
  Apartment& apartment() { return apartment_; }

  /// Texts of the statements that ran since the last call.
  std::vector<std::string> statements() {
    std::vector<std::string> texts;
    for (const auto& entry : apartment_.trace().entries()) texts.push_back(entry.text);
    apartment_.trace().clear();
    return texts;
  }

  /// Runs a statement outside of any class, not traced.
  void run(const std::string& statement, int selector = 1) {
    Untraced quiet(apartment_);
    ConnectionPtr connection;
    DataSession().Execute(selector, Statement::trusted(statement), connection);
  }
  /// First column of the first row; Empty when there is none.
  Variant value(const std::string& statement, int selector = 1) {
    Untraced quiet(apartment_);
    RecordsetPtr rows;
    ConnectionPtr connection;
    DataSession().OpenRecordset(selector, Statement::trusted(statement), rows, connection);
    return rows->RecordCount() == 0 ? Variant() : rows->Field(0).Value();
  }
  std::string text(const std::string& statement, int selector = 1) {
    const Variant found = value(statement, selector);
    return found.isNull() ? "Null" : found.toText(apartment_.locale());
  }

 private:
  class Untraced {
   public:
    explicit Untraced(Apartment& apartment)
        : trace_(apartment.trace()), wasOn_(apartment.trace().isOn()) {
      trace_.turn(false);
    }
    ~Untraced() { trace_.turn(wasOn_); }
    Untraced(const Untraced&) = delete;
    Untraced& operator=(const Untraced&) = delete;

   private:
    StatementTrace& trace_;
    bool wasOn_;
  };

  TemporaryFolder folder_;
  std::shared_ptr<Installation> installation_;
  Apartment apartment_;
};

}  // namespace tavelor::test

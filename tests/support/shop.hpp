// SPDX-License-Identifier: MIT
// A shop for a test: an installation in a temporary folder, and an apartment on this thread.
#pragma once

#include <cerrno>
#include <cstdint>
#include <cstdlib>
#include <filesystem>
#include <memory>
#include <string>
#include <system_error>
#include <vector>

#include <unistd.h>

#include "tavelor/platform/error.hpp"
#include "tavelor/platform/statement.hpp"
#include "tavelor/platform/variant.hpp"
#include "tavelor/services/apartment.hpp"
#include "tavelor/services/data_session.hpp"
#include "tavelor/services/installation.hpp"
#include "tavelor/services/recordset/recordset.hpp"
#include "tavelor/services/trace.hpp"

namespace tavelor::test {

/// A folder of its own that goes with the object.
class TemporaryFolder {
 public:
  /// A name that nobody has: one made of the process would meet what a killed test of the same
  /// number has left.
  TemporaryFolder() {
    std::string name = (place() / "tavelor-test-XXXXXX").string();
    if (::mkdtemp(name.data()) == nullptr) {
      throw std::system_error(errno, std::generic_category(), name);
    }
    path_ = name;
  }
  ~TemporaryFolder() {
    std::error_code ignored;
    std::filesystem::remove_all(path_, ignored);
  }
  TemporaryFolder(const TemporaryFolder&) = delete;
  TemporaryFolder& operator=(const TemporaryFolder&) = delete;
  const std::filesystem::path& path() const { return path_; }

 private:
  /// In memory where that is to be had and nobody asked for another place: a shop is six databases,
  /// and a disk takes its time to keep them.
  static std::filesystem::path place() {
    const std::filesystem::path memory = "/dev/shm";
    constexpr std::uintmax_t kRoom = 1U << 30U;
    std::error_code error;
    const bool fits = std::getenv("TMPDIR") == nullptr && ::access(memory.c_str(), W_OK) == 0 &&
                      std::filesystem::space(memory, error).available > kRoom && !error;
    return fits ? memory : std::filesystem::temp_directory_path();
  }

  std::filesystem::path path_;
};

inline Settings fastSettings() {
  Settings settings;
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

/// The number of the tavelor::Error that `action` raises, or 0.
template <typename Action>
std::int32_t errorOf(Action&& action) {
  try {
    action();
  } catch (const Error& error) {
    return error.number();
  }
  return 0;
}

}  // namespace tavelor::test

// SPDX-License-Identifier: MIT
// The installation that a command works in.
#pragma once

#include <memory>
#include <string>
#include <string_view>

#include "tavelor/services/apartment.hpp"

namespace tavelor {
class Component;
class Object;
class Recordset;
}  // namespace tavelor

namespace tavelor::tools {

struct Common;

/// That in the folder of --in, else of TAVELOR_HOME, else in the current folder. Raises 53, naming
/// the folder, when there is none.
std::shared_ptr<Installation> openInstallation(const Common& common);

/// An open installation with its apartment, for as long as a command runs. Messages and questions
/// of the classes reach the terminal; statements are shown when --trace asks for them.
class Session {
 public:
  explicit Session(const Common& common);

  Installation& installation() const { return apartment_.installation(); }
  Apartment& apartment() { return apartment_; }
  const Locale& locale() const { return apartment_.locale(); }

  /// A database by its number or its label. Raises UsageError, naming all, for another word.
  int selector(std::string_view word) const;

 private:
  void showTrace();

  Apartment apartment_;
};

}  // namespace tavelor::tools

// SPDX-License-Identifier: MIT
// What the shop has told about its invoices and the tax office.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "tavelor/fiscal/record.hpp"
#include "tavelor/platform/date.hpp"
#include "tavelor/services/own_files.hpp"

namespace tavelor {
class Installation;
}

namespace tavelor::fiscal {

/// Whether records go to the tax office by themselves.
enum class Mode : std::uint8_t {
  kSending,     ///< "verifactu"
  kNotSending,  ///< "no-verifactu": signed records and a log of events instead
};

/// Of the tickets' own numbers, which tickets from before the records go by: A/12.
inline constexpr std::string_view kSeriesBefore = "A";

/// The series of the shop's invoices: a letter or a word each, all different, and none that of
/// earlier tickets.
struct Series {
  std::string tickets = "T";
  std::string invoices = "F";    ///< full ones, and those in the place of tickets
  std::string rectifying = "R";  ///< of returns
  friend bool operator==(const Series&, const Series&) = default;
};

/// The settings file fiscal.xml, beside that of the installation.
struct Settings {
  static constexpr std::string_view kFile = kFiscalSettingsFile;  ///< its name

  Party taxpayer;  ///< who sells
  System system;   ///< its version may be empty: then it is that of this library
  Mode mode = Mode::kSending;
  bool isTest = false;       ///< the tax office's host for tests
  std::string endpoint;      ///< address that records are sent to; "" for the tax office's own
  std::string certificate;   ///< file, relative to the installation or absolute; "" for none
  std::string passwordName;  ///< the variable of the environment that holds its password
  Date start;                ///< first day whose sales are recorded
  Series series;
  std::string description = "Venta al por menor";  ///< of what is sold, in each record
  Operation zeroRate = Operation::kExempt1;        ///< what is sold at 0 percent, where a sale says
                                                   ///< nothing else

  friend bool operator==(const Settings&, const Settings&) = default;
};

/// Full path of the settings file.
std::string settingsFile(const Installation& installation);

/// Nothing where the installation has no settings file: it keeps no records. Raises 75 for one that
/// cannot be read, and 5, with file, line and column, for what does not read as XML, for what would
/// be ignored, and for values that no record can be made with.
std::optional<Settings> readSettings(const Installation& installation);

/// All that is wrong with settings, a sentence each.
std::vector<std::string> faultsOf(const Settings& settings);

/// Writes the file in the place of an old one: after a crash there is one or the other, whole.
/// Raises 5 where something is wrong with them and 75 where it cannot be written; the old one is
/// untouched then.
void writeSettings(const Installation& installation, const Settings& settings);

}  // namespace tavelor::fiscal

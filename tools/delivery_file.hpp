// SPDX-License-Identifier: MIT
// Deliveries from a file of comma-separated lines, one line of the file a line of a delivery.
#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "tavelor/flows/delivery.hpp"
#include "tools/csv_file.hpp"
#include "tools/fields.hpp"
#include "tools/refusals.hpp"

namespace tavelor::tools {

/// Reads deliveries one after the other. The lines of one, by the codes of its supplier and its
/// note, follow each other; numbers and days are checked here, everything else is the shop's.
///
/// The file is read once before the first delivery is given. So a delivery whose lines lie apart is
/// known before any of them is posted, and where a line does not say what it belongs to, a cut one
/// for instance, nothing of the file is. Of each delivery some hundred bytes are kept.
class DeliveryFile {
 public:
  static const ImportTable kTable;
  /// Places of the fields that every line says.
  static const std::span<const std::size_t> kNeeded;

  struct Setup {
    std::string path;
    char separator = 0;  ///< as CsvFile takes it
    std::vector<FieldSource> sources;
    const Locale* numbers = nullptr;
  };
  /// A delivery as it was read. One with faults is not to be posted.
  struct Entry {
    flows::Delivery delivery;
    std::uint64_t line = 0;  ///< the first one
    std::uint64_t lines = 0;
    std::vector<Refusal> faults;
    std::uint64_t earlier = 0;  ///< line at which the file has the same delivery before; 0 for none
  };

  /// Raises FileError for what is wrong with the file as such.
  explicit DeliveryFile(Setup setup);

  /// Lines that do not say which delivery they belong to. While there are some, next() gives none.
  const std::vector<Refusal>& homeless() const { return homeless_; }
  std::uint64_t deliveries() const { return deliveries_; }
  std::uint64_t lines() const { return lines_; }

  /// The next delivery; false at the end.
  bool next(Entry& entry);

 private:
  /// What the file has of a delivery.
  struct Seen {
    std::uint64_t line = 0;
    std::size_t content = 0;  ///< hash of its lines
    std::uint64_t apart = 0;  ///< line at which others of its lines begin, 0 for nowhere
  };

  void survey();
  bool advance();
  std::string_view field(std::size_t field) const;
  std::string keyOfRow() const;
  std::string homelessness() const;
  void takeRow(Entry& entry);
  std::string readRow(flows::Delivery& delivery, bool isFirst);

  Setup setup_;
  std::optional<CsvFile> file_;
  CsvFile::Row row_;
  bool hasRow_ = false;
  std::vector<Refusal> homeless_;
  std::unordered_map<std::string, Seen> seen_;
  std::uint64_t deliveries_ = 0;
  std::uint64_t lines_ = 0;
};

}  // namespace tavelor::tools

// SPDX-License-Identifier: MIT
// Puts the lines of a file together that belong to one delivery.
#include "tools/delivery_file.hpp"

#include <algorithm>
#include <array>
#include <functional>
#include <memory>
#include <tuple>

#include <fmt/format.h>
#include <utf8proc.h>

#include "tavelor/flows/sale.hpp"
#include "tavelor/platform/text.hpp"
#include "tools/input_file.hpp"
#include "tools/output.hpp"

namespace tavelor::tools {

namespace {

using enum FieldKind;

/// Places in kFields.
enum Place : std::size_t {
  kSupplier,
  kNote,
  kDate,
  kCode,
  kQuantity,
  kPrice,
  kDiscount,
  kWarehouse,
  kLot,
  kExpires,
};

constexpr std::array<ImportField, 10> kFields = {{{"Proveedor", kWord},
                                                  {"Albaran", kWord},
                                                  {"Fecha", kDay},
                                                  {"Codigo", kWord},
                                                  {"Cantidad", kNumber},
                                                  {"Precio", kMoney},
                                                  {"Descuento", kPercent},
                                                  {"Almacen", kWord},
                                                  {"Lote", kWord},
                                                  {"Caduca", kDay}}};
constexpr std::array<std::size_t, 6> kSaid = {kSupplier, kNote, kDate, kCode, kQuantity, kPrice};

utf8proc_category_t categoryOf(std::string_view letter) {
  utf8proc_int32_t code = -1;
  utf8proc_iterate(reinterpret_cast<const utf8proc_uint8_t*>(letter.data()),
                   static_cast<utf8proc_ssize_t>(letter.size()), &code);
  return code < 0 ? UTF8PROC_CATEGORY_CN : utf8proc_category(code);
}

/// Blanks of every width, none among them, and controls.
bool isUnseen(std::string_view letter) {
  const utf8proc_category_t category = categoryOf(letter);
  return category == UTF8PROC_CATEGORY_ZS || category == UTF8PROC_CATEGORY_CF ||
         category == UTF8PROC_CATEGORY_CC;
}

/// A note's number in its composed form, without what nobody sees at its ends: the same number is
/// the same bytes, wherever it was copied from.
std::string noteNumber(std::string_view written) {
  while (!written.empty() && isUnseen(text::left(written, 1))) {
    written.remove_prefix(text::left(written, 1).size());
  }
  while (!written.empty() && isUnseen(text::right(written, 1))) {
    written.remove_suffix(text::right(written, 1).size());
  }
  return text::composed(written);
}

bool hasControls(std::string_view text) {
  for (; !text.empty(); text.remove_prefix(text::left(text, 1).size())) {
    if (categoryOf(text::left(text, 1)) == UTF8PROC_CATEGORY_CC) return true;
  }
  return false;
}

/// Whether the second half of the lines is the first one again: a note that was pasted twice.
bool standTwice(const std::vector<flows::DeliveryLine>& lines) {
  const auto middle = lines.begin() + static_cast<std::ptrdiff_t>(lines.size() / 2);
  const auto values = [](const flows::DeliveryLine& line) {
    return std::tie(line.code, line.quantity, line.price, line.discount, line.warehouse, line.lot,
                    line.expires);
  };
  return !lines.empty() &&
         std::equal(lines.begin(), middle, middle, lines.end(),
                    [&](const auto& a, const auto& b) { return values(a) == values(b); });
}

std::string nameOf(std::string_view supplier, std::string_view note) {
  return fmt::format("{} {}", supplier, note);
}

}  // namespace

const ImportTable DeliveryFile::kTable = {"", "deliveries", kFields};
const std::span<const std::size_t> DeliveryFile::kNeeded = kSaid;

DeliveryFile::DeliveryFile(Setup setup) : setup_(std::move(setup)) {
  file_.emplace(setup_.path, setup_.separator);
  survey();
  file_.emplace(setup_.path, setup_.separator);
  if (homeless_.empty()) hasRow_ = advance();
}

/// To the next row that says anything.
bool DeliveryFile::advance() {
  const auto isBlank = [](const std::string& text) { return text::trim(text).empty(); };
  while (file_->next(row_)) {
    if (!std::all_of(row_.fields.begin(), row_.fields.end(), isBlank)) return true;
  }
  return false;
}

/// Of a whole row, without the blanks around it.
std::string_view DeliveryFile::field(std::size_t field) const {
  const FieldSource& source = setup_.sources[field];
  return source.given ? text::trim(source.in(row_.fields)) : std::string_view();
}

std::string DeliveryFile::homelessness() const {
  const std::size_t columns = file_->columns().size();
  return row_.fields.size() == columns
             ? "there is no Proveedor or no Albaran"
             : fmt::format("{} fields where the first row has {}", row_.fields.size(), columns);
}

/// "" for a row that does not say which delivery it belongs to. In one that was cut, or that a
/// separator too many has shifted, any text may be that of another column.
std::string DeliveryFile::keyOfRow() const {
  if (row_.fields.size() != file_->columns().size()) return {};
  const std::string_view supplier = field(kSupplier);
  const std::string note = noteNumber(field(kNote));
  if (supplier.empty() || note.empty()) return {};
  return fmt::format("{}\n{}", supplier, note);
}

/// Everything is read once: which deliveries there are, and whether their lines lie together.
void DeliveryFile::survey() {
  std::string key;
  Seen* open = nullptr;
  Seen again;  // of a delivery that was there before
  const auto complete = [&] {
    if (open != nullptr && again.line != 0 && again.content != open->content) {
      open->apart = again.line;
    }
  };
  while (advance()) {
    ++lines_;
    const std::string next = keyOfRow();
    if (next.empty()) {
      homeless_.push_back(
          {row_.line, {}, homelessness() + ": the line may belong to any delivery"});
      continue;
    }
    if (next != key) {
      complete();
      key = next;
      ++deliveries_;
      const auto [seen, isNew] = seen_.try_emplace(key, Seen{.line = row_.line});
      open = &seen->second;
      again = isNew ? Seen() : Seen{.line = row_.line};
    }
    std::size_t& content = again.line != 0 ? again.content : open->content;
    for (std::size_t at = 0; at < kFields.size(); ++at) {
      content = content * 1000003 + std::hash<std::string_view>()(field(at));
    }
  }
  complete();
}

bool DeliveryFile::next(Entry& entry) {
  if (!hasRow_) return false;
  entry = {};
  entry.line = row_.line;
  const std::string key = keyOfRow();
  const auto found = seen_.find(key);
  if (found == seen_.end()) {
    throw FileError(fmt::format("{}: the file changed while it was read", printable(setup_.path)));
  }
  const Seen& seen = found->second;
  do {
    takeRow(entry);
    hasRow_ = advance();
  } while (hasRow_ && keyOfRow() == key);
  const std::string name = nameOf(entry.delivery.supplier, entry.delivery.note);
  if (seen.apart != 0) {
    const std::uint64_t other = entry.line == seen.line ? seen.apart : seen.line;
    entry.faults.push_back(
        {entry.line, name, fmt::format("line {} has other lines of this delivery", other)});
  } else if (seen.line != entry.line) {
    entry.earlier = seen.line;
  }
  if (entry.faults.empty() && standTwice(entry.delivery.lines)) {
    entry.faults.push_back({entry.line, name, "its lines stand twice in the file"});
  }
  return true;
}

void DeliveryFile::takeRow(Entry& entry) {
  std::string fault = readRow(entry.delivery, entry.lines == 0);
  ++entry.lines;
  if (fault.empty()) return;
  entry.faults.push_back({row_.line, nameOf(field(kSupplier), field(kNote)), std::move(fault)});
}

/// Adds the row to the delivery, or says what is wrong with it.
std::string DeliveryFile::readRow(flows::Delivery& delivery, bool isFirst) {
  if (isFirst) {
    delivery.supplier = field(kSupplier);
    delivery.note = noteNumber(field(kNote));
  }
  if (hasControls(noteNumber(field(kNote)))) return "Albaran has a control character";
  FieldValues read;
  read.values.resize(kFields.size());
  for (std::size_t at = 0; at < kFields.size(); ++at) {
    std::string fault = readField(kFields[at], field(at), *setup_.numbers, read.values[at]);
    if (!fault.empty()) return fault;
  }
  for (const std::size_t needed : kNeeded) {
    if (!read.has(needed)) return fmt::format("{} is empty", kFields[needed].name);
  }
  const Date day = *read.day(kDate);
  if (delivery.lines.empty()) delivery.day = day;
  if (day != delivery.day) {
    return fmt::format("Fecha is {} where the delivery began with {}", flows::isoDay(day),
                       flows::isoDay(delivery.day));
  }
  delivery.lines.push_back({.code = std::string(read.text(kCode)),
                            .quantity = read.number(kQuantity),
                            .price = read.number(kPrice),
                            .discount = read.number(kDiscount),
                            .warehouse = std::string(read.text(kWarehouse)),
                            .lot = std::string(read.text(kLot)),
                            .expires = read.day(kExpires),
                            .origin = row_.line});
  return {};
}

}  // namespace tavelor::tools

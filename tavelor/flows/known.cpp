// SPDX-License-Identifier: MIT
// What a sale may name: the shop's tills, payment methods and tax rates.
#include "tavelor/flows/known.hpp"

#include <algorithm>

#include <fmt/format.h>
#include <fmt/ranges.h>

#include "tavelor/frame/class_info.hpp"
#include "tavelor/frame/rows.hpp"
#include "tavelor/platform/statement.hpp"

namespace tavelor::flows {

namespace {

/// As it is, or after another look where it is not there or nothing was read yet.
template <typename Cached, typename Read, typename Has>
bool lookTwice(const std::optional<Cached>& cached, Read read, Has has) {
  if (cached && has(*cached)) return true;
  read();
  return has(*cached);
}

}  // namespace

void Known::readTills() {
  tills_.emplace();
  for (Rows rows(selector::kMain, Statement("SELECT Codigo FROM Cajas ORDER BY Codigo"), main_);
       rows.hasRow(); rows.next()) {
    tills_->push_back(rows.text("Codigo"));
  }
}

void Known::readTaxes() {
  taxes_.emplace();
  const Statement statement("SELECT Impuesto FROM Tipos_Impuesto ORDER BY Codigo");
  for (Rows rows(selector::kMain, statement, main_); rows.hasRow(); rows.next()) {
    taxes_->push_back(rows.number("Impuesto"));
  }
}

bool Known::hasTill(const std::string& till) {
  return lookTwice(
      tills_, [&] { readTills(); },
      [&](const auto& all) { return std::find(all.begin(), all.end(), till) != all.end(); });
}

bool Known::hasTax(double rate) {
  return lookTwice(
      taxes_, [&] { readTaxes(); },
      [&](const auto& all) { return std::find(all.begin(), all.end(), rate) != all.end(); });
}

const PaymentMethod* Known::payment(const std::string& code) {
  const bool isThere = lookTwice(
      payments_, [&] { payments_.emplace(main_); },
      [&](const PaymentMethods& all) { return all.byCode(code) != nullptr; });
  return isThere ? payments_->byCode(code) : nullptr;
}

void Known::forget() {
  tills_.reset();
  taxes_.reset();
  payments_.reset();
}

std::string Known::tills() const {
  return fmt::format("{}", fmt::join(tills_.value_or(std::vector<std::string>()), ", "));
}

std::string Known::taxes() const {
  return fmt::format("{}", fmt::join(taxes_.value_or(std::vector<double>()), ", "));
}

}  // namespace tavelor::flows

// SPDX-License-Identifier: MIT
// Words of the law's lists.
#include "tavelor/fiscal/words.hpp"

#include <algorithm>
#include <array>

namespace tavelor::fiscal {

namespace {

constexpr std::array<std::string_view, 8> kInvoiceKinds = {"F1", "F2", "F3", "R1",
                                                           "R2", "R3", "R4", "R5"};
constexpr std::array<std::string_view, 10> kOperations = {"S1", "S2", "N1", "N2", "E1",
                                                          "E2", "E3", "E4", "E5", "E6"};

/// The place of a word in its list is the value that it stands for.
template <typename Value, typename Words>
std::optional<Value> valueOf(const Words& words, std::string_view word) {
  const auto found = std::find(words.begin(), words.end(), word);
  if (found == words.end()) return std::nullopt;
  return static_cast<Value>(found - words.begin());
}

}  // namespace

std::string_view word(InvoiceKind kind) {
  return kInvoiceKinds.at(static_cast<std::size_t>(kind));
}

std::string_view word(Operation operation) {
  return kOperations.at(static_cast<std::size_t>(operation));
}

std::optional<InvoiceKind> invoiceKindOf(std::string_view word) {
  return valueOf<InvoiceKind>(kInvoiceKinds, word);
}

std::optional<Operation> operationOf(std::string_view word) {
  return valueOf<Operation>(kOperations, word);
}

}  // namespace tavelor::fiscal

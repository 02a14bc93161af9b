// SPDX-License-Identifier: MIT
// Words of the law's lists: what an invoice is, and how its operation is taxed.
#pragma once

#include <cstdint>
#include <optional>
#include <string_view>

namespace tavelor::fiscal {

/// What an invoice is (TipoFactura).
enum class InvoiceKind : std::uint8_t {
  kFull,         ///< F1
  kSimplified,   ///< F2: a ticket
  kReplacing,    ///< F3: in the place of tickets that were recorded
  kRectifying1,  ///< R1: goods that come back, discounts, errors of law (art. 80.1, 80.2)
  kRectifying2,  ///< R2: the customer is insolvent by a court (art. 80.3)
  kRectifying3,  ///< R3: what cannot be collected (art. 80.4)
  kRectifying4,  ///< R4: the rest
  kRectifying5,  ///< R5: of a ticket
};

/// How an operation is taxed (CalificacionOperacion, OperacionExenta).
enum class Operation : std::uint8_t {
  kTaxed,           ///< S1
  kReverseCharge,   ///< S2: the customer pays the tax
  kNotSubject,      ///< N1
  kNotSubjectHere,  ///< N2: subject elsewhere
  kExempt1,         ///< E1: art. 20
  kExempt2,         ///< E2: art. 21, exports
  kExempt3,         ///< E3: art. 22
  kExempt4,         ///< E4: art. 23 and 24
  kExempt5,         ///< E5: art. 25, other countries of the Union
  kExempt6,         ///< E6: the rest
};

/// What a cancellation is among the kinds of stored records (Fiscal_Registros.Tipo).
inline constexpr std::string_view kCancellationWord = "AN";

/// "F2", as it stands in records.
std::string_view word(InvoiceKind kind);
/// "S1".
std::string_view word(Operation operation);
/// Nothing for a word that is not in the list.
std::optional<InvoiceKind> invoiceKindOf(std::string_view word);
/// The same.
std::optional<Operation> operationOf(std::string_view word);

/// R1 to R5.
inline bool isRectifying(InvoiceKind kind) {
  return kind >= InvoiceKind::kRectifying1;
}
/// Whether the record names who buys. Of the others, F2 and R5, it may not.
inline bool hasRecipient(InvoiceKind kind) {
  return kind != InvoiceKind::kSimplified && kind != InvoiceKind::kRectifying5;
}
/// E1 to E6.
inline bool isExempt(Operation operation) {
  return operation >= Operation::kExempt1;
}
/// N1 and N2.
inline bool isNotSubject(Operation operation) {
  return operation == Operation::kNotSubject || operation == Operation::kNotSubjectHere;
}

}  // namespace tavelor::fiscal

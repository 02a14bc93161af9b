// SPDX-License-Identifier: MIT
// What the law wants written of every invoice: a registration, or the cancellation of one, each
// with the hash of the record before it; and the events of systems that do not send.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <variant>
#include <vector>

#include "tavelor/fiscal/amount.hpp"
#include "tavelor/fiscal/words.hpp"
#include "tavelor/platform/date.hpp"

namespace tavelor::fiscal {

/// An invoice, among all that there are.
struct InvoiceId {
  std::string issuer;  ///< fiscal number
  std::string number;  ///< series and number, "T/12": 1 to 60 characters
  Date day;            ///< of issue
  friend bool operator==(const InvoiceId&, const InvoiceId&) = default;
};

/// A party without a Spanish number (IDOtro).
struct ForeignId {
  std::string country;  ///< two letters; "" for the type 02
  std::string type;     ///< 02 of the Union's register, 03 passport, 04 to 07
  std::string id;       ///< up to 20 characters
  friend bool operator==(const ForeignId&, const ForeignId&) = default;
};

/// A person or a company.
struct Party {
  std::string name;                    ///< up to 120 characters
  std::string number;                  ///< fiscal number; "" for a foreigner
  std::optional<ForeignId> foreign{};  ///< of a foreigner
  friend bool operator==(const Party&, const Party&) = default;
};

/// The program that makes the records (SistemaInformatico).
struct System {
  Party producer;             ///< who answers for the program
  std::string name;           ///< up to 30 characters
  std::string id;             ///< up to 2, given by the producer
  std::string version;        ///< up to 50
  std::string installation;   ///< up to 100; of each taxpayer another
  bool onlySends = false;     ///< it cannot work without sending
  bool mayServeMany = false;  ///< several taxpayers can use it
  bool servesMany = false;    ///< several do
  friend bool operator==(const System&, const System&) = default;
};

/// One rate of an invoice, or one cause for having none.
struct Detail {
  Operation operation = Operation::kTaxed;
  std::string regime = "01";               ///< ClaveRegimen
  std::optional<Amount> rate{};            ///< percent
  Amount base;                             ///< or what is not subject
  std::optional<Amount> quota{};           ///< what of it is tax
  std::optional<Amount> surchargeRate{};   ///< percent
  std::optional<Amount> surchargeQuota{};  ///< what of it is surcharge
  friend bool operator==(const Detail&, const Detail&) = default;
};

/// Of what a rectifying invoice takes the place.
struct Substituted {
  Amount base;
  Amount quota;
  std::optional<Amount> surcharge{};
  friend bool operator==(const Substituted&, const Substituted&) = default;
};

/// The record before a record.
struct Link {
  InvoiceId invoice;
  std::string hash;  ///< 64 hexadecimal digits, capitals
  friend bool operator==(const Link&, const Link&) = default;
};

/// What every record ends with.
struct Chaining {
  std::optional<Link> previous;  ///< none: it is the first one of its chain
  System system;
  std::string moment;     ///< when it was made: momentOf()
  std::string hash = {};  ///< its own: hashOf()
  friend bool operator==(const Chaining&, const Chaining&) = default;
};

/// The record of an invoice (RegistroAlta).
struct Registration {
  InvoiceId invoice;
  std::string issuerName;
  bool isCorrection = false;   ///< Subsanacion: of a record that was not right
  std::string priorRefusal{};  ///< RechazoPrevio: "", "N", "S", or "X"
  InvoiceKind kind = InvoiceKind::kSimplified;
  bool isSubstitution = false;         ///< of a rectifying one: type S; else I, the difference
  std::vector<InvoiceId> rectified{};  ///< of a rectifying one
  std::vector<InvoiceId> replaced{};   ///< of an F3
  std::optional<Substituted> substituted{};  ///< with type S
  std::optional<Date> operationDay{};        ///< where it is not the day of issue
  std::string description;                   ///< up to 500 characters
  bool isQualifiedTicket = false;            ///< a ticket that bears the customer's number
  bool hasNoRecipientByLaw = false;          ///< art. 6.1.d
  bool isLarge = false;                      ///< Macrodato: from 100,000,000.00 on
  std::vector<Party> recipients{};
  std::vector<Detail> details;
  Amount quota;  ///< tax and surcharge
  Amount total;
  Chaining chaining;
  friend bool operator==(const Registration&, const Registration&) = default;
};

/// The record of an invoice that should not have been issued (RegistroAnulacion).
struct Cancellation {
  InvoiceId invoice;
  bool hasNoRecord = false;  ///< SinRegistroPrevio: the invoice was never recorded
  bool wasRefused = false;   ///< RechazoPrevio
  Chaining chaining;
  friend bool operator==(const Cancellation&, const Cancellation&) = default;
};

/// One or the other.
using Record = std::variant<Registration, Cancellation>;

/// The invoice that a record is about.
inline const InvoiceId& invoiceOf(const Record& record) {
  return std::visit([](const auto& each) -> const InvoiceId& { return each.invoice; }, record);
}
/// What a record ends with.
inline const Chaining& chainingOf(const Record& record) {
  return std::visit([](const auto& each) -> const Chaining& { return each.chaining; }, record);
}
/// The same.
inline Chaining& chainingOf(Record& record) {
  return std::visit([](auto& each) -> Chaining& { return each.chaining; }, record);
}

}  // namespace tavelor::fiscal

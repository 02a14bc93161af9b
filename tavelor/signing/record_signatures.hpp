// SPDX-License-Identifier: MIT
// The signatures that records and events of a shop that does not send must have.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "tavelor/fiscal/book.hpp"
#include "tavelor/fiscal/check.hpp"
#include "tavelor/signing/certificate.hpp"

namespace tavelor::signing {

/// The certificate that the installation's settings name. Raises 5, saying what to do, where they
/// name none, and what Certificate::read() does.
Certificate certificateOf(const fiscal::Settings& settings, const Installation& installation);

/// What one step of a sweep has done.
struct SignedBatch {
  std::uint64_t records = 0;        ///< signatures that were stored
  std::uint64_t events = 0;         ///< the same
  std::vector<std::string> left{};  ///< what cannot be signed, a sentence each
};

/// Signs what has no signature yet of the book's taxpayer, each chain in its order, its records and
/// then its events. It reads what sales write and writes beside it, so no sale waits for a
/// signature. What it has stored stays when it is killed, and the next sweep goes on behind it; two
/// at once store each signature once.
class RecordSigner {
 public:
  /// Over the book's connection, outside of transactions.
  RecordSigner(const fiscal::Book& book, Certificate certificate);

  /// Signs up to a hundred, and stores the signatures in one short transaction; nothing where
  /// nothing is left. What does not read any more, or is not as it was sealed, is left without a
  /// signature. Raises 5 for a certificate that has expired or is not valid yet, and what the
  /// database does, with nothing of the step stored.
  std::optional<SignedBatch> signNext();

 private:
  struct Stretch {
    bool isOfEvents = false;
    std::int32_t chain = 0;
    std::int32_t first = 0;
    std::int32_t last = 0;
  };
  struct Signature {
    std::int32_t position = 0;
    std::string element;
  };
  std::optional<std::int32_t> firstUnsigned(const Stretch& stretch) const;
  std::string sealAt(const Stretch& stretch, std::int32_t position) const;
  SignedBatch sign(Stretch& stretch, std::int32_t first) const;
  std::uint64_t store(const Stretch& stretch, const std::vector<Signature>& signatures) const;

  const fiscal::Book& book_;
  Certificate certificate_;
  std::vector<Stretch> stretches_;
  std::size_t at_ = 0;
};

/// Who has made signatures that hold, and how many.
struct Signer {
  std::string subject;  ///< of his certificate
  std::uint64_t signatures = 0;
};

/// What a look at all signatures has found.
struct SignaturesReport {
  std::uint64_t looked = 0;           ///< signatures
  std::uint64_t unsignedRecords = 0;  ///< that should be signed, and are not yet
  std::uint64_t unsignedEvents = 0;   ///< the same
  std::vector<fiscal::Flaw> flaws{};  ///< of each chain in its order, records first
  std::vector<Signer> signers{};      ///< in the order of their first signatures
};

/// Recomputes each signature over the record or event that it stands beside. A span looks at the
/// records from the first to the last one that was issued in it, and at no event. Whether somebody
/// vouches for a certificate is not asked: who signed is told instead. Reads only.
SignaturesReport lookAtSignatures(const fiscal::Book& book, const fiscal::DaySpan& span = {});

}  // namespace tavelor::signing

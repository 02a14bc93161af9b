// SPDX-License-Identifier: MIT
// The signatures of a shop that does not send: one table beside its records, one beside its events.
#include "tavelor/signing/record_signatures.hpp"

#include <algorithm>
#include <filesystem>
#include <limits>
#include <utility>

#include <fmt/format.h>

#include "tavelor/fiscal/chains.hpp"
#include "tavelor/fiscal/export.hpp"
#include "tavelor/fiscal/hash.hpp"
#include "tavelor/frame/class_info.hpp"
#include "tavelor/frame/reading.hpp"
#include "tavelor/frame/rows.hpp"
#include "tavelor/platform/error.hpp"
#include "tavelor/services/apartment.hpp"
#include "tavelor/services/clock.hpp"
#include "tavelor/services/installation.hpp"
#include "tavelor/services/recordset/connection.hpp"
#include "tavelor/signing/signature.hpp"

namespace tavelor::signing {

namespace {

constexpr std::int32_t kMostInStep = 100;
constexpr std::int32_t kMostInLook = 1000;
constexpr std::int32_t kBehindAll = std::numeric_limits<std::int32_t>::max();

/// Where things of a kind are stored, and their signatures.
struct SignedTables {
  std::string_view what;
  Statement::Constant rows;
  Statement::Constant text;
  Statement::Constant signatures;
  std::string_view place;  // child that takes the signature
};
constexpr SignedTables kRecordTables = {"record", "Fiscal_Registros", "Registro", "Fiscal_Firmas",
                                        ""};
constexpr SignedTables kEventTables = {"event", "Fiscal_Eventos", "Evento", "Fiscal_Firmas_Eventos",
                                       "Evento"};

const SignedTables& tablesOf(bool isOfEvents) {
  return isOfEvents ? kEventTables : kRecordTables;
}

/// " WHERE .. AND Posicion >= .. AND Posicion <= ..", of the table called so. BETWEEN takes its
/// ends either way round, and would find something in a stretch that is over.
Statement within(Statement::Constant table, std::int32_t chain, std::int32_t first,
                 std::int32_t last) {
  Statement where(" WHERE ");
  where << table << ".Cadena = " << sqlLiteral(chain) << " AND " << table
        << ".Posicion >= " << sqlLiteral(first) << " AND " << table
        << ".Posicion <= " << sqlLiteral(last);
  return where;
}

/// " FROM rows LEFT JOIN signatures WHERE ..", those without a signature.
Statement unsignedOf(const SignedTables& tables, std::int32_t chain, std::int32_t first,
                     std::int32_t last) {
  Statement from(" FROM ");
  from << tables.rows << " AS R LEFT JOIN " << tables.signatures
       << " AS F ON R.Cadena = F.Cadena AND R.Posicion = F.Posicion"
       << within("R", chain, first, last) << " AND F.Cadena Is Null";
  return from;
}

/// The element <ds:Signature> of a signed document.
std::string signatureIn(const std::string& xml) {
  constexpr std::string_view kOpen = "<ds:Signature ";
  constexpr std::string_view kClose = "</ds:Signature>";
  const std::size_t begin = xml.find(kOpen);
  const std::size_t end = xml.rfind(kClose);
  if (begin == std::string::npos || end == std::string::npos) return {};
  return xml.substr(begin, end + kClose.size() - begin);
}

}  // namespace

Certificate certificateOf(const fiscal::Settings& settings, const Installation& installation) {
  if (settings.certificate.empty()) {
    raise(errors::kInvalidCall, "Signing",
          fmt::format("{}: there is no certificate to sign with: `tavelor fiscal setup "
                      "--certificate FILE --password-variable NAME` names it.",
                      fiscal::settingsFile(installation)));
  }
  const std::filesystem::path folder = installation.folder();
  return Certificate::read((folder / settings.certificate).string(), settings.passwordName);
}

// ---------------------------------------------------------------------------------------------
// Signing

RecordSigner::RecordSigner(const fiscal::Book& book, Certificate certificate)
    : book_(book), certificate_(std::move(certificate)) {
  for (const std::int32_t chain :
       fiscal::chainsOf(book.settings().taxpayer.number, book.documents())) {
    for (const auto& [first, last] : fiscal::keptRanges(chain, book.documents())) {
      stretches_.push_back({false, chain, first, last});
    }
    stretches_.push_back({true, chain, 1, kBehindAll});
  }
}

std::optional<SignedBatch> RecordSigner::signNext() {
  for (; at_ < stretches_.size(); ++at_) {
    if (const auto first = firstUnsigned(stretches_[at_])) return sign(stretches_[at_], *first);
  }
  return std::nullopt;
}

std::optional<std::int32_t> RecordSigner::firstUnsigned(const Stretch& stretch) const {
  Statement statement("SELECT R.Posicion");
  statement << unsignedOf(tablesOf(stretch.isOfEvents), stretch.chain, stretch.first, stretch.last)
            << " ORDER BY R.Posicion";
  const auto found = book_.documents()->firstValue(statement, "Posicion");
  if (!found) return std::nullopt;
  return static_cast<std::int32_t>(asNumber(*found));
}

std::string RecordSigner::sealAt(const Stretch& stretch, std::int32_t position) const {
  const SignedTables& tables = tablesOf(stretch.isOfEvents);
  Statement statement("SELECT Sello FROM ");
  statement << tables.rows << " WHERE Cadena = " << sqlLiteral(stretch.chain)
            << " AND Posicion = " << sqlLiteral(position);
  const Rows row(selector::kDocuments, statement, book_.documents());
  return row.hasRow() ? row.text("Sello") : std::string();
}

SignedBatch RecordSigner::sign(Stretch& stretch, std::int32_t first) const {
  const SignedTables& tables = tablesOf(stretch.isOfEvents);
  SignatureForm form;
  form.policy = kAdministrationPolicy;
  form.moment = fiscal::momentOf(Apartment::current().clock());
  form.place = tables.place;
  certificate_.requireValidAt(fiscal::secondsOf(form.moment).value_or(0));
  const std::int32_t last =
      stretch.last - first < kMostInStep ? stretch.last : first + kMostInStep - 1;
  Statement statement("SELECT R.Posicion, R.Sello, R.");
  statement << tables.text << unsignedOf(tables, stretch.chain, first, last)
            << " ORDER BY R.Posicion";
  SignedBatch batch;
  std::vector<Signature> signatures;
  fiscal::Hasher hasher;
  std::int32_t before = 0;
  std::string seal;
  for (Rows rows(selector::kDocuments, statement, book_.documents()); rows.hasRow(); rows.next()) {
    const std::int32_t position = rows.whole("Posicion");
    if (position != before + 1) seal = sealAt(stretch, position - 1);
    before = position;
    const std::string text = rows.text(stretch.isOfEvents ? "Evento" : "Registro");
    const bool isWhole = hasher(seal, text) == rows.text("Sello");
    seal = rows.text("Sello");
    std::string why = "it is not as it was sealed";
    if (isWhole) {
      try {
        // A file of an export has many, and each identifier once.
        form.suffix = fmt::format("-{}-{}", stretch.chain, position);
        signatures.push_back({position, signatureIn(signedXml(text, certificate_, form))});
        continue;
      } catch (const Error& error) {
        if (error.number() != errors::kInvalidCall) throw;
        why = error.description();
      }
    }
    batch.left.push_back(
        fmt::format("{} {} is left without a signature: {}", tables.what, position, why));
  }
  (stretch.isOfEvents ? batch.events : batch.records) = store(stretch, signatures);
  // What is left is not looked at again, so that the sweep ends.
  stretch.first = std::max(first, before) + 1;
  return batch;
}

std::uint64_t RecordSigner::store(const Stretch& stretch,
                                  const std::vector<Signature>& signatures) const {
  constexpr int kMostTries = 20;
  if (signatures.empty()) return 0;
  const SignedTables& tables = tablesOf(stretch.isOfEvents);
  const ConnectionPtr& documents = book_.documents();
  const auto add = [&] {
    documents->HoldNumbersOf(tables.signatures.text());
    // Another sweep may have signed them meanwhile.
    Statement there("SELECT F.Posicion FROM ");
    there << tables.signatures << " AS F"
          << within("F", stretch.chain, signatures.front().position, signatures.back().position);
    std::vector<std::int32_t> signedAlready;
    for (Rows rows(selector::kDocuments, there, documents); rows.hasRow(); rows.next()) {
      signedAlready.push_back(rows.whole("Posicion"));
    }
    std::uint64_t count = 0;
    for (const Signature& each : signatures) {
      if (std::find(signedAlready.begin(), signedAlready.end(), each.position) !=
          signedAlready.end()) {
        continue;
      }
      Statement insert("INSERT INTO ");
      insert << tables.signatures << " (Cadena, Posicion, Firma) VALUES ("
             << sqlLiteral(stretch.chain) << ", " << sqlLiteral(each.position) << ", "
             << sqlText(each.element) << ")";
      documents->Send(insert);
      ++count;
    }
    return count;
  };
  for (int tries = 1;; ++tries) {
    documents->BeginTrans();
    try {
      const std::uint64_t count = add();
      documents->CommitTrans();
      return count;
    } catch (const Error& error) {
      documents->RollbackTrans();
      const bool isOfAnother =
          error.number() == errors::kTryAgain || error.number() == errors::kIntegrityViolation;
      if (!isOfAnother || tries == kMostTries) throw;
    }
  }
}

// ---------------------------------------------------------------------------------------------
// Looking at signatures

namespace {

/// Looks at the signatures of all chains.
class SignaturesLook {
 public:
  SignaturesLook(const fiscal::Book& book, const fiscal::DaySpan& span)
      : documents_(book.documents()), span_(span) {}

  SignaturesReport run() {
    const Statement statement("SELECT Codigo, NIF FROM Fiscal_Cadenas ORDER BY Codigo");
    for (Rows rows = read(statement); rows.hasRow(); rows.next()) {
      chain_ = rows.whole("Codigo");
      taxpayer_ = rows.text("NIF");
      lookAtRecords();
      if (!span_.from && !span_.to) lookAtEvents();
    }
    return std::move(report_);
  }

 private:
  Rows read(const Statement& statement) const {
    return {selector::kDocuments, statement, documents_};
  }

  void lookAtRecords() {
    std::int32_t first = 1;
    std::int32_t last = kBehindAll;
    if (span_.from || span_.to) {
      Statement range(
          "SELECT Min(Posicion) AS Primera, Max(Posicion) AS Ultima FROM Fiscal_Registros WHERE "
          "Cadena = ");
      range << sqlLiteral(chain_);
      if (span_.from) range << " AND Fecha_Expedicion >= " << sqlLiteral(*span_.from);
      if (span_.to) {
        range << " AND Fecha_Expedicion < " << sqlLiteral(Date(span_.to->days() + 1));
      }
      const Rows row = read(range);
      if (row.isNull("Primera")) return;
      first = row.whole("Primera");
      last = row.whole("Ultima");
    }
    for (const fiscal::PositionRange& kept : fiscal::keptRanges(chain_, documents_)) {
      report_.unsignedRecords +=
          countUnsigned(kRecordTables, std::max(first, kept.first), std::min(last, kept.last));
    }
    look(kRecordTables, first, last, [](const Rows& row, fiscal::Flaw& flaw) {
      flaw.invoice = fiscal::InvoiceId{{}, row.text("Serie_Numero"), row.day("Fecha_Expedicion")};
      return fmt::format("record {}, the invoice {} of {},", flaw.position, flaw.invoice->number,
                         fiscal::dayText(flaw.invoice->day));
    });
  }

  void lookAtEvents() {
    report_.unsignedEvents += countUnsigned(kEventTables, 1, kBehindAll);
    look(kEventTables, 1, kBehindAll, [](const Rows& row, fiscal::Flaw& flaw) {
      flaw.isOfEvent = true;
      return fmt::format("event {}, {} of {},", flaw.position, row.text("Tipo"),
                         row.text("Momento"));
    });
  }

  std::uint64_t countUnsigned(const SignedTables& tables, std::int32_t first,
                              std::int32_t last) const {
    if (first > last) return 0;
    Statement statement("SELECT Count(*) AS Cuantos");
    statement << unsignedOf(tables, chain_, first, last);
    return static_cast<std::uint64_t>(read(statement).number("Cuantos"));
  }

  /// `name` gives the name of a row, and tells the flaw what it is about.
  template <typename Name>
  void look(const SignedTables& tables, std::int32_t first, std::int32_t last, Name&& name) {
    Statement ends("SELECT Max(F.Posicion) AS Ultima FROM ");
    ends << tables.signatures << " AS F" << within("F", chain_, first, last);
    const Rows end = read(ends);
    if (end.isNull("Ultima")) return;
    last = end.whole("Ultima");
    for (std::int32_t from = first; from <= last; from += kMostInLook) {
      Statement statement("SELECT F.Posicion AS Lugar, F.Firma, R.* FROM ");
      statement << tables.signatures << " AS F LEFT JOIN " << tables.rows
                << " AS R ON F.Cadena = R.Cadena AND F.Posicion = R.Posicion"
                << within("F", chain_, from, std::min(last, from + kMostInLook - 1))
                << " ORDER BY F.Posicion";
      for (Rows rows = read(statement); rows.hasRow(); rows.next()) {
        ++report_.looked;
        fiscal::Flaw flaw;
        flaw.kind = fiscal::Flaw::Kind::kSignature;
        flaw.chain = chain_;
        flaw.position = rows.whole("Lugar");
        if (rows.isNull("Posicion")) {
          flaw.isOfEvent = &tables == &kEventTables;
          flaw.sentence =
              fmt::format("{} {} is not there, but its signature is", tables.what, flaw.position);
          report_.flaws.push_back(std::move(flaw));
          continue;
        }
        const std::string column = &tables == &kEventTables ? "Evento" : "Registro";
        const SignatureReport found =
            lookAtSignature(fiscal::withSignature(rows.text(column), rows.text("Firma")));
        if (found.fault.empty()) {
          count(found.subject);
          continue;
        }
        flaw.sentence =
            fmt::format("{} has a signature that does not hold: {}", name(rows, flaw), found.fault);
        if (flaw.invoice) flaw.invoice->issuer = taxpayer_;
        report_.flaws.push_back(std::move(flaw));
      }
    }
  }

  void count(const std::string& subject) {
    std::vector<Signer>& signers = report_.signers;
    auto signer = std::ranges::find(signers, subject, &Signer::subject);
    if (signer == signers.end()) signer = signers.insert(signer, Signer{subject});
    ++signer->signatures;
  }

  ConnectionPtr documents_;
  fiscal::DaySpan span_;
  SignaturesReport report_;
  std::int32_t chain_ = 0;
  std::string taxpayer_;
};

}  // namespace

SignaturesReport lookAtSignatures(const fiscal::Book& book, const fiscal::DaySpan& span) {
  return SignaturesLook(book, span).run();
}

}  // namespace tavelor::signing

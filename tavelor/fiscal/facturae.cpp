// SPDX-License-Identifier: MIT
// Writes Facturae documents, in the order of their schema.
#include "tavelor/fiscal/facturae.hpp"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdlib>
#include <utility>

#include <fmt/format.h>
#include <fmt/ranges.h>

#include "tavelor/fiscal/provinces.hpp"
#include "tavelor/fiscal/record_xml.hpp"
#include "tavelor/fiscal/rules.hpp"
#include "tavelor/platform/error.hpp"
#include "tavelor/platform/fiscal_number.hpp"
#include "tavelor/platform/number_text.hpp"
#include "tavelor/platform/text.hpp"

namespace tavelor::fiscal {

namespace {

constexpr std::string_view kFacturaeNamespace =
    "http://www.facturae.gob.es/formato/Versiones/Facturaev3_2_2.xml";
constexpr std::array<std::string_view, 3> kNeededRoles = {"01", "02", "03"};

// What the schema lets texts have, in characters.
constexpr std::size_t kStreetWidth = 80;
constexpr std::size_t kTownWidth = 50;
constexpr std::size_t kProvinceWidth = 20;
constexpr std::size_t kCompanyWidth = 80;
constexpr std::size_t kPersonWidth = 40;  // each part of a name
constexpr std::size_t kCentreCodeWidth = 10;
constexpr std::size_t kCentreNameWidth = 40;
constexpr std::size_t kNumberWidth = 20;
constexpr std::size_t kArticleWidth = 20;
constexpr std::size_t kTextWidth = 2500;

/// A text as the schema takes it.
std::string fitted(std::string_view text, std::size_t most) {
  return recordText(text, most);
}

/// "F/12" by its series and its number.
std::pair<std::string, std::string> partsOf(const std::string& number) {
  const std::size_t slash = number.rfind('/');
  if (slash == std::string::npos) return {"", number};
  return {number.substr(0, slash), number.substr(slash + 1)};
}

std::string isoText(Date day) {
  const std::string text = dayText(day);  // 01-02-2027
  return fmt::format("{}-{}-{}", text.substr(6), text.substr(3, 2), text.substr(0, 2));
}

bool isPerson(const Party& party) {
  const FiscalKind kind = readFiscalNumber(party.number).kind;
  return kind == FiscalKind::kNif || kind == FiscalKind::kNie || kind == FiscalKind::kSpecialNif;
}

/// Towns, regions, ministries and what belongs to them.
bool isPublicBody(const Party& party) {
  return !party.number.empty() &&
         std::string_view("PQS").find(party.number.front()) != std::string_view::npos;
}

/// Of "García López, Ana"; both parts are empty where no comma tells them.
struct PersonName {
  std::string name;
  std::string first;   // surname
  std::string second;  // the same; "" for none

  explicit PersonName(std::string_view whole) {
    const std::size_t comma = whole.find(',');
    if (comma == std::string_view::npos) return;
    name = fitted(whole.substr(comma + 1), kPersonWidth);
    const std::string surnames = recordText(whole.substr(0, comma), kLongestName);
    const std::size_t blank = surnames.find(' ');
    first = fitted(std::string_view(surnames).substr(0, blank), kPersonWidth);
    if (blank != std::string::npos) {
      second = fitted(std::string_view(surnames).substr(blank + 1), kPersonWidth);
    }
  }
  bool isWhole() const { return !name.empty() && !first.empty(); }
};

std::string provinceOfAddress(const PostalAddress& address) {
  std::string_view name = text::trim(address.province);
  if (name.empty()) name = provinceName(provinceOf(address.postcode, {}).value_or(0));
  return fitted(name, kProvinceWidth);
}

std::int64_t centsIn(const std::optional<Amount>& amount) {
  return amount ? amount->cents() : 0;
}
std::int64_t centsIn(double euros) {
  return std::llround(euros * 100);
}
double rateIn(const std::optional<Amount>& rate) {
  return static_cast<double>(centsIn(rate)) / 100;
}
/// What its lines come to: prices hold the tax, and the surcharge is added to them.
std::int64_t wholeOf(const Detail& detail) {
  return detail.base.cents() + centsIn(detail.quota);
}

// ---------------------------------------------------------------------------------------------
// What is missing

class FacturaeFaults {
 public:
  void add(std::string sentence) { all_.push_back(std::move(sentence)); }
  void need(const FacturaeParty& party, std::string_view what, std::string_view given,
            std::size_t most) {
    if (text::trim(given).empty()) {
      add(fmt::format("{} has no {}", party.called, what));
    } else if (recordText(given, std::string::npos) != recordText(given, most)) {
      add(fmt::format("the {} of {} has more than {} characters", what, party.called, most));
    }
  }
  void lookAt(const FacturaeParty& party) {
    if (party.party.foreign || party.party.number.empty()) {
      add(fmt::format("{} has no Spanish fiscal number", party.called));
    }
    if (!isPerson(party.party)) {
      need(party, "legal name", party.party.name, kCompanyWidth);
    } else if (!PersonName(party.party.name).isWhole()) {
      add(fmt::format(
          "{} is a person, whose name must be written \"surnames, name\", and is \"{}\"",
          party.called, party.party.name));
    }
    lookAt(party, party.address, "");
  }
  void lookAt(const FacturaeParty& party, const PostalAddress& address, const std::string& of) {
    need(party, "street" + of, address.street, kStreetWidth);
    need(party, "town" + of, address.town, kTownWidth);
    const std::string_view code = text::trim(address.postcode);
    const bool isCode = code.size() == 5 && provinceOf(code, {}).has_value();
    if (!isCode) add(fmt::format("{} has no postcode{} of five digits", party.called, of));
  }
  void lookAtCentres(const FacturaeParty& buyer) {
    if (buyer.centres.empty() && !isPublicBody(buyer.party)) return;
    for (const std::string_view role : kNeededRoles) {
      const auto has =
          std::any_of(buyer.centres.begin(), buyer.centres.end(),
                      [&](const AdministrativeCentre& centre) { return centre.role == role; });
      if (!has) {
        add(fmt::format("{} has no centre of the role {} ({})", buyer.called, role,
                        role == "01"   ? "accounting office"
                        : role == "02" ? "managing body"
                                       : "processing unit"));
      }
    }
    for (const AdministrativeCentre& centre : buyer.centres) {
      const std::string of = fmt::format(" of the centre {}", centre.role);
      need(buyer, "code" + of, centre.code, kCentreCodeWidth);
      lookAt(buyer, centre.address, of);
    }
  }
  std::vector<std::string> take() { return std::move(all_); }

 private:
  std::vector<std::string> all_;
};

// ---------------------------------------------------------------------------------------------
// Lines without tax

/// What of a line goes to whom, in cents.
struct LineAmounts {
  const FacturaeLine* line = nullptr;
  const Detail* detail = nullptr;
  std::int64_t whole = 0;
  std::int64_t base = 0;
  std::int64_t quota = 0;
  std::int64_t surcharge = 0;
};

const Detail* detailOf(const FacturaeLine& line, const std::vector<Detail>& details) {
  const auto found = std::find_if(details.begin(), details.end(), [&](const Detail& detail) {
    return centsIn(detail.rate) == centsIn(line.rate) &&
           (!line.surcharge || centsIn(detail.surchargeRate) == centsIn(*line.surcharge));
  });
  return found == details.end() ? nullptr : &*found;
}

/// Cents that rounding has left over go to the largest lines, one each.
void shareOut(std::vector<LineAmounts*>& lines, std::int64_t LineAmounts::*part,
              std::int64_t wanted) {
  std::int64_t left = wanted;
  for (const LineAmounts* const each : lines) left -= each->*part;
  std::stable_sort(lines.begin(), lines.end(), [](const LineAmounts* a, const LineAmounts* b) {
    return std::abs(a->whole) > std::abs(b->whole);
  });
  for (std::size_t at = 0; left != 0 && !lines.empty(); at = (at + 1) % lines.size()) {
    const std::int64_t step = left > 0 ? 1 : -1;
    lines[at]->*part += step;
    left -= step;
  }
}

/// Lines that no rate of the invoice has keep no detail.
std::vector<LineAmounts> amountsOf(const Facturae& facturae) {
  std::vector<LineAmounts> all;
  for (const FacturaeLine& line : facturae.lines) {
    all.push_back({.line = &line,
                   .detail = detailOf(line, facturae.invoice.details),
                   .whole = centsIn(line.amount)});
  }
  for (const Detail& detail : facturae.invoice.details) {
    const double rate = rateIn(detail.rate);
    const double surcharge = rateIn(detail.surchargeRate);
    std::vector<LineAmounts*> lines;
    for (LineAmounts& each : all) {
      if (each.detail != &detail) continue;
      each.base = std::llround(static_cast<double>(each.whole) * 100 / (100 + rate));
      lines.push_back(&each);
    }
    shareOut(lines, &LineAmounts::base, detail.base.cents());
    for (LineAmounts* const each : lines) {
      each->quota = each->whole - each->base;
      each->surcharge = std::llround(static_cast<double>(each->base) * surcharge / 100);
    }
    shareOut(lines, &LineAmounts::surcharge, centsIn(detail.surchargeQuota));
  }
  return all;
}

void lookAtLines(const Facturae& facturae, FacturaeFaults& faults) {
  for (const FacturaeLine& line : facturae.lines) {
    if (line.quantity == 0) faults.add(fmt::format("a line of {} has no quantity", line.article));
    if (detailOf(line, facturae.invoice.details) == nullptr) {
      faults.add(fmt::format("a line has {} percent of tax, and its record has not",
                             Amount::of(line.rate).text()));
    }
  }
  for (const Detail& detail : facturae.invoice.details) {
    std::int64_t sum = 0;
    for (const FacturaeLine& line : facturae.lines) {
      if (detailOf(line, facturae.invoice.details) == &detail) sum += centsIn(line.amount);
    }
    if (sum == wholeOf(detail)) continue;
    faults.add(fmt::format("the lines at {} percent come to {}, and its record tells {}",
                           detail.rate ? detail.rate->text() : "0.00", Amount::ofCents(sum).text(),
                           Amount::ofCents(wholeOf(detail)).text()));
  }
}

// ---------------------------------------------------------------------------------------------
// The document

struct Correction {
  std::string_view code;
  std::string_view text;
};
/// Why an invoice is rectified, in the words of the schema.
Correction correctionOf(InvoiceKind kind) {
  switch (kind) {
    case InvoiceKind::kRectifying2:
      return {
          "85",
          "Base imponible modificada cuotas repercutidas no satisfechas. Auto de declaración de "
          "concurso"};
    case InvoiceKind::kRectifying4:
      return {"10", "Detalle Operación"};
    default:
      return {"16", "Base imponible"};
  }
}

/// Why nothing is taxed; "" where something is.
std::string_view reasonOf(Operation operation) {
  switch (operation) {
    case Operation::kExempt1:
      return "Exenta por el artículo 20 de la Ley 37/1992";
    case Operation::kExempt2:
      return "Exenta por el artículo 21 de la Ley 37/1992";
    case Operation::kExempt3:
      return "Exenta por el artículo 22 de la Ley 37/1992";
    case Operation::kExempt4:
      return "Exenta por los artículos 23 y 24 de la Ley 37/1992";
    case Operation::kExempt5:
      return "Exenta por el artículo 25 de la Ley 37/1992";
    case Operation::kExempt6:
      return "Exenta";
    case Operation::kNotSubject:
      return "No sujeta por los artículos 7 y 14 de la Ley 37/1992";
    case Operation::kNotSubjectHere:
      return "No sujeta por reglas de localización";
    default:
      return {};
  }
}

class FacturaeWriter {
 public:
  explicit FacturaeWriter(const Facturae& facturae)
      : facturae_(facturae), invoice_(facturae.invoice) {}

  std::string write() {
    text_ = fmt::format("<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<fe:Facturae xmlns:fe=\"{}\">",
                        kFacturaeNamespace);
    header();
    open("Parties");
    party("SellerParty", facturae_.seller);
    party("BuyerParty", facturae_.buyer);
    close("Parties");
    open("Invoices");
    open("Invoice");
    invoiceHeader();
    issueData();
    open("TaxesOutputs");
    for (const Detail& detail : invoice_.details) {
      tax(detail, detail.base.cents(), centsIn(detail.quota), centsIn(detail.surchargeQuota));
    }
    close("TaxesOutputs");
    totals();
    open("Items");
    for (const LineAmounts& amounts : amountsOf(facturae_)) line(amounts);
    close("Items");
    words();
    close("Invoice");
    close("Invoices");
    text_ += "</fe:Facturae>\n";
    return std::move(text_);
  }

 private:
  void open(std::string_view name) { text_.append("<").append(name).append(">"); }
  void close(std::string_view name) { text_.append("</").append(name).append(">"); }
  void add(std::string_view name, std::string_view content) {
    open(name);
    text_ += escaped(content);
    close(name);
  }
  void addCents(std::string_view name, std::int64_t cents) {
    add(name, Amount::ofCents(cents).text());
  }
  void addTotal(std::string_view name, std::int64_t cents) {
    open(name);
    addCents("TotalAmount", cents);
    close(name);
  }
  void addDay(std::string_view name, Date day) { add(name, isoText(day)); }
  void addNumber(const std::string& whole) {
    const auto [series, number] = partsOf(whole);
    add("InvoiceNumber", number);
    if (!series.empty()) add("InvoiceSeriesCode", series);
  }

  void header() {
    const std::int64_t total = invoice_.total.cents();
    open("FileHeader");
    add("SchemaVersion", "3.2.2");
    add("Modality", "I");
    add("InvoiceIssuerType", "EM");
    open("Batch");
    add("BatchIdentifier", fitted(invoice_.invoice.issuer + invoice_.invoice.number, 70));
    add("InvoicesCount", "1");
    addTotal("TotalInvoicesAmount", total);
    addTotal("TotalOutstandingAmount", total);
    addTotal("TotalExecutableAmount", total);
    add("InvoiceCurrencyCode", "EUR");
    close("Batch");
    close("FileHeader");
  }

  void address(const PostalAddress& place) {
    open("AddressInSpain");
    add("Address", fitted(place.street, kStreetWidth));
    add("PostCode", text::trim(place.postcode));
    add("Town", fitted(place.town, kTownWidth));
    add("Province", provinceOfAddress(place));
    add("CountryCode", "ESP");
    close("AddressInSpain");
  }

  void party(std::string_view element, const FacturaeParty& who) {
    const bool isOne = isPerson(who.party);
    open(element);
    open("TaxIdentification");
    add("PersonTypeCode", isOne ? "F" : "J");
    add("ResidenceTypeCode", "R");
    add("TaxIdentificationNumber", who.party.number);
    close("TaxIdentification");
    if (!who.centres.empty()) {
      open("AdministrativeCentres");
      for (const AdministrativeCentre& each : who.centres) centre(each);
      close("AdministrativeCentres");
    }
    open(isOne ? "Individual" : "LegalEntity");
    if (isOne) {
      const PersonName name(who.party.name);
      add("Name", name.name);
      add("FirstSurname", name.first);
      if (!name.second.empty()) add("SecondSurname", name.second);
    } else {
      add("CorporateName", fitted(who.party.name, kCompanyWidth));
    }
    address(who.address);
    close(isOne ? "Individual" : "LegalEntity");
    close(element);
  }

  void centre(const AdministrativeCentre& centre) {
    open("AdministrativeCentre");
    add("CentreCode", fitted(centre.code, kCentreCodeWidth));
    add("RoleTypeCode", centre.role);
    const std::string name = fitted(centre.name, kCentreNameWidth);
    if (!name.empty()) add("Name", name);
    address(centre.address);
    if (!name.empty()) add("CentreDescription", fitted(centre.name, kTextWidth));
    close("AdministrativeCentre");
  }

  void invoiceHeader() {
    open("InvoiceHeader");
    addNumber(invoice_.invoice.number);
    add("InvoiceDocumentType", invoice_.isQualifiedTicket ? "FA" : "FC");
    add("InvoiceClass", isRectifying(invoice_.kind) ? "OR" : "OO");
    if (isRectifying(invoice_.kind)) corrective();
    close("InvoiceHeader");
  }

  void corrective() {
    const Correction why = correctionOf(invoice_.kind);
    open("Corrective");
    const bool hasOne = !invoice_.rectified.empty();
    if (hasOne) addNumber(invoice_.rectified.front().number);
    add("ReasonCode", why.code);
    add("ReasonDescription", why.text);
    const Date day = hasOne ? invoice_.rectified.front().day : invoice_.invoice.day;
    open("TaxPeriod");
    addDay("StartDate", day);
    addDay("EndDate", day);
    close("TaxPeriod");
    add("CorrectionMethod", invoice_.isSubstitution ? "01" : "02");
    add("CorrectionMethodDescription",
        invoice_.isSubstitution ? "Rectificación íntegra" : "Rectificación por diferencias");
    if (invoice_.rectified.size() > 1) {
      add("AdditionalReasonDescription", "Rectifica las facturas " + numbers(invoice_.rectified));
    }
    if (hasOne) addDay("InvoiceIssueDate", day);
    close("Corrective");
  }

  void issueData() {
    open("InvoiceIssueData");
    addDay("IssueDate", invoice_.invoice.day);
    if (invoice_.operationDay) addDay("OperationDate", *invoice_.operationDay);
    add("InvoiceCurrencyCode", "EUR");
    add("TaxCurrencyCode", "EUR");
    add("LanguageName", "es");
    if (!invoice_.description.empty()) {
      add("InvoiceDescription", fitted(invoice_.description, kTextWidth));
    }
    close("InvoiceIssueData");
  }

  void tax(const Detail& detail, std::int64_t base, std::int64_t quota, std::int64_t surcharge) {
    open("Tax");
    add("TaxTypeCode", "01");
    addCents("TaxRate", centsIn(detail.rate));
    addTotal("TaxableBase", base);
    addTotal("TaxAmount", quota);
    if (detail.surchargeRate) {
      addCents("EquivalenceSurcharge", detail.surchargeRate->cents());
      addTotal("EquivalenceSurchargeAmount", surcharge);
    }
    close("Tax");
  }

  void totals() {
    std::int64_t base = 0;
    for (const Detail& detail : invoice_.details) base += detail.base.cents();
    const std::int64_t total = invoice_.total.cents();
    open("InvoiceTotals");
    addCents("TotalGrossAmount", base);
    addCents("TotalGrossAmountBeforeTaxes", base);
    addCents("TotalTaxOutputs", invoice_.quota.cents());
    addCents("TotalTaxesWithheld", 0);
    addCents("InvoiceTotal", total);
    addCents("TotalOutstandingAmount", total);
    addCents("TotalExecutableAmount", total);
    close("InvoiceTotals");
  }

  void line(const LineAmounts& amounts) {
    const FacturaeLine& sold = *amounts.line;
    const Detail& detail = *amounts.detail;
    const double taxes = 1 + rateIn(detail.rate) / 100;
    const std::int64_t cost = sold.discount == 0
                                  ? amounts.base
                                  : centsIn(roundHalfAway(sold.quantity * sold.price, 2) / taxes);
    open("InvoiceLine");
    std::string description = fitted(sold.description, kTextWidth);
    if (description.empty()) description = sold.article.empty() ? "-" : sold.article;
    add("ItemDescription", description);
    add("Quantity", sqlNumber(sold.quantity));
    add("UnitPriceWithoutTax", sqlNumber(static_cast<double>(cost) / 100 / sold.quantity, 8));
    addCents("TotalCost", cost);
    if (sold.discount != 0) {
      open("DiscountsAndRebates");
      open("Discount");
      add("DiscountReason", "Descuento");
      add("DiscountRate", sqlNumber(sold.discount));
      addCents("DiscountAmount", cost - amounts.base);
      close("Discount");
      close("DiscountsAndRebates");
    }
    addCents("GrossAmount", amounts.base);
    open("TaxesOutputs");
    tax(detail, amounts.base, amounts.quota, amounts.surcharge);
    close("TaxesOutputs");
    if (const std::string_view reason = reasonOf(detail.operation); !reason.empty()) {
      open("SpecialTaxableEvent");
      add("SpecialTaxableEventCode", isExempt(detail.operation) ? "01" : "02");
      add("SpecialTaxableEventReason", reason);
      close("SpecialTaxableEvent");
    }
    if (!sold.article.empty()) add("ArticleCode", fitted(sold.article, kArticleWidth));
    close("InvoiceLine");
  }

  /// What the law wants said on the invoice itself.
  void words() {
    const bool isReverse = std::any_of(
        invoice_.details.begin(), invoice_.details.end(),
        [](const Detail& detail) { return detail.operation == Operation::kReverseCharge; });
    if (isReverse) {
      open("LegalLiterals");
      add("LegalReference", "Inversión del sujeto pasivo (artículo 84.Uno.2º de la Ley 37/1992)");
      close("LegalLiterals");
    }
    if (!invoice_.replaced.empty()) {
      open("AdditionalData");
      add("InvoiceAdditionalInformation",
          fitted("Sustituye a las facturas simplificadas " + numbers(invoice_.replaced),
                 kTextWidth));
      close("AdditionalData");
    }
  }

  static std::string numbers(const std::vector<InvoiceId>& invoices) {
    std::vector<std::string> all;
    for (const InvoiceId& each : invoices) all.push_back(each.number);
    return fmt::format("{}", fmt::join(all, ", "));
  }

  const Facturae& facturae_;
  const Registration& invoice_;
  std::string text_;
};

}  // namespace

std::vector<std::string> faultsOf(const Facturae& facturae) {
  FacturaeFaults faults;
  const Registration& invoice = facturae.invoice;
  if (!hasRecipient(invoice.kind) || invoice.recipients.empty()) {
    faults.add(
        "it is a ticket, which names nobody: `tavelor fiscal invoice` makes an invoice of it");
    return faults.take();
  }
  std::vector<std::string> all = {invoice.invoice.number};
  for (const InvoiceId& each : invoice.rectified) all.push_back(each.number);
  for (const std::string& each : all) {
    const auto [series, number] = partsOf(each);
    if (series.size() > kNumberWidth || number.size() > kNumberWidth) {
      faults.add(
          fmt::format("a part of the number {} has more than {} characters", each, kNumberWidth));
    }
  }
  faults.lookAt(facturae.seller);
  faults.lookAt(facturae.buyer);
  faults.lookAtCentres(facturae.buyer);
  lookAtLines(facturae, faults);
  return faults.take();
}

std::string xmlOf(const Facturae& facturae) {
  if (const auto faults = faultsOf(facturae); !faults.empty()) {
    raise(errors::kInvalidCall, "Fiscal",
          fmt::format("The invoice {} cannot be a Facturae document: {}.",
                      facturae.invoice.invoice.number, fmt::join(faults, "; ")));
  }
  return FacturaeWriter(facturae).write();
}

}  // namespace tavelor::fiscal

// SPDX-License-Identifier: MIT
// Reads records from their XML. Strict: what is not understood is no record of ours.
#include <pugixml.hpp>
#include <utility>

#include <fmt/format.h>

#include "tavelor/fiscal/record_xml.hpp"
#include "tavelor/platform/error.hpp"

namespace tavelor::fiscal {

namespace {

[[noreturn]] void complain(std::string_view xml, std::ptrdiff_t offset, std::string_view what) {
  const TextPlace place = placeOf(xml, offset);
  raise(errors::kInvalidCall, "Fiscal",
        fmt::format("The record, line {}, column {}: {}.", place.line, place.column, what));
}

/// The elements of one element, one after the other.
class Elements {
 public:
  Elements(std::string_view xml, pugi::xml_node parent)
      : xml_(xml), parent_(parent), next_(parent.first_child()) {}

  bool has(std::string_view name) const { return nameOf(next_) == name; }

  /// The next element, which must have this name.
  Elements in(std::string_view name) { return {xml_, element(name)}; }
  std::string text(std::string_view name) { return content(element(name)); }
  std::string optionalText(std::string_view name) { return has(name) ? text(name) : std::string(); }
  /// Takes what `reader` makes of the text of the next element.
  template <typename Reader>
  auto read(std::string_view name, Reader&& reader) {
    const pugi::xml_node node = element(name);
    const std::string text = content(node);
    auto found = reader(text);
    if (!found) complain(node, fmt::format("<{}> does not take \"{}\"", name, text));
    return std::move(*found);
  }
  bool flag(std::string_view name) {
    return read(name, [](const std::string& word) -> std::optional<bool> {
      if (word == "S" || word == "N") return word == "S";
      return std::nullopt;
    });
  }
  bool optionalFlag(std::string_view name) { return has(name) && flag(name); }
  Amount amount(std::string_view name) { return read(name, Amount::read); }
  std::optional<Amount> optionalAmount(std::string_view name) {
    return has(name) ? std::optional(amount(name)) : std::nullopt;
  }
  Date day(std::string_view name) { return read(name, readDay); }
  std::string moment(std::string_view name) {
    return read(name, [](const std::string& text) {
      return secondsOf(text) ? std::optional(text) : std::nullopt;
    });
  }
  void fixed(std::string_view name, std::string_view content) {
    read(name, [&](const std::string& text) {
      return text == content ? std::optional(true) : std::nullopt;
    });
  }
  void skip(std::string_view name) {
    if (has(name)) next_ = next_.next_sibling();
  }
  void end() const {
    if (next_) complain(next_, fmt::format("<{}> stands where nothing may", next_.name()));
  }

 private:
  static std::string_view nameOf(pugi::xml_node node) {
    const std::string_view name = node.name();
    const std::size_t colon = name.find(':');
    return colon == std::string_view::npos ? name : name.substr(colon + 1);
  }
  [[noreturn]] void complain(pugi::xml_node node, std::string_view what) const {
    fiscal::complain(xml_, node.offset_debug(), what);
  }
  pugi::xml_node element(std::string_view name) {
    if (!has(name)) {
      complain(next_ ? next_ : parent_,
               next_ ? fmt::format("<{}> stands where <{}> must", next_.name(), name)
                     : fmt::format("<{}> has no <{}>", parent_.name(), name));
    }
    return std::exchange(next_, next_.next_sibling());
  }
  std::string content(pugi::xml_node node) const {
    const pugi::xml_node child = node.first_child();
    if (child && (child.next_sibling() || child.type() != pugi::node_pcdata)) {
      complain(node, fmt::format("<{}> must hold a text", node.name()));
    }
    return child.value();
  }

  std::string_view xml_;
  pugi::xml_node parent_;
  pugi::xml_node next_;
};

InvoiceId readInvoice(Elements& in) {
  InvoiceId invoice;
  invoice.issuer = in.text("IDEmisorFactura");
  invoice.number = in.text("NumSerieFactura");
  invoice.day = in.day("FechaExpedicionFactura");
  return invoice;
}

std::vector<InvoiceId> readInvoices(Elements& in, std::string_view list, std::string_view each) {
  std::vector<InvoiceId> invoices;
  if (!in.has(list)) return invoices;
  Elements all = in.in(list);
  do {
    Elements one = all.in(each);
    invoices.push_back(readInvoice(one));
    one.end();
  } while (all.has(each));
  all.end();
  return invoices;
}

Party readParty(Elements& in) {
  Party party;
  party.name = in.text("NombreRazon");
  if (!in.has("IDOtro")) {
    party.number = in.text("NIF");
    return party;
  }
  Elements other = in.in("IDOtro");
  party.foreign.emplace();
  party.foreign->country = other.optionalText("CodigoPais");
  party.foreign->type = other.text("IDType");
  party.foreign->id = other.text("ID");
  other.end();
  return party;
}

System readSystem(Elements& in) {
  Elements part = in.in("SistemaInformatico");
  System system;
  system.producer = readParty(part);
  system.name = part.text("NombreSistemaInformatico");
  system.id = part.text("IdSistemaInformatico");
  system.version = part.text("Version");
  system.installation = part.text("NumeroInstalacion");
  system.onlySends = part.flag("TipoUsoPosibleSoloVerifactu");
  system.mayServeMany = part.flag("TipoUsoPosibleMultiOT");
  system.servesMany = part.flag("IndicadorMultiplesOT");
  part.end();
  return system;
}

Detail readDetail(Elements& in) {
  Elements part = in.in("DetalleDesglose");
  Detail detail;
  part.fixed("Impuesto", "01");
  detail.regime = part.text("ClaveRegimen");
  const std::string_view name =
      part.has("OperacionExenta") ? "OperacionExenta" : "CalificacionOperacion";
  detail.operation = part.read(name, operationOf);
  detail.rate = part.optionalAmount("TipoImpositivo");
  detail.base = part.amount("BaseImponibleOimporteNoSujeto");
  detail.quota = part.optionalAmount("CuotaRepercutida");
  detail.surchargeRate = part.optionalAmount("TipoRecargoEquivalencia");
  detail.surchargeQuota = part.optionalAmount("CuotaRecargoEquivalencia");
  part.end();
  return detail;
}

Chaining readChaining(Elements& in) {
  Chaining chaining;
  Elements place = in.in("Encadenamiento");
  if (place.has("PrimerRegistro")) {
    place.fixed("PrimerRegistro", "S");
  } else {
    Elements previous = place.in("RegistroAnterior");
    chaining.previous.emplace();
    chaining.previous->invoice = readInvoice(previous);
    chaining.previous->hash = previous.text("Huella");
    previous.end();
  }
  place.end();
  chaining.system = readSystem(in);
  chaining.moment = in.moment("FechaHoraHusoGenRegistro");
  in.fixed("TipoHuella", "01");
  chaining.hash = in.text("Huella");
  in.skip("Signature");
  in.end();
  return chaining;
}

Registration readRegistration(Elements in) {
  Registration record;
  in.fixed("IDVersion", "1.0");
  Elements id = in.in("IDFactura");
  record.invoice = readInvoice(id);
  id.end();
  record.issuerName = in.text("NombreRazonEmisor");
  record.isCorrection = in.optionalFlag("Subsanacion");
  record.priorRefusal = in.optionalText("RechazoPrevio");
  record.kind = in.read("TipoFactura", invoiceKindOf);
  if (in.has("TipoRectificativa")) {
    record.isSubstitution =
        in.read("TipoRectificativa", [](const std::string& word) -> std::optional<bool> {
          if (word == "S" || word == "I") return word == "S";
          return std::nullopt;
        });
  }
  record.rectified = readInvoices(in, "FacturasRectificadas", "IDFacturaRectificada");
  record.replaced = readInvoices(in, "FacturasSustituidas", "IDFacturaSustituida");
  if (in.has("ImporteRectificacion")) {
    Elements part = in.in("ImporteRectificacion");
    record.substituted.emplace();
    record.substituted->base = part.amount("BaseRectificada");
    record.substituted->quota = part.amount("CuotaRectificada");
    record.substituted->surcharge = part.optionalAmount("CuotaRecargoRectificado");
    part.end();
  }
  if (in.has("FechaOperacion")) record.operationDay = in.day("FechaOperacion");
  record.description = in.text("DescripcionOperacion");
  record.isQualifiedTicket = in.optionalFlag("FacturaSimplificadaArt7273");
  record.hasNoRecipientByLaw = in.optionalFlag("FacturaSinIdentifDestinatarioArt61d");
  record.isLarge = in.optionalFlag("Macrodato");
  if (in.has("Destinatarios")) {
    Elements all = in.in("Destinatarios");
    do {
      Elements one = all.in("IDDestinatario");
      record.recipients.push_back(readParty(one));
      one.end();
    } while (all.has("IDDestinatario"));
    all.end();
  }
  Elements details = in.in("Desglose");
  do {
    record.details.push_back(readDetail(details));
  } while (details.has("DetalleDesglose"));
  details.end();
  record.quota = in.amount("CuotaTotal");
  record.total = in.amount("ImporteTotal");
  record.chaining = readChaining(in);
  return record;
}

Cancellation readCancellation(Elements in) {
  Cancellation record;
  in.fixed("IDVersion", "1.0");
  Elements id = in.in("IDFactura");
  record.invoice.issuer = id.text("IDEmisorFacturaAnulada");
  record.invoice.number = id.text("NumSerieFacturaAnulada");
  record.invoice.day = id.day("FechaExpedicionFacturaAnulada");
  id.end();
  record.hasNoRecord = in.optionalFlag("SinRegistroPrevio");
  record.wasRefused = in.optionalFlag("RechazoPrevio");
  record.chaining = readChaining(in);
  return record;
}

void parse(std::string_view xml, pugi::xml_document& document) {
  const pugi::xml_parse_result parsed =
      document.load_buffer(xml.data(), xml.size(), pugi::parse_default, pugi::encoding_utf8);
  if (!parsed) complain(xml, parsed.offset, parsed.description());
}

}  // namespace

Record readRecord(std::string_view xml) {
  pugi::xml_document document;
  parse(xml, document);
  Elements in(xml, document);
  if (in.has("RegistroAnulacion")) return readCancellation(in.in("RegistroAnulacion"));
  return readRegistration(in.in("RegistroAlta"));
}

Event readEvent(std::string_view xml) {
  pugi::xml_document document;
  parse(xml, document);
  Elements root(xml, document);
  Elements outer = root.in("RegistroEvento");
  outer.fixed("IDVersion", "1.0");
  Elements in = outer.in("Evento");
  outer.end();
  Event event;
  event.system = readSystem(in);
  Elements taxpayer = in.in("ObligadoEmision");
  event.taxpayer = readParty(taxpayer);
  taxpayer.end();
  event.moment = in.moment("FechaHoraHusoGenEvento");
  event.kind = in.read("TipoEvento", eventKindOf);
  in.skip("DatosPropiosEvento");
  event.text = in.optionalText("OtrosDatosEvento");
  Elements place = in.in("Encadenamiento");
  if (place.has("PrimerEvento")) {
    place.fixed("PrimerEvento", "S");
  } else {
    Elements previous = place.in("EventoAnterior");
    event.previous.emplace();
    event.previous->kind = previous.read("TipoEvento", eventKindOf);
    event.previous->moment = previous.moment("FechaHoraHusoGenEvento");
    event.previous->hash = previous.text("HuellaEvento");
    previous.end();
  }
  place.end();
  in.fixed("TipoHuella", "01");
  event.hash = in.text("HuellaEvento");
  in.skip("Signature");
  in.end();
  return event;
}

}  // namespace tavelor::fiscal

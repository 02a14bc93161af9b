// SPDX-License-Identifier: MIT
// Writes records as XML, in the order of the schema.
#include "tavelor/fiscal/record_xml.hpp"

#include <fmt/format.h>

namespace tavelor::fiscal {

namespace {

class Writer {
 public:
  Writer() { text_.reserve(2048); }

  void open(std::string_view name) { text_.append("<").append(name).append(">"); }
  void open(std::string_view name, std::string_view space) {
    text_.append("<").append(name).append(" xmlns=\"").append(space).append("\">");
  }
  void close(std::string_view name) { text_.append("</").append(name).append(">"); }
  void add(std::string_view name, std::string_view content) {
    open(name);
    text_ += escaped(content);
    close(name);
  }
  void add(std::string_view name, const Amount& amount) { add(name, amount.text()); }
  void add(std::string_view name, const std::optional<Amount>& amount) {
    if (amount) add(name, amount->text());
  }
  void addDay(std::string_view name, Date day) { add(name, dayText(day)); }
  void addCount(std::string_view name, std::uint64_t count) { add(name, std::to_string(count)); }
  void addYes(std::string_view name, bool isSo) { add(name, isSo ? "S" : "N"); }
  /// Left out where it is not so.
  void addIf(bool isSo, std::string_view name) {
    if (isSo) add(name, "S");
  }

  void invoice(const InvoiceId& invoice) {
    add("IDEmisorFactura", invoice.issuer);
    add("NumSerieFactura", invoice.number);
    addDay("FechaExpedicionFactura", invoice.day);
  }
  void invoices(std::string_view list, std::string_view each, const std::vector<InvoiceId>& all) {
    if (all.empty()) return;
    open(list);
    for (const InvoiceId& one : all) {
      open(each);
      invoice(one);
      close(each);
    }
    close(list);
  }
  void party(const Party& party) {
    add("NombreRazon", party.name);
    if (!party.foreign) return add("NIF", party.number);
    open("IDOtro");
    if (!party.foreign->country.empty()) add("CodigoPais", party.foreign->country);
    add("IDType", party.foreign->type);
    add("ID", party.foreign->id);
    close("IDOtro");
  }
  void link(const Link& link) {
    invoice(link.invoice);
    add("Huella", link.hash);
  }
  void system(const System& system) {
    open("SistemaInformatico");
    party(system.producer);
    add("NombreSistemaInformatico", system.name);
    add("IdSistemaInformatico", system.id);
    add("Version", system.version);
    add("NumeroInstalacion", system.installation);
    addYes("TipoUsoPosibleSoloVerifactu", system.onlySends);
    addYes("TipoUsoPosibleMultiOT", system.mayServeMany);
    addYes("IndicadorMultiplesOT", system.servesMany);
    close("SistemaInformatico");
  }
  void detail(const Detail& detail) {
    open("DetalleDesglose");
    add("Impuesto", "01");
    add("ClaveRegimen", detail.regime);
    add(isExempt(detail.operation) ? "OperacionExenta" : "CalificacionOperacion",
        word(detail.operation));
    add("TipoImpositivo", detail.rate);
    add("BaseImponibleOimporteNoSujeto", detail.base);
    add("CuotaRepercutida", detail.quota);
    add("TipoRecargoEquivalencia", detail.surchargeRate);
    add("CuotaRecargoEquivalencia", detail.surchargeQuota);
    close("DetalleDesglose");
  }
  void chaining(const Chaining& chaining) {
    open("Encadenamiento");
    if (chaining.previous) {
      open("RegistroAnterior");
      link(*chaining.previous);
      close("RegistroAnterior");
    } else {
      add("PrimerRegistro", "S");
    }
    close("Encadenamiento");
    system(chaining.system);
    add("FechaHoraHusoGenRegistro", chaining.moment);
    add("TipoHuella", "01");
    add("Huella", chaining.hash);
  }

  void event(const EventLink& event, std::string_view moment) {
    add("TipoEvento", word(event.kind));
    add(moment, event.moment);
    add("HuellaEvento", event.hash);
  }
  void eventNamed(std::string_view name, const std::optional<EventLink>& event) {
    if (!event) return;
    open(name);
    this->event(*event, "FechaHoraHusoEvento");
    close(name);
  }
  void recordNamed(std::string_view name, const std::optional<RecordLink>& record) {
    if (!record) return;
    open(name);
    link(*record);
    close(name);
  }

  std::string take() { return std::move(text_); }

 private:
  std::string text_;
};

// What an event tells of its own, each in the element that its kind has.

void write(Writer& /*out*/, const Event& /*event*/, std::monostate /*none*/) {}

void write(Writer& out, const Event& event, const Checked& checked) {
  const bool isOfEvents = event.kind == EventKind::kEventCheck;
  const std::string_view what = isOfEvents ? "RegEvento" : "RegFacturacion";
  const std::string_view counted = isOfEvents ? "RegistrosEvento" : "RegistrosFacturacion";
  const std::string name = fmt::format("LanzamientoProcesoDeteccionAnomalias{}", what);
  const auto tell = [&](std::string_view process, bool isDone, std::uint64_t count) {
    out.addYes(fmt::format("RealizadoProcesoSobre{}{}", process, what), isDone);
    if (isDone) out.addCount(fmt::format("NumeroDe{}ProcesadosSobre{}", counted, process), count);
  };
  out.open(name);
  tell("IntegridadHuellas", true, checked.hashes);
  tell("IntegridadFirmas", false, 0);
  tell("TrazabilidadCadena", true, checked.links);
  tell("TrazabilidadFechas", true, checked.dates);
  out.close(name);
}

void write(Writer& out, const Event& event, const Anomaly& anomaly) {
  const bool isOfEvents = event.kind == EventKind::kEventAnomaly;
  const std::string_view name =
      isOfEvents ? "DeteccionAnomaliasRegEvento" : "DeteccionAnomaliasRegFacturacion";
  out.open(name);
  out.add("TipoAnomalia", anomaly.kind);
  if (!anomaly.text.empty()) out.add("OtrosDatosAnomalia", anomaly.text);
  if (anomaly.invoice) {
    out.open("RegistroFacturacionAnomalo");
    out.invoice(*anomaly.invoice);
    out.close("RegistroFacturacionAnomalo");
  }
  out.eventNamed("RegEventoAnomalo", anomaly.event);
  out.close(name);
}

void write(Writer& out, const Event& event, const Exported& exported) {
  const bool isOfEvents = event.kind == EventKind::kEventExport;
  const std::string_view name =
      isOfEvents ? "ExportacionRegEventoPeriodo" : "ExportacionRegFacturacionPeriodo";
  out.open(name);
  out.add("FechaHoraHusoInicioPeriodoExport", exported.from);
  out.add("FechaHoraHusoFinPeriodoExport", exported.to);
  if (isOfEvents) {
    out.eventNamed("RegistroEventoInicialPeriodo", exported.firstEvent);
    out.eventNamed("RegistroEventoFinalPeriodo", exported.lastEvent);
    out.addCount("NumeroDeRegEventoExportados", exported.registrations);
    out.add("RegEventoExportadosDejanDeConservarse", "N");
  } else {
    out.recordNamed("RegistroFacturacionInicialPeriodo", exported.first);
    out.recordNamed("RegistroFacturacionFinalPeriodo", exported.last);
    out.addCount("NumeroDeRegistrosFacturacionAltaExportados", exported.registrations);
    out.add("SumaCuotaTotalAlta", exported.quota);
    out.add("SumaImporteTotalAlta", exported.total);
    out.addCount("NumeroDeRegistrosFacturacionAnulacionExportados", exported.cancellations);
    out.add("RegistrosFacturacionExportadosDejanDeConservarse", "N");
  }
  out.close(name);
}

void write(Writer& out, const Event& /*event*/, const Summary& summary) {
  out.open("ResumenEventos");
  for (const auto& [kind, count] : summary.events) {
    out.open("TipoEvento");
    out.add("TipoEvento", word(kind));
    out.addCount("NumeroDeEventos", count);
    out.close("TipoEvento");
  }
  out.recordNamed("RegistroFacturacionInicialPeriodo", summary.first);
  out.recordNamed("RegistroFacturacionFinalPeriodo", summary.last);
  out.addCount("NumeroDeRegistrosFacturacionAltaGenerados", summary.registrations);
  out.add("SumaCuotaTotalAlta", summary.quota);
  out.add("SumaImporteTotalAlta", summary.total);
  out.addCount("NumeroDeRegistrosFacturacionAnulacionGenerados", summary.cancellations);
  out.close("ResumenEventos");
}

}  // namespace

std::string escaped(std::string_view text) {
  std::string safe;
  safe.reserve(text.size());
  for (const char c : text) {
    switch (c) {
      case '&':
        safe += "&amp;";
        break;
      case '<':
        safe += "&lt;";
        break;
      case '>':
        safe += "&gt;";
        break;
      default:
        safe += c;
    }
  }
  return safe;
}

std::string xmlOf(const Registration& record) {
  Writer out;
  out.open("RegistroAlta", kRecordNamespace);
  out.add("IDVersion", "1.0");
  out.open("IDFactura");
  out.invoice(record.invoice);
  out.close("IDFactura");
  out.add("NombreRazonEmisor", record.issuerName);
  out.addIf(record.isCorrection, "Subsanacion");
  if (!record.priorRefusal.empty()) out.add("RechazoPrevio", record.priorRefusal);
  out.add("TipoFactura", word(record.kind));
  if (isRectifying(record.kind)) out.add("TipoRectificativa", record.isSubstitution ? "S" : "I");
  out.invoices("FacturasRectificadas", "IDFacturaRectificada", record.rectified);
  out.invoices("FacturasSustituidas", "IDFacturaSustituida", record.replaced);
  if (record.substituted) {
    out.open("ImporteRectificacion");
    out.add("BaseRectificada", record.substituted->base);
    out.add("CuotaRectificada", record.substituted->quota);
    out.add("CuotaRecargoRectificado", record.substituted->surcharge);
    out.close("ImporteRectificacion");
  }
  if (record.operationDay) out.addDay("FechaOperacion", *record.operationDay);
  out.add("DescripcionOperacion", record.description);
  out.addIf(record.isQualifiedTicket, "FacturaSimplificadaArt7273");
  out.addIf(record.hasNoRecipientByLaw, "FacturaSinIdentifDestinatarioArt61d");
  out.addIf(record.isLarge, "Macrodato");
  if (!record.recipients.empty()) {
    out.open("Destinatarios");
    for (const Party& recipient : record.recipients) {
      out.open("IDDestinatario");
      out.party(recipient);
      out.close("IDDestinatario");
    }
    out.close("Destinatarios");
  }
  out.open("Desglose");
  for (const Detail& detail : record.details) out.detail(detail);
  out.close("Desglose");
  out.add("CuotaTotal", record.quota);
  out.add("ImporteTotal", record.total);
  out.chaining(record.chaining);
  out.close("RegistroAlta");
  return out.take();
}

std::string xmlOf(const Cancellation& record) {
  Writer out;
  out.open("RegistroAnulacion", kRecordNamespace);
  out.add("IDVersion", "1.0");
  out.open("IDFactura");
  out.add("IDEmisorFacturaAnulada", record.invoice.issuer);
  out.add("NumSerieFacturaAnulada", record.invoice.number);
  out.addDay("FechaExpedicionFacturaAnulada", record.invoice.day);
  out.close("IDFactura");
  out.addIf(record.hasNoRecord, "SinRegistroPrevio");
  out.addIf(record.wasRefused, "RechazoPrevio");
  out.chaining(record.chaining);
  out.close("RegistroAnulacion");
  return out.take();
}

std::string xmlOf(const Record& record) {
  return std::visit([](const auto& each) { return xmlOf(each); }, record);
}

std::string xmlOf(const Event& event) {
  Writer out;
  out.open("RegistroEvento", kEventNamespace);
  out.add("IDVersion", "1.0");
  out.open("Evento");
  out.system(event.system);
  out.open("ObligadoEmision");
  out.party(event.taxpayer);
  out.close("ObligadoEmision");
  out.add("FechaHoraHusoGenEvento", event.moment);
  out.add("TipoEvento", word(event.kind));
  if (!std::holds_alternative<std::monostate>(event.data)) {
    out.open("DatosPropiosEvento");
    std::visit([&](const auto& data) { write(out, event, data); }, event.data);
    out.close("DatosPropiosEvento");
  }
  if (!event.text.empty()) out.add("OtrosDatosEvento", event.text);
  out.open("Encadenamiento");
  if (event.previous) {
    out.open("EventoAnterior");
    out.event(*event.previous, "FechaHoraHusoGenEvento");
    out.close("EventoAnterior");
  } else {
    out.add("PrimerEvento", "S");
  }
  out.close("Encadenamiento");
  out.add("TipoHuella", "01");
  out.add("HuellaEvento", event.hash);
  out.close("Evento");
  out.close("RegistroEvento");
  return out.take();
}

}  // namespace tavelor::fiscal

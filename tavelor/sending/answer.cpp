// SPDX-License-Identifier: MIT
// Reads answers of the tax office: SOAP 1.1, whatever its prefixes.
#include "tavelor/sending/answer.hpp"

#include <charconv>
#include <pugixml.hpp>

#include <fmt/format.h>

#include "tavelor/platform/error.hpp"
#include "tavelor/platform/text.hpp"
#include "tavelor/platform/utf8.hpp"

namespace tavelor::sending {

namespace {

constexpr std::size_t kLongestFault = 500;

std::string_view localName(pugi::xml_node node) {
  const std::string_view name = node.name();
  const std::size_t colon = name.find(':');
  return colon == std::string_view::npos ? name : name.substr(colon + 1);
}

pugi::xml_node childOf(pugi::xml_node node, std::string_view name) {
  for (const pugi::xml_node child : node.children()) {
    if (localName(child) == name) return child;
  }
  return {};
}

std::string textOf(pugi::xml_node node, std::string_view name) {
  return legible(text::trim(childOf(node, name).child_value()));
}

std::optional<std::int32_t> wholeOf(std::string_view text) {
  std::int32_t value = 0;
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
  if (error != std::errc() || end != text.data() + text.size()) return std::nullopt;
  return value;
}

std::optional<Verdict> verdictOf(std::string_view word) {
  if (word == "Correcto") return Verdict::kAccepted;
  if (word == "AceptadoConErrores") return Verdict::kAcceptedWithErrors;
  if (word == "Incorrecto") return Verdict::kRefused;
  return std::nullopt;
}

/// Cancelled is taken too: what cancels it is another record.
std::optional<Verdict> storedVerdictOf(std::string_view word) {
  if (word == "Correcta" || word == "Anulada") return Verdict::kAccepted;
  if (word == "AceptadaConErrores") return Verdict::kAcceptedWithErrors;
  return std::nullopt;
}

std::optional<AnswerLine> readLine(pugi::xml_node node) {
  AnswerLine line;
  const pugi::xml_node invoice = childOf(node, "IDFactura");
  line.invoice.issuer = textOf(invoice, "IDEmisorFactura");
  line.invoice.number = textOf(invoice, "NumSerieFactura");
  const auto day = fiscal::readDay(textOf(invoice, "FechaExpedicionFactura"));
  const std::string operation = textOf(childOf(node, "Operacion"), "TipoOperacion");
  const auto verdict = verdictOf(textOf(node, "EstadoRegistro"));
  if (!day || !verdict || (operation != "Alta" && operation != "Anulacion")) return std::nullopt;
  line.invoice.day = *day;
  line.isCancellation = operation == "Anulacion";
  line.verdict = *verdict;
  line.code = wholeOf(textOf(node, "CodigoErrorRegistro")).value_or(0);
  line.text = textOf(node, "DescripcionErrorRegistro");
  const pugi::xml_node stored = childOf(node, "RegistroDuplicado");
  if (!stored) return line;
  const auto state = storedVerdictOf(textOf(stored, "EstadoRegistroDuplicado"));
  if (!state) return std::nullopt;
  line.duplicate = Duplicate{*state, wholeOf(textOf(stored, "CodigoErrorRegistro")).value_or(0),
                             textOf(stored, "DescripcionErrorRegistro")};
  return line;
}

AnswerRead faultRead(const std::string& why, bool isOurs = false) {
  AnswerRead read;
  read.fault = text::left(legible(why), kLongestFault);
  read.isOurFault = isOurs;
  return read;
}

}  // namespace

std::string legible(std::string_view text) {
  std::string kept;
  for (std::size_t at = 0; at < text.size();) {
    const utf8::Character each = utf8::decode(text, at);
    const bool isBlank = each.code == '\n' || each.code == '\t' || each.code == '\r';
    const bool isPlain = each.code >= 0x20 && each.code != 0x7F && each.code < utf8::kInvalidBase;
    if (isPlain) {
      kept.append(text.substr(at, each.size));
    } else {
      kept += isBlank ? ' ' : '?';
    }
    at += each.size;
  }
  return kept;
}

AnswerRead readAnswer(std::string_view xml) {
  pugi::xml_document document;
  const pugi::xml_parse_result parsed = document.load_buffer(xml.data(), xml.size());
  if (!parsed) {
    const TextPlace place = placeOf(xml, parsed.offset);
    return faultRead(fmt::format("its answer does not read, line {}, column {}: {}", place.line,
                                 place.column, parsed.description()));
  }
  const pugi::xml_node body = childOf(childOf(document, "Envelope"), "Body");
  if (!body) return faultRead("its answer is no SOAP message");
  if (const pugi::xml_node fault = childOf(body, "Fault")) {
    const std::string code = textOf(fault, "faultcode");
    return faultRead(
        fmt::format("it refuses the message ({}): {}", code, textOf(fault, "faultstring")),
        code.ends_with("Client"));
  }
  const pugi::xml_node root = childOf(body, "RespuestaRegFactuSistemaFacturacion");
  if (!root) return faultRead("its answer is none to records");
  AnswerRead read;
  Answer& answer = read.answer.emplace();
  answer.csv = textOf(root, "CSV");
  answer.wait = wholeOf(textOf(root, "TiempoEsperaEnvio"));
  for (const pugi::xml_node child : root.children()) {
    if (localName(child) != "RespuestaLinea") continue;
    if (auto line = readLine(child)) answer.lines.push_back(std::move(*line));
  }
  return read;
}

}  // namespace tavelor::sending

// SPDX-License-Identifier: MIT
// Records for tests, and the tax office's schemas where the machine has them.
#pragma once

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>

#include <gtest/gtest.h>

#include "tavelor/fiscal/hash.hpp"
#include "tavelor/fiscal/record_xml.hpp"
#include "tests/support/shop.hpp"

namespace tavelor::fiscal {

inline const Date kIssued = Date::of(2027, 2, 1);

inline System system() {
  return {.producer = {.name = "Talleres Norte SL", .number = "B12345674"},
          .name = "Tavelor",
          .id = "TV",
          .version = "1.0.0",
          .installation = "1"};
}

inline Detail detail(const char* rate, const char* base, const char* quota) {
  return {.rate = Amount::read(rate), .base = *Amount::read(base), .quota = Amount::read(quota)};
}

/// A ticket with two rates, the first of its chain.
inline Registration ticket() {
  Registration record;
  record.invoice = {"89890001K", "T/1", kIssued};
  record.issuerName = "Colmado Rius";
  record.description = "Venta";
  record.details = {detail("4.00", "10.00", "0.40"), detail("21.00", "100.00", "21.00")};
  record.quota = *Amount::read("21.40");
  record.total = *Amount::read("131.40");
  record.chaining.system = system();
  record.chaining.moment = "2027-02-01T10:32:05+01:00";
  record.chaining.hash = hashOf(record);
  return record;
}

/// Puts a record behind another one.
template <typename Any>
void chain(Any& record, const Registration& previous) {
  record.chaining.previous = Link{previous.invoice, previous.chaining.hash};
  record.chaining.system = system();
  record.chaining.moment = "2027-02-01T10:33:00+01:00";
  record.chaining.hash = hashOf(record);
}

/// A message as it is sent: what the schema has a definition of.
inline std::string message(const std::string& records) {
  const auto party = [](std::string_view name, std::string_view number) {
    return "<NombreRazon>" + std::string(name) + "</NombreRazon><NIF>" + std::string(number) +
           "</NIF>";
  };
  return "<RegFactuSistemaFacturacion xmlns=\"" + std::string(kMessageNamespace) +
         "\"><Cabecera><ObligadoEmision xmlns=\"" + std::string(kRecordNamespace) + "\">" +
         party("Colmado Rius", "89890001K") + "</ObligadoEmision></Cabecera>" + records +
         "</RegFactuSistemaFacturacion>";
}
inline std::string inMessage(const std::string& record) {
  return "<RegistroFactura>" + record + "</RegistroFactura>";
}

/// An event as the schema wants it, with a signature of nobody's.
inline std::string withSignature(std::string event) {
  const std::string end = "</Evento>";
  event.insert(
      event.find(end),
      "<d:Signature xmlns:d=\"http://www.w3.org/2000/09/xmldsig#\"><d:SignedInfo>"
      "<d:CanonicalizationMethod Algorithm=\"a\"/><d:SignatureMethod Algorithm=\"a\"/>"
      "<d:Reference><d:DigestMethod Algorithm=\"a\"/><d:DigestValue>AA==</d:DigestValue>"
      "</d:Reference></d:SignedInfo><d:SignatureValue>AA==</d:SignatureValue></d:Signature>");
  return event;
}

/// What xmllint has against a document; "" for nothing. `schema` is a path in the folder that
/// TAVELOR_LAW_SCHEMAS names.
inline std::string complaintsBy(const std::string& document, const std::string& schema) {
  const test::TemporaryFolder folder;
  const auto file = folder.path() / "document.xml";
  std::ofstream(file, std::ios::binary) << document;
  const auto said = folder.path() / "said";
  const std::string command = "xmllint --nonet --noout --schema '" +
                              std::string(std::getenv("TAVELOR_LAW_SCHEMAS")) + "/" + schema +
                              "' '" + file.string() + "' >'" + said.string() + "' 2>&1";
  if (std::system(command.c_str()) == 0) return {};
  std::ifstream in(said);
  return {std::istreambuf_iterator<char>(in), {}};
}

/// The same of "SuministroLR.xsd" or "EventosSIF.xsd", which records keep to.
inline std::string complaintsOf(const std::string& document, const std::string& schema) {
  return complaintsBy(document, "verifactu/" + schema);
}

}  // namespace tavelor::fiscal

// A test that looks at the tax office's schemas says so where there are none.
#define TAVELOR_NEEDS_SCHEMAS()                      \
  if (std::getenv("TAVELOR_LAW_SCHEMAS") == nullptr) \
  GTEST_SKIP() << "TAVELOR_LAW_SCHEMAS names no folder with the tax office's schemas"

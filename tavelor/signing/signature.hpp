// SPDX-License-Identifier: MIT
// Signs XML, and looks at signatures (XAdES-EPES, enveloped).
#pragma once

#include <string>
#include <string_view>

#include "tavelor/signing/certificate.hpp"

namespace tavelor::signing {

/// The published rules that a signature says it follows.
struct Policy {
  std::string_view identifier;   ///< address, or "urn:oid:.."
  std::string_view description;  ///< "" for none
  std::string_view sha1;         ///< of the published document, base64
  std::string_view location;     ///< where it is published; "" where the identifier tells it
  std::string_view role;         ///< what the signer says he is; "" for nothing
};

/// Of Facturae, version 3.1.
inline constexpr Policy kFacturaePolicy = {
    "http://www.facturae.es/politica_de_firma_formato_facturae/"
    "politica_de_firma_formato_facturae_v3_1.pdf",
    "Política de Firma FacturaE v3.1", "Ohixl6upD6av8N7pEvDABhEL6hM=", "", "emisor"};

/// Of the State's administration, version 1.9, which the records of invoices follow.
inline constexpr Policy kAdministrationPolicy = {
    "urn:oid:2.16.724.1.3.1.1.2.1.9", "", "G7roucf600+f03r/o0bAOQ6WAs0=",
    "https://sede.administracion.gob.es/politica_de_firma_anexo_1.pdf", ""};

/// How a document is signed.
struct SignatureForm {
  Policy policy = kFacturaePolicy;  ///< that it names
  std::string moment;               ///< of signing, "2027-02-01T10:32:05+01:00"
  std::string
      place{};  ///< child of the outermost element that takes the signature; "" for that one
  std::string suffix{};  ///< of its identifiers, where several documents are to lie in one
};

/// The document with its signature as the last child of its place: over all of the document, the
/// properties of the signature and the certificate, by SHA-256. Its bytes but for the signature
/// stay as they are in canonical XML. Raises 5 for XML that does not read, for a place that is not
/// there, for what is signed already, and where the certificate is not valid at that moment.
std::string signedXml(std::string_view xml, const Certificate& certificate,
                      const SignatureForm& form);

/// What a look at a signature has found.
struct SignatureReport {
  std::string fault;        ///< "" for nothing wrong: all of the document is as it was signed
  std::string certificate;  ///< that it was made with, DER in base64; "" where it was not found
  std::string subject{};    ///< who that one says that it was issued to
};

/// Recomputes a signature by the certificate that it brings along; whether somebody vouches for
/// that one is not asked. A signature that leaves some of the document out is faulty. Never raises
/// for what is in the document.
SignatureReport lookAtSignature(std::string_view xml);

}  // namespace tavelor::signing

// SPDX-License-Identifier: MIT
// XAdES signatures, by xmlsec.
#include "tavelor/signing/signature.hpp"

#include <array>
#include <mutex>
#include <optional>
#include <vector>

#include <fmt/format.h>
#include <libxml/parser.h>
#include <libxml/tree.h>
// clang-format off: before its kin, which lean on it
#include <xmlsec/xmlsec.h>
// clang-format on
#include <xmlsec/errors.h>
#include <xmlsec/openssl/app.h>
#include <xmlsec/openssl/crypto.h>
#include <xmlsec/openssl/evp.h>
#include <xmlsec/xmldsig.h>
#include <xmlsec/xmltree.h>

#include "tavelor/fiscal/amount.hpp"
#include "tavelor/fiscal/record_xml.hpp"
#include "tavelor/platform/error.hpp"
#include "tavelor/signing/certificate_key.hpp"

namespace tavelor::signing {

namespace {

constexpr std::string_view kSignatures = "Signing";
constexpr std::string_view kDsig = "http://www.w3.org/2000/09/xmldsig#";
constexpr std::string_view kProperties = "http://uri.etsi.org/01903#SignedProperties";
constexpr std::string_view kCanonical = "http://www.w3.org/TR/2001/REC-xml-c14n-20010315";

using DocumentPtr = std::unique_ptr<xmlDoc, Freed<xmlFreeDoc>>;
using ContextPtr = std::unique_ptr<xmlSecDSigCtx, Freed<xmlSecDSigCtxDestroy>>;

struct XmlFreed {
  void operator()(xmlChar* text) const { xmlFree(text); }
};
using XmlText = std::unique_ptr<xmlChar, XmlFreed>;

const xmlChar* xmlText(const char* text) {
  return reinterpret_cast<const xmlChar*>(text);
}
std::string_view viewOf(const xmlChar* text) {
  return text == nullptr ? std::string_view() : reinterpret_cast<const char*>(text);
}

extern "C" void tavelorHearNothing(const char* /*file*/, int /*line*/, const char* /*function*/,
                                   const char* /*object*/, const char* /*subject*/, int /*reason*/,
                                   const char* /*message*/) {}

/// Both libraries are the process's; what is begun here is never ended. Their words on standard
/// error are for whoever debugs them.
void begin() {
  static std::once_flag once;
  std::call_once(once, [] {
    xmlInitParser();
    if (xmlSecInit() < 0 || xmlSecOpenSSLAppInit(nullptr) < 0 || xmlSecOpenSSLInit() < 0) {
      raise(errors::kUnspecified, kSignatures, "The library that signs XML cannot be used.");
    }
    xmlSecErrorsSetCallback(tavelorHearNothing);
  });
}

/// No entity, no DTD and no network: what is signed is what is there.
DocumentPtr parsed(std::string_view xml) {
  return DocumentPtr(xmlReadMemory(xml.data(), static_cast<int>(xml.size()), nullptr, nullptr,
                                   XML_PARSE_NONET | XML_PARSE_NOERROR | XML_PARSE_NOWARNING));
}

std::vector<xmlNodePtr> childrenOf(const xmlNode* parent, std::string_view name) {
  std::vector<xmlNodePtr> found;
  for (xmlNodePtr each = parent->children; each != nullptr; each = each->next) {
    if (each->type == XML_ELEMENT_NODE && viewOf(each->name) == name) found.push_back(each);
  }
  return found;
}

void findSignatures(xmlNodePtr from, std::vector<xmlNodePtr>& to) {
  for (xmlNodePtr each = from; each != nullptr; each = each->next) {
    if (each->type != XML_ELEMENT_NODE) continue;
    const bool isOne =
        viewOf(each->name) == "Signature" && each->ns != nullptr && viewOf(each->ns->href) == kDsig;
    if (isOne) to.push_back(each);
    findSignatures(each->children, to);
  }
}

std::string attribute(const xmlNode* node, const char* name) {
  const XmlText found(xmlGetNoNsProp(node, xmlText(name)));
  return std::string(viewOf(found.get()));
}

std::string reference(std::string_view attributes, std::string_view transform) {
  return fmt::format(
      "<ds:Reference {}><ds:Transforms><ds:Transform Algorithm=\"{}\"/></ds:Transforms>"
      "<ds:DigestMethod Algorithm=\"http://www.w3.org/2001/04/xmlenc#sha256\"/><ds:DigestValue/>"
      "</ds:Reference>",
      attributes, transform);
}

std::string propertiesOf(const Certificate& certificate, const SignatureForm& form) {
  using fiscal::escaped;
  const Policy& policy = form.policy;
  std::string description;
  if (!policy.description.empty()) {
    description =
        fmt::format("<xades:Description>{}</xades:Description>", escaped(policy.description));
  }
  std::string qualifiers;
  if (!policy.location.empty()) {
    qualifiers = fmt::format(
        "<xades:SigPolicyQualifiers><xades:SigPolicyQualifier><xades:SPURI>{}</xades:SPURI>"
        "</xades:SigPolicyQualifier></xades:SigPolicyQualifiers>",
        escaped(policy.location));
  }
  std::string role;
  if (!policy.role.empty()) {
    role = fmt::format(
        "<xades:SignerRole><xades:ClaimedRoles><xades:ClaimedRole>{}</xades:ClaimedRole>"
        "</xades:ClaimedRoles></xades:SignerRole>",
        escaped(policy.role));
  }
  return fmt::format(
      "<xades:SignedProperties Id=\"SignedProperties{}\"><xades:SignedSignatureProperties>"
      "<xades:SigningTime>{}</xades:SigningTime><xades:SigningCertificate><xades:Cert>"
      "<xades:CertDigest><ds:DigestMethod Algorithm=\"http://www.w3.org/2001/04/xmlenc#sha256\"/>"
      "<ds:DigestValue>{}</ds:DigestValue></xades:CertDigest><xades:IssuerSerial>"
      "<ds:X509IssuerName>{}</ds:X509IssuerName><ds:X509SerialNumber>{}</ds:X509SerialNumber>"
      "</xades:IssuerSerial></xades:Cert></xades:SigningCertificate>"
      "<xades:SignaturePolicyIdentifier><xades:SignaturePolicyId><xades:SigPolicyId>"
      "<xades:Identifier>{}</xades:Identifier>{}</xades:SigPolicyId><xades:SigPolicyHash>"
      "<ds:DigestMethod Algorithm=\"http://www.w3.org/2000/09/xmldsig#sha1\"/><ds:DigestValue>{}"
      "</ds:DigestValue></xades:SigPolicyHash>{}</xades:SignaturePolicyId>"
      "</xades:SignaturePolicyIdentifier>{}</xades:SignedSignatureProperties>"
      "<xades:SignedDataObjectProperties><xades:DataObjectFormat ObjectReference=\"#Document{}\">"
      "<xades:MimeType>text/xml</xades:MimeType><xades:Encoding>UTF-8</xades:Encoding>"
      "</xades:DataObjectFormat></xades:SignedDataObjectProperties></xades:SignedProperties>",
      form.suffix, escaped(form.moment), certificate.digest(), escaped(certificate.issuer()),
      certificate.serial(), escaped(policy.identifier), description, policy.sha1, qualifiers, role,
      form.suffix);
}

/// With its sums to be filled in.
std::string templateOf(const Certificate& certificate, const SignatureForm& form) {
  const std::string_view method = certificate.isElliptic() ? "ecdsa-sha256" : "rsa-sha256";
  const std::string& suffix = form.suffix;
  return fmt::format(
      "<ds:Signature xmlns:ds=\"{}\" Id=\"Signature{}\"><ds:SignedInfo Id=\"SignedInfo{}\">"
      "<ds:CanonicalizationMethod Algorithm=\"{}\"/><ds:SignatureMethod Algorithm=\"http://"
      "www.w3.org/2001/04/xmldsig-more#{}\"/>{}{}{}</ds:SignedInfo>"
      "<ds:SignatureValue Id=\"SignatureValue{}\"/><ds:KeyInfo Id=\"Certificate{}\"><ds:X509Data>"
      "<ds:X509Certificate>{}</ds:X509Certificate></ds:X509Data></ds:KeyInfo><ds:Object>"
      "<xades:QualifyingProperties xmlns:xades=\"http://uri.etsi.org/01903/v1.3.2#\" "
      "Target=\"#Signature{}\">{}</xades:QualifyingProperties></ds:Object></ds:Signature>",
      kDsig, suffix, suffix, kCanonical, method,
      reference(fmt::format("Id=\"Document{}\" URI=\"\"", suffix),
                fmt::format("{}enveloped-signature", kDsig)),
      reference(fmt::format("Type=\"{}\" URI=\"#SignedProperties{}\"", kProperties, suffix),
                kCanonical),
      reference(fmt::format("URI=\"#Certificate{}\"", suffix), kCanonical), suffix, suffix,
      certificate.base64(), suffix, propertiesOf(certificate, form));
}

void registerIds(xmlDoc* document) {
  std::array<const xmlChar*, 2> names = {xmlText("Id"), nullptr};
  xmlSecAddIDs(document, xmlDocGetRootElement(document), names.data());
}

/// A key as xmlsec takes it, to be given to a context.
xmlSecKeyPtr adopted(EVP_PKEY* key) {
  EVP_PKEY_up_ref(key);
  const xmlSecKeyDataPtr data = xmlSecOpenSSLEvpKeyAdopt(key);
  const xmlSecKeyPtr made = data == nullptr ? nullptr : xmlSecKeyCreate();
  if (made == nullptr || xmlSecKeySetValue(made, data) < 0) {
    if (made != nullptr) xmlSecKeyDestroy(made);
    raise(errors::kUnspecified, kSignatures, "The certificate's key cannot be used.");
  }
  return made;
}

/// Of a certificate in base64, and whom it names; nothing for what is none, or has a key that
/// nobody signs with here.
KeyPtr publicKeyOf(const std::string& certificate, std::string& subject) {
  std::vector<unsigned char> der(certificate.size() / 4 * 3 + 3);
  const int size =
      EVP_DecodeBlock(der.data(), reinterpret_cast<const unsigned char*>(certificate.data()),
                      static_cast<int>(certificate.size()));
  if (size <= 0) return {};
  const unsigned char* begin = der.data();
  const X509Ptr read(d2i_X509(nullptr, &begin, size));
  KeyPtr key(read ? X509_get_pubkey(read.get()) : nullptr);
  if (read) subject = nameText(X509_get_subject_name(read.get()));
  const int kind = key ? EVP_PKEY_get_base_id(key.get()) : EVP_PKEY_NONE;
  if (kind != EVP_PKEY_RSA && kind != EVP_PKEY_EC) key.reset();
  return key;
}

/// What is wrong with what a signature says it covers; "" for nothing.
std::string faultOfCover(const xmlNode* signature) {
  const auto infos = childrenOf(signature, "SignedInfo");
  if (infos.size() != 1) return "the signature does not tell what it covers";
  bool hasAll = false;
  bool hasProperties = false;
  for (const xmlNode* const each : childrenOf(infos.front(), "Reference")) {
    const std::string uri = attribute(each, "URI");
    const auto lists = childrenOf(each, "Transforms");
    if (uri.empty() && xmlHasProp(each, xmlText("URI")) != nullptr && lists.size() == 1) {
      const auto transforms = childrenOf(lists.front(), "Transform");
      hasAll = transforms.size() == 1 && attribute(transforms.front(), "Algorithm") ==
                                             fmt::format("{}enveloped-signature", kDsig);
    }
    if (attribute(each, "Type") == kProperties)
      hasProperties = uri.starts_with("#SignedProperties");
  }
  if (!hasAll) return "the signature leaves some of the document out";
  return hasProperties ? "" : "the signature leaves its own properties out";
}

std::string certificateIn(const xmlNode* signature) {
  const xmlNode* node = signature;
  for (const std::string_view name : {"KeyInfo", "X509Data", "X509Certificate"}) {
    const auto found = childrenOf(node, name);
    if (found.empty()) return {};
    node = found.front();
  }
  const XmlText content(xmlNodeGetContent(node));
  std::string text(viewOf(content.get()));
  std::erase_if(text, [](char c) { return c == '\n' || c == '\r' || c == ' ' || c == '\t'; });
  return text;
}

}  // namespace

std::string signedXml(std::string_view xml, const Certificate& certificate,
                      const SignatureForm& form) {
  begin();
  const auto refuse = [](std::string_view why) {
    raise(errors::kInvalidCall, kSignatures, fmt::format("The document {}.", why));
  };
  const std::optional<std::int64_t> moment = fiscal::secondsOf(form.moment);
  if (!moment) refuse(fmt::format("cannot be signed at \"{}\", which is no moment", form.moment));
  certificate.requireValidAt(moment.value_or(0));
  const DocumentPtr document = parsed(xml);
  if (!document) refuse("does not read as XML");
  xmlNodePtr place = xmlDocGetRootElement(document.get());
  std::vector<xmlNodePtr> signatures;
  findSignatures(place, signatures);
  if (!signatures.empty()) refuse("is signed already");
  if (!form.place.empty()) {
    const auto found = childrenOf(place, form.place);
    if (found.size() != 1) refuse(fmt::format("has no single <{}> to be signed in", form.place));
    place = found.front();
  }
  const DocumentPtr empty = parsed(templateOf(certificate, form));
  if (!empty) refuse("cannot be signed with a certificate whose names are no UTF-8");
  const xmlNodePtr signature =
      xmlAddChild(place, xmlDocCopyNode(xmlDocGetRootElement(empty.get()), document.get(), 1));
  registerIds(document.get());
  const ContextPtr context(xmlSecDSigCtxCreate(nullptr));
  context->signKey = adopted(certificate.inner().key.get());
  if (xmlSecDSigCtxSign(context.get(), signature) < 0 ||
      context->status != xmlSecDSigStatusSucceeded) {
    raise(errors::kUnspecified, kSignatures, "The document could not be signed.");
  }
  xmlChar* bytes = nullptr;
  int size = 0;
  xmlDocDumpMemoryEnc(document.get(), &bytes, &size, "UTF-8");
  const XmlText written(bytes);
  return {reinterpret_cast<const char*>(written.get()), static_cast<std::size_t>(size)};
}

SignatureReport lookAtSignature(std::string_view xml) {
  begin();
  const DocumentPtr document = parsed(xml);
  if (!document) return {"it does not read as XML", {}, {}};
  std::vector<xmlNodePtr> signatures;
  findSignatures(xmlDocGetRootElement(document.get()), signatures);
  if (signatures.empty()) return {"it is not signed", {}, {}};
  if (signatures.size() > 1) return {"it has more than one signature", {}, {}};
  SignatureReport report;
  report.certificate = certificateIn(signatures.front());
  report.fault = faultOfCover(signatures.front());
  if (!report.fault.empty()) return report;
  registerIds(document.get());
  const KeyPtr key = publicKeyOf(report.certificate, report.subject);
  if (!key) {
    report.fault = "its signature brings no certificate";
    return report;
  }
  const ContextPtr context(xmlSecDSigCtxCreate(nullptr));
  // Nothing is fetched, and no authority is looked for.
  context->enabledReferenceUris = xmlSecTransformUriTypeEmpty | xmlSecTransformUriTypeSameDocument;
  context->signKey = adopted(key.get());
  if (xmlSecDSigCtxVerify(context.get(), signatures.front()) < 0) {
    report.fault = "its signature cannot be checked";
  } else if (context->status != xmlSecDSigStatusSucceeded) {
    report.fault = "it is not as it was signed";
  }
  return report;
}

}  // namespace tavelor::signing

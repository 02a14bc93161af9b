// SPDX-License-Identifier: MIT
// What is signed, and what notices that it was changed.
#include "tavelor/signing/signature.hpp"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tavelor/platform/error.hpp"
#include "tests/fiscal/samples.hpp"
#include "tests/signing/certificates.hpp"

namespace tavelor::signing {
namespace {

using ::testing::AllOf;
using ::testing::HasSubstr;
using ::testing::Not;

constexpr const char* kMoment = "2027-02-01T10:32:05+01:00";
constexpr const char* kDocument =
    "<a xmlns=\"urn:one\"><b at=\"1\">Ñandú &amp; más</b>\n  <c><d/></c></a>";

Certificate shop() {
  return Certificate::read(Certificates::all().path("shop.p12"), "TAVELOR_TEST_PASSWORD");
}
SignatureForm form(const Policy& policy = kFacturaePolicy) {
  return {.policy = policy, .moment = kMoment};
}
std::string exchanged(std::string text, std::string_view from, std::string_view to) {
  const std::size_t at = text.find(from);
  EXPECT_NE(at, std::string::npos) << from;
  return text.replace(at, from.size(), to);
}

class SignatureTest : public ::testing::Test {
 protected:
  SignatureTest() { EXPECT_EQ(certificates_.made(), ""); }
  const Certificates& certificates_ = Certificates::all();
};

TEST_F(SignatureTest, IsVerifiedByXmlsec1AndByALookAtIt) {
  const std::string xml = signedXml(kDocument, shop(), form());
  EXPECT_EQ(certificates_.complaintsOf(xml), "");
  const SignatureReport report = lookAtSignature(xml);
  EXPECT_EQ(report.fault, "");
  EXPECT_EQ(report.certificate, shop().base64());
}

TEST_F(SignatureTest, LeavesTheDocumentAsItWas) {
  const std::string xml = signedXml(kDocument, shop(), form());
  const std::string inside = std::string(kDocument).substr(0, std::string(kDocument).size() - 4);
  EXPECT_THAT(xml, HasSubstr(inside + "<ds:Signature ")) << "the last child of all";
}

TEST_F(SignatureTest, OfAChangedDocumentIsNoticed) {
  const std::string xml = signedXml(kDocument, shop(), form());
  for (const auto& [from, to] : {std::pair("Ñandú", "Nandú"), std::pair("at=\"1\"", "at=\"2\""),
                                 std::pair("\n  <c>", "\n <c>")}) {
    const std::string changed = exchanged(xml, from, to);
    EXPECT_NE(certificates_.complaintsOf(changed), "") << from;
    EXPECT_EQ(lookAtSignature(changed).fault, "it is not as it was signed") << from;
  }
}

TEST_F(SignatureTest, CoversItsOwnPropertiesAndTheCertificate) {
  const std::string xml = signedXml(kDocument, shop(), form());
  EXPECT_NE(lookAtSignature(exchanged(xml, "10:32:05", "10:32:06")).fault, "");
  EXPECT_NE(lookAtSignature(exchanged(xml, "v3_1.pdf", "v3_0.pdf")).fault, "");
  const Certificate other =
      Certificate::read(certificates_.path("curve.p12"), "TAVELOR_TEST_PASSWORD");
  EXPECT_NE(lookAtSignature(exchanged(xml, shop().base64(), other.base64())).fault, "");
  EXPECT_EQ(lookAtSignature(exchanged(xml, shop().base64(), "none")).fault,
            "its signature brings no certificate");
}

TEST_F(SignatureTest, ThatLeavesSomethingOutIsFaulty) {
  const std::string xml = signedXml(kDocument, shop(), form());
  EXPECT_EQ(lookAtSignature(exchanged(xml, "URI=\"\"", "URI=\"#Certificate\"")).fault,
            "the signature leaves some of the document out");
  EXPECT_EQ(lookAtSignature(exchanged(xml, "#enveloped-signature", "#other")).fault,
            "the signature leaves some of the document out");
  EXPECT_EQ(lookAtSignature(exchanged(xml, "URI=\"#SignedProperties\"", "URI=\"#Other\"")).fault,
            "the signature leaves its own properties out");
}

TEST_F(SignatureTest, TellsTheDocumentsThatHaveNone) {
  EXPECT_EQ(lookAtSignature(kDocument).fault, "it is not signed");
  EXPECT_EQ(lookAtSignature("<a>").fault, "it does not read as XML");
  EXPECT_EQ(lookAtSignature("").fault, "it does not read as XML");
}

TEST_F(SignatureTest, TellsItsPolicyItsMomentItsRoleAndItsCertificate) {
  const std::string xml = signedXml(kDocument, shop(), form());
  EXPECT_THAT(
      xml,
      AllOf(HasSubstr("<xades:SigPolicyId><xades:Identifier>http://www.facturae.es/politica_de_"
                      "firma_formato_facturae/politica_de_firma_formato_facturae_v3_1.pdf<"),
            HasSubstr("<ds:DigestValue>Ohixl6upD6av8N7pEvDABhEL6hM=</ds:DigestValue>"),
            HasSubstr("<xades:SigningTime>2027-02-01T10:32:05+01:00<"),
            HasSubstr("<xades:ClaimedRole>emisor<"),
            HasSubstr("<ds:DigestValue>" + shop().digest()),
            HasSubstr("<ds:X509IssuerName>CN=Pruebas,C=ES</ds:X509IssuerName>"),
            HasSubstr("<ds:X509SerialNumber>4096</ds:X509SerialNumber>")));
  const std::string record = signedXml(kDocument, shop(), form(kAdministrationPolicy));
  EXPECT_EQ(certificates_.complaintsOf(record), "");
  EXPECT_THAT(record, AllOf(HasSubstr("<xades:Identifier>urn:oid:2.16.724.1.3.1.1.2.1.9<"),
                            HasSubstr("<xades:SPURI>https://sede.administracion.gob.es/"),
                            Not(HasSubstr("ClaimedRole"))));
}

TEST_F(SignatureTest, StandsInAPlaceOfTheDocument) {
  SignatureForm inside = form();
  inside.place = "c";
  const std::string xml = signedXml(kDocument, shop(), inside);
  EXPECT_THAT(xml, HasSubstr("<c><d/><ds:Signature"));
  EXPECT_EQ(certificates_.complaintsOf(xml), "");
  EXPECT_EQ(lookAtSignature(xml).fault, "");
  inside.place = "e";
  EXPECT_EQ(test::errorOf([&] { signedXml(kDocument, shop(), inside); }), errors::kInvalidCall);
}

TEST_F(SignatureTest, OfAnEllipticCurveIsVerifiedToo) {
  const Certificate curve =
      Certificate::read(certificates_.path("curve.p12"), "TAVELOR_TEST_PASSWORD");
  EXPECT_TRUE(curve.isElliptic());
  const std::string xml = signedXml(kDocument, curve, form());
  EXPECT_EQ(certificates_.complaintsOf(xml), "");
  EXPECT_EQ(lookAtSignature(xml).fault, "");
}

TEST_F(SignatureTest, IsRefusedForWhatCannotBeSigned) {
  const std::string xml = signedXml(kDocument, shop(), form());
  const auto complaint = [&](const std::string& document, const SignatureForm& how) {
    return test::sentenceOf([&] { signedXml(document, shop(), how); });
  };
  EXPECT_THAT(complaint(xml, form()), HasSubstr("is signed already"));
  EXPECT_THAT(complaint("<a>", form()), HasSubstr("does not read as XML"));
  EXPECT_THAT(complaint(kDocument, {.moment = "today"}), HasSubstr("which is no moment"));
}

TEST_F(SignatureTest, OfRecordsAndEventsIsWhatTheirSchemasWant) {
  TAVELOR_NEEDS_SCHEMAS();
  const std::string record =
      signedXml(fiscal::xmlOf(fiscal::ticket()), shop(), form(kAdministrationPolicy));
  EXPECT_EQ(fiscal::complaintsOf(record, "SuministroInformacion.xsd"), "");
  EXPECT_EQ(lookAtSignature(record).fault, "");
  fiscal::Event event;
  event.system = fiscal::system();
  event.taxpayer = {.name = "Colmado Rius", .number = "89890001K"};
  event.moment = kMoment;
  event.kind = fiscal::EventKind::kBegin;
  event.hash = fiscal::hashOf(event);
  SignatureForm inside = form(kAdministrationPolicy);
  inside.place = "Evento";
  const std::string logged = signedXml(fiscal::xmlOf(event), shop(), inside);
  EXPECT_EQ(fiscal::complaintsOf(logged, "EventosSIF.xsd"), "");
  EXPECT_EQ(certificates_.complaintsOf(logged), "");
  event.data = {};
  EXPECT_EQ(fiscal::readEvent(logged.substr(logged.find("<RegistroEvento"))), event);
}

// ---------------------------------------------------------------------------------------------
// Certificates

using CertificateTest = SignatureTest;

std::string complaint(const std::string& file, const std::string& variable) {
  return test::sentenceOf([&] { Certificate::read(Certificates::all().path(file), variable); });
}

TEST_F(CertificateTest, IsReadFromPkcs12AndFromPem) {
  EXPECT_THAT(shop().subject(), HasSubstr("CN=Colmado Rius\\, Ñ & Cía"));
  for (const auto& [file, variable] :
       {std::pair("shop.pem", ""), std::pair("locked.pem", "TAVELOR_TEST_PASSWORD"),
        std::pair("browser.p12", "TAVELOR_TEST_PASSWORD")}) {
    const Certificate read = Certificate::read(certificates_.path(file), variable);
    EXPECT_EQ(read.base64(), shop().base64()) << file;
    EXPECT_EQ(certificates_.complaintsOf(signedXml(kDocument, read, form())), "") << file;
  }
}

TEST_F(CertificateTest, WithAnotherPasswordIsRefusedAndNoPasswordIsTold) {
  for (const char* const file : {"shop.p12", "locked.pem"}) {
    const std::string said = complaint(file, "TAVELOR_TEST_WRONG_PASSWORD");
    EXPECT_THAT(said,
                HasSubstr("has another password than the variable TAVELOR_TEST_WRONG_PASSWORD"));
    EXPECT_THAT(said, Not(HasSubstr("Something else")));
    EXPECT_THAT(complaint(file, ""), HasSubstr("no variable is named that tells it"));
    EXPECT_THAT(complaint(file, "TAVELOR_TEST_NO_SUCH"),
                HasSubstr("the variable TAVELOR_TEST_NO_SUCH that tells it is not set"));
  }
}

TEST_F(CertificateTest, ThatIsNotThereOrIsNoneIsRefused) {
  const auto number = [&](const std::string& file) {
    return test::errorOf([&] { Certificate::read(certificates_.path(file), ""); });
  };
  EXPECT_EQ(number("none.p12"), errors::kFileNotFound);
  EXPECT_EQ(number("ca"), errors::kPathAccess) << "a folder";
  EXPECT_THAT(complaint("ca.pem", ""), HasSubstr("holds no private key"));
  EXPECT_THAT(complaint("ca.key", ""), HasSubstr("holds no certificate of its private key"));
  EXPECT_THAT(complaint("ca.cnf", ""), HasSubstr("holds no private key"));
}

TEST_F(CertificateTest, ThatHasExpiredOrIsNotValidYetSignsNothing) {
  const auto complaintOf = [&](const char* file) {
    const Certificate read = Certificate::read(certificates_.path(file), "TAVELOR_TEST_PASSWORD");
    return test::sentenceOf([&] { signedXml(kDocument, read, form()); });
  };
  EXPECT_THAT(complaintOf("old.p12"), HasSubstr("has expired on 01-01-2020"));
  EXPECT_THAT(complaintOf("new.p12"), HasSubstr("is not valid before 01-01-2100"));
}

}  // namespace
}  // namespace tavelor::signing

// SPDX-License-Identifier: MIT
// Certificates of a test's own authority, made by the openssl program, and the xmlsec1 program,
// which looks at what was signed with them.
#pragma once

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>

#include "tests/support/errors.hpp"
#include "tests/support/temporary_folder.hpp"

namespace tavelor::signing {

/// A folder with an authority, ca.pem, and what it has issued: shop.p12 with the password
/// "Quod erat", browser.p12 the same by old ciphers, shop.pem without one, locked.pem with it,
/// curve.p12 with a key of an elliptic curve, old.p12 that expired in 2020 and new.p12 that begins
/// in 2100. Made once for all tests of a process.
class Certificates {
 public:
  static const Certificates& all() {
    static const Certificates certificates;
    return certificates;
  }
  std::string path(const std::string& name) const { return (folder_.path() / name).string(); }

  /// What a program says of it; "" where it ends well.
  static std::string said(const std::string& command) {
    const test::TemporaryFolder folder;
    const auto file = folder.path() / "said";
    if (std::system(("(" + command + ") >'" + file.string() + "' 2>&1").c_str()) == 0) return {};
    std::ifstream in(file);
    return {std::istreambuf_iterator<char>(in), {}};
  }

  /// What xmlsec1 has against a signed document; "" for nothing.
  std::string complaintsOf(const std::string& xml) const {
    const test::TemporaryFolder folder;
    const auto file = folder.path() / "signed.xml";
    std::ofstream(file, std::ios::binary) << xml;
    return said("xmlsec1 --verify --trusted-pem '" + path("ca.pem") +
                "' --id-attr:Id http://uri.etsi.org/01903/v1.3.2#:SignedProperties --id-attr:Id "
                "http://www.w3.org/2000/09/xmldsig#:KeyInfo '" +
                file.string() + "'");
  }

 private:
  Certificates() {
    made_ = said("set -e; cd '" + folder_.path().string() + R"('
openssl req -x509 -newkey ec -pkeyopt ec_paramgen_curve:prime256v1 -nodes -keyout ca.key -out ca.pem -days 36500 -subj '/C=ES/CN=Pruebas'
openssl req -newkey rsa:2048 -nodes -keyout shop.key -out shop.csr -subj '/C=ES/CN=Colmado Rius, Ñ & Cía/serialNumber=89890001K' -utf8
openssl ecparam -name prime256v1 -genkey -noout -out curve.key
openssl req -new -key curve.key -out curve.csr -subj '/C=ES/CN=Curva'
mkdir ca; : > ca/index; echo 1000 > ca/serial
cat > ca.cnf <<'CNF'
[ca]
default_ca = d
[d]
dir = ca
database = ca/index
serial = ca/serial
new_certs_dir = ca
certificate = ca.pem
private_key = ca.key
default_md = sha256
unique_subject = no
policy = p
[p]
C = optional
CN = supplied
serialNumber = optional
CNF
issue() { openssl ca -batch -utf8 -config ca.cnf -in $1.csr -out $2.crt -notext -startdate $3 -enddate $4; }
issue shop shop 20200101000000Z 20991231000000Z
issue shop old 20190101000000Z 20200101000000Z
issue shop new 21000101000000Z 21010101000000Z
issue curve curve 20200101000000Z 20991231000000Z
pack() { openssl pkcs12 -export -inkey $1.key -in $2.crt -out $2.p12 -passout 'pass:Quod erat'; }
pack shop shop; pack shop old; pack shop new; pack curve curve
openssl pkcs12 -export -legacy -inkey shop.key -in shop.crt -out browser.p12 -passout 'pass:Quod erat'
cat shop.crt shop.key > shop.pem
openssl rsa -in shop.key -aes256 -passout 'pass:Quod erat' -out locked.key
cat shop.crt locked.key > locked.pem)");
    setenv("TAVELOR_TEST_PASSWORD", "Quod erat", 1);
    setenv("TAVELOR_TEST_WRONG_PASSWORD", "Something else", 1);
  }

  test::TemporaryFolder folder_;
  std::string made_;

 public:
  const std::string& made() const { return made_; }  ///< "" where all are there
};

}  // namespace tavelor::signing

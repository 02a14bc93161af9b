// SPDX-License-Identifier: MIT
// Issuer data of document types.
#include "tavelor/reference/tipos_documento.hpp"

#include "tests/classes/catalogue.hpp"

namespace tavelor {
namespace {

using test::errorOf;
using testing::ElementsAre;

class ClsTiposDocumentoTest : public test::CatalogueTest<ClsTiposDocumento> {
 protected:
  void fill() {
    shop.run(
        "INSERT INTO Tipos_Documento (Codigo, Descripcion, Predeterminada, Nombre, Razon_Social, "
        "NIF, Direccion, Codigo_Postal, Poblacion, Provincia, Telefono, E_Mail, Pie_Documento, "
        "Comentarios, ID_Fiscal) VALUES ('1', 'Factura', True, 'La Tienda', 'Tienda S.L.', "
        "'B37000000', 'Calle Mayor 1', '37001', 'Salamanca', 'Salamanca', '923000000', "
        "'hola@tienda.example', 'Gracias', 'Notas', '  Nif')");
    shop.run(
        "INSERT INTO Tipos_Documento (Codigo, Descripcion, Nombre) VALUES ('2', 'Albarán', "
        "'Almacén')");
    shop.statements();
  }
  static ClsTiposDocumento::Datos before(const std::string& code = {}) {
    ClsTiposDocumento::Datos datos;
    datos.sCod = code;
    for (std::string* text :
         {&datos.sNom, &datos.sEmpr, &datos.sNif, &datos.sdir, &datos.sCp, &datos.sPob,
          &datos.sProv, &datos.stel, &datos.sMail, &datos.sPie, &datos.sCom}) {
      *text = "kept";
    }
    return datos;
  }
  static std::vector<std::string> header(const ClsTiposDocumento::Datos& datos) {
    return {datos.sNom, datos.sEmpr, datos.sNif, datos.sdir, datos.sCp, datos.sPob, datos.stel};
  }
};

TEST_F(ClsTiposDocumentoTest, TheSlotsStandInOrderAndReadBLOBIsTheLast) {
  EXPECT_THAT(firstSlots(),
              ElementsAre("GetRptPath", "GetConnectionStrToRpt", "sClassName", "GetConnection",
                          "GetConnectionStr", "bEsPredeterminada", "VerificaeEsPersonaFisica",
                          "GetPredeterminada", "GetCodPredeterminada", "GetDatosPredeterminada",
                          "GetLicencia_predeterminada", "GetDatosCabecera", "GetDatosEmpresa",
                          "ExistePredeterminada", "esPersonaFisica", "IniciaRs", "NuevoCodigo",
                          "SeguridadPermiso", "CodigoLibre"));
  EXPECT_EQ(lastSlot(), "ReadBLOB");
  EXPECT_EQ(signature("GetDatosPredeterminada"),
            "GetDatosPredeterminada(out sNom As String, out sEmpr As String, out sNif As String, "
            "out sdir As String, out sCp As String, out sPob As String, [out stel As String], [out "
            "sPie As String], [out sCom As String], [inout objCn As Connection])");
  EXPECT_EQ(signature("GetDatosEmpresa"),
            "GetDatosEmpresa(sCod As String, out sNom As String, out sEmpr As String, out sNif As "
            "String, out sdir As String, out sCp As String, out sPob As String, out sProv As "
            "String, out stel As String, out sMail As String, [inout objCn As Connection], "
            "[bPredeterminada As Boolean])");
  EXPECT_EQ(signature("VerificaeEsPersonaFisica"),
            "VerificaeEsPersonaFisica(sId As String) As Boolean");
}

// ---- Modes

TEST_F(ClsTiposDocumentoTest, SeleccionHasCodeAndDescription) {
  EXPECT_EQ(open("seleccion").statement,
            "SELECT Codigo AS Código, Descripcion AS Descripción FROM Tipos_Documento");
}

TEST_F(ClsTiposDocumentoTest, AnyOtherWordIsTheFullSelect) {
  const Opened opened = open("registro", "1");
  EXPECT_EQ(opened.word, "todos");
  EXPECT_EQ(opened.statement,
            "SELECT Codigo AS Código, Descripcion AS Descripción, Predeterminada , Nombre, "
            "Razon_Social as Empresa , NIF, Direccion as Dirección , Codigo_Postal, Poblacion as "
            "Población, Provincia , Telefono as Teléfono, Telefono_2 as Teléfono_2 , Movil as "
            "Móvil, Fax, E_Mail, Http, Pie_Documento as Pie, Comentarios, Logotipo, Licencia, "
            "Col_Asoc as Colegiado, Fabricado, ID_Fiscal FROM Tipos_Documento");
  EXPECT_THAT(fieldNames(),
              ElementsAre("Código", "Descripción", "Predeterminada", "Nombre", "Empresa", "NIF",
                          "Dirección", "Codigo_Postal", "Población", "Provincia", "Teléfono",
                          "Teléfono_2", "Móvil", "Fax", "E_Mail", "Http", "Pie", "Comentarios",
                          "Logotipo", "Licencia", "Colegiado", "Fabricado", "ID_Fiscal"));
}

// ---- Properties

TEST_F(ClsTiposDocumentoTest, BEsPredeterminadaIsTheFlagOfTheCurrentRow) {
  fill();
  open("todos");
  EXPECT_TRUE(catalogue.bEsPredeterminada());
  catalogue.MoveNext();
  EXPECT_FALSE(catalogue.bEsPredeterminada());
}

TEST_F(ClsTiposDocumentoTest, BEsPredeterminadaIgnoresErrors) {
  EXPECT_FALSE(catalogue.bEsPredeterminada()) << "no record set";
  open("todos");
  EXPECT_FALSE(catalogue.bEsPredeterminada()) << "no row";
  fill();
  open("seleccion");
  EXPECT_FALSE(catalogue.bEsPredeterminada()) << "no such column";
}

TEST_F(ClsTiposDocumentoTest, ANaturalPersonIsToldByTheFirstLetterN) {
  EXPECT_TRUE(catalogue.VerificaeEsPersonaFisica("  NIF"));
  EXPECT_TRUE(catalogue.VerificaeEsPersonaFisica("nif"));
  EXPECT_TRUE(catalogue.VerificaeEsPersonaFisica("N"));
  EXPECT_FALSE(catalogue.VerificaeEsPersonaFisica(""));
  EXPECT_FALSE(catalogue.VerificaeEsPersonaFisica("   "));
  EXPECT_FALSE(catalogue.VerificaeEsPersonaFisica("CIF"));
  EXPECT_FALSE(catalogue.VerificaeEsPersonaFisica("ñ")) << "another letter";
  EXPECT_FALSE(catalogue.VerificaeEsPersonaFisica("\tN")) << "only blanks are trimmed";
}

TEST_F(ClsTiposDocumentoTest, EsPersonaFisicaAsksTheDefaultRow) {
  EXPECT_FALSE(catalogue.esPersonaFisica()) << "no row";
  EXPECT_EQ(statement(), "SELECT ID_fiscal FROM Tipos_Documento WHERE predeterminada <> 0");
  fill();
  EXPECT_TRUE(catalogue.esPersonaFisica());
  for (const char* other : {"'CIF'", "''", "'  '", "Null"}) {
    shop.run(std::string("UPDATE Tipos_Documento SET ID_Fiscal = ") + other);
    EXPECT_FALSE(catalogue.esPersonaFisica()) << other;
  }
}

// ---- The default row

TEST_F(ClsTiposDocumentoTest, TheDefaultRowByDescriptionAndByCode) {
  EXPECT_TRUE(catalogue.GetPredeterminada().isEmpty());
  EXPECT_TRUE(catalogue.GetCodPredeterminada().isEmpty());
  EXPECT_FALSE(catalogue.ExistePredeterminada());
  fill();
  EXPECT_EQ(catalogue.GetPredeterminada(), Variant("Factura"));
  EXPECT_EQ(statement(), "SELECT Descripcion as ds FROM Tipos_Documento where predeterminada <> 0");
  EXPECT_EQ(catalogue.GetCodPredeterminada(), Variant("1"));
  EXPECT_EQ(statement(), "SELECT Codigo as ds FROM Tipos_Documento where predeterminada <> 0");
  EXPECT_TRUE(catalogue.ExistePredeterminada());
  EXPECT_EQ(statement(), "SELECT Codigo FROM Tipos_Documento where predeterminada <> 0");
}

// ---- Issuer data

TEST_F(ClsTiposDocumentoTest, GetDatosPredeterminadaGivesTheIssuerOfTheDefaultRow) {
  fill();
  ClsTiposDocumento::Datos datos = before();
  catalogue.GetDatosPredeterminada(datos);
  EXPECT_EQ(statement(),
            "SELECT Nombre,  Razon_Social,  NIF,  Direccion, Codigo_Postal, Poblacion, Telefono, "
            "Pie_Documento as Pie, Comentarios  FROM Tipos_Documento where predeterminada <> 0");
  EXPECT_THAT(header(datos), ElementsAre("La Tienda", "Tienda S.L.", "B37000000", "Calle Mayor 1",
                                         "37001", "Salamanca", "923000000"));
  EXPECT_EQ(datos.sPie, "Gracias");
  EXPECT_EQ(datos.sCom, "Notas");
  EXPECT_EQ(datos.sProv, "kept") << "not among its parameters";
  EXPECT_EQ(datos.sMail, "kept");
}

TEST_F(ClsTiposDocumentoTest, OutputsOfNullColumnsAndOfAMissingRowStay) {
  ClsTiposDocumento::Datos datos = before("2");
  catalogue.GetDatosPredeterminada(datos);
  catalogue.GetDatosCabecera(datos);
  catalogue.GetDatosEmpresa(datos);
  EXPECT_THAT(header(datos), testing::Each("kept"));
  fill();
  catalogue.GetDatosCabecera(datos);
  EXPECT_THAT(header(datos),
              ElementsAre("Almacén", "kept", "kept", "kept", "kept", "kept", "kept"));
}

TEST_F(ClsTiposDocumentoTest, GetDatosCabeceraAsksForOneType) {
  fill();
  ClsTiposDocumento::Datos datos = before("1");
  catalogue.GetDatosCabecera(datos);
  EXPECT_EQ(statement(),
            "SELECT Nombre,  Razon_Social,  NIF,  Direccion, Codigo_Postal, Poblacion, Telefono, "
            "Pie_Documento as Pie, Comentarios  FROM Tipos_Documento WHERE ( Codigo = '1' )");
  EXPECT_THAT(header(datos), ElementsAre("La Tienda", "Tienda S.L.", "B37000000", "Calle Mayor 1",
                                         "37001", "Salamanca", "923000000"));
  EXPECT_EQ(datos.sPie, "kept") << "not among its parameters";
}

TEST_F(ClsTiposDocumentoTest, GetDatosEmpresaAsksForOneTypeOrForTheDefaultRow) {
  fill();
  ClsTiposDocumento::Datos datos = before("2");
  catalogue.GetDatosEmpresa(datos);
  EXPECT_EQ(
      statement(),
      "SELECT Nombre,  Razon_Social,  NIF,  Direccion, Codigo_Postal, Poblacion, Provincia, "
      "Telefono,e_Mail, Pie_Documento as Pie, Comentarios  FROM Tipos_Documento WHERE ( Codigo = "
      "'2' )");
  EXPECT_EQ(datos.sNom, "Almacén");
  datos.bPredeterminada = true;
  catalogue.GetDatosEmpresa(datos);
  EXPECT_EQ(statement(),
            "SELECT Nombre,  Razon_Social,  NIF,  Direccion, Codigo_Postal, Poblacion, Provincia, "
            "Telefono,e_Mail, Pie_Documento as Pie, Comentarios  FROM Tipos_Documento WHERE ( "
            "predeterminada <> 0 )");
  EXPECT_EQ(datos.sNom, "La Tienda");
  EXPECT_EQ(datos.sProv, "Salamanca");
  EXPECT_EQ(datos.sMail, "hola@tienda.example");
}

TEST_F(ClsTiposDocumentoTest, WithNoDefaultRowTheLicenceStaysAndANullOneIsPending) {
  std::string licence = "kept";
  catalogue.GetLicencia_predeterminada(licence);
  EXPECT_EQ(statement(), "SELECT Licencia  FROM Tipos_Documento where predeterminada <> 0");
  EXPECT_EQ(licence, "kept");
  fill();
  catalogue.GetLicencia_predeterminada(licence);
  EXPECT_EQ(licence, "Pendiente");
  shop.run("UPDATE Tipos_Documento SET Licencia = 'L-1'");
  catalogue.GetLicencia_predeterminada(licence);
  EXPECT_EQ(licence, "L-1");
}

TEST_F(ClsTiposDocumentoTest, CodesComeFromTheTable) {
  catalogue.NuevoCodigo();
  EXPECT_EQ(statement(), "SELECT MAX(Codigo) AS Nuevo_Codigo FROM Tipos_Documento");
  catalogue.CodigoLibre("1");
  EXPECT_EQ(statement(), "SELECT Codigo FROM Tipos_Documento where codigo ='1'");
}

TEST_F(ClsTiposDocumentoTest, HostileTextChangesNothing) {
  fill();
  for (const std::string& attack : test::hostileTexts()) {
    ClsTiposDocumento::Datos datos = before(attack);
    EXPECT_EQ(errorOf([&] { catalogue.GetDatosCabecera(datos); }), errors::kSyntax);
    EXPECT_EQ(errorOf([&] { catalogue.GetDatosEmpresa(datos); }), errors::kSyntax);
    EXPECT_EQ(errorOf([&] { catalogue.CodigoLibre(attack); }), errors::kSyntax);
  }
  EXPECT_EQ(shop.text("SELECT Count(*) FROM Tipos_Documento"), "2");
}

}  // namespace
}  // namespace tavelor

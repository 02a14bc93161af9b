// SPDX-License-Identifier: MIT
// The customer master.
#pragma once

#include "tavelor/companions/business_partner.hpp"
#include "tavelor/platform/export.hpp"

namespace tavelor {

class Component;

/// Who buys: trade and legal name, address, fiscal identifier, conditions of sale, what invoices
/// need, accounts and reports, one row a customer.
///
/// `Activo` is 0 for customers no longer in use, 2 for those that are not available, anything else
/// for the usual ones; members that ask for a usable customer take all but 0. Values are joined
/// into statements without escaping: a quote in a code or a name raises the database's syntax
/// error. Members that write or read customers beside the primary record set keep no state.
class TAVELOR_API ClsClientes final : public BusinessPartner {
 public:
  ClsClientes();
  std::string typeName() const override { return "ClsClientes"; }
  static const Component& component();

  // What the single reads (Text, Flag and Number) ask and answer is the table in
  // clientes_lecturas.cpp.

  // ---- Fiscal identifiers (clientes_fiscal.cpp)
  //
  // What the shop's own checks say, which callers and stored class words have grown used to; they
  // differ from the law. Whoever needs a right answer asks tavelor/platform/fiscal_number.hpp.

  /// Eight characters that read as a number by the locale, and their control letter. Never raises.
  bool EsNIF(std::string_view s) const;
  /// X, Y or Z, seven characters and a control letter. What does not read as a number counts as 0,
  /// whose letter is T: "XABCDEFGT" passes. Never raises.
  bool EsNIE(std::string_view s) const;
  /// A letter, seven digits and a control digit or letter, which is computed on other positions
  /// than the law says. `s` is trimmed and put in capitals in any case. Never raises.
  bool EsCIF(InOut<std::string> s) const;
  /// Cleans and classes the identifiers of all customers, after asking the user; tells how many
  /// rows it changed. A failure is told to the user and not raised: nothing is written then, unless
  /// it came from the writing itself, where rows that others had changed meanwhile stay as they
  /// are.
  void LimpiarNIFCIF(ObjCn objCn = {}) const;
  /// NIF, NIE, CIF, AND, INT or VERIFICAR; "" for an empty identifier.
  std::string Tipo_Id_Fiscal(std::string_view s) const;
  /// An earlier LimpiarNIFCIF: asks nothing, takes off no prefix, checks no control character,
  /// knows other countries, and writes every row.
  void LimpiarNIFCIF_v1(ObjCn objCn = {}) const;
  /// The identifier without its label, in capitals, digits and letters A to Z only. Never raises:
  /// after a failure the trimmed original.
  std::string ValidarNIFCIF(std::string_view valorOriginal) const;
  /// Whether a customer in use (`Activo` -1 exactly) has no postal code.
  bool ExistenClientesSinCodigoPostal(ObjCn objCn = {}) const;
  /// Whether one has no class word, or another than those of Tipo_Id_Fiscal.
  bool ExistenClientesSinIdFiscal(ObjCn objCn = {}) const;
  /// Fills class words that are missing by the first letter of the identifier, in three statements.
  /// What ran before a failure stays, unless the caller holds a transaction.
  void Actualizar_Nif_Cif(ObjCn cnnActive = {}) const;

  // ---- Is it there

  const Flag ObtenerBloqueo;    ///< blocked; false for Null
  const Flag ExisteCli;         ///< there, in use or not
  const Flag ExisteNif;         ///< by fiscal identifier, as stored
  const Flag ExisteExternalID;  ///< by identifier in the outside system
  const Flag EstaDisponible;    ///< there, and not marked as not available
  /// Whether a customer names a production centre of two characters or more.
  bool ExistenCentros(ObjCn objCn = {}) const;
  /// How many customers the modes "bajas", "bajas60", "bajas30" and "347" of IniciaRs would show,
  /// as text; of any other word all customers.
  std::string ExistenRegistros_consulta(std::string_view ssql, ObjCn objCn = {}) const;

  // ---- Paths and files (clientes_intercambio.cpp)

  /// The same as in the frame, of the historic database when `bHistorico` is true.
  void GetConnectionStrToRpt(InOut<std::string> sDbtype, InOut<std::string> sDataSource,
                             InOut<std::string> sCatalog, InOut<std::string> sUser,
                             InOut<std::string> sPasw, bool bHistorico = false) const;
  /// Puts the full path of the export file of that name in its place.
  void GetExportPath(InOut<std::string> sExportPath) const;
  /// Full path of the class's text file, and of the one that goes out by mail.
  std::string GetTxtFile() const;
  /// Full path of the text file that goes out by mail.
  std::string GetTxtFile_email() const;
  /// Saves all customers, with all columns, as XML; a table without customers writes no file. A
  /// file that is there is replaced, whole or not at all.
  void Create_xml_Clientes(std::string_view sPath, ObjCn objCn = {}) const;
  /// Makes the customers saved in an XML file the primary record set, and gives it. Raises 53 for a
  /// file that is not there; then the record set is as it was.
  RecordsetPtr IniciaXML(std::string_view sPath);
  /// Writes the visible columns of a grid as a page with a style of its own, in the user's folder:
  /// as given, or below the installation's folder where it is relative; "" is the usual place. The
  /// rest as the frame's; a folder that is not there raises 75.
  void ToHtmlGrid(std::string_view sPersonalFolder, const GridColumns& clColfields,
                  bool bDoclone = false, std::string_view sSelecSql = {}, bool bFilter = false);
  /// The page that all other classes write.
  void ToHtmlGrid_V0(const GridColumns& clColfields, bool bDoclone = false,
                     std::string_view sSelecSql = {}, bool bFilter = false);
  /// Of the current row, as text; "" after any failure.
  std::string sQBanco() const;
  /// The payment method of the current row, as text; "" after any failure.
  std::string sQFormaPago() const;
  /// The mail address for documents of the current row; "" after any failure.
  std::string sQMailDoc() const;
  /// Codes of the customers in use.
  std::vector<Variant> ObtenerColActivos(ObjCn objCn = {}) const;
  /// Codes of the customers in use that are billed to `vId`.
  std::vector<Variant> ObtenerColAsociados(const Variant& vId, ObjCn objCn = {}) const;
  /// Production centres, and behind them "TODOS"; nothing where there are none.
  std::vector<Variant> ObtenerColCentrosProd(ObjCn objCn = {}) const;

  // ---- Codes and new rows

  /// Characters of the longest code; "0" without customers.
  std::string GetLenMaxDigit(ObjCn objCn = {}) const;
  /// Adds a row; with `bDefVal`, filled with what a new customer begins with. The record set must
  /// show the whole customer.
  void AddNew(bool bDefVal = false);
  /// As the frame's; a customer without an identifier in the outside system takes the first two
  /// characters of its code as one. Raises 3265 in modes that do not show it.
  void Update() override;

  // ---- Flags of one customer, false for no customer

  const Flag esFacturable;       ///< billed itself: billed to nobody, or to its own code
  const Flag esDistribuidor;     ///< billed as a distributor, D
  const Flag esAsociado;         ///< billed to another customer as an associate, +1
  const Flag esActivo;           ///< in use: anything but 0
  const Flag esSerie_as;         ///< the flag `Serie_As`
  const Flag esPortesNoIncl;     ///< the flag `Portes_Alb`, in use or not
  const Flag esPersonaFisica;    ///< a natural person, by class word; raises 94 for Null
  const Flag ObtenerPrintPaper;  ///< invoices are printed
  const Flag IncludeTax;         ///< prices include tax; of a usable customer
  const Flag EsIvaDeducible;     ///< tax is charged; of a usable customer
  const Flag PortesAlConvertir;  ///< of a usable customer
  /// Billed to another one: neither to its own code nor as an associate. Also true where nobody is
  /// named by an empty text; false for Null.
  bool NoesFacturable(const Variant& id, ObjCn objCn = {}) const;
  /// Whether the customers lie in a file-based database.
  bool esDbFile() const;

  // ---- Texts and numbers of one customer

  const Text GetTipoCli;            ///< "no" for no customer and Null
  const Text GetCodigo_Banco;       ///< "0" for no customer, Null and ""
  const Text ObtenerRazonSocial;    ///< legal name; "no" for Null
  const Text ObtenerCP;             ///< the production centre, whatever the name says
  const Text ObtenerHorario;        ///< "[ " and the opening hours; "no" for Null
  const Text ObtenerTexto;          ///< "{ " and the warning that documents take up; or "no"
  const Text ObtenerMailDoc;        ///< for documents; "no" for none
  const Text ObtenerMailDoc_Admin;  ///< the same, or the administration's where it is wanted
  const Text ObtenerRpt_Fac;        ///< report of invoices; "no" up to four characters
  const Text ObtenerRpt_Alb;        ///< of delivery notes
  const Text ObtenerRpt_dec;        ///< of declarations; "no" after any failure
  const Number ObtenerRiesgo;       ///< credit limit; 0 for Null

  // ---- Of a usable customer. Null raises 94.

  const Text GetSerie;        ///< "A" for no customer
  const Text GetLista;        ///< "PRC"
  const Text GetRefPortes;    ///< article of the carriage line; "0", also after any failure
  const Text GetFacturacion;  ///< word of the invoicing period; "Mensual"
  const Text GetCodigo_fac;   ///< who is billed; "0"

  // ---- Invoicing profile (clientes_facturacion.cpp)
  //
  // What a usable customer brings to a document. Outputs whose column is Null, and all of them
  // where there is no such customer, stay as they came, but where a member says more. Percentages
  // as 10 for 10 %; a bonus goes with the amount from which it is due, and nothing here decides
  // when that is.

  /// Whether the customer is there. Shows its warning, unless documents take that up.
  bool GetDatosFacturacion(Facturacion& datos) const;
  /// Shows the warning alone, of customers that are no longer in use too.
  void GetAviso(const Variant& id, ObjCn objCn = {}) const;

  /// Parameters of GetDatosFacturar, in their order.
  struct Facturar {
    Variant id = {};
    double dDto = 0;  ///< prompt payment
    std::string sBanco = {};
    double dBonificacion = 0;
    double dImpBonif = 0;
    double dBonificacion2 = 0;
    double dImpBonif2 = 0;
    double dBonificacion3 = 0;
    double dImpBonif3 = 0;
    std::string sFactura_A = {};
    std::string sFactura_B = {};
    std::string sFactura_C = {};
    double dIrpfCli = 0;
    double dGastos = 0;
    double dDtoRpt = 0;
    std::string sRefArt = {};  ///< article of the carriage line
    ObjCn objCn = {};
  };
  /// What an invoice takes of the customer.
  void GetDatosFacturar(Facturar& datos) const;
  /// The code as it is stored, and the payment method.
  void GetOtrosDatosFacturar(InOut<Variant> id, InOut<std::string> sPago, ObjCn objCn = {}) const;

  /// Parameters of GetDatosBonificar, in their order.
  struct Bonificar {
    Variant id = {};
    double dBonificacion = 0;
    double dImpBonif = 0;
    double dBonificacion2 = 0;
    double dImpBonif2 = 0;
    double dBonificacion3 = 0;
    double dImpBonif3 = 0;
    Variant bCondicion_1_SI = {};
    ObjCn objCn = {};
  };
  /// The three bonuses, each with the amount from which it is due.
  void GetDatosBonificar(Bonificar& datos) const;

  /// Parameters of GetDatosCabecera and GetDatosEmpresa, in their order.
  struct Cabecera {
    Variant id = {};
    std::string idTel = {};
    std::string sNif = {};
    std::string sNombre = {};
    std::string sEmpresa = {};
    std::string sDireccion = {};
    std::string sCp = {};
    std::string sPoblacion = {};
    std::string sProvincia = {};
    std::string sMail = {};  ///< of GetDatosEmpresa
    ObjCn objCn = {};
  };
  /// What the head of a document shows of a customer.
  void GetDatosCabecera(Cabecera& datos) const;
  /// The same with its mail address.
  void GetDatosEmpresa(Cabecera& datos) const;

  /// Parameters of GetAdministrativeCentres, in their order: code and name of the accounting
  /// office, the managing body, the processing unit and the proposing body.
  struct Centros {
    Variant id = {};
    std::string sOf_c_cod = {};
    std::string sOf_c_nom = {};
    std::string sOg_c_cod = {};
    std::string sOg_c_nom = {};
    std::string sUt_c_cod = {};
    std::string sUt_c_nom = {};
    std::string sOp_c_cod = {};
    std::string sOp_c_nom = {};
    ObjCn objCn = {};
  };
  /// The administrative centres that electronic invoices to public bodies name.
  void GetAdministrativeCentres(Centros& datos) const;

  /// Whether the customer, in use or not, has a line discount above 0; else it is 0. Nothing
  /// changes without a customer.
  bool GetDto(const Variant& id, InOut<double> dDtoRpt, ObjCn objCn = {}) const;
  /// Always true. 0 for Null.
  bool GetDtoRpt(const Variant& id, InOut<double> dDtoRpt, ObjCn objCn = {}) const;
  /// Withholding, and discount for prompt payment, of series A, B or C in either case; 0 for any
  /// other, for Null and without a customer. In use or not.
  double GetIrpfSerie(const Variant& id, std::string_view sSerie, ObjCn objCn = {}) const;
  /// The discount for prompt payment of a series, in percent; 0 as GetIrpfSerie says.
  double GetDtoSerie(const Variant& id, std::string_view sSerie, ObjCn objCn = {}) const;
  /// The codes of order, delivery note and invoice; `id` goes in, and comes back as it is stored.
  void GetDocumentos(InOut<Variant> id, InOut<std::string> sDocumento_P,
                     InOut<std::string> sDocumento_A, InOut<std::string> sDocumento_F,
                     ObjCn objCn = {}) const;
  /// Adds the codes of all customers of an invoicing period, in use or not; whether there were any.
  bool ObtenerClientesFacturar(InOut<std::vector<Variant>> cCollection, std::string_view sTipo,
                               ObjCn objCn = {}) const;

  // ---- Writing (clientes_escritura.cpp)

  /// Parameters of Insertar, in their order; Actualizar takes those as far as `sSerie`, and
  /// `objCn`.
  struct Alta {
    Variant vId = {};
    std::string sNombre = {};
    std::string sRazonSocial = {};
    std::string sNif = {};
    std::string sdir = {};
    std::string sCp = {};
    std::string sPob = {};
    std::string sProv = {};
    std::string stel = {};
    std::string sMov = {};
    std::string sEmail = {};
    std::string seMailDoc = {};
    bool bActivo = false;
    double dDescuento = 0;  ///< percent
    std::string sTarifa = {};
    std::string sSerie = {};
    std::string sConcepto = {};
    std::string stpcli = {};
    InOut<std::string> sLista = {};  ///< "" becomes "PRC"
    Variant dFecha = {};             ///< not looked at: a customer is registered today
    ObjCn objCn = {};
    std::string sExternalId = {};
  };
  /// Writes a new customer. Raises the integrity error for a code that is there.
  void Insertar(const Alta& alta) const;
  /// Rewrites a customer. A code that is not there is passed over.
  void Actualizar(const Alta& alta) const;
  /// Gives a customer another tariff letter. A code that is not there is passed over.
  void CambiarTarifa(const Variant& vId, std::string_view sTarifa, ObjCn cnnActive = {}) const;
  /// 0 takes the customer out of use; 1 and -1 bring it back and note the day. Any other raises the
  /// database's syntax error.
  void CambiarEstadoCliente(const Variant& vId, double bModo, ObjCn cnnActive = {}) const;
  /// Gives a customer an identifier in the outside system. A code that is not there is passed over.
  void ActualizarExternalId(std::string_view sId, std::string_view sExtId,
                            ObjCn cnnActive = {}) const;

  // ---- All customers at once (clientes_mantenimiento.cpp)

  /// The document type of invoices, of every customer.
  void ActualizarCabeceraFra(std::string_view sId, ObjCn cnnActive = {}) const;
  /// No customer is charged tax any more, nor has prices with tax.
  void ActualizaClientesExentosIVA(ObjCn cnnActive = {}) const;
  /// No customer has a report of its own for invoices any more.
  void Cancelar_report_Facturas(ObjCn cnnActive = {}) const;
  /// Two texts of every customer, in two statements.
  void Actualizar_Rs_La_3(std::string_view sRS, std::string_view sLA, ObjCn cnnActive = {}) const;
  /// Marks the customers that a report treats: by the word of a mode in the column Dto_Art, or for
  /// "informes_iso_11" in the column Planificar, between two dates as `iIndx` says. Clears the
  /// column first; a failure between leaves it cleared.
  void Actualizar_Param_Rpt(std::string_view ssql, ObjCn cnnActive = {},
                            const Variant& vFchIni = {}, const Variant& vFchFin = {},
                            std::int16_t iIndx = 0) const;
  /// Writes a customer again under its code with zeros on the left up to `mdigitos` characters;
  /// `bCopy` true (the name reads the other way round) removes the old row. In one transaction on
  /// `cnnActive`, which a failure rolls back. Raises 3021 for a customer that is not there.
  void Actualizar_A_Nuevo_Registro(std::string_view IdCliente, bool bCopy, std::int16_t mdigitos,
                                   ObjCn cnnActive = {}) const;

 private:
  static const ClassInfo kClassInfo;

  Statement modeStatement(std::string& word, const Variant& id) const override;
  void setDefaults(bool bDefVal) override;
  void writeGridPage(const GridColumns& clColfields, bool bDoclone, std::string_view sSelecSql,
                     bool bFilter) override {
    ToHtmlGrid({}, clColfields, bDoclone, sSelecSql, bFilter);
  }

  /// The condition of "bajas", "bajas60" and "bajas30", the whole statement of "347", or nothing.
  static Statement CondicionConsulta(std::string_view sModo);
  /// What joins texts in a statement: in this dialect the same on every engine, Null being "".
  static Statement::Constant OperadorConcatenar();
  Statement mixedSelection(bool ofCentre, const Variant& id) const;
  /// A field of the current row, or "".
  std::string currentText(std::string_view field) const;
  /// Fills party data; null where there is no usable customer. `more` columns are read beside them.
  RecordsetPtr party(Statement::Constant more, Cabecera& datos) const;
  /// The statement that writes a customer's row again under another code.
  Statement copyUnder(std::string_view code, Recordset& old) const;
  /// The first, second or third column of a row, for series A, B or C.
  double ofSeries(const Statement& statement, std::string_view sSerie, ObjCn objCn) const;
};

}  // namespace tavelor

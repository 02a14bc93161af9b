-- Customers: the master, what hangs from a customer by its code (addresses,
-- administrative centres, collaborators, comments) and the customer's ledger.
-- Main database.
--
-- Percentages, amounts and limits are DOUBLE and counters LONG: the frame's entry
-- checks and filters know those two numeric types.

-- One row per customer. No defaults on text and amounts: readers tell a column never
-- filled (Null) from an empty one and have their own answer for it.
CREATE TABLE Clientes (
  Codigo TEXT(20) NOT NULL,               -- digits by custom; the width in use is a counter setting
  Activo LONG DEFAULT 0,                  -- 0 inactive, -1 or 1 active, 2 not available
  Nombre TEXT(100),
  Razon_Social TEXT(100),
  Contacto TEXT(100),
  NIF TEXT(50),                           -- as typed, prefixes and dots included, until cleaned
  Direccion TEXT(255),
  Codigo_Postal TEXT(20),
  Poblacion TEXT(100),
  Provincia TEXT(100),
  Telefono TEXT(50),
  Telefono_2 TEXT(50),
  Movil TEXT(50),
  Fax TEXT(50),
  E_Mail TEXT(255),
  Http TEXT(255),
  Colegiado TEXT(50),
  Horario TEXT(255),
  Tarifa TEXT(5),                         -- tariff letter
  Serie TEXT(5),                          -- A, B or C
  Lista TEXT(20),                         -- price list
  Concepto TEXT(255),
  Transportista TEXT(20),
  Tipo_Factura_A TEXT(20),
  Tipo_Factura_B TEXT(20),
  Tipo_Factura_C TEXT(20),
  Documento_P TEXT(20),                   -- document type of orders
  Documento_A TEXT(20),                   -- of delivery notes
  Documento_F TEXT(20),                   -- of invoices
  Documento_E TEXT(20),
  Documento_T TEXT(20),
  Documento_R TEXT(20),
  Cta_Tesoreria TEXT(20),
  Cta_Contable TEXT(20),
  Cta_Contrapartida TEXT(20),
  IRPF DOUBLE,                            -- withholding %, series A
  IRPF_B DOUBLE,
  IRPF_C DOUBLE,
  Impuesto BIT NOT NULL DEFAULT 0,
  Impuesto_Incluido BIT NOT NULL DEFAULT 0,
  Recargo BIT NOT NULL DEFAULT 0,
  Divisa TEXT(20),
  Forma_Pago TEXT(20),
  Banco TEXT(20),
  Dia_Pago_1 LONG,                        -- day of the month
  Dia_Pago_2 LONG,
  Descuento DOUBLE,                       -- line discount %
  Descuento_pp DOUBLE,                    -- prompt payment %, series A
  Descuento_pp_B DOUBLE,
  Descuento_pp_C DOUBLE,
  Descuento_R DOUBLE,
  Bonificacion_1 DOUBLE,                  -- bonus % ...
  Condicion_1 DOUBLE,                     -- ... and its amount threshold
  Bonificacion_2 DOUBLE,
  Condicion_2 DOUBLE,
  Bonificacion_3 DOUBLE,
  Condicion_3 DOUBLE,
  Condicion_1_SI BIT,                     -- Null until somebody decides
  Riesgo DOUBLE,                          -- credit limit
  Facturar TEXT(20),                      -- invoicing period word
  codigo_fac TEXT(20),                    -- who is billed: empty, a customer, +1 or D
  Codigo_Portes TEXT(50),                 -- article of the carriage line
  Gastos DOUBLE,                          -- carriage amount
  Portes_Alb BIT NOT NULL DEFAULT 0,
  Portes_Imp BIT NOT NULL DEFAULT 0,
  Tipo_Cliente TEXT(50),
  Zona TEXT(50),
  Fecha DATETIME,                         -- registration
  Fecha_re DATETIME,                      -- last change to active
  Aviso BIT NOT NULL DEFAULT 0,
  Incorporar BIT NOT NULL DEFAULT 0,
  Texto_Aviso TEXT(255),                  -- text, not memo: the annual declaration groups by it
  E_Mail_doc TEXT(255),
  E_Mail_admin TEXT(255),
  UemlAdm BIT NOT NULL DEFAULT 0,         -- documents go to the administration mail
  [Password] TEXT(50),
  Rpt_Alb TEXT(255),                      -- up to four characters mean no report of its own
  Rpt_Fac TEXT(255),
  Rpt_Dec TEXT(255),
  Report TEXT(255),
  Fact_Papel BIT NOT NULL DEFAULT 0,
  Centro TEXT(50),
  Serie_As BIT NOT NULL DEFAULT 0,
  Bloqueo BIT,                            -- Null reads as not blocked
  ExternalID TEXT(50),
  ID_Fiscal TEXT(20),                     -- class word of NIF; Null or empty: not yet classified
  Dto_Art LONG DEFAULT 0,                 -- report mark: 0, 1 or -1
  Planificar LONG DEFAULT 0,              -- report mark: 0, 1 or -1
  Rs TEXT(255),
  La TEXT(255),
  Cod_Of_Contable TEXT(50),
  Nom_Of_Contable TEXT(255),
  Cod_Or_Gestor TEXT(50),
  Nom_Or_Gestor TEXT(255),
  Cod_Un_Tramit TEXT(50),
  Nom_Un_Tramit TEXT(255),
  Cod_Or_Propon TEXT(50),
  Nom_Or_Propon TEXT(255),
  CONSTRAINT PK_Clientes PRIMARY KEY (Codigo)
);
-- With all that a combo of customers shows: it is filled without a look at the rows.
CREATE INDEX IX_Clientes_Combo ON Clientes (Razon_Social, Codigo, Activo);
CREATE INDEX IX_Clientes_NIF ON Clientes (NIF);
CREATE INDEX IX_Clientes_ExternalID ON Clientes (ExternalID);
CREATE INDEX IX_Clientes_codigo_fac ON Clientes (codigo_fac);

-- Delivery addresses of a customer. Nothing keeps Predeterminada unique.
CREATE TABLE Clientes_Direcciones (
  ID LONG NOT NULL,
  Codigo TEXT(20),
  Nombre TEXT(100),
  Razon_Social TEXT(100),
  NIF TEXT(50),
  Direccion TEXT(255),
  Codigo_Postal TEXT(20),
  Poblacion TEXT(100),
  Provincia TEXT(100),
  Telefono TEXT(50),
  Telefono_2 TEXT(50),
  Fax TEXT(50),
  Movil TEXT(50),
  E_Mail TEXT(255),
  Http TEXT(255),
  Predeterminada BIT NOT NULL DEFAULT 0,
  Transportista TEXT(20),
  CONSTRAINT PK_Clientes_Direcciones PRIMARY KEY (ID)
);
CREATE INDEX IX_Clientes_Direcciones_Codigo ON Clientes_Direcciones (Codigo);

-- Administrative centres of a public customer, one a role.
CREATE TABLE Clientes_Centros (
  ID LONG NOT NULL,
  Codigo TEXT(20),
  CentreCode TEXT(50),
  Name TEXT(100),
  RoleTypeCode TEXT(20),
  Direccion TEXT(255),
  Codigo_Postal TEXT(20),
  Poblacion TEXT(100),
  Provincia TEXT(100),
  Telefono TEXT(50),
  E_Mail TEXT(255),
  CONSTRAINT PK_Clientes_Centros PRIMARY KEY (ID)
);
CREATE INDEX IX_Clientes_Centros_Codigo ON Clientes_Centros (Codigo, RoleTypeCode);

-- Collaborators of a clinic; found by name within the clinic.
CREATE TABLE Clientes_Colaboradores (
  Id LONG NOT NULL,
  Codigo TEXT(20),                        -- the clinic
  Nombre TEXT(100),
  Activo BIT NOT NULL DEFAULT 0,
  Colegiado TEXT(50),
  NIF TEXT(50),
  Direccion TEXT(255),
  Codigo_Postal TEXT(20),
  Poblacion TEXT(100),
  Provincia TEXT(100),
  Telefono TEXT(50),
  Descuento DOUBLE,
  Preferencias TEXT(255),
  Notas MEMO,
  CONSTRAINT PK_Clientes_Colaboradores PRIMARY KEY (Id)
);
CREATE INDEX IX_Clientes_Colaboradores_Codigo ON Clientes_Colaboradores (Codigo, Nombre);

-- One long comment per customer, in its row of Id 1. Rows of a higher Id are left over
-- from repeated entries and get folded into it.
CREATE TABLE Clientes_Comentarios (
  Id LONG NOT NULL,
  Codigo TEXT(20) NOT NULL,
  Comentarios MEMO,
  CONSTRAINT PK_Clientes_Comentarios PRIMARY KEY (Codigo, Id)
);
CREATE INDEX IX_Clientes_Comentarios_Id ON Clientes_Comentarios (Id);

-- Running account of a customer; every entry stores the balance after it, in the order
-- of Fecha, then Id.
CREATE TABLE Clientes_Apuntes_Contables (
  Id LONG NOT NULL,
  Serie TEXT(5) DEFAULT 'A',
  Codigo TEXT(20),
  Fecha DATETIME,
  Concepto TEXT(255),
  Debe_Haber TEXT(5) DEFAULT 'H',
  Debe DOUBLE,                            -- Null counts as 0
  Haber DOUBLE,
  Saldo DOUBLE DEFAULT 0,                 -- credit balances are positive
  Estado LONG,                            -- with Documento_E, the document the entry comes from
  Documento_E DOUBLE,                     -- document numbers outgrow 32 bits
  CONSTRAINT PK_Clientes_Apuntes_Contables PRIMARY KEY (Id)
);
-- With what a balance adds up: the sums before an entry are made without a look at the rows.
CREATE INDEX IX_Clientes_Apuntes_Contables_Saldo ON Clientes_Apuntes_Contables (Codigo, Fecha, Id, Debe, Haber);
CREATE INDEX IX_Clientes_Apuntes_Contables_Documento ON Clientes_Apuntes_Contables (Estado, Documento_E);

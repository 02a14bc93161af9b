-- Suppliers: the master, its comments and its ledger, in the main database.

-- Suppliers; those with Sub set are subcontractors. Activo is a number used as a flag.
CREATE TABLE Proveedores (
  Codigo TEXT(20) NOT NULL,
  Activo LONG DEFAULT 0,
  Nombre TEXT(100),
  Razon_Social TEXT(100),
  Contacto TEXT(100),
  NIF TEXT(20),
  Direccion TEXT(100),
  Codigo_Postal TEXT(10),
  Poblacion TEXT(50),
  Provincia TEXT(50),
  Telefono TEXT(30),
  Telefono_2 TEXT(30),
  Movil TEXT(30),
  Fax TEXT(30),
  E_Mail TEXT(100),
  Http TEXT(150),
  Cta_Tesoreria TEXT(20),
  Cta_Contable TEXT(20),
  Cta_Contrapartida TEXT(20),
  IRPF DOUBLE,
  Impuesto BIT NOT NULL DEFAULT 0,
  Recargo BIT NOT NULL DEFAULT 0,
  Divisa TEXT(20),
  Forma_Pago TEXT(20),
  Transportista TEXT(20),
  Banco TEXT(20),
  Descuento DOUBLE,
  Descuento_pp DOUBLE,
  Tarifa TEXT(5),
  Serie TEXT(5),
  Bonificacion_1 DOUBLE,
  Condicion_1 DOUBLE,
  Concepto TEXT(255),
  Tipo_Factura_A TEXT(20),
  Tipo_Factura_B TEXT(20),
  Tipo_Factura_C TEXT(20),
  Documento_P TEXT(20),
  Documento_A TEXT(20),
  Documento_F TEXT(20),
  Sub BIT NOT NULL DEFAULT 0,
  CONSTRAINT PK_Proveedores PRIMARY KEY (Codigo)
);
CREATE INDEX IX_Proveedores_Razon_Social ON Proveedores (Razon_Social);
CREATE INDEX IX_Proveedores_Cta_Contable ON Proveedores (Cta_Contable);

-- Comments of a supplier.
CREATE TABLE Proveedores_Comentarios (
  Id LONG NOT NULL,
  Codigo TEXT(20) NOT NULL,
  Comentarios MEMO,
  CONSTRAINT PK_Proveedores_Comentarios PRIMARY KEY (Codigo, Id)
);
CREATE INDEX IX_Proveedores_Comentarios_Id ON Proveedores_Comentarios (Id);

-- Running account of a supplier: each entry stores the balance after it. Amounts are fixed-point,
-- so that adding a movement and taking it off again gives the same balance.
CREATE TABLE Proveedores_Apuntes_Contables (
  Id LONG NOT NULL,
  Serie TEXT(5) DEFAULT 'A',
  Codigo TEXT(20),
  Fecha DATETIME,
  Concepto TEXT(255),
  Debe_Haber TEXT(5) DEFAULT 'H',
  Debe DOUBLE,                      -- Null counts as 0
  Haber DOUBLE,
  Saldo DOUBLE DEFAULT 0,
  Estado LONG,
  Documento_E DOUBLE,
  CONSTRAINT PK_Proveedores_Apuntes_Contables PRIMARY KEY (Id)
);
-- With what a balance adds up: the sums before an entry are made without a look at the rows.
CREATE INDEX IX_Proveedores_Apuntes_Saldo ON Proveedores_Apuntes_Contables (Codigo, Fecha, Id, Debe, Haber);
CREATE INDEX IX_Proveedores_Apuntes_Documento ON Proveedores_Apuntes_Contables (Documento_E, Estado);
-- A delivery is known by its supplier and the number of its note, which its entry tells.
CREATE INDEX IX_Proveedores_Apuntes_Concepto ON Proveedores_Apuntes_Contables (Codigo, Concepto);

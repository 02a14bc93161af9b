-- Reference data: banks, taxes, currencies, payment methods, issuers, document layouts and the
-- small code tables. All of it lives in the main database; the import database holds a copy of
-- Familias with the same columns.

-- Bank accounts of the owner. Quick creations make codes of five digits, or more behind 99999, and
-- leave a blank behind them.
CREATE TABLE Bancos (
  Codigo TEXT(10) NOT NULL,
  Banco TEXT(100),
  Entidad TEXT(10),
  Oficina TEXT(10),
  DC TEXT(4),
  CC TEXT(20),
  IBAN TEXT(50),
  Swift TEXT(20),
  Direccion_Banco TEXT(100),
  Codigo_Postal_Banco TEXT(10),
  Poblacion_Banco TEXT(50),
  Provincia_Banco TEXT(50),
  Telefono_Banco TEXT(30),
  Fax_Banco TEXT(30),
  E_Mail TEXT(100),
  Http TEXT(150),
  Predeterminada BIT NOT NULL DEFAULT 0,
  CONSTRAINT PK_Bancos PRIMARY KEY (Codigo)
);

-- Tax rates. A rate without surcharge keeps Null in Recargo.
CREATE TABLE TIPOS_IMPUESTO (
  Codigo TEXT(10) NOT NULL,
  Descripcion TEXT(50),
  Impuesto DOUBLE DEFAULT 0,
  Recargo DOUBLE,
  Predeterminada BIT NOT NULL DEFAULT 0,
  CONSTRAINT PK_TIPOS_IMPUESTO PRIMARY KEY (Codigo)
);

-- Currencies, with their value in pesetas and in euros.
CREATE TABLE Divisas (
  codigo TEXT(10) NOT NULL,
  Descripcion TEXT(50),
  Fecha DATETIME,
  Valor DOUBLE,
  Predeterminada BIT NOT NULL DEFAULT 0,
  Valor_Euro DOUBLE,
  CONSTRAINT PK_Divisas PRIMARY KEY (codigo)
);

-- Payment methods: instalments, days, accounts and what a sale paid so leaves behind.
CREATE TABLE Formas_Pago (
  codigo TEXT(10) NOT NULL,
  Descripcion TEXT(50),
  Numero_Plazos LONG,
  Dias_Plazos LONG,
  Dias1 LONG,
  Apunte BIT NOT NULL DEFAULT 0,
  Recibo BIT NOT NULL DEFAULT 0,
  Contado BIT NOT NULL DEFAULT 0,
  Predeterminada BIT NOT NULL DEFAULT 0,
  Cta_Contable TEXT(20),
  Cta_Tesoreria TEXT(20),
  No_IRPF BIT NOT NULL DEFAULT 0,
  Porcent5 DOUBLE,
  Tipo TEXT(10),
  CONSTRAINT PK_Formas_Pago PRIMARY KEY (codigo)
);

-- Company data and logo behind a document type.
CREATE TABLE Tipos_Documento (
  Codigo TEXT(10) NOT NULL,
  Descripcion TEXT(50),
  Predeterminada BIT NOT NULL DEFAULT 0,
  Nombre TEXT(100),
  Razon_Social TEXT(100),
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
  Pie_Documento MEMO,
  Comentarios MEMO,
  Logotipo LONGBINARY,
  Licencia TEXT(255),
  Col_Asoc TEXT(50),
  Fabricado TEXT(100),
  ID_Fiscal TEXT(10),
  CONSTRAINT PK_Tipos_Documento PRIMARY KEY (Codigo)
);

-- Layout flags and texts of an invoice type.
CREATE TABLE Tipos_Factura (
  Codigo TEXT(10) NOT NULL,
  Descripcion TEXT(50),
  Predeterminada BIT NOT NULL DEFAULT 0,
  Totalizada BIT NOT NULL DEFAULT 0,
  Texto_Totalizada TEXT(255),
  Desglosada BIT NOT NULL DEFAULT 0,
  Texto TEXT(255),
  Renumerada BIT NOT NULL DEFAULT 0,
  Referencia BIT NOT NULL DEFAULT 0,
  Texto_Referencia TEXT(255),
  Pedido BIT NOT NULL DEFAULT 0,
  Texto_pedido TEXT(255),
  Albaran BIT NOT NULL DEFAULT 0,
  Texto_Albaran TEXT(255),
  Fecha BIT NOT NULL DEFAULT 0,
  Texto_Fecha TEXT(255),
  Total_Albaran BIT NOT NULL DEFAULT 0,
  Texto_Total_Albaran TEXT(255),
  CONSTRAINT PK_Tipos_Factura PRIMARY KEY (Codigo)
);

-- Issuers of documents, by number, with a logo.
CREATE TABLE Emisores (
  Id LONG NOT NULL,
  Descripcion TEXT(100),
  Logotipo LONGBINARY,
  CONSTRAINT PK_Emisores PRIMARY KEY (Id)
);

-- Warehouses.
CREATE TABLE Almacenes (
  Codigo TEXT(10) NOT NULL,
  Descripcion TEXT(50),
  CONSTRAINT PK_Almacenes PRIMARY KEY (Codigo)
);

-- Tills.
CREATE TABLE Cajas (
  Codigo TEXT(10) NOT NULL,
  Descripcion TEXT(50),
  CONSTRAINT PK_Cajas PRIMARY KEY (Codigo)
);

-- Customer types.
CREATE TABLE Tipos_Cliente (
  codigo TEXT(20) NOT NULL,
  Descripcion TEXT(50),
  Importe CURRENCY DEFAULT 0,
  CONSTRAINT PK_Tipos_Cliente PRIMARY KEY (codigo)
);

-- Sections of the shop.
CREATE TABLE Secciones (
  Codigo TEXT(10) NOT NULL,
  Descripcion TEXT(50),
  CONSTRAINT PK_Secciones PRIMARY KEY (Codigo)
);

-- Article families. An inserted family names no flag, and is meant to be usable at once.
CREATE TABLE Familias (
  Codigo TEXT(10) NOT NULL,
  Descripcion TEXT(100),
  Activo BIT NOT NULL DEFAULT -1,
  CONSTRAINT PK_Familias PRIMARY KEY (Codigo)
);

-- Incident types.
CREATE TABLE Incidencias (
  Codigo TEXT(10) NOT NULL,
  Descripcion TEXT(100),
  CONSTRAINT PK_Incidencias PRIMARY KEY (Codigo)
);

-- Routes, which are also phases of work. The code is a number and the next one is proposed from
-- the counter.
CREATE TABLE Rutas (
  Id COUNTER NOT NULL,
  Codigo LONG NOT NULL,
  Descripcion TEXT(100),
  Path TEXT(255),
  CONSTRAINT PK_Rutas PRIMARY KEY (Id)
);
CREATE UNIQUE INDEX IX_Rutas_Codigo ON Rutas (Codigo);

-- Carriers, with their commercial conditions.
CREATE TABLE Transportistas (
  Codigo TEXT(10) NOT NULL,
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
  Activo BIT NOT NULL DEFAULT 0,
  Forma_Pago TEXT(10),
  Divisa TEXT(10),
  Impuesto BIT NOT NULL DEFAULT 0,
  IRPF DOUBLE DEFAULT 0,
  Descuento DOUBLE DEFAULT 0,
  Descuento_pp DOUBLE DEFAULT 0,
  Predeterminada BIT NOT NULL DEFAULT 0,
  CONSTRAINT PK_Transportistas PRIMARY KEY (Codigo)
);

-- Contacts. The full view shows no Activo, so a new contact has to be active from the start.
CREATE TABLE Contactos (
  Codigo TEXT(10) NOT NULL,
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
  ExternalID TEXT(50),
  Activo BIT NOT NULL DEFAULT -1,
  Predeterminada BIT NOT NULL DEFAULT 0,
  CONSTRAINT PK_Contactos PRIMARY KEY (Codigo)
);

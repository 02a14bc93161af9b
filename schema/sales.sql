-- Tickets of the till with their lines, tax summaries, headers and comments, live and history ("H").
-- Database: documents (selector 3).
-- A live table and its history have the same columns in the same order: rows move between them whole.

-- Tickets that no closing has moved away yet. The number is unique across the series.
-- Numbers of documents are DOUBLE: the next number is refused when its text is longer than the size
-- of the column, and the four bytes of a LONG would stop the tills at 9999.
CREATE TABLE Tickets (
  Numero DOUBLE NOT NULL,
  Serie TEXT(5),
  Fecha DATETIME,                   -- a plain date: sums by day compare it with whole day numbers
  Codigo TEXT(20),                  -- customer
  Razon_Social TEXT(150),
  Tarifa TEXT(10),
  Almacen TEXT(20),
  Referencia TEXT(100),
  Transportista TEXT(100),
  Divisa TEXT(20),
  Valor_Divisa DOUBLE,
  Total_Divisa DOUBLE,
  Forma_Pago TEXT(50),
  Descuento DOUBLE,                 -- percent
  Descuento_PP DOUBLE,              -- percent, prompt payment
  Base CURRENCY,
  Gastos CURRENCY,
  Impuesto LONG,                    -- tax code
  Importe_Impuestos CURRENCY,
  Recargo DOUBLE,                   -- equivalence surcharge, percent
  Importe_recargo CURRENCY,
  IRPF DOUBLE,                      -- withholding, percent
  Importe_IRPF CURRENCY,
  Total CURRENCY,
  Estado LONG DEFAULT 0,            -- 0 unpaid, 1 partly paid, 2 settled
  Doc_E DOUBLE DEFAULT 0,           -- order document of the ticket, 0 none
  Facturado LONG DEFAULT 0,         -- kind of the document that invoiced it, 0 not invoiced
  Doc_F DOUBLE DEFAULT 0,           -- its number, 0 none
  Impreso BIT NOT NULL DEFAULT 0,
  CTA_Contable TEXT(20),
  CTA_Contrapartida TEXT(20),
  Concepto TEXT(255),
  Documento_P TEXT(20),             -- document type
  Entrega CURRENCY DEFAULT 0,       -- amount delivered
  Cambio CURRENCY DEFAULT 0,        -- change given
  Pagado BIT NOT NULL DEFAULT 0,
  Caja TEXT(20),
  Empleado TEXT(20),
  Impuesto_Incluido BIT NOT NULL DEFAULT 0,
  Contabilizado LONG DEFAULT 0,
  Cierre LONG DEFAULT 0,            -- closing that took the ticket, 0 open
  CONSTRAINT PK_Tickets PRIMARY KEY (Numero)
);
CREATE INDEX IX_Tickets_Serie ON Tickets (Serie, Numero);
CREATE INDEX IX_Tickets_Caja ON Tickets (Caja, Fecha);
CREATE INDEX IX_Tickets_Codigo ON Tickets (Codigo);
CREATE INDEX IX_Tickets_Referencia ON Tickets (Referencia);

-- Tickets of past closings.
CREATE TABLE HTickets (
  Numero DOUBLE NOT NULL,
  Serie TEXT(5),
  Fecha DATETIME,
  Codigo TEXT(20),
  Razon_Social TEXT(150),
  Tarifa TEXT(10),
  Almacen TEXT(20),
  Referencia TEXT(100),
  Transportista TEXT(100),
  Divisa TEXT(20),
  Valor_Divisa DOUBLE,
  Total_Divisa DOUBLE,
  Forma_Pago TEXT(50),
  Descuento DOUBLE,
  Descuento_PP DOUBLE,
  Base CURRENCY,
  Gastos CURRENCY,
  Impuesto LONG,
  Importe_Impuestos CURRENCY,
  Recargo DOUBLE,
  Importe_recargo CURRENCY,
  IRPF DOUBLE,
  Importe_IRPF CURRENCY,
  Total CURRENCY,
  Estado LONG DEFAULT 0,
  Doc_E DOUBLE DEFAULT 0,
  Facturado LONG DEFAULT 0,
  Doc_F DOUBLE DEFAULT 0,
  Impreso BIT NOT NULL DEFAULT 0,
  CTA_Contable TEXT(20),
  CTA_Contrapartida TEXT(20),
  Concepto TEXT(255),
  Documento_P TEXT(20),
  Entrega CURRENCY DEFAULT 0,
  Cambio CURRENCY DEFAULT 0,
  Pagado BIT NOT NULL DEFAULT 0,
  Caja TEXT(20),
  Empleado TEXT(20),
  Impuesto_Incluido BIT NOT NULL DEFAULT 0,
  Contabilizado LONG DEFAULT 0,
  Cierre LONG DEFAULT 0,
  CONSTRAINT PK_HTickets PRIMARY KEY (Numero)
);
CREATE INDEX IX_HTickets_Serie ON HTickets (Serie, Numero);
CREATE INDEX IX_HTickets_Caja ON HTickets (Caja);
CREATE INDEX IX_HTickets_Codigo ON HTickets (Codigo);
CREATE INDEX IX_HTickets_Cierre ON HTickets (Cierre);
CREATE INDEX IX_HTickets_Fecha ON HTickets (Fecha);
CREATE INDEX IX_HTickets_Referencia ON HTickets (Referencia);

-- Lines of the live tickets. ID is no key: lines get their id late, two tills may give the same one,
-- and lines that come back from history bring the id they had there. A line without ticket is an
-- orphan, dropped with the next ticket whose lines are deleted.
CREATE TABLE Tickets_Lineas (
  Codigo TEXT(50),                  -- article
  Descripcion TEXT(255),
  Cantidad DOUBLE,
  Precio DOUBLE,
  DTO DOUBLE,                       -- percent
  IVA DOUBLE,                       -- percent
  Importe DOUBLE,                   -- tax inside it or not, as the ticket's Impuesto_Incluido says
  Lote TEXT(50),
  Numero DOUBLE,                    -- ticket
  ID LONG,
  Familia TEXT(50),
  Cierre LONG DEFAULT 0
);
CREATE INDEX IX_Tickets_Lineas_Numero ON Tickets_Lineas (Numero);
CREATE INDEX IX_Tickets_Lineas_ID ON Tickets_Lineas (ID);

-- Lines of past closings; they are numbered anew on arrival.
CREATE TABLE HTickets_Lineas (
  Codigo TEXT(50),
  Descripcion TEXT(255),
  Cantidad DOUBLE,
  Precio DOUBLE,
  DTO DOUBLE,
  IVA DOUBLE,
  Importe DOUBLE,
  Lote TEXT(50),
  Numero DOUBLE,
  ID COUNTER NOT NULL,
  Familia TEXT(50),
  Cierre LONG DEFAULT 0,
  CONSTRAINT PK_HTickets_Lineas PRIMARY KEY (ID)
);
CREATE INDEX IX_HTickets_Lineas_Numero ON HTickets_Lineas (Numero);
CREATE INDEX IX_HTickets_Lineas_Cierre ON HTickets_Lineas (Cierre);

-- Tax summary of live tickets, one row a ticket and rate. Nothing here fills it; the history move clears it.
CREATE TABLE Tickets_Lineas_Impuestos (
  Numero DOUBLE,                    -- ticket
  IVA DOUBLE,                       -- percent
  Base CURRENCY,
  Importe CURRENCY,                 -- tax
  Cierre LONG DEFAULT 0
);
CREATE INDEX IX_Tickets_Lineas_Impuestos_Cierre ON Tickets_Lineas_Impuestos (Cierre);

-- Tax summary of past closings.
CREATE TABLE HTickets_Lineas_Impuestos (
  Numero DOUBLE,
  IVA DOUBLE,
  Base CURRENCY,
  Importe CURRENCY,
  Cierre LONG DEFAULT 0
);
CREATE INDEX IX_HTickets_Lineas_Impuestos_Cierre ON HTickets_Lineas_Impuestos (Cierre);

-- Customer data as typed at the till. Id is no key, for the reason told at the lines.
CREATE TABLE Tickets_Cabecera (
  Id LONG,
  Codigo DOUBLE,                    -- ticket
  Nombre TEXT(100),
  Razon_Social TEXT(150),
  NIF TEXT(30),
  Direccion TEXT(200),
  Codigo_Postal TEXT(20),
  Poblacion TEXT(100),
  Provincia TEXT(100),
  Telefono TEXT(50),
  Cierre LONG DEFAULT 0
);
CREATE INDEX IX_Tickets_Cabecera_Id ON Tickets_Cabecera (Id);
CREATE INDEX IX_Tickets_Cabecera_Codigo ON Tickets_Cabecera (Codigo);

-- Headers of past closings: the customers that the till has known.
CREATE TABLE HTickets_Cabecera (
  Id COUNTER NOT NULL,
  Codigo DOUBLE,
  Nombre TEXT(100),
  Razon_Social TEXT(150),
  NIF TEXT(30),
  Direccion TEXT(200),
  Codigo_Postal TEXT(20),
  Poblacion TEXT(100),
  Provincia TEXT(100),
  Telefono TEXT(50),
  Cierre LONG DEFAULT 0,
  CONSTRAINT PK_HTickets_Cabecera PRIMARY KEY (Id)
);
CREATE INDEX IX_HTickets_Cabecera_Telefono ON HTickets_Cabecera (Telefono);
CREATE INDEX IX_HTickets_Cabecera_Razon_Social ON HTickets_Cabecera (Razon_Social);
CREATE INDEX IX_HTickets_Cabecera_Cierre ON HTickets_Cabecera (Cierre);

-- Free comments of the live tickets. Id is no key, for the reason told at the lines.
CREATE TABLE Tickets_Comentarios (
  Id LONG,
  Codigo DOUBLE,                    -- ticket
  Comentarios MEMO,
  Cierre LONG DEFAULT 0
);
CREATE INDEX IX_Tickets_Comentarios_Id ON Tickets_Comentarios (Id);
CREATE INDEX IX_Tickets_Comentarios_Codigo ON Tickets_Comentarios (Codigo);

-- Comments of past closings.
CREATE TABLE HTickets_Comentarios (
  Id COUNTER NOT NULL,
  Codigo DOUBLE,
  Comentarios MEMO,
  Cierre LONG DEFAULT 0,
  CONSTRAINT PK_HTickets_Comentarios PRIMARY KEY (Id)
);
CREATE INDEX IX_HTickets_Comentarios_Cierre ON HTickets_Comentarios (Cierre);

-- How a ticket was paid that was paid in parts, wherever the ticket lies; none for all others. The
-- parts add up to its total, and its own Forma_Pago is that of one of them.
CREATE TABLE Tickets_Pagos (
  Numero DOUBLE NOT NULL,           -- ticket
  Linea LONG NOT NULL,              -- from 1
  Forma_Pago TEXT(50),
  Importe CURRENCY,
  CONSTRAINT PK_Tickets_Pagos PRIMARY KEY (Numero, Linea)
);

-- What a till has put aside to go on with later, at any till. One that was taken stays for some days,
-- so that whoever took it and lost the answer can ask again.
CREATE TABLE Tickets_Espera (
  Id COUNTER NOT NULL,
  Clave TEXT(50) NOT NULL,          -- whoever holds the same twice has it held once
  Caja TEXT(20),
  Empleado TEXT(20),
  Etiqueta TEXT(100),               -- by which people find it
  Momento DATETIME,
  Contenido MEMO,                   -- as the till sent it
  Tomado DATETIME,                  -- Null until somebody takes it
  Tomado_Por TEXT(50),              -- the taker's own word, by which the same one is known again
  CONSTRAINT PK_Tickets_Espera PRIMARY KEY (Id)
);
CREATE UNIQUE INDEX IX_Tickets_Espera_Clave ON Tickets_Espera (Clave);

-- Closings of the tills with their sums by family, tax rate and payment method.
-- Database: main (selector 1).

-- One row a closing; the number runs over all tills. Amounts are stored as the caller gives them, unrounded.
CREATE TABLE Cierres (
  Codigo LONG NOT NULL,
  Serie TEXT(5),
  Fecha DATETIME,
  Descripcion TEXT(150),
  Caja TEXT(20),
  Empleado TEXT(20),
  Entrega DOUBLE,                   -- money that came in
  Cambio DOUBLE,                    -- change given
  Efectivo DOUBLE,                  -- sales paid at the till
  Credito DOUBLE,                   -- sales on invoice or delivery note
  Base DOUBLE,
  Importe_Impuestos DOUBLE,
  Importe_Recargo DOUBLE,
  Total DOUBLE,
  Saldo_Inicio DOUBLE,
  Saldo_Final DOUBLE,               -- start of the till's next closing
  Facturado LONG DEFAULT 0,         -- kind of the document that invoiced it, 0 not invoiced
  Doc_F DOUBLE DEFAULT 0,           -- its number, 0 none
  CONSTRAINT PK_Cierres PRIMARY KEY (Codigo)
);
-- The balance of a till: its greatest number up to a day, read from the end without the rows.
CREATE INDEX IX_Cierres_Caja_Codigo ON Cierres (Caja, Codigo, Fecha);
-- A day's closings, and by them its families, taxes and payments.
CREATE INDEX IX_Cierres_Fecha ON Cierres (Fecha);

-- Sales of a closing by article family.
CREATE TABLE Cierres_Familias (
  Cierre LONG,
  Familia TEXT(50),
  Importe DOUBLE
);
CREATE INDEX IX_Cierres_Familias_Cierre ON Cierres_Familias (Cierre);

-- Bases and tax of a closing by rate.
CREATE TABLE Cierres_Lineas_Impuestos (
  Cierre LONG,
  Iva DOUBLE,                       -- percent
  Base DOUBLE,
  Importe DOUBLE
);
CREATE INDEX IX_Cierres_Lineas_Impuestos_Cierre ON Cierres_Lineas_Impuestos (Cierre);

-- Sales of a closing by payment method.
CREATE TABLE Cierres_Formas_Pago (
  Cierre LONG,
  Forma_Pago TEXT(50),
  Importe DOUBLE
);
CREATE INDEX IX_Cierres_Formas_Pago_Cierre ON Cierres_Formas_Pago (Cierre);

-- What was counted in a till's drawer when it was closed; none for a closing that nobody counted.
CREATE TABLE Cierres_Arqueos (
  Cierre LONG NOT NULL,
  Caja TEXT(20),
  Esperado CURRENCY,                -- the till's balance, and what earlier counts missed or had over
  Contado CURRENCY,
  Diferencia CURRENCY,              -- counted less expected: negative where money is missing
  Empleado TEXT(20),                -- who counted
  Momento DATETIME,
  CONSTRAINT PK_Cierres_Arqueos PRIMARY KEY (Cierre)
);
CREATE INDEX IX_Cierres_Arqueos_Caja ON Cierres_Arqueos (Caja);

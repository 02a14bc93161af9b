-- Tables of the main database that the application above writes and the classes only look at:
-- the delivery notes and invoices behind the customer selections, and the work phases.

-- Delivery notes, by customer.
CREATE TABLE Albaranes (
  Numero DOUBLE NOT NULL,
  Serie TEXT(5),
  Fecha DATETIME,
  Codigo TEXT(20),
  Total CURRENCY DEFAULT 0,
  CONSTRAINT PK_Albaranes PRIMARY KEY (Numero)
);
CREATE INDEX IX_Albaranes_Codigo_Fecha ON Albaranes (Codigo, Fecha);

-- Invoices, by customer. The rectifying series R counts with A in the annual declaration.
CREATE TABLE Facturas (
  Numero DOUBLE NOT NULL,
  Serie TEXT(5),
  Fecha DATETIME,
  Codigo TEXT(20),
  Total CURRENCY DEFAULT 0,
  CONSTRAINT PK_Facturas PRIMARY KEY (Numero)
);
CREATE INDEX IX_Facturas_Codigo_Fecha ON Facturas (Codigo, Fecha);

-- Work phases, each done in one section.
CREATE TABLE Fases (
  Codigo TEXT(10) NOT NULL,
  Descripcion TEXT(100),
  Seccion TEXT(10),
  CONSTRAINT PK_Fases PRIMARY KEY (Codigo)
);

-- Settings of the workshop, by name.
CREATE TABLE Fabricacion_Configuracion (
  Codigo TEXT(50) NOT NULL,
  Descripcion TEXT(255),
  Valor TEXT(255),
  CONSTRAINT PK_Fabricacion_Configuracion PRIMARY KEY (Codigo)
);

-- Where stock lies besides the article's own total: warehouses, lots and the ledger of movements.
-- Main database (selector 1); the import database (5) holds the same tables.
-- Keys named Id are taken from the greatest one plus one by the classes: they are no auto-numbers.

-- Stock of an article in a warehouse. One row a pair, kept so by the members and not by a key.
CREATE TABLE Articulos_Almacenes (
  Id LONG NOT NULL,
  Codigo TEXT(20),
  Almacen TEXT(10),
  Cantidad DOUBLE DEFAULT 0,
  Pendiente DOUBLE DEFAULT 0,                -- on order for this warehouse
  CONSTRAINT PK_Articulos_Almacenes PRIMARY KEY (Id)
);
CREATE INDEX IX_Articulos_Almacenes_Codigo ON Articulos_Almacenes (Codigo, Almacen);

-- Stock of an article by lot. Activo: 0 no; -1 yes in a file database, 1 in a server; 2 set aside.
CREATE TABLE Articulos_Lotes (
  Id LONG NOT NULL,
  Codigo TEXT(20),
  Lote TEXT(50),
  Existencia DOUBLE DEFAULT 0,
  Activo LONG DEFAULT 0,
  Caduca DATETIME,                           -- expiry
  Stock BIT NOT NULL DEFAULT 0,              -- a sale takes from this lot
  CONSTRAINT PK_Articulos_Lotes PRIMARY KEY (Id)
);
CREATE INDEX IX_Articulos_Lotes_Codigo ON Articulos_Lotes (Codigo, Lote);
CREATE INDEX IX_Articulos_Lotes_Lote ON Articulos_Lotes (Lote);

-- One row a movement; the sign is Movimiento (0 entry, 1 exit), Cantidad is as given.
-- Doc_E with Estado names the document that owns the row.
CREATE TABLE Articulos_Movimientos_Almacen (
  Id LONG NOT NULL,
  Fecha DATETIME,
  Hora DATETIME,
  Almacen TEXT(10),
  Codigo TEXT(20),
  Lote TEXT(50),
  Cantidad DOUBLE DEFAULT 0,
  Precio CURRENCY DEFAULT 0,
  Referencia TEXT(50),
  Movimiento LONG DEFAULT 0,
  Seccion TEXT(10),
  Empleado TEXT(10),
  Estado LONG DEFAULT 0,
  Doc_E DOUBLE,
  Cod_ID TEXT(50),                           -- line within the document
  Numero LONG,                               -- only asked for by the test of a free key
  CONSTRAINT PK_Articulos_Movimientos_Almacen PRIMARY KEY (Id)
);
CREATE INDEX IX_Articulos_Movimientos_Almacen_Codigo ON Articulos_Movimientos_Almacen (Codigo, Fecha);
CREATE INDEX IX_Articulos_Movimientos_Almacen_Doc_E ON Articulos_Movimientos_Almacen (Doc_E, Estado);

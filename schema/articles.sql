-- The article master and what hangs from it: tariffs, prices, barcodes, components, comments.
-- Main database (selector 1); the import (5) and further (0) databases hold the same tables.
-- Keys named Id are taken from the greatest one plus one by the classes: they are no auto-numbers.

-- Everything that can be sold or bought: goods, services, packages, internal items.
-- Precio_Coste, Precio_Medio and the texts may be Null: their readers test it.
CREATE TABLE Articulos (
  Codigo TEXT(20) NOT NULL,
  Lista TEXT(20),                            -- PRC default list, TDS every list
  Referencia TEXT(20),                       -- second code, kept unique by the callers
  Descripcion TEXT(255),
  Idioma_1 TEXT(255),
  Idioma_2 TEXT(255),
  Idioma_3 TEXT(255),
  Idioma_4 TEXT(255),
  Idioma_5 TEXT(255),
  Idioma_6 TEXT(255),
  Seccion TEXT(10),
  Familia TEXT(10),
  Tarifa_A CURRENCY DEFAULT 0,
  Tarifa_B CURRENCY DEFAULT 0,
  Tarifa_C CURRENCY DEFAULT 0,
  Impuesto TEXT(10),
  Precio_Coste CURRENCY,                     -- last purchase cost
  Precio_Medio CURRENCY,                     -- average cost
  Descuento BIT NOT NULL DEFAULT 0,          -- admits a discount
  Descuento_D DOUBLE DEFAULT 0,              -- fixed discount, percent
  Existencia DOUBLE DEFAULT 0,               -- stock units, all warehouses
  Unidad_Stock TEXT(20),
  Minimo DOUBLE DEFAULT 0,
  Maximo DOUBLE DEFAULT 0,
  Pendiente DOUBLE DEFAULT 0,                -- on order
  Pendiente_s DOUBLE DEFAULT 0,              -- pending delivery
  Activo BIT NOT NULL DEFAULT 0,
  Unidad_Compra TEXT(20),
  Medida_Compra DOUBLE DEFAULT 1,            -- stock units in one purchase unit
  Actualizar_Stock BIT NOT NULL DEFAULT 0,   -- stock is kept
  Lotes BIT NOT NULL DEFAULT 0,              -- stock is kept by lot
  Articulo_Compuesto BIT NOT NULL DEFAULT 0, -- package of components
  Interno BIT NOT NULL DEFAULT 0,            -- hidden from sale lists
  Valor_Interno DOUBLE,                      -- points; Null counts as 1 on a line
  Empleado TEXT(10),
  Merma DOUBLE,                              -- waste, percent
  Margen DOUBLE DEFAULT 0,
  Margen_b DOUBLE DEFAULT 0,
  Margen_c DOUBLE DEFAULT 0,
  No_sumar BIT NOT NULL DEFAULT 0,
  Repetir BIT NOT NULL DEFAULT 0,
  Fecha DATETIME,
  Fabricante TEXT(100),
  Planificar BIT NOT NULL DEFAULT 0,
  Restar_Stock BIT NOT NULL DEFAULT 0,       -- a sale takes stock off
  Precio_Venta CURRENCY DEFAULT 0,
  CONSTRAINT PK_Articulos PRIMARY KEY (Codigo)
);
-- Not unique: an article may carry a code that a later article gets as its own. With the list, so
-- that a reference is not looked for among all articles of its list.
CREATE INDEX IX_Articulos_Referencia_Lista ON Articulos (Referencia, Lista);
CREATE INDEX IX_Articulos_Descripcion ON Articulos (Descripcion);
-- The greatest code of a family is read at the end of its range.
CREATE INDEX IX_Articulos_Familia ON Articulos (Familia, Codigo);
-- The test "code in list, or any article of TDS" is run once an article in an import.
CREATE INDEX IX_Articulos_Lista ON Articulos (Lista);

-- Sale tariffs D to T (with Ñ); A, B and C are columns of the article.
CREATE TABLE Articulos_Tarifas (
  Codigo TEXT(20) NOT NULL,
  Nombre TEXT(50),
  Tarifa TEXT(10) NOT NULL,
  Precio CURRENCY DEFAULT 0,
  CONSTRAINT PK_Articulos_Tarifas PRIMARY KEY (Codigo, Tarifa)
);
CREATE INDEX IX_Articulos_Tarifas_Tarifa ON Articulos_Tarifas (Tarifa);

-- What a supplier charges for an article.
CREATE TABLE Articulos_Precios_Compras (
  Id LONG NOT NULL,
  Codigo TEXT(20),
  Codigo_Proveedor TEXT(30),                 -- the supplier's own reference
  Proveedor TEXT(20),
  Precio CURRENCY,
  CONSTRAINT PK_Articulos_Precios_Compras PRIMARY KEY (Id)
);
CREATE INDEX IX_Articulos_Precios_Compras_Codigo ON Articulos_Precios_Compras (Codigo, Proveedor);
CREATE INDEX IX_Articulos_Precios_Compras_Proveedor ON Articulos_Precios_Compras (Proveedor, Codigo_Proveedor);

-- What a customer pays for an article or a family; a price of 0,01 means a free article.
CREATE TABLE Articulos_Precios_Ventas (
  Id LONG NOT NULL,
  Cliente TEXT(20),
  Codigo TEXT(20),                           -- 0 in the row of a family
  Descripcion TEXT(255),
  Familia TEXT(10),                          -- 0 in the row of an article
  Precio CURRENCY,
  Dto BIT,                                   -- grants the percentage; Null is no
  Porcentaje SINGLE,
  Lista TEXT(20),
  Fecha DATETIME,                            -- last day of the offer; Null never ends
  CONSTRAINT PK_Articulos_Precios_Ventas PRIMARY KEY (Id)
);
CREATE INDEX IX_Articulos_Precios_Ventas_Cliente ON Articulos_Precios_Ventas (Cliente, Codigo);
CREATE INDEX IX_Articulos_Precios_Ventas_Familia ON Articulos_Precios_Ventas (Cliente, Familia);
CREATE INDEX IX_Articulos_Precios_Ventas_Codigo ON Articulos_Precios_Ventas (Codigo);

CREATE TABLE Articulos_Codigos_barras (
  Id LONG NOT NULL,
  Codigo TEXT(20),
  Codigo_barras TEXT(50),
  Precio CURRENCY,
  CONSTRAINT PK_Articulos_Codigos_barras PRIMARY KEY (Id)
);
CREATE INDEX IX_Articulos_Codigos_barras_Codigo_barras ON Articulos_Codigos_barras (Codigo_barras);
CREATE INDEX IX_Articulos_Codigos_barras_Codigo ON Articulos_Codigos_barras (Codigo);

-- What a package is made of, one level deep.
CREATE TABLE Articulos_Componentes (
  Id LONG NOT NULL,
  Codigo TEXT(20),                           -- the package
  Articulo TEXT(20),                         -- the component
  Cantidad DOUBLE DEFAULT 0,                 -- of the component in one package
  CONSTRAINT PK_Articulos_Componentes PRIMARY KEY (Id)
);
CREATE INDEX IX_Articulos_Componentes_Codigo ON Articulos_Componentes (Codigo, Articulo);

CREATE TABLE Articulos_Comentarios (
  Id LONG NOT NULL,
  Codigo TEXT(20),
  Comentarios MEMO,
  CONSTRAINT PK_Articulos_Comentarios PRIMARY KEY (Id)
);
CREATE INDEX IX_Articulos_Comentarios_Codigo ON Articulos_Comentarios (Codigo);

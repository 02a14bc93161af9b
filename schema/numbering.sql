-- Numbering: one row of counters for each accounting period, in the main database.

-- The last number used by each document family and series, the digit lengths of the master codes
-- and the format of the period's codes. A Null counter has never been used in its period.
CREATE TABLE Numeradores (
  Codigo TEXT(3) NOT NULL,
  Periodo TEXT(4),                  -- the year; Null in rows older than periods
  Descripcion TEXT(50),
  No_Renumerar BIT NOT NULL DEFAULT 0,
  Digitos_Articulos LONG,           -- 0 means not fixed
  Digitos_Clientes LONG,
  Digitos_Proveedores LONG,
  Pedido_a DOUBLE,
  Pedido_b DOUBLE,
  Pedido_c DOUBLE,
  Factura_Prov_a DOUBLE,
  Factura_Prov_b DOUBLE,
  Factura_Prov_c DOUBLE,
  Pedido_Cli_a DOUBLE,
  Pedido_Cli_b DOUBLE,
  Pedido_Cli_c DOUBLE,
  Albaran_a DOUBLE,
  Albaran_b DOUBLE,
  Albaran_c DOUBLE,
  Factura_a DOUBLE,
  Factura_b DOUBLE,
  Factura_c DOUBLE,
  Orden_a DOUBLE,
  Orden_b DOUBLE,
  Orden_c DOUBLE,
  Ticket_a DOUBLE,
  Ticket_b DOUBLE,
  Ticket_c DOUBLE,
  Presupuesto_a DOUBLE,
  Presupuesto_b DOUBLE,
  Presupuesto_c DOUBLE,
  Activar_Lote_Uso BIT NOT NULL DEFAULT 0,
  Letra TEXT(5),
  Año BIT DEFAULT 0,                -- Null reads as false in the three parts of the code format
  Mes BIT DEFAULT 0,
  Contador BIT DEFAULT 0,
  Factura_r DOUBLE,
  Alb_Num_Simple BIT NOT NULL DEFAULT 0,
  CONSTRAINT PK_Numeradores PRIMARY KEY (Codigo)
);

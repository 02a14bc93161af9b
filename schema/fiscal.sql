-- The records that the law wants of invoices, and the events of systems that do not send.
-- Database: documents (selector 3): a record is stored with its ticket, or neither is.
-- Rows are added and never changed, but for those of Fiscal_Cadenas and Fiscal_Series, which tell
-- where chains and series end, and of Fiscal_Remisiones and Fiscal_Envios, which tell what the tax
-- office has answered. Whoever changes another one breaks the chain, and `tavelor fiscal check`
-- names the record.

-- A chain for each taxpayer and installation number. Its row is the chain's end: who adds a record
-- reads it and writes it in the transaction that adds.
CREATE TABLE Fiscal_Cadenas (
  Codigo LONG NOT NULL,             -- from 1
  NIF TEXT(9) NOT NULL,
  Instalacion TEXT(100) NOT NULL,
  Envia BIT NOT NULL DEFAULT 0,     -- whether it sent when its last record or event was added
  Registros LONG NOT NULL DEFAULT 0,  -- how many records it has
  Serie_Numero TEXT(60),            -- of the invoice of the last one
  Fecha_Expedicion DATETIME,        -- the same
  Momento TEXT(25),                 -- when the last one was made
  Huella TEXT(64),                  -- its hash
  Sello TEXT(64),                   -- its seal
  Eventos LONG NOT NULL DEFAULT 0,  -- how many events it has
  Evento_Tipo TEXT(2),              -- kind of the last one
  Evento_Momento TEXT(25),
  Evento_Huella TEXT(64),
  Evento_Sello TEXT(64),
  CONSTRAINT PK_Fiscal_Cadenas PRIMARY KEY (Codigo)
);
CREATE UNIQUE INDEX IX_Fiscal_Cadenas_NIF ON Fiscal_Cadenas (NIF, Instalacion);

-- The counters of the series of invoices, of a taxpayer whatever the chain. Numbers have no gaps: they
-- are taken with the record.
CREATE TABLE Fiscal_Series (
  NIF TEXT(9) NOT NULL,
  Serie TEXT(20) NOT NULL,
  Ultimo LONG NOT NULL DEFAULT 0,   -- last number that was given
  CONSTRAINT PK_Fiscal_Series PRIMARY KEY (NIF, Serie)
);

-- The records. The columns before Registro repeat what stands in it, to look for.
CREATE TABLE Fiscal_Registros (
  Cadena LONG NOT NULL,
  Posicion LONG NOT NULL,           -- in the chain, from 1 without gaps
  Tipo TEXT(2) NOT NULL,            -- F1 to F3, R1 to R5; AN is a cancellation
  Serie TEXT(20),                   -- of the invoice; Null of a cancellation
  Numero LONG,                      -- in its series
  Serie_Numero TEXT(60) NOT NULL,   -- as the invoice bears it
  Fecha_Expedicion DATETIME NOT NULL,
  Cuota CURRENCY,                   -- tax and surcharge
  Total CURRENCY,
  Momento TEXT(25) NOT NULL,        -- when the record was made
  Huella TEXT(64) NOT NULL,         -- its hash, as the law wants it
  Sello TEXT(64) NOT NULL,          -- hash of the seal before it and of all of Registro
  Ticket DOUBLE,                    -- the ticket that it was stored with, Null for none
  Registro MEMO NOT NULL,           -- the record itself, XML
  CONSTRAINT PK_Fiscal_Registros PRIMARY KEY (Cadena, Posicion)
);
CREATE INDEX IX_Fiscal_Registros_Serie_Numero ON Fiscal_Registros (Serie_Numero);
CREATE INDEX IX_Fiscal_Registros_Fecha ON Fiscal_Registros (Fecha_Expedicion);
CREATE INDEX IX_Fiscal_Registros_Ticket ON Fiscal_Registros (Ticket);

-- What a record does to an earlier invoice.
CREATE TABLE Fiscal_Relaciones (
  Cadena LONG NOT NULL,
  Posicion LONG NOT NULL,           -- of the record that does it
  Tipo TEXT(1) NOT NULL,            -- R rectifies, S takes the place of it, A cancels
  NIF TEXT(9) NOT NULL,             -- who issued the earlier invoice
  Serie_Numero TEXT(60) NOT NULL    -- its number
);
CREATE INDEX IX_Fiscal_Relaciones_Serie_Numero ON Fiscal_Relaciones (Serie_Numero, NIF);
CREATE INDEX IX_Fiscal_Relaciones_Posicion ON Fiscal_Relaciones (Cadena, Posicion);

-- The log of a system that does not send, chained as its records are.
CREATE TABLE Fiscal_Eventos (
  Cadena LONG NOT NULL,
  Posicion LONG NOT NULL,           -- from 1 without gaps
  Tipo TEXT(2) NOT NULL,            -- 01 to 10, 90
  Momento TEXT(25) NOT NULL,
  Huella TEXT(64) NOT NULL,
  Sello TEXT(64) NOT NULL,
  Registros LONG NOT NULL,          -- how many records the chain had then
  Evento MEMO NOT NULL,             -- the event itself, XML
  CONSTRAINT PK_Fiscal_Eventos PRIMARY KEY (Cadena, Posicion)
);

-- The signatures of what a system that does not send has made, which a sweep adds behind the sales.
-- One is the element <ds:Signature>, and the record or event with it as the last child is what was
-- signed. A record without a row has none yet.
CREATE TABLE Fiscal_Firmas (
  Cadena LONG NOT NULL,
  Posicion LONG NOT NULL,           -- of the record
  Firma MEMO NOT NULL,
  CONSTRAINT PK_Fiscal_Firmas PRIMARY KEY (Cadena, Posicion)
);
CREATE TABLE Fiscal_Firmas_Eventos (
  Cadena LONG NOT NULL,
  Posicion LONG NOT NULL,           -- of the event
  Firma MEMO NOT NULL,
  CONSTRAINT PK_Fiscal_Firmas_Eventos PRIMARY KEY (Cadena, Posicion)
);

-- How a chain is sent, a row each from its first message on. Times are seconds since the beginning
-- of 1970 at Greenwich, so that the tills' clocks agree on them. No sale reads or writes it.
CREATE TABLE Fiscal_Remisiones (
  Cadena LONG NOT NULL,
  Mensajes LONG NOT NULL DEFAULT 0,   -- how many were begun; who begins one counts it first, alone
  Hasta LONG NOT NULL DEFAULT 0,      -- up to this record nothing waits
  Espera LONG NOT NULL DEFAULT 60,    -- seconds between two messages, as the tax office last told
  Siguiente DOUBLE NOT NULL DEFAULT 0,  -- time before which no message may go, unless many wait
  Tope LONG NOT NULL DEFAULT 1000,    -- most records of the next message
  Fallos LONG NOT NULL DEFAULT 0,     -- messages without an answer since the last answer
  Motivo MEMO,                        -- why the last one had none, or not one for each record
  Momento TEXT(25),                   -- when the last one was begun
  Remitente TEXT(100),                -- who has a message under way, Null for nobody
  Plazo DOUBLE NOT NULL DEFAULT 0,    -- time by which that one is answered, or dead
  CONSTRAINT PK_Fiscal_Remisiones PRIMARY KEY (Cadena)
);

-- What became of a record that was sent; one without a row waits.
CREATE TABLE Fiscal_Envios (
  Cadena LONG NOT NULL,
  Posicion LONG NOT NULL,
  Estado TEXT(1) NOT NULL,          -- E sent, no answer yet; S the same, its message was refused whole;
                                    -- C accepted, A accepted with errors, I refused, D refused, as the
                                    -- office has a record of that invoice that was not sent from here
  Codigo LONG,                      -- of the answer's error
  Texto MEMO,                       -- of the answer, or why there is none
  CSV TEXT(40),                     -- of the answer
  Mensaje LONG NOT NULL,            -- the last message that it was in
  Veces LONG NOT NULL,              -- how many messages it was in
  Momento TEXT(25) NOT NULL,        -- of the answer; of the message while there is none
  Corregido LONG,                   -- the record that corrects it, Null for none
  CONSTRAINT PK_Fiscal_Envios PRIMARY KEY (Cadena, Posicion)
);
CREATE INDEX IX_Fiscal_Envios_Mensaje ON Fiscal_Envios (Cadena, Mensaje);
CREATE INDEX IX_Fiscal_Envios_Estado ON Fiscal_Envios (Estado, Cadena, Posicion);

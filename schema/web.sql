-- What `tavelor serve` keeps, in the main database: who may sign in, and what was changed by whom.

-- Employees who may sign in. Huella is the argon2id hash of the PIN.
CREATE TABLE Web_Pines (
  Empleado TEXT(10) NOT NULL,
  Huella TEXT(200) NOT NULL,
  Rol TEXT(50) NOT NULL,
  CONSTRAINT PK_Web_Pines PRIMARY KEY (Empleado)
);

-- Wrong tries, of whatever code was typed, and until when no other is taken.
CREATE TABLE Web_Intentos (
  Empleado TEXT(50) NOT NULL,
  Fallos LONG NOT NULL DEFAULT 0,
  Fecha DATETIME,
  Bloqueado DATETIME,
  CONSTRAINT PK_Web_Intentos PRIMARY KEY (Empleado)
);

-- Roles of the shop's own, and those that come with the program where they are to differ.
CREATE TABLE Web_Roles (
  Rol TEXT(50) NOT NULL,
  Derechos MEMO,
  CONSTRAINT PK_Web_Roles PRIMARY KEY (Rol)
);

-- Who is signed in. Huella is the hash of what the browser keeps.
CREATE TABLE Web_Sesiones (
  Huella TEXT(64) NOT NULL,
  Empleado TEXT(10) NOT NULL,
  Inicio DATETIME NOT NULL,
  Uso DATETIME NOT NULL,
  CONSTRAINT PK_Web_Sesiones PRIMARY KEY (Huella)
);
CREATE INDEX IX_Web_Sesiones_Empleado ON Web_Sesiones (Empleado);

-- Keys of other programs. Huella is the hash of the key.
CREATE TABLE Web_Claves (
  Nombre TEXT(50) NOT NULL,
  Huella TEXT(64) NOT NULL,
  Derechos MEMO,
  Fecha DATETIME,
  CONSTRAINT PK_Web_Claves PRIMARY KEY (Nombre)
);
CREATE INDEX IX_Web_Claves_Huella ON Web_Claves (Huella);

-- Every change: who, when, what, from where.
CREATE TABLE Web_Registro (
  Id COUNTER NOT NULL,
  Fecha DATETIME NOT NULL,
  Empleado TEXT(10),
  Programa TEXT(50),
  Metodo TEXT(10),
  Ruta TEXT(255),
  Estado LONG,
  Direccion TEXT(255),
  Detalle TEXT(255),
  CONSTRAINT PK_Web_Registro PRIMARY KEY (Id)
);
CREATE INDEX IX_Web_Registro_Fecha ON Web_Registro (Fecha);

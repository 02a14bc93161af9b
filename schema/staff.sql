-- Staff and agenda: employees, their points by work phase, and appointments, in the main database.

-- Employees.
CREATE TABLE Empleados (
  Codigo TEXT(10) NOT NULL,
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
  Activo BIT NOT NULL DEFAULT 0,
  IRPF DOUBLE,
  Comision DOUBLE,
  Impuesto BIT NOT NULL DEFAULT 0,
  Categoria TEXT(50),
  Documento TEXT(10),
  Notas MEMO,
  Codigo_Fase TEXT(10),
  NSS TEXT(30),
  Fecha_Nacimiento DATETIME,
  Fecha_Alta DATETIME,
  Fecha_Baja DATETIME,
  IBAN TEXT(50),
  Colegiado TEXT(20),
  CONSTRAINT PK_Empleados PRIMARY KEY (Codigo)
);

-- Points or value that an employee earns by section and work phase. A row may lack its phase.
CREATE TABLE Empleados_Puntos (
  Id LONG NOT NULL,
  Empleado TEXT(10),
  Seccion TEXT(10),
  Fase TEXT(10),
  Valor DOUBLE,
  [Max] DOUBLE,
  CONSTRAINT PK_Empleados_Puntos PRIMARY KEY (Id)
);
CREATE INDEX IX_Empleados_Puntos_Seccion ON Empleados_Puntos (Empleado, Seccion);
CREATE INDEX IX_Empleados_Puntos_Fase ON Empleados_Puntos (Empleado, Fase);

-- Appointments. Estado is empty, Presente, Anula or Fin; Doc_f is the order behind the appointment.
CREATE TABLE Citas (
  Id LONG NOT NULL,
  Fecha DATETIME,
  Hora DATETIME,
  Codigo TEXT(20),
  Cliente TEXT(100),
  Descripcion TEXT(255),
  Codigo_e TEXT(10),
  Empleado TEXT(100),
  Box TEXT(50),
  Tipo TEXT(50),
  Estado TEXT(10),
  Doc_f DOUBLE,
  CONSTRAINT PK_Citas PRIMARY KEY (Id)
);
CREATE INDEX IX_Citas_Fecha ON Citas (Fecha);
CREATE INDEX IX_Citas_Doc_f ON Citas (Doc_f);

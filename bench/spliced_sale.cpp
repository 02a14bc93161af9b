// SPDX-License-Identifier: MIT
// A sale as the classes do it: every value printed and spliced.
#include "bench/spliced_sale.hpp"

#include <algorithm>

#include <fmt/format.h>

#include "tavelor/platform/locale.hpp"
#include "tavelor/platform/number_text.hpp"
#include "tavelor/services/data_session.hpp"

namespace tavelor::bench {

Sale saleOf(std::size_t turn, Dice& dice) {
  Sale sale{static_cast<double>(turn),
            fmt::format("{:05}", dice.below(1000)),
            Date(46000 + static_cast<double>(turn % 300)),
            0,
            {}};
  for (SaleLine& line : sale.lines) {
    const auto quantity = static_cast<double>(1 + dice.below(9));
    const double price = static_cast<double>(dice.below(10'000)) / 100;
    line = {fmt::format("A{:05}", dice.below(kSaleArticles)), dice.text(), quantity, price,
            quantity * price};
    sale.total += line.amount;
  }
  return sale;
}

const char* const kSaleTables =
    "CREATE TABLE Ventas (Numero DOUBLE NOT NULL, Serie TEXT(5), Fecha DATETIME, Codigo TEXT(20), "
    "Razon_Social TEXT(150), Tarifa TEXT(10), Almacen TEXT(20), Divisa TEXT(20), Forma_Pago "
    "TEXT(50), Descuento DOUBLE, Base CURRENCY, Importe_Impuestos CURRENCY, Total CURRENCY, Estado "
    "LONG DEFAULT 0, Impreso BIT NOT NULL DEFAULT 0, Caja TEXT(20), Empleado TEXT(20), CONSTRAINT "
    "PK_Ventas PRIMARY KEY (Numero));"
    "CREATE INDEX IX_Ventas_Caja ON Ventas (Caja, Fecha);"
    "CREATE TABLE Ventas_Lineas (Documento DOUBLE, Linea LONG, Codigo TEXT(50), Descripcion "
    "TEXT(255), Cantidad DOUBLE, Precio CURRENCY, Importe CURRENCY, Impuesto DOUBLE, Almacen "
    "TEXT(20));"
    "CREATE INDEX IX_Ventas_Lineas ON Ventas_Lineas (Documento);"
    "CREATE TABLE Existencias (Codigo TEXT(50) NOT NULL, Existencia DOUBLE DEFAULT 0, "
    "Actualizar_Stock BIT NOT NULL DEFAULT 0, CONSTRAINT PK_Existencias PRIMARY KEY (Codigo));"
    "CREATE TABLE Movimientos (Id LONG NOT NULL, Fecha DATETIME, Hora DATETIME, Almacen TEXT(10), "
    "Codigo TEXT(50), Cantidad DOUBLE DEFAULT 0, Precio CURRENCY DEFAULT 0, Movimiento SHORT "
    "DEFAULT 0, Documento DOUBLE, CONSTRAINT PK_Movimientos PRIMARY KEY (Id));"
    "CREATE INDEX IX_Movimientos_Codigo ON Movimientos (Codigo, Fecha);"
    "CREATE INDEX IX_Movimientos_Documento ON Movimientos (Documento);"
    "CREATE TABLE Contadores (Codigo TEXT(3) NOT NULL, Ticket_a DOUBLE, CONSTRAINT PK_Contadores "
    "PRIMARY KEY (Codigo));";

void SaleBySplicing::begin() {
  if (!connection_) connection_ = DataSession().OpenConnection(1);
  connection_->BeginTrans();
}

void SaleBySplicing::run(const Statement& statement) {
  DataSession().Execute(1, statement, connection_);
}

void SaleBySplicing::sell(const Sale& sale) {
  const std::string number = sqlNumber(sale.number);
  begin();
  writeTicket(sale, number);
  int order = 0;
  for (const SaleLine& line : sale.lines) {
    writeLine(line, number, ++order);
    takeStock(line);
    writeMovement(sale, line, number);
  }
  Statement counter("UPDATE Contadores SET Ticket_a = ");
  counter << spliced(number) << " WHERE Codigo = '" << spliced("1") << "'";
  run(counter);
  connection_->CommitTrans();
}

void SaleBySplicing::sellNext(Sale sale) {
  // In one order, so that no two tills wait for each other.
  std::sort(sale.lines.begin(), sale.lines.end(),
            [](const SaleLine& a, const SaleLine& b) { return a.article < b.article; });
  begin();
  for (const SaleLine& line : sale.lines) takeStock(line);
  run(Statement("UPDATE Contadores SET Ticket_a = Ticket_a + 1 WHERE Codigo = '1'"));
  const Statement counter("SELECT Ticket_a FROM Contadores WHERE Codigo = '1'");
  sale.number =
      connection_->firstValue(counter, "Ticket_a").value().toDouble(*connection_->locale());
  const std::string number = sqlNumber(sale.number);
  writeTicket(sale, number);
  int order = 0;
  for (const SaleLine& line : sale.lines) {
    writeLine(line, number, ++order);
    writeMovement(sale, line, number);
  }
  connection_->CommitTrans();
}

void SaleBySplicing::writeTicket(const Sale& sale, const std::string& number) {
  Statement ticket(
      "INSERT INTO Ventas (Numero, Serie, Fecha, Codigo, Razon_Social, Tarifa, Almacen, Divisa, "
      "Forma_Pago, Descuento, Base, Importe_Impuestos, Total, Caja, Empleado) VALUES (");
  ticket << spliced(number) << ", '" << spliced("a") << "', "
         << spliced(DataSession().DateLiteral(1, Variant(sale.date))) << ", '"
         << spliced(sale.customer) << "', '" << spliced("CLIENTE CONTADO") << "', '"
         << spliced("01") << "', '" << spliced("00") << "', '" << spliced("EURO") << "', '"
         << spliced("CONTADO") << "', " << spliced(sqlNumber(0)) << ", "
         << spliced(sqlNumber(sale.total)) << ", " << spliced(sqlNumber(sale.total * 0.21)) << ", "
         << spliced(sqlNumber(sale.total * 1.21)) << ", '" << spliced("CAJA1") << "', '"
         << spliced("0001") << "')";
  run(ticket);
}

void SaleBySplicing::writeLine(const SaleLine& line, const std::string& number, int order) {
  Statement detail(
      "INSERT INTO Ventas_Lineas (Documento, Linea, Codigo, Descripcion, Cantidad, Precio, "
      "Importe, Impuesto, Almacen) VALUES (");
  detail << spliced(number) << ", " << spliced(std::to_string(order)) << ", '"
         << spliced(line.article) << "', '" << spliced(line.description) << "', "
         << spliced(sqlNumber(line.quantity)) << ", " << spliced(sqlNumber(line.price)) << ", "
         << spliced(sqlNumber(line.amount)) << ", " << spliced(sqlNumber(21)) << ", '"
         << spliced("00") << "')";
  run(detail);
}

void SaleBySplicing::takeStock(const SaleLine& line) {
  Statement stock("UPDATE  Existencias SET Existencia = Existencia + ");
  stock << spliced(sqlNumber(-line.quantity)) << " WHERE(Codigo ='" << spliced(line.article)
        << "' and Actualizar_Stock <> 0)";
  run(stock);
}

void SaleBySplicing::writeMovement(const Sale& sale, const SaleLine& line,
                                   const std::string& number) {
  Statement movement(
      "INSERT INTO Movimientos (Id, Fecha, Hora, Almacen, Codigo, Cantidad, Precio, "
      "Movimiento, Documento) VALUES (");
  movement << spliced(std::to_string(++movements_)) << ", "
           << spliced(DataSession().DateLiteral(1, Variant(sale.date))) << ", "
           << spliced(DataSession().TimeLiteral(1, Variant(kSaleTime))) << ", '" << spliced("00")
           << "', '" << spliced(line.article) << "', " << spliced(sqlNumber(line.quantity)) << ", "
           << spliced(sqlNumber(line.price)) << ", " << spliced("1") << ", " << spliced(number)
           << ")";
  run(movement);
}

double SaleBySplicing::sold(BenchShop& shop) {
  const auto number = [&](const char* statement) {
    return shop.open(statement)->Field(0).Value().toDouble(*shop.installation().locale());
  };
  return number("SELECT COUNT(*) AS n FROM Ventas_Lineas") +
         number("SELECT SUM(Cantidad) AS n FROM Movimientos");
}

}  // namespace tavelor::bench

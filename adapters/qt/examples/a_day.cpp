// SPDX-License-Identifier: MIT
// A small day through models: a shop opens, prices are set in a grid, it sells, takes back, closes
// and reconciles, and each time the models show what has become of it.
#include <QtCore/QCoreApplication>
#include <QtCore/QStringList>
#include <iostream>

#include "tavelor/articles/articulos.hpp"
#include "tavelor/flows/issuer.hpp"
#include "tavelor/flows/reconciliation.hpp"
#include "tavelor/flows/seed.hpp"
#include "tavelor/flows/shop.hpp"
#include "tavelor/platform/error.hpp"
#include "tavelor/qt/record_class_model.hpp"
#include "tavelor/qt/values.hpp"
#include "tavelor/sales/tickets.hpp"
#include "tavelor/services/apartment.hpp"
#include "tavelor/services/clock.hpp"
#include "tavelor/services/installation.hpp"
#include "tavelor/services/recordset/recordset.hpp"

namespace {

using tavelor::flows::Reconciliation;
using tavelor::qt::RecordClassModel;
using tavelor::qt::RecordsetModel;

/// What a view would show of some columns.
void show(const char* title, const RecordsetModel& model, const QStringList& columns) {
  std::cout << "== " << title << '\n';
  for (int row = 0; row < model.rowCount(); ++row) {
    std::cout << model.headerData(row, Qt::Vertical).toString().toStdString();
    for (const QString& column : columns) {
      std::cout << "  " << model.index(row, model.columnOf(column)).data().toString().toStdString();
    }
    std::cout << '\n';
  }
}

tavelor::flows::SaleLine line(tavelor::flows::Shop& shop, const char* article, double quantity) {
  return shop.price({.article = article, .quantity = quantity});
}

}  // namespace

int main(int count, char** arguments) {
  const QCoreApplication application(count, arguments);
  try {
    tavelor::Apartment apartment(tavelor::Installation::create("shop"));
    const tavelor::Date day = tavelor::Date::of(2026, 11, 20);
    apartment.clock().fix(day);
    tavelor::flows::seedCatalogues();
    tavelor::flows::setIssuer({.name = "Colmado Rius", .fiscalNumber = "12345678Z"});
    tavelor::flows::Shop shop;
    shop.openTills({"01"});
    shop.recover();

    // [rows]
    tavelor::clsArticulos articles;
    articles.IniciaRs("todos");
    RecordClassModel grid(articles, "todos");
    QObject::connect(&grid, &RecordsetModel::failed, [](const tavelor::qt::Failure& failure) {
      std::cout << "refused: " << failure.text.toStdString() << '\n';
    });
    // [rows]
    const auto put = [&](int row, const char* column, const QVariant& value) {
      return grid.setData(grid.index(row, grid.columnOf(column)), value);
    };
    const QStringList shown{"Código", "Descripción", "Tarifa_A", "Impuesto", "Existencia"};
    const char* const codes[] = {"PAN", "CAFE"};
    const char* const names[] = {"Barra de pan", "Café molido"};
    const char* const prices[] = {"1,10", "2,75"};
    for (int row = 0; row < 2; ++row) {
      grid.insertRow(row);
      put(row, "Código", codes[row]);
      put(row, "Descripción", names[row]);
      put(row, "Tarifa_A", prices[row]);
      put(row, "Impuesto", row == 0 ? "4" : "10");
      put(row, "Activo", true);
      put(row, "Control", true);
      put(row, "Restar_Stock", true);
    }
    put(1, "Tarifa_A", "dos con setenta");
    show("Articles, to be written", grid, shown);
    grid.submitAll();
    show("Articles", grid, shown);

    std::vector<tavelor::flows::Sale> meant;
    tavelor::flows::Sale sale;
    sale.reference = "V0001";
    sale.till = "01";
    sale.day = day;
    sale.time = "10:32";
    sale.payment = "1";
    sale.delivered = 10;
    sale.lines = {line(shop, "PAN", 3), line(shop, "CAFE", 1)};
    const double ticket = shop.sell(sale).value();
    meant.push_back(sale);
    sale.reference = "V0002";
    sale.time = "11:05";
    sale.lines = {line(shop, "CAFE", 2)};
    shop.sell(sale);
    meant.push_back(sale);

    sale.reference = "V0003";
    sale.till = "99";
    sale.lines.front().quantity = 0;
    try {
      shop.sell(sale);
    } catch (const tavelor::flows::RefusedSale& refused) {
      for (const auto& fault : refused.faults()) {
        std::cout << "line " << fault.line << ": " << fault.reason << '\n';
      }
    }
    shop.takeBack({.ticket = ticket, .till = "01", .day = day, .lines = {{1, 1}}});
    tavelor::flows::Sale back = meant.front();
    back.reference = "back";
    back.lines.resize(1);
    back.lines.front().quantity = -1;
    meant.push_back(back);

    tavelor::ClsTickets tickets;
    tickets.IniciaRs("caja", "01");
    RecordClassModel sold(tickets, "caja");
    sold.sort(sold.columnOf("Ticket"));
    sold.setColumnFormat("Total", "#,##0.00");
    show("Tickets at the till", sold, {"Ticket", "Fecha", "Referencia", "Total"});

    const tavelor::flows::Closing closing = shop.close("01", day).value();
    sold.recordset()->Requery();
    show("Tickets at the till, closed", sold, {"Ticket", "Total"});

    tickets.IniciaRs("ticketscierre", closing.number);
    sold.load();
    sold.sort(sold.columnOf("Ticket"), Qt::DescendingOrder);
    sold.setColumnFormat("Importe", "#,##0.00");
    show("Tickets of the closing", sold, {"Ticket", "Fecha", "Referencia", "Importe"});

    articles.Requery("todos");
    grid.setFilter("Existencia < -1");
    show("Articles of which more than one is gone", grid, shown);

    Reconciliation found;
    for (const auto& each : meant) found.expect(each);
    found.compare();
    std::cout << "Reconciled: " << found.total(Reconciliation::kHistory).tickets << " tickets, "
              << found.total(Reconciliation::kClosings).cents << " cents, "
              << found.differences().size() << " differences\n";
    return found.differences().empty() ? 0 : 1;
  } catch (const tavelor::Error& error) {
    std::cerr << error.what() << '\n';
    return 1;
  }
}

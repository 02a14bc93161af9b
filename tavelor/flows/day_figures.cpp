// SPDX-License-Identifier: MIT
// The figures of some days. The statements add up, so that three months of lines never lie in
// memory.
#include "tavelor/flows/day_figures.hpp"

#include <algorithm>
#include <cmath>
#include <optional>
#include <string_view>
#include <unordered_map>

#include "tavelor/flows/issuer.hpp"
#include "tavelor/frame/class_info.hpp"
#include "tavelor/frame/rows.hpp"
#include "tavelor/platform/error.hpp"
#include "tavelor/platform/number_text.hpp"
#include "tavelor/platform/quotes.hpp"
#include "tavelor/platform/statement.hpp"
#include "tavelor/services/data_session.hpp"

namespace tavelor::flows {

namespace {

constexpr double kHalfACent = 0.005;
constexpr int kHoursOfADay = 24;

using Names = std::unordered_map<std::string, std::string>;

Names namesOf(Statement::Constant statement) {
  Names names;
  for (Rows rows(selector::kMain, Statement(statement)); rows.hasRow(); rows.next()) {
    names.emplace(rows.text("Codigo"), rows.text("Descripcion"));
  }
  return names;
}

/// Largest first, by the cent: equal money keeps the order of the codes.
bool isMore(double a, double b) {
  constexpr double kCents = 100;
  return std::round(a * kCents) > std::round(b * kCents);
}

class Gatherer {
 public:
  Gatherer(Date first, Date last) {
    figures_.first = first;
    figures_.last = last;
    from_ = session_.DateLiteral(selector::kMain, first);
    before_ = session_.DateLiteral(selector::kMain, Date(last.days() + 1));
  }

  PageFigures gather() {
    figures_.shop = issuer().name;
    countTickets();
    readHours();
    readDays();
    readArticles();
    readReturns();
    figures_.families =
        shares("Familia", "Cierres_Familias", namesOf("SELECT Codigo, Descripcion FROM Familias"));
    figures_.payments = shares("Forma_Pago", "Cierres_Formas_Pago",
                               namesOf("SELECT Codigo, Descripcion FROM Formas_Pago"));
    readTaxes();
    readClosings();
    return std::move(figures_);
  }

 private:
  /// " WHERE table.Fecha >= .. AND table.Fecha < ..": a closing may have a time behind its day.
  Statement inTheDays(Statement::Constant table) const {
    Statement condition(" WHERE ");
    condition << table << ".Fecha >= " << spliced(from_) << " AND " << table << ".Fecha < "
              << spliced(before_);
    return condition;
  }

  Takings takings(Statement::Constant table) const {
    Statement statement("SELECT Count(*) AS Cuantos, Sum(Total) AS Importe FROM ");
    statement << table << inTheDays(table);
    const Rows rows(selector::kDocuments, statement);
    return {rows.whole("Cuantos"), rows.number("Importe")};
  }

  void countTickets() {
    figures_.all = takings("HTickets");
    figures_.open = takings("Tickets");
    Statement statement("SELECT Count(*) AS Cuantas, Sum(Cantidad) AS Unidades");
    statement << kLines << inTheDays("HTickets");
    const Rows rows(selector::kDocuments, statement);
    figures_.lines = rows.whole("Cuantas");
    figures_.units = rows.number("Unidades");
  }

  void readHours() {
    Statement statement(
        "SELECT Val(Left(Concepto, 2)) AS Hora, Count(*) AS Cuantos, Sum(Total) AS Importe "
        "FROM HTickets");
    statement << inTheDays("HTickets")
              << " AND (Concepto Like '[0-2]#:[0-5]#' OR Concepto Like '#:[0-5]#') "
                 "GROUP BY Val(Left(Concepto, 2)) ORDER BY Val(Left(Concepto, 2))";
    figures_.timeless = figures_.all;
    for (Rows rows(selector::kDocuments, statement); rows.hasRow(); rows.next()) {
      HourFigures hour;
      hour.hour = rows.whole("Hora");
      hour.tickets = rows.whole("Cuantos");
      hour.amount = rows.number("Importe");
      if (hour.hour >= kHoursOfADay) continue;
      figures_.timeless.tickets -= hour.tickets;
      figures_.timeless.amount -= hour.amount;
      figures_.hours.push_back(hour);
    }
  }

  void readDays() {
    Statement statement(
        "SELECT Int(Fecha) AS Dia, Count(*) AS Cuantos, Sum(Total) AS Importe FROM HTickets");
    statement << inTheDays("HTickets") << " GROUP BY Int(Fecha) ORDER BY Int(Fecha)";
    for (Rows rows(selector::kDocuments, statement); rows.hasRow(); rows.next()) {
      DayFigures day;
      day.day = rows.day("Dia");
      day.tickets = rows.whole("Cuantos");
      day.amount = rows.number("Importe");
      figures_.days.push_back(day);
    }
  }

  std::vector<ArticleFigures> articles(Statement::Constant condition) const {
    Statement statement(
        "SELECT HTickets_Lineas.Codigo AS Articulo, Max(HTickets_Lineas.Descripcion) AS Nombre, "
        "Sum(Cantidad) AS Unidades, Sum(Importe) AS Dinero");
    statement << kLines << inTheDays("HTickets") << condition
              << " GROUP BY HTickets_Lineas.Codigo ORDER BY HTickets_Lineas.Codigo";
    std::vector<ArticleFigures> found;
    for (Rows rows(selector::kDocuments, statement); rows.hasRow(); rows.next()) {
      found.push_back({rows.text("Articulo"), rows.text("Nombre"), rows.number("Unidades"),
                       rows.number("Dinero")});
    }
    return found;
  }

  void readArticles() { figures_.articles = articles(""); }

  void readReturns() {
    Statement statement("SELECT Count(*) AS Cuantos FROM HTickets");
    statement << inTheDays("HTickets")
              << " AND Exists (SELECT Numero FROM HTickets_Lineas WHERE HTickets_Lineas.Numero = "
                 "HTickets.Numero AND Cantidad < 0)";
    figures_.returns = Rows(selector::kDocuments, statement).whole("Cuantos");
    figures_.returned = articles(" AND Cantidad < 0");
    for (ArticleFigures& article : figures_.returned) {
      article.units = -article.units;
      article.amount = -article.amount;
    }
    std::stable_sort(figures_.returned.begin(), figures_.returned.end(),
                     [](const auto& a, const auto& b) { return isMore(a.amount, b.amount); });
  }

  std::vector<Share> shares(Statement::Constant column, Statement::Constant table,
                            const Names& names) const {
    Statement statement("SELECT ");
    statement << column << " AS Cual, Sum(Importe) AS Dinero FROM Cierres INNER JOIN " << table
              << " ON Cierres.Codigo = " << table << ".Cierre" << inTheDays("Cierres")
              << " GROUP BY " << column << " ORDER BY " << column;
    std::vector<Share> found;
    for (Rows rows(selector::kMain, statement); rows.hasRow(); rows.next()) {
      Share share{rows.text("Cual"), {}, rows.number("Dinero")};
      const auto name = names.find(share.code);
      share.name = name == names.end() || name->second.empty() ? share.code : name->second;
      found.push_back(std::move(share));
    }
    std::stable_sort(found.begin(), found.end(),
                     [](const Share& a, const Share& b) { return isMore(a.amount, b.amount); });
    return found;
  }

  void readTaxes() {
    Statement statement(
        "SELECT Iva, Sum(Cierres_Lineas_Impuestos.Base) AS Bases, "
        "Sum(Cierres_Lineas_Impuestos.Importe) AS Cuotas FROM Cierres INNER JOIN "
        "Cierres_Lineas_Impuestos ON Cierres.Codigo = Cierres_Lineas_Impuestos.Cierre");
    statement << inTheDays("Cierres") << " GROUP BY Iva ORDER BY Iva";
    for (Rows rows(selector::kMain, statement); rows.hasRow(); rows.next()) {
      figures_.taxes.push_back({rows.number("Iva"), rows.number("Bases"), rows.number("Cuotas")});
    }
    Statement surcharge("SELECT Sum(Importe_Recargo) AS Recargos FROM HTickets");
    surcharge << inTheDays("HTickets");
    figures_.surcharge = Rows(selector::kDocuments, surcharge).number("Recargos");
  }

  /// Where a till stood before the first day: nothing for one without a closing. Its numbers are
  /// read from the greatest one down, so that years of closings cost nothing.
  std::optional<double> balanceBefore(const std::string& till) const {
    Statement greatest("SELECT Max(Codigo) AS Ultimo FROM Cierres WHERE Caja = ");
    greatest << sqlText(till) << " AND Fecha < " << spliced(from_);
    const double last = Rows(selector::kMain, greatest).number("Ultimo");
    Statement statement("SELECT Saldo_Final FROM Cierres WHERE Codigo = ");
    statement << spliced(sqlNumber(last, 0));
    const Rows rows(selector::kMain, statement);
    if (!rows.hasRow()) return std::nullopt;
    return rows.number("Saldo_Final");
  }

  void readClosings() {
    std::unordered_map<std::string, double> balances;
    Statement statement(
        "SELECT Codigo, Caja, Fecha, Saldo_Inicio, Total, Saldo_Final FROM Cierres");
    statement << inTheDays("Cierres") << " ORDER BY Caja, Codigo";
    for (Rows rows(selector::kMain, statement); rows.hasRow(); rows.next()) {
      ClosingFigures closing;
      closing.number = rows.whole("Codigo");
      closing.till = rows.text("Caja");
      closing.day = rows.day("Fecha");
      closing.start = rows.number("Saldo_Inicio");
      closing.sales = rows.number("Total");
      closing.end = rows.number("Saldo_Final");
      // A till's very first closing begins with whatever lies in its drawer.
      const auto before = balances.find(closing.till);
      closing.expected = before != balances.end()
                             ? before->second
                             : balanceBefore(closing.till).value_or(closing.start);
      closing.isBroken = std::abs(closing.start - closing.expected) >= kHalfACent;
      balances[closing.till] = closing.end;
      figures_.closings.push_back(std::move(closing));
    }
  }

  static constexpr std::string_view kLines =
      " FROM HTickets INNER JOIN HTickets_Lineas ON HTickets.Numero = HTickets_Lineas.Numero";

  DataSession session_;
  std::string from_;
  std::string before_;
  PageFigures figures_;
};

}  // namespace

double PageFigures::tax() const {
  double sum = 0;
  for (const TaxFigures& each : taxes) sum += each.tax;
  return sum;
}

double PageFigures::closedAmount() const {
  double sum = 0;
  for (const ClosingFigures& closing : closings) sum += closing.sales;
  return sum;
}

PageFigures gatherFigures(Date first, Date last) {
  first = first.dayOnly();
  last = last.dayOnly();
  if (last < first) raise(errors::kInvalidCall, "Shop", "The last day is before the first.");
  return Gatherer(first, last).gather();
}

}  // namespace tavelor::flows

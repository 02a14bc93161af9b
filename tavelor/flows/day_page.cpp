// SPDX-License-Identifier: MIT
// The shop owner's page of a day or a run of days.
#include "tavelor/flows/day_page.hpp"

#include <algorithm>
#include <cmath>
#include <iterator>
#include <string_view>
#include <utility>
#include <vector>

#include <fmt/format.h>

#include "tavelor/flows/again.hpp"
#include "tavelor/flows/charts.hpp"
#include "tavelor/flows/day_figures.hpp"
#include "tavelor/flows/page_text.hpp"
#include "tavelor/flows/sale.hpp"
#include "tavelor/services/apartment.hpp"
#include "tavelor/services/data_session.hpp"
#include "tavelor/services/settings_file.hpp"

namespace tavelor::flows {

namespace {

constexpr std::size_t kFamilies = 12;
constexpr std::size_t kTopArticles = 10;
constexpr double kHalfACent = 0.005;
constexpr int kHoursOfADay = 24;
// More days than these are shown by month.
constexpr double kDaysOfAChart = 124;

constexpr std::string_view kStyle = R"(:root{color-scheme:light;--ink:#1c2b36;--soft:#667784;
--line:#e3e8ec;--sea:#2b7c96;--alarm:#c2503f;--leaf:#3d7d4f}
*{box-sizing:border-box}
body{margin:0;background:#f4f6f7;color:var(--ink);
font:15px/1.45 system-ui,-apple-system,"Segoe UI",Roboto,"Helvetica Neue",Arial,sans-serif}
main{max-width:1140px;margin:0 auto;padding:1.6rem 1.2rem 2.4rem}
header{margin:0 0 1.2rem}
header p{margin:0;color:var(--soft)}
h1{margin:.1rem 0 0;font-size:1.75rem;line-height:1.2;letter-spacing:-.01em;overflow-wrap:anywhere}
h2{margin:0 0 .9rem;font-size:1rem}
.grid{display:grid;grid-template-columns:repeat(12,minmax(0,1fr));gap:1rem}
.card{background:#fff;border:1px solid var(--line);border-radius:12px;padding:1.1rem 1.2rem;
grid-column:span 12;min-width:0}
.half{grid-column:span 6}.long{grid-column:span 8}.short{grid-column:span 4}
.kpis{display:flex;flex-wrap:wrap;gap:1rem;margin:0 0 1rem}
.kpis div{flex:1 1 auto;background:#fff;border:1px solid var(--line);border-radius:12px;
padding:.8rem 1rem}
.kpis dt{color:var(--soft);font-size:.82rem}
.kpis dd{margin:.1rem 0 0;font-size:1.25rem;font-weight:650;font-variant-numeric:tabular-nums;
white-space:nowrap}
.kpis .first{flex-grow:2;background:var(--sea);border-color:var(--sea);color:#fff}
.kpis .first dt{color:#dcecf1}
.kpis .first dd{font-size:1.6rem;line-height:1.2}
.note{margin:.9rem 0 0;color:var(--soft);font-size:.86rem}
.note b{color:var(--ink)}
.empty{padding:2.6rem 1.2rem;text-align:center;color:var(--soft)}
.empty>b{display:block;margin-bottom:.3rem;color:var(--ink);font-size:1.15rem}
.sign{display:inline-block;margin:0 .4rem .7rem 0;padding:.16rem .6rem;border-radius:99px;
font-size:.82rem;background:#e8f2ea;color:var(--leaf)}
.sign.bad{background:#fbe9e6;color:#a53b2b;font-weight:600}
.table{overflow-x:auto}
.tall{max-height:34rem;overflow:auto}
table{width:100%;border-collapse:collapse;font-variant-numeric:tabular-nums}
th,td{padding:.42rem .5rem;text-align:left;border-bottom:1px solid var(--line);white-space:nowrap}
th:first-child,td:first-child{padding-left:0}
th:last-child,td:last-child{padding-right:0}
th{color:var(--soft);font-size:.82rem;font-weight:500;position:sticky;top:0;background:#fff}
.n{text-align:right}
tfoot td{border-bottom:0;font-weight:650}
tbody tr:last-child td{border-bottom-color:#b9c4cc}
tr.broken td{background:#fdf1ef}
tr.broken .start{color:#a53b2b;font-weight:650}
tr.broken small{display:block;font-weight:400;white-space:normal}
.second{margin-top:1.6rem}
.second+.bars .mark{fill:#e6a84a}
#top-units .mark{fill:#79a873}
)";

constexpr std::string_view kNarrowStyle = R"(@media(max-width:860px){
.half,.long,.short{grid-column:span 12}
.kpis .first{flex-basis:100%}
}
@media(max-width:560px){
.wide{display:none}
main{padding:1rem .7rem 1.6rem}
h1{font-size:1.4rem}
.grid{gap:.7rem}.kpis{gap:.7rem;margin-bottom:.7rem}
.card{padding:.9rem .85rem}
.kpis div{flex-basis:40%;padding:.6rem .8rem}
.axis{flex-basis:2.1rem;width:2.1rem}
table{font-size:.77rem}th{font-size:.75rem}th,td{padding:.4rem .2rem}
#closings table{font-size:.7rem}#closings th{white-space:normal}#closings :is(th,td){padding-inline:.08rem}
}
@media print{
@page{margin:12mm}
html{font-size:11px}
body{background:#fff;font-size:11px;-webkit-print-color-adjust:exact;print-color-adjust:exact}
main{max-width:none;padding:0}
.card,.kpis div,tr{break-inside:avoid}
.card.flows{break-inside:auto}
.half{grid-column:span 6}.long{grid-column:span 8}.short{grid-column:span 4}
.kpis div,.kpis .first{flex-basis:auto;padding:.5rem .7rem}
.tall{max-height:none;overflow:visible}th{position:static}
}
)";

class DayPage {
 public:
  explicit DayPage(const PageFigures& figures)
      : figures_(figures), text_(Apartment::current().locale()) {}

  std::string make() {
    begin();
    if (figures_.all.tickets == 0) {
      sayThatItIsEmpty();
    } else {
      totals();
      put("<div class=\"grid\">\n");
      if (figures_.first != figures_.last) days();
      hours();
      payments();
      families();
      taxesAndReturns();
      topArticles("Artículos que más facturan", &ArticleFigures::amount);
      topArticles("Artículos que más salen", &ArticleFigures::units);
    }
    closings();
    put("</div>\n</main>\n</body>\n</html>\n");
    return std::move(out_);
  }

 private:
  template <typename... Parts>
  void put(fmt::format_string<Parts...> form, Parts&&... parts) {
    fmt::format_to(std::back_inserter(out_), form, std::forward<Parts>(parts)...);
  }

  std::string when() const {
    return figures_.first == figures_.last
               ? text_.longDay(figures_.first)
               : "del " + text_.day(figures_.first) + " al " + text_.day(figures_.last);
  }

  /// Pages of several days are made when they are asked for, and never looked at again.
  std::string mark() const {
    if (figures_.first != figures_.last) return {};
    std::vector<double> closings;
    for (const ClosingFigures& each : figures_.closings) closings.push_back(each.number);
    return closingsMark(std::move(closings)) + "\n";
  }

  void begin() {
    const std::string shop = escaped(figures_.shop);
    put("<!DOCTYPE html>\n<html lang=\"es\">\n<head>\n<meta charset=\"utf-8\">\n"
        "<meta name=\"viewport\" content=\"width=device-width, initial-scale=1\">\n"
        "{}<title>{} · ventas {}</title>\n<style>\n{}{}{}</style>\n</head>\n<body>\n<main>\n",
        mark(), shop, when(), kStyle, chartStyle(), kNarrowStyle);
    put("<header><p>Ventas · {}</p><h1>{}</h1></header>\n", when(), shop);
  }

  void sayThatItIsEmpty() {
    put("<div class=\"grid\">\n<section class=\"card empty\" id=\"empty\"><b>Sin ventas</b>"
        "Ningún cierre recogió tickets {}.",
        figures_.first == figures_.last ? "este día" : "en estos días");
    sayWhatIsOpen();
    put("</section>\n");
  }

  void sayWhatIsOpen() {
    if (figures_.open.tickets == 0) return;
    put("<p class=\"note\" id=\"open\">Sin cerrar, y fuera de estas cuentas: <b>{}</b> por "
        "{}.</p>\n",
        text_.tickets(figures_.open.tickets), text_.money(figures_.open.amount));
  }

  void total(const char* id, const char* name, const std::string& value) {
    put("<div{}><dt>{}</dt><dd id=\"{}\">{}</dd></div>\n",
        std::string_view(id) == "total" ? " class=\"first\"" : "", name, id, value);
  }

  void totals() {
    put("<dl class=\"kpis\">\n");
    total("total", "Ventas", text_.money(figures_.all.amount));
    total("tickets", "Tickets", text_.whole(figures_.all.tickets));
    total("average", "Ticket medio", text_.money(figures_.all.amount / figures_.all.tickets));
    total("units", "Unidades", text_.quantity(figures_.units));
    total("lines", "Líneas", text_.whole(figures_.lines));
    total("tax", "IVA incluido", text_.money(figures_.tax()));
    put("</dl>\n");
  }

  // ---- Time

  std::string titleOf(const std::string& name, const Takings& takings) const {
    return fmt::format("{}: {}, {}", name, text_.money(takings.amount),
                       text_.tickets(takings.tickets));
  }

  void days() {
    const bool byMonth = figures_.last.days() - figures_.first.days() >= kDaysOfAChart;
    const std::vector<DayFigures> shown = byMonth ? months() : everyDay();
    const auto best = std::max_element(
        shown.begin(), shown.end(),
        [](const DayFigures& a, const DayFigures& b) { return a.amount < b.amount; });
    std::vector<Column> columns;
    for (const DayFigures& day : shown) {
      const std::string name = nameOf(day.day, byMonth);
      columns.push_back({text_.byMask(day.day, byMonth ? "mmm yy" : "d mmm"),
                         text_.shortMoney(day.amount), titleOf(name, day), day.amount,
                         &day == &*best});
    }
    put("<section class=\"card\" id=\"days\"><h2>Ventas por {}</h2>\n{}", byMonth ? "mes" : "día",
        columnChart(columns, byMonth ? "Ventas por mes" : "Ventas por día", text_));
    put("<p class=\"note\">{}: <b>{}</b>, {} en {}. Con ventas, {} de {} días.</p>\n",
        byMonth ? "Mejor mes" : "Mejor día", nameOf(best->day, byMonth), text_.money(best->amount),
        text_.tickets(best->tickets), text_.whole(static_cast<std::int32_t>(figures_.days.size())),
        text_.whole(static_cast<std::int32_t>(figures_.last.days() - figures_.first.days()) + 1));
    put("</section>\n");
  }

  std::string nameOf(Date day, bool byMonth) const {
    return byMonth ? text_.byMask(day, "mmmm yyyy") : text_.longDay(day);
  }

  /// Days without sales are gaps that an owner wants to see.
  std::vector<DayFigures> everyDay() const {
    std::vector<DayFigures> all;
    auto sold = figures_.days.begin();
    for (double day = figures_.first.days(); day <= figures_.last.days(); ++day) {
      if (sold != figures_.days.end() && sold->day.days() == day) {
        all.push_back(*sold++);
      } else {
        all.emplace_back().day = Date(day);
      }
    }
    return all;
  }

  std::vector<DayFigures> months() const {
    std::vector<DayFigures> all;
    for (const DayFigures& day : everyDay()) {
      const CivilTime civil = day.day.civil();
      const Date month = Date::of(civil.year, civil.month, 1);
      if (all.empty() || all.back().day != month) all.emplace_back().day = month;
      all.back().tickets += day.tickets;
      all.back().amount += day.amount;
    }
    return all;
  }

  void hours() {
    put("<section class=\"card long\" id=\"hours\"><h2>Ventas por hora</h2>\n");
    if (figures_.hours.empty()) {
      put("<p class=\"note\">Ningún ticket dice su hora.</p>\n");
    } else {
      hourChart();
    }
    if (figures_.timeless.tickets > 0) {
      put("<p class=\"note\" id=\"timeless\">Sin hora: <b>{}</b> por {}.</p>\n",
          text_.tickets(figures_.timeless.tickets), text_.money(figures_.timeless.amount));
    }
    sayWhatIsOpen();
    put("</section>\n");
  }

  static std::string nameOfHour(int hour) {
    return fmt::format("de {} a {} h", hour, (hour + 1) % kHoursOfADay);
  }

  void hourChart() {
    const auto best = std::max_element(
        figures_.hours.begin(), figures_.hours.end(),
        [](const HourFigures& a, const HourFigures& b) { return a.amount < b.amount; });
    std::vector<Column> columns;
    auto sold = figures_.hours.begin();
    for (int hour = sold->hour; hour <= figures_.hours.back().hour; ++hour) {
      Column column;
      column.label = fmt::format("{} h", hour);
      if (sold->hour == hour) {
        column.caption = text_.shortMoney(sold->amount);
        column.title = titleOf(nameOfHour(hour), *sold);
        column.value = sold->amount;
        column.isStrong = sold == best;
        ++sold;
      } else {
        column.title = nameOfHour(hour) + ": sin ventas";
      }
      columns.push_back(std::move(column));
    }
    put("{}<p class=\"note\">Hora punta: <b>{}</b>, {} en {}.</p>\n",
        columnChart(columns, "Ventas por hora", text_), nameOfHour(best->hour),
        text_.money(best->amount), text_.tickets(best->tickets));
  }

  // ---- Parts of the money

  static double sumOf(const std::vector<Share>& shares) {
    double sum = 0;
    for (const Share& share : shares) sum += share.amount;
    return sum;
  }

  static std::string nameOf(const Share& share, const char* nameless) {
    return share.name.empty() ? nameless : escaped(share.name);
  }

  void payments() {
    const double all = sumOf(figures_.payments);
    std::vector<Slice> slices;
    for (const Share& share : figures_.payments) {
      const std::string name = nameOf(share, "Sin forma de pago");
      const std::string value = text_.money(share.amount);
      const std::string part = text_.percent(share.amount, all);
      slices.push_back(
          {name, value, part, fmt::format("{}: {}, {}", name, value, part), share.amount});
    }
    put("<section class=\"card short\" id=\"payments\"><h2>Formas de pago</h2>\n{}</section>\n",
        donut(slices, "Formas de pago", text_.shortMoney(all) + " €", "cobrado"));
  }

  void families() {
    std::vector<Share> shown = figures_.families;
    const double all = sumOf(shown);
    if (shown.size() > kFamilies) {
      Share rest;
      rest.name = fmt::format("Resto ({} familias)", shown.size() - kFamilies);
      for (std::size_t i = kFamilies; i < shown.size(); ++i) rest.amount += shown[i].amount;
      shown.resize(kFamilies);
      shown.push_back(std::move(rest));
    }
    std::vector<Bar> bars;
    for (const Share& share : shown) {
      const std::string name = nameOf(share, "Sin familia");
      const std::string value = text_.money(share.amount);
      const std::string part = text_.percent(share.amount, all);
      bars.push_back(
          {name, value, part, fmt::format("{}: {}, {}", name, value, part), share.amount});
    }
    put("<section class=\"card half\" id=\"families\"><h2>Familias</h2>\n{}</section>\n",
        barList(bars));
  }

  void taxesAndReturns() {
    put("<section class=\"card half\" id=\"taxes\"><h2>IVA por tipo</h2>\n<div "
        "class=\"table\"><table>"
        "<thead><tr><th>Tipo</th><th class=\"n\">Base</th><th class=\"n\">Cuota</th>"
        "<th class=\"n\">Total</th></tr></thead>\n<tbody>\n");
    double bases = 0;
    for (const TaxFigures& each : figures_.taxes) {
      taxRow(text_.rate(each.rate), each.base, each.tax);
      bases += each.base;
    }
    if (figures_.surcharge != 0) {
      put("<tr id=\"surcharge\"><td>Recargo de equivalencia</td><td></td><td class=\"n\">{0}</td>"
          "<td class=\"n\">{0}</td></tr>\n",
          text_.money(figures_.surcharge));
    }
    put("</tbody>\n<tfoot>\n");
    const double quotas = figures_.tax() + figures_.surcharge;
    taxRow("Suma", bases, quotas);
    put("</tfoot></table></div>\n");
    sayWhatRoundingLeaves(bases + quotas - figures_.closedAmount());
    returns();
    put("</section>\n");
  }

  /// Base and tax are whole cents each, so that together they may miss what was paid.
  void sayWhatRoundingLeaves(double difference) {
    if (figures_.taxes.empty() || std::abs(difference) < kHalfACent) return;
    put("<p class=\"note\" id=\"rounding\">Bases y cuotas, redondeadas por separado, difieren en "
        "{} "
        "de las ventas.</p>\n",
        text_.money(std::abs(difference)));
  }

  void taxRow(const std::string& name, double base, double tax) {
    put("<tr><td>{}</td><td class=\"n\">{}</td><td class=\"n\">{}</td><td "
        "class=\"n\">{}</td></tr>\n",
        name, text_.money(base), text_.money(tax), text_.money(base + tax));
  }

  // ---- Articles

  static std::string nameOf(const ArticleFigures& article) {
    const std::string& name = article.description.empty() ? article.code : article.description;
    return name.empty() ? "Sin código" : escaped(name);
  }

  Bar barOf(const ArticleFigures& article, double ArticleFigures::*what) const {
    const std::string money = text_.money(article.amount);
    const std::string units = text_.quantity(article.units);
    const bool byMoney = what == &ArticleFigures::amount;
    return {nameOf(article), byMoney ? money : units, byMoney ? units + " u." : money,
            fmt::format("{} {}: {} u., {}", escaped(article.code), nameOf(article), units, money),
            article.*what};
  }

  void returns() {
    put("<h2 class=\"second\" id=\"returns\">Devoluciones</h2>\n");
    if (figures_.returned.empty()) {
      put("<p class=\"note\">Ninguna.</p>\n");
      return;
    }
    double amount = 0;
    std::vector<Bar> bars;
    for (const ArticleFigures& article : figures_.returned) {
      amount += article.amount;
      if (bars.size() < kTopArticles) bars.push_back(barOf(article, &ArticleFigures::amount));
    }
    put("{}<p class=\"note\">En total <b>{}</b> en {}, ya descontados de las ventas.</p>\n",
        barList(bars), text_.money(amount), text_.tickets(figures_.returns));
  }

  void topArticles(const char* name, double ArticleFigures::*what) {
    std::vector<ArticleFigures> top = figures_.articles;
    std::stable_sort(top.begin(), top.end(), [&](const ArticleFigures& a, const ArticleFigures& b) {
      return a.*what > b.*what;
    });
    if (top.size() > kTopArticles) top.resize(kTopArticles);
    std::vector<Bar> bars;
    for (const ArticleFigures& article : top) bars.push_back(barOf(article, what));
    put("<section class=\"card half\" id=\"top-{}\"><h2>{}</h2>\n{}</section>\n",
        what == &ArticleFigures::amount ? "amount" : "units", name, barList(bars));
  }

  // ---- Tills

  void closings() {
    if (figures_.closings.empty()) return;
    put("<section class=\"card flows\" id=\"closings\"><h2>Cadena de caja</h2>\n");
    const auto breaks = std::count_if(figures_.closings.begin(), figures_.closings.end(),
                                      [](const ClosingFigures& each) { return each.isBroken; });
    if (breaks == 0) {
      put("<span class=\"sign\" id=\"chain\">Cada cierre empieza donde acabó el anterior</span>");
    } else {
      put("<span class=\"sign bad\" id=\"chain\">{} en la cadena</span>",
          breaks == 1 ? "1 salto" : fmt::format("{} saltos", breaks));
    }
    compareWithTickets();
    put("\n<div class=\"table tall\"><table><thead><tr><th>Caja</th><th>Cierre</th><th>Día</th>"
        "<th class=\"n\">Saldo inicial</th><th class=\"n\">Ventas</th>"
        "<th class=\"n\">Saldo final</th></tr></thead>\n<tbody>\n");
    for (const ClosingFigures& closing : figures_.closings) closingRow(closing);
    put("</tbody>\n<tfoot><tr><td colspan=\"4\">Suma</td><td "
        "class=\"n\">{}</td><td></td></tr></tfoot>"
        "</table></div>\n</section>\n",
        text_.money(figures_.closedAmount()));
  }

  void compareWithTickets() {
    const double difference = figures_.closedAmount() - figures_.all.amount;
    if (std::abs(difference) < kHalfACent) {
      put("<span class=\"sign\" id=\"agreement\">Cierres y tickets suman lo mismo</span>");
    } else {
      put("<span class=\"sign bad\" id=\"agreement\">Entre cierres y tickets faltan o sobran "
          "{}</span>",
          text_.money(std::abs(difference)));
    }
  }

  /// A telephone has no room for the year.
  std::string shortDay(Date day) const {
    return text_.byMask(day, "dd/mm") + "<span class=\"wide\">" + text_.byMask(day, "/yyyy") +
           "</span>";
  }

  void closingRow(const ClosingFigures& closing) {
    put("<tr{}><td>{}</td><td>{}</td><td title=\"{}\">{}</td><td class=\"n start\">{}",
        closing.isBroken ? " class=\"broken\"" : "", escaped(closing.till),
        text_.whole(closing.number), text_.longDay(closing.day), shortDay(closing.day),
        text_.money(closing.start));
    if (closing.isBroken) {
      put("<small>el anterior acabó en {}</small>", text_.money(closing.expected));
    }
    put("</td><td class=\"n\">{}</td><td class=\"n\">{}</td></tr>\n", text_.money(closing.sales),
        text_.money(closing.end));
  }

  const PageFigures& figures_;
  PageText text_;
  std::string out_;
};

std::string fileName(Date first, Date last) {
  return first == last ? fmt::format("day-{}.htm", isoDay(first))
                       : fmt::format("day-{}_{}.htm", isoDay(first), isoDay(last));
}

}  // namespace

std::string dayPage(const PageFigures& figures) {
  return DayPage(figures).make();
}

std::string dayPagePath(Date day) {
  return DataSession().ExportPath(fileName(day, day));
}

std::string closingsMark(std::vector<double> closings) {
  std::sort(closings.begin(), closings.end());
  std::string mark(kClosingsMark);
  for (const double closing : closings) mark += fmt::format(" {:.0f}", closing);
  return mark + "\">";
}

std::string writeDayPage(Date first, Date last) {
  const PageFigures figures = throughOutages([&] { return gatherFigures(first, last); });
  std::string path = DataSession().ExportPath(fileName(figures.first, figures.last));
  replaceFile(path, dayPage(figures));
  return path;
}

}  // namespace tavelor::flows

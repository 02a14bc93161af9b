// SPDX-License-Identifier: MIT
// A statement of account as a page.
#include <algorithm>
#include <iterator>

#include <fmt/format.h>

#include "tavelor/flows/account.hpp"
#include "tavelor/flows/page_text.hpp"
#include "tavelor/platform/number_text.hpp"
#include "tavelor/services/apartment.hpp"
#include "tavelor/services/data_session.hpp"
#include "tavelor/services/settings_file.hpp"

namespace tavelor::flows {

namespace {

constexpr std::string_view kStyle = R"(:root{color-scheme:light;--ink:#1c2b36;--soft:#667784;
--line:#e3e8ec;--sea:#2b7c96}
*{box-sizing:border-box}
body{margin:0;background:#f4f6f7;color:var(--ink);
font:15px/1.45 system-ui,-apple-system,"Segoe UI",Roboto,"Helvetica Neue",Arial,sans-serif}
main{max-width:900px;margin:0 auto;padding:1.6rem 1.2rem 2.4rem}
header p{margin:0;color:var(--soft)}
h1{margin:.1rem 0 1.2rem;font-size:1.75rem;line-height:1.2;overflow-wrap:anywhere}
.card{background:#fff;border:1px solid var(--line);border-radius:12px;padding:1.1rem 1.2rem;
overflow-x:auto}
table{width:100%;border-collapse:collapse;font-variant-numeric:tabular-nums}
th,td{padding:.42rem .5rem;text-align:left;border-bottom:1px solid var(--line)}
th{color:var(--soft);font-size:.82rem;font-weight:500}
.n{text-align:right;white-space:nowrap}
.day{white-space:nowrap}
tfoot td{border-bottom:0;font-weight:650}
tr.wrong td{background:#fdf1ef}
tr.wrong small{display:block;color:#a53b2b}
.owes{color:#a53b2b}
@media(max-width:560px){
main{padding:1rem .7rem 1.6rem}
h1{font-size:1.4rem}
.card{padding:.8rem .6rem}
table{font-size:.78rem}
th,td{padding:.36rem .2rem}
.wide{display:none}
}
@media print{
@page{margin:12mm}
body{background:#fff;font-size:11px}
main{max-width:none;padding:0}
.card{border:0;padding:0}
tr{break-inside:avoid}
}
)";

class AccountPage {
 public:
  AccountPage(const Account& account, std::optional<Date> from, std::optional<Date> to)
      : account_(account),
        from_(from),
        to_(to),
        locale_(Apartment::current().locale()),
        text_(locale_) {}

  std::string make() {
    const std::string name = escaped(account_.name.empty() ? account_.owner : account_.name);
    put("<!DOCTYPE html>\n<html lang=\"es\">\n<head>\n<meta charset=\"utf-8\">\n"
        "<meta name=\"viewport\" content=\"width=device-width, initial-scale=1\">\n"
        "<title>Extracto de {}</title>\n<style>\n{}</style>\n</head>\n<body>\n<main>\n",
        name, kStyle);
    put("<header><p>Extracto de cuenta · {} {}{}</p><h1>{}</h1></header>\n",
        account_.of == LedgerOf::kCustomers ? "cliente" : "proveedor", escaped(account_.owner),
        period(), name);
    put("<section class=\"card\"><table>\n<thead><tr><th>Fecha</th><th>Concepto</th>"
        "<th class=\"wide\">Documento</th><th class=\"n\">Debe</th><th class=\"n\">Haber</th>"
        "<th class=\"n\">Saldo</th></tr></thead>\n<tbody>\n");
    if (from_) balanceRow("opening", "Saldo anterior", account_.opening);
    for (const AccountEntry& entry : account_.entries) entryRow(entry);
    put("</tbody>\n<tfoot><tr><td></td><td>Suma</td><td class=\"wide\"></td>"
        "<td class=\"n\">{}</td><td class=\"n\">{}</td>"
        "<td class=\"n{}\" id=\"closing\">{}</td></tr></tfoot>\n",
        text_.money(account_.debit), text_.money(account_.credit), owes(account_.closing),
        text_.money(account_.closing));
    put("</table></section>\n</main>\n</body>\n</html>\n");
    return std::move(out_);
  }

 private:
  template <typename... Parts>
  void put(fmt::format_string<Parts...> form, Parts&&... parts) {
    fmt::format_to(std::back_inserter(out_), form, std::forward<Parts>(parts)...);
  }

  std::string period() const {
    std::string words;
    if (from_) words += " · desde el " + text_.day(*from_);
    if (to_) words += (from_ ? " hasta el " : " · hasta el ") + text_.day(*to_);
    return words;
  }
  static const char* owes(double balance) { return balance < 0 ? " owes" : ""; }

  void balanceRow(const char* id, const char* name, double balance) {
    put("<tr id=\"{}\"><td></td><td>{}</td><td class=\"wide\"></td><td></td><td></td>"
        "<td class=\"n{}\">{}</td></tr>\n",
        id, name, owes(balance), text_.money(balance));
  }

  std::string amount(double value) const { return value == 0 ? "" : text_.money(value); }

  void entryRow(const AccountEntry& entry) {
    put("<tr{}><td class=\"day\">{}</td><td>{}</td><td class=\"wide\">{}</td>"
        "<td class=\"n\">{}</td><td class=\"n\">{}</td><td class=\"n{}\">{}",
        entry.isWrong() ? " class=\"wrong\"" : "", entry.date ? text_.day(*entry.date) : "",
        escaped(entry.text),
        entry.document == 0 ? ""
                            : escaped(entry.series + (entry.series.empty() ? "" : " ") +
                                      plainNumber(entry.document, locale_)),
        amount(entry.debit), amount(entry.credit), owes(entry.stored), text_.money(entry.stored));
    if (entry.isWrong()) put("<small>debería ser {}</small>", text_.money(entry.right));
    put("</td></tr>\n");
  }

  const Account& account_;
  std::optional<Date> from_;
  std::optional<Date> to_;
  const Locale& locale_;
  PageText text_;
  std::string out_;
};

/// A code may hold what no file name may.
std::string fileName(const Account& account) {
  std::string name;
  for (const char c : account.owner) {
    const bool isPlain = (c >= '0' && c <= '9') || (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z');
    name += isPlain || c == '-' ? c : '_';
  }
  const bool isCustomer = account.of == LedgerOf::kCustomers;
  return (isCustomer ? "account-" : "supplier-account-") + name + ".htm";
}

}  // namespace

std::string accountPage(const Account& account, std::optional<Date> from, std::optional<Date> to) {
  return AccountPage(account, from, to).make();
}

std::string writeAccountPage(const Account& account, std::optional<Date> from,
                             std::optional<Date> to) {
  std::string path = DataSession().ExportPath(fileName(account));
  replaceFile(path, accountPage(account, from, to));
  return path;
}

}  // namespace tavelor::flows

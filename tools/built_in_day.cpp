// SPDX-License-Identifier: MIT
// A day of sales, drawn with a generator of its own: those of the standard library would give each
// machine another day.
#include "tools/built_in_day.hpp"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <string_view>

#include <fmt/format.h>

#include "tavelor/platform/error.hpp"

namespace tavelor::tools {

using flows::Sale;
using flows::SaleLine;

namespace {

enum class Sold {
  kByPiece,
  kBySeveral,  ///< milk, water, beer: often as many as a pack holds
  kByWeight
};

/// What the shop sells, and how often beside the others.
struct Article {
  std::string_view code;
  std::string_view description;
  std::string_view family;
  double price;
  double tax;
  unsigned weight;
  Sold sold = Sold::kByPiece;
};

constexpr double kBasic = 4;
constexpr double kReduced = 10;
constexpr double kGeneral = 21;

constexpr std::array kArticles = {
    Article{"PAN001", "Barra de pan", "Panadería", 0.95, kBasic, 30, Sold::kBySeveral},
    Article{"PAN002", "Pan de pueblo 500 g", "Panadería", 1.85, kBasic, 14},
    Article{"PAN003", "Pan integral de molde", "Panadería", 2.15, kBasic, 7},
    Article{"PAN004", "Croissant de mantequilla", "Panadería", 1.10, kReduced, 10,
            Sold::kBySeveral},
    Article{"PAN005", "Ensaimada", "Panadería", 1.25, kReduced, 6, Sold::kBySeveral},
    Article{"PAN006", "Magdalenas de l'àvia 12 u.", "Panadería", 3.20, kReduced, 4},
    Article{"LAC001", "Leche entera 1 l", "Lácteos", 1.05, kBasic, 22, Sold::kBySeveral},
    Article{"LAC002", "Leche semidesnatada 1 l", "Lácteos", 0.99, kBasic, 18, Sold::kBySeveral},
    Article{"LAC003", "Huevos camperos, docena", "Lácteos", 3.10, kBasic, 14},
    Article{"LAC004", "Yogur natural 4 u.", "Lácteos", 1.35, kReduced, 12, Sold::kBySeveral},
    Article{"LAC005", "Queso manchego semicurado", "Lácteos", 15.90, kBasic, 9, Sold::kByWeight},
    Article{"LAC006", "Mantequilla 250 g", "Lácteos", 2.85, kReduced, 6},
    Article{"FRU001", "Plátano de Canarias", "Frutería", 2.29, kBasic, 18, Sold::kByWeight},
    Article{"FRU002", "Manzana golden", "Frutería", 2.10, kBasic, 15, Sold::kByWeight},
    Article{"FRU003", "Mandarina clementina", "Frutería", 2.45, kBasic, 16, Sold::kByWeight},
    Article{"FRU004", "Tomate de ensalada", "Frutería", 2.69, kBasic, 17, Sold::kByWeight},
    Article{"FRU005", "Patata nueva", "Frutería", 1.35, kBasic, 14, Sold::kByWeight},
    Article{"FRU006", "Cebolla dulce", "Frutería", 1.60, kBasic, 11, Sold::kByWeight},
    Article{"FRU007", "Lechuga romana", "Frutería", 1.15, kBasic, 11},
    Article{"FRU008", "Champiñón laminado 250 g", "Frutería", 1.75, kBasic, 7},
    Article{"CHA001", "Jamón serrano reserva", "Fiambres", 18.50, kReduced, 11, Sold::kByWeight},
    Article{"CHA002", "Pechuga de pavo", "Fiambres", 12.40, kReduced, 10, Sold::kByWeight},
    Article{"CHA003", "Chorizo ibérico", "Fiambres", 16.75, kReduced, 7, Sold::kByWeight},
    Article{"CHA004", "Lomo embuchado 100 g", "Fiambres", 3.45, kReduced, 5},
    Article{"CHA005", "Longaniza de payés", "Fiambres", 4.20, kReduced, 4},
    Article{"DES001", "Aceite de oliva virgen extra 1 l", "Despensa", 7.95, kBasic, 8},
    Article{"DES002", "Arroz bomba 1 kg", "Despensa", 3.35, kReduced, 7},
    Article{"DES003", "Garbanzo pedrosillano 1 kg", "Despensa", 2.60, kReduced, 6},
    Article{"DES004", "Macarrones 500 g", "Despensa", 1.20, kReduced, 9},
    Article{"DES005", "Atún claro en aceite, 3 latas", "Despensa", 3.75, kReduced, 9},
    Article{"DES006", "Café molido natural 250 g", "Despensa", 3.60, kReduced, 9},
    Article{"DES007", "Galletas María", "Despensa", 1.65, kReduced, 8},
    Article{"DES008", "Pimentón de la Vera dulce", "Despensa", 2.30, kReduced, 3},
    Article{"BEB001", "Agua mineral 1,5 l", "Bebidas", 0.65, kReduced, 16, Sold::kBySeveral},
    Article{"BEB002", "Refresco de limón 2 l", "Bebidas", 1.89, kGeneral, 7},
    Article{"BEB003", "Cerveza tostada 33 cl", "Bebidas", 0.89, kGeneral, 11, Sold::kBySeveral},
    Article{"BEB004", "Vino tinto crianza", "Bebidas", 5.95, kGeneral, 6},
    Article{"BEB005", "Zumo de naranja 1 l", "Bebidas", 1.95, kReduced, 7},
    Article{"LIM001", "Lejía con detergente 2 l", "Limpieza", 1.55, kGeneral, 5},
    Article{"LIM002", "Detergente líquido 40 lavados", "Limpieza", 8.90, kGeneral, 4},
    Article{"LIM003", "Papel de cocina 2 rollos", "Limpieza", 2.25, kGeneral, 7},
    Article{"LIM004", "Bolsas de basura 30 l", "Limpieza", 1.80, kGeneral, 6},
    Article{"PER001", "Gel de baño 750 ml", "Perfumería", 2.95, kGeneral, 4},
    Article{"PER002", "Champú de camomila", "Perfumería", 3.40, kGeneral, 3},
    Article{"PER003", "Pañuelos de papel 10 u.", "Perfumería", 1.45, kGeneral, 5},
};

struct KnownCustomer {
  std::string_view code;
  std::string_view name;
  std::string_view place;
};
constexpr std::array kCustomers = {
    KnownCustomer{"1001", "Bar La Esquina", "Valladolid"},
    KnownCustomer{"1002", "Residencia Los Álamos", "Simancas"},
    KnownCustomer{"1003", "Peña «El Botijo»", "Arroyo de la Encomienda"},
    KnownCustomer{"1004", "Guardería L'Espiga", "Valladolid"},
    KnownCustomer{"1005", "Comunidad Plaza Mayor, 3", "Valladolid"},
};

/// Tickets in each half hour that the shop is open.
struct HalfHour {
  unsigned minute;  ///< of the day, when it begins
  unsigned tickets;
};
constexpr unsigned kHour = 60;
constexpr std::array kDay = {
    HalfHour{9 * kHour + 30, 12},  HalfHour{10 * kHour, 15},      HalfHour{10 * kHour + 30, 18},
    HalfHour{11 * kHour, 21},      HalfHour{11 * kHour + 30, 24}, HalfHour{12 * kHour, 27},
    HalfHour{12 * kHour + 30, 28}, HalfHour{13 * kHour, 23},      HalfHour{13 * kHour + 30, 12},
    HalfHour{17 * kHour, 8},       HalfHour{17 * kHour + 30, 14}, HalfHour{18 * kHour, 19},
    HalfHour{18 * kHour + 30, 25}, HalfHour{19 * kHour, 27},      HalfHour{19 * kHour + 30, 20},
    HalfHour{20 * kHour, 12},
};

constexpr std::array<unsigned, 18> kLinesOfATicket = {1, 1, 1, 2, 2, 2, 2, 3, 3,
                                                      3, 4, 4, 5, 5, 6, 7, 9, 12};
constexpr std::array<unsigned, 10> kPieces = {1, 1, 1, 1, 1, 1, 1, 2, 2, 3};
constexpr std::array<unsigned, 10> kSeveral = {1, 1, 1, 2, 2, 2, 3, 4, 6, 6};
constexpr std::array<double, 6> kNotes = {5, 10, 20, 50, 100, 200};

constexpr unsigned kSalesToAReturn = 55;
constexpr unsigned kPercent = 100;
constexpr std::string_view kCash = "1";
constexpr std::string_view kCard = "2";

/// Whole numbers only: every machine counts them alike.
class Dice {
 public:
  /// From 0 to sides - 1.
  unsigned below(std::size_t sides) { return static_cast<unsigned>(next() % sides); }
  bool percent(unsigned chance) { return below(kPercent) < chance; }
  template <typename Values>
  const auto& of(const Values& values) {
    return values[below(values.size())];
  }

 private:
  std::uint64_t next() {
    state_ += 0x9E3779B97F4A7C15ULL;
    std::uint64_t mixed = state_;
    mixed = (mixed ^ (mixed >> 30U)) * 0xBF58476D1CE4E5B9ULL;
    mixed = (mixed ^ (mixed >> 27U)) * 0x94D049BB133111EBULL;
    return mixed ^ (mixed >> 31U);
  }

  std::uint64_t state_ = 20261120;
};

class DayOfSales {
 public:
  explicit DayOfSales(const std::vector<std::string>& tills) : tills_(tills) {
    for (const Article& article : kArticles) allWeights_ += article.weight;
  }

  std::vector<Sale> make() {
    for (const HalfHour& half : kDay) {
      for (const unsigned minute : minutesOf(half)) {
        addSale(minute);
        if (sold_ % kSalesToAReturn == 0) addReturn(minute);
      }
    }
    return std::move(sales_);
  }

 private:
  std::vector<unsigned> minutesOf(const HalfHour& half) {
    constexpr unsigned kLength = kHour / 2;
    std::vector<unsigned> minutes(half.tickets);
    for (unsigned& minute : minutes) minute = half.minute + dice_.below(kLength);
    std::sort(minutes.begin(), minutes.end());
    return minutes;
  }

  Sale begin(char kind, unsigned number, unsigned minute) {
    Sale sale;
    sale.reference = fmt::format("{}{:04}", kind, number);
    sale.day = Date::of(2026, 11, 20);
    sale.time = fmt::format("{:02}:{:02}", minute / kHour, minute % kHour);
    return sale;
  }

  void addSale(unsigned minute) {
    Sale sale = begin('V', ++sold_, minute);
    sale.till = dice_.of(tills_);
    const bool isKnown = dice_.percent(5);
    if (isKnown) {
      const KnownCustomer& customer = dice_.of(kCustomers);
      sale.customer = customer.code;
      sale.name = customer.name;
      sale.place = customer.place;
    }
    addLines(sale, dice_.of(kLinesOfATicket) + (isKnown ? 4U : 0U));
    pay(sale);
    sales_.push_back(std::move(sale));
  }

  void addLines(Sale& sale, unsigned count) {
    while (sale.lines.size() < count) {
      const Article& article = pickArticle();
      const bool isThere = std::any_of(sale.lines.begin(), sale.lines.end(),
                                       [&](const SaleLine& l) { return l.code == article.code; });
      if (isThere) continue;
      SaleLine line;
      line.code = article.code;
      line.description = article.description;
      line.family = article.family;
      line.quantity = quantityOf(article);
      line.price = article.price;
      line.tax = article.tax;
      sale.lines.push_back(std::move(line));
    }
  }

  const Article& pickArticle() {
    unsigned drawn = dice_.below(allWeights_);
    for (const Article& article : kArticles) {
      if (drawn < article.weight) return article;
      drawn -= article.weight;
    }
    return kArticles.back();
  }

  double quantityOf(const Article& article) {
    if (article.sold == Sold::kBySeveral) return dice_.of(kSeveral);
    if (article.sold == Sold::kByPiece) return dice_.of(kPieces);
    // The scales show steps of five grams; what is dear is bought in slices.
    constexpr double kDear = 10;
    constexpr unsigned kStepsToTheKilo = 200;
    const unsigned steps = article.price > kDear ? 20 + dice_.below(60) : 60 + dice_.below(300);
    return static_cast<double>(steps) / kStepsToTheKilo;
  }

  /// The larger the ticket, the likelier a card.
  void pay(Sale& sale) {
    const double total = sale.total();
    const unsigned chance = total < 5 ? 25 : total < 15 ? 50 : 75;
    if (dice_.percent(chance)) {
      sale.payment = kCard;
      sale.delivered = total;
    } else {
      sale.payment = kCash;
      sale.delivered = handedOver(total);
    }
  }

  /// The exact money now and then, else the next whole euro or the smallest note that is enough.
  double handedOver(double total) {
    if (dice_.percent(15)) return total;
    if (total < kNotes.front() && dice_.percent(50)) return std::ceil(total);
    const auto note = std::find_if(kNotes.begin(), kNotes.end() - 1,
                                   [&](double value) { return value >= total; });
    return std::max(*note, total);
  }

  /// One article of an earlier ticket comes back to the till that sold it.
  void addReturn(unsigned minute) {
    std::size_t which = dice_.below(sales_.size());
    while (sales_[which].reference.front() != 'V') which = dice_.below(sales_.size());
    const Sale& bought = sales_[which];
    Sale sale = begin('C', ++returned_, minute);
    sale.till = bought.till;
    sale.customer = bought.customer;
    sale.name = bought.name;
    sale.place = bought.place;
    sale.payment = bought.payment;
    sale.lines.push_back(dice_.of(bought.lines));
    sale.lines.front().quantity = -sale.lines.front().quantity;
    sale.comment = fmt::format("Devolución del ticket {}", bought.reference);
    sale.delivered = sale.total();
    sales_.push_back(std::move(sale));
  }

  const std::vector<std::string>& tills_;
  Dice dice_;
  unsigned allWeights_ = 0;
  unsigned sold_ = 0;
  unsigned returned_ = 0;
  std::vector<Sale> sales_;
};

}  // namespace

std::vector<flows::Sale> builtInDay(const std::vector<std::string>& tills) {
  if (tills.empty()) raise(errors::kInvalidCall, "Shop", "A day of sales needs a till.");
  return DayOfSales(tills).make();
}

}  // namespace tavelor::tools

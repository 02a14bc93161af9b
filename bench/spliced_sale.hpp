// SPDX-License-Identifier: MIT
// A sale of five lines as the measurements make it, and its spliced way through the library.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <string>

#include "bench/shop.hpp"
#include "tavelor/platform/date.hpp"
#include "tavelor/platform/statement.hpp"
#include "tavelor/services/recordset/connection.hpp"

namespace tavelor::bench {

inline constexpr std::size_t kSaleLines = 5;
inline constexpr std::size_t kSaleArticles = 5'000;
inline constexpr Date kSaleTime(0.4375);  // 10:30

struct SaleLine {
  std::string article;
  std::string description;
  double quantity;
  double price;
  double amount;
};

struct Sale {
  double number;
  std::string customer;
  Date date;
  double total;
  std::array<SaleLine, kSaleLines> lines;
};

/// The same one each time for the same turn and dice.
Sale saleOf(std::size_t turn, Dice& dice);

/// Ventas, Ventas_Lineas, Existencias, Movimientos, Contadores.
extern const char* const kSaleTables;

/// As the classes do it: every value printed and spliced, a DataSession a member.
class SaleBySplicing {
 public:
  /// Movements are numbered behind `movements`.
  explicit SaleBySplicing(std::int64_t movements = 0) : movements_(movements) {}

  /// In a transaction of its own.
  void sell(const Sale& sale);
  /// The same where the stock comes first and the number from the counter, whose row is locked from
  /// then on.
  void sellNext(Sale sale);
  double sold(BenchShop& shop);

 private:
  void begin();
  void writeTicket(const Sale& sale, const std::string& number);
  void writeLine(const SaleLine& line, const std::string& number, int order);
  void takeStock(const SaleLine& line);
  void writeMovement(const Sale& sale, const SaleLine& line, const std::string& number);
  void run(const Statement& statement);

  ConnectionPtr connection_;
  std::int64_t movements_;
};

}  // namespace tavelor::bench

// SPDX-License-Identifier: MIT
// Values in the server's binary formats.
#include "tavelor/services/postgres/codecs.hpp"

#include <bit>
#include <charconv>
#include <cmath>
#include <cstring>
#include <limits>
#include <string>

#include <fmt/format.h>

#include "tavelor/platform/error.hpp"
#include "tavelor/platform/locale.hpp"
#include "tavelor/services/postgres/errors.hpp"

namespace tavelor::engine::postgres {

namespace {

template <std::size_t bytes>
struct Unsigned;
template <>
struct Unsigned<2> {
  using Type = std::uint16_t;
  static Type swapped(Type v) { return __builtin_bswap16(v); }
};
template <>
struct Unsigned<4> {
  using Type = std::uint32_t;
  static Type swapped(Type v) { return __builtin_bswap32(v); }
};
template <>
struct Unsigned<8> {
  using Type = std::uint64_t;
  static Type swapped(Type v) { return __builtin_bswap64(v); }
};

static_assert(std::endian::native == std::endian::little);

/// A number in network order.
template <typename Number>
Number fromNetwork(const char* bytes) {
  using Bits = Unsigned<sizeof(Number)>;
  typename Bits::Type bits;
  std::memcpy(&bits, bytes, sizeof bits);
  return std::bit_cast<Number>(Bits::swapped(bits));
}

template <typename Number>
void toNetwork(Number number, char* bytes) {
  using Bits = Unsigned<sizeof(Number)>;
  const typename Bits::Type bits = Bits::swapped(std::bit_cast<typename Bits::Type>(number));
  std::memcpy(bytes, &bits, sizeof bits);
}

constexpr std::int64_t kMicrosecondsOfSecond = 1'000'000;
constexpr std::int64_t kMicrosecondsOfDay = 86'400 * kMicrosecondsOfSecond;
constexpr std::int64_t kSecondsOfDay = 86'400;
constexpr std::int64_t kServerEpoch = 36'526;  // 2000-01-01 as a day number
// Years -4712 to 294276.
constexpr std::int64_t kFirstDay = -2'415'018;
constexpr std::int64_t kLastDay = 106'789'500;

// The header of a numeric: the count of its digits, the weight of the first one as a power of
// 10,000, the sign, and how many decimals it is shown with.
constexpr std::size_t kNumericHeader = 8;
constexpr std::uint16_t kNegative = 0x4000;
constexpr std::uint16_t kNotANumber = 0xC000;
constexpr std::uint16_t kInfinite = 0xD000;
constexpr std::uint16_t kMinusInfinite = 0xF000;
constexpr std::int64_t kBase = 10'000;

/// A numeric, taken apart.
struct Numeric {
  explicit Numeric(std::string_view bytes)
      : count(fromNetwork<std::int16_t>(bytes.data())),
        weight(fromNetwork<std::int16_t>(bytes.data() + 2)),
        sign(fromNetwork<std::uint16_t>(bytes.data() + 4)),
        digits(bytes.data() + kNumericHeader) {}

  bool isFinite() const { return sign == 0 || sign == kNegative; }
  /// The digit that stands for so many powers of 10,000.
  std::int64_t digit(int power) const {
    const int place = weight - power;
    return place < 0 || place >= count ? 0 : fromNetwork<std::int16_t>(digits + place * 2);
  }

  int count;
  int weight;
  std::uint16_t sign;
  const char* digits;
};

/// Whether what lies behind the ten-thousandths rounds away from zero, halves to even.
bool roundsUp(const Numeric& numeric, std::int64_t tenThousandths) {
  const std::int64_t first = numeric.digit(-2);
  if (first != kBase / 2) return first > kBase / 2;
  for (int power = -3; numeric.weight - power < numeric.count; --power) {
    if (numeric.digit(power) != 0) return true;
  }
  return tenThousandths % 2 != 0;
}

/// "-12.0034" with an exponent, for what no short way is known for.
std::string digitsOf(const Numeric& numeric) {
  std::string text = numeric.sign == kNegative ? "-0" : "0";
  for (int i = 0; i < numeric.count; ++i) {
    text += fmt::format("{:04}", numeric.digit(numeric.weight - i));
  }
  return text += fmt::format("e{}", (numeric.weight + 1 - numeric.count) * 4);
}

std::size_t putCurrency(std::int64_t scaled, char* place) {
  std::array<std::int16_t, 6> digits{};
  std::size_t first = digits.size();
  // The least amount has no opposite, but its digits have.
  auto rest = scaled < 0 ? std::uint64_t{0} - static_cast<std::uint64_t>(scaled)
                         : static_cast<std::uint64_t>(scaled);
  while (rest != 0) {
    digits[--first] = static_cast<std::int16_t>(rest % kBase);
    rest /= kBase;
  }
  const std::size_t count = digits.size() - first;
  toNetwork(static_cast<std::int16_t>(count), place);
  toNetwork(static_cast<std::int16_t>(static_cast<int>(count) - 2), place + 2);
  toNetwork(scaled < 0 ? kNegative : std::uint16_t{0}, place + 4);
  toNetwork(std::int16_t{4}, place + 6);
  char* end = place + kNumericHeader;
  for (; first < digits.size(); ++first, end += 2) toNetwork(digits[first], end);
  return static_cast<std::size_t>(end - place);
}

}  // namespace

std::int64_t microsecondsOf(double days) {
  if (!(days >= static_cast<double>(kFirstDay) && days < static_cast<double>(kLastDay))) {
    raise(errors::kOverflow, kSource, "A date that the server does not hold");
  }
  // As the server's own tv_timestamp() does it: a day number far from zero does not tell one
  // microsecond from the next, and what lies as near to a whole second as it can tell is that one.
  const double day = std::trunc(days);
  const double seconds = std::abs(days - day) * static_cast<double>(kSecondsOfDay);
  const double second = std::nearbyint(seconds);
  const bool isSecond = std::abs(seconds - second) <= std::abs(days) * 4e-11 + 1e-9;
  const auto ofDay = static_cast<std::int64_t>(
      isSecond ? second * static_cast<double>(kMicrosecondsOfSecond)
               : std::nearbyint(seconds * static_cast<double>(kMicrosecondsOfSecond)));
  return (static_cast<std::int64_t>(day) - kServerEpoch) * kMicrosecondsOfDay + ofDay;
}

double daysOf(std::int64_t microseconds) {
  if (microseconds == std::numeric_limits<std::int64_t>::max() ||
      microseconds == std::numeric_limits<std::int64_t>::min()) {
    raise(errors::kOverflow, kSource, "A moment without end is no date");
  }
  std::int64_t day = microseconds / kMicrosecondsOfDay;
  std::int64_t ofDay = microseconds % kMicrosecondsOfDay;
  if (ofDay < 0) {
    --day;
    ofDay += kMicrosecondsOfDay;
  }
  day += kServerEpoch;
  const double time = static_cast<double>(ofDay) / static_cast<double>(kMicrosecondsOfDay);
  return day < 0 ? static_cast<double>(day) - time : static_cast<double>(day) + time;
}

std::int64_t scaledOf(std::string_view numericBytes) {
  const Numeric numeric(numericBytes);
  constexpr int kMostPower = 3;  // 10,000 to the fourth part of a unit and no more: 19 digits
  if (!numeric.isFinite() || (numeric.weight > kMostPower && numeric.count > 0)) {
    raise(errors::kOverflow, kSource);
  }
  bool overflows = false;
  std::int64_t scaled = 0;
  const bool negative = numeric.sign == kNegative;
  const auto add = [&](std::int64_t digit) {
    overflows = overflows || __builtin_mul_overflow(scaled, kBase, &scaled) ||
                __builtin_add_overflow(scaled, negative ? -digit : digit, &scaled);
  };
  for (int power = numeric.weight > 0 ? numeric.weight : 0; power >= -1; --power) {
    add(numeric.digit(power));
  }
  if (!overflows && numeric.weight - -2 < numeric.count && roundsUp(numeric, scaled)) {
    overflows = __builtin_add_overflow(scaled, negative ? -1 : 1, &scaled);
  }
  if (overflows) raise(errors::kOverflow, kSource);
  return scaled;
}

double realOf(std::string_view numericBytes) {
  const Numeric numeric(numericBytes);
  if (numeric.sign == kNotANumber) return std::numeric_limits<double>::quiet_NaN();
  if (numeric.sign == kInfinite) return std::numeric_limits<double>::infinity();
  if (numeric.sign == kMinusInfinite) return -std::numeric_limits<double>::infinity();
  // Whole in ten-thousandths, and few enough for a double: one division rounds once.
  if (numeric.weight <= 2 && numeric.weight + 2 >= numeric.count) {
    const std::int64_t scaled = scaledOf(numericBytes);
    if (std::abs(scaled) <= std::int64_t{1} << 53U) return static_cast<double>(scaled) / kBase;
  }
  const std::string text = digitsOf(numeric);
  double number = 0;
  const auto read = std::from_chars(text.data(), text.data() + text.size(), number);
  if (read.ec == std::errc::result_out_of_range) {
    if (numeric.weight < 0) return 0;
    raise(errors::kOverflow, kSource);
  }
  return number;
}

Arguments::Arguments(int count)
    : values_(static_cast<std::size_t>(count)),
      lengths_(values_.size()),
      formats_(values_.size(), 1),
      types_(values_.size(), types::kNone),
      slots_(values_.size()) {}

void Arguments::set(std::size_t index, const Value& value) {
  char* const slot = slots_[index].data();
  const auto put = [&](Oid type, const char* bytes, std::size_t length) {
    values_[index] = bytes;
    lengths_[index] = static_cast<int>(length);
    types_[index] = type;
  };
  switch (value.kind) {
    case Value::Kind::kNull:
      return put(types::kNone, nullptr, 0);
    case Value::Kind::kBoolean:
      toNetwork(static_cast<std::int16_t>(value.integer), slot);
      return put(types::kInt2, slot, sizeof(std::int16_t));
    case Value::Kind::kInteger:
      toNetwork(value.integer, slot);
      return put(types::kInt8, slot, sizeof value.integer);
    case Value::Kind::kReal:
      toNetwork(value.real, slot);
      return put(types::kFloat8, slot, sizeof value.real);
    case Value::Kind::kCurrency:
      return put(types::kNumeric, slot, putCurrency(value.integer, slot));
    case Value::Kind::kDate:
      toNetwork(microsecondsOf(value.real), slot);
      return put(types::kTimestamp, slot, sizeof(std::int64_t));
    case Value::Kind::kText:
    case Value::Kind::kBytes:
      break;
  }
  const std::string_view bytes = value.text.data() == nullptr ? std::string_view("") : value.text;
  if (bytes.size() > kMostBytes) {
    raise(errors::kMultipleStep, kSource, "A value is longer than the database can hold");
  }
  if (value.kind == Value::Kind::kBytes) return put(types::kBytea, bytes.data(), bytes.size());
  if (bytes.find('\0') != std::string_view::npos) {
    raise(errors::kTypeMismatch, kSource, "The server takes no text with a NUL character");
  }
  put(types::kText, bytes.data(), bytes.size());
}

std::size_t Arguments::bytes() const {
  std::size_t sum = 0;
  for (const int length : lengths_) sum += static_cast<std::size_t>(length);
  return sum;
}

/// How a column is read: by the type that comes and the one that is stored.
struct RowReader::Ways {
  using Cells = RowStore::Cells;

  static void text(const Column&, std::string_view bytes, Cells& cells, std::size_t place) {
    cells.setText(place, bytes);
  }
  template <typename Number>
  static void whole(const Column&, std::string_view bytes, Cells& cells, std::size_t place) {
    cells.setInteger(place, fromNetwork<Number>(bytes.data()));
  }
  /// A whole number that may not fit.
  template <typename Number>
  static void wholeWithin(const Column& column, std::string_view bytes, Cells& cells,
                          std::size_t place) {
    const std::int64_t number = fromNetwork<Number>(bytes.data());
    const auto [least, most] = wholeRange(column.stored);
    if (number >= least && number <= most) return cells.setInteger(place, number);
    column.converter->whole(number, column.stored, cells, place);
  }
  template <typename Number>
  static void flag(const Column&, std::string_view bytes, Cells& cells, std::size_t place) {
    cells.setInteger(place, fromNetwork<Number>(bytes.data()) != 0 ? -1 : 0);
  }
  static void truth(const Column&, std::string_view bytes, Cells& cells, std::size_t place) {
    cells.setInteger(place, bytes[0] != 0 ? -1 : 0);
  }
  template <typename Number>
  static void real(const Column&, std::string_view bytes, Cells& cells, std::size_t place) {
    cells.setReal(place, static_cast<double>(fromNetwork<Number>(bytes.data())));
  }
  static void money(const Column&, std::string_view bytes, Cells& cells, std::size_t place) {
    cells.setInteger(place, scaledOf(bytes));
  }
  static void date(const Column&, std::string_view bytes, Cells& cells, std::size_t place) {
    cells.setReal(place, daysOf(fromNetwork<std::int64_t>(bytes.data())));
  }

  /// Whatever there is no short way for.
  static void converted(const Column& column, std::string_view bytes, Cells& cells,
                        std::size_t place) {
    const auto giveWhole = [&](std::int64_t number) {
      column.converter->whole(number, column.stored, cells, place);
    };
    const auto giveReal = [&](double number) {
      column.converter->real(number, column.stored, cells, place);
    };
    const auto giveText = [&](std::string_view text) {
      column.converter->text(text, column.stored, cells, place);
    };
    switch (column.type) {
      case types::kBool:
        return giveWhole(bytes[0] != 0 ? -1 : 0);
      case types::kInt2:
        return giveWhole(fromNetwork<std::int16_t>(bytes.data()));
      case types::kInt4:
        return giveWhole(fromNetwork<std::int32_t>(bytes.data()));
      case types::kInt8:
        return giveWhole(fromNetwork<std::int64_t>(bytes.data()));
      case types::kOid:
        return giveWhole(fromNetwork<std::uint32_t>(bytes.data()));
      case types::kFloat4:
        return giveReal(static_cast<double>(fromNetwork<float>(bytes.data())));
      case types::kFloat8:
        return giveReal(fromNetwork<double>(bytes.data()));
      case types::kNumeric:
        return giveReal(realOf(bytes));
      case types::kTimestamp:
      case types::kTimestamptz:
        return giveReal(daysOf(fromNetwork<std::int64_t>(bytes.data())));
      case types::kDate:
        return giveReal(static_cast<double>(fromNetwork<std::int32_t>(bytes.data())) +
                        static_cast<double>(kServerEpoch));
      case types::kTime:
        return giveReal(static_cast<double>(fromNetwork<std::int64_t>(bytes.data())) /
                        static_cast<double>(kMicrosecondsOfDay));
      case types::kUuid:
        return giveText(uuidText(bytes));
      case types::kJsonb:
        return giveText(bytes.substr(1));  // behind the number of the format
      default:
        return giveText(bytes);
    }
  }

  static std::string uuidText(std::string_view bytes) {
    std::string text;
    for (std::size_t i = 0; i < bytes.size(); ++i) {
      if (i == 4 || i == 6 || i == 8 || i == 10) text += '-';
      text += fmt::format("{:02x}", static_cast<unsigned char>(bytes[i]));
    }
    return text;
  }

  static Read ofWhole(Oid type, ColumnType stored) {
    switch (type) {
      case types::kInt2:
        return stored == ColumnType::kByte ? wholeWithin<std::int16_t> : whole<std::int16_t>;
      case types::kInt4:
        return stored == ColumnType::kInt32 ? whole<std::int32_t> : wholeWithin<std::int32_t>;
      case types::kInt8:
        return wholeWithin<std::int64_t>;
      default:
        return converted;
    }
  }
  static Read ofFlag(Oid type) {
    switch (type) {
      case types::kBool:
        return truth;
      case types::kInt2:
        return flag<std::int16_t>;
      case types::kInt4:
        return flag<std::int32_t>;
      case types::kInt8:
        return flag<std::int64_t>;
      default:
        return converted;
    }
  }
  static Read ofReal(Oid type) {
    if (type == types::kFloat8) return real<double>;
    return type == types::kFloat4 ? real<float> : converted;
  }
  static Read of(Oid type, ColumnType stored) {
    const bool isBare = type == types::kText || type == types::kVarchar || type == types::kBytea;
    switch (stored) {
      case ColumnType::kText:
      case ColumnType::kMemo:
      case ColumnType::kBinary:
        return isBare ? text : converted;
      case ColumnType::kByte:
      case ColumnType::kInt16:
      case ColumnType::kInt32:
        return ofWhole(type, stored);
      case ColumnType::kBoolean:
        return ofFlag(type);
      case ColumnType::kSingle:
      case ColumnType::kDouble:
        return ofReal(type);
      case ColumnType::kCurrency:
        return type == types::kNumeric ? money : converted;
      case ColumnType::kDate:
        return type == types::kTimestamp ? date : ofReal(type);
    }
    return converted;
  }
};

RowReader::RowReader(const PGresult& result, const RowStore& store, const Locale& locale)
    : converter_(locale) {
  columns_.reserve(store.columns());
  for (std::size_t i = 0; i < store.columns(); ++i) {
    const Oid type = PQftype(&result, static_cast<int>(i));
    columns_.push_back({Ways::of(type, store.type(i)), type, store.type(i), &converter_});
  }
}

void RowReader::append(const PGresult& result, int row, RowStore& store) const {
  RowStore::Cells cells = store.cells(store.append());
  std::size_t place = 0;
  try {
    for (; place < columns_.size(); ++place) {
      const int column = static_cast<int>(place);
      const int length = PQgetlength(&result, row, column);
      // A Null has no length; few values have none either.
      if (length == 0 && PQgetisnull(&result, row, column) != 0) continue;
      columns_[place].read(columns_[place],
                           {PQgetvalue(&result, row, column), static_cast<std::size_t>(length)},
                           cells, place);
    }
  } catch (const Error& error) {
    store.removeLast();
    throw Error(error.number(), error.source(),
                fmt::format("Column {}: {}", PQfname(&result, static_cast<int>(place)),
                            error.description()));
  }
}

std::int64_t writtenRows(const PGresult& result) {
  const std::string_view count = PQcmdTuples(const_cast<PGresult*>(&result));
  std::int64_t rows = 0;
  std::from_chars(count.data(), count.data() + count.size(), rows);
  return rows;
}

}  // namespace tavelor::engine::postgres

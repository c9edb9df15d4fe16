#include "jet/sql/Numbers.h"

#include <algorithm>
#include <array>
#include <bit>
#include <charconv>
#include <cmath>
#include <cstddef>
#include <limits>
#include <string>

#include "jet/sql/Literals.h"

namespace jet::sql {
namespace {

constexpr std::uint8_t kMostScale = 28;
constexpr int kMantissaBits = 53;

/// A whole number without sign, wide enough for any double or decimal brought to a common scale.
class BigNumber {
 public:
  explicit BigNumber(std::uint64_t value)
      : BigNumber({static_cast<std::uint32_t>(value), static_cast<std::uint32_t>(value >> 32), 0, 0}) {}
  explicit BigNumber(const std::array<std::uint32_t, 4>& words) {
    std::copy(words.begin(), words.end(), m_words.begin());
    m_used = words.size();
    Trim();
  }

  void MultiplyBy(std::uint32_t factor) {
    std::uint64_t carry = 0;
    for (std::size_t i = 0; i < m_used; ++i) {
      carry += std::uint64_t{m_words[i]} * factor;
      m_words[i] = static_cast<std::uint32_t>(carry);
      carry >>= 32;
    }
    if (carry != 0) m_words[m_used++] = static_cast<std::uint32_t>(carry);
  }
  void MultiplyByPowerOfTen(unsigned exponent) {
    for (; exponent > 0; --exponent)
      MultiplyBy(10);
  }
  void ShiftLeft(unsigned bits) {
    for (; bits >= 31; bits -= 31)
      MultiplyBy(1U << 31);
    MultiplyBy(1U << bits);
  }

  std::strong_ordering operator<=>(const BigNumber& other) const {
    if (m_used != other.m_used) return m_used <=> other.m_used;
    for (std::size_t i = m_used; i > 0; --i) {
      if (m_words[i - 1] != other.m_words[i - 1]) return m_words[i - 1] <=> other.m_words[i - 1];
    }
    return std::strong_ordering::equal;
  }

 private:
  void Trim() {
    while (m_used > 0 && m_words[m_used - 1] == 0)
      --m_used;
  }

  // The largest: a double of 1024 bits times 10^255, the largest scale that a byte can say.
  std::array<std::uint32_t, 64> m_words{};
  std::size_t m_used = 0;
};

bool IsZero(const Decimal& decimal) {
  return decimal.words == decltype(decimal.words){};
}
int SignOf(const Decimal& decimal) {
  return IsZero(decimal) ? 0 : decimal.negative ? -1 : 1;
}

std::strong_ordering CompareDecimals(const Decimal& a, const Decimal& b) {
  const int sign = SignOf(a);
  if (sign != SignOf(b) || sign == 0) return sign <=> SignOf(b);
  BigNumber left(a.words);
  BigNumber right(b.words);
  left.MultiplyByPowerOfTen(b.scale > a.scale ? b.scale - a.scale : 0U);
  right.MultiplyByPowerOfTen(a.scale > b.scale ? a.scale - b.scale : 0U);
  return sign > 0 ? left <=> right : right <=> left;
}

int RankOf(double value) {
  return std::isnan(value) ? (std::signbit(value) ? -1 : 1) : 0;
}

std::strong_ordering CompareDoubles(double a, double b) {
  if (a < b) return std::strong_ordering::less;
  if (a > b) return std::strong_ordering::greater;
  return RankOf(a) <=> RankOf(b);
}

std::strong_ordering CompareWithDouble(const Decimal& a, double b) {
  if (!std::isfinite(b)) return 0 <=> (std::signbit(b) ? -1 : 1);
  const int sign = SignOf(a);
  const int otherSign = b < 0 ? -1 : b > 0 ? 1 : 0;
  if (sign != otherSign || sign == 0) return sign <=> otherSign;
  int exponent = 0;
  const double mantissa = std::frexp(std::abs(b), &exponent);
  exponent -= kMantissaBits;
  BigNumber left(a.words);
  BigNumber right(static_cast<std::uint64_t>(std::ldexp(mantissa, kMantissaBits)));
  right.MultiplyByPowerOfTen(a.scale);
  if (exponent > 0) {
    right.ShiftLeft(static_cast<unsigned>(exponent));
  } else {
    left.ShiftLeft(static_cast<unsigned>(-exponent));
  }
  return sign > 0 ? left <=> right : right <=> left;
}

std::optional<double> AsFloating(const Value& number) {
  if (const auto* value = number.As<double>()) return *value;
  if (const auto* value = number.As<float>()) return static_cast<double>(*value);
  return std::nullopt;
}

std::optional<Decimal> AsExact(const Value& number) {
  if (const auto* value = number.As<std::int32_t>()) return MakeDecimal(*value);
  if (const auto* value = number.As<bool>()) return MakeDecimal(*value ? -1 : 0);
  if (const auto* value = number.As<Currency>()) return MakeDecimal(value->scaled, kCurrencyScale);
  if (const auto* value = number.As<Decimal>()) return *value;
  return std::nullopt;
}

/// Divides by 10; the remainder.
std::uint32_t DivideByTen(std::array<std::uint32_t, 4>& words) {
  std::uint64_t rest = 0;
  for (std::size_t i = words.size(); i > 0; --i) {
    const std::uint64_t part = rest << 32 | words[i - 1];
    words[i - 1] = static_cast<std::uint32_t>(part / 10);
    rest = part % 10;
  }
  return static_cast<std::uint32_t>(rest);
}

/// `words * 10 + digit`; false on overflow.
bool TimesTenPlus(std::array<std::uint32_t, 4>& words, std::uint32_t digit) {
  std::uint64_t carry = digit;
  for (std::uint32_t& word : words) {
    carry += std::uint64_t{word} * 10;
    word = static_cast<std::uint32_t>(carry);
    carry >>= 32;
  }
  return carry == 0;
}

template <typename Narrow>
std::optional<Value> WholeWithin(const Value& number) {
  const std::optional<Decimal> decimal = ToDecimal(number);
  if (!decimal) return std::nullopt;
  const std::optional<std::int64_t> whole = ToInteger(*decimal);
  if (!whole || *whole < std::numeric_limits<Narrow>::min() || *whole > std::numeric_limits<Narrow>::max()) {
    return std::nullopt;
  }
  return Value(static_cast<std::int32_t>(*whole));
}

std::optional<Value> Nearest(const Value& number, ColumnType type) {
  switch (type) {
    case ColumnType::YesNo:
      return Value(CompareNumbers(number, Value(std::int32_t{0})) != 0);
    case ColumnType::Byte:
      return WholeWithin<std::uint8_t>(number);
    case ColumnType::Integer:
      return WholeWithin<std::int16_t>(number);
    case ColumnType::Long:
      return WholeWithin<std::int32_t>(number);
    case ColumnType::Currency: {
      const std::optional<Decimal> decimal = ToDecimal(number);
      std::optional<Decimal> scaled = decimal ? Rescale(*decimal, kCurrencyScale) : std::nullopt;
      if (!scaled) return std::nullopt;
      scaled->scale = 0;
      const std::optional<std::int64_t> units = ToInteger(*scaled);
      return units ? std::optional<Value>(Currency{*units}) : std::nullopt;
    }
    case ColumnType::Single: {
      const double floating = ToDouble(number);
      if (std::isfinite(floating) &&
          std::abs(floating) > static_cast<double>(std::numeric_limits<float>::max()))
        return std::nullopt;
      return Value(static_cast<float>(floating));
    }
    case ColumnType::Double:
      return Value(ToDouble(number));
    default:
      return std::nullopt;
  }
}

}  // namespace

bool IsNumber(const Value& value) {
  return AsFloating(value).has_value() || AsExact(value).has_value();
}

std::strong_ordering CompareNumbers(const Value& a, const Value& b) {
  const auto* const left = a.As<std::int32_t>();
  const auto* const right = b.As<std::int32_t>();
  if (left != nullptr && right != nullptr) return *left <=> *right;
  const std::optional<double> leftDouble = AsFloating(a);
  const std::optional<double> rightDouble = AsFloating(b);
  if (leftDouble && rightDouble) return CompareDoubles(*leftDouble, *rightDouble);
  if (leftDouble) return 0 <=> CompareWithDouble(AsExact(b).value_or(Decimal{}), *leftDouble);
  const Decimal exact = AsExact(a).value_or(Decimal{});
  if (rightDouble) return CompareWithDouble(exact, *rightDouble);
  return CompareDecimals(exact, AsExact(b).value_or(Decimal{}));
}

std::optional<Decimal> ToDecimal(const Value& number) {
  const std::optional<double> floating = AsFloating(number);
  if (!floating) return AsExact(number);
  if (!std::isfinite(*floating) || std::abs(*floating) > 1e28) return std::nullopt;
  std::array<char, 400> buffer{};
  const auto* single = number.As<float>();
  const auto end =
      single != nullptr
          ? std::to_chars(buffer.data(), buffer.data() + buffer.size(), *single, std::chars_format::fixed)
          : std::to_chars(buffer.data(), buffer.data() + buffer.size(), *floating, std::chars_format::fixed);
  Decimal decimal;
  decimal.negative = *floating < 0;
  bool afterPoint = false;
  for (const char* at = buffer.data(); at != end.ptr; ++at) {
    if (*at == '.') afterPoint = true;
    if (*at < '0' || *at > '9') continue;
    // Digits past the 28th decimal are worth less than anything that is asked for.
    if (afterPoint && decimal.scale == kMostScale) break;
    if (!AppendDigit(decimal, static_cast<std::uint32_t>(*at - '0'))) break;
    if (afterPoint) ++decimal.scale;
  }
  return decimal;
}

double ToDouble(const Value& number) {
  if (const std::optional<double> floating = AsFloating(number)) return *floating;
  if (const auto* whole = number.As<std::int32_t>()) return *whole;
  if (const auto* yes = number.As<bool>()) return *yes ? -1 : 0;
  const std::string text = number.ToText();
  double value = 0;
  std::from_chars(text.data(), text.data() + text.size(), value);
  return value;
}

std::optional<Decimal> Rescale(const Decimal& decimal, std::uint8_t scale) {
  Decimal result = decimal;
  while (result.scale < scale) {
    if (!TimesTenPlus(result.words, 0)) return std::nullopt;
    ++result.scale;
  }
  std::uint32_t last = 0;  // the digit dropped last
  bool more = false;       // whether those before it were not all zeros
  while (result.scale > scale) {
    more = more || last != 0;
    last = DivideByTen(result.words);
    --result.scale;
  }
  const bool isOdd = (result.words[0] & 1) != 0;
  if (last > 5 || (last == 5 && (more || isOdd))) {
    for (std::uint32_t& word : result.words) {
      if (++word != 0) break;
    }
  }
  return result;
}

std::optional<std::int64_t> ToInteger(const Decimal& decimal) {
  const std::optional<Decimal> whole = Rescale(decimal, 0);
  if (!whole || whole->words[2] != 0 || whole->words[3] != 0) return std::nullopt;
  const std::uint64_t magnitude = std::uint64_t{whole->words[1]} << 32 | whole->words[0];
  constexpr std::uint64_t kLimit = std::uint64_t{1} << 63;
  if (whole->negative) {
    if (magnitude > kLimit) return std::nullopt;
    return static_cast<std::int64_t>(0 - magnitude);
  }
  if (magnitude >= kLimit) return std::nullopt;
  return static_cast<std::int64_t>(magnitude);
}

int DigitCount(const Decimal& decimal) {
  auto words = decimal.words;
  int digits = 0;
  for (; words != decltype(words){}; ++digits)
    DivideByTen(words);
  return digits;
}

Decimal MakeDecimal(std::int64_t value, std::uint8_t scale) {
  const std::uint64_t magnitude =
      value < 0 ? 0 - static_cast<std::uint64_t>(value) : static_cast<std::uint64_t>(value);
  Decimal decimal;
  decimal.words = {static_cast<std::uint32_t>(magnitude), static_cast<std::uint32_t>(magnitude >> 32), 0, 0};
  decimal.scale = scale;
  decimal.negative = value < 0;
  return decimal;
}

bool AppendDigit(Decimal& decimal, std::uint32_t digit) {
  auto words = decimal.words;
  if (!TimesTenPlus(words, digit) || words[3] != 0) return false;
  decimal.words = words;
  return true;
}

std::optional<Value> SameNumberAs(const Value& number, ColumnType type) {
  std::optional<Value> nearest = Nearest(number, type);
  if (nearest && CompareNumbers(*nearest, number) != 0) nearest.reset();
  return nearest;
}

}  // namespace jet::sql

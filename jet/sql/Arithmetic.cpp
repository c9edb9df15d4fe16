#include "jet/sql/Arithmetic.h"

#include <chrono>
#include <cmath>
#include <cstdint>
#include <ctime>
#include <limits>
#include <optional>
#include <string>

#include "jet/Error.h"
#include "jet/sql/Comparison.h"
#include "jet/sql/Numbers.h"

namespace jet::sql {
namespace {

[[noreturn]] void RaiseNoResult(const std::string& why) {
  throw Error(ErrorNumber::CannotConvert, "The expression has no result: " + why + ".");
}

Value WholeNumber(std::int64_t number) {
  if (number >= std::numeric_limits<std::int32_t>::min() &&
      number <= std::numeric_limits<std::int32_t>::max())
    return static_cast<std::int32_t>(number);
  return MakeDecimal(number);
}

/// The number times 10^scale, if it is a whole number, not a floating one, that fits.
std::optional<std::int64_t> Scaled(const Value& number, std::uint8_t scale) {
  if (number.As<float>() != nullptr || number.As<double>() != nullptr) return std::nullopt;
  const std::optional<Decimal> decimal = ToDecimal(number);
  if (!decimal || decimal->scale > scale) return std::nullopt;
  std::optional<Decimal> scaled = Rescale(*decimal, scale);
  if (!scaled) return std::nullopt;
  scaled->scale = 0;
  return ToInteger(*scaled);
}

/// The exact sum or difference; none when it does not fit 64 bits with the decimals of money.
std::optional<Value> AddExactly(const Value& left, const Value& right, bool subtracts) {
  const bool isMoney = left.As<Currency>() != nullptr || right.As<Currency>() != nullptr;
  const std::uint8_t scale = isMoney ? kCurrencyScale : 0;
  const std::optional<std::int64_t> a = Scaled(left, scale);
  const std::optional<std::int64_t> b = Scaled(right, scale);
  constexpr std::int64_t kMost = std::numeric_limits<std::int64_t>::max() / 2;
  if (!a || !b || *a > kMost || *a < -kMost || *b > kMost || *b < -kMost) return std::nullopt;
  const std::int64_t sum = subtracts ? *a - *b : *a + *b;
  return isMoney ? Value(Currency{sum}) : WholeNumber(sum);
}

std::int64_t Whole(const Value& number) {
  const std::optional<Decimal> decimal = ToDecimal(number);
  const std::optional<std::int64_t> whole = decimal ? ToInteger(*decimal) : std::nullopt;
  if (!whole) RaiseNoResult("a number is too large for a whole division");
  return *whole;
}

Value Divided(Operator arithmetic, const Value& left, const Value& right) {
  if (arithmetic == Operator::Divide) {
    if (ToDouble(right) == 0) RaiseNoResult("division by zero");
    return ToDouble(left) / ToDouble(right);
  }
  const std::int64_t a = Whole(left);
  const std::int64_t b = Whole(right);
  if (b == 0) RaiseNoResult("division by zero");
  if (b == -1)
    return arithmetic == Operator::Modulo ? Value(std::int32_t{0}) : Value(-static_cast<double>(a));
  return WholeNumber(arithmetic == Operator::Modulo ? a % b : a / b);
}

Value CalculateNumbers(Operator arithmetic, const Value& left, const Value& right) {
  const double a = ToDouble(left);
  const double b = ToDouble(right);
  switch (arithmetic) {
    case Operator::Add:
    case Operator::Subtract: {
      const bool subtracts = arithmetic == Operator::Subtract;
      if (std::optional<Value> exact = AddExactly(left, right, subtracts)) return *std::move(exact);
      return subtracts ? a - b : a + b;
    }
    case Operator::Multiply: {
      const auto* const wholeA = left.As<std::int32_t>();
      const auto* const wholeB = right.As<std::int32_t>();
      if (wholeA != nullptr && wholeB != nullptr) return WholeNumber(std::int64_t{*wholeA} * *wholeB);
      return a * b;
    }
    case Operator::Power:
      return std::pow(a, b);
    default:
      return Divided(arithmetic, left, right);
  }
}

double DaysOf(const Value& value) {
  const auto* const date = value.As<DateTime>();
  return date != nullptr ? date->days : ToDouble(value);
}

}  // namespace

Value Calculate(Operator arithmetic, const Value& left, const Value& right) {
  if (arithmetic == Operator::Join) {
    if (left.IsNull() && right.IsNull()) return {};
    return left.ToText() + right.ToText();
  }
  if (left.IsNull() || right.IsNull()) return {};
  if (KindOf(left) == ValueKind::Text) return left.ToText() + right.ToText();
  const bool isDateA = left.As<DateTime>() != nullptr;
  const bool isDateB = right.As<DateTime>() != nullptr;
  if (isDateA || isDateB) {
    const bool subtracts = arithmetic == Operator::Subtract;
    const double days = subtracts ? DaysOf(left) - DaysOf(right) : DaysOf(left) + DaysOf(right);
    return isDateA && isDateB && subtracts ? Value(days) : Value(DateTime{days});
  }
  const Value result = CalculateNumbers(arithmetic, left, right);
  const auto* const number = result.As<double>();
  if (number != nullptr && !std::isfinite(*number)) RaiseNoResult("the number is too large, or none");
  return result;
}

DateTime LocalNow() {
  using namespace std::chrono;
  const std::time_t now = system_clock::to_time_t(system_clock::now());
  const std::tm local = *std::localtime(&now);
  const sys_days day = year{local.tm_year + 1900} / (local.tm_mon + 1) / local.tm_mday;
  const auto days = (day - sys_days{year{1899} / December / 30}).count();
  const int seconds = (local.tm_hour * 60 + local.tm_min) * 60 + local.tm_sec;
  return {static_cast<double>(days) + seconds / 86400.0};
}

}  // namespace jet::sql

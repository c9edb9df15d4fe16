#pragma once

#include <compare>
#include <cstdint>
#include <optional>

#include "jet/Value.h"

/// Numbers of all kinds against each other, without rounding. Yes/no values are the numbers -1 and 0.
namespace jet::sql {

/// Decimals of a currency value.
inline constexpr std::uint8_t kCurrencyScale = 4;

/// Whether the value is a number, a yes/no value included.
bool IsNumber(const Value& value);

/// Compares two numbers by what they are worth, exactly whatever their kinds. A NaN of a damaged or foreign
/// file comes before or after all numbers, as its sign says, so that there is an order in any case.
std::strong_ordering CompareNumbers(const Value& a, const Value& b);

/// The number as a decimal; none for one of the floating kinds that is no number or too large.
/// Floating numbers are taken for the shortest decimal that stands for them.
std::optional<Decimal> ToDecimal(const Value& number);
/// The nearest floating number.
double ToDouble(const Value& number);

/// The decimal with `scale` decimals, halves rounded to even; none when it grows too large.
std::optional<Decimal> Rescale(const Decimal& decimal, std::uint8_t scale);
/// The decimal as a whole number, halves rounded to even; none when it does not fit 64 bits.
std::optional<std::int64_t> ToInteger(const Decimal& decimal);
/// Digits of the magnitude, leading zeros not counted.
int DigitCount(const Decimal& decimal);
Decimal MakeDecimal(std::int64_t value, std::uint8_t scale = 0);
/// `decimal * 10 + digit` for the reading of digits; false when it grows past 96 bits.
bool AppendDigit(Decimal& decimal, std::uint32_t digit);

/// The same number as a column of that type holds it, for looking it up; none when no value of the type is
/// worth the same.
std::optional<Value> SameNumberAs(const Value& number, ColumnType type);

}  // namespace jet::sql

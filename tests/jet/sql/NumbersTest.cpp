#include <cmath>
#include <limits>
#include <optional>
#include <string>

#include <gtest/gtest.h>

#include "jet/sql/Comparison.h"
#include "jet/sql/Literals.h"
#include "jet/sql/Numbers.h"

namespace jet::sql {
namespace {

Value Number(const char* text) {
  const std::optional<Value> number = ParseNumber(text);
  EXPECT_TRUE(number.has_value()) << text;
  return number.value_or(Value());
}

TEST(Numbers, CompareExactlyAcrossKinds) {
  EXPECT_EQ(CompareNumbers(1, Number("1.0")), std::strong_ordering::equal);
  EXPECT_EQ(CompareNumbers(Currency{10000}, 1), std::strong_ordering::equal);
  EXPECT_EQ(CompareNumbers(Currency{10001}, 1), std::strong_ordering::greater);
  EXPECT_EQ(CompareNumbers(0.5, Number("0.5")), std::strong_ordering::equal);
  // The double nearest to 0.1 is a little more than 0.1.
  EXPECT_EQ(CompareNumbers(0.1, Number("0.1")), std::strong_ordering::greater);
  EXPECT_EQ(CompareNumbers(Currency{1000}, 0.1), std::strong_ordering::less);
  EXPECT_EQ(CompareNumbers(9007199254740993.0, Number("9007199254740993")), std::strong_ordering::less);
  EXPECT_EQ(CompareNumbers(Number("79228162514264337593543950335"), 1e300), std::strong_ordering::less);
  EXPECT_EQ(CompareNumbers(Number("-1e-300"), 0), std::strong_ordering::less);
  EXPECT_EQ(CompareNumbers(Number("-0.0000000000000000000000000001"), -1e-29), std::strong_ordering::less);
  EXPECT_EQ(CompareNumbers(1.5F, 1.5), std::strong_ordering::equal);
  EXPECT_EQ(CompareNumbers(Number("-2147483648"), std::numeric_limits<std::int32_t>::min()),
            std::strong_ordering::equal);
}

TEST(Numbers, TrueIsMinusOne) {
  EXPECT_EQ(CompareNumbers(true, -1), std::strong_ordering::equal);
  EXPECT_EQ(CompareNumbers(false, 0), std::strong_ordering::equal);
  EXPECT_EQ(CompareNumbers(true, 1), std::strong_ordering::less);
}

TEST(Numbers, WhatIsNoNumberHasAPlace) {
  const double nan = std::numeric_limits<double>::quiet_NaN();
  const double infinity = std::numeric_limits<double>::infinity();
  EXPECT_EQ(CompareNumbers(std::copysign(nan, 1.0), infinity), std::strong_ordering::greater);
  EXPECT_EQ(CompareNumbers(std::copysign(nan, -1.0), -infinity), std::strong_ordering::less);
  EXPECT_EQ(CompareNumbers(nan, nan), std::strong_ordering::equal);
  EXPECT_EQ(CompareNumbers(1, std::copysign(nan, 1.0)), std::strong_ordering::less);
  EXPECT_EQ(CompareNumbers(infinity, Number("5")), std::strong_ordering::greater);
}

TEST(Numbers, RescaleRoundsHalvesToEven) {
  const auto rounded = [](const char* text) { return *ToInteger(*ToDecimal(Number(text))); };
  EXPECT_EQ(rounded("0.5"), 0);
  EXPECT_EQ(rounded("1.5"), 2);
  EXPECT_EQ(rounded("2.5"), 2);
  EXPECT_EQ(rounded("2.50000001"), 3);
  EXPECT_EQ(rounded("-2.5"), -2);
  EXPECT_EQ(rounded("-3.5"), -4);
  EXPECT_EQ(rounded("2.4999"), 2);
  EXPECT_EQ(*ToInteger(*ToDecimal(2.5)), 2);
  EXPECT_EQ(*ToInteger(*ToDecimal(-1e15)), -1000000000000000);
  EXPECT_FALSE(ToInteger(*ToDecimal(Number("9223372036854775808"))).has_value());
  EXPECT_EQ(*ToInteger(*ToDecimal(Number("-9223372036854775808"))), std::numeric_limits<std::int64_t>::min());
}

TEST(Numbers, SameNumberAsKeepsTheWorth) {
  EXPECT_EQ(SameNumberAs(Number("3.0"), ColumnType::Long), Value(3));
  EXPECT_EQ(SameNumberAs(Number("3.5"), ColumnType::Long), std::nullopt);
  EXPECT_EQ(SameNumberAs(300, ColumnType::Byte), std::nullopt);
  EXPECT_EQ(SameNumberAs(-1, ColumnType::YesNo), Value(true));
  EXPECT_EQ(SameNumberAs(1, ColumnType::YesNo), std::nullopt);
  EXPECT_EQ(SameNumberAs(Number("1.25"), ColumnType::Currency), Value(Currency{12500}));
  EXPECT_EQ(SameNumberAs(Number("0.00005"), ColumnType::Currency), std::nullopt);
  EXPECT_EQ(SameNumberAs(16777217, ColumnType::Single), std::nullopt);
  EXPECT_EQ(SameNumberAs(0.1, ColumnType::Single), std::nullopt);
  EXPECT_EQ(SameNumberAs(1e300, ColumnType::Single), std::nullopt);
}

TEST(Literals, Numbers) {
  EXPECT_EQ(Number("17"), Value(17));
  EXPECT_EQ(Number("-17"), Value(-17));
  EXPECT_EQ(Number("2147483648").ToText(), "2147483648");
  EXPECT_EQ(Number("-.5").ToText(), "-0.5");
  EXPECT_EQ(Number("1e3"), Value(1000.0));
  EXPECT_EQ(Number("12345678901234567890123456789").As<double>() != nullptr, true);
  for (const char* text :
       {"", "-", ".", "1.2.3", "1e", "0x10", "1,5", " 1", "1 ", "--1", "nan", "inf", "1e999"})
    EXPECT_EQ(ParseNumber(text), std::nullopt) << text;
}

TEST(Literals, Dates) {
  EXPECT_EQ(ParseDate("1899-12-30")->days, 0);
  EXPECT_EQ(ParseDate("2024-09-05")->days, 45540);
  EXPECT_EQ(ParseDate("1899-12-30 12:00")->days, 0.5);
  EXPECT_EQ(ParseDate("1899-12-29 06:00:00")->days, -1.25);
  EXPECT_EQ(Value(*ParseDate("0100-01-01")).ToText(), "0100-01-01");
  EXPECT_EQ(Value(*ParseDate("9999-12-31 23:59:59")).ToText(), "9999-12-31 23:59:59");
  for (const char* text : {"2024-02-30", "2024-13-01", "2023-02-29", "24-09-05", "2024-09-05 24:00",
                           "2024-09-05 1:00", "2024-09-05x", "0099-01-01", "2024/09/05"}) {
    EXPECT_FALSE(ParseDate(text).has_value()) << text;
  }
}

TEST(Literals, GuidsAreReadAsTheyAreWritten) {
  const char* const text = "{01234567-89AB-CDEF-0123-456789ABCDEF}";
  EXPECT_EQ(Value(*ParseGuid(text)).ToText(), text);
  EXPECT_EQ(ParseGuid("01234567-89ab-cdef-0123-456789abcdef"), ParseGuid(text));
  EXPECT_FALSE(ParseGuid("{01234567-89AB-CDEF-0123-456789ABCDEG}").has_value());
  EXPECT_FALSE(ParseGuid("0123456789ABCDEF0123456789ABCDEF").has_value());
}

TEST(Comparison, TextGoesByTheSortOrder_NullComesFirst) {
  EXPECT_EQ(CompareValues("Smith", "SMITH"), std::strong_ordering::equal);
  EXPECT_EQ(CompareValues("Émile", "Emilf"), std::strong_ordering::less);
  EXPECT_EQ(CompareValues("Emile", "Émile"), std::strong_ordering::less);
  EXPECT_EQ(CompareValues(Value(), ""), std::strong_ordering::less);
  EXPECT_EQ(CompareValues(Value(), -5), std::strong_ordering::less);
  EXPECT_EQ(CompareValues(DateTime{1}, DateTime{1.5}), std::strong_ordering::less);
}

}  // namespace
}  // namespace jet::sql

#include <cmath>
#include <limits>
#include <optional>
#include <string>

#include <gtest/gtest.h>

#include "jet/dao/Conversion.h"
#include "tests/jet/dao/Databases.h"

namespace jet {
namespace {

using test::ExpectError;

format::ColumnDefinition Column(ColumnType type, std::uint16_t size = 0) {
  format::ColumnDefinition column;
  column.name = "the column";
  column.type = type;
  column.size = size;
  column.precision = 6;
  column.scale = 2;
  return column;
}

Value Convert(const Value& value, ColumnType type, std::uint16_t size = 20) {
  return ConvertForColumn(value, Column(type, size), "the table");
}

void ExpectRefused(const Value& value, ColumnType type, ErrorNumber number = ErrorNumber::CannotConvert) {
  SCOPED_TRACE("'" + value.ToText() + "' into type " + std::to_string(static_cast<int>(type)));
  const std::string sentence = ExpectError(number, [&] { Convert(value, type); });
  EXPECT_NE(sentence.find("the column"), std::string::npos) << sentence;
  EXPECT_NE(sentence.find("the table"), std::string::npos) << sentence;
}

TEST(Conversion, TextThatHoldsANumberFitsNumberColumns) {
  EXPECT_EQ(Convert("17", ColumnType::Long), Value(17));
  EXPECT_EQ(Convert("  -17\t", ColumnType::Long), Value(-17));
  EXPECT_EQ(Convert("1e2", ColumnType::Integer), Value(100));
  EXPECT_EQ(Convert("+2.5", ColumnType::Double), Value(2.5));
  EXPECT_EQ(Convert("0.5", ColumnType::Single), Value(0.5F));
  EXPECT_EQ(Convert("12.34565", ColumnType::Currency), Value(Currency{123456}));
  EXPECT_EQ(Convert("1.5", ColumnType::YesNo), Value(true));
  for (const char* text : {"", " ", "x", "17x", "1,5", "1 7", "0x11"}) {
    ExpectRefused(text, ColumnType::Long);
    ExpectRefused(text, ColumnType::Double);
    ExpectRefused(text, ColumnType::Currency);
  }
}

TEST(Conversion, FractionsRoundHalvesToEven) {
  EXPECT_EQ(Convert(2.5, ColumnType::Long), Value(2));
  EXPECT_EQ(Convert(3.5, ColumnType::Long), Value(4));
  EXPECT_EQ(Convert("-2.5", ColumnType::Long), Value(-2));
  EXPECT_EQ(Convert(Currency{25000}, ColumnType::Byte), Value(2));
  EXPECT_EQ(Convert(2.00005, ColumnType::Currency), Value(Currency{20000}));
  EXPECT_EQ(Convert(2.00015, ColumnType::Currency), Value(Currency{20002}));
  EXPECT_EQ(Convert("1234.565", ColumnType::Decimal).ToText(), "1234.56");
}

TEST(Conversion, NumbersOutOfRangeAreRefused) {
  EXPECT_EQ(Convert("2147483647.4", ColumnType::Long), Value(2147483647));
  ExpectRefused("2147483647.5", ColumnType::Long);
  ExpectRefused(-2147483649.0, ColumnType::Long);
  ExpectRefused(32768, ColumnType::Integer);
  ExpectRefused(-1, ColumnType::Byte);
  ExpectRefused(256, ColumnType::Byte);
  ExpectRefused(1e39, ColumnType::Single);
  ExpectRefused(1e300, ColumnType::Long);
  ExpectRefused(std::nan(""), ColumnType::Long);
  ExpectRefused(std::numeric_limits<double>::infinity(), ColumnType::Double);
  EXPECT_EQ(Convert("922337203685477.5807", ColumnType::Currency),
            Value(Currency{std::numeric_limits<std::int64_t>::max()}));
  ExpectRefused("922337203685477.5808", ColumnType::Currency);
  ExpectRefused(10000, ColumnType::Decimal);  // six digits, two of them decimals
  EXPECT_EQ(Convert(-9999.99, ColumnType::Decimal).ToText(), "-9999.99");
}

TEST(Conversion, YesNo) {
  for (const char* text : {"True", "YES", " yes ", "-1", "7"})
    EXPECT_EQ(Convert(text, ColumnType::YesNo), Value(true)) << text;
  for (const char* text : {"false", "No", "0", "0.0"})
    EXPECT_EQ(Convert(text, ColumnType::YesNo), Value(false)) << text;
  EXPECT_EQ(Convert(0.25, ColumnType::YesNo), Value(true));
  EXPECT_EQ(Convert(Value(), ColumnType::YesNo), Value(false));
  EXPECT_EQ(Convert(true, ColumnType::Long), Value(-1));
  EXPECT_EQ(Convert(true, ColumnType::Text), Value("True"));
  ExpectRefused("maybe", ColumnType::YesNo);
  ExpectRefused(DateTime{1}, ColumnType::YesNo);
}

TEST(Conversion, TextColumns) {
  EXPECT_EQ(Convert(17, ColumnType::Text), Value("17"));
  EXPECT_EQ(Convert(-2.5, ColumnType::Text), Value("-2.5"));
  EXPECT_EQ(Convert(Currency{-5000}, ColumnType::Text), Value("-0.5"));
  EXPECT_EQ(Convert("0123456789", ColumnType::Text), Value("0123456789"));
  ExpectRefused("0123456789a", ColumnType::Text, ErrorNumber::TextTooLong);
  // Lengths are counted in UTF-16 units: an emoji is two.
  EXPECT_EQ(Convert("ééééééééé日", ColumnType::Text), Value("ééééééééé日"));
  EXPECT_EQ(Convert("12345678😀", ColumnType::Text), Value("12345678😀"));
  ExpectRefused("123456789😀", ColumnType::Text, ErrorNumber::TextTooLong);
  ExpectRefused(std::string(1000, 'x'), ColumnType::Text, ErrorNumber::TextTooLong);
  EXPECT_EQ(Convert(std::string(1000, 'x'), ColumnType::Memo), Value(std::string(1000, 'x')));
  ExpectRefused("\xFF\xFE", ColumnType::Text);
  ExpectRefused(Bytes(2), ColumnType::Text);
}

TEST(Conversion, ZeroHasOneSign) {
  // As the signs have keys of their own, a unique index would take both.
  EXPECT_FALSE(std::signbit(*Convert(-0.0, ColumnType::Double).As<double>()));
  EXPECT_FALSE(std::signbit(*Convert(-0.0, ColumnType::Single).As<float>()));
}

TEST(Conversion, DatesGuidsAndBytes) {
  EXPECT_EQ(Convert("2024-09-05 12:00", ColumnType::DateTime), Value(DateTime{45540.5}));
  EXPECT_EQ(Convert(DateTime{45540}, ColumnType::Memo), Value("2024-09-05"));
  ExpectRefused("5.9.2024", ColumnType::DateTime);
  ExpectRefused(17, ColumnType::DateTime);
  ExpectRefused(DateTime{1e9}, ColumnType::DateTime);
  // What the checker takes: midnight of the first day, the last moment of the last.
  EXPECT_EQ(Convert("0100-01-01", ColumnType::DateTime), Value(DateTime{-657434}));
  ExpectRefused("0100-01-01 06:00", ColumnType::DateTime);
  EXPECT_EQ(Convert(DateTime{2958465.99}, ColumnType::DateTime), Value(DateTime{2958465.99}));
  ExpectRefused(DateTime{2958466}, ColumnType::DateTime);
  EXPECT_FALSE(std::signbit(Convert(DateTime{-0.0}, ColumnType::DateTime).As<DateTime>()->days));
  ExpectRefused(DateTime{1}, ColumnType::Long);
  const Value guid = Convert("{01234567-89AB-CDEF-0123-456789ABCDEF}", ColumnType::Guid);
  EXPECT_EQ(guid.ToText(), "{01234567-89AB-CDEF-0123-456789ABCDEF}");
  ExpectRefused("0123", ColumnType::Guid);
  EXPECT_EQ(Convert(Bytes(3), ColumnType::Ole), Value(Bytes(3)));
  ExpectRefused(Bytes(21), ColumnType::Binary);
  ExpectRefused("bytes", ColumnType::Ole);
}

TEST(Conversion, NullStaysNull) {
  for (const ColumnType type : {ColumnType::Long, ColumnType::Text, ColumnType::DateTime, ColumnType::Ole})
    EXPECT_EQ(Convert(Value(), type), Value());
}

TEST(ConstantDefault, KnowsConstants) {
  EXPECT_EQ(ConstantDefault("0"), Value(0));
  EXPECT_EQ(ConstantDefault("=-1.5").value_or(Value()).ToText(), "-1.5");
  EXPECT_EQ(ConstantDefault(" False "), Value(false));
  EXPECT_EQ(ConstantDefault("YES"), Value(true));
  EXPECT_EQ(ConstantDefault("null"), Value());
  EXPECT_EQ(ConstantDefault("\"QB\""), Value("QB"));
  EXPECT_EQ(ConstantDefault("\"say \"\"x\"\"\""), Value("say \"x\""));
  EXPECT_EQ(ConstantDefault("'it''s'"), Value("it's"));
  EXPECT_EQ(ConstantDefault("\"\""), Value(""));
  for (const char* expression : {"Date()", "Now()", "1+1", "\"a\" & \"b\"", "QB", "\"a", "", "\"", "'a'b'"})
    EXPECT_EQ(ConstantDefault(expression), std::nullopt) << expression;
}

}  // namespace
}  // namespace jet

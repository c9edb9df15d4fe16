#include "jet/Value.h"
#include "jet/format/TableDefinitionCodec.h"
#include "jet/format/ValueCodec.h"
#include "tests/jet/format/FormatTestSupport.h"

namespace jet::format::test {
namespace {

ColumnDefinition ColumnOf(ColumnType type, std::uint16_t size, std::uint8_t flags) {
  ColumnDefinition column;
  column.name = "amount";
  column.type = type;
  column.size = size;
  column.flags = flags;
  column.scale = 4;
  column.compressed = true;
  return column;
}

ColumnDefinition FixedOf(ColumnType type) {
  return ColumnOf(type, FixedSizeOf(type), 0x03);
}

TEST(Value, ToText_IsWhatJoiningToTextGives) {
  EXPECT_EQ(Value().ToText(), "");
  EXPECT_EQ(Value(true).ToText() + Value(false).ToText(), "TrueFalse");
  EXPECT_EQ(Value(-17).ToText(), "-17");
  EXPECT_EQ(Value(-2.5).ToText(), "-2.5");
  EXPECT_EQ(Value(0.1 + 0.2).ToText(), "0.3");
  EXPECT_EQ(Value(1234567890123.0).ToText(), "1234567890123");
  EXPECT_EQ(Value(-0.0).ToText(), "0");
  EXPECT_EQ(Value(0.1F).ToText(), "0.1");
  EXPECT_EQ(Value(Currency{-12345000}).ToText(), "-1234.5");
  EXPECT_EQ(Value(Currency{-1}).ToText(), "-0.0001");
  EXPECT_EQ(Value(Currency{std::numeric_limits<std::int64_t>::min()}).ToText(), "-922337203685477.5808");
  EXPECT_EQ(Value(Decimal{{0, 1, 0, 0}, 3, true}).ToText(), "-4294967.296");
  EXPECT_EQ(Value(Decimal{{~0U, ~0U, ~0U, ~0U}, 0, false}).ToText(),
            "340282366920938463463374607431768211455");
  EXPECT_EQ(Value(Decimal{{}, 5, true}).ToText(), "0");
  EXPECT_EQ(Value(FromHex("00ff1a")).ToText(), "00FF1A");
}

TEST(Value, ToText_OfDates) {
  EXPECT_EQ(Value(DateTime{0}).ToText(), "1899-12-30");
  EXPECT_EQ(Value(DateTime{-1.25}).ToText(), "1899-12-29 06:00:00");
  EXPECT_EQ(Value(DateTime{42850.4819097222}).ToText(), "2017-04-25 11:33:57");
  EXPECT_EQ(Value(DateTime{42850.9999999}).ToText(), "2017-04-26");
  EXPECT_EQ(Value(DateTime{-657434}).ToText(), "0100-01-01");
  EXPECT_EQ(Value(DateTime{2958465.5}).ToText(), "9999-12-31 12:00:00");
  EXPECT_EQ(Value(DateTime{1e300}).ToText(), "1e+300");
}

TEST(ValueCodec, ReadsWhatItWrites) {
  const std::vector<std::tuple<ColumnDefinition, Value, std::string>> cases = {
      {FixedOf(ColumnType::Byte), 200, "c8"},
      {FixedOf(ColumnType::Integer), -2, "feff"},
      {FixedOf(ColumnType::Long), -2, "feffffff"},
      {FixedOf(ColumnType::Currency), Currency{10000}, "1027000000000000"},
      {FixedOf(ColumnType::Single), 1.5F, "0000c03f"},
      {FixedOf(ColumnType::Double), -2.0, "00000000000000c0"},
      {FixedOf(ColumnType::DateTime), DateTime{1}, "000000000000f03f"},
      {FixedOf(ColumnType::Decimal), Decimal{{1, 2, 3, 0}, 4, true}, "8000000000030000000200000001000000"},
      {FixedOf(ColumnType::Guid), Guid{{1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15, 16}},
       "0102030405060708090a0b0c0d0e0f10"},
      {ColumnOf(ColumnType::Text, 20, 0x02), "foo2", "fffe666f6f32"},
      {ColumnOf(ColumnType::Text, 2, 0x03), "N", "4e00"},
      {ColumnOf(ColumnType::Text, 6, 0x03), "N  ", "4e0020002000"},
      {ColumnOf(ColumnType::Binary, 10, 0x02), FromHex("65 89"), "6589"},
      {ColumnOf(ColumnType::Block, 4, 0x03), FromHex("01020000"), "01020000"},
  };
  for (const auto& [column, value, hex] : cases) {
    Bytes stored = FromHex("aa");
    AppendValue(column, value, stored);
    EXPECT_EQ(ToHex(stored), "aa" + hex);
    EXPECT_EQ(DecodeValue(column, std::span(stored).subspan(1)), value) << hex;
  }
}

TEST(ValueCodec, RefusesWhatDoesNotFit) {
  const auto refused = [](const ColumnDefinition& column, const Value& value) {
    return ErrorOf([&] {
      Bytes into;
      AppendValue(column, value, into);
    });
  };
  EXPECT_EQ(refused(FixedOf(ColumnType::Byte), 256), 3421);
  EXPECT_EQ(refused(FixedOf(ColumnType::Integer), 32768), 3421);
  EXPECT_EQ(refused(FixedOf(ColumnType::Long), "1"), 3421);
  EXPECT_EQ(refused(FixedOf(ColumnType::Decimal), Decimal{{1, 0, 0, 0}, 2, false}), 3421);
  EXPECT_EQ(refused(ColumnOf(ColumnType::Text, 6, 0x02), "four"), 3163);
  EXPECT_EQ(refused(ColumnOf(ColumnType::Binary, 1, 0x02), FromHex("0102")), 3421);
  EXPECT_EQ(ErrorOf([] { DecodeValue(FixedOf(ColumnType::Long), FromHex("010203")); }), kDamaged);
  EXPECT_EQ(ErrorOf([] { DecodeValue(ColumnOf(ColumnType{99}, 4, 0x03), FromHex("01020304")); }), kDamaged);
}

}  // namespace
}  // namespace jet::format::test

#include <algorithm>
#include <bit>
#include <cmath>
#include <functional>
#include <limits>

#include "jet/format/IndexKey.h"
#include "tests/jet/format/FormatTestSupport.h"

namespace jet::format::test {
namespace {

ColumnDefinition ColumnOf(ColumnType type) {
  ColumnDefinition column;
  column.name = "c";
  column.type = type;
  return column;
}

std::string KeyOf(const Value& value, ColumnType type, bool ascending = true) {
  Bytes key;
  return AppendKeyColumn(key, value, ColumnOf(type), ascending) ? ToHex(key) : "none";
}

TEST(IndexKey, OfValuesInRealIndexes) {
  EXPECT_EQ(KeyOf(1, ColumnType::Long), "7f80000001");
  EXPECT_EQ(KeyOf(5000, ColumnType::Long, false), "807fffec77");
  EXPECT_EQ(KeyOf(0x0F000002, ColumnType::Long), "7f8f000002");
  EXPECT_EQ(KeyOf(-2147483647 - 1, ColumnType::Long), "7f00000000");
  EXPECT_EQ(KeyOf(200, ColumnType::Byte), "7fc8");
  EXPECT_EQ(KeyOf("MSysDb", ColumnType::Text), "7f606b766b4f4c0100");
  EXPECT_EQ(KeyOf("abc", ColumnType::Text, false), "80b5b3b2feff00");
  EXPECT_EQ(KeyOf(true, ColumnType::YesNo), "7f00");
  EXPECT_EQ(KeyOf(Null(), ColumnType::YesNo), "7fff");
  EXPECT_EQ(KeyOf(Null(), ColumnType::Text), "00");
  EXPECT_EQ(KeyOf(Null(), ColumnType::Text, false), "ff");
  EXPECT_EQ(KeyOf(FromHex("0102030405060708090a"), ColumnType::Binary),
            "7f010203040506070809090a00000000000002");
  EXPECT_EQ(KeyOf(FromHex("0102030405060708"), ColumnType::Binary), "7f010203040506070808");
  EXPECT_EQ(KeyOf(Bytes{}, ColumnType::Binary), "7f000000000000000000");
}

TEST(IndexKey, OfAGuid_FollowsItsWrittenForm) {
  Guid guid;
  for (std::uint8_t i = 0; i < 16; ++i)
    guid.bytes[i] = i;
  EXPECT_EQ(KeyOf(guid, ColumnType::Guid), "7f03020100050407060908090a0b0c0d0e0f08");
}

TEST(IndexKey, OfDecimals_PutsNegativeOnesFirstEitherWay) {
  Decimal decimal;
  decimal.words[0] = 0x01020304;
  EXPECT_EQ(KeyOf(decimal, ColumnType::Decimal), "7fff00000000000000000000000001020304");
  EXPECT_EQ(KeyOf(decimal, ColumnType::Decimal, false), "80fffffffffffffffffffffffffffefdfcfb");
  decimal.negative = true;
  EXPECT_EQ(KeyOf(decimal, ColumnType::Decimal), "7f00fffffffffffffffffffffffffefdfcfb");
  EXPECT_EQ(KeyOf(decimal, ColumnType::Decimal, false), "800000000000000000000000000001020304");
  EXPECT_EQ(KeyOf({}, ColumnType::Decimal, false), "ff");
}

TEST(IndexKey, OfMemos_IsThatOfTheirFirst255Characters) {
  EXPECT_EQ(KeyOf(std::string(300, 'a'), ColumnType::Memo), KeyOf(std::string(255, 'a'), ColumnType::Text));
  EXPECT_EQ(KeyOf("abc", ColumnType::Memo, false), KeyOf("abc", ColumnType::Text, false));
}

TEST(IndexKey, WithoutAKnownForm_IsRefusedAndLeavesTheKey) {
  EXPECT_EQ(KeyOf(Bytes{}, ColumnType::Binary, false), "none");
  EXPECT_EQ(KeyOf(Guid{}, ColumnType::Guid, false), "none");
  EXPECT_EQ(KeyOf(Bytes{}, ColumnType::Ole), "none");
  EXPECT_EQ(KeyOf("x", ColumnType::Long), "none");
  EXPECT_EQ(KeyOf(256, ColumnType::Byte), "none");
  EXPECT_EQ(KeyOf(-32769, ColumnType::Integer), "none");
  ColumnDefinition swedish = ColumnOf(ColumnType::Text);
  swedish.sortLocale = 0x041D;
  ColumnDefinition later = ColumnOf(ColumnType::Text);
  later.sortVersion = 1;
  for (const auto& column : {swedish, later}) {
    Bytes key = FromHex("7f80");
    EXPECT_FALSE(AppendKeyColumn(key, "ab", column, true));
    EXPECT_EQ(ToHex(key), "7f80");
  }
}

/// Keys of random values must sort as the values do, and descending keys the other way round.
template <typename Make>
void ExpectOrder(ColumnType type, Make make) {
  Random random;
  for (int round = 0; round < 2000; ++round) {
    const auto [valueA, orderA] = make(random);
    const auto [valueB, orderB] = make(random);
    for (const bool ascending : {true, false}) {
      Bytes a;
      Bytes b;
      ASSERT_TRUE(AppendKeyColumn(a, valueA, ColumnOf(type), ascending));
      ASSERT_TRUE(AppendKeyColumn(b, valueB, ColumnOf(type), ascending));
      ASSERT_EQ(a < b, ascending ? orderA < orderB : orderB < orderA)
          << valueA.ToText() << " with " << valueB.ToText();
    }
  }
}

TEST(IndexKey, OfNumbers_SortsAsTheyDo) {
  ExpectOrder(ColumnType::Integer, [](Random& random) {
    const auto n = static_cast<std::int32_t>(random.Below(65536)) - 32768;
    return std::pair(Value(n), n);
  });
  ExpectOrder(ColumnType::Currency, [](Random& random) {
    const auto n = static_cast<std::int64_t>(random.Bits());
    return std::pair(Value(Currency{n}), n);
  });
  ExpectOrder(ColumnType::DateTime, [](Random& random) {
    const double n = (static_cast<double>(random.Below(2000000)) - 1000000) / 16;
    return std::pair(Value(DateTime{n}), n);
  });
  ExpectOrder(ColumnType::Double, [](Random& random) {
    double n = std::bit_cast<double>(random.Bits());
    if (!std::isfinite(n)) n = std::numeric_limits<double>::infinity();
    return std::pair(Value(n), n);
  });
  ExpectOrder(ColumnType::Single, [](Random& random) {
    const float n = (static_cast<float>(random.Below(2000)) - 1000) * 0.37F;
    return std::pair(Value(n), n);
  });
}

}  // namespace
}  // namespace jet::format::test

#include <map>

#include "jet/format/LongValueReference.h"
#include "jet/format/RowBuilder.h"
#include "jet/format/RowCodec.h"
#include "jet/format/TableDefinitionLayout.h"
#include "tests/jet/format/FormatTestSupport.h"

namespace jet::format::test {
namespace {

/// Makes definitions column by column.
class TableMaker {
 public:
  TableMaker& Fixed(ColumnType type, std::uint16_t size) {
    ColumnDefinition& column = Add(type, size, 0x03);
    column.fixedOffset = m_fixed;
    m_fixed = static_cast<std::uint16_t>(m_fixed + (type == ColumnType::YesNo ? 0 : size));
    return *this;
  }
  TableMaker& Variable(ColumnType type) {
    Add(type, 510, 0x02).variableIndex = table.variableColumnsEver;
    ++table.variableColumnsEver;
    return *this;
  }
  /// Takes the first column off the list, as if it had been deleted.
  TableMaker& DeleteFirst() {
    table.columns.erase(table.columns.begin());
    return *this;
  }
  TableDefinition table;

 private:
  ColumnDefinition& Add(ColumnType type, std::uint16_t size, std::uint8_t flags) {
    ColumnDefinition column;
    column.name = "c" + std::to_string(table.columnsEver);
    column.type = type;
    column.size = size;
    column.flags = flags;
    column.number = table.columnsEver++;
    table.columns.push_back(column);
    return table.columns.back();
  }
  std::uint16_t m_fixed = 0;
};

RowField Field(const TableDefinition& table, std::span<const std::byte> row, std::size_t column) {
  return FieldOf(row, table.columns[column], table.variableColumnsEver != 0);
}

TableDefinition IdAndText() {
  return TableMaker().Fixed(ColumnType::Long, 4).Variable(ColumnType::Text).table;
}

TEST(Row, OfRealFiles_IsTakenApartAndPutTogether) {
  const TableDefinition table = IdAndText();
  const Bytes row = FromHex("0200 02000000 fffe666f6f32 0c00 0600 0100 03");
  EXPECT_EQ(ToHex(Field(table, row, 0).bytes), "02000000");
  EXPECT_EQ(ToHex(Field(table, row, 1).bytes), "fffe666f6f32");
  RowBuilder builder(table);
  builder.Set(1, FromHex("fffe666f6f32"));
  builder.Set(0, FromHex("02000000"));
  EXPECT_EQ(ToHex(builder.Build()), ToHex(row));
}

TEST(Row, WithADeletedColumn_KeepsItsRoomAndItsMaskBits) {
  const TableDefinition table = TableMaker()
                                    .Fixed(ColumnType::Long, 4)
                                    .Fixed(ColumnType::Long, 4)
                                    .Fixed(ColumnType::Long, 4)
                                    .Fixed(ColumnType::Long, 4)
                                    .Variable(ColumnType::Text)
                                    .Fixed(ColumnType::Long, 4)
                                    .DeleteFirst()
                                    .table;
  const Bytes row =
      FromHex("0600 0e000080 00000000 00000000 0a000000 00000000 fffe62617a30 1c00 1600 0100 fe");
  EXPECT_EQ(ToHex(Field(table, row, 2).bytes), "0a000000");
  EXPECT_EQ(ToHex(Field(table, row, 3).bytes), "fffe62617a30");
  RowBuilder builder(table, row);
  EXPECT_EQ(ToHex(builder.Build()), ToHex(row));
  builder.SetNull(2);
  builder.Set(3, FromHex("6100"));
  EXPECT_EQ(ToHex(builder.Build()),
            "06000e00008000000000000000000000000000000000"
            "6100"
            "1800"
            "1600"
            "0100"
            "f6");
}

TEST(Row, OlderThanItsColumns_ReadsThemAsNullAndFalse) {
  const Bytes row = FromHex("0200 02000000 fffe666f6f32 0c00 0600 0100 ff");
  TableDefinition table = TableMaker()
                              .Fixed(ColumnType::Long, 4)
                              .Variable(ColumnType::Text)
                              .Fixed(ColumnType::YesNo, 1)
                              .Variable(ColumnType::Text)
                              .Fixed(ColumnType::Integer, 2)
                              .table;
  for (std::size_t column : {2U, 3U, 4U})
    EXPECT_FALSE(Field(table, row, column).present) << column;
  RowBuilder builder(table, row);
  builder.SetYesNo(2, true);
  EXPECT_EQ(ToHex(builder.Build()),
            "0500"
            "02000000"
            "0000"
            "fffe666f6f32"
            "0e00"
            "0e00"
            "0800"
            "0200"
            "e7");
}

TEST(Row, WithSlack_IsReadFromItsEnd) {
  const Bytes row = FromHex("0200 02000000 6100 ffff 0800 0600 0100 03");
  EXPECT_EQ(ToHex(Field(IdAndText(), row, 1).bytes), "6100");
  EXPECT_EQ(ToHex(RowBuilder(IdAndText(), row).Build()),
            "0200"
            "02000000"
            "6100"
            "0800"
            "0600"
            "0100"
            "03");
}

TEST(Row, EmptyTextIsNotNull) {
  const TableDefinition table = IdAndText();
  RowBuilder builder(table);
  builder.Set(1, {});
  const Bytes row = builder.Build();
  EXPECT_TRUE(Field(table, row, 1).present);
  EXPECT_TRUE(Field(table, row, 1).bytes.empty());
  EXPECT_FALSE(Field(table, row, 0).present);
}

TEST(Row, LongerThanAPage_IsRefused) {
  const TableDefinition table = IdAndText();
  RowBuilder builder(table);
  builder.Set(1, Bytes(4080 - 13));
  EXPECT_EQ(builder.Build().size(), 4080U);
  builder.Set(1, Bytes(4080 - 12));
  EXPECT_EQ(ErrorOf([&] { builder.Build(); }), 3047);
}

TEST(Row, RandomRows_ComeBack) {
  Random random;
  for (int round = 0; round < 500; ++round) {
    TableMaker maker;
    const std::uint32_t columns = 1 + random.Below(20);
    for (std::uint32_t i = 0; i < columns; ++i) {
      switch (random.Below(3)) {
        case 0:
          maker.Fixed(ColumnType::YesNo, 1);
          break;
        case 1:
          maker.Fixed(ColumnType::Long, 4);
          break;
        default:
          maker.Variable(ColumnType::Binary);
          break;
      }
    }
    const TableDefinition& table = maker.table;
    std::map<std::size_t, Bytes> wanted;
    std::map<std::size_t, bool> yes;
    Bytes row;
    for (int edit = 0; edit < 4; ++edit) {
      RowBuilder builder = row.empty() ? RowBuilder(table) : RowBuilder(table, row);
      for (std::size_t i = 0; i < columns; ++i) {
        if (random.Below(2) == 0) continue;
        const ColumnDefinition& column = table.columns[i];
        if (column.type == ColumnType::YesNo) {
          builder.SetYesNo(i, yes[i] = random.Below(2) == 0);
        } else if (random.Below(4) == 0) {
          builder.SetNull(i);
          wanted.erase(i);
        } else {
          wanted[i] =
              Bytes(column.IsFixed() ? 4 : random.Below(60), static_cast<std::byte>(random.Below(256)));
          builder.Set(i, wanted[i]);
        }
      }
      row = builder.Build();
      for (std::size_t i = 0; i < columns; ++i) {
        const RowField field = Field(table, row, i);
        if (table.columns[i].type == ColumnType::YesNo) {
          ASSERT_EQ(field.present, yes[i]);
        } else {
          ASSERT_EQ(field.present, wanted.contains(i));
          if (field.present) {
            ASSERT_EQ(ToHex(field.bytes), ToHex(wanted[i]));
          }
        }
      }
    }
  }
}

TEST(Row, OfRandomBytes_IsReadWithinItsBoundsOrDamaged) {
  Random random;
  const TableDefinition table = TableMaker()
                                    .Fixed(ColumnType::Long, 4)
                                    .Variable(ColumnType::Text)
                                    .Fixed(ColumnType::YesNo, 1)
                                    .Variable(ColumnType::Text)
                                    .Fixed(ColumnType::Double, 8)
                                    .table;
  int damaged = 0;
  for (int round = 0; round < 20000; ++round) {
    Bytes row = FromHex("0500 02000000 0102030405060708 61006200 6300 1400 1200 0e00 0200 1f");
    for (std::uint32_t flips = random.Below(4); flips > 0; --flips) {
      row[random.Below(static_cast<std::uint32_t>(row.size()))] = static_cast<std::byte>(random.Below(256));
    }
    if (random.Below(3) == 0) row.resize(random.Below(static_cast<std::uint32_t>(row.size())));
    row.shrink_to_fit();
    for (std::size_t i = 0; i < table.columns.size(); ++i) {
      const int error = ErrorOf([&] {
        const RowField field = Field(table, row, i);
        if (!field.bytes.empty()) {
          EXPECT_GE(field.bytes.data(), row.data());
          EXPECT_LE(field.bytes.data() + field.bytes.size(), row.data() + row.size());
        }
      });
      ASSERT_TRUE(error == 0 || error == kDamaged) << error;
      damaged += error != 0 ? 1 : 0;
    }
    const int error = ErrorOf([&] { RowBuilder(table, row).Build(); });
    ASSERT_TRUE(error == 0 || error == kDamaged) << error;
  }
  EXPECT_GT(damaged, 1000);
}

TEST(LongValueReference, ReadsAndWritesAllThreeModes) {
  const auto one = LongValueReference::Decode(FromHex("14040040 14100000 00000000"), "c");
  EXPECT_EQ(one.mode, LongValueReference::Mode::OnePiece);
  EXPECT_EQ(one.length, 1044U);
  EXPECT_EQ(RowPointerPage(one.pointer), 0x10U);
  EXPECT_EQ(RowPointerSlot(one.pointer), 0x14);
  for (const char* hex :
       {"140400401410000000000000", "0200008000000000000000006162", "00100000141000002 26b805c"}) {
    const Bytes stored = FromHex(hex);
    Bytes back;
    LongValueReference::Decode(stored, "c").AppendTo(back);
    EXPECT_EQ(ToHex(back), ToHex(std::span(stored).first(12)));
  }
  for (const char* hex :
       {"1404004014100000000000", "030000800000000000000000 6162", "140400c01410000000000000"}) {
    EXPECT_EQ(ErrorOf([&] { LongValueReference::Decode(FromHex(hex), "c"); }), kDamaged) << hex;
  }
}

}  // namespace
}  // namespace jet::format::test

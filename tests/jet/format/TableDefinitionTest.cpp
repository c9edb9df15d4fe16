#include <algorithm>
#include <map>
#include <sstream>

#include "jet/format/TableDefinition.h"
#include "jet/format/TableDefinitionCodec.h"
#include "jet/format/TableDefinitionLayout.h"
#include "tests/jet/format/FormatTestSupport.h"

namespace jet::format::test {
namespace {

/// The stream of a definition that begins on a page of a file.
Bytes StreamOf(Bytes& file, std::size_t page) {
  Bytes stream;
  for (std::size_t number = page; number != 0;
       number = LoadU32(PageOf(file, number).data() + definition_page::kNextPage)) {
    const auto bytes = PageOf(file, number).subspan(stream.empty() ? 0 : definition_page::kHeadSize);
    stream.insert(stream.end(), bytes.begin(), bytes.end());
  }
  stream.resize(8 + LoadU32(stream.data() + definition_page::kLength));
  return stream;
}

/// Page number -> stream of the definitions of a new database's system tables.
std::map<std::uint32_t, Bytes> SystemDefinitions() {
  const Bytes file = ReadTestFile("system-definitions.txt");
  std::string text;
  for (const std::byte b : file)
    text.push_back(static_cast<char>(b));
  std::istringstream lines(text);
  std::map<std::uint32_t, Bytes> result;
  std::uint32_t page = 0;
  for (std::string line; std::getline(lines, line);) {
    if (line.starts_with("#")) continue;
    if (line.starts_with("page ")) {
      page = static_cast<std::uint32_t>(std::stoul(line.substr(5)));
      continue;
    }
    const Bytes bytes = FromHex(line);
    result[page].insert(result[page].end(), bytes.begin(), bytes.end());
  }
  return result;
}

TEST(TableDefinition, OfTheSystemTables_ComesBackByteForByte) {
  const auto definitions = SystemDefinitions();
  ASSERT_EQ(definitions.size(), 4U);
  for (const auto& [page, stream] : definitions) {
    const TableDefinition table = DecodeTableDefinition(stream, page);
    EXPECT_TRUE(table.isSystem);
    Bytes back = EncodeTableDefinition(table, DecodeDefinitionCounts(stream));
    StoreU16(back.data() + definition_page::kFreeBytes, LoadU16(stream.data() + definition_page::kFreeBytes));
    EXPECT_EQ(ToHex(back), ToHex(stream)) << "page " << page;
  }
}

TEST(TableDefinition, OfTheCatalog_SaysWhatItsColumnsAre) {
  const TableDefinition table = DecodeTableDefinition(SystemDefinitions().at(2), 2);
  EXPECT_EQ(table.columns.size(), 17U);
  const auto name = std::find_if(table.columns.begin(), table.columns.end(),
                                 [](const auto& c) { return c.name == "Name"; });
  ASSERT_NE(name, table.columns.end());
  EXPECT_EQ(name->number, 2);
  EXPECT_EQ(name->type, ColumnType::Text);
  EXPECT_EQ(name->size, 510);
  EXPECT_FALSE(name->IsFixed());
  ASSERT_EQ(table.indexes.size(), 2U);
  EXPECT_EQ(table.indexes[0].root, 7U);
  EXPECT_EQ(table.indexes[0].columns.size(), 2U);
  EXPECT_TRUE(table.indexes[1].IsUnique());
  EXPECT_FALSE(table.indexes[1].IsRequired());
  EXPECT_EQ(table.logicalIndexes[0].name, "Id");
  EXPECT_EQ(table.logicalIndexes[0].kind, LogicalIndexDefinition::Kind::Primary);
  EXPECT_EQ(table.longValueMaps.size(), 7U);
  EXPECT_EQ(IndexRootAt(SystemDefinitions().at(2), 1) + 4, std::size_t{0x346} + 42);
}

TEST(TableDefinition, OfEveryTableOfAFile_KeepsWhatItKnows) {
  Bytes file = ReadTestFile("fixtures/league.mdb");
  int tables = 0;
  int rows = 0;
  for (std::uint32_t page = 2; page < file.size() / kPageSize; ++page) {
    if (LoadU8(PageOf(file, page).data()) != page_type::kTableDefinition) continue;
    const Bytes stream = StreamOf(file, page);
    const TableDefinition table = DecodeTableDefinition(stream, page);
    const DefinitionCounts counts = DecodeDefinitionCounts(stream);
    const Bytes once = EncodeTableDefinition(table, counts);
    EXPECT_EQ(once.size(), stream.size());
    const Bytes twice =
        EncodeTableDefinition(DecodeTableDefinition(once, page), DecodeDefinitionCounts(once));
    EXPECT_EQ(ToHex(twice), ToHex(once)) << "page " << page;
    ++tables;
    rows += table.isSystem ? 0 : static_cast<int>(counts.rows);
  }
  EXPECT_EQ(tables, 16);
  EXPECT_EQ(rows, 8 + 6 + 32 + 2500 + 14 + 20 + 12 + 96 + 112 + 1308 + 212 + 1);
}

TEST(TableDefinition, ThatContradictsItself_IsDamaged) {
  const Bytes good = SystemDefinitions().at(3);
  const auto damagedBy = [&](std::size_t at, std::uint8_t value) {
    Bytes bad = good;
    bad[at] = std::byte{value};
    return ErrorOf([&] { DecodeTableDefinition(bad, 3); });
  };
  const std::size_t firstColumn = 0x4B;
  EXPECT_EQ(damagedBy(definition_page::kLength, 0), kDamaged);
  EXPECT_EQ(damagedBy(definition_page::kColumnCount + 1, 1), kDamaged);        // more columns than bytes
  EXPECT_EQ(damagedBy(definition_page::kRealIndexCount + 3, 0xFF), kDamaged);  // a count that would overflow
  EXPECT_EQ(damagedBy(definition_page::kLogicalIndexCount, 0), kDamaged);      // its index runs into the maps
  EXPECT_EQ(damagedBy(definition_page::kColumnsEver, 3), kDamaged);  // a column's number is not below it
  EXPECT_EQ(damagedBy(firstColumn + 5, 3), kDamaged);                // two columns with one number
  EXPECT_EQ(damagedBy(firstColumn + 23, 5), kDamaged);               // a long of five bytes
  EXPECT_EQ(damagedBy(firstColumn + 21, 2), kDamaged);               // overlaps its neighbour
  EXPECT_EQ(damagedBy(firstColumn + 22, 0xFF), kDamaged);            // outside of any row
}

TEST(TableDefinition, WithRandomDamage_IsReadOrDamaged) {
  Random random;
  const Bytes good = SystemDefinitions().at(4);
  int refused = 0;
  for (int round = 0; round < 20000; ++round) {
    Bytes bad = good;
    for (std::uint32_t flips = 1 + random.Below(3); flips > 0; --flips) {
      bad[random.Below(static_cast<std::uint32_t>(bad.size()))] = static_cast<std::byte>(random.Below(256));
    }
    if (random.Below(4) == 0) {
      bad.resize(8 + random.Below(static_cast<std::uint32_t>(bad.size()) - 8));
      if (bad.size() >= 12) StoreU32(bad.data() + 8, static_cast<std::uint32_t>(bad.size() - 8));
    }
    const int error =
        ErrorOf([&] { EncodeTableDefinition(DecodeTableDefinition(bad, 4), DecodeDefinitionCounts(bad)); });
    ASSERT_TRUE(error == 0 || error == kDamaged) << error;
    refused += error != 0 ? 1 : 0;
  }
  EXPECT_GT(refused, 5000);
}

}  // namespace
}  // namespace jet::format::test

#include <algorithm>
#include <sstream>

#include "jet/format/DataPage.h"
#include "jet/table/EmptyDatabase.h"
#include "jet/table/UsageMap.h"
#include "tests/jet/table/TableTestSupport.h"
#include "tests/support/TestFiles.h"

namespace jet::test {
namespace {

std::string Hex(std::span<const std::byte> bytes) {
  std::string text;
  for (const std::byte b : bytes) {
    text += "0123456789abcdef"[std::to_integer<unsigned>(b) >> 4];
    text += "0123456789abcdef"[std::to_integer<unsigned>(b) & 15];
  }
  return text;
}

std::string HexOfPage(const TestDatabase& database, std::size_t page) {
  return Hex(std::span(database.Bytes()).subspan(page * kPageSize, kPageSize));
}

TEST(EmptyDatabase, HasTheSixteenPagesThatTheEngineHasAlwaysMade) {
  const TestDatabase database;
  ASSERT_EQ(database.Bytes().size(), 16 * kPageSize);
  EXPECT_EQ(database.Check(), "");
  // The global maps: sixteen pages in use; a second, empty map.
  const std::string maps = HexOfPage(database, 1);
  EXPECT_EQ(maps.substr(0, 36),
            "0101640f0100000000000000"
            "0200"
            "bb0f"
            "760f");
  EXPECT_EQ(maps.substr(2 * (kPageSize - 69), 2 * 69), "00000000000000" + std::string(2 * 62, 'f'));
  EXPECT_EQ(maps.substr(2 * (kPageSize - 138), 2 * 69), std::string(2 * 69, '0'));
  // The four definitions, byte for byte.
  std::istringstream lines(ReadWholeText(HALCYRA_TEST_DATA "/system-definitions.txt"));
  std::size_t page = 0;
  std::string wanted[16];
  for (std::string line; std::getline(lines, line);) {
    if (line.starts_with("page ")) {
      page = std::stoul(line.substr(5));
    } else if (!line.starts_with("#")) {
      line.erase(std::remove(line.begin(), line.end(), ' '), line.end());
      wanted[page] += line;
    }
  }
  for (page = 2; page <= 5; ++page) {
    wanted[page].resize(2 * kPageSize, '0');
    EXPECT_EQ(HexOfPage(database, page), wanted[page]) << "page " << page;
  }
}

TEST(EmptyDatabase, HasItsUsageMapsWhereTheyBelong) {
  const TestDatabase database;
  EXPECT_EQ(HexOfPage(database, 6).substr(0, 36), "0101590700000000000000001f00bb0f760f");
  const auto pagesOf = [&](std::uint32_t row) {
    return UsageMap(database.store->Pages(), 6 << 8 | row).Pages();
  };
  const std::map<std::uint32_t, PageNumber> used = {{0, 14}, {1, 14},  {16, 7},  {17, 8},  {18, 15}, {19, 15},
                                                    {20, 9}, {25, 10}, {28, 11}, {29, 12}, {30, 13}};
  for (std::uint32_t row = 0; row < 31; ++row) {
    const auto found = used.find(row);
    const std::vector<PageNumber> wanted =
        found == used.end() ? std::vector<PageNumber>{} : std::vector{found->second};
    EXPECT_EQ(pagesOf(row), wanted) << "row " << row;
  }
}

TEST(EmptyDatabase, HasTheRowsOfItsCatalog) {
  const TestDatabase database;
  const auto row = [&](PageNumber page, std::size_t slot) {
    const PageHandle handle = database.store->Pages().Get(page);
    return Hex(format::DataPageView(handle.Bytes(), page).Row(slot));
  };
  const std::string tables = row(14, 0);
  EXPECT_EQ(tables.substr(0, 24), "11000100000f0000000f0300");
  EXPECT_EQ(tables.substr(24, 16), tables.substr(40, 16));  // both dates
  EXPECT_EQ(tables.substr(56),
            "000000805400610062006c006500730006ea"
            "2e002e002e002e002e002e002e002e002e002e002c002000"
            "0b00"
            "ff0000");
  EXPECT_EQ(row(15, 0),
            "0400"
            "02000000"
            "00000600"
            "07e8"
            "0c00"
            "0a00"
            "0100"
            "07");
  EXPECT_EQ(row(15, 15),
            "0400"
            "0300000f"
            "ffff0f00"
            "06e8"
            "0c00"
            "0a00"
            "0100"
            "0f");
  EXPECT_EQ(database.store->TableNames(),
            (std::vector<std::string>{"MSysObjects", "MSysACEs", "MSysQueries", "MSysRelationships"}));
}

TEST(EmptyDatabase, WithPasswordAndCodedPages_OpensWithThePasswordAlone) {
  MemoryFileSystem files;
  CreateEmptyDatabase(files.Open(kName, {true, false, true}), kName, {"gehéim", 0xC0FFEE11}, kCache)->Close();
  EXPECT_EQ(IndependentCheck(files.Get(kName), true, "gehéim"), "");
  EXPECT_NE(files.Get(kName)[kPageSize], std::byte{1});
  const auto pages = [&] { return std::make_unique<PageStore>(files.Open(kName, {}), kName); };
  EXPECT_EQ(ErrorOf([&] { Store::Open(pages(), "geheim", kCache); }), 3031);
  EXPECT_EQ(Store::Open(pages(), "gehéim", kCache)->Catalog().size(), 4U);
  EXPECT_EQ(ErrorOf([&] {
              CreateEmptyDatabase(files.Open("other.mdb", {true, false, true}), "other.mdb",
                                  {std::string(21, 'x'), 0}, kCache);
            }),
            3259);
}

}  // namespace
}  // namespace jet::test

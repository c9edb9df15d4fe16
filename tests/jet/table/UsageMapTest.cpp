#include <random>
#include <set>

#include <gtest/gtest.h>

#include "jet/Error.h"
#include "jet/format/Bytes.h"
#include "jet/format/UsageMapRow.h"
#include "jet/table/UsageMap.h"
#include "tests/jet/table/BarePages.h"

namespace jet {
namespace {

using test::BarePages;

std::uint32_t NewMap(BarePages& bare) {
  MutablePage page = bare.pager.Change(BarePages::kMapPage);
  return UsageMap::Create(page);
}

TEST(UsageMapTest, RandomAddsAndRemoves_AgreeWithASet_AlsoWhenTheMapGrowsPastItsRow) {
  const unsigned seed = std::random_device{}();
  SCOPED_TRACE("seed " + std::to_string(seed));
  std::mt19937 random(seed);
  BarePages bare;
  ChangeUnit unit(bare.pager);
  while (bare.pager.PageCount() < 2000)
    bare.allocator.Allocate();
  // Pages near each other stay in the row, which moves along with them; pages far apart make the map one by
  // reference.
  for (const PageNumber reach : {300U, 1900U}) {
    UsageMap map(bare.pager, NewMap(bare));
    std::set<PageNumber> model;
    for (int step = 0; step < 2000; ++step) {
      const PageNumber page = 5 + 1000 * (reach == 300 ? 1U : 0U) + static_cast<PageNumber>(random() % reach);
      if (random() % 3 != 0) {
        map.Add(page, bare.allocator);
        model.insert(page);
      } else {
        map.Remove(page);
        model.erase(page);
      }
      ASSERT_EQ(map.Contains(page), model.count(page) == 1);
      const auto from = static_cast<PageNumber>(random() % 2000);
      const auto next = model.lower_bound(from);
      ASSERT_EQ(map.Next(from), next == model.end() ? format::kNoPage : *next);
    }
    EXPECT_EQ(map.Pages(), std::vector<PageNumber>(model.begin(), model.end()));
    EXPECT_EQ(map.MapPages().empty(), reach == 300);
  }
}

TEST(UsageMapTest, AMapThatListsPagesPastTheEnd_IsDamage) {
  BarePages bare;
  ChangeUnit unit(bare.pager);
  UsageMap map(bare.pager, NewMap(bare));
  map.Add(2, bare.allocator);
  MutablePage page = bare.pager.Change(BarePages::kMapPage);
  format::DataPage(page.Bytes(), page.Number()).MutableRow(0)[10] = std::byte{1};
  EXPECT_THROW(map.Pages(), Error);
}

TEST(UsageMapTest, AMapWithoutABitmap_IsDamage) {
  BarePages bare;
  ChangeUnit unit(bare.pager);
  MutablePage page = bare.pager.Change(BarePages::kMapPage);
  const std::array<std::byte, 5> row{};
  const std::uint8_t slot = format::DataPage(page.Bytes(), page.Number()).Insert(row);
  UsageMap map(bare.pager, format::MakeRowPointer(page.Number(), slot));
  EXPECT_THROW(map.Add(7, bare.allocator), Error);
}

TEST(PageAllocatorTest, AMapThatIsWrong_GivesAwayNoPageOfTheSystemTables_AndIsNotWritten) {
  BarePages bare;
  ChangeUnit unit(bare.pager);
  while (bare.pager.PageCount() < 600)
    bare.allocator.Allocate();
  MutablePage page = bare.pager.Change(1);
  format::DataPage global(page.Bytes(), 1);
  global.MutableRow(0)[5] = std::byte{0x01};
  EXPECT_THROW(bare.allocator.Allocate(), Error) << "the header page";
  const std::vector<std::byte> none;
  global.Replace(0, none, format::data_page::kLive);
  EXPECT_THROW(bare.allocator.Free(599), Error);
}

TEST(PageAllocatorTest, FreedPagesAreGivenOutAgain_LowestFirst_AndAnUndoneUnitGivesThemBack) {
  BarePages bare;
  {
    ChangeUnit unit(bare.pager);
    for (int i = 0; i < 20; ++i)
      bare.allocator.Allocate();
    bare.allocator.Free(9);
    bare.allocator.Free(7);
    unit.Commit();
  }
  {
    ChangeUnit unit(bare.pager);
    EXPECT_EQ(bare.allocator.Allocate().Number(), 7U);
    EXPECT_EQ(bare.allocator.Allocate().Number(), 9U);
    EXPECT_EQ(bare.allocator.Allocate().Number(), 26U);
  }
  EXPECT_TRUE(bare.allocator.IsFree(7));
  EXPECT_EQ(bare.pager.PageCount(), 26U);
  ChangeUnit unit(bare.pager);
  EXPECT_EQ(bare.allocator.Allocate().Number(), 7U);
}

/// The parameter: the page at which the global map begins when the file has grown for a while.
class PageAllocatorGrowthTest : public testing::TestWithParam<PageNumber> {};

TEST_P(PageAllocatorGrowthTest, TheGlobalMapGrowsWithTheFile_FirstItsRow_ThenByReference) {
  BarePages bare;
  ChangeUnit unit(bare.pager);
  std::set<PageNumber> given{0, 1, 2, 3, 4, 5};
  const auto growTo = [&](PageNumber pageCount) {
    while (bare.pager.PageCount() < pageCount)
      ASSERT_TRUE(given.insert(bare.allocator.Allocate().Number()).second);
  };
  std::size_t oldMapPages = 0;
  if (GetParam() != 0) {
    growTo(GetParam());
    oldMapPages = bare.pager.PageCount() - given.size();
    const MutablePage global = bare.pager.Change(1);
    std::vector<std::byte> row(format::usage_map::kNewRowBytes, std::byte{0xFF});
    format::StoreU8(row.data(), format::usage_map::kInline);
    format::StoreU32(row.data() + format::usage_map::kFirstPage, GetParam());
    format::DataPage(global.Bytes(), 1).Replace(0, row, format::data_page::kLive);
    bare.allocator.Free(1000);  // below the map
    given.erase(1000);
  }
  // The row of page 1 has space for the map of some 31,000 pages.
  growTo(34000);
  EXPECT_EQ(given.count(1000), 1U) << "a page that was freed is given out again";
  bare.allocator.CheckFileIsWhole();
  std::size_t mapPages = 0;
  for (PageNumber page = 0; page < bare.pager.PageCount(); ++page) {
    ASSERT_FALSE(bare.allocator.IsFree(page)) << page;
    if (!given.contains(page)) ++mapPages;
  }
  EXPECT_EQ(mapPages - oldMapPages, 2U) << "34,000 pages take two pages of map";
  bare.allocator.Free(33000);
  EXPECT_EQ(bare.allocator.Allocate().Number(), 33000U);
}

INSTANTIATE_TEST_SUITE_P(FirstPages, PageAllocatorGrowthTest, testing::Values(0, 3584, 32733, 33984));

}  // namespace
}  // namespace jet

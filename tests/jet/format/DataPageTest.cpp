#include <array>
#include <map>
#include <random>
#include <vector>

#include <gtest/gtest.h>

#include "jet/Error.h"
#include "jet/format/Bytes.h"
#include "jet/format/DataPage.h"

namespace jet::format {
namespace {

using Row = std::vector<std::byte>;

class DataPageTest : public ::testing::Test {
 protected:
  DataPageTest() { DataPage::Initialize(bytes, 27); }
  std::array<std::byte, kPageSize> bytes{};
};

Row RowOf(std::size_t size, int fill) {
  return Row(size, static_cast<std::byte>(fill));
}

TEST_F(DataPageTest, ThreeRowsOfNineteenBytes_GiveTheHeadOfARealPage) {
  DataPage page(bytes, 1);
  for (int i = 0; i < 3; ++i)
    page.Insert(RowOf(19, i));
  const std::array<int, 20> head{0x01, 0x01, 0xb3, 0x0f, 0x1b, 0,    0,    0,    0,    0,
                                 0,    0,    0x03, 0,    0xed, 0x0f, 0xda, 0x0f, 0xc7, 0x0f};
  for (std::size_t i = 0; i < head.size(); ++i)
    EXPECT_EQ(std::to_integer<int>(bytes[i]), head[i]) << "byte " << i;
}

TEST_F(DataPageTest, RandomChanges_KeepEveryOtherRowAndTheFreeSpaceFigure) {
  const unsigned seed = std::random_device{}();
  SCOPED_TRACE("seed " + std::to_string(seed));
  std::mt19937 random(seed);
  std::map<std::uint8_t, Row> model;
  std::size_t slots = 0;
  for (int step = 0; step < 3000; ++step) {
    DataPage page(bytes, 1);
    const Row row = RowOf(random() % 90, static_cast<int>(random() % 256));
    const auto pick = model.empty()
                          ? model.end()
                          : std::next(model.begin(), static_cast<std::ptrdiff_t>(random() % model.size()));
    if (random() % 3 == 0 && page.Fits(row.size())) {
      model[page.Insert(row)] = row;
      ++slots;
    } else if (pick != model.end() && random() % 4 != 0) {
      if (!page.FitsInPlace(pick->first, row.size())) continue;
      page.Replace(pick->first, row, data_page::kLive);
      pick->second = row;
    } else if (pick != model.end()) {
      page.Remove(pick->first);
      model.erase(pick);
    }
    const DataPageView view(bytes, 1);
    ASSERT_EQ(view.SlotCount(), slots);
    std::size_t used = 0;
    for (std::size_t slot = 0; slot < slots; ++slot) {
      const auto expected = model.find(static_cast<std::uint8_t>(slot));
      const RowSlot found = view.Slot(slot);
      used += found.end - found.begin;
      if (expected == model.end()) {
        ASSERT_EQ(found.flags, data_page::kDeleted);
        ASSERT_EQ(found.begin, found.end);
      } else {
        ASSERT_EQ(Row(view.Row(slot).begin(), view.Row(slot).end()), expected->second);
      }
    }
    ASSERT_EQ(view.FreeSpace(), kPageSize - 14 - 2 * slots - used);
    ASSERT_EQ(view.IsEmpty(), model.empty());
  }
}

TEST_F(DataPageTest, SlotsThatLeaveTheRowArea_AreDamage) {
  DataPage(bytes, 7).Insert(RowOf(30, 1));
  DataPage(bytes, 7).Insert(RowOf(30, 2));
  const auto raises = [&](std::uint16_t slotWord, std::size_t slot) {
    auto damaged = bytes;
    StoreU16(damaged.data() + data_page::kSlots + 2, slotWord);
    try {
      DataPageView(damaged, 7).Slot(slot);
    } catch (const Error& error) {
      return error.Number() == ErrorNumber::DamagedFile &&
             std::string(error.what()).find("Page 7") != std::string::npos;
    }
    return false;
  };
  EXPECT_TRUE(raises(0x0002, 1)) << "into the head";
  EXPECT_TRUE(raises(0x1FFF, 1)) << "past the end";
  EXPECT_TRUE(raises(4090, 1)) << "behind the row before it";
  EXPECT_TRUE(raises(4000, 2)) << "a slot that is not there";
}

TEST_F(DataPageTest, AFreeSpaceFigureThatIsTooLarge_IsRefusedBeforeAnyWrite) {
  DataPage(bytes, 7).Insert(RowOf(4000, 1));
  StoreU16(bytes.data() + data_page::kFreeSpace, 3000);
  EXPECT_THROW(DataPage(bytes, 7), Error);
}

TEST_F(DataPageTest, APageHolds255RowsAtMost) {
  DataPage page(bytes, 1);
  for (int i = 0; i < 255; ++i)
    page.Insert({});
  EXPECT_FALSE(page.Fits(0));
}

}  // namespace
}  // namespace jet::format

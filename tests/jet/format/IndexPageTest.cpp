#include <algorithm>
#include <array>
#include <random>
#include <set>

#include <gtest/gtest.h>

#include "jet/Error.h"
#include "jet/format/Bytes.h"
#include "jet/format/IndexPage.h"

namespace jet::format {
namespace {

class IndexPageTest : public ::testing::Test {
 protected:
  IndexPageTest() { IndexPage::Initialize(bytes, 5, 0); }

  void ExpectEntries(const std::set<EntryBytes>& model) {
    const IndexPageView view(bytes, 9);
    const std::vector<EntryBytes> entries = view.AllEntries();
    ASSERT_TRUE(std::equal(entries.begin(), entries.end(), model.begin(), model.end()));
    ASSERT_EQ(view.FreeSpace(), index_page::kCapacity - view.Used());
    // Walking backwards meets the same entries.
    auto expected = model.rbegin();
    for (EntryPlace place = view.Last(); !place.IsEnd(); place = view.Previous(place), ++expected) {
      ASSERT_NE(expected, model.rend());
      ASSERT_EQ(view.Read(place), *expected);
    }
    ASSERT_EQ(expected, model.rend());
  }

  std::array<std::byte, kPageSize> bytes{};
};

// Entries that share beginnings of all lengths: few leading bytes, few values a byte.
EntryBytes RandomEntry(std::mt19937& random, std::size_t longest) {
  EntryBytes entry(6 + random() % longest);
  for (std::byte& byte : entry)
    byte = static_cast<std::byte>(random() % 3);
  return entry;
}

TEST_F(IndexPageTest, RandomChanges_AgreeWithASetOfEntries) {
  const unsigned seed = std::random_device{}();
  SCOPED_TRACE("seed " + std::to_string(seed));
  std::mt19937 random(seed);
  for (const std::size_t longest : {4U, 60U, 900U}) {
    IndexPage::Initialize(bytes, 5, 0);
    std::set<EntryBytes> model;
    for (int step = 0; step < 2500; ++step) {
      IndexPage page(bytes, 9);
      const EntryBytes entry = RandomEntry(random, longest);
      const EntryPlace place = page.LowerBound(entry);
      const auto bound = model.lower_bound(entry);
      ASSERT_EQ(place.IsEnd(), bound == model.end());
      if (!place.IsEnd()) {
        ASSERT_EQ(page.Read(place), *bound);
      }
      const EntryBytes prefix(entry.begin(), entry.begin() + static_cast<int>(random() % 6));
      const EntryPlace first = page.LowerBound(prefix);
      const auto firstBound = model.lower_bound(prefix);
      ASSERT_TRUE(first.IsEnd() ? firstBound == model.end() : page.Read(first) == *firstBound);
      const bool present = bound != model.end() && *bound == entry;
      if (present || (random() % 3 == 0 && !place.IsEnd())) {
        page.Remove(place);
        model.erase(bound);
      } else if (page.Insert(place, entry)) {
        model.insert(entry);
      } else {
        // It did not fit: what is there must nearly fill the page even with the longest prefix.
        std::vector<EntryBytes> all(model.begin(), model.end());
        all.insert(std::lower_bound(all.begin(), all.end(), entry), entry);
        ASSERT_EQ(IndexPage::PrefixToFit(EntrySpans(all.begin(), all.end())), std::nullopt);
      }
      if (step % 50 == 0) {
        ASSERT_NO_FATAL_FAILURE(ExpectEntries(model)) << "step " << step;
      }
    }
  }
}

TEST_F(IndexPageTest, EntriesWithOneKey_ArePackedByAPrefixThatReachesIntoTheRow) {
  std::vector<EntryBytes> entries;
  for (int row = 0; row < 900; ++row) {
    EntryBytes entry(9, std::byte{0x7F});
    StoreBigU32(entry.data() + 5, static_cast<std::uint32_t>(0x1000 * 256 + row));
    entries.push_back(entry);
  }
  ASSERT_TRUE(IndexPage(bytes, 9).Assign(entries));
  const IndexPageView view(bytes, 9);
  const EntryPlace place = view.LowerBound(entries[700]);
  EXPECT_EQ(view.RowPage(place), 0x1000U + 700 / 256);
  EXPECT_EQ(view.RowSlot(place), 700 % 256);
  EXPECT_EQ(view.Read(place), entries[700]);
}

TEST_F(IndexPageTest, AKeyComparesAsItsBytesDo_AlsoAgainstThePrefix) {
  std::vector<EntryBytes> entries;
  for (int i = 0; i < 500; ++i) {
    EntryBytes entry(12, std::byte{0x40});
    StoreBigU32(entry.data() + 8, static_cast<std::uint32_t>(i));
    entries.push_back(entry);
  }
  ASSERT_TRUE(IndexPage(bytes, 9).Assign(entries));
  const IndexPageView view(bytes, 9);
  ASSERT_GT(view.PrefixLength(), 0U);
  EXPECT_EQ(view.LowerBound(EntryBytes{}).begin, 0U);
  EXPECT_EQ(view.LowerBound(EntryBytes(3, std::byte{0x40})).begin, 0U) << "a part of the prefix";
  EXPECT_EQ(view.LowerBound(EntryBytes(3, std::byte{0x3F})).begin, 0U);
  EXPECT_TRUE(view.LowerBound(EntryBytes(3, std::byte{0x41})).IsEnd());
  EXPECT_EQ(view.Read(view.LowerBound(entries[250])), entries[250]);
}

TEST_F(IndexPageTest, FiguresThatContradictThePage_AreDamage) {
  const EntryBytes entry(9, std::byte{1});
  IndexPage(bytes, 9).Insert({0, 0}, entry);
  auto longPrefix = bytes;
  StoreU16(longPrefix.data() + index_page::kPrefix, 9);
  EXPECT_THROW(IndexPageView(longPrefix, 9), Error);
  auto pastEnd = bytes;
  pastEnd[index_page::kMask + index_page::kMaskBytes - 1] = std::byte{0x80};
  StoreU16(pastEnd.data() + index_page::kFreeSpace, 0);
  EXPECT_THROW(IndexPageView(pastEnd, 9), Error);
  auto otherType = bytes;
  otherType[0] = std::byte{1};
  EXPECT_THROW(IndexPageView(otherType, 9), Error);
}

}  // namespace
}  // namespace jet::format

#include <algorithm>
#include <random>
#include <set>

#include <gtest/gtest.h>

#include "jet/Error.h"
#include "jet/format/IndexPage.h"
#include "jet/table/IndexEditor.h"
#include "tests/jet/table/BarePages.h"

namespace jet {
namespace {

using format::EntryBytes;
using format::IndexPage;
using format::IndexPageView;
using test::BarePages;

constexpr PageNumber kTable = 77;

class IndexEditorTest : public ::testing::Test {
 protected:
  IndexEditorTest() : unit(bare.pager) {
    MutablePage maps = bare.pager.Change(BarePages::kMapPage);
    table.page = kTable;
    format::IndexDefinition definition;
    definition.columns.push_back({0, true});
    definition.usageMap = UsageMap::Create(maps);
    const MutablePage root = bare.allocator.Allocate();
    IndexPage::Initialize(root.Bytes(), kTable, 0);
    definition.root = root.Number();
    UsageMap(bare.pager, definition.usageMap).Add(root.Number(), bare.allocator);
    table.indexes.push_back(definition);
    index.emplace(bare.pager, table, 0, "index 'test'");
  }

  bool Insert(const KeyBytes& key, RowId row) {
    return IndexEditor(bare.pager, bare.allocator, *index, kTable).Insert(key, row);
  }
  bool Erase(const KeyBytes& key, RowId row) {
    return IndexEditor(bare.pager, bare.allocator, *index, kTable).Erase(key, row);
  }

  // Entries below a page, checking on the way what a branch says of its children.
  std::vector<EntryBytes> Walk(PageNumber number, std::set<PageNumber>& pages,
                               std::vector<PageNumber>& leaves) {
    EXPECT_TRUE(pages.insert(number).second) << "page " << number << " is met twice";
    const PageHandle page = bare.pager.Get(number);
    const IndexPageView view(page.Bytes(), number);
    if (view.IsLeaf()) {
      leaves.push_back(number);
      return view.AllEntries();
    }
    std::vector<EntryBytes> all;
    EXPECT_FALSE(view.First().IsEnd());
    for (auto place = view.First(); !place.IsEnd(); place = view.Next(place)) {
      const std::vector<EntryBytes> below = Walk(view.Child(place), pages, leaves);
      EntryBytes key = view.Read(place);
      key.resize(key.size() - 4);
      EXPECT_TRUE(!below.empty() && below.back() == key)
          << "branch " << number << " misnames child " << view.Child(place);
      all.insert(all.end(), below.begin(), below.end());
    }
    if (view.Tail() != 0 && !pages.contains(view.Tail())) {
      const std::vector<EntryBytes> below = Walk(view.Tail(), pages, leaves);
      all.insert(all.end(), below.begin(), below.end());
    }
    return all;
  }

  void ExpectTree(const std::set<EntryBytes>& model) {
    std::set<PageNumber> pages;
    std::vector<PageNumber> leaves;
    const std::vector<EntryBytes> found = Walk(index->Definition().root, pages, leaves);
    ASSERT_TRUE(std::equal(found.begin(), found.end(), model.begin(), model.end()));
    const std::vector<PageNumber> listed = UsageMap(bare.pager, index->Definition().usageMap).Pages();
    ASSERT_TRUE(std::equal(listed.begin(), listed.end(), pages.begin(), pages.end()))
        << "the index's map is not its tree";
    for (std::size_t i = 0; i < leaves.size(); ++i) {
      const PageHandle page = bare.pager.Get(leaves[i]);
      const IndexPageView view(page.Bytes(), leaves[i]);
      ASSERT_EQ(view.Previous(), i == 0 ? 0 : leaves[i - 1]);
      ASSERT_EQ(view.Next(), i + 1 == leaves.size() ? 0 : leaves[i + 1]);
    }
  }

  static RowId RowOf(std::size_t number) {
    return {static_cast<PageNumber>(100 + number / 200), static_cast<std::uint8_t>(number % 200)};
  }

  BarePages bare;
  ChangeUnit unit;
  format::TableDefinition table;
  std::optional<Index> index;
};

KeyBytes KeyOf(std::mt19937& random, std::size_t longest, std::size_t values) {
  KeyBytes key{std::byte{0x7F}};
  const std::size_t size = longest <= 4 ? longest : 1 + random() % longest;
  for (std::size_t i = 0; i < size; ++i)
    key.push_back(static_cast<std::byte>(1 + random() % values));
  key.push_back(std::byte{0});  // keys end themselves
  return key;
}

TEST_F(IndexEditorTest, RandomChanges_KeepTheTreeTheModel) {
  const unsigned seed = std::random_device{}();
  SCOPED_TRACE("seed " + std::to_string(seed));
  std::mt19937 random(seed);
  // Short keys, many of them alike; long keys, a few a page, for a tree of three levels and more.
  struct Kind {
    std::size_t longest;
    std::size_t values;
  };
  for (const Kind kind : {Kind{2, 3}, Kind{600, 4}}) {
    std::set<EntryBytes> model;
    std::vector<std::pair<KeyBytes, RowId>> entries;
    for (int phase = 0; phase < 3; ++phase) {
      const unsigned growth = phase == 0 ? 9 : phase == 1 ? 5 : 1;  // of ten steps, those that add
      for (int step = 0; step < 1500; ++step) {
        if (random() % 10 < growth || entries.empty()) {
          const KeyBytes key = KeyOf(random, kind.longest, kind.values);
          const RowId row = RowOf(random() % 40000);
          if (!model.insert(MakeEntry(key, row)).second) continue;
          Insert(key, row);
          entries.emplace_back(key, row);
        } else {
          const std::size_t at = random() % entries.size();
          ASSERT_TRUE(Erase(entries[at].first, entries[at].second));
          model.erase(MakeEntry(entries[at].first, entries[at].second));
          entries[at] = entries.back();
          entries.pop_back();
        }
        if (step % 250 == 0) {
          ASSERT_NO_FATAL_FAILURE(ExpectTree(model)) << "phase " << phase << " step " << step;
        }
      }
    }
    while (!entries.empty()) {
      ASSERT_TRUE(Erase(entries.back().first, entries.back().second));
      entries.pop_back();
    }
    ASSERT_NO_FATAL_FAILURE(ExpectTree({})) << "an emptied index is one leaf again";
  }
}

TEST_F(IndexEditorTest, GrowingKeys_FillThePages) {
  std::set<EntryBytes> model;
  for (std::uint32_t i = 0; i < 20000; ++i) {
    KeyBytes key{std::byte{0x7F}, std::byte{0x80}, static_cast<std::byte>(i >> 16),
                 static_cast<std::byte>(i >> 8), static_cast<std::byte>(i)};
    ASSERT_TRUE(Insert(key, RowOf(i)));
    model.insert(MakeEntry(key, RowOf(i)));
  }
  ExpectTree(model);
  EXPECT_LT(UsageMap(bare.pager, index->Definition().usageMap).Pages().size(), 20000 / 400 + 5U);
}

TEST_F(IndexEditorTest, RangesAndEnds_AgreeWithTheModel) {
  std::mt19937 random(7);
  std::vector<EntryBytes> model;
  for (std::size_t i = 0; i < 3000; ++i) {
    const KeyBytes key = KeyOf(random, 3, 9);
    Insert(key, RowOf(i));
    model.push_back(MakeEntry(key, RowOf(i)));
  }
  std::sort(model.begin(), model.end());
  for (int step = 0; step < 200; ++step) {
    KeyBytes lower = KeyOf(random, 1 + random() % 3, 9);
    KeyBytes upper = step % 3 == 0 ? KeyBytes() : KeyOf(random, 1 + random() % 3, 9);
    lower.pop_back();
    const auto begin = std::lower_bound(model.begin(), model.end(), lower);
    const auto end = upper.empty() ? model.end() : std::lower_bound(model.begin(), model.end(), upper);
    std::vector<EntryBytes> found;
    for (IndexCursor cursor = index->Range(lower, upper); cursor.Next();)
      found.push_back(cursor.Entry());
    const std::vector<EntryBytes> expected(begin, std::max(begin, end));
    ASSERT_EQ(found, expected);
    const std::optional<RowId> last = index->Last(upper);
    ASSERT_EQ(last.has_value(), end != model.begin());
    if (last) {
      const EntryBytes& entry = *std::prev(end);
      ASSERT_TRUE(std::equal(entry.end() - 4, entry.end(), MakeEntry({}, *last).begin()));
    }
  }
}

TEST_F(IndexEditorTest, AKeyTooLongForAPage_IsRefused) {
  EXPECT_THROW(Insert(KeyBytes(2000, std::byte{1}), RowOf(1)), Error);
  ExpectTree({});
}

TEST_F(IndexEditorTest, AnEntryOfAnotherWriterThatFitsNoBranch_IsDamage) {
  const PageNumber root = index->Definition().root;
  const MutablePage page = bare.pager.Change(root);
  IndexPage leaf(page.Bytes(), root);
  ASSERT_TRUE(leaf.Insert(leaf.First(), MakeEntry(KeyBytes(3610, std::byte{0x7F}), RowOf(1))));
  EXPECT_THROW(Insert({std::byte{0x80}}, RowOf(2)), Error);
}

TEST_F(IndexEditorTest, BranchesThatAreARing_AreDamage) {
  const PageNumber root = index->Definition().root;
  const MutablePage page = bare.pager.Change(root);
  IndexPage::Initialize(page.Bytes(), kTable, 1);
  IndexPage branch(page.Bytes(), root);
  KeyBytes entry = MakeEntry({std::byte{0x7F}}, RowOf(1));
  for (int shift = 24; shift >= 0; shift -= 8)
    entry.push_back(static_cast<std::byte>(root >> shift));
  branch.Insert(branch.First(), entry);
  EXPECT_THROW(index->Find({std::byte{0x7F}}), Error);
  EXPECT_THROW(index->Last(), Error);
  EXPECT_THROW(Insert({std::byte{0x7F}}, RowOf(2)), Error);
}

}  // namespace
}  // namespace jet

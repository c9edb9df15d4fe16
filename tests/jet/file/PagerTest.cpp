#include <random>
#include <vector>

#include <gtest/gtest.h>

#include "jet/Error.h"
#include "jet/file/Pager.h"
#include "tests/support/FaultyFileSystem.h"
#include "tests/support/MemoryFileSystem.h"

namespace jet {
namespace {

using test::FaultyFileSystem;
using test::FileOperation;
using test::MemoryFileSystem;

constexpr std::size_t kSmallCache = 16 * kPageSize;

class PagerTest : public ::testing::Test {
 protected:
  PagerTest() { memory->Put("f", std::vector<std::byte>(40 * kPageSize)); }

  std::unique_ptr<Pager> Open(std::uint32_t key = 0) {
    auto store = std::make_unique<PageStore>(files->Open("f", {}), "f");
    store->Start(key);
    return std::make_unique<Pager>(std::move(store), kSmallCache);
  }
  static void Fill(Pager& pager, PageNumber page, int value) {
    pager.Change(page).Bytes().fill(static_cast<std::byte>(value));
  }
  static int First(Pager& pager, PageNumber page) { return std::to_integer<int>(pager.Get(page).Bytes()[0]); }

  std::shared_ptr<MemoryFileSystem> memory = std::make_shared<MemoryFileSystem>();
  std::shared_ptr<FaultyFileSystem> files = std::make_shared<FaultyFileSystem>(memory);
};

TEST_F(PagerTest, PageThatIsUndone_OutlivesItsUnitInTheHandsOfOthers) {
  auto pager = Open();
  std::vector<PageHandle> kept;
  for (int value = 1; value < 4; ++value) {
    ChangeUnit unit(*pager);
    const MutablePage page = pager->Append();
    page.Bytes().fill(static_cast<std::byte>(value));
    kept.push_back(page);
    if (value == 2) kept.erase(kept.begin());
  }
  EXPECT_EQ(std::to_integer<int>(kept[0].Bytes()[0]), 2);
  EXPECT_EQ(std::to_integer<int>(kept[1].Bytes()[0]), 3);
  EXPECT_EQ(pager->PageCount(), 40U);
  ChangeUnit unit(*pager);
  kept.pop_back();
  EXPECT_EQ(pager->Append().Number(), 40U);
  EXPECT_EQ(First(*pager, 40), 0);
  unit.Commit();
  EXPECT_EQ(std::to_integer<int>(kept[0].Bytes()[0]), 2);
}

TEST_F(PagerTest, NestedUnits_UndoTheirOwnChangesOnly) {
  auto pager = Open();
  {
    ChangeUnit outer(*pager);
    Fill(*pager, 1, 10);
    {
      ChangeUnit inner(*pager);
      Fill(*pager, 1, 11);
      Fill(*pager, 2, 11);
      EXPECT_EQ(pager->Append().Number(), 40U);
    }
    EXPECT_EQ(First(*pager, 1), 10);
    EXPECT_EQ(First(*pager, 2), 0);
    EXPECT_EQ(pager->PageCount(), 40U);
    {
      ChangeUnit inner(*pager);
      Fill(*pager, 1, 12);
      Fill(*pager, 3, 12);
      inner.Commit();
    }
    EXPECT_EQ(First(*pager, 1), 12);
    EXPECT_EQ(files->Count(FileOperation::Write), 0U)
        << "nothing reaches the file before the outermost unit is done";
    outer.Commit();
  }
  EXPECT_EQ(files->Count(FileOperation::Write), 2U);
  {
    ChangeUnit outer(*pager);
    {
      ChangeUnit inner(*pager);
      Fill(*pager, 1, 13);
      inner.Commit();
    }
  }
  EXPECT_EQ(First(*pager, 1), 12) << "a committed inner unit goes with the outer one";
  auto again = [&] {
    pager.reset();
    return Open();
  }();
  EXPECT_EQ(First(*again, 1), 12);
  EXPECT_EQ(First(*again, 3), 12);
}

TEST_F(PagerTest, RandomUnits_AgreeWithAModel_WithinTheBoundOfTheCache) {
  const unsigned seed = std::random_device{}();
  SCOPED_TRACE("seed " + std::to_string(seed));
  std::mt19937 random(seed);
  auto pager = Open(/*key=*/0x12345678);
  std::vector<int> model;
  {
    ChangeUnit unit(*pager);  // in plain text the file holds zeros; coded it holds something else
    for (PageNumber page = 1; page < 40; ++page)
      Fill(*pager, page, 0);
    unit.Commit();
    model.assign(40, 0);
  }
  for (int step = 0; step < 400; ++step) {
    std::vector<int> after = model;
    {
      ChangeUnit unit(*pager);
      for (int i = 0; i < 5; ++i) {
        const auto page = static_cast<PageNumber>(1 + random() % (after.size() - 1));
        after[page] = static_cast<int>(random() % 256);
        Fill(*pager, page, after[page]);
      }
      if (random() % 8 == 0) {
        Fill(*pager, pager->Append().Number(), 7);
        after.push_back(7);
      }
      if (random() % 2 == 0) {
        unit.Commit();
        model = after;
      }
    }
    ASSERT_EQ(pager->PageCount(), model.size());
    for (int i = 0; i < 8; ++i) {
      const auto page = static_cast<PageNumber>(1 + random() % (model.size() - 1));
      ASSERT_EQ(First(*pager, page), model[page]) << "step " << step;
    }
    ASSERT_LE(pager->CachedPages(), kSmallCache / kPageSize + 8);
  }
  pager.reset();
  pager = Open(0x12345678);
  for (PageNumber page = 1; page < model.size(); ++page)
    ASSERT_EQ(First(*pager, page), model[page]);
}

TEST_F(PagerTest, AUnitWhoseWriteFails_LeavesFileAndMemoryAsTheyWere) {
  for (std::size_t nth = 1;; ++nth) {
    auto pager = Open();
    const std::vector<std::byte> before = memory->Get("f");
    files->Mend();
    files->FailOnce(FileOperation::Write, nth, ErrorNumber::DiskFull);
    bool failed = false;
    {
      ChangeUnit unit(*pager);
      for (PageNumber page = 1; page < 6; ++page)
        Fill(*pager, page, static_cast<int>(nth));
      Fill(*pager, pager->Append().Number(), 9);
      try {
        unit.Commit();
      } catch (const Error& error) {
        failed = true;
        EXPECT_EQ(error.Number(), ErrorNumber::DiskFull);
      }
    }
    ASSERT_EQ(failed, files->HasFailed());
    if (!failed) break;
    EXPECT_EQ(memory->Get("f"), before) << "write " << nth;
    EXPECT_EQ(First(*pager, 1), 0);
    EXPECT_EQ(pager->PageCount(), 40U);
  }
}

TEST_F(PagerTest, WhenEvenPuttingBackFails_NoMoreChangesAreTaken) {
  auto pager = Open();
  files->FailFrom(FileOperation::Write, 2, ErrorNumber::ReadFailed);
  const auto change = [&] {
    ChangeUnit unit(*pager);
    for (PageNumber page = 1; page < 6; ++page)
      Fill(*pager, page, 1);
    unit.Commit();
  };
  EXPECT_THROW(change(), Error);
  files->Mend();
  try {
    change();
    FAIL() << "a half written file took a change";
  } catch (const Error& error) {
    EXPECT_EQ(error.Number(), ErrorNumber::DamagedFile);
  }
}

TEST_F(PagerTest, PagesThatWereFreed_AreToldApart_UnlessTheFreeingWasUndone) {
  auto pager = Open();
  const std::uint64_t before = pager->Moment();
  {
    ChangeUnit unit(*pager);
    pager->NoteFreed(5);
    EXPECT_TRUE(pager->FreedSince(5, before));
  }
  EXPECT_FALSE(pager->FreedSince(5, before));
  {
    ChangeUnit unit(*pager);
    pager->NoteFreed(5);
    unit.Commit();
  }
  EXPECT_TRUE(pager->FreedSince(5, before));
  EXPECT_FALSE(pager->FreedSince(5, pager->Moment()));
  EXPECT_FALSE(pager->FreedSince(6, before));
}

TEST_F(PagerTest, PagesPastTheEnd_AreDamageThatNamesTheFile) {
  auto pager = Open();
  try {
    pager->Get(40);
    FAIL();
  } catch (const Error& error) {
    EXPECT_EQ(error.Number(), ErrorNumber::DamagedFile);
    EXPECT_NE(std::string(error.what()).find("'f'"), std::string::npos);
  }
}

}  // namespace
}  // namespace jet

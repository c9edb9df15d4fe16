// Memory runs out at each allocation of a unit of change in turn.
#include <cstdlib>
#include <new>

#include <gtest/gtest.h>

#include "jet/file/Pager.h"
#include "jet/file/RedoLog.h"
#include "tests/support/MemoryFileSystem.h"

namespace {
std::size_t g_failAt = 0;  // the allocation that fails, counted from now; 0: none
}  // namespace

void* operator new(std::size_t size, const std::nothrow_t&) noexcept {
  return g_failAt != 0 && --g_failAt == 0 ? nullptr : std::malloc(size);
}
void* operator new(std::size_t size) {
  if (void* const memory = operator new(size, std::nothrow)) return memory;
  throw std::bad_alloc();
}
void operator delete(void* memory) noexcept {
  std::free(memory);
}
void operator delete(void* memory, std::size_t) noexcept {
  std::free(memory);
}

namespace jet {
namespace {

constexpr PageNumber kPages = 4;
constexpr std::uint64_t kShortLog = 8 * 1024;  // every third unit or so is followed by a checkpoint

std::unique_ptr<Pager> Open(const std::shared_ptr<FileSystem>& files, Durability durability) {
  auto file = files->Open("f", {});
  auto log = std::make_unique<RedoLog>(files, "f", durability, kShortLog);
  log->Recover(*file, false);
  auto store = std::make_unique<PageStore>(std::move(file), "f", std::move(log));
  store->Start(0);
  return std::make_unique<Pager>(std::move(store), 0);
}

/// Units of an inner unit and more, numbered from `first`: each writes its number into every page.
void Work(Pager& pager, int first, int units, int& done) {
  const auto fill = [&](PageNumber page, int value) {
    pager.Change(page).Bytes().fill(static_cast<std::byte>(value));
  };
  for (int value = first; value < first + units; ++value) {
    ChangeUnit outer(pager);
    fill(0, value);
    for (PageNumber page = 0; page < pager.PageCount(); ++page) {
      ChangeUnit inner(pager);
      fill(page, value);
      inner.Commit();
    }
    pager.Append().Bytes().fill(static_cast<std::byte>(value));
    outer.Commit();
    done = value;
  }
}

/// The number in all pages of the file; -1 when they differ.
int ValueOf(Pager& pager) {
  const std::byte value = pager.Get(0).Bytes()[0];
  for (PageNumber page = 0; page < pager.PageCount(); ++page) {
    for (const std::byte b : pager.Get(page).Bytes()) {
      if (b != value) return -1;
    }
  }
  return std::to_integer<int>(value);
}

TEST(OutOfMemoryTest, LeavesWhatWasCommittedInMemoryAndInTheFile) {
  constexpr int kUnits = 6;
  for (const Durability durability : {Durability::Full, Durability::Off}) {
    std::size_t points = 0;
    for (bool failed = true; failed;) {
      const auto files = std::make_shared<test::MemoryFileSystem>();
      files->Put("f", std::vector<std::byte>(kPages * kPageSize));
      const auto pager = Open(files, durability);
      int done = 0;
      g_failAt = ++points;
      try {
        Work(*pager, 1, kUnits, done);
      } catch (const std::bad_alloc&) {
      }
      failed = std::exchange(g_failAt, 0) == 0;
      SCOPED_TRACE("allocation " + std::to_string(points) + ", in unit " + std::to_string(done + 1));
      EXPECT_FALSE(pager->InUnit());
      EXPECT_EQ(ValueOf(*pager), done);
      EXPECT_EQ(pager->PageCount(), kPages + static_cast<PageNumber>(done));
      const auto fileIs = [&](int value) {
        const auto left = std::make_shared<test::MemoryFileSystem>();
        for (const char* name : {"f", "f-log"}) {
          if (files->Exists(name)) left->Put(name, files->Get(name));
        }
        const auto again = Open(left, durability);
        EXPECT_EQ(ValueOf(*again), value);
        EXPECT_EQ(again->PageCount(), pager->PageCount());
      };
      fileIs(done);
      const int first = done + 1;
      ASSERT_NO_THROW(Work(*pager, first, 2, done));
      EXPECT_EQ(ValueOf(*pager), first + 1);
      fileIs(first + 1);
      ASSERT_FALSE(HasFailure());
    }
    EXPECT_GT(points, 40U);
  }
}

}  // namespace
}  // namespace jet

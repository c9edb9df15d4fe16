#include <optional>
#include <random>

#include <gtest/gtest.h>

#include "jet/Error.h"
#include "jet/file/PageStore.h"
#include "jet/file/RedoLog.h"
#include "jet/format/RedoLogLayout.h"
#include "tests/support/CrashingFileSystem.h"
#include "tests/support/FaultyFileSystem.h"

namespace jet {
namespace {

using test::Crash;
using test::CrashingFileSystem;
using Files = std::map<std::string, std::vector<std::byte>>;
using State = std::vector<PageBytes>;

constexpr std::uint64_t kShortLog = 50 * 1024;
constexpr PageNumber kPages = 12;

PageBytes Filled(std::mt19937& random) {
  PageBytes page;
  page.fill(static_cast<std::byte>(random()));
  for (std::size_t at = 0; at < page.size(); at += 100)
    page[at] = static_cast<std::byte>(random());
  return page;
}

std::vector<std::byte> Flat(const State& state) {
  std::vector<std::byte> bytes;
  for (const PageBytes& page : state)
    bytes.insert(bytes.end(), page.begin(), page.end());
  return bytes;
}

State StartingState() {
  std::mt19937 random(1);
  State state;
  for (PageNumber i = 0; i < kPages; ++i)
    state.push_back(Filled(random));
  return state;
}

std::unique_ptr<PageStore> Open(const std::shared_ptr<FileSystem>& files, Durability durability,
                                bool readOnly = false) {
  auto file = files->Open("f", {.exclusive = !readOnly, .readOnly = readOnly, .create = false});
  auto log = std::make_unique<RedoLog>(files, "f", durability, kShortLog);
  log->Recover(*file, readOnly);
  auto pages = std::make_unique<PageStore>(std::move(file), "f", std::move(log));
  pages->Start(0);
  return pages;
}

State ReadAll(PageStore& pages) {
  State state(pages.PageCount());
  for (PageNumber i = 0; i < pages.PageCount(); ++i)
    pages.Read(i, state[i]);
  return state;
}

/// Applies units of random changes and new pages, `opens` times reopening in between, and reports each state
/// that was acknowledged.
template <typename Acknowledge>
void Work(const std::shared_ptr<FileSystem>& files, Durability durability, State state,
          const Acknowledge& acknowledge) {
  std::mt19937 random(7);
  for (int session = 0; session < 3; ++session) {
    const auto pages = Open(files, durability);
    for (int unit = 0; unit < 7; ++unit) {
      State next = state;
      std::map<PageNumber, bool> changed;
      for (std::size_t i = 0; i < 1 + random() % 4; ++i) {
        const auto number = static_cast<PageNumber>(random() % next.size());
        next[number] = Filled(random);
        changed[number] = true;
      }
      for (std::size_t i = random() % 3; i > 0; --i) {
        changed[static_cast<PageNumber>(next.size())] = true;
        next.push_back(Filled(random));
      }
      std::vector<ChangedPage> changes;
      for (const auto& change : changed) {
        changes.push_back({change.first, change.first < state.size() ? &state[change.first] : nullptr,
                           &next[change.first]});
      }
      acknowledge(next, false);
      pages->Apply(changes, static_cast<PageNumber>(next.size()));
      acknowledge(next, true);
      state = std::move(next);
    }
    EXPECT_TRUE(ReadAll(*pages) == state);
    pages->Close();
  }
}

class RedoLogCrash : public testing::TestWithParam<std::tuple<Durability, Crash>> {};

// Goes down at each changing operation in turn, comes up again, goes down in the middle of coming up, and
// comes up for good.
TEST_P(RedoLogCrash, LeavesEveryAcknowledgedUnitAndNoHalfOne) {
  const auto [durability, crash] = GetParam();
  const bool keepsAll = durability == Durability::Full || crash == Crash::Kill || crash == Crash::TornKill;
  const State start = StartingState();
  std::size_t points = 0;
  for (std::size_t nth = 1;; ++nth) {
    SCOPED_TRACE("operation " + std::to_string(nth));
    auto files = std::make_shared<CrashingFileSystem>(Files{{"f", Flat(start)}});
    files->CrashAt(nth, crash, static_cast<std::uint32_t>(nth));
    std::vector<State> states{start};  // every state there ever was
    std::size_t acknowledged = 0;
    try {
      Work(files, durability, start, [&](const State& state, bool isDone) {
        if (!isDone) states.push_back(state);
        if (isDone) acknowledged = states.size() - 1;
      });
    } catch (const Error&) {
    }
    if (!files->HasCrashed()) break;
    ++points;

    Files survivors = files->Survivors();
    for (std::size_t second = 1; second < 12; second += 5) {
      auto again = std::make_shared<CrashingFileSystem>(survivors);
      again->CrashAt(second, crash, static_cast<std::uint32_t>(second));
      try {
        Open(again, durability);
      } catch (const Error&) {
      }
      if (again->HasCrashed()) survivors = again->Survivors();
    }

    auto up = std::make_shared<CrashingFileSystem>(survivors);
    const State read = ReadAll(*Open(up, durability, true));
    const State found = ReadAll(*Open(up, durability));
    EXPECT_TRUE(read == found) << "read only and for writing";
    std::size_t which = states.size();
    while (which > 0 && states[which - 1] != found)
      --which;
    ASSERT_GT(which, 0u) << "half a unit";
    EXPECT_GE(which - 1, keepsAll ? acknowledged : 0) << "an acknowledged unit is gone";
    EXPECT_FALSE(up->Exists("f-log"));
  }
  EXPECT_GT(points, 40u);
  RecordProperty("points", std::to_string(points));
}

INSTANTIATE_TEST_SUITE_P(Everywhere, RedoLogCrash,
                         testing::Combine(testing::Values(Durability::Full, Durability::Normal),
                                          testing::Values(Crash::Kill, Crash::TornKill, Crash::LoseUnsynced,
                                                          Crash::ReorderUnsynced, Crash::PowerCut)));

class RedoLogTest : public testing::Test {
 protected:
  /// A unit that fills a page, applied and not acknowledged to the file.
  static void Fill(PageStore& pages, PageNumber number, int value) {
    PageBytes before;
    pages.Read(number, before);
    PageBytes after;
    after.fill(static_cast<std::byte>(value));
    const ChangedPage change{number, &before, &after};
    pages.Apply(std::span(&change, 1), pages.PageCount());
  }
  static int First(PageStore& pages, PageNumber number) {
    PageBytes page;
    pages.Read(number, page);
    return std::to_integer<int>(page[0]);
  }
  /// The files as a process leaves them that dies after changing page 3.
  Files Crashed() const {
    auto machine = std::make_shared<CrashingFileSystem>(Files{{"f", Flat(StartingState())}});
    auto pages = Open(machine, Durability::Full);
    Fill(*pages, 3, 0x33);
    return machine->Survivors();
  }
};

TEST_F(RedoLogTest, OneSyncADurableUnit) {
  auto files = std::make_shared<CrashingFileSystem>(Files{{"f", Flat(StartingState())}});
  const auto pages = Open(files, Durability::Full);
  Fill(*pages, 1, 1);
  const std::size_t before = files->Syncs();
  for (int i = 2; i < 10; ++i)
    Fill(*pages, 2, i);
  EXPECT_EQ(files->Syncs() - before, 8u);
}

TEST_F(RedoLogTest, IsRefusedWhenAnotherProgramChangedTheFile) {
  for (const std::size_t where : {std::size_t{3} * kPageSize + 700, std::size_t{kPages} * kPageSize}) {
    Files files = Crashed();
    auto& bytes = files.at("f");
    bytes.resize(std::max(bytes.size(), where + 1));
    bytes[where] = ~bytes[where];
    const Files before = files;
    auto up = std::make_shared<CrashingFileSystem>(files);
    for (const bool readOnly : {false, true}) {
      try {
        Open(up, Durability::Full, readOnly);
        ADD_FAILURE();
      } catch (const Error& error) {
        EXPECT_EQ(error.Number(), ErrorNumber::LogDoesNotBelong);
        EXPECT_NE(std::string(error.what()).find("'f-log' does not belong to 'f'"), std::string::npos);
      }
    }
    EXPECT_EQ(up->Survivors(), before);
  }
}

TEST_F(RedoLogTest, WhatIsNotALogIsRefusedAndAnEmptyOneIsNone) {
  Files files = Crashed();
  auto& log = files.at("f-log");
  const std::vector<std::byte> made = log;
  for (const std::size_t size : {std::size_t{30}, log.size()}) {
    log.resize(size);
    log[size < 512 ? 3 : 20] ^= std::byte{1};
    const auto up = std::make_shared<CrashingFileSystem>(files);
    try {
      Open(up, Durability::Full);
      ADD_FAILURE();
    } catch (const Error& error) {
      EXPECT_EQ(error.Number(), ErrorNumber::DamagedFile);
    }
    EXPECT_EQ(up->Survivors(), files);
    log = made;
  }
  for (const std::size_t size : {0U, 100U, 511U, 4096U}) {
    log.assign(size, std::byte{0});
    if (size % 2 == 1) std::copy_n(made.begin(), size, log.begin());  // cut off
    auto up = std::make_shared<CrashingFileSystem>(files);
    EXPECT_EQ(ReadAll(*Open(up, Durability::Full)), StartingState());
    EXPECT_FALSE(up->Exists("f-log"));
  }
}

TEST_F(RedoLogTest, AnyTornTailIsIgnored) {
  Files files = Crashed();
  auto& log = files.at("f-log");
  while (log.back() == std::byte{0})
    log.pop_back();  // written ahead
  for (std::size_t size = 512; size < log.size(); size += 97) {
    Files torn = files;
    torn.at("f-log").resize(size);
    EXPECT_TRUE(ReadAll(*Open(std::make_shared<CrashingFileSystem>(torn), Durability::Full)) ==
                StartingState())
        << size;
  }
}

// A damaged place anywhere: what stands before its unit is there, and what follows is not lost silently.
TEST_F(RedoLogTest, UnitsBehindADamagedPlaceAreCountedAndKept) {
  constexpr int kUnits = 10;
  Files files;
  std::vector<std::size_t> ends{format::kSectorSize};
  {
    auto machine = std::make_shared<CrashingFileSystem>(Files{{"f", Flat(StartingState())}});
    auto pages = Open(machine, Durability::Full);
    for (int unit = 1; unit <= kUnits; ++unit) {
      Fill(*pages, 3, unit);
      files = machine->Survivors();
      std::size_t end = files.at("f-log").size();
      while (files.at("f-log")[end - 1] == std::byte{0})
        --end;
      ends.push_back(end);
    }
  }
  std::mt19937 random(3);
  for (int i = 0; i < 400; ++i) {
    const std::size_t at = format::kSectorSize + random() % (ends.back() - format::kSectorSize);
    const auto unit = static_cast<int>(std::upper_bound(ends.begin(), ends.end(), at) - ends.begin());
    SCOPED_TRACE("byte " + std::to_string(at) + ", unit " + std::to_string(unit));
    Files damaged = files;
    damaged.at("f-log")[at] ^= static_cast<std::byte>(1 + random() % 255);
    const auto up = std::make_shared<CrashingFileSystem>(damaged);
    for (const bool readOnly : {true, false}) {
      try {
        Open(up, Durability::Full, readOnly);
        EXPECT_EQ(unit, kUnits) << "a torn tail";
      } catch (const Error& error) {
        EXPECT_EQ(error.Number(), ErrorNumber::DamagedFile);
        const std::string words = error.what();
        const int lost = kUnits - unit + 1;
        EXPECT_NE(words.find(": " + std::to_string(lost) + " change"), std::string::npos) << words;
        EXPECT_EQ(up->Exists("f-log"), readOnly);
        EXPECT_EQ(up->Exists("f-log-damaged"), !readOnly);
      }
    }
    const int found = First(*Open(up, Durability::Full), 3);
    EXPECT_EQ(found, unit == 1 ? std::to_integer<int>(StartingState()[3][0]) : unit - 1);
    if (unit == kUnits) continue;
    EXPECT_TRUE(up->Survivors().at("f-log-damaged") == damaged.at("f-log"));
  }
}

TEST_F(RedoLogTest, ReaderLeavesTheLogWhereItIs) {
  const Files files = Crashed();
  auto up = std::make_shared<CrashingFileSystem>(files);
  {
    const auto reader = Open(up, Durability::Full, true);
    EXPECT_EQ(First(*reader, 3), 0x33);
    reader->Close();
  }
  EXPECT_EQ(up->Survivors(), files);
}

// A unit that could not be made durable is not there, and the store continues.
TEST_F(RedoLogTest, FailedUnitIsNotThere) {
  for (const auto operation : {test::FileOperation::Write, test::FileOperation::Sync}) {
    const auto memory = std::make_shared<test::MemoryFileSystem>();
    memory->Put("f", Flat(StartingState()));
    const auto files = std::make_shared<test::FaultyFileSystem>(memory);
    auto pages = Open(files, Durability::Full);
    Fill(*pages, 2, 0x22);
    files->FailOnce(operation, 1, ErrorNumber::DiskFull);
    EXPECT_THROW(Fill(*pages, 3, 0x33), Error);
    Fill(*pages, 4, 0x44);
    const Files left = {{"f", memory->Get("f")}, {"f-log", memory->Get("f-log")}};
    auto up = Open(std::make_shared<CrashingFileSystem>(left), Durability::Full);
    EXPECT_EQ(First(*up, 2), 0x22);
    EXPECT_EQ(First(*up, 3), std::to_integer<int>(StartingState()[3][0]));
    EXPECT_EQ(First(*up, 4), 0x44);
    pages->Close();
    EXPECT_FALSE(memory->Exists("f-log"));
  }
}

// A sync that fails may have dropped what was written, and the next one says nothing of it.
TEST_F(RedoLogTest, UnitsAfterAFailedSyncAreDurable) {
  for (std::uint32_t seed = 0; seed < 20; ++seed) {
    const auto files = std::make_shared<CrashingFileSystem>(Files{{"f", Flat(StartingState())}});
    auto pages = Open(files, Durability::Full);
    if (seed % 2 == 0) Fill(*pages, 2, 0x22);
    files->FailAt(seed % 2 == 0 ? 3 : 6, test::Failure::Torn, false, seed);  // the sync
    EXPECT_THROW(Fill(*pages, 3, 0x33), Error);
    Fill(*pages, 4, 0x44);
    const auto up =
        Open(std::make_shared<CrashingFileSystem>(files->Survivors(Crash::LoseUnsynced)), Durability::Full);
    EXPECT_EQ(First(*up, 2), seed % 2 == 0 ? 0x22 : std::to_integer<int>(StartingState()[2][0]));
    EXPECT_EQ(First(*up, 3), std::to_integer<int>(StartingState()[3][0]));
    EXPECT_EQ(First(*up, 4), 0x44) << "seed " << seed;
  }
}

// A unit that is written, but can be neither synced nor withdrawn, may be found at the next opening.
TEST_F(RedoLogTest, AUnitThatCannotBeWithdrawnIsReportedAsUncertain) {
  for (const bool forGood : {false, true}) {
    const auto files = std::make_shared<CrashingFileSystem>(Files{{"f", Flat(StartingState())}});
    auto pages = Open(files, Durability::Full);
    Fill(*pages, 2, 0x22);
    files->FailAt(3, test::Failure::Clean, forGood, 0);  // the sync
    try {
      Fill(*pages, 3, 0x33);
      ADD_FAILURE();
    } catch (const Error& error) {
      EXPECT_EQ(error.IsUncertain(), forGood) << error.what();
      EXPECT_EQ(std::string(error.what()).find("cannot be known") != std::string::npos, forGood);
    }
    const auto up =
        Open(std::make_shared<CrashingFileSystem>(files->Survivors(Crash::Kill)), Durability::Full);
    EXPECT_EQ(First(*up, 3) == 0x33, forGood);
  }
}

// A log whose header could be neither written nor taken away again is used by the next unit.
TEST_F(RedoLogTest, ALogThatFailedWhenItWasMadeIsMadeLater) {
  const auto files = std::make_shared<CrashingFileSystem>(Files{{"f", Flat(StartingState())}});
  auto pages = Open(files, Durability::Full);
  files->FailAt(2, test::Failure::Torn, true, 0);  // the header's write, and the removal
  EXPECT_THROW(Fill(*pages, 3, 0x33), Error);
  files->Mend();
  Fill(*pages, 4, 0x44);
  const auto up =
      Open(std::make_shared<CrashingFileSystem>(files->Survivors(Crash::LoseUnsynced)), Durability::Full);
  EXPECT_EQ(First(*up, 4), 0x44);
  EXPECT_NE(First(*up, 3), 0x33);
}

TEST_F(RedoLogTest, FailedCheckpointKeepsTheChangesInTheLog) {
  const auto memory = std::make_shared<test::MemoryFileSystem>();
  memory->Put("f", Flat(StartingState()));
  const auto files = std::make_shared<test::FaultyFileSystem>(memory);
  {
    auto pages = Open(files, Durability::Full);
    Fill(*pages, 3, 0x33);
    files->FailFrom(test::FileOperation::Write, 1, ErrorNumber::DiskFull);
    EXPECT_THROW(pages->Close(), Error);
    files->Mend();
  }
  EXPECT_EQ(First(*Open(files, Durability::Full), 3), 0x33);
}

// Another unit came between a checkpoint that failed halfway and the crash: a page of the file is as a unit
// in the middle of the log left it.
TEST_F(RedoLogTest, IsReplayedOverACheckpointThatFailedBeforeItsLastUnit) {
  const auto memory = std::make_shared<test::MemoryFileSystem>();
  memory->Put("f", Flat(StartingState()));
  const auto files = std::make_shared<test::FaultyFileSystem>(memory);
  const auto pages = Open(files, Durability::Full);
  Fill(*pages, 5, 0x55);
  int value = 0;
  while (!files->HasFailed()) {
    files->FailOnce(test::FileOperation::Write, 3, ErrorNumber::DiskFull);  // after the unit and page 3
    Fill(*pages, 3, ++value);
  }
  files->Mend();
  files->FailOnce(test::FileOperation::Write, 2, ErrorNumber::DiskFull);  // after the unit
  Fill(*pages, 3, ++value);
  EXPECT_TRUE(files->HasFailed());
  const Files left = {{"f", memory->Get("f")}, {"f-log", memory->Get("f-log")}};
  EXPECT_EQ(std::to_integer<int>(left.at("f")[3 * kPageSize]), value - 1);
  const auto up = std::make_shared<CrashingFileSystem>(left);
  for (const bool readOnly : {true, false}) {
    const auto again = Open(up, Durability::Full, readOnly);
    EXPECT_EQ(First(*again, 3), value);
    EXPECT_EQ(First(*again, 5), 0x55);
  }
}

}  // namespace
}  // namespace jet

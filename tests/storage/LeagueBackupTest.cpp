#include <algorithm>
#include <functional>
#include <map>
#include <memory>
#include <string>

#include <gtest/gtest.h>

#include "jet/Check.h"
#include "jet/Error.h"
#include "jet/dao/DBEngine.h"
#include "jet/dao/Database.h"
#include "storage/HLServiceUtils.h"
#include "storage/LeagueBackup.h"
#include "tests/support/CrashingFileSystem.h"
#include "tests/support/TestFiles.h"

namespace HLDataSrvc {
namespace {

using jet::test::Crash;
using jet::test::CrashingFileSystem;
using Files = std::map<std::string, std::vector<std::byte>>;

constexpr const char* kLeague = "league.mdb";
constexpr const char* kBackup = "backup.mdb";
constexpr const char* kKept = "kept.mdb";

/// Runs the storage on files in memory, on which the machine can go down.
class LeagueBackupTest : public testing::Test {
 protected:
  ~LeagueBackupTest() override { HLServiceUtils::ReplaceEngine({}); }

  void Use(Files files) {
    m_files = std::make_shared<CrashingFileSystem>(std::move(files));
    HLServiceUtils::ReplaceEngine(
        {.cacheBytes = std::size_t{1} << 22, .files = m_files, .observer = nullptr});
  }
  static std::shared_ptr<jet::Database> Open(const std::string& name) {
    return HLServiceUtils::Engine().OpenDatabase(name, true, false, HLServiceUtils::GetConnectString());
  }
  /// What the one prize type of the league is called, once its file is seen to be sound.
  static std::string MarkOf(const std::string& name) {
    const auto database = Open(name);
    EXPECT_EQ(database->Check().findings, std::vector<std::string>()) << name;
    return database->OpenRecordset("select [type name] from [prize type info]")->Fields(0).Value().ToText();
  }
  static void Mark(jet::Database& league, const std::string& mark) {
    const auto row = league.OpenRecordset("select * from [prize type info]");
    row->Eof() ? row->AddNew() : row->Edit();
    row->Fields("type id").Value(std::int32_t{1});
    row->Fields("type name").Value(mark);
    row->Update();
  }
  static jet::ErrorNumber ErrorOf(const std::function<void()>& action) {
    try {
      action();
    } catch (const jet::Error& error) {
      return error.Number();
    }
    ADD_FAILURE() << "no error was raised";
    return {};
  }
  /// A league that says "now", and a backup of it that says "then".
  static Files Pair() {
    Files files;
    files[kLeague] = jet::test::ReadWholeFile(jet::test::FixturePath("league-blank.mdb"));
    return files;
  }
  void UsePair() {
    Use(Pair());
    Mark(*Open(kLeague), "then");
    BackUpLeague(kLeague, kBackup);
    Mark(*Open(kLeague), "now");
  }

  /// Does the work again and again, the machine going down at every `step`th operation in turn, in each way;
  /// `check` sees what is left.
  void CrashEverywhere(std::size_t step, const std::function<void()>& work,
                       const std::function<void(bool done)>& check) {
    UsePair();
    const Files start = m_files->Survivors();
    std::size_t points = 0;
    for (const Crash crash : {Crash::Kill, Crash::TornKill, Crash::PowerCut}) {
      for (std::size_t nth = 1;; nth += step) {
        Use(start);
        m_files->CrashAt(nth, crash, static_cast<std::uint32_t>(nth));
        bool done = true;
        try {
          work();
        } catch (const jet::Error&) {
          done = false;
        }
        if (!m_files->HasCrashed()) break;
        ++points;
        Use(m_files->Survivors());
        SCOPED_TRACE("crash " + std::to_string(static_cast<int>(crash)) + " at operation " +
                     std::to_string(nth));
        check(done);
        if (HasFailure()) return;
      }
    }
    EXPECT_GT(points, 30U);
  }

  std::shared_ptr<CrashingFileSystem> m_files;
};

TEST_F(LeagueBackupTest, BackupIsWholeOrNotThere) {
  UsePair();
  EXPECT_EQ(MarkOf(kBackup), "then");
  EXPECT_EQ(ErrorOf([] { BackUpLeague(kLeague, kBackup); }), jet::ErrorNumber::ObjectExists);
  const auto held = Open(kLeague);
  EXPECT_EQ(ErrorOf([] { BackUpLeague(kLeague, kKept); }), jet::ErrorNumber::FileHeldExclusively);
  CrashEverywhere(
      5, [] { BackUpLeague(kLeague, kKept); },
      [&](bool done) {
        EXPECT_EQ(MarkOf(kLeague), "now");
        EXPECT_EQ(MarkOf(kBackup), "then");
        EXPECT_TRUE(m_files->Exists(kKept) || !done);
        if (!m_files->Exists(kKept)) BackUpLeague(kLeague, kKept);  // nothing is in the way
        EXPECT_EQ(MarkOf(kKept), "now");
      });
}

TEST_F(LeagueBackupTest, RestoringKeepsWhatWasThere) {
  UsePair();
  EXPECT_EQ(RestoreLeague(kBackup, kLeague, kKept), Replaced::Whole);
  EXPECT_EQ(MarkOf(kLeague), "then");
  EXPECT_EQ(MarkOf(kKept), "now");
  EXPECT_EQ(RestoreLeague(kKept, "other.mdb", "unused.mdb"), Replaced::Nothing);
  EXPECT_EQ(MarkOf("other.mdb"), "now");
  EXPECT_FALSE(m_files->Exists("unused.mdb"));
  CrashEverywhere(
      7, [] { RestoreLeague(kBackup, kLeague, kKept); },
      [&](bool done) {
        const bool isRestored = MarkOf(kLeague) == "then";
        EXPECT_TRUE(isRestored || !done);
        EXPECT_EQ(MarkOf(isRestored ? kKept : kLeague), "now");
        EXPECT_EQ(MarkOf(kBackup), "then");
      });
}

TEST_F(LeagueBackupTest, AnUnreadableLeagueIsPutAsideWithItsLog) {
  UsePair();
  const auto league = Open(kLeague);
  Mark(*league, "only in the log");
  Files files = m_files->Survivors();  // as a crash would leave them now
  const std::vector<std::byte> log = files.at(jet::LogNameFor(kLeague));
  std::fill(files[kLeague].begin(), files[kLeague].end(), std::byte{7});
  Use(files);
  EXPECT_EQ(RestoreLeague(kBackup, kLeague, kKept), Replaced::Unreadable);
  EXPECT_EQ(MarkOf(kLeague), "then");
  const Files after = m_files->Survivors();
  EXPECT_EQ(after.at(kKept), files[kLeague]);
  EXPECT_EQ(after.at(jet::LogNameFor(kKept)), log);
}

// The file was removed while it was open; what was saved in it is in the log.
TEST_F(LeagueBackupTest, TheLogOfALeagueThatIsGoneIsPutAside) {
  UsePair();
  const auto league = Open(kLeague);
  Mark(*league, "only in the log");
  m_files->Remove(kLeague);
  EXPECT_EQ(ErrorOf([] { RestoreLeague(kBackup, kLeague, kKept); }), jet::ErrorNumber::FileHeldExclusively);
  const Files files = m_files->Survivors();
  Use(files);
  EXPECT_EQ(RestoreLeague(kBackup, kLeague, kKept), Replaced::LogOnly);
  EXPECT_EQ(MarkOf(kLeague), "then");
  EXPECT_EQ(m_files->Survivors().at(jet::LogNameFor(kKept)), files.at(jet::LogNameFor(kLeague)));
}

TEST_F(LeagueBackupTest, ADamagedBackupIsRefused) {
  UsePair();
  Files files = m_files->Survivors();
  files[kBackup] = jet::test::ReadWholeFile(jet::test::FixturePath("league-damaged-index-leaf.mdb"));
  Use(files);
  EXPECT_EQ(ErrorOf([] { RestoreLeague(kBackup, kLeague, kKept); }), jet::ErrorNumber::DamagedFile);
  EXPECT_EQ(MarkOf(kLeague), "now");
  EXPECT_FALSE(m_files->Exists(kKept));
}

TEST_F(LeagueBackupTest, CompactingLeavesOneOrTheOther) {
  CrashEverywhere(
      41, [] { CompactLeague(kLeague, kKept); },
      [&](bool) {
        EXPECT_EQ(MarkOf(kLeague), "now");
        EXPECT_FALSE(m_files->Exists(kKept));
      });
}

TEST_F(LeagueBackupTest, CompactingMendsAndKeepsAnUnsoundFile) {
  const std::vector<std::byte> unsound =
      jet::test::ReadWholeFile(jet::test::FixturePath("league-stale-moved.mdb"));
  Use({{kLeague, unsound}});
  const Compacted done = CompactLeague(kLeague, kKept);
  EXPECT_FALSE(done.findings.empty());
  EXPECT_LT(done.pagesAfter, done.pagesBefore);
  const auto league = Open(kLeague);
  EXPECT_EQ(league->Check().findings, std::vector<std::string>());
  EXPECT_EQ(league->Table("player info").rowCount, 2500U);
  EXPECT_EQ(m_files->Survivors().at(kKept), unsound);
  EXPECT_EQ(ErrorOf([] { RestoreLeague(kKept, "other.mdb", "unused.mdb"); }), jet::ErrorNumber::DamagedFile);
  EXPECT_EQ(RestoreLeague(kKept, "other.mdb", "unused.mdb", /*acceptDamage=*/true), Replaced::Nothing);
  EXPECT_EQ(m_files->Survivors().at("other.mdb"), unsound);
}

}  // namespace
}  // namespace HLDataSrvc

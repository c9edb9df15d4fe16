// Databases beside which a log was left, or what looks like one.
#include <filesystem>
#include <functional>

#include <gtest/gtest.h>

#include "jet/file/RedoLog.h"
#include "tests/jet/dao/Databases.h"

namespace jet::test {
namespace {

namespace fs = std::filesystem;

class LeftLogTest : public testing::Test {
 protected:
  static constexpr const char* kName = "league.mdb";

  LeftLogTest() { Put(); }

  void Put() {
    for (const auto& entry : fs::directory_iterator(m_folder.Path()))
      fs::remove_all(entry.path());
    CopyFixture(kName, m_folder);
  }
  std::string File(const std::string& name = kName) const { return m_folder.File(name); }
  static std::string Log(const std::string& file) { return file + "-log"; }

  static std::shared_ptr<Database> Open(const std::string& file, bool readOnly = false) {
    return DBEngine().OpenDatabase(file, true, readOnly, kFixtureConnect);
  }
  static void AddType(Database& database, std::int32_t id) {
    const auto rows = database.OpenRecordset("select * from [prize type info]");
    rows->AddNew();
    rows->Fields("type id").Value(id);
    rows->Fields("type name").Value(std::string("added"));
    rows->Update();
  }
  static std::int32_t Types(Database& database) {
    return *database.OpenRecordset("select count(*) as n from [prize type info] where [type id] > 1000")
                ->Fields(0)
                .Value()
                .As<std::int32_t>();
  }
  static void AddAndClose(const std::string& file, std::int32_t id) {
    const auto database = Open(file);
    AddType(*database, id);
    database->Close();
  }
  /// Adds a type and leaves file and log as a process leaves them that is killed then.
  void AddAndDie(const std::string& file, std::int32_t id) const {
    const std::string kept = File("kept");
    {
      const auto database = Open(file);
      AddType(*database, id);
      fs::copy_file(file, kept);
      fs::copy_file(Log(file), Log(kept));
    }
    fs::copy_file(kept, file, fs::copy_options::overwrite_existing);
    fs::rename(Log(kept), Log(file));
    fs::remove(kept);
  }

  TempFolder m_folder;
};

TEST_F(LeftLogTest, IsReplayedIntoItsFileOnly) {
  const std::string file = File();
  const std::string log = Log(file);
  const std::string other = File("other.mdb");
  struct Case {
    const char* name;
    std::function<std::string()> make;  // returns the name to open
    int types;                          // of those that were added; -1: the log is refused
  };
  const Case cases[] = {
      {"left by a crash", [&] { return AddAndDie(file, 1001), file; }, 1},
      {"moved together with its file",
       [&] {
         AddAndDie(file, 1001);
         fs::rename(file, other);
         fs::rename(log, Log(other));
         return other;
       },
       1},
      {"copied together with its file",
       [&] {
         AddAndDie(file, 1001);
         fs::copy_file(file, other);
         fs::copy_file(log, Log(other));
         return other;
       },
       1},
      {"opened by a symbolic link",
       [&] {
         AddAndDie(file, 1001);
         fs::create_symlink(file, other);
         return other;
       },
       1},
      {"opened by a hard link",
       [&] {
         AddAndDie(file, 1001);
         fs::create_hard_link(file, other);
         return other;
       },
       1},
      {"replayed before, and back again",
       [&] {
         AddAndDie(file, 1001);
         fs::copy_file(log, other);
         Open(file)->Close();
         fs::rename(other, log);
         return file;
       },
       1},
      {"empty", [&] { return WriteWholeFile(log, {}), file; }, 0},
      {"only zeros", [&] { return WriteWholeFile(log, std::vector<std::byte>(5000)), file; }, 0},
      {"cut off",
       [&] {
         AddAndDie(file, 1001);
         fs::resize_file(log, 900);
         return file;
       },
       0},
      {"beside an older copy, of which it changes other pages",
       [&] {
         fs::copy_file(file, other);
         {
           const auto database = Open(file);
           const auto rows = database->OpenRecordset("select * from [position info]");
           rows->AddNew();
           rows->Fields("id").Value(99);
           rows->Fields("abbr").Value(std::string("NW"));
           rows->Fields("desc").Value(std::string("newer"));
           rows->Update();
         }
         AddAndDie(file, 1001);
         fs::rename(other, file);
         return file;
       },
       -1},
      {"beside a newer copy",
       [&] {
         AddAndDie(file, 1001);
         fs::rename(log, other);
         AddAndClose(file, 1002);
         fs::rename(other, log);
         return file;
       },
       -1},
      {"of another file",
       [&] {
         const std::string foreign = File("foreign.mdb");
         fs::copy_file(FixturePath("league-no-password.mdb"), foreign);
         AddAndDie(foreign, 1001);
         fs::rename(Log(foreign), log);
         return file;
       },
       -1},
      {"nothing like a log",
       [&] { return WriteWholeFile(log, std::vector<std::byte>(5000, std::byte{7})), file; }, -1},
  };
  for (const Case& each : cases) {
    SCOPED_TRACE(each.name);
    Put();
    const std::string opened = each.make();
    for (const bool readOnly : {true, false}) {
      const auto before = ReadWholeFile(opened);
      try {
        EXPECT_EQ(Types(*Open(opened, readOnly)), each.types);
      } catch (const Error& error) {
        EXPECT_EQ(each.types, -1) << error.what();
        EXPECT_TRUE(error.Number() == ErrorNumber::LogDoesNotBelong ||
                    error.Number() == ErrorNumber::DamagedFile)
            << error.what();
        EXPECT_NE(std::string(error.what()).find(log), std::string::npos) << error.what();
        EXPECT_TRUE(ReadWholeFile(opened) == before);
        EXPECT_TRUE(fs::exists(log));
      }
    }
    EXPECT_EQ(fs::exists(Log(opened)), each.types < 0);
  }
}

/// Files in memory on which a log was left with one change.
class UnwritableTest : public LeagueTest {
 protected:
  UnwritableTest() {
    const auto rows = Select("select * from [team info]");
    rows->Edit();
    rows->Fields("name").Value(std::string("in the log"));
    rows->Update();
    const auto file = memory->Get("league.mdb");
    const auto log = memory->Get("league.mdb-log");
    database.reset();
    memory->Put("league.mdb", file);
    memory->Put("league.mdb-log", log);
  }
  static std::string FirstTeam(Database& database) {
    return database.OpenRecordset("select [name] from [team info]")->Fields(0).Value().ToText();
  }
  static void ChangeTeam(Database& database) {
    const auto rows = database.OpenRecordset("select * from [team info]");
    rows->Edit();
    rows->Fields("name").Value(std::string("changed"));
    rows->Update();
  }
};

TEST_F(UnwritableTest, ALogThatCannotBeReplayedIsReadWhereItIs) {
  for (const auto error : {ErrorNumber::DiskFull, ErrorNumber::PermissionDenied, ErrorNumber::ReadFailed}) {
    files->FailFrom(FileOperation::Write, 1, error);
    database = Open();
    EXPECT_EQ(FirstTeam(*database), "in the log");
    const std::string words = ExpectError(ErrorNumber::PermissionDenied, [&] { ChangeTeam(*database); });
    EXPECT_NE(words.find("made to fail"), std::string::npos) << "the reason: " << words;
    database->Close();
    files->Mend();
  }
  database = Open();
  EXPECT_EQ(FirstTeam(*database), "in the log");
  ChangeTeam(*database);
  database->Close();
  EXPECT_FALSE(memory->Exists("league.mdb-log"));
}

TEST_F(UnwritableTest, ReopeningThatFailsLeavesTheDatabaseOpen) {
  database = Open();
  ChangeTeam(*database);  // waits in the log
  EngineOptions options;
  options.files = files;
  DBEngine engine(options);
  for (int nth = 1; nth < 4; ++nth) {
    files->FailOnce(FileOperation::Read, static_cast<std::size_t>(nth));
    ExpectError(ErrorNumber::ReadFailed, [&] { engine.ReopenDatabase(*database, kFixtureConnect); });
    files->Mend();
    EXPECT_EQ(FirstTeam(*database), "changed");
    ChangeTeam(*database);
  }
  ExpectError(ErrorNumber::PasswordRejected, [&] { engine.ReopenDatabase(*database, ";pwd=wrong"); });
  files->FailFrom(FileOperation::Write, 1, ErrorNumber::DiskFull);
  const auto reopened = engine.ReopenDatabase(*database, kFixtureConnect);
  EXPECT_FALSE(database->IsOpen());
  EXPECT_EQ(FirstTeam(*reopened), "changed") << "nothing is written for it";
  files->Mend();
  reopened->Close();
  EXPECT_EQ(FirstTeam(*Open()), "changed");
}

}  // namespace
}  // namespace jet::test

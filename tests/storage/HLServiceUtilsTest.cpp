#include <cstdint>
#include <filesystem>
#include <fstream>
#include <map>
#include <thread>

#include <gtest/gtest.h>

#include "jet/Error.h"
#include "jet/dao/Database.h"
#include "platform/ThreadNumber.h"
#include "storage/HLServiceUtils.h"
#include "tests/support/RecordingHost.h"
#include "tests/support/TestFiles.h"

namespace HLDataSrvc::HLServiceUtils {
namespace {

using HLIData::DBType;
using jet::test::CopyFixture;
using jet::test::FixturePath;
using test::RecordingHost;

TEST(GetDatabaseFileName, NamesEveryKind) {
  EXPECT_EQ(GetDatabaseFileName(DBType::Live, "", ""), "Halcyra - Live.mdb");
  EXPECT_EQ(GetDatabaseFileName(DBType::Test, "a", "b"), "Halcyra - Test.mdb");
  EXPECT_EQ(GetDatabaseFileName(DBType::Blank, "", ""), "Halcyra - Blank.mdb");
  EXPECT_EQ(GetDatabaseFileName(DBType::Setup, "", ""), "Halcyra - Setup.mdb");
  EXPECT_EQ(GetDatabaseFileName(DBType{0}, "", ""), "Halcyra - .mdb");
  EXPECT_EQ(GetDatabaseFileName(DBType{6}, "a", "b"), "Halcyra - .mdb");
}

TEST(GetDatabaseFileName, BackupNeedsBothPartsToNameOneFile) {
  EXPECT_EQ(GetDatabaseFileName(DBType::Backup, "2005-01-02", "10-30"),
            "Halcyra - Backup - 2005-01-02 - 10-30.mdb");
  EXPECT_EQ(GetDatabaseFileName(DBType::Backup, "", "10-30"), "Halcyra - Backup - *.mdb");
  EXPECT_EQ(GetDatabaseFileName(DBType::Backup, "2005-01-02", ""), "Halcyra - Backup - *.mdb");
  EXPECT_EQ(GetDatabaseFileName(DBType::Backup, " ", " "), "Halcyra - Backup -   -  .mdb");
}

class FolderTest : public testing::Test {
 protected:
  void Put(const char* fixture, const std::string& name) const {
    std::filesystem::copy_file(FixturePath(fixture), m_folder.File(name),
                               std::filesystem::copy_options::overwrite_existing);
  }
  std::string PathOf(const std::string& name) const { return m_folder.Path() + "\\" + name; }
  // What the engine itself says when it opens the file.
  std::string EnginesWords(const std::string& path) const {
    try {
      jet::DBEngine().OpenDatabase(path, true, false, GetConnectString());
    } catch (const jet::Error& error) {
      return error.what();
    }
    return "it opens";
  }

  jet::test::TempFolder m_folder;
  RecordingHost m_host{m_folder.Path()};
};

TEST_F(FolderTest, FolderIsKnownByItsLiveFileWhateverKindIsWanted) {
  ASSERT_FALSE(IsDevelopmentLayout());
  Put("league.mdb", "Halcyra - Test.mdb");
  EXPECT_EQ(GetDatabaseFolder(m_host), "");
  EXPECT_EQ(GetDatabasePath(m_host, DBType::Test, "", ""), "\\Halcyra - Test.mdb");

  std::filesystem::create_directory(m_folder.File("Halcyra - Live.mdb"));
  EXPECT_EQ(GetDatabaseFolder(m_host), "") << "a folder of that name is no live file";
  std::filesystem::remove(m_folder.File("Halcyra - Live.mdb"));

  std::ofstream(m_folder.File("Halcyra - Live.mdb")) << "x";
  EXPECT_EQ(GetDatabaseFolder(m_host), m_folder.Path());
  EXPECT_EQ(GetDatabasePath(m_host, DBType::Test, "", ""), PathOf("Halcyra - Test.mdb"));
}

TEST_F(FolderTest, OpensTheFileOfAKindExclusively) {
  Put("league.mdb", "Halcyra - Live.mdb");
  Put("league-encoded.mdb", "Halcyra - Setup.mdb");
  std::shared_ptr<jet::Database> database;
  std::string message;
  ASSERT_TRUE(OpenDatabaseByKind(m_host, DBType::Setup, database, message)) << message;
  EXPECT_EQ(message, "");
  EXPECT_EQ(database->Name(), PathOf("Halcyra - Setup.mdb"));
  EXPECT_FALSE(database->IsReadOnly());
  EXPECT_NE(EnginesWords(PathOf("Halcyra - Setup.mdb")), "it opens");
  database.reset();
  EXPECT_EQ(EnginesWords(PathOf("Halcyra - Setup.mdb")), "it opens");
}

TEST_F(FolderTest, MissingFileIsToldWithItsPathAndLeavesTheHandleAlone) {
  std::shared_ptr<jet::Database> database;
  std::string message = "old";
  EXPECT_FALSE(OpenDatabaseByKind(m_host, DBType::Live, database, message));
  EXPECT_EQ(message, "Database file: \\Halcyra - Live.mdb is missing.");

  Put("league.mdb", "Halcyra - Live.mdb");
  ASSERT_TRUE(OpenDatabaseByKind(m_host, DBType::Live, database, message));
  const auto open = database;
  EXPECT_FALSE(OpenDatabaseByKind(m_host, DBType::Backup, database, message));
  EXPECT_EQ(message, "Database file: " + PathOf("Halcyra - Backup - *.mdb") + " is missing.");
  EXPECT_EQ(database, open);
}

TEST_F(FolderTest, PatternOfTheBackupsIsFoundButNoNameForTheEngine) {
  Put("league.mdb", "Halcyra - Live.mdb");
  Put("league.mdb", "Halcyra - Backup - 2005-01-02 - 10-30.mdb");
  std::shared_ptr<jet::Database> database;
  std::string message;
  EXPECT_FALSE(OpenDatabaseByKind(m_host, DBType::Backup, database, message));
  EXPECT_EQ(message, EnginesWords(PathOf("Halcyra - Backup - *.mdb")));
  EXPECT_TRUE(OpenDatabaseFile(m_host, GetDatabasePath(m_host, DBType::Backup, "2005-01-02", "10-30"),
                               database, message));
}

TEST_F(FolderTest, EnginesErrorsAreToldInItsOwnWords) {
  for (const char* fixture :
       {"league-damaged-password.mdb", "league-damaged-empty.mdb", "league-damaged-header-only.mdb",
        "league-damaged-magic.mdb", "league-damaged-jet3.mdb", "league-damaged-catalog.mdb"}) {
    Put(fixture, "Halcyra - Live.mdb");
    const std::string words = EnginesWords(PathOf("Halcyra - Live.mdb"));
    ASSERT_NE(words, "it opens") << fixture;
    std::shared_ptr<jet::Database> database;
    std::string message;
    EXPECT_FALSE(OpenDatabaseByKind(m_host, DBType::Live, database, message)) << fixture;
    EXPECT_EQ(message, words) << fixture;
    EXPECT_EQ(database, nullptr);
  }
}

TEST_F(FolderTest, FileWithoutPasswordOpensToo) {
  Put("league-no-password.mdb", "Halcyra - Live.mdb");
  std::shared_ptr<jet::Database> database;
  std::string message;
  EXPECT_TRUE(OpenDatabaseByKind(m_host, DBType::Live, database, message)) << message;
}

TEST(Engine, IsOnePerRunningThread) {
  jet::DBEngine* const here = &Engine();
  EXPECT_EQ(&Engine(), here);
  std::map<std::uint64_t, jet::DBEngine*> there;
  for (int i = 0; i < 50; ++i) {
    std::thread([&] {
      EXPECT_NE(&Engine(), here);
      jet::DBEngine*& ofNumber = there.try_emplace(ThreadNumber(), &Engine()).first->second;
      EXPECT_EQ(ofNumber, &Engine()) << "an ended thread's goes to the next with its number";
    }).join();
  }
}

}  // namespace
}  // namespace HLDataSrvc::HLServiceUtils

#include <cstdio>
#include <ctime>
#include <filesystem>
#include <fstream>

#include <gtest/gtest.h>
#include <sys/stat.h>

#include "HLDataSrvc/Host.h"
#include "HLIData/Error.h"
#include "platform/posix/Wildcards.h"
#include "tests/support/TestFiles.h"

namespace HLDataSrvc {
namespace {

using jet::test::TempFolder;

void Touch(const std::string& path) {
  std::ofstream(path) << "x";
}

class FindFileTest : public testing::Test {
 protected:
  std::string Find(const std::string& name) const { return m_host->FindFile(m_folder.Path() + "\\" + name); }

  TempFolder m_folder;
  std::shared_ptr<Host> m_host = SystemHost();
};

TEST_F(FindFileTest, FindsOrdinaryAndReadOnlyFiles) {
  Touch(m_folder.File("Halcyra - Live.mdb"));
  Touch(m_folder.File("readonly.mdb"));
  std::filesystem::permissions(m_folder.File("readonly.mdb"), std::filesystem::perms::owner_read);
  EXPECT_EQ(Find("Halcyra - Live.mdb"), "Halcyra - Live.mdb");
  EXPECT_EQ(Find("readonly.mdb"), "readonly.mdb");
  EXPECT_EQ(Find("Halcyra - Test.mdb"), "");
  EXPECT_EQ(Find(""), "");
}

TEST_F(FindFileTest, PassesOverFoldersHiddenAndSpecialFiles) {
  std::filesystem::create_directory(m_folder.File("folder.mdb"));
  Touch(m_folder.File(".hidden.mdb"));
  ASSERT_EQ(mkfifo(m_folder.File("pipe.mdb").c_str(), 0600), 0);
  for (const char* name : {"folder.mdb", ".hidden.mdb", "pipe.mdb", "*.mdb", "*", "?hidden.mdb"}) {
    EXPECT_EQ(Find(name), "") << name;
  }
}

TEST_F(FindFileTest, StarAndQuestionMarkAreWildcards) {
  Touch(m_folder.File("Halcyra - Backup - b.mdb"));
  Touch(m_folder.File("Halcyra - Backup - a.mdb"));
  EXPECT_EQ(Find("Halcyra - Backup - *.mdb"), "Halcyra - Backup - a.mdb");
  EXPECT_EQ(Find("Halcyra - Backup - ?.mdb"), "Halcyra - Backup - a.mdb");
  EXPECT_EQ(Find("Halcyra - Backup - ??.mdb"), "");
  EXPECT_EQ(Find("*b.mdb"), "Halcyra - Backup - b.mdb");
}

TEST_F(FindFileTest, ParentFoldersInThePathAreFollowed) {
  std::filesystem::create_directories(m_folder.File("bin/debug"));
  std::filesystem::create_directory(m_folder.File("Databases"));
  Touch(m_folder.File("Databases/live.mdb"));
  EXPECT_EQ(Find("bin\\debug\\..\\..\\Databases\\live.mdb"), "live.mdb");
  EXPECT_EQ(Find("bin\\..\\Databases\\*.mdb"), "live.mdb");
}

TEST_F(FindFileTest, WhatIsNotThereIsNoErrorButWhatCannotBeSeenIs) {
  EXPECT_EQ(Find("missing\\live.mdb"), "");
  EXPECT_EQ(Find("missing\\*.mdb"), "");
  Touch(m_folder.File("file"));
  EXPECT_EQ(Find("file\\live.mdb"), "");

  // A link that leads to itself cannot be followed, as any user.
  std::filesystem::create_symlink("loop", m_folder.File("loop"));
  for (const char* name : {"loop\\live.mdb", "loop\\*.mdb"}) {
    try {
      Find(name);
      ADD_FAILURE() << name;
    } catch (const HLIData::Error& error) {
      EXPECT_EQ(error.Number(), HLIData::ErrorNumber::PathAccess);
      EXPECT_NE(std::string(error.what()).find(name), std::string::npos) << error.what();
    }
  }
}

TEST(Wildcards, MatchWholeNamesCharacterByCharacter) {
  EXPECT_TRUE(MatchesWildcards("abc", "abc"));
  EXPECT_TRUE(MatchesWildcards("abc", "a*"));
  EXPECT_TRUE(MatchesWildcards("abcbd", "a*b?"));
  EXPECT_TRUE(MatchesWildcards("", "**"));
  EXPECT_TRUE(MatchesWildcards("Zoë", "Zo?"));
  EXPECT_TRUE(MatchesWildcards("ëb", "*b"));
  EXPECT_FALSE(MatchesWildcards("abc", "ab"));
  EXPECT_FALSE(MatchesWildcards("ab", "abc"));
  EXPECT_FALSE(MatchesWildcards("", "?"));
  EXPECT_FALSE(MatchesWildcards("abc", "ABC"));
  EXPECT_FALSE(MatchesWildcards(std::string(200, 'a'), std::string("*a*a*a*a*a*a*a*a*b")));
}

TEST(SystemHost, ApplicationFolderIsThatOfTheProgramWithoutASeparator) {
  const std::filesystem::path program = std::filesystem::read_symlink("/proc/self/exe");
  EXPECT_EQ(SystemHost()->ApplicationFolder(), program.parent_path().string());
}

TEST(SystemHost, MessageGoesToStandardErrorWithoutTerminalControls) {
  testing::internal::CaptureStderr();
  SystemHost()->ShowMessage("Error in loading settings.\r\nThe table \x1B[2Jis\tmissing.", "Halcyra Service");
  EXPECT_EQ(testing::internal::GetCapturedStderr(),
            "Halcyra Service: Error in loading settings.\nThe table ?[2Jis\tmissing.\n");
}

TEST(SystemHost, TodayIsTheLocalDate) {
  const auto text = [](std::time_t time) {
    char date[16];
    std::strftime(date, sizeof date, "%Y-%m-%d", std::localtime(&time));
    return std::string(date);
  };
  const auto before = text(std::time(nullptr));
  const auto today = SystemHost()->Today();
  const auto after = text(std::time(nullptr));
  char date[32];
  std::snprintf(date, sizeof date, "%04d-%02u-%02u", static_cast<int>(today.year()),
                static_cast<unsigned>(today.month()), static_cast<unsigned>(today.day()));
  EXPECT_TRUE(date == before || date == after) << date;
}

}  // namespace
}  // namespace HLDataSrvc

#include <filesystem>
#include <fstream>

#include <gtest/gtest.h>

#include "storage/HLServiceUtils.h"
#include "tests/support/RecordingHost.h"
#include "tests/support/TestFiles.h"

namespace HLDataSrvc::HLServiceUtils {
namespace {

TEST(DevelopmentLayout, LooksTwoFoldersUpThenOneAndNotBesideTheProgram) {
  ASSERT_TRUE(IsDevelopmentLayout());
  const jet::test::TempFolder folder;
  const std::string live = "Halcyra - Live.mdb";
  for (const char* made : {"out/bin", "out/Databases", "Databases"}) {
    std::filesystem::create_directories(folder.File(made));
  }
  const std::string application = folder.File("out/bin");
  const test::RecordingHost host(application);
  std::ofstream(folder.File("out/bin/" + live)) << "x";
  EXPECT_EQ(GetDatabaseFolder(host), "");
  std::ofstream(folder.File("out/Databases/" + live)) << "x";
  EXPECT_EQ(GetDatabaseFolder(host), application + "\\..\\Databases");
  std::ofstream(folder.File("Databases/" + live)) << "x";
  EXPECT_EQ(GetDatabaseFolder(host), application + "\\..\\..\\Databases");
  EXPECT_EQ(GetDatabasePath(host, HLIData::DBType::Setup, "", ""),
            application + "\\..\\..\\Databases\\Halcyra - Setup.mdb");
}

TEST(DevelopmentLayout, OpensTheFileThroughTheParentFolders) {
  const jet::test::TempFolder folder;
  std::filesystem::create_directories(folder.File("out/bin"));
  std::filesystem::create_directory(folder.File("Databases"));
  std::filesystem::copy_file(jet::test::FixturePath("league.mdb"),
                             folder.File("Databases/Halcyra - Live.mdb"));
  const test::RecordingHost host(folder.File("out/bin"));
  std::shared_ptr<jet::Database> database;
  std::string message;
  EXPECT_TRUE(OpenDatabaseByKind(host, HLIData::DBType::Live, database, message)) << message;
}

}  // namespace
}  // namespace HLDataSrvc::HLServiceUtils

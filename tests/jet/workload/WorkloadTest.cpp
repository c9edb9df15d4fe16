#include "tests/jet/workload/WorkloadRun.h"
#include "tests/support/DesktopObjects.h"
#include "tests/support/GlobalMaps.h"

namespace jet::test {
namespace {

TEST(Workload, NewDatabaseOfAllTypes) {
  const TempFolder folder;
  const std::string path = folder.File("new.mdb");
  CreateOptions options;
  options.password = "secret";
  MakeAllTypesTables(*DBEngine().CreateDatabase(path, options));
  RunWorkload(path, "secret", {}, true);
}

TEST(Workload, LeagueOfAnotherWriter) {
  const TempFolder folder;
  RunWorkload(CopyFixture("league.mdb", folder), kFixturePassword, {}, false);
}

TEST(Workload, EncodedLeagueOfAnotherWriter) {
  const TempFolder folder;
  RunWorkload(CopyFixture("league-encoded.mdb", folder), kFixturePassword, {2, 800}, false);
}

TEST(Workload, FileOfTheDesktopProgram_AlsoCompacted) {
  const TempFolder folder;
  const std::string path = CopyFixture("league.mdb", folder);
  AddDesktopObjects(SystemFiles()->Open(path, {}));
  const auto open = [](const std::string& name) {
    return DBEngine().OpenDatabase(name, true, false, kFixtureConnect);
  };
  auto database = open(path);
  MakeAllTypesTables(*database);
  ColumnSpec rated{.name = "rated", .type = ColumnType::Long};
  rated.validation = {">0", ""};
  database->CreateTable({"rated",
                         {{.name = "key", .type = ColumnType::Guid}, rated},
                         {{.name = "PrimaryKey", .columns = {{"key"}}, .primary = true}}});
  database.reset();
  RunWorkload(path, kFixturePassword, {1, 1000}, false);

  database = open(path);
  const Model model(*database);
  const std::string compacted = folder.File("compacted.mdb");
  DBEngine().CompactDatabase(*database, compacted)->Close();
  database = open(compacted);
  EXPECT_EQ(model.Compare(*database), "");
  EXPECT_EQ(Findings(*database), "");
  database.reset();
  EXPECT_EQ(IndependentCheck(compacted, false, kFixturePassword), "");
}

/// The parameter: the first page of the map of free pages.
class WorkloadOnMovedMap : public testing::TestWithParam<std::uint32_t> {};

TEST_P(WorkloadOnMovedMap, GrowsAndStaysSound) {
  const TempFolder folder;
  const std::string path = CopyFixture("league.mdb", folder);
  WriteWholeFile(path, WithGlobalMapFrom(ReadWholeFile(path), GetParam()));
  ASSERT_EQ(IndependentCheck(path, false, kFixturePassword), "");
  RunWorkload(path, kFixturePassword, {1, 2000}, false);
}

INSTANTIATE_TEST_SUITE_P(FirstPages, WorkloadOnMovedMap, testing::Values(8, 512, 3584));

}  // namespace
}  // namespace jet::test

#include "tests/jet/workload/WorkloadRun.h"
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

#include "tests/jet/workload/WorkloadRun.h"

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

}  // namespace
}  // namespace jet::test

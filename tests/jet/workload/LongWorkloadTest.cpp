#include "tests/jet/workload/WorkloadRun.h"

namespace jet::test {
namespace {

TEST(LongWorkload, NewDatabaseOfAllTypes) {
  const TempFolder folder;
  const std::string path = folder.File("new.mdb");
  CreateOptions options;
  options.encode = true;
  MakeAllTypesTables(*DBEngine().CreateDatabase(path, options));
  RunWorkload(path, "", {5, 8000}, true);
}

TEST(LongWorkload, LeagueOfAnotherWriter) {
  const TempFolder folder;
  RunWorkload(CopyFixture("league.mdb", folder), kFixturePassword, {5, 6000}, false);
}

}  // namespace
}  // namespace jet::test

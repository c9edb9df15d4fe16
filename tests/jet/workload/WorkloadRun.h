#pragma once

#include <string>

#include <gtest/gtest.h>

#include "jet/Check.h"
#include "jet/dao/DBEngine.h"
#include "tests/jet/workload/AllTypesDatabase.h"
#include "tests/jet/workload/Model.h"
#include "tests/jet/workload/WitnessComparison.h"
#include "tests/jet/workload/Workload.h"
#include "tests/support/Processes.h"
#include "tests/support/TestFiles.h"
#include "tests/support/Witnesses.h"

namespace jet::test {

inline std::string Findings(const Database& database) {
  std::string text;
  for (const std::string& finding : database.Check().findings)
    text += finding + "\n";
  return text;
}

struct Amount {
  int rounds = 3;              ///< after each the file is closed and opened again
  std::size_t changes = 1000;  ///< in a round
};

/// Does random changes to a database file, and asks everybody what they think of it. `strict`: the file was
/// made by this engine, so that it has no blemishes of others.
inline void RunWorkload(const std::string& path, const std::string& password, const Amount& amount,
                        bool strict) {
  const std::string connect = ";pwd=" + password;
  auto database = DBEngine().OpenDatabase(path, true, false, connect);
  Model model(*database);
  Workload workload(model, WorkloadSeed());
  for (int round = 0; round < amount.rounds; ++round) {
    SCOPED_TRACE("round " + std::to_string(round));
    ASSERT_EQ(workload.Run(*database, amount.changes), "");
    ASSERT_EQ(model.Compare(*database), "");
    EXPECT_EQ(Findings(*database), "");
    database->Close();
    ASSERT_EQ(IndependentCheck(path, strict, password), "");
    database = DBEngine().OpenDatabase(path, true, false, connect);
    ASSERT_EQ(model.Compare(*database), "") << "after opening again";
  }
  database->Close();
  std::cout << workload.Summary() << "\n";
  if (!test::RunsPrograms()) GTEST_SKIP() << "independent readers run on the build machine only";
  EXPECT_EQ(CompareWithIndependentChecker(model, path), "");
  EXPECT_EQ(CompareWithMdbExport(model, path), "");
  EXPECT_EQ(CompareWithMdbReader(model, path, password), "");
}

}  // namespace jet::test

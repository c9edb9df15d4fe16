#include <gtest/gtest.h>

#include "jet/Error.h"
#include "jet/check/Checker.h"
#include "tests/jet/check/CheckedFile.h"

namespace jet::test {
namespace {

std::string FindingsIn(const std::string& fixture, const std::string& password = kFixturePassword) {
  return Lines(CheckBytes(ReadWholeFile(FixturePath(fixture)), password));
}

TEST(Checker, FindsNothingInSoundFiles) {
  for (const char* name : {"league.mdb", "league-encoded.mdb", "league-blank.mdb", "league-no-password.mdb",
                           "league-damaged-draftno.mdb", "league-damaged-draftmanager.mdb",
                           "league-damaged-nullsetting.mdb", "league-damaged-nosetting.mdb"}) {
    EXPECT_EQ(FindingsIn(name), "") << name;
  }
  EXPECT_EQ(FindingsIn("league-damaged-password.mdb", "otherpw123"), "");
}

TEST(Checker, CountsWhatItChecked) {
  const CheckReport report = CheckBytes(ReadWholeFile(FixturePath("league.mdb")));
  EXPECT_EQ(report.pages, 163U);
  EXPECT_EQ(report.tables, 16U);  // twelve and the four of the system
  EXPECT_GT(report.indexes, 30U);
  EXPECT_GT(report.rows, 4321U);
}

TEST(Checker, FindsBodiesOfMovedRowsThatWereLeftBehind) {
  const CheckReport report = CheckBytes(ReadWholeFile(FixturePath("league-stale-moved.mdb")));
  EXPECT_EQ(report.findings.size(), 14U) << Lines(report);
  for (const std::string& finding : report.findings) {
    EXPECT_NE(finding.find("no row leads to the body of a moved row"), std::string::npos) << finding;
  }
}

struct Damaged {
  const char* file;
  const char* finding;  ///< part of a finding that must be there
};

class DamagedFixture : public testing::TestWithParam<Damaged> {};

TEST_P(DamagedFixture, IsToldOf) {
  const std::string findings = FindingsIn(GetParam().file);
  EXPECT_NE(findings.find(GetParam().finding), std::string::npos) << findings;
}

INSTANTIATE_TEST_SUITE_P(
    Structures, DamagedFixture,
    testing::Values(Damaged{"league-damaged-tabledef.mdb", "table 'player info'"},
                    Damaged{"league-damaged-index-root.mdb", "index 'PrimaryKey' of table 'player info'"},
                    Damaged{"league-damaged-index-leaf.mdb", "entries of page 105 are out of order"},
                    Damaged{"league-damaged-rowoffset.mdb", "row 4 does not lie inside the page"},
                    Damaged{"league-damaged-pointer.mdb", "page 663"},
                    Damaged{"league-damaged-pointer.mdb",
                            "the moved row at page 81 row 23 leads to page 81 row 23"}),
    [](const auto& suite) { return "Case" + std::to_string(suite.index); });

TEST(Checker, FilesWithoutAReadableCatalogAreRefused) {
  for (const char* name : {"league-damaged-catalog.mdb", "league-damaged-truncated.mdb",
                           "league-damaged-truncated-midpage.mdb", "league-damaged-header-only.mdb"}) {
    try {
      FindingsIn(name);
      ADD_FAILURE() << name << " opened";
    } catch (const Error& error) {
      EXPECT_EQ(error.Number(), ErrorNumber::DamagedFile) << name << ": " << error.what();
    }
  }
  for (const char* name :
       {"league-damaged-empty.mdb", "league-damaged-jet3.mdb", "league-damaged-magic.mdb"}) {
    try {
      FindingsIn(name);
      ADD_FAILURE() << name << " opened";
    } catch (const Error& error) {
      EXPECT_EQ(error.Number(), ErrorNumber::NotADatabase) << name << ": " << error.what();
    }
  }
}

}  // namespace
}  // namespace jet::test

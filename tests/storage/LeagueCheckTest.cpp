#include <algorithm>
#include <functional>
#include <map>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

#include "jet/Check.h"
#include "jet/Error.h"
#include "jet/dao/DBEngine.h"
#include "jet/dao/Database.h"
#include "storage/HLServiceUtils.h"
#include "storage/LeagueCheck.h"
#include "tests/service/LeagueRows.h"
#include "tests/support/CrashingFileSystem.h"
#include "tests/support/TestFiles.h"

namespace HLDataSrvc {
namespace {

using jet::test::Crash;
using jet::test::CrashingFileSystem;
using test::AddRows;
using test::SmallLeague;
using test::Tables;

/// Kind and a part of the sentence.
using Expected = std::pair<Misfit, std::string>;

struct Case {
  const char* name;
  Tables added;  ///< to the small league without keys and relationships
  std::vector<Expected> findings;
  std::vector<std::string> repairs{};
  std::vector<Misfit> left{};  ///< if there are repairs
};

/// Each in separate rows, and mostly a separate season, so that all of them can stand in one league.
const std::vector<Case>& Cases() {
  using enum Misfit;
  static const std::vector<Case> cases{
      {"repeated row",
       {{"playing info", {"1|1|1|2"}}},
       {{RepeatedRow, "[playing info], season id 1, manager id 1 is stored 2 times"}},
       {"Deleted 1 repeat of [playing info], season id 1, manager id 1."}},
      {"repeated keys",
       {{"manager info", {"2|Other|Marr"}}, {"money distribution info", {"1|1|10", "1|1|12"}}},
       {{RepeatedKey, "[manager info], id 2 has 2 different rows"},
        {RepeatedRow, "[money distribution info], season id 1, prize id 1 is stored 2 times"},
        {RepeatedKey, "[money distribution info], season id 1, prize id 1 has 2 different rows"}},
       {"Deleted 1 repeat of [money distribution info], season id 1, prize id 1."},
       {RepeatedKey, RepeatedKey}},
      {"no ids",
       {{"team info", {"|ZED|||"}}, {"winning info", {"-3|1|1|1|1"}}},
       {{NoID, "[team info], id Null"}, {NoID, "[winning info], id -3"}}},
      {"settings never read", {{"settings", {"2|1"}}}, {{UnreadSettings, "[settings], id 2"}}},
      {"season settings",
       {{"season info",
         {"10|2010|-2|2|0|0|0|0|0|0|0", "11|2011|40000|50000|0|0|0|0|0|0|0", "12|2012|2|2|0|9|8|0|0|0|0",
          "13|2024|0|0|0|0|0|0|0|0|0"}},
        // Too many picks to be loaded: no pick lies outside.
        {"playing info", {"11|1|0|1"}},
        {"draft info", {"11|1|1|1|", "11|20000|1|2|"}}},
       {{NegativeNumber, "season 2010 (id 10) has -2 managers"},
        {TooManyPicks, "season 2011 (id 11) has 40000 managers"},
        {WeeksDiffer, "season 2012 (id 12) has 9 regular weeks among 8 weeks"},
        {SameYear, "season 2024 (id 13) has the year of season id 1"}}},
      {"playing",
       {{"season info", {"14|2014|1|2|0|0|0|0|0|0|0"}},
        {"playing info", {"14|1|0|1", "14|3|0|1", "2|77|0|"}}},
       {{TooManyManagers, "season 2014 (id 14) is set to 1 managers, but 2 take part"},
        {SameRank, "manager 3 (Celeste Dun) and manager 1 (Alda Bright) both have rank 1"},
        {UnknownManager, "season 2023 (id 2): manager 77"}}},
      {"unknown seasons",
       {{"playing info", {"99|1|0|"}},
        {"money distribution info", {"98|1|3", "98|2|3", "|2|3"}},
        {"draft info", {"97|1|1|1|"}},
        {"winning info", {"90|96|1|1|1"}}},
       {{UnknownSeason, "[playing info] has 1 row of season id 99"},
        {UnknownSeason, "[money distribution info] has 2 rows of season id 98"},
        {UnknownSeason, "[money distribution info] has 1 row of season id Null"},
        {UnknownSeason, "[draft info] has 1 row of season id 97"},
        {UnknownSeason, "[winning info] has 1 row of season id 96"}}},
      {"money",
       {{"money distribution info", {"2|55|3", "2|2|"}}},
       {{UnknownPrize, "season 2023 (id 2): prize 55"}, {NoAmount, "season 2023 (id 2): prize 2"}},
       {"Set the amount of prize 2 of season 2023 (id 2) to 0 instead of Null."},
       {UnknownPrize}},
      {"amount in another row",
       {{"season info", {"17|2017|0|0|0|0|0|0|0|0|0"}}, {"money distribution info", {"17|2|", "17|2|8"}}},
       {{RepeatedKey, "[money distribution info], season id 17, prize id 2 has 2 different rows"},
        {NoAmount, "season 2017 (id 17): prize 2 has no amount"}}},
      {"picks that end the draft",
       {{"season info", {"15|2015|2|2|0|0|0|0|0|0|0"}},
        {"playing info", {"15|1|0|1", "15|2|0|2"}},
        {"draft info", {"15|2|1|1|", "15|3|2|1|", "15|4|3|2|", "15|5|1||2", "15|0|1|3|"}}},
       {{OutsideDraft, "pick 0 of season 2015 (id 15)"},
        {PickedTwice, "pick 3 of season 2015 (id 15): player 1 is picked at pick 2 already"},
        {NotTakingPart, "pick 4 of season 2015 (id 15): manager 3 (Celeste Dun) does not take part"},
        {OutsideDraft, "pick 5 of season 2015 (id 15): the draft has 4 picks (2 managers, 2 rounds)"}}},
      {"what picks hold",
       {{"season info", {"16|2016|2|4|0|0|0|0|0|0|0"}},
        {"playing info", {"16|1|0|1", "16|2|0|2"}},
        {"draft info",
         {"16|1|77|1|", "16|2|1|66|", "16|3|1||55", "16|4|1|2|1", "16|5|||", "16|6||3|", "16|7|1|4|1",
          "16|7|1|4|"}}},
       {{UnknownManager, "pick 1 of season 2016 (id 16): manager 77"},
        {UnknownPlayer, "pick 2 of season 2016 (id 16): player 66"},
        {UnknownTeam, "pick 3 of season 2016 (id 16): team 55"},
        {TwoInOnePick, "pick 4 of season 2016 (id 16) holds player 2 and team 1"},
        {EmptyPick, "pick 5 of season 2016 (id 16) has neither"},
        {PickWithoutManager, "pick 6 of season 2016 (id 16) has no manager"},
        {RepeatedKey, "[draft info], season id 16, draft no 7 has 2 different rows"},
        {TwoInOnePick, "pick 7 of season 2016 (id 16) holds player 4 and team 1"}},
       // Without the team, the two rows of pick 7 are equal.
       {"Removed team 1 from pick 4 of season 2016 (id 16); player 2 keeps the pick.",
        "Deleted the empty row of pick 5 of season 2016 (id 16).",
        "Removed team 1 from pick 7 of season 2016 (id 16); player 4 keeps the pick.",
        "Deleted 1 repeat of [draft info], season id 16, draft no 7."},
       {UnknownManager, UnknownPlayer, UnknownTeam, PickWithoutManager}},
      {"draft half deleted",
       {{"season info", {"18|2018|2|2|0|0|0|0|0|0|0"}},
        {"playing info", {"18|1|0|1", "18|2|0|2"}},
        {"draft info", {"18|2|1|1|", "18|3|2|2|"}}},
       {{LatePicks, "season 2018 (id 18): the first pick stored is 2"}}},
      {"winnings",
       {{"winning info", {"91|1|55|1|1", "92|1|1|78|1", "93|1|1|3|1", "94|19|2|1|1", "97|1|1|1|18"}},
        {"season info", {"19|2019|2|2|0|0|0|0|0|0|0"}},
        {"playing info", {"19|1|0|1"}}},
       {{UnknownPrize, "winning 91 of season 2024 (id 1): prize 55"},
        {UnknownManager, "winning 92 of season 2024 (id 1): manager 78"},
        {NotTakingPart, "winning 93 of season 2024 (id 1): manager 3 (Celeste Dun)"},
        {OutsideWeeks, "winning 97 of season 2024 (id 1): the season has 17 weeks, and no week 18"},
        {NotPutUp, "season 2019 (id 19): prize 2 is won in 1 row"}}},
      {"master records",
       {{"player info", {"20|A|B|33|44|0"}}, {"team info", {"9|X|Y|Z|33"}}, {"prize info", {"9|X|33"}}},
       {{UnknownPosition, "[player info], id 20: position 33"},
        {UnknownTeam, "[player info], id 20: team 44"},
        {UnknownPosition, "[team info], id 9: position 33"},
        {UnknownPrizeType, "[prize info], id 9: prize type 33"}},
       {"Set the position of team 9 to 2, as all other teams have it, instead of 33."},
       {UnknownTeam, UnknownPosition, UnknownPrizeType}},
  };
  return cases;
}

class LeagueCheckTest : public testing::Test {
 protected:
  static constexpr const char* kLeague = "league.mdb";
  static constexpr const char* kBackup = "backup.mdb";

  ~LeagueCheckTest() override { HLServiceUtils::ReplaceEngine({}); }

  void Use(std::map<std::string, std::vector<std::byte>> files) {
    m_files = std::make_shared<CrashingFileSystem>(std::move(files));
    HLServiceUtils::ReplaceEngine(
        {.cacheBytes = std::size_t{1} << 22, .files = m_files, .observer = nullptr});
  }
  std::shared_ptr<jet::Database> Open(std::vector<std::byte> league) {
    Use({{kLeague, std::move(league)}});
    return Open(kLeague);
  }
  static std::shared_ptr<jet::Database> Open(const std::string& name) {
    return HLServiceUtils::Engine().OpenDatabase(name, true, false, HLServiceUtils::GetConnectString());
  }

  static std::vector<Misfit> Kinds(const std::vector<LeagueFinding>& findings) {
    std::vector<Misfit> kinds;
    for (const LeagueFinding& finding : findings)
      kinds.push_back(finding.misfit);
    std::sort(kinds.begin(), kinds.end());
    return kinds;
  }
  static void ExpectHas(const std::vector<LeagueFinding>& findings, const Expected& expected) {
    EXPECT_EQ(std::count_if(findings.begin(), findings.end(),
                            [&](const LeagueFinding& finding) {
                              return finding.misfit == expected.first &&
                                     finding.text.find(expected.second) != std::string::npos;
                            }),
              1)
        << expected.second;
  }
  /// Repairs a league, and expects the findings left to be those of another check.
  static RepairedLeague Repaired(jet::Database& league) {
    RepairedLeague done = RepairLeague(league);
    const auto again = CheckLeague(league);
    EXPECT_EQ(Kinds(done.left), Kinds(again));
    for (const LeagueFinding& finding : again)
      EXPECT_FALSE(finding.repair) << finding.text;
    EXPECT_EQ(league.Check().findings, std::vector<std::string>());
    return done;
  }

  std::shared_ptr<CrashingFileSystem> m_files;
};

TEST_F(LeagueCheckTest, FindsAndRepairsEachMisfitAlone) {
  for (const bool isLoose : {false, true})
    EXPECT_EQ(Kinds(CheckLeague(*Open(SmallLeague(isLoose)))), std::vector<Misfit>());
  for (const Case& each : Cases()) {
    SCOPED_TRACE(each.name);
    const auto league = Open(SmallLeague(true, each.added));
    const Tables before = test::RowsOf(*league);
    const auto findings = CheckLeague(*league);
    std::vector<Misfit> kinds;
    for (const Expected& expected : each.findings) {
      ExpectHas(findings, expected);
      kinds.push_back(expected.first);
    }
    std::sort(kinds.begin(), kinds.end());
    EXPECT_EQ(Kinds(findings), kinds);

    const RepairedLeague done = Repaired(*league);
    EXPECT_EQ(done.repairs, each.repairs);
    if (each.repairs.empty()) {
      EXPECT_EQ(Kinds(done.left), kinds);
      EXPECT_EQ(test::RowsOf(*league), before);
    } else {
      EXPECT_EQ(Kinds(done.left), each.left);
    }
  }
}

TEST_F(LeagueCheckTest, FindsAndRepairsAllMisfitsTogether) {
  Tables added;
  for (const Case& each : Cases()) {
    for (const auto& [table, rows] : each.added)
      added[table].insert(added[table].end(), rows.begin(), rows.end());
  }
  const auto league = Open(SmallLeague(true, added));
  const auto findings = CheckLeague(*league);
  std::vector<std::string> repairs;
  std::vector<Misfit> left;
  std::size_t count = 0;
  for (const Case& each : Cases()) {
    SCOPED_TRACE(each.name);
    count += each.findings.size();
    for (const Expected& expected : each.findings) {
      ExpectHas(findings, expected);
      if (each.repairs.empty()) left.push_back(expected.first);
    }
    repairs.insert(repairs.end(), each.repairs.begin(), each.repairs.end());
    left.insert(left.end(), each.left.begin(), each.left.end());
  }
  EXPECT_EQ(findings.size(), count);
  RepairedLeague done = Repaired(*league);
  std::sort(repairs.begin(), repairs.end());
  std::sort(done.repairs.begin(), done.repairs.end());
  std::sort(left.begin(), left.end());
  EXPECT_EQ(done.repairs, repairs);
  EXPECT_EQ(Kinds(done.left), left);
}

TEST_F(LeagueCheckTest, RepairsSettings) {
  using enum Misfit;
  struct SettingsCase {
    test::Lines settings;
    test::Lines seasons;
    std::vector<Misfit> findings;
    test::Lines repaired;
  };
  const std::string season1 = "1|2024|2|2|0|0|0|0|0|0|0";
  const std::string season2 = "2|2023|2|2|0|0|0|0|0|0|0";
  for (const SettingsCase& each : std::vector<SettingsCase>{
           {{}, {season1, season2}, {NoSettings}, {"1|0"}},
           {{"1|0"}, {season1}, {}, {"1|0"}},
           {{"1|"}, {season1, season2}, {NoCurrentSeason}, {"1|0"}},
           {{"1|"}, {season2}, {NoCurrentSeason}, {"1|2"}},
           {{"1|7"}, {}, {NoCurrentSeason}, {"1|0"}},
           {{"1|7"}, {season2}, {NoCurrentSeason}, {"1|2"}},
           // One of two seasons, or a row that may be meant: the commissioner has to choose.
           {{"1|7"}, {season1, season2}, {NoCurrentSeason}, {"1|7"}},
           {{"3|1"}, {season1}, {NoSettings, UnreadSettings}, {"3|1"}}}) {
    const auto league = Open(jet::test::ReadWholeFile(jet::test::FixturePath("league-blank.mdb")));
    AddRows(*league, "settings", each.settings);
    AddRows(*league, "season info", each.seasons);
    EXPECT_EQ(Kinds(CheckLeague(*league)), each.findings);
    const RepairedLeague done = Repaired(*league);
    EXPECT_EQ(test::RowsOf(*league)["settings"], each.repaired);
    EXPECT_EQ(done.repairs.empty(), each.settings == each.repaired);
  }
}

TEST_F(LeagueCheckTest, FindsTheMisfitsOfTheFixtures) {
  const auto check = [this](const std::string& fixture) {
    return Open(jet::test::ReadWholeFile(jet::test::FixturePath(fixture)));
  };
  auto league = check("league.mdb");
  ASSERT_EQ(Kinds(CheckLeague(*league)), std::vector{Misfit::TwoInOnePick});
  const Tables before = test::RowsOf(*league);
  EXPECT_EQ(Repaired(*league).repairs.size(), 1U);
  Tables expected = before;
  auto& picks = expected["draft info"];
  *std::find(picks.begin(), picks.end(), "12|7|14|2366|29") = "12|7|14|2366|";
  expected["draft info"] = test::Sorted(picks);
  EXPECT_EQ(test::RowsOf(*league), expected);

  league = check("league-damaged-draftno.mdb");
  EXPECT_EQ(Kinds(CheckLeague(*league)), (std::vector{Misfit::OutsideDraft, Misfit::TwoInOnePick}));
  league = check("league-damaged-draftmanager.mdb");
  EXPECT_EQ(Kinds(CheckLeague(*league)), (std::vector{Misfit::NotTakingPart, Misfit::TwoInOnePick}));
}

TEST_F(LeagueCheckTest, KnowsALeagueByItsTables) {
  const auto blank = Open(jet::test::ReadWholeFile(jet::test::FixturePath("league-blank.mdb")));
  jet::CreateOptions options;
  options.password = HLServiceUtils::kDatabasePassword;
  const auto other = HLServiceUtils::Engine().CreateDatabase("other.mdb", options);
  EXPECT_FALSE(IsLeague(*other));
  for (jet::TableInfo table : blank->Tables()) {
    if (table.isSystem || table.name == "winning info") continue;
    for (jet::ColumnSpec& column : table.columns) {
      if (column.name == "abbr") column.name = "short";
      if (column.name == "player id") column.type = jet::ColumnType::Text, column.length = 10;
      if (column.name == "money") column.type = jet::ColumnType::Double;
    }
    other->CreateTable({table.name, table.columns, {}});
  }
  EXPECT_TRUE(IsLeague(*other));
  const auto findings = CheckLeague(*other);
  ExpectHas(findings, {Misfit::NoTable, "[winning info]"});
  ExpectHas(findings, {Misfit::WrongColumn, "[team info], column [abbr] is missing"});
  ExpectHas(findings, {Misfit::WrongColumn, "[draft info], column [player id] does not hold whole numbers"});
  EXPECT_EQ(findings.size(), 4U);
}

TEST_F(LeagueCheckTest, ReportsNumbersBeyond32Bits) {
  const auto blank = Open(jet::test::ReadWholeFile(jet::test::FixturePath("league-blank.mdb")));
  jet::CreateOptions options;
  options.password = HLServiceUtils::kDatabasePassword;
  const auto league = HLServiceUtils::Engine().CreateDatabase("other.mdb", options);
  for (jet::TableInfo table : blank->Tables()) {
    if (table.isSystem) continue;
    for (jet::ColumnSpec& column : table.columns) {
      if (column.name == "money") column.type = jet::ColumnType::Double;
    }
    league->CreateTable({table.name, table.columns, {}});
  }
  AddRows(*league, "settings", {"1|1"});
  AddRows(*league, "season info", {"1|2024|2|2|0|0|0|0|0|0|0"});
  AddRows(*league, "prize type info", {"1|Weekly"});
  AddRows(*league, "prize info", {"1|High score|1"});
  AddRows(*league, "money distribution info", {"1|1|3000000000"});
  const RepairedLeague done = Repaired(*league);
  EXPECT_EQ(done.repairs, std::vector<std::string>());
  ASSERT_EQ(Kinds(done.left), std::vector{Misfit::NumberTooLarge});
  ExpectHas(done.left, {Misfit::NumberTooLarge, "season id 1, prize id 1: [money] is 3000000000"});
}

TEST_F(LeagueCheckTest, RepairsOneTransactionAfterABackup) {
  const std::vector<std::byte> start = SmallLeague(
      true,
      {{"playing info", {"1|1|1|2"}}, {"draft info", {"1|4|2|2|2"}}, {"money distribution info", {"2|2|"}}});
  Use({{kLeague, start}});
  const Tables before = test::RowsOf(*Open(kLeague));
  EXPECT_EQ(RepairLeagueFile(kLeague, kBackup).repairs.size(), 3U);
  const Tables after = test::RowsOf(*Open(kLeague));
  EXPECT_EQ(test::RowsOf(*Open(kBackup)), before);

  // With nothing to repair, or a damaged file, there is no backup and no change.
  EXPECT_EQ(RepairLeagueFile(kLeague, "unused.mdb").repairs, std::vector<std::string>());
  Use({{kLeague, jet::test::ReadWholeFile(jet::test::FixturePath("league-stale-moved.mdb"))}});
  const auto damaged = m_files->Survivors();
  EXPECT_EQ(RepairLeagueFile(kLeague, kBackup).damage.size(), 14U);
  EXPECT_EQ(m_files->Survivors(), damaged);

  std::size_t points = 0;
  for (const Crash crash : {Crash::Kill, Crash::PowerCut}) {
    for (std::size_t nth = 1;; nth += 3) {
      Use({{kLeague, start}});
      m_files->CrashAt(nth, crash, static_cast<std::uint32_t>(nth));
      try {
        RepairLeagueFile(kLeague, kBackup);
      } catch (const jet::Error&) {
      }
      if (!m_files->HasCrashed()) break;
      ++points;
      Use(m_files->Survivors());
      SCOPED_TRACE("crash at operation " + std::to_string(nth));
      const Tables rows = test::RowsOf(*Open(kLeague));
      EXPECT_TRUE(rows == before || rows == after);
      if (rows == after) {
        EXPECT_EQ(test::RowsOf(*Open(kBackup)), before);
      }
    }
  }
  EXPECT_GT(points, 10U);
}

}  // namespace
}  // namespace HLDataSrvc

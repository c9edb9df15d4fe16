#include "records/HLUtils.h"
#include "storage/LeagueFile.h"
#include "tests/service/LeagueRows.h"
#include "tests/service/ServiceTest.h"
#include "tests/support/Processes.h"
#include "tests/support/Witnesses.h"

namespace HLDataSrvc {
namespace {

using namespace HLIData;
using test::Lines;

constexpr std::int32_t kManagers = 4;
constexpr std::int32_t kRounds = 3;

/// A season from its first day to its last through the interface that clients have, in a file on disk.
class SeasonPlayedTest : public test::ServiceTest {
 protected:
  static void FillMasters(jet::Database& database) {
    test::AddRows(database, "position info", {"1|QB|Quarterback", "2|DEF|Defense"});
    test::AddRows(database, "team info", {"1|ASH|Ashbourne|Lanterns|2", "2|BRA|Brackwater|Otters|2"});
    test::AddRows(database, "prize type info", {"1|Weekly", "2|Final"});
    test::AddRows(database, "prize info", {"1|High score|1", "2|Champion|2"});
    test::AddRows(database, "manager info",
                  {"1|Mx|Bright", "2|Mx|Marr", "3|Mx|Dun", "4|Mx|Volk", "5|Mx|Absent"});
    for (std::int32_t id = 1; id <= kManagers * kRounds; ++id)
      test::AddRows(database, "player info",
                    {test::Line(id, std::string("P"), "Player" + std::to_string(id), 1, 1, false)});
  }
  IDataService& Service() { return *m_service; }
  void Play();

  /// Picks as they were made: the last name of the manager, and what was picked.
  Lines Picks() {
    Lines picks;
    for (const auto& pick : *Service().GetCurrentSeasonInfo()->Drafts())
      picks.push_back(pick->Manager()->LastName() + " " + pick->PlayerOrTeam()->PickName());
    return picks;
  }
};

void SeasonPlayedTest::Play() {
  Service().CurrentSeasonYear(2024);
  auto season = Service().GetCurrentSeasonInfo();
  season->NoOfManagers(kManagers);
  season->NoOfRounds(kRounds);
  season->MoneyContribution(50);
  season->NoOfRegularWeeks(14);
  season->TotalNoOfWeeks(17);
  for (const auto& prize : *Service().GetPrizeTmpls())
    ASSERT_TRUE(season->AddPrize(prize));
  season->Prizes()->Item(1)->Amount(5);
  season->Prizes()->Item(2)->Amount(130);
  ASSERT_TRUE(Service().SaveCurrentSeasonInfo());
  season = Service().GetCurrentSeasonInfo();
  ASSERT_EQ(season->Drafts()->Count(), kManagers * kRounds);

  const auto everybody = Service().Search(SearchType::Managers, "", false, false);
  for (const auto& manager : *everybody) {
    if (manager->PickName() == "Mx Absent") continue;
    ASSERT_TRUE(season->AddManager(std::dynamic_pointer_cast<IManagerTmplInfo>(manager)));
  }
  ASSERT_TRUE(Service().SaveManagersPlaying());
  for (const auto& manager : *season->Managers()) {
    manager->Rank(kManagers + 1 - manager->ID());  // the last to join picks first
    manager->IsFeePaid(manager->ID() != 2);
  }
  ASSERT_TRUE(Service().SaveRanking());
  ASSERT_TRUE(Service().SaveManagersPlaying());
  ASSERT_TRUE(Service().DisableRanking());
  ASSERT_EQ(season->Managers()->Item(1)->LastName(), "Volk");

  season->HasSeasonStarted(true);
  const auto players = Service().Search(SearchType::PlayersAndTeams, "Player", false, false);
  const auto teams = Service().GetTeams();
  for (std::int32_t number = 1; number <= kManagers * kRounds; ++number) {
    std::int32_t place = 0;
    std::int32_t round = 0;
    std::int32_t pickInRound = 0;
    HLUtils::GetDraftPosition(number, kManagers, place, round, pickInRound);
    const auto pickable = number == 5   ? std::dynamic_pointer_cast<IPickable>(teams->Item("K2"))
                          : number == 9 ? std::dynamic_pointer_cast<IPickable>(teams->Item("K1"))
                                        : players->Item(number);
    ASSERT_FALSE(season->IsPickableTaken(pickable, m_message));
    season->UpdateDraft(pickable, number, season->Managers()->Item(place));
    ASSERT_TRUE(season->IsPickableTaken(pickable, m_message));
    ASSERT_EQ(m_message, std::to_string(round) + "\t" + season->Managers()->Item(place)->LastName() + "\t" +
                             pickable->PickName());
    if (pickInRound == kManagers) {
      ASSERT_TRUE(Service().SaveDrafts());
    }
  }
  ASSERT_TRUE(Service().DisableDrafting());

  for (std::int32_t week = 1; week <= 15; ++week) {
    std::shared_ptr<IWinningInfo> winning;
    ASSERT_TRUE(Service().AddWinning(winning));
    winning->SeasonID(season->ID());
    winning->PrizeID(week <= 14 ? "1" : "2");
    winning->ManagerID(std::to_string(week % kManagers + 1));
    winning->Week(week <= 14 ? week : 0);
    winning->Action(WinningAction::Add);
    ASSERT_TRUE(Service().SaveWinnings());
  }
  season->Winnings()->Item(3)->Action(WinningAction::Delete);  // was a mistake
  ASSERT_TRUE(Service().SaveWinnings());
  ASSERT_TRUE(Service().SaveCurrentSeasonInfo());
}

TEST_F(SeasonPlayedTest, IsFoundAsItWasLeft) {
  LeagueFileOptions options;
  options.fill = FillMasters;
  CreateLeagueFile(m_folder.File("Halcyra - Live.mdb"), options);
  ASSERT_TRUE(Initialize()) << m_message;
  ASSERT_NO_FATAL_FAILURE(Play());
  const test::Tables left = test::RowsOf(*Service().GetCurrentSeasonInfo());
  const Lines picks = Picks();

  m_service = std::make_shared<DataService>(m_host);
  ASSERT_TRUE(Initialize()) << m_message;
  EXPECT_EQ(Service().CurrentSeasonID(), 1);
  EXPECT_EQ(test::RowsOf(*Service().GetCurrentSeasonInfo()), left);
  EXPECT_EQ(Picks(), picks);
  EXPECT_EQ(picks.at(3).substr(0, picks.at(3).find(' ')), "Bright") << "last of the first round";
  EXPECT_EQ(picks.at(4), "Bright Brackwater") << "and first of the second, a team";
  EXPECT_EQ(picks.at(8).substr(0, picks.at(8).find(' ')), "Volk");

  EXPECT_EQ(left.at("season info"), (Lines{"1|2024|4|3|50|14|17|1|0|1|1"}));
  EXPECT_EQ(left.at("playing info"), (Lines{"1|1|1|4", "1|2|0|3", "1|3|1|2", "1|4|1|1"}));
  EXPECT_EQ(left.at("money distribution info"), (Lines{"1|1|5", "1|2|130"}));
  EXPECT_EQ(left.at("draft info").size(), 12u);
  EXPECT_EQ(left.at("winning info").size(), 14u);

  m_service->CloseDatabase();
  const std::string path = m_folder.File("Halcyra - Live.mdb");
  EXPECT_EQ(jet::test::IndependentCheck(path), "");
  if (!jet::test::RunsPrograms()) GTEST_SKIP() << "independent readers run on the build machine only";
  ASSERT_TRUE(jet::test::HasMdbExport());
  for (const auto& [table, rows] : left)
    EXPECT_EQ(test::ExportedRows(path, table), rows) << table;
  EXPECT_TRUE(m_host->messages.empty());
}

}  // namespace
}  // namespace HLDataSrvc

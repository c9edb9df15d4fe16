#include "jet/Error.h"
#include "tests/service/LeagueTest.h"

namespace HLDataSrvc {
namespace {

using namespace HLIData;
using test::Box;
using test::Lines;
using test::RowsOf;

class SeasonSavingTest : public test::LeagueTest {
 protected:
  SeasonSavingTest() { Begin(); }

  /// The small league with these rows besides, its current season loaded.
  void Begin(const test::Tables& added = {}) {
    Open(test::SmallLeague(/*isLoose=*/false, added));
    m_season = Season();
    m_before = Stored();
    m_engine->calls.clear();
  }
  /// What another service finds in the current season.
  test::Tables Reread() {
    const std::int32_t id = m_service->CurrentSeasonID();
    Restart();
    m_service->CurrentSeasonID(id);
    return RowsOf(*m_service->GetCurrentSeasonInfo());
  }

  std::shared_ptr<SeasonInfo> m_season;
  test::Tables m_before;
};

TEST_F(SeasonSavingTest, SeasonAndMoneyAreWrittenWholeAndReadAgain) {
  m_season->Year(2031);
  m_season->NoOfManagers(3);
  m_season->NoOfRounds(4);
  m_season->MoneyContribution(75);
  m_season->NoOfRegularWeeks(15);
  m_season->TotalNoOfWeeks(18);
  m_season->IsRankingLocked(false);
  m_season->IsDraftLocked(true);
  m_season->IsSeasonLocked(true);
  m_season->HasSeasonStarted(false);
  m_season->Prizes()->Item("K2")->Amount(-5);
  m_season->Prizes()->Remove("K1");
  ASSERT_TRUE(m_season->AddPrize(m_service->GetPrizeTmpls()->Item("K1")));
  test::Tables written = RowsOf(*m_season);
  ASSERT_TRUE(m_service->SaveCurrentSeasonInfo());
  const std::string money = " | season id | prize id | money | Update";
  EXPECT_EQ(
      Steps(),
      (Lines{"select * from [season info] where id = 1 | Edit | season year | no of players | no of "
             "rounds | money contribution | no of regular weeks | total no of weeks | is ranking locked "
             "| is draft locked | is season locked | has season started | Update | Close",
             "select * from [money distribution info] where [season id] = 1 | Delete | Delete | AddNew" +
                 money + " | AddNew" + money + " | Close",
             "select * from [season info] s where s.id = 1 | Close",
             "select * from [money distribution info] m where m.[season id] = 1 | Close",
             "select * from [playing info] p where p.[season id] = 1 order by ranking | Close",
             "select * from [winning info] where [season id] = 1 | Close",
             "select * from [draft info] where [season id] = 1 order by [draft no] | Close"}));
  const auto reloaded = Season();
  EXPECT_NE(reloaded, m_season);
  EXPECT_EQ(RowsOf(*reloaded), written);
  EXPECT_EQ(reloaded->Drafts()->Count(), 12);
  EXPECT_EQ(FindCached(m_service->Caches().seasonsByYear, 2024), nullptr);
  EXPECT_EQ(FindCached(m_service->Caches().seasonsByYear, 2031), reloaded);
  EXPECT_EQ(Reread(), written);
  ExpectStored(m_before, 1,
               {{"season info", written["season info"]},
                {"money distribution info", written["money distribution info"]}});
}

TEST_F(SeasonSavingTest, SeasonWithoutPrizesEndsWithoutMoney) {
  for (const bool hasCollection : {true, false}) {
    Begin();
    m_season->Prizes(hasCollection ? std::make_shared<KeyedCollection<IPrizeInfo>>() : nullptr);
    ASSERT_TRUE(m_service->SaveCurrentSeasonInfo());
    EXPECT_EQ(Season()->Prizes()->Count(), 0);
    ExpectStored(m_before, 1, {{"money distribution info", {}}});
  }
}

TEST_F(SeasonSavingTest, WithoutARowOnlyTheMoneyIsReplaced) {
  Begin({{"money distribution info", {"50|1|7", "99|1|7"}}});
  const auto unsaved = std::make_shared<SeasonInfo>();
  unsaved->ID(50);
  unsaved->Prizes(m_season->Prizes());
  m_service->Caches().Keep(unsaved);
  m_service->CurrentSeasonID(50);
  EXPECT_TRUE(m_service->SaveCurrentSeasonInfo());
  ExpectStored(m_before, 50, {{"money distribution info", {"50|1|10", "50|2|90"}}});
  EXPECT_EQ(m_service->GetCurrentSeasonInfo(), nullptr) << "there is nothing to read it from";

  m_before = Stored();
  m_service->CurrentSeasonID(99);
  EXPECT_TRUE(m_service->SaveCurrentSeasonInfo());
  ExpectStored(m_before, 99, {{"money distribution info", {}}});
  EXPECT_TRUE(Boxes().empty());
}

TEST_F(SeasonSavingTest, IdentifierZeroTakesTheSeasonOfThisYearAndWritesRowsOfZero) {
  Begin({{"money distribution info", {"0|1|7"}}});
  m_season->MoneyContribution(1000);
  m_service->CurrentSeasonID(0);
  EXPECT_TRUE(m_service->SaveCurrentSeasonInfo());
  EXPECT_EQ(m_service->CurrentSeasonID(), 1);
  EXPECT_NE(Season(), m_season);
  EXPECT_EQ(Season()->MoneyContribution(), 50) << "nothing of season 1 was written";
  ExpectStored(m_before, 0, {{"money distribution info", {"0|1|10", "0|2|90"}}});
}

TEST_F(SeasonSavingTest, ManagersPlayingAreReplacedAndReadInRankingOrder) {
  const auto drafts = m_season->Drafts();
  m_service->CurrentSeasonID(2);
  const auto newcomer = m_service->GetCurrentSeasonInfo()->Managers()->Item("K3")->ManagerTmpl();
  m_service->CurrentSeasonID(1);
  m_season->RemoveManager(m_season->Managers()->Item("K1"));
  m_season->Managers()->Item("K2")->Rank(4);
  m_season->Managers()->Item("K2")->IsFeePaid(true);
  m_season->AddManager(newcomer);
  Steps();
  ASSERT_TRUE(m_service->SaveManagersPlaying());
  const std::string row = " | AddNew | season id | manager id | fee paid | ranking | Update";
  EXPECT_EQ(
      Steps(),
      (Lines{"select * from [playing info] where [season id] = 1 | Delete | Delete" + row + row + " | Close",
             "select * from [playing info] p where p.[season id] = 1 order by ranking | Close"}));
  ExpectStored(m_before, 1, {{"playing info", {"1|2|1|4", "1|3|0|"}}});
  EXPECT_EQ(Season(), m_season);
  EXPECT_EQ(Keys(m_season->Managers()), "K3 K2") << "a rank of none stands before all others";
  EXPECT_EQ(m_season->Managers()->Item(1)->Rank(), 0);
  EXPECT_EQ(m_season->Drafts(), drafts);

  m_season->Managers()->Item("K2")->Rank(-3);
  m_season->Managers()->Item("K3")->Rank(1);
  ASSERT_TRUE(m_service->SaveManagersPlaying());
  ExpectStored(m_before, 1, {{"playing info", {"1|2|1|", "1|3|0|1"}}});
}

TEST_F(SeasonSavingTest, RankingTouchesRanksAloneAndReadsTheDraftAgain) {
  const auto drafts = m_season->Drafts();
  m_season->Managers()->Item("K1")->Rank(1);
  m_season->Managers()->Item("K2")->Rank(0);
  m_season->Managers()->Item("K2")->IsFeePaid(true);
  ASSERT_TRUE(m_service->SaveRanking());
  const std::string write = " | Edit | ranking | Update";
  EXPECT_EQ(Steps(),
            (Lines{"select * from [playing info] where [season id] = 1 | FindFirst [manager id] = 2" + write +
                       " | FindFirst [manager id] = 1" + write + " | Close",
                   "select * from [draft info] where [season id] = 1 order by [draft no] | Close"}));
  ExpectStored(m_before, 1, {{"playing info", {"1|1|1|1", "1|2|0|"}}});
  EXPECT_NE(m_season->Drafts(), drafts);
  EXPECT_EQ(RowsOf(*m_season)["draft info"], m_before["draft info"]);
}

TEST_F(SeasonSavingTest, ManagerWithoutARowFailsTheRankingAtTheCaller) {
  m_service->CurrentSeasonID(2);
  const auto newcomer = m_service->GetCurrentSeasonInfo()->Managers()->Item("K3")->ManagerTmpl();
  m_service->CurrentSeasonID(1);
  m_season->AddManager(newcomer);
  m_season->Managers()->Item("K2")->Rank(7);
  const auto drafts = m_season->Drafts();
  try {
    m_service->SaveRanking();
    ADD_FAILURE();
  } catch (const jet::Error& error) {
    EXPECT_EQ(error.Number(), jet::ErrorNumber::NoCurrentRecord);
  }
  EXPECT_TRUE(Boxes().empty());
  EXPECT_EQ(m_season->Drafts(), drafts);
  ExpectStored(m_before, 1, {{"playing info", {"1|1|1|2", "1|2|0|7"}}});
}

TEST_F(SeasonSavingTest, WithoutManagersRankingWritesNothingAndPlayingEmptiesTheSeason) {
  m_season->Managers(nullptr);
  EXPECT_TRUE(m_service->SaveRanking());
  EXPECT_TRUE(m_engine->calls.empty());
  EXPECT_TRUE(m_service->SaveManagersPlaying());
  EXPECT_EQ(m_season->Managers()->Count(), 0);
  ExpectStored(m_before, 1, {{"playing info", {}}});

  m_service->CurrentSeasonID(99);
  EXPECT_TRUE(m_service->SaveRanking());
  EXPECT_THROW(m_service->SaveManagersPlaying(), Error) << "there is no season to give the managers to";
  EXPECT_TRUE(Boxes().empty());
}

TEST_F(SeasonSavingTest, LocksAreWrittenAgainAndAgainAndStay) {
  m_season->IsRankingLocked(false);
  const std::string steps = " from [season info] where id = 1 | Edit | ";
  for (int time = 0; time < 2; ++time) {
    EXPECT_TRUE(m_service->DisableRanking());
    EXPECT_EQ(Steps(), (Lines{"select [is ranking locked]" + steps + "is ranking locked | Update | Close"}));
    EXPECT_TRUE(m_service->DisableDrafting());
    EXPECT_EQ(Steps(), (Lines{"select [is draft locked]" + steps + "is draft locked | Update | Close"}));
  }
  EXPECT_TRUE(m_season->IsRankingLocked());
  EXPECT_TRUE(m_season->IsDraftLocked());
  ExpectStored(m_before, 1, {{"season info", {"1|2024|2|2|50|14|17|1|0|1|1"}}});

  m_season->IsDraftLocked(false);  // a whole save of the season alone clears a lock
  ASSERT_TRUE(m_service->SaveCurrentSeasonInfo());
  EXPECT_EQ(Stored(), m_before);
  m_service->CurrentSeasonID(99);
  EXPECT_FALSE(m_service->DisableRanking());
  EXPECT_EQ(Boxes(), (Lines{Box("Error in disabling ranking.", "The season is not loaded.")}));
}

TEST_F(SeasonSavingTest, NewSeasonTakesTheNextIdentifierAndTheDefaults) {
  const auto season = m_service->AddSeason(2030);
  ASSERT_NE(season, nullptr);
  const Lines steps = Steps();
  EXPECT_EQ((Lines{steps.at(0), steps.at(1), steps.at(2)}),
            (Lines{"select max(id) as highestid from [season info] | Close",
                   "select * from [season info] | AddNew | id | season year | Update | Close",
                   "select * from [season info] s where s.[season year] = 2030 | Close"}));
  EXPECT_EQ(season->ID(), 3);
  EXPECT_EQ(m_service->CurrentSeasonID(), 1) << "it does not become current";
  ExpectStored(m_before, 3, {{"season info", {"3|2030|0|0|0|0|0|0|0|0|0"}}});

  Open("league-blank.mdb");
  EXPECT_EQ(m_service->AddSeason(2030)->ID(), 1);
  m_service->CloseDatabase();
  EXPECT_EQ(m_service->AddSeason(2031), nullptr) << "neither shown nor raised";
  EXPECT_TRUE(Boxes().empty());
}

}  // namespace
}  // namespace HLDataSrvc

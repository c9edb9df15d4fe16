#include <algorithm>

#include "HLIData/IPlayerInfo.h"
#include "records/HLUtils.h"
#include "tests/service/LeagueTest.h"

namespace HLDataSrvc {
namespace {

using namespace HLIData;
using test::Box;
using test::Line;
using test::Lines;
using test::OrNull;

constexpr char kLoading[] = "Error in loading season info.";

class SeasonLoadingTest : public test::LeagueTest {
 protected:
  /// Rows of the fixture, of picks that have both a player and a team only the player: it is what counts.
  static test::Tables Expected() {
    test::Tables expected;
    for (const char* table : {"season info", "playing info", "money distribution info", "winning info"})
      expected[table] = test::ExpectedRows(table);
    for (std::string line : test::ExpectedRows("draft info")) {
      const std::size_t team = line.rfind('|') + 1;
      if (line[team - 2] != '|') line.erase(team);
      expected["draft info"].push_back(line);
    }
    return expected;
  }
  bool IsCached(std::int32_t id) const { return FindCached(m_service->Caches().seasonsByID, id) != nullptr; }
};

TEST_F(SeasonLoadingTest, EverySeasonOfTheFixtureIsWhatTheIndependentReaderFound) {
  Open("league.mdb");
  const auto seasons = m_service->GetAllSeasons();
  ASSERT_NE(seasons, nullptr);
  EXPECT_EQ(seasons->Count(), 12);
  const test::Tables expected = Expected();
  for (const auto& season : *seasons) {
    SCOPED_TRACE("season " + std::to_string(season->ID()));
    test::Tables rows = test::RowsOf(*season);
    for (const auto& [table, lines] : expected)
      EXPECT_EQ(rows[table], test::RowsOfSeason(expected, table, season->ID())) << table;
    EXPECT_TRUE(std::is_sorted(season->Managers()->begin(), season->Managers()->end(),
                               [](const auto& a, const auto& b) { return a->Rank() < b->Rank(); }));
    EXPECT_EQ(season->CurrentPick(), 1);
    ASSERT_EQ(season->Drafts()->Count(), season->NoOfManagers() * season->NoOfRounds());
    for (std::int32_t number = 1; number <= season->Drafts()->Count(); ++number) {
      const DraftInfo& pick = Pick(*season, number);
      const auto picked = pick.PlayerOrTeam();
      EXPECT_FALSE(pick.IsChanged());
      EXPECT_EQ(pick.IsStored(), pick.Manager() != nullptr);
      EXPECT_EQ(season->Drafts()->KeyAt(number),
                HLUtils::MakePickKey(pick.PickType(), picked ? picked->PickID() : number));
    }
    for (const auto& winning : *season->Winnings())
      EXPECT_EQ(winning->Key(), "K" + std::to_string(winning->ID()));
  }

  Lines managers;
  for (const auto& manager : *m_service->Caches().managers)
    managers.push_back(Line(manager->ID(), manager->FirstName(), manager->LastName()));
  EXPECT_EQ(test::Sorted(managers), test::ExpectedRows("manager info"));
  const Lines players = test::ExpectedRows("player info");
  EXPECT_GT(m_service->Caches().players->Count(), 700);
  for (const auto& player : *m_service->Caches().players) {
    const auto position = player->Position();
    const auto team = player->Team();
    const std::string line =
        Line(player->ID(), player->FirstName(), player->LastName(), OrNull(position ? position->ID() : 0),
             OrNull(team ? team->ID() : 0), player->IsRetired());
    EXPECT_TRUE(std::binary_search(players.begin(), players.end(), line)) << line;
  }

  m_engine->calls.clear();
  EXPECT_EQ(m_service->GetAllSeasons(), seasons);
  EXPECT_EQ(m_service->GetCurrentSeasonInfo(), seasons->Item("K11"));
  EXPECT_TRUE(m_engine->calls.empty());
  EXPECT_TRUE(Boxes().empty());
}

TEST_F(SeasonLoadingTest, ReadsEachPartOnceAndInOrder) {
  Open(test::SmallLeague());
  const auto season = m_service->GetCurrentSeasonInfo();
  EXPECT_EQ(
      Statements(),
      (Lines{"select * from [season info] s where s.id = 1",
             "select * from [money distribution info] m where m.[season id] = 1",
             "select * from [prize type info]", "select * from [prize info]",
             "select * from [playing info] p where p.[season id] = 1 order by ranking",
             "select * from [manager info] where [id] = 2", "select * from [manager info] where [id] = 1",
             "select * from [winning info] where [season id] = 1",
             "select * from [draft info] where [season id] = 1 order by [draft no]",
             "select * from [player info] where [id] = 1", "select * from [position info] order by [id]",
             "select * from [team info] order by [id]"}));
  EXPECT_EQ(m_service->GetCurrentSeasonInfo(), season);
  EXPECT_TRUE(m_engine->calls.empty());

  EXPECT_TRUE(m_service->DiscardCurrentSeasonInfo());
  EXPECT_NE(m_service->GetCurrentSeasonInfo(), season);
  EXPECT_EQ(Statements(), (Lines{"select * from [season info] s where s.id = 1",
                                 "select * from [money distribution info] m where m.[season id] = 1",
                                 "select * from [playing info] p where p.[season id] = 1 order by ranking",
                                 "select * from [winning info] where [season id] = 1",
                                 "select * from [draft info] where [season id] = 1 order by [draft no]"}))
      << "master records stay";

  m_service->GetAllSeasons();
  const Lines statements = Statements();
  EXPECT_EQ(statements.at(0), "select id from [season info]");
  EXPECT_EQ(statements.at(1), "select * from [season info] s where s.id = 2") << "season 1 is known";
}

TEST_F(SeasonLoadingTest, SeasonThatThereIsNotIsNoneAndNoError) {
  Open(test::SmallLeague());
  m_service->CurrentSeasonID(99);
  EXPECT_EQ(m_service->GetCurrentSeasonInfo(), nullptr);
  EXPECT_EQ(Statements(), (Lines{"select * from [season info] s where s.id = 99"}));
  m_service->CurrentSeasonID(-1);
  EXPECT_EQ(m_service->GetCurrentSeasonInfo(), nullptr);
  EXPECT_TRUE(m_engine->calls.empty());
  EXPECT_TRUE(m_service->DiscardCurrentSeasonInfo());
  EXPECT_TRUE(Boxes().empty());
}

TEST_F(SeasonLoadingTest, WithoutACurrentSeasonThatOfThisYearIsMade) {
  Open("league-blank.mdb");
  ASSERT_EQ(m_service->CurrentSeasonID(), 0);
  EXPECT_EQ(m_service->GetAllSeasons(), nullptr) << "there is none to make the list for";
  m_engine->calls.clear();
  const auto season = m_service->GetCurrentSeasonInfo();
  ASSERT_NE(season, nullptr);
  EXPECT_EQ(Steps().at(0), "select * from [season info] s where s.[season year] = 2024");
  EXPECT_EQ(season->Year(), 2024);
  EXPECT_EQ(season->Drafts()->Count(), 0);
  EXPECT_EQ(m_service->CurrentSeasonID(), 1);
  EXPECT_EQ(m_service->CurrentSeasonYear(), 2024);
  EXPECT_EQ(m_service->GetCurrentSeasonInfo(), season);
  EXPECT_EQ(Stored().at("season info"), (Lines{"1|2024|0|0|0|0|0|0|0|0|0"}));
  EXPECT_EQ(Stored().at("settings"), (Lines{"1|1"}));
}

TEST_F(SeasonLoadingTest, TheYearFindsLoadsOrMakesASeasonAndKeepsItInTheSettings) {
  Open(test::SmallLeague());
  m_service->CurrentSeasonYear(2023);
  EXPECT_EQ(Statements().front(), "select * from [season info] s where s.[season year] = 2023");
  EXPECT_EQ(m_service->CurrentSeasonID(), 2);
  EXPECT_EQ(Stored().at("settings"), (Lines{"1|2"}));
  m_service->CurrentSeasonYear(2023);
  EXPECT_EQ(Steps(), (Lines{"select * from [settings] where [ID] = 1 | Edit | current season id | Update | "
                            "Close"}))
      << "the settings count as changed from then on";

  m_service->CurrentSeasonYear(2030);
  EXPECT_EQ(m_service->CurrentSeasonID(), 3);
  EXPECT_EQ(Stored().at("settings"), (Lines{"1|3"}));
}

TEST_F(SeasonLoadingTest, SeasonsOfOneYearAreBothReachedByIdentifier) {
  OpenLoose({{"season info", {"3|2024"}}});
  EXPECT_EQ(Keys(m_service->GetAllSeasons()), "K1 K2 K3");
  m_service->CurrentSeasonYear(2024);
  EXPECT_EQ(m_service->CurrentSeasonID(), 1) << "the first stays the one of the year";
  m_service->CurrentSeasonID(3);
  const auto third = m_service->GetCurrentSeasonInfo();
  EXPECT_EQ(third->ID(), 3);
  EXPECT_TRUE(m_service->DiscardCurrentSeasonInfo());
  EXPECT_NE(m_service->GetCurrentSeasonInfo(), third);
  EXPECT_EQ(FindCached(m_service->Caches().seasonsByYear, 2024)->ID(), 1);

  m_service->CurrentSeasonID(1);
  m_service->GetCurrentSeasonInfo()->Year(2040);  // forgotten anyway, under whatever year it stands
  EXPECT_TRUE(m_service->DiscardCurrentSeasonInfo());
  EXPECT_FALSE(IsCached(1));
  EXPECT_EQ(FindCached(m_service->Caches().seasonsByYear, 2024), nullptr);
}

TEST_F(SeasonLoadingTest, AllSeasonsAreListedOnceAlsoAfterTheCachesWereEmptied) {
  Open(test::SmallLeague());
  EXPECT_EQ(Keys(m_service->GetAllSeasons()), "K1 K2");
  ASSERT_TRUE(m_service->OpenDatabase(/*clearCache=*/true, m_message));
  m_engine->calls.clear();
  EXPECT_EQ(m_service->GetAllSeasons(), nullptr);
  EXPECT_TRUE(m_engine->calls.empty());
  ASSERT_NE(m_service->GetCurrentSeasonInfo(), nullptr);
  EXPECT_EQ(Keys(m_service->GetAllSeasons()), "K1");
}

TEST_F(SeasonLoadingTest, ManagerWithoutAMasterRecordTakesPartWithoutAName) {
  OpenLoose({{"playing info", {"1|9|1|3", "1||0|4"}}});
  EXPECT_EQ(Keys(Season()->Managers()), "K2 K1 K9 K0");
  EXPECT_EQ(Season()->Managers()->Item("K9")->ManagerTmpl(), nullptr);
  EXPECT_THROW(Season()->Managers()->Item("K9")->LastName(), Error);
  Statements();
  m_service->DiscardCurrentSeasonInfo();
  Season();
  EXPECT_EQ(Statements().at(3), "select * from [manager info] where [id] = 9") << "asked for each time";
}

// Prizes and managers that cannot be read: saving the season would write back less than is stored.
TEST_F(SeasonLoadingTest, SeasonsThatCannotBeReadAreNotKeptAndHideNoOther) {
  struct Case {
    test::Tables added;
    std::string description;
  };
  const std::string money = " in [money distribution info] of season 1 ";
  const Case cases[] = {
      {{{"money distribution info", {"1|99|5"}}}, "Prize 99" + money + "is not in [prize info]."},
      {{{"money distribution info", {"1||5"}}}, "Prize Null" + money + "is not in [prize info]."},
      {{{"prize info", {"3|Third|1"}}, {"money distribution info", {"1|3|"}}},
       "[money distribution info], row with season id 1, prize id 3, column 'money': \"\" is not a number."},
      {{{"money distribution info", {"1|2|5"}}}, "Prize 2" + money + "stands there twice."},
      {{{"playing info", {"1|2|0|9"}}}, "Manager 2 stands twice in [playing info] of season 1."},
  };
  for (const Case& bad : cases) {
    SCOPED_TRACE(bad.description);
    OpenLoose(bad.added);
    const test::Tables before = Stored();
    EXPECT_EQ(m_service->GetCurrentSeasonInfo(), nullptr);
    EXPECT_EQ(Boxes(), (Lines{Box(kLoading, bad.description)}));
    EXPECT_FALSE(IsCached(1));
    EXPECT_EQ(FindCached(m_service->Caches().seasonsByYear, 2024), nullptr);
    for (int time = 0; time < 2; ++time) {
      EXPECT_EQ(Keys(m_service->GetAllSeasons()), "K2");
      EXPECT_EQ(Boxes(), (Lines{Box(kLoading, "Season 1: " + bad.description)})) << "each time";
    }
    EXPECT_FALSE(m_service->SaveCurrentSeasonInfo());
    EXPECT_EQ(Boxes(), (Lines{Box("Error in saving season info.", bad.description)}));
    EXPECT_EQ(Stored(), before);
  }
  // Several at once are named in one box.
  OpenLoose({{"money distribution info", {"1|99|5"}}, {"playing info", {"2|3|0|9"}}});
  EXPECT_EQ(m_service->GetAllSeasons()->Count(), 0);
  EXPECT_EQ(Boxes(),
            (Lines{Box(kLoading, "Season 1: Prize 99" + money +
                                     "is not in [prize info].\r\nSeason 2: Manager 3 stands twice in "
                                     "[playing info] of season 2.")}));
}

TEST_F(SeasonLoadingTest, AListThatShowedItsFailureIsTheOnlyBox) {
  OpenLoose({{"prize info", {"3|Third|7"}}, {"money distribution info", {"1|3|5"}}});
  const std::string prizes = Box("Error in loading prizes.",
                                 "Prize 3 in [prize info] is of type 7, which is not in [prize type info].");
  EXPECT_EQ(m_service->GetCurrentSeasonInfo(), nullptr);
  EXPECT_EQ(Boxes(), Lines{prizes});
  EXPECT_EQ(m_service->GetCurrentSeasonInfo(), nullptr);
  EXPECT_EQ(
      Boxes(),
      (Lines{Box(kLoading, "Prize 3 in [money distribution info] of season 1 is not in [prize info].")}))
      << "the list is served as it is from then on";
  Restart();
  EXPECT_FALSE(m_service->SaveRanking());
  EXPECT_EQ(Boxes(), Lines{prizes});
  Restart();
  EXPECT_EQ(m_service->Search(SearchType::Prizes, "", false, false), nullptr);
  EXPECT_EQ(Boxes(), Lines{prizes});
  // A team that could not be loaded ends the draft, and its box is enough.
  OpenLoose({{"team info", {"3|CAL|Calder||9"}}, {"draft info", {"1|4|1||3"}}});
  EXPECT_NE(m_service->GetCurrentSeasonInfo(), nullptr);
  EXPECT_EQ(Boxes(),
            (Lines{Box("Error in loading teams.",
                       "Team 3 in [team info] has the position 9, which is not in [position info].")}));
}

TEST_F(SeasonLoadingTest, ADraftRowThatDoesNotFitEndsTheDraftAndNotTheSeason) {
  struct Case {
    test::Tables added;
    std::string description;
    std::string keys = "P1 T1 N3 N4";
  };
  const std::string pick = "Pick 4 of season 1 in [draft info] ";
  const std::string outside = " of season 1 in [draft info] lies outside its draft of 4 picks.";
  const Case cases[] = {
      {{{"draft info", {"1|0|1|2|"}}}, "Pick 0" + outside, "N1 N2 N3 N4"},
      {{{"draft info", {"1|5|1|2|"}}}, "Pick 5" + outside},
      {{{"draft info", {"1|4|3|2|"}}}, pick + "is of manager 3, who does not take part."},
      {{{"draft info", {"1|4||2|"}}}, pick + "is of manager 0, who does not take part."},
      {{{"draft info", {"1|4|1|1|"}}}, pick + "is the same as pick 1."},
      {{{"draft info", {"1|4|1||9"}}}, pick + "cannot be loaded. Team 9 is not in [team info]."},
      {{{"player info", {"9|Al|Odd|1|77|0"}}, {"draft info", {"1|4|1|9|"}}},
       pick + "cannot be loaded. Player 9 in [player info] has the team 77, which is not in [team info]."},
  };
  for (const Case& bad : cases) {
    SCOPED_TRACE(bad.description);
    OpenLoose(bad.added);
    const test::Tables before = Stored();
    const Lines box{Box("Error in loading drafts.", bad.description)};
    const auto season = Season();
    ASSERT_NE(season, nullptr);
    EXPECT_EQ(Boxes(), box);
    EXPECT_EQ(Keys(season->Drafts()), bad.keys);
    EXPECT_EQ(Season(), season) << "it is kept";
    EXPECT_EQ(Boxes(), Lines{});
    EXPECT_TRUE(m_service->SaveDrafts());
    EXPECT_TRUE(m_service->SaveRanking());
    EXPECT_EQ(Boxes(), box);
    EXPECT_TRUE(m_service->SaveCurrentSeasonInfo());
    EXPECT_EQ(Boxes(), box);
    EXPECT_EQ(m_service->GetAllSeasons()->Count(), 2);
    EXPECT_EQ(Boxes(), Lines{});
    EXPECT_EQ(Stored().at("draft info"), before.at("draft info")) << "nothing of it was lost";
    Restart();
    std::shared_ptr<IWinningInfo> winning;
    EXPECT_TRUE(m_service->AddWinning(winning));
    EXPECT_EQ(Boxes(), box) << "of whatever operation loads it";
    // Picking again mends the row, if its number is one of the draft's.
    if (bad.description.starts_with(pick)) {
      Season()->UpdateDraft(m_service->Search(SearchType::PlayersAndTeams, "Moe", false, false)->Item(1), 4,
                            Season()->Managers()->Item(1));
      EXPECT_TRUE(m_service->SaveDrafts());
      m_service->DiscardCurrentSeasonInfo();
      EXPECT_EQ(Keys(Season()->Drafts()), "P1 T1 N3 P2");
    } else {
      EXPECT_TRUE(m_service->DeleteDrafts());
      EXPECT_EQ(Keys(Season()->Drafts()), "N1 N2 N3 N4");
    }
    EXPECT_EQ(Boxes(), Lines{});
  }
}

TEST_F(SeasonLoadingTest, TooManyPicksLoadAsAnEmptyDraft) {
  for (const auto& [managers, rounds] : {std::pair{40000, 50000}, {65536, 65536}, {101, 100}}) {
    OpenLoose({{"season info", {test::Line(3, 2022, managers, rounds)}}});
    m_service->CurrentSeasonID(3);
    const auto season = Season();
    ASSERT_NE(season, nullptr);
    EXPECT_EQ(season->Drafts()->Count(), 0);
    EXPECT_EQ(Boxes(),
              (Lines{Box("Error in loading drafts.",
                         "Season 3 has " + std::to_string(managers) + " x " + std::to_string(rounds) +
                             " picks, more than the 10000 that a draft may have.")}));
    season->NoOfManagers(100);
    season->NoOfRounds(100);
    EXPECT_TRUE(m_service->SaveCurrentSeasonInfo());
    EXPECT_EQ(Boxes(), Lines{});
    EXPECT_EQ(Season()->Drafts()->Count(), 10000);
  }
}

TEST_F(SeasonLoadingTest, FixturesWithDamagedDraftsLoadAndCanBeMended) {
  const std::pair<const char*, std::string> fixtures[] = {
      {"league-damaged-draftno.mdb",
       "Pick 10000 of season 11 in [draft info] lies outside its draft of 192 picks."},
      {"league-damaged-draftmanager.mdb",
       "Pick 17 of season 11 in [draft info] is of manager 19, who does not take part."}};
  for (const auto& [fixture, description] : fixtures) {
    SCOPED_TRACE(fixture);
    Open(fixture);
    EXPECT_EQ(m_service->GetAllSeasons()->Items().size(), Stored().at("season info").size());
    EXPECT_EQ(Boxes(), (Lines{Box("Error in loading drafts.", description)}));
    EXPECT_TRUE(m_service->DeleteDrafts());
    EXPECT_EQ(Season()->Drafts()->Count(), 192);
    EXPECT_TRUE(Boxes().empty());
  }
}

}  // namespace
}  // namespace HLDataSrvc

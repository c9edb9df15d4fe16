#include "HLIData/IPlayerInfo.h"
#include "records/PlayerInfo.h"
#include "tests/service/LeagueTest.h"

namespace HLDataSrvc {
namespace {

using test::Box;
using test::Line;
using test::Lines;

class ReferenceTest : public test::LeagueTest {};

TEST_F(ReferenceTest, PositionsAndTeamsAreReadOnceInTheOrderOfTheirIdentifiers) {
  Open("league.mdb");
  const auto teams = m_service->GetTeams();
  const auto positions = m_service->GetPlayerPositions();
  EXPECT_EQ(Statements(), (Lines{"select * from [position info] order by [id]",
                                 "select * from [team info] order by [id]"}));
  EXPECT_EQ(m_service->GetTeams(), teams);
  EXPECT_EQ(m_service->GetPlayerPositions(), positions);
  EXPECT_TRUE(m_engine->calls.empty());

  EXPECT_EQ(Keys(positions), "K1 K2 K3 K4 K6 K7 K9 K12");
  Lines lines;
  for (const auto& position : *positions)
    lines.push_back(Line(position->ID(), position->Abbr(), position->Desc()));
  EXPECT_EQ(test::Sorted(lines), test::ExpectedRows("position info"));
  lines.clear();
  std::int32_t previous = 0;
  for (const auto& team : *teams) {
    EXPECT_GT(team->ID(), std::exchange(previous, team->ID()));
    EXPECT_EQ(team->Position(), positions->Item("K" + std::to_string(team->Position()->ID())));
    lines.push_back(Line(team->ID(), team->Abbr(), team->Name(), team->Nickname(), team->Position()->ID()));
  }
  EXPECT_EQ(test::Sorted(lines), test::ExpectedRows("team info"));
}

TEST_F(ReferenceTest, TeamsReadBeforeAFaultyOneAreServedFromThenOn) {
  const Lines box{Box("Error in loading teams.",
                      "Team 5 in [team info] has the position 9, which is not in [position info].")};
  OpenLoose({{"team info", {"3|NUL|Null||", "4|NEG|Negative||-2", "5|BAD|Bad||9", "6|AFT|After||2"}}});
  EXPECT_EQ(m_service->GetTeams(), nullptr);
  EXPECT_EQ(Boxes(), box);
  m_engine->calls.clear();
  const auto teams = m_service->GetTeams();
  EXPECT_EQ(Keys(teams), "K1 K2 K3 K4");
  EXPECT_EQ(teams->Item("K3")->Position(), nullptr);
  EXPECT_EQ(teams->Item("K4")->Position(), nullptr);
  EXPECT_TRUE(m_engine->calls.empty());
  EXPECT_TRUE(Boxes().empty());

  Restart();
  ASSERT_NE(Season(), nullptr) << "its one team is among those read";
  EXPECT_EQ(Boxes(), box);
  EXPECT_EQ(Pick(*Season(), 2).Team(), m_service->GetTeams()->Item("K1"));
}

TEST_F(ReferenceTest, PlayersAreReadOneByOneAndOnceUnlessTheyHaveNoRow) {
  OpenLoose({{"player info", {"5|No|Body||"}},
             {"season info", {"3|2022|2|3"}},
             {"playing info", {"3|1|0|1", "3|2|0|2"}},
             {"draft info", {"3|1|1|5|", "3|2|2|1|", "3|3|2|0|", "3|4|1||", "3|5|1|99|"}}});
  m_service->CurrentSeasonID(3);
  const auto askedFor = [&] {
    std::string ids;
    const std::string select = "select * from [player info] where [id] =";
    for (const std::string& statement : Statements())
      ids += statement.starts_with(select) ? statement.substr(select.size()) : "";
    return ids;
  };
  EXPECT_EQ(Keys(Season()->Drafts()), "P5 P1 N3 N4 P99 N6") << "picks stand under what their rows say";
  EXPECT_EQ(askedFor(), " 5 1 99");
  EXPECT_EQ(Keys(m_service->Caches().players), "K5 K1");

  const PlayerInfo& nobody = *Pick(*Season(), 1).Player();
  EXPECT_EQ(nobody.Position(), nullptr);
  EXPECT_EQ(nobody.Team(), nullptr);
  EXPECT_TRUE(nobody.IsSaved());
  EXPECT_FALSE(nobody.IsDirty());
  const PlayerInfo& player = *Pick(*Season(), 2).Player();
  EXPECT_EQ(player.Position(), m_service->GetPlayerPositions()->Item("K1"));
  EXPECT_EQ(player.Team(), m_service->GetTeams()->Item("K1"));
  EXPECT_EQ(Pick(*Season(), 5).PlayerOrTeam(), nullptr);

  m_service->DiscardCurrentSeasonInfo();
  EXPECT_EQ(Pick(*Season(), 2).Player().get(), &player);
  EXPECT_EQ(askedFor(), " 99");
  EXPECT_TRUE(Boxes().empty());
}

TEST_F(ReferenceTest, WithoutADatabaseEachListShowsItsFailureAndStaysEmpty) {
  EXPECT_EQ(m_service->GetTeams(), nullptr);
  EXPECT_EQ(Boxes(), (Lines{Box("Error in loading positions.", "The database is not open."),
                            Box("Error in loading teams.", "The database is not open.")}));
  EXPECT_EQ(m_service->GetPlayerPositions()->Count(), 0) << "the empty list was kept";
}

}  // namespace
}  // namespace HLDataSrvc

#include "HLIData/IPlayerInfo.h"
#include "records/PlayerInfo.h"
#include "tests/service/LeagueTest.h"

namespace HLDataSrvc {
namespace {

using test::Box;
using test::Line;
using test::Lines;

constexpr char kPositions[] = "select * from [position info] order by [id]";
constexpr char kTeams[] = "select * from [team info] order by [id]";

class ReferenceTest : public test::LeagueTest {
 protected:
  /// A season of two managers and two rounds, current, with these picks: its draft as rows.
  Lines Draft(const test::Tables& added, const Lines& picks) {
    test::Tables rows = added;
    rows["season info"] = {"3|2022|2|2"};
    rows["playing info"] = {"3|1|0|1", "3|2|0|2"};
    rows["draft info"] = picks;
    OpenLoose(rows);
    m_service->CurrentSeasonID(3);
    return test::RowsOf(*m_service->GetCurrentSeasonInfo())["draft info"];
  }
  std::size_t Count(const std::string& statement) {
    const Lines statements = Statements();
    return static_cast<std::size_t>(std::count(statements.begin(), statements.end(), statement));
  }
};

TEST_F(ReferenceTest, PositionsAndTeamsAreReadOnceInTheOrderOfTheirIdentifiers) {
  Open("league.mdb");
  const auto teams = m_service->GetTeams();
  const auto positions = m_service->GetPlayerPositions();
  EXPECT_EQ(Statements(), (Lines{kPositions, kTeams}));
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
  EXPECT_TRUE(Boxes().empty());
}

TEST_F(ReferenceTest, TeamWithoutAPositionHasNone) {
  OpenLoose({{"team info", {"3|NUL|Null||", "4|ZER|Zero||0", "5|NEG|Negative||-2"}}});
  const auto teams = m_service->GetTeams();
  EXPECT_EQ(Keys(teams), "K1 K2 K3 K4 K5");
  EXPECT_EQ(teams->Item(3)->Position(), nullptr);
  EXPECT_EQ(teams->Item(4)->Position(), nullptr);
  EXPECT_EQ(teams->Item(5)->Position(), nullptr);
  EXPECT_EQ(teams->Item(2)->Nickname(), "");
}

TEST_F(ReferenceTest, TeamsThatWereReadBeforeAFaultyOneAreServedFromThenOn) {
  OpenLoose({{"team info", {"3|BAD|Bad||9", "4|AFT|After||2"}}});
  EXPECT_EQ(m_service->GetTeams(), nullptr);
  EXPECT_EQ(Boxes(),
            (Lines{Box("Error in loading teams.", "The collection holds no item with the key \"K9\".")}));
  Statements();
  EXPECT_EQ(Keys(m_service->GetTeams()), "K1 K2");
  EXPECT_EQ(Statements(), Lines{});
  EXPECT_TRUE(Boxes().empty());
}

TEST_F(ReferenceTest, TeamsReadBeforeAFaultyOneServeTheVeryLoadThatFoundIt) {
  OpenLoose({{"team info", {"3|BAD|Bad||9"}}});
  ASSERT_NE(m_service->GetCurrentSeasonInfo(), nullptr) << "team 1 was read, and is all that is asked for";
  EXPECT_EQ(Boxes(),
            (Lines{Box("Error in loading teams.", "The collection holds no item with the key \"K9\".")}));
  EXPECT_EQ(Pick(*Season(), 2).Team(), m_service->GetTeams()->Item("K1"));
}

TEST_F(ReferenceTest, PlayersAreReadOneByOneAndOnce) {
  EXPECT_EQ(Draft({{"player info", {"5|No|Body||"}}}, {"3|1|1|5|", "3|2|2|1|", "3|3|2|0|", "3|4|1||"}),
            (Lines{"3|1|1|5|", "3|2|2|1|", "3|3|2||", "3|4|1||"}));
  Lines statements = Statements();
  std::erase_if(statements, [](const std::string& text) { return text.find("[player") == text.npos; });
  EXPECT_EQ(statements, (Lines{"select * from [player info] where [id] = 5",
                               "select * from [player info] where [id] = 1"}));

  const PlayerInfo& nobody = *Pick(*Season(), 1).Player();
  EXPECT_EQ(nobody.Position(), nullptr);
  EXPECT_EQ(nobody.Team(), nullptr);
  EXPECT_TRUE(nobody.IsSaved());
  EXPECT_FALSE(nobody.IsDirty());
  const PlayerInfo& player = *Pick(*Season(), 2).Player();
  EXPECT_EQ(player.Position(), m_service->GetPlayerPositions()->Item("K1"));
  EXPECT_EQ(player.Team(), m_service->GetTeams()->Item("K1"));
  EXPECT_EQ(Keys(m_service->Caches().players), "K5 K1");

  m_service->DiscardCurrentSeasonInfo();
  EXPECT_EQ(Pick(*Season(), 2).Player().get(), &player);
}

TEST_F(ReferenceTest, PlayerWithoutARowIsAskedForEachTime) {
  EXPECT_EQ(Draft({}, {"3|1|1|99|"}), (Lines{"3|1|1||"}));
  EXPECT_EQ(Count("select * from [player info] where [id] = 99"), 1u);
  EXPECT_EQ(Keys(m_service->Caches().players), "");
  EXPECT_EQ(Keys(Season()->Drafts()), "P99 N2 N3 N4") << "the pick stands under what its row says";
  m_service->DiscardCurrentSeasonInfo();
  ASSERT_NE(Season(), nullptr);
  EXPECT_EQ(Count("select * from [player info] where [id] = 99"), 1u);
  EXPECT_TRUE(Boxes().empty());
}

TEST_F(ReferenceTest, WithoutADatabaseEachListShowsItsFailureAndStaysEmpty) {
  EXPECT_EQ(m_service->GetTeams(), nullptr);
  EXPECT_EQ(Boxes(), (Lines{Box("Error in loading positions.", "The database is not open."),
                            Box("Error in loading teams.", "The database is not open.")}));
  Open("league.mdb");
  ASSERT_NE(m_service->GetTeams(), nullptr);
  m_service = std::make_shared<DataService>(m_host);
  EXPECT_EQ(m_service->GetPlayerPositions(), nullptr);
  ASSERT_TRUE(Initialize());
  EXPECT_EQ(m_service->GetPlayerPositions()->Count(), 0) << "the empty list was kept";
  EXPECT_EQ(Boxes().size(), 1u);
}

}  // namespace
}  // namespace HLDataSrvc

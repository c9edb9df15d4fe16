#include "HLIData/IPlayerInfo.h"
#include "HLIData/ITeamInfo.h"
#include "tests/service/LeagueTest.h"

namespace HLDataSrvc {
namespace {

using namespace HLIData;
using test::Box;
using test::Lines;
using test::RowsOf;

class DraftsTest : public test::LeagueTest {
 protected:
  DraftsTest() {
    Open(test::SmallLeague());
    m_season = Season();
    m_before = Stored();
    m_engine->calls.clear();
  }
  /// A player who is picked in a draft, or a team.
  std::shared_ptr<IPickable> Team(const char* key) {
    return std::dynamic_pointer_cast<IPickable>(m_service->GetTeams()->Item(key));
  }
  std::shared_ptr<IPickable> Player(const std::string& lastName) {
    const auto found = m_service->Search(SearchType::PlayersAndTeams, lastName, false, false)->Item(1);
    m_engine->calls.clear();
    return found;
  }
  std::shared_ptr<IManagerInfo> Manager(const char* key) { return m_season->Managers()->Item(key); }

  std::shared_ptr<SeasonInfo> m_season;
  test::Tables m_before;
};

TEST_F(DraftsTest, ChangedPicksAloneAreWrittenAddedOrEdited) {
  EXPECT_TRUE(m_service->SaveDrafts());
  EXPECT_TRUE(m_engine->calls.empty()) << "nothing changed";

  const auto bob = Player("Moe");
  const auto cy = Player("Noe");
  m_season->UpdateDraft(cy, 4, Manager("K2"));
  m_season->UpdateDraft(bob, 3, Manager("K1"));
  EXPECT_TRUE(m_service->SaveDrafts());
  const std::string columns = "season id | draft no | manager id | player id | Update | Close";
  const std::string pick3 = "select * from [draft info] where [season id] = 1 and [draft no] = 3 | ";
  const std::string pick4 = "select * from [draft info] where [season id] = 1 and [draft no] = 4 | ";
  EXPECT_EQ(Steps(), (Lines{pick3 + "Edit | " + columns, pick4 + "AddNew | " + columns}));
  EXPECT_TRUE(m_service->SaveDrafts());
  EXPECT_TRUE(m_engine->calls.empty()) << "they are saved";

  const auto ann = Player("Lee");
  m_season->RemoveDraft(1);
  m_season->UpdateDraft(ann, 4, Manager("K2"));
  EXPECT_TRUE(m_service->SaveDrafts());
  EXPECT_EQ(Steps(), (Lines{pick4 + "Edit | " + columns}))
      << "its row is there; the emptied pick is not written";
  ExpectStored(m_before, 1, {{"draft info", {"1|1|2|1|", "1|2|1||1", "1|3|1|2|", "1|4|2|1|"}}});
}

TEST_F(DraftsTest, SavedPicksAreReadAgainByAnotherService) {
  m_season->UpdateDraft(Team("K2"), 4, Manager("K2"));
  m_season->UpdateDraft(Player("Orr"), 3, Manager("K1"));
  const test::Tables rows = RowsOf(*m_season);
  ASSERT_TRUE(m_service->SaveDrafts());
  Restart();
  EXPECT_EQ(RowsOf(*Season()), rows);
  EXPECT_EQ(Keys(Season()->Drafts()), "P1 T1 P4 T2");
  std::string message;
  EXPECT_TRUE(Season()->IsPickableTaken(Player("Orr"), message));
  EXPECT_EQ(message, "2\tBright\t Orr");
  EXPECT_FALSE(Pick(*Season(), 4).IsChanged());
}

TEST_F(DraftsTest, PickChangedFromAPlayerToATeamIsThePlayersAgainWhenRead) {
  m_season->UpdateDraft(Team("K2"), 1, Manager("K2"));
  EXPECT_TRUE(m_service->SaveDrafts());
  EXPECT_EQ(Steps(),
            (Lines{"select * from [draft info] where [season id] = 1 and [draft no] = 1 | Edit | season "
                   "id | draft no | manager id | team id | Update | Close"}));
  ExpectStored(m_before, 1, {{"draft info", {"1|1|2|1|2", "1|2|1||1", "1|3|1||"}}});
  EXPECT_EQ(Keys(m_season->Drafts()), "T2 T1 N3 N4");
  Restart();
  EXPECT_EQ(Keys(Season()->Drafts()), "P1 T1 N3 N4");
}

TEST_F(DraftsTest, ChangedPickWithoutAManagerFailsAndEarlierOnesAreStored) {
  const auto bob = Player("Moe");
  const auto cy = Player("Noe");
  m_season->UpdateDraft(bob, 3, Manager("K2"));
  m_season->UpdateDraft(cy, 4, nullptr);
  EXPECT_FALSE(m_service->SaveDrafts());
  EXPECT_EQ(Boxes(), (Lines{Box("Error in saving drafts.", "Pick 4 of season 1 has no manager.")}));
  EXPECT_FALSE(Pick(*m_season, 3).IsChanged());
  EXPECT_TRUE(Pick(*m_season, 4).IsChanged());
  ExpectStored(m_before, 1, {{"draft info", {"1|1|2|1|", "1|2|1||1", "1|3|2|2|"}}});

  m_season->RemoveDraft(3);  // not changed since it was saved: it may be without a manager
  m_season->Drafts()->Item(4)->Manager(Manager("K1"));
  EXPECT_TRUE(m_service->SaveDrafts());
  ExpectStored(m_before, 1, {{"draft info", {"1|1|2|1|", "1|2|1||1", "1|3|2|2|", "1|4|1|3|"}}});
}

TEST_F(DraftsTest, DeletingLeavesEmptyPicksAndTheDraftsOfOthers) {
  for (const char* fixture : {"", "league.mdb"}) {
    if (*fixture != '\0') Open(fixture);
    const test::Tables before = Stored();
    const auto season = Season();
    const auto drafts = season->Drafts();
    Steps();
    ASSERT_TRUE(m_service->DeleteDrafts());
    const Lines steps = Steps();
    const std::string id = std::to_string(season->ID());
    EXPECT_TRUE(
        steps.at(0).starts_with("select * from [draft info] where [season id] = " + id + " | Delete"));
    EXPECT_EQ(steps.at(1),
              "select * from [draft info] where [season id] = " + id + " order by [draft no] | Close");
    EXPECT_EQ(steps.size(), 2u);
    ExpectStored(before, season->ID(), {{"draft info", {}}});
    EXPECT_EQ(Season(), season);
    EXPECT_NE(season->Drafts(), drafts);
    ASSERT_EQ(season->Drafts()->Count(), season->NoOfManagers() * season->NoOfRounds());
    for (std::int32_t number = 1; number <= season->Drafts()->Count(); ++number) {
      EXPECT_EQ(season->Drafts()->KeyAt(number), "N" + std::to_string(number));
      EXPECT_EQ(Pick(*season, number).Manager(), nullptr);
    }
  }
}

TEST_F(DraftsTest, WithoutASeasonBothAreShown) {
  m_service->CurrentSeasonID(99);
  EXPECT_FALSE(m_service->SaveDrafts());
  EXPECT_FALSE(m_service->DeleteDrafts());
  EXPECT_EQ(Boxes(), (Lines{Box("Error in saving drafts.", "The current season is not loaded."),
                            Box("Error in deleting drafts.", "The current season is not loaded.")}));
  EXPECT_EQ(Stored(), m_before);
}

}  // namespace
}  // namespace HLDataSrvc

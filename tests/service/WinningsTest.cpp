#include "jet/Error.h"
#include "tests/service/LeagueTest.h"

namespace HLDataSrvc {
namespace {

using namespace HLIData;
using test::Box;
using test::Lines;

constexpr char kHighest[] = "select max(id) as highestid from [winning info] | Close";
constexpr char kSaving[] = "Error in saving winnings.";

class WinningsTest : public test::LeagueTest {
 protected:
  WinningsTest() {
    Open(test::SmallLeague());
    m_season = Season();
    m_before = Stored();
    m_engine->calls.clear();
  }
  /// A new winning that the next save adds.
  std::shared_ptr<WinningInfo> Win(const std::string& prize, const std::string& manager, std::int32_t week) {
    std::shared_ptr<IWinningInfo> winning;
    EXPECT_TRUE(m_service->AddWinning(winning));
    winning->PrizeID(prize);
    winning->ManagerID(manager);
    winning->Week(week);
    winning->Action(WinningAction::Add);
    return std::dynamic_pointer_cast<WinningInfo>(winning);
  }
  WinningInfo& Winning(const char* key) {
    return dynamic_cast<WinningInfo&>(*m_season->Winnings()->Item(key));
  }
  void ExpectWinnings(const Lines& rows) { ExpectStored(m_before, 1, {{"winning info", rows}}); }

  std::shared_ptr<SeasonInfo> m_season;
  test::Tables m_before;
};

TEST_F(WinningsTest, NewOnesAreNumberedThroughOneSave) {
  const auto first = Win("1", "2", 3);
  const auto second = Win("2", "1", 0);
  EXPECT_EQ(Keys(m_season->Winnings()), "K1 K2 KNEW1 KNEW2");
  EXPECT_EQ(first->ID(), 0);
  EXPECT_TRUE(m_engine->calls.empty());
  ASSERT_TRUE(m_service->SaveWinnings());
  const std::string select = "select * from [winning info] where [season id] = 1";
  EXPECT_EQ(Steps(),
            (Lines{kHighest, select + " | AddNew | id | season id | prize id | week # | manager id | "
                                      "Update | AddNew | id | season id | prize id | manager id | Update "
                                      "| Close"}))
      << "the highest identifier is asked for once; no week is left unset";
  ExpectWinnings({"1|1|1|1|1", "2|1|2|2|", "3|1|1|2|3", "4|1|2|1|"});
  EXPECT_EQ(first->ID(), 3);
  EXPECT_EQ(first->Key(), "KNEW1") << "for as long as it stands there";
  EXPECT_EQ(first->Action(), WinningAction::Add);
  EXPECT_TRUE(first->IsSaved());
  EXPECT_FALSE(first->IsDirty());
  EXPECT_TRUE(m_service->SaveWinnings());
  EXPECT_TRUE(m_engine->calls.empty());

  Restart();
  EXPECT_EQ(Keys(Season()->Winnings()), "K1 K2 K3 K4");
  EXPECT_EQ(Season()->Winnings()->Item("K4")->Week(), 0);
  EXPECT_EQ(Season()->Winnings()->Item("K3")->Week(), 3);
}

TEST_F(WinningsTest, CountTheNewOnesOfAllSeasonsAndBelongToTheCurrentOne) {
  EXPECT_EQ(Win("1", "2", 1)->Key(), "KNEW1");
  m_service->CurrentSeasonID(2);
  const auto second = Win("1", "3", 2);
  EXPECT_EQ(second->Key(), "KNEW2");
  second->SeasonID(1);  // counts for nothing
  ASSERT_TRUE(m_service->SaveWinnings());
  ExpectStored(m_before, 2, {{"winning info", {"3|2|1|3|2"}}});
  m_service->CurrentSeasonID(1);
  ASSERT_TRUE(m_service->DiscardCurrentSeasonInfo());
  EXPECT_EQ(Win("1", "2", 1)->Key(), "KNEW3");
}

TEST_F(WinningsTest, EmptyTableBeginsAtOne) {
  Winning("K1").Action(WinningAction::Delete);
  Winning("K2").Action(WinningAction::Delete);
  ASSERT_TRUE(m_service->SaveWinnings());
  Win("1", "1", 1);
  Win("1", "1", 2);
  ASSERT_TRUE(m_service->SaveWinnings());
  ExpectWinnings({"1|1|1|1|1", "2|1|1|1|2"});
}

TEST_F(WinningsTest, DeletedOnesLeaveTheSeasonAndTheTable) {
  const auto unsaved = Win("1", "1", 5);
  unsaved->Action(WinningAction::Delete);
  Winning("K1").Action(WinningAction::Delete);
  const auto added = Win("1", "2", 6);
  ASSERT_TRUE(m_service->SaveWinnings());
  const Lines steps = Steps();
  EXPECT_EQ(steps.at(0), "select * from [winning info] where [id] = 1 | Delete | Close");
  EXPECT_EQ(steps.at(1), kHighest) << "nothing is asked for the one that was never saved";
  EXPECT_EQ(Keys(m_season->Winnings()), "K2 KNEW2");
  ExpectWinnings({"2|1|2|2|", "3|1|1|2|6"});

  added->Action(WinningAction::Delete);  // saved in the meantime
  ASSERT_TRUE(m_service->SaveWinnings());
  EXPECT_EQ(Steps(), (Lines{"select * from [winning info] where [id] = 3 | Delete | Close"}));
  ExpectWinnings({"2|1|2|2|"});
}

TEST_F(WinningsTest, ChangesOfSavedOnesAreAddedAgainOrNotWritten) {
  Winning("K1").Week(9);  // loaded: its action is none
  ASSERT_TRUE(m_service->SaveWinnings());
  EXPECT_TRUE(m_engine->calls.empty());
  EXPECT_FALSE(Winning("K1").IsDirty());
  EXPECT_EQ(Stored(), m_before);

  const auto added = Win("1", "2", 3);
  ASSERT_TRUE(m_service->SaveWinnings());
  added->Week(4);
  ASSERT_TRUE(m_service->SaveWinnings());
  EXPECT_EQ(added->ID(), 4);
  ExpectWinnings({"1|1|1|1|1", "2|1|2|2|", "3|1|1|2|3", "4|1|1|2|4"});
}

TEST_F(WinningsTest, NewOneForWhichNoIdentifierIsFoundIsDroppedWithoutAWord) {
  const auto first = Win("1", "2", 3);
  const auto second = Win("1", "2", 4);
  bool hasFailed = false;
  m_engine->onCall = [&](const std::string& call) {
    if (call == "Database.OpenRecordset" && !std::exchange(hasFailed, true))
      throw jet::Error(jet::ErrorNumber::ReadFailed, "Gone.");
  };
  EXPECT_TRUE(m_service->SaveWinnings());
  m_engine->onCall = nullptr;
  EXPECT_TRUE(Boxes().empty());
  EXPECT_FALSE(first->IsDirty());
  EXPECT_FALSE(first->IsSaved());
  EXPECT_EQ(first->ID(), 0);
  EXPECT_EQ(second->ID(), 3);
  ExpectWinnings({"1|1|1|1|1", "2|1|2|2|", "3|1|1|2|4"});
}

TEST_F(WinningsTest, OneThatCannotBeWrittenIsShownAndThoseBeforeItStay) {
  Win("1", "2", 3);
  const auto bad = Win("", "2", 4);
  const auto after = Win("1", "2", 5);
  EXPECT_FALSE(m_service->SaveWinnings());
  const Lines boxes = Boxes();
  ASSERT_EQ(boxes.size(), 1u);
  EXPECT_TRUE(boxes[0].starts_with(Box(kSaving, ""))) << boxes[0];
  EXPECT_NE(boxes[0].find("prize id"), std::string::npos) << boxes[0];
  EXPECT_TRUE(bad->IsDirty());
  EXPECT_TRUE(after->IsDirty());
  ExpectWinnings({"1|1|1|1|1", "2|1|2|2|", "3|1|1|2|3"});

  bad->PrizeID("99");
  EXPECT_FALSE(m_service->SaveWinnings()) << "there is no such prize";
  bad->PrizeID("2");
  EXPECT_TRUE(m_service->SaveWinnings());
  ExpectWinnings({"1|1|1|1|1", "2|1|2|2|", "3|1|1|2|3", "4|1|2|2|4", "5|1|1|2|5"});
}

TEST_F(WinningsTest, SeasonWhoseWinningsCannotBeReadHasNoneToAddToOrSave) {
  Open(test::SmallLeague(/*isLoose=*/true, {{"winning info", {"|1|1|1|1"}}}));
  m_season = Season();
  EXPECT_EQ(
      Boxes(),
      (Lines{Box("Error in loading winnings.",
                 "[winning info], row with id Null, season id 1, column 'id': \"\" is not a number.")}));
  ASSERT_NE(m_season, nullptr);
  EXPECT_EQ(m_season->Winnings(), nullptr);
  EXPECT_EQ(m_season->Drafts()->Count(), 4) << "what follows was read";
  std::shared_ptr<IWinningInfo> winning;
  EXPECT_FALSE(m_service->AddWinning(winning));
  EXPECT_TRUE(Boxes().empty());
  EXPECT_FALSE(m_service->SaveWinnings());
  EXPECT_EQ(Boxes(), (Lines{Box(kSaving, "The winnings of the season are not loaded.")}));

  m_service->CurrentSeasonID(99);
  EXPECT_FALSE(m_service->AddWinning(winning));
  EXPECT_FALSE(m_service->SaveWinnings());
  EXPECT_EQ(Boxes(), (Lines{Box(kSaving, "The current season is not loaded.")}));
}

}  // namespace
}  // namespace HLDataSrvc

#include "HLLeague/DraftSession.h"
#include "HLLeague/Failure.h"
#include "HLLeague/Players.h"
#include "tests/cli/DraftTest.h"

namespace cli::test {

using namespace HLLeague;

namespace {

using DraftSessionTest = DraftTest;

TEST_F(DraftSessionTest, TakesStepsBackInTurnAcrossSavings) {
  const Picks first = Draft().Current();
  Draft().Change({{1, Pick()}});
  Draft().Change({{12, first[0]}});  // the player of pick 1 goes to pick 12
  Draft().Change({{1, first[11]}, {6, Pick()}});
  EXPECT_EQ(Draft().Unsaved(), (std::vector<std::int32_t>{1, 6, 12}));
  Draft().Save();
  EXPECT_TRUE(Draft().Unsaved().empty());

  EXPECT_EQ(Draft().TakeBack(), (std::vector<std::int32_t>{1, 6}));
  EXPECT_EQ(Draft().TakeBack(), (std::vector<std::int32_t>{12}));
  EXPECT_EQ(Draft().Current()[11], first[11]);
  EXPECT_EQ(Draft().TakeBack(), (std::vector<std::int32_t>{1}));
  EXPECT_EQ(Draft().TakeBack(), std::vector<std::int32_t>());
  EXPECT_EQ(Draft().Current(), first);
  Draft().Save();
  EXPECT_EQ(StoredPicks(), first);
}

TEST_F(DraftSessionTest, ShowsItsPicksInTheSeasonOfTheService) {
  const Picks first = Draft().Current();
  Draft().Change({{1, first[11]}, {12, first[0]}});
  std::string taken;
  EXPECT_TRUE(CurrentSeason(League())->IsPickableTaken(first[0].what, taken));
  EXPECT_EQ(taken.find("3\t"), 0U) << taken;
  EXPECT_EQ(PicksOf(*CurrentSeason(League())), Draft().Current());
}

TEST_F(DraftSessionTest, PutsUnsavedPicksIntoADraftThatIsLoadedAnew) {
  const Picks first = Draft().Current();
  Draft().Change({{1, first[11]}, {12, first[0]}, {3, Pick()}});
  const Picks played = Draft().Current();
  League().Service().DiscardCurrentSeasonInfo();
  EXPECT_EQ(Draft().Current(), played);
  EXPECT_EQ(Draft().Stored(), first);
  EXPECT_EQ(PicksOf(*CurrentSeason(League())), played);
}

TEST_F(DraftSessionTest, KeepsItsPicksWhenSavingFails) {
  const Picks first = Draft().Current();
  Draft().Change({{1, first[11]}, {12, first[0]}, {3, Pick()}});
  const Picks played = Draft().Current();
  for (const int calls : {0, 20, 40, 80, 120}) {
    m_engine->callsLeft = calls;
    EXPECT_THROW(Draft().Save(), Failure) << calls;
    m_engine->callsLeft = -1;
    EXPECT_EQ(Draft().Current(), played) << calls;
    EXPECT_FALSE(Draft().Unsaved().empty()) << calls;
    EXPECT_THROW(Draft().RefuseUnsaved("season use"), Failure);
  }
  Draft().Save();
  EXPECT_NO_THROW(Draft().RefuseUnsaved("season use"));
  EXPECT_EQ(StoredPicks(), played);
}

// The steps of a draft end with it: a manager in them may have left.
TEST_F(DraftSessionTest, TakesNoStepBackThatAnotherCommandHasOvertaken) {
  const Picks first = Draft().Current();
  Draft().Change({{1, Pick()}});
  Draft().Save();
  League().Service().DiscardCurrentSeasonInfo();  // as every command that changes the season does
  EXPECT_EQ(Draft().TakeBack(), std::vector<std::int32_t>());
  const auto manager = CurrentSeason(League())->Managers()->Item("K" + std::to_string(*first[1].managerID));
  CurrentSeason(League())->RemoveManager(manager);
  const Picks before = Draft().Current();
  EXPECT_THROW(Draft().Change({{3, Pick()}, {1, first[1]}}), Failure);
  EXPECT_EQ(Draft().Current(), before);
  EXPECT_EQ(PicksOf(*CurrentSeason(League())), before) << "nothing was cleared";
}

TEST_F(DraftSessionTest, ShowsTheRecordsOfTheServiceAfterARollback) {
  const std::int32_t id = Draft().Current()[0].id;
  const auto nameAt = [&](std::size_t index) { return Draft().Current()[index].what->PickName(); };
  const std::string name = nameAt(0);
  for (const bool hasUnsaved : {false, true}) {
    if (hasUnsaved) Draft().Change({{1, Draft().Current()[1]}, {2, Draft().Current()[0]}});
    PlayerValues values = ValuesOf(*PlayerByID(League(), id));
    values.lastName = "Wrong";
    m_engine->failsOnce = true;
    EXPECT_THROW(League().Transact("Not saved.",
                                   [&] {
                                     SavePlayer(League(), values, id);
                                     throw Failure(FailureKind::Refused, "No.");
                                   }),
                 Failure);
    EXPECT_EQ(nameAt(hasUnsaved ? 1 : 0), name);
    values.lastName = "Right";
    SavePlayer(League(), values, id);
    EXPECT_EQ(nameAt(hasUnsaved ? 1 : 0), values.firstName + " Right");
    values = ValuesOf(*PlayerByID(League(), id));
    values.lastName = name.substr(name.find(' ') + 1);
    SavePlayer(League(), values, id);
  }
}

TEST_F(DraftSessionTest, RevertsToWhatIsStored) {
  const Picks first = Draft().Current();
  Draft().Change({{1, Pick()}});
  Draft().Change({{2, Pick()}});
  Draft().Revert();
  EXPECT_TRUE(Draft().Unsaved().empty());
  EXPECT_EQ(Draft().Current(), first);
  EXPECT_EQ(PicksOf(*CurrentSeason(League())), first);
  EXPECT_TRUE(Draft().TakeBack().empty());
}

TEST_F(DraftSessionTest, ForgetsTheStepsOfAnotherSeason) {
  Draft().Change({{1, Pick()}});
  Draft().Save();
  UseSeason(11);
  EXPECT_EQ(Draft().Current().size(), 192U);
  EXPECT_TRUE(Draft().TakeBack().empty());
}

}  // namespace
}  // namespace cli::test

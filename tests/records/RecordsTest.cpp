#include <functional>

#include <gtest/gtest.h>

#include "records/DraftInfo.h"
#include "records/PositionInfo.h"
#include "records/PrizeInfo.h"
#include "records/PrizeTypeInfo.h"
#include "records/WinningInfo.h"
#include "tests/records/RecordsSupport.h"

namespace HLDataSrvc {
namespace {

using HLIData::ErrorNumber;
using HLIData::IPickable;
using HLIData::PickType;
using test::NumberOfError;

std::string PickOf(const IPickable& pick) {
  return std::to_string(static_cast<std::int32_t>(pick.PickType())) + " " + std::to_string(pick.PickID()) +
         " " + pick.PickName();
}

TEST(Pickables, TellKindIdentifierAndName) {
  EXPECT_EQ(PickOf(*test::Player(17, "Joe", "Smith")), "1 17 Joe Smith");
  EXPECT_EQ(PickOf(*test::Player(18, "", "Smith ")), "1 18  Smith ") << "nothing is trimmed";
  const auto team = test::Team(2, "Bears");
  team->Nickname("Monsters");
  EXPECT_EQ(PickOf(*team), "2 2 Bears");
  const auto manager = test::ManagerTmpl(3, "Lee");
  manager->FirstName("Ann");
  EXPECT_EQ(PickOf(*manager), "3 3 Ann Lee");
  const auto prize = test::PrizeTmpl(4);
  prize->Desc("Cup");
  EXPECT_EQ(PickOf(*prize), "4 4 Cup");
  PositionInfo position;
  position.ID(5);
  position.Abbr("QB");
  position.Desc("Quarterback");
  EXPECT_EQ(PickOf(position), "5 5 Quarterback");
}

TEST(PlayerInfo, TracksChangesOfEveryFieldAndRetirementAlways) {
  const auto player = test::Player(17, "Joe", "Smith");
  const auto position = std::make_shared<PositionInfo>();
  EXPECT_EQ(player->Position(), nullptr);
  EXPECT_EQ(player->Team(), nullptr);
  player->Team(test::Team(2));
  player->IsDirty(false);
  const auto dirtyAfter = [&](const auto& set) {
    player->IsDirty(false);
    set(*player);
    return player->IsDirty();
  };

  EXPECT_FALSE(dirtyAfter([](PlayerInfo& p) {
    p.ID(17);
    p.FirstName("Joe");
    p.LastName("Smith");
    p.Position(nullptr);
    p.Team(p.Team());
    p.IsSaved(true);
  }));
  EXPECT_TRUE(dirtyAfter([](PlayerInfo& p) { p.ID(18); }));
  EXPECT_TRUE(dirtyAfter([](PlayerInfo& p) { p.FirstName("joe"); }));
  EXPECT_TRUE(dirtyAfter([](PlayerInfo& p) { p.LastName("Smit"); }));
  EXPECT_TRUE(dirtyAfter([&](PlayerInfo& p) { p.Position(position); }));
  EXPECT_TRUE(dirtyAfter([](PlayerInfo& p) { p.Team(test::Team(2)); })) << "the content is the same";
  EXPECT_TRUE(dirtyAfter([](PlayerInfo& p) { p.IsRetired(false); })) << "the value is the same";
  EXPECT_EQ(PickOf(*player), "1 18 joe Smit");
  EXPECT_EQ(player->Position(), position);
}

TEST(SeasonParts, ReadTheirMasterRecordEveryTimeAndFailWithoutOne) {
  ManagerInfo manager;
  for (const std::function<void()>& read : {std::function<void()>([&] { manager.ID(); }),
                                            {[&] { manager.FirstName(); }},
                                            {[&] { manager.LastName(); }}})
    EXPECT_EQ(NumberOfError(read), ErrorNumber::ObjectNotSet);
  const auto ann = test::ManagerTmpl(3, "Lee");
  manager.ManagerTmpl(ann);
  ann->FirstName("Ann");
  EXPECT_EQ(std::to_string(manager.ID()) + manager.FirstName() + manager.LastName(), "3AnnLee");

  PrizeInfo prize;
  for (const std::function<void()>& read :
       {std::function<void()>([&] { prize.ID(); }), {[&] { prize.Desc(); }}, {[&] { prize.PrizeType(); }}})
    EXPECT_EQ(NumberOfError(read), ErrorNumber::ObjectNotSet);
  const auto cup = test::PrizeTmpl(4);
  prize.PrizeTmpl(cup);
  cup->Desc("Cup");
  cup->PrizeType(std::make_shared<PrizeTypeInfo>());
  EXPECT_EQ(std::to_string(prize.ID()) + prize.Desc(), "4Cup");
  EXPECT_EQ(prize.PrizeType(), cup->PrizeType());
}

TEST(DraftInfo, TheLatestOfPlayerAndTeamCountsAndTheOtherStays) {
  DraftInfo draft;
  EXPECT_EQ(draft.PlayerOrTeam(), nullptr);
  draft.Manager(test::Manager(1));
  EXPECT_FALSE(draft.IsChanged()) << "the manager is not part of it";

  const auto joe = test::Player(17);
  const auto bears = test::Team(2);
  draft.PlayerOrTeam(joe);
  EXPECT_TRUE(draft.IsChanged());
  EXPECT_EQ(draft.PickType(), PickType::Player);
  EXPECT_EQ(draft.Player(), joe) << "the very object that was handed in";
  EXPECT_EQ(draft.PlayerOrTeam(), std::shared_ptr<IPickable>(joe));
  draft.IsChanged(false);
  draft.PlayerOrTeam(bears);
  EXPECT_TRUE(draft.IsChanged());
  EXPECT_EQ(draft.PlayerOrTeam(), std::shared_ptr<IPickable>(bears));
  EXPECT_EQ(draft.Team(), bears);
  EXPECT_EQ(draft.Player(), joe);
}

TEST(DraftInfo, IgnoresTheVeryObjectThatItHolds) {
  DraftInfo draft;
  const auto joe = test::Player(17);
  const auto bears = test::Team(2);
  draft.PlayerOrTeam(joe);
  draft.PlayerOrTeam(bears);
  draft.IsChanged(false);
  draft.PlayerOrTeam(bears);
  draft.PlayerOrTeam(joe);
  EXPECT_FALSE(draft.IsChanged());
  EXPECT_EQ(draft.PickType(), PickType::Team) << "also when it does not count any more";
  draft.PlayerOrTeam(test::Player(17));
  EXPECT_TRUE(draft.IsChanged()) << "a different object is a change, with the same content too";
}

TEST(DraftInfo, TakesNothingButPlayersAndTeamsOfTheService) {
  DraftInfo draft;
  const auto joe = test::Player(17);
  draft.PlayerOrTeam(joe);
  draft.IsChanged(false);
  draft.PlayerOrTeam(nullptr);
  draft.PlayerOrTeam(test::ManagerTmpl(17));
  draft.PlayerOrTeam(std::make_shared<test::ForeignPickable>(0));
  for (const std::int32_t type : {1, 2}) {
    const auto foreign = std::make_shared<test::ForeignPickable>(type);
    EXPECT_EQ(NumberOfError([&] { draft.PlayerOrTeam(foreign); }), ErrorNumber::TypeMismatch);
  }
  EXPECT_FALSE(draft.IsChanged());
  EXPECT_EQ(draft.PlayerOrTeam(), std::shared_ptr<IPickable>(joe));
}

TEST(WinningInfo, TracksChangesOfEveryField) {
  WinningInfo winning;
  const auto dirtyAfter = [&](const auto& set) {
    winning.IsDirty(false);
    set(winning);
    return winning.IsDirty();
  };
  const auto setAll = [](WinningInfo& w) {
    w.ID(1);
    w.SeasonID(2);
    w.PrizeID("3");
    w.ManagerID("4");
    w.Week(5);
    w.Action(HLIData::WinningAction::Add);
  };
  EXPECT_FALSE(dirtyAfter([](WinningInfo& w) { w.Week(0); }));
  EXPECT_TRUE(dirtyAfter([](WinningInfo& w) { w.ID(1); }));
  EXPECT_TRUE(dirtyAfter([](WinningInfo& w) { w.SeasonID(2); }));
  EXPECT_TRUE(dirtyAfter([](WinningInfo& w) { w.PrizeID("3"); }));
  EXPECT_TRUE(dirtyAfter([](WinningInfo& w) { w.ManagerID("4"); }));
  EXPECT_TRUE(dirtyAfter([](WinningInfo& w) { w.Week(5); }));
  EXPECT_TRUE(dirtyAfter([](WinningInfo& w) { w.Action(HLIData::WinningAction::Add); }));
  EXPECT_FALSE(dirtyAfter(setAll));
  EXPECT_TRUE(dirtyAfter([](WinningInfo& w) { w.PrizeID("03"); })) << "texts, not numbers";
}

TEST(WinningInfo, KeyIsThatOfTheIdentifierOrARunningOneAndStays) {
  WinningInfo winning;
  EXPECT_EQ(winning.MakeKey(5), "KNEW5");
  winning.ID(12);
  EXPECT_EQ(winning.Key(), "KNEW5");
  EXPECT_EQ(winning.MakeKey(5), "K12");
  EXPECT_EQ(winning.Key(), "K12");
  winning.ID(-1);
  EXPECT_EQ(winning.MakeKey(6), "KNEW6");
}

}  // namespace
}  // namespace HLDataSrvc

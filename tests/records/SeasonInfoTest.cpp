#include <gtest/gtest.h>

#include "records/SeasonInfo.h"
#include "tests/records/RecordsSupport.h"

namespace HLDataSrvc {
namespace {

using namespace HLIData;

TEST(SeasonInfo, StartsEmptyAndNeverGoesBackBeforeTheFirstPick) {
  SeasonInfo season;
  EXPECT_EQ(season.Drafts(), nullptr);
  EXPECT_EQ(season.Managers(), nullptr);
  EXPECT_EQ(season.CurrentPick(), 0);
  for (const std::int32_t low : {0, -1, INT32_MIN}) {
    season.CurrentPick(9);
    season.CurrentPick(low);
    EXPECT_EQ(season.CurrentPick(), 1);
  }
}

TEST(SeasonInfo, AManagerTakesPartOnce) {
  SeasonInfo season;
  const auto managers = std::make_shared<KeyedCollection<IManagerInfo>>();
  season.Managers(managers);
  const auto lee = test::ManagerTmpl(7, "Lee");
  EXPECT_TRUE(season.AddManager(test::ManagerTmpl(9)));
  EXPECT_TRUE(season.AddManager(lee));
  managers->Item("K7")->Rank(2);
  EXPECT_TRUE(season.AddManager(lee));
  EXPECT_TRUE(season.AddManager(test::ManagerTmpl(7, "Another")));
  ASSERT_EQ(managers->Count(), 2) << "the collection handed in is the season's";
  EXPECT_EQ(managers->KeyAt(2), "K7");
  EXPECT_EQ(managers->Item(2)->ManagerTmpl(), lee);
  EXPECT_EQ(managers->Item(2)->Rank(), 2);

  EXPECT_FALSE(season.RemoveManager(test::Manager(8)));
  EXPECT_FALSE(season.RemoveManager(nullptr));
  EXPECT_FALSE(season.RemoveManager(std::make_shared<ManagerInfo>())) << "without master record";
  EXPECT_EQ(managers->Count(), 2);
  EXPECT_TRUE(season.RemoveManager(test::Manager(7))) << "the identifier counts, not the object";
  EXPECT_FALSE(season.RemoveManager(test::Manager(7)));
  EXPECT_EQ(managers->Count(), 1);
}

TEST(SeasonInfo, APrizeIsPutUpOnceAndKeepsItsAmount) {
  SeasonInfo season;
  season.Prizes(std::make_shared<KeyedCollection<IPrizeInfo>>());
  EXPECT_TRUE(season.AddPrize(test::PrizeTmpl(4)));
  EXPECT_EQ(season.Prizes()->Item("K4")->Amount(), 0);
  season.Prizes()->Item("K4")->Amount(50);
  EXPECT_TRUE(season.AddPrize(test::PrizeTmpl(4)));
  EXPECT_EQ(season.Prizes()->Count(), 1);
  EXPECT_EQ(season.Prizes()->Item("K4")->Amount(), 50);
}

TEST(SeasonInfo, AddingAnswersFalseWhereNothingCanBeAdded) {
  SeasonInfo season;
  EXPECT_FALSE(season.AddManager(test::ManagerTmpl(7)));
  EXPECT_FALSE(season.AddPrize(test::PrizeTmpl(4)));
  season.Managers(std::make_shared<KeyedCollection<IManagerInfo>>());
  season.Prizes(std::make_shared<KeyedCollection<IPrizeInfo>>());
  EXPECT_FALSE(season.AddManager(nullptr));
  EXPECT_FALSE(season.AddPrize(nullptr));
  EXPECT_EQ(season.Managers()->Count() + season.Prizes()->Count(), 0);
}

}  // namespace
}  // namespace HLDataSrvc

#include <functional>

#include <gtest/gtest.h>

#include "records/SettingInfo.h"

namespace HLDataSrvc {
namespace {

struct Observer final : HLIData::ISettingInfoEvents {
  void SettingsChanged() override {
    ++count;
    if (action) action();
  }
  int count = 0;
  std::function<void()> action;
};

TEST(SettingInfo, TellsOfAnotherSeasonOnly) {
  SettingInfo settings;
  Observer observer;
  std::int32_t seen = 0;
  observer.action = [&] { seen = settings.CurrentSeason(); };
  settings.AddObserver(observer);
  settings.AddObserver(observer);

  settings.CurrentSeason(0);
  EXPECT_EQ(observer.count, 0);
  EXPECT_FALSE(settings.IsChanged());
  settings.CurrentSeason(7);
  EXPECT_EQ(observer.count, 1);
  EXPECT_EQ(seen, 7) << "the value is stored before the event is raised";
  EXPECT_TRUE(settings.IsChanged());
  settings.CurrentSeason(7);
  EXPECT_EQ(observer.count, 1);
}

TEST(SettingInfo, SettingChangedTellsEveryTimeAndClearingItNever) {
  SettingInfo settings;
  Observer observer;
  settings.AddObserver(observer);
  settings.IsChanged(true);
  settings.IsChanged(true);
  EXPECT_EQ(observer.count, 2);
  settings.IsChanged(false);
  EXPECT_EQ(observer.count, 2);
}

TEST(SettingInfo, ObserversMayBeRemovedWhileTheyAreTold) {
  SettingInfo settings;
  Observer first;
  Observer second;
  Observer third;
  for (Observer* observer : {&first, &second, &third})
    settings.AddObserver(*observer);
  first.action = [&] {
    settings.RemoveObserver(first);
    settings.RemoveObserver(second);
  };
  settings.CurrentSeason(1);
  EXPECT_EQ(first.count, 1);
  EXPECT_EQ(second.count, 0);
  EXPECT_EQ(third.count, 1);
  settings.CurrentSeason(2);
  EXPECT_EQ(first.count, 1);
  EXPECT_EQ(third.count, 2);
}

}  // namespace
}  // namespace HLDataSrvc

#include "HLIData/Error.h"
#include "records/SeasonInfo.h"
#include "tests/service/ServiceTest.h"

namespace HLDataSrvc {
namespace {

using namespace HLIData;

class CurrentSeasonTest : public test::ServiceTest {
 protected:
  CurrentSeasonTest() { Put("league.mdb"); }

  void CacheSeason(std::int32_t id, std::int32_t year) {
    const auto season = std::make_shared<SeasonInfo>();
    season->ID(id);
    season->Year(year);
    m_service->Caches().Keep(season);
  }
};

TEST_F(CurrentSeasonTest, SettingTheIdentifierChangesNothingElse) {
  ASSERT_TRUE(Initialize());
  m_engine->calls.clear();
  m_service->CurrentSeasonID(5);
  EXPECT_EQ(m_service->CurrentSeasonID(), 5);
  EXPECT_EQ(m_service->CurrentSeasonYear(), 0);
  EXPECT_EQ(m_service->GetSettings()->CurrentSeason(), 11);
  EXPECT_TRUE(m_engine->calls.empty());
}

TEST_F(CurrentSeasonTest, SettingTheYearOfALoadedSeasonMakesItCurrentAndSavesIt) {
  ASSERT_TRUE(Initialize());
  CacheSeason(7, 2005);
  m_service->CurrentSeasonYear(2005);
  EXPECT_EQ(m_service->CurrentSeasonID(), 7);
  EXPECT_EQ(m_service->CurrentSeasonYear(), 2005);
  EXPECT_EQ(m_service->GetSettings()->CurrentSeason(), 7);
  m_service->CurrentSeasonID(3);
  m_service->CurrentSeasonYear(2005);
  EXPECT_EQ(m_service->CurrentSeasonID(), 7) << "set again, though the settings do not change";
  EXPECT_TRUE(m_host->messages.empty());
  m_service->CloseDatabase();
  EXPECT_EQ(StoredSettings(), "1=7;");
}

TEST_F(CurrentSeasonTest, FailedSaveOfTheSettingsIsShownAndNotRaised) {
  ASSERT_TRUE(Initialize());
  CacheSeason(7, 2005);
  m_service->CloseDatabase();
  m_service->CurrentSeasonYear(2005);
  EXPECT_EQ(m_service->CurrentSeasonYear(), 2005);
  ASSERT_EQ(m_host->messages.size(), 1u);
  EXPECT_EQ(m_host->messages[0].text, "Error in saving settings.\r\nThe database is not open.");
}

TEST_F(CurrentSeasonTest, WithoutSettingsTheErrorReachesTheCallerAfterTheSeasonIsCurrent) {
  CacheSeason(7, 2005);
  try {
    m_service->CurrentSeasonYear(2005);
    ADD_FAILURE();
  } catch (const Error& error) {
    EXPECT_EQ(error.Number(), ErrorNumber::ObjectNotSet);
  }
  EXPECT_EQ(m_service->CurrentSeasonID(), 7);
  EXPECT_EQ(m_service->CurrentSeasonYear(), 2005);
}

}  // namespace
}  // namespace HLDataSrvc

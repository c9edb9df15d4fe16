#include "jet/Error.h"
#include "records/SettingInfo.h"
#include "tests/service/ServiceTest.h"

namespace HLDataSrvc {
namespace {

using Message = test::RecordingHost::Message;

class SettingsTest : public test::ServiceTest {
 protected:
  void Open(const std::string& fixture) {
    Put(fixture);
    ASSERT_TRUE(Initialize()) << m_message;
    m_engine->calls.clear();
  }
  void FailCall(const std::string& failing, const std::string& description) {
    m_engine->onCall = [=](const std::string& call) {
      if (call == failing) throw jet::Error(jet::ErrorNumber::ReadFailed, description);
    };
  }
};

TEST_F(SettingsTest, LoadedSeasonBecomesCurrentAndCountsAsChanged) {
  Open("league.mdb");
  const auto settings = m_service->GetSettings();
  EXPECT_EQ(settings->CurrentSeason(), 11);
  EXPECT_EQ(m_service->CurrentSeasonID(), 11);
  EXPECT_TRUE(m_service->Settings()->IsChanged());
  EXPECT_EQ(m_service->GetSettings(), settings);
  EXPECT_TRUE(m_engine->calls.empty()) << "the settings are read once";
}

TEST_F(SettingsTest, ChangedSettingsAreWrittenByEverySave) {
  Open("league.mdb");
  m_service->GetSettings()->CurrentSeason(5);
  EXPECT_EQ(m_service->CurrentSeasonID(), 5);
  EXPECT_TRUE(m_service->SaveSettings());
  EXPECT_TRUE(m_service->SaveSettings());
  EXPECT_EQ(m_engine->Count("Recordset.Update"), 2u);
  EXPECT_TRUE(m_service->Settings()->IsChanged());
  m_service->CloseDatabase();
  EXPECT_EQ(StoredSettings(), "1=5;");
}

TEST_F(SettingsTest, SeasonZeroIsNoChangeAndSavingWritesNothing) {
  Open("league.mdb");
  m_service->GetSettings()->CurrentSeason(0);
  ASSERT_TRUE(m_service->SaveSettings());
  m_service = std::make_shared<DataService>(m_host);
  ASSERT_TRUE(Initialize()) << m_message;
  EXPECT_EQ(m_service->GetSettings()->CurrentSeason(), 0);
  EXPECT_FALSE(m_service->Settings()->IsChanged());
  m_engine->calls.clear();
  EXPECT_TRUE(m_service->SaveSettings());
  EXPECT_TRUE(m_engine->calls.empty());
}

TEST_F(SettingsTest, MissingRowIsAddedBySaving) {
  Open("league-damaged-nosetting.mdb");
  EXPECT_EQ(m_service->GetSettings()->CurrentSeason(), 0);
  EXPECT_FALSE(m_service->Settings()->IsChanged());
  EXPECT_TRUE(m_host->messages.empty());
  m_service->GetSettings()->CurrentSeason(3);
  EXPECT_TRUE(m_service->SaveSettings());
  m_service->CloseDatabase();
  EXPECT_EQ(StoredSettings(), "1=3;");
}

TEST_F(SettingsTest, NullSeasonIsShownOnceAndTheHalfBuiltObjectStays) {
  Open("league-damaged-nullsetting.mdb");
  EXPECT_EQ(m_host->messages,
            (std::vector<Message>{{"Error in loading settings.\r\n[settings], row with id 1, current season "
                                   "id Null, column 'current season id': \"\" is not a number.",
                                   "Halcyra Service"}}));
  const auto settings = m_service->GetSettings();
  ASSERT_NE(settings, nullptr);
  EXPECT_EQ(settings->CurrentSeason(), 0);
  EXPECT_TRUE(m_engine->calls.empty());
  EXPECT_EQ(m_host->messages.size(), 1u);

  settings->CurrentSeason(4);
  EXPECT_EQ(m_service->CurrentSeasonID(), 4) << "the service listens to the half-built object too";
  EXPECT_TRUE(m_service->SaveSettings());
  m_service->CloseDatabase();
  EXPECT_EQ(StoredSettings(), "1=4;");
}

TEST_F(SettingsTest, FailedLoadAnswersNoneTheFirstTime) {
  EXPECT_EQ(m_service->GetSettings(), nullptr) << "no database is open";
  EXPECT_EQ(
      m_host->messages,
      (std::vector<Message>{{"Error in loading settings.\r\nThe database is not open.", "Halcyra Service"}}));
  EXPECT_NE(m_service->GetSettings(), nullptr);
  EXPECT_EQ(m_host->messages.size(), 1u);
}

TEST_F(SettingsTest, FailedSaveIsShownOnceAndTheChangeStaysToBeSaved) {
  Open("league.mdb");
  m_service->GetSettings()->CurrentSeason(5);
  FailCall("Recordset.Update", "The disk is gone.");
  EXPECT_FALSE(m_service->SaveSettings());
  EXPECT_EQ(m_host->messages,
            (std::vector<Message>{{"Error in saving settings.\r\nThe disk is gone.", "Halcyra Service"}}));
  EXPECT_TRUE(m_service->Settings()->IsChanged());
  m_engine->onCall = nullptr;
  EXPECT_TRUE(m_service->SaveSettings());
  m_service->CloseDatabase();
  EXPECT_EQ(StoredSettings(), "1=5;");

  EXPECT_FALSE(m_service->SaveSettings()) << "changed, but nothing is open";
  EXPECT_EQ(m_host->messages.back().text, "Error in saving settings.\r\nThe database is not open.");
}

TEST_F(SettingsTest, SavingBeforeAnythingWasLoadedWritesNothing) {
  EXPECT_TRUE(m_service->SaveSettings());
  EXPECT_TRUE(m_host->messages.empty());
}

}  // namespace
}  // namespace HLDataSrvc

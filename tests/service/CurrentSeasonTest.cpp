#include "HLIData/Error.h"
#include "tests/service/ServiceTest.h"

namespace HLDataSrvc {
namespace {

using namespace HLIData;

// A season of which only identifier and year matter.
class SeasonStub final : public ISeasonInfo {
 public:
  SeasonStub(std::int32_t id, std::int32_t year) : m_id(id), m_year(year) {}

  std::int32_t ID() const override { return m_id; }
  std::int32_t Year() const override { return m_year; }
  void Year(std::int32_t) override {}
  std::int32_t NoOfManagers() const override { return 0; }
  void NoOfManagers(std::int32_t) override {}
  std::int32_t NoOfRounds() const override { return 0; }
  void NoOfRounds(std::int32_t) override {}
  std::int32_t MoneyContribution() const override { return 0; }
  void MoneyContribution(std::int32_t) override {}
  std::shared_ptr<KeyedCollection<IPrizeInfo>> Prizes() const override { return {}; }
  void Prizes(const std::shared_ptr<KeyedCollection<IPrizeInfo>>&) override {}
  std::int32_t NoOfRegularWeeks() const override { return 0; }
  void NoOfRegularWeeks(std::int32_t) override {}
  std::int32_t TotalNoOfWeeks() const override { return 0; }
  void TotalNoOfWeeks(std::int32_t) override {}
  bool IsRankingLocked() const override { return false; }
  void IsRankingLocked(bool) override {}
  bool IsDraftLocked() const override { return false; }
  void IsDraftLocked(bool) override {}
  bool IsSeasonLocked() const override { return false; }
  void IsSeasonLocked(bool) override {}
  bool HasSeasonStarted() const override { return false; }
  void HasSeasonStarted(bool) override {}
  std::shared_ptr<KeyedCollection<IManagerInfo>> Managers() const override { return {}; }
  std::shared_ptr<KeyedCollection<IWinningInfo>> Winnings() const override { return {}; }
  std::shared_ptr<KeyedCollection<IDraftInfo>> Drafts() const override { return {}; }
  std::int32_t CurrentPick() const override { return 1; }
  bool IsPickableTaken(const std::shared_ptr<IPickable>&, std::string&) override { return true; }
  void UpdateDraft(const std::shared_ptr<IPickable>&, std::int32_t,
                   const std::shared_ptr<IManagerInfo>&) override {}
  void RemoveDraft(std::int32_t) override {}
  bool AddPrize(const std::shared_ptr<IPrizeTmplInfo>&) override { return false; }
  bool AddManager(const std::shared_ptr<IManagerTmplInfo>&) override { return false; }
  bool RemoveManager(const std::shared_ptr<IManagerInfo>&) override { return false; }

 private:
  std::int32_t m_id;
  std::int32_t m_year;
};

class CurrentSeasonTest : public test::ServiceTest {
 protected:
  CurrentSeasonTest() { Put("league.mdb"); }

  void CacheSeason(std::int32_t id, std::int32_t year) {
    auto& cache = m_service->Caches().seasonsByYear;
    if (!cache) cache = std::make_shared<KeyedCollection<ISeasonInfo>>();
    cache->Add(std::make_shared<SeasonStub>(id, year), "K" + std::to_string(year));
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

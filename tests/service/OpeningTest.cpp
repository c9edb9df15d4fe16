#include "jet/Error.h"
#include "records/SettingInfo.h"
#include "tests/service/ServiceTest.h"
#include "tests/support/Processes.h"

namespace HLDataSrvc {
namespace {

using HLIData::DBType;

class OpeningTest : public test::ServiceTest {
 protected:
  bool Reopen(bool clearCache = false) {
    m_message.clear();
    return m_service->OpenDatabase(clearCache, m_message);
  }
  // The service reads through the database that it holds: settings are written to it without an error.
  bool Works() {
    m_host->messages.clear();
    m_service->Settings()->IsChanged(true);
    return m_service->SaveSettings() && m_host->messages.empty();
  }
  void FillCaches() {
    m_service->Caches().seasonsByID = std::make_shared<HLIData::KeyedCollection<HLIData::ISeasonInfo>>();
    m_service->Caches().seasonsByYear = m_service->Caches().seasonsByID;
    m_service->Caches().positions = std::make_shared<HLIData::KeyedCollection<HLIData::IPositionInfo>>();
    m_service->Caches().teams = std::make_shared<HLIData::KeyedCollection<HLIData::ITeamInfo>>();
    m_service->Caches().players = std::make_shared<HLIData::KeyedCollection<HLIData::IPlayerInfo>>();
    m_service->Caches().managers = std::make_shared<HLIData::KeyedCollection<HLIData::IManagerTmplInfo>>();
    m_service->Caches().prizeTmpls = std::make_shared<HLIData::KeyedCollection<HLIData::IPrizeTmplInfo>>();
    m_service->Caches().prizeTypes = std::make_shared<HLIData::KeyedCollection<HLIData::IPrizeTypeInfo>>();
    m_service->Caches().areAllSeasonsLoaded = true;
  }
  int FilledCaches() const {
    const ServiceCaches& caches = m_service->Caches();
    return (caches.seasonsByID ? 1 : 0) + (caches.seasonsByYear ? 1 : 0) + (caches.positions ? 1 : 0) +
           (caches.teams ? 1 : 0) + (caches.players ? 1 : 0) + (caches.managers ? 1 : 0) +
           (caches.prizeTmpls ? 1 : 0) + (caches.prizeTypes ? 1 : 0);
  }
};

TEST_F(OpeningTest, InitializeOpensTheLiveFileAndLearnsTheCurrentSeason) {
  Put("league.mdb");
  ASSERT_TRUE(Initialize()) << m_message;
  EXPECT_EQ(m_message, "");
  EXPECT_EQ(m_service->CurrentSeasonID(), 11);
  EXPECT_EQ(m_service->CurrentSeasonYear(), 0);
  EXPECT_FALSE(IsFree("Halcyra - Live.mdb"));
  EXPECT_TRUE(m_host->messages.empty());
}

TEST_F(OpeningTest, EveryFileThatCannotBeOpenedIsToldInTheMessageAlone) {
  EXPECT_FALSE(Initialize());
  EXPECT_EQ(m_message, "Database file: \\Halcyra - Live.mdb is missing.");
  Put("league.mdb", "Halcyra - Test.mdb");
  EXPECT_FALSE(Initialize(DBType::Test));
  EXPECT_EQ(m_message, "Database file: \\Halcyra - Test.mdb is missing.");
  for (const char* fixture :
       {"league-damaged-password.mdb", "league-damaged-empty.mdb", "league-damaged-magic.mdb"}) {
    Put(fixture);
    std::string words;
    try {
      jet::DBEngine().OpenDatabase(PathOf("Halcyra - Live.mdb"), true, false,
                                   HLServiceUtils::GetConnectString());
    } catch (const jet::Error& error) {
      words = error.what();
    }
    EXPECT_FALSE(Initialize());
    EXPECT_EQ(m_message, words) << fixture;
    EXPECT_NE(m_message, "");
  }
  Put("league.mdb");
  EXPECT_FALSE(Initialize(DBType{6}));
  EXPECT_EQ(m_message, "Database file: " + PathOf("Halcyra - .mdb") + " is missing.");
  EXPECT_TRUE(m_host->messages.empty());
  EXPECT_EQ(m_service->Settings(), nullptr) << "settings are loaded only once the file is open";
}

TEST_F(OpeningTest, ErrorWithoutWordsGetsTheFixedSentence) {
  Put("league.mdb");
  m_engine->onCall = [](const std::string& call) {
    if (call == "DBEngine.OpenDatabase") throw jet::Error(jet::ErrorNumber::ReadFailed, "");
  };
  EXPECT_FALSE(Initialize());
  EXPECT_EQ(m_message, "Error in opening database.");
}

TEST_F(OpeningTest, ReopeningReplacesTheDatabaseThatIsOpen) {
  if (!jet::test::ReplacesOpenFiles()) GTEST_SKIP() << "a file that is open cannot be replaced here";
  Put("league.mdb");
  ASSERT_TRUE(Initialize());
  EXPECT_TRUE(Reopen()) << m_message;
  EXPECT_TRUE(Works());
  EXPECT_FALSE(IsFree("Halcyra - Live.mdb"));

  Put("league-damaged-nosetting.mdb");  // the file was replaced while it was open
  ASSERT_TRUE(Reopen()) << m_message;
  EXPECT_TRUE(Works());
  m_service->CloseDatabase();
  EXPECT_EQ(StoredSettings(), "1=11;") << "written to the new file, which had no settings row";
}

TEST_F(OpeningTest, FailedReopeningKeepsTheDatabaseThatIsOpen) {
  if (!jet::test::ReplacesOpenFiles()) GTEST_SKIP() << "a file that is open cannot be replaced here";
  Put("league.mdb");
  ASSERT_TRUE(Initialize());
  for (const char* fixture : {"league-damaged-password.mdb", "league-damaged-empty.mdb"}) {
    Put(fixture);
    EXPECT_FALSE(Reopen(/*clearCache=*/true));
    EXPECT_NE(m_message, "");
    EXPECT_TRUE(Works()) << fixture;
  }
  std::filesystem::remove(m_folder.File("Halcyra - Live.mdb"));
  EXPECT_FALSE(Reopen());
  EXPECT_EQ(m_message, "Database file: \\Halcyra - Live.mdb is missing.");
  EXPECT_TRUE(Works());
}

TEST_F(OpeningTest, ReopeningUsesTheKindGivenLast) {
  Put("league.mdb");
  Put("league.mdb", "Halcyra - Setup.mdb");
  ASSERT_TRUE(Initialize(DBType::Setup));
  m_service->CloseDatabase();
  ASSERT_TRUE(Reopen());
  EXPECT_TRUE(IsFree("Halcyra - Live.mdb"));
  EXPECT_FALSE(IsFree("Halcyra - Setup.mdb"));
  ASSERT_TRUE(Initialize(DBType::Live));
  EXPECT_FALSE(IsFree("Halcyra - Live.mdb"));
  EXPECT_TRUE(IsFree("Halcyra - Setup.mdb")) << "dropping the last reference closes the file";
}

TEST_F(OpeningTest, CachesAreEmptiedOnlyWhenAskedAndOnlyWhenItOpens) {
  if (!jet::test::ReplacesOpenFiles()) GTEST_SKIP() << "a file that is open cannot be replaced here";
  Put("league.mdb");
  ASSERT_TRUE(Initialize());
  FillCaches();
  const auto held = m_service->Caches().teams;
  ASSERT_TRUE(Reopen(/*clearCache=*/false));
  EXPECT_EQ(FilledCaches(), 8);
  Put("league-damaged-empty.mdb");
  ASSERT_FALSE(Reopen(/*clearCache=*/true));
  EXPECT_EQ(FilledCaches(), 8);
  Put("league.mdb");
  ASSERT_TRUE(Reopen(/*clearCache=*/true));
  EXPECT_EQ(FilledCaches(), 0);
  EXPECT_TRUE(m_service->Caches().areAllSeasonsLoaded) << "stays as it is";
  EXPECT_EQ(held->Count(), 0) << "who holds a collection keeps it";
}

TEST_F(OpeningTest, ClosingTwiceIsHarmlessAndReopeningFollows) {
  m_service->CloseDatabase();
  Put("league.mdb");
  ASSERT_TRUE(Initialize());
  m_service->CloseDatabase();
  EXPECT_TRUE(IsFree("Halcyra - Live.mdb"));
  m_service->CloseDatabase();
  EXPECT_TRUE(Reopen());
  EXPECT_TRUE(Works());
}

TEST_F(OpeningTest, ErrorOfClosingReachesTheCaller) {
  Put("league.mdb");
  ASSERT_TRUE(Initialize());
  m_engine->onCall = [](const std::string& call) {
    if (call == "Database.Close") throw jet::Error(jet::ErrorNumber::DiskFull, "The disk is full.");
  };
  EXPECT_THROW(m_service->CloseDatabase(), jet::Error);
  EXPECT_TRUE(m_host->messages.empty());
  m_service.reset();  // releasing traps it, and closes the file anyway
  EXPECT_TRUE(IsFree("Halcyra - Live.mdb"));
}

TEST_F(OpeningTest, SecondServiceCannotOpenTheFileUntilTheFirstIsReleased) {
  Put("league.mdb");
  ASSERT_TRUE(Initialize());
  std::string words;
  try {
    jet::DBEngine().OpenDatabase(PathOf("Halcyra - Live.mdb"), true, false,
                                 HLServiceUtils::GetConnectString());
  } catch (const jet::Error& error) {
    EXPECT_EQ(error.Number(), jet::ErrorNumber::FileHeldExclusively);
    words = error.what();
  }
  DataService second(m_host);
  EXPECT_FALSE(second.Initialize(DBType::Live, m_message));
  EXPECT_EQ(m_message, words);
  EXPECT_TRUE(Works()) << "the first is not disturbed";

  const auto settings = m_service->GetSettings();
  m_service.reset();
  EXPECT_TRUE(second.Initialize(DBType::Live, m_message));
  settings->CurrentSeason(5);  // the settings outlive their service, which no longer listens
  EXPECT_EQ(settings->CurrentSeason(), 5);
}

}  // namespace
}  // namespace HLDataSrvc

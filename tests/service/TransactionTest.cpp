// Transactions of clients around operations, and clients that call the service while it works.

#include <functional>
#include <stdexcept>

#include "HLDataSrvc/ServiceDatabase.h"
#include "HLIData/Error.h"
#include "jet/Error.h"
#include "records/SettingInfo.h"
#include "tests/service/LeagueTest.h"

namespace HLDataSrvc {
namespace {

using namespace HLIData;
using test::Lines;

class TransactionTest : public test::LeagueTest {
 protected:
  TransactionTest() { Open(test::SmallLeague()); }

  void Contribute(std::int32_t money) { Season()->MoneyContribution(money); }
  std::string StoredContribution() {
    const auto rows = m_service->Database().OpenRecordset("select * from [season info] where id = 1");
    return rows->Fields("money contribution").Value().ToText();
  }
  bool AddManager(const std::string& name) {
    std::int32_t id = 0;
    std::shared_ptr<IManagerTmplInfo> manager;
    return m_service->UpdateManager(name, "Mx", id, manager, m_message);
  }
};

TEST_F(TransactionTest, StoresOperationsTogetherOrNotAtAll) {
  const test::Tables before = Stored();
  for (const bool raises : {false, true}) {
    const auto work = [&] {
      Contribute(77);
      EXPECT_TRUE(m_service->SaveCurrentSeasonInfo());
      EXPECT_TRUE(AddManager("Volk"));
      EXPECT_EQ(Stored(), before);
      if (raises) throw std::runtime_error("the client's");
      return false;
    };
    if (raises) {
      EXPECT_THROW(RunInTransaction(*m_service, work), std::runtime_error);
    } else {
      EXPECT_FALSE(RunInTransaction(*m_service, work));
    }
    EXPECT_EQ(Stored(), before);
    Restart();
    EXPECT_EQ(Season()->MoneyContribution(), 50);
  }

  // Ten deep; what an inner one rolls back is gone, the rest is stored with the outermost.
  const std::function<bool(int)> nest = [&](int depth) {
    Contribute(100 + depth);
    EXPECT_TRUE(m_service->SaveCurrentSeasonInfo());
    if (depth < 10) RunInTransaction(*m_service, [&] { return nest(depth + 1); });
    EXPECT_EQ(Stored(), before);
    return depth < 7;
  };
  EXPECT_TRUE(RunInTransaction(*m_service, [&] { return nest(1); }));
  EXPECT_EQ(StoredContribution(), "106");
  EXPECT_NE(Stored(), before);
}

// What an operation wrote before its error is part of the transaction, and goes with it.
TEST_F(TransactionTest, RollsBackWhatAFailedOperationHasWritten) {
  const test::Tables before = Stored();
  EXPECT_FALSE(RunInTransaction(*m_service, [&] {
    m_engine->onCall = [](const std::string& call) {
      if (call == "Recordset.AddNew") throw jet::Error(jet::ErrorNumber::DiskFull, "Full.");
    };
    const bool isSaved = m_service->SaveCurrentSeasonInfo();
    m_engine->onCall = nullptr;
    EXPECT_NE(Seen(), before) << "the prizes are deleted";
    return isSaved;
  }));
  EXPECT_EQ(Stored(), before);
  EXPECT_EQ(Boxes().size(), 1u);
}

TEST_F(TransactionTest, ShowsTwoErrorsInOneBoxIfNotEvenTheWrittenPartIsStored) {
  const test::Tables before = Stored();
  m_engine->onCall = [](const std::string& call) {
    if (call == "Recordset.AddNew") throw jet::Error(jet::ErrorNumber::DiskFull, "No row.");
    if (call == "Database.CommitTrans") throw jet::Error(jet::ErrorNumber::ReadFailed, "No commit.");
  };
  EXPECT_FALSE(m_service->SaveCurrentSeasonInfo());
  m_engine->onCall = nullptr;
  EXPECT_EQ(Boxes(), Lines{"Error in saving season info.\r\nNo row. No commit."});
  EXPECT_EQ(Stored(), before);
}

TEST_F(TransactionTest, StoresNothingIfTheDatabaseIsClosedInside) {
  const test::Tables before = Stored();
  for (const bool closes : {true, false}) {
    const auto work = [&] {
      EXPECT_TRUE(AddManager("Volk"));
      if (closes) m_service->CloseDatabase();
      // Whatever was written after a reopening would not be part of the transaction.
      EXPECT_FALSE(m_service->OpenDatabase(true, m_message));
      EXPECT_EQ(m_message, "The database cannot be opened while a transaction is open.");
      EXPECT_FALSE(Initialize());
      AddManager("Wend");
      return closes;
    };
    if (closes) {
      EXPECT_THROW(RunInTransaction(*m_service, work), jet::Error);
    } else {
      EXPECT_FALSE(RunInTransaction(*m_service, work));
    }
    EXPECT_TRUE(m_service->OpenDatabase(true, m_message)) << m_message;
    EXPECT_EQ(Stored(), before);
    Restart();
  }
  m_service->CloseDatabase();
  EXPECT_THROW(RunInTransaction(*m_service, [] { return true; }), HLIData::Error);
}

TEST_F(TransactionTest, ANewServiceTakesOverTheOpenDatabase) {
  EXPECT_FALSE(RunInTransaction(*m_service, [&] {
    EXPECT_TRUE(AddManager("Volk"));
    m_service->CurrentSeasonYear(2023);
    return false;
  }));
  const auto renewed = std::dynamic_pointer_cast<DataService>(RenewService(*m_service));
  EXPECT_FALSE(IsFree("Halcyra - Live.mdb"));
  EXPECT_EQ(m_service->GetPlayerPositions(), nullptr) << "it has no database any more";
  EXPECT_EQ(Boxes().size(), 1u);
  m_service = renewed;
  EXPECT_EQ(m_service->CurrentSeasonID(), 1);
  EXPECT_TRUE(AddManager("Wend"));
  EXPECT_EQ(Stored().at("manager info").back(), "4|Mx|Wend");
}

TEST_F(TransactionTest, AClientMayReleaseTheServiceInAnEvent) {
  class Releasing final : public ISettingInfoEvents {
   public:
    explicit Releasing(std::shared_ptr<DataService>& service) : m_service(service) {}
    void SettingsChanged() override { m_service.reset(); }

   private:
    std::shared_ptr<DataService>& m_service;
  };
  const auto settings = m_service->Settings();
  Releasing releasing(m_service);
  settings->AddObserver(releasing);
  DataService& service = *m_service;
  service.CurrentSeasonYear(2023);
  settings->RemoveObserver(releasing);
  EXPECT_EQ(m_service, nullptr);
  m_service = std::make_shared<DataService>(m_host);
  ASSERT_TRUE(Initialize());
  EXPECT_EQ(m_service->CurrentSeasonID(), 2) << "it was saved before the service went";
}

// A record of the client's that reopens the database, more often than addresses stay unused.
TEST_F(TransactionTest, ARecordThatReopensTheDatabaseFailsTheOperationWhole) {
  class Reopening final : public IManagerInfo {
   public:
    explicit Reopening(std::function<void()> work) : m_work(std::move(work)) {}
    std::int32_t ID() const override {
      m_work();
      return 1;
    }
    std::string FirstName() const override { return {}; }
    std::string LastName() const override { return {}; }
    std::int32_t Rank() const override { return 1; }
    void Rank(std::int32_t) override {}
    bool IsFeePaid() const override { return false; }
    void IsFeePaid(bool) override {}
    std::shared_ptr<IManagerTmplInfo> ManagerTmpl() const override { return {}; }

   private:
    std::function<void()> m_work;
  };
  const test::Tables before = Stored();
  const auto season = Season();
  const auto player = m_service->Search(SearchType::PlayersAndTeams, "Moe", false, false)->Item(1);
  season->UpdateDraft(player, 3, season->Managers()->Item(1));
  season->UpdateDraft(std::dynamic_pointer_cast<IPickable>(m_service->GetTeams()->Item("K2")), 4,
                      std::make_shared<Reopening>([&] {
                        for (int i = 0; i < 8; ++i) {
                          m_service->CloseDatabase();
                          EXPECT_TRUE(m_service->OpenDatabase(false, m_message));
                        }
                      }));
  EXPECT_FALSE(m_service->SaveDrafts());
  EXPECT_EQ(Stored(), before);
  EXPECT_TRUE(Pick(*season, 3).IsChanged());
}

TEST_F(TransactionTest, TextColumnLengthIsThatOfTheFile) {
  EXPECT_EQ(TextColumnLength(*m_service, "manager info", "last name"), 50u);
  EXPECT_EQ(TextColumnLength(*m_service, "manager info", "id"), std::nullopt);
  EXPECT_EQ(TextColumnLength(*m_service, "manager info", "nothing"), std::nullopt);
  EXPECT_EQ(TextColumnLength(*m_service, "nothing", "id"), std::nullopt);
}

/// Does something with the service while the settings change.
struct Meddler final : ISettingInfoEvents {
  void SettingsChanged() override {
    if (!std::exchange(m_isCalled, true)) work();
  }
  std::function<void()> work;
  bool m_isCalled = false;
};

TEST_F(TransactionTest, HandlersOfTheSettingsMaySaveReopenAndClose) {
  const std::vector<std::function<void()>> works = {
      [&] { EXPECT_TRUE(m_service->SaveSettings()); },
      [&] { EXPECT_TRUE(m_service->OpenDatabase(true, m_message)) << m_message; },
      [&] { m_service->CloseDatabase(); },
      [&] { EXPECT_TRUE(RunInTransaction(*m_service, [&] { return AddManager("Volk"); })); }};
  for (std::size_t i = 0; i < works.size(); ++i) {
    SCOPED_TRACE(i);
    Open(test::SmallLeague());
    Meddler meddler;
    meddler.work = [&] {
      EXPECT_TRUE(i == 2 || m_service->Database().TransactionDepth() == 0);
      works[i]();
    };
    m_service->Settings()->AddObserver(meddler);
    m_service->CurrentSeasonYear(2030);
    m_service->Settings()->RemoveObserver(meddler);
    EXPECT_EQ(Boxes().size(), i == 2 ? 1u : 0u) << "closed, the settings cannot be saved";
    EXPECT_EQ(m_service->CurrentSeasonID(), 3);
    Restart();
    EXPECT_EQ(m_service->CurrentSeasonID(), i == 2 ? 1 : 3);
    EXPECT_EQ(m_service->GetAllSeasons()->Count(), 3);
  }
}

// A box appears after the commit: its handler sees what was written before the error, and no
// transaction.
TEST_F(TransactionTest, MessageBoxesMayCallTheService) {
  class CallingHost final : public Host {
   public:
    explicit CallingHost(std::shared_ptr<Host> host) : m_host(std::move(host)) {}
    std::string ApplicationFolder() const override { return m_host->ApplicationFolder(); }
    std::string FindFile(const std::string& path) const override { return m_host->FindFile(path); }
    std::chrono::year_month_day Today() const override { return m_host->Today(); }
    void ShowMessage(const std::string&, const std::string&) override { work(); }
    std::function<void()> work;

   private:
    std::shared_ptr<Host> m_host;
  };
  const auto host = std::make_shared<CallingHost>(m_host);
  m_service.reset();
  m_service = std::make_shared<DataService>(host);
  ASSERT_TRUE(Initialize());
  const auto season = Season();
  const auto player = m_service->Search(SearchType::PlayersAndTeams, "Moe", false, false)->Item(1);
  season->UpdateDraft(player, 3, season->Managers()->Item(1));
  season->UpdateDraft(std::dynamic_pointer_cast<IPickable>(m_service->GetTeams()->Item("K2")), 4, nullptr);
  int boxes = 0;
  host->work = [&] {
    ++boxes;
    EXPECT_EQ(m_service->Database().TransactionDepth(), 0u);
    EXPECT_FALSE(Pick(*season, 3).IsChanged());
    EXPECT_TRUE(Pick(*season, 4).IsChanged());
    EXPECT_NE(std::find(Stored().at("draft info").begin(), Stored().at("draft info").end(), "1|3|2|2|"),
              Stored().at("draft info").end());
    season->RemoveDraft(4);
    Pick(*season, 4).Manager(season->Managers()->Item(1));
    EXPECT_TRUE(m_service->SaveDrafts());
  };
  EXPECT_FALSE(m_service->SaveDrafts()) << "pick 4 has no manager";
  EXPECT_EQ(boxes, 1);
  EXPECT_FALSE(Pick(*season, 4).IsChanged());
}

}  // namespace
}  // namespace HLDataSrvc

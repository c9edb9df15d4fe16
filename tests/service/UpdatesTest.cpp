#include "HLIData/Error.h"
#include "HLIData/IPlayerInfo.h"
#include "jet/Error.h"
#include "records/RecordKey.h"
#include "tests/service/ServiceTest.h"

namespace HLDataSrvc {
namespace {

using namespace HLIData;

class UpdatesTest : public test::ServiceTest {
 protected:
  UpdatesTest() {
    Put("league.mdb");
    EXPECT_TRUE(Initialize());
    m_engine->calls.clear();
  }

  bool UpdatePlayer(const std::string& last, const std::string& first, std::int32_t position,
                    std::int32_t team, bool isRetired = false) {
    m_message = "before";
    return m_service->UpdatePlayer(last, first, position, team, isRetired, m_id, m_player, m_message);
  }
  bool UpdatePosition(const std::string& desc, const std::string& abbr) {
    m_message = "before";
    return m_service->UpdatePosition(desc, abbr, m_id, m_position, m_message);
  }
  bool UpdateManager(const std::string& last, const std::string& first) {
    m_message = "before";
    return m_service->UpdateManager(last, first, m_id, m_manager, m_message);
  }
  bool UpdatePrize(const std::string& desc, std::int32_t type) {
    m_message = "before";
    return m_service->UpdatePrize(desc, type, m_id, m_prize, m_message);
  }

  /// The row with an identifier, its values with "|" between, as an engine of our own reads it; closes the
  /// service's database.
  std::string Stored(const std::string& table, std::int32_t id) {
    m_service->CloseDatabase();
    const auto database = jet::DBEngine().OpenDatabase(PathOf("Halcyra - Live.mdb"), true, true,
                                                       HLServiceUtils::GetConnectString());
    const auto rows =
        database->OpenRecordset("select * from [" + table + "] where id = " + std::to_string(id));
    std::string text;
    for (std::size_t i = 0; !rows->Eof() && i < rows->FieldCount(); ++i)
      text += (i > 0 ? "|" : "") + rows->Fields(i).Value().ToText();
    return text;
  }

  /// Lets the first statement or write of a kind on a table fail.
  void Fail(const std::string& call) {
    m_engine->onCall = [call](const std::string& made) {
      if (made == call) throw jet::Error(jet::ErrorNumber::ReadFailed, "The disk is on fire.");
    };
  }

  std::int32_t m_id = 0;
  std::shared_ptr<IPlayerInfo> m_player;
  std::shared_ptr<IPositionInfo> m_position;
  std::shared_ptr<IManagerTmplInfo> m_manager;
  std::shared_ptr<IPrizeTmplInfo> m_prize;
};

TEST_F(UpdatesTest, WhatIsMissingIsToldInOrderAndNothingHappens) {
  const auto told = [&](bool result) { return result ? "written" : m_message; };
  EXPECT_EQ(told(UpdatePlayer("", "", 0, 0)), "First name is required.");
  EXPECT_EQ(told(UpdatePlayer("", "Ann", 0, 0)), "Last name is required.");
  EXPECT_EQ(told(UpdatePlayer("Lee", "Ann", 0, 0)), "Player position is required.");
  EXPECT_EQ(told(UpdatePlayer("Lee", "Ann", 1, 0)), "Player team is required.");
  EXPECT_EQ(told(UpdatePosition("", "")), "Description is required.");
  EXPECT_EQ(told(UpdatePosition("Back", "")), "Abbreviation is required.");
  EXPECT_EQ(told(UpdateManager("", "")), "First name is required.");
  EXPECT_EQ(told(UpdateManager("", "Ann")), "Last name is required.");
  EXPECT_EQ(told(UpdatePrize("", 0)), "Description is required.");
  EXPECT_EQ(told(UpdatePrize("Cup", 0)), "Type of prize is required.");
  EXPECT_EQ(m_id, 0);
  EXPECT_TRUE(m_engine->calls.empty());
  EXPECT_TRUE(m_host->messages.empty());
}

TEST_F(UpdatesTest, NewRecordsTakeTheNextIdentifiersAndEnterTheCaches) {
  ASSERT_TRUE(UpdatePlayer("Lee", " ", 1, 1, true)) << "a name of blanks will do";
  EXPECT_EQ(m_message, "before");
  const std::int32_t first = m_id;
  EXPECT_EQ(m_player->ID(), first);
  EXPECT_EQ(m_player->Position(), m_service->GetPlayerPositions()->Item("K1"));
  EXPECT_EQ(m_service->Caches().players->Item(RecordKey(first)), m_player);
  m_id = 0;
  ASSERT_TRUE(UpdatePlayer("Lee", "Bob", 1, 1));
  EXPECT_EQ(m_id, first + 1);

  m_id = 0;
  ASSERT_TRUE(UpdatePosition("Long snapper", "LSN"));
  const std::int32_t position = m_id;
  EXPECT_EQ(m_service->GetPlayerPositions()->Item(RecordKey(position)), m_position);
  m_id = 0;
  ASSERT_TRUE(UpdateManager("Lee", "Ann"));
  const std::int32_t manager = m_id;
  EXPECT_EQ(m_service->Caches().managers->Item(RecordKey(manager)), m_manager);
  m_id = 0;
  ASSERT_TRUE(UpdatePrize("Cup", 1));
  EXPECT_EQ(m_service->GetPrizeTmpls()->Item(RecordKey(m_id)), m_prize);
  EXPECT_EQ(m_prize->PrizeType(), m_service->GetPrizeTypes()->Item("K1"));

  EXPECT_EQ(Stored("player info", first), std::to_string(first) + "| |Lee|1|1|True");
  EXPECT_EQ(Stored("position info", position), std::to_string(position) + "|LSN|Long snapper");
  EXPECT_EQ(Stored("manager info", manager), std::to_string(manager) + "|Ann|Lee");
  EXPECT_EQ(Stored("prize info", m_id), std::to_string(m_id) + "|Cup|1");
}

TEST_F(UpdatesTest, FirstRecordsOfAnEmptyLeagueGetIdentifierOne) {
  m_service->CloseDatabase();
  Put("league-blank.mdb");
  ASSERT_TRUE(m_service->OpenDatabase(true, m_message));
  ASSERT_TRUE(UpdatePosition("Back", "B"));
  EXPECT_EQ(m_id, 1);
  m_id = 0;
  ASSERT_TRUE(UpdateManager("Lee", "Ann"));
  EXPECT_EQ(m_id, 1);
}

TEST_F(UpdatesTest, ChangeOfAStoredRecordIsSeenByAllWhoHaveIt) {
  const auto team = m_service->GetTeams()->Item(3);
  m_id = 17;
  ASSERT_TRUE(UpdatePlayer("New", "Name", 2, team->ID()));
  EXPECT_EQ(m_id, 17);
  EXPECT_EQ(m_player->Team(), team);
  const auto before = m_player;
  ASSERT_TRUE(UpdatePlayer("Newer", "Name", -1, team->ID())) << "a position below 0 leaves the one it has";
  EXPECT_EQ(m_player, before);
  EXPECT_EQ(before->LastName(), "Newer");
  EXPECT_FALSE(UpdatePlayer("Newest", "Name", 2, 0));
  EXPECT_EQ(m_message, "Player team is required.");
  EXPECT_EQ(Stored("player info", 17), "17|Name|Newer|2|" + std::to_string(team->ID()) + "|False");
}

TEST_F(UpdatesTest, WhatDoesNotExistEndsInABareFalse) {
  for (const std::int32_t id : {-5, 999999, INT32_MAX, INT32_MIN}) {
    m_id = id;
    EXPECT_FALSE(UpdatePlayer("Lee", "Ann", 1, 1));
    EXPECT_FALSE(UpdatePosition("Back", "B"));
    EXPECT_FALSE(UpdateManager("Lee", "Ann"));
    EXPECT_FALSE(UpdatePrize("Cup", 1));
    EXPECT_EQ(m_message, "before");
  }
  m_id = 0;
  EXPECT_FALSE(UpdatePlayer("Lee", "Ann", 999, 1));
  m_id = 0;
  EXPECT_FALSE(UpdatePrize("Cup", -1));
  EXPECT_EQ(m_message, "before");
  EXPECT_TRUE(m_host->messages.empty());
}

TEST_F(UpdatesTest, FailedWriteLeavesTheChangeInMemory) {
  m_id = 17;
  ASSERT_TRUE(UpdatePlayer("Old", "Name", 1, 1));
  Fail("Recordset.Update");
  EXPECT_FALSE(UpdatePlayer("New", "Name", 1, 1));
  EXPECT_EQ(m_message, "before");
  EXPECT_EQ(m_player->LastName(), "New");
  m_id = 0;
  EXPECT_FALSE(UpdatePosition("Back", "B"));
  EXPECT_GT(m_id, 0);
  EXPECT_EQ(m_position, nullptr);
  EXPECT_EQ(m_service->GetPlayerPositions()->Item(RecordKey(m_id))->Desc(), "Back");
  m_engine->onCall = nullptr;
  EXPECT_TRUE(m_host->messages.empty());
  EXPECT_EQ(Stored("player info", 17), "17|Name|Old|1|1|False");
  EXPECT_EQ(Stored("position info", m_id), "");
}

TEST_F(UpdatesTest, ValueThatDoesNotFitItsColumnIsNotWritten) {
  EXPECT_FALSE(UpdateManager(std::string(300, 'x'), "Ann"));
  EXPECT_EQ(m_message, "before");
  EXPECT_EQ(Stored("manager info", m_id), "");
}

class DeletionTest : public UpdatesTest {
 protected:
  bool Delete(DeleteType type, std::int32_t id) {
    m_message.clear();
    return m_service->Delete(type, id, m_message);
  }
  std::vector<std::byte> Bytes() {
    m_service->CloseDatabase();
    auto bytes = jet::test::ReadWholeFile(m_folder.File("Halcyra - Live.mdb"));
    EXPECT_TRUE(m_service->OpenDatabase(false, m_message));
    return bytes;
  }
};

TEST_F(DeletionTest, IdentifierZeroNeverReachesTheDatabase) {
  EXPECT_FALSE(Delete(DeleteType::Player, 0));
  EXPECT_EQ(m_message, "ID is required.");
  EXPECT_TRUE(m_engine->calls.empty());
}

TEST_F(DeletionTest, WhatIsNotThereOrHasNoNameIsTold) {
  for (const std::int32_t id : {-1, 999999, INT32_MAX, INT32_MIN}) {
    EXPECT_FALSE(Delete(DeleteType::Manager, id));
    EXPECT_EQ(m_message, "Record not found.");
  }
  EXPECT_FALSE(Delete(DeleteType{5}, 1));
  EXPECT_TRUE(m_message.starts_with("Error in deleting record.\r\n")) << m_message;
  m_service->CloseDatabase();
  EXPECT_FALSE(Delete(DeleteType::Player, 1));
  EXPECT_EQ(m_message, "Error in deleting record.\r\nThe database is not open.");
  EXPECT_TRUE(m_host->messages.empty());
}

// A player drafted; managers who play, drafted or won; a prize put up or won; a position of players or teams.
TEST_F(DeletionTest, WhatOthersReferToStaysAndTheFileIsUntouched) {
  const std::vector<std::pair<DeleteType, std::int32_t>> referred = {
      {DeleteType::Player, 2880}, {DeleteType::Manager, 20}, {DeleteType::Manager, 1},
      {DeleteType::Prize, 2},     {DeleteType::Position, 1}, {DeleteType::Position, 2}};
  const auto before = Bytes();
  for (const auto& [type, id] : referred) {
    EXPECT_FALSE(Delete(type, id));
    EXPECT_EQ(m_message, "The record cannot be deleted because it is included in other related records.");
  }
  EXPECT_TRUE(Bytes() == before);
}

TEST_F(DeletionTest, EachReferringTableAloneIsEnough) {
  m_service->CloseDatabase();
  Put("league-blank.mdb");
  const auto run = [&](const std::string& table,
                       const std::vector<std::pair<std::string, std::int32_t>>& row) {
    const auto database = jet::DBEngine().OpenDatabase(PathOf("Halcyra - Live.mdb"), true, false,
                                                       HLServiceUtils::GetConnectString());
    const auto rows = database->OpenRecordset("select * from [" + table + "]");
    rows->AddNew();
    for (const auto& [column, value] : row)
      rows->Fields(column).Value(value);
    rows->Update();
    database->Close();
  };
  const auto empty = [&](const std::string& table) {
    const auto database = jet::DBEngine().OpenDatabase(PathOf("Halcyra - Live.mdb"), true, false,
                                                       HLServiceUtils::GetConnectString());
    const auto rows = database->OpenRecordset("select * from [" + table + "]");
    rows->Delete();
    database->Close();
  };
  for (const char* table : {"position info", "manager info", "season info"})
    run(table, {{"id", 1}});
  run("prize type info", {{"type id", 1}});
  run("prize info", {{"id", 1}, {"type id", 1}});
  const std::vector<std::tuple<DeleteType, std::string, std::vector<std::pair<std::string, std::int32_t>>>>
      rows = {
          {DeleteType::Position, "player info", {{"id", 1}, {"position id", 1}}},
          {DeleteType::Position, "team info", {{"id", 1}, {"position id", 1}}},
          {DeleteType::Manager, "playing info", {{"season id", 1}, {"manager id", 1}}},
          {DeleteType::Manager, "draft info", {{"season id", 1}, {"draft no", 1}, {"manager id", 1}}},
          {DeleteType::Manager, "winning info", {{"id", 1}, {"season id", 1}, {"manager id", 1}}},
          {DeleteType::Prize, "winning info", {{"id", 1}, {"season id", 1}, {"prize id", 1}}},
          {DeleteType::Prize, "money distribution info", {{"season id", 1}, {"prize id", 1}}},
      };
  for (const auto& [type, table, row] : rows) {
    run(table, row);
    ASSERT_TRUE(m_service->OpenDatabase(true, m_message)) << m_message;
    EXPECT_FALSE(Delete(type, 1)) << table;
    EXPECT_EQ(m_message, "The record cannot be deleted because it is included in other related records.");
    m_service->CloseDatabase();
    empty(table);
  }
}

TEST_F(DeletionTest, UnreferredRecordGoesFromFileAndCache) {
  const auto positions = m_service->GetPlayerPositions();
  const std::int32_t count = positions->Count();
  EXPECT_TRUE(Delete(DeleteType::Position, 12));
  EXPECT_EQ(m_message, "");
  EXPECT_EQ(m_service->GetPlayerPositions(), positions);
  EXPECT_EQ(positions->Count(), count - 1);
  EXPECT_EQ(positions->Find("K12"), nullptr);
  ASSERT_NE(m_service->GetPrizeTmpls()->Find("K19"), nullptr);
  EXPECT_TRUE(Delete(DeleteType::Prize, 19));
  EXPECT_EQ(m_service->GetPrizeTmpls()->Find("K19"), nullptr);
  ASSERT_TRUE(UpdateManager("Lee", "Ann"));
  EXPECT_TRUE(Delete(DeleteType::Manager, m_id));
  EXPECT_EQ(m_service->Caches().managers->Find(RecordKey(m_id)), nullptr);
  EXPECT_FALSE(Delete(DeleteType::Manager, m_id));
  EXPECT_EQ(Stored("position info", 12), "");
  EXPECT_EQ(Stored("prize info", 19), "");
}

TEST_F(DeletionTest, RecordThatIsNotCachedRaisesAfterItsRowIsGone) {
  ASSERT_TRUE(UpdateManager("Lee", "Ann"));
  m_service->Caches().managers.reset();
  EXPECT_THROW(Delete(DeleteType::Manager, m_id), Error);
  EXPECT_EQ(m_message, "");
  EXPECT_FALSE(Delete(DeleteType::Manager, m_id));
  EXPECT_EQ(m_message, "Record not found.");
}

TEST_F(DeletionTest, AnyFailureOfTheDeletionReadsAsAReference) {
  m_service->GetPlayerPositions();
  Fail("Recordset.Delete");
  EXPECT_FALSE(Delete(DeleteType::Position, 12));
  EXPECT_EQ(m_message, "The record cannot be deleted because it is included in other related records.");
  EXPECT_NE(m_service->GetPlayerPositions()->Find("K12"), nullptr);
}

}  // namespace
}  // namespace HLDataSrvc

#include <algorithm>
#include <map>
#include <memory>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "jet/Check.h"
#include "tests/jet/dao/Databases.h"
#include "tests/support/DesktopObjects.h"

namespace jet {
namespace {

using test::ExpectError;

class DBEngineTest : public test::LeagueTest {
 protected:
  DBEngineTest() { database.reset(); }

  std::shared_ptr<Database> OpenWith(const std::string& connect, const std::string& name = "league.mdb") {
    EngineOptions options;
    options.files = files;
    return DBEngine(options).OpenDatabase(name, true, false, connect);
  }

  /// More than the file has space for without growing.
  static void AddPrizeTypes(Database& league) {
    const auto rows = league.OpenRecordset("select * from [prize type info]");
    for (std::int32_t i = 0; i < 400; ++i) {
      rows->AddNew();
      rows->Fields("type id").Value(1000 + i);
      rows->Fields("type name").Value(std::string(40, 'x') + std::to_string(i));
      rows->Update();
    }
  }
};

TEST_F(DBEngineTest, PasswordsCompareExactly) {
  for (const char* connect :
       {";pwd=talwep83rn", "pwd=talwep83rn", "MS Jet;PWD=talwep83rn;", "a=b; Pwd =talwep83rn"})
    EXPECT_TRUE(OpenWith(connect)->IsOpen()) << connect;
  for (const char* connect : {"", ";", ";pwd=", ";pwd=TALWEP83RN", ";pwd=talwep83rn ", ";pwd= talwep83rn",
                              ";pwd=talwep83r", "talwep83rn"}) {
    ExpectError(ErrorNumber::PasswordRejected, [&] { OpenWith(connect); });
  }
  // The file was let go each time.
  EXPECT_TRUE(OpenWith(";pwd=talwep83rn")->IsOpen());
}

TEST_F(DBEngineTest, FileWithoutPasswordOpensWithAny) {
  memory->Put("open.mdb", test::ReadWholeFile(test::FixturePath("league-no-password.mdb")));
  EXPECT_TRUE(OpenWith("", "open.mdb")->IsOpen());
  EXPECT_TRUE(OpenWith(";pwd=whatever", "open.mdb")->IsOpen());
}

TEST_F(DBEngineTest, FilesThatAreNoDatabases) {
  struct Case {
    const char* fixture;
    ErrorNumber number;
  };
  for (const Case& bad : {Case{"league-damaged-empty.mdb", ErrorNumber::NotADatabase},
                          Case{"league-damaged-magic.mdb", ErrorNumber::NotADatabase},
                          Case{"league-damaged-jet3.mdb", ErrorNumber::NotADatabase},
                          Case{"league-damaged-truncated.mdb", ErrorNumber::DamagedFile},
                          Case{"league-damaged-catalog.mdb", ErrorNumber::DamagedFile},
                          Case{"league-damaged-password.mdb", ErrorNumber::PasswordRejected}}) {
    SCOPED_TRACE(bad.fixture);
    memory->Put("bad.mdb", test::ReadWholeFile(test::FixturePath(bad.fixture)));
    ExpectError(bad.number, [&] { OpenWith(test::kFixtureConnect, "bad.mdb"); });
  }
  ExpectError(ErrorNumber::FileNotFound, [&] { OpenWith("", "nowhere.mdb"); });

  std::vector<std::byte> newer = test::ReadWholeFile(test::FixturePath("league.mdb"));
  newer[0x14] = std::byte{2};
  memory->Put("newer.mdb", newer);
  const auto open = [&] { OpenWith("", "newer.mdb"); };
  EXPECT_NE(ExpectError(ErrorNumber::NotADatabase, open).find("ACE"), std::string::npos);
  constexpr std::string_view kName = "Standard ACE DB";
  std::transform(kName.begin(), kName.end(), newer.begin() + 4,
                 [](char c) { return static_cast<std::byte>(c); });
  memory->Put("newer.mdb", newer);
  EXPECT_NE(ExpectError(ErrorNumber::NotADatabase, open).find("ACE"), std::string::npos);
}

TEST_F(DBEngineTest, EveryObjectIsListedByItsKind) {
  database.reset();
  test::AddDesktopObjects(files->Open("league.mdb", {}));
  const auto league = OpenWith(test::kFixtureConnect);
  std::map<std::string, ObjectInfo> objects;
  for (const ObjectInfo& object : league->Objects())
    objects.emplace(object.name, object);
  EXPECT_EQ(objects["best players"].kind, ObjectKind::Query);
  EXPECT_EQ(
      objects["best players"].definition,
      "select distinct p.[last name], [team info].abbr as team from [player info] as p inner join "
      "[team info] on p.[team id] = [team info].id where p.[is retired] = False order by p.[last name] desc");
  EXPECT_EQ(objects["far players"].kind, ObjectKind::LinkedTable);
  EXPECT_EQ(objects["far players"].definition, "players in C:\\far.mdb");
  EXPECT_EQ(objects["Draft form"].kind, ObjectKind::Form);
  EXPECT_EQ(objects["MSysAccessObjects"].kind, ObjectKind::SystemTable);
  EXPECT_EQ(objects["player info"].kind, ObjectKind::Table);
  const std::string sentence =
      ExpectError(ErrorNumber::UnknownTable, [&] { league->OpenRecordset("select * from [Far Players]"); });
  EXPECT_NE(sentence.find("'far players' is a linked table: players in C:"), std::string::npos) << sentence;
}

TEST_F(DBEngineTest, ATornLastPageIsDamage_OnlyIfItIsInUse) {
  const std::vector<std::byte> sound = test::ReadWholeFile(test::FixturePath("league.mdb"));
  std::vector<std::byte> bytes = sound;
  bytes.resize(sound.size() + 1024, std::byte{0xA5});
  memory->Put("torn.mdb", bytes);
  auto torn = OpenWith(test::kFixtureConnect, "torn.mdb");
  EXPECT_TRUE(torn->Check().findings.empty());
  torn->Close();
  EXPECT_EQ(memory->Get("torn.mdb"), bytes) << "reading changes nothing";
  torn = OpenWith(test::kFixtureConnect, "torn.mdb");
  AddPrizeTypes(*torn);
  torn->Close();
  EXPECT_GT(memory->Get("torn.mdb").size(), bytes.size());
  EXPECT_TRUE(OpenWith(test::kFixtureConnect, "torn.mdb")->Check().findings.empty());

  bytes = sound;
  bytes.resize(sound.size() - 3072);
  memory->Put("torn.mdb", bytes);
  ExpectError(ErrorNumber::DamagedFile, [&] { OpenWith(test::kFixtureConnect, "torn.mdb"); });
}

TEST_F(DBEngineTest, AMapOfFreePagesThatCannotBeRead_StopsChangesOnly) {
  std::vector<std::byte> bytes = test::ReadWholeFile(test::FixturePath("league.mdb"));
  bytes[2 * 4096 - 69] = std::byte{0x07};  // a kind of map that is not known
  memory->Put("map.mdb", bytes);
  const auto league = OpenWith(test::kFixtureConnect, "map.mdb");
  EXPECT_FALSE(league->OpenRecordset("select * from [prize type info]")->Eof());
  ExpectError(ErrorNumber::DamagedFile, [&] { AddPrizeTypes(*league); });
  EXPECT_FALSE(league->Check().findings.empty());
}

TEST_F(DBEngineTest, DatabaseClosesWithItsLastReference) {
  auto opened = Open();
  ExpectError(ErrorNumber::FileHeldExclusively, [&] { Open(); });
  const auto rows = opened->OpenRecordset("select * from [player info]");
  opened.reset();
  EXPECT_TRUE(Open()->IsOpen());
  ExpectError(ErrorNumber::ObjectClosed, [&] { rows->Eof(); });
}

TEST_F(DBEngineTest, NothingButClosingWorksOnAClosedDatabase) {
  const auto opened = Open();
  const auto rows = opened->OpenRecordset("select * from [player info]");
  const auto snapshot = opened->OpenRecordset("select max(id) from [player info]");
  Field& field = rows->Fields("id");
  field.Value();
  opened->Close();
  opened->Close();
  EXPECT_FALSE(opened->IsOpen());
  EXPECT_EQ(opened->Name(), "league.mdb");
  ExpectError(ErrorNumber::ObjectClosed, [&] { opened->OpenRecordset("select * from [player info]"); });
  ExpectError(ErrorNumber::ObjectClosed, [&] { opened->Tables(); });
  ExpectError(ErrorNumber::ObjectClosed, [&] { opened->BeginTrans(); });
  ExpectError(ErrorNumber::ObjectClosed, [&] { opened->SetPassword("x"); });
  ExpectError(ErrorNumber::ObjectClosed, [&] { opened->Check(); });
  ExpectError(ErrorNumber::ObjectClosed, [&] { rows->MoveNext(); });
  ExpectError(ErrorNumber::ObjectClosed, [&] { rows->AddNew(); });
  ExpectError(ErrorNumber::ObjectClosed, [&] { field.Value(); });
  ExpectError(ErrorNumber::ObjectClosed, [&] { snapshot->Fields(0); });
  rows->Close();
  EXPECT_TRUE(Open()->IsOpen());
}

TEST_F(DBEngineTest, ReadOnlyDatabasesCannotBeChanged) {
  const std::vector<std::byte> before = memory->Get("league.mdb");
  const auto opened = Open(/*readOnly=*/true);
  EXPECT_TRUE(opened->IsReadOnly());
  const auto rows = opened->OpenRecordset("select * from [player info]");
  EXPECT_FALSE(rows->Updatable());
  ExpectError(ErrorNumber::CannotUpdate, [&] { rows->AddNew(); });
  ExpectError(ErrorNumber::CannotUpdate, [&] { rows->Edit(); });
  ExpectError(ErrorNumber::CannotUpdate, [&] { rows->Delete(); });
  ExpectError(ErrorNumber::CannotUpdate, [&] { rows->Fields("id").Value(1); });
  ExpectError(ErrorNumber::CannotUpdate, [&] { opened->CreateTable({}); });
  opened->BeginTrans();
  ExpectError(ErrorNumber::CannotUpdate, [&] { rows->AddNew(); });
  opened->CommitTrans();
  opened->Close();
  EXPECT_EQ(memory->Get("league.mdb"), before);
}

TEST_F(DBEngineTest, CreatedDatabasesOpenAgain) {
  for (const bool encode : {false, true}) {
    const std::string name = encode ? "encoded.mdb" : "plain.mdb";
    EngineOptions options;
    options.files = files;
    const auto made = DBEngine(options).CreateDatabase(name, {.password = "geheim", .encode = encode});
    TableSpec table;
    table.name = "things";
    table.columns = {test::MakeColumn("id", ColumnType::Long),
                     test::MakeColumn("name", ColumnType::Text, 50)};
    made->CreateTable(table);
    auto rows = made->OpenRecordset("select * from things");
    rows->AddNew();
    rows->Fields("id").Value("1");
    rows->Fields("name").Value("Ärmel");
    rows->Update();
    made->Close();
    ExpectError(ErrorNumber::ObjectExists, [&] { DBEngine(options).CreateDatabase(name); });
    ExpectError(ErrorNumber::PasswordRejected, [&] { OpenWith("", name); });
    const auto opened = OpenWith(";pwd=geheim", name);
    EXPECT_EQ(opened->OpenRecordset("select name from things where id = 1")->Fields(0).Value(),
              Value("Ärmel"));
    EXPECT_TRUE(opened->Check().findings.empty());
    opened->SetPassword("");
    opened->Close();
    EXPECT_EQ(OpenWith("", name)->Table("THINGS").rowCount, 1U);
  }
}

TEST_F(DBEngineTest, CreationThatFailsLeavesNoFile) {
  EngineOptions options;
  options.files = files;
  ExpectError(ErrorNumber::InvalidDefinition,
              [&] { DBEngine(options).CreateDatabase("new.mdb", {.password = std::string(21, 'x')}); });
  EXPECT_FALSE(memory->Exists("new.mdb"));
  files->FailOnce(test::FileOperation::Write, 3);
  ExpectError(ErrorNumber::ReadFailed, [&] { DBEngine(options).CreateDatabase("new.mdb"); });
  EXPECT_FALSE(memory->Exists("new.mdb"));
}

TEST_F(DBEngineTest, SchemaIsTold) {
  const auto opened = Open();
  const std::vector<TableInfo> tables = opened->Tables();
  EXPECT_EQ(tables.size(), 16U);
  EXPECT_EQ(tables.front().name, "draft info");
  const TableInfo season = opened->Table("Season Info");
  EXPECT_EQ(season.rowCount, 12U);
  EXPECT_EQ(season.columns.at(1).defaultValue, "0");
  EXPECT_EQ(opened->Relations().size(), 15U);
  ExpectError(ErrorNumber::UnknownTable, [&] { opened->Table("nothing"); });
}

struct Recorder final : CallObserver {
  void OnCall(const char* call, const std::string& detail) override {
    calls.push_back(detail.empty() ? call : std::string(call) + " " + detail);
    if (calls.back() == failing) throw Error(ErrorNumber::ReadFailed, "on purpose");
  }
  std::vector<std::string> calls;
  std::string failing;
};

TEST_F(DBEngineTest, ObserverIsToldOfEveryCallAndMayFailIt) {
  const auto recorder = std::make_shared<Recorder>();
  EngineOptions options;
  options.files = files;
  options.observer = recorder;
  const auto opened = DBEngine(options).OpenDatabase("league.mdb", true, false, test::kFixtureConnect);
  const auto rows = opened->OpenRecordset("select id from [team info]");
  EXPECT_FALSE(rows->Eof());
  rows->FindFirst("id = 3");
  rows->Edit();
  rows->Fields("id").Value(3);
  rows->Fields("id").Value();
  rows->MoveNext();
  rows->Close();
  EXPECT_EQ(recorder->calls,
            (std::vector<std::string>{"DBEngine.OpenDatabase league.mdb",
                                      "Database.OpenRecordset select id from [team info]", "Recordset.Eof",
                                      "Recordset.FindFirst id = 3", "Recordset.Edit", "Recordset.Fields id",
                                      "Field.Value= id", "Recordset.Fields id", "Field.Value id",
                                      "Recordset.MoveNext", "Recordset.Close"}));
  recorder->failing = "Recordset.Delete";
  const auto others = opened->OpenRecordset("select id from [position info] where id = 12");
  ExpectError(ErrorNumber::ReadFailed, [&] { others->Delete(); });
  EXPECT_EQ(others->Fields(0).Value(), Value(12));
}

}  // namespace
}  // namespace jet

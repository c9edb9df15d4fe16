#include <functional>
#include <memory>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "jet/Check.h"
#include "jet/dao/Transaction.h"
#include "tests/jet/dao/Databases.h"

namespace jet {
namespace {

using test::ExpectError;
using test::FileOperation;

class TransactionTest : public test::LeagueTest {
 protected:
  static constexpr std::int32_t kFirst = 700;  // the fixture has no positions from this id on

  void Add(std::int32_t id) { Add(*Select("select * from [position info]"), id); }
  static void Add(Recordset& rows, std::int32_t id) {
    rows.AddNew();
    rows.Fields("id").Value(id);
    rows.Fields("abbr").Value("X");
    rows.Update();
  }
  /// Ids of the positions from kFirst on.
  std::vector<std::int32_t> Added() {
    std::vector<std::int32_t> ids;
    const auto rows = Select("select id from [position info] where id >= 700 order by id");
    for (; !rows->Eof(); rows->MoveNext())
      ids.push_back(*rows->Fields("id").Value().As<std::int32_t>());
    return ids;
  }
  void CreateFleetingTable() {
    TableSpec table;
    table.name = "fleeting";
    table.columns = {test::MakeColumn("id", ColumnType::Long)};
    database->CreateTable(table);
  }
  std::size_t Syncs() const { return files->Count(FileOperation::Sync); }

  using Ids = std::vector<std::int32_t>;
};

TEST_F(TransactionTest, ReachesTheFileTogetherOrNotAtAll) {
  const std::vector<std::byte> before = memory->Get("league.mdb");
  ExpectError(ErrorNumber::NoTransaction, [&] { database->CommitTrans(); });
  ExpectError(ErrorNumber::NoTransaction, [&] { database->Rollback(); });
  database->BeginTrans();
  Add(kFirst);
  CreateFleetingTable();
  const auto fleeting = Select("select * from fleeting");
  database->Rollback();
  EXPECT_EQ(memory->Get("league.mdb"), before);
  ExpectError(ErrorNumber::ObjectClosed, [&] { fleeting->Eof(); });
  ExpectError(ErrorNumber::UnknownTable, [&] { Select("select * from fleeting"); });
  EXPECT_EQ(Added(), Ids{});

  database->BeginTrans();
  Add(kFirst + 1);
  Add(kFirst + 2);
  EXPECT_FALSE(memory->Exists(LogNameFor("league.mdb")));
  const std::size_t syncs = Syncs();
  database->CommitTrans();
  EXPECT_TRUE(memory->Exists(LogNameFor("league.mdb")));
  EXPECT_EQ(Syncs(), syncs + 1);
  database->BeginTrans();
  Select("select * from [position info]")->Edit();
  database->CommitTrans();
  EXPECT_EQ(Syncs(), syncs + 1) << "nothing changed";

  // Closing rolls back what is open, inner transactions included.
  database->BeginTrans();
  database->BeginTrans();
  Add(kFirst + 3);
  database->CommitTrans();
  Add(kFirst + 4);
  database->Close();
  EXPECT_EQ(database->TransactionDepth(), 0u);
  ExpectError(ErrorNumber::ObjectClosed, [&] { database->CommitTrans(); });
  database = Open();
  EXPECT_EQ(Added(), (Ids{kFirst + 1, kFirst + 2}));
}

TEST_F(TransactionTest, NestsTenDeep) {
  constexpr int kDepth = 10;
  for (int depth = 1; depth <= kDepth; ++depth) {
    database->BeginTrans();
    Add(kFirst + depth);
    // A statement that fails undoes itself only.
    ExpectError(ErrorNumber::DuplicateKey, [&] { Add(kFirst + depth); });
  }
  for (int depth = kDepth; depth >= 1; --depth)
    depth % 3 == 0 ? database->Rollback() : database->CommitTrans();
  EXPECT_EQ(Added(), (Ids{kFirst + 1, kFirst + 2}));  // the others were inside the one of depth 3
  EXPECT_TRUE(database->Check().findings.empty());
}

TEST_F(TransactionTest, RollbackClosesTheRecordsetsWhoseRowsItUndoes) {
  Add(kFirst);
  Add(kFirst + 1);
  const auto reader = Select("select * from [position info] where id = 700");
  const auto editor = Select("select * from [position info] where id = 700");
  const auto deleter = Select("select * from [position info] where id = 701");
  const auto adder = Select("select * from [position info] where id > 1000");
  const auto innerAdder = Select("select * from [position info] where id > 1000");
  reader->Fields("id").Value();
  database->BeginTrans();
  const auto opened = Select("select * from [position info] where id = 700");
  const auto total = Select("select count(*) from [position info]");
  editor->Edit();
  editor->Fields("desc").Value("edited");
  editor->Update();
  deleter->Delete();
  Add(*adder, kFirst + 2);
  database->BeginTrans();
  Add(*innerAdder, kFirst + 3);
  database->CommitTrans();  // into the outer one
  database->BeginTrans();
  const auto openedInside = Select("select * from [position info]");
  database->Rollback();
  ExpectError(ErrorNumber::ObjectClosed, [&] { openedInside->Eof(); });
  EXPECT_FALSE(opened->Eof());
  database->Rollback();

  for (const auto& closed : {opened, total, deleter, adder, innerAdder}) {
    ExpectError(ErrorNumber::ObjectClosed, [&] { closed->Eof(); });
    ExpectError(ErrorNumber::ObjectClosed, [&] { closed->Delete(); });
  }
  for (const auto& open : {reader, editor}) {
    EXPECT_EQ(open->Fields("id").Value(), Value(kFirst));
    EXPECT_TRUE(open->Fields("desc").Value().IsNull());
  }
  editor->Edit();
  editor->Fields("desc").Value("edited again");
  editor->Update();
  EXPECT_EQ(reader->Fields("desc").Value(), Value("edited again"));
  EXPECT_EQ(Added(), (Ids{kFirst, kFirst + 1}));

  // What was committed stays open when a later transaction is rolled back.
  database->BeginTrans();
  const auto committed = Select("select * from [position info] where id = 700");
  database->CommitTrans();
  database->BeginTrans();
  Add(kFirst + 2);
  database->Rollback();
  EXPECT_EQ(committed->Fields("id").Value(), Value(kFirst));
}

TEST_F(TransactionTest, ACommitThatFailsIsRolledBack) {
  for (const FileOperation operation : {FileOperation::Write, FileOperation::Sync}) {
    const auto before = Select("select * from [position info] where id < 5");
    files->FailOnce(operation, 1, ErrorNumber::DiskFull);
    std::shared_ptr<Recordset> rows;
    ExpectError(ErrorNumber::DiskFull, [&] {
      Transaction transaction(*database);
      rows = Select("select * from [position info]");
      Add(*rows, kFirst);
      CreateFleetingTable();
      transaction.Commit();
    });
    files->Mend();
    EXPECT_EQ(database->TransactionDepth(), 0u);
    ExpectError(ErrorNumber::ObjectClosed, [&] { rows->Eof(); });
    ExpectError(ErrorNumber::UnknownTable, [&] { Select("select * from fleeting"); });
    EXPECT_FALSE(before->Eof());
    EXPECT_EQ(Added(), Ids{});
  }
  Add(kFirst);
  database.reset();
  database = Open();
  EXPECT_EQ(Added(), Ids{kFirst});
}

TEST_F(TransactionTest, AScopeEndsWhatWasOpenedInside) {
  {
    const Transaction outer(*database);
    Add(kFirst);
    database->BeginTrans();
    Add(kFirst + 1);
  }
  EXPECT_EQ(database->TransactionDepth(), 0u);
  {
    Transaction outer(*database);
    database->BeginTrans();
    ExpectError(ErrorNumber::NoTransaction, [&] { outer.Commit(); });
    database->Rollback();
    Add(kFirst + 2);
    outer.Commit();
  }
  EXPECT_EQ(Added(), Ids{kFirst + 2});
  {
    Transaction closed(*database);
    Add(kFirst + 3);
    database->Close();
    ExpectError(ErrorNumber::ObjectClosed, [&] { closed.Commit(); });
  }
  database = Open();
  EXPECT_EQ(Added(), Ids{kFirst + 2});
}

// The pages of the catalog are in the cache no more, and reading fails: only an undone change of the schema
// needs them.
TEST_F(TransactionTest, ReadsTheCatalogAgainOnlyAfterAChangeOfTheSchema) {
  for (const bool changesSchema : {false, true}) {
    SCOPED_TRACE(changesSchema);
    database->Close();
    EngineOptions options;
    options.files = files;
    options.cacheBytes = 0;
    database = DBEngine(options).OpenDatabase("league.mdb", true, false, test::kFixtureConnect);
    const auto players = Select("select * from [player info]");
    database->BeginTrans();
    database->BeginTrans();
    changesSchema ? CreateFleetingTable() : Add(kFirst);
    database->CommitTrans();
    for (; !players->Eof(); players->MoveNext())
      players->Fields("id").Value();
    files->FailFrom(FileOperation::Read, 1, ErrorNumber::ReadFailed);
    if (changesSchema) {
      ExpectError(ErrorNumber::ReadFailed, [&] { database->Rollback(); });
      ExpectError(ErrorNumber::ObjectClosed, [&] { Select("select * from [team info]"); });
    } else {
      EXPECT_NO_THROW(database->Rollback());
    }
    files->Mend();
    if (changesSchema) database = Open();
    EXPECT_EQ(One("select count(*) from [team info]"), Value(32));
    EXPECT_EQ(Added(), Ids{});
  }
}

}  // namespace
}  // namespace jet

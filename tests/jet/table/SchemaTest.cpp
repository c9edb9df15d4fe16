#include <algorithm>

#include "jet/table/Describe.h"
#include "tests/jet/table/TableTestSupport.h"
#include "tests/support/FaultyFileSystem.h"
#include "tests/support/Processes.h"
#include "tests/support/TestFiles.h"

namespace jet::test {
namespace {

TableSpec EveryType() {
  TableSpec table{"every type", {}, {}};
  ColumnSpec number = Column("number", ColumnType::Long);
  number.autoNumber = true;
  ColumnSpec text = Column("text", ColumnType::Text, 255);
  text.required = true;
  text.defaultValue = "\"none\"";
  ColumnSpec amount = Column("decimal", ColumnType::Decimal);
  amount.precision = 12;
  amount.scale = 3;
  ColumnSpec plain = Column("plain text", ColumnType::Text, 10);
  plain.compressed = false;
  plain.allowZeroLength = true;
  table.columns = {number,
                   Column("yes", ColumnType::YesNo),
                   Column("byte", ColumnType::Byte),
                   text,
                   Column("integer", ColumnType::Integer),
                   Column("money", ColumnType::Currency),
                   Column("memo", ColumnType::Memo),
                   Column("single", ColumnType::Single),
                   Column("double", ColumnType::Double),
                   Column("date", ColumnType::DateTime),
                   Column("binary", ColumnType::Binary, 20),
                   Column("object", ColumnType::Ole),
                   Column("guid", ColumnType::Guid),
                   amount,
                   plain};
  table.indexes = {PrimaryKey({{"number"}}),
                   {"by text", {{"text"}, {"integer", false}}, false, true, false, false, false},
                   {"by date", {{"date", false}, {"yes"}}, false, false, false, true, false},
                   {"by money",
                    {{"money", false}, {"byte", false}, {"guid"}, {"binary"}},
                    false,
                    false,
                    false,
                    false,
                    false}};
  return table;
}

TEST(Schema, ATableOfEveryType_HoldsRowsThatOthersRead) {
  TestDatabase database;
  database.Schema().CreateTable(EveryType());
  for (int i = 0; i < 300; ++i) {
    Guid guid;
    guid.bytes[3] = static_cast<std::uint8_t>(i);
    database.Add("every type",
                 {Null(), i % 2 == 0, i % 256, "Name é " + std::to_string(i % 37), i - 150,
                  Currency{i * 12345 - 900000}, std::string(static_cast<std::size_t>(i * 40 + 1), 'm'),
                  static_cast<float>(i) / 4, i * -0.125, DateTime{40000.5 - i * 400},
                  Bytes(static_cast<std::size_t>(i % 21), std::byte{7}),
                  Bytes(static_cast<std::size_t>(i % 90), std::byte{9}), guid,
                  Decimal{{static_cast<std::uint32_t>(i), 0, 0, 0}, 3, i % 3 == 1},
                  i % 2 == 0 ? Value("x-y'z") : Value()});
  }
  database.store->Close();
  EXPECT_EQ(database.Check(), "");
  const TableInfo info = DescribeTable(database.TableOf("EVERY TYPE"));
  EXPECT_EQ(info.rowCount, 300U);
  EXPECT_TRUE(info.columns[3].required);
  EXPECT_FALSE(info.columns[3].allowZeroLength);
  EXPECT_EQ(info.columns[3].defaultValue, "\"none\"");
  EXPECT_TRUE(info.columns[14].allowZeroLength);
  EXPECT_EQ(info.columns[13].scale, 3);

  const TempFolder folder;
  WriteWholeFile(folder.File(kName), database.Bytes());
  if (!jet::test::RunsPrograms()) GTEST_SKIP() << "independent readers run on the build machine only";
  ASSERT_TRUE(HasMdbExport()) << "mdb-export (Debian: mdbtools) is not installed";
  const std::string rows = MdbExport(folder.File(kName), "every type");
  EXPECT_EQ(std::count(rows.begin(), rows.end(), kMdbExportRowEnd), 1 + 300)
      << "the names of the columns and the rows";
  EXPECT_NE(rows.find("Name é 36\x1F"), std::string::npos);
}

TEST(Schema, AnIndexMadeOverManyRows_HasThemAll) {
  TestDatabase database;
  database.Schema().CreateTable(Simple("people"));
  {
    ChangeUnit unit(database.store->Pages());
    for (int i = 0; i < 5000; ++i) {
      database.Add("people", {i * 7919 % 5003, i % 100 == 0 ? Value() : Value(i % 50),
                              "name " + std::to_string(i % 1000)});
    }
    unit.Commit();
  }
  database.Schema().CreateIndex("people",
                                {"by name", {{"name", false}, {"id"}}, false, true, false, false, false});
  database.Schema().CreateIndex("People", {"by parent", {{"parent"}}, false, false, false, true, false});
  EXPECT_EQ(database.Check(), "");
  const Table& people = database.TableOf("people");
  ASSERT_EQ(people.IndexCount(), 3U);
  const Index& byParent = people.IndexAt(2);
  int found = 0;
  const Value wanted = 7;
  const KeyBytes key = *byParent.KeyPrefix({&wanted, 1});
  const KeyBytes after = KeyAfter(key);
  for (IndexCursor cursor = byParent.Range(key, after); cursor.Next();)
    ++found;
  EXPECT_EQ(found, 100);
  database.Add("people", {6000, 7, "new"});
  EXPECT_EQ(database.Check(), "");
}

TEST(Schema, AnIndexThatRowsBreak_IsRefusedAndLeavesNoTrace) {
  TestDatabase database;
  database.Schema().CreateTable(
      {"t",
       {Column("a", ColumnType::Long), Column("b", ColumnType::Text, 9), Column("c", ColumnType::Guid)},
       {}});
  for (int i = 0; i < 50; ++i)
    database.Add("t", {i / 2, i == 20 ? Value() : Value("x" + std::to_string(i)), Guid{}});
  const auto before = database.Bytes();
  const auto make = [&](std::vector<IndexColumn> columns, bool primary, bool unique) {
    IndexSpec index{"new", std::move(columns), primary, unique, false, false, false};
    return ErrorOf([&] { database.Schema().CreateIndex("t", index); });
  };
  EXPECT_EQ(make({{"a"}}, false, true), 3022);
  EXPECT_EQ(make({{"b"}}, true, false), 3058);
  EXPECT_EQ(make({{"c", false}}, false, false), 3001);
  EXPECT_EQ(database.Bytes(), before);
  EXPECT_EQ(database.TableOf("t").IndexCount(), 0U);
  database.Add("t", {0, "more", Guid{}});
  EXPECT_EQ(database.Check(), "");
}

TEST(Schema, ADefinitionOfManyPages_GrowsWhenIndexesAreAdded) {
  TestDatabase database;
  TableSpec wide{"wide", {}, {}};
  for (int i = 0; i < 255; ++i) {
    const ColumnType type = i % 5 == 0   ? ColumnType::Memo
                            : i % 5 == 1 ? ColumnType::YesNo
                                         : ColumnType::Integer;
    wide.columns.push_back(Column("a column with quite a long name, number " + std::to_string(i), type));
  }
  database.Schema().CreateTable(wide);
  database.Schema().CreateTable(Simple("other"));
  const std::size_t pages = database.TableOf("wide").Definition().pages.size();
  EXPECT_GT(pages, 5U);
  std::vector<Value> values(255);
  values[1] = true;
  values[250] = std::string(300, 'x');
  for (std::size_t i = 0; i < values.size(); ++i) {
    if (i % 5 == 1 && i != 1) values[i] = false;
  }
  database.Add("wide", values);
  for (int i = 0; i < 32; ++i) {
    const std::string column = wide.columns[static_cast<std::size_t>(5 * i + 2)].name;
    IndexSpec index{"an index whose name is long, too, " + std::to_string(i),
                    {{column}},
                    false,
                    false,
                    false,
                    false,
                    false};
    database.Schema().CreateIndex("wide", index);
  }
  EXPECT_GT(database.TableOf("wide").Definition().pages.size(), pages);
  database.Add("wide", values);
  EXPECT_EQ(database.Check(), "");
  EXPECT_EQ(ErrorOf([&] {
              database.Schema().CreateIndex(
                  "wide", {"more", {{wide.columns[2].name}}, false, false, false, false, false});
            }),
            3259);
}

RelationInfo Relation(std::string name, std::string table, std::string column, std::string parent) {
  return {
      std::move(name), std::move(table), {std::move(column)}, std::move(parent), {"id"}, true, false, false};
}

TEST(Schema, Relationships_HoldFromTheMomentTheyAreMade) {
  TestDatabase database;
  database.Schema().CreateTable(Simple("teams"));
  database.Schema().CreateTable(Simple("players"));
  database.Schema().CreateTable(Simple("trainers"));
  database.Add("teams", {1, Null(), "one"});
  database.Add("players", {10, 1, "a"});
  database.Add("players", {11, Null(), "b"});
  database.Schema().CreateIndex("players", {"parent", {{"parent"}}, false, false, false, false, false});
  database.Schema().CreateRelation(Relation("teamsplayers", "players", "parent", "teams"));
  RelationInfo cascading = Relation("teamstrainers", "trainers", "parent", "teams");
  cascading.cascadeDeletes = true;
  database.Schema().CreateRelation(cascading);
  database.Schema().CreateRelation({"loose", "trainers", {"name"}, "players", {"name"}, false, false, false});
  EXPECT_EQ(database.Check(), "");

  EXPECT_EQ(database.TableOf("players").IndexCount(), 2U);   // the index on the column is shared
  EXPECT_EQ(database.TableOf("trainers").IndexCount(), 2U);  // a new one was made
  EXPECT_EQ(ErrorOf([&] { database.Add("players", {12, 2, "c"}); }), 3201);
  EXPECT_EQ(ErrorOf([&] { database.Add("trainers", {12, 2, "c"}); }), 3201);
  const std::vector<RelationInfo> relations = DescribeRelations(*database.store);
  ASSERT_EQ(relations.size(), 3U);
  EXPECT_EQ(relations[0].name, "loose");
  EXPECT_FALSE(relations[0].enforced);
  EXPECT_EQ(relations[1].name, "teamsplayers");
  EXPECT_EQ(relations[1].parentTable, "teams");
  EXPECT_TRUE(relations[2].cascadeDeletes);

  database.Add("trainers", {20, 1, "t"});
  Table& teams = database.TableOf("teams");
  TableScan scan(teams);
  ASSERT_TRUE(scan.Next());
  const RowId one = scan.Id();
  EXPECT_EQ(ErrorOf([&] {
              ChangeUnit unit(database.store->Pages());
              teams.Delete(one);
            }),
            3200);
  EXPECT_EQ(database.Check(), "");
}

TEST(Schema, RelationshipsOfSeveralColumnsAndToTheSameTable_AreSound) {
  TestDatabase database;
  TableSpec prizes{"prizes",
                   {Column("season", ColumnType::Long), Column("no", ColumnType::Integer)},
                   {PrimaryKey({{"season"}, {"no"}})}};
  TableSpec winners{"winners", {Column("no", ColumnType::Integer), Column("season", ColumnType::Long)}, {}};
  database.Schema().CreateTable(prizes);
  database.Schema().CreateTable(winners);
  database.Add("prizes", {2000, 1});
  database.Add("winners", {1, 2000});
  // Given in another order than that of the key.
  database.Schema().CreateRelation(
      {"won", "winners", {"no", "season"}, "prizes", {"no", "season"}, true, true, false});
  database.Schema().CreateTable(Simple("staff"));
  database.Add("staff", {1, 1, "boss"});
  database.Schema().CreateRelation(Relation("boss", "staff", "parent", "staff"));
  EXPECT_EQ(database.Check(), "");
  EXPECT_EQ(ErrorOf([&] { database.Add("winners", {2, 2000}); }), 3201);
  EXPECT_EQ(ErrorOf([&] { database.Add("staff", {2, 3, "x"}); }), 3201);
  database.Add("staff", {4, 4, "own boss"});
  EXPECT_EQ(database.Check(), "");
}

TEST(Schema, ARelationshipThatRowsBreak_IsRefusedAndLeavesNoTrace) {
  TestDatabase database;
  database.Schema().CreateTable(Simple("teams"));
  database.Schema().CreateTable(Simple("players"));
  database.Add("players", {10, 1, "a"});
  const auto before = database.Bytes();
  EXPECT_EQ(ErrorOf([&] { database.Schema().CreateRelation(Relation("r", "players", "parent", "teams")); }),
            3201);
  EXPECT_EQ(database.Bytes(), before);
  EXPECT_EQ(database.TableOf("players").IndexCount(), 1U);
  database.Add("players", {11, 2, "b"});
  EXPECT_EQ(database.Check(), "");
}

TEST(Schema, OfAFileThatAnotherWriterMade_IsExtended) {
  TestDatabase database(ReadWholeFile(FixturePath("league.mdb")), kFixturePassword);
  TableSpec notes{
      "notes",
      {Column("id", ColumnType::Long), Column("player", ColumnType::Long), Column("note", ColumnType::Memo)},
      {PrimaryKey({{"id"}})}};
  database.Schema().CreateTable(notes);
  database.Schema().CreateRelation(
      {"player infonotes", "notes", {"player"}, "player info", {"id"}, true, false, false});
  database.Schema().CreateIndex(
      "player info", {"both names", {{"team id"}, {"id", false}}, false, true, false, false, false});
  database.Schema().SetPassword("other");
  EXPECT_EQ(ErrorOf([&] { database.Add("notes", {1, 999999, "?"}); }), 3201);
  database.Add("notes", {1, 1, "first"});
  EXPECT_EQ(IndependentCheck(database.Bytes(), false, "other"), "");
}

TEST(Schema, ChangesInAUnitThatIsUndone_AreForgotten) {
  TestDatabase database;
  database.Schema().CreateTable(Simple("kept"));
  const auto before = database.Bytes();
  {
    ChangeUnit unit(database.store->Pages());
    database.Schema().CreateTable(Simple("gone"));
    database.Schema().CreateRelation(Relation("r", "kept", "parent", "gone"));
    database.Add("gone", {1, 1, "x"});
  }
  database.store->Reload();
  EXPECT_EQ(database.store->FindTable("gone"), nullptr);
  EXPECT_EQ(database.TableOf("kept").IndexCount(), 1U);
  EXPECT_EQ(database.Bytes(), before);
  database.Add("kept", {1, 5, "x"});
  EXPECT_EQ(database.Check(), "");
}

TEST(SchemaUnderWriteErrors, AppliesWholeOrNotAtAll) {
  for (std::size_t nth = 1;; ++nth) {
    auto memory = std::make_shared<MemoryFileSystem>();
    FaultyFileSystem files(memory);
    auto store = CreateEmptyDatabase(files.Open(kName, {true, false, true}), kName, {}, kCache);
    SchemaWriter schema(*store);
    schema.CreateTable(Simple("a"));
    schema.CreateTable(Simple("b"));
    files.FailOnce(FileOperation::Write, nth, ErrorNumber::DiskFull);
    const int error = ErrorOf([&] { schema.CreateRelation(Relation("r", "a", "parent", "b")); });
    const bool failed = files.HasFailed();
    EXPECT_EQ(error, failed ? 3183 : 0) << "write " << nth;
    EXPECT_EQ(store->FindTable("a")->IndexCount(), failed ? 1U : 2U) << "write " << nth;
    EXPECT_EQ(DescribeRelations(*store).size(), failed ? 0U : 1U) << "write " << nth;
    EXPECT_EQ(IndependentCheck(memory->Get(kName), true), "") << "write " << nth;
    if (!failed) break;
  }
}

}  // namespace
}  // namespace jet::test

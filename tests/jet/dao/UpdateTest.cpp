#include <memory>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "jet/Check.h"
#include "tests/jet/dao/Databases.h"
#include "tests/support/Witnesses.h"

namespace jet {
namespace {

using test::ExpectError;
using test::FileOperation;

class UpdateTest : public test::LeagueTest {};

TEST_F(UpdateTest, AddNewBeginsWithTheDefaults) {
  const auto rows = Select("select id, [is draft locked], [season year] from [season info] where id = 3");
  rows->AddNew();
  EXPECT_TRUE(rows->Fields("id").Value().IsNull());
  EXPECT_EQ(rows->Fields("season year").Value(), Value(0));
  EXPECT_EQ(rows->Fields("is draft locked").Value(), Value(false));
  rows->Fields("id").Value("40");
  rows->Fields("season year").Value(2031);
  EXPECT_EQ(rows->Fields("id").Value(), Value(40));
  rows->Update();
  // The current row is the one from before; the new one stands at the end.
  EXPECT_EQ(rows->Fields("id").Value(), Value(3));
  rows->MoveNext();
  EXPECT_EQ(rows->Fields("id").Value(), Value(40));
  rows->MoveNext();
  EXPECT_TRUE(rows->Eof());
  const auto added = Select("select * from [season info] where id = 40");
  EXPECT_EQ(added->Fields("season year").Value(), Value(2031));
  EXPECT_EQ(added->Fields("no of players").Value(), Value(0));  // a default of a column that was not selected
}

TEST_F(UpdateTest, AutomaticGuidsAreGivenWhateverTheirDefaultSays) {
  ColumnSpec guid = test::MakeColumn("key", ColumnType::Guid);
  guid.defaultValue = "GenGUID()";
  database->CreateTable({"guids", {test::MakeColumn("id", ColumnType::Long), guid}, {}});
  const auto rows = Select("select * from guids");
  rows->AddNew();
  ExpectError(ErrorNumber::FeatureNotSupported, [&] { rows->Update(); });

  // Only other writers make such columns: the flag is the column's in the definition.
  database->Close();
  std::vector<std::byte> bytes = memory->Get("league.mdb");
  constexpr std::size_t kSecondColumn = 0x3F + 25;  // there are no indexes
  for (std::size_t page = 0; page < bytes.size(); page += 4096) {
    std::byte* const column = bytes.data() + page + kSecondColumn;
    const bool isGuid = *column == static_cast<std::byte>(ColumnType::Guid);
    if (bytes[page] == std::byte{2} && isGuid) column[15] |= std::byte{0x40};
  }
  memory->Put("league.mdb", bytes);
  database = Open();
  const auto marked = Select("select * from guids");
  marked->AddNew();
  marked->Update();
  marked->MoveFirst();
  EXPECT_NE(marked->Fields("key").Value().As<Guid>(), nullptr);
  marked->AddNew();
  marked->Fields("key").Value("{01234567-89AB-CDEF-0123-456789ABCDEF}");
  marked->Update();
}

TEST_F(UpdateTest, AddingAtTheEndStaysAtTheEnd) {
  const auto rows = Select("select * from [position info] where id = 500");
  rows->AddNew();
  rows->Fields("id").Value(500);
  rows->Update();
  EXPECT_TRUE(rows->Eof());
  ExpectError(ErrorNumber::NoCurrentRecord, [&] { rows->Fields("id").Value(); });
  rows->MoveFirst();
  EXPECT_EQ(rows->Fields("id").Value(), Value(500));
}

TEST_F(UpdateTest, EditChangesWhatWasAssigned) {
  const auto rows = Select("select * from [player info] where id = 17");
  const Value last = rows->Fields("last name").Value();
  rows->Edit();
  rows->Fields("First Name").Value("Xaver");
  rows->Fields("team id").Value(Value());
  rows->Fields("is retired").Value(Value());
  EXPECT_EQ(rows->Fields("first name").Value(), Value("Xaver"));
  EXPECT_EQ(*rows->Fields("first name").Text(), "Xaver");
  EXPECT_EQ(rows->Fields("last name").Value(), last);
  EXPECT_NE(One("select [first name] from [player info] where id = 17"), Value("Xaver"));
  rows->Update();
  EXPECT_EQ(rows->Fields("team id").Value(), Value());
  EXPECT_EQ(rows->Fields("is retired").Value(), Value(false));
  EXPECT_EQ(One("select [first name] from [player info] where id = 17"), Value("Xaver"));
}

TEST_F(UpdateTest, AssigningAndUpdatingNeedAnEdit) {
  const auto rows = Select("select * from [player info] where id = 17");
  ExpectError(ErrorNumber::NoEditInProgress, [&] { rows->Fields("first name").Value("x"); });
  ExpectError(ErrorNumber::NoEditInProgress, [&] { rows->Update(); });
  rows->Edit();
  rows->Update();
  ExpectError(ErrorNumber::NoEditInProgress, [&] { rows->Update(); });
}

TEST_F(UpdateTest, MovingAwayDropsTheEdit) {
  const auto rows = Select("select * from [position info] order by id");
  const auto expectDropped = [&](const char* how) {
    SCOPED_TRACE(how);
    ExpectError(ErrorNumber::NoEditInProgress, [&] { rows->Update(); });
    EXPECT_EQ(One("select count(*) from [position info] where [desc] = 'dropped'"), Value(0));
  };
  const auto edit = [&] {
    rows->MoveFirst();
    rows->Edit();
    rows->Fields("desc").Value("dropped");
  };
  edit();
  rows->MoveNext();
  expectDropped("MoveNext");
  edit();
  rows->FindFirst("id = 2");
  expectDropped("FindFirst");
  edit();
  rows->CancelUpdate();
  rows->CancelUpdate();
  expectDropped("CancelUpdate");
  edit();
  rows->AddNew();
  EXPECT_TRUE(rows->Fields("desc").Value().IsNull());
  rows->MoveFirst();
  expectDropped("AddNew and MoveFirst");
}

TEST_F(UpdateTest, RefusedUpdatesChangeNothingAndCanBeMended) {
  const std::vector<std::byte> before = memory->Get("league.mdb");
  const auto rows = Select("select * from [player info] where id = 17");
  rows->AddNew();
  ExpectError(ErrorNumber::NullInPrimaryKey, [&] { rows->Update(); });
  rows->Fields("id").Value(17);
  const std::string sentence = ExpectError(ErrorNumber::DuplicateKey, [&] { rows->Update(); });
  EXPECT_NE(sentence.find("17"), std::string::npos) << sentence;
  rows->Fields("id").Value(100017);
  rows->Fields("last name").Value("");
  ExpectError(ErrorNumber::ZeroLengthText, [&] { rows->Update(); });
  ExpectError(ErrorNumber::CannotConvert, [&] { rows->Fields("team id").Value("none"); });
  ExpectError(ErrorNumber::TextTooLong, [&] { rows->Fields("last name").Value(std::string(300, 'x')); });
  rows->Fields("last name").Value("Mended");
  rows->Fields("team id").Value(4711);
  ExpectError(ErrorNumber::NoReferredRow, [&] { rows->Update(); });
  EXPECT_EQ(memory->Get("league.mdb"), before);
  rows->Fields("team id").Value(3);
  rows->Update();
  EXPECT_EQ(One("select [last name] from [player info] where id = 100017"), Value("Mended"));
  EXPECT_TRUE(database->Check().findings.empty());
}

TEST_F(UpdateTest, ExpressionDefaultsAreRefusedWhenTheyAreNeeded) {
  TableSpec table;
  table.name = "notes";
  table.columns = {test::MakeColumn("id", ColumnType::Long), test::MakeColumn("made", ColumnType::DateTime),
                   test::MakeColumn("kind", ColumnType::Text, 10),
                   test::MakeColumn("size", ColumnType::Byte)};
  table.columns[1].defaultValue = "Rnd()";
  table.columns[2].defaultValue = "\"note\"";
  table.columns[3].defaultValue = "300";
  database->CreateTable(table);
  const auto rows = Select("select * from notes");
  rows->AddNew();
  EXPECT_EQ(rows->Fields("kind").Value(), Value("note"));
  rows->Fields("size").Value(Value());
  const std::string sentence = ExpectError(ErrorNumber::FeatureNotSupported, [&] { rows->Update(); });
  EXPECT_NE(sentence.find("Rnd()"), std::string::npos) << sentence;
  rows->Fields("made").Value("2024-09-05");
  rows->Update();
  rows->AddNew();
  rows->Fields("made").Value("2024-09-05");
  ExpectError(ErrorNumber::CannotConvert, [&] { rows->Update(); });  // 300 is no byte
  EXPECT_EQ(One("select count(*) from notes"), Value(1));
}

TEST_F(UpdateTest, AutomaticNumbersGoOn) {
  TableSpec table;
  table.name = "numbered";
  table.columns = {test::MakeColumn("id", ColumnType::Long), test::MakeColumn("name", ColumnType::Memo)};
  table.columns[0].autoNumber = true;
  database->CreateTable(table);
  const auto rows = Select("select * from numbered");
  for (int i = 0; i < 3; ++i) {
    rows->AddNew();
    rows->Fields("name").Value(std::string(5000, static_cast<char>('a' + i)));
    rows->Update();
  }
  rows->MoveFirst();
  EXPECT_EQ(rows->Fields("id").Value(), Value(1));
  EXPECT_EQ(*rows->Fields("name").Text(), std::string(5000, 'a'));
  EXPECT_EQ(One("select max(id) from numbered"), Value(3));
  // An assigned number counts as the last one given.
  rows->Edit();
  rows->Fields("id").Value(70);
  rows->Update();
  EXPECT_TRUE(database->Check().findings.empty());
  rows->AddNew();
  rows->Update();
  EXPECT_EQ(One("select max(id) from numbered"), Value(71));
}

TEST_F(UpdateTest, RefusedRowsOfAUnitLeaveTheOthersInPlace) {
  TableSpec table;
  table.name = "numbered";
  table.columns = {test::MakeColumn("id", ColumnType::Long), test::MakeColumn("name", ColumnType::Text, 30),
                   test::MakeColumn("remark", ColumnType::Memo)};
  table.indexes = {{.name = "key", .columns = {{"id"}}, .primary = true, .unique = true, .required = true},
                   {.name = "name", .columns = {{"name"}}, .unique = true}};
  database->CreateTable(table);
  const auto rows = Select("select * from numbered");
  const auto add = [&](int id, const std::string& name, bool withRemark) {
    rows->AddNew();
    rows->Fields("id").Value(id);
    if (!name.empty()) rows->Fields("name").Value(name);
    if (withRemark) rows->Fields("remark").Value(std::string(100, 'r'));
    rows->Update();
  };
  constexpr int kRows = 1999;  // a prime, so that the steps below meet every number
  const auto idOf = [](int i) { return 701 * i % kRows; };
  const auto nameOf = [](int id) { return "name " + std::to_string(7919 * id % kRows); };
  database->BeginTrans();
  for (int i = 0; i < kRows; ++i) {
    add(idOf(i), nameOf(idOf(i)), i % 50 == 0);
    add(kRows + i, {}, false);  // Nulls are not the same
    const int earlier = idOf(i / 2);
    ExpectError(ErrorNumber::DuplicateKey, [&] { add(earlier, "new", i % 2 == 0); });
    ExpectError(ErrorNumber::DuplicateKey, [&] { add(-1, nameOf(earlier), i % 2 == 0); });
  }
  // Every key has its turn: those at the ends of leaves too.
  for (int id = 0; id < kRows; ++id) {
    ExpectError(ErrorNumber::DuplicateKey, [&] { add(id, "new", false); });
    ExpectError(ErrorNumber::DuplicateKey, [&] { add(-1, nameOf(id), false); });
  }
  database->CommitTrans();
  EXPECT_EQ(One("select count(*) from numbered"), Value(2 * kRows));
  EXPECT_EQ(One("select count(*) from numbered where name = 'new' or id < 0"), Value(0));
  EXPECT_EQ(One("select count(*) from numbered where remark is not null"), Value(40));
  EXPECT_TRUE(database->Check().findings.empty());
}

TEST_F(UpdateTest, FailingWritesLeaveTheEngineAsItWas) {
  for (std::size_t nth = 1;; ++nth) {
    SCOPED_TRACE("write " + std::to_string(nth));
    files->Mend();
    database.reset();
    memory->Put("league.mdb", test::ReadWholeFile(test::FixturePath("league.mdb")));
    database = Open();
    const auto rows = Select("select * from [player info] where id = 17");
    rows->Edit();
    rows->Fields("id").Value(100017);
    rows->Fields("first name").Value(std::string(50, 'x'));
    files->FailOnce(FileOperation::Write, nth);
    bool stored = true;
    try {
      rows->Update();
    } catch (const Error& error) {
      EXPECT_EQ(error.Number(), ErrorNumber::ReadFailed);
      stored = false;
    }
    const bool failed = files->HasFailed();
    files->Mend();
    EXPECT_EQ(rows->Fields("id").Value(),
              Value(stored || failed ? 100017 : 0));  // the edit is kept, or was written
    EXPECT_EQ(One("select count(*) from [player info] where id = 100017"), Value(stored ? 1 : 0));
    EXPECT_EQ(One("select count(*) from [player info] where id = 17"), Value(stored ? 0 : 1));
    if (!stored) rows->Update();
    EXPECT_EQ(One("select count(*) from [player info] where id = 100017"), Value(1));
    database->Close();
    EXPECT_EQ(test::IndependentCheck(memory->Get("league.mdb")), "");
    if (!failed) break;
  }
}

}  // namespace
}  // namespace jet

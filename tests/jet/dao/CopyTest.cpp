#include <algorithm>
#include <memory>
#include <sstream>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "jet/Check.h"
#include "tests/jet/dao/Databases.h"
#include "tests/support/DesktopObjects.h"
#include "tests/support/Witnesses.h"

namespace jet {
namespace {

using test::ExpectError;

/// Everything that is visible of a database: schema, and the rows in their order.
std::string ContentOf(Database& database) {
  std::string content;
  for (const TableInfo& table : database.Tables()) {
    if (table.isSystem) continue;
    content += "table " + table.name + "\n";
    for (const ColumnSpec& column : table.columns)
      content += "  " + column.name + " " + std::to_string(static_cast<int>(column.type)) + " " +
                 std::to_string(column.length) + (column.autoNumber ? " auto" : "") +
                 (column.required ? " required" : "") + (column.allowZeroLength ? " empty" : "") + " " +
                 column.defaultValue.value_or("-") + "\n";
    std::vector<std::string> indexes;
    for (const IndexSpec& index : table.indexes) {
      if (index.name.starts_with('.')) continue;  // the referred-to side of a relationship, renumbered
      indexes.push_back("  index " + index.name + (index.primary ? " primary" : "") +
                        (index.unique ? " unique" : "") + (index.foreign ? " foreign" : ""));
      for (const IndexColumn& column : index.columns)
        indexes.back() += " " + column.name + (column.ascending ? "" : " down");
    }
    std::sort(indexes.begin(), indexes.end());
    for (const std::string& index : indexes)
      content += index + "\n";
    const auto rows = database.OpenRecordset("select * from [" + table.name + "]");
    for (; !rows->Eof(); rows->MoveNext()) {
      for (std::size_t i = 0; i < rows->FieldCount(); ++i)
        content += rows->Fields(i).Value().ToText() + "|";
      content += "\n";
    }
  }
  for (const RelationInfo& relation : database.Relations())
    content += "relation " + relation.name + " " + relation.table + " " + relation.parentTable +
               (relation.enforced ? " enforced" : "") + (relation.cascadeDeletes ? " cascade" : "") + "\n";
  return content;
}

/// The first line in which two contents differ; empty when they are the same.
std::string Difference(Database& one, Database& other) {
  std::istringstream lines(ContentOf(one));
  std::istringstream others(ContentOf(other));
  for (std::string line, otherLine; std::getline(lines, line);) {
    if (!std::getline(others, otherLine) || line != otherLine) return line + " <> " + otherLine;
  }
  return others.peek() == std::char_traits<char>::eof() ? "" : "more lines";
}

class CopyTest : public test::LeagueTest {
 protected:
  DBEngine Engine() {
    EngineOptions options;
    options.files = files;
    return DBEngine(options);
  }
  std::shared_ptr<Database> OpenCopy(const std::string& connect = test::kFixtureConnect) {
    return Engine().OpenDatabase("copy.mdb", true, false, connect);
  }
  std::vector<std::string> Findings(Database& copy) { return copy.Check().findings; }
};

TEST_F(CopyTest, CopyHasWhatIsInTheLogAndNotWhatIsUnderWay) {
  const auto prizes = Select("select * from [prize info] where id = 1");
  prizes->Edit();
  prizes->Fields("desc").Value("Changed");
  prizes->Update();
  database->BeginTrans();
  prizes->Edit();
  prizes->Fields("desc").Value("Under way");
  prizes->Update();
  Engine().CopyDatabase(*database, "copy.mdb", "");
  database->Rollback();
  const auto copy = OpenCopy();
  EXPECT_EQ(Difference(*copy, *database), "");
  EXPECT_EQ(Findings(*copy), std::vector<std::string>());
  ExpectError(ErrorNumber::ObjectExists, [&] { Engine().CopyDatabase(*database, "copy.mdb", ""); });
}

TEST_F(CopyTest, CompactingKeepsEverythingAndGivesBackPages) {
  for (const char* fixture : {"league-encoded.mdb", "league-stale-moved.mdb"}) {
    SCOPED_TRACE(fixture);
    memory->Put("source.mdb", test::ReadWholeFile(test::FixturePath(fixture)));
    const auto source = Engine().OpenDatabase("source.mdb", true, false, test::kFixtureConnect);
    TableSpec notes{
        .name = "notes",
        .columns = {test::MakeColumn("id", ColumnType::Long), test::MakeColumn("text", ColumnType::Memo)},
        .indexes = {{.name = "Latest", .columns = {{"id", false}}, .unique = true}}};
    notes.columns[0].autoNumber = true;
    notes.columns[1].required = true;
    source->CreateTable(notes);
    const auto rows = source->OpenRecordset("select * from [notes]");
    for (int i = 0; i < 300; ++i) {
      rows->AddNew();
      rows->Fields("text").Value(std::string(static_cast<std::size_t>(1 + i * 17), 'x'));
      rows->Update();
    }
    const auto gone = source->OpenRecordset("select * from [notes] where id > 40");
    for (; !gone->Eof(); gone->MoveNext())
      gone->Delete();

    Engine().CompactDatabase(*source, "copy.mdb")->Close();
    auto copy = OpenCopy();
    EXPECT_EQ(Difference(*copy, *source), "");
    EXPECT_EQ(Findings(*copy), std::vector<std::string>());
    EXPECT_LT(copy->Check().pages + 100, source->Check().pages);
    const auto added = copy->OpenRecordset("select * from [notes]");
    added->AddNew();
    added->Fields("text").Value(std::string("next"));
    added->Update();
    const auto next = copy->OpenRecordset("select max(id) from [notes]");
    EXPECT_EQ(next->Fields(0).Value().ToText(), "301") << "automatic numbers start again";
    added->AddNew();
    ExpectError(ErrorNumber::NullInRequiredColumn, [&] { added->Update(); });
    copy->Close();
    ExpectError(ErrorNumber::PasswordRejected, [&] { OpenCopy(""); });
    memory->Remove("copy.mdb");
  }
}

/// All rows of a system table as text, without the given columns.
std::vector<std::string> SystemRows(Database& database, const std::string& table,
                                    const std::vector<std::string>& without) {
  std::vector<std::string> texts;
  for (const auto rows = database.OpenRecordset("select * from " + table); !rows->Eof(); rows->MoveNext()) {
    std::string text;
    for (const ColumnSpec& column : database.Table(table).columns) {
      if (std::ranges::find(without, column.name) == without.end())
        text += column.name + "=" + rows->Fields(column.name).Value().ToText() + "|";
    }
    texts.push_back(text);
  }
  std::ranges::sort(texts);
  return texts;
}

TEST_F(CopyTest, CompactingKeepsWhatTheDesktopProgramLeaves) {
  database->Close();
  test::AddDesktopObjects(files->Open("league.mdb", {}));
  database = Open();
  Engine().CompactDatabase(*database, "copy.mdb")->Close();
  auto copy = OpenCopy();
  EXPECT_EQ(Difference(*copy, *database), "");
  EXPECT_EQ(Findings(*copy), std::vector<std::string>());
  // Owners are masked by file, and tables are known by their pages.
  EXPECT_EQ(SystemRows(*copy, "MSysObjects", {"Id", "ParentId", "Owner"}),
            SystemRows(*database, "MSysObjects", {"Id", "ParentId", "Owner"}));
  EXPECT_EQ(SystemRows(*copy, "MSysQueries", {}), SystemRows(*database, "MSysQueries", {}));
  EXPECT_EQ(SystemRows(*copy, "MSysRelationships", {}), SystemRows(*database, "MSysRelationships", {}));
  EXPECT_EQ(SystemRows(*copy, "MSysACEs", {"ObjectId", "SID"}),
            SystemRows(*database, "MSysACEs", {"ObjectId", "SID"}));
  EXPECT_EQ(SystemRows(*copy, "MSysAccessObjects", {}), SystemRows(*database, "MSysAccessObjects", {}));
  copy->Close();
  EXPECT_EQ(test::IndependentCheck(memory->Get("copy.mdb"), false, test::kFixturePassword), "");
}

TEST_F(CopyTest, CompactingKeepsAttributesOfColumnsAndRulesOfTables) {
  ColumnSpec link = test::MakeColumn("link", ColumnType::Memo);
  ColumnSpec age = test::MakeColumn("age", ColumnType::Long);
  age.validation = {">0", "ages are positive"};
  database->CreateTable({"linked", {link, age}, {}, ValidationRule{"[link] Is Not Null", ""}});
  {
    const auto rows = Select("select * from linked");
    rows->AddNew();
    rows->Fields("link").Value("home#http://example.org#");
    rows->Update();
  }
  database->Close();
  // A hyperlink, which only other programs make.
  std::vector<std::byte> bytes = memory->Get("league.mdb");
  constexpr std::size_t kFirstColumn = 0x3F;
  for (std::size_t page = 0; page < bytes.size(); page += 4096) {
    std::byte* const column = bytes.data() + page + kFirstColumn;
    const bool isMemo = *column == static_cast<std::byte>(ColumnType::Memo);
    if (bytes[page] == std::byte{2} && isMemo && column[25] == static_cast<std::byte>(ColumnType::Long))
      column[15] |= std::byte{0x80};
  }
  memory->Put("league.mdb", bytes);
  database = Open();
  Engine().CompactDatabase(*database, "copy.mdb")->Close();
  const auto copy = OpenCopy();
  EXPECT_EQ(Difference(*copy, *database), "");
  EXPECT_EQ(copy->Table("linked").validation, database->Table("linked").validation);
  EXPECT_EQ(copy->Table("linked").columns[1].validation, age.validation);
  const auto hasHyperlink = [&](const std::vector<std::byte>& file) {
    for (std::size_t page = 0; page < file.size(); page += 4096) {
      if (file[page] == std::byte{2} && file[page + kFirstColumn + 15] == std::byte{0x82}) return true;
    }
    return false;
  };
  EXPECT_TRUE(hasHyperlink(memory->Get("league.mdb")));
  copy->Close();
  EXPECT_TRUE(hasHyperlink(memory->Get("copy.mdb")));
}

TEST_F(CopyTest, AFailingWriteLeavesNoFile) {
  for (std::size_t write = 1; write < 60; write += 7) {
    for (const bool compacts : {false, true}) {
      files->FailFrom(test::FileOperation::Write, write, ErrorNumber::DiskFull);
      ExpectError(ErrorNumber::DiskFull, [&] {
        if (compacts) Engine().CompactDatabase(*database, "copy.mdb")->Close();
        if (!compacts) Engine().CopyDatabase(*database, "copy.mdb", "");
      });
      files->Mend();
      EXPECT_FALSE(memory->Exists("copy.mdb")) << write;
    }
  }
}

TEST_F(CopyTest, ReplacingLeavesOneOrTheOther) {
  const std::string before = ContentOf(*database);
  Engine().CopyDatabase(*database, "copy.mdb", "");
  const auto prizes = Select("select * from [prize info] where id = 1");
  prizes->Edit();
  prizes->Fields("desc").Value("Changed");
  prizes->Update();
  Engine().ReplaceDatabase(*database, "copy.mdb", nullptr);
  EXPECT_FALSE(database->IsOpen());
  EXPECT_FALSE(memory->Exists("copy.mdb"));
  EXPECT_FALSE(memory->Exists(LogNameFor("league.mdb")));
  database = Open();
  EXPECT_TRUE(ContentOf(*database) == before);
  const auto copy = Engine().CopyDatabase(*database, "copy.mdb", "");
  ExpectError(ErrorNumber::FileHeldExclusively, [&] { OpenCopy(); });
  ExpectError(ErrorNumber::ObjectExists, [&] { Engine().PlaceDatabase("league.mdb", "copy.mdb", copy); });
}

}  // namespace
}  // namespace jet

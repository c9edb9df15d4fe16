#include <memory>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "tests/jet/dao/Databases.h"

namespace jet {
namespace {

using test::ExpectError;

class RecordsetTest : public test::LeagueTest {
 protected:
  std::vector<std::int32_t> Ids(Recordset& rows) {
    std::vector<std::int32_t> ids;
    for (; !rows.Eof(); rows.MoveNext())
      ids.push_back(*rows.Fields("id").Value().As<std::int32_t>());
    return ids;
  }
};

TEST_F(RecordsetTest, OpensOnTheFirstRowAndEndsAfterTheLast) {
  const auto rows = Select("select * from [position info] order by id");
  EXPECT_FALSE(rows->Eof());
  EXPECT_TRUE(rows->Updatable());
  EXPECT_EQ(rows->Fields("abbr").Value(), Value("QB"));
  EXPECT_EQ(Ids(*rows).size(), 8U);
  ExpectError(ErrorNumber::NoCurrentRecord, [&] { rows->MoveNext(); });
  ExpectError(ErrorNumber::NoCurrentRecord, [&] { rows->Fields("id").Value(); });
  ExpectError(ErrorNumber::NoCurrentRecord, [&] { rows->Edit(); });
  ExpectError(ErrorNumber::NoCurrentRecord, [&] { rows->Delete(); });
  rows->MoveFirst();
  EXPECT_EQ(rows->Fields("id").Value(), Value(1));
  const auto none = Select("select * from [position info] where id = 0");
  EXPECT_TRUE(none->Eof());
  none->MoveFirst();
  EXPECT_TRUE(none->Eof());
}

TEST_F(RecordsetTest, FieldsAreFoundByNameInAnyCase) {
  const auto rows = Select("select t.[name], t.[position id] from [team info] t");
  EXPECT_EQ(&rows->Fields("NAME"), &rows->Fields(0));
  EXPECT_EQ(&rows->Fields("t.Position ID"), &rows->Fields(1));
  EXPECT_EQ(rows->Fields(1).Type(), ColumnType::Long);
  EXPECT_EQ(*rows->Fields(0).Text(), *rows->Fields(0).Value().As<std::string>());
  ExpectError(ErrorNumber::CannotConvert, [&] { rows->Fields(1).Text(); });
  const std::string sentence = ExpectError(ErrorNumber::UnknownField, [&] { rows->Fields("nickname"); });
  EXPECT_NE(sentence.find("nickname"), std::string::npos);
  ExpectError(ErrorNumber::UnknownField, [&] { rows->Fields(2); });
  ExpectError(ErrorNumber::UnknownField, [&] { rows->Fields("x.name"); });
}

TEST_F(RecordsetTest, FindFirstSearchesFromTheStart) {
  const auto rows = Select("select * from [playing info] where [season id] = 11");
  rows->FindFirst("[manager id] = 18");
  EXPECT_FALSE(rows->NoMatch());
  EXPECT_EQ(rows->Fields("ranking").Value(), Value(2));
  rows->FindFirst("[manager id] = 7 and ranking < 5");
  EXPECT_EQ(rows->Fields("ranking").Value(), Value(1));
  rows->FindFirst("[manager id] = 999");
  EXPECT_TRUE(rows->NoMatch());
  ExpectError(ErrorNumber::NoCurrentRecord, [&] { rows->Edit(); });
  ExpectError(ErrorNumber::NoCurrentRecord, [&] { rows->Fields("ranking").Value(); });
  ExpectError(ErrorNumber::NoCurrentRecord, [&] { rows->MoveNext(); });
  rows->MoveFirst();
  EXPECT_FALSE(rows->NoMatch());
  ExpectError(ErrorNumber::SyntaxErrorInExpression, [&] { rows->FindFirst(""); });
  ExpectError(ErrorNumber::SyntaxErrorInExpression, [&] { rows->FindFirst("[manager id] ="); });
  ExpectError(ErrorNumber::UnknownColumnInStatement, [&] { rows->FindFirst("nothing = 1"); });
  ExpectError(ErrorNumber::TypeMismatch, [&] { rows->FindFirst("ranking = 'x'"); });
  const auto snapshot = Select(
      "select m.[last name] from [playing info] p inner join [manager info] m on p.[manager id] = m.id order "
      "by m.[last "
      "name]");
  const Value last = Select("select max([last name]) from [manager info]")->Fields(0).Value();
  snapshot->FindFirst("[last name] = '" + last.ToText() + "'");
  EXPECT_FALSE(snapshot->NoMatch());
  EXPECT_EQ(snapshot->Fields(0).Value(), last);
  const auto none = Select("select * from [playing info] where [season id] = 99");
  none->FindFirst("[manager id] = 7");
  EXPECT_TRUE(none->NoMatch());
  EXPECT_TRUE(none->Eof());
}

TEST_F(RecordsetTest, SnapshotsCannotBeChanged) {
  const auto rows = Select("select max(id) as highest from [position info]");
  EXPECT_FALSE(rows->Updatable());
  ExpectError(ErrorNumber::CannotUpdate, [&] { rows->AddNew(); });
  ExpectError(ErrorNumber::CannotUpdate, [&] { rows->Edit(); });
  ExpectError(ErrorNumber::CannotUpdate, [&] { rows->Delete(); });
  ExpectError(ErrorNumber::CannotUpdate, [&] { rows->Update(); });
  ExpectError(ErrorNumber::CannotUpdate, [&] { rows->Fields(0).Value(1); });
  ExpectError(ErrorNumber::CannotUpdate, [&] { Select("select * from MSysObjects")->Delete(); });
}

TEST_F(RecordsetTest, DynasetFixesItsRowsAndReadsTheirValuesLater) {
  const auto rows = Select("select * from [position info] where id < 4");
  const auto other = Select("select * from [position info] where id = 1");
  EXPECT_EQ(rows->Fields("desc").Value(), Value("Quarterback"));
  other->Edit();
  other->Fields("desc").Value("Passer");
  other->Fields("id").Value(100);
  ExpectError(ErrorNumber::RowIsReferred, [&] { other->Update(); });
  other->CancelUpdate();
  other->Edit();
  other->Fields("desc").Value("Passer");
  other->Update();
  EXPECT_EQ(rows->Fields("desc").Value(), Value("Passer"));
  other->AddNew();
  other->Fields("id").Value(0);
  other->Update();
  EXPECT_EQ(Ids(*rows), (std::vector<std::int32_t>{1, 2, 3}));
  const auto snapshot = Select("select max([desc]) from [position info] where id = 1");
  other->MoveFirst();
  other->Edit();
  other->Fields("desc").Value("Thrower");
  other->Update();
  EXPECT_EQ(snapshot->Fields(0).Value(), Value("Passer"));
}

TEST_F(RecordsetTest, RowsDeletedMeanwhileAreToldOf) {
  const auto rows = Select("select * from [position info]");
  rows->FindFirst("id = 12");
  EXPECT_EQ(rows->Fields("abbr").Value(), Value("LS"));
  rows->Edit();
  const auto other = Select("select * from [position info] where id = 12");
  other->Delete();
  ExpectError(ErrorNumber::RowDeleted, [&] { rows->Fields("abbr").Value(); });
  rows->Fields("abbr").Value("XX");
  ExpectError(ErrorNumber::RowDeleted, [&] { rows->Update(); });
  ExpectError(ErrorNumber::RowDeleted, [&] { rows->Edit(); });
  ExpectError(ErrorNumber::RowDeleted, [&] { rows->Delete(); });
  rows->FindFirst("id = 12");
  EXPECT_TRUE(rows->NoMatch());
}

TEST_F(RecordsetTest, PageUsedAgainDoesNotBringDeletedRowsBack) {
  TableSpec table;
  table.name = "heap";
  table.columns = {test::MakeColumn("id", ColumnType::Long),
                   test::MakeColumn("filler", ColumnType::Text, 255)};
  database->CreateTable(table);
  const auto add = [&](std::int32_t id) {
    const auto rows = Select("select * from heap");
    rows->AddNew();
    rows->Fields("id").Value(id);
    rows->Fields("filler").Value(std::string(200, 'x'));
    rows->Update();
  };
  for (std::int32_t id = 0; id < 30; ++id)
    add(id);
  const auto old = Select("select * from heap");
  for (const auto rows = Select("select * from heap"); !rows->Eof(); rows->MoveNext())
    rows->Delete();
  for (std::int32_t id = 100; id < 130; ++id)
    add(id);
  ExpectError(ErrorNumber::RowDeleted, [&] { old->Fields("id").Value(); });
  for (; !old->Eof(); old->MoveNext())
    ExpectError(ErrorNumber::RowDeleted, [&] { old->Edit(); });
  // A row added through the recordset itself stays known, though its page was free before.
  old->AddNew();
  old->Fields("id").Value(500);
  old->Update();
  old->FindFirst("id = 500");
  EXPECT_FALSE(old->NoMatch());
  EXPECT_EQ(One("select count(*) from heap"), Value(31));
}

TEST_F(RecordsetTest, DeletingWhileMoving) {
  const auto rows = Select("select * from [winning info] where [season id] = 11");
  std::size_t deleted = 0;
  for (; !rows->Eof(); rows->MoveNext(), ++deleted) {
    rows->Delete();
    ExpectError(ErrorNumber::RowDeleted, [&] { rows->Fields("id").Value(); });
    ExpectError(ErrorNumber::RowDeleted, [&] { rows->Edit(); });
  }
  EXPECT_GT(deleted, 5U);
  rows->MoveFirst();
  EXPECT_TRUE(rows->Eof());
  EXPECT_EQ(One("select count(*) from [winning info] where [season id] = 11"), Value(0));
  EXPECT_EQ(One("select count(*) from [winning info]"), Value(static_cast<std::int32_t>(212 - deleted)));
}

}  // namespace
}  // namespace jet

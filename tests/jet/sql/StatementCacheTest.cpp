#include <memory>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "jet/dao/DBEngine.h"
#include "jet/sql/StatementCache.h"
#include "tests/support/MemoryFileSystem.h"

namespace jet::sql {
namespace {

StatementShape ShapeOf(const std::string& statement) {
  StatementShape shape;
  shape.Take(statement);
  return shape;
}

TEST(StatementShape, TakesOutWholeNumbersOnly) {
  const StatementShape shape = ShapeOf("select a1 from [t 2] where id=17 and b > 0042");
  EXPECT_EQ(shape.text, "select a1 from [t 2] where id=\x01 and b > \x01");
  ASSERT_EQ(shape.numbers.count, 2U);
  EXPECT_EQ(shape.numbers.values[0], 17);
  EXPECT_EQ(shape.numbers.values[1], 42);
  for (const char* other :
       {"'it''s 5' \"6 '7\" [8", "1.5 .5 5. 1e5 3abc t.5 x5", "#2024-09-05# 1234567890", "'5"})
    EXPECT_EQ(ShapeOf(other).numbers.count, 0U) << other;
  EXPECT_EQ(ShapeOf("1 2 3 4 5 6 7 8 9").numbers.count, StatementNumbers::kMost);
}

TEST(StatementShape, IsToldFromThatOfAnotherStatement) {
  const std::vector<std::string> statements = {"",
                                               "n = 1",
                                               "n = 22",
                                               "n = 333333333",
                                               "n = 4444444444",
                                               "n = ",
                                               "n = 1 ",
                                               "n = 1.5",
                                               "n = 1a",
                                               "n1 = 1",
                                               "n = 1 or n = 2",
                                               "n = 3 or n = 4",
                                               "n = \x01",
                                               "1 2 3 4 5",
                                               "1 2 3 4 5 6 7 8 9",
                                               "9 8 7 6 5 4 3 2 9",
                                               "9 8 7 6 5 4 3 2 1"};
  for (const std::string& statement : statements) {
    const StatementShape of = ShapeOf(statement);
    if (statement.find(StatementShape::kPlaceholder) != std::string::npos) continue;
    for (const std::string& other : statements) {
      const StatementShape expected = ShapeOf(other);
      const bool alike = expected.text == of.text && expected.numbers.count == of.numbers.count;
      StatementShape shape;
      ASSERT_EQ(shape.TakeIfLike(of.text, other), alike) << statement << " and " << other;
      if (!alike) continue;
      for (std::size_t i = 0; i < expected.numbers.count; ++i)
        EXPECT_EQ(shape.numbers.values[i], expected.numbers.values[i]) << other;
    }
  }
}

ColumnSpec Column(const char* name, ColumnType type) {
  ColumnSpec column;
  column.name = name;
  column.type = type;
  column.length = type == ColumnType::Text ? 20 : 0;
  return column;
}

class StatementCacheTest : public testing::Test {
 protected:
  StatementCacheTest() {
    EngineOptions options;
    options.files = std::make_shared<test::MemoryFileSystem>();
    database = DBEngine(options).CreateDatabase("cache.mdb");
    TableSpec table;
    table.name = "t";
    table.columns = {Column("n", ColumnType::Long), Column("d", ColumnType::Double),
                     Column("s", ColumnType::Text)};
    database->CreateTable(table);
    database->CreateIndex("t", {.name = "n", .columns = {{"n"}}});
    database->CreateIndex("t", {.name = "d", .columns = {{"d"}}});
    const auto rows = database->OpenRecordset("select * from t");
    for (std::int32_t n = -3; n <= 12; ++n) {
      rows->AddNew();
      rows->Fields("n").Value(n);
      rows->Fields("d").Value(static_cast<double>(n) / 2);
      rows->Fields("s").Value("5" + std::to_string(n));
      rows->Update();
    }
  }

  std::vector<std::int32_t> Found(const std::string& condition) {
    std::vector<std::int32_t> found;
    const auto rows = database->OpenRecordset("select n from t where " + condition);
    for (; !rows->Eof(); rows->MoveNext())
      found.push_back(*rows->Fields(0).Value().As<std::int32_t>());
    plan = rows->Plan();
    return found;
  }

  std::shared_ptr<Database> database;
  std::string plan;
};

using Numbers = std::vector<std::int32_t>;

// Each statement after one of the same shape, whose plan it runs by.
TEST_F(StatementCacheTest, StatementsOfOneShapeFindTheirOwnRows) {
  EXPECT_EQ(Found("n = 3"), Numbers{3});
  EXPECT_EQ(plan, "t: index n = 3");
  EXPECT_EQ(Found("n = 7"), Numbers{7});
  EXPECT_EQ(plan, "t: index n = 7");
  EXPECT_EQ(Found("n = -2"), Numbers{-2});
  EXPECT_EQ(Found("n = -1"), Numbers{-1});
  EXPECT_EQ(plan, "t: index n = -1");
  EXPECT_EQ(Found("n >= 4 and n < 6"), (Numbers{4, 5}));
  EXPECT_EQ(Found("n >= 9 and n < 30"), (Numbers{9, 10, 11, 12}));
  EXPECT_EQ(plan, "t: index n >= 9 < 30");
  // Zero has two keys in floating columns: what finds 2 by index must not look for it there.
  EXPECT_EQ(Found("d = 2"), Numbers{4});
  EXPECT_EQ(Found("d = 0"), Numbers{0});
  EXPECT_EQ(Found("d = 3"), Numbers{6});
  // A pattern is made ready once.
  EXPECT_EQ(Found("s like 57"), Numbers{7});
  EXPECT_EQ(Found("s like 58"), Numbers{8});
  EXPECT_EQ(Found("s = '53' and n < 100"), Numbers{3});
  EXPECT_EQ(Found("s = '53' and n < 1"), Numbers{});
  EXPECT_EQ(Found("s <> '\x01' and n = 5"), Numbers{5});
  EXPECT_EQ(plan, "t: index n = 5");
  EXPECT_THROW(Found("n = \x01"), Error);
}

TEST_F(StatementCacheTest, PlansAnewWhenTheSchemaChanges) {
  EXPECT_EQ(Found("s = '54'"), Numbers{4});
  EXPECT_EQ(plan, "scan of t");
  const auto before = database->OpenRecordset("select n from t where s = '54'");
  database->CreateIndex("t", {.name = "s", .columns = {{"s"}}});
  EXPECT_EQ(Found("s = '54'"), Numbers{4});
  EXPECT_EQ(plan, "t: index s = '54'");
  EXPECT_EQ(before->Plan(), "scan of t");

  database->BeginTrans();
  TableSpec table;
  table.name = "u";
  table.columns = {Column("n", ColumnType::Long)};
  database->CreateTable(table);
  database->OpenRecordset("select * from u where n = 1");
  database->Rollback();
  EXPECT_THROW(database->OpenRecordset("select * from u where n = 2"), Error);
}

TEST_F(StatementCacheTest, RowsReadAfterAChangeAreNotThoseOfBefore) {
  const auto rows = database->OpenRecordset("select * from t where n = 5");
  Field& text = rows->Fields("s");
  EXPECT_EQ(text.Value(), Value("55"));
  const auto others = database->OpenRecordset("select * from t where n = 5");
  others->Edit();
  others->Fields("s").Value("other");
  others->Update();
  EXPECT_EQ(text.Value(), Value("other"));
  EXPECT_EQ(*text.Text(), "other");
  rows->Edit();
  text.Value("mine");
  EXPECT_EQ(text.Value(), Value("mine"));
  rows->CancelUpdate();
  EXPECT_EQ(text.Value(), Value("other"));
  others->Delete();
  EXPECT_THROW(text.Value(), Error);
}

}  // namespace
}  // namespace jet::sql

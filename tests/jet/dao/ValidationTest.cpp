#include <algorithm>
#include <string>
#include <string_view>
#include <vector>

#include <gtest/gtest.h>

#include "jet/Check.h"
#include "tests/jet/dao/Databases.h"

// Validation rules and default values that are expressions.
namespace jet {
namespace {

using test::ExpectError;
using test::MakeColumn;

class ValidationTest : public test::LeagueTest {
 protected:
  /// Makes table 't' with a primary key 'id' and columns; those of a name in `rules` have that rule.
  void MakeTable(std::vector<ColumnSpec> columns, std::optional<ValidationRule> rule = std::nullopt) {
    TableSpec table{"t", {MakeColumn("id", ColumnType::Long)}, {}, std::move(rule)};
    table.columns.insert(table.columns.end(), columns.begin(), columns.end());
    table.indexes = {{"PrimaryKey", {{"id"}}, true, true, false, false, false}};
    database->CreateTable(table);
  }
  static ColumnSpec Ruled(const char* name, ColumnType type, const std::string& rule) {
    ColumnSpec column = MakeColumn(name, type, type == ColumnType::Text ? 20 : 0);
    column.validation = {rule, ""};
    return column;
  }
  void Add(const std::vector<std::pair<const char*, Value>>& values) {
    const auto rows = Select("select * from t");
    rows->AddNew();
    rows->Fields("id").Value(m_next++);
    for (const auto& [name, value] : values)
      rows->Fields(name).Value(value);
    rows->Update();
  }
  /// Whether a column with the rule takes the value; the error's number when it does not.
  int Takes(ColumnType type, const std::string& rule, const Value& value) {
    database = Open();  // without the table of an earlier question
    MakeTable({Ruled("c", type, rule)});
    int number = 0;
    try {
      Add({{"c", value}});
    } catch (const Error& error) {
      number = static_cast<int>(error.Number());
    }
    database->Close();
    memory->Put("league.mdb", test::ReadWholeFile(test::FixturePath("league.mdb")));
    return number;
  }

  static constexpr int kViolated = static_cast<int>(ErrorNumber::RuleViolated);
  static constexpr int kUnknown = static_cast<int>(ErrorNumber::FeatureNotSupported);
  std::int32_t m_next = 1;
};

TEST_F(ValidationTest, RulesOfColumns) {
  database->Close();
  struct Case {
    ColumnType type;
    const char* rule;
    Value good;
    Value bad;
  };
  const auto date = [](double days) { return Value(DateTime{days}); };
  for (const Case& rule : {
           Case{ColumnType::Long, ">0", 1, -5},
           {ColumnType::Long, ">=1 And <=10 Or 99", 99, 11},
           {ColumnType::Long, "Between 1 And 10", 10, 11},
           {ColumnType::Long, "Not Between 1 And 10", 0, 10},
           {ColumnType::Long, "In (1,3, 5)", 3, 2},
           {ColumnType::Long, "1 Or (3 Or 5)", 5, 4},
           {ColumnType::Long, "[c] Mod 2 = 0", 4, 5},
           {ColumnType::Long, "t.c*2+1 > 2^3 - 1", 4, 3},
           {ColumnType::Long, "<>-1", 1, -1},
           {ColumnType::Long, "Is Not Null", 1, Null()},
           {ColumnType::Long, "Not 5", 4, 5},
           {ColumnType::Long, "=7\\2", 3, 4},
           {ColumnType::Long, "IIf([c]>10, [c]<20, [c]=1)", 1, 20},
           {ColumnType::Currency, ">=0.01", "0.01", "0.0099"},
           {ColumnType::Double, "<1/3", 0.3, 0.34},
           {ColumnType::Text, "\"QB\" Or 'RB'", "qb", "wr"},
           {ColumnType::Text, "Like \"A[b-d]*\"", "Acme", "Ae"},
           {ColumnType::Text, "Not Like 'x*'", "y", "X"},
           {ColumnType::Text, "Len([c])>=3 And Len([c])<5", "abc", "ab"},
           {ColumnType::Text, "\"a\" & \"b\"", "AB", "a"},
           {ColumnType::Text, "In ('Łódź', 'Kraków')", "łódź", "Lodz"},
           {ColumnType::DateTime, ">=#1/31/2000#", date(36556), date(36555)},
           {ColumnType::DateTime, "<#2000-01-31 12:00#", date(36556.25), date(36556.5)},
           {ColumnType::DateTime, "<Date()+1", date(40000), date(2000000)},
           {ColumnType::DateTime, "Between Now()-100000 And Now()", date(40000), date(2000000)},
           {ColumnType::YesNo, "True", true, false},
           {ColumnType::YesNo, "=Yes", true, false},
       }) {
    EXPECT_EQ(Takes(rule.type, rule.rule, rule.good), 0) << rule.rule;
    EXPECT_EQ(Takes(rule.type, rule.rule, rule.bad), kViolated) << rule.rule;
    const bool allowsNull = std::string(rule.rule) != "Is Not Null" && rule.type != ColumnType::YesNo &&
                            std::string(rule.rule) != "IIf([c]>10, [c]<20, [c]=1)";
    if (allowsNull) {
      EXPECT_EQ(Takes(rule.type, rule.rule, Null()), 0) << "a rule that gives Null holds";
    }
  }
}

TEST_F(ValidationTest, WhatCannotBeEvaluated_IsRefusedAndNeverIgnored) {
  database->Close();
  for (const char* rule : {"DLookUp(\"x\",\"t\")>0", "[other]>0", ">'text'", "> ", "(1+2)*3", "In 5",
                           "1/0 > [c]", "Forms!x!y > 1", "Between 1", "> 2 3"}) {
    EXPECT_EQ(Takes(ColumnType::Long, rule, 1), kUnknown) << rule;
  }
  std::string chain = ">0";
  for (int i = 0; i < 10000; ++i)
    chain += "+1";
  EXPECT_EQ(Takes(ColumnType::Long, chain, 1), kUnknown) << "a tree as deep as this would exhaust the stack";
}

TEST_F(ValidationTest, AnUnknownRule_StopsNewRowsAndAssignmentsToItsColumn) {
  MakeTable({MakeColumn("free", ColumnType::Long), Ruled("c", ColumnType::Long, "[c]>=0")});
  Add({{"c", 1}});
  Add({{"c", 2}});
  database->Close();
  // Another program changes the rule to one that names another column.
  std::vector<std::byte> bytes = memory->Get("league.mdb");
  const auto units = [](std::u16string_view text) {
    std::vector<std::byte> result;
    for (const char16_t unit : text)
      result.insert(result.end(), {static_cast<std::byte>(unit & 0xFF), std::byte{0}});
    return result;
  };
  const auto known = units(u"[c]>=0");
  const auto unknown = units(u"[d]>=0");
  const auto at = std::search(bytes.begin(), bytes.end(), known.begin(), known.end());
  ASSERT_NE(at, bytes.end());
  std::copy(unknown.begin(), unknown.end(), at);
  memory->Put("league.mdb", bytes);
  database = Open();

  const std::string sentence = ExpectError(ErrorNumber::FeatureNotSupported, [&] { Add({{"free", 1}}); });
  for (const char* part : {"'c'", "'t'", "[d]>=0"})
    EXPECT_NE(sentence.find(part), std::string::npos) << sentence;
  const auto rows = Select("select * from t order by id");
  rows->Edit();
  rows->Fields("free").Value(7);
  rows->Update();
  rows->Edit();
  rows->Fields("c").Value(7);
  ExpectError(ErrorNumber::FeatureNotSupported, [&] { rows->Update(); });
  rows->CancelUpdate();
  rows->Delete();
  EXPECT_EQ(One("select count(*) from t"), Value(1));
}

TEST_F(ValidationTest, RulesOfTables_HoldForNewRowsAndEdits) {
  MakeTable(
      {MakeColumn("low", ColumnType::Long), MakeColumn("high", ColumnType::Long),
       MakeColumn("note", ColumnType::Memo)},
      ValidationRule{"[low] <= [high] And ([note] Is Null Or Len([note]) > 2)", "low must come before high"});
  Add({{"low", 1}, {"high", 2}, {"note", "long enough"}});
  Add({{"low", 1}});  // Null: holds
  const std::string sentence = ExpectError(ErrorNumber::RuleViolated, [&] {
    Add({{"low", 3}, {"high", 2}});
  });
  EXPECT_NE(sentence.find("low must come before high"), std::string::npos) << sentence;
  const auto rows = Select("select * from t where id = 1");
  rows->Edit();
  rows->Fields("high").Value(0);
  ExpectError(ErrorNumber::RuleViolated, [&] { rows->Update(); });
  rows->CancelUpdate();
  rows->Edit();
  rows->Fields("note").Value("x");
  ExpectError(ErrorNumber::RuleViolated, [&] { rows->Update(); });
  rows->CancelUpdate();
  rows->Edit();
  rows->Fields("high").Value(9);
  rows->Update();
  rows->Delete();
  EXPECT_EQ(One("select count(*) from t"), Value(1));
  EXPECT_TRUE(database->Check().findings.empty());
}

TEST_F(ValidationTest, DefaultsThatAreExpressions) {
  ColumnSpec day = MakeColumn("day", ColumnType::DateTime);
  day.defaultValue = "=Date()";
  ColumnSpec sum = MakeColumn("sum", ColumnType::Currency);
  sum.defaultValue = "2*3+0.5";
  ColumnSpec name = MakeColumn("name", ColumnType::Text, 20);
  name.defaultValue = "\"a\" & 'b'";
  ColumnSpec unknown = MakeColumn("unknown", ColumnType::Long);
  unknown.defaultValue = "DMax(\"x\",\"y\")";
  MakeTable({day, sum, name, unknown});
  Add({{"unknown", 5}});
  EXPECT_EQ(One("select sum from t").ToText(), "6.5");
  EXPECT_EQ(One("select name from t"), Value("ab"));
  const Value today = One("select day from t");
  ASSERT_NE(today.As<DateTime>(), nullptr);
  EXPECT_GT(today.As<DateTime>()->days, 45000);
  EXPECT_EQ(today.As<DateTime>()->days, static_cast<double>(static_cast<int>(today.As<DateTime>()->days)));
  const std::string sentence = ExpectError(ErrorNumber::FeatureNotSupported, [&] { Add({}); });
  EXPECT_NE(sentence.find("DMax"), std::string::npos) << sentence;
}

}  // namespace
}  // namespace jet

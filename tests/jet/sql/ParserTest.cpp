#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "jet/Error.h"
#include "jet/sql/Parser.h"

namespace jet::sql {
namespace {

// Writes a condition with every pair of parentheses, to show how it was understood.
std::string Written(const Expression& expression) {
  using Kind = Expression::Kind;
  static const char* const kSigns[] = {"=", "<>", "<", "<=", ">", ">="};
  const auto all = [&](const std::string& separator) {
    std::string text = "(";
    for (const Expression& operand : expression.operands)
      text += (text.size() > 1 ? separator : "") + Written(operand);
    return text + ")";
  };
  switch (expression.kind) {
    case Kind::And:
      return all(" and ");
    case Kind::Or:
      return all(" or ");
    case Kind::Not:
      return "not" + all("");
    case Kind::IsNull:
      return all("") + " is null";
    case Kind::Like:
      return all(" like ");
    case Kind::Compare:
      return all(kSigns[static_cast<std::size_t>(expression.comparison)]);
    default:
      return Describe(expression);
  }
}

std::string Criterion(std::string_view text) {
  return Written(ParseCriterion(text));
}

void ExpectError(std::string_view sql, ErrorNumber number, const std::string& named = {}) {
  try {
    ParseSelect(sql);
    ADD_FAILURE() << "understood: " << sql;
  } catch (const Error& error) {
    EXPECT_EQ(error.Number(), number) << sql << "\n" << error.what();
    EXPECT_NE(std::string(error.what()).find(named), std::string::npos) << error.what();
  }
}

TEST(Parser, PrecedenceIsNotAndOr) {
  EXPECT_EQ(Criterion("a=1 or b=2 and not c=3"), "(([a]=1) or (([b]=2) and not(([c]=3))))");
  EXPECT_EQ(Criterion("(a=1 or b=2) and c<>3"), "((([a]=1) or ([b]=2)) and ([c]<>3))");
  EXPECT_EQ(Criterion("not not a"), "not(not([a]))");
  EXPECT_EQ(Criterion("[week #] is not null"), "not(([week #]) is null)");
  EXPECT_EQ(Criterion("x not like 'a*'"), "not(([x] like 'a*'))");
  EXPECT_EQ(Criterion("5 >= t.[x y]"), "(5>=[t].[x y])");
  EXPECT_EQ(Criterion("A IS NULL OR b LIKE \"x\""), "(([A]) is null or ([b] like 'x'))");
}

TEST(Parser, Literals) {
  EXPECT_EQ(Criterion("a = -5"), "([a]=-5)");
  EXPECT_EQ(Criterion("a = + 2.50"), "([a]=2.5)");
  EXPECT_EQ(Criterion("a = -2147483648"), "([a]=-2147483648)");
  EXPECT_EQ(Criterion("a = 'it''s'"), "([a]='it's')");
  EXPECT_EQ(Criterion("a = \"say \"\"x\"\"\""), "([a]='say \"x\"')");
  EXPECT_EQ(Criterion("a = true and b = FALSE and c = Null"), "(([a]=True) and ([b]=False) and ([c]=Null))");
  EXPECT_EQ(Criterion("a < #2024-09-05 19:30#"), "([a]<2024-09-05 19:30:00)");
  EXPECT_EQ(Criterion("a = ''"), "([a]='')");
}

TEST(Parser, WholeStatement) {
  const SelectStatement statement = ParseSelect(
      "\r\nSELECT p.[id], m.*, [x y] AS z\n FROM ([player info] p INNER JOIN [manager info] AS m ON "
      "p.[a]=m.b)\t"
      "join third on third.c = p.d WHERE p.x=1 ORDER BY p.[desc] DESC, z asc, id ; ");
  ASSERT_EQ(statement.items.size(), 3U);
  EXPECT_EQ(Describe(statement.items[0].column), "[p].[id]");
  EXPECT_TRUE(statement.items[1].star);
  EXPECT_EQ(statement.items[1].column.table, "m");
  EXPECT_EQ(statement.items[2].alias, "z");
  ASSERT_EQ(statement.tables.size(), 3U);
  EXPECT_EQ(statement.tables[0].name, "player info");
  EXPECT_EQ(statement.tables[1].alias, "m");
  EXPECT_EQ(statement.tables[2].alias, "");
  ASSERT_EQ(statement.conditions.size(), 3U);
  EXPECT_EQ(Written(statement.conditions[0]), "([p].[a]=[m].[b])");
  ASSERT_EQ(statement.order.size(), 3U);
  EXPECT_EQ(Describe(statement.order[0].column), "[p].[desc]");
  EXPECT_FALSE(statement.order[0].ascending);
  EXPECT_TRUE(statement.order[2].ascending);
}

TEST(Parser, Aggregates) {
  const SelectStatement statement = ParseSelect("select max(id) as highestid, count(*), AVG([t].[x]) from t");
  EXPECT_EQ(statement.items[0].aggregate, Aggregate::Max);
  EXPECT_EQ(statement.items[0].alias, "highestid");
  EXPECT_TRUE(statement.items[1].star);
  EXPECT_EQ(statement.items[2].aggregate, Aggregate::Average);
}

TEST(Parser, OnlySelectsAreRun) {
  for (const char* sql :
       {"", "   ", "delete from [player info]", "update t set a=1", "selec * from t", "[select] x"})
    ExpectError(sql, ErrorNumber::NotASelect);
}

TEST(Parser, MistakesInTheFromClause) {
  ExpectError("select [id] from [] where [id] = 3", ErrorNumber::SyntaxErrorInFrom, "[]");
  for (const char* sql : {"select *", "select * from", "select * from where id = 1", "select * from a b c",
                          "select * from a, b", "select * from [a", "select * from a left join b on a.x=b.x",
                          "select * from a inner join b", "select * from a inner b", "select * from (a",
                          "select * from 'a'", "select * from a as", "select * from a group by x"}) {
    ExpectError(sql, ErrorNumber::SyntaxErrorInFrom);
  }
}

TEST(Parser, MistakesElsewhere) {
  ExpectError("select [id] from t where [last name] like 'o'brien*'", ErrorNumber::SyntaxErrorInExpression,
              "brien");
  for (const char* sql : {"select from t",
                          "select id, from t",
                          "select * from t where",
                          "select * from t where [] = 3",
                          "select * from t where a =",
                          "select * from t where a = 'x",
                          "select * from t where (a = 1",
                          "select * from t where a = 1)",
                          "select * from t where a == 1",
                          "select * from t where a ! 1",
                          "select * from t where a is 3",
                          "select * from t where 3abc = 1",
                          "select * from t where a = 1.2.3",
                          "select * from t where a = - 'x'",
                          "select * from t where a not b",
                          "select * from t where f(a) = 1",
                          "select * from t order id",
                          "select * from t order by",
                          "select * from t order by 1",
                          "select foo(id) from t",
                          "select distinct id from t",
                          "select sum(*) from t",
                          "select max(id from t",
                          "select id as from t",
                          "select * from t;;",
                          "select * from t where a = 1 group by b",
                          "select * from t where a = #2024-99-99#",
                          "select * from a join b on where x",
                          "select * from t where a = 1 b"}) {
    ExpectError(sql, ErrorNumber::SyntaxErrorInExpression);
  }
  ExpectError(std::string("select * from t where a = 1\0 or 1 = 1", 37),
              ErrorNumber::SyntaxErrorInExpression);
}

TEST(Parser, DepthAndLengthAreBounded) {
  const auto nested = [](std::size_t depth) {
    return "select * from t where " + std::string(depth, '(') + "a = 1" + std::string(depth, ')');
  };
  EXPECT_NO_THROW(ParseSelect(nested(100)));
  ExpectError(nested(30000), ErrorNumber::SyntaxErrorInExpression, "deeper");
  ExpectError("select * from " + std::string(30000, '('), ErrorNumber::SyntaxErrorInFrom, "deeper");
  std::string nots = "select * from t where ";
  for (int i = 0; i < 10000; ++i)
    nots += "not ";
  ExpectError(nots + "a", ErrorNumber::SyntaxErrorInExpression, "deeper");
  ExpectError("select * from t where a = '" + std::string(kMaxStatementLength, 'x') + "'",
              ErrorNumber::SyntaxErrorInExpression, "longer");
  // Long is not deep.
  std::string chain = "select * from t where a = 1";
  while (chain.size() < kMaxStatementLength - 20)
    chain += " or a = 1";
  EXPECT_GT(ParseSelect(chain).conditions[0].operands.size(), 7000U);
}

TEST(Parser, CutOffAnywhereItAnswersOrRefuses) {
  const std::string sql =
      "select p.[id], max(q) as m from ([player info] p inner join [x] as y on p.[a] = y.b) where (p.[s] = "
      "-1.5e3) and "
      "not (m.[n] like 'a''*' or z is not null) order by p.[desc] desc, id;";
  for (std::size_t length = 0; length < sql.size(); ++length) {
    for (const char* tail : {"", ")", "'", "]", "\xFF"}) {
      try {
        ParseSelect(sql.substr(0, length) + tail);
      } catch (const Error&) {
      }
    }
  }
}

}  // namespace
}  // namespace jet::sql

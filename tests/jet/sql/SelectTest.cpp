#include <algorithm>
#include <memory>
#include <random>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "jet/Error.h"
#include "jet/dao/DBEngine.h"
#include "jet/format/SortKey.h"
#include "tests/support/TestFiles.h"

// Statements on a league file that an independent writer made.
namespace jet {
namespace {

class SelectTest : public testing::Test {
 protected:
  void SetUp() override {
    database =
        DBEngine().OpenDatabase(test::CopyFixture("league.mdb", folder), true, true, test::kFixtureConnect);
  }

  /// Rows as texts: values separated by '|', Null as \N.
  std::vector<std::string> Rows(const std::string& sql) {
    const auto rows = database->OpenRecordset(sql);
    std::vector<std::string> texts;
    for (; !rows->Eof(); rows->MoveNext()) {
      std::string text;
      for (std::size_t i = 0; i < rows->FieldCount(); ++i) {
        const Value value = rows->Fields(i).Value();
        text += (i > 0 ? "|" : "") + (value.IsNull() ? std::string("\\N") : value.ToText());
      }
      texts.push_back(text);
    }
    return texts;
  }
  std::string Plan(const std::string& sql) { return database->OpenRecordset(sql)->Plan(); }
  void ExpectError(const std::string& sql, ErrorNumber number, const std::string& named = {}) {
    try {
      database->OpenRecordset(sql);
      ADD_FAILURE() << "ran: " << sql;
    } catch (const Error& error) {
      EXPECT_EQ(error.Number(), number) << sql << "\n" << error.what();
      EXPECT_NE(std::string(error.what()).find(named), std::string::npos) << error.what();
    }
  }

  test::TempFolder folder;
  std::shared_ptr<Database> database;
};

std::string Escaped(const Value& value) {
  if (value.IsNull()) return "\\N";
  if (const auto* yes = value.As<bool>()) return *yes ? "-1" : "0";
  std::string text;
  for (const char c : value.ToText()) {
    switch (c) {
      case '\\':
        text += "\\\\";
        break;
      case '\t':
        text += "\\t";
        break;
      case '\r':
        text += "\\r";
        break;
      case '\n':
        text += "\\n";
        break;
      default:
        text += c;
    }
  }
  return text;
}

struct KeyOfTable {
  const char* table;
  const char* order;
};
constexpr KeyOfTable kTables[] = {{"team info", "[id]"},
                                  {"manager info", "[id]"},
                                  {"settings", "[id]"},
                                  {"winning info", "[id]"},
                                  {"prize type info", "[type id]"},
                                  {"playing info", "[season id], [manager id]"},
                                  {"season info", "[id]"},
                                  {"player info", "[id]"},
                                  {"position info", "[id]"},
                                  {"money distribution info", "[season id], [prize id]"},
                                  {"draft info", "[season id], [draft no]"},
                                  {"prize info", "[id]"}};

TEST_F(SelectTest, EveryTableInKeyOrderIsAsAnIndependentReaderFoundIt) {
  for (const char* file :
       {"league.mdb", "league-encoded.mdb", "league-no-password.mdb", "league-stale-moved.mdb"}) {
    const test::TempFolder otherFolder;
    const auto other =
        DBEngine().OpenDatabase(test::CopyFixture(file, otherFolder), true, true, test::kFixtureConnect);
    for (const KeyOfTable& table : kTables) {
      const auto rows = other->OpenRecordset("select * from [" + std::string(table.table) + "] order by " +
                                             std::string(table.order));
      std::string text;
      for (std::size_t i = 0; i < rows->FieldCount(); ++i)
        text += (i > 0 ? "\t" : "") + rows->Fields(i).Name();
      text += "\n";
      for (; !rows->Eof(); rows->MoveNext()) {
        for (std::size_t i = 0; i < rows->FieldCount(); ++i)
          text += (i > 0 ? "\t" : "") + Escaped(rows->Fields(i).Value());
        text += "\n";
      }
      EXPECT_EQ(text, test::ReadWholeText(test::FixturePath("expected/" + std::string(table.table) + ".tsv")))
          << file << " " << table.table;
      EXPECT_EQ(rows->Plan(), std::string(table.table) + ": index PrimaryKey in its order");
    }
  }
}

TEST_F(SelectTest, MaximumIsReadOffTheIndex) {
  const auto rows = database->OpenRecordset("select max(id) as highestid from [player info]");
  EXPECT_EQ(rows->Fields("highestid").Value(), Value(3629));
  EXPECT_FALSE(rows->Updatable());
  EXPECT_EQ(rows->Plan(), "player info: end of index PrimaryKey");
  EXPECT_EQ(Rows("select min([id]), max(p.[id]) from [player info] p"), std::vector<std::string>{"1|3629"});
}

TEST_F(SelectTest, AggregatesOverNothing) {
  EXPECT_EQ(
      Rows("select max(id), min(id), sum(id), avg(id), count(id), count(*) from [player info] where id < 0"),
      std::vector<std::string>{"\\N|\\N|\\N|\\N|0|0"});
  EXPECT_EQ(Rows("select count(*), max(id) from [player info] where id = null"),
            std::vector<std::string>{"0|\\N"});
  const auto blank = DBEngine().OpenDatabase(test::CopyFixture("league-blank.mdb", folder), true, true,
                                             test::kFixtureConnect);
  const auto rows = blank->OpenRecordset("select max(id) as highestid from [player info]");
  ASSERT_FALSE(rows->Eof());
  EXPECT_TRUE(rows->Fields("highestid").Value().IsNull());
  rows->MoveNext();
  EXPECT_TRUE(rows->Eof());
}

TEST_F(SelectTest, AggregatesCountValuesWithoutNull) {
  EXPECT_EQ(Rows("select count(*), count([team id]), count([position id]) from [player info]"),
            std::vector<std::string>{"2500|1855|2463"});
  EXPECT_EQ(
      Rows("select sum([ranking]), avg([ranking]), min([ranking]), max([ranking]) from [playing info] where "
           "[season id] = 11"),
      std::vector<std::string>{"78|6.5|1|12"});
  EXPECT_EQ(Rows("select max([first name]) from [manager info] where id < 3").size(), 1U);
}

TEST_F(SelectTest, StatementsUseTheIndexes) {
  EXPECT_EQ(Plan("select * from [settings] where [ID] = 1"), "settings: index PrimaryKey = 1");
  EXPECT_EQ(Plan("select * from [season info] s where s.[season year] = 2015"),
            "season info: index season year = 2015");
  EXPECT_EQ(Plan("select * from [draft info] where [draft no] = 5 and [season id] = 11"),
            "draft info: index PrimaryKey = 11, 5");
  EXPECT_EQ(Plan("select * from [draft info] where [season id] = 11 order by [draft no]"),
            "draft info: index PrimaryKey = 11 in its order");
  EXPECT_EQ(Plan("select * from [draft info] where [season id] = 11 order by [draft no] desc"),
            "draft info: index PrimaryKey = 11; sorted");
  EXPECT_EQ(Plan("select id from [player info] where 20 > [id] and id >= 17"),
            "player info: index PrimaryKey < 20 >= 17");
  EXPECT_EQ(Plan("select id from [player info] where [id] = 3.5"), "player info: index PrimaryKey = 3.5");
  EXPECT_EQ(Plan("select id from [player info] where [id] = 3 or [id] = 4"), "scan of player info");
  EXPECT_EQ(Plan("select id from [player info] where [id] = null"), "nothing: a condition can never hold");
  EXPECT_EQ(
      Plan("select m.[id] from [playing info] p inner join [manager info] m on p.[manager id] = m.[id] where "
           "(p.[season id] = 11) and (m.[last name] like 'a*')"),
      "playing info: index PrimaryKey = 11; manager info: index PrimaryKey = [p].[manager id]");
  EXPECT_EQ(Plan("select d.[draft no] from [player info] p inner join [draft info] d on d.[player id] = p.id "
                 "where p.id "
                 "= 68"),
            "player info: index PrimaryKey = 68; draft info: index player id = [p].[id]");
}

TEST_F(SelectTest, RowsComeInKeyOrderOrInStorageOrder) {
  // Picks of one manager, found through an index of that column, stand as a scan meets them.
  const std::vector<std::string> found =
      Rows("select [season id], [draft no] from [draft info] where [manager id] = 7");
  std::vector<std::string> scanned;
  for (const std::string& row : Rows("select [season id], [draft no], [manager id] from [draft info]")) {
    if (row.ends_with("|7")) scanned.push_back(row.substr(0, row.size() - 2));
  }
  EXPECT_EQ(found, scanned);
  EXPECT_GT(found.size(), 50U);
  EXPECT_EQ(Rows("select id from [player info] where id >= 3 and id < 10"),
            (std::vector<std::string>{"3", "4", "5", "9"}));
}

TEST_F(SelectTest, JoinsGiveTheColumnsOfEachTable) {
  const auto rows = database->OpenRecordset(
      "select p.*, m.id, m.[last name] as surname from [playing info] p inner join [manager info] m on "
      "p.[manager id] = "
      "m.[id] where p.[season id] = 11 order by p.ranking");
  EXPECT_EQ(rows->FieldCount(), 6U);
  EXPECT_EQ(rows->Fields("p.ranking").Value(), Value(1));
  EXPECT_EQ(rows->Fields("m.id").Value(), rows->Fields("manager id").Value());
  EXPECT_EQ(rows->Fields("SURNAME").Type(), ColumnType::Text);
  EXPECT_THROW(rows->Fields("last name"), Error);
  const auto both = database->OpenRecordset(
      "select a.id, b.id from [manager info] a inner join [manager info] b on a.id = b.id where a.id = 7");
  EXPECT_EQ(both->Fields(1).Name(), "b.id");
  EXPECT_EQ(both->Fields("a.id").Value(), Value(7));
  EXPECT_THROW(both->Fields("id"), Error);
  // Three tables, the middle one in parentheses.
  EXPECT_EQ(Rows("select count(*) from ([draft info] d inner join [player info] p on d.[player id] = p.id) "
                 "inner join "
                 "[team info] t on p.[team id] = t.id where d.[season id] = 11")[0],
            std::to_string(
                Rows("select p.[id] from [draft info] d inner join [player info] p on d.[player id] = p.id "
                     "where d.[season id] = 11 and p.[team id] is not null")
                    .size()));
}

TEST_F(SelectTest, NullsAreNeitherTrueNorFalse) {
  const auto count = [&](const std::string& condition) {
    return Rows("select count(*) from [player info] where " + condition)[0];
  };
  EXPECT_EQ(count("[team id] = 3 or not [team id] = 3"), "1855");
  EXPECT_EQ(count("[team id] is null"), "645");
  EXPECT_EQ(count("not ([team id] is null)"), "1855");
  EXPECT_EQ(count("[first name] like '*'"), "2495");
  EXPECT_EQ(count("not [first name] like '*'"), "0");
  EXPECT_EQ(count("[team id] <> null"), "0");
  EXPECT_EQ(count("[team id] = null or true"), "2500");
  EXPECT_EQ(count("[team id] = null and false or [id] = 1"), "1");
}

TEST_F(SelectTest, YesNoColumnsAreNumbers) {
  const auto count = [&](const std::string& condition) {
    return Rows("select count(*) from [player info] where " + condition)[0];
  };
  for (const char* condition :
       {"[is retired] = true", "[is retired] = -1", "[is retired]", "not [is retired] = false",
        "[is retired] <> 0", "[is retired] < 0", "([is retired] = true) = true"}) {
    EXPECT_EQ(count(condition), "515") << condition;
  }
  EXPECT_EQ(count("[is retired] = 1"), "0");
}

TEST_F(SelectTest, TextIsComparedByTheSortOrder) {
  EXPECT_EQ(Rows("select [abbr] from [position info] where [abbr] = 'qb'"), std::vector<std::string>{"QB"});
  EXPECT_EQ(Rows("select count(*) from [player info] where [first name] = 'zoe'")[0], "0");
  EXPECT_NE(Rows("select count(*) from [player info] where [first name] = 'ZOË'")[0], "0");
}

// What a name search sends, against a scan that compares by hand.
TEST_F(SelectTest, SearchesFindWhatAScanFinds) {
  struct Player {
    std::string first, last, id;
    bool retired;
  };
  std::vector<Player> players;
  for (const auto rows = database->OpenRecordset("select * from [player info]"); !rows->Eof();
       rows->MoveNext()) {
    players.push_back({rows->Fields("first name").Value().ToText(),
                       rows->Fields("last name").Value().ToText(), rows->Fields("id").Value().ToText(),
                       *rows->Fields("is retired").Value().As<bool>()});
  }
  const auto seed = std::random_device{}();
  SCOPED_TRACE("seed " + std::to_string(seed));
  std::mt19937 random(seed);
  const auto lower = [](std::string text) {
    for (char& c : text)
      c = c >= 'A' && c <= 'Z' ? static_cast<char>(c + 32) : c;
    return text;
  };
  const auto begins = [&](const std::string& name, const std::string& word) {
    return !name.empty() && lower(name).starts_with(lower(word));
  };
  const auto prefix = [&](const std::string& name) {
    std::size_t length = std::min<std::size_t>(random() % 6, name.size());
    while (length < name.size() && (static_cast<unsigned char>(name[length]) & 0xC0) == 0x80)
      ++length;  // not inside a character
    return name.substr(0, length);
  };
  std::size_t found = 0;
  for (int i = 0; i < 150; ++i) {
    const Player& model = players[random() % players.size()];
    std::string a = prefix(model.first);
    const std::string b = prefix(model.last);
    if (a.find('\'') != std::string::npos || b.find('\'') != std::string::npos) continue;
    if (random() % 2 == 0) a = lower(a);
    const bool skipRetired = random() % 2 == 0;
    const std::string pair = "(([last name] like '" + a + "*') and ([first name] like '" + b +
                             "*')) or (([last name] like '" + b + "*') and ([first name] like '" + a + "*'))";
    const std::vector<std::string> rows = Rows(
        "select [id] from [player info] where (" + pair + " or " + pair + ")" +
        (skipRetired ? " and ([is retired] = false)" : "") + " order by [first name], [last name], [id]");
    std::vector<Player> expected;
    for (const Player& player : players) {
      const bool fits = (begins(player.last, a) && begins(player.first, b)) ||
                        (begins(player.last, b) && begins(player.first, a));
      if (fits && !(skipRetired && player.retired)) expected.push_back(player);
    }
    std::sort(expected.begin(), expected.end(), [](const Player& x, const Player& y) {
      const auto first = format::CompareText(x.first, y.first);
      if (first != 0) return first < 0;
      const auto last = format::CompareText(x.last, y.last);
      return last != 0 ? last < 0 : std::stoi(x.id) < std::stoi(y.id);
    });
    std::vector<std::string> ids;
    for (const Player& player : expected)
      ids.push_back(player.id);
    ASSERT_EQ(rows, ids) << "'" << a << "' '" << b << "'";
    found += ids.size();
  }
  EXPECT_GT(found, 150U);
}

TEST_F(SelectTest, MistakesAreNamed) {
  ExpectError("select [id] from [nobody]", ErrorNumber::UnknownTable, "nobody");
  ExpectError("select [nothing] from [player info]", ErrorNumber::UnknownColumnInStatement, "nothing");
  ExpectError("select id from [player info] where nothing = 1", ErrorNumber::UnknownColumnInStatement,
              "nothing");
  ExpectError("select id from [player info] order by nothing", ErrorNumber::UnknownColumnInStatement,
              "nothing");
  ExpectError("select id from [player info] p where [player info].id = 1",
              ErrorNumber::UnknownColumnInStatement);
  ExpectError("select x.* from [player info] p", ErrorNumber::UnknownColumnInStatement, "x");
  ExpectError("select id from [player info] p inner join [team info] t on p.[team id] = t.id",
              ErrorNumber::UnknownColumnInStatement, "more than one");
  ExpectError("select * from [player info] inner join [player info] on 1 = 1",
              ErrorNumber::SyntaxErrorInFrom);
  ExpectError("select id from [player info] where id = '3'", ErrorNumber::TypeMismatch, "'3'");
  ExpectError("select id from [player info] where [last name] = 3", ErrorNumber::TypeMismatch, "last name");
  ExpectError("select id from [player info] where [last name]", ErrorNumber::TypeMismatch);
  ExpectError("select sum([last name]) from [player info]", ErrorNumber::TypeMismatch);
  ExpectError("select id from [player info] where [last name] like '[a'", ErrorNumber::BadPattern);
  ExpectError("select id, max(id) from [player info]", ErrorNumber::SyntaxErrorInExpression);
}

TEST_F(SelectTest, DamageIsAnErrorAndNotAShortList) {
  for (const char* file :
       {"league-damaged-tabledef.mdb", "league-damaged-rowoffset.mdb", "league-damaged-pointer.mdb"}) {
    const auto damaged =
        DBEngine().OpenDatabase(test::CopyFixture(file, folder), true, true, test::kFixtureConnect);
    try {
      const auto rows = damaged->OpenRecordset("select * from [player info]");
      for (; !rows->Eof(); rows->MoveNext())
        rows->Fields("last name").Value();
      ADD_FAILURE() << file;
    } catch (const Error& error) {
      EXPECT_EQ(error.Number(), ErrorNumber::DamagedFile) << error.what();
    }
    EXPECT_EQ(damaged->OpenRecordset("select count(*) from [team info]")->Fields(0).Value(), Value(32));
  }
  const auto damaged = DBEngine().OpenDatabase(test::CopyFixture("league-damaged-index-root.mdb", folder),
                                               true, true, test::kFixtureConnect);
  EXPECT_THROW(damaged->OpenRecordset("select * from [player info] where id = 17"), Error);
}

}  // namespace
}  // namespace jet

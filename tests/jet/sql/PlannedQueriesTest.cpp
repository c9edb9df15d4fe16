#include <algorithm>
#include <memory>
#include <random>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "jet/dao/DBEngine.h"
#include "jet/format/SortKey.h"
#include "tests/support/MemoryFileSystem.h"

// An index decides how rows are found, never which: the same rows stand in two tables, one with indexes of
// every form and one without any, and random statements must answer alike on both.
namespace jet {
namespace {

struct ColumnOfTest {
  const char* name;
  ColumnType type;
  std::vector<const char*> literals;  ///< what conditions compare it with
};

const std::vector<ColumnOfTest>& Columns() {
  static const std::vector<ColumnOfTest> columns = {
      {"a", ColumnType::Long, {"0", "3", "-2", "7.0", "3.5", "99999999999", "true", "null"}},
      {"b", ColumnType::Integer, {"0", "1", "-1", "40000", "2.5"}},
      {"c", ColumnType::Byte, {"0", "255", "256", "-1", "7"}},
      {"d", ColumnType::Double, {"0", "0.5", "-1.25", "0.1", "1e300", "3"}},
      {"e", ColumnType::Currency, {"0", "1.25", "-3", "0.00001", "2"}},
      {"f", ColumnType::DateTime, {"#2024-01-01#", "#1899-12-30#", "#1899-12-29 06:00#", "null"}},
      {"g", ColumnType::YesNo, {"true", "false", "-1", "1", "0"}},
      {"h", ColumnType::Text, {"'abc'", "'ABC'", "'ab'", "''", "'ábc'", "'a-bc'", "'日本'", "'zz '"}},
      {"i", ColumnType::Single, {"0", "0.5", "0.1", "16777217"}},
  };
  return columns;
}

class PlannedQueriesTest : public testing::Test {
 protected:
  PlannedQueriesTest() {
    EngineOptions options;
    options.files = std::make_shared<test::MemoryFileSystem>();
    database = DBEngine(options).CreateDatabase("queries.mdb");
    for (const char* table : {"indexed", "plain"})
      database->CreateTable(LookedUpTable(table));
    const auto index = [&](const char* name, std::vector<IndexColumn> columns, bool ignoreNulls = false) {
      database->CreateIndex("indexed",
                            {.name = name, .columns = std::move(columns), .ignoreNulls = ignoreNulls});
    };
    database->CreateIndex(
        "indexed", {.name = "key", .columns = {{"n"}}, .primary = true, .unique = true, .required = true});
    index("ab", {{"a"}, {"b"}});
    index("a down", {{"a", false}, {"c"}});
    index("c sparse", {{"c"}}, true);
    index("d", {{"d"}});
    index("e down", {{"e", false}});
    index("f", {{"f"}, {"a", false}});
    index("gh", {{"g"}, {"h"}});
    index("h", {{"h"}});
    index("i", {{"i"}});
    Fill();
  }

  static TableSpec LookedUpTable(const char* name) {
    TableSpec table;
    table.name = name;
    const auto add = [&](const char* columnName, ColumnType type) {
      ColumnSpec column;
      column.name = columnName;
      column.type = type;
      column.length = 20;
      column.allowZeroLength = true;
      table.columns.push_back(column);
    };
    add("n", ColumnType::Long);
    for (const ColumnOfTest& column : Columns())
      add(column.name, column.type);
    return table;
  }

  std::size_t Pick(std::size_t count) { return random() % count; }

  Value RandomValue(ColumnType type) {
    if (type != ColumnType::YesNo && Pick(6) == 0) return {};
    const auto small = static_cast<std::int32_t>(Pick(10)) - 3;
    switch (type) {
      case ColumnType::YesNo:
        return small > 0;
      case ColumnType::Byte:
        return small < 0 ? 255 : small;
      case ColumnType::Double:
        return Pick(8) == 0 ? Value(-0.0) : Value(Pick(8) == 0 ? 0.1 : small / 4.0);
      case ColumnType::Single:
        return Value(static_cast<float>(small) / 2);
      case ColumnType::Currency:
        return Currency{small * 2500};
      case ColumnType::DateTime:
        return Pick(2) == 0 ? DateTime{small / 4.0} : DateTime{45292.0 + small};
      case ColumnType::Text: {
        static const char* const kTexts[] = {"abc", "ABC", "ab", "", "ábc", "a-bc", "zz", "b", "Abd"};
        return kTexts[Pick(std::size(kTexts))];
      }
      default:
        return small;
    }
  }

  // Rows are added in no order of the key, and some go again, so that storage order is not key order.
  void Fill() {
    std::vector<std::int32_t> keys(400);
    for (std::size_t i = 0; i < keys.size(); ++i)
      keys[i] = static_cast<std::int32_t>(i);
    std::shuffle(keys.begin(), keys.end(), random);
    const auto indexed = database->OpenRecordset("select * from indexed");
    const auto plain = database->OpenRecordset("select * from [plain]");
    database->BeginTrans();
    for (const std::int32_t key : keys) {
      indexed->AddNew();
      plain->AddNew();
      indexed->Fields("n").Value(key);
      plain->Fields("n").Value(key);
      for (const ColumnOfTest& column : Columns()) {
        const Value value = RandomValue(column.type);
        indexed->Fields(column.name).Value(value);
        plain->Fields(column.name).Value(value);
      }
      indexed->Update();
      plain->Update();
    }
    for (const auto& rows : {indexed, plain}) {
      for (rows->MoveFirst(); !rows->Eof(); rows->MoveNext()) {
        if (*rows->Fields("n").Value().As<std::int32_t>() % 7 == 0) rows->Delete();
      }
    }
    database->CommitTrans();
  }

  std::string RandomCondition(const std::string& prefix, int depth) {
    if (depth > 0 && Pick(3) != 0) {
      const std::string left = RandomCondition(prefix, depth - 1);
      const std::string right = RandomCondition(prefix, depth - 1);
      switch (Pick(6)) {
        case 0:
          return "(" + left + " or " + right + ")";
        case 1:
          return "not (" + left + ")";
        default:
          return left + " and " + right;
      }
    }
    const ColumnOfTest& column = Columns()[Pick(Columns().size())];
    const std::string name = prefix + "[" + column.name + "]";
    const std::string literal = column.literals[Pick(column.literals.size())];
    static const char* const kSigns[] = {"=", "=", "=", "<", "<=", ">", ">=", "<>"};
    static const char* const kMirrored[] = {"=", "=", "=", ">", ">=", "<", "<=", "<>"};
    const std::size_t sign = Pick(std::size(kSigns));
    switch (Pick(12)) {
      case 0:
        return name + " is null";
      case 1:
        return name + " is not null";
      case 2:
        return literal + " " + kMirrored[sign] + " " + name;
      default:
        return name + " " + kSigns[sign] + " " + literal;
    }
  }

  std::string RandomOrder() {
    std::string order;
    for (std::size_t count = Pick(4); count > 0; --count)
      order += std::string(order.empty() ? "" : ", ") + Columns()[Pick(Columns().size())].name +
               (Pick(3) == 0 ? " desc" : "");
    return order;
  }

  std::vector<std::int32_t> Keys(Recordset& rows) {
    std::vector<std::int32_t> keys;
    for (; !rows.Eof(); rows.MoveNext())
      keys.push_back(*rows.Fields(0).Value().As<std::int32_t>());
    return keys;
  }

  unsigned seed = std::random_device{}();
  std::mt19937 random{seed};
  std::shared_ptr<Database> database;
};

TEST_F(PlannedQueriesTest, OneTable) {
  SCOPED_TRACE("seed " + std::to_string(seed));
  int withIndex = 0;
  for (int i = 0; i < 600; ++i) {
    const std::string where = Pick(10) == 0 ? "" : " where " + RandomCondition("", 3);
    const std::string order = RandomOrder();
    // Ended by the key, an order leaves nothing open; without one, rows come as they are stored or by the
    // key.
    const std::string tail = where + (order.empty() ? "" : " order by " + order + ", n");
    const auto indexed = database->OpenRecordset("select n from indexed" + tail);
    const auto plain = database->OpenRecordset("select n from [plain]" + tail);
    const std::string plan = indexed->Plan();
    std::vector<std::int32_t> expected = Keys(*plain);
    if (order.empty() && plan.find("index key") != std::string::npos)
      std::sort(expected.begin(), expected.end());
    ASSERT_EQ(Keys(*indexed), expected) << tail << "\nplan: " << plan;
    withIndex += plan.find("index") != std::string::npos ? 1 : 0;
  }
  EXPECT_GT(withIndex, 60);
}

TEST_F(PlannedQueriesTest, EqualRowsKeepTheOrderInWhichTheyWereRead) {
  SCOPED_TRACE("seed " + std::to_string(seed));
  for (const char* column : {"a", "d", "h", "g"}) {
    const auto rows =
        database->OpenRecordset(std::string("select n, ") + column + " from [plain] order by " + column);
    const auto stored = database->OpenRecordset("select n from [plain]");
    const std::vector<std::int32_t> storage = Keys(*stored);
    std::int32_t lastKey = -1;
    Value lastValue;
    for (bool first = true; !rows->Eof(); rows->MoveNext(), first = false) {
      const std::int32_t key = *rows->Fields(0).Value().As<std::int32_t>();
      const Value value = rows->Fields(1).Value();
      if (!first && value == lastValue) {
        ASSERT_LT(std::find(storage.begin(), storage.end(), lastKey),
                  std::find(storage.begin(), storage.end(), key));
      }
      lastKey = key;
      lastValue = value;
    }
  }
}

// Texts of every stored form: compressed, plain, mixed, and with characters that have no key.
TEST_F(PlannedQueriesTest, Texts) {
  const std::vector<const char*> texts = {"Maier",  "mañana", "ma",   "m",    "Mä",     "",     "日本",
                                          "ma日",   "m日a",   "MAX",  "máx",  "maĀ本x", "ſma",  "ab",
                                          "\u212A", "ka",     "mA b", "Ma-b", "am",     "日ma", "ÿma"};
  const auto rows = database->OpenRecordset("select * from [plain]");
  for (const char* text : texts) {
    rows->AddNew();
    rows->Fields("n").Value(1000);
    rows->Fields("h").Value(text);
    rows->Update();
  }
  for (const char* pattern :
       {"ma*", "MA*", "m*", "ma", "ma?*", "ma*x", "m?x", "*", "ab*", "k*", "má*", "maß*", "*ma"}) {
    const std::string like = std::string("(h like '") + pattern + "')";
    std::vector<std::string> expected;
    const auto all = database->OpenRecordset("select h from [plain] where not (not " + like + ")");
    for (; !all->Eof(); all->MoveNext())
      expected.push_back(all->Fields(0).Value().ToText());
    std::vector<std::string> found;
    const auto sieved = database->OpenRecordset("select h from [plain] where " + like);
    for (; !sieved->Eof(); sieved->MoveNext())
      found.push_back(sieved->Fields(0).Value().ToText());
    EXPECT_EQ(found, expected) << pattern;
  }
  const auto sorted = database->OpenRecordset("select h from [plain] where n >= 1000 order by h desc, n");
  std::size_t count = 1;
  std::string last = sorted->Fields(0).Value().ToText();
  for (sorted->MoveNext(); !sorted->Eof(); sorted->MoveNext(), ++count) {
    const std::string text = sorted->Fields(0).Value().ToText();
    EXPECT_TRUE(format::CompareText(last, text) >= 0) << last << " before " << text;
    last = text;
  }
  EXPECT_EQ(count, texts.size());
}

TEST_F(PlannedQueriesTest, Joins) {
  SCOPED_TRACE("seed " + std::to_string(seed));
  // Kinds of the two sides need not be the same type.
  static const char* const kPairs[] = {
      "x.a = y.a", "x.a = y.d", "x.d = y.a", "x.h = y.h", "x.f = y.f",
      "x.e = y.d", "x.g = y.b", "x.i = y.d", "x.n = y.n", "x.c = y.n and x.b = y.b"};
  int lookedUp = 0;
  for (int i = 0; i < 40; ++i) {
    const std::string on = kPairs[Pick(std::size(kPairs))];
    const std::string where = " on " + on + " where x.n < 60 and y.n < 90 and (" + RandomCondition("x.", 1) +
                              " or " + RandomCondition("y.", 1) + ")";
    const std::string order = " order by x.n, y.n";
    const auto indexed =
        database->OpenRecordset("select x.n, y.n from indexed x inner join indexed y" + where + order);
    const auto plain =
        database->OpenRecordset("select x.n, y.n from [plain] x inner join [plain] y" + where + order);
    for (; !plain->Eof(); plain->MoveNext(), indexed->MoveNext()) {
      ASSERT_FALSE(indexed->Eof()) << where << "\nplan: " << indexed->Plan();
      ASSERT_EQ(indexed->Fields(0).Value(), plain->Fields(0).Value())
          << where << "\nplan: " << indexed->Plan();
      ASSERT_EQ(indexed->Fields(1).Value(), plain->Fields(1).Value())
          << where << "\nplan: " << indexed->Plan();
    }
    ASSERT_TRUE(indexed->Eof()) << where << "\nplan: " << indexed->Plan();
    lookedUp += indexed->Plan().find(" = [") != std::string::npos ? 1 : 0;
  }
  EXPECT_GT(lookedUp, 10);
}

TEST_F(PlannedQueriesTest, Aggregates) {
  SCOPED_TRACE("seed " + std::to_string(seed));
  for (const ColumnOfTest& column : Columns()) {
    const std::string name = column.name;
    for (const std::string& list : {"max(" + name + ")", "min(" + name + ")", "count(" + name + ")",
                                    "max(" + name + "), min(" + name + ")"}) {
      const auto indexed = database->OpenRecordset("select " + list + " from indexed");
      const auto plain = database->OpenRecordset("select " + list + " from [plain]");
      for (std::size_t i = 0; i < plain->FieldCount(); ++i) {
        // Texts that are equal but for their case are equally great.
        if (column.type == ColumnType::Text) continue;
        EXPECT_EQ(indexed->Fields(i).Value(), plain->Fields(i).Value())
            << list << " plan: " << indexed->Plan();
      }
    }
  }
}

}  // namespace
}  // namespace jet

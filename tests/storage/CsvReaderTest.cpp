#include <sstream>

#include <gtest/gtest.h>

#include "storage/CsvReader.h"

namespace HLDataSrvc {
namespace {

using Records = std::vector<std::vector<std::string>>;

Records Read(const std::string& text) {
  std::istringstream in(text);
  CsvReader reader(in, "teams.csv");
  Records records;
  std::vector<std::string> fields;
  while (reader.Next(fields))
    records.push_back(fields);
  return records;
}

TEST(CsvReader, ReadsFieldsAndRecords) {
  EXPECT_EQ(Read("id,name\r\n1,Ashbourne\r\n2,\r\n"),
            (Records{{"id", "name"}, {"1", "Ashbourne"}, {"2", ""}}));
  EXPECT_EQ(Read("a,b\n1,2"), (Records{{"a", "b"}, {"1", "2"}}));
  EXPECT_EQ(Read(",\n"), (Records{{"", ""}}));
  EXPECT_EQ(Read("a,"), (Records{{"a", ""}}));
  EXPECT_EQ(Read(""), Records{});
}

TEST(CsvReader, QuotedFieldsHoldCommasLineEndsAndDoubledQuotes) {
  EXPECT_EQ(Read("\"a,b\",\"c\r\nd\",\"\"\"e\"\"\"\r\nf,g,h"),
            (Records{{"a,b", "c\r\nd", "\"e\""}, {"f", "g", "h"}}));
  EXPECT_EQ(Read("\"\""), (Records{{""}}));
}

TEST(CsvReader, PassesOverByteOrderMarkAndEmptyLines) {
  EXPECT_EQ(Read("\xEF\xBB\xBFid\n\n1\r\n\r\n\n"), (Records{{"id"}, {"1"}}));
  EXPECT_EQ(Read("\xEF\xBB\xBF\"id\"\n"), (Records{{"id"}}));
  EXPECT_EQ(Read("\xEF\xBD\x89\n"), (Records{{"\xEF\xBD\x89"}})) << "begins like the mark, but is none";
  EXPECT_EQ(Read("Zo\xC3\xAB,\xF0\x9F\x8F\x88"), (Records{{"Zo\xC3\xAB", "\xF0\x9F\x8F\x88"}}));
}

TEST(CsvReader, NamesTheLineOnWhichARecordItRefusesBegins) {
  struct Case {
    std::string text;
    std::size_t line;
  };
  const std::vector<Case> cases = {
      {"a\nb\n\"c\nd", 3},               // a quoted field is not closed
      {"a\n\"b\"c\n", 2},                // text after a quoted field
      {"a\nb\"c\n", 2},                  // a quote inside a field
      {"\"a\n\n\"\n\nb\rc\n", 5},        // a carriage return alone; the first record covers three lines
      {"a\n\xFF\n", 2},                  // no UTF-8
      {"a\n\xC0\x80\n", 2},              // overlong
      {"a\n\xED\xA0\x80\n", 2},          // half of a surrogate pair
      {"\xEF\xBB", 1},                   // cut off
      {std::string("a\nb\0c\n", 6), 2},  // a null character
  };
  for (const Case& refused : cases) {
    try {
      Read(refused.text);
      ADD_FAILURE() << refused.text;
    } catch (const CsvError& error) {
      EXPECT_EQ(error.Line(), refused.line) << refused.text;
      EXPECT_EQ(error.what(), "teams.csv, line " + std::to_string(refused.line) + ": " + error.Reason());
    }
  }
}

TEST(CsvReader, GoesOnBehindALineItRefuses) {
  std::istringstream in("a\"b,c\n\xFF,d\n1,\xFF\n2,e\n\"f\"g\n3,h\n\"i\n4\n");
  CsvReader reader(in, "teams.csv");
  std::vector<std::string> told;
  std::vector<std::string> fields;
  for (bool isMore = true; isMore;) {
    try {
      isMore = reader.Next(fields);
      if (isMore) told.push_back(fields.front());
    } catch (const CsvError& error) {
      told.push_back("line " + std::to_string(error.Line()));
      reader.SkipLine();
    }
  }
  EXPECT_EQ(told, (std::vector<std::string>{"line 1", "line 2", "line 3", "2", "line 5", "3", "line 7"}));
}

}  // namespace
}  // namespace HLDataSrvc

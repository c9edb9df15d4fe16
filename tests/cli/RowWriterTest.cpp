#include <cstdio>
#include <limits>
#include <memory>
#include <string>

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include "HLLeague/Failure.h"
#include "cli/output/RowWriter.h"

namespace cli {

using namespace HLLeague;

namespace {

/// What the writer of a format makes of one row under columns named a, b, c ...
std::string Written(RowFormat format, const std::vector<jet::Value>& row) {
  const std::unique_ptr<std::FILE, int (*)(std::FILE*)> file(std::tmpfile(), &std::fclose);
  Output output(file.get());
  std::vector<std::string> columns;
  for (std::size_t i = 0; i < row.size(); ++i)
    columns.emplace_back(1, static_cast<char>('a' + i));
  const auto writer = MakeRowWriter(format, output);
  writer->Begin(columns);
  writer->Row(row);
  writer->End();
  output.Flush();
  std::rewind(file.get());
  std::string text(4096, '\0');
  text.resize(std::fread(text.data(), 1, text.size(), file.get()));
  return text;
}

TEST(TsvWriter, EscapesWhatWouldBreakALineOrPassForNull) {
  EXPECT_EQ(Written(RowFormat::Tsv, {"a\tb", "c\r\nd", "\\N", jet::Null{}, "", "\"é, x\""}),
            "a\tb\tc\td\te\tf\na\\tb\tc\\r\\nd\t\\\\N\t\\N\t\t\"é, x\"\n");
}

TEST(CsvWriter, QuotesWhereNeededAndTellsNullFromEmptyText) {
  EXPECT_EQ(Written(RowFormat::Csv, {"a,b", "say \"hi\"", "x\ny", jet::Null{}, "", "plain 'q'"}),
            "a,b,c,d,e,f\n\"a,b\",\"say \"\"hi\"\"\",\"x\ny\",,\"\",plain 'q'\n");
}

TEST(RowWriters, KeepEveryDigitOfANumber) {
  const std::vector<jet::Value> row = {true, false,     std::int32_t{-2147483647},
                                       0.1F, 0.1 + 0.2, jet::Currency{9223372036854775807}};
  EXPECT_EQ(Written(RowFormat::Tsv, row),
            "a\tb\tc\td\te\tf\n-1\t0\t-2147483647\t0.1\t0.30000000000000004\t922337203685477.5807\n");
  EXPECT_EQ(Written(RowFormat::JsonArray, row),
            "[\n  {\"a\": true, \"b\": false, \"c\": -2147483647, \"d\": 0.1, \"e\": 0.30000000000000004, "
            "\"f\": 922337203685477.5807}\n]\n");
}

TEST(JsonWriter, WritesTextThatEveryParserTakes) {
  const std::string text =
      Written(RowFormat::JsonArray,
              {"quote \" slash \\ line\n", "Ж\x01", std::string("bad \xC3"), jet::Null{},
               std::numeric_limits<double>::quiet_NaN(), jet::Bytes{std::byte{0}, std::byte{255}}});
  const auto row = nlohmann::json::parse(text).at(0);
  EXPECT_EQ(row["a"], "quote \" slash \\ line\n");
  EXPECT_EQ(row["b"], "Ж\x01");
  EXPECT_EQ(row["c"], "bad \xEF\xBF\xBD");
  EXPECT_TRUE(row["d"].is_null());
  EXPECT_TRUE(row["e"].is_string());
  EXPECT_TRUE(row["f"].is_string());
}

TEST(Output, WhatTheStreamDoesNotTakeIsAFailureOfTheSystem) {
  const std::unique_ptr<std::FILE, int (*)(std::FILE*)> file(std::fopen("/dev/null", "r"), &std::fclose);
  ASSERT_NE(file, nullptr);
  Output output(file.get());
  try {
    output.Line("result");
    output.Flush();
    FAIL() << "a stream for reading took a line";
  } catch (const Failure& failure) {
    EXPECT_EQ(failure.Kind(), FailureKind::SystemFailed);
  }
}

}  // namespace
}  // namespace cli

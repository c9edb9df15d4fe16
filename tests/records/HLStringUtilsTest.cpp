#include <gtest/gtest.h>

#include "records/HLStringUtils.h"

namespace HLDataSrvc {
namespace {

using Words = std::vector<std::string>;
using HLStringUtils::SplitWords;

TEST(SplitWords, SeparatesByBlankCommaAndSemicolon) {
  for (const char* text : {"joe smith", "joe,smith", "joe;smith"})
    EXPECT_EQ(SplitWords(text), (Words{"joe", "smith"})) << text;
  EXPECT_EQ(SplitWords("a,b c;d"), (Words{"a", "b", "c", "d"}));
  EXPECT_EQ(SplitWords("O'Neil\tJr"), (Words{"O'Neil\tJr"}));
}

TEST(SplitWords, MovesEmptyWordsToTheEndAndKeepsThem) {
  EXPECT_EQ(SplitWords(""), Words{""});
  EXPECT_EQ(SplitWords(" "), (Words{"", ""}));
  EXPECT_EQ(SplitWords("joe, smith"), (Words{"joe", "smith", ""}));
  EXPECT_EQ(SplitWords(" joe  smith"), (Words{"joe", "smith", "", ""}));
  EXPECT_EQ(SplitWords(",joe;;"), (Words{"joe", "", "", ""}));
}

}  // namespace
}  // namespace HLDataSrvc

#include <gtest/gtest.h>

#include "HLLeague/Failure.h"
#include "cli/line/ScriptWords.h"

namespace cli {

using namespace HLLeague;

namespace {

using Words = std::vector<std::string>;

TEST(ScriptWords, AreSeparatedByBlanksAndEndAtAComment) {
  EXPECT_EQ(ScriptWords(""), Words());
  EXPECT_EQ(ScriptWords(" \t\r"), Words());
  EXPECT_EQ(ScriptWords("  draft\tpick  Lee \r"), Words({"draft", "pick", "Lee"}));
  EXPECT_EQ(ScriptWords("# all of it"), Words());
  EXPECT_EQ(ScriptWords("draft clock # who"), Words({"draft", "clock"}));
  EXPECT_EQ(ScriptWords("a#b '#c' \\#d"), Words({"a#b", "#c", "#d"}));
}

TEST(ScriptWords, KeepWhatIsQuotedTogether) {
  EXPECT_EQ(ScriptWords("'a  b' \"c d\"e"), Words({"a  b", "c de"}));
  EXPECT_EQ(ScriptWords("'' \"\""), Words({"", ""}));
  EXPECT_EQ(ScriptWords(R"('a\' "b\"c\\d\e")"), Words({"a\\", "b\"c\\d\\e"}));
  EXPECT_EQ(ScriptWords(R"(a\ b \'c \\)"), Words({"a b", "'c", "\\"}));
  EXPECT_EQ(ScriptWords(R"("it's" --name='x y' 'it'"'"'s')"), Words({"it's", "--name=x y", "it's"}));
}

TEST(ScriptWords, TakeAnApostropheBehindALetterAsOne) {
  EXPECT_EQ(ScriptWords("D'Arcy O'Marrick"), Words({"D'Arcy", "O'Marrick"}));
  EXPECT_EQ(ScriptWords("René's x"), Words({"René's", "x"}));
  EXPECT_EQ(ScriptWords("O' x"), Words({"O'", "x"}));
}

TEST(ScriptWords, RefuseWhatIsNotClosed) {
  for (const char* line : {"'a", "\"a", "x \"a\\\"", "a\\", "'"})
    EXPECT_THROW(ScriptWords(line), Failure) << line;
}

}  // namespace
}  // namespace cli

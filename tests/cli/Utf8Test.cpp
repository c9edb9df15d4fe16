#include <gtest/gtest.h>

#include "league/Utf8.h"

namespace cli {

using namespace HLLeague;

namespace {

TEST(DisplayWidth, CountsColumnsNotBytes) {
  EXPECT_EQ(DisplayWidth("Zoë"), 3U);
  EXPECT_EQ(DisplayWidth("Zoe\xCC\x88"), 3U);  // the dots are a character of their own
  EXPECT_EQ(DisplayWidth("Ковленко"), 8U);
  EXPECT_EQ(DisplayWidth("山田"), 4U);
  EXPECT_EQ(DisplayWidth("a\xFF\xC3z\xE5"), 5U);  // bytes that are no UTF-8
}

TEST(CutToWidth, LeavesOutWholeCharactersAndSaysSo) {
  EXPECT_EQ(CutToWidth("Überlauf", 8), "Überlauf");
  EXPECT_EQ(CutToWidth("Überlauf", 4), "Übe…");
  EXPECT_EQ(CutToWidth("山田太郎", 4), "山…");  // half of a wide character cannot be shown
  EXPECT_EQ(CutToWidth("Zoe\xCC\x88l", 3), "Zo…");
  EXPECT_EQ(CutToWidth("abc", 0), "");
  EXPECT_EQ(PaddedToWidth("山田太郎", 4), "山… ");
  EXPECT_EQ(PaddedToWidth("é", 3), "é  ");
}

TEST(Wrapped, BreaksAtBlanksAndCutsWhatIsWider) {
  EXPECT_EQ(Wrapped("one two three", 7), (std::vector<std::string>{"one two", "three"}));
  EXPECT_EQ(Wrapped("extraordinary x", 5), (std::vector<std::string>{"extr…", "x"}));
  EXPECT_EQ(Wrapped("", 5), std::vector<std::string>{""});
}

TEST(LowerCase, KnowsTheLettersOfNames) {
  EXPECT_EQ(LowerCase("O'MARRICK"), "o'marrick");
  EXPECT_EQ(LowerCase("ÉÀÞ×"), "éàþ×");
  EXPECT_EQ(LowerCase("ŁŸŽŐ"), "łÿžő");
  EXPECT_EQ(LowerCase("КОВЛЕНКО Ё ΩΆ ȘƠḂ"), "ковленко ё ωά șơḃ");
  EXPECT_EQ(LowerCase("\xFF山"), "\xFF山");
}

TEST(FirstLetter, TakesItsMarksAlong) {
  EXPECT_EQ(FirstLetter("Élan"), "É");
  EXPECT_EQ(FirstLetter("E\xCC\x81lan"), "E\xCC\x81");
  EXPECT_EQ(FirstLetter(""), "");
}

TEST(Printable, KeepsControlCharactersFromTheTerminal) {
  EXPECT_EQ(Printable("a\x1B[31m\nb\xC2\x9Bé"), "a\uFFFD[31m\uFFFDb\uFFFDé");
}

}  // namespace
}  // namespace cli

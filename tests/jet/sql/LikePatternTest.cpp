#include <chrono>
#include <random>
#include <string>

#include <gtest/gtest.h>

#include "jet/Error.h"
#include "jet/sql/LikePattern.h"

namespace jet::sql {
namespace {

bool Like(std::string_view text, std::string_view pattern) {
  return LikePattern(pattern).Matches(text);
}

TEST(LikePattern, MatchesTheWholeValue) {
  EXPECT_TRUE(Like("Smith", "smith"));
  EXPECT_TRUE(Like("Smithson", "smith*"));
  EXPECT_FALSE(Like("Smithson", "smith"));
  EXPECT_FALSE(Like("Blacksmith", "smith*"));
  EXPECT_TRUE(Like("Blacksmith", "*smith"));
  EXPECT_TRUE(Like("Blacksmiths", "*smith*"));
  EXPECT_FALSE(Like("Smith ", "smith"));
}

TEST(LikePattern, IgnoresCaseInEveryScript_AndNeverAccents) {
  EXPECT_TRUE(Like("Ștefan", "ștefan"));
  EXPECT_TRUE(Like("NGUYỄN", "nguyễ*"));
  EXPECT_TRUE(Like("Ἀριστοτέλης", "ἀΡΙΣΤΟΤΈΛΗΣ"));
  EXPECT_FALSE(Like("Ștefan", "stefan"));
  EXPECT_FALSE(Like("Nguyễn", "nguyen"));
}

TEST(LikePattern, EmptyTextAndPattern) {
  EXPECT_TRUE(Like("", ""));
  EXPECT_TRUE(Like("", "*"));
  EXPECT_TRUE(Like("", "**"));
  EXPECT_FALSE(Like("", "?"));
  EXPECT_FALSE(Like("a", ""));
  EXPECT_TRUE(Like("", "[]"));
}

TEST(LikePattern, QuestionMarkIsOneCharacterWhateverItsBytes) {
  EXPECT_TRUE(Like("abc", "a?c"));
  EXPECT_FALSE(Like("ac", "a?c"));
  EXPECT_TRUE(Like("añc", "a?c"));
  EXPECT_TRUE(Like("a日c", "a?c"));
  EXPECT_TRUE(Like("a😀c", "a?c"));
  EXPECT_FALSE(Like("añc", "a??c"));
}

TEST(LikePattern, NumberSignIsOneDigit) {
  EXPECT_TRUE(Like("week 7", "week #"));
  EXPECT_FALSE(Like("week x", "week #"));
  EXPECT_FALSE(Like("week 12", "week #"));
  EXPECT_TRUE(Like("week #", "week [#]"));
}

TEST(LikePattern, Sets) {
  EXPECT_TRUE(Like("m", "[a-z]"));
  EXPECT_TRUE(Like("M", "[a-z]"));
  EXPECT_TRUE(Like("m", "[A-Z]"));
  EXPECT_FALSE(Like("5", "[a-z]"));
  EXPECT_TRUE(Like("5", "[!a-z]"));
  EXPECT_FALSE(Like("M", "[!a-z]"));
  EXPECT_TRUE(Like("b", "[xyb]"));
  EXPECT_TRUE(Like("-", "[a-]"));
  EXPECT_TRUE(Like("-", "[-a]"));
  EXPECT_TRUE(Like("!", "[!]"));
  EXPECT_TRUE(Like("!", "[a!]"));
  EXPECT_TRUE(Like("*", "[*]"));
  EXPECT_FALSE(Like("x", "[*]"));
  EXPECT_TRUE(Like("[x]", "[[]x]"));
  EXPECT_FALSE(Like("", "[!a]"));
}

TEST(LikePattern, CaseDoesNotMatter_AccentsDo) {
  EXPECT_TRUE(Like("ÉMILE", "émi*"));
  EXPECT_FALSE(Like("Emile", "émi*"));
  EXPECT_FALSE(Like("Émile", "emi*"));
  EXPECT_TRUE(Like("ŁUKASZ", "łuk*"));
  EXPECT_TRUE(Like("ŽIŽKA", "ži?ka"));
  EXPECT_TRUE(Like("ΔΉΜΟΣ", "δήμος"));
  EXPECT_TRUE(Like("ЁЖИК", "ёжик"));
  EXPECT_TRUE(Like("Ÿ", "ÿ"));
  EXPECT_FALSE(Like("×", "÷"));
  EXPECT_FALSE(Like("ß", "ss"));
}

TEST(LikePattern, MalformedPatternsAreRefused) {
  for (const char* pattern : {"[", "smith[", "a[bc", "[!", "[a]b[", "[z-a]"}) {
    try {
      LikePattern made{std::string_view(pattern)};
      ADD_FAILURE() << pattern;
    } catch (const Error& error) {
      EXPECT_EQ(error.Number(), ErrorNumber::BadPattern);
      EXPECT_NE(std::string(error.what()).find(pattern), std::string::npos) << error.what();
    }
  }
  EXPECT_TRUE(Like("a]b", "a]b"));
}

// The definition, word for word, without care for time.
bool Reference(std::string_view text, std::string_view pattern) {
  if (pattern.empty()) return text.empty();
  if (pattern.front() == '*') {
    for (std::size_t skip = 0; skip <= text.size(); ++skip) {
      if (Reference(text.substr(skip), pattern.substr(1))) return true;
    }
    return false;
  }
  if (text.empty()) return false;
  const bool fits = pattern.front() == '?' ||
                    (pattern.front() == '#' && text.front() >= '0' && text.front() <= '9') ||
                    pattern.front() == text.front();
  return fits && Reference(text.substr(1), pattern.substr(1));
}

TEST(LikePattern, AgreesWithItsDefinitionOnRandomPatterns) {
  const auto seed = std::random_device{}();
  SCOPED_TRACE("seed " + std::to_string(seed));
  std::mt19937 random(seed);
  const auto draw = [&](std::string_view letters, std::size_t most) {
    std::string text;
    for (std::size_t length = random() % (most + 1); length > 0; --length)
      text += letters[random() % letters.size()];
    return text;
  };
  int matches = 0;
  for (int i = 0; i < 20000; ++i) {
    const std::string text = draw("ab1", 8);
    const std::string pattern = draw("ab1**?#", 7);
    const bool expected = Reference(text, pattern);
    matches += expected ? 1 : 0;
    ASSERT_EQ(Like(text, pattern), expected) << "'" << text << "' like '" << pattern << "'";
  }
  EXPECT_GT(matches, 1000);
}

TEST(LikePattern, ManyStarsTakeNoTime) {
  const std::string text(5000, 'a');
  std::string pattern;
  for (int i = 0; i < 200; ++i)
    pattern += "*a";
  const auto start = std::chrono::steady_clock::now();
  EXPECT_FALSE(Like(text, pattern + "*b"));
  EXPECT_TRUE(Like(text, pattern + "*"));
  EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(5));
}

}  // namespace
}  // namespace jet::sql

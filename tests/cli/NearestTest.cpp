#include <gtest/gtest.h>

#include "league/Nearest.h"

namespace cli {

using namespace HLLeague;

namespace {

TEST(TypingDistance, CountsLeftOutAddedChangedAndSwappedLetters) {
  EXPECT_EQ(TypingDistance("dump", "dump"), 0U);
  EXPECT_EQ(TypingDistance("Dump", "dUMP"), 0U);
  EXPECT_EQ(TypingDistance("dmp", "dump"), 1U);
  EXPECT_EQ(TypingDistance("duump", "dump"), 1U);
  EXPECT_EQ(TypingDistance("dunp", "dump"), 1U);
  EXPECT_EQ(TypingDistance("dmup", "dump"), 1U);
  EXPECT_EQ(TypingDistance("mudp", "dump"), 2U);
  EXPECT_EQ(TypingDistance("", "dump"), 4U);
  EXPECT_EQ(TypingDistance("query", ""), 5U);
}

TEST(NearestOf, PrefersTheNearestThenTheFirstAndDoesNotGuessWildly) {
  EXPECT_EQ(NearestOf("tabel", {"tables", "tabled", "dump"}), "tables");
  EXPECT_EQ(NearestOf("chek", {"create", "check"}), "check");
  EXPECT_EQ(NearestOf("xyz", {"create", "check", "dump"}), "");
  EXPECT_EQ(NearestOf("dump", {}), "");
}

}  // namespace
}  // namespace cli

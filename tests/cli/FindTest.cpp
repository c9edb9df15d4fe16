#include <gtest/gtest.h>

#include "HLLeague/Failure.h"
#include "HLLeague/Find.h"

namespace cli {

using namespace HLLeague;

namespace {

const std::vector<Candidate> kManagers = {{3, "Lee", "Ann Lee"},
                                          {4, "Leeds", "Bob Leeds"},
                                          {5, "Árvai", "Ann Árvai"},
                                          {6, "Poe", "Carl Poe"},
                                          {7, "Poe", "Dora Poe"}};

std::int32_t Meant(const std::string& word) {
  return kManagers[IndexOfMeant("manager", word, kManagers)].id;
}

std::string Refusal(const std::string& word) {
  try {
    Meant(word);
  } catch (const Failure& failure) {
    return std::string(failure.what()) + "\n" + failure.Hint();
  }
  return {};
}

TEST(IndexOfMeant, TakesIdsThenLastNamesThenFullNamesThenBeginnings) {
  EXPECT_EQ(Meant("4"), 4);
  EXPECT_EQ(Meant("lee"), 3);  // although Leeds begins with it
  EXPECT_EQ(Meant("leed"), 4);
  EXPECT_EQ(Meant("ANN LEE"), 3);
  EXPECT_EQ(Meant("árv"), 5);
  EXPECT_EQ(Meant("dora"), 7);
}

TEST(IndexOfMeant, ListsThoseWhoMayBeMeant) {
  EXPECT_EQ(
      Refusal("poe"),
      "More than one manager may be meant by 'poe'.\nSay which by its id:\n  6  Carl Poe\n  7  Dora Poe");
  EXPECT_NE(Refusal("ann").find("5  Ann Árvai"), std::string::npos);
}

TEST(IndexOfMeant, RefusesWhatFitsNothing) {
  for (const char* word : {"", "x", "8", "-1", "99999999999"})
    EXPECT_EQ(Refusal(word).find("There is no manager"), 0U) << word << Refusal(word);
}

}  // namespace
}  // namespace cli

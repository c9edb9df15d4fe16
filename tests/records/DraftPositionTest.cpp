#include <limits>
#include <random>
#include <tuple>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

#include "records/HLUtils.h"
#include "tests/records/RecordsSupport.h"

namespace HLDataSrvc::HLUtils {
namespace {

using HLIData::ErrorNumber;
using HLIData::PickType;
using test::NumberOfError;

constexpr std::int32_t kLowest = std::numeric_limits<std::int32_t>::min();
constexpr std::int32_t kHighest = std::numeric_limits<std::int32_t>::max();

using Position = std::tuple<std::int32_t, std::int32_t, std::int32_t>;  // manager place, round, pick in round
constexpr Position kUntouched{-7, -8, -9};

void Locate(std::int32_t pickNo, std::int32_t noOfManagers, Position& position) {
  GetDraftPosition(pickNo, noOfManagers, std::get<0>(position), std::get<1>(position), std::get<2>(position));
}

Position PositionOf(std::int32_t pickNo, std::int32_t noOfManagers) {
  Position position = kUntouched;
  Locate(pickNo, noOfManagers, position);
  return position;
}

TEST(GetDraftPosition, AgreesWithADraftPlayedPickByPick) {
  for (std::int32_t managers = 1; managers <= 33; ++managers) {
    std::int32_t pickNo = 0;
    for (std::int32_t round = 1; round <= 20; ++round) {
      std::vector<std::int32_t> order;  // the places of who picks in this round, one after the other
      for (std::int32_t place = 1; place <= managers; ++place)
        order.insert(round % 2 ? order.end() : order.begin(), place);
      for (std::int32_t pick = 1; pick <= managers; ++pick) {
        const Position played{order[static_cast<std::size_t>(pick) - 1], round, pick};
        ASSERT_EQ(PositionOf(++pickNo, managers), played) << "pick " << pickNo << " of " << managers;
      }
    }
  }
}

TEST(GetDraftPosition, WithoutManagersLeavesTheResultsAlone) {
  EXPECT_EQ(PositionOf(5, 0), kUntouched);
  EXPECT_EQ(PositionOf(kLowest, -1), kUntouched);
}

TEST(GetDraftPosition, BelowPickOneIsWorkedOutAllTheSame) {
  EXPECT_EQ(PositionOf(0, 4), Position(5, 0, 0));
  EXPECT_EQ(PositionOf(-3, 4), Position(4, 0, 1));
  EXPECT_EQ(PositionOf(-4, 4), Position(5, -1, 0));
}

TEST(GetDraftPosition, OverflowsAtTheLimitsOf32BitsAndNotBefore) {
  EXPECT_EQ(PositionOf(kHighest, 1), Position(1, kHighest, 1));
  EXPECT_EQ(PositionOf(kHighest, 2), Position(2, 1073741824, 1));
  EXPECT_EQ(PositionOf(kHighest, kHighest), Position(kHighest, 1, kHighest));
  EXPECT_EQ(PositionOf(kLowest + 1, 1), Position(1, kLowest + 1, 1));

  Position position = kUntouched;
  for (const auto& limits : {std::pair{kLowest, 1}, {kLowest, kHighest}, {0, kHighest}}) {
    EXPECT_EQ(NumberOfError([&] { Locate(limits.first, limits.second, position); }), ErrorNumber::Overflow);
    EXPECT_EQ(position, kUntouched);
  }
}

TEST(GetDraftPosition, OfLargeNumbersIsThatOfIntegerArithmetic) {
  const auto seed = std::random_device()();
  std::mt19937 random(seed);
  std::uniform_int_distribution<std::int32_t> any(1, kHighest);
  for (int i = 0; i < 10000; ++i) {
    const std::int32_t managers = any(random) >> (i % 31);
    if (managers < 1) continue;
    const std::int32_t pickNo = any(random);
    const std::int32_t round = (pickNo - 1) / managers + 1;
    const std::int32_t pick = (pickNo - 1) % managers + 1;
    const std::int32_t place = round % 2 ? pick : managers - pick + 1;
    ASSERT_EQ(PositionOf(pickNo, managers), Position(place, round, pick))
        << "pick " << pickNo << " of " << managers << ", seed " << seed;
  }
}

TEST(MakePickKey, PutsTheLetterOfTheKindBeforeThePlainNumber) {
  EXPECT_EQ(MakePickKey(PickType::None, 5), "N5");
  EXPECT_EQ(MakePickKey(PickType::Player, 117), "P117");
  EXPECT_EQ(MakePickKey(PickType::Team, kLowest), "T-2147483648");
  EXPECT_EQ(MakePickKey(PickType::ManagerTmpl, 17), "K17");
  EXPECT_EQ(MakePickKey(PickType::PrizeTmpl, -1), "K-1");
  EXPECT_EQ(MakePickKey(PickType::Position, 3), "3");
  EXPECT_EQ(MakePickKey(PickType{-1}, -3), "-3");
}

}  // namespace
}  // namespace HLDataSrvc::HLUtils

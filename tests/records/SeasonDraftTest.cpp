#include <random>
#include <vector>

#include <gtest/gtest.h>

#include "records/DraftInfo.h"
#include "records/HLUtils.h"
#include "records/PositionInfo.h"
#include "records/SeasonInfo.h"
#include "tests/records/RecordsSupport.h"

namespace HLDataSrvc {
namespace {

using namespace HLIData;
using test::NumberOfError;

// A season of which no pick is made.
class SeasonDraft : public testing::Test {
 protected:
  SeasonDraft() { Draft(4, 2); }

  void Draft(std::int32_t managers, std::int32_t rounds) {
    m_season.NoOfManagers(managers);
    m_season.NoOfRounds(rounds);
    m_season.Drafts(std::make_shared<KeyedCollection<IDraftInfo>>());
    for (std::int32_t number = 1; number <= managers * rounds; ++number) {
      const auto pick = std::make_shared<DraftInfo>();
      pick->DraftNo(number);
      m_season.Drafts()->Add(pick, HLUtils::MakePickKey(PickType::None, number));
    }
  }

  std::string Keys() const {
    std::string keys;
    for (std::int32_t number = 1; number <= m_season.Drafts()->Count(); ++number)
      keys += (number > 1 ? " " : "") + m_season.Drafts()->KeyAt(number);
    return keys;
  }

  DraftInfo& Pick(std::int32_t number) { return dynamic_cast<DraftInfo&>(*m_season.Drafts()->Item(number)); }

  /// Whether something is taken, and the message, which is "-" when it was left alone.
  std::string Taken(const std::shared_ptr<IPickable>& pick) {
    std::string message = "-";
    const bool isTaken = m_season.IsPickableTaken(pick, message);
    return (isTaken ? "taken: " : "free: ") + message;
  }

  SeasonInfo m_season;
  const std::shared_ptr<ManagerInfo> m_smith = test::Manager(1, "Smith");
  const std::shared_ptr<PlayerInfo> m_joe = test::Player(117, "Joe", "Jones");
};

TEST_F(SeasonDraft, APickIsHeldAtItsNumberUnderWhatWasPicked) {
  m_season.UpdateDraft(m_joe, 1, m_smith);
  m_season.UpdateDraft(test::Team(117), 4, m_smith);
  m_season.UpdateDraft(test::Player(5), 8, m_smith);
  EXPECT_EQ(Keys(), "P117 N2 N3 T117 N5 N6 N7 P5");
  EXPECT_EQ(Pick(1).Player(), m_joe);
  EXPECT_EQ(Pick(4).PickType(), PickType::Team);
  for (const std::int32_t number : {1, 4, 8}) {
    EXPECT_EQ(Pick(number).DraftNo(), number);
    EXPECT_EQ(Pick(number).Manager(), m_smith);
    EXPECT_TRUE(Pick(number).IsChanged());
  }
  EXPECT_FALSE(Pick(2).IsChanged());

  m_season.UpdateDraft(test::Player(6), 4, test::Manager(2));
  EXPECT_EQ(Keys(), "P117 N2 N3 P6 N5 N6 N7 P5") << "replaced in place";
  Pick(1).IsChanged(false);
  m_season.UpdateDraft(m_joe, 1, test::Manager(3));
  EXPECT_EQ(Pick(1).Manager()->ID(), 3);
  EXPECT_FALSE(Pick(1).IsChanged()) << "the player is the same, and the manager does not count";
  EXPECT_EQ(m_season.CurrentPick(), 0) << "moving on is the caller's business";
}

TEST_F(SeasonDraft, ARemovedPickKeepsWhatItHeld) {
  m_season.UpdateDraft(m_joe, 6, m_smith);
  m_season.RemoveDraft(6);
  EXPECT_EQ(Keys(), "N1 N2 N3 N4 N5 N6 N7 N8");
  EXPECT_EQ(Pick(6).PlayerOrTeam(), std::shared_ptr<IPickable>(m_joe));
  EXPECT_EQ(Pick(6).Manager(), nullptr);
  EXPECT_EQ(Pick(6).DraftNo(), 6);
  EXPECT_TRUE(Pick(6).IsChanged());
  EXPECT_EQ(Taken(m_joe), "free: -");
  m_season.RemoveDraft(6);
  EXPECT_EQ(Keys(), "N1 N2 N3 N4 N5 N6 N7 N8") << "an empty pick stays empty";
}

TEST_F(SeasonDraft, ADraftOfOnePickIsPlayedLikeAnyOther) {
  Draft(1, 1);
  m_season.UpdateDraft(m_joe, 1, m_smith);
  EXPECT_EQ(Keys(), "P117");
  m_season.RemoveDraft(1);
  EXPECT_EQ(Keys(), "N1");
}

TEST_F(SeasonDraft, ManyPicksAndRemovalsNeverMoveAPick) {
  Draft(5, 6);
  const auto seed = std::random_device()();
  std::mt19937 random(seed);
  std::vector<std::int32_t> model(31);  // the player at each pick; 0: it is empty
  for (int step = 0; step < 500; ++step) {
    const std::int32_t number = std::uniform_int_distribution(1, 30)(random);
    const std::int32_t player = std::uniform_int_distribution(-20, 40)(random);
    std::string message;
    if (player < 1) {
      m_season.RemoveDraft(number);
      model[static_cast<std::size_t>(number)] = 0;
    } else if (!m_season.IsPickableTaken(test::Player(player), message)) {
      m_season.UpdateDraft(test::Player(player), number, m_smith);
      model[static_cast<std::size_t>(number)] = player;
    }
    std::string expected;
    for (std::int32_t at = 1; at <= 30; ++at) {
      const std::int32_t held = model[static_cast<std::size_t>(at)];
      expected += (at > 1 ? " " : "") + (held ? "P" + std::to_string(held) : "N" + std::to_string(at));
      ASSERT_EQ(Pick(at).DraftNo(), at) << "seed " << seed;
      ASSERT_EQ(Pick(at).Manager() != nullptr, held != 0) << "seed " << seed;
    }
    ASSERT_EQ(Keys(), expected) << "seed " << seed;
  }
}

TEST_F(SeasonDraft, WhatIsTakenIsToldWithRoundAndManager) {
  m_season.UpdateDraft(m_joe, 6, m_smith);
  m_season.UpdateDraft(test::Team(2, "Bears"), 1, m_smith);
  EXPECT_EQ(Taken(m_joe), "taken: 2\tSmith\tJoe Jones");
  EXPECT_EQ(Taken(test::Player(117, "J.", "Jones")), "taken: 2\tSmith\tJ. Jones") << "the name as asked";
  EXPECT_EQ(Taken(test::Team(2, "Bears")), "taken: 1\tSmith\tBears");
  EXPECT_EQ(Taken(test::Team(117)), "free: -") << "the player of that number is taken";
  EXPECT_EQ(Taken(test::Player(2)), "free: -");
  m_season.NoOfManagers(0);
  EXPECT_EQ(Taken(m_joe), "taken: 0\tSmith\tJoe Jones") << "no rounds without managers";
}

TEST_F(SeasonDraft, ManagersAndPrizesAreTakenWhenTheSeasonHasThem) {
  m_season.Managers(std::make_shared<KeyedCollection<IManagerInfo>>());
  m_season.Prizes(std::make_shared<KeyedCollection<IPrizeInfo>>());
  m_season.AddManager(test::ManagerTmpl(7));
  m_season.AddPrize(test::PrizeTmpl(4));
  EXPECT_EQ(Taken(test::ManagerTmpl(7)), "taken: -");
  EXPECT_EQ(Taken(test::ManagerTmpl(4)), "free: -");
  EXPECT_EQ(Taken(test::PrizeTmpl(4)), "taken: -");
  EXPECT_EQ(Taken(test::PrizeTmpl(7)), "free: -");
}

TEST_F(SeasonDraft, WhatCannotBeJudgedCountsAsTaken) {
  EXPECT_EQ(Taken(std::make_shared<PositionInfo>()), "taken: -");
  for (const std::int32_t type : {0, 6, -1})
    EXPECT_EQ(Taken(std::make_shared<test::ForeignPickable>(type)), "taken: -") << type;
  EXPECT_EQ(Taken(nullptr), "taken: -");
  const auto broken = std::make_shared<test::ForeignPickable>(1);
  EXPECT_EQ(Taken(broken), "free: -");
  broken->canBeIdentified = false;
  EXPECT_EQ(Taken(broken), "taken: -");
  for (const auto& nameless : {std::shared_ptr<ManagerInfo>(), std::make_shared<ManagerInfo>()}) {
    m_season.UpdateDraft(m_joe, 3, nameless);
    EXPECT_EQ(Taken(m_joe), "taken: -") << "whose it is cannot be told";
  }

  m_season.Drafts(nullptr);
  EXPECT_EQ(Taken(m_joe), "free: -");
  EXPECT_EQ(Taken(test::ManagerTmpl(7)), "free: -");
}

TEST_F(SeasonDraft, PicksOutsideTheDraftAreRefused) {
  for (const std::int32_t outside : {0, -1, 9, INT32_MIN, INT32_MAX}) {
    EXPECT_EQ(NumberOfError([&] { m_season.UpdateDraft(m_joe, outside, m_smith); }),
              ErrorNumber::BadPosition);
    EXPECT_EQ(NumberOfError([&] { m_season.RemoveDraft(outside); }), ErrorNumber::BadPosition);
  }
  EXPECT_EQ(Keys(), "N1 N2 N3 N4 N5 N6 N7 N8");
  m_season.Drafts(nullptr);
  EXPECT_EQ(NumberOfError([&] { m_season.UpdateDraft(m_joe, 1, m_smith); }), ErrorNumber::ObjectNotSet);
  EXPECT_EQ(NumberOfError([&] { m_season.RemoveDraft(1); }), ErrorNumber::ObjectNotSet);
}

TEST_F(SeasonDraft, AFailedUpdateLeavesThePickOut) {
  m_season.UpdateDraft(m_joe, 2, m_smith);
  EXPECT_EQ(NumberOfError([&] { m_season.UpdateDraft(m_joe, 5, m_smith); }), ErrorNumber::DuplicateKey);
  EXPECT_EQ(Keys(), "N1 P117 N3 N4 N6 N7 N8");
  EXPECT_EQ(NumberOfError([&] { m_season.UpdateDraft(nullptr, 1, m_smith); }), ErrorNumber::ObjectNotSet);
  EXPECT_EQ(Keys(), "P117 N3 N4 N6 N7 N8");
}

TEST_F(SeasonDraft, WhatIsNeitherPlayerNorTeamChangesTheKeyOnly) {
  m_season.UpdateDraft(test::ManagerTmpl(7), 2, m_smith);
  EXPECT_EQ(Pick(2).PlayerOrTeam(), nullptr);
  EXPECT_EQ(Pick(2).Manager(), m_smith);
  const auto foreign = std::make_shared<test::ForeignPickable>(2);
  EXPECT_EQ(NumberOfError([&] { m_season.UpdateDraft(foreign, 3, m_smith); }), ErrorNumber::TypeMismatch);
  EXPECT_EQ(Pick(3).Manager(), nullptr);
  EXPECT_EQ(Keys(), "N1 K7 T9 N4 N5 N6 N7 N8");
}

}  // namespace
}  // namespace HLDataSrvc

#include <algorithm>
#include <random>

#include "HLLeague/Failure.h"
#include "tests/cli/DraftTest.h"

namespace cli::test {

using namespace HLLeague;

namespace {

class SaveDraftTest : public DraftTest {
 protected:
  Picks Current() { return PicksOf(*CurrentSeason(League())); }

  /// Plays what differs in one step, and saves.
  void Save(const Picks& wanted) {
    Play(wanted);
    Draft().Save();
  }
  void Play(const Picks& wanted) {
    std::vector<std::pair<std::int32_t, Pick>> changes;
    for (const std::int32_t number : DifferingPicks(Draft().Current(), wanted))
      changes.emplace_back(number, wanted[static_cast<std::size_t>(number) - 1]);
    Draft().Change(changes);
  }

  /// Players and teams that are not picked in the season.
  std::vector<std::shared_ptr<HLIData::IPickable>> Free(const std::string& name) {
    const auto season = CurrentSeason(League());
    std::vector<std::shared_ptr<HLIData::IPickable>> free;
    std::string ignored;
    const auto found = League().Service().Search(HLIData::SearchType::PlayersAndTeams, name, false, true);
    for (const auto& one : *found) {
      if (!season->IsPickableTaken(one, ignored)) free.push_back(one);
    }
    return free;
  }

  /// Everything that can become of a draft: picks emptied, swapped, taken over, given to others.
  Picks Shuffled(Picks picks, std::mt19937& random) {
    auto free = Free("b");  // players, and teams of a name with B
    std::vector<std::int32_t> managers;
    const auto all = CurrentSeason(League())->Managers();
    for (const auto& manager : *all)
      managers.push_back(manager->ID());
    const auto any = [&](std::size_t count) {
      return std::uniform_int_distribution<std::size_t>(0, count - 1)(random);
    };
    for (std::size_t change = any(6); change > 0; --change) {
      Pick& pick = picks[any(picks.size())];
      switch (any(4)) {
        case 0:
          pick = Pick();
          break;
        case 1:
          std::swap(pick, picks[any(picks.size())]);
          break;
        case 2:
          if (!pick.IsEmpty()) pick.managerID = managers[any(managers.size())];
          break;
        default: {
          const std::size_t i = any(free.size());
          pick = {free[i]->PickType(), free[i]->PickID(), managers[any(managers.size())], free[i]};
          free.erase(free.begin() + static_cast<std::ptrdiff_t>(i));
        }
      }
    }
    return picks;
  }

  void ExpectRows(const Picks& picks, const std::map<std::pair<int, int>, std::string>& before) {
    auto expected = before;
    for (std::size_t i = 0; i < picks.size(); ++i) {
      const std::pair<int, int> key{kSeason, static_cast<int>(i) + 1};
      expected.erase(key);
      if (!picks[i].IsEmpty()) expected[key] = RowOf(picks[i]);
    }
    EXPECT_EQ(Rows(), expected);
  }
};

// Steps, steps taken back, savings, also ones that fail at any call of the engine, and reverts, against a
// model.
TEST_F(SaveDraftTest, StoresTheDraftAsItWasPlayed) {
  const auto seed = std::random_device()();
  SCOPED_TRACE("seed " + std::to_string(seed));
  std::mt19937 random(seed);
  const auto before = Rows();
  int failures = 0;
  for (int sequence = 0; sequence < 12; ++sequence) {
    Picks stored = Current();
    Picks played = stored;
    std::vector<Picks> steps;
    for (int step = 0; step < 16; ++step) {
      SCOPED_TRACE("sequence " + std::to_string(sequence) + ", step " + std::to_string(step));
      switch (random() % 8) {
        case 0:
          Draft().TakeBack();
          if (steps.empty()) break;
          played = steps.back();
          steps.pop_back();
          break;
        case 1:
          Draft().Revert();
          played = stored;
          steps.clear();
          break;
        case 2:
        case 3:
          m_engine->failsOnce = random() % 2 == 0;
          m_engine->callsLeft = random() % 2 == 0 ? -1 : static_cast<int>(random() % 400);
          try {
            Draft().Save();
            stored = played;
          } catch (const Failure&) {
            ++failures;
          }
          m_engine->callsLeft = -1;
          break;
        default:
          steps.push_back(played);
          played = Shuffled(played, random);
          Play(played);
      }
      ASSERT_EQ(Draft().Current(), played);
      ASSERT_EQ(Draft().Stored(), stored);
      ASSERT_EQ(Current(), played);
    }
    ASSERT_EQ(StoredPicks(), stored);
    ExpectRows(stored, before);
  }
  EXPECT_GT(failures, 0);
}

TEST_F(SaveDraftTest, LoadsTheSeasonOnceAndDeletesNoRowThatCanStay) {
  const auto free = Free("smi");
  Reopen();
  m_engine->calls.clear();
  Picks wanted = Draft().Current();
  Draft().Save();
  wanted[1].what = free.at(0);  // a player for a player, by the same manager
  wanted[1].id = free.at(0)->PickID();
  Save(wanted);
  EXPECT_EQ(Draft().Current(), wanted);
  EXPECT_EQ(m_engine->Count("select * from [season info]"), 1);
  EXPECT_EQ(m_engine->Count("Recordset.Delete"), 0);
  EXPECT_EQ(m_engine->Count("Recordset.Update"), 1);
  ExpectRows(wanted, Rows());

  wanted[11] = Pick();
  Save(wanted);
  EXPECT_EQ(m_engine->Count("Recordset.Delete"), 1);
  ExpectRows(wanted, Rows());
}

TEST_F(SaveDraftTest, LeavesPicksAloneThatItCouldNotWrite) {
  UseSeason(12);  // its picks 5 and 11 have a manager, but no player or team
  const auto before = Rows();
  Picks wanted = Current();
  wanted[0] = Pick();
  Save(wanted);
  auto expected = before;
  expected.erase({12, 1});
  EXPECT_EQ(Rows(), expected);
  wanted = Current();
  wanted[4].managerID = wanted[1].managerID;
  try {
    Save(wanted);
    FAIL();
  } catch (const Failure& failure) {
    EXPECT_NE(std::string(failure.what()).find("pick 5 "), std::string::npos) << failure.what();
  }
  EXPECT_EQ(Rows(), expected);
  wanted[4] = wanted[10] = Pick();
  EXPECT_NO_THROW(Save(wanted));
}

}  // namespace
}  // namespace cli::test

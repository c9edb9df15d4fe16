#include <algorithm>
#include <random>
#include <set>

#include "cli/DraftSaver.h"
#include "cli/ExitCode.h"
#include "tests/cli/DraftTest.h"

namespace cli::test {
namespace {

class DraftSaverTest : public DraftTest {
 protected:
  Picks Current() { return PicksOf(*CurrentSeason(League())); }

  /// Players and teams that nobody of the season has picked.
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

TEST_F(DraftSaverTest, BringsTheRowsToWhateverIsWanted) {
  const auto seed = std::random_device()();
  SCOPED_TRACE("seed " + std::to_string(seed));
  std::mt19937 random(seed);
  const auto before = Rows();
  for (int round = 0; round < 12; ++round) {
    SCOPED_TRACE("round " + std::to_string(round));
    const Picks wanted = Shuffled(Current(), random);
    DraftSaver(League()).Save(wanted);
    EXPECT_EQ(Current(), wanted);
    EXPECT_EQ(StoredPicks(), wanted);
    ExpectRows(wanted, before);
  }
}

TEST_F(DraftSaverTest, TakesNoRowAwayThatCanStay) {
  const auto free = Free("smi");
  Picks wanted = Current();
  EXPECT_EQ(DraftSaver(League()).Save(wanted), 0U);
  wanted[1].what = free.at(0);  // a player for a player, by the same manager
  wanted[1].id = free.at(0)->PickID();
  EXPECT_EQ(DraftSaver(League()).Save(wanted), 1U);
  EXPECT_EQ(m_engine->deletions, 0);
  ExpectRows(wanted, Rows());

  wanted[11] = Pick();
  EXPECT_EQ(DraftSaver(League()).Save(wanted), 11U);
  EXPECT_EQ(m_engine->deletions, 12);
}

TEST_F(DraftSaverTest, RefusesBeforeItWritesWhatCannotBeWritten) {
  League().Service().CurrentSeasonID(12);  // somebody has made its picks 5 and 11 without picking anybody
  const auto before = Rows();
  League().Service().CurrentSeasonID(12);
  Picks wanted = Current();
  wanted[0] = Pick();
  try {
    DraftSaver(League()).Save(wanted);
    FAIL();
  } catch (const Failure& failure) {
    EXPECT_NE(std::string(failure.what()).find("picks 5, 11"), std::string::npos) << failure.what();
    EXPECT_NE(failure.Hint().find("draft clear 5 11"), std::string::npos) << failure.Hint();
  }
  EXPECT_EQ(m_engine->deletions, 0);
  EXPECT_EQ(Rows(), before);
  League().Service().CurrentSeasonID(12);
  wanted[4] = wanted[10] = Pick();
  EXPECT_NO_THROW(DraftSaver(League()).Save(wanted));
}

TEST_F(DraftSaverTest, SaysAfterEveryFailureWhatIsStored) {
  const Picks first = Current();
  Picks added = first;  // without deleting
  const auto free = Free("smi");
  for (const std::size_t i : {0U, 3U, 8U}) {
    added[i].what = free.at(i);
    added[i].id = free.at(i)->PickID();
  }
  Picks swapped = first;  // deletes and writes all
  std::swap(swapped[0], swapped[11]);
  swapped[6] = Pick();
  for (const Picks& wanted : {added, swapped}) {
    int storedPartly = 0;
    for (int calls = 0;; calls += 29) {  // a save makes about a thousand
      SCOPED_TRACE("calls " + std::to_string(calls));
      DraftSaver(League()).Save(first);
      m_engine->callsLeft = calls;
      m_engine->failsOnce = calls % 2 == 0;
      std::string what;
      std::string hint;
      try {
        DraftSaver(League()).Save(wanted);
      } catch (const Failure& failure) {
        what = failure.what();
        hint = failure.Hint();
      }
      const bool hasFailed = m_engine->callsLeft <= 0;
      m_engine->callsLeft = -1;
      const Picks stored = StoredPicks();  // loads, whatever was left
      if (what.empty()) {
        EXPECT_FALSE(hasFailed);
        EXPECT_EQ(stored, wanted);
        break;
      }
      EXPECT_NE(what.find("no room"), std::string::npos) << what;
      for (std::size_t i = 0; i < stored.size(); ++i)
        EXPECT_TRUE(stored[i] == first[i] || stored[i] == wanted[i] || stored[i].IsEmpty()) << i;
      if (stored != first && stored != wanted) ++storedPartly;
      if (what.find("The draft could not be saved") != 0) {
        EXPECT_EQ(stored, first);  // what is stored could not even be read
        continue;
      }
      if (what.find("could not be read again") != std::string::npos) {
        EXPECT_EQ(stored, wanted);
        continue;
      }
      const char* account = !m_engine->failsOnce ? "What the file holds now could not be read"
                            : stored == first    ? "The file holds the draft that it held before."
                                                 : "Stored now: ";
      EXPECT_EQ(hint.find(account), 0U) << hint;
    }
    EXPECT_GT(storedPartly, 0);
  }
}

TEST_F(DraftSaverTest, TellsOfALossSoThatItCanBeMadeGood) {
  const Picks first = Current();
  Picks wanted = first;
  wanted[0] = Pick();
  // The third pick that is written after the deletion is the last.
  struct ThirdAddition final : jet::CallObserver {
    void OnCall(const char* call, const std::string&) override {
      if (std::string(call) == "Recordset.AddNew" && ++additions > 2)
        throw jet::Error(jet::ErrorNumber::DiskFull, "The disk is full.");
    }
    int additions = 0;
  };
  HLDataSrvc::HLServiceUtils::ReplaceEngine({.files = {}, .observer = std::make_shared<ThirdAddition>()});
  Reopen();
  try {
    DraftSaver(League()).Save(wanted);
    FAIL();
  } catch (const Failure& failure) {
    EXPECT_NE(std::string(failure.what()).find("The disk is full."), std::string::npos) << failure.what();
    const std::string& hint = failure.Hint();
    EXPECT_EQ(hint.find("Stored now: picks 2-3."), 0U) << hint;
    EXPECT_NE(hint.find("Not stored as it should be: picks 4-12."), std::string::npos) << hint;
    EXPECT_NE(hint.find("draft pick P118 --pick 4 --manager 19\n"), std::string::npos) << hint;
    EXPECT_NE(hint.find("draft pick T17 --pick 6 --manager 9\n"), std::string::npos) << hint;
    EXPECT_EQ(hint.find("--pick 3 "), std::string::npos) << hint;
    EXPECT_EQ(hint.find("--pick 1 "), std::string::npos) << hint;
  }
}

}  // namespace
}  // namespace cli::test

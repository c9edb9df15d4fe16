// A season in which every operation on files goes wrong once, in every way.
#include <iostream>
#include <optional>

#include <gtest/gtest.h>

#include "jet/Error.h"
#include "storage/HLServiceUtils.h"
#include "storage/LeagueFile.h"
#include "tests/robustness/SeasonRun.h"
#include "tests/robustness/SeasonScript.h"
#include "tests/support/CrashingFileSystem.h"
#include "tests/support/Witnesses.h"

namespace HLDataSrvc::test {
namespace {

using jet::test::Crash;
using jet::test::CrashingFileSystem;
using jet::test::Failure;
using FilesPtr = std::shared_ptr<CrashingFileSystem>;
using Bytes = std::map<std::string, std::vector<std::byte>>;

constexpr char kFolder[] = "league";

/// What goes wrong at a point.
struct Fault {
  const char* name;
  std::optional<Crash> crash;  // none: the operation fails and the process lives
  Failure failure = Failure::Clean;
  bool forGood = false;
};

constexpr Fault kFaults[] = {{"Kill", Crash::Kill},
                             {"TornKill", Crash::TornKill},
                             {"LoseUnsynced", Crash::LoseUnsynced},
                             {"ReorderUnsynced", Crash::ReorderUnsynced},
                             {"PowerCut", Crash::PowerCut},
                             {"Fail", {}},
                             {"FailTorn", {}, Failure::Torn},
                             {"FailForGood", {}, Failure::Torn, true}};

FilesPtr Up(const Bytes& bytes) {
  return std::make_shared<CrashingFileSystem>(bytes);
}

class SeasonFaultTest : public testing::Test {
 protected:
  SeasonFaultTest() {
    m_start[m_name] = SmallLeague();
    m_states = PlayedSeason(m_start[m_name]);
    const FilesPtr files = Up(m_start);
    const auto count = Use(files);
    EXPECT_EQ(Play(0), SeasonScript::kSteps);
    m_changes = files->Operations();
    m_calls = files->Calls();
    EXPECT_EQ(m_states.Commits(), count->Count());
  }
  ~SeasonFaultTest() override { HLServiceUtils::ReplaceEngine({}); }

  /// Has the service use these files.
  static std::shared_ptr<Acknowledged> Use(const FilesPtr& files) {
    auto observer =
        std::make_shared<Acknowledged>([files] { return !files->HasCrashed() && !files->HasFailed(); });
    HLServiceUtils::ReplaceEngine({.files = files, .observer = observer});
    return observer;
  }

  /// Plays from a step on and closes. The step that went wrong; one past the last step when none did.
  static int Play(int step) {
    try {
      SeasonScript script(std::make_shared<ScriptHost>(kFolder));
      for (; step < SeasonScript::kSteps; ++step)
        script.Play(step);
      script.Close();
    } catch (const std::exception&) {
    }
    return step;
  }

  void TryCrash(std::size_t nth, Crash crash, bool askWitness) {
    const FilesPtr files = Up(m_start);
    files->CrashAt(nth, crash, static_cast<std::uint32_t>(nth));
    const auto observer = Use(files);
    const int step = Play(0);
    ASSERT_TRUE(files->HasCrashed());
    FilesPtr again = Up(files->Survivors());
    if (nth % 3 == 0) {  // and goes down once more on the way up
      again->CrashAt(1 + nth % 7, crash, static_cast<std::uint32_t>(nth));
      try {
        SoundRows(again, m_name);
      } catch (const jet::Error&) {
      }
      again = Up(again->Survivors());
    }
    ExpectWhole(m_states, SoundRows(again, m_name), observer->Count());
    if (askWitness) Ask(again);
    Use(again);
    EXPECT_EQ(Play(std::min(step, SeasonScript::kSteps - 1)), SeasonScript::kSteps);
    EXPECT_TRUE(SoundRows(again, m_name) == m_states.Last()) << "going on from step " << step;
  }

  /// What an operation wrote stays when reading fails in it, which it may do at any point; a commit that
  /// fails stores nothing.
  void ExpectStored(const FilesPtr& files, Crash crash, std::size_t commits) const {
    const Tables rows = SoundRows(Up(files->Survivors(crash)), m_name);
    files->HasFailedToRead() ? ExpectUpToAnError(m_states, rows, commits)
                             : ExpectWhole(m_states, rows, commits);
  }

  void TryFailure(std::size_t nth, const Fault& fault, bool askWitness) {
    const FilesPtr files = Up(m_start);
    files->FailAt(nth, fault.failure, fault.forGood, static_cast<std::uint32_t>(nth));
    const auto observer = Use(files);
    int step = 0;
    for (int attempt = 0; attempt < 3 && step <= SeasonScript::kSteps; ++attempt) {
      try {
        SeasonScript script(std::make_shared<ScriptHost>(kFolder));
        while (step < SeasonScript::kSteps) {
          try {
            script.Play(step);
            ++step;
            continue;
          } catch (const std::exception&) {
          }
          if (attempt == 0) {
            for (const Crash crash : {Crash::Kill, Crash::LoseUnsynced})
              ExpectStored(files, crash, observer->Count());
          }
          files->Mend();
          script.Play(step);  // the user tries again; should it fail again, starts the program again
          ++step;
        }
        EXPECT_TRUE(SoundRows(Up(files->Survivors(Crash::LoseUnsynced)), m_name) == m_states.Last());
        script.Close();
        ++step;
      } catch (const std::exception&) {
      }
      files->Mend();
    }
    ASSERT_TRUE(files->HasFailed());
    if (askWitness) Ask(files);
    EXPECT_TRUE(SoundRows(files, m_name) == m_states.Last());
    EXPECT_FALSE(files->Exists(m_name + "-log"));
  }

  void Ask(const FilesPtr& files) const {
    EXPECT_EQ(jet::test::IndependentCheck(files->Survivors(Crash::Kill).at(m_name), false,
                                          HLServiceUtils::kDatabasePassword),
              "");
  }

  /// Tries every `stride`-th point with every fault; an independent checker looks at every `witnessed`-th.
  void Sweep(std::size_t stride, std::size_t witnessed) {
    std::size_t tried = 0;
    for (const Fault& fault : kFaults) {
      const std::size_t points = fault.crash ? m_changes : m_calls;
      for (std::size_t nth = 1 + tried % stride; nth <= points && !HasFailure(); nth += stride) {
        SCOPED_TRACE(std::string(fault.name) + " at operation " + std::to_string(nth));
        const bool askWitness = ++tried % witnessed == 0;
        if (fault.crash) TryCrash(nth, *fault.crash, askWitness);
        if (!fault.crash) TryFailure(nth, fault, askWitness);
      }
    }
    std::cout << "A season of " << m_states.Commits() << " transactions, " << m_changes << " changing and "
              << m_calls << " operations in all: " << tried << " points tried, " << tried / witnessed
              << " of them also by the independent checker.\n";
  }

  const std::string m_name = ScriptFile(kFolder);
  Bytes m_start;
  SeasonStates m_states;  // after each change
  std::size_t m_changes = 0;
  std::size_t m_calls = 0;
};

TEST_F(SeasonFaultTest, LosesNothingAtSomePoints) {
  Sweep(53, 30);
}

TEST_F(SeasonFaultTest, SlowLosesNothingAtAnyPoint) {
  Sweep(1, 50);
}

/// The making of a file that replaces another: there is the one or the other, whole, and nothing beside it
/// once it was made again.
void SweepMaking(std::size_t stride) {
  const std::string name = ScriptFile(kFolder);
  const Bytes start{{name, SmallLeague()}};
  const auto make = [&] { CreateLeagueFile(name, {.overwrite = true}); };
  const auto work = [&](const FilesPtr& files) {
    HLServiceUtils::ReplaceEngine({.files = files, .observer = {}});
    make();
  };
  const Tables before = SoundRows(Up(start), name);
  const FilesPtr clean = Up(start);
  work(clean);
  const Tables after = SoundRows(clean, name);
  std::size_t tried = 0;
  for (const Fault& fault : kFaults) {
    const std::size_t points = fault.crash ? clean->Operations() : clean->Calls();
    for (std::size_t nth = 1 + tried % stride; nth <= points && !testing::Test::HasFailure(); nth += stride) {
      SCOPED_TRACE(std::string(fault.name) + " at operation " + std::to_string(nth));
      ++tried;
      const FilesPtr files = Up(start);
      const auto seed = static_cast<std::uint32_t>(nth);
      if (fault.crash) files->CrashAt(nth, *fault.crash, seed);
      if (!fault.crash) files->FailAt(nth, fault.failure, fault.forGood, seed);
      bool isMade = false;
      try {
        work(files);
        isMade = true;
      } catch (const jet::Error&) {
      }
      files->Mend();
      for (const Crash crash : {Crash::Kill, Crash::LoseUnsynced}) {
        const FilesPtr again = Up(files->Survivors(fault.crash.value_or(crash)));
        const Tables rows = SoundRows(again, name);
        EXPECT_TRUE(rows == after || (!isMade && rows == before));
        work(again);
        EXPECT_TRUE(SoundRows(again, name) == after);
        EXPECT_EQ(again->Survivors().size(), 1u);
      }
    }
  }
  HLServiceUtils::ReplaceEngine({});
  std::cout << "Making a file: " << tried << " points tried.\n";
}

TEST(LeagueFileFaultTest, KeepsOneOrTheOtherAtSomePoints) {
  SweepMaking(601);
}

TEST(LeagueFileFaultTest, SlowKeepsOneOrTheOtherAtAnyPoint) {
  SweepMaking(7);
}

}  // namespace
}  // namespace HLDataSrvc::test

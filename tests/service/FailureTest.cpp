// Every operation with every one of its calls of the engine failing in turn, and every write and sync of its
// commits: what it returns and shows, what memory holds, and which rows are stored.

#include <algorithm>
#include <set>

#include "HLIData/ITeamInfo.h"
#include "jet/Error.h"
#include "tests/service/LeagueTest.h"
#include "tests/support/FaultyFileSystem.h"

namespace HLDataSrvc {
namespace {

using namespace HLIData;
using jet::test::FileOperation;
using test::Lines;
using test::Tables;

constexpr char kFailure[] = "The engine failed.";

/// What the file holds after a failure.
enum class Rows {
  SoFar,
  All,
  Unchecked
};  // SoFar: the changes made before the call that failed, but none of
    // the transaction if that call was to commit it
/// What asking again without a failure does.
enum class Again { Succeeds, ServesWhatThereIs, Unchecked };

/// How an operation ends when a call fails that is made within a statement: its answer, and the sentences of
/// its message boxes, with the error's description unless that is kFailure.
struct Ending {
  const char* within;   // part of "statement # call"; " changed" stands between once rows were changed
  std::string outcome;  // ends with "*": any other description; "*": shows a failure
  const char* memory = nullptr;  // as FailureTest::Memory returns it; nullptr: whatever
  Again again = Again::Succeeds;
  Rows rows = Rows::SoFar;
};

class FailureTest;

struct Operation {
  const char* name;
  void (*prepare)(FailureTest& test);
  std::string (*run)(DataService& service);
  std::vector<Ending> endings;  // the first that fits counts
};

void PrintTo(const Operation& operation, std::ostream* stream) {
  *stream << operation.name;
}

class FailureTest : public test::LeagueTest, public testing::WithParamInterface<Operation> {
 public:
  FailureTest() { HLServiceUtils::ReplaceEngine({.files = m_faults, .observer = m_engine}); }

  // What is there before an operation.

  static void Nothing(FailureTest&) {}
  static void Lists(FailureTest& test) {
    test.m_service->GetTeams();
    test.m_service->GetPrizeTmpls();
  }
  static void OtherCurrent(FailureTest& test) {
    Lists(test);
    test.m_service->CurrentSeasonID(2);
  }
  static void Loaded(FailureTest& test) {
    Lists(test);
    test.m_season = test.Season();
    test.m_managers = test.m_season->Managers();
    test.m_drafts = test.m_season->Drafts();
  }
  static void OtherLoaded(FailureTest& test) {
    test.m_service->CurrentSeasonID(2);
    Loaded(test);
  }
  static void Ranked(FailureTest& test) {
    Loaded(test);
    test.m_managers->Item("K1")->Rank(1);
    test.m_managers->Item("K2")->Rank(0);
  }
  /// Everything that can be saved is different from what is stored.
  static void Changed(FailureTest& test) {
    OtherLoaded(test);
    const auto newcomer = test.m_managers->Item("K3")->ManagerTmpl();
    test.m_service->CurrentSeasonID(1);
    Ranked(test);
    SeasonInfo& season = *test.m_season;
    season.NoOfRounds(3);
    season.Prizes()->Item("K2")->Amount(77);
    season.UpdateDraft(test.m_service->Search(SearchType::PlayersAndTeams, "Moe", false, false)->Item(1), 3,
                       test.m_managers->Item("K1"));
    season.UpdateDraft(std::dynamic_pointer_cast<IPickable>(test.m_service->GetTeams()->Item("K2")), 4,
                       test.m_managers->Item("K2"));
    season.RemoveManager(test.m_managers->Item("K2"));
    season.AddManager(newcomer);
    season.Winnings()->Item("K2")->Action(WinningAction::Delete);
    for (std::int32_t week = 3; week < 5; ++week) {
      std::shared_ptr<IWinningInfo> winning;
      test.m_service->AddWinning(winning);
      winning->PrizeID("1");
      winning->ManagerID("1");
      winning->Week(week);
      winning->Action(WinningAction::Add);
    }
  }

 protected:
  struct Step {
    std::string place;
    std::size_t changesBefore;  // that stay when the call fails
  };
  struct Course {
    std::vector<Step> steps;
    std::vector<Tables> rows;  // after each number of changes
    std::string outcome;
  };

  void Begin() {
    static const std::vector<std::byte> bytes = test::SmallLeague();
    m_season = nullptr;
    Open(bytes);
    GetParam().prepare(*this);
    m_engine->calls.clear();
  }

  /// Runs the operation; its answer and what it shows, without the description `known`.
  std::string Run(const std::string& known = kFailure) {
    std::string outcome;
    try {
      outcome = GetParam().run(*m_service);
    } catch (const std::runtime_error& error) {
      outcome = error.what() == known ? "raised" : std::string("raised: ") + error.what();
    }
    for (const std::string& text : Boxes()) {
      outcome += ": " + text;
      const std::string failure = "\r\n" + known;
      if (outcome.ends_with(failure)) outcome.resize(outcome.size() - failure.size());
    }
    return outcome;
  }

  Course RunToTheEnd() {
    Course course{{}, {Stored()}, {}};
    std::vector<std::string> open;  // statements whose recordsets are
    std::string last;               // statement
    bool isChange = false;
    bool isCommit = false;
    std::size_t committed = 0;
    const auto keepRows = [&] {
      if (std::exchange(isChange, false)) course.rows.push_back(Seen());
      if (std::exchange(isCommit, false)) committed = course.rows.size() - 1;
    };
    m_engine->onCall = [&](const std::string& call) {
      keepRows();
      const std::string& told = m_engine->calls.back();
      if (call == "Database.OpenRecordset") {
        last = told.substr(call.size() + 1);
        open.push_back(last);
        // A transaction begins with its first statement.
        const bool begins = !course.steps.empty() && course.steps.back().place.ends_with(".BeginTrans");
        if (begins) course.steps.back().place.insert(0, last);
      }
      const std::size_t changes = course.rows.size() - 1;
      isCommit = call == "Database.CommitTrans";
      const std::string statement = isCommit ? last : open.empty() ? "" : open.back();
      course.steps.push_back(
          {statement + (changes > 0 ? " changed # " : " # ") + told, isCommit ? committed : changes});
      if (call == "Recordset.Close" && !open.empty()) open.pop_back();
      isChange = call == "Recordset.Update" || call == "Recordset.Delete";
    };
    course.outcome = Run();
    m_engine->onCall = nullptr;
    keepRows();
    return course;
  }

  std::string RunWithFailing(std::size_t step) {
    std::size_t calls = 0;
    m_engine->onCall = [&](const std::string&) {
      if (calls++ == step) throw jet::Error(jet::ErrorNumber::ReadFailed, kFailure);
    };
    const std::string outcome = Run();
    m_engine->onCall = nullptr;
    return outcome;
  }

  /// What became of the current season: "-" when it is not in memory, "new" when it is another object than
  /// before, else what differs.
  std::string Memory() const {
    const std::int32_t id = m_service->CurrentSeasonID();
    const auto season = FindCached(m_service->Caches().seasonsByID, id);
    std::string text = id == 1 || m_season ? "" : "of " + std::to_string(id) + " ";
    if (!season) return text + "-";
    if (season != m_season) return text + "new";
    if (season->Managers() != m_managers) text += "managers ";
    if (season->Drafts() != m_drafts) text += "drafts ";
    if (id == 2 && season->IsRankingLocked()) text += "ranking ";
    if (id == 2 && season->IsDraftLocked()) text += "drafting ";
    return text.empty() ? "same" : text.substr(0, text.size() - 1);
  }

  static const Ending& EndingAt(const Step& step) {
    const auto& endings = GetParam().endings;
    return *std::find_if(endings.begin(), endings.end(), [&](const Ending& ending) {
      return step.place.find(ending.within) != std::string::npos;
    });
  }

  void ExpectOutcome(const std::string& outcome, const Ending& ending) const {
    if (ending.outcome == "*") {
      EXPECT_NE(outcome.find(": Error in loading"), std::string::npos) << outcome;
    } else if (ending.outcome.ends_with("*")) {
      EXPECT_TRUE(outcome.starts_with(ending.outcome.substr(0, ending.outcome.size() - 1))) << outcome;
    } else {
      EXPECT_EQ(outcome, ending.outcome);
    }
  }

  const std::shared_ptr<jet::test::FaultyFileSystem> m_faults =
      std::make_shared<jet::test::FaultyFileSystem>(m_files);
  std::shared_ptr<SeasonInfo> m_season;  // the current one, if it was loaded before
  std::shared_ptr<KeyedCollection<IManagerInfo>> m_managers;
  std::shared_ptr<KeyedCollection<IDraftInfo>> m_drafts;
};

TEST_P(FailureTest, IsMetAtEveryCall) {
  Begin();
  const Course course = RunToTheEnd();
  ASSERT_EQ(course.outcome.find(':'), std::string::npos) << course.outcome;
  ASSERT_FALSE(course.steps.empty());
  std::set<std::pair<std::string, std::size_t>> triedAgain;
  for (std::size_t at = 0; at < course.steps.size() && !HasFailure(); ++at) {
    const Step& step = course.steps[at];
    SCOPED_TRACE("call " + std::to_string(at + 1) + " of " + std::to_string(course.steps.size()) + ": " +
                 step.place);
    const Ending& ending = EndingAt(step);
    Begin();
    ExpectOutcome(RunWithFailing(at), ending);
    if (ending.memory) {
      EXPECT_EQ(Memory(), ending.memory);
    }
    if (ending.rows != Rows::Unchecked) {
      EXPECT_EQ(Stored(), ending.rows == Rows::All ? course.rows.back() : course.rows[step.changesBefore]);
    }
    // Of the many calls that read a row one will do.
    const std::string statement = step.place.substr(0, step.place.find(" # "));
    const bool isNew = triedAgain.emplace(statement, step.changesBefore).second;
    const bool isWrite = step.place.ends_with(".Update") || step.place.ends_with(".Close") ||
                         step.place.ends_with(".CommitTrans");
    if (!isNew && !isWrite) continue;
    m_engine->calls.clear();
    if (ending.again == Again::Succeeds) {
      EXPECT_EQ(Run(), course.outcome) << "again";
      EXPECT_EQ(Stored(), course.rows.back());
    } else if (ending.again == Again::ServesWhatThereIs) {
      EXPECT_EQ(Run(), "something") << "again";
      EXPECT_TRUE(m_engine->calls.empty());
    }
  }
}

TEST_P(FailureTest, StoresNothingWhenTheCommitFails) {
  Begin();
  const std::size_t syncs = m_faults->Count(FileOperation::Sync);
  const Course course = RunToTheEnd();
  std::vector<Step> commits;
  std::copy_if(course.steps.begin(), course.steps.end(), std::back_inserter(commits),
               [](const Step& step) { return step.place.ends_with("Database.CommitTrans"); });
  const std::size_t made = m_faults->Count(FileOperation::Sync) - syncs;
  EXPECT_LE(made, commits.size());
  if (course.rows.front() != course.rows.back()) {
    EXPECT_EQ(made, commits.size()) << "one sync each";
  }
  EXPECT_EQ(commits.empty(), course.rows.size() == 1) << "rows are changed in transactions only";
  for (const FileOperation operation : {FileOperation::Write, FileOperation::Sync}) {
    const std::string known =
        operation == FileOperation::Write ? "A write was made to fail." : "A sync was made to fail.";
    for (std::size_t nth = 1; !commits.empty() && !HasFailure(); ++nth) {
      SCOPED_TRACE(known + " " + std::to_string(nth));
      Begin();
      m_faults->FailOnce(operation, nth);
      const std::string outcome = Run(known);
      const bool hasFailed = m_faults->HasFailed();
      m_faults->Mend();
      if (!hasFailed) break;
      if (outcome == course.outcome) {  // zeros ahead of the log's end are not needed
        EXPECT_EQ(Stored(), course.rows.back());
        continue;
      }
      const Step& failed = commits.at(m_engine->Count("Database.CommitTrans") - 1);
      const Ending& ending = EndingAt(failed);
      ExpectOutcome(outcome, ending);
      if (ending.memory) {
        EXPECT_EQ(Memory(), ending.memory);
      }
      EXPECT_EQ(Stored(), course.rows[failed.changesBefore]);
      if (ending.again != Again::Succeeds) continue;
      EXPECT_EQ(Run(), course.outcome) << "again";
      EXPECT_EQ(Stored(), course.rows.back());
    }
  }
}

std::string Text(bool result) {
  return result ? "true" : "false";
}
template <typename T>
std::string Text(const std::shared_ptr<T>& result) {
  return result ? "something" : "nothing";
}

template <auto Member>
std::string RunOf(DataService& service) {
  return Text((service.*Member)());
}

const std::string kLoading = "Error in loading season info.";
const std::string kNotSaved = "false: Error in saving season info.";

/// The winnings of a season that cannot be loaded are shown, and the operation continues without them.
Ending WithoutWinnings(const std::string& answer, const char* memory = nullptr) {
  return {"[winning info]", answer + ": Error in loading winnings.", memory, Again::Unchecked, Rows::All};
}

const std::vector<Operation>& Operations() {
  using T = FailureTest;
  using S = DataService;
  static const std::vector<Operation> operations{
      {"GetPlayerPositions",
       T::Nothing,
       RunOf<&S::GetPlayerPositions>,
       {{"", "nothing: Error in loading positions.", nullptr, Again::ServesWhatThereIs}}},
      {"GetTeams",
       T::Nothing,
       RunOf<&S::GetTeams>,
       {{"[position info]", "*", nullptr, Again::ServesWhatThereIs},
        {"", "nothing: Error in loading teams.", nullptr, Again::ServesWhatThereIs}}},
      {"GetPrizeTypes", T::Nothing, RunOf<&S::GetPrizeTypes>, {{"", "raised"}}},
      {"GetPrizeTmpls",
       T::Nothing,
       RunOf<&S::GetPrizeTmpls>,
       {{"[prize type info]", "nothing: Error in loading prizes."},
        {"", "nothing: Error in loading prizes.", nullptr, Again::ServesWhatThereIs}}},
      {"GetCurrentSeasonInfo",
       T::Lists,
       RunOf<&S::GetCurrentSeasonInfo>,
       {WithoutWinnings("something", "new"), {"", "nothing: " + kLoading, "-"}}},
      {"GetCurrentSeasonInfoBeforeAllElse",
       T::Nothing,
       RunOf<&S::GetCurrentSeasonInfo>,
       {WithoutWinnings("something", "new"),
        {"[prize type info]", "nothing: Error in loading prizes.", "-"},
        {"[prize info]", "*", nullptr, Again::Unchecked},
        {"[position info]", "*", nullptr, Again::Unchecked},
        {"[team info]", "*", nullptr, Again::Unchecked},
        {"", "nothing: " + kLoading, "-"}}},
      {"GetAllSeasons",
       T::Lists,
       RunOf<&S::GetAllSeasons>,
       {WithoutWinnings("something"),
        {"select id from [season info]", "nothing: " + kLoading},
        {"", "something: " + kLoading + "\r\nSeason *"}}},
      {"SaveCurrentSeasonInfo",
       T::Changed,
       RunOf<&S::SaveCurrentSeasonInfo>,
       {WithoutWinnings("true", "new"),
        {"[season info] s where", kNotSaved, "-"},
        {"[money distribution info] m", kNotSaved, "-"},
        {"[playing info]", kNotSaved, "-"},
        {"[draft info]", kNotSaved, "-"},
        {"", kNotSaved, "same"}}},
      {"SaveManagersPlaying", T::Changed, RunOf<&S::SaveManagersPlaying>, {{"", "raised", "same"}}},
      {"SaveManagersPlayingOfAnother",
       T::OtherCurrent,
       RunOf<&S::SaveManagersPlaying>,
       {{"[playing info] where", "raised", "of 2 new"},
        {"changed", "raised", "of 2 new"},
        WithoutWinnings("true", "of 2 new"),
        {"", "false: Error in saving playing info.", "of 2 -"}}},
      {"SaveRanking", T::Ranked, RunOf<&S::SaveRanking>, {{"", "raised", "same"}}},
      {"SaveRankingOfAnother",
       T::OtherCurrent,
       RunOf<&S::SaveRanking>,
       {{"[playing info] where", "raised", "of 2 new"},
        {"changed", "raised", "of 2 new"},
        WithoutWinnings("true", "of 2 new"),
        {"", "false: Error in saving ranking info.", "of 2 -"}}},
      {"DisableRanking",
       T::OtherLoaded,
       RunOf<&S::DisableRanking>,
       {{"", "false: Error in disabling ranking.", "ranking"}}},
      {"DisableDrafting",
       T::OtherLoaded,
       RunOf<&S::DisableDrafting>,
       {{"", "false: Error in disabling drafting.", "drafting"}}},
      {"AddSeason",
       T::Lists,
       [](S& s) { return Text(s.AddSeason(2030)); },
       {{"# Database.OpenRecordset select max", "nothing"},
        {"# Recordset.Fields highestid", "raised: *"},
        {"# Field.Value highestid", "raised: *"},
        WithoutWinnings("something"),
        {"", "raised", "-", Again::Unchecked}}},
      {"CurrentSeasonYear",
       T::Lists,
       [](S& s) {
         s.CurrentSeasonYear(2023);
         return std::to_string(s.CurrentSeasonID());
       },
       {WithoutWinnings("2", "of 2 new"),
        {"[settings]", "2: Error in saving settings.", "of 2 new"},
        {"", "raised", "-"}}},
      {"CurrentSeasonYearOfANewSeason",
       T::Lists,
       [](S& s) {
         s.CurrentSeasonYear(2030);
         return std::to_string(s.CurrentSeasonID());
       },
       {{"# Database.OpenRecordset select max", "1", "-"},
        {"# Recordset.Fields highestid", "raised: *", "-"},
        {"# Field.Value highestid", "raised: *", "-"},
        WithoutWinnings("3", "of 3 new"),
        {"[settings]", "3: Error in saving settings.", "of 3 new"},
        {"", "raised", "-"}}},
      {"SaveDrafts", T::Changed, RunOf<&S::SaveDrafts>, {{"", "false: Error in saving drafts.", "same"}}},
      {"DeleteDrafts",
       T::Loaded,
       RunOf<&S::DeleteDrafts>,
       {{"", "false: Error in deleting drafts.", "same"}}},
      {"DeleteDraftsOfAnother",
       T::Lists,
       RunOf<&S::DeleteDrafts>,
       {WithoutWinnings("true", "new"), {"", "false: Error in deleting drafts."}}},
      {"AddWinningToAnother",
       T::OtherCurrent,
       [](S& s) {
         std::shared_ptr<IWinningInfo> winning;
         const bool result = s.AddWinning(winning);
         EXPECT_NE(winning, nullptr);
         return Text(result);
       },
       {WithoutWinnings("false", "of 2 new"), {"", "false", "of 2 -"}}},
      {"SaveWinnings",
       T::Changed,
       RunOf<&S::SaveWinnings>,
       {{"# Database.OpenRecordset select max", "true", "same", Again::Unchecked, Rows::Unchecked},
        {"highestid from [winning info] changed # Recordset.Close", "true", "same", Again::Unchecked,
         Rows::Unchecked},
        {"# Recordset.Fields highestid", "false: Error in saving winnings.\r\n*", "same"},
        {"# Field.Value highestid", "false: Error in saving winnings.\r\n*", "same"},
        {"", "false: Error in saving winnings.", "same"}}},
  };
  return operations;
}

INSTANTIATE_TEST_SUITE_P(Of, FailureTest, testing::ValuesIn(Operations()),
                         [](const auto& operation) { return std::string(operation.param.name); });

}  // namespace
}  // namespace HLDataSrvc

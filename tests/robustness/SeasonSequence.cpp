#include "tests/robustness/SeasonSequence.h"

#include <algorithm>
#include <array>
#include <exception>
#include <iterator>
#include <utility>

#include <gtest/gtest.h>

#include "HLDataSrvc/ServiceDatabase.h"
#include "jet/dao/DBEngine.h"
#include "storage/HLServiceUtils.h"
#include "storage/LeagueFile.h"
#include "tests/jet/workload/Workload.h"
#include "tests/support/TestFiles.h"

namespace HLDataSrvc::test {

using namespace HLIData;

namespace {

constexpr std::int32_t kMissing = 9999;
const std::string kLive = ScriptFile("league");
const std::string kCopy = ScriptFile("copy");

/// What is in one of two lists of lines only.
std::string Difference(const Lines& expected, const Lines& found) {
  std::string text;
  for (const auto& [sign, from, without] : {std::tuple{" -", &expected, &found}, {" +", &found, &expected}}) {
    Lines only;
    std::set_difference(from->begin(), from->end(), without->begin(), without->end(),
                        std::back_inserter(only));
    for (const std::string& line : only)
      text += sign + line;
  }
  return text;
}

void ExpectEqual(const Tables& expected, const Tables& found, const std::string& what) {
  for (const auto& [table, lines] : expected) {
    const auto other = found.find(table);
    const std::string difference = Difference(lines, other == found.end() ? Lines() : other->second);
    EXPECT_EQ(difference, "") << what << ", [" << table << "]";
  }
  EXPECT_EQ(expected.size(), found.size()) << what;
}

/// A league as this program makes it, with teams and types of prize, which no operation can add.
std::vector<std::byte> NewLeague() {
  const auto files = std::make_shared<jet::test::MemoryFileSystem>();
  HLServiceUtils::ReplaceEngine({.files = files, .observer = {}});
  const std::string path = ScriptFile("new");
  CreateLeagueFile(path,
                   {.overwrite = false, .fill = [](jet::Database& database) {
                      AddRows(database, "position info", {"1|QB|Quarterback", "2|DEF|Defense"});
                      AddRows(database, "team info", {"1|ASH|Ashbourne|Lanterns|2", "2|BRA|Brackwater||2"});
                      AddRows(database, "prize type info", {"1|Weekly", "2|Final"});
                      for (int i = 1; i <= 9; ++i) {
                        const std::string id = std::to_string(i);
                        AddRows(database, "player info", {id + "|Ann|Lee" + id + "|1|1|0"});
                        if (i < 6) AddRows(database, "manager info", {id + "|Bo|Marr" + id});
                      }
                    }});
  HLServiceUtils::ReplaceEngine({});
  return files->Get(path);
}

}  // namespace

void PlaySequences(int sequences, int steps, bool checksSteps, const SequenceEnd& atEnd) {
  const std::vector<std::byte> small = SmallLeague();
  const std::vector<std::byte> made = NewLeague();
  const std::vector<std::byte> large = jet::test::ReadWholeFile(jet::test::FixturePath("league.mdb"));
  const unsigned seed = jet::test::WorkloadSeed();
  for (int i = 0; i < sequences; ++i) {
    SeasonSequence sequence(i % 10 == 7 ? large : i % 2 == 0 ? small : made, seed + static_cast<unsigned>(i));
    for (int step = 0; step < steps && !testing::Test::HasFailure(); ++step)
      sequence.Step(checksSteps);
    const std::vector<std::byte> end = sequence.End();
    if (atEnd && !testing::Test::HasFailure()) atEnd(end, sequence.Model());
    ASSERT_FALSE(testing::Test::HasFailure())
        << "sequence " << i << " from HALCYRA_TEST_SEED=" << seed << ":\n"
        << sequence.Log();
  }
}

SeasonSequence::SeasonSequence(const std::vector<std::byte>& start, unsigned seed) : m_random(seed) {
  HLServiceUtils::ReplaceEngine({.files = m_files, .observer = {}});
  m_files->Put(kLive, start);
  {
    const auto database = HLServiceUtils::Engine().OpenDatabase(kLive, true, false,  //
                                                                HLServiceUtils::GetConnectString());
    m_model = std::make_unique<SeasonModel>(*database);
    database->Close();
  }
  m_service = CreateDataService(m_host);
  std::string message;
  EXPECT_TRUE(m_service->Initialize(DBType::Live, message)) << message;
}

SeasonSequence::~SeasonSequence() {
  m_service.reset();
  HLServiceUtils::ReplaceEngine({});
}

std::vector<std::byte> SeasonSequence::End() {
  m_service.reset();
  return m_files->Get(kLive);
}

std::int32_t SeasonSequence::AnyID(const std::vector<std::int32_t>& ids) {
  if (ids.empty() || OneIn(40)) return kMissing;
  return ids[static_cast<std::size_t>(Any(static_cast<std::int32_t>(ids.size())))];
}

bool SeasonSequence::Does(const char* what, const std::function<bool()>& operation) {
  m_log += std::string(what) + " of season " + std::to_string(m_service->CurrentSeasonID());
  bool isDone = false;
  try {
    isDone = operation();
    m_log += isDone ? "\n" : ": false\n";
  } catch (const std::exception& error) {
    m_log += std::string(": ") + error.what() + "\n";
  }
  for (const std::string& text : m_host->messages)
    m_log += "  " + text + "\n";
  m_host->messages.clear();
  return isDone;
}

void SeasonSequence::Step(bool checks) {
  if (m_isStale) Reopen();
  if (OneIn(12)) {
    Transact();
  } else if (OneIn(15)) {
    Reopen();
  } else {
    Play(false);
  }
  ++m_steps;
  if (checks) ExpectStored();
}

void SeasonSequence::Reopen() {
  const bool clears = m_isStale || OneIn(2);
  if (OneIn(2)) m_service->CloseDatabase();
  std::string message;
  EXPECT_TRUE(Does("OpenDatabase", [&] { return m_service->OpenDatabase(clears, message); })) << message;
  m_isStale = false;
}

void SeasonSequence::Transact() {
  const SeasonModel before = *m_model;
  const bool commits = OneIn(2);
  m_log += "Begin\n";
  RunInTransaction(*m_service, [&] {
    for (int i = Any(6); i >= 0 && !m_isStale; --i)
      Play(true);
    return commits;
  });
  m_log += commits ? "Commit\n" : "Rollback\n";
  if (commits && OneIn(2)) return;
  if (!commits) *m_model = before;
  m_service = RenewService(*m_service);
  m_isStale = false;
}

void SeasonSequence::Play(bool isInTransaction) {
  m_log += isInTransaction ? "  " : "";
  switch (Any(20)) {
    case 0: {
      const std::int32_t year = 2020 + Any(7);
      return UseYear(year, [&] { m_service->CurrentSeasonYear(year); });
    }
    case 1: {
      const std::int32_t year = OneIn(5) ? -Any(2) : 2020 + Any(7);
      m_model->AddSeason(year);
      EXPECT_EQ(Does("AddSeason", [&] { return m_service->AddSeason(year) != nullptr; }), year > 0);
      return;
    }
    case 2:
      return m_service->CurrentSeasonID(OneIn(20) ? 0 : AnyID("season info"));
    case 3:
      if (OneIn(2)) m_service->GetSettings()->CurrentSeason(AnyID("season info"));
      m_model->SaveSettings(m_service->GetSettings()->CurrentSeason());
      EXPECT_TRUE(Does("SaveSettings", [&] { return m_service->SaveSettings(); }));
      return;
    case 4:
    case 5:
      return ChangeMasters();
    case 6:
      return DeleteMaster();
    case 7:
      return Look();
    case 8:
      EXPECT_TRUE(Does("Discard", [&] { return m_service->DiscardCurrentSeasonInfo(); }));
      return;
    default:
      break;
  }
  if (m_service->CurrentSeasonID() == 0) UseYear(2024, [&] { m_service->GetCurrentSeasonInfo(); });
  const Season season = m_service->GetCurrentSeasonInfo();
  const auto ids = m_model->IDs("season info");
  const bool isThere = std::find(ids.begin(), ids.end(), m_service->CurrentSeasonID()) != ids.end();
  ASSERT_EQ(season != nullptr, isThere);
  if (season) return PlaySeason(season);
  std::shared_ptr<IWinningInfo> winning;
  Does("Operations without a season", [&] {
    m_service->SaveCurrentSeasonInfo();
    const bool isSaved = m_service->SaveRanking();  // no manager takes part
    EXPECT_TRUE(isSaved);
    return m_service->SaveDrafts() || m_service->DeleteDrafts() || m_service->DisableRanking() ||
           m_service->DisableDrafting() || m_service->AddWinning(winning) || m_service->SaveWinnings() ||
           m_service->SaveManagersPlaying();
  });
}

void SeasonSequence::UseYear(std::int32_t year, const std::function<void()>& call) {
  if (m_model->SeasonsOf(year).empty()) m_model->AddSeason(year);
  Does("CurrentSeasonYear", [&] {
    call();
    return true;
  });
  EXPECT_TRUE(m_model->SeasonsOf(year).contains(m_service->CurrentSeasonID())) << year;
  EXPECT_EQ(m_service->CurrentSeasonYear(), year);
  m_model->SaveSettings(m_service->CurrentSeasonID());
}

void SeasonSequence::PlaySeason(const Season& season) {
  const std::int32_t id = season->ID();
  ASSERT_TRUE(season->Drafts() && season->Managers() && season->Winnings());
  if (OneIn(2)) ChangeDraft(season);
  if (OneIn(2)) ChangeManagers(season);
  if (OneIn(3)) ChangeNumbers(season);
  if (OneIn(3)) ChangePrizes(season);
  if (OneIn(3)) ChangeWinnings(season);
  bool isExpected = true;
  switch (Any(14)) {
    case 0:
      m_model->DeleteDrafts(id);
      EXPECT_TRUE(Does("DeleteDrafts", [&] { return m_service->DeleteDrafts(); }));
      return;
    case 1:
      m_model->Lock(id, true);
      EXPECT_TRUE(Does("DisableRanking", [&] { return m_service->DisableRanking(); }));
      return;
    case 2:
      m_model->Lock(id, false);
      EXPECT_TRUE(Does("DisableDrafting", [&] { return m_service->DisableDrafting(); }));
      return;
    case 3:
    case 4:
      isExpected = m_model->SaveSeason(id, *season);
      EXPECT_EQ(Does("SaveCurrentSeasonInfo", [&] { return m_service->SaveCurrentSeasonInfo(); }),
                isExpected);
      m_isStale = m_isStale || !isExpected;
      return;
    case 5:
    case 6:
    case 7:
      isExpected = m_model->SavePlaying(id, *season);
      EXPECT_EQ(Does("SaveManagersPlaying", [&] { return m_service->SaveManagersPlaying(); }), isExpected);
      return;
    case 8:
      isExpected = m_model->SaveRanking(id, *season);
      EXPECT_EQ(Does("SaveRanking", [&] { return m_service->SaveRanking(); }), isExpected);
      return;
    case 9:
    case 10:
      isExpected = m_model->SaveWinnings(id, *season);
      EXPECT_EQ(Does("SaveWinnings", [&] { return m_service->SaveWinnings(); }), isExpected);
      return;
    default:
      isExpected = m_model->SaveDrafts(id, *season);
      EXPECT_EQ(Does("SaveDrafts", [&] { return m_service->SaveDrafts(); }), isExpected);
  }
}

void SeasonSequence::ChangeDraft(const Season& season) {
  const auto& managers = *season->Managers();
  for (int i = Any(4); i >= 0 && season->Drafts()->Count() > 0; --i) {
    const std::int32_t number = 1 + Any(season->Drafts()->Count());
    Does("  a pick", [&] {
      if (OneIn(8)) {
        season->RemoveDraft(number);
        return true;
      }
      const auto pick = season->Drafts()->Item(number);
      if (OneIn(40)) pick->DraftNo(number + Any(3));
      if (managers.Count() == 0 && !OneIn(10)) return false;
      std::shared_ptr<IPickable> picked;
      if (OneIn(3)) {
        picked = std::dynamic_pointer_cast<IPickable>(m_service->GetTeams()->Find(  //
            "K" + std::to_string(AnyID("team info"))));
      } else {
        picked = std::dynamic_pointer_cast<IPickable>(FindPlayer(*m_service, AnyID("player info")));
      }
      const auto manager =
          OneIn(40) || managers.Count() == 0 ? nullptr : managers.Item(1 + Any(managers.Count()));
      std::string taken;
      if (season->IsPickableTaken(picked, taken) && !OneIn(20)) return false;
      if (OneIn(20)) {
        pick->PlayerOrTeam(picked);
        pick->Manager(manager);
      } else {
        season->UpdateDraft(picked, number, manager);
      }
      return true;
    });
  }
}

void SeasonSequence::ChangeManagers(const Season& season) {
  for (int i = Any(4); i >= 0; --i) {
    const auto found = m_service->Search(SearchType::Managers, "", OneIn(4), false);
    if (found && found->Count() > 0) {
      season->AddManager(std::dynamic_pointer_cast<IManagerTmplInfo>(found->Item(1 + Any(found->Count()))));
    }
    if (season->Managers()->Count() == 0) continue;
    const auto manager = season->Managers()->Item(1 + Any(season->Managers()->Count()));
    manager->Rank(Any(7) - 1);
    manager->IsFeePaid(OneIn(2));
    if (OneIn(5)) season->RemoveManager(manager);
  }
}

void SeasonSequence::ChangeNumbers(const Season& season) {
  season->NoOfManagers(OneIn(20) ? 40000 : OneIn(20) ? -Any(3) : 1 + Any(5));
  season->NoOfRounds(OneIn(20) ? 50000 : OneIn(20) ? -Any(3) : 1 + Any(5));
  season->MoneyContribution(Any(100));
  season->NoOfRegularWeeks(Any(20));
  season->TotalNoOfWeeks(Any(20));
  if (OneIn(10)) season->Year(2020 + Any(7));
  season->IsRankingLocked(OneIn(5));
  season->IsDraftLocked(OneIn(5));
  season->IsSeasonLocked(OneIn(5));
  season->HasSeasonStarted(OneIn(2));
}

void SeasonSequence::ChangePrizes(const Season& season) {
  if (OneIn(20)) season->Prizes(OneIn(2) ? nullptr : std::make_shared<KeyedCollection<IPrizeInfo>>());
  if (const auto prizes = m_service->GetPrizeTmpls(); prizes->Count() > 0)
    season->AddPrize(prizes->Item(1 + Any(prizes->Count())));
  if (!season->Prizes()) return;
  for (const auto& prize : *season->Prizes())
    prize->Amount(Any(200) - 50);
}

void SeasonSequence::ChangeWinnings(const Season& season) {
  constexpr std::array<WinningAction, 5> kActions{
      WinningAction::Add, WinningAction::Add, WinningAction::Delete, WinningAction::None, WinningAction{7}};
  const auto& winnings = *season->Winnings();
  std::shared_ptr<IWinningInfo> winning;
  if (OneIn(2) && winnings.Count() > 0) {
    winning = winnings.Item(1 + Any(winnings.Count()));
    winning->Action(kActions.at(static_cast<std::size_t>(Any(5))));
  } else {
    EXPECT_TRUE(m_service->AddWinning(winning));
    winning->Action(WinningAction::Add);
  }
  winning->SeasonID(season->ID());
  winning->PrizeID(std::to_string(AnyID("prize info")));
  winning->ManagerID(std::to_string(AnyID("manager info")));
  winning->Week(Any(20) - 1);
}

void SeasonSequence::ChangeMasters() {
  const auto text = [&] {
    return OneIn(20) ? "" : OneIn(30) ? std::string(300, 'x') : "N" + std::to_string(Any(99));
  };
  const auto isText = [](const std::string& value) { return !value.empty() && value.size() < 300; };
  const auto number = [](std::int32_t value) {
    return value > 0 ? std::optional(std::to_string(value)) : std::nullopt;
  };
  const auto isIn = [&](const std::string& table, std::int32_t id) {
    const auto ids = m_model->IDs(table);
    return std::find(ids.begin(), ids.end(), id) != ids.end();
  };
  const std::string first = text();
  const std::string second = text();
  const bool isText2 = isText(first) && isText(second);
  const bool isNew = OneIn(2);
  std::string message;
  bool isExpected = false;
  bool isDone = false;
  switch (Any(4)) {
    case 0: {
      std::int32_t id = isNew ? 0 : AnyID("player info");
      const std::int32_t position = OneIn(10) ? -1 : AnyID("position info");
      const std::int32_t team = OneIn(10) ? -1 : AnyID("team info");
      const bool isRetired = OneIn(5);
      std::shared_ptr<IPlayerInfo> player;
      isExpected = isText2 && (team < 0 || isIn("team info", team)) &&
                   m_model->Update("player info", id,
                                   {second, first, number(position), number(team), FieldText(isRetired)});
      isDone = Does("UpdatePlayer", [&] {
        return m_service->UpdatePlayer(first, second, position, team, isRetired, id, player, message);
      });
      break;
    }
    case 1: {
      std::int32_t id = isNew ? 0 : AnyID("position info");
      std::shared_ptr<IPositionInfo> position;
      isExpected = isText2 && m_model->Update("position info", id, {second, first});
      isDone = Does("UpdatePosition",
                    [&] { return m_service->UpdatePosition(first, second, id, position, message); });
      break;
    }
    case 2: {
      std::int32_t id = isNew ? 0 : AnyID("manager info");
      std::shared_ptr<IManagerTmplInfo> manager;
      isExpected = isText2 && m_model->Update("manager info", id, {second, first});
      isDone = Does("UpdateManager",
                    [&] { return m_service->UpdateManager(first, second, id, manager, message); });
      break;
    }
    default: {
      std::int32_t id = isNew ? 0 : AnyID("prize info");
      const std::int32_t type = OneIn(10) ? -1 : AnyID("prize type info");
      std::shared_ptr<IPrizeTmplInfo> prize;
      isExpected = isText(first) && isIn("prize type info", type) &&
                   m_model->Update("prize info", id, {first, number(type)});
      isDone = Does("UpdatePrize", [&] { return m_service->UpdatePrize(first, type, id, prize, message); });
    }
  }
  EXPECT_EQ(isDone, isExpected) << message;
  m_isStale = m_isStale || !isDone;
}

void SeasonSequence::DeleteMaster() {
  constexpr std::array<const char*, 4> kTables{"player info", "manager info", "prize info", "position info"};
  const int kind = Any(4);
  const std::string table = kTables.at(static_cast<std::size_t>(kind));
  const std::int32_t id = OneIn(20) ? 0 : AnyID(table);
  if (OneIn(2)) {  // one that is not in its list is deleted anyway, and raises
    m_service->GetPlayerPositions();
    m_service->GetPrizeTmpls();
    m_service->Search(SearchType::PlayersAndTeams, "", false, false);
    m_service->Search(SearchType::Managers, "", false, false);
  }
  const bool canGo = m_model->Delete(table, id);
  std::string message;
  const bool isDone = Does("Delete", [&] { return m_service->Delete(DeleteType{kind + 1}, id, message); });
  EXPECT_TRUE(canGo || !isDone) << table << " " << id;
}

void SeasonSequence::Look() {
  Does("Look", [&] {
    m_service->GetAllSeasons();
    m_service->GetPrizeTypes();
    return m_service->Search(SearchType{Any(6)}, OneIn(2) ? "" : "n", OneIn(2), OneIn(2)) != nullptr;
  });
}

void SeasonSequence::ExpectStored() {
  std::vector<std::byte> bytes = m_files->Get(kLive);
  const std::string log = jet::LogNameFor(kLive);
  const std::string copyLog = jet::LogNameFor(kCopy);
  const bool hasLog = m_files->Exists(log);
  m_files->Put(kCopy, bytes);
  if (hasLog) {
    m_files->Put(copyLog, m_files->Get(log));
    bytes.insert(bytes.end(), m_files->Get(log).begin(), m_files->Get(log).end());
  } else if (m_files->Exists(copyLog)) {
    m_files->Remove(copyLog);
  }
  const bool isSame = bytes == m_bytes;  // unless the model differs there is nothing to see
  m_bytes = std::move(bytes);
  const auto database =
      HLServiceUtils::Engine().OpenDatabase(kCopy, true, false, HLServiceUtils::GetConnectString());
  ExpectEqual(m_model->Rows(), RowsOf(*database), "rows of the file");
  database->Close();
  if (!isSame) ExpectLoads();
}

void SeasonSequence::ExpectLoads() {
  const auto host = std::make_shared<ScriptHost>("copy");
  const auto service = CreateDataService(host);
  std::string message;
  ASSERT_TRUE(service->Initialize(DBType::Live, message)) << message;
  const auto ids = m_model->IDs("season info");
  const std::set<std::int32_t> partial = m_model->MisfitSeasons();
  std::set<std::int32_t> misfits = partial;
  const auto expectBox = [&](const std::set<std::int32_t>& seasons) {
    EXPECT_EQ(host->messages.size(), seasons.empty() ? 0u : 1u);
    const std::string text = host->messages.empty() ? "" : host->messages.front();
    EXPECT_TRUE(text.empty() || text.starts_with("Error in loading drafts.\r\n")) << text;
    for (const std::int32_t id : seasons)
      EXPECT_NE(text.find("eason " + std::to_string(id) + " "), std::string::npos) << id << ": " << text;
    host->messages.clear();
  };
  const std::int32_t current = service->CurrentSeasonID();
  EXPECT_EQ(current, m_model->CurrentSeason());
  const bool isThere = std::find(ids.begin(), ids.end(), current) != ids.end();
  if (isThere && m_steps % 2 == 0) {
    EXPECT_NE(service->GetCurrentSeasonInfo(), nullptr);
    expectBox(misfits.contains(current) ? std::set{current} : std::set<std::int32_t>());
    misfits.erase(current);
  }
  const auto seasons = service->GetAllSeasons();
  expectBox(misfits);
  ASSERT_TRUE(ids.empty() || seasons != nullptr);
  EXPECT_EQ(seasons ? seasons->Count() : 0, static_cast<std::int32_t>(ids.size()));
  for (const std::int32_t id : ids) {
    const auto season = seasons->Find("K" + std::to_string(id));
    ASSERT_NE(season, nullptr) << id;
    Tables expected = m_model->SeasonRows(id);
    Tables found = RowsOf(*season);
    if (partial.contains(id)) {
      expected.erase("draft info");
      found.erase("draft info");
    }
    ExpectEqual(expected, found, "season " + std::to_string(id) + " loaded");
  }
  EXPECT_EQ(service->GetCurrentSeasonInfo() != nullptr, isThere || current == 0);
}

}  // namespace HLDataSrvc::test

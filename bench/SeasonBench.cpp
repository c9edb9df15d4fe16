// A season through the data service, beside the same statements in SQLite.
#include <array>
#include <cstdint>
#include <functional>
#include <string>
#include <utility>
#include <vector>

#include <benchmark/benchmark.h>
#include <malloc.h>

#include "bench/League.h"

namespace bench {
namespace {

constexpr std::size_t kPlayers = 2500;

void ReadSeason(const std::string& folder) {
  const auto service = OpenService(folder);
  benchmark::DoNotOptimize(service->GetCurrentSeasonInfo());
}

/// From nothing to the current season; the counter shows how much memory the service with it takes.
void ColdSeason(benchmark::State& state) {
  const std::string folder = League::WithPlayers(kPlayers).FolderOfCopy();
  for (auto _ : state)
    ReadSeason(folder);
  const std::size_t before = mallinfo2().uordblks;
  const auto service = OpenService(folder);
  const std::size_t opened = mallinfo2().uordblks;
  const auto season = service->GetCurrentSeasonInfo();
  const std::size_t loaded = mallinfo2().uordblks;
  state.counters["service_KiB"] = static_cast<double>(opened - before) / 1024;
  state.counters["season_KiB"] = static_cast<double>(loaded - opened) / 1024;
}
BENCHMARK(ColdSeason)->Name("ColdSeason/jet")->Unit(benchmark::kMillisecond);

/// SQLite opens its file and runs what the service runs when `read` reads the league of a folder.
void Replay(benchmark::State& state, const League& league,
            const std::function<void(const std::string&)>& read) {
  const std::string folder = league.FolderOfCopy();
  const auto statements = StatementsOf([&] { read(folder); });
  const std::string file = league.SqliteCopy();
  for (auto _ : state) {
    SqliteDatabase database(file, SqliteDatabase::Mode::Read);
    benchmark::DoNotOptimize(RunAll(database, statements));
  }
  state.counters["statements"] = static_cast<double>(statements.size());
}

void ColdSeasonSqlite(benchmark::State& state) {
  Replay(state, League::WithPlayers(kPlayers), ReadSeason);
}
BENCHMARK(ColdSeasonSqlite)->Name("ColdSeason/sqlite")->Unit(benchmark::kMillisecond);

constexpr std::int32_t kSeasons = 45;

void ReadAllSeasons(const std::string& folder) {
  const auto service = OpenService(folder);
  benchmark::DoNotOptimize(service->GetAllSeasons());
}

/// Loads 45 seasons: most of the work is looking up the players of 10,080 picks, each by its key, and making
/// records of those that are not in the caches.
void PlayerLookups(benchmark::State& state) {
  const std::string folder =
      League::WithPlayers(static_cast<std::size_t>(state.range(0)), kSeasons).FolderOfCopy();
  for (auto _ : state)
    ReadAllSeasons(folder);
}
BENCHMARK(PlayerLookups)
    ->Name("PlayerLookups/jet")
    ->Arg(kPlayers)
    ->Arg(200000)
    ->Unit(benchmark::kMillisecond);

void PlayerLookupsSqlite(benchmark::State& state) {
  Replay(state, League::WithPlayers(static_cast<std::size_t>(state.range(0)), kSeasons), ReadAllSeasons);
}
BENCHMARK(PlayerLookupsSqlite)
    ->Name("PlayerLookups/sqlite")
    ->Arg(kPlayers)
    ->Arg(200000)
    ->Unit(benchmark::kMillisecond);

/// Every pick changes; all of them are one transaction.
void SavePicks(benchmark::State& state, jet::Durability durability) {
  UseDurability(durability);
  const auto service = OpenService(League::WithPlayers(kPlayers).FolderOfCopy());
  const auto season = service->GetCurrentSeasonInfo();
  const auto players = service->Search(HLIData::SearchType::PlayersAndTeams, "", false, false);
  std::int32_t shift = 0;
  for (auto _ : state) {
    state.PauseTiming();
    shift = shift == kPicks ? 2 * kPicks : kPicks;  // no player is drafted twice, not even for a moment
    for (std::int32_t pick = 1; pick <= kPicks; ++pick)
      season->UpdateDraft(players->Item(pick + shift), pick,
                          season->Managers()->Item(1 + (pick + shift) % kManagers));
    state.ResumeTiming();
    if (!service->SaveDrafts()) state.SkipWithError("the draft was not saved");
  }
  UseDurability(jet::Durability::Full);
}
BENCHMARK_CAPTURE(SavePicks, full, jet::Durability::Full)
    ->Name("SaveDrafts/jet")
    ->Unit(benchmark::kMillisecond)
    ->UseRealTime();
BENCHMARK_CAPTURE(SavePicks, normal, jet::Durability::Normal)
    ->Name("SaveDrafts-normal/jet")
    ->Unit(benchmark::kMillisecond)
    ->UseRealTime();
BENCHMARK_CAPTURE(SavePicks, off, jet::Durability::Off)
    ->Name("SaveDrafts-off/jet")
    ->Unit(benchmark::kMillisecond)
    ->UseRealTime();

void SavePicksSqlite(benchmark::State& state, SqliteDatabase::Mode mode) {
  SqliteDatabase database(League::WithPlayers(kPlayers).SqliteCopy(), mode);
  SqliteStatement select(database, "select * from [draft info] where [season id] = ? and [draft no] = ?");
  SqliteStatement update(database,
                         "update [draft info] set [manager id] = ?, [player id] = ?, [team id] = null where "
                         "[season id] = ? and [draft no] = ?");
  std::int32_t shift = 0;
  for (auto _ : state) {
    ++shift;
    database.Run("begin");
    for (std::int32_t pick = 1; pick <= kPicks; ++pick) {
      select.Bind(1, 1);
      select.Bind(2, pick);
      if (!select.Step()) state.SkipWithError("a pick is missing");
      select.Reset();
      update.Bind(1, 1 + (pick + shift) % kManagers);
      update.Bind(2, 1 + pick + shift);
      update.Bind(3, 1);
      update.Bind(4, pick);
      update.Step();
      update.Reset();
    }
    database.Run("commit");
  }
}
BENCHMARK_CAPTURE(SavePicksSqlite, wal, SqliteDatabase::Mode::WalFull)
    ->Name("SaveDrafts/sqlite-wal")
    ->Unit(benchmark::kMillisecond)
    ->UseRealTime();
BENCHMARK_CAPTURE(SavePicksSqlite, journal, SqliteDatabase::Mode::DeleteFull)
    ->Name("SaveDrafts/sqlite-delete")
    ->Unit(benchmark::kMillisecond)
    ->UseRealTime();
BENCHMARK_CAPTURE(SavePicksSqlite, normal, SqliteDatabase::Mode::WalNormal)
    ->Name("SaveDrafts-normal/sqlite-wal")
    ->Unit(benchmark::kMillisecond)
    ->UseRealTime();

/// The season's row, its twelve prizes deleted and added again, and the season reloaded.
void SaveSeason(benchmark::State& state) {
  const auto service = OpenService(League::WithPlayers(kPlayers).FolderOfCopy());
  service->GetCurrentSeasonInfo();
  for (auto _ : state) {
    if (!service->SaveCurrentSeasonInfo()) state.SkipWithError("the season was not saved");
  }
}
BENCHMARK(SaveSeason)->Name("SaveSeason/jet")->Unit(benchmark::kMillisecond)->UseRealTime();

void SaveSeasonSqlite(benchmark::State& state, SqliteDatabase::Mode mode) {
  const League& league = League::WithPlayers(kPlayers);
  std::vector<std::string> statements;
  {
    const auto service = OpenService(league.FolderOfCopy());
    service->GetCurrentSeasonInfo();
    service->CloseDatabase();
    statements = StatementsOf([&] {
      std::string error;
      service->OpenDatabase(/*clearCache=*/false, error);
      service->SaveCurrentSeasonInfo();
    });
  }
  SqliteDatabase database(league.SqliteCopy(), mode);
  SqliteStatement update(
      database,
      "update [season info] set [season year] = 2026, [no of players] = 14, [no of rounds] "
      "= 16, [money contribution] = ?, [no of regular weeks] = 0, [total no of weeks] = 0, "
      "[is ranking locked] = 0, [is season locked] = 0, [is draft locked] = 0, [has season "
      "started] = 0 where id = 1");
  SqliteStatement remove(database,
                         "delete from [money distribution info] where [season id] = 1 and [prize id] = ?");
  SqliteStatement add(database, "insert into [money distribution info] values (1, ?, ?)");
  std::int32_t money = 0;
  for (auto _ : state) {
    database.Run("begin");
    update.Bind(1, ++money);
    update.Step();
    update.Reset();
    for (std::int32_t prize = 1; prize <= 12; ++prize) {
      remove.Bind(1, prize);
      remove.Step();
      remove.Reset();
    }
    for (std::int32_t prize = 1; prize <= 12; ++prize) {
      add.Bind(1, prize);
      add.Bind(2, money);
      add.Step();
      add.Reset();
    }
    database.Run("commit");
    benchmark::DoNotOptimize(RunAll(database, statements));
  }
}
BENCHMARK_CAPTURE(SaveSeasonSqlite, wal, SqliteDatabase::Mode::WalFull)
    ->Name("SaveSeason/sqlite-wal")
    ->Unit(benchmark::kMillisecond)
    ->UseRealTime();
BENCHMARK_CAPTURE(SaveSeasonSqlite, journal, SqliteDatabase::Mode::DeleteFull)
    ->Name("SaveSeason/sqlite-delete")
    ->Unit(benchmark::kMillisecond)
    ->UseRealTime();

/// Players and teams whose names begin with the words, as records; none of them is in the caches when the
/// first search begins, all are afterwards.
void Search(benchmark::State& state, const char* text) {
  const auto service =
      OpenService(League::WithPlayers(static_cast<std::size_t>(state.range(0))).FolderOfCopy());
  const std::size_t before = mallinfo2().uordblks;
  std::int32_t found = 0;
  for (auto _ : state)
    found = service->Search(HLIData::SearchType::PlayersAndTeams, text, false, false)->Count();
  state.counters["found"] = found;
  state.counters["cache_KiB"] = static_cast<double>(mallinfo2().uordblks - before) / 1024;
}

void SearchSqlite(benchmark::State& state, const char* text) {
  const League& league = League::WithPlayers(static_cast<std::size_t>(state.range(0)));
  const auto service = OpenService(league.FolderOfCopy());
  service->CloseDatabase();
  const auto statements = StatementsOf([&] {
    std::string error;
    service->OpenDatabase(/*clearCache=*/false, error);
    service->Search(HLIData::SearchType::PlayersAndTeams, text, false, false);
  });
  SqliteDatabase database(league.SqliteCopy(), SqliteDatabase::Mode::Read);
  for (auto _ : state)
    benchmark::DoNotOptimize(RunAll(database, statements));
}

/// What is searched for, by the number of its words.
constexpr std::array<std::pair<const char*, const char*>, 4> kSearches = {
    {{"no", ""}, {"one", "ma"}, {"two", "ma ol"}, {"three", "ma ol te"}}};

const bool kAreRegistered = [] {
  for (const auto& [words, text] : kSearches) {
    const std::string name = std::string("Search-") + words + "-words/";
    for (const std::int64_t players : {2500, 200000}) {
      benchmark::RegisterBenchmark((name + "jet").c_str(), Search, text)
          ->Arg(players)
          ->Unit(benchmark::kMillisecond);
      benchmark::RegisterBenchmark((name + "sqlite").c_str(), SearchSqlite, text)
          ->Arg(players)
          ->Unit(benchmark::kMillisecond);
    }
  }
  return true;
}();

}  // namespace
}  // namespace bench

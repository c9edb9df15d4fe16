// SQLite's half of each pair; see JetBench.cpp.
#include <cstdint>
#include <optional>
#include <random>
#include <vector>

#include <benchmark/benchmark.h>

#include "bench/BenchFiles.h"
#include "bench/Players.h"
#include "bench/SqliteDatabase.h"

namespace bench {
namespace {

void Growing(benchmark::internal::Benchmark* benchmark) {
  for (const std::int64_t rows : kSizes)
    benchmark->Arg(rows);
}

std::size_t CountOf(const benchmark::State& state) {
  return static_cast<std::size_t>(state.range(0));
}

std::size_t ReadAll(SqliteStatement& rows) {
  std::size_t sum = 0;
  while (rows.Step()) {
    sum += static_cast<std::size_t>(rows.Number(0));
    for (const int column : {1, 2})
      sum += rows.Text(column).size();
    for (const int column : {3, 4})
      sum += rows.IsNull(column) ? 0U : 1U;
    sum += rows.Number(5) != 0 ? 1U : 0U;
  }
  return sum;
}

void OpenAndSettings(benchmark::State& state) {
  const std::string file = SqliteFile(2500);
  for (auto _ : state) {
    SqliteDatabase database(file, SqliteDatabase::Mode::Read);
    SqliteStatement rows(database, "select * from settings");
    rows.Step();
    benchmark::DoNotOptimize(rows.Number(1));
  }
}
BENCHMARK(OpenAndSettings)->Name("OpenAndSettings/sqlite");

void Scan(benchmark::State& state) {
  SqliteDatabase database(SqliteFile(CountOf(state)));
  for (auto _ : state) {
    SqliteStatement rows(database, "select * from player_info");
    benchmark::DoNotOptimize(ReadAll(rows));
  }
}
BENCHMARK(Scan)->Name("Scan/sqlite")->Arg(2500)->Arg(kManyPlayers)->Apply(Growing);

/// `prepared`: one statement for all lookups; else each is a separate text, as for the engine.
void Lookups(benchmark::State& state, bool prepared) {
  SqliteDatabase database(SqliteFile(CountOf(state)));
  const auto players = CountOf(state) == 2500 ? LeaguePlayers() : MadeUpPlayers(1, CountOf(state));
  std::mt19937 random(1);
  SqliteStatement once(database, "select * from player_info where id = ?");
  const auto lookUp = [&] {
    for (std::size_t i = 0; i < kChanges; ++i) {
      const std::int32_t id = players[random() % players.size()].id;
      if (prepared) {
        once.Bind(1, id);
        benchmark::DoNotOptimize(ReadAll(once));
        once.Reset();
      } else {
        SqliteStatement rows(database, "select * from player_info where id = " + std::to_string(id));
        benchmark::DoNotOptimize(ReadAll(rows));
      }
    }
  };
  lookUp();  // to have in the cache what fits it
  for (auto _ : state)
    lookUp();
}
BENCHMARK_CAPTURE(Lookups, text, false)->Name("Lookups/sqlite")->Arg(2500)->Arg(kManyPlayers);
BENCHMARK_CAPTURE(Lookups, prepared, true)
    ->Name("Lookups/sqlite-prepared")
    ->Arg(2500)
    ->Arg(kManyPlayers)
    ->Apply(Growing);

void AddsAtOnce(benchmark::State& state) {
  const auto players = MadeUpPlayers(1000000, CountOf(state));
  for (auto _ : state) {
    state.PauseTiming();
    std::optional<SqliteDatabase> database;
    database.emplace(CopyOf(SqliteFile(2500)), SqliteDatabase::Mode::WalNormal);
    std::optional<SqliteStatement> insert;
    insert.emplace(*database, kSqliteInsert);
    state.ResumeTiming();
    database->Run("begin");
    for (const Player& player : players)
      insert->Insert(player);
    database->Run("commit");
    state.PauseTiming();
    insert.reset();
    database.reset();
    state.ResumeTiming();
  }
}
BENCHMARK(AddsAtOnce)->Name("AddsAtOnce/sqlite-wal")->Arg(kChanges)->UseRealTime();

void Adds(benchmark::State& state, SqliteDatabase::Mode mode) {
  const auto players = MadeUpPlayers(1000000, CountOf(state));
  for (auto _ : state) {
    state.PauseTiming();
    std::optional<SqliteDatabase> database;
    database.emplace(CopyOf(SqliteFile(2500)), mode);
    std::optional<SqliteStatement> insert;
    insert.emplace(*database, kSqliteInsert);
    state.ResumeTiming();
    for (const Player& player : players)
      insert->Insert(player);
    state.PauseTiming();
    insert.reset();
    database.reset();
    state.ResumeTiming();
  }
}
BENCHMARK_CAPTURE(Adds, memory, SqliteDatabase::Mode::Memory)
    ->Name("Adds/sqlite")
    ->Arg(kChanges)
    ->UseRealTime();
BENCHMARK_CAPTURE(Adds, normal, SqliteDatabase::Mode::WalNormal)
    ->Name("Adds-normal/sqlite-wal")
    ->Arg(kChanges)
    ->UseRealTime();
BENCHMARK_CAPTURE(Adds, wal, SqliteDatabase::Mode::WalFull)
    ->Name("Adds-full/sqlite-wal")
    ->Arg(kSyncedChanges)
    ->UseRealTime();
BENCHMARK_CAPTURE(Adds, journal, SqliteDatabase::Mode::DeleteFull)
    ->Name("Adds-full/sqlite-delete")
    ->Arg(kSyncedChanges)
    ->UseRealTime();

void Edits(benchmark::State& state, SqliteDatabase::Mode mode) {
  const auto players = LeaguePlayers();
  std::mt19937 random(2);
  for (auto _ : state) {
    state.PauseTiming();
    std::optional<SqliteDatabase> database;
    database.emplace(CopyOf(SqliteFile(2500)), mode);
    std::optional<SqliteStatement> update;
    update.emplace(*database, "update player_info set last_name = ?, team_id = ? where id = ?");
    state.ResumeTiming();
    for (std::size_t i = 0; i < CountOf(state); ++i) {
      const std::int32_t id = players[random() % players.size()].id;
      const std::string name(5 + random() % 20, 'a');
      update->Bind(1, name);
      update->Bind(2, static_cast<std::int32_t>(1 + random() % 32));
      update->Bind(3, id);
      update->Step();
      update->Reset();
    }
    state.PauseTiming();
    update.reset();
    database.reset();
    state.ResumeTiming();
  }
}
BENCHMARK_CAPTURE(Edits, memory, SqliteDatabase::Mode::Memory)
    ->Name("Edits/sqlite")
    ->Arg(kChanges)
    ->UseRealTime();
BENCHMARK_CAPTURE(Edits, normal, SqliteDatabase::Mode::WalNormal)
    ->Name("Edits-normal/sqlite-wal")
    ->Arg(kChanges)
    ->UseRealTime();
BENCHMARK_CAPTURE(Edits, wal, SqliteDatabase::Mode::WalFull)
    ->Name("Edits-full/sqlite-wal")
    ->Arg(kSyncedChanges)
    ->UseRealTime();
BENCHMARK_CAPTURE(Edits, journal, SqliteDatabase::Mode::DeleteFull)
    ->Name("Edits-full/sqlite-delete")
    ->Arg(kSyncedChanges)
    ->UseRealTime();

void GrowingAdds(benchmark::State& state) {
  const auto players = MadeUpPlayers(2000000, kChanges);
  for (auto _ : state) {
    state.PauseTiming();
    std::optional<SqliteDatabase> database;
    database.emplace(CopyOf(SqliteFile(CountOf(state))), SqliteDatabase::Mode::Memory);
    std::optional<SqliteStatement> insert;
    insert.emplace(*database, kSqliteInsert);
    state.ResumeTiming();
    for (const Player& player : players)
      insert->Insert(player);
    state.PauseTiming();
    insert.reset();
    database.reset();
    state.ResumeTiming();
  }
}
BENCHMARK(GrowingAdds)->Name("GrowingAdds/sqlite")->Apply(Growing)->UseRealTime();

void Deletes(benchmark::State& state, SqliteDatabase::Mode mode) {
  const auto players = MadeUpPlayers(1, kManyPlayers);
  for (auto _ : state) {
    state.PauseTiming();
    std::optional<SqliteDatabase> database;
    database.emplace(CopyOf(SqliteFile(kManyPlayers)), mode);
    std::optional<SqliteStatement> remove;
    remove.emplace(*database, "delete from player_info where id = ?");
    state.ResumeTiming();
    for (std::size_t i = 0; i < CountOf(state); ++i) {
      remove->Bind(1, players[i * 7919 % players.size()].id);
      remove->Step();
      remove->Reset();
    }
    state.PauseTiming();
    remove.reset();
    database.reset();
    state.ResumeTiming();
  }
}
BENCHMARK_CAPTURE(Deletes, memory, SqliteDatabase::Mode::Memory)
    ->Name("Deletes/sqlite")
    ->Arg(kChanges)
    ->UseRealTime();
BENCHMARK_CAPTURE(Deletes, normal, SqliteDatabase::Mode::WalNormal)
    ->Name("Deletes-normal/sqlite-wal")
    ->Arg(kChanges)
    ->UseRealTime();
BENCHMARK_CAPTURE(Deletes, wal, SqliteDatabase::Mode::WalFull)
    ->Name("Deletes-full/sqlite-wal")
    ->Arg(kSyncedChanges)
    ->UseRealTime();

void PrefixSearch(benchmark::State& state) {
  SqliteDatabase database(SqliteFile(CountOf(state)));
  for (auto _ : state) {
    SqliteStatement rows(
        database,
        "select * from player_info where last_name like 'ma%' order by last_name collate nocase, "
        "first_name collate nocase");
    benchmark::DoNotOptimize(ReadAll(rows));
  }
}
BENCHMARK(PrefixSearch)->Name("PrefixSearch/sqlite")->Arg(2500)->Arg(kManyPlayers)->Apply(Growing);

}  // namespace
}  // namespace bench

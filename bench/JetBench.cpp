// The engine's half of each pair; SqliteBench.cpp has the other half under the same name.
#include <cstdint>
#include <optional>
#include <random>
#include <string_view>
#include <vector>

#include <benchmark/benchmark.h>

#include "bench/BenchFiles.h"
#include "bench/Players.h"
#include "jet/dao/DBEngine.h"

namespace bench {
namespace {

std::shared_ptr<jet::Database> Open(const std::string& file,
                                    jet::Durability durability = jet::Durability::Full) {
  jet::EngineOptions options;
  options.durability = durability;
  return jet::DBEngine(options).OpenDatabase(file, true);
}

void Growing(benchmark::internal::Benchmark* benchmark) {
  for (const std::int64_t rows : kSizes)
    benchmark->Arg(rows);
}

std::size_t CountOf(const benchmark::State& state) {
  return static_cast<std::size_t>(state.range(0));
}

/// Reads all columns of all rows; the answer depends on every one.
std::size_t ReadAll(jet::Recordset& rows) {
  jet::Field& id = rows.Fields("id");
  jet::Field& first = rows.Fields("first name");
  jet::Field& last = rows.Fields("last name");
  jet::Field& position = rows.Fields("position id");
  jet::Field& team = rows.Fields("team id");
  jet::Field& retired = rows.Fields("is retired");
  std::size_t sum = 0;
  for (; !rows.Eof(); rows.MoveNext()) {
    sum += static_cast<std::size_t>(*id.Value().As<std::int32_t>());
    for (const jet::Field* field : {&first, &last}) {
      const std::optional<std::string_view> text = field->Text();
      if (text) sum += std::string(*text).size();
    }
    for (const jet::Field* field : {&position, &team})
      sum += field->Value().IsNull() ? 0U : 1U;
    sum += *retired.Value().As<bool>() ? 1U : 0U;
  }
  return sum;
}

void OpenAndSettings(benchmark::State& state) {
  const std::string file = JetFile(2500);
  for (auto _ : state) {
    const auto database = Open(file);
    const auto rows = database->OpenRecordset("select * from [settings]");
    benchmark::DoNotOptimize(rows->Fields("current season id").Value());
  }
}
BENCHMARK(OpenAndSettings)->Name("OpenAndSettings/jet");

void Scan(benchmark::State& state) {
  const auto database = Open(JetFile(CountOf(state)));
  for (auto _ : state) {
    benchmark::DoNotOptimize(ReadAll(*database->OpenRecordset("select * from [player info]")));
  }
}
BENCHMARK(Scan)->Name("Scan/jet")->Arg(2500)->Arg(kManyPlayers)->Apply(Growing);

void Lookups(benchmark::State& state) {
  const auto database = Open(JetFile(CountOf(state)));
  const auto players = CountOf(state) == 2500 ? LeaguePlayers() : MadeUpPlayers(1, CountOf(state));
  std::mt19937 random(1);
  const auto lookUp = [&] {
    for (std::size_t i = 0; i < kChanges; ++i) {
      const std::int32_t id = players[random() % players.size()].id;
      const auto rows =
          database->OpenRecordset("select * from [player info] where [id] = " + std::to_string(id));
      benchmark::DoNotOptimize(ReadAll(*rows));
    }
  };
  lookUp();  // to have in the cache what fits it
  for (auto _ : state)
    lookUp();
}
BENCHMARK(Lookups)->Name("Lookups/jet")->Arg(2500)->Arg(kManyPlayers)->Apply(Growing);

void Add(jet::Recordset& rows, const Player& player) {
  rows.AddNew();
  rows.Fields("id").Value(player.id);
  rows.Fields("first name").Value(player.firstName);
  rows.Fields("last name").Value(player.lastName);
  if (player.positionId) rows.Fields("position id").Value(*player.positionId);
  if (player.teamId) rows.Fields("team id").Value(*player.teamId);
  rows.Fields("is retired").Value(player.isRetired);
  rows.Update();
}

void AddsAtOnce(benchmark::State& state) {
  const auto players = MadeUpPlayers(1000000, CountOf(state));
  for (auto _ : state) {
    state.PauseTiming();
    auto database = Open(CopyOf(JetFile(2500)), jet::Durability::Normal);
    const auto rows = database->OpenRecordset("select * from [player info] where [id] = 0");
    state.ResumeTiming();
    database->BeginTrans();
    for (const Player& player : players)
      Add(*rows, player);
    database->CommitTrans();
    state.PauseTiming();
    database->Close();
    state.ResumeTiming();
  }
}
BENCHMARK(AddsAtOnce)->Name("AddsAtOnce/jet")->Arg(kChanges)->UseRealTime();

void Adds(benchmark::State& state, jet::Durability durability) {
  const auto players = MadeUpPlayers(1000000, CountOf(state));
  for (auto _ : state) {
    state.PauseTiming();
    auto database = Open(CopyOf(JetFile(2500)), durability);
    const auto rows = database->OpenRecordset("select * from [player info] where [id] = 0");
    state.ResumeTiming();
    for (const Player& player : players)
      Add(*rows, player);
    state.PauseTiming();
    database->Close();
    state.ResumeTiming();
  }
}
BENCHMARK_CAPTURE(Adds, off, jet::Durability::Off)->Name("Adds/jet")->Arg(kChanges)->UseRealTime();
BENCHMARK_CAPTURE(Adds, normal, jet::Durability::Normal)
    ->Name("Adds-normal/jet")
    ->Arg(kChanges)
    ->UseRealTime();
BENCHMARK_CAPTURE(Adds, full, jet::Durability::Full)
    ->Name("Adds-full/jet")
    ->Arg(kSyncedChanges)
    ->UseRealTime();

void Edits(benchmark::State& state, jet::Durability durability) {
  const auto players = LeaguePlayers();
  std::mt19937 random(2);
  for (auto _ : state) {
    state.PauseTiming();
    auto database = Open(CopyOf(JetFile(2500)), durability);
    state.ResumeTiming();
    for (std::size_t i = 0; i < CountOf(state); ++i) {
      const std::int32_t id = players[random() % players.size()].id;
      const auto rows =
          database->OpenRecordset("select * from [player info] where [id] = " + std::to_string(id));
      rows->Edit();
      rows->Fields("last name").Value(std::string(5 + random() % 20, 'a'));
      rows->Fields("team id").Value(static_cast<std::int32_t>(1 + random() % 32));
      rows->Update();
    }
    state.PauseTiming();
    database->Close();
    state.ResumeTiming();
  }
}
BENCHMARK_CAPTURE(Edits, off, jet::Durability::Off)->Name("Edits/jet")->Arg(kChanges)->UseRealTime();
BENCHMARK_CAPTURE(Edits, normal, jet::Durability::Normal)
    ->Name("Edits-normal/jet")
    ->Arg(kChanges)
    ->UseRealTime();
BENCHMARK_CAPTURE(Edits, full, jet::Durability::Full)
    ->Name("Edits-full/jet")
    ->Arg(kSyncedChanges)
    ->UseRealTime();

/// Adds to a table that has rows already.
void GrowingAdds(benchmark::State& state) {
  const auto players = MadeUpPlayers(2000000, kChanges);
  for (auto _ : state) {
    state.PauseTiming();
    auto database = Open(CopyOf(JetFile(CountOf(state))), jet::Durability::Off);
    const auto rows = database->OpenRecordset("select * from [player info] where [id] = 0");
    state.ResumeTiming();
    for (const Player& player : players)
      Add(*rows, player);
    state.PauseTiming();
    database->Close();
    state.ResumeTiming();
  }
}
BENCHMARK(GrowingAdds)->Name("GrowingAdds/jet")->Apply(Growing)->UseRealTime();

void Deletes(benchmark::State& state, jet::Durability durability) {
  const auto players = MadeUpPlayers(1, kManyPlayers);
  for (auto _ : state) {
    state.PauseTiming();
    auto database = Open(CopyOf(JetFile(kManyPlayers)), durability);
    state.ResumeTiming();
    for (std::size_t i = 0; i < CountOf(state); ++i) {
      // Far apart, and each once.
      const std::int32_t id = players[i * 7919 % players.size()].id;
      database->OpenRecordset("select * from [player info] where [id] = " + std::to_string(id))->Delete();
    }
    state.PauseTiming();
    database->Close();
    state.ResumeTiming();
  }
}
BENCHMARK_CAPTURE(Deletes, off, jet::Durability::Off)->Name("Deletes/jet")->Arg(kChanges)->UseRealTime();
BENCHMARK_CAPTURE(Deletes, normal, jet::Durability::Normal)
    ->Name("Deletes-normal/jet")
    ->Arg(kChanges)
    ->UseRealTime();
BENCHMARK_CAPTURE(Deletes, full, jet::Durability::Full)
    ->Name("Deletes-full/jet")
    ->Arg(kSyncedChanges)
    ->UseRealTime();

void PrefixSearch(benchmark::State& state) {
  const auto database = Open(JetFile(CountOf(state)));
  for (auto _ : state) {
    benchmark::DoNotOptimize(ReadAll(*database->OpenRecordset(
        "select * from [player info] where [last name] like 'ma*' order by [last name], [first name]")));
  }
}
BENCHMARK(PrefixSearch)->Name("PrefixSearch/jet")->Arg(2500)->Arg(kManyPlayers)->Apply(Growing);

}  // namespace
}  // namespace bench

#include "bench/League.h"

#include <algorithm>
#include <filesystem>
#include <map>
#include <stdexcept>
#include <utility>

#include "HLDataSrvc/CreateDataService.h"
#include "HLDataSrvc/Host.h"
#include "bench/BenchFiles.h"
#include "bench/Players.h"
#include "jet/dao/DBEngine.h"
#include "storage/HLServiceUtils.h"
#include "storage/LeagueFile.h"
#include "storage/Schema.h"

namespace bench {
namespace {

namespace HLServiceUtils = HLDataSrvc::HLServiceUtils;
namespace Schema = HLDataSrvc::Schema;

constexpr const char* kFile = "Halcyra - Live.mdb";

class BenchHost final : public HLDataSrvc::Host {
 public:
  explicit BenchHost(std::string folder) : m_folder(std::move(folder)) {}
  std::string ApplicationFolder() const override { return m_folder; }
  std::string FindFile(const std::string& path) const override { return m_system->FindFile(path); }
  void ShowMessage(const std::string& text, const std::string& /*title*/) override {
    throw std::runtime_error("The service says: " + text);
  }
  std::chrono::year_month_day Today() const override {
    return std::chrono::year(2026) / std::chrono::September / std::chrono::day(5);
  }

 private:
  std::string m_folder;
  std::shared_ptr<Host> m_system = HLDataSrvc::SystemHost();
};

void Require(bool isDone, const char* what) {
  if (!isDone) throw std::runtime_error(std::string("The benchmark's league could not be made: ") + what);
}

using Row = std::vector<std::pair<const char*, jet::Value>>;

void AddRows(jet::Database& database, const char* table, const std::vector<Row>& rows) {
  const auto recordset = database.OpenRecordset(std::string("select * from [") + table + "] where 1 = 0");
  for (const Row& row : rows) {
    recordset->AddNew();
    for (const auto& [column, value] : row)
      recordset->Fields(column).Value(value);
    recordset->Update();
  }
}

std::string Numbered(const char* name, std::int32_t number) {
  return name + std::to_string(number);
}

void FillMasters(jet::Database& database, std::size_t players) {
  database.BeginTrans();
  std::vector<Row> rows;
  for (std::int32_t id = 1; id <= 8; ++id)
    rows.push_back({{"id", id}, {"abbr", Numbered("P", id)}, {"desc", Numbered("Position ", id)}});
  AddRows(database, Schema::Position::kTable, rows);
  rows.clear();
  for (std::int32_t id = 1; id <= 32; ++id)
    rows.push_back({{"id", id},
                    {"abbr", Numbered("T", id)},
                    {"name", Numbered("Town ", id)},
                    {"nickname", Numbered("Nick ", id)},
                    {"position id", 8}});
  AddRows(database, Schema::Team::kTable, rows);
  AddRows(database, Schema::PrizeType::kTable, {{{"type id", 1}, {"type name", std::string("Weekly")}}});
  rows.clear();
  for (std::int32_t id = 1; id <= 12; ++id)
    rows.push_back({{"id", id}, {"desc", Numbered("Prize ", id)}, {"type id", 1}});
  AddRows(database, Schema::Prize::kTable, rows);
  rows.clear();
  for (std::int32_t id = 1; id <= kManagers; ++id)
    rows.push_back({{"id", id}, {"first name", std::string("M.")}, {"last name", Numbered("Manager ", id)}});
  AddRows(database, Schema::Manager::kTable, rows);
  rows.clear();
  for (const Player& player : MadeUpPlayers(1, players)) {
    rows.push_back({{"id", player.id},
                    {"first name", player.firstName},
                    {"last name", player.lastName},
                    {"position id", player.positionId ? jet::Value(*player.positionId) : jet::Value()},
                    {"team id", player.teamId ? jet::Value(*player.teamId) : jet::Value()},
                    {"is retired", player.isRetired}});
  }
  AddRows(database, Schema::Player::kTable, rows);
  database.CommitTrans();
}

constexpr std::int32_t kYear = 2026;  // of the current season; the others are of the years before

/// Drafts every `step`th of the players in the order of their names, beginning with that of number `step`.
void FillSeason(HLIData::IDataService& service, std::int32_t year,
                const HLIData::KeyedCollection<HLIData::IPickable>& players, std::int32_t step) {
  service.CurrentSeasonYear(year);
  auto season = service.GetCurrentSeasonInfo();
  season->NoOfManagers(kManagers);
  season->NoOfRounds(kRounds);
  const auto prizes = service.GetPrizeTmpls();
  for (const auto& prize : *prizes)
    Require(season->AddPrize(prize), "a prize");
  Require(service.SaveCurrentSeasonInfo(), "the season");
  season = service.GetCurrentSeasonInfo();
  const auto managers = service.Search(HLIData::SearchType::Managers, "", false, false);
  for (const auto& manager : *managers)
    Require(season->AddManager(std::dynamic_pointer_cast<HLIData::IManagerTmplInfo>(manager)), "a manager");
  for (const auto& manager : *season->Managers())
    manager->Rank(manager->ID());
  Require(service.SaveManagersPlaying() && service.SaveRanking(), "the managers");
  for (std::int32_t pick = 1; pick <= kPicks; ++pick)
    season->UpdateDraft(players.Item(pick * step), pick, season->Managers()->Item(1 + pick % kManagers));
  Require(service.SaveDrafts(), "the draft");
}

void FillSeasons(HLIData::IDataService& service, std::int32_t seasons) {
  const auto players = service.Search(HLIData::SearchType::PlayersAndTeams, "", false, false);
  for (std::int32_t season = 0; season < seasons; ++season) {
    const std::int32_t most = players->Count() / kPicks;
    FillSeason(service, kYear - season, *players, 1 + season % most);
  }
  service.CurrentSeasonYear(kYear);
  Require(service.SaveSettings(), "the settings");
  service.CloseDatabase();
}

std::string Quoted(const std::string& name) {
  return "[" + name + "]";
}

void CopyRows(jet::Database& from, const jet::TableInfo& table, SqliteDatabase& to) {
  std::string places;
  for (std::size_t i = 0; i < table.columns.size(); ++i)
    places += i == 0 ? "?" : ", ?";
  SqliteStatement insert(to, "insert into " + Quoted(table.name) + " values (" + places + ")");
  const auto rows = from.OpenRecordset("select * from " + Quoted(table.name));
  for (; !rows->Eof(); rows->MoveNext()) {
    std::vector<std::string> texts(table.columns.size());
    for (std::size_t i = 0; i < table.columns.size(); ++i) {
      const jet::Value value = rows->Fields(i).Value();
      const int place = static_cast<int>(i) + 1;
      if (const auto* number = value.As<std::int32_t>()) {
        insert.Bind(place, *number);
      } else if (const auto* flag = value.As<bool>()) {
        insert.Bind(place, *flag ? -1 : 0);
      } else if (const auto* text = value.As<std::string>()) {
        texts[i] = *text;
        insert.Bind(place, texts[i]);
      }
    }
    insert.Step();
    insert.Reset();
  }
}

/// The tables of a league file with their keys, indexes and rows.
void CopyToSqlite(const std::string& mdb, const std::string& sqlite) {
  const auto from = jet::DBEngine().OpenDatabase(mdb, true, true, kLeagueConnect);
  SqliteDatabase to(sqlite);
  to.Run("begin");
  for (const jet::TableInfo& table : from->Tables()) {
    if (table.isSystem) continue;
    std::string columns;
    for (const jet::ColumnSpec& column : table.columns)
      columns += (columns.empty() ? "" : ", ") + Quoted(column.name) +
                 (column.type == jet::ColumnType::Text ? " text collate nocase" : " integer");
    std::vector<std::string> indexes;
    for (const jet::IndexSpec& index : table.indexes) {
      if (index.foreign) continue;
      std::string names;
      for (const jet::IndexColumn& column : index.columns)
        names += (names.empty() ? "" : ", ") + Quoted(column.name);
      if (index.primary) {
        columns += ", primary key (" + names + ")";
      } else {
        indexes.push_back("create index " + Quoted(table.name + " " + index.name) + " on " +
                          Quoted(table.name) + " (" + names + ")");
      }
    }
    to.Run("create table " + Quoted(table.name) + " (" + columns + ")");
    for (const std::string& index : indexes)
      to.Run(index);
    CopyRows(*from, table, to);
  }
  to.Run("commit");
}

class StatementRecorder final : public jet::CallObserver {
 public:
  void OnCall(const char* call, const std::string& detail) override {
    if (std::string(call) != "Database.OpenRecordset") return;
    statements.push_back(detail);
    std::replace(statements.back().begin(), statements.back().end(), '*', '%');
    // `select *` is the one star that is no pattern.
    const std::string all = "select %";
    if (statements.back().starts_with(all)) statements.back()[all.size() - 1] = '*';
  }
  std::vector<std::string> statements;
};

}  // namespace

const League& League::WithPlayers(std::size_t count, std::int32_t seasons) {
  static std::map<std::pair<std::size_t, std::int32_t>, League> leagues;
  const std::pair key{count, seasons};
  const auto found = leagues.find(key);
  return found != leagues.end() ? found->second : leagues.emplace(key, League(count, seasons)).first->second;
}

League::League(std::size_t players, std::int32_t seasons)
    : m_folder(NewFolder("league-" + std::to_string(players) + "-" + std::to_string(seasons))),
      m_sqlite(m_folder + "/league.sqlite") {
  HLDataSrvc::LeagueFileOptions options;
  options.fill = [players](jet::Database& database) { FillMasters(database, players); };
  HLDataSrvc::CreateLeagueFile(m_folder + "/" + kFile, options);
  UseDurability(jet::Durability::Off);
  FillSeasons(*OpenService(m_folder), seasons);
  UseDurability(jet::Durability::Full);
  CopyToSqlite(m_folder + "/" + kFile, m_sqlite);
}

std::string League::FolderOfCopy() const {
  const std::string folder = NewFolder("copy");
  std::filesystem::copy_file(m_folder + "/" + kFile, folder + "/" + kFile,
                             std::filesystem::copy_options::overwrite_existing);
  return folder;
}

std::string League::SqliteCopy() const {
  return CopyOf(m_sqlite);
}

std::shared_ptr<HLIData::IDataService> OpenService(const std::string& folder) {
  auto service = HLDataSrvc::CreateDataService(std::make_shared<BenchHost>(folder));
  std::string error;
  if (!service->Initialize(HLIData::DBType::Live, error)) throw std::runtime_error(error);
  return service;
}

void UseDurability(jet::Durability durability) {
  jet::EngineOptions options;
  options.durability = durability;
  HLServiceUtils::ReplaceEngine(options);
}

std::vector<std::string> StatementsOf(const std::function<void()>& work) {
  const auto recorder = std::make_shared<StatementRecorder>();
  jet::EngineOptions options;
  options.observer = recorder;
  HLServiceUtils::ReplaceEngine(options);
  work();
  HLServiceUtils::ReplaceEngine({});
  return recorder->statements;
}

std::size_t RunAll(SqliteDatabase& database, const std::vector<std::string>& statements) {
  std::size_t sum = 0;
  for (const std::string& sql : statements) {
    SqliteStatement rows(database, sql);
    while (rows.Step()) {
      for (int column = 0; column < rows.ColumnCount(); ++column)
        sum += rows.IsNull(column)   ? 0
               : rows.IsText(column) ? rows.Text(column).size()
                                     : static_cast<std::size_t>(rows.Number(column));
    }
  }
  return sum;
}

}  // namespace bench

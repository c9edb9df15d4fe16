#include "bench/BenchFiles.h"

#include <filesystem>
#include <map>
#include <random>

#include "bench/Players.h"
#include "bench/SqliteDatabase.h"
#include "jet/dao/DBEngine.h"

namespace bench {
namespace {

class Folder {
 public:
  Folder() {
    std::random_device random;
    m_path = std::filesystem::temp_directory_path() / ("halcyra-bench-" + std::to_string(random()));
    std::filesystem::create_directory(m_path);
  }
  Folder(const Folder&) = delete;
  Folder& operator=(const Folder&) = delete;
  ~Folder() {
    std::error_code ignored;
    std::filesystem::remove_all(m_path, ignored);
  }
  std::string File(const std::string& name) const { return (m_path / name).string(); }

 private:
  std::filesystem::path m_path;
};

const Folder& TheFolder() {
  static const Folder folder;
  return folder;
}

jet::ColumnSpec Column(const char* name, jet::ColumnType type, std::uint16_t length = 0) {
  jet::ColumnSpec column;
  column.name = name;
  column.type = type;
  column.length = length;
  return column;
}

jet::IndexSpec Index(const char* name, const char* column, bool primary) {
  jet::IndexSpec index;
  index.name = name;
  index.columns = {{column}};
  index.primary = primary;
  index.unique = primary;
  return index;
}

void MakeJetFile(const std::string& file, const std::vector<Player>& players) {
  using jet::ColumnType;
  const auto database = jet::DBEngine().CreateDatabase(file);
  jet::TableSpec settings;
  settings.name = "settings";
  settings.columns = {Column("id", ColumnType::Long), Column("current season id", ColumnType::Long)};
  settings.indexes = {Index("PrimaryKey", "id", true)};
  database->CreateTable(settings);
  jet::TableSpec table;
  table.name = "player info";
  table.columns = {Column("id", ColumnType::Long),
                   Column("first name", ColumnType::Text, 50),
                   Column("last name", ColumnType::Text, 50),
                   Column("position id", ColumnType::Long),
                   Column("team id", ColumnType::Long),
                   Column("is retired", ColumnType::YesNo)};
  table.indexes = {Index("PrimaryKey", "id", true), Index("position id", "position id", false),
                   Index("team id", "team id", false)};
  database->CreateTable(table);
  database->BeginTrans();
  const auto one = database->OpenRecordset("select * from [settings]");
  one->AddNew();
  one->Fields("id").Value(1);
  one->Fields("current season id").Value(11);
  one->Update();
  const auto rows = database->OpenRecordset("select * from [player info]");
  for (const Player& player : players) {
    rows->AddNew();
    rows->Fields("id").Value(player.id);
    if (!player.firstName.empty()) rows->Fields("first name").Value(player.firstName);
    rows->Fields("last name").Value(player.lastName);
    if (player.positionId) rows->Fields("position id").Value(*player.positionId);
    if (player.teamId) rows->Fields("team id").Value(*player.teamId);
    rows->Fields("is retired").Value(player.isRetired);
    rows->Update();
  }
  database->CommitTrans();
}

void MakeSqliteFile(const std::string& file, const std::vector<Player>& players) {
  SqliteDatabase database(file);
  database.Run(
      "create table settings (id integer primary key, current_season_id integer);"
      "insert into settings values (1, 11);"
      "create table player_info (id integer primary key, first_name text, last_name text, position_id "
      "integer,"
      " team_id integer, is_retired integer);"
      "create index position_id on player_info (position_id);"
      "create index team_id on player_info (team_id);"
      "begin");
  SqliteStatement insert(database, kSqliteInsert);
  for (const Player& player : players)
    insert.Insert(player);
  database.Run("commit");
}

std::vector<Player> PlayersOf(std::size_t count) {
  return count == 2500 ? LeaguePlayers() : MadeUpPlayers(1, count);
}

}  // namespace

std::string LeagueFile() {
  return HALCYRA_BENCH_LEAGUE;
}

std::string JetFile(std::size_t count) {
  static std::map<std::size_t, std::string> made;
  std::string& file = made[count];
  if (file.empty()) {
    file = TheFolder().File("players-" + std::to_string(count) + ".mdb");
    MakeJetFile(file, PlayersOf(count));
  }
  return file;
}

std::string SqliteFile(std::size_t count) {
  static std::map<std::size_t, std::string> made;
  std::string& file = made[count];
  if (file.empty()) {
    file = TheFolder().File("players-" + std::to_string(count) + ".sqlite");
    MakeSqliteFile(file, PlayersOf(count));
  }
  return file;
}

std::string NewFolder(const std::string& name) {
  std::string folder = TheFolder().File(name);
  std::filesystem::create_directory(folder);
  return folder;
}

std::string CopyOf(const std::string& file) {
  const std::string copy = TheFolder().File("copy" + std::filesystem::path(file).extension().string());
  for (const char* beside : {"-wal", "-shm", "-journal", "-log"})
    std::filesystem::remove(copy + beside);
  std::filesystem::copy_file(file, copy, std::filesystem::copy_options::overwrite_existing);
  return copy;
}

}  // namespace bench

#include "bench/SqliteDatabase.h"

#include <stdexcept>

namespace bench {

SqliteDatabase::SqliteDatabase(const std::string& file, Mode mode) {
  if (sqlite3_open(file.c_str(), &m_database) != SQLITE_OK) throw std::runtime_error("cannot open " + file);
  switch (mode) {
    case Mode::Read:
      return;
    case Mode::Memory:
      Run("pragma synchronous = off; pragma journal_mode = memory");
      break;
    case Mode::DeleteFull:
      Run("pragma synchronous = full; pragma journal_mode = delete");
      break;
    case Mode::WalFull:
      Run("pragma journal_mode = wal; pragma synchronous = full");
      break;
    case Mode::WalNormal:
      Run("pragma journal_mode = wal; pragma synchronous = normal");
      break;
  }
  Run("pragma locking_mode = exclusive; pragma cache_size = -65536");
}

SqliteDatabase::~SqliteDatabase() {
  sqlite3_close(m_database);
}

void SqliteDatabase::Run(const std::string& sql) {
  if (sqlite3_exec(m_database, sql.c_str(), nullptr, nullptr, nullptr) != SQLITE_OK) {
    throw std::runtime_error(sqlite3_errmsg(m_database));
  }
}

SqliteStatement::SqliteStatement(SqliteDatabase& database, const std::string& sql) {
  if (sqlite3_prepare_v2(database.Get(), sql.c_str(), -1, &m_statement, nullptr) != SQLITE_OK) {
    throw std::runtime_error(sqlite3_errmsg(database.Get()));
  }
}

SqliteStatement::~SqliteStatement() {
  sqlite3_finalize(m_statement);
}

void SqliteStatement::Bind(int place, std::int32_t number) {
  sqlite3_bind_int(m_statement, place, number);
}

void SqliteStatement::Bind(int place, const std::string& text) {
  // The text outlives the step; no destructor means that SQLite takes no copy.
  sqlite3_bind_text(m_statement, place, text.data(), static_cast<int>(text.size()), nullptr);
}

bool SqliteStatement::Step() {
  const int result = sqlite3_step(m_statement);
  if (result != SQLITE_ROW && result != SQLITE_DONE) throw std::runtime_error("a statement failed");
  return result == SQLITE_ROW;
}

void SqliteStatement::Reset() {
  sqlite3_reset(m_statement);
  sqlite3_clear_bindings(m_statement);
}

std::string SqliteStatement::Text(int column) const {
  const auto* bytes = static_cast<const char*>(sqlite3_column_blob(m_statement, column));
  return bytes == nullptr
             ? std::string()
             : std::string(bytes, static_cast<std::size_t>(sqlite3_column_bytes(m_statement, column)));
}

void SqliteStatement::Insert(const Player& player) {
  Bind(1, player.id);
  if (!player.firstName.empty()) Bind(2, player.firstName);
  Bind(3, player.lastName);
  if (player.positionId) Bind(4, *player.positionId);
  if (player.teamId) Bind(5, *player.teamId);
  Bind(6, player.isRetired ? 1 : 0);
  Step();
  Reset();
}

}  // namespace bench

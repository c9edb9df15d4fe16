#pragma once

#include <cstdint>
#include <string>

#include <sqlite3.h>

#include "bench/Players.h"

namespace bench {

inline constexpr const char* kSqliteInsert = "insert into player_info values (?, ?, ?, ?, ?, ?)";

/// An open SQLite database.
class SqliteDatabase {
 public:
  /// What its changes survive.
  enum class Mode {
    Read,        ///< there are none
    Memory,      ///< errors: a journal in memory, and nothing waits for the disk
    DeleteFull,  ///< power cuts: a journal beside the file that is deleted with each change
    WalFull,     ///< power cuts: a write-ahead log
    WalNormal    ///< the end of the process: a write-ahead log that is synced at checkpoints
  };

  explicit SqliteDatabase(const std::string& file, Mode mode = Mode::Memory);
  ~SqliteDatabase();
  SqliteDatabase(const SqliteDatabase&) = delete;
  SqliteDatabase& operator=(const SqliteDatabase&) = delete;

  /// Runs statements that have no rows. Raises std::runtime_error.
  void Run(const std::string& sql);
  sqlite3* Get() const { return m_database; }

 private:
  sqlite3* m_database = nullptr;
};

/// A prepared statement.
class SqliteStatement {
 public:
  SqliteStatement(SqliteDatabase& database, const std::string& sql);
  ~SqliteStatement();
  SqliteStatement(const SqliteStatement&) = delete;
  SqliteStatement& operator=(const SqliteStatement&) = delete;

  void Bind(int place, std::int32_t number);
  void Bind(int place, const std::string& text);
  /// To the next row; false at the end.
  bool Step();
  void Reset();
  std::int32_t Number(int column) const { return sqlite3_column_int(m_statement, column); }
  int ColumnCount() const { return sqlite3_column_count(m_statement); }
  bool IsText(int column) const { return sqlite3_column_type(m_statement, column) == SQLITE_TEXT; }
  bool IsNull(int column) const { return sqlite3_column_type(m_statement, column) == SQLITE_NULL; }
  /// A copy of the text.
  std::string Text(int column) const;

  /// For kSqliteInsert.
  void Insert(const Player& player);

 private:
  sqlite3_stmt* m_statement = nullptr;
};

}  // namespace bench

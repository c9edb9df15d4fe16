#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "HLIData/IDataService.h"
#include "bench/SqliteDatabase.h"
#include "jet/Durability.h"

namespace bench {

inline constexpr std::int32_t kManagers = 14;
inline constexpr std::int32_t kRounds = 16;
inline constexpr std::int32_t kPicks = kManagers * kRounds;

/// A league with so many players and a current season of 14 managers and some rounds, fully drafted, once as
/// a league file and once, with the same rows, keys and indexes, in SQLite. Made on first use.
class League {
 public:
  static const League& WithPlayers(std::size_t count, std::int32_t seasons = 1);

  /// A copy of the league file that may be changed, in a separate folder; the next copy overwrites it.
  std::string FolderOfCopy() const;
  /// The same of the SQLite file; its full name.
  std::string SqliteCopy() const;

 private:
  League(std::size_t players, std::int32_t seasons);

  std::string m_folder;
  std::string m_sqlite;
};

/// A service that has opened the league file of a folder. Raises std::runtime_error when something fails,
/// also whenever the service shows a message.
std::shared_ptr<HLIData::IDataService> OpenService(const std::string& folder);

/// From here on the service's engine has this durability.
void UseDurability(jet::Durability durability);

/// The select statements that `work` runs on the service's engine, as SQLite understands them: it takes names
/// in brackets too, and `%` for what is `*` in like patterns.
std::vector<std::string> StatementsOf(const std::function<void()>& work);

/// Runs select statements on SQLite and reads every column of every row as a text or a number.
std::size_t RunAll(SqliteDatabase& database, const std::vector<std::string>& statements);

}  // namespace bench

#pragma once

#include <cstddef>
#include <cstdint>
#include <string>

namespace bench {

inline constexpr const char* kLeagueConnect = ";pwd=talwep83rn";
inline constexpr std::size_t kManyPlayers = 200000;
inline constexpr std::int64_t kSizes[] = {1000, 10000, 100000, 1000000};  ///< rows of tables that grow
inline constexpr std::size_t kChanges = 10000;
inline constexpr std::size_t kSyncedChanges = 200;  ///< each waits for the disk

/// The sample league file, not to be changed.
std::string LeagueFile();

/// A file with `count` rows of [player info] (2,500: those of the league; else made up) and the [settings]
/// row, made on first use in a folder that goes when the program ends. Not to be changed.
std::string JetFile(std::size_t count);
std::string SqliteFile(std::size_t count);

/// A folder of that name in the one that goes when the program ends; made if need be.
std::string NewFolder(const std::string& name);

/// A copy that may be changed; overwritten by the next copy.
std::string CopyOf(const std::string& file);

}  // namespace bench

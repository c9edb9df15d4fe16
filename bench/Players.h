#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace bench {

/// A row of [player info].
struct Player {
  std::int32_t id = 0;
  std::string firstName;  ///< empty: Null
  std::string lastName;
  std::optional<std::int32_t> positionId;
  std::optional<std::int32_t> teamId;
  bool isRetired = false;
};

/// The players of the sample league file.
std::vector<Player> LeaguePlayers();

/// Made-up players, the same in every run; ids ascend from `firstId` in steps of one.
std::vector<Player> MadeUpPlayers(std::int32_t firstId, std::size_t count);

}  // namespace bench

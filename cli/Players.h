#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "HLIData/IPlayerInfo.h"
#include "cli/Json.h"
#include "cli/League.h"

namespace cli {

/// What the league keeps of a player, by the ids of position and team; 0 for none.
struct PlayerValues {
  std::string firstName;
  std::string lastName;
  std::int32_t positionID = 0;
  std::int32_t teamID = 0;
  bool isRetired = false;

  friend bool operator==(const PlayerValues&, const PlayerValues&) = default;
};

PlayerValues ValuesOf(const HLIData::IPlayerInfo& player);

/// Whoever has a name: by first name, last name and id.
std::vector<std::shared_ptr<HLIData::IPlayerInfo>> AllPlayers(League& league);

/// The player whom a word means: an id, "P17" or "17", or a name or the beginning of one, retired or not.
/// Raises Failure when there is none, or several.
std::shared_ptr<HLIData::IPlayerInfo> FindPlayer(League& league, const std::string& who);

/// The id that a word is, "P17" or "17"; none for a name.
std::optional<std::int32_t> PlayerIDIn(const std::string& who);

/// Adds a player (`id` 0) or changes one through the service. Raises Failure for a value that is missing or
/// does not fit, and when the player cannot be saved.
std::shared_ptr<HLIData::IPlayerInfo> SavePlayer(League& league, const PlayerValues& values, std::int32_t id);
/// Raises Failure for a name that does not fit its column.
void RequireNamesFit(League& league, const PlayerValues& values);

/// "Ann Lee (P17, DAL, QB, retired)".
std::string PlayerText(const HLIData::IPlayerInfo& player);
Json PlayerJson(const HLIData::IPlayerInfo& player);

}  // namespace cli

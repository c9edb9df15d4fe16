#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "HLIData/IPickable.h"
#include "HLIData/IPlayerInfo.h"
#include "HLLeague/League.h"

namespace HLLeague {

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

/// A player whose position or team does not exist, as his row has him: without what is missing. He can be
/// shown and edited, but not drafted.
class BrokenPlayer final : public HLIData::IPlayerInfo, public HLIData::IPickable {
 public:
  BrokenPlayer(std::int32_t id, PlayerValues values, std::string problem)
      : m_id(id), m_values(std::move(values)), m_problem(std::move(problem)) {}

  std::int32_t ID() const override { return m_id; }
  std::string LastName() const override { return m_values.lastName; }
  std::string FirstName() const override { return m_values.firstName; }
  std::shared_ptr<HLIData::IPositionInfo> Position() const override { return m_position; }
  std::shared_ptr<HLIData::ITeamInfo> Team() const override { return m_team; }
  bool IsRetired() const override { return m_values.isRetired; }
  HLIData::PickType PickType() const override { return HLIData::PickType::Player; }
  std::string PickName() const override { return m_values.firstName + " " + m_values.lastName; }
  std::int32_t PickID() const override { return m_id; }

  /// What is wrong, as a sentence that names the player.
  const std::string& Problem() const { return m_problem; }
  /// What does exist of the two.
  void Resolve(std::shared_ptr<HLIData::IPositionInfo> position, std::shared_ptr<HLIData::ITeamInfo> team) {
    m_position = std::move(position);
    m_team = std::move(team);
  }

 private:
  std::int32_t m_id;
  PlayerValues m_values;
  std::string m_problem;
  std::shared_ptr<HLIData::IPositionInfo> m_position;
  std::shared_ptr<HLIData::ITeamInfo> m_team;
};

/// All players by first name, last name and id; broken ones as BrokenPlayer.
std::vector<std::shared_ptr<HLIData::IPlayerInfo>> AllPlayers(League& league);

/// The player with an id, perhaps a BrokenPlayer; empty when there is none.
std::shared_ptr<HLIData::IPlayerInfo> PlayerByID(League& league, std::int32_t id);
/// Raises Failure for a BrokenPlayer: for commands that he cannot be part of.
void RequireSound(const HLIData::IPickable& pickable);

/// The player whom a word means: an id, "P17" or "17", or a name or the beginning of one, retired or not.
/// Raises Failure when there is none, or several.
std::shared_ptr<HLIData::IPlayerInfo> FindPlayer(League& league, const std::string& who);

/// The id that a word is, "P17" or "17"; none for a name.
std::optional<std::int32_t> PlayerIDIn(const std::string& who);

/// Adds a player (`id` 0) or changes one through the service, a broken one too. Raises Failure for a value
/// that is missing or does not fit, and when the player cannot be saved.
std::shared_ptr<HLIData::IPlayerInfo> SavePlayer(League& league, const PlayerValues& values, std::int32_t id);
/// Raises Failure for a name that does not fit its column.
void RequireNamesFit(League& league, const PlayerValues& values);

/// "Ann Lee (P17, DAL, QB, retired)".
std::string PlayerText(const HLIData::IPlayerInfo& player);

}  // namespace HLLeague

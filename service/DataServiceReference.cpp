// Positions, teams and players: the master records that can be drafted, and what they refer to.

#include "HLIData/Error.h"
#include "records/PlayerInfo.h"
#include "records/PositionInfo.h"
#include "records/RecordKey.h"
#include "records/References.h"
#include "records/TeamInfo.h"
#include "service/DataService.h"
#include "service/Failures.h"
#include "service/Rows.h"
#include "storage/Schema.h"

namespace HLDataSrvc {

using HLIData::IPlayerInfo;
using HLIData::IPositionInfo;
using HLIData::ITeamInfo;
using HLIData::KeyedCollection;

namespace {

constexpr char kNoPositions[] = "The positions are not loaded.";
constexpr char kNoTeams[] = "The teams are not loaded.";

/// The record under an identifier in a list. Raises UnknownKey; `what` has it, in which table it is missing.
template <typename Record>
std::shared_ptr<Record> Referred(const ServiceCaches::Cache<Record>& list, std::int32_t id,
                                 const char* notLoaded, const std::string& what, const std::string& table) {
  if (auto record = Required(list, notLoaded).Find(RecordKey(id))) return record;
  throw HLIData::Error(HLIData::ErrorNumber::UnknownKey,
                       what + " " + std::to_string(id) + ", which is not in [" + table + "].");
}

}  // namespace

std::shared_ptr<KeyedCollection<IPositionInfo>> DataService::GetPlayerPositions() {
  if (m_caches.positions) return m_caches.positions;
  using Result = std::shared_ptr<KeyedCollection<IPositionInfo>>;
  const Operation operation(*this);
  auto loaded = Trap<Result>("Error in loading positions.", [this](Result& result) {
    // Kept before it is filled: what a failure leaves in it is served from then on.
    const auto positions = m_caches.positions = std::make_shared<KeyedCollection<IPositionInfo>>();
    Rows::ForEach(Database(), "select * from [position info] order by [id]", [&](jet::Recordset& row) {
      const auto position = std::make_shared<PositionInfo>();
      position->ID(Rows::LeadingInt32(row, Schema::Position::kID));
      position->Abbr(Rows::Text(row, Schema::Position::kAbbr));
      position->Desc(Rows::Text(row, Schema::Position::kDesc));
      positions->Add(position, RecordKey(position->ID()));
    });
    result = positions;
  });
  m_shown.positions = !loaded;
  return loaded;
}

std::shared_ptr<KeyedCollection<ITeamInfo>> DataService::GetTeams() {
  if (m_caches.teams) return m_caches.teams;
  using Result = std::shared_ptr<KeyedCollection<ITeamInfo>>;
  const Operation operation(*this);
  auto loaded = Trap<Result>("Error in loading teams.", [this](Result& result) {
    GetPlayerPositions();
    const auto teams = m_caches.teams = std::make_shared<KeyedCollection<ITeamInfo>>();  // as above
    Rows::ForEach(Database(), "select * from [team info] order by [id]", [&](jet::Recordset& row) {
      const auto team = std::make_shared<TeamInfo>();
      team->ID(Rows::LeadingInt32(row, Schema::Team::kID));
      team->Abbr(Rows::Text(row, Schema::Team::kAbbr));
      team->Name(Rows::Text(row, Schema::Team::kName));
      team->Nickname(Rows::Text(row, Schema::Team::kNickname));
      const std::int32_t positionID = Rows::LeadingInt32(row, Schema::Team::kPositionID);
      if (positionID > 0) {
        const std::string who = "Team " + std::to_string(team->ID()) + " in [team info] has the position";
        team->Position(Referred(m_caches.positions, positionID, kNoPositions, who, Schema::Position::kTable));
      }
      teams->Add(team, RecordKey(team->ID()));
    });
    result = teams;
  });
  m_shown.teams = !loaded;
  return loaded;
}

std::shared_ptr<TeamInfo> DataService::TeamByID(std::int32_t teamID) {
  GetTeams();  // shows its failure; a team that it did not reach is missing below
  return LookUpIn(m_shown.teams, [&] {
    const auto team = Required(m_caches.teams, kNoTeams).Find(RecordKey(teamID));
    if (team) return OwnRecord<TeamInfo>(team, "A team");
    throw HLIData::Error(HLIData::ErrorNumber::UnknownKey,
                         "Team " + std::to_string(teamID) + " is not in [team info].");
  });
}

std::shared_ptr<PlayerInfo> DataService::PlayerByID(std::int32_t playerID) {
  if (playerID == 0) return {};
  if (!m_caches.players) m_caches.players = std::make_shared<KeyedCollection<IPlayerInfo>>();
  if (const auto known = FindCached(m_caches.players, playerID)) {
    return OwnRecord<PlayerInfo>(known, "A player");
  }

  // From here on errors go to the caller, deliberately: they are not shown.
  const auto rows =
      Database().OpenRecordset("select * from [player info] where [id] = " + std::to_string(playerID));
  std::shared_ptr<PlayerInfo> player;
  if (!rows->Eof()) {
    const std::string who = "Player " + std::to_string(playerID) + " in [player info] has the ";
    player = std::make_shared<PlayerInfo>();
    player->ID(playerID);
    player->FirstName(Rows::Text(*rows, Schema::Player::kFirstName));
    player->LastName(Rows::Text(*rows, Schema::Player::kLastName));
    const std::int32_t positionID = Rows::LeadingInt32(*rows, Schema::Player::kPositionID);
    if (positionID != 0) {
      GetPlayerPositions();  // as in TeamByID
      player->Position(LookUpIn(m_shown.positions, [&] {
        return Referred(m_caches.positions, positionID, kNoPositions, who + "position",
                        Schema::Position::kTable);
      }));
    }
    const std::int32_t teamID = Rows::LeadingInt32(*rows, Schema::Player::kTeamID);
    if (teamID != 0) {
      GetTeams();
      player->Team(LookUpIn(m_shown.teams, [&] {
        return OwnRecord<TeamInfo>(
            Referred(m_caches.teams, teamID, kNoTeams, who + "team", Schema::Team::kTable), "A team");
      }));
    }
    player->IsRetired(Rows::Boolean(*rows, Schema::Player::kIsRetired));
    player->IsSaved(true);
    player->IsDirty(false);
  }
  rows->Close();
  if (player) m_caches.players->Add(player, RecordKey(playerID));
  return player;
}

}  // namespace HLDataSrvc

#include "cli/Players.h"

#include "cli/MasterRecords.h"
#include "cli/Numbers.h"
#include "cli/Pickables.h"
#include "storage/Schema.h"

namespace cli {

namespace Schema = HLDataSrvc::Schema;
using HLIData::IPlayerInfo;

PlayerValues ValuesOf(const IPlayerInfo& player) {
  PlayerValues values;
  values.firstName = player.FirstName();
  values.lastName = player.LastName();
  if (const auto position = player.Position()) values.positionID = position->ID();
  if (const auto team = player.Team()) values.teamID = team->ID();
  values.isRetired = player.IsRetired();
  return values;
}

std::vector<std::shared_ptr<IPlayerInfo>> AllPlayers(League& league) {
  const auto found = league.Service().Search(HLIData::SearchType::PlayersAndTeams, "",
                                             /*curSeasonOnly=*/false, /*skipRetiredPlayers=*/false);
  league.RaiseShownMessages();
  std::vector<std::shared_ptr<IPlayerInfo>> players;
  if (!found) return players;
  for (const auto& pickable : *found) {
    if (auto player = std::dynamic_pointer_cast<IPlayerInfo>(pickable)) players.push_back(std::move(player));
  }
  return players;
}

std::shared_ptr<IPlayerInfo> FindPlayer(League& league, const std::string& who) {
  PickableWords words;
  words.who = who;
  words.retired = true;
  words.playersOnly = true;
  return std::dynamic_pointer_cast<IPlayerInfo>(FindPickable(league, words, [](const auto& pickable) {
    const auto player = std::dynamic_pointer_cast<IPlayerInfo>(pickable);
    return std::string(player && player->IsRetired() ? "retired" : "");
  }));
}

std::optional<std::int32_t> PlayerIDIn(const std::string& who) {
  const bool hasLetter = who.starts_with('P') || who.starts_with('p');
  return WholeNumber(hasLetter ? who.substr(1) : who);
}

void RequireNamesFit(League& league, const PlayerValues& values) {
  RequireFits(league, Schema::Player::kTable, Schema::Player::kFirstName, "first name", values.firstName);
  RequireFits(league, Schema::Player::kTable, Schema::Player::kLastName, "last name", values.lastName);
}

std::shared_ptr<IPlayerInfo> SavePlayer(League& league, const PlayerValues& values, std::int32_t id) {
  RequireNamesFit(league, values);
  std::shared_ptr<IPlayerInfo> saved;
  SaveRecord(league, "The player", [&](std::string& message) {
    return league.Service().UpdatePlayer(values.lastName, values.firstName, values.positionID, values.teamID,
                                         values.isRetired, id, saved, message);
  });
  return saved;
}

std::string PlayerText(const IPlayerInfo& player) {
  std::string text = PickableText(FactsOf(dynamic_cast<const HLIData::IPickable&>(player)));
  if (player.IsRetired()) text.insert(text.size() - 1, ", retired");
  return text;
}

Json PlayerJson(const IPlayerInfo& player) {
  const auto position = player.Position();
  const auto team = player.Team();
  Json json;
  json["id"] = player.ID();
  json["firstName"] = player.FirstName();
  json["lastName"] = player.LastName();
  json["position"] = position ? Json(position->Abbr()) : Json();
  json["team"] = team ? Json(team->Abbr()) : Json();
  json["isRetired"] = player.IsRetired();
  return json;
}

}  // namespace cli

#include "cli/output/RecordJson.h"

namespace cli {

using namespace HLLeague;

Json PickableJson(const PickableFacts& facts) {
  Json json;
  json["id"] = facts.id;
  json["name"] = facts.name;
  json["team"] = facts.team.empty() ? Json() : Json(facts.team);
  json["position"] = facts.position.empty() ? Json() : Json(facts.position);
  return json;
}

Json PlayerJson(const HLIData::IPlayerInfo& player) {
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

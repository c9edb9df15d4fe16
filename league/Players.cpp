#include "HLLeague/Players.h"

#include "HLDataSrvc/ServiceDatabase.h"
#include "HLIData/Error.h"
#include "HLLeague/Failure.h"
#include "HLLeague/MasterRecords.h"
#include "HLLeague/Pickables.h"
#include "league/Numbers.h"
#include "records/RecordKey.h"
#include "storage/Schema.h"

namespace HLLeague {

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

namespace {

/// A player's row in the file.
std::string SelectPlayer(std::int32_t id) {
  return "select * from [" + std::string(Schema::Player::kTable) + "] where [" + Schema::Player::kID +
         "] = " + std::to_string(id);
}

std::shared_ptr<BrokenPlayer> BrokenPlayerOf(League& league, std::int32_t id, const std::string& problem) {
  const auto column = [](const char* name) { return "[" + std::string(name) + "]"; };
  const std::string select = "select " + column(Schema::Player::kFirstName) + ", " +
                             column(Schema::Player::kLastName) + ", " + column(Schema::Player::kPositionID) +
                             ", " + column(Schema::Player::kTeamID) + ", " +
                             column(Schema::Player::kIsRetired) + " from [" + Schema::Player::kTable +
                             "] where " + column(Schema::Player::kID) + " = " + std::to_string(id);
  const auto rows = HLDataSrvc::SelectRows(league.Service(), select);
  if (rows.empty()) return nullptr;
  const HLDataSrvc::TextRow& row = rows.front();
  PlayerValues values;
  values.firstName = row[0].value_or("");
  values.lastName = row[1].value_or("");
  values.isRetired = row[4].value_or("False") != "False";
  auto player = std::make_shared<BrokenPlayer>(id, values, problem);
  const auto positions = league.Service().GetPlayerPositions();
  const auto teams = league.Service().GetTeams();
  league.TakeShownMessages();
  player->Resolve(
      positions ? positions->Find(HLDataSrvc::RecordKey(WholeNumber(row[2].value_or("")).value_or(0)))
                : nullptr,
      teams ? teams->Find(HLDataSrvc::RecordKey(WholeNumber(row[3].value_or("")).value_or(0))) : nullptr);
  return player;
}

}  // namespace

std::shared_ptr<IPlayerInfo> PlayerByID(League& league, std::int32_t id) {
  try {
    auto player = HLDataSrvc::FindPlayer(league.Service(), id);
    if (league.TakeShownMessages().empty() || player) return player;
  } catch (const HLIData::Error& error) {
    league.TakeShownMessages();
    return BrokenPlayerOf(league, id, error.what());
  }
  return nullptr;
}

void RequireSound(const HLIData::IPickable& pickable) {
  const auto* broken = dynamic_cast<const BrokenPlayer*>(&pickable);
  if (broken == nullptr) return;
  const std::string id = "P" + std::to_string(broken->ID());
  throw Failure(FailureKind::Refused, broken->Problem(), "'player edit " + id + " --team ABBR' mends it.");
}

std::vector<std::shared_ptr<IPlayerInfo>> AllPlayers(League& league) {
  std::vector<std::shared_ptr<IPlayerInfo>> players;
  const auto found = league.Service().Search(HLIData::SearchType::PlayersAndTeams, "",
                                             /*curSeasonOnly=*/false, /*skipRetiredPlayers=*/false);
  if (league.TakeShownMessages().empty()) {
    for (const auto& pickable : *found) {
      if (auto player = std::dynamic_pointer_cast<IPlayerInfo>(pickable))
        players.push_back(std::move(player));
    }
    return players;
  }
  // A player who cannot be loaded fails the search.
  const std::string select = "select [" + std::string(Schema::Player::kID) + "] from [" +
                             Schema::Player::kTable + "] order by [" + Schema::Player::kFirstName + "], [" +
                             Schema::Player::kLastName + "], [" + Schema::Player::kID + "]";
  for (const HLDataSrvc::TextRow& row : HLDataSrvc::SelectRows(league.Service(), select)) {
    if (auto player = PlayerByID(league, WholeNumber(row[0].value_or("")).value_or(0)))
      players.push_back(std::move(player));
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
  bool isMended = false;
  SaveRecord(league, "The player", [&](std::string& message) {
    if (id != 0 && values.positionID != 0 && values.teamID != 0 &&
        std::dynamic_pointer_cast<BrokenPlayer>(PlayerByID(league, id))) {
      // The service edits only players that it can load.
      HLDataSrvc::EditRows(league.Service(), SelectPlayer(id),
                           {{Schema::Player::kPositionID, std::to_string(values.positionID)},
                            {Schema::Player::kTeamID, std::to_string(values.teamID)}});
      isMended = true;
    }
    return league.Service().UpdatePlayer(values.lastName, values.firstName, values.positionID, values.teamID,
                                         values.isRetired, id, saved, message);
  });
  if (isMended) league.Service().DiscardCurrentSeasonInfo();  // its draft may have ended at him
  return saved;
}

std::string PlayerText(const IPlayerInfo& player) {
  std::string text = PickableText(FactsOf(dynamic_cast<const HLIData::IPickable&>(player)));
  if (player.IsRetired()) text.insert(text.size() - 1, ", retired");
  return text;
}

}  // namespace HLLeague

#include "bench/Players.h"

#include <array>
#include <random>
#include <stdexcept>

#include "bench/BenchFiles.h"
#include "jet/dao/DBEngine.h"

namespace bench {
namespace {

std::optional<std::int32_t> Number(const jet::Value& value) {
  const auto* number = value.As<std::int32_t>();
  return number == nullptr ? std::nullopt : std::optional<std::int32_t>(*number);
}

std::string Name(std::mt19937& random) {
  static constexpr std::array<const char*, 16> kSyllables{"mar", "ten", "ol", "bra", "dan", "vin",
                                                          "ker", "so",  "li", "quo", "ra",  "hen",
                                                          "ti",  "wes", "el", "mc"};
  std::string name;
  for (auto i = 2 + random() % 3; i > 0; --i)
    name += kSyllables[random() % kSyllables.size()];
  name[0] = static_cast<char>(name[0] - 'a' + 'A');
  return name;
}

}  // namespace

std::vector<Player> LeaguePlayers() {
  const auto database = jet::DBEngine().OpenDatabase(LeagueFile(), false, true, kLeagueConnect);
  std::vector<Player> players;
  for (const auto rows = database->OpenRecordset("select * from [player info]"); !rows->Eof();
       rows->MoveNext()) {
    players.push_back({*Number(rows->Fields("id").Value()), rows->Fields("first name").Value().ToText(),
                       rows->Fields("last name").Value().ToText(),
                       Number(rows->Fields("position id").Value()), Number(rows->Fields("team id").Value()),
                       *rows->Fields("is retired").Value().As<bool>()});
  }
  return players;
}

std::vector<Player> MadeUpPlayers(std::int32_t firstId, std::size_t count) {
  std::mt19937 random(20);
  std::vector<Player> players;
  players.reserve(count);
  for (std::size_t i = 0; i < count; ++i) {
    Player player{
        firstId + static_cast<std::int32_t>(i), Name(random), Name(random), {}, {}, random() % 5 == 0};
    if (random() % 50 != 0) player.positionId = static_cast<std::int32_t>(1 + random() % 8);
    if (random() % 4 != 0) player.teamId = static_cast<std::int32_t>(1 + random() % 32);
    players.push_back(player);
  }
  return players;
}

}  // namespace bench

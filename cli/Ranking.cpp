#include "cli/Ranking.h"

#include <algorithm>
#include <cstddef>

#include "cli/ExitCode.h"
#include "cli/Find.h"
#include "cli/Seasons.h"

namespace cli {
namespace {

bool Contains(const Ranking& ranking, const std::shared_ptr<HLIData::IManagerInfo>& manager) {
  return std::find(ranking.begin(), ranking.end(), manager) != ranking.end();
}

}  // namespace

Ranking RankingOf(const HLIData::ISeasonInfo& season) {
  Ranking ranking = ManagersInOrder(season);
  ranking.erase(std::remove_if(ranking.begin(), ranking.end(), [](const auto& m) { return m->Rank() < 1; }),
                ranking.end());
  return ranking;
}

Ranking WholeRanking(HLIData::ISeasonInfo& season, const std::vector<std::string>& names) {
  Ranking ranking;
  for (const std::string& name : names) {
    const auto manager = FindManager(season, name);
    if (Contains(ranking, manager)) throw Failure(ExitCode::Refused, FullName(*manager) + " is named twice.");
    ranking.push_back(manager);
  }
  std::string missing;
  for (const auto& manager : ManagersInOrder(season)) {
    if (!Contains(ranking, manager)) missing += (missing.empty() ? "" : ", ") + FullName(*manager);
  }
  if (missing.empty()) return ranking;
  throw Failure(ExitCode::Refused, "A ranking names everybody who takes part; missing: " + missing + ".",
                "'manager rank NAME PLACE' moves one of them.");
}

Ranking RankingWithPlace(HLIData::ISeasonInfo& season, const std::string& name, std::int32_t place) {
  const auto manager = FindManager(season, name);
  Ranking ranking = RankingOf(season);
  ranking.erase(std::remove(ranking.begin(), ranking.end(), manager), ranking.end());
  const auto last = static_cast<std::int32_t>(ranking.size()) + 1;
  if (place < 1 || place > last) {
    const std::string others =
        std::to_string(ranking.size()) + (ranking.size() == 1 ? " other is" : " others are");
    throw Failure(ExitCode::Refused, "The place must be from 1 to " + std::to_string(last) + ", not " +
                                         std::to_string(place) + ": " + others + " ranked.");
  }
  ranking.insert(ranking.begin() + (place - 1), manager);
  return ranking;
}

void ApplyRanking(const HLIData::ISeasonInfo& season, const Ranking& ranking) {
  for (const auto& manager : ManagersOf(season))
    manager->Rank(0);
  std::int32_t place = 0;
  for (const auto& manager : ranking)
    manager->Rank(++place);
}

}  // namespace cli

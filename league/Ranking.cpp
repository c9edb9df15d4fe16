#include "HLLeague/Ranking.h"

#include <algorithm>
#include <cstddef>

#include "HLLeague/Failure.h"
#include "HLLeague/Find.h"
#include "HLLeague/Seasons.h"

namespace HLLeague {
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
    if (Contains(ranking, manager))
      throw Failure(FailureKind::Refused, FullName(*manager) + " is named twice.");
    ranking.push_back(manager);
  }
  std::string missing;
  for (const auto& manager : ManagersInOrder(season)) {
    if (!Contains(ranking, manager)) missing += (missing.empty() ? "" : ", ") + FullName(*manager);
  }
  if (missing.empty()) return ranking;
  throw Failure(FailureKind::Refused, "A ranking names everybody who takes part; missing: " + missing + ".",
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
    throw Failure(FailureKind::Refused, "The place must be from 1 to " + std::to_string(last) + ", not " +
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

}  // namespace HLLeague

#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "HLIData/ISeasonInfo.h"

namespace HLLeague {

/// Managers in the order in which they are ranked, or are to be: the first has the rank 1.
using Ranking = std::vector<std::shared_ptr<HLIData::IManagerInfo>>;

/// The ranking of a season as it stands, without those who are not ranked.
Ranking RankingOf(const HLIData::ISeasonInfo& season);

/// The ranking that names all managers of a season, from the first to the last. Raises Failure for a manager
/// who is named twice or not at all.
Ranking WholeRanking(HLIData::ISeasonInfo& season, const std::vector<std::string>& names);

/// The ranking with one manager moved to a place, or put there; those from that place on move down. Raises
/// Failure for a place below 1 or beyond the next free one.
Ranking RankingWithPlace(HLIData::ISeasonInfo& season, const std::string& name, std::int32_t place);

/// Gives the managers the ranks of their places, and everybody else of the season none.
void ApplyRanking(const HLIData::ISeasonInfo& season, const Ranking& ranking);

}  // namespace HLLeague

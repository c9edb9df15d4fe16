#pragma once

#include "HLLeague/League.h"
#include "HLLeague/Picks.h"

namespace HLLeague {

/// Stores the wanted picks of the current season, as one transaction. `stored` are the picks of its rows. The
/// season in memory must hold `wanted`, with every pick that differs marked changed and no empty pick marked.
/// `isWhole`: all stored rows fit the season; two picks must not hold the same then.
///
/// The service's SaveDrafts writes picks of the season in memory to which another player or team was given.
/// It leaves the row of a pick that was emptied, leaves the old player in the row of a pick that a team took,
/// and does not notice that a pick has changed its manager. The rows of such picks are deleted first.
///
/// Raises Failure, and stores nothing, for picks that cannot be written and when writing fails.
void SaveDraft(League& league, const HLIData::ISeasonInfo& season, const Picks& stored, const Picks& wanted,
               bool isWhole);

}  // namespace HLLeague

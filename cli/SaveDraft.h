#pragma once

#include "cli/League.h"
#include "cli/Picks.h"

namespace cli {

/// Stores the wanted picks of the current season, as one transaction. `stored` are the picks of its rows; the
/// season in memory holds the wanted picks and marks those changed that differ, none of them empty.
///
/// The service's SaveDrafts writes picks of the season in memory to which another player or team was given.
/// It leaves the row of a pick that was emptied, leaves the old player in the row of a pick that a team took,
/// and does not notice that a pick has changed its manager. Where a row would have to go or to lose
/// something, the draft is therefore deleted and written whole.
///
/// Raises Failure, and stores nothing, for picks that cannot be written and when writing fails.
void SaveDraft(League& league, const Picks& stored, const Picks& wanted);

}  // namespace cli

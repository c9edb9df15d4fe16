#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "HLLeague/DraftSession.h"
#include "HLLeague/Pickables.h"

namespace HLLeague {

// The changes of a draft. They stay unsaved until DraftSession::Save, unless said otherwise. All raise
// Failure, and change nothing, when the draft or the season is locked; picks that do not fit the season can
// be changed by their numbers though the draft is locked.

/// A pick that was changed.
struct ChangedPick {
  std::int32_t number = 0;
  Pick before;
  Pick now;
};

/// A pick to make.
struct WantedPick {
  PickableWords words;                 ///< who is picked
  std::optional<std::int32_t> number;  ///< the pick to fill, empty or not; without one, the first empty one
  std::string manager;                 ///< who picks; empty: the manager whose turn it is
};

/// Gives a player or team to a manager. Raises Failure when the order of the draft is not settled, when the
/// words fit no or several players, for a player who is picked already and, without a number, for a draft
/// that is complete or has stored picks that do not fit.
ChangedPick FillPick(DraftSession& session, const WantedPick& wanted);

/// Takes the last change back or, when nothing was changed since the draft was loaded, empties the last pick
/// that is filled. Raises Failure for an empty draft, and for one with stored picks that do not fit.
std::vector<ChangedPick> UndoLast(DraftSession& session);

/// Empties picks, given by their numbers in rising order. Raises Failure for one that is empty already.
std::vector<ChangedPick> EmptyPicks(DraftSession& session, const std::vector<std::int32_t>& numbers);

/// Deletes the stored picks whose numbers lie outside the draft, at once; returns these numbers. `numbers`:
/// only these; empty: all. Raises Failure when other changes are not saved yet.
std::vector<std::int32_t> DeletePicksOutside(DraftSession& session, const std::vector<std::int32_t>& numbers);

/// The numbers of the picks that are filled.
std::vector<std::int32_t> FilledPicks(const Picks& picks);

/// Raises Failure when the draft cannot be changed or, with numbers, these picks cannot.
void RequirePicksUnlocked(DraftSession& session, const std::vector<std::int32_t>& numbers);

}  // namespace HLLeague

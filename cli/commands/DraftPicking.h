#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "HLLeague/Pickables.h"
#include "cli/commands/Context.h"

namespace cli {

// The commands that change the draft. In a shell the change waits for `draft save`, else it is saved at once.
// All raise Failure, and change nothing, when the draft or the season is locked.

struct DraftPickOptions {
  std::vector<std::string> who;
  HLLeague::PickableWords words;
  std::optional<std::int32_t> pick;  ///< the pick to fill, empty or not; without one that which is due
  std::string manager;               ///< who picks, if not the manager whose turn it is
};

/// `draft pick`: gives a player or team to the manager whose turn it is.
void DraftPick(Context& context, const DraftPickOptions& options);

/// `draft undo`: empties pick `number`; without one takes the last step back or, with none taken since the
/// league was opened, empties the last pick that is filled.
void DraftUndo(Context& context, const std::optional<std::int32_t>& number);

/// `draft clear`: empties the picks; without any all of them, which has to be confirmed by `isSure` or by
/// the user at the terminal.
void DraftClear(Context& context, const std::vector<std::int32_t>& numbers, bool isSure);

/// `draft save`.
void DraftSave(Context& context);

/// `draft revert`: drops what is not saved.
void DraftRevert(Context& context);

}  // namespace cli

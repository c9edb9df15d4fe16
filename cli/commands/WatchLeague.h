#pragma once

#include <functional>
#include <string>

#include "cli/commands/Context.h"

namespace cli {

/// Shows `text(league)`, and again whenever the league's file has changed, until the program is interrupted.
/// The file is open for moments only, and only after it has changed: a drafter opens it for himself alone.
/// While he has it, what was shown last stays, with a note. Raises what opening the league raises for another
/// reason than that it is in use, and what `text` raises.
[[noreturn]] void WatchLeague(Context& context, const std::function<std::string(HLLeague::League&)>& text);

}  // namespace cli

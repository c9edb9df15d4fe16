#pragma once

#include <string>
#include <vector>

#include "storage/LeagueCheck.h"

namespace cli {

/// The commands, in order, that mend what a finding reports; words in capitals are placeholders. Empty if no
/// command mends it.
std::vector<std::string> MendingCommands(const HLDataSrvc::LeagueFinding& finding);

}  // namespace cli

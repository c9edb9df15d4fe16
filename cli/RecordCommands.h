#pragma once

#include "cli/Command.h"

namespace cli {

// Each adds `add`, `edit` and `delete` of the league's master records to a command that has been there
// before.

void AddManagerRecordCommands(Command& manager);
void AddPrizeRecordCommands(Command& prize);
void AddPositionRecordCommands(Command& position);

}  // namespace cli

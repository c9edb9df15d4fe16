#pragma once

#include "cli/commands/Command.h"

namespace cli {

// Each adds one command to the program. Its help and docs/commands.md describe what a command does.

void AddCreateCommand(Command& app);
void AddInfoCommand(Command& app);
void AddSettingsCommand(Command& app);
void AddSeasonCommand(Command& app);
void AddManagerCommand(Command& app);
void AddPrizeCommand(Command& app);
void AddDraftCommand(Command& app);
void AddWinningCommand(Command& app);
void AddMoneyCommand(Command& app);
void AddHistoryCommand(Command& app);
void AddPlayerCommand(Command& app);
void AddPositionCommand(Command& app);
void AddTeamCommand(Command& app);
void AddImportCommand(Command& app);
void AddExportCommand(Command& app);
void AddSearchCommand(Command& app);
void AddShellCommand(Command& app);
void AddBackupCommand(Command& app);
void AddRestoreCommand(Command& app);
void AddCompactCommand(Command& app);
void AddTablesCommand(Command& app);
void AddDumpCommand(Command& app);
void AddQueryCommand(Command& app);
void AddCheckCommand(Command& app);
void AddCompletionCommand(Command& app);

}  // namespace cli

#pragma once

#include <CLI/CLI.hpp>

#include "cli/Context.h"

namespace cli {

// Each adds one command to the program. What a command does is told by its help and in docs/commands.md.

void AddCreateCommand(CLI::App& app, Context& context);
void AddInfoCommand(CLI::App& app, Context& context);
void AddSettingsCommand(CLI::App& app, Context& context);
void AddSeasonCommand(CLI::App& app, Context& context);
void AddManagerCommand(CLI::App& app, Context& context);
void AddPrizeCommand(CLI::App& app, Context& context);
void AddDraftCommand(CLI::App& app, Context& context);
void AddWinningCommand(CLI::App& app, Context& context);
void AddMoneyCommand(CLI::App& app, Context& context);
void AddHistoryCommand(CLI::App& app, Context& context);
void AddPositionCommand(CLI::App& app, Context& context);
void AddTeamCommand(CLI::App& app, Context& context);
void AddShellCommand(CLI::App& app, Context& context);
void AddTablesCommand(CLI::App& app, Context& context);
void AddDumpCommand(CLI::App& app, Context& context);
void AddQueryCommand(CLI::App& app, Context& context);
void AddCheckCommand(CLI::App& app, Context& context);

}  // namespace cli

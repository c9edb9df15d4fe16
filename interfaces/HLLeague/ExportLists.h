#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <variant>
#include <vector>

#include "HLLeague/DraftSession.h"

namespace HLLeague {

/// What stands in a list at one place; nothing for what is not known. Sums beyond 32 bits are doubles, which
/// are exact up to 53.
using ExportCell = std::variant<std::monostate, bool, std::int32_t, double, std::string>;

/// A list of the league, to be written in any format.
struct ExportList {
  std::string title;  ///< "Winnings 2021"
  std::vector<std::string> columns;
  std::vector<std::vector<ExportCell>> rows;  ///< as many cells in each as there are columns
  std::string missing = {};                   ///< which records could not be loaded; empty when all were
};

/// The names of the lists, as users write them: "players", "season-managers".
std::vector<std::string> ExportListNames();

/// Whether a list is of one season, not of the league.
bool IsOfSeason(const std::string& name);

/// A list by one of those names; of a season's list that of the year, else of the current season. Raises
/// Failure when the season is ambiguous, or the records cannot be read.
ExportList MakeExportList(DraftSession& draft, const std::string& name,
                          const std::optional<std::int32_t>& year);

}  // namespace HLLeague

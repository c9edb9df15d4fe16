#pragma once

#include <cstdint>

namespace HLIData {

// The codes that cross the interfaces. Their widths and values are fixed; every 32-bit value is a legal
// argument, and each operation says what it does with one that has no name here.

/// Which of the league's database files to work on.
enum class DBType : std::int32_t { Live = 1, Test = 2, Blank = 3, Backup = 4, Setup = 5 };

/// What stands behind an IPickable.
enum class PickType : std::int32_t {
  None = 0,
  Player = 1,
  Team = 2,
  ManagerTmpl = 3,
  PrizeTmpl = 4,
  Position = 5
};

/// What IDataService::Search looks through.
enum class SearchType : std::int32_t { PlayersAndTeams = 1, Managers = 2, Prizes = 3, Positions = 4 };

/// Which kind of master record IDataService::Delete removes.
enum class DeleteType : std::int32_t { Player = 1, Manager = 2, Prize = 3, Position = 4 };

/// What the next IDataService::SaveWinnings does with a changed winning; anything but Add and Delete writes
/// nothing.
enum class WinningAction : std::int32_t { None = 0, Add = 1, Delete = 2 };

}  // namespace HLIData

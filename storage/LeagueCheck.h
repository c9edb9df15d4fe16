#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "jet/Check.h"

namespace jet {
class Database;
}

/// The league's own rules, which the file's format does not enforce: rows that do not fit their season, ids
/// that lead nowhere, settings without a season. Such rows can be stored; loading them fails or shows less.
namespace HLDataSrvc {

/// What is wrong with a row.
enum class Misfit {
  NoTable,
  WrongColumn,  ///< missing, or of a type that the league cannot read
  NumberTooLarge,
  RepeatedRow,  ///< equal in every column to another row
  RepeatedKey,  ///< the key of another, different row
  NoID,         ///< Null or below 1

  NoSettings,
  UnreadSettings,   ///< a row of settings that is never read
  NoCurrentSeason,  ///< the settings lead to no season

  NegativeNumber,
  TooManyPicks,
  SameYear,
  WeeksDiffer,  ///< more regular weeks than weeks
  TooManyManagers,
  SameRank,

  UnknownSeason,
  UnknownManager,
  UnknownPlayer,
  UnknownTeam,
  UnknownPosition,
  UnknownPrize,
  UnknownPrizeType,

  OutsideDraft,
  NotTakingPart,
  PickedTwice,
  TwoInOnePick,  ///< a player and a team
  PickWithoutManager,
  EmptyPick,  ///< neither manager nor player nor team
  LatePicks,  ///< the first picks are missing, as after half a deletion
  NoAmount,
  NotPutUp,  ///< a prize is won that the season does not offer
  OutsideWeeks,
};

/// True for what the league's own operations bring about and load as it was: worth knowing, but no rule is
/// broken. (A pick that changed from a player to a team, first picks that are empty, a league without
/// settings.)
bool IsRemark(Misfit misfit);

/// The name of a misfit for programs, in lower case: "picked twice".
const char* NameOf(Misfit misfit);

/// A change with which a misfit has one right answer.
struct LeagueRepair {
  std::string text;  ///< the change as a sentence, in the past tense
  std::function<void(jet::Database&)> carryOut;
};

/// A row, or several of one kind, that break a rule.
struct LeagueFinding {
  Misfit misfit;
  std::string text;           ///< a sentence that names table, row, season, pick or manager
  std::string table;          ///< where the row is
  std::int32_t seasonID = 0;  ///< the season of the row, if [season info] has it
  /// The pick of a row of [draft info]; the prize of one of [money distribution info] or not put up;
  /// otherwise the id of the row.
  std::int32_t number = 0;
  std::int32_t managerID = 0;  ///< NotTakingPart: the manager, if the season has room for another one
  std::optional<LeagueRepair> repair{};
};

/// True if the file has most of the league's tables, so that the rules apply to it.
bool IsLeague(const jet::Database& database);

/// Finds all rows that break a rule, table by table. Without all tables and columns it reports only what is
/// missing. Raises jet::Error for rows that cannot be read.
std::vector<LeagueFinding> CheckLeague(jet::Database& database);

/// What a repair has done.
struct RepairedLeague {
  std::vector<std::string> damage;   ///< findings of the engine; with any, nothing else was done
  std::vector<std::string> repairs;  ///< the changes; with none, no backup was made
  std::vector<LeagueFinding> left;   ///< what is still wrong
};

/// Carries out all repairs of a league in one transaction, those that earlier ones bring about included.
/// Raises jet::Error, and then nothing is changed.
RepairedLeague RepairLeague(jet::Database& database);

/// The same for a league file, after a copy of it was made as `backup`. The file must not be open elsewhere.
/// Raises jet::Error: what opening, BackUpLeague() and RepairLeague() raise.
RepairedLeague RepairLeagueFile(const std::string& path, const std::string& backup);

}  // namespace HLDataSrvc

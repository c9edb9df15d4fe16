#pragma once

#include <cstdint>

namespace jet {
class Database;
}

/// The league's tables: their names and those of their columns, as statements, which put them in square
/// brackets, and field look-ups use them; and how a new file's tables are made.
namespace HLDataSrvc::Schema {

/// The one row of settings.
namespace Settings {
inline constexpr char kTable[] = "settings";
inline constexpr char kID[] = "id";
inline constexpr char kCurrentSeasonID[] = "current season id";
}  // namespace Settings

/// One row per season.
namespace Season {
inline constexpr char kTable[] = "season info";
inline constexpr char kID[] = "id";
inline constexpr char kYear[] = "season year";
inline constexpr char kNoOfPlayers[] = "no of players";
inline constexpr char kNoOfRounds[] = "no of rounds";
inline constexpr char kMoneyContribution[] = "money contribution";
inline constexpr char kNoOfRegularWeeks[] = "no of regular weeks";
inline constexpr char kTotalNoOfWeeks[] = "total no of weeks";
inline constexpr char kIsRankingLocked[] = "is ranking locked";
inline constexpr char kIsSeasonLocked[] = "is season locked";
inline constexpr char kIsDraftLocked[] = "is draft locked";
inline constexpr char kHasSeasonStarted[] = "has season started";
}  // namespace Season

/// Managers taking part in a season; key: season and manager.
namespace Playing {
inline constexpr char kTable[] = "playing info";
inline constexpr char kSeasonID[] = "season id";
inline constexpr char kManagerID[] = "manager id";
inline constexpr char kFeePaid[] = "fee paid";
inline constexpr char kRanking[] = "ranking";
}  // namespace Playing

/// Master records of managers.
namespace Manager {
inline constexpr char kTable[] = "manager info";
inline constexpr char kID[] = "id";
inline constexpr char kFirstName[] = "first name";
inline constexpr char kLastName[] = "last name";
}  // namespace Manager

/// Master records of players.
namespace Player {
inline constexpr char kTable[] = "player info";
inline constexpr char kID[] = "id";
inline constexpr char kFirstName[] = "first name";
inline constexpr char kLastName[] = "last name";
inline constexpr char kPositionID[] = "position id";
inline constexpr char kTeamID[] = "team id";
inline constexpr char kIsRetired[] = "is retired";
}  // namespace Player

/// Teams, which can be drafted themselves.
namespace Team {
inline constexpr char kTable[] = "team info";
inline constexpr char kID[] = "id";
inline constexpr char kAbbr[] = "abbr";
inline constexpr char kName[] = "name";
inline constexpr char kNickname[] = "nickname";
inline constexpr char kPositionID[] = "position id";
}  // namespace Team

/// Playing positions.
namespace Position {
inline constexpr char kTable[] = "position info";
inline constexpr char kID[] = "id";
inline constexpr char kAbbr[] = "abbr";
inline constexpr char kDesc[] = "desc";
}  // namespace Position

/// Master records of prizes.
namespace Prize {
inline constexpr char kTable[] = "prize info";
inline constexpr char kID[] = "id";
inline constexpr char kDesc[] = "desc";
inline constexpr char kTypeID[] = "type id";
}  // namespace Prize

/// Kinds of prize. This table's key is not called "id".
namespace PrizeType {
inline constexpr char kTable[] = "prize type info";
inline constexpr char kTypeID[] = "type id";
inline constexpr char kTypeName[] = "type name";
}  // namespace PrizeType

/// The prizes put up in a season and their amounts.
namespace MoneyDistribution {
inline constexpr char kTable[] = "money distribution info";
inline constexpr char kSeasonID[] = "season id";
inline constexpr char kPrizeID[] = "prize id";
inline constexpr char kMoney[] = "money";
}  // namespace MoneyDistribution

/// Draft picks; key: season and pick number.
namespace Draft {
/// Picks that a season may have, managers times rounds. A season with more is loaded with an empty draft.
inline constexpr std::int32_t kMostPicks = 10000;
inline constexpr char kTable[] = "draft info";
inline constexpr char kSeasonID[] = "season id";
inline constexpr char kDraftNo[] = "draft no";
inline constexpr char kManagerID[] = "manager id";
inline constexpr char kPlayerID[] = "player id";
inline constexpr char kTeamID[] = "team id";
}  // namespace Draft

/// Prizes won.
namespace Winning {
inline constexpr char kTable[] = "winning info";
inline constexpr char kID[] = "id";
inline constexpr char kSeasonID[] = "season id";
inline constexpr char kPrizeID[] = "prize id";
inline constexpr char kManagerID[] = "manager id";
inline constexpr char kWeek[] = "week #";
}  // namespace Winning

/// Creates all tables in an empty database, with their columns, keys and defaults, and the relationships that
/// are enforced. Raises jet::Error.
void CreateTables(jet::Database& database);

}  // namespace HLDataSrvc::Schema

#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <istream>
#include <map>
#include <string>
#include <tuple>
#include <vector>

#include "HLLeague/NameIndex.h"
#include "HLLeague/Players.h"
#include "storage/CsvReader.h"

namespace HLLeague {

/// Takes players from a CSV file into a league.
///
/// All lines are checked before the first is applied, which makes dry runs possible. A line with an id
/// changes the player of that id; "new" as the id adds one. Without an id the name and, if the line has one,
/// the position identify the player; an unknown name adds a player. A field that is left out, or has nothing
/// in it, leaves a player as he is. What cannot be decided is refused, and so is a line about a player whom
/// an earlier one is about.
class PlayerImport {
 public:
  enum class Kind { Add, Change, Same };

  /// What becomes of a line.
  struct Line {
    std::size_t number = 0;  ///< of the file, from 1
    Kind kind = Kind::Add;
    std::int32_t id = 0;  ///< of the player; 0 for one who is to be added
    PlayerValues values;
    std::string text;  ///< for people: "adds Ann Lee (DAL, QB)"
  };
  struct Refusal {
    std::size_t number = 0;
    std::string reason;
  };

  explicit PlayerImport(League& league);

  /// Looks at all lines. Raises Failure for a first line that does not name the columns.
  void Read(std::istream& in, const std::string& file);
  /// Adds and changes the players as one transaction; `advance` is called for each. Raises Failure when one
  /// of them cannot be saved, and then none is.
  void Apply(const std::function<void()>& advance);

  const std::vector<Line>& Lines() const { return m_lines; }
  const std::vector<Refusal>& Refused() const { return m_refused; }
  std::size_t CountOf(Kind kind) const;

 private:
  enum class Column { ID, FirstName, LastName, Position, Team, IsRetired };
  using Fields = std::map<Column, std::string>;
  using Key = std::tuple<std::string, std::string, std::int32_t>;  // names in small letters, position

  void ReadHeader(HLDataSrvc::CsvReader& reader, const std::string& file);
  Fields FieldsOf(const std::vector<std::string>& record) const;
  void TakeLine(std::size_t number, const Fields& fields);
  PlayerValues Merged(const Fields& fields, PlayerValues values) const;
  /// The id of the player whom a line is about; 0 for a new one.
  std::int32_t WhoIsMeant(const Fields& fields) const;
  std::int32_t ByNameAndPosition(const PlayerValues& wanted, bool hasTeam) const;
  void RequireComplete(const PlayerValues& values) const;
  std::string TextOf(const PlayerValues& values) const;
  std::string ChangesText(const PlayerValues& before, const PlayerValues& now) const;

  League& m_league;
  NameIndex m_positions;
  NameIndex m_teams;
  std::map<std::int32_t, PlayerValues> m_players;  ///< as they are stored
  std::map<Key, std::vector<std::int32_t>> m_byKey;
  std::vector<Column> m_columns;
  std::map<std::int32_t, std::size_t> m_lineOfPlayer;
  std::map<std::tuple<std::string, std::string, std::int32_t, std::int32_t>, std::size_t> m_lineOfNew;
  std::vector<Line> m_lines;
  std::vector<Refusal> m_refused;
};

}  // namespace HLLeague

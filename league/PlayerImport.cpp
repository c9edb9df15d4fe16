#include "HLLeague/PlayerImport.h"

#include <algorithm>
#include <optional>

#include "HLLeague/Failure.h"
#include "HLLeague/Find.h"
#include "jet/Text.h"
#include "league/Nearest.h"
#include "league/Numbers.h"
#include "league/Utf8.h"

namespace HLLeague {
namespace {

using HLDataSrvc::CsvError;

constexpr const char* kBlanks = " \t";

[[noreturn]] void Refuse(const std::string& reason) {
  throw Failure(FailureKind::Refused, reason);
}

bool YesOrNo(const std::string& text) {
  if (const auto flag = HLDataSrvc::CsvYesNo(text)) return *flag;
  Refuse("The column 'is retired' takes yes or no, not '" + text + "'.");
}

std::string WithID(std::int32_t id) {
  return "P" + std::to_string(id);
}

}  // namespace

PlayerImport::PlayerImport(League& league)
    : m_league(league), m_positions(PositionNames(league)), m_teams(TeamNames(league)) {
  for (const auto& player : AllPlayers(league)) {
    const PlayerValues values = ValuesOf(*player);
    m_players[player->ID()] = values;
    m_byKey[{LowerCase(values.firstName), LowerCase(values.lastName), values.positionID}].push_back(
        player->ID());
  }
}

std::size_t PlayerImport::CountOf(Kind kind) const {
  return static_cast<std::size_t>(
      std::count_if(m_lines.begin(), m_lines.end(), [kind](const Line& line) { return line.kind == kind; }));
}

void PlayerImport::Read(std::istream& in, const std::string& file) {
  HLDataSrvc::CsvReader reader(in, file);
  ReadHeader(reader, file);
  std::vector<std::string> record;
  for (bool isMore = true; isMore;) {
    try {
      isMore = reader.Next(record);
      if (isMore) TakeLine(reader.Line(), FieldsOf(record));
    } catch (const CsvError& error) {
      m_refused.push_back({error.Line(), error.Reason()});
      reader.SkipLine();
    } catch (const Failure& failure) {
      std::string reason = failure.what();
      if (!failure.Hint().empty()) reason += " " + failure.Hint();
      std::replace(reason.begin(), reason.end(), '\n', ' ');
      m_refused.push_back({reader.Line(), reason});
    }
  }
}

void PlayerImport::ReadHeader(HLDataSrvc::CsvReader& reader, const std::string& file) {
  static const std::map<std::string, Column> kColumns = {{"id", Column::ID},
                                                         {"firstname", Column::FirstName},
                                                         {"first", Column::FirstName},
                                                         {"lastname", Column::LastName},
                                                         {"last", Column::LastName},
                                                         {"position", Column::Position},
                                                         {"positionid", Column::Position},
                                                         {"team", Column::Team},
                                                         {"teamid", Column::Team},
                                                         {"isretired", Column::IsRetired},
                                                         {"retired", Column::IsRetired}};
  const std::vector<std::string> names = {"id", "first name", "last name", "position", "team", "is retired"};
  const std::string known = "The columns are id, first name, last name, position, team and is retired.";
  const auto refuse = [&](const std::string& reason, const std::string& hint) {
    throw Failure(FailureKind::Refused, file + ", line " + std::to_string(reader.Line()) + ": " + reason,
                  hint);
  };
  std::vector<std::string> header;
  try {
    if (!reader.Next(header)) refuse("The line with the names of the columns is missing.", known);
  } catch (const CsvError& error) {
    throw Failure(FailureKind::Refused, error.what());
  }
  for (const std::string& name : header) {
    const auto column = kColumns.find(HLDataSrvc::CsvColumnWord(name));
    if (column == kColumns.end()) {
      const std::string nearest = NearestOf(std::string(jet::Trim(name, kBlanks)), names);
      const bool isList = name.find_first_of(";\t") != std::string::npos;
      refuse("There is no column '" + Printable(name) + "'.", isList ? "Fields are separated by commas."
                                                              : nearest.empty()
                                                                  ? known
                                                                  : "Did you mean '" + nearest + "'?");
    }
    if (std::find(m_columns.begin(), m_columns.end(), column->second) != m_columns.end())
      refuse("The column '" + Printable(name) + "' is named twice.", "");
    m_columns.push_back(column->second);
  }
  const auto has = [&](Column column) {
    return std::find(m_columns.begin(), m_columns.end(), column) != m_columns.end();
  };
  if (has(Column::ID)) return;
  if (!has(Column::FirstName) || !has(Column::LastName))
    refuse("The columns 'first name' and 'last name', or 'id', are missing.", known);
}

PlayerImport::Fields PlayerImport::FieldsOf(const std::vector<std::string>& record) const {
  if (record.size() != m_columns.size()) {
    Refuse("The line has " + HLLeague::CountOf(static_cast<std::int64_t>(record.size()), "field") +
           " where the first line names " + std::to_string(m_columns.size()) + ".");
  }
  Fields fields;
  for (std::size_t i = 0; i < record.size(); ++i) {
    std::string field(jet::Trim(record[i], kBlanks));
    if (!field.empty()) fields[m_columns[i]] = std::move(field);
  }
  return fields;
}

void PlayerImport::TakeLine(std::size_t number, const Fields& fields) {
  Line line;
  line.number = number;
  line.id = WhoIsMeant(fields);
  const auto known = m_players.find(line.id);
  const PlayerValues before = known == m_players.end() ? PlayerValues() : known->second;
  line.values = Merged(fields, before);
  RequireNamesFit(m_league, line.values);
  if (line.id == 0) {
    RequireComplete(line.values);
    const PlayerValues& values = line.values;
    const auto [earlier, isNew] = m_lineOfNew.try_emplace(
        {LowerCase(values.firstName), LowerCase(values.lastName), values.positionID, values.teamID}, number);
    if (!isNew) Refuse("It is the same player as on line " + std::to_string(earlier->second) + ".");
    line.text = "adds " + TextOf(values);
  } else {
    line.kind = line.values == before ? Kind::Same : Kind::Change;
    if (line.kind == Kind::Change) RequireComplete(line.values);
    const auto [earlier, isNew] = m_lineOfPlayer.try_emplace(line.id, number);
    if (!isNew) {
      Refuse("It is about the same player as line " + std::to_string(earlier->second) + ": " +
             WithID(line.id) + ", " + TextOf(before) + ".");
    }
    line.text = line.kind == Kind::Same ? "leaves " + WithID(line.id) + ", " + TextOf(before) + ", as he is"
                                        : "changes " + WithID(line.id) + ", " + TextOf(before) + ": " +
                                              ChangesText(before, line.values);
  }
  m_lines.push_back(std::move(line));
}

PlayerValues PlayerImport::Merged(const Fields& fields, PlayerValues values) const {
  for (const auto& [column, text] : fields) {
    switch (column) {
      case Column::ID:
        break;
      case Column::FirstName:
        values.firstName = text;
        break;
      case Column::LastName:
        values.lastName = text;
        break;
      case Column::Position:
        values.positionID = m_positions.IDOf(text);
        break;
      case Column::Team:
        values.teamID = m_teams.IDOf(text);
        break;
      case Column::IsRetired:
        values.isRetired = YesOrNo(text);
        break;
    }
  }
  return values;
}

std::int32_t PlayerImport::WhoIsMeant(const Fields& fields) const {
  if (const auto id = fields.find(Column::ID); id != fields.end()) {
    if (LowerCase(id->second) == "new") return 0;
    const auto number = PlayerIDIn(id->second);
    if (!number) Refuse("The column 'id' takes an id or 'new', not '" + Printable(id->second) + "'.");
    if (m_players.contains(*number)) return *number;
    Refuse("There is no player with the id " + std::to_string(*number) +
           ". A new one has no id, or 'new', and is given the next.");
  }
  return ByNameAndPosition(Merged(fields, PlayerValues()), fields.contains(Column::Team));
}

std::int32_t PlayerImport::ByNameAndPosition(const PlayerValues& wanted, bool hasTeam) const {
  const std::string first = LowerCase(wanted.firstName);
  const std::string last = LowerCase(wanted.lastName);
  std::vector<std::int32_t> namesakes;
  std::vector<std::int32_t> meant;  // of them, those at the position, if the line has one
  for (auto at = m_byKey.lower_bound(Key(first, last, INT32_MIN)); at != m_byKey.end(); ++at) {
    const auto& [itsFirst, itsLast, itsPosition] = at->first;
    if (itsFirst != first || itsLast != last) break;
    namesakes.insert(namesakes.end(), at->second.begin(), at->second.end());
    if (wanted.positionID == 0 || wanted.positionID == itsPosition)
      meant.insert(meant.end(), at->second.begin(), at->second.end());
  }
  if (namesakes.empty()) return 0;
  if (meant.size() > 1 && hasTeam) {
    const auto isElsewhere = [&](std::int32_t id) { return m_players.at(id).teamID != wanted.teamID; };
    if (std::count_if(meant.begin(), meant.end(), isElsewhere) + 1 == std::ssize(meant))
      meant.erase(std::remove_if(meant.begin(), meant.end(), isElsewhere), meant.end());
  }
  if (meant.size() > 1) {
    std::string list;
    for (const std::int32_t id : meant)
      list += (list.empty() ? "" : ", ") + WithID(id);
    Refuse("More than one player may be meant: " + list + ". The id says which, or 'new'.");
  }
  // Another position or a comeback: the same player, or a namesake? A guess could overwrite the wrong one.
  const std::int32_t id = meant.empty() ? namesakes.front() : meant.front();
  const PlayerValues& player = m_players.at(id);
  if (meant.empty() || (player.isRetired && !wanted.isRetired)) {
    Refuse("There is " + WithID(id) + ", " + TextOf(player) + ". With " + WithID(id) +
           " as the id he is changed, with 'new' a player is added.");
  }
  return id;
}

void PlayerImport::RequireComplete(const PlayerValues& values) const {
  if (!values.firstName.empty() && !values.lastName.empty() && values.positionID != 0 && values.teamID != 0)
    return;
  // The service says what is missing first, and does nothing.
  std::int32_t id = 0;
  std::shared_ptr<HLIData::IPlayerInfo> none;
  std::string message;
  m_league.Service().UpdatePlayer(values.lastName, values.firstName, values.positionID, values.teamID,
                                  values.isRetired, id, none, message);
  Refuse(message);
}

void PlayerImport::Apply(const std::function<void()>& advance) {
  m_league.Transact("The players could not be saved.", [&] {
    for (Line& line : m_lines) {
      if (line.kind != Kind::Same) {
        try {
          line.id = SavePlayer(m_league, line.values, line.id)->ID();
        } catch (const Failure& failure) {
          throw Failure(failure.Kind(), "Line " + std::to_string(line.number) + ": " + failure.what(),
                        failure.Hint());
        }
      }
      advance();
    }
  });
}

std::string PlayerImport::TextOf(const PlayerValues& values) const {
  std::string text = Printable(FullName(values.firstName, values.lastName)) + " (";
  text += values.teamID == 0 ? "-" : m_teams.NameOf(values.teamID);
  text += ", " + (values.positionID == 0 ? std::string("-") : m_positions.NameOf(values.positionID));
  return text + (values.isRetired ? ", retired)" : ")");
}

std::string PlayerImport::ChangesText(const PlayerValues& before, const PlayerValues& now) const {
  std::string text;
  const auto add = [&text](const std::string& what) { text += (text.empty() ? "" : ", ") + what; };
  if (before.firstName != now.firstName || before.lastName != now.lastName)
    add("is called " + Printable(FullName(now.firstName, now.lastName)));
  if (before.positionID != now.positionID) add("plays " + m_positions.NameOf(now.positionID));
  if (before.teamID != now.teamID) add("is in team " + m_teams.NameOf(now.teamID));
  if (before.isRetired != now.isRetired) add(now.isRetired ? "is retired" : "is not retired");
  return text;
}

}  // namespace HLLeague

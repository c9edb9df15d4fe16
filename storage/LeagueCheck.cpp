#include "storage/LeagueCheck.h"

#include <algorithm>
#include <array>
#include <map>
#include <memory>
#include <set>
#include <stdexcept>
#include <tuple>
#include <utility>

#include "jet/TableSpec.h"
#include "jet/Value.h"
#include "jet/dao/DBEngine.h"
#include "jet/dao/Database.h"
#include "jet/dao/Recordset.h"
#include "jet/dao/Transaction.h"
#include "storage/HLServiceUtils.h"
#include "storage/LeagueBackup.h"
#include "storage/LeagueTables.h"
#include "storage/Schema.h"

namespace HLDataSrvc {
namespace {

namespace S = Schema;
using LeagueTables::Number;
using LeagueTables::Row;
using LeagueTables::Table;
using LeagueTables::Where;

std::string InBrackets(const std::string& name) {
  return "[" + name + "]";
}

std::string CountOf(std::size_t count, const std::string& what) {
  return std::to_string(count) + " " + what + (count == 1 ? "" : "s");
}

std::string NumberText(const Number& number) {
  return number ? std::to_string(*number) : "Null";
}

std::string NotIn(const char* table) {
  return std::string(" is not in ") + InBrackets(table) + ".";
}

bool Fits(jet::ColumnType type, LeagueTables::Use use) {
  using enum jet::ColumnType;
  const bool isWhole = type == Byte || type == Integer || type == Long;
  switch (use) {
    case LeagueTables::Use::ID:
      return isWhole;
    case LeagueTables::Use::Number:
      return isWhole || type == Currency || type == Single || type == Double || type == Decimal;
    case LeagueTables::Use::YesNo:
      return type == YesNo;
    case LeagueTables::Use::Text:
      return type == Text || type == Memo;
  }
  return false;
}

const char* NameOf(LeagueTables::Use use) {
  switch (use) {
    case LeagueTables::Use::ID:
      return "whole numbers";
    case LeagueTables::Use::Number:
      return "numbers";
    case LeagueTables::Use::YesNo:
      return "yes or no";
    case LeagueTables::Use::Text:
      break;
  }
  return "text";
}

bool IsSameName(const std::string& a, const std::string& b) {
  const auto lower = [](char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c; };
  return std::equal(a.begin(), a.end(), b.begin(), b.end(),
                    [&](char x, char y) { return lower(x) == lower(y); });
}

const jet::TableInfo* FindTable(const std::vector<jet::TableInfo>& tables, const std::string& name) {
  const auto found = std::find_if(tables.begin(), tables.end(),
                                  [&](const jet::TableInfo& table) { return IsSameName(table.name, name); });
  return found == tables.end() ? nullptr : &*found;
}

const jet::ColumnSpec* FindColumn(const jet::TableInfo& table, const std::string& name) {
  const auto found =
      std::find_if(table.columns.begin(), table.columns.end(),
                   [&](const jet::ColumnSpec& column) { return IsSameName(column.name, name); });
  return found == table.columns.end() ? nullptr : &*found;
}

/// Assigns a column in all rows that have these numbers. Raises std::logic_error if there are none.
void SetColumn(jet::Database& database, const Table& table, const Row& row, const char* column,
               const jet::Value& value) {
  const auto rows =
      database.OpenRecordset("select * from " + InBrackets(table.name) + " where " + Where(table, row));
  if (rows->Eof()) throw std::logic_error("No row of " + InBrackets(table.name) + " was left to repair.");
  for (; !rows->Eof(); rows->MoveNext()) {
    rows->Edit();
    rows->Fields(column).Value(value);
    rows->Update();
  }
  rows->Close();
}

void DeleteRows(jet::Database& database, const Table& table, const Row& row) {
  const auto rows =
      database.OpenRecordset("select * from " + InBrackets(table.name) + " where " + Where(table, row));
  for (; !rows->Eof(); rows->MoveNext())
    rows->Delete();
  rows->Close();
}

void AddSettings(jet::Database& database) {
  const auto settings = database.OpenRecordset("select * from " + InBrackets(S::Settings::kTable));
  settings->AddNew();
  settings->Fields(S::Settings::kID).Value(std::int32_t{1});
  settings->Fields(S::Settings::kCurrentSeasonID).Value(std::int32_t{0});
  settings->Update();
  settings->Close();
}

/// One pass over all tables of a league.
class Checker {
 public:
  explicit Checker(jet::Database& database) : m_database(database) {}

  std::vector<LeagueFinding> Run();

 private:
  // Rows are vectors of numbers in the order of the columns in LeagueTables.
  struct Season {
    std::int32_t year = 0, managers = 0, rounds = 0, regularWeeks = 0, weeks = 0;
    /// The picks that the loader makes positions for; none if they are too many.
    std::optional<std::int32_t> picks;
    std::set<std::int32_t> playing{};
    std::set<std::int32_t> prizes{};
  };

  LeagueFinding& Add(Misfit misfit, const char* table, std::string text, std::int32_t seasonID = 0,
                     std::int32_t number = 0);
  LeagueFinding& AddNotTakingPart(const char* table, const std::string& row, std::int32_t managerID,
                                  std::int32_t seasonID, std::int32_t number);
  void Repair(LeagueFinding& finding, std::string text, std::function<void(jet::Database&)> carryOut);

  void CheckColumns();
  /// Reads a table and reports what is wrong with any table's rows: keys, numbers.
  const LeagueTables::Rows& Read(const char* name);
  void CheckKeys(const Table& table, const LeagueTables::Rows& rows);
  void CheckIDs(const char* name);

  void ReadIDs();
  void ReadSeasons();
  void CheckSettings();
  void CheckSeason(std::int32_t id, const Season& season);
  void CheckYears();
  void CheckPlaying();
  void CheckMoney();
  void CheckDraft();
  void CheckPick(const Row& row, const Season& season);
  void CheckPicker(const Row& row, const Season& season);
  void CheckPicked(const Row& row);
  void CheckWinnings();
  void CheckMasters();
  Number PositionOfTeams() const;

  /// Counts a row whose season has no row; true if the season has one.
  bool HasSeason(const char* table, const Number& seasonID);
  void ReportUnknownSeasons();

  bool IsIn(const char* table, const Number& id) const { return id && m_ids.at(table).contains(*id); }
  std::string SeasonText(std::int32_t id) const {
    return "season " + std::to_string(m_seasons.at(id).year) + " (id " + std::to_string(id) + ")";
  }
  /// "[draft info], pick 3 of season 2024 (id 1)"
  std::string PickText(const Row& row) const {
    return InBrackets(S::Draft::kTable) + ", pick " + NumberText(row[1]) + " of " + SeasonText(*row[0]);
  }
  std::string WinningText(const Row& row) const {
    return InBrackets(S::Winning::kTable) + ", winning " + NumberText(row[0]) + " of " + SeasonText(*row[1]);
  }
  std::string ManagerText(const Number& id);

  jet::Database& m_database;
  std::vector<LeagueFinding> m_findings;
  std::map<std::string, LeagueTables::Rows> m_rows;
  std::map<std::string, std::set<std::int32_t>> m_ids;  ///< by table
  std::map<std::int32_t, Season> m_seasons;
  std::map<std::pair<std::string, Number>, std::size_t> m_unknownSeasons;  ///< rows by table and season
  /// First pick of each player or team of a season: season, "P" or "T", id.
  std::map<std::tuple<std::int32_t, char, std::int32_t>, std::int32_t> m_picked;
};

LeagueFinding& Checker::Add(Misfit misfit, const char* table, std::string text, std::int32_t seasonID,
                            std::int32_t number) {
  m_findings.push_back({misfit, std::move(text), table, seasonID, number});
  return m_findings.back();
}

void Checker::Repair(LeagueFinding& finding, std::string text, std::function<void(jet::Database&)> carryOut) {
  finding.repair = LeagueRepair{std::move(text), std::move(carryOut)};
}

std::vector<LeagueFinding> Checker::Run() {
  CheckColumns();
  if (!m_findings.empty()) return std::move(m_findings);
  ReadIDs();
  ReadSeasons();
  CheckSettings();
  CheckYears();
  for (const auto& [id, season] : m_seasons)
    CheckSeason(id, season);
  CheckPlaying();
  CheckMoney();
  CheckDraft();
  CheckWinnings();
  CheckMasters();
  ReportUnknownSeasons();
  return std::move(m_findings);
}

void Checker::CheckColumns() {
  const std::vector<jet::TableInfo> tables = m_database.Tables();
  for (const Table& wanted : LeagueTables::All()) {
    const jet::TableInfo* table = FindTable(tables, wanted.name);
    if (!table) {
      Add(Misfit::NoTable, wanted.name, "The league has no table " + InBrackets(wanted.name) + ".");
      continue;
    }
    for (const LeagueTables::Column& column : wanted.columns) {
      const jet::ColumnSpec* found = FindColumn(*table, column.name);
      const std::string name = InBrackets(wanted.name) + ", column " + InBrackets(column.name);
      if (!found) {
        Add(Misfit::WrongColumn, wanted.name, name + " is missing.");
      } else if (!Fits(found->type, column.use)) {
        Add(Misfit::WrongColumn, wanted.name, name + " does not hold " + NameOf(column.use) + ".");
      }
    }
  }
}

const LeagueTables::Rows& Checker::Read(const char* name) {
  const Table& table = LeagueTables::Named(name);
  const LeagueTables::Rows& rows = m_rows[name] = LeagueTables::Read(m_database, table);
  for (const std::string& text : rows.tooLarge)
    Add(Misfit::NumberTooLarge, name, text);
  CheckKeys(table, rows);
  return rows;
}

void Checker::CheckKeys(const Table& table, const LeagueTables::Rows& rows) {
  for (const Row& key : rows.repeatedKeys) {
    const std::string name = LeagueTables::KeyText(table, key);
    const LeagueTables::Repeats count = LeagueTables::CountRepeats(m_database, table, key);
    if (count.repeats > 0) {
      LeagueFinding& finding =
          Add(Misfit::RepeatedRow, table.name,
              name + " is stored " + std::to_string(count.repeats + 1) + " times, equal in every column.", 0,
              key.back().value_or(0));
      Repair(finding, "Deleted " + CountOf(count.repeats, "repeat") + " of " + name + ".",
             [&table, key](jet::Database& database) { LeagueTables::DeleteRepeats(database, table, key); });
    }
    const std::size_t different = count.rows - count.repeats;
    if (different > 1) {
      Add(Misfit::RepeatedKey, table.name,
          name + " has " + std::to_string(different) + " different rows; at most one of them can be right.",
          0, key.back().value_or(0));
    }
  }
}

void Checker::CheckIDs(const char* name) {
  const Table& table = LeagueTables::Named(name);
  for (const Row& row : m_rows.at(name).rows) {
    if (row[0].value_or(0) >= 1) continue;
    Add(Misfit::NoID, name, LeagueTables::KeyText(table, row) + ": the id of a row must be at least 1.", 0,
        row[0].value_or(0));
  }
}

void Checker::ReadIDs() {
  for (const char* name : {S::Season::kTable, S::Manager::kTable, S::Position::kTable, S::Team::kTable,
                           S::Player::kTable, S::PrizeType::kTable, S::Prize::kTable}) {
    std::set<std::int32_t>& ids = m_ids[name];
    for (const Row& row : Read(name).rows) {
      if (row[0]) ids.insert(ids.end(), *row[0]);
    }
    CheckIDs(name);
  }
  for (const char* name : {S::Settings::kTable, S::Playing::kTable, S::MoneyDistribution::kTable,
                           S::Draft::kTable, S::Winning::kTable})
    Read(name);
  CheckIDs(S::Winning::kTable);
}

void Checker::ReadSeasons() {
  for (const Row& row : m_rows.at(S::Season::kTable).rows) {
    if (!row[0] || m_seasons.contains(*row[0])) continue;
    Season season{row[1].value_or(0), row[2].value_or(0), row[3].value_or(0),
                  row[5].value_or(0), row[6].value_or(0), {}};
    const std::int64_t picks = std::int64_t{season.managers} * season.rounds;
    if (picks <= Schema::Draft::kMostPicks)
      season.picks = static_cast<std::int32_t>(std::max<std::int64_t>(picks, 0));
    m_seasons.emplace(*row[0], std::move(season));
  }
  for (const Row& row : m_rows.at(S::Playing::kTable).rows) {
    if (row[0] && row[1] && m_seasons.contains(*row[0])) m_seasons.at(*row[0]).playing.insert(*row[1]);
  }
  for (const Row& row : m_rows.at(S::MoneyDistribution::kTable).rows) {
    if (row[0] && row[1] && m_seasons.contains(*row[0])) m_seasons.at(*row[0]).prizes.insert(*row[1]);
  }
}

void Checker::CheckSettings() {
  const Table& table = LeagueTables::Named(S::Settings::kTable);
  const std::vector<Row>& rows = m_rows.at(S::Settings::kTable).rows;
  const bool isRead = std::any_of(rows.begin(), rows.end(), [](const Row& row) { return row[0] == 1; });
  if (!isRead) {
    LeagueFinding& finding = Add(Misfit::NoSettings, table.name,
                                 "[settings] has no row with id 1, so no season is the current one.");
    // A row under another id may hold the current season that was meant.
    if (rows.empty()) Repair(finding, "Added the row of [settings], with no current season.", AddSettings);
  }
  for (const Row& row : rows) {
    if (row[0] != 1) {
      Add(Misfit::UnreadSettings, table.name,
          LeagueTables::KeyText(table, row) + ": only the row with id 1 is read.", 0, row[0].value_or(0));
      continue;
    }
    const Number season = row[1];
    if (season == 0 || (season && m_seasons.contains(*season))) continue;
    LeagueFinding& finding = Add(
        Misfit::NoCurrentSeason, table.name,
        season ? "[settings]: the current season, id " + NumberText(season) + "," + NotIn(S::Season::kTable)
               : "[settings]: the current season is Null, which cannot be read.");
    // Null means that none was chosen. An id may be that of a season whose row got lost, so that only the
    // commissioner can choose among several others.
    std::int32_t right = 0;
    if (m_seasons.size() == 1) {
      right = m_seasons.begin()->first;
    } else if (season && !m_seasons.empty()) {
      continue;
    }
    Repair(finding,
           right == 0 ? "Set the current season in [settings] to none instead of " + NumberText(season) + "."
                      : "Set the current season in [settings] to " + SeasonText(right) + " instead of " +
                            NumberText(season) + ".",
           [&table, row, right](jet::Database& database) {
             SetColumn(database, table, row, S::Settings::kCurrentSeasonID, right);
           });
  }
}

void Checker::CheckSeason(std::int32_t id, const Season& season) {
  const std::string name = InBrackets(S::Season::kTable) + ", " + SeasonText(id);
  const auto add = [&](Misfit misfit, const std::string& text) {
    Add(misfit, S::Season::kTable, name + text, id, id);
  };
  if (season.managers < 0 || season.rounds < 0) {
    add(Misfit::NegativeNumber, " has " + std::to_string(season.managers) + " managers and " +
                                    std::to_string(season.rounds) + " rounds.");
  }
  if (!season.picks) {
    add(Misfit::TooManyPicks, " has " + std::to_string(season.managers) + " managers and " +
                                  std::to_string(season.rounds) + " rounds: more than " +
                                  std::to_string(Schema::Draft::kMostPicks) +
                                  " picks, so its draft is not loaded.");
  }
  if (season.regularWeeks > season.weeks) {
    add(Misfit::WeeksDiffer, " has " + std::to_string(season.regularWeeks) + " regular weeks among " +
                                 CountOf(static_cast<std::size_t>(std::max(season.weeks, 0)), "week") + ".");
  }
  if (season.managers > 0 && season.playing.size() > static_cast<std::size_t>(season.managers)) {
    add(Misfit::TooManyManagers, " is set to " + std::to_string(season.managers) + " managers, but " +
                                     std::to_string(season.playing.size()) + " take part.");
  }
}

void Checker::CheckYears() {
  std::map<std::int32_t, std::int32_t> first;
  for (const auto& [id, season] : m_seasons) {
    const auto [known, isNew] = first.emplace(season.year, id);
    if (isNew) continue;
    Add(Misfit::SameYear, S::Season::kTable,
        InBrackets(S::Season::kTable) + ", " + SeasonText(id) + " has the year of season id " +
            std::to_string(known->second) + ".",
        id, id);
  }
}

bool Checker::HasSeason(const char* table, const Number& seasonID) {
  if (seasonID && m_seasons.contains(*seasonID)) return true;
  ++m_unknownSeasons[{table, seasonID}];
  return false;
}

void Checker::ReportUnknownSeasons() {
  for (const auto& [key, count] : m_unknownSeasons) {
    const auto& [table, seasonID] = key;
    Add(Misfit::UnknownSeason, table.c_str(),
        InBrackets(table) + " has " + CountOf(count, "row") + " of season id " + NumberText(seasonID) +
            ", which" + NotIn(S::Season::kTable),
        0, seasonID.value_or(0));
  }
}

std::string Checker::ManagerText(const Number& id) {
  std::string text = "manager " + NumberText(id);
  if (!IsIn(S::Manager::kTable, id)) return text;
  const auto rows = m_database.OpenRecordset("select * from [manager info] where [id] = " + NumberText(id));
  if (rows->Eof()) return text;
  const std::string first = rows->Fields(S::Manager::kFirstName).Value().ToText();
  const std::string last = rows->Fields(S::Manager::kLastName).Value().ToText();
  return text + " (" + first + (first.empty() || last.empty() ? "" : " ") + last + ")";
}

void Checker::CheckPlaying() {
  std::map<std::pair<std::int32_t, std::int32_t>, Number> ranked;  // managers by season and rank
  for (const Row& row : m_rows.at(S::Playing::kTable).rows) {
    if (!HasSeason(S::Playing::kTable, row[0])) continue;
    const std::string where = InBrackets(S::Playing::kTable) + ", " + SeasonText(*row[0]) + ": ";
    if (!IsIn(S::Manager::kTable, row[1])) {
      Add(Misfit::UnknownManager, S::Playing::kTable,
          where + ManagerText(row[1]) + " takes part, but" + NotIn(S::Manager::kTable), *row[0],
          row[1].value_or(0));
    }
    if (row[2].value_or(0) < 1) continue;
    const auto [known, isNew] = ranked.emplace(std::pair(*row[0], *row[2]), row[1]);
    if (isNew || known->second == row[1]) continue;
    Add(Misfit::SameRank, S::Playing::kTable,
        where + ManagerText(row[1]) + " and " + ManagerText(known->second) + " both have rank " +
            NumberText(row[2]) + ", so the order of the draft is not settled.",
        *row[0], row[1].value_or(0));
  }
}

void Checker::CheckMoney() {
  const Table& table = LeagueTables::Named(S::MoneyDistribution::kTable);
  const LeagueTables::Rows& all = m_rows.at(S::MoneyDistribution::kTable);
  for (const Row& row : all.rows) {
    if (!HasSeason(S::MoneyDistribution::kTable, row[0])) continue;
    const std::string where =
        InBrackets(table.name) + ", " + SeasonText(*row[0]) + ": prize " + NumberText(row[1]);
    if (!IsIn(S::Prize::kTable, row[1])) {
      Add(Misfit::UnknownPrize, table.name, where + NotIn(S::Prize::kTable) + " The season cannot be loaded.",
          *row[0], row[1].value_or(0));
    }
    if (row[2]) continue;
    LeagueFinding& finding =
        Add(Misfit::NoAmount, table.name, where + " has no amount. The season cannot be loaded.", *row[0],
            row[1].value_or(0));
    const Row key{row[0], row[1]};
    // Another row of the prize may have the amount.
    if (std::find(all.repeatedKeys.begin(), all.repeatedKeys.end(), key) != all.repeatedKeys.end()) continue;
    Repair(finding,
           "Set the amount of prize " + NumberText(row[1]) + " of " + SeasonText(*row[0]) +
               " to 0 instead of Null.",
           [&table, row](jet::Database& database) {
             SetColumn(database, table, row, S::MoneyDistribution::kMoney, std::int32_t{0});
           });
  }
}

void Checker::CheckDraft() {
  std::int32_t last = 0;  // season whose first pick has been seen
  for (const Row& row : m_rows.at(S::Draft::kTable).rows) {
    if (!HasSeason(S::Draft::kTable, row[0])) continue;
    const Season& season = m_seasons.at(*row[0]);
    const std::int32_t pick = row[1].value_or(0);
    if (*row[0] != last && pick > 1 && pick <= season.picks.value_or(Schema::Draft::kMostPicks)) {
      Add(Misfit::LatePicks, S::Draft::kTable,
          InBrackets(S::Draft::kTable) + ", " + SeasonText(*row[0]) + ": the first pick stored is " +
              std::to_string(pick) + ". A crash while the draft was being emptied can leave this.",
          *row[0], pick);
    }
    last = *row[0];
    CheckPick(row, season);
  }
}

void Checker::CheckPick(const Row& row, const Season& season) {
  const std::int32_t pick = row[1].value_or(0);
  if (pick < 1 || (season.picks && pick > *season.picks)) {
    Add(Misfit::OutsideDraft, S::Draft::kTable,
        PickText(row) + ": the draft has " +
            CountOf(static_cast<std::size_t>(season.picks.value_or(Schema::Draft::kMostPicks)), "pick") +
            " (" + std::to_string(season.managers) + " managers, " + std::to_string(season.rounds) +
            " rounds). Loading it ends here.",
        *row[0], pick);
  }
  CheckPicker(row, season);
  CheckPicked(row);
}

void Checker::CheckPicker(const Row& row, const Season& season) {
  const Table& table = LeagueTables::Named(S::Draft::kTable);
  const Number manager = row[2];
  const std::int32_t pick = row[1].value_or(0);
  const std::string end = " Loading the draft ends here.";
  if (manager.value_or(0) == 0) {
    if (row[3].value_or(0) != 0 || row[4].value_or(0) != 0) {
      Add(Misfit::PickWithoutManager, table.name, PickText(row) + " has no manager." + end, *row[0], pick);
      return;
    }
    LeagueFinding& finding =
        Add(Misfit::EmptyPick, table.name, PickText(row) + " has neither manager nor player nor team." + end,
            *row[0], pick);
    Repair(finding,
           "Deleted the empty row of pick " + NumberText(row[1]) + " of " + SeasonText(*row[0]) + ".",
           [&table, row](jet::Database& database) { DeleteRows(database, table, row); });
  } else if (!IsIn(S::Manager::kTable, manager)) {
    Add(Misfit::UnknownManager, table.name,
        PickText(row) + ": " + ManagerText(manager) + NotIn(S::Manager::kTable) + end, *row[0], pick);
  } else if (!season.playing.contains(*manager)) {
    AddNotTakingPart(table.name, PickText(row), *manager, *row[0], pick).text += end;
  }
}

void Checker::CheckPicked(const Row& row) {
  const Table& table = LeagueTables::Named(S::Draft::kTable);
  const std::int32_t player = row[3].value_or(0);
  const std::int32_t team = row[4].value_or(0);
  const std::int32_t pick = row[1].value_or(0);
  if (player != 0 && !IsIn(S::Player::kTable, player)) {
    Add(Misfit::UnknownPlayer, table.name,
        PickText(row) + ": player " + std::to_string(player) + NotIn(S::Player::kTable), *row[0], pick);
  } else if (player != 0 && team != 0) {
    LeagueFinding& finding = Add(Misfit::TwoInOnePick, table.name,
                                 PickText(row) + " holds player " + std::to_string(player) + " and team " +
                                     std::to_string(team) + ". The player counts; the team is never read.",
                                 *row[0], pick);
    Repair(finding,
           "Removed team " + std::to_string(team) + " from pick " + NumberText(row[1]) + " of " +
               SeasonText(*row[0]) + "; player " + std::to_string(player) + " keeps the pick.",
           [&table, row](jet::Database& database) {
             SetColumn(database, table, row, S::Draft::kTeamID, jet::Null());
           });
  } else if (team != 0 && !IsIn(S::Team::kTable, team)) {
    Add(Misfit::UnknownTeam, table.name,
        PickText(row) + ": team " + std::to_string(team) + NotIn(S::Team::kTable) +
            " Loading the draft ends here.",
        *row[0], pick);
  }
  if (player < 1 && team < 1) return;
  const char type = player >= 1 ? 'P' : 'T';
  const std::int32_t id = player >= 1 ? player : team;
  const auto [known, isNew] = m_picked.emplace(std::tuple(*row[0], type, id), pick);
  if (isNew || known->second == pick) return;
  Add(Misfit::PickedTwice, table.name,
      PickText(row) + ": " + (type == 'P' ? "player " : "team ") + std::to_string(id) +
          " is picked at pick " + std::to_string(known->second) + " already. Loading the draft ends here.",
      *row[0], pick);
}

LeagueFinding& Checker::AddNotTakingPart(const char* table, const std::string& row, std::int32_t managerID,
                                         std::int32_t seasonID, std::int32_t number) {
  LeagueFinding& finding =
      Add(Misfit::NotTakingPart, table,
          row + ": " + ManagerText(managerID) + " does not take part in the season.", seasonID, number);
  const Season& season = m_seasons.at(seasonID);
  const bool hasRoom =
      season.managers > 0 && season.playing.size() < static_cast<std::size_t>(season.managers);
  finding.managerID = hasRoom ? managerID : 0;
  return finding;
}

void Checker::CheckWinnings() {
  std::map<std::pair<std::int32_t, std::int32_t>, std::size_t> notPutUp;  // winnings by season and prize
  for (const Row& row : m_rows.at(S::Winning::kTable).rows) {
    if (!HasSeason(S::Winning::kTable, row[1])) continue;
    const Season& season = m_seasons.at(*row[1]);
    const std::int32_t id = row[0].value_or(0);
    if (!IsIn(S::Prize::kTable, row[2])) {
      Add(Misfit::UnknownPrize, S::Winning::kTable,
          WinningText(row) + ": prize " + NumberText(row[2]) + NotIn(S::Prize::kTable), *row[1], id);
    } else if (!season.prizes.contains(*row[2])) {
      ++notPutUp[{*row[1], *row[2]}];
    }
    if (!IsIn(S::Manager::kTable, row[3])) {
      Add(Misfit::UnknownManager, S::Winning::kTable,
          WinningText(row) + ": " + ManagerText(row[3]) + NotIn(S::Manager::kTable), *row[1], id);
    } else if (!season.playing.contains(*row[3])) {
      AddNotTakingPart(S::Winning::kTable, WinningText(row), *row[3], *row[1], id);
    }
    const std::int32_t week = row[4].value_or(0);
    if (week < 0 || (season.weeks > 0 && week > season.weeks)) {
      Add(Misfit::OutsideWeeks, S::Winning::kTable,
          WinningText(row) + ": the season has " +
              CountOf(static_cast<std::size_t>(std::max(season.weeks, 0)), "week") + ", and no week " +
              std::to_string(week) + ".",
          *row[1], id);
    }
  }
  for (const auto& [key, count] : notPutUp) {
    Add(Misfit::NotPutUp, S::Winning::kTable,
        InBrackets(S::Winning::kTable) + ", " + SeasonText(key.first) + ": prize " +
            std::to_string(key.second) + " is won in " + CountOf(count, "row") + ", but not in " +
            InBrackets(S::MoneyDistribution::kTable) + " of the season.",
        key.first, key.second);
  }
}

void Checker::CheckMasters() {
  const auto check = [&](const char* table, const Row& row, const char* what, const Number& id,
                         const char* parent, Misfit misfit) {
    if (IsIn(parent, id)) return;
    Add(misfit, table,
        LeagueTables::KeyText(LeagueTables::Named(table), row) + ": " + what + " " + NumberText(id) +
            NotIn(parent),
        0, row[0].value_or(0));
  };
  for (const Row& row : m_rows.at(S::Player::kTable).rows) {
    if (row[1].value_or(0) != 0)
      check(S::Player::kTable, row, "position", row[1], S::Position::kTable, Misfit::UnknownPosition);
    if (row[2].value_or(0) != 0)
      check(S::Player::kTable, row, "team", row[2], S::Team::kTable, Misfit::UnknownTeam);
  }
  const Number ofTeams = PositionOfTeams();
  for (const Row& row : m_rows.at(S::Team::kTable).rows) {
    if (row[1].value_or(0) == 0) continue;
    const std::size_t before = m_findings.size();
    check(S::Team::kTable, row, "position", row[1], S::Position::kTable, Misfit::UnknownPosition);
    if (m_findings.size() == before || !ofTeams) continue;
    Repair(m_findings.back(),
           "Set the position of team " + NumberText(row[0]) + " to " + NumberText(ofTeams) +
               ", as all other teams have it, instead of " + NumberText(row[1]) + ".",
           [row, ofTeams](jet::Database& database) {
             SetColumn(database, LeagueTables::Named(S::Team::kTable), row, S::Team::kPositionID, *ofTeams);
           });
  }
  for (const Row& row : m_rows.at(S::Prize::kTable).rows) {
    const std::int32_t type = row[1].value_or(0);  // Null is read as type 0
    check(S::Prize::kTable, row, "prize type", type, S::PrizeType::kTable, Misfit::UnknownPrizeType);
  }
}

/// The position that all teams have whose position exists; none if they differ, or there is none.
Number Checker::PositionOfTeams() const {
  Number common;
  for (const Row& row : m_rows.at(S::Team::kTable).rows) {
    if (!IsIn(S::Position::kTable, row[1])) continue;
    if (common && common != row[1]) return {};
    common = row[1];
  }
  return common;
}

/// Carries out the repairs of all findings.
void CarryOut(jet::Database& database, const std::vector<LeagueFinding>& findings,
              std::vector<std::string>& done) {
  for (const LeagueFinding& finding : findings) {
    if (!finding.repair) continue;
    finding.repair->carryOut(database);
    done.push_back(finding.repair->text);
  }
}

bool HasRepair(const std::vector<LeagueFinding>& findings) {
  return std::any_of(findings.begin(), findings.end(),
                     [](const LeagueFinding& finding) { return finding.repair.has_value(); });
}

}  // namespace

bool IsRemark(Misfit misfit) {
  return misfit == Misfit::TwoInOnePick || misfit == Misfit::LatePicks || misfit == Misfit::NoSettings;
}

const char* NameOf(Misfit misfit) {
  static constexpr std::array kNames{"no table",           "wrong column",      "number too large",
                                     "repeated row",       "repeated key",      "no id",
                                     "no settings",        "unread settings",   "no current season",
                                     "negative number",    "too many picks",    "same year",
                                     "weeks differ",       "too many managers", "same rank",
                                     "unknown season",     "unknown manager",   "unknown player",
                                     "unknown team",       "unknown position",  "unknown prize",
                                     "unknown prize type", "outside draft",     "not taking part",
                                     "picked twice",       "two in one pick",   "pick without manager",
                                     "empty pick",         "late picks",        "no amount",
                                     "not put up",         "outside weeks"};
  static_assert(kNames.size() == static_cast<std::size_t>(Misfit::OutsideWeeks) + 1);
  return kNames[static_cast<std::size_t>(misfit)];
}

bool IsLeague(const jet::Database& database) {
  const std::vector<jet::TableInfo> tables = database.Tables();
  const auto& wanted = LeagueTables::All();
  const auto present = std::count_if(wanted.begin(), wanted.end(),
                                     [&](const Table& table) { return FindTable(tables, table.name); });
  return static_cast<std::size_t>(present) * 2 > wanted.size();
}

std::vector<LeagueFinding> CheckLeague(jet::Database& database) {
  return Checker(database).Run();
}

RepairedLeague RepairLeague(jet::Database& database) {
  constexpr int kMostPasses = 10;  // a repair can make rows equal, or leave one season
  RepairedLeague result;
  jet::Transaction transaction(database);
  result.left = CheckLeague(database);
  for (int pass = 0; HasRepair(result.left); ++pass) {
    if (pass == kMostPasses) throw std::logic_error("The repairs of the league come to no end.");
    CarryOut(database, result.left, result.repairs);
    result.left = CheckLeague(database);
  }
  transaction.Commit();
  return result;
}

RepairedLeague RepairLeagueFile(const std::string& path, const std::string& backup) {
  const auto database = HLServiceUtils::Engine().OpenDatabase(path, /*exclusive=*/true, /*readOnly=*/false,
                                                              HLServiceUtils::GetConnectString());
  RepairedLeague result;
  result.damage = database->Check().findings;
  if (!result.damage.empty()) return result;
  result.left = CheckLeague(*database);
  if (!HasRepair(result.left)) return result;
  BackUpLeague(*database, backup);
  return RepairLeague(*database);
}

}  // namespace HLDataSrvc
